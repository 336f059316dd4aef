// The square where the two rulers of the canvas view meet; it stays visible
// at the view's top-left corner and draws nothing.
#include "qtcornerbox.h"

#include <QPainter>

QtCornerBox::QtCornerBox(QWidget *parent) : QWidget(parent) {}

void QtCornerBox::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setPen(Qt::DashLine);
}
