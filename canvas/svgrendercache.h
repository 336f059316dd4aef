// The drawing of an SVG item kept as a picture at the view's scale, so that moving the
// item only copies pixels; the outlines are drawn again when the scale or size changes.
#ifndef SVGRENDERCACHE_H
#define SVGRENDERCACHE_H

#include <QImage>
#include <QRectF>
#include <QString>
#include <QTransform>

class QPainter;
class QSvgRenderer;

class SvgRenderCache
{
public:
    // Draws `drawing` (or its element `elementId`) into `bounds` in item coordinates, as
    // QSvgRenderer::render would, from the kept picture when the scale and size are those
    // it was made at. While `resizing`, a kept picture of another size is stretched
    // instead of drawing every outline at each step.
    void paint(QPainter *painter, QSvgRenderer *drawing, const QString &elementId, const QRectF &bounds, bool resizing);
    // Forgets the picture (a new drawing, or the end of a resize).
    void clear() { m_picture = QImage(); }
    bool isEmpty() const { return m_picture.isNull(); }

private:
    QImage m_picture;
    QRectF m_bounds;     // item rectangle it was drawn for
    QTransform m_scale;  // the painter's transform without its translation
    QString m_elementId;
    const QSvgRenderer *m_drawing = nullptr;
};

#endif
