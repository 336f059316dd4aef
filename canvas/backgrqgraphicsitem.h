// Picture behind the work area of the canvas; it is also where files dropped
// on the canvas land, and it reports the first of them.
#ifndef BACKGRQGRAPHICSITEM_H
#define BACKGRQGRAPHICSITEM_H

#include <QGraphicsPixmapItem>
#include <QObject>

class BackGrQGraphicsItem : public QObject, public QGraphicsPixmapItem
{
    Q_OBJECT
public:
    explicit BackGrQGraphicsItem(QGraphicsItem *parent = nullptr);

signals:
    void on_dropped(QString path);

protected:
    void dragEnterEvent(QGraphicsSceneDragDropEvent *event) override;
    void dropEvent(QGraphicsSceneDragDropEvent *event) override;
};

#endif
