// Corner hover and drag of a design item: over the zone around its bottom-right corner the
// cursor offers a resize and a drag grows or shrinks the item; elsewhere it offers a move.
#ifndef CORNERHOVER_H
#define CORNERHOVER_H

#include <QCursor>
#include <QGraphicsItem>
#include <QPainterPath>
#include <QPointF>
#include <QRectF>

// Held by each design item. `rect` arguments are the item's rectangle in item
// coordinates; the zone reaches `halfSize` out from its bottom-right corner both ways.
class CornerHover
{
public:
    static constexpr int ResizeBottomRight = 4;  // the drag mode over the corner

    explicit CornerHover(double halfSize) : m_halfSize(halfSize) {}

    double halfSize() const { return m_halfSize; }
    // The zone in the same coordinates as `rect`.
    QRectF zoneRect(const QRectF &rect) const;
    // Whether `scenePoint` lies strictly inside the zone of an item at `itemScenePos`.
    bool zoneContains(const QRectF &rect, const QPointF &itemScenePos, const QPointF &scenePoint) const;
    // A view finds the items under the mouse by collision with a small square around it;
    // the zone outside the rectangle counts as part of the item for that.
    bool zoneCollides(const QRectF &rect, const QPainterPath &path, Qt::ItemSelectionMode mode) const;

    // Hover: entering only shows the cursor, a move over the zone also arms the resize;
    // outside the zone it is always disarmed. Both set the item's cursor and repaint it.
    void enter(QGraphicsItem *item, bool inZone) { show(item, inZone, false); }
    void move(QGraphicsItem *item, bool inZone) { show(item, inZone, true); }
    // Back to the arrow, disarmed.
    void leave(QGraphicsItem *item);

    bool isArmed() const { return m_armed; }
    void disarm() { m_armed = false; }
    // 0 until the cursor first reaches the zone, ResizeBottomRight from then on.
    int dragMode() const { return m_dragMode; }

    // One step of a corner drag by (dx, dy): the scale grows only when the mouse goes
    // outward in both directions and shrinks otherwise, about the rectangle's centre.
    struct Step
    {
        QRectF rect;    // the scaled rectangle, still centred where `rect` was
        double hx, hy;  // half the growth: the item moves back by this to stay centred
    };
    static Step resizeStep(const QRectF &rect, double dx, double dy);

private:
    void show(QGraphicsItem *item, bool inZone, bool arm);

    double m_halfSize;
    QCursor m_cursor;
    int m_dragMode = 0;
    bool m_armed = false;
};

#endif
