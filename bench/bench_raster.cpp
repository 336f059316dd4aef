// Speed of the raster G-code export on full work-area jobs, with pictures made here:
// a dithered photograph-like gradient and black text on white, at 0.1 mm and 0.05 mm.
#include "benchsupport.h"
#include "bitmap2gcode.h"
#include "machinevalues.h"
#include "workarea.h"

#include <QApplication>
#include <QCryptographicHash>
#include <QElapsedTimer>
#include <QFile>
#include <QFont>
#include <QPainter>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double AreaWidth = WorkArea::Width;
constexpr double AreaHeight = WorkArea::Height;
constexpr int Repeats = 5;
// The sliders' starting values as machine values.
constexpr int MachineFeed = MachineValues::feed(MachineValues::StartSpeed);
constexpr int MachineTravel = MachineValues::travel(MachineValues::StartSpeed);
constexpr float MachinePower = MachineValues::power(MachineValues::StartPower);

// Lines of black text on white, the sort of job a name plate or a label is.
QImage blackText(int width, int height)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    QFont font(QStringLiteral("WenQuanYi Zen Hei"));
    font.setPixelSize(height / 40);
    painter.setFont(font);
    const QString text = QStringLiteral("TarnwellLaser 0123456789 engraved name plate, lorem ipsum dolor sit amet");
    const int lineHeight = height / 30;
    for (int y = lineHeight; y < height; y += lineHeight)
        painter.drawText(10, y, text);
    return image;
}

struct Result
{
    double seconds = 0;
    qint64 lines = 0;
    qint64 bytes = 0;
    QByteArray digest;
};

Result measure(const QImage &picture, double scale, const QString &file, bool plain, bool gray = false)
{
    Bitmap2Gcode generator;
    generator.SetFeedSpeed(MachineFeed);
    generator.SetTravelSpeed(MachineTravel);
    generator.SetPower(MachinePower);
    generator.SetPlainFormatting(plain);
    std::vector<double> times;
    for (int i = 0; i < (plain ? 1 : Repeats); ++i) {
        QElapsedTimer timer;
        timer.start();
        if (gray)
            generator.ExportGrayPixEX(picture, file, scale);
        else
            generator.ExportBlackPix(picture, file, scale);
        times.push_back(timer.nsecsElapsed() / 1e9);
    }
    std::sort(times.begin(), times.end());
    Result result;
    result.seconds = times[times.size() / 2];
    QFile in(file);
    in.open(QIODevice::ReadOnly);
    const QByteArray text = in.readAll();
    result.bytes = text.size();
    result.lines = text.count('\n');
    result.digest = QCryptographicHash::hash(text, QCryptographicHash::Sha1);
    return result;
}

void report(QTextStream &out, const QString &name, const Result &r)
{
    out << QStringLiteral("%1  %2 s  %3 lines  %4 Mlines/s  %5 MB/s\n")
               .arg(name, -44)
               .arg(r.seconds, 0, 'f', 3)
               .arg(r.lines, 9)
               .arg(r.lines / r.seconds / 1e6, 6, 'f', 2)
               .arg(r.bytes / r.seconds / 1e6, 7, 'f', 1);
    out.flush();
}

}  // namespace

int main(int argc, char *argv[])
{
    BenchApplication app(argc, argv);
    const ScratchGcode scratch;
    QTextStream out(stdout);
    out << "Raster export, median of " << Repeats << " runs, output written to " << scratch.dir.path() << "\n";

    struct Job
    {
        QString name;
        double scale;
        bool text;
        bool alsoPlain;
    };
    const Job jobs[] = {
        {QStringLiteral("(a) dithered gradient 1700x2000 @ 0.1"), 0.1, false, true},
        {QStringLiteral("(b) black text 1700x2000 @ 0.1"), 0.1, true, false},
        {QStringLiteral("(c) dithered gradient 3400x4000 @ 0.05"), 0.05, false, false},
        {QStringLiteral("(c) black text 3400x4000 @ 0.05"), 0.05, true, false},
    };
    for (const Job &job : jobs) {
        const int width = int(std::lround(AreaWidth / job.scale));
        const int height = int(std::lround(AreaHeight / job.scale));
        const QImage picture = job.text ? blackText(width, height) : ditheredGradient(width, height);
        const Result fast = measure(picture, job.scale, scratch.file, false);
        report(out, job.name, fast);
        if (job.alsoPlain) {
            // The floor: the same bytes, already made, written to a file of their own.
            QFile made(scratch.file);
            made.open(QIODevice::ReadOnly);
            const QByteArray bytes = made.readAll();
            made.close();
            std::vector<double> copies;
            for (int i = 0; i < Repeats; ++i) {
                QElapsedTimer timer;
                timer.start();
                QFile copy(scratch.file + QStringLiteral(".copy"));
                copy.open(QIODevice::WriteOnly | QIODevice::Truncate);
                copy.write(bytes);
                copy.close();
                copies.push_back(timer.nsecsElapsed() / 1e9);
            }
            std::sort(copies.begin(), copies.end());
            QFile::remove(scratch.file + QStringLiteral(".copy"));
            out << QStringLiteral("  writing the same bytes from memory: %1 s, the export takes %2 times as long\n")
                       .arg(copies[copies.size() / 2], 0, 'f', 3)
                       .arg(fast.seconds / copies[copies.size() / 2], 0, 'f', 2);
            // The same job formatted line by line through QString::arg, for comparison.
            const Result plain = measure(picture, job.scale, scratch.file, true);
            report(out, job.name + QStringLiteral(" plain"), plain);
            out << "  fast and plain output identical: " << (fast.digest == plain.digest ? "yes" : "NO") << "\n";
        }
    }

    // For reference: the corrected grayscale export of the undithered gradient.
    const QImage photo = ditheredGradient(1700, 2000, false).convertToFormat(QImage::Format_Grayscale8);
    report(out, QStringLiteral("(d) gray gradient 1700x2000 @ 0.1, corrected"),
           measure(photo, 0.1, scratch.file, false, true));
    return 0;
}
