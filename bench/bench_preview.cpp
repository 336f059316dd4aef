// Speed and memory of the toolpath preview on the full work-area dithered black/white job,
// against the export of the same job in the same run; peak memory at two file sizes.
#include "benchsupport.h"
#include "bitmap2gcode.h"
#include "gcodeinterpreter.h"
#include "machinevalues.h"
#include "toolpathrenderer.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int Repeats = 3;
constexpr double PxPerMm = 10;
// The sliders' starting values as machine values.
constexpr int MachineFeed = MachineValues::feed(MachineValues::StartSpeed);
constexpr int MachineTravel = MachineValues::travel(MachineValues::StartSpeed);
constexpr float MachinePower = MachineValues::power(MachineValues::StartPower);

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

// Peak resident memory since the last reset, in MB (Linux).
double peakMegabytes()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toDouble() / 1024.0;
    }
    return -1;
}

void resetPeak()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    if (refs.open(QIODevice::WriteOnly))
        refs.write("5");
}

struct Preview
{
    double seconds = 0;
    double parseSeconds = 0;
    ToolpathSummary summary;
};

Preview preview(const QString &file, bool draw)
{
    QFile in(file);
    in.open(QIODevice::ReadOnly);
    QElapsedTimer timer;
    timer.start();
    ToolpathRenderer renderer(PxPerMm);
    GcodeInterpreter interpreter;
    if (draw)
        interpreter.setMoveHandler([&renderer](const ToolpathMove &m) { renderer.addMove(m); });
    Preview p;
    p.summary = interpreter.run(&in);
    if (draw) {
        const QImage image = renderer.image();
        if (image.isNull())
            qFatal("no picture");
    }
    p.seconds = timer.nsecsElapsed() / 1e9;
    return p;
}

}  // namespace

int main(int argc, char *argv[])
{
    BenchApplication app(argc, argv);
    const ScratchGcode scratch;
    QTextStream out(stdout);

    // Half the rows and then all of them: the preview's memory must not follow the file.
    for (const int height : {1000, 2000}) {
        const QImage picture = ditheredGradient(1700, height);
        Bitmap2Gcode generator;
        generator.SetFeedSpeed(MachineFeed);
        generator.SetTravelSpeed(MachineTravel);
        generator.SetPower(MachinePower);
        std::vector<double> exportTimes, parseTimes, previewTimes;
        float exportEstimate = 0;
        for (int i = 0; i < Repeats; ++i) {
            QElapsedTimer timer;
            timer.start();
            generator.ExportBlackPix(picture, scratch.file, 0.1);
            exportTimes.push_back(timer.nsecsElapsed() / 1e9);
            exportEstimate = generator.TakeEstimatedTime();
        }
        const qint64 bytes = QFileInfo(scratch.file).size();
        ToolpathSummary summary;
        double peak = 0;
        for (int i = 0; i < Repeats; ++i) {
            parseTimes.push_back(preview(scratch.file, false).seconds);
            resetPeak();
            const double before = peakMegabytes();
            const Preview p = preview(scratch.file, true);
            peak = std::max(peak, peakMegabytes() - before);
            previewTimes.push_back(p.seconds);
            summary = p.summary;
        }
        const double exportSeconds = median(exportTimes);
        const double previewSeconds = median(previewTimes);
        out << QStringLiteral("Dithered black/white 1700x%1 @ 0.1 mm: %2 lines, %3 MB, %4 burn moves\n")
                   .arg(height)
                   .arg(summary.lines)
                   .arg(bytes / 1e6, 0, 'f', 1)
                   .arg(summary.burnMoves);
        out << QStringLiteral("  export                 %1 s (median of %2)\n")
                   .arg(exportSeconds, 0, 'f', 3)
                   .arg(Repeats);
        out << QStringLiteral("  preview, parse only    %1 s\n").arg(median(parseTimes), 0, 'f', 3);
        out << QStringLiteral("  preview, parse + draw  %1 s at %2 px/mm = %3 x the export\n")
                   .arg(previewSeconds, 0, 'f', 3)
                   .arg(PxPerMm)
                   .arg(previewSeconds / exportSeconds, 0, 'f', 2);
        out << QStringLiteral("  peak memory added by the preview  %1 MB (the picture alone: %2 MB)\n")
                   .arg(peak, 0, 'f', 1)
                   .arg(1700.0 * 2000.0 * (4 + 1) / 1e6, 0, 'f', 1);
        out << QStringLiteral("  estimated time: export %1 s, preview %2 s\n")
                   .arg(double(exportEstimate), 0, 'f', 1)
                   .arg(summary.seconds, 0, 'f', 1);
        out.flush();
    }
    return 0;
}
