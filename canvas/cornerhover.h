// Hover state of a design item: over its bottom-right corner zone the cursor offers
// a resize and the drag mode turns to the corner, elsewhere the cursor offers a move.
#ifndef CORNERHOVER_H
#define CORNERHOVER_H

#include <QCursor>
#include <QGraphicsItem>
#include <QPainterPath>
#include <QRectF>

// The corner zone around the bottom-right corner of `rect`, in the same coordinates.
inline QRectF cornerZoneRect(const QRectF &rect, double halfSize)
{
    return QRectF(rect.right() - halfSize, rect.bottom() - halfSize, 2 * halfSize, 2 * halfSize);
}

// A view finds the items under the mouse by collision with a small square around it; the
// corner zone outside the rectangle counts as part of the item for that.
inline bool hitsCornerZone(const QPainterPath &path, Qt::ItemSelectionMode mode, const QRectF &zone)
{
    return (mode == Qt::IntersectsItemShape || mode == Qt::IntersectsItemBoundingRect) && path.intersects(zone);
}

// Only a hover move arms the resize (arm true); outside the zone it is always disarmed.
inline void showCornerHover(QGraphicsItem *item, QCursor *cursor, bool inZone, bool arm,
                            int resizeMode, int &dragMode, bool &resizeArmed)
{
    if (inZone) {
        cursor->setShape(Qt::SizeFDiagCursor);
        dragMode = resizeMode;
        if (arm)
            resizeArmed = true;
    } else {
        resizeArmed = false;
        cursor->setShape(Qt::SizeAllCursor);
    }
    item->setCursor(*cursor);
    item->update();
}

#endif
