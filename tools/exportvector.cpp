// tarnwell-export vector: an SVG drawing to laser or CNC G-code through Svg2GcodeP,
// configured as the main window configures it for the Outline style.
#include "exportcommon.h"

#include "classicsetup.h"
#include "estimatedtime.h"
#include "svg2gcodep.h"
#include "svgreader.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <memory>
#include <unistd.h>

namespace {

const char *const Usage = "Usage: tarnwell-export vector --input SVG --output OUT.gcode --width MM --height MM\n"
                          "                              [--x MM] [--y MM] [--speed P] [--power P]\n"
                          "                              [--mode laser|cnc] [--feed-z MM] [--travel-z MM]\n"
                          "                              [--header TEXT] [--seed N]\n"
                          "\n"
                          "Writes vector G-code for the outlines of an SVG drawing, scaled to WIDTH mm\n"
                          "and placed at (x, y) on the work area, as the main window's Outline export.\n"
                          "  --speed, --power  slider percentages 0..100 (default 33 and 91)\n"
                          "  --mode            laser (default) or cnc\n"
                          "  --feed-z, --travel-z  CNC cutting depth and safe height in mm (default 0)\n"
                          "  --header          text written before the paths\n"
                          "  --seed            a whole number used instead of the clock to order the paths,\n"
                          "                    so that a run can be repeated exactly\n";

// The converter writes through an 8-bit file name: a plain ASCII one in the working
// directory reaches it whatever the user's file is called.
const char *const WorkOutput = "local.gcode";
// Far beyond any machine, and well inside what an int and a float hold.
const double MaxMillimetres = 100000;

// The converter chats on standard output; the tool's own output is one line.
class QuietStdout
{
public:
    QuietStdout()
    {
        fflush(stdout);
        m_saved = dup(STDOUT_FILENO);
        const int devNull = open("/dev/null", O_WRONLY);
        if (devNull >= 0) {
            dup2(devNull, STDOUT_FILENO);
            close(devNull);
        }
    }
    ~QuietStdout()
    {
        fflush(stdout);
        if (m_saved >= 0) {
            dup2(m_saved, STDOUT_FILENO);
            close(m_saved);
        }
    }

private:
    int m_saved = -1;
};

// Safety net for numbers that are not numbers in the moves.
bool hasBadNumbers(const QString &gcodePath)
{
    QFile f(gcodePath);
    if (!f.open(QIODevice::ReadOnly))
        return true;
    while (!f.atEnd()) {
        const QByteArray line = f.readLine();
        if ((line.startsWith("G0 ") || line.startsWith("G1 ")) && (line.contains("nan") || line.contains("inf")))
            return true;
    }
    return false;
}

}  // namespace

int runVector(const QStringList &args)
{
    using namespace ExportCommon;
    Options opts;
    QString error;
    const QStringList known = {"input", "output", "width",  "height",   "x",      "y",   "speed",
                               "power", "mode",   "feed-z", "travel-z", "header", "seed"};
    if (!opts.parse(args, known, &error))
        return fail(error);
    if (opts.answeredHelp(Usage))
        return 0;
    if (const QString missing = opts.firstMissing({"input", "output", "width", "height"}); !missing.isEmpty())
        return fail(QStringLiteral("--%1 is required (try --help)").arg(missing));

    double width = 0, height = 0, x = 0, y = 0, feedZ = 0, travelZ = 0;
    int speed = 0, power = 0, seed = 0;
    if (!opts.number("width", 0, &width, &error) || !opts.number("height", 0, &height, &error)
        || !opts.number("x", 0, &x, &error) || !opts.number("y", 0, &y, &error)
        || !opts.number("feed-z", 0, &feedZ, &error) || !opts.number("travel-z", 0, &travelZ, &error)
        || !opts.percent("speed", DefaultSpeedPercent, &speed, &error)
        || !opts.percent("power", DefaultPowerPercent, &power, &error) || !opts.integer("seed", 0, &seed, &error))
        return fail(error);
    // The window hands the generator whole millimetres.
    if (!(width >= 1 && width <= MaxMillimetres))
        return fail(QStringLiteral("--width: %1 mm is not a usable width").arg(opts.text("width")));
    if (!(height >= 1 && height <= MaxMillimetres))
        return fail(QStringLiteral("--height: %1 mm is not a usable height").arg(opts.text("height")));
    for (const char *name : {"x", "y", "feed-z", "travel-z"}) {
        double v = 0;
        opts.number(QLatin1String(name), 0, &v, &error);
        if (std::fabs(v) > MaxMillimetres)
            return fail(QStringLiteral("--%1: %2 mm is out of reach").arg(QLatin1String(name), opts.text(name)));
    }
    const QString mode = opts.text("mode", QStringLiteral("laser"));
    if (mode != QLatin1String("laser") && mode != QLatin1String("cnc"))
        return fail(QStringLiteral("--mode: '%1' is neither laser nor cnc").arg(mode));

    const QString input = absolute(opts.text("input"));
    const QString output = absolute(opts.text("output"));
    if (!QFileInfo(input).isFile() || !QFileInfo(input).isReadable())
        return fail(QStringLiteral("cannot read input %1").arg(input));
    if (!outputWritable(output))
        return fail(QStringLiteral("cannot write %1").arg(output));

    PrivateWorkDir work;
    if (!work.isValid())
        return fail(QStringLiteral("cannot make a temporary working directory"));
    // Read once: the check and the conversion work on the same drawing.
    std::unique_ptr<SvgImage, void (*)(SvgImage *)> drawing(Svg2GcodeP::ReadDrawing(input), SvgReader::release);
    if (!drawing)
        return fail(QStringLiteral("%1 is not an SVG drawing that can be read").arg(input));
    if (!Svg2GcodeP::CanScale(*drawing))
        return fail(QStringLiteral("%1: the drawing has no width, so it cannot be scaled").arg(input));

    Svg2GcodeP generator;
    generator.TakeEstimatedTime();  // start from nothing
    ClassicSetup setup;
    setup.speedPercent = speed;
    setup.powerPercent = power;
    setup.cnc = mode == QLatin1String("cnc");
    setup.width = width;
    setup.height = height;
    setup.feedZ = float(feedZ);
    setup.travelZ = float(travelZ);
    setup.apply(generator);
    if (opts.has("header"))
        generator.SetGcoderHeader(opts.text("header"));
    if (opts.has("seed"))
        Svg2GcodeP::UseFixedSeed(seed);
    {
        QuietStdout quiet;
        generator.SvgToGcodeAt(*drawing, QLatin1String(WorkOutput), x, y);
    }
    Svg2GcodeP::UseClockSeed();
    const float seconds = generator.TakeEstimatedTime();

    if (!generator.LastRefusal().isEmpty())
        return fail(QStringLiteral("%1: %2").arg(input, generator.LastRefusal()));
    if (!QFileInfo::exists(QLatin1String(WorkOutput)))
        return fail(QStringLiteral("%1: no G-code was written").arg(input));
    if (hasBadNumbers(QLatin1String(WorkOutput)))
        return fail(QStringLiteral("%1: the drawing gives coordinates that are not numbers").arg(input));
    if (!publish(QLatin1String(WorkOutput), output, &error))
        return fail(error);
    QTextStream(stdout) << "Estimated time: " << EstimatedTimeText(seconds) << '\n';
    return 0;
}
