// Bitmap design on the canvas: a picture file shown at its size in millimetres,
// moved by its body, resized about its centre from the bottom-right corner.
#ifndef PIXMAPITEM_H
#define PIXMAPITEM_H

#include <QByteArray>
#include <QImage>
#include <QGraphicsPixmapItem>
#include <QObject>
#include <QPixmap>
#include <QRectF>

#include "designitem.h"

class PixmapItem : public QObject, public DesignItem<QGraphicsPixmapItem>
{
    Q_OBJECT
public:
    enum { Type = QGraphicsItem::UserType + 4 };

    explicit PixmapItem(QGraphicsItem *parent = nullptr);
    ~PixmapItem() override;

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget = nullptr) override;
    int type() const override { return Type; }

    // Takes r whole as the new geometry and reloads the picture at one pixel per mm.
    void ResetRect(QRectF r);

    void setFilePath(const QString &path) { m_path = path; }
    QString filePath() const { return m_path; }

    // Reads the picture file afresh and gives it at the given size in pixels;
    // an empty size or an unreadable file gives a null picture.
    QPixmap loadScaled(int width, int height);

signals:
    void SigPosTag(QRectF rect);
    void Sig_PosTag(QString text);
    void Sig_PosRect(QString text);
    void Sig_HidePosTag();
    void Sig_ShowPos(QRectF rect);

protected:
    void hoverEnterEvent(QGraphicsSceneHoverEvent *event) override;
    void hoverLeaveEvent(QGraphicsSceneHoverEvent *event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;

private:
    void reloadPicture();

    static constexpr double CornerZone = 20.0;
    static constexpr double BoundingMargin = 20.0;
    static constexpr int InAreaTolerance = 20;
    static constexpr double FramePenWidth = 2.0;

    QString m_path;
    QPointF m_start;
    QPointF m_end;
    double m_scale = 1.0;

    // The bytes of the last decode and the picture decoded from them, at least
    // twice the shown size; a step whose file still holds the same bytes skips the decode.
    QByteArray m_decodedBytes;
    QImage m_decoded;
    bool m_decodedWhole = false;
};

#endif
