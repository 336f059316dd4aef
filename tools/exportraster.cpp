// tarnwell-export raster: a picture to raster engraving G-code through Bitmap2Gcode,
// black/white or grayscale, with the main window's speeds, power and placement.
#include "exportcommon.h"

#include "bitmap2gcode.h"
#include "classicsetup.h"
#include "estimatedtime.h"

#include <QFileInfo>
#include <QImageReader>
#include <QLoggingCategory>
#include <QTextStream>

namespace {

const char *const RasterUsage = "Usage: tarnwell-export raster --input PIC --output OUT.gcode --width MM\n"
                                "                              [--x MM] [--y MM] [--speed P] [--power P]\n"
                                "                              [--style bw|gray|gray-linear]\n"
                                "\n"
                                "  --input PIC     picture to engrave, read as it stands\n"
                                "  --output FILE   G-code file to write\n"
                                "  --width MM      width of the engraving on the work area (more than 0)\n"
                                "  --x MM, --y MM  position of the picture's top-left corner (default 0)\n"
                                "  --speed P       speed slider percentage, 0 to 100 (default 33)\n"
                                "  --power P       power slider percentage, 0 to 100 (default 91)\n"
                                "  --style S       bw (default), gray (corrected power) or gray-linear\n";

// The generators' working name; the finished file is copied to the output as a whole.
const char *const WorkingGcode = "local.gcode";

}  // namespace

int runRaster(const QStringList &args)
{
    using namespace ExportCommon;
    Options options;
    QString error;
    const QStringList known = {QStringLiteral("input"), QStringLiteral("output"), QStringLiteral("width"),
                               QStringLiteral("x"),     QStringLiteral("y"),      QStringLiteral("speed"),
                               QStringLiteral("power"), QStringLiteral("style")};
    if (!options.parse(args, known, &error))
        return fail(QStringLiteral("raster: %1").arg(error));
    if (options.answeredHelp(RasterUsage))
        return 0;
    if (const QString missing = options.firstMissing({"input", "output", "width"}); !missing.isEmpty())
        return fail(QStringLiteral("raster: --%1 is missing").arg(missing));

    double width = 0;
    double x = 0;
    double y = 0;
    int speed = 0;
    int power = 0;
    if (!options.number(QStringLiteral("width"), 0, &width, &error)
        || !options.number(QStringLiteral("x"), 0, &x, &error) || !options.number(QStringLiteral("y"), 0, &y, &error)
        || !options.percent(QStringLiteral("speed"), DefaultSpeedPercent, &speed, &error)
        || !options.percent(QStringLiteral("power"), DefaultPowerPercent, &power, &error))
        return fail(QStringLiteral("raster: %1").arg(error));
    if (width <= 0)
        return fail(QStringLiteral("raster: --width must be more than 0, not %1").arg(width));
    const QString style = options.text(QStringLiteral("style"), QStringLiteral("bw"));
    if (style != QLatin1String("bw") && style != QLatin1String("gray") && style != QLatin1String("gray-linear"))
        return fail(QStringLiteral("raster: --style must be bw, gray or gray-linear, not '%1'").arg(style));

    // Paths are taken relative to the caller's directory, before the private one is entered.
    const QString input = absolute(options.text(QStringLiteral("input")));
    const QString output = absolute(options.text(QStringLiteral("output")));
    const QFileInfo inputInfo(input);
    if (!inputInfo.exists())
        return fail(QStringLiteral("raster: %1 does not exist").arg(input));
    if (!inputInfo.isFile() || !inputInfo.isReadable())
        return fail(QStringLiteral("raster: cannot read %1").arg(input));
    QImage picture;
    QString decodeError;
    {
        const QuietStderr quiet;
        QImageReader reader(input);
        picture = reader.read();
        decodeError = reader.errorString();
    }
    if (picture.isNull())
        return fail(QStringLiteral("raster: %1 is not a picture (%2)").arg(input, decodeError));
    // Checked here so that the generator's message box can never come up.
    if (!outputWritable(output))
        return fail(QStringLiteral("raster: cannot write %1").arg(output));

    PrivateWorkDir work;
    if (!work.isValid())
        return fail(QStringLiteral("raster: cannot create a temporary working directory"));

    // The generator's progress notes are for the window's debug log, not for scripts.
    // A refusal is reported below in the tool's own words, not as the generator's warning.
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false\ndefault.warning=false"));
    Bitmap2Gcode generator;
    ClassicSetup setup;
    setup.speedPercent = speed;
    setup.powerPercent = power;
    setup.offset = QPointF(x, y);
    setup.apply(generator);
    const double scale = width / picture.width();
    const QString gcode = QString::fromLatin1(WorkingGcode);
    if (style == QLatin1String("bw"))
        generator.ExportBlackPix(picture, gcode, scale);
    else if (style == QLatin1String("gray"))
        generator.ExportGrayPixEX(picture, gcode, scale);
    else
        generator.ExportGrayPix(picture, gcode, scale);

    if (!generator.LastRefusal().isEmpty())
        return fail(QStringLiteral("raster: %1: %2").arg(input, generator.LastRefusal()));
    if (!publish(gcode, output, &error))
        return fail(QStringLiteral("raster: %1").arg(error));
    QTextStream(stdout) << "Estimated time: " << EstimatedTimeText(generator.TakeEstimatedTime()) << '\n';
    return 0;
}
