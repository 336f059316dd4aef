// The canvas scene: the machine's 170 by 200 mm work area with its labels and
// guide lines, and the bitmap and SVG designs placed on it, in millimetres.
#ifndef PGRAPHICSSCENE_H
#define PGRAPHICSSCENE_H

#include <QGraphicsScene>
#include <QPointF>
#include <QRectF>

class BackGrQGraphicsItem;
class PixmapItem;
class SvgItem;

class PGraphicsScene : public QGraphicsScene
{
    Q_OBJECT
public:
    explicit PGraphicsScene(QObject *parent = nullptr);

    // Places a picture (jpeg, jpg, png, bmp) or an SVG drawing; other files are ignored.
    void LoadItemFromFile(const QString &path, int kindTag);
    // Places an SVG drawing as it is, without removing its declared size.
    void LoadSvgItem(const QString &path, int kindTag);
    void ClearItems();
    void ScaleSelected(double widthMm);
    // Scene position of the design inside the work area, or NoPosition.
    QPointF CurrentItemPos();
    bool HasSelectedItem();

    BackGrQGraphicsItem *backgroundItem() const { return m_background; }

    static const QPointF NoPosition;

signals:
    void SigRect(QRectF rect);
    void SigPixitem(QString path);

public slots:
    void SlotGetRect(QRectF rect);
    void SlotPixitemDropped(QString path);

protected:
    void drawBackground(QPainter *painter, const QRectF &rect) override;
    void keyPressEvent(QKeyEvent *event) override;
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;

private:
    void buildWorkArea();
    SvgItem *placeSvg(const QByteArray &source, int kindTag, double heightLimit, double widthMm, double heightMm);

    int m_areaWidth;
    int m_areaHeight;
    BackGrQGraphicsItem *m_background = nullptr;
};

#endif
