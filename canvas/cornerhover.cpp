// Corner hover and drag of a design item: over the zone around its bottom-right corner the
// cursor offers a resize and a drag grows or shrinks the item; elsewhere it offers a move.
#include "cornerhover.h"

QRectF CornerHover::zoneRect(const QRectF &rect) const
{
    return QRectF(rect.right() - m_halfSize, rect.bottom() - m_halfSize, 2 * m_halfSize, 2 * m_halfSize);
}

bool CornerHover::zoneContains(const QRectF &rect, const QPointF &itemScenePos, const QPointF &p) const
{
    const double right = rect.x() + rect.width() + itemScenePos.x();
    const double bottom = rect.y() + rect.height() + itemScenePos.y();
    return right - m_halfSize < p.x() && p.x() < right + m_halfSize && bottom - m_halfSize < p.y()
           && p.y() < bottom + m_halfSize;
}

bool CornerHover::zoneCollides(const QRectF &rect, const QPainterPath &path, Qt::ItemSelectionMode mode) const
{
    return (mode == Qt::IntersectsItemShape || mode == Qt::IntersectsItemBoundingRect)
           && path.intersects(zoneRect(rect));
}

void CornerHover::show(QGraphicsItem *item, bool inZone, bool arm)
{
    if (inZone) {
        m_cursor.setShape(Qt::SizeFDiagCursor);
        m_dragMode = ResizeBottomRight;
        if (arm)
            m_armed = true;
    } else {
        m_armed = false;
        m_cursor.setShape(Qt::SizeAllCursor);
    }
    item->setCursor(m_cursor);
    item->update();
}

void CornerHover::leave(QGraphicsItem *item)
{
    m_cursor.setShape(Qt::ArrowCursor);
    m_armed = false;
    item->setCursor(m_cursor);
}

CornerHover::Step CornerHover::resizeStep(const QRectF &rect, double dx, double dy)
{
    const double sx = (rect.width() + dx) / rect.width();
    const double sy = (rect.height() + dy) / rect.height();
    const double s = (sx >= 1.0 && sy >= 1.0) ? qMax(sx, sy) : qMin(sx, sy);
    const double hx = rect.width() * (s - 1) * 0.5;
    const double hy = rect.height() * (s - 1) * 0.5;
    return {QRectF(rect.x() + hx, rect.y() + hy, rect.width() * s, rect.height() * s), hx, hy};
}
