// Reads an SVG file into the shapes / paths / cubic points model of svgimage.h.
// XML comes from QXmlStreamReader; path data, shapes and transforms are done here.
#include "svgreader.h"

#include <QFile>
#include <QPair>
#include <QVector>
#include <QString>
#include <QXmlStreamReader>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace {

const double Pi = 3.14159265358979323846;
// Control-point distance of a quarter circle drawn as one cubic, for radius 1.
const double QuarterArcKappa = 0.5522847498307936;
const char *const SvgNamespace = "http://www.w3.org/2000/svg";
const double FloatMax = std::numeric_limits<float>::max();
const double FlatArcRatio = 1e9;

// x' = a x + c y + e, y' = b x + d y + f (the order of the SVG matrix() function).
struct Affine
{
    double a = 1, b = 0, c = 0, d = 1, e = 0, f = 0;

    // this after other: other is applied to the point first.
    Affine then(const Affine &o) const
    {
        Affine r;
        r.a = a * o.a + c * o.b;
        r.b = b * o.a + d * o.b;
        r.c = a * o.c + c * o.d;
        r.d = b * o.c + d * o.d;
        r.e = a * o.e + c * o.f + e;
        r.f = b * o.e + d * o.f + f;
        return r;
    }
    void map(double x, double y, double *ox, double *oy) const
    {
        *ox = a * x + c * y + e;
        *oy = b * x + d * y + f;
    }
};

// Walks the numbers of an attribute value. Separators are white space and commas.
class Scanner
{
public:
    // Keeps its own reference to the text, so a temporary can be handed in.
    explicit Scanner(const QByteArray &text)
        : m_text(text), m_p(m_text.constData()), m_end(m_text.constData() + m_text.size())
    {}

    bool atEnd()
    {
        skipSeparators();
        return m_p >= m_end;
    }
    char peek()
    {
        skipSeparators();
        return m_p < m_end ? *m_p : '\0';
    }
    char take()
    {
        m_commaAllowed = false;
        return m_p < m_end ? *m_p++ : '\0';
    }

    // A number in the SVG grammar; "1.5.5" reads as 1.5 then .5, "1e" stops before the e.
    bool number(double *out)
    {
        skipSeparators();
        const char *start = m_p;
        const char *p = m_p;
        if (p < m_end && (*p == '+' || *p == '-'))
            ++p;
        int digits = 0;
        while (p < m_end && isDigit(*p)) {
            ++p;
            ++digits;
        }
        if (p < m_end && *p == '.') {
            ++p;
            while (p < m_end && isDigit(*p)) {
                ++p;
                ++digits;
            }
        }
        if (digits == 0)
            return false;
        if (p < m_end && (*p == 'e' || *p == 'E')) {
            const char *q = p + 1;
            if (q < m_end && (*q == '+' || *q == '-'))
                ++q;
            if (q < m_end && isDigit(*q)) {
                while (q < m_end && isDigit(*q))
                    ++q;
                p = q;
            }
        }
        bool ok = false;
        // QByteArray's conversion ignores the C locale, so "1.5" reads the same everywhere.
        const double v = QByteArray::fromRawData(start, int(p - start)).toDouble(&ok);
        if (!ok || !std::isfinite(v))
            return false;
        m_p = p;
        m_commaAllowed = true;
        *out = v;
        return true;
    }

    // Arc flags are single characters and may be written without separators ("a1 1 0 01 5 5").
    bool flag(bool *out)
    {
        skipSeparators();
        if (m_p < m_end && (*m_p == '0' || *m_p == '1')) {
            *out = *m_p++ == '1';
            m_commaAllowed = true;
            return true;
        }
        return false;
    }

    // The unit right after the number just read, in lower case, with blanks allowed only after it;
    // false when a blank stands between the number and the unit.
    bool unit(QByteArray *out) const
    {
        QByteArray text(m_p, int(m_end - m_p));
        while (!text.isEmpty() && isBlank(text.back()))
            text.chop(1);
        if (!text.isEmpty() && isBlank(text.front()))
            return false;
        *out = text.toLower();
        return true;
    }

private:
    static bool isDigit(char ch) { return ch >= '0' && ch <= '9'; }
    static bool isBlank(char ch) { return ch == ' ' || ch == '\t' || ch == '\n' || ch == '\r' || ch == '\f'; }
    // Blanks, and one comma between two numbers: a comma before the first number of a list or
    // a command's arguments, or a second comma, is an error that ends the data.
    void skipSeparators()
    {
        while (m_p < m_end) {
            if (isBlank(*m_p)) {
                ++m_p;
            } else if (*m_p == ',' && m_commaAllowed) {
                m_commaAllowed = false;
                ++m_p;
            } else {
                break;
            }
        }
    }

    const QByteArray m_text;
    const char *m_p;
    const char *m_end;
    bool m_commaAllowed = false;
};

// Collects the subpaths of one element in user units, every segment as a cubic.
class PathBuilder
{
public:
    struct Sub
    {
        std::vector<double> pts;
        bool closed = false;
    };

