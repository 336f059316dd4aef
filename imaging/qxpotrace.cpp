// Our wrapper over libpotrace: traces the dark parts of a picture into closed outlines.
// Builds potrace's packed bitmap, runs the tracer and flattens its Bezier curves.
#include "qxpotrace.h"

#include <potracelib.h>

#include <climits>
#include <memory>
#include <vector>

namespace {

constexpr int DefaultPrecision = 10;
constexpr int WordBits = int(sizeof(potrace_word) * CHAR_BIT);
constexpr potrace_word TopBit = potrace_word(1) << (WordBits - 1);

struct ParamDeleter
{
    void operator()(potrace_param_t *p) const { potrace_param_free(p); }
};
struct StateDeleter
{
    void operator()(potrace_state_t *s) const { potrace_state_free(s); }
};

QPointF toPoint(const potrace_dpoint_t &p) { return QPointF(p.x, p.y); }

QPointF bezierAt(const potrace_dpoint_t &p0, const potrace_dpoint_t &p1, const potrace_dpoint_t &p2,
                 const potrace_dpoint_t &p3, double t)
{
    const double u = 1.0 - t;
    const double a = u * u * u, b = 3 * u * u * t, c = 3 * u * t * t, d = t * t * t;
    return QPointF(a * p0.x + b * p1.x + c * p2.x + d * p3.x, a * p0.y + b * p1.y + c * p2.y + d * p3.y);
}

// A closed curve as a polygon: a corner adds its vertex and end point, a curve segment
// `precision` points ending on its end point.
QPolygonF flatten(const potrace_curve_t &curve, int precision)
{
    QPolygonF out;
    if (curve.n <= 0)
        return out;
    out.reserve(curve.n * precision);
    potrace_dpoint_t start = curve.c[curve.n - 1][2];
    for (int i = 0; i < curve.n; ++i) {
        const potrace_dpoint_t *c = curve.c[i];
        if (curve.tag[i] == POTRACE_CORNER) {
            out << toPoint(c[1]) << toPoint(c[2]);
        } else {
            for (int k = 1; k <= precision; ++k)
                out << bezierAt(start, c[0], c[1], c[2], double(k) / precision);
        }
        start = c[2];
    }
    return out;
}

}  // namespace

QxPotrace::QxPotrace() : m_precision(DefaultPrecision) {}

QxPotrace::~QxPotrace() = default;

void QxPotrace::setBezierPrecision(int points) { m_precision = qMax(1, points); }

namespace {

// A one-bit picture packed straight into potrace's words, eight pixels a byte, without a
// 32-bit copy: each of its two colours is ink or paper by the same rule as a pixel.
// False for other pictures, and for a palette that does not hold both entries.
bool packMono(const QImage &image, std::vector<potrace_word> *map, int dy)
{
    if ((image.format() != QImage::Format_Mono && image.format() != QImage::Format_MonoLSB) || image.colorCount() != 2)
        return false;
    auto ink = [](QRgb c) { return qAlpha(c) >= QxPotrace::OpaqueFrom && qGray(c) < QxPotrace::DarkBelow; };
    const bool ink0 = ink(image.color(0)), ink1 = ink(image.color(1));
    const bool lsbFirst = image.format() == QImage::Format_MonoLSB;
    const int w = image.width();
    const int bytesPerRow = (w + 7) / 8;
    const int bytesPerWord = WordBits / 8;
    for (int y = 0; y < image.height(); ++y) {
        const uchar *row = image.constScanLine(y);
        potrace_word *bits = map->data() + size_t(y) * size_t(dy);
        for (int word = 0; word < dy; ++word) {
            potrace_word value = 0;
            for (int b = 0; b < bytesPerWord; ++b) {
                const int index = word * bytesPerWord + b;
                uchar byte = index < bytesPerRow ? row[index] : 0;
                if (lsbFirst) {
                    byte = uchar(((byte * 0x0802u & 0x22110u) | (byte * 0x8020u & 0x88440u)) * 0x10101u >> 16);
                }
                value = (value << 8) | byte;
            }
            // Bits set for colour 1; ink is the bits of the ink colour.
            value = ink1 ? (ink0 ? ~potrace_word(0) : value) : (ink0 ? ~value : 0);
            const int end = (word + 1) * WordBits;
            if (end > w)
                value &= ~potrace_word(0) << (end - w);  // past the last pixel stays paper
            bits[word] = value;
        }
    }
    return true;
}

}  // namespace

bool QxPotrace::trace(const QImage &image)
{
    if (image.isNull())
        return false;
    const int monoDy = (image.width() + WordBits - 1) / WordBits;
    std::vector<potrace_word> monoMap(size_t(monoDy) * size_t(image.height()), 0);
    if (packMono(image, &monoMap, monoDy))
        return traceMap(image.width(), image.height(), monoDy, &monoMap);
    monoMap = std::vector<potrace_word>();
    const QImage argb = (image.format() == QImage::Format_ARGB32 || image.format() == QImage::Format_RGB32)
                            ? image
                            : image.convertToFormat(QImage::Format_ARGB32);
    if (argb.isNull())
        return false;

    const int w = argb.width(), h = argb.height();
    const int dy = (w + WordBits - 1) / WordBits;
    std::vector<potrace_word> map(size_t(dy) * size_t(h), 0);
    const bool hasAlpha = argb.format() == QImage::Format_ARGB32;
    // Scan line y of potrace's bitmap is picture row y, so the outlines come out in
    // picture coordinates with y growing downwards and lie exactly over the picture.
    for (int y = 0; y < h; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(argb.constScanLine(y));
        potrace_word *bits = map.data() + size_t(y) * size_t(dy);
        for (int x = 0; x < w; ++x) {
            const QRgb p = row[x];
            if (hasAlpha && qAlpha(p) < OpaqueFrom)
                continue;
            if (qGray(p) < DarkBelow)
                bits[x / WordBits] |= TopBit >> (x % WordBits);
        }
    }

    return traceMap(w, h, dy, &map);
}

bool QxPotrace::traceMap(int w, int h, int dy, std::vector<potrace_word> *map)
{
    potrace_bitmap_t bitmap;
    bitmap.w = w;
    bitmap.h = h;
    bitmap.dy = dy;
    bitmap.map = map->data();

    std::unique_ptr<potrace_param_t, ParamDeleter> param(potrace_param_default());
    if (!param)
        return false;
    std::unique_ptr<potrace_state_t, StateDeleter> state(potrace_trace(param.get(), &bitmap));
    if (!state || state->status != POTRACE_STATUS_OK)
        return false;

    // Positive paths are outer outlines; their direct children are the negative paths
    // (holes). Positive paths inside holes turn up on their own in the list.
    QList<Polygon> polygons;
    for (const potrace_path_t *p = state->plist; p; p = p->next) {
        if (p->sign != '+')
            continue;
        Polygon polygon;
        polygon.boundary = flatten(p->curve, m_precision);
        for (const potrace_path_t *c = p->childlist; c; c = c->sibling) {
            if (c->sign == '-')
                polygon.holes << flatten(c->curve, m_precision);
        }
        polygons << polygon;
    }
    m_polygons = polygons;
    return true;
}
