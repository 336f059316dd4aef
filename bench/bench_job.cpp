// Speed and peak memory of the job engine's raster road: a full-bed gray gradient sampled, dithered
// (Floyd-Steinberg) and scanned at 0.1 mm into GRBL G-code, beside the classic export of the same burn.
#include "benchsupport.h"
#include "bitmap2gcode.h"
#include "jobencoder.h"
#include "jobexport.h"
#include "jobraster.h"
#include "machinevalues.h"

#include <QBuffer>
#include <QFile>
#include <QTextStream>

#include <algorithm>
#include <cstdio>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int Repeats = 5;
constexpr int PictureWidth = 1700;
constexpr int PictureHeight = 2000;
const QRectF Bed(0, 0, 170, 200);

// Counts moves and does nothing else: the scan's own cost.
class CountingSink : public MoveSink
{
public:
    void move(const PlannedMove &) override { ++count; }
    qint64 count = 0;
};

struct Stages
{
    double sample = 0;  // seconds
    double reduce = 0;
    double scan = 0;  // scan and encoding together
    QByteArray text;
    QImage cells;

    double total() const { return sample + reduce + scan; }
};

JobRaster::ScanSettings settings(const MachineProfile &profile)
{
    JobRaster::ScanSettings s;
    s.params.mode = ImageMode::Dither;
    s.params.dither = DitherKernel::FloydSteinberg;
    s.params.interval = 0.1;
    s.speed = 3000;
    s.power = JobDialect::plannedPower(profile, 60);
    s.bedWidth = profile.bedWidth;
    return s;
}

// One run of the job's raster stages, each timed.
Stages runJob(const QImage &picture)
{
    MachineProfile profile;
    const JobRaster::ScanSettings s = settings(profile);
    Stages r;
    QElapsedTimer timer;
    timer.start();
    const JobRaster::Grid grid = JobRaster::grid(Bed, s.params.interval);
    r.cells = JobRaster::sample(picture, grid, s.params);
    r.sample = timer.nsecsElapsed() / 1e9;
    timer.restart();
    JobRaster::reduce(&r.cells, s.params);
    r.reduce = timer.nsecsElapsed() / 1e9;
    timer.restart();
    JobEncoder encoder(profile, &r.text);
    qint32 x = 0;
    qint32 y = 0;
    JobRaster::scan(r.cells, Bed, s, encoder, &x, &y);
    encoder.finish();
    r.scan = timer.nsecsElapsed() / 1e9;
    return r;
}

// A figure of /proc/self/status in kB ("VmHWM", "VmRSS"); -1 when it cannot be read.
qint64 statusKb(const char *key)
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray prefix = QByteArray(key) + ':';
    for (const QByteArray &line : status.readAll().split('\n')) {
        if (line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed().split(' ').first().toLongLong();
    }
    return -1;
}

// Starts the peak resident size again from the present one (Linux 4.0 and later).
bool resetPeak()
{
    QFile refs(QStringLiteral("/proc/self/clear_refs"));
    return refs.open(QIODevice::WriteOnly) && refs.write("5") == 1;
}

struct PeakMemory
{
    qint64 kb = -1;  // growth of the peak resident size during one run; -1 when not measured
    qint64 outputBytes = 0;
};

PeakMemory measurePeak(const QImage &picture)
{
    PeakMemory m;
    if (!resetPeak())
        return m;
    const qint64 before = statusKb("VmRSS");
    const Stages once = runJob(picture);
    m.kb = statusKb("VmHWM") - before;
    m.outputBytes = once.text.size();
    return m;
}

// The picture was resident before the run; it counts as the job's.
void report(QTextStream &out, const QString &name, const PeakMemory &m, qint64 pictureBytes)
{
    if (m.kb < 0) {
        out << name << ": not measured (/proc/self/clear_refs cannot be written)\n";
        return;
    }
    const double peakMb = (m.kb * 1024.0 + pictureBytes) / 1e6;
    const double budgetMb = (3.0 * pictureBytes + m.outputBytes) / 1e6;
    out << QStringLiteral("%1: %2 MB (picture %3 MB, output %4 MB); budget 3 x picture + output = %5 MB: %6\n")
               .arg(name)
               .arg(peakMb, 0, 'f', 1)
               .arg(pictureBytes / 1e6, 0, 'f', 1)
               .arg(m.outputBytes / 1e6, 0, 'f', 1)
               .arg(budgetMb, 0, 'f', 1)
               .arg(peakMb <= budgetMb ? QStringLiteral("within") : QStringLiteral("OVER"));
}

