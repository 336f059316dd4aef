// What the two design items share: the rectangle they stand in, the corner that resizes them,
// the hit rules around both and the frame that says whether they fit the work area.
#ifndef DESIGNITEM_H
#define DESIGNITEM_H

#include "cornerhover.h"
#include "workarea.h"

#include <QBrush>
#include <QColor>
#include <QGraphicsItem>
#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneHoverEvent>
#include <QPainterPath>
#include <QPen>
#include <QRectF>
#include <QtGlobal>

#include <cmath>

// Geometry can turn infinite or NaN for a design that did not load; such values must
// never reach an int conversion.
inline int truncatedToInt(double value)
{
    constexpr double IntLimit = 1.0e9;
    if (!std::isfinite(value))
        return 0;
    return static_cast<int>(qBound(-IntLimit, value, IntLimit));
}

// Base is the Qt item class that draws the design (a pixmap or an SVG item).
template <class Base>
class DesignItem : public Base
{
public:
    QRectF rect() const { return m_rect; }
    void setRect(const QRectF &r)
    {
        this->prepareGeometryChange();
        m_rect = r;
    }
    bool isInArea() const { return m_inArea; }
    bool isResizeArmed() const { return m_corner.isArmed(); }
    int dragMode() const { return m_corner.dragMode(); }

    QPainterPath shape() const override
    {
        QPainterPath path;
        path.addRect(m_rect);
        return path;
    }
    // The rectangle, and the corner zone around its bottom-right corner that reaches out of it.
    bool contains(const QPointF &point) const override
    {
        return shape().contains(point) || inCornerZone(this->mapToScene(point));
    }
    bool collidesWithPath(const QPainterPath &path, Qt::ItemSelectionMode mode = Qt::IntersectsItemShape) const override
    {
        return Base::collidesWithPath(path, mode) || m_corner.zoneCollides(m_rect, path, mode);
    }

protected:
    DesignItem(double cornerZone, QGraphicsItem *parent) : Base(parent), m_corner(cornerZone) {}

    bool inCornerZone(const QPointF &scenePoint) const
    {
        return m_corner.zoneContains(m_rect, this->scenePos(), scenePoint);
    }
    void hoverEnterEvent(QGraphicsSceneHoverEvent *event) override
    {
        m_corner.enter(this, inCornerZone(event->scenePos()));
        Base::hoverEnterEvent(event);
    }
    void hoverMoveEvent(QGraphicsSceneHoverEvent *event) override
    {
        m_corner.move(this, inCornerZone(event->scenePos()));
        Base::hoverMoveEvent(event);
    }
    // Files dragged over a design go on to the bed below, which takes them.
    void dragEnterEvent(QGraphicsSceneDragDropEvent *event) override { event->ignore(); }

    // Whether a design whose frame stands at `scenePos` with the scene size of `sceneBounds`
    // lies within the work area, `tolerance` millimetres of overhang allowed right and below.
    static bool fitsWorkArea(const QPointF &scenePos, const QRectF &sceneBounds, int tolerance)
    {
        const int x = truncatedToInt(scenePos.x());
        const int y = truncatedToInt(scenePos.y());
        const int w = truncatedToInt(sceneBounds.width());
        const int h = truncatedToInt(sceneBounds.height());
        return x >= 0 && y >= 0 && w + x <= WorkArea::Width + tolerance && h + y <= WorkArea::Height + tolerance;
    }
    // The dashed frame of a selected design: green inside the area, red outside.
    static QPen framePen(bool outside, double width)
    {
        return QPen(QBrush(outside ? QColor(255, 0, 0) : QColor(67, 240, 20)), width, Qt::DashDotDotLine, Qt::SquareCap,
                    Qt::BevelJoin);
    }

    QRectF m_rect;
    bool m_inArea = false;
    CornerHover m_corner;
};

#endif
