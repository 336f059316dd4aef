// How an item of the job looks on the layout.
#include "jobitemlook.h"

#include "jobgeometry.h"
#include "jobraster.h"

#include <QCache>
#include <QDataStream>
#include <QIODevice>
#include <QtGlobal>

#include <algorithm>

namespace {

constexpr int ScreenSide = 1400;  // a decoded picture is kept at most this many pixels on a side
constexpr int CachedPictures = 24;

bool isPictureKind(SourceKind kind) { return kind == SourceKind::Picture || kind == SourceKind::Qr; }

// The source as gray, reduced for the screen. Decoding a large photo takes far longer than
// processing it, so each source is decoded once and kept while it is in use.
bool screenGray(const JobSource &source, QImage *out, QString *error)
{
    static QCache<QByteArray, QImage> cache(CachedPictures);
    QByteArray key;
    QDataStream stream(&key, QIODevice::WriteOnly);
    stream << int(source.kind) << qHash(source.data) << source.data.size() << source.text << int(source.level)
           << source.quietZone;
    if (QImage *found = cache.object(key)) {
        *out = *found;
        return true;
    }
    QImage gray;
    if (!JobSources::gray(source, &gray, error))
        return false;
    // QR modules stay sharp; photos are averaged down.
    if (source.kind == SourceKind::Picture && std::max(gray.width(), gray.height()) > ScreenSide)
        gray = gray.scaled(ScreenSide, ScreenSide, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                   .convertToFormat(QImage::Format_Grayscale8);
    cache.insert(key, new QImage(gray));
    *out = gray;
    return true;
}

// Burn levels (0 burns) as the layer's colour over transparency.
QImage tint(const QImage &cells, const QColor &color)
{
    QImage out(cells.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < cells.height(); ++y) {
        const uchar *in = cells.constScanLine(y);
        auto *line = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < cells.width(); ++x) {
            const int alpha = 255 - in[x];
            line[x] = qRgba(color.red() * alpha / 255, color.green() * alpha / 255, color.blue() * alpha / 255, alpha);
        }
    }
    return out;
}

}  // namespace

JobItemLook JobItemLook::make(const JobItem &item, const JobLayer &layer, int maxCells)
{
    JobItemLook look;
    look.color = QColor(layer.color);
    if (!look.color.isValid())
        look.color = QColor(0x20, 0x60, 0xc0);
    if (item.width <= 0 || item.height <= 0)
        return look;
    if (isPictureKind(item.source.kind)) {
        QImage gray;
        if (!screenGray(item.source, &gray, &look.error))
            return look;
        ImageParams params = layer.image;
        if (layer.operation != Operation::Image) {
            // A picture on a vector layer is shown as it is, plain black and white.
            params = ImageParams();
            params.mode = ImageMode::Threshold;
        }
        const double longer = std::max(item.width, item.height);
        params.interval = std::max(params.interval, longer / maxCells);
        const QRectF rect(0, 0, item.width, item.height);
        const JobRaster::Grid grid = JobRaster::grid(rect, params.interval);
        QImage cells = JobRaster::sample(gray, grid, params);
        JobRaster::reduce(&cells, params);
        look.picture = tint(cells, look.color);
        return look;
    }
    JobItem placed = item;
    placed.x = 0;
    placed.y = 0;
    JobGeometry geometry;
    if (!JobSources::geometry(placed, &geometry, &look.error))
        return look;
    for (const JobShape &shape : geometry) {
        QPainterPath path;
        path.setFillRule(shape.evenOdd ? Qt::OddEvenFill : Qt::WindingFill);
        for (const JobContour &contour : shape.contours) {
            if (contour.points.empty())
                continue;
            // Machine Y up becomes the item's own Y down.
            path.moveTo(contour.points.front().x(), item.height - contour.points.front().y());
            for (size_t i = 1; i < contour.points.size(); ++i)
                path.lineTo(contour.points[i].x(), item.height - contour.points[i].y());
            if (contour.closed)
                path.closeSubpath();
        }
        look.path.addPath(path);
    }
    look.filled = layer.operation != Operation::Line;
    return look;
}

QByteArray JobItemLook::key(const JobItem &item, const JobLayer &layer)
{
    QByteArray key;
    QDataStream out(&key, QIODevice::WriteOnly);
    const JobSource &s = item.source;
    out << int(s.kind) << qHash(s.data) << s.data.size() << s.text << s.font << s.size << int(s.align) << int(s.level)
        << s.quietZone << item.width << item.height << item.keepAspect << layer.color << int(layer.operation);
    if (layer.operation == Operation::Image) {
        const ImageParams &p = layer.image;
        out << int(p.mode) << int(p.dither) << p.threshold << p.brightness << p.contrast << p.gamma << p.invert
            << p.interval;
    }
    return key;
}
