// Fuzz target of the G-code file reader: any bytes as a job file. The scan must emit
// every line, count the G lines, keep a finite extent, and the command walk must end.
#include "fuzzsupport.h"
#include "gsendmodel.h"

#include <QList>

#include <algorithm>
#include <cmath>

namespace {
const char *const JobFile = "job.gcode";
const float ExtentStartMin = 99999.0f;
const float ExtentStartMax = -99999.0f;
}  // namespace

FUZZ_INITIALIZE()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = FuzzBytes(data, size).restCopy();
    fuzzWriteFile(QString::fromLatin1(JobFile), bytes);

    GSendModel reader;
    int emitted = 0;
    int gLines = 0;
    QObject::connect(&reader, &GSendModel::SigWrite, [&](const QString &line) {
        FUZZ_REQUIRE(!line.contains(QLatin1Char('\n')), line.toUtf8());
        ++emitted;
        gLines += line.startsWith(QLatin1Char('G'));
    });
    reader.Reset();
    reader.OpenFile(QString::fromLatin1(JobFile));

    // Lines as the text stream splits them: at "\n", a last line without one counted too.
    // Other bytes pass through the text decoder first, which may take a byte order mark for
    // UTF-16 or hold back an unfinished character at the end; text mode treats a carriage
    // return differently at the end of the file and elsewhere.
    const bool plain = std::all_of(bytes.begin(), bytes.end(), [](char c) { return uchar(c) < 0x80 && c != '\r'; });
    const int lines = bytes.count('\n') + (bytes.isEmpty() || bytes.endsWith('\n') ? 0 : 1);
    FUZZ_REQUIRE(!plain || emitted == lines, bytes);
    FUZZ_REQUIRE(reader.CommandCount() == gLines, bytes);

    const QRectF extent = reader.Bounds();
    FUZZ_REQUIRE(std::isfinite(extent.left()) && std::isfinite(extent.top()) && std::isfinite(extent.width())
                     && std::isfinite(extent.height()),
                 bytes);
    const bool untouched =
        extent
        == QRectF(ExtentStartMin, ExtentStartMin, ExtentStartMax - ExtentStartMin, ExtentStartMax - ExtentStartMin);
    // The number patterns hold no sign, so a real extent never reaches below 0.
    FUZZ_REQUIRE(untouched || (extent.left() >= 0 && extent.top() >= 0 && extent.width() >= 0 && extent.height() >= 0),
                 bytes);

    // The walk hands out each remaining line at most once, then "end" for good.
    // When only skipped lines remain, the previous command is handed out once more.
    int calls = 0;
    QString command;
    QString previous;
    while ((command = reader.NextCommand()) != QLatin1String("end")) {
        FUZZ_REQUIRE(++calls <= emitted + 1, bytes);
        if (command == previous)
            continue;
        previous = command;
        FUZZ_REQUIRE(command.endsWith(QLatin1Char('\n')), command.toUtf8());
        FUZZ_REQUIRE(command.count(QLatin1Char('\n')) == 1, command.toUtf8());
        FUZZ_REQUIRE(!command.startsWith(QLatin1Char(';')), command.toUtf8());
        FUZZ_REQUIRE(!command.contains(QLatin1String("M109")), command.toUtf8());
    }
    FUZZ_REQUIRE(reader.NextCommand() == QLatin1String("end"), bytes);
    return 0;
}
