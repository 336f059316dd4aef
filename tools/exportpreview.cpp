// tarnwell-export preview: a G-code job drawn onto a PNG of the work area, as the machine
// would burn it, and one line of figures; the same interpreter as the window's preview.
#include "exportcommon.h"

#include "gcodeinterpreter.h"
#include "toolpathrenderer.h"
#include "toolpathreport.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace {

const char *const PreviewUsage =
    "Usage: tarnwell-export preview --input JOB.gcode --output JOB.png [--px-per-mm N] [--travel]\n"
    "\n"
    "  --input FILE     G-code file to preview\n"
    "  --output FILE    PNG to write: the 170 x 200 mm work area, origin at the bottom left\n"
    "  --px-per-mm N    pixels per millimetre, more than 0 and at most 40 (default 10)\n"
    "  --travel         also draw the travel moves\n";

constexpr double DefaultPxPerMm = 10;
// 40 px/mm is a 6800 x 8000 picture; more would take gigabytes.
constexpr double MaxPxPerMm = 40;

}  // namespace

int runPreview(const QStringList &args)
{
    using namespace ExportCommon;
    Options options;
    QString error;
    const QStringList known = {QStringLiteral("input"), QStringLiteral("output"), QStringLiteral("px-per-mm")};
    const QString travelSwitch = QStringLiteral("travel");
    if (!options.parse(args, known, &error, {travelSwitch}))
        return fail(QStringLiteral("preview: %1").arg(error));
    const bool travel = options.has(travelSwitch);
    if (options.answeredHelp(PreviewUsage))
        return 0;
    if (const QString missing = options.firstMissing({"input", "output"}); !missing.isEmpty())
        return fail(QStringLiteral("preview: --%1 is missing").arg(missing));
    double pxPerMm = 0;
    if (!options.number(QStringLiteral("px-per-mm"), DefaultPxPerMm, &pxPerMm, &error))
        return fail(QStringLiteral("preview: %1").arg(error));
    if (pxPerMm <= 0 || pxPerMm > MaxPxPerMm)
        return fail(QStringLiteral("preview: --px-per-mm must be more than 0 and at most %1, not %2")
                        .arg(MaxPxPerMm)
                        .arg(pxPerMm));

    const QString input = absolute(options.text(QStringLiteral("input")));
    const QString output = absolute(options.text(QStringLiteral("output")));
    const QFileInfo inputInfo(input);
    if (!inputInfo.exists())
        return fail(QStringLiteral("preview: %1 does not exist").arg(input));
    QFile file(input);
    if (!inputInfo.isFile() || !file.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("preview: cannot read %1").arg(input));
    if (!outputWritable(output))
        return fail(QStringLiteral("preview: cannot write %1").arg(output));

    ToolpathRenderer renderer(pxPerMm);
    renderer.setShowTravel(travel);
    GcodeInterpreter interpreter;
    interpreter.setMoveHandler([&renderer](const ToolpathMove &move) { renderer.addMove(move); });
    const ToolpathSummary summary = interpreter.run(&file);

    // Written whole or not at all.
    QSaveFile png(output);
    if (!png.open(QIODevice::WriteOnly) || !renderer.image().save(&png, "PNG") || !png.commit())
        return fail(QStringLiteral("preview: cannot write %1").arg(output));

    QTextStream out(stdout);
    out << ToolpathReport::summaryLine(summary) << '\n';
    const QString outside = ToolpathReport::outsideLine(summary);
    if (!outside.isEmpty())
        out << outside << '\n';
    return 0;
}
