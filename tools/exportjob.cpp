// tarnwell-export job: a job file turned into G-code through the job engine, the same code as the
// window's "Export job", with the machine profile's dialect and full power optionally overridden.
#include "exportjob.h"

#include "jobexport.h"
#include "jobfile.h"

#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace {

const char *const JobUsage = "Usage: tarnwell-export job --input JOB.tljob --output OUT.gcode\n"
                             "                           [--dialect grbl|marlin|fan] [--max-power S]\n"
                             "\n"
                             "  --input FILE      job file to export (layers, items and machine profile)\n"
                             "  --output FILE     G-code file to write\n"
                             "  --dialect D       grbl, marlin or fan instead of the job's own\n"
                             "  --max-power S     the S value of 100 % instead of the job's own (GRBL's $30)\n"
                             "\n"
                             "Prints the estimated time, then one line per enabled layer:\n"
                             "'layer N NAME: I items, burn B mm, T'.\n";

// GRBL boards go up to $30 = 10000 and beyond on some forks; more is no machine.
constexpr double MaxPowerLimit = 100000;

}  // namespace

namespace ExportJob {

bool applyMachineOptions(const ExportCommon::Options &options, MachineProfile *machine, QString *error)
{
    const QString dialectName = QStringLiteral("dialect");
    if (options.has(dialectName)) {
        const QString text = options.text(dialectName);
        if (!JobNames::dialect(text, &machine->dialect)) {
            *error = QStringLiteral("--dialect: unknown dialect '%1' (grbl, marlin or fan)").arg(text);
            return false;
        }
    }
    const QString maxPowerName = QStringLiteral("max-power");
    double maxPower = machine->maxPower;
    if (!options.number(maxPowerName, maxPower, &maxPower, error))
        return false;
    if (!(maxPower > 0 && maxPower <= MaxPowerLimit)) {
        *error = QStringLiteral("--max-power must be above 0 and at most %1, not %2").arg(MaxPowerLimit).arg(maxPower);
        return false;
    }
    machine->maxPower = maxPower;
    return true;
}

bool exportGcode(const JobDocument &doc, const QString &source, const QString &output, QStringList *lines,
                 QString *error)
{
    JobExportResult result;
    bool done = false;
    QString message;
    // The G-code goes to the file as it is made; the file only replaces the output once whole.
    QSaveFile file(output);
    const bool opened = file.open(QIODevice::WriteOnly);
    {
        // The decoders' own complaints stay off standard error; the engine's message says it all.
        ExportCommon::PrivateWorkDir work;
        QuietStderr quiet;
        if (!work.isValid())
            message = QStringLiteral("cannot create a temporary working directory");
        else if (opened)
            done = JobExport::write(doc, &file, &result, &message);
        else
            done = JobExport::run(doc, &result, &message);  // a fault of the job is still told first
    }
    if (!done && (!opened || file.error() == QFileDevice::NoError)) {
        *error = source + QStringLiteral(": ") + message;
        file.cancelWriting();
        return false;
    }
    if (!opened || !done || !file.commit()) {
        *error = QStringLiteral("cannot write %1").arg(output);
        return false;
    }
    *lines = JobExport::summary(result);
    return true;
}

}  // namespace ExportJob

int runJob(const QStringList &args)
{
    using namespace ExportCommon;
    Options options;
    QString error;
    const QStringList known = {QStringLiteral("input"), QStringLiteral("output"), QStringLiteral("dialect"),
                               QStringLiteral("max-power")};
    if (!options.parse(args, known, &error))
        return fail(QStringLiteral("job: %1").arg(error));
    if (options.answeredHelp(JobUsage))
        return 0;
    if (const QString missing = options.firstMissing({"input", "output"}); !missing.isEmpty())
        return fail(QStringLiteral("job: --%1 is missing").arg(missing));
    MachineProfile overrides;
    if (!ExportJob::applyMachineOptions(options, &overrides, &error))
        return fail(QStringLiteral("job: %1").arg(error));

    const QString input = absolute(options.text(QStringLiteral("input")));
    const QString output = absolute(options.text(QStringLiteral("output")));
    if (!outputWritable(output))
        return fail(QStringLiteral("job: cannot write %1").arg(output));
    if (QFileInfo(output).canonicalFilePath() == QFileInfo(input).canonicalFilePath() && QFileInfo::exists(input))
        return fail(QStringLiteral("job: the output %1 would replace the job file").arg(output));
    JobDocument doc;
    if (!JobFile::load(input, &doc, &error))
        return fail(error);
    if (!ExportJob::applyMachineOptions(options, &doc.machine, &error))
        return fail(QStringLiteral("job: %1").arg(error));

    QStringList lines;
    if (!ExportJob::exportGcode(doc, QFileInfo(input).fileName(), output, &lines, &error))
        return fail(error);
    QTextStream out(stdout);
    for (const QString &line : lines)
        out << line << '\n';
    return 0;
}
