// Hover state of a design item: over its bottom-right corner zone the cursor offers
// a resize and the drag mode turns to the corner, elsewhere the cursor offers a move.
#ifndef CORNERHOVER_H
#define CORNERHOVER_H

#include <QCursor>
#include <QGraphicsItem>

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
