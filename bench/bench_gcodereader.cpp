// Benchmark of the G-code file reader: scan time of a generated 1,000,000-line
// job file, with and without a receiver on every emitted line, and the full command walk.
#include "gsendmodel.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QRegExp>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {
const int Lines = 1000000;
const int Runs = 3;

void quiet(QtMsgType, const QMessageLogContext &, const QString &) {}

// Raster-like job: header, scan lines of G0/G1 moves with power values,
// a comment every 500 lines, footer.
bool writeJob(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly | QIODevice::Text))
        return false;
    QTextStream out(&f);
    out << ";Layer count: 1\nG21\nG90\nM3 S0\n";
    int written = 4;
    int row = 0;
    while (written < Lines - 2) {
        if (written % 500 == 0) {
            out << ";row " << row << "\n";
        } else if (written % 2 == 0) {
            out << "G0 X" << (written % 1700) / 10.0 << " Y" << row / 10.0 << "\n";
        } else {
            out << "G1 X" << (written % 1700) / 10.0 + 0.1 << " Y" << row / 10.0 << " S" << (written * 7) % 256 << "\n";
            ++row;
        }
        ++written;
    }
    out << "M5\nG28 X Y\n";
    return true;
}

// The scan as a text stream and the move patterns do it, line by line: the figure the
// reader's own scan is measured against, on the same machine in the same run.
QRectF streamScan(const QString &path, qint32 *commands)
{
    QFile f(path);
    f.open(QIODevice::ReadOnly | QIODevice::Text);
    QTextStream in(&f);
    QRegExp g1(QStringLiteral("G1 [wds]* *X([0-9.]*[0-9]*) *Y([0-9.]*[0-9]*)"));
    QRegExp g0(QStringLiteral("G0 [wds]* *X([0-9.]*[0-9]*) *Y([0-9.]*[0-9]*)"));
    float minX = 99999, minY = 99999, maxX = -99999, maxY = -99999;
    *commands = 0;
    while (!in.atEnd()) {
        const QString line = in.readLine();
        if (line.startsWith(QLatin1Char('G')))
            ++*commands;
        QRegExp *move = nullptr;
        if (line.contains(QLatin1String("G1 ")) && g1.indexIn(line) != -1)
            move = &g1;
        else if (line.contains(QLatin1String("G0 ")) && g0.indexIn(line) != -1)
            move = &g0;
        if (move) {
            const float x = move->cap(1).toFloat(), y = move->cap(2).toFloat();
            minX = std::min(minX, x), maxX = std::max(maxX, x);
            minY = std::min(minY, y), maxY = std::max(maxY, y);
        }
    }
    return QRectF(minX, minY, maxX - minX, maxY - minY);
}

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}
}  // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QTemporaryDir dir;
    const QString path = dir.filePath("bench.gcode");
    if (!writeJob(path)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(path));
        return 1;
    }
    const qint64 bytes = QFile(path).size();
    // The reader's debug lines would measure the terminal, not the reader.
    qInstallMessageHandler(quiet);

    std::vector<double> scan, scanReceived, walk, plainScan;
    qint32 plainCommands = 0;
    QRectF plainBounds;
    qint32 commands = 0;
    QRectF bounds;
    qint64 received = 0;
    qint64 handedOut = 0;
    for (int run = 0; run < Runs; ++run) {
        QElapsedTimer clock;
        {
            GSendModel model;
            clock.start();
            model.OpenFile(path);
            scan.push_back(clock.nsecsElapsed() / 1e6);
            commands = model.CommandCount();
            bounds = model.Bounds();

            clock.start();
            handedOut = 0;
            while (model.NextCommand() != QLatin1String("end"))
                ++handedOut;
            walk.push_back(clock.nsecsElapsed() / 1e6);
        }
        clock.start();
        plainBounds = streamScan(path, &plainCommands);
        plainScan.push_back(clock.nsecsElapsed() / 1e6);
        {
            GSendModel model;
            received = 0;
            QObject::connect(&model, &GSendModel::SigWrite,
                             [&received](const QString &line) { received += line.size(); });
            clock.start();
            model.OpenFile(path);
            scanReceived.push_back(clock.nsecsElapsed() / 1e6);
        }
    }
    qInstallMessageHandler(nullptr);

    std::printf("G-code reader benchmark: %d lines, %lld bytes, %d runs (median, min)\n", Lines,
                static_cast<long long>(bytes), Runs);
    std::printf("  scan (OpenFile)                 : %8.1f ms  %8.1f ms\n", median(scan),
                *std::min_element(scan.begin(), scan.end()));
    std::printf("  line-by-line stream and patterns: %8.1f ms  %8.1f ms  (the scan before)\n", median(plainScan),
                *std::min_element(plainScan.begin(), plainScan.end()));
    std::printf("  scan with a receiver per line   : %8.1f ms  %8.1f ms\n", median(scanReceived),
                *std::min_element(scanReceived.begin(), scanReceived.end()));
    std::printf("  command walk (NextCommand)      : %8.1f ms  %8.1f ms\n", median(walk),
                *std::min_element(walk.begin(), walk.end()));
    std::printf("  commands %d, extent (%g, %g, %g x %g), commands handed out %lld, "
                "characters received %lld\n",
                commands, bounds.x(), bounds.y(), bounds.width(), bounds.height(), static_cast<long long>(handedOut),
                static_cast<long long>(received));
    std::printf("  line-by-line: commands %d, extent (%g, %g, %g x %g)\n", plainCommands, plainBounds.x(),
                plainBounds.y(), plainBounds.width(), plainBounds.height());
    return 0;
}
