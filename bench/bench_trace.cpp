// Times tracing a 2000 x 2000 page of text end to end: `tarnwell-export trace` against the
// potrace command-line tool on the same one-bit file, and the tracer's own steps in this process.
#include "benchsupport.h"
#include "bitmap2svg.h"
#include "qxpotrace.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QPainter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <sys/resource.h>
#include <functional>
#include <vector>

namespace {

constexpr int Side = 2000;
constexpr int Runs = 9;

void quiet(QtMsgType, const QMessageLogContext &, const QString &) {}

double childCpuMs()
{
    rusage usage;
    getrusage(RUSAGE_CHILDREN, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3
           + (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
}

// Wall and processor time of a command (medians): the machine is shared, and the
// processor time shows a program's own cost when others hold the cores.
void timeCommand(QTextStream &out, const QString &label, const QString &program, const QStringList &args,
                 const QString &output)
{
    std::vector<double> wall, cpu;
    bool ok = true;
    for (int i = 0; i < Runs; ++i) {
        const double cpuBefore = childCpuMs();
        QElapsedTimer timer;
        timer.start();
        QProcess process;
        process.start(program, args);
        ok = process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0
             && ok;
        wall.push_back(timer.nsecsElapsed() / 1e6);
        cpu.push_back(childCpuMs() - cpuBefore);
    }
    std::sort(wall.begin(), wall.end());
    std::sort(cpu.begin(), cpu.end());
    out << label << wall[Runs / 2] << " ms wall, " << cpu[Runs / 2] << " ms processor" << (ok ? "" : " (FAILED)")
        << ", " << QFileInfo(output).size() << " bytes\n";
}

}  // namespace

int main(int argc, char *argv[])
{
    preferOffscreen();
    QApplication app(argc, argv);
    QTemporaryDir dir;
    // A folder as first argument keeps the page and both SVG files there.
    const QString work = argc > 1 ? QDir(QString::fromLocal8Bit(argv[1])).absolutePath() : dir.path();
    QDir().mkpath(work);
    QDir::setCurrent(work);
    QTextStream out(stdout);

    const QImage page = pageOfText(Side);
    page.save(QStringLiteral("page.png"));
    page.convertToFormat(QImage::Format_Mono).save(QStringLiteral("page.pbm"));
    out << "page of text " << Side << " x " << Side << ", median of " << Runs << " runs\n";

    const QString exporter =
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../tools/tarnwell-export"));
    if (QFileInfo(exporter).isExecutable()) {
        for (const QString &input : {QStringLiteral("page.pbm"), QStringLiteral("page.png")}) {
            timeCommand(out, QStringLiteral("tarnwell-export trace, %1: ").arg(input), exporter,
                        {QStringLiteral("trace"), QStringLiteral("--input"), input, QStringLiteral("--output"),
                         QStringLiteral("ours.svg")},
                        QStringLiteral("ours.svg"));
        }
    } else {
        out << "tarnwell-export not found at " << exporter << "\n";
    }
    const QString potrace = QStandardPaths::findExecutable(QStringLiteral("potrace"));
    if (!potrace.isEmpty()) {
        timeCommand(
            out, QStringLiteral("potrace -s, page.pbm:          "), potrace,
            {QStringLiteral("-s"), QStringLiteral("page.pbm"), QStringLiteral("-o"), QStringLiteral("potrace.svg")},
            QStringLiteral("potrace.svg"));
    } else {
        out << "potrace command-line tool not installed: no reference figure\n";
    }

    // The steps inside the exporter.
    qInstallMessageHandler(quiet);
    QxPotrace tracer;
    tracer.setBezierPrecision(Bitmap2Svg::BezierPrecision);
    out << "  decode the page (PNG):     " << medianMs(Runs, [&] { QImage(QStringLiteral("page.png")); }) << " ms\n";
    out << "  trace:                     " << medianMs(Runs, [&] { tracer.trace(page); }) << " ms ("
        << tracer.polygons().size() << " outlines)\n";
    Bitmap2Svg svg;
    svg.Trace(QStringLiteral("page.pbm"));
    out << "  write the SVG:             " << medianMs(Runs, [&] { svg.WriteSvg(QStringLiteral("inprocess.svg")); })
        << " ms\n";
    out.flush();
    QDir::setCurrent(QDir::homePath());
    return 0;
}
