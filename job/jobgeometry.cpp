// The outlines of an item in millimetres on the bed, and how each kind of source becomes them:
// SVG through the project's SVG reader, text from Qt's glyph outlines, QR modules, traced pictures.
#include "jobgeometry.h"

#include "qrcodebitmap.h"
#include "qxpotrace.h"
#include "svgimage.h"
#include "svgreader.h"

#include <QBuffer>
#include <QFont>
#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

namespace {

// Chord error allowed when curves are flattened, in mm: well inside what the header promises.
const double FlattenTolerance = 0.0025;
// Most straight pieces one cubic is cut into.
const int MaxPiecesPerCurve = 4096;
// The em size, in font pixels, at which glyph outlines are taken (scaled to mm afterwards).
const int TextEmPixels = 1000;
// Picture pixels one traced outline segment is flattened into by default, and the pixel size in mm
// from which finer flattening is asked of the tracer.
const int TracePrecision = 10;
const double TraceFinePixel = 0.1;
// The most pixels a picture may have (10000 x 10000): a larger one is refused before it is decoded.
const double MaxPicturePixels = 1e8;
// Rasterised outlines are painted in tiles of at most this many pixels a side and in all.
const int RasterTileSide = 4096;
const int RasterTilePixels = 1 << 22;

// One outline of a source in its own units, y growing downwards. With `cubic`, `pts` is a start
// point followed by three points (two controls and an end) per segment; otherwise a polygon.
struct Outline
{
    std::vector<QPointF> pts;
    bool closed = true;
    bool cubic = true;
};

struct SourceShape
{
    std::vector<Outline> outlines;
    bool evenOdd = false;
};

using SourceDrawing = std::vector<SourceShape>;

// The extremes of one cubic coordinate over t in [0, 1], widening [lo, hi].
void cubicExtent(double p0, double p1, double p2, double p3, double *lo, double *hi)
{
    *lo = std::min({*lo, p0, p3});
    *hi = std::max({*hi, p0, p3});
    // The derivative is 3 (a t^2 + 2 b t + c) with these coefficients.
    const double a = -p0 + 3 * p1 - 3 * p2 + p3;
    const double b = p0 - 2 * p1 + p2;
    const double c = p1 - p0;
    auto at = [&](double t) {
        if (!(t > 0 && t < 1))
            return;
        const double u = 1 - t;
        const double v = u * u * u * p0 + 3 * u * u * t * p1 + 3 * u * t * t * p2 + t * t * t * p3;
        *lo = std::min(*lo, v);
        *hi = std::max(*hi, v);
    };
    if (std::fabs(a) < 1e-12) {
        if (std::fabs(b) > 1e-12)
            at(-c / (2 * b));
        return;
    }
    const double disc = b * b - a * c;
    if (disc < 0)
        return;
    const double root = std::sqrt(disc);
    at((-b + root) / a);
    at((-b - root) / a);
}

// The geometric bounds of the drawing (curves exactly, not their control points); false when it
// has no points at all.
bool drawingBounds(const SourceDrawing &drawing, QRectF *bounds)
{
    double x0 = std::numeric_limits<double>::max(), y0 = x0;
    double x1 = std::numeric_limits<double>::lowest(), y1 = x1;
    bool any = false;
    for (const SourceShape &shape : drawing) {
        for (const Outline &o : shape.outlines) {
            if (o.pts.empty())
                continue;
            any = true;
            if (!o.cubic) {
                for (const QPointF &p : o.pts) {
                    x0 = std::min(x0, p.x());
                    x1 = std::max(x1, p.x());
                    y0 = std::min(y0, p.y());
                    y1 = std::max(y1, p.y());
                }
                continue;
            }
            x0 = std::min(x0, o.pts[0].x());
            x1 = std::max(x1, o.pts[0].x());
            y0 = std::min(y0, o.pts[0].y());
            y1 = std::max(y1, o.pts[0].y());
            for (size_t i = 1; i + 2 < o.pts.size(); i += 3) {
                const QPointF &a = o.pts[i - 1], &b = o.pts[i], &c = o.pts[i + 1], &d = o.pts[i + 2];
                cubicExtent(a.x(), b.x(), c.x(), d.x(), &x0, &x1);
                cubicExtent(a.y(), b.y(), c.y(), d.y(), &y0, &y1);
            }
        }
    }
    if (!any)
        return false;
    *bounds = QRectF(QPointF(x0, y0), QPointF(x1, y1));
    return true;
}

// Distance of p from the line through a and b (from a when they coincide).
double distanceFromLine(const QPointF &p, const QPointF &a, const QPointF &b)
{
    const double dx = b.x() - a.x(), dy = b.y() - a.y();
    const double len = std::hypot(dx, dy);
    if (len <= 0)
        return std::hypot(p.x() - a.x(), p.y() - a.y());
    return std::fabs((p.x() - a.x()) * dy - (p.y() - a.y()) * dx) / len;
}

// Appends the points of the cubic a..d after a, within `tolerance` of the curve.
void flattenCubic(const QPointF &a, const QPointF &b, const QPointF &c, const QPointF &d, double tolerance,
                  std::vector<QPointF> *out)
{
    const double straight = tolerance * 1e-3;
    if (distanceFromLine(b, a, d) <= straight && distanceFromLine(c, a, d) <= straight) {
        // A straight line, wherever its controls sit along it (the reader keeps them at the thirds).
        const QPointF ab = b - a, ad = d - a, ac = c - a;
        const double dd = QPointF::dotProduct(ad, ad);
        const bool inside = dd > 0 && QPointF::dotProduct(ab, ad) >= 0 && QPointF::dotProduct(ab, ad) <= dd
                            && QPointF::dotProduct(ac, ad) >= 0 && QPointF::dotProduct(ac, ad) <= dd;
        if (inside || (ab.isNull() && ac.isNull())) {
            out->push_back(d);
            return;
        }
    }
    // The second differences bound how far n equal steps of t stray from the curve.
    const QPointF d1 = a - 2 * b + c, d2 = b - 2 * c + d;
    const double m = std::max(std::hypot(d1.x(), d1.y()), std::hypot(d2.x(), d2.y()));
    const int n = std::clamp(int(std::ceil(std::sqrt(0.75 * m / tolerance))), 1, MaxPiecesPerCurve);
    for (int k = 1; k <= n; ++k) {
        const double t = double(k) / n, u = 1 - t;
        if (k == n) {
            out->push_back(d);
            break;
        }
        out->push_back(u * u * u * a + 3 * u * u * t * b + 3 * u * t * t * c + t * t * t * d);
    }
}

// Maps the drawing's bounds onto the item's rectangle, y flipped, and flattens every outline.
JobGeometry place(const SourceDrawing &drawing, const QRectF &bounds, const JobItem &item)
{
    const double sx = bounds.width() > 0 ? item.width / bounds.width() : 0;
    const double sy = bounds.height() > 0 ? item.height / bounds.height() : 0;
    // A drawing without width (or height) sits on the middle of the rectangle that way.
    const double tx = item.x + (bounds.width() > 0 ? 0 : item.width / 2);
    const double ty = item.y + (bounds.height() > 0 ? 0 : item.height / 2);
    const double left = bounds.left(), bottom = bounds.bottom();
    auto map = [&](const QPointF &p) { return QPointF(tx + (p.x() - left) * sx, ty + (bottom - p.y()) * sy); };

    JobGeometry out;
    out.reserve(drawing.size());
    std::vector<QPointF> mapped;
    for (const SourceShape &shape : drawing) {
        JobShape js;
        js.evenOdd = shape.evenOdd;
        for (const Outline &o : shape.outlines) {
            if (o.pts.empty())
                continue;
            JobContour contour;
            contour.closed = o.closed;
            mapped.clear();
            for (const QPointF &p : o.pts)
                mapped.push_back(map(p));
            if (o.cubic) {
                contour.points.push_back(mapped[0]);
                for (size_t i = 1; i + 2 < mapped.size(); i += 3)
                    flattenCubic(mapped[i - 1], mapped[i], mapped[i + 1], mapped[i + 2], FlattenTolerance,
                                 &contour.points);
            } else {
                contour.points = mapped;
            }
            // Neighbours that coincide add nothing; a closed contour does not repeat its start.
            auto last = std::unique(contour.points.begin(), contour.points.end());
            contour.points.erase(last, contour.points.end());
            if (contour.closed && contour.points.size() > 1 && contour.points.front() == contour.points.back())
                contour.points.pop_back();
            js.contours.push_back(std::move(contour));
        }
        if (!js.contours.empty())
            out.push_back(std::move(js));
    }
    return out;
}

QString tooManyPixels(const QSize &size)
{
    return QStringLiteral("the picture is %1 x %2 pixels (at most %3)")
        .arg(size.width())
        .arg(size.height())
        .arg(qint64(MaxPicturePixels));
}

bool decodePicture(const QByteArray &data, QImage *image, QString *error)
{
    // The size from the file's header first: a small file can hold a picture larger than memory.
    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    const QSize declared = reader.size();
    if (declared.isValid() && double(declared.width()) * declared.height() > MaxPicturePixels) {
        *error = tooManyPixels(declared);
        return false;
    }
    QImage picture;
    if (data.isEmpty() || !picture.loadFromData(data) || picture.isNull()) {
        *error = QStringLiteral("not a picture");
        return false;
    }
    if (double(picture.width()) * picture.height() > MaxPicturePixels) {
        *error = tooManyPixels(picture.size());
        return false;
    }
    *image = picture;
    return true;
}

// A colour as gray (qGray's weights, as the tracer reads ink), laid on white by its opacity.
uchar grayOnWhite(QRgb c)
{
    const int a = qAlpha(c);
    return uchar((qGray(c) * a + 255 * (255 - a) + 127) / 255);
}

// The picture as 8-bit gray without a 32-bit copy of pictures that are gray or have a palette.
QImage grayOnWhite(const QImage &picture)
{
    if (picture.format() == QImage::Format_Grayscale8)
        return picture;
    const QImage::Format format = picture.format();
    const bool paletted =
        format == QImage::Format_Mono || format == QImage::Format_MonoLSB || format == QImage::Format_Indexed8;
    const bool direct = format == QImage::Format_RGB32 || format == QImage::Format_ARGB32;
    const QImage source = paletted ? picture.convertToFormat(QImage::Format_Indexed8)
                          : direct ? picture
                                   : picture.convertToFormat(QImage::Format_ARGB32);
    QImage out(source.width(), source.height(), QImage::Format_Grayscale8);
    uchar lut[256] = {};
    if (paletted) {
        const QVector<QRgb> colors = source.colorTable();
        for (int i = 0; i < colors.size() && i < 256; ++i)
            lut[i] = grayOnWhite(colors.at(i));
    }
    for (int y = 0; y < source.height(); ++y) {
        uchar *row = out.scanLine(y);
        if (paletted) {
            const uchar *in = source.constScanLine(y);
            for (int x = 0; x < source.width(); ++x)
                row[x] = lut[in[x]];
        } else {
            const QRgb *in = reinterpret_cast<const QRgb *>(source.constScanLine(y));
            for (int x = 0; x < source.width(); ++x)
                row[x] = grayOnWhite(in[x]);
        }
    }
    return out;
}

bool readSvg(const QByteArray &data, SourceDrawing *drawing, QString *error)
{
    // Millimetres at the CSS resolution, so the natural size of a drawing is its size on paper.
    std::unique_ptr<SvgImage, void (*)(SvgImage *)> svg(SvgReader::parse(data, "mm", 96), SvgReader::release);
    if (!svg) {
        *error = QStringLiteral("not an SVG drawing");
        return false;
    }
    drawing->clear();
    for (const SvgShape &shape : svg->shapes) {
        SourceShape s;
        s.evenOdd = shape.evenOdd;
        for (const SvgPath &path : shape.paths) {
            Outline o;
            o.closed = path.closed;
            o.pts.reserve(size_t(path.npts()));
            for (size_t i = 0; i + 1 < path.pts.size(); i += 2)
                o.pts.emplace_back(path.pts[i], path.pts[i + 1]);
            s.outlines.push_back(std::move(o));
        }
        drawing->push_back(std::move(s));
    }
    return true;
}

bool tracePicture(const QByteArray &data, int precision, SourceDrawing *drawing, QString *error)
{
    QImage picture;
    if (!decodePicture(data, &picture, error))
        return false;
    QxPotrace tracer;
    tracer.setBezierPrecision(precision);
    if (!tracer.trace(picture)) {
        *error = QStringLiteral("the picture cannot be traced");
        return false;
    }
    drawing->clear();
    const QList<QxPotrace::Polygon> polygons = tracer.polygons();
    for (const QxPotrace::Polygon &polygon : polygons) {
        SourceShape s;
        s.evenOdd = true;
        auto add = [&](const QPolygonF &poly) {
            Outline o;
            o.cubic = false;
            o.pts.assign(poly.begin(), poly.end());
            s.outlines.push_back(std::move(o));
        };
        add(polygon.boundary);
        for (const QPolygonF &hole : polygon.holes)
            add(hole);
        drawing->push_back(std::move(s));
    }
    return true;
}

// The text's glyph outlines in font pixels at an em of TextEmPixels, y down, every line placed by
// its advance width for the alignment. One nonzero shape holds them all.
bool textOutlines(const JobSource &source, SourceDrawing *drawing, QString *error)
{
    if (source.text.isEmpty()) {
        *error = QStringLiteral("the text is empty");
        return false;
    }
    if (!qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        *error = QStringLiteral("text needs the fonts of a graphical application");
        return false;
    }
    const QStringList families = QFontDatabase().families();
    const bool installed = std::any_of(families.begin(), families.end(), [&](const QString &f) {
        return f.compare(source.font, Qt::CaseInsensitive) == 0;
    });
    if (!installed) {
        *error = QStringLiteral("the font \"%1\" is not installed").arg(source.font);
        return false;
    }
    QFont font(source.font);
    font.setPixelSize(TextEmPixels);
    font.setHintingPreference(QFont::PreferNoHinting);
    font.setKerning(true);
    const QFontMetricsF metrics(font);

    QStringList lines = source.text.split(QLatin1Char('\n'));
    for (QString &line : lines)
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
    double widest = 0;
    std::vector<double> widths;
    for (const QString &line : lines) {
        widths.push_back(metrics.horizontalAdvance(line));
        widest = std::max(widest, widths.back());
    }
    QPainterPath path;
    for (int i = 0; i < lines.size(); ++i) {
        double x = 0;
        if (source.align == TextAlign::Center)
            x = (widest - widths[size_t(i)]) / 2;
        else if (source.align == TextAlign::Right)
            x = widest - widths[size_t(i)];
        path.addText(QPointF(x, i * metrics.lineSpacing()), font, lines.at(i));
    }

    SourceShape shape;
    shape.evenOdd = false;
    Outline current;
    for (int i = 0; i < path.elementCount(); ++i) {
        const QPainterPath::Element e = path.elementAt(i);
        if (e.isMoveTo()) {
            if (current.pts.size() > 1)
                shape.outlines.push_back(std::move(current));
            current = Outline();
            current.pts.push_back(e);
        } else if (e.isLineTo()) {
            const QPointF from = current.pts.back();
            current.pts.push_back(from);
            current.pts.push_back(e);
            current.pts.push_back(e);
        } else if (e.isCurveTo() && i + 2 < path.elementCount()) {
            current.pts.push_back(e);
            current.pts.push_back(path.elementAt(i + 1));
            current.pts.push_back(path.elementAt(i + 2));
            i += 2;
        }
    }
    if (current.pts.size() > 1)
        shape.outlines.push_back(std::move(current));
    drawing->clear();
    if (shape.outlines.empty()) {
        *error = QStringLiteral("the text has nothing to draw");
        return false;
    }
    const double mmPerPixel = source.size / TextEmPixels;
    for (Outline &o : shape.outlines)
        for (QPointF &p : o.pts)
            p *= mmPerPixel;
    drawing->push_back(std::move(shape));
    return true;
}

bool qrModules(const JobSource &source, int *width, QByteArray *modules, QString *error)
{
    if (source.text.isEmpty()) {
        *error = QStringLiteral("the QR code's text is empty");
        return false;
    }
    if (!QrCodeBitmap::encode(source.text, QrCodeBitmap::Level(int(source.level)), width, modules)) {
        *error = QStringLiteral("the text is too long for a QR code");
        return false;
    }
    return true;
}

// A drawing's bounds, with a message when there is nothing in it.
bool boundsOrError(const SourceDrawing &drawing, const JobSource &source, QRectF *bounds, QString *error)
{
    if (drawingBounds(drawing, bounds))
        return true;
    *error = source.kind == SourceKind::Trace ? QStringLiteral("nothing dark to trace in the picture")
             : source.kind == SourceKind::Svg ? QStringLiteral("the SVG drawing has no shapes")
                                              : QStringLiteral("the text has nothing to draw");
    return false;
}

bool loadOutlines(const JobSource &source, int tracePrecision, SourceDrawing *drawing, QString *error)
{
    switch (source.kind) {
    case SourceKind::Svg:
        return readSvg(source.data, drawing, error);
    case SourceKind::Trace:
        return tracePicture(source.data, tracePrecision, drawing, error);
    case SourceKind::Text:
        return textOutlines(source, drawing, error);
    case SourceKind::Picture:
        *error = QStringLiteral("a picture has no outlines (trace it to cut or fill it)");
        return false;
    case SourceKind::Qr:
        *error = QStringLiteral("a QR code has no outlines (it is engraved as an image)");
        return false;
    }
    return false;
}

}  // namespace