    void moveTo(double x, double y)
    {
        finish();
        m_cur.pts = {x, y};
        m_open = true;
        m_sx = m_cx = x;
        m_sy = m_cy = y;
    }
    void cubicTo(double x1, double y1, double x2, double y2, double x, double y)
    {
        ensureOpen();
        m_cur.pts.insert(m_cur.pts.end(), {x1, y1, x2, y2, x, y});
        m_cx = x;
        m_cy = y;
    }
    // A straight line keeps its control points on itself, a third of the way from each end.
    void lineTo(double x, double y)
    {
        cubicTo(m_cx + (x - m_cx) / 3, m_cy + (y - m_cy) / 3, x - (x - m_cx) / 3, y - (y - m_cy) / 3, x, y);
    }
    void quadTo(double qx, double qy, double x, double y)
    {
        cubicTo(m_cx + 2.0 / 3 * (qx - m_cx), m_cy + 2.0 / 3 * (qy - m_cy), x + 2.0 / 3 * (qx - x),
                y + 2.0 / 3 * (qy - y), x, y);
    }
    void arcTo(double rx, double ry, double angleDeg, bool largeArc, bool sweep, double x, double y);
    void close()
    {
        if (!m_open)
            return;
        if (m_cx != m_sx || m_cy != m_sy)
            lineTo(m_sx, m_sy);
        m_cur.closed = true;
        finish();
        m_cx = m_sx;
        m_cy = m_sy;
    }
    // A subpath that never drew a segment (a lone moveto) is dropped.
    void finish()
    {
        if (m_open && m_cur.pts.size() > 2)
            m_subs.push_back(std::move(m_cur));
        m_cur = Sub();
        m_open = false;
    }

    double x() const { return m_cx; }
    double y() const { return m_cy; }
    std::vector<Sub> &subs()
    {
        finish();
        return m_subs;
    }

private:
    // After a Z the next drawing command starts a new subpath where the pen stands.
    void ensureOpen()
    {
        if (m_open)
            return;
        m_cur.pts = {m_cx, m_cy};
        m_open = true;
        m_sx = m_cx;
        m_sy = m_cy;
    }

    std::vector<Sub> m_subs;
    Sub m_cur;
    bool m_open = false;
    double m_sx = 0, m_sy = 0, m_cx = 0, m_cy = 0;
};

double vectorAngle(double ux, double uy, double vx, double vy)
{
    return std::atan2(ux * vy - uy * vx, ux * vx + uy * vy);
}

// Endpoint arc to centre form, then one cubic per quarter turn at most.
void PathBuilder::arcTo(double rx, double ry, double angleDeg, bool largeArc, bool sweep, double x, double y)
{
    const double x1 = m_cx, y1 = m_cy;
    if (x1 == x && y1 == y)
        return;
    rx = std::fabs(rx);
    ry = std::fabs(ry);
    // No radius, or one so large against the chord that the arc cannot be told from
    // a line (and its centre would be too far away to compute the curve precisely).
    const double chord = std::max(std::fabs(x - x1), std::fabs(y - y1));
    if (rx == 0 || ry == 0 || std::max(rx, ry) > chord * FlatArcRatio) {
        lineTo(x, y);
        return;
    }
    const double phi = angleDeg * Pi / 180;
    const double cosPhi = std::cos(phi), sinPhi = std::sin(phi);
    const double dx = (x1 - x) / 2, dy = (y1 - y) / 2;
    const double x1p = cosPhi * dx + sinPhi * dy;
    const double y1p = -sinPhi * dx + cosPhi * dy;
    const double lambda = (x1p * x1p) / (rx * rx) + (y1p * y1p) / (ry * ry);
    if (lambda > 1) {
        rx *= std::sqrt(lambda);
        ry *= std::sqrt(lambda);
    }
    const double num = rx * rx * ry * ry - rx * rx * y1p * y1p - ry * ry * x1p * x1p;
    const double den = rx * rx * y1p * y1p + ry * ry * x1p * x1p;
    double coef = den > 0 ? std::sqrt(std::max(0.0, num / den)) : 0;
    if (largeArc == sweep)
        coef = -coef;
    const double cxp = coef * rx * y1p / ry;
    const double cyp = -coef * ry * x1p / rx;
    const double cx = cosPhi * cxp - sinPhi * cyp + (x1 + x) / 2;
    const double cy = sinPhi * cxp + cosPhi * cyp + (y1 + y) / 2;
    const double ux = (x1p - cxp) / rx, uy = (y1p - cyp) / ry;
    const double vx = (-x1p - cxp) / rx, vy = (-y1p - cyp) / ry;
    const double theta1 = vectorAngle(1, 0, ux, uy);
    double delta = vectorAngle(ux, uy, vx, vy);
    if (!sweep && delta > 0)
        delta -= 2 * Pi;
    else if (sweep && delta < 0)
        delta += 2 * Pi;

    if (!std::isfinite(delta) || !std::isfinite(cx) || !std::isfinite(cy)) {
        lineTo(x, y);  // radii too large to work with: keep the end point at least
        return;
    }
    const int pieces = std::max(1, int(std::ceil(std::fabs(delta) / (Pi / 2) - 1e-9)));
    const double step = delta / pieces;
    const double k = 4.0 / 3.0 * std::tan(step / 4);
    auto onEllipse = [&](double ex, double ey, double *px, double *py) {
        *px = cx + rx * cosPhi * ex - ry * sinPhi * ey;
        *py = cy + rx * sinPhi * ex + ry * cosPhi * ey;
    };
    double a = theta1;
    for (int i = 0; i < pieces; ++i) {
        const double b = a + step;
        double c1x, c1y, c2x, c2y, ex, ey;
        onEllipse(std::cos(a) - k * std::sin(a), std::sin(a) + k * std::cos(a), &c1x, &c1y);
        onEllipse(std::cos(b) + k * std::sin(b), std::sin(b) - k * std::cos(b), &c2x, &c2y);
        if (i == pieces - 1) {
            ex = x;  // land exactly on the end point the data named
            ey = y;
        } else {
            onEllipse(std::cos(b), std::sin(b), &ex, &ey);
        }
        cubicTo(c1x, c1y, c2x, c2y, ex, ey);
        a = b;
    }
}

