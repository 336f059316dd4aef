// tarnwell-export testgrid: a material test grid (powers across, speeds or passes down) made as a
// job and exported like any job; --job also saves that job for the window.
#include "exportjob.h"

#include "jobfile.h"
#include "testgrid.h"

#include <QFile>
#include <QTextStream>

#include <cmath>

namespace {

const char *const TestGridUsage =
    "Usage: tarnwell-export testgrid --output OUT.gcode [--job OUT.tljob] --powers A:B:N --speeds A:B:N\n"
    "                                [--passes A:B:N] [--cell MM] [--gap MM] [--operation fill|image|line]\n"
    "                                [--x MM] [--y MM] [--dialect D] [--max-power S]\n"
    "\n"
    "  --output FILE      G-code file to write\n"
    "  --job FILE         also write the grid as a job file\n"
    "  --powers A:B:N     N columns of power from A to B percent\n"
    "  --speeds A:B:N     N rows of speed from A to B mm/min, the fastest on top\n"
    "  --passes A:B:N     N rows of passes from A to B instead, all at speed A of --speeds\n"
    "  --cell MM          side of each square cell (default 5)\n"
    "  --gap MM           space between cells (default 2)\n"
    "  --operation OP     fill (default), image or line\n"
    "  --x MM, --y MM     bottom-left corner of the grid with its labels (default 10, 10)\n"
    "  --dialect D        grbl (default), marlin or fan\n"
    "  --max-power S      the S value of 100 % (default 1000)\n"
    "\n"
    "A single value A stands for A:A:1. The cells are labelled with their values in vector text,\n"
    "engraved first at low power.\n";

// "A:B:N", or "A" for A:A:1. False with a message naming the option.
bool parseRange(const ExportCommon::Options &options, const QString &name, double *from, double *to, int *count,
                QString *error)
{
    const QString text = options.text(name);
    const QStringList parts = text.split(QLatin1Char(':'));
    bool ok = parts.size() == 1 || parts.size() == 3;
    double a = 0, b = 0;
    int n = 1;
    if (ok)
        a = parts[0].toDouble(&ok);
    if (ok && parts.size() == 3) {
        bool okB = false, okN = false;
        b = parts[1].toDouble(&okB);
        n = parts[2].toInt(&okN);
        ok = okB && okN;
    } else {
        b = a;
    }
    if (!ok || !std::isfinite(a) || !std::isfinite(b)) {
        *error = QStringLiteral("--%1: '%2' is not A:B:N (from, to and how many)").arg(name, text);
        return false;
    }
    if (n < 1) {
        *error = QStringLiteral("--%1: the count must be at least 1, not %2").arg(name).arg(n);
        return false;
    }
    *from = a;
    *to = b;
    *count = n;
    return true;
}

bool wholeNumber(double v) { return v == std::floor(v) && std::fabs(v) <= 1e6; }

}  // namespace

int runTestGrid(const QStringList &args)
{
    using namespace ExportCommon;
    Options options;
    QString error;
    const QStringList known = {QStringLiteral("output"), QStringLiteral("job"),       QStringLiteral("powers"),
                               QStringLiteral("speeds"), QStringLiteral("passes"),    QStringLiteral("cell"),
                               QStringLiteral("gap"),    QStringLiteral("operation"), QStringLiteral("x"),
                               QStringLiteral("y"),      QStringLiteral("dialect"),   QStringLiteral("max-power")};
    if (!options.parse(args, known, &error))
        return fail(QStringLiteral("testgrid: %1").arg(error));
    if (options.answeredHelp(TestGridUsage))
        return 0;
    if (const QString missing = options.firstMissing({"output", "powers", "speeds"}); !missing.isEmpty())
        return fail(QStringLiteral("testgrid: --%1 is missing").arg(missing));

    TestGridParams params;
    if (!parseRange(options, QStringLiteral("powers"), &params.powerFrom, &params.powerTo, &params.powerCount, &error)
        || !parseRange(options, QStringLiteral("speeds"), &params.speedFrom, &params.speedTo, &params.speedCount,
                       &error))
        return fail(QStringLiteral("testgrid: %1").arg(error));
    if (options.has(QStringLiteral("passes"))) {
        double from = 0, to = 0;
        if (!parseRange(options, QStringLiteral("passes"), &from, &to, &params.passesCount, &error))
            return fail(QStringLiteral("testgrid: %1").arg(error));
        if (!wholeNumber(from) || !wholeNumber(to))
            return fail(QStringLiteral("testgrid: --passes: '%1' is not whole numbers of passes")
                            .arg(options.text(QStringLiteral("passes"))));
        params.rowsArePasses = true;
        params.passesFrom = int(from);
        params.passesTo = int(to);
    }
    const QString operation = options.text(QStringLiteral("operation"), QStringLiteral("fill"));
    if (!JobNames::operation(operation, &params.operation))
        return fail(
            QStringLiteral("testgrid: --operation: unknown operation '%1' (fill, image or line)").arg(operation));
    if (!options.number(QStringLiteral("cell"), params.cell, &params.cell, &error)
        || !options.number(QStringLiteral("gap"), params.gap, &params.gap, &error)
        || !options.number(QStringLiteral("x"), params.x, &params.x, &error)
        || !options.number(QStringLiteral("y"), params.y, &params.y, &error)
        || !ExportJob::applyMachineOptions(options, &params.machine, &error))
        return fail(QStringLiteral("testgrid: %1").arg(error));

    const QString output = absolute(options.text(QStringLiteral("output")));
    const bool withJob = options.has(QStringLiteral("job"));
    const QString jobOutput = withJob ? absolute(options.text(QStringLiteral("job"))) : QString();
    if (!outputWritable(output))
        return fail(QStringLiteral("testgrid: cannot write %1").arg(output));
    if (withJob && jobOutput == output)
        return fail(QStringLiteral("testgrid: --job and --output both name %1").arg(output));
    if (withJob && !outputWritable(jobOutput))
        return fail(QStringLiteral("testgrid: cannot write %1").arg(jobOutput));

    JobDocument doc;
    if (!TestGrid::make(params, &doc, &error))
        return fail(QStringLiteral("testgrid: %1").arg(error));
    QStringList lines;
    if (!ExportJob::exportGcode(doc, QStringLiteral("testgrid"), output, &lines, &error))
        return fail(error);
    if (withJob && !JobFile::save(jobOutput, doc, &error)) {
        QFile::remove(output);  // both files or neither
        return fail(QStringLiteral("testgrid: cannot write %1").arg(jobOutput));
    }
    QTextStream out(stdout);
    for (const QString &line : lines)
        out << line << '\n';
    return 0;
}
