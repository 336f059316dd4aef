// tarnwell-export trace: a picture traced into an outline SVG by the program's own tracer.
// Checks the input before tracing so that bad pictures fail with a message, not an empty file.
#include "exportcommon.h"

#include "bitmap2svg.h"

#include <QFileInfo>
#include <QtGlobal>
#include <QImageReader>

namespace {

const char *const TraceUsage = "Usage: tarnwell-export trace --input PIC --output OUT.svg\n"
                               "\n"
                               "Traces the dark parts of the picture (gray below 128, transparent as white)\n"
                               "into closed outlines, holes included, and writes them as an SVG drawing\n"
                               "whose coordinates are the picture's pixels.\n";

const char *const WorkFile = "black_white.svg";

}  // namespace

int runTrace(const QStringList &args)
{
    using namespace ExportCommon;
    Options options;
    QString error;
    if (!options.parse(args, {QStringLiteral("input"), QStringLiteral("output")}, &error))
        return fail(error);
    if (options.answeredHelp(TraceUsage))
        return 0;
    if (const QString missing = options.firstMissing({"input", "output"}); !missing.isEmpty())
        return fail(QStringLiteral("--%1 is missing").arg(missing));

    const QString input = absolute(options.text(QStringLiteral("input")));
    const QString output = absolute(options.text(QStringLiteral("output")));
    const QFileInfo inputInfo(input);
    if (!inputInfo.exists() || !inputInfo.isFile())
        return fail(QStringLiteral("cannot read %1: no such file").arg(input));
    if (!inputInfo.isReadable())
        return fail(QStringLiteral("cannot read %1").arg(input));
    bool decodable = false;
    {
        // Reading even the header makes some decoders complain on the error stream.
        const QuietStderr quiet;
        decodable = QImageReader(input).canRead();
    }
    if (!decodable)
        return fail(QStringLiteral("%1 is not a picture that can be decoded").arg(input));
    if (!outputWritable(output))
        return fail(QStringLiteral("cannot write %1").arg(output));

    PrivateWorkDir work;
    if (!work.isValid())
        return fail(QStringLiteral("cannot create a temporary working directory"));

    Bitmap2Svg tracer;
    bool traced = false;
    {
        const QuietStderr quiet;
        tracer.Trace(input);
        traced = tracer.LastTraceOk();
        if (traced)
            tracer.WriteSvg(QString::fromLatin1(WorkFile));
    }
    if (!traced)
        return fail(QStringLiteral("%1 could not be decoded or traced").arg(input));
    if (!publish(QString::fromLatin1(WorkFile), output, &error))
        return fail(error);
    return 0;
}
