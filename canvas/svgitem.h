// Vector design on the canvas: an SVG drawing shown at its size in millimetres,
// moved by its body, resized about its centre from the bottom-right corner.
#ifndef SVGITEM_H
#define SVGITEM_H

#include <QGraphicsSvgItem>
#include <QRectF>
#include <QSizeF>

#include "designitem.h"
#include "svgrendercache.h"

class SvgItem : public DesignItem<QGraphicsSvgItem>
{
    Q_OBJECT
public:
    enum { Type = QGraphicsItem::UserType + 5 };

    explicit SvgItem(QGraphicsItem *parent = nullptr);
    ~SvgItem() override;

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget = nullptr) override;
    int type() const override { return Type; }

    void setFilePath(const QString &path) { m_path = path; }
    QString filePath() const { return m_path; }
    // The rectangle grown by the frame margin: the drawing fills it and the in-area test uses it.
    QRectF frameRect() const;
    QRectF rememberedRect() const { return m_rememberedRect; }
    void setRememberedRect(const QRectF &r) { m_rememberedRect = r; }
    double aspectRatio() const { return m_aspect; }
    void setAspectRatio(double ratio) { m_aspect = ratio; }
    int kindTag() const { return m_kindTag; }
    void setKindTag(int tag) { m_kindTag = tag; }

signals:
    void SigPosTag(QRectF rect);
    void Sig_PosRect(QString text);
    void Sig_HidePosTag();
    void Sig_ShowPos(QRectF rect);

public slots:
    // The drawing keeps its origin; only the size of r is taken.
    void ResetRect(QRectF rect);

protected:
    void hoverLeaveEvent(QGraphicsSceneHoverEvent *event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;

private:
    static constexpr double FrameMargin = 2.0;
    static constexpr int InAreaTolerance = 4;
    static constexpr double FramePenWidth = 2.0;
    static constexpr int HandleSize = 5;
    static constexpr int CornerZone = 8;

    QString m_path;
    QRectF m_rememberedRect;
    QPointF m_start;
    QPointF m_end;
    double m_aspect = 0.0;
    QSizeF m_defaultSize;
    int m_kindTag = 0;
    bool m_resizing = false;  // a corner drag is under way
    SvgRenderCache m_renderCache;
};

#endif
