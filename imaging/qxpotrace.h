// Our wrapper over libpotrace: traces the dark parts of a picture into closed outlines.
// Outlines come back as polygons in picture pixels (y down), each outer one with its holes.
#ifndef QXPOTRACE_H
#define QXPOTRACE_H

#include <QImage>
#include <QList>
#include <QPolygonF>

#include <vector>

class QxPotrace
{
public:
    // One dark region: its outer outline and the outlines of the holes directly inside it.
    // An island inside a hole is a Polygon of its own.
    struct Polygon
    {
        QPolygonF boundary;
        QList<QPolygonF> holes;
    };

    // Gray level below which a pixel counts as ink.
    static constexpr int DarkBelow = 128;
    // Alpha below which a pixel counts as paper, whatever its colour.
    static constexpr int OpaqueFrom = 128;

    QxPotrace();
    ~QxPotrace();
    QxPotrace(const QxPotrace &) = default;
    QxPotrace &operator=(const QxPotrace &) = default;

    // Points each curve segment is flattened into (at least 1).
    void setBezierPrecision(int points);
    int bezierPrecision() const { return m_precision; }

    // Traces the picture. On failure (no picture, tracer error) returns false and keeps
    // the outlines of the previous successful trace.
    bool trace(const QImage &image);

    QList<Polygon> polygons() const { return m_polygons; }

private:
    // Traces potrace's packed bitmap (rows of `dy` words) into m_polygons.
    bool traceMap(int w, int h, int dy, std::vector<unsigned long> *map);

    int m_precision;
    QList<Polygon> m_polygons;
};

#endif