bool isCommand(char ch) { return ch != '\0' && std::strchr("MmLlHhVvCcSsQqTtAaZz", ch) != nullptr; }

// Path data: reads up to the first error and keeps what came before it.
void parsePathData(const QByteArray &data, PathBuilder *pb)
{
    Scanner s(data);
    char cmd = '\0';
    char previous = '\0';
    double lastCx = 0, lastCy = 0;  // last cubic or quadratic control point, for S and T
    bool started = false;
    while (!s.atEnd()) {
        if (isCommand(s.peek())) {
            cmd = s.take();
        } else if (cmd == '\0' || cmd == 'Z' || cmd == 'z') {
            return;  // numbers with no command before them
        }
        if (!started && cmd != 'M' && cmd != 'm')
            return;  // path data must begin with a moveto
        const bool rel = cmd >= 'a' && cmd <= 'z';
        const double ox = rel ? pb->x() : 0;
        const double oy = rel ? pb->y() : 0;
        double v[7];
        auto read = [&](int n) {
            for (int i = 0; i < n; ++i)
                if (!s.number(&v[i]))
                    return false;
            return true;
        };
        switch (cmd) {
        case 'M':
        case 'm':
            if (!read(2))
                return;
            pb->moveTo(ox + v[0], oy + v[1]);
            started = true;
            cmd = rel ? 'l' : 'L';  // further pairs are lines
            break;
        case 'L':
        case 'l':
            if (!read(2))
                return;
            pb->lineTo(ox + v[0], oy + v[1]);
            break;
        case 'H':
        case 'h':
            if (!read(1))
                return;
            pb->lineTo(ox + v[0], pb->y());
            break;
        case 'V':
        case 'v':
            if (!read(1))
                return;
            pb->lineTo(pb->x(), oy + v[0]);
            break;
        case 'C':
        case 'c':
            if (!read(6))
                return;
            pb->cubicTo(ox + v[0], oy + v[1], ox + v[2], oy + v[3], ox + v[4], oy + v[5]);
            lastCx = ox + v[2];
            lastCy = oy + v[3];
            break;
        case 'S':
        case 's': {
            if (!read(4))
                return;
            const bool smooth = std::strchr("CcSs", previous) != nullptr && previous != '\0';
            const double c1x = smooth ? 2 * pb->x() - lastCx : pb->x();
            const double c1y = smooth ? 2 * pb->y() - lastCy : pb->y();
            pb->cubicTo(c1x, c1y, ox + v[0], oy + v[1], ox + v[2], oy + v[3]);
            lastCx = ox + v[0];
            lastCy = oy + v[1];
            break;
        }
        case 'Q':
        case 'q':
            if (!read(4))
                return;
            pb->quadTo(ox + v[0], oy + v[1], ox + v[2], oy + v[3]);
            lastCx = ox + v[0];
            lastCy = oy + v[1];
            break;
        case 'T':
        case 't': {
            if (!read(2))
                return;
            const bool smooth = std::strchr("QqTt", previous) != nullptr && previous != '\0';
            const double qx = smooth ? 2 * pb->x() - lastCx : pb->x();
            const double qy = smooth ? 2 * pb->y() - lastCy : pb->y();
            pb->quadTo(qx, qy, ox + v[0], oy + v[1]);
            lastCx = qx;
            lastCy = qy;
            break;
        }
        case 'A':
        case 'a': {
            bool large = false, sweep = false;
            if (!read(3) || !s.flag(&large) || !s.flag(&sweep) || !s.number(&v[3]) || !s.number(&v[4]))
                return;
            pb->arcTo(v[0], v[1], v[2], large, sweep, ox + v[3], oy + v[4]);
            break;
        }
        case 'Z':
        case 'z':
            pb->close();
            break;
        default:
            return;
        }
        previous = cmd;
    }
}

