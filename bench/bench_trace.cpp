// Times tracing a 2000 x 2000 page of text end to end: `tarnwell-export trace` against the
// potrace command-line tool on the same page, and the tracer's own steps in this process.
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
#include <functional>
#include <vector>

namespace {

constexpr int Side = 2000;
constexpr int Runs = 9;

void quiet(QtMsgType, const QMessageLogContext &, const QString &) {}

QImage pageOfText()
{
    QImage image(Side, Side, QImage::Format_ARGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font;
    font.setPixelSize(40);
    font.setStyleStrategy(QFont::NoAntialias);
    painter.setFont(font);
    painter.setPen(Qt::black);
    const QString line = QStringLiteral("The quick brown fox jumps over the lazy dog 0123456789 ABCDEFG");
    for (int y = 50; y < Side; y += 50)
        painter.drawText(20, y, line);
    return image;
}

double medianMs(const std::function<bool()> &work, bool *ok)
{
    std::vector<double> times;
    *ok = true;
    for (int i = 0; i < Runs; ++i) {
        QElapsedTimer timer;
        timer.start();
        *ok = work() && *ok;
        times.push_back(timer.nsecsElapsed() / 1e6);
    }
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

bool run(const QString &program, const QStringList &args)
{
    QProcess process;
    process.start(program, args);
    return process.waitForFinished(60000) && process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    // A folder as first argument keeps the page and both SVG files there.
    const QString work = argc > 1 ? QDir(QString::fromLocal8Bit(argv[1])).absolutePath() : dir.path();
    QDir().mkpath(work);
    QDir::setCurrent(work);
    QTextStream out(stdout);

    const QImage page = pageOfText();
    page.save(QStringLiteral("page.png"));
    page.convertToFormat(QImage::Format_Mono).save(QStringLiteral("page.pbm"));
    out << "page of text " << Side << " x " << Side << ", median of " << Runs << " runs\n";

    const QString exporter = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("../tools/tarnwell-export"));
    bool ok = false;
    if (QFileInfo(exporter).isExecutable()) {
        const double ms = medianMs([&] {
            return run(exporter, {QStringLiteral("trace"), QStringLiteral("--input"), QStringLiteral("page.png"),
                                  QStringLiteral("--output"), QStringLiteral("ours.svg")});
        }, &ok);
        out << "tarnwell-export trace:       " << ms << " ms" << (ok ? "" : " (FAILED)") << ", "
            << QFileInfo(QStringLiteral("ours.svg")).size() << " bytes\n";
    } else {
        out << "tarnwell-export not found at " << exporter << "\n";
    }
    const QString potrace = QStandardPaths::findExecutable(QStringLiteral("potrace"));
    if (!potrace.isEmpty()) {
        const double ms = medianMs([&] {
            return run(potrace, {QStringLiteral("-s"), QStringLiteral("page.pbm"), QStringLiteral("-o"),
                                 QStringLiteral("potrace.svg")});
        }, &ok);
        out << "potrace -s (command line):   " << ms << " ms" << (ok ? "" : " (FAILED)") << ", "
            << QFileInfo(QStringLiteral("potrace.svg")).size() << " bytes\n";
    } else {
        out << "potrace command-line tool not installed: no reference figure\n";
    }

    // The steps inside the exporter.
    qInstallMessageHandler(quiet);
    QxPotrace tracer;
    tracer.setBezierPrecision(Bitmap2Svg::BezierPrecision);
    out << "  decode the page:           " << medianMs([&] { return !QImage(QStringLiteral("page.png")).isNull(); }, &ok)
        << " ms\n";
    out << "  trace:                     " << medianMs([&] { return tracer.trace(page); }, &ok) << " ms ("
        << tracer.polygons().size() << " outlines)\n";
    Bitmap2Svg svg;
    svg.Trace(QStringLiteral("page.png"));
    out << "  write the SVG:             " << medianMs([&] {
        svg.WriteSvg(QStringLiteral("inprocess.svg"));
        return true;
    }, &ok) << " ms\n";
    out.flush();
    QDir::setCurrent(QDir::homePath());
    return 0;
}