// The whole export of a job holding the picture as a PNG, written to a file as it is made (as
// `tarnwell-export job` does): decoding, sampling, dithering, scanning, encoding, estimating.
struct WholeExport
{
    double seconds = 0;
    qint64 lines = 0;
    PeakMemory peak;
};

WholeExport exportWholeJob(const QByteArray &png, const QString &path)
{
    JobDocument doc;
    JobLayer layer;
    layer.name = QStringLiteral("Photo");
    layer.image.interval = 0.1;
    doc.layers = {layer};
    JobItem item;
    item.width = Bed.width();
    item.height = Bed.height();
    item.source.kind = SourceKind::Picture;
    item.source.data = png;
    doc.items = {item};
    WholeExport w;
    const bool measured = resetPeak();
    const qint64 before = statusKb("VmRSS");
    QElapsedTimer timer;
    timer.start();
    QFile file(path);
    JobExportResult result;
    QString error;
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || !JobExport::write(doc, &file, &result, &error))
        std::fprintf(stderr, "export failed: %s\n", qPrintable(error));
    file.close();
    w.seconds = timer.nsecsElapsed() / 1e9;
    w.peak.kb = measured ? statusKb("VmHWM") - before : -1;
    w.peak.outputBytes = 1 << 20;  // the block the export writes at a time
    QFile made(path);
    made.open(QIODevice::ReadOnly);
    while (!made.atEnd()) {
        const QByteArray block = made.read(1 << 22);
        w.lines += block.count('\n');
    }
    return w;
}

template <typename T>
T median(std::vector<T> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

}  // namespace

QImage grayGradient()
{
    return ditheredGradient(PictureWidth, PictureHeight, false).convertToFormat(QImage::Format_Grayscale8);
}