namespace JobSources {

bool naturalSize(const JobSource &source, double *width, double *height, QString *error)
{
    if (source.kind == SourceKind::Picture) {
        QImage picture;
        if (!decodePicture(source.data, &picture, error))
            return false;
        *width = picture.width();
        *height = picture.height();
        return true;
    }
    if (source.kind == SourceKind::Qr) {
        int modules = 0;
        QByteArray bits;
        if (!qrModules(source, &modules, &bits, error))
            return false;
        *width = *height = modules + 2 * std::max(0, source.quietZone);
        return true;
    }
    SourceDrawing drawing;
    QRectF bounds;
    if (!loadOutlines(source, TracePrecision, &drawing, error) || !boundsOrError(drawing, source, &bounds, error))
        return false;
    *width = bounds.width();
    *height = bounds.height();
    return true;
}

bool gray(const JobSource &source, QImage *image, QString *error)
{
    if (source.kind == SourceKind::Qr) {
        int modules = 0;
        QByteArray bits;
        if (!qrModules(source, &modules, &bits, error))
            return false;
        const int quiet = std::max(0, source.quietZone);
        const int side = modules + 2 * quiet;
        QImage out(side, side, QImage::Format_Grayscale8);
        out.fill(255);
        for (int y = 0; y < modules; ++y) {
            uchar *row = out.scanLine(y + quiet);
            for (int x = 0; x < modules; ++x)
                if (bits.at(y * modules + x) & 1)
                    row[x + quiet] = 0;
        }
        *image = out;
        return true;
    }
    if (source.kind != SourceKind::Picture) {
        *error = QStringLiteral("only a picture or a QR code is engraved as it is");
        return false;
    }
    QImage picture;
    if (!decodePicture(source.data, &picture, error))
        return false;
    *image = grayOnWhite(picture);
    return true;
}

bool geometry(const JobItem &item, JobGeometry *out, QString *error)
{
    if (!(item.width > 0 && item.height > 0 && std::isfinite(item.width) && std::isfinite(item.height))) {
        *error = QStringLiteral("the item has no size");
        return false;
    }
    SourceDrawing drawing;
    QRectF bounds;
    int precision = TracePrecision;
    if (item.source.kind == SourceKind::Trace) {
        // Large pixels need finer steps along the traced curves to stay close to them.
        QImage picture;
        if (!decodePicture(item.source.data, &picture, error))
            return false;
        const double pixel = std::max(item.width / picture.width(), item.height / picture.height());
        if (pixel > TraceFinePixel)
            precision = std::min(200, int(std::ceil(TracePrecision * std::sqrt(pixel / TraceFinePixel))));
    }
    if (!loadOutlines(item.source, precision, &drawing, error) || !boundsOrError(drawing, item.source, &bounds, error))
        return false;
    *out = place(drawing, bounds, item);
    return true;
}

QImage rasterise(const JobGeometry &geometry, const QRectF &rect, double interval)
{
    if (!(interval > 0) || !(rect.width() > 0) || !(rect.height() > 0))
        return QImage();
    const int columns = std::max(1, int(std::lround(rect.width() / interval)));
    const int rows = std::max(1, int(std::lround(rect.height() / interval)));
    QImage out(columns, rows, QImage::Format_Grayscale8);
    if (out.isNull())
        return out;
    out.fill(255);

    // The shapes in cell units: rect.y() is the bottom edge in machine coordinates; row 0 is the top.
    const double kx = columns / rect.width(), ky = rows / rect.height();
    const double top = rect.y() + rect.height();
    std::vector<QPainterPath> paths;
    for (const JobShape &shape : geometry) {
        QPainterPath path;
        path.setFillRule(shape.evenOdd ? Qt::OddEvenFill : Qt::WindingFill);
        for (const JobContour &c : shape.contours) {
            if (!c.closed || c.points.size() < 3)
                continue;
            QPolygonF poly;
            poly.reserve(int(c.points.size()));
            for (const QPointF &p : c.points)
                poly << QPointF((p.x() - rect.x()) * kx, (top - p.y()) * ky);
            path.addPolygon(poly);
            path.closeSubpath();
        }
        if (!path.isEmpty())
            paths.push_back(std::move(path));
    }
    if (paths.empty())
        return out;

    // The painter reaches 32767 pixels at most, so large grids are painted tile by tile, each tile
    // shifted by whole cells (which fills the same cells as one large painting would).
    const int tileWidth = std::min(columns, RasterTileSide);
    const int tileHeight = std::min({rows, RasterTileSide, std::max(1, RasterTilePixels / tileWidth)});
    QImage tile(tileWidth, tileHeight, QImage::Format_RGB32);
    if (tile.isNull())
        return QImage();
    for (int ty = 0; ty < rows; ty += tileHeight) {
        for (int tx = 0; tx < columns; tx += tileWidth) {
            tile.fill(Qt::white);
            {
                QPainter painter(&tile);
                painter.setRenderHint(QPainter::Antialiasing, false);
                painter.setPen(Qt::NoPen);
                painter.setBrush(Qt::black);
                painter.translate(-tx, -ty);
                const QRectF view(tx, ty, tileWidth, tileHeight);
                for (const QPainterPath &path : paths)
                    if (path.controlPointRect().intersects(view))
                        painter.drawPath(path);
            }
            const int w = std::min(tileWidth, columns - tx);
            const int h = std::min(tileHeight, rows - ty);
            for (int y = 0; y < h; ++y) {
                const QRgb *in = reinterpret_cast<const QRgb *>(tile.constScanLine(y));
                uchar *target = out.scanLine(ty + y) + tx;
                for (int x = 0; x < w; ++x)
                    target[x] = uchar(qGray(in[x]));
            }
        }
    }
    return out;
}

}  // namespace JobSources
