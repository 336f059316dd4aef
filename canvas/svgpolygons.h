// Outline geometry of a loaded drawing, reported in millimetres of the work area
// to whoever follows the canvas.
#ifndef SVGPOLYGONS_H
#define SVGPOLYGONS_H

#include <QObject>
#include <QRectF>
#include <QVector>
#include <QPolygonF>

class SvgPolygons : public QObject
{
    Q_OBJECT
public:
    explicit SvgPolygons(QObject *parent = nullptr);

    // Replaces the outlines and reports their common bounding rectangle.
    void setPolygons(const QVector<QPolygonF> &polygons);
    QVector<QPolygonF> polygons() const { return m_polygons; }
    // Bounding rectangle of every point of every outline; empty when there is none.
    QRectF bounds() const;

signals:
    void SigRect(QRectF rect);

private:
    QVector<QPolygonF> m_polygons;
};

#endif
