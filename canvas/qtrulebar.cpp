// Ruler strip beside the canvas view; it follows the mouse but draws nothing,
// so the view keeps it hidden.
#include "qtrulebar.h"

#include <QFont>
#include <QPainter>

QtRuleBar::QtRuleBar(Qt::Orientation orientation, QAbstractScrollArea *view, QWidget *parent)
    : QWidget(parent), m_orientation(orientation), m_cursorPos(0, 0), m_background(255, 255, 255, 255), m_view(view)
{
    QFont labelFont = font();
    labelFont.setWeight(QFont::Normal);
    labelFont.setPixelSize(LabelPixelSize);
    setFont(labelFont);
}

void QtRuleBar::setCursorPos(const QPoint &pos)
{
    m_cursorPos = pos;
    update();
}

void QtRuleBar::paintEvent(QPaintEvent *)
{
    // No scale is drawn: the canvas shows its extents with labels instead.
    QPainter painter(this);
}
