// The layout of a job: the machine profile's bed in millimetres (scene Y down, the bed's top edge at
// 0) with a 10 mm grid, and one graphic per item of the document. Looks are kept between rebuilds,
// so moving an item does not process its picture again.
#ifndef JOBLAYOUTSCENE_H
#define JOBLAYOUTSCENE_H

#include "jobdocument.h"
#include "jobitemlook.h"

#include <QGraphicsScene>
#include <QHash>
#include <QList>

class JobItemGraphic;

class JobLayoutScene : public QGraphicsScene
{
    Q_OBJECT

public:
    explicit JobLayoutScene(QObject *parent = nullptr);
    ~JobLayoutScene() override;

    // Shows `document`: the bed from its profile, its items in their layers' colours. The selection
    // is kept by item index.
    void setDocument(const JobDocument &document);
    double bedWidth() const { return m_bedWidth; }
    double bedHeight() const { return m_bedHeight; }

    QList<JobItemGraphic *> graphics() const { return m_graphics; }
    JobItemGraphic *graphic(int index) const;
    QList<int> selectedIndices() const;
    void selectIndices(const QList<int> &indices);

    // Machine millimetres (Y up, origin bottom left) to scene and back.
    QPointF toScene(const QPointF &machine) const { return QPointF(machine.x(), m_bedHeight - machine.y()); }
    QPointF toMachine(const QPointF &scene) const { return QPointF(scene.x(), m_bedHeight - scene.y()); }
    // An item's rectangle on the scene.
    QRectF itemRect(const JobItem &item) const;

protected:
    void drawBackground(QPainter *painter, const QRectF &rect) override;

private:
    double m_bedWidth = 170;
    double m_bedHeight = 200;
    QList<JobItemGraphic *> m_graphics;
    QHash<QByteArray, JobItemLook> m_looks;
};

#endif
