// SVG path text of closed polygons, byte for byte as the SVG generator writes a polygon:
// "M x,y L x,y ..." back to the start, numbers to six significant digits.
#include "svgpathtext.h"

#include <QPainterPath>
#include <QString>

#include <cmath>
#include <cstring>

namespace {

const char PathStart[] = "<path vector-effect=\"none\" fill-rule=\"evenodd\" d=\"";
const char PathEnd[] = "\"/>\n";
const int Digits = 6;
// Distance from a rounding tie below which the library's own formatting decides.
const double TieMargin = 1e-6;

// Six significant digits of `value` in the generator's form, or 0 when the value lies
// outside what is done here (exponent form, negative zero, a near tie): 1e-4 <= |v| < 1e5
// is printed without an exponent, and there value * 10^k is exact to far better than the
// margin, so rounding it here gives the library's digits.
int formatShort(double value, char *out)
{
    static const double Scale[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};
    if (value == 0 && !std::signbit(value)) {
        out[0] = '0';
        return 1;
    }
    const double magnitude = std::fabs(value);
    if (!(magnitude >= 1e-4 && magnitude < 1e5))
        return 0;
    int exponent = magnitude >= 1e4    ? 4
                   : magnitude >= 1e3  ? 3
                   : magnitude >= 1e2  ? 2
                   : magnitude >= 1e1  ? 1
                   : magnitude >= 1    ? 0
                   : magnitude >= 1e-1 ? -1
                   : magnitude >= 1e-2 ? -2
                   : magnitude >= 1e-3 ? -3
                                       : -4;
    const double scaled = magnitude * Scale[Digits - 1 - exponent];
    int digits = int(scaled);  // 100000 .. 999999
    const double fraction = scaled - digits;
    if (std::fabs(fraction - 0.5) < TieMargin)
        return 0;
    digits += fraction > 0.5 ? 1 : 0;
    if (digits >= 1000000) {  // rounded up to the next power of ten
        digits /= 10;
        ++exponent;
    }
    static const char Pairs[] = "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
                                "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
                                "8081828384858687888990919293949596979899";
    char d[Digits];
    const int high = digits / 10000, middle = digits / 100 % 100, low = digits % 100;
    d[0] = char('0' + high / 10);
    d[1] = char('0' + high % 10);
    memcpy(d + 2, Pairs + 2 * middle, 2);
    memcpy(d + 4, Pairs + 2 * low, 2);
    int last = Digits - 1;                               // last digit kept: trailing zeros after the point go
    const int point = exponent >= 0 ? exponent + 1 : 0;  // digits before the point
    while (last >= point && d[last] == '0')
        --last;
    int n = 0;
    if (value < 0)
        out[n++] = '-';
    if (exponent >= 0) {
        for (int i = 0; i < point; ++i)
            out[n++] = d[i];
        if (last >= point) {
            out[n++] = '.';
            for (int i = point; i <= last; ++i)
                out[n++] = d[i];
        }
    } else {
        out[n++] = '0';
        out[n++] = '.';
        for (int i = 0; i < -exponent - 1; ++i)
            out[n++] = '0';
        for (int i = 0; i <= last; ++i)
            out[n++] = d[i];
    }
    return n;
}

}  // namespace

bool SvgPathText::fits(const QPolygonF &polygon)
{
    if (polygon.size() < 3)
        return false;
    for (const QPointF &p : polygon) {
        if (!std::isfinite(p.x()) || !std::isfinite(p.y()))
            return false;
    }
    return true;
}

QByteArray SvgPathText::path(const QPolygonF &polygon)
{
    SvgPathText text;
    text.appendPath(polygon);
    return text.bytes();
}

QByteArray SvgPathText::number(double value)
{
    SvgPathText text;
    text.appendNumber(value);
    return text.bytes();
}

void SvgPathText::appendNumber(double value)
{
    char buffer[16];
    const int n = formatShort(value, buffer);
    if (n > 0)
        m_bytes.append(buffer, n);
    else
        m_bytes.append(QString::number(value, 'g', Digits).toLatin1());
}

void SvgPathText::appendPath(const QPolygonF &polygon)
{
    // The path is built as the generator builds it, so that repeated points and a last
    // point next to the first are treated the same way.
    QPainterPath &outline = m_outline;
    outline.clear();
    outline.reserve(polygon.size() + 1);
    outline.moveTo(polygon.first());
    for (int i = 1; i < polygon.size(); ++i)
        outline.lineTo(polygon.at(i));
    outline.closeSubpath();
    // Written straight into the array: room for the longest short form of each point.
    const int MaxPointText = 2 + 2 * 16;
    const int count = outline.elementCount();
    int size = m_bytes.size();
    m_bytes.resize(size + int(sizeof PathStart) + count * MaxPointText + int(sizeof PathEnd));
    char *out = m_bytes.data();
    memcpy(out + size, PathStart, sizeof PathStart - 1);
    size += int(sizeof PathStart) - 1;
    for (int i = 0; i < count; ++i) {
        const QPainterPath::Element &e = outline.elementAt(i);
        if (i > 0)
            out[size++] = ' ';
        out[size++] = e.isMoveTo() ? 'M' : 'L';
        int n = formatShort(e.x, out + size);
        if (n == 0)
            break;
        size += n;
        out[size++] = ',';
        n = formatShort(e.y, out + size);
        if (n == 0)
            break;
        size += n;
        if (i == count - 1) {
            memcpy(out + size, PathEnd, sizeof PathEnd - 1);
            m_bytes.resize(size + int(sizeof PathEnd) - 1);
            return;
        }
    }
    // A number in the library's long form somewhere: write the whole path the slow way.
    m_bytes.resize(int(m_bytes.size() - (sizeof PathStart + count * MaxPointText + sizeof PathEnd)));
    m_bytes.append(PathStart, int(sizeof PathStart) - 1);
    for (int i = 0; i < count; ++i) {
        const QPainterPath::Element &e = outline.elementAt(i);
        if (i > 0)
            m_bytes.append(' ');
        m_bytes.append(e.isMoveTo() ? 'M' : 'L');
        appendNumber(e.x);
        m_bytes.append(',');
        appendNumber(e.y);
    }
    m_bytes.append(PathEnd, int(sizeof PathEnd) - 1);
}
