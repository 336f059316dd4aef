// Measures a phone photo of 200 megapixels through the threshold editor: loading, the
// first threshold, one slider step and Finish. Prints seconds and the peak memory.
#include "appsettings.h"
#include "benchsupport.h"
#include "imgbinaryedit.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QSlider>
#include <QTemporaryDir>
#include <QTextStream>

#include <sys/resource.h>

namespace {

// 16384 x 12208 = 200 015 872 pixels, the size of a 200 MP phone sensor's picture.
constexpr int PhotoWidth = 16384;
constexpr int PhotoHeight = 12208;
constexpr int JpegQuality = 90;

// The photo stand-in: a JPEG of shading and checks, the kind of picture a threshold is
// meant for. Made in a run of its own, so its memory does not count in the figures.
bool makePhoto(const QString &path)
{
    QImage photo(PhotoWidth, PhotoHeight, QImage::Format_RGB32);
    if (photo.isNull())
        return false;
    for (int y = 0; y < PhotoHeight; ++y) {
        QRgb *row = reinterpret_cast<QRgb *>(photo.scanLine(y));
        for (int x = 0; x < PhotoWidth; ++x) {
            const int v = ((x / 97 + y / 89) % 2) ? (x * 255 / PhotoWidth) : 255 - (y * 255 / PhotoHeight);
            row[x] = qRgb(v, v, v);
        }
    }
    QImageWriter writer(path, "jpeg");
    writer.setQuality(JpegQuality);
    return writer.write(photo);
}

double peakMegabytes()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024.0;  // kilobytes on Linux
}

}  // namespace

int main(int argc, char *argv[])
{
    preferOffscreen();
    QApplication app(argc, argv);
    QTextStream out(stdout);
    const QStringList args = app.arguments();
    if (args.size() == 3 && args.at(1) == QLatin1String("--make")) {
        if (!makePhoto(args.at(2))) {
            out << "cannot write " << args.at(2) << '\n';
            return 1;
        }
        out << "wrote " << args.at(2) << " (" << PhotoWidth << " x " << PhotoHeight << ")\n";
        return 0;
    }
    if (args.size() != 2) {
        out << "usage: bench_largephoto --make PHOTO.jpg   (once; the making is not measured)\n"
               "       bench_largephoto PHOTO.jpg\n";
        return 2;
    }
    const QString photo = QFileInfo(args.at(1)).absoluteFilePath();
    QTemporaryDir work;
    QDir::setCurrent(work.path());
    AppSettings::setThreshold(128);

    ImgBinaryEdit editor;
    editor.resize(1093, 671);
    editor.show();
    QElapsedTimer clock;
    clock.start();
    editor.SetImageFile(photo);
    const double load = clock.nsecsElapsed() / 1e9;
    const QSize size = editor.Result().size();
    clock.restart();
    editor.findChild<QSlider *>(QStringLiteral("horizontalSlider"))->setValue(100);
    const double step = clock.nsecsElapsed() / 1e9;
    clock.restart();
    editor.on_btnFinish_clicked();
    const double finish = clock.nsecsElapsed() / 1e9;

    out << "picture " << size.width() << " x " << size.height() << " ("
        << QString::number(double(size.width()) * size.height() / 1e6, 'f', 1) << " MP)\n";
    out << "open and first threshold: " << QString::number(load, 'f', 2) << " s\n";
    out << "one slider step: " << QString::number(step, 'f', 2) << " s\n";
    out << "Finish (writes black_white.jpg): " << QString::number(finish, 'f', 2) << " s\n";
    out << "peak memory: " << QString::number(peakMegabytes(), 'f', 0) << " MB\n";
    return size.isEmpty() ? 1 : 0;
}
