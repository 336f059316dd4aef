// Outline geometry of a loaded drawing, reported in millimetres of the work area
// to whoever follows the canvas.
#include "svgpolygons.h"

SvgPolygons::SvgPolygons(QObject *parent) : QObject(parent) {}

void SvgPolygons::setPolygons(const QVector<QPolygonF> &polygons)
{
    m_polygons = polygons;
    emit SigRect(bounds());
}

QRectF SvgPolygons::bounds() const
{
    bool any = false;
    double left = 0, top = 0, right = 0, bottom = 0;
    for (const QPolygonF &polygon : m_polygons) {
        for (const QPointF &p : polygon) {
            if (!any) {
                left = right = p.x();
                top = bottom = p.y();
                any = true;
                continue;
            }
            left = qMin(left, p.x());
            right = qMax(right, p.x());
            top = qMin(top, p.y());
            bottom = qMax(bottom, p.y());
        }
    }
    if (!any)
        return QRectF();
    return QRectF(QPointF(left, top), QPointF(right, bottom));
}
