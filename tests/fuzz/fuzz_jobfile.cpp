// Fuzz target of the job file reader: any bytes as a job. A refusal says why and leaves the
// document as it was; an accepted job holds only finite numbers in range, writes out and reads
// back equal, and writes the same bytes again.
#include "fuzzsupport.h"
#include "jobfile.h"

#include <cmath>

namespace {

bool isFinite(double v) { return std::isfinite(v); }

QByteArray describe(const QString &error, const QByteArray &bytes) { return error.toUtf8() + "\n" + bytes; }

}  // namespace

FUZZ_INITIALIZE()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = FuzzBytes(data, size).restCopy();
    JobDocument doc;
    doc.machine.name = QStringLiteral("before");
    QString error;
    if (!JobFile::read(bytes, &doc, &error)) {
        FUZZ_REQUIRE(!error.isEmpty() && !error.contains(QLatin1Char('\n')), describe(error, bytes));
        FUZZ_REQUIRE(
            doc ==
                [] {
                    JobDocument before;
                    before.machine.name = QStringLiteral("before");
                    return before;
                }(),
            bytes);
        return 0;
    }
    FUZZ_REQUIRE(error.isEmpty(), bytes);

    const MachineProfile &m = doc.machine;
    FUZZ_REQUIRE(isFinite(m.maxPower) && m.maxPower > 0, bytes);
    FUZZ_REQUIRE(isFinite(m.bedWidth) && m.bedWidth > 0 && isFinite(m.bedHeight) && m.bedHeight > 0, bytes);
    FUZZ_REQUIRE(isFinite(m.travelSpeed) && m.travelSpeed > 0 && isFinite(m.acceleration) && m.acceleration > 0, bytes);
    for (const JobLayer &layer : doc.layers) {
        FUZZ_REQUIRE(isFinite(layer.speed) && layer.speed > 0, bytes);
        FUZZ_REQUIRE(isFinite(layer.power) && layer.power >= 0 && layer.power <= 100, bytes);
        FUZZ_REQUIRE(layer.passes >= 1, bytes);
        const ImageParams &i = layer.image;
        FUZZ_REQUIRE(isFinite(i.minPower) && isFinite(i.brightness) && isFinite(i.contrast) && isFinite(i.gamma),
                     bytes);
        FUZZ_REQUIRE(isFinite(i.interval) && i.interval > 0 && isFinite(i.overscan) && isFinite(i.reverseOffset),
                     bytes);
        FUZZ_REQUIRE(isFinite(layer.fill.interval) && layer.fill.interval > 0 && isFinite(layer.fill.angle), bytes);
        FUZZ_REQUIRE(isFinite(layer.fill.overscan) && isFinite(layer.line.kerf), bytes);
    }
    for (const JobItem &item : doc.items) {
        FUZZ_REQUIRE(item.layer >= 0 && size_t(item.layer) < doc.layers.size(), bytes);
        FUZZ_REQUIRE(isFinite(item.x) && isFinite(item.y), bytes);
        FUZZ_REQUIRE(isFinite(item.width) && item.width > 0 && isFinite(item.height) && item.height > 0, bytes);
        FUZZ_REQUIRE(isFinite(item.source.size) && item.source.size > 0, bytes);
    }
    // Accepted with the bed checked: every item lies on it.
    FUZZ_REQUIRE(JobFile::outsideBed(doc).isEmpty(), bytes);

    const QByteArray written = JobFile::write(doc);
    JobDocument back;
    FUZZ_REQUIRE(JobFile::read(written, &back, &error), describe(error, written));
    FUZZ_REQUIRE(back == doc, written);
    FUZZ_REQUIRE(JobFile::write(back) == written, written);
    return 0;
}