// transform="translate(..) rotate(..) ..." - the list is applied right to left.
Affine parseTransform(const QByteArray &text)
{
    Affine result;
    int pos = 0;
    while (pos < text.size()) {
        const int open = text.indexOf('(', pos);
        const int close = open < 0 ? -1 : text.indexOf(')', open);
        if (close < 0)
            break;
        const QByteArray name = text.mid(pos, open - pos).replace(',', ' ').trimmed();
        Scanner s(text.mid(open + 1, close - open - 1));
        double v[6];
        int n = 0;
        while (n < 6 && s.number(&v[n]))
            ++n;
        Affine t;
        if (name == "matrix" && n == 6) {
            t.a = v[0];
            t.b = v[1];
            t.c = v[2];
            t.d = v[3];
            t.e = v[4];
            t.f = v[5];
        } else if (name == "translate" && n >= 1) {
            t.e = v[0];
            t.f = n >= 2 ? v[1] : 0;
        } else if (name == "scale" && n >= 1) {
            t.a = v[0];
            t.d = n >= 2 ? v[1] : v[0];
        } else if (name == "rotate" && n >= 1) {
            const double r = v[0] * Pi / 180;
            Affine rot;
            rot.a = std::cos(r);
            rot.b = std::sin(r);
            rot.c = -std::sin(r);
            rot.d = std::cos(r);
            if (n >= 3) {
                Affine to, back;
                to.e = v[1];
                to.f = v[2];
                back.e = -v[1];
                back.f = -v[2];
                t = to.then(rot).then(back);
            } else {
                t = rot;
            }
        } else if (name == "skewX" && n >= 1) {
            t.c = std::tan(v[0] * Pi / 180);
        } else if (name == "skewY" && n >= 1) {
            t.b = std::tan(v[0] * Pi / 180);
        } else {
            break;  // an unknown or malformed entry ends the list, as it would for a browser
        }
        result = result.then(t);
        pos = close + 1;
    }
    return result;
}

bool isHidden(const QXmlStreamAttributes &attrs)
{
    if (attrs.value(QLatin1String("display")).trimmed() == QLatin1String("none"))
        return true;
    const QString style = attrs.value(QLatin1String("style")).toString();
    for (const QString &decl : style.split(QLatin1Char(';'))) {
        const int colon = decl.indexOf(QLatin1Char(':'));
        if (colon > 0 && decl.left(colon).trimmed() == QLatin1String("display")
            && decl.mid(colon + 1).trimmed() == QLatin1String("none"))
            return true;
    }
    return false;
}

// Whose contents are only referenced, never drawn where they stand.
bool isNonRendering(const QStringRef &name)
{
    static const char *const names[] = {
        "defs",   "clipPath", "mask",  "marker", "pattern",  "symbol", "linearGradient", "radialGradient",
        "filter", "style",    "title", "desc",   "metadata", "text",   "image",          "foreignObject"};
    for (const char *n : names)
        if (name == QLatin1String(n))
            return true;
    return false;
}

// Lengths on the drawing elements are in user units, where a px is 1/96 in whatever the
// document's own size: 96 dpi for the absolute units, the font size for em and ex.
const double CssDpi = 96;
const double DefaultFontSize = 12;
const double ExPerEm = 0.52;
// Without the font's own figures: the cap height of a usual Latin face, the advance of a CJK
// ideograph (one em, as CSS asks when it is not known), and the "normal" line height.
const double CapPerEm = 0.7;
const double IdeographPerEm = 1;
const double LineHeightPerEm = 1.2;
// The viewport of a document that gives neither a size nor a viewBox, in CSS px.
const double DefaultViewportSide = 100;

// What a percentage of a length refers to.
enum LengthAxis { AxisX, AxisY, AxisDiagonal };

// The reference box for percentages (the viewBox, else the document's size) and the font
// size in force, both in user units.
struct LengthBase
{
    double x = 0, y = 0, width = 0, height = 0;
    double fontSize = DefaultFontSize;
    double rootFontSize = DefaultFontSize;  // for rlh
    // The document's viewport in CSS px, for vw, vh, vi, vb, vmin and vmax.
    double viewportWidth = DefaultViewportSide;
    double viewportHeight = DefaultViewportSide;
};

// User units (CSS px) per unit of a length; false for a unit CSS does not know.
bool unitFactor(const QByteArray &unit, const LengthBase &base, double *factor)
{
    const double vw = base.viewportWidth / 100, vh = base.viewportHeight / 100;
    const struct
    {
        const char *name;
        double factor;
    } units[] = {
        {"", 1},
        {"px", 1},
        {"pt", CssDpi / 72},
        {"pc", CssDpi / 6},
        {"mm", CssDpi / 25.4},
        {"cm", CssDpi / 2.54},
        {"q", CssDpi / 25.4 / 4},
        {"in", CssDpi},
        {"em", base.fontSize},
        {"ex", base.fontSize * ExPerEm},
        {"cap", base.fontSize * CapPerEm},
        {"ic", base.fontSize * IdeographPerEm},
        {"lh", base.fontSize * LineHeightPerEm},
        {"rlh", base.rootFontSize * LineHeightPerEm},
        {"vw", vw},
        {"vh", vh},
        {"vi", vw},  // the inline axis of horizontal text
        {"vb", vh},
        {"vmin", std::min(vw, vh)},
        {"vmax", std::max(vw, vh)},
    };
    for (const auto &u : units)
        if (unit == u.name) {
            *factor = u.factor;
            return true;
        }
    return false;
}

