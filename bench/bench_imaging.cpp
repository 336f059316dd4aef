// Measures the image preparation work: the threshold editor's operations on a phone-sized
// photograph, and tracing a page of text. Prints milliseconds (median of several runs).
#include "appsettings.h"
#include "bitmap2svg.h"
#include "imgbinaryedit.h"
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

QImage pageOfText()
{
    QImage image(TextSide, TextSide, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font;
    font.setPixelSize(40);
    font.setStyleStrategy(QFont::NoAntialias);
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QString line = QStringLiteral("The quick brown fox jumps over the lazy dog 0123456789 ABCDEFG");
    for (int y = 50; y < TextSide; y += 50)
        painter.drawText(20, y, line);
    return image;
}

double medianMs(const std::function<void()> &work)
{
    std::vector<double> times;
    for (int i = 0; i < Runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    // The editor writes Slice.ini and the tracer reads files: keep them out of the caller's folder.
    QTemporaryDir work;
    QDir::setCurrent(work.path());
    QTextStream out(stdout);

    const QImage photo = photograph();
    out << "picture " << PhotoWidth << " x " << PhotoHeight << ", median of " << Runs << " runs\n";

    int t = 100;
    out << "global threshold, new image: " << medianMs([&] { ImgBinaryEdit::GlobalThreshold(photo, t++); }) << " ms\n";
    // As the editor runs it on a dragged slider: into the buffer of the previous result.
    QImage previous;
    out << "global threshold:            " << medianMs([&] {
        previous = ImgBinaryEdit::GlobalThreshold(photo, t++, std::move(previous));
    }) << " ms\n";

    ImgBinaryEdit editor;
    editor.resize(1093, 671);
    editor.show();
    editor.SetImage(photo);
    app.processEvents();
    out << "slider step (with preview):  " << medianMs([&] { editor.SlotHorizontalSliderValueChanged(t++); }) << " ms\n";

    // The two other parts of a slider step: the preview and the remembered threshold.
    const QImage shownAs(previous.constBits(), previous.width(), previous.height(),
                         previous.bytesPerLine(), QImage::Format_RGB32);
    out << "  of which preview scaling:  " << medianMs([&] {
        shownAs.scaled(QSize(540, 600), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }) << " ms\n";
    out << "  of which Slice.ini write:  " << medianMs([&] { AppSettings::setThreshold(t++); }) << " ms\n";

    const QImage inverted = ImgBinaryEdit::InvertedThreshold(photo, 128);
    out << "inverted threshold:          " << medianMs([&] { ImgBinaryEdit::InvertedThreshold(photo, 128); }) << " ms\n";
    out << "outline:                     " << medianMs([&] { ImgBinaryEdit::Outline(inverted); }) << " ms\n";
    out << "adaptive threshold:          " << medianMs([&] { ImgBinaryEdit::AdaptiveThreshold(photo); }) << " ms\n";

    const QImage text = pageOfText();
    out << "text picture " << TextSide << " x " << TextSide << "\n";
    QxPotrace tracer;
    tracer.setBezierPrecision(Bitmap2Svg::BezierPrecision);
    out << "trace:                       " << medianMs([&] { tracer.trace(text); }) << " ms ("
        << tracer.polygons().size() << " outlines)\n";

    text.save(QStringLiteral("black_white.jpg"), "JPEG", 100);
    Bitmap2Svg svg;
    out << "trace file and write SVG:    " << medianMs([&] {
        svg.Trace(QStringLiteral("./black_white.jpg"));
        svg.WriteSvg(QStringLiteral("black_white.svg"));
    }) << " ms\n";
    out.flush();
    QDir::setCurrent(QDir::homePath());
    return 0;
}
