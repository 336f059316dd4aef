// Fuzz target of the job runner's file reading (no port is opened): any bytes as a job. A job
// read keeps every G-code line in file order with finite, growing time; a refusal says why.
#include "fuzzsupport.h"
#include "jobrunner.h"
#include "machinelink.h"

#include <cmath>

namespace {
const QString JobName = QStringLiteral("job.gcode");
}

FUZZ_INITIALIZE()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = FuzzBytes(data, size).restCopy();
    MachineLink link;
    JobRunner runner(&link);
    QString error;
    if (!runner.loadText(bytes, JobName, &error)) {
        FUZZ_REQUIRE(error.startsWith(JobName), error.toUtf8());
        FUZZ_REQUIRE(runner.total() == 0, bytes);
        return 0;
    }
    FUZZ_REQUIRE(error.isEmpty(), bytes);
    FUZZ_REQUIRE(runner.state() == JobRunner::Idle && runner.sent() == 0, bytes);
    const int fileLines = bytes.count('\n') + 1;
    FUZZ_REQUIRE(runner.total() > 0 && runner.total() <= fileLines, bytes);
    int previous = 0;
    for (const JobRunner::Line &line : runner.lines()) {
        FUZZ_REQUIRE(line.fileLine > previous && line.fileLine <= fileLines, bytes);
        previous = line.fileLine;
        FUZZ_REQUIRE(!line.text.isEmpty() && line.text == line.text.trimmed(), line.text);
        FUZZ_REQUIRE(!line.text.contains('\n') && !line.text.contains('\0') && !line.text.contains(';'), line.text);
    }
    const double total = runner.estimatedSeconds();
    FUZZ_REQUIRE(std::isfinite(total) && total >= 0, bytes);
    FUZZ_REQUIRE(runner.remainingSeconds() == total, bytes);
    FUZZ_REQUIRE(!JobRunner::clockText(total).isEmpty(), bytes);
    return 0;
}