// "display: none; stroke-width: 2mm" as name/value pairs, in the order written.
QVector<QPair<QString, QString>> styleDeclarations(const QXmlStreamAttributes &attrs)
{
    QVector<QPair<QString, QString>> declarations;
    const QString style = attrs.value(QLatin1String("style")).toString();
    for (const QString &decl : style.split(QLatin1Char(';'))) {
        const int colon = decl.indexOf(QLatin1Char(':'));
        if (colon > 0)
            declarations.append({decl.left(colon).trimmed(), decl.mid(colon + 1).trimmed()});
    }
    return declarations;
}

// A property of an element: its style declaration wins over the attribute of that name.
class ElementProperties
{
public:
    ElementProperties(const QXmlStreamAttributes &attrs, const LengthBase &base)
        : m_attrs(attrs), m_style(styleDeclarations(attrs)), m_base(base)
    {}

    QString text(const char *name) const
    {
        for (int i = m_style.size() - 1; i >= 0; --i)
            if (m_style.at(i).first == QLatin1String(name))
                return m_style.at(i).second;
        return m_attrs.hasAttribute(QLatin1String(name)) ? m_attrs.value(QLatin1String(name)).toString() : QString();
    }
    // Every value given for a property, the one that counts first: the style's declarations from
    // the last, then the attribute. A value that does not parse is passed over for the next.
    QStringList values(const char *name) const
    {
        QStringList found;
        for (int i = m_style.size() - 1; i >= 0; --i)
            if (m_style.at(i).first == QLatin1String(name))
                found << m_style.at(i).second;
        if (m_attrs.hasAttribute(QLatin1String(name)))
            found << m_attrs.value(QLatin1String(name)).toString();
        return found;
    }
    // A length in user units; positions take percentages from the reference box's origin.
    // False when no value given parses: the property then has its initial value.
    bool lengthValue(const char *name, LengthAxis axis, bool position, double *out) const
    {
        for (const QString &value : values(name))
            if (toUserUnits(value.toLatin1(), axis, position, m_base, out))
                return true;
        return false;
    }
    double length(const char *name, LengthAxis axis, bool position, double fallback = 0) const
    {
        double v;
        return lengthValue(name, axis, position, &v) ? v : fallback;
    }

    static bool toUserUnits(const QByteArray &text, LengthAxis axis, bool position, const LengthBase &base, double *out)
    {
        Scanner s(text);
        double v;
        QByteArray unit;
        if (!s.number(&v) || !s.unit(&unit))
            return false;
        if (unit != "%") {
            double factor;
            if (!unitFactor(unit, base, &factor))
                return false;
            *out = v * factor;
            return true;
        }
        const double span = axis == AxisX   ? base.width
                            : axis == AxisY ? base.height
                                            : std::sqrt((base.width * base.width + base.height * base.height) / 2);
        const double origin = !position ? 0 : axis == AxisX ? base.x : axis == AxisY ? base.y : 0;
        *out = origin + v / 100 * span;
        return true;
    }

private:
    const QXmlStreamAttributes &m_attrs;
    QVector<QPair<QString, QString>> m_style;
    const LengthBase &m_base;
};

void ellipse(PathBuilder *pb, double cx, double cy, double rx, double ry)
{
    const double kx = rx * QuarterArcKappa, ky = ry * QuarterArcKappa;
    pb->moveTo(cx + rx, cy);
    pb->cubicTo(cx + rx, cy + ky, cx + kx, cy + ry, cx, cy + ry);
    pb->cubicTo(cx - kx, cy + ry, cx - rx, cy + ky, cx - rx, cy);
    pb->cubicTo(cx - rx, cy - ky, cx - kx, cy - ry, cx, cy - ry);
    pb->cubicTo(cx + kx, cy - ry, cx + rx, cy - ky, cx + rx, cy);
    pb->close();
}

void rect(PathBuilder *pb, const ElementProperties &props)
{
    const double x = props.length("x", AxisX, true), y = props.length("y", AxisY, true);
    const double w = props.length("width", AxisX, false), h = props.length("height", AxisY, false);
    if (!(w > 0 && h > 0))
        return;  // a rect without area is not drawn
    double rx = props.length("rx", AxisX, false, -1), ry = props.length("ry", AxisY, false, -1);
    if (rx < 0 && ry >= 0)
        rx = ry;
    if (ry < 0 && rx >= 0)
        ry = rx;
    rx = std::min(std::max(rx, 0.0), w / 2);
    ry = std::min(std::max(ry, 0.0), h / 2);
    if (rx <= 0 || ry <= 0) {
        pb->moveTo(x, y);
        pb->lineTo(x + w, y);
        pb->lineTo(x + w, y + h);
        pb->lineTo(x, y + h);
        pb->close();
        return;
    }
    const double kx = rx * QuarterArcKappa, ky = ry * QuarterArcKappa;
    pb->moveTo(x + rx, y);
    pb->lineTo(x + w - rx, y);
    pb->cubicTo(x + w - rx + kx, y, x + w, y + ry - ky, x + w, y + ry);
    pb->lineTo(x + w, y + h - ry);
    pb->cubicTo(x + w, y + h - ry + ky, x + w - rx + kx, y + h, x + w - rx, y + h);
    pb->lineTo(x + rx, y + h);
    pb->cubicTo(x + rx - kx, y + h, x, y + h - ry + ky, x, y + h - ry);
    pb->lineTo(x, y + ry);
    pb->cubicTo(x, y + ry - ky, x + rx - kx, y, x + rx, y);
    pb->close();
}

