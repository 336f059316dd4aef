// Fuzz target of the raster generator: small pictures of any size, format and content,
// exported at any placement; the output must stay finite, inside the picture's box, and the
// fast and the plain formatter must write the same bytes.
#include "bitmap2gcode.h"
#include "fuzzsupport.h"

#include <QImage>
#include <QVector>

#include <cmath>
#include <cstring>

namespace {

constexpr int MaxSide = 64;
constexpr double WorkHeight = 200.0;
const char *const OutputFile = "out.gcode";

enum Job { BlackWhite, Gray, GrayCorrected, DiffusedBlackWhite, HalftoneBlackWhite, JobCount };

QImage pictureFrom(FuzzBytes &in)
{
    const int width = in.intIn(1, MaxSide);
    const int height = in.intIn(1, MaxSide);
    const auto format = QImage::Format(in.intIn(QImage::Format_Mono, QImage::NImageFormats - 1));
    QImage image(width, height, format);
    if (image.isNull())
        return image;
    if (image.colorCount() > 0 || format == QImage::Format_Mono || format == QImage::Format_MonoLSB
        || format == QImage::Format_Indexed8) {
        QVector<QRgb> table(format == QImage::Format_Indexed8 ? in.intIn(1, 256) : 2);
        for (QRgb &entry : table)
            entry = qRgba(in.byte(), in.byte(), in.byte(), in.byte());
        image.setColorTable(table);
    }
    // Pixels come from the rest of the input, repeated; an empty rest leaves them black.
    uchar *bits = image.bits();
    const size_t total = size_t(image.sizeInBytes());
    std::memset(bits, 0, total);
    if (in.restSize() > 0)
        for (size_t i = 0; i < total; ++i)
            bits[i] = in.rest()[i % in.restSize()];
    return image;
}

QByteArray exportOnce(Job job, const QImage &image, double scale, QPointF offset, float power, int feed, int travel,
                      bool plain, float *estimate)
{
    Bitmap2Gcode generator;
    generator.SetPlainFormatting(plain);
    generator.SetFeedSpeed(feed);
    generator.SetTravelSpeed(travel);
    generator.SetPower(power);
    generator.offset = offset;
    const QString out = QString::fromLatin1(OutputFile);
    switch (job) {
    case BlackWhite:
        generator.ExportBlackPix(image, out, scale);
        break;
    case Gray:
        generator.ExportGrayPix(image, out, scale);
        break;
    case GrayCorrected:
        generator.ExportGrayPixEX(image, out, scale);
        break;
    case DiffusedBlackWhite:
        generator.ExportBlackPix(generator.GrayScalePicture(image), out, scale);
        break;
    case HalftoneBlackWhite:
        generator.ExportBlackPix(generator.Image2Halftone(image), out, scale);
        break;
    default:
        break;
    }
    *estimate = generator.TakeEstimatedTime();
    return fuzzReadFile(QString::fromLatin1(OutputFile));
}

}  // namespace

FUZZ_INITIALIZE()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzBytes in(data, size);
    const Job job = Job(in.intIn(0, JobCount - 1));
    const double scale = in.doubleIn(0.001, 3.0);
    const QPointF offset(in.doubleIn(0, 170), in.doubleIn(0, WorkHeight));
    const float power = float(in.doubleIn(0, 255));
    const int feed = in.intIn(1, 20000);
    const int travel = in.intIn(1, 20000);
    const QImage image = pictureFrom(in);
    if (image.isNull())
        return 0;

    float fastEstimate = 0;
    float plainEstimate = 0;
    const QByteArray fast = exportOnce(job, image, scale, offset, power, feed, travel, false, &fastEstimate);
    const QByteArray plain = exportOnce(job, image, scale, offset, power, feed, travel, true, &plainEstimate);
    FUZZ_REQUIRE(fast == plain, fast.left(600) + "\n--- plain:\n" + plain.left(600));
    FUZZ_REQUIRE(std::isfinite(fastEstimate) && fastEstimate >= 0, QByteArray::number(fastEstimate));

    const GcodeBox box = {offset.x(),
                          offset.x() + image.width() * scale,
                          WorkHeight - offset.y() - image.height() * scale,
                          WorkHeight - offset.y(),
                          0.01,
                          255.0};
    const int coordinates = fuzzCheckGcode(fast, box);
    // The frame alone is ten moves, so an export that wrote nothing is a fault too.
    FUZZ_REQUIRE(coordinates >= 20, fast.left(600));
    return 0;
}
