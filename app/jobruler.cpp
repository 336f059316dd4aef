// A ruler beside the job's layout view.
#include "jobruler.h"

#include "joblayoutscene.h"
#include "joblayoutview.h"

#include <QPainter>

#include <cmath>

JobRuler::JobRuler(JobLayoutView *view, Qt::Orientation orientation, QWidget *parent)
    : QWidget(parent), m_view(view), m_orientation(orientation)
{}

double JobRuler::labelStep(double pixelsPerMm)
{
    for (double step : {1.0, 2.0, 5.0, 10.0, 20.0, 50.0, 100.0, 200.0, 500.0})
        if (step * pixelsPerMm >= 40)
            return step;
    return 1000;
}

void JobRuler::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x2b, 0x30, 0x35));
    painter.setPen(QColor(0xc8, 0xd0, 0xd8));
    QFont font = painter.font();
    font.setPixelSize(9);
    painter.setFont(font);

    const bool across = m_orientation == Qt::Horizontal;
    const double perMm = m_view->zoom();
    const double step = labelStep(perMm);
    const double tick = step / 5;
    const int length = across ? width() : height();
    // The machine coordinate at both ends of the ruler.
    const QPointF first = m_view->machineAt(QPoint(0, 0));
    const QPointF last = m_view->machineAt(across ? QPoint(length, 0) : QPoint(0, length));
    const double from = across ? first.x() : last.y();
    const double to = across ? last.x() : first.y();
    const int thickness = across ? height() : width();
    for (double mm = std::floor(from / tick) * tick; mm <= to; mm += tick) {
        const QPoint at = m_view->mapFromScene(m_view->layoutScene()->toScene(QPointF(mm, mm)));
        const int pos = across ? at.x() : at.y();
        const bool labelled = std::abs(std::remainder(mm, step)) < tick / 10;
        const int size = labelled ? thickness / 2 : thickness / 5;
        if (across)
            painter.drawLine(pos, thickness - size, pos, thickness);
        else
            painter.drawLine(thickness - size, pos, thickness, pos);
        if (!labelled)
            continue;
        const QString text = QString::number(std::round(mm));
        if (across) {
            painter.drawText(pos + 2, 10, text);
        } else {
            painter.save();
            painter.translate(10, pos - 2);
            painter.rotate(-90);
            painter.drawText(0, 0, text);
            painter.restore();
        }
    }
}