void polyline(PathBuilder *pb, const QXmlStreamAttributes &attrs, bool closed)
{
    Scanner s(attrs.value(QLatin1String("points")).toLatin1());
    double x, y;
    bool first = true;
    while (s.number(&x) && s.number(&y)) {
        if (first)
            pb->moveTo(x, y);
        else
            pb->lineTo(x, y);
        first = false;
    }
    if (closed)
        pb->close();
}

// Fills `pb` for a drawing element; false for any other element.
bool buildShape(const QStringRef &name, const QXmlStreamAttributes &attrs, const ElementProperties &props,
                PathBuilder *pb)
{
    if (name == QLatin1String("path")) {
        parsePathData(attrs.value(QLatin1String("d")).toLatin1(), pb);
    } else if (name == QLatin1String("rect")) {
        rect(pb, props);
    } else if (name == QLatin1String("circle")) {
        const double r = props.length("r", AxisDiagonal, false);
        if (r > 0)
            ellipse(pb, props.length("cx", AxisX, true), props.length("cy", AxisY, true), r, r);
    } else if (name == QLatin1String("ellipse")) {
        // One radius given alone stands for both; a negative one, or one that does not parse,
        // counts as not given.
        double rx = 0, ry = 0;
        const bool hasRx = props.lengthValue("rx", AxisX, false, &rx) && rx >= 0;
        const bool hasRy = props.lengthValue("ry", AxisY, false, &ry) && ry >= 0;
        if (!hasRx)
            rx = hasRy ? ry : 0;
        if (!hasRy)
            ry = hasRx ? rx : 0;
        if (rx > 0 && ry > 0)
            ellipse(pb, props.length("cx", AxisX, true), props.length("cy", AxisY, true), rx, ry);
    } else if (name == QLatin1String("line")) {
        pb->moveTo(props.length("x1", AxisX, true), props.length("y1", AxisY, true));
        pb->lineTo(props.length("x2", AxisX, true), props.length("y2", AxisY, true));
    } else if (name == QLatin1String("polyline")) {
        polyline(pb, attrs, false);
    } else if (name == QLatin1String("polygon")) {
        polyline(pb, attrs, true);
    } else {
        return false;
    }
    return true;
}

// Size of one unit in px at the given resolution; 0 for a unit we cannot place (%).
double unitInPx(const QByteArray &unit, double dpi)
{
    if (unit.isEmpty() || unit == "px")
        return 1;
    if (unit == "pt")
        return dpi / 72;
    if (unit == "pc")
        return dpi / 6;
    if (unit == "mm")
        return dpi / 25.4;
    if (unit == "cm")
        return dpi / 2.54;
    if (unit == "q")
        return dpi / 25.4 / 4;
    if (unit == "in")
        return dpi;
    if (unit == "em")
        return 16;
    if (unit == "ex")
        return 8;
    return 0;
}

// A width or height attribute in px; false when missing, relative, negative or not parsed,
// which all leave the size to the viewBox.
bool lengthInPx(const QStringRef &text, double dpi, double *px)
{
    Scanner s(text.toLatin1());
    double v;
    QByteArray unit;
    if (!s.number(&v) || v < 0 || !s.unit(&unit))
        return false;
    const double perUnit = unitInPx(unit, dpi);
    if (perUnit <= 0)
        return false;
    *px = v * perUnit;
    return true;
}

// The document's width and height at DPI; a side not given follows the other through the
// viewBox's proportions (VB, when there is one). False for a side still unknown.
void documentSize(const QXmlStreamAttributes &attrs, double dpi, const double *vb, double *w, double *h, bool *hasW,
                  bool *hasH)
{
    *hasW = lengthInPx(attrs.value(QLatin1String("width")), dpi, w);
    *hasH = lengthInPx(attrs.value(QLatin1String("height")), dpi, h);
    if (!vb)
        return;
    if (*hasW && !*hasH) {
        *h = *w * vb[3] / vb[2];
        *hasH = true;
    } else if (*hasH && !*hasW) {
        *w = *h * vb[2] / vb[3];
        *hasW = true;
    }
}

// Maps user units to px through width, height, viewBox and preserveAspectRatio.
struct Viewport
{
    Affine toPx;
    bool hasViewBox = false;
    double widthPx = 0;
    double heightPx = 0;
    LengthBase box;  // what percentages of the elements' lengths refer to
};

