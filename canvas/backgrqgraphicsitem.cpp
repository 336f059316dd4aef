// Picture behind the work area of the canvas; it is also where files dropped
// on the canvas land, and it reports the first of them.
#include "backgrqgraphicsitem.h"

#include <QGraphicsSceneDragDropEvent>
#include <QMimeData>
#include <QUrl>

BackGrQGraphicsItem::BackGrQGraphicsItem(QGraphicsItem *parent) : QObject(nullptr), QGraphicsPixmapItem(parent) {}

void BackGrQGraphicsItem::dragEnterEvent(QGraphicsSceneDragDropEvent *event)
{
    // Whatever is dragged in is accepted; the main window judges the file later.
    event->acceptProposedAction();
}

void BackGrQGraphicsItem::dropEvent(QGraphicsSceneDragDropEvent *event)
{
    const QList<QUrl> urls = event->mimeData() ? event->mimeData()->urls() : QList<QUrl>();
    if (urls.isEmpty())
        return;
    // One design at a time: further files of the same drop are ignored.
    emit on_dropped(urls.first().toLocalFile());
}
