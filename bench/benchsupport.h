// What the benchmarks share: their pictures, a median timer and the offscreen start.
// Header-only so each benchmark program stays one source file.
#ifndef BENCHSUPPORT_H
#define BENCHSUPPORT_H

#include <QApplication>
#include <QElapsedTimer>
#include <QFont>
#include <QImage>
#include <QPainter>
#include <QString>
#include <QTemporaryDir>
#include <QtGlobal>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

// Benchmarks draw but show nothing: offscreen unless the caller chose a platform.
inline void preferOffscreen()
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
}

// The application of an export benchmark: offscreen unless told otherwise, and only
// warnings printed, since the generators log every step at debug level.
class BenchApplication : public QApplication
{
public:
    // The comma runs preferOffscreen() before QApplication reads the platform.
    BenchApplication(int &argc, char **argv) : QApplication((preferOffscreen(), argc), argv)
    {
        qSetMessagePattern(QStringLiteral("%{if-warning}%{message}%{endif}"));
    }
};

// A G-code file name in a temporary folder of its own, removed with it.
struct ScratchGcode
{
    QTemporaryDir dir;
    QString file = dir.filePath(QStringLiteral("local.gcode"));
};

// Median wall time of `runs` calls of `work`, in milliseconds.
inline double medianMs(int runs, const std::function<void()> &work)
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        work();
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

// A square page of black text lines on white, unsmoothed: what a traced text job looks like.
inline QImage pageOfText(int side)
{
    QImage image(side, side, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font;
    font.setPixelSize(40);
    font.setStyleStrategy(QFont::NoAntialias);
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QString line = QStringLiteral("The quick brown fox jumps over the lazy dog 0123456789 ABCDEFG");
    for (int y = 50; y < side; y += 50)
        painter.drawText(20, y, line);
    return image;
}

// A smooth picture with highlights, shadows and fine detail, like a photograph, dithered to
// black and white with Floyd-Steinberg error diffusion (or left in gray for the gray job).
inline QImage ditheredGradient(int width, int height, bool dither = true)
{
    std::vector<float> gray(size_t(width) * size_t(height));
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double u = double(x) / width;
            const double v = double(y) / height;
            const double r = std::hypot(u - 0.4, v - 0.35);
            double g = 255.0 * (0.55 + 0.35 * std::cos(r * 9.0) * (1.0 - v) + 0.1 * std::sin(u * 40.0) * v);
            g = std::clamp(g * (0.6 + 0.4 * u), 0.0, 255.0);
            gray[size_t(y) * size_t(width) + size_t(x)] = float(g);
        }
    }
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < width; ++x) {
            const size_t i = size_t(y) * size_t(width) + size_t(x);
            const float old = gray[i];
            if (!dither) {
                line[x] = qRgb(int(old), int(old), int(old));
                continue;
            }
            const float now = old < 128.0f ? 0.0f : 255.0f;
            line[x] = now == 0.0f ? qRgb(0, 0, 0) : qRgb(255, 255, 255);
            const float e = old - now;
            if (x + 1 < width)
                gray[i + 1] += e * 7 / 16;
            if (y + 1 < height) {
                if (x > 0)
                    gray[i + size_t(width) - 1] += e * 3 / 16;
                gray[i + size_t(width)] += e * 5 / 16;
                if (x + 1 < width)
                    gray[i + size_t(width) + 1] += e * 1 / 16;
            }
        }
    }
    return image;
}

#endif
