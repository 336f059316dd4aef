// The drawing of an SVG item kept as a picture at the view's scale, so that moving the
// item only copies pixels; the outlines are drawn again when the scale or size changes.
#include "svgrendercache.h"

#include <QPainter>
#include <QSvgRenderer>

#include <cmath>

namespace {

// Larger pictures (a drawing zoomed far in) are drawn directly: they would cost more
// memory than they save time.
constexpr qint64 MaxCachedPixels = 4096LL * 4096;

void render(QPainter *painter, QSvgRenderer *drawing, const QString &elementId, const QRectF &bounds)
{
    if (elementId.isEmpty())
        drawing->render(painter, bounds);
    else
        drawing->render(painter, elementId, bounds);
}

}  // namespace

void SvgRenderCache::paint(QPainter *painter, QSvgRenderer *drawing, const QString &elementId, const QRectF &bounds,
                           bool resizing)
{
    const QTransform world = painter->worldTransform();
    // Only plain scaling and moving can be replayed as a copy of pixels.
    if (world.type() > QTransform::TxScale || bounds.isEmpty()) {
        render(painter, drawing, elementId, bounds);
        return;
    }
    const QTransform scale(world.m11(), 0, 0, world.m22(), 0, 0);
    const QRectF device = scale.mapRect(bounds);
    const QSize size(int(std::ceil(device.width())), int(std::ceil(device.height())));
    if (qint64(size.width()) * size.height() > MaxCachedPixels) {
        render(painter, drawing, elementId, bounds);
        return;
    }

    const bool same = !m_picture.isNull() && m_drawing == drawing && m_elementId == elementId && m_bounds == bounds
                      && m_scale == scale;
    if (!same && resizing && !m_picture.isNull() && m_drawing == drawing && m_elementId == elementId) {
        painter->drawImage(bounds, m_picture);
        return;
    }
    if (!same) {
        m_picture = QImage(size, QImage::Format_ARGB32_Premultiplied);
        m_picture.fill(Qt::transparent);
        QPainter into(&m_picture);
        into.setRenderHints(painter->renderHints());
        into.setTransform(scale * QTransform::fromTranslate(-device.left(), -device.top()));
        render(&into, drawing, elementId, bounds);
        m_drawing = drawing;
        m_elementId = elementId;
        m_bounds = bounds;
        m_scale = scale;
    }
    // Placed on whole device pixels: a copy, never a resampling.
    const QPointF corner = world.map(bounds.topLeft());
    painter->save();
    painter->resetTransform();
    painter->drawImage(QPoint(qRound(corner.x()), qRound(corner.y())), m_picture);
    painter->restore();
}