Viewport readViewport(const QXmlStreamAttributes &attrs, double dpi)
{
    Viewport vp;
    Scanner s(attrs.value(QLatin1String("viewBox")).toLatin1());
    double vb[4];
    const bool hasVb =
        s.number(&vb[0]) && s.number(&vb[1]) && s.number(&vb[2]) && s.number(&vb[3]) && vb[2] > 0 && vb[3] > 0;
    double w = 0, h = 0;
    bool hasW = false, hasH = false;
    documentSize(attrs, dpi, hasVb ? vb : nullptr, &w, &h, &hasW, &hasH);
    // The same in CSS px, for the viewport units of the elements' lengths.
    double cssW = 0, cssH = 0;
    bool hasCssW = false, hasCssH = false;
    documentSize(attrs, CssDpi, hasVb ? vb : nullptr, &cssW, &cssH, &hasCssW, &hasCssH);
    vp.box.viewportWidth = hasCssW ? cssW : hasVb ? vb[2] : DefaultViewportSide;
    vp.box.viewportHeight = hasCssH ? cssH : hasVb ? vb[3] : DefaultViewportSide;
    if (!hasVb) {
        vp.widthPx = hasW ? w : 0;
        vp.heightPx = hasH ? h : 0;
        vp.box.width = vp.widthPx;
        vp.box.height = vp.heightPx;
        return vp;  // user units are px
    }
    vp.hasViewBox = true;
    vp.box.x = vb[0];
    vp.box.y = vb[1];
    vp.box.width = vb[2];
    vp.box.height = vb[3];
    vp.widthPx = hasW ? w : vb[2];
    vp.heightPx = hasH ? h : vb[3];
    double sx = vp.widthPx / vb[2];
    double sy = vp.heightPx / vb[3];
    double tx = 0, ty = 0;
    const QStringList par =
        attrs.value(QLatin1String("preserveAspectRatio")).toString().simplified().split(QLatin1Char(' '));
    const QString align = par.value(0);
    if (align != QLatin1String("none")) {
        const bool slice = par.contains(QLatin1String("slice"));
        const double k = slice ? std::max(sx, sy) : std::min(sx, sy);
        const double freeX = vp.widthPx - vb[2] * k;
        const double freeY = vp.heightPx - vb[3] * k;
        const bool minX = align.startsWith(QLatin1String("xMin")), maxX = align.startsWith(QLatin1String("xMax"));
        const bool minY = align.endsWith(QLatin1String("YMin")), maxY = align.endsWith(QLatin1String("YMax"));
        tx = minX ? 0 : maxX ? freeX : freeX / 2;
        ty = minY ? 0 : maxY ? freeY : freeY / 2;
        sx = sy = k;
    }
    vp.toPx.a = sx;
    vp.toPx.d = sy;
    vp.toPx.e = tx - vb[0] * sx;
    vp.toPx.f = ty - vb[1] * sy;
    return vp;
}

struct Frame
{
    Affine m;
    bool skip = false;
    double fontSize = DefaultFontSize;  // user units, inherited
    double strokeWidth = 1;             // user units, inherited
    bool evenOdd = false;               // fill-rule, inherited
};

// The font size and stroke width an element sets for itself and its children.
void inheritLengths(const ElementProperties &props, const LengthBase &base, Frame *f)
{
    // A value that does not parse, or a negative one, is passed over for the next one given.
    double v;
    for (const QString &size : props.values("font-size")) {
        if (size.trimmed().endsWith(QLatin1Char('%'))) {
            if (ElementProperties::toUserUnits(size.trimmed().chopped(1).toLatin1(), AxisDiagonal, false, base, &v)
                && v >= 0) {
                f->fontSize = f->fontSize * v / 100;
                break;
            }
        } else if (ElementProperties::toUserUnits(size.toLatin1(), AxisDiagonal, false, base, &v) && v >= 0) {
            f->fontSize = v;
            break;
        }
    }
    LengthBase sized = base;
    sized.fontSize = f->fontSize;
    for (const QString &width : props.values("stroke-width"))
        if (ElementProperties::toUserUnits(width.toLatin1(), AxisDiagonal, false, sized, &v) && v >= 0) {
            f->strokeWidth = v;
            break;
        }
    // Any other value (inherit, or a word nobody knows) keeps the parent's rule.
    const QString rule = props.text("fill-rule");
    if (rule == QLatin1String("evenodd"))
        f->evenOdd = true;
    else if (rule == QLatin1String("nonzero"))
        f->evenOdd = false;
}

}  // namespace

SvgImage *SvgReader::parseFromFile(const char *path, const char *units, float dpi)
{
    if (!path)
        return nullptr;
    QFile file(QFile::decodeName(QByteArray(path)));
    if (!file.open(QIODevice::ReadOnly))
        return nullptr;
    return parse(file.readAll(), units, dpi);
}

