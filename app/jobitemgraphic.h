// One item of the job on the layout scene: its look in its layer's colour inside its rectangle, a red
// outline when it leaves the bed, and a dashed frame when selected. Scene units are millimetres with
// Y down; the item knows its index in the document.
#ifndef JOBITEMGRAPHIC_H
#define JOBITEMGRAPHIC_H

#include "jobitemlook.h"

#include <QGraphicsItem>

class JobItemGraphic : public QGraphicsItem
{
public:
    JobItemGraphic(int index, const JobItemLook &look, double width, double height);

    int index() const { return m_index; }
    void setOutside(bool outside);
    bool isOutside() const { return m_outside; }
    // The size the look is stretched to, while a resize is dragged.
    void setSize(double width, double height);
    const JobItemLook &look() const { return m_look; }

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

private:
    int m_index;
    JobItemLook m_look;
    double m_lookWidth, m_lookHeight;  // the size the look was made for
    double m_width, m_height;
    bool m_outside = false;
};

#endif
