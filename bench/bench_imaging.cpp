// Measures the image preparation work: the threshold editor's operations on a phone-sized
// photograph, and tracing a page of text. Prints milliseconds (median of several runs).
#include "appsettings.h"
#include "benchsupport.h"
#include "bitmap2svg.h"
#include "imgbinaryedit.h"
#include "pixelops.h"
#include "qxpotrace.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QPainter>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <functional>
#include <vector>

namespace {

constexpr int PhotoWidth = 4000;
constexpr int PhotoHeight = 3000;
constexpr int TextSide = 2000;
constexpr int Runs = 7;

// A photograph stand-in: smooth shading, a few shapes and sensor noise.
QImage photograph()
{
    QImage image(PhotoWidth, PhotoHeight, QImage::Format_ARGB32);
    quint32 seed = 12345;
    for (int y = 0; y < PhotoHeight; ++y) {
        QRgb *row = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < PhotoWidth; ++x) {
            seed = seed * 1664525u + 1013904223u;
            const int noise = int(seed >> 28) - 8;
            const int base = (x * 255 / PhotoWidth + y * 255 / PhotoHeight) / 2;
            const int v = std::clamp(base + noise, 0, 255);
            row[x] = qRgb(v, std::clamp(v + 20, 0, 255), std::clamp(v - 20, 0, 255));
        }
    }
    QPainter painter(&image);
    painter.setBrush(QColor(30, 30, 30));
    painter.drawEllipse(QPoint(1200, 1500), 700, 500);
    painter.setBrush(QColor(230, 220, 210));
    painter.drawRect(2500, 400, 900, 1800);
    return image;
}

// The two operations as they ran before, for figures from the same run on the same
// machine: one thread, a full 64-bit integral image for the adaptive threshold.
QImage plainGlobalThreshold(const QImage &in, int threshold)
{
    QImage out(in.size(), in.format());
    const quint32 limit = quint32(qBound(-1, threshold, 255) + 1);
    const int w = in.width();
    for (int y = 0; y < in.height(); ++y) {
        const quint32 *src = reinterpret_cast<const quint32 *>(in.constScanLine(y));
        quint32 *dst = reinterpret_cast<quint32 *>(out.scanLine(y));
        for (int x = 0; x < w; ++x) {
            const quint32 p = src[x];
            const quint32 sum = 11 * ((p >> 16) & 0xFF) + 16 * ((p >> 8) & 0xFF) + 5 * (p & 0xFF);
            const quint32 white = (quint32(p <= 0x00FFFFFFu) & quint32(sum < 32u)) | quint32((sum >> 5) >= limit);
            dst[x] = white ? 0x00FFFFFFu : 0xFF000000u;
        }
    }
    return out;
}

QImage plainAdaptiveThreshold(const QImage &in)
{
    const int w = in.width(), h = in.height(), half = int(w * 0.125) / 2;
    std::vector<qint64> integral(size_t(w) * size_t(h));
    std::vector<qint64> column(size_t(w), 0);
    for (int y = 0; y < h; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(in.constScanLine(y));
        qint64 *line = integral.data() + size_t(y) * size_t(w);
        for (int x = 0; x < w; ++x) {
            column[size_t(x)] += PixelOps::Gray(row[x]);
            line[x] = (x > 0 ? line[x - 1] : 0) + column[size_t(x)];
        }
    }
    auto at = [&](int x, int y) { return integral[size_t(y) * size_t(w) + size_t(x)]; };
    QImage out(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(in.constScanLine(y));
        quint32 *dst = reinterpret_cast<quint32 *>(out.scanLine(y));
        const int y1 = std::max(y - half, 0), y2 = std::min(y + half, h - 1);
        for (int x = 0; x < w; ++x) {
            const int x1 = std::max(x - half, 0), x2 = std::min(x + half, w - 1);
            const qint64 count = qint64(x2 - x1) * (y2 - y1);
            const qint64 sum = at(x2, y2) - at(x2, y1) - at(x1, y2) + at(x1, y1);
            dst[x] = PixelOps::Gray(row[x]) * count < qint64(double(sum) * 0.85) ? 0xFF000000u : 0xFFFFFFFFu;
        }
    }
    return out;
}

}  // namespace

int main(int argc, char *argv[])
{
    preferOffscreen();
    QApplication app(argc, argv);
    // The editor writes Slice.ini and the tracer reads files: keep them out of the caller's folder.
    QTemporaryDir work;
    QDir::setCurrent(work.path());
    QTextStream out(stdout);

    const QImage photo = photograph();
    out << "picture " << PhotoWidth << " x " << PhotoHeight << ", median of " << Runs << " runs\n";

    int t = 100;
    out << "global threshold, new image: " << medianMs(Runs, [&] { PixelOps::GlobalThreshold(photo, t++); }) << " ms\n";
    out << "  the same in one thread:    " << medianMs(Runs, [&] { plainGlobalThreshold(photo, t++); })
        << " ms (before)\n";
    // As the editor runs it on a dragged slider: into the buffer of the previous result.
    QImage previous;
    out << "global threshold:            "
        << medianMs(Runs, [&] { previous = PixelOps::GlobalThreshold(photo, t++, std::move(previous)); }) << " ms\n";

    ImgBinaryEdit editor;
    editor.resize(1093, 671);
    editor.show();
    editor.SetImage(photo);
    app.processEvents();
    out << "slider step (with preview):  " << medianMs(Runs, [&] { editor.SlotHorizontalSliderValueChanged(t++); })
        << " ms\n";

    // The two other parts of a slider step: the preview and the remembered threshold.
    const QImage shownAs(previous.constBits(), previous.width(), previous.height(), previous.bytesPerLine(),
                         QImage::Format_RGB32);
    out << "  of which preview scaling:  " << medianMs(Runs, [&] {
        shownAs.scaled(QSize(540, 600), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }) << " ms\n";
    out << "  of which Slice.ini write:  " << medianMs(Runs, [&] { AppSettings::setThreshold(t++); }) << " ms\n";

    const QImage inverted = PixelOps::InvertedThreshold(photo, 128);
    out << "inverted threshold:          " << medianMs(Runs, [&] { PixelOps::InvertedThreshold(photo, 128); })
        << " ms\n";
    out << "outline:                     " << medianMs(Runs, [&] { PixelOps::Outline(inverted); }) << " ms\n";
    out << "adaptive threshold:          " << medianMs(Runs, [&] { PixelOps::AdaptiveThreshold(photo); }) << " ms\n";
    out << "  by a full integral image:  " << medianMs(Runs, [&] { plainAdaptiveThreshold(photo); }) << " ms (before)"
        << (plainAdaptiveThreshold(photo) == PixelOps::AdaptiveThreshold(photo) ? ", same pixels" : ", PIXELS DIFFER")
        << "\n";

    const QImage text = pageOfText(TextSide);
    out << "text picture " << TextSide << " x " << TextSide << "\n";
    QxPotrace tracer;
    tracer.setBezierPrecision(Bitmap2Svg::BezierPrecision);
    out << "trace:                       " << medianMs(Runs, [&] { tracer.trace(text); }) << " ms ("
        << tracer.polygons().size() << " outlines)\n";

    text.save(QStringLiteral("black_white.jpg"), "JPEG", 100);
    Bitmap2Svg svg;
    out << "trace file and write SVG:    " << medianMs(Runs, [&] {
        svg.Trace(QStringLiteral("./black_white.jpg"));
        svg.WriteSvg(QStringLiteral("black_white.svg"));
    }) << " ms\n";
    out.flush();
    QDir::setCurrent(QDir::homePath());
    return 0;
}
