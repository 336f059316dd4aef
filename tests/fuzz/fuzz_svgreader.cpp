// Fuzz target of the SVG reader and the vector converter behind it: any bytes as a
// drawing. Parsed paths must be whole cubic chains of finite numbers; a drawing the
// converter can scale must come out finite and inside the frame it was asked for.
#include "fuzzsupport.h"
#include "pathconverter.h"
#include "svgreader.h"

#include <cfloat>
#include <cmath>

namespace {

const char *const Units[] = {"px", "pt", "pc", "mm", "cm", "in"};
const char *const InputFile = "in.svg";
const char *const OutputFile = "out.gcode";
constexpr double WorkHeight = 200.0;
// Larger drawings only slow the run down: the path order costs 24000 draws per path.
constexpr int MaxPaths = 64;
constexpr int MaxPoints = 4000;
constexpr double MaxScaledHeight = 1000.0;
// The converter lifts the drawing 1 mm above the frame's top edge; machines run it so.
constexpr double TopLift = 1.0;
// Coordinates are printed with one decimal.
constexpr double PrintSlack = 0.06;

struct Extent
{
    double minX = DBL_MAX, minY = DBL_MAX, maxX = -DBL_MAX, maxY = -DBL_MAX;
    int paths = 0;
    int points = 0;
};

Extent checkImage(const SvgImage &image, const QByteArray &document)
{
    FUZZ_REQUIRE(std::isfinite(image.width) && std::isfinite(image.height), document);
    Extent e;
    for (const SvgShape &shape : image.shapes) {
        for (const SvgPath &path : shape.paths) {
            ++e.paths;
            // A start point and three points per cubic segment, x and y each.
            FUZZ_REQUIRE(path.pts.size() % 2 == 0, document);
            FUZZ_REQUIRE(path.npts() >= 1 && (path.npts() - 1) % 3 == 0, document);
            for (size_t i = 0; i < path.pts.size(); i += 2) {
                const float x = path.pts[i];
                const float y = path.pts[i + 1];
                FUZZ_REQUIRE(std::isfinite(x) && std::isfinite(y), document);
                e.minX = std::min(e.minX, double(x));
                e.maxX = std::max(e.maxX, double(x));
                e.minY = std::min(e.minY, double(y));
                e.maxY = std::max(e.maxY, double(y));
                ++e.points;
            }
        }
    }
    return e;
}

}  // namespace

FUZZ_INITIALIZE()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzBytes in(data, size);
    const char *units = Units[in.intIn(0, 5)];
    const float dpi = float(in.doubleIn(0.1, 600));
    const int mode = in.intIn(0, 1);
    const int width = in.intIn(1, 170);
    const double xOffset = in.doubleIn(0, 170);
    const double yOffset = in.doubleIn(0, WorkHeight);
    const int power = in.intIn(0, 255);
    const QByteArray document = in.restView();

    if (SvgImage *image = SvgReader::parse(document, units, dpi)) {
        checkImage(*image, document);
        SvgReader::release(image);
    }

    // The converter reads the drawing in millimetres at 0.1 dpi.
    SvgImage *image = SvgReader::parse(document, "mm", 0.1f);
    if (!image)
        return 0;
    const Extent e = checkImage(*image, document);
    SvgReader::release(image);
    if (e.points == 0 || e.paths > MaxPaths || e.points > MaxPoints)
        return 0;
    // Only a drawing with some width has a scale; callers refuse the others.
    const double scale = width / float(std::fabs(float(e.maxX) - float(e.minX)));
    const double scaledHeight = (e.maxY - e.minY) * scale;
    if (!std::isfinite(scale) || !(scaledHeight <= MaxScaledHeight))
        return 0;
    const int height = int(std::ceil(scaledHeight));

    fuzzWriteFile(QString::fromLatin1(InputFile), document);
    pathconv_set_print_mode(mode);
    pathconv_set_travel_speed(3000);
    pathconv_set_feed_speed(600);
    pathconv_set_print_z(-1);
    pathconv_set_travel_z(5);
    pathconv_set_laser(power);
    pathconv_set_size(width, height);
    pathconv_set_offset(float(xOffset), float(yOffset));
    pathconv_use_fixed_seed(1);
    FUZZ_REQUIRE(pathconv_convert(InputFile, OutputFile, 1) == 0, document);
    const float estimate = pathconv_take_estimate();
    FUZZ_REQUIRE(std::isfinite(estimate) && estimate >= 0, document);

    const QByteArray gcode = fuzzReadFile(QString::fromLatin1(OutputFile));
    const GcodeBox box = {
        xOffset, xOffset + width, WorkHeight - yOffset - height, WorkHeight - yOffset + TopLift, PrintSlack, 255.0};
    fuzzCheckGcode(gcode, box);
    return 0;
}
