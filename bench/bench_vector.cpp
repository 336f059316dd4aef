// Times the vector G-code export on a drawing like a traced photograph: thousands of
// short closed outlines of curves and lines, the 2-opt path ordering included.
#include "appsettings.h"
#include "benchsupport.h"
#include "machinevalues.h"
#include "svg2gcodep.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fcntl.h>
#include <unistd.h>
#include <vector>

namespace {

const int DefaultPaths = 5000;
const int Runs = 3;
const qint64 Seed = 20240601;

// A small deterministic generator so every run draws the same picture.
struct Lcg
{
    quint32 state = 12345;
    double next()
    {
        state = state * 1664525u + 1013904223u;
        return (state >> 8) / double(1 << 24);
    }
};

// Each outline: three curves and a closing line around a random spot of a 1000 x 1000 page.
QByteArray tracedDrawing(int paths)
{
    Lcg rnd;
    QByteArray svg = "<svg xmlns='http://www.w3.org/2000/svg' width='170mm' height='170mm' viewBox='0 0 1000 1000'>\n";
    for (int i = 0; i < paths; ++i) {
        const double x = rnd.next() * 980 + 10, y = rnd.next() * 980 + 10;
        const double r = 1 + rnd.next() * 6;
        svg += QStringLiteral("<path d='M%1 %2 c%3 %4 %5 %6 %7 %8 s%9 %10 %11 %12 q%13 %14 %15 %16 z'/>\n")
                   .arg(x)
                   .arg(y)
                   .arg(r * 0.6)
                   .arg(-r * 0.4)
                   .arg(r * 1.2)
                   .arg(r * 0.2)
                   .arg(r)
                   .arg(r * 0.8)
                   .arg(-r * 0.5)
                   .arg(r * 0.9)
                   .arg(-r * 1.2)
                   .arg(r * 0.3)
                   .arg(-r * 0.3)
                   .arg(-r * 0.6)
                   .arg(-r * 0.1)
                   .arg(-r * 1.0)
                   .toLatin1();
    }
    return svg + "</svg>\n";
}

int countLines(const QString &path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    return f.readAll().count('\n');
}

}  // namespace

int main(int argc, char *argv[])
{
    preferOffscreen();
    QApplication app(argc, argv);
    const int paths = argc > 1 ? std::max(1, atoi(argv[1])) : DefaultPaths;

    QTemporaryDir dir;
    QDir::setCurrent(dir.path());
    const QByteArray svg = tracedDrawing(paths);
    QFile out(QStringLiteral("black_white.svg"));
    out.open(QIODevice::WriteOnly);
    out.write(svg);
    out.close();
    // Each outline: a start point and three points per segment, four segments.
    const int points = paths * (1 + 3 * 4);

    AppSettings::setOffset(0, 0);
    Svg2GcodeP gen;
    gen.SetgGcodeWidth(160, 160);
    gen.SetFeedSpeed(MachineValues::feed(MachineValues::StartSpeed));
    gen.SetTravelSpeed(MachineValues::travel(MachineValues::StartSpeed));
    gen.SetLaser(MachineValues::power(MachineValues::StartPower));
    gen.SetPrintMode(0);
    Svg2GcodeP::UseFixedSeed(Seed);

    std::vector<double> seconds;
    std::vector<double> cpuSeconds;  // the machine is shared: CPU time shows the code's own cost
    float estimate = 0;
    for (int run = 0; run < Runs; ++run) {
        // The converter's progress prints go to standard output: keep them out of the figures.
        fflush(stdout);
        const int saved = dup(STDOUT_FILENO);
        const int devNull = open("/dev/null", O_WRONLY);
        dup2(devNull, STDOUT_FILENO);
        close(devNull);
        QElapsedTimer timer;
        timer.start();
        const std::clock_t cpuStart = std::clock();
        gen.SvgToGcode(QStringLiteral("black_white.svg"), QStringLiteral("local.gcode"));
        cpuSeconds.push_back(double(std::clock() - cpuStart) / CLOCKS_PER_SEC);
        seconds.push_back(timer.nsecsElapsed() / 1e9);
        fflush(stdout);
        dup2(saved, STDOUT_FILENO);
        close(saved);
        estimate = gen.TakeEstimatedTime();
    }
    // A second argument keeps the G-code, to compare one build's bytes with another's.
    if (argc > 2) {
        QFile::remove(QString::fromLocal8Bit(argv[2]));
        QFile::copy(QStringLiteral("local.gcode"), QString::fromLocal8Bit(argv[2]));
    }
    std::sort(seconds.begin(), seconds.end());
    std::sort(cpuSeconds.begin(), cpuSeconds.end());

    QTextStream(stdout) << "vector export: paths " << paths << ", points " << points << ", output lines "
                        << countLines(QStringLiteral("local.gcode")) << ", svg bytes " << svg.size() << "\n"
                        << "seconds: best " << seconds.front() << ", median " << seconds[Runs / 2] << ", worst "
                        << seconds.back() << " (" << Runs << " runs)\n"
                        << "cpu seconds: best " << cpuSeconds.front() << ", median " << cpuSeconds[Runs / 2] << "\n"
                        << "estimated job time: " << estimate << " s\n";
    return 0;
}
