// SVG path text of closed polygons, byte for byte as the SVG generator writes a polygon:
// "M x,y L x,y ..." back to the start, numbers to six significant digits.
#ifndef SVGPATHTEXT_H
#define SVGPATHTEXT_H

#include <QByteArray>
#include <QPainterPath>
#include <QPolygonF>

class SvgPathText
{
public:
    // Whether the polygon can be written here: three points or more, all of them finite.
    static bool fits(const QPolygonF &polygon);
    // One "<path .../>" line of the polygon.
    static QByteArray path(const QPolygonF &polygon);
    // A number as the generator's text stream writes it (%g with six digits).
    static QByteArray number(double value);

    void append(const char *data, int size) { m_bytes.append(data, size); }
    void appendPath(const QPolygonF &polygon);
    const QByteArray &bytes() const { return m_bytes; }

private:
    void appendNumber(double value);

    QByteArray m_bytes;
    QPainterPath m_outline;  // kept from path to path for its storage
};

#endif