int main(int argc, char *argv[])
{
    const qint64 pictureBytes = qint64(PictureWidth) * PictureHeight;
    std::printf("Job raster road: %d x %d gray gradient, Floyd-Steinberg at 0.1 mm on 170 x 200 mm, grbl, "
                "median of %d runs\n",
                PictureWidth, PictureHeight, Repeats);
    std::fflush(stdout);

    // The whole export, in a child process of its own that has made nothing large before it.
    const pid_t exporter = fork();
    if (exporter == 0) {
        QTextStream out(stdout);
        const QImage picture = grayGradient();
        const qint64 pictureBytes = qint64(PictureWidth) * PictureHeight;
        // The picture as the job file holds it; only the export itself is measured.
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        picture.save(&buffer, "PNG");
        const ScratchGcode target;
        const WholeExport w = exportWholeJob(png, target.file);
        out << QStringLiteral(
                   "Whole export of the job (PNG decoded, streamed to a file): %1 s, %2 lines, %3 M lines/s\n")
                   .arg(w.seconds, 0, 'f', 4)
                   .arg(w.lines)
                   .arg(w.lines / w.seconds / 1e6, 0, 'f', 2);
        // The picture is decoded inside the run here: the growth of the peak is all the job's.
        const double peakMb = w.peak.kb * 1024.0 / 1e6;
        const double budgetMb = (3.0 * pictureBytes + w.peak.outputBytes) / 1e6;
        out << QStringLiteral("  peak memory growth %1 MB; budget 3 x picture + output block = %2 MB: %3\n")
                   .arg(peakMb, 0, 'f', 1)
                   .arg(budgetMb, 0, 'f', 1)
                   .arg(w.peak.kb < 0        ? QStringLiteral("not measured")
                        : peakMb <= budgetMb ? QStringLiteral("within")
                                             : QStringLiteral("OVER"));
        out.flush();
        std::fflush(stdout);
        _exit(0);
    }
    if (exporter > 0)
        waitpid(exporter, nullptr, 0);

    // Peak memory of one run, above what the process held with the picture already made. First in
    // a child process whose allocator maps every large block on its own, which is what the job
    // itself holds; then here, with the allocator as making the picture leaves it: having freed
    // large blocks, it keeps freed blocks of up to that size in its heap, so the copies the output
    // buffer leaves behind as it grows stay resident.
    const pid_t child = fork();
    if (child == 0) {
        mallopt(M_MMAP_THRESHOLD, 128 * 1024);
        QTextStream childOut(stdout);
        report(childOut, QStringLiteral("Peak memory, large blocks mapped"), measurePeak(grayGradient()), pictureBytes);
        childOut.flush();
        std::fflush(stdout);
        _exit(0);
    }
    if (child > 0)
        waitpid(child, nullptr, 0);

    BenchApplication app(argc, argv);
    QTextStream out(stdout);
    const QImage picture = grayGradient();
    report(out, QStringLiteral("Peak memory, allocator as left by making the picture"), measurePeak(picture),
           pictureBytes);

    std::vector<Stages> runs;
    for (int i = 0; i < Repeats; ++i)
        runs.push_back(runJob(picture));
    std::sort(runs.begin(), runs.end(), [](const Stages &a, const Stages &b) { return a.total() < b.total(); });
    const Stages &job = runs[runs.size() / 2];
    const qint64 lines = job.text.count('\n');
    out << "Job road: sample, reduce, then scan into the grbl encoder's buffer in memory\n";
    out << QStringLiteral("  sample %1 s, reduce %2 s, scan + encode %3 s, total %4 s\n")
               .arg(job.sample, 0, 'f', 4)
               .arg(job.reduce, 0, 'f', 4)
               .arg(job.scan, 0, 'f', 4)
               .arg(job.total(), 0, 'f', 4);
    out << QStringLiteral("  %1 lines, %2 MB: %3 M lines/s\n")
               .arg(lines)
               .arg(job.text.size() / 1e6, 0, 'f', 1)
               .arg(lines / job.total() / 1e6, 0, 'f', 2);

    // The scan alone, into a sink that only counts.
    std::vector<double> scanTimes;
    qint64 moves = 0;
    for (int i = 0; i < Repeats; ++i) {
        MachineProfile profile;
        CountingSink sink;
        qint32 x = 0;
        qint32 y = 0;
        QElapsedTimer timer;
        timer.start();
        JobRaster::scan(job.cells, Bed, settings(profile), sink, &x, &y);
        scanTimes.push_back(timer.nsecsElapsed() / 1e9);
        moves = sink.count;
    }
    const double scanOnly = median(scanTimes);
    out << QStringLiteral("  scan alone: %1 moves in %2 s, %3 M moves/s\n")
               .arg(moves)
               .arg(scanOnly, 0, 'f', 4)
               .arg(moves / scanOnly / 1e6, 0, 'f', 1);

    // Sampling when the picture is not the grid's size: twice as fine, and a photo's odd size.
    for (const QSize size : {QSize(2 * PictureWidth, 2 * PictureHeight), QSize(4032, 3024)}) {
        const QImage large = picture.scaled(size);
        const JobRaster::Grid grid = JobRaster::grid(Bed, 0.1);
        const double ms = medianMs(Repeats, [&] { JobRaster::sample(large, grid, ImageParams()); });
        out << QStringLiteral("  sample %1 x %2 onto %3 x %4: %5 s\n")
                   .arg(size.width())
                   .arg(size.height())
                   .arg(grid.columns)
                   .arg(grid.rows)
                   .arg(ms / 1e3, 0, 'f', 4);
    }

    // Written to a file, as the classic export must.
    const ScratchGcode scratch;
    std::vector<double> writeTimes;
    for (int i = 0; i < Repeats; ++i) {
        QElapsedTimer timer;
        timer.start();
        QFile file(scratch.file);
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        file.write(job.text);
        file.close();
        writeTimes.push_back(timer.nsecsElapsed() / 1e9);
    }
    const double jobWithFile = job.total() + median(writeTimes);
    out << QStringLiteral("  with the file written: %1 s, %2 M lines/s\n")
               .arg(jobWithFile, 0, 'f', 4)
               .arg(lines / jobWithFile / 1e6, 0, 'f', 2);

    // The classic export of the same burn: the dithered cells as its black/white picture.
    Bitmap2Gcode classic;
    classic.SetFeedSpeed(MachineValues::feed(MachineValues::StartSpeed));
    classic.SetTravelSpeed(MachineValues::travel(MachineValues::StartSpeed));
    classic.SetPower(MachineValues::power(MachineValues::StartPower));
    const double classicSeconds =
        medianMs(Repeats, [&] { classic.ExportBlackPix(job.cells, scratch.file, 0.1); }) / 1e3;
    QFile made(scratch.file);
    made.open(QIODevice::ReadOnly);
    const qint64 classicLines = made.readAll().count('\n');
    out << QStringLiteral("Classic black/white export of the same dithered cells: %1 s, %2 lines, %3 M lines/s\n")
               .arg(classicSeconds, 0, 'f', 4)
               .arg(classicLines)
               .arg(classicLines / classicSeconds / 1e6, 0, 'f', 2);
    out << QStringLiteral("  the job road takes %1 times the classic export's time (file written: %2)\n")
               .arg(job.total() / classicSeconds, 0, 'f', 2)
               .arg(jobWithFile / classicSeconds, 0, 'f', 2);

    return 0;
}
