// The preview's drawing: the work area in millimetres (170 x 200 unless told otherwise) with its
// origin at the bottom left, a light 10 mm grid and the rendered job; zoom, pan by dragging, fit.
#ifndef TOOLPATHVIEW_H
#define TOOLPATHVIEW_H

#include <QGraphicsView>
#include <QImage>
#include <QList>
#include <QMarginsF>
#include <QRectF>
#include <QSizeF>

class QGraphicsPixmapItem;
class QGraphicsRectItem;

class ToolpathView : public QGraphicsView
{
    Q_OBJECT

public:
    explicit ToolpathView(QWidget *parent = nullptr);

    // The work area in mm; the picture, the outline of an overreach and the fit are dropped.
    void setWorkArea(double width, double height);
    QSizeF workArea() const { return QSizeF(m_areaWidth, m_areaHeight); }
    // The job drawn at `pxPerMm` over the whole work area; white shows the grid through.
    void setPicture(const QImage &picture, double pxPerMm);
    // The picture as shown at full detail: premultiplied, clear where nothing burns.
    QImage picture() const { return m_full; }
    // Fits the view to a rectangle in machine millimetres (Y up); an empty one fits the area.
    void fitMachineRect(const QRectF &machine);
    double zoom() const { return transform().m11(); }
    // Outlines in red where a job goes beyond the work area (machine millimetres, Y up);
    // an empty rectangle hides it.
    void setOverreach(const QRectF &machine);

protected:
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    // Puts the area, its grid, outline, origin and labels into the scene.
    void buildArea();
    QRectF areaRect() const { return QRectF(0, 0, m_areaWidth, m_areaHeight); }
    void applyFit();
    // Room in screen pixels that the labels of the work area need beyond `rect`'s edges.
    QMarginsF labelRoom(const QRectF &rect) const;
    // What the scroll bars reach: the work area with its labels, the overreach and `visible`.
    void updateScrollRange(const QRectF &visible);
    // Shows the picture shrunk by a power of two near the zoom, averaged, so that rows and
    // thin lines keep their darkness on screen instead of flickering in and out.
    void updateDetail();

    QGraphicsPixmapItem *m_picture = nullptr;
    QGraphicsRectItem *m_overreach = nullptr;
    QList<QGraphicsItem *> m_labels;
    QImage m_full;
    double m_areaWidth;
    double m_areaHeight;
    double m_pxPerMm = 1;
    int m_level = -1;
    QRectF m_fit;           // scene rectangle to fit
    bool m_autoFit = true;  // until the user zooms or pans, the fit follows the view's size
};

#endif