SvgImage *SvgReader::parse(const QByteArray &document, const char *units, float dpi)
{
    const double unitPx = unitInPx(QByteArray(units ? units : "px"), dpi);
    if (!(unitPx > 0))
        return nullptr;

    QXmlStreamReader xml(document);
    std::vector<Frame> stack;  // explicit stack: deep nesting costs memory, not call depth
    std::vector<PathBuilder::Sub> collected;
    std::vector<size_t> shapeEnds;  // end index into `collected` for each shape
    std::vector<Affine> shapeTransforms;
    std::vector<double> shapeStrokes;
    std::vector<bool> shapeEvenOdd;
    Viewport vp;
    bool sawRoot = false;

    while (!xml.atEnd()) {
        const QXmlStreamReader::TokenType token = xml.readNext();
        if (token == QXmlStreamReader::EndElement) {
            if (!stack.empty())
                stack.pop_back();
            continue;
        }
        if (token != QXmlStreamReader::StartElement)
            continue;
        const QStringRef name = xml.name();
        const QXmlStreamAttributes attrs = xml.attributes();
        const QStringRef ns = xml.namespaceUri();
        const bool svgElement = ns.isEmpty() || ns == QLatin1String(SvgNamespace);
        if (!sawRoot) {
            if (name != QLatin1String("svg") || !svgElement)
                return nullptr;
            sawRoot = true;
            vp = readViewport(attrs, dpi);
            Frame root;
            root.skip = isHidden(attrs);
            const ElementProperties props(attrs, vp.box);
            root.m = parseTransform(props.text("transform").toLatin1());
            inheritLengths(props, vp.box, &root);
            vp.box.rootFontSize = root.fontSize;
            stack.push_back(root);
            continue;
        }
        Frame f = stack.empty() ? Frame() : stack.back();
        if (!f.skip && (!svgElement || isHidden(attrs) || isNonRendering(name)))
            f.skip = true;
        if (!f.skip) {
            LengthBase base = vp.box;
            base.fontSize = f.fontSize;
            inheritLengths(ElementProperties(attrs, base), base, &f);
            base.fontSize = f.fontSize;
            const ElementProperties props(attrs, base);
            f.m = f.m.then(parseTransform(props.text("transform").toLatin1()));
            PathBuilder pb;
            if (buildShape(name, attrs, props, &pb)) {
                std::vector<PathBuilder::Sub> &subs = pb.subs();
                if (!subs.empty()) {
                    for (PathBuilder::Sub &sub : subs)
                        collected.push_back(std::move(sub));
                    shapeEnds.push_back(collected.size());
                    shapeTransforms.push_back(f.m);
                    shapeStrokes.push_back(f.strokeWidth);
                    shapeEvenOdd.push_back(f.evenOdd);
                }
            }
        }
        stack.push_back(f);
    }
    if (xml.hasError() || !sawRoot)
        return nullptr;

    // User units -> px -> the requested units, in single precision at the end.
    const double toUnits = 1.0 / unitPx;
    const double width = vp.widthPx * toUnits;
    const double height = vp.heightPx * toUnits;
    // A document size no float holds is as broken as such a coordinate.
    if (!(std::fabs(width) <= FloatMax && std::fabs(height) <= FloatMax))
        return nullptr;
    SvgImage *image = new SvgImage;
    image->width = float(width);
    image->height = float(height);
    image->shapes.resize(shapeEnds.size());
    float minX = std::numeric_limits<float>::max(), minY = minX;
    size_t begin = 0;
    bool finite = true;
    for (size_t si = 0; si < shapeEnds.size(); ++si) {
        const Affine m = vp.toPx.then(shapeTransforms[si]);
        SvgShape &shape = image->shapes[si];
        // Scaled by the transform's mean scale, as a uniform pen would be.
        shape.strokeWidth = float(shapeStrokes[si] * std::sqrt(std::fabs(m.a * m.d - m.b * m.c)) * toUnits);
        shape.evenOdd = shapeEvenOdd[si];
        for (size_t k = begin; k < shapeEnds[si]; ++k) {
            const PathBuilder::Sub &sub = collected[k];
            SvgPath path;
            path.closed = sub.closed;
            path.pts.resize(sub.pts.size());
            for (size_t i = 0; i + 1 < sub.pts.size(); i += 2) {
                double x, y;
                m.map(sub.pts[i], sub.pts[i + 1], &x, &y);
                x *= toUnits;
                y *= toUnits;
                if (!(std::fabs(x) <= FloatMax && std::fabs(y) <= FloatMax)) {
                    finite = false;
                    x = y = 0;
                }
                path.pts[i] = float(x);
                path.pts[i + 1] = float(y);
                minX = std::min(minX, path.pts[i]);
                minY = std::min(minY, path.pts[i + 1]);
            }
            shape.paths.push_back(std::move(path));
        }
        begin = shapeEnds[si];
    }
    if (!finite) {
        delete image;
        return nullptr;
    }
    if (!vp.hasViewBox && !image->shapes.empty()) {
        for (SvgShape &shape : image->shapes)
            for (SvgPath &path : shape.paths)
                for (size_t i = 0; i + 1 < path.pts.size(); i += 2) {
                    // Points far apart on both sides of 0 can end further from the origin
                    // than a float reaches.
                    const double x = double(path.pts[i]) - minX;
                    const double y = double(path.pts[i + 1]) - minY;
                    finite = finite && x <= FloatMax && y <= FloatMax;
                    path.pts[i] = float(x);
                    path.pts[i + 1] = float(y);
                }
        if (!finite) {
            delete image;
            return nullptr;
        }
    }
    return image;
}

void SvgReader::release(SvgImage *image) { delete image; }
