// The SVG-to-G-code path converter: runs its stages over one parsed drawing (read bounds,
// build segments, order the paths for short travel, write laser or CNC G-code).
#include "pathconverter.h"

#include "cnumericlocale.h"
#include "pathconvstate.h"
#include "pathorder.h"
#include "pathwriter.h"
#include "svgreader.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

const int OrderPasses = 30;

PathConvSettings g_settings;

double seedSeconds()
{
    if (g_settings.fixedSeed)
        return double(g_settings.seedSeconds);
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

// Stage 1, read bounds: counts shapes, paths and points and finds the drawing's bounds and scale.
void readBounds(const SvgImage &image, PathConvRun &run)
{
    for (const SvgShape &shape : image.shapes) {
        ++run.nshapes;
        for (const SvgPath &path : shape.paths) {
            ++run.npaths;
            for (int i = 0; i < path.npts(); ++i) {
                const float x = path.pts[2 * i], y = path.pts[2 * i + 1];
                run.bounds[0] = std::min(run.bounds[0], x);
                run.bounds[1] = std::min(run.bounds[1], y);
                run.bounds[2] = std::max(run.bounds[2], x);
                run.bounds[3] = std::max(run.bounds[3], y);
                ++run.npoints;
            }
        }
    }
    printf("shapes %d\n", run.nshapes);
    printf("bounds 0=%f 1=%f 2=%f 3=%f\n", run.bounds[0], run.bounds[1], run.bounds[2], run.bounds[3]);
    run.scale = g_settings.width / std::fabs(run.bounds[2] - run.bounds[0]);
}

// The mapping to machine positions is linear, so finite corners of the bounds mean finite
// positions for every point in them; the frame and the settings are checked alongside.
bool numbersUsable(const PathConvRun &run)
{
    const PathConvSettings &s = g_settings;
    const float settings[] = {s.xoffset,
                              s.yoffset,
                              float(s.width) + s.xoffset,
                              PathConvWorkAreaHeight - s.yoffset - float(s.height),
                              s.feedSpeed,
                              s.travelSpeed,
                              s.printZ,
                              s.travelZ};
    for (float v : settings)
        if (!std::isfinite(v))
            return false;
    if (run.npoints == 0)
        return true;
    return std::isfinite(pathConvMachineX(s, run, run.bounds[0]))
           && std::isfinite(pathConvMachineX(s, run, run.bounds[2]))
           && std::isfinite(pathConvMachineY(s, run, run.bounds[1]))
           && std::isfinite(pathConvMachineY(s, run, run.bounds[3]));
}

// Stage 2, build segments: one record per cubic segment, tagged with its path, and each path's start.
void buildSegments(const SvgImage &image, PathConvRun &run)
{
    run.capacity = std::max(run.npoints, 1);
    const int pathSlots = std::max(run.npaths, 1);
    run.segs = static_cast<PathSegment *>(calloc(size_t(run.capacity), sizeof(PathSegment)));
    run.startX = static_cast<float *>(calloc(size_t(pathSlots), sizeof(float)));
    run.startY = static_cast<float *>(calloc(size_t(pathSlots), sizeof(float)));
    run.firstSeg = static_cast<int *>(calloc(size_t(pathSlots), sizeof(int)));
    run.order = static_cast<int *>(calloc(size_t(pathSlots), sizeof(int)));
    run.orderAt = static_cast<PathStart *>(calloc(size_t(pathSlots), sizeof(PathStart)));
    run.flat.points = static_cast<BezPoint *>(calloc(Flattened::MaxPoints, sizeof(BezPoint)));
    if (!run.segs || !run.startX || !run.startY || !run.firstSeg || !run.order || !run.orderAt || !run.flat.points) {
        fprintf(stderr, "out of memory for %d points\n", run.npoints);
        abort();
    }

    for (int i = 0; i < pathSlots; ++i)
        run.firstSeg[i] = -1;
    int nsegs = 0;
    int pathIndex = 0;
    bool building = true;
    for (const SvgShape &shape : image.shapes) {
        for (const SvgPath &path : shape.paths) {
            if (!building)
                break;
            if (pathIndex >= run.npaths) {
                printf("error i > \n");
                exit(-1);
            }
            const float *p = path.pts.data();
            run.startX[pathIndex] = path.npts() > 0 ? p[0] : 0;
            run.startY[pathIndex] = path.npts() > 0 ? p[1] : 0;
            // i + 3 < npts is the "i < npts - 1" of a well-formed path, and never reads past one that is not.
            for (int i = 0; i + 3 < path.npts(); i += 3) {
                if (nsegs >= run.npoints) {
                    printf("error k > \n");
                    nsegs = 0;
                    building = false;
                    break;
                }
                PathSegment &s = run.segs[nsegs];
                const float *q = p + 2 * i;
                s.x0 = q[0];
                s.y0 = q[1];
                s.x1 = q[2];
                s.y1 = q[3];
                s.x2 = q[4];
                s.y2 = q[5];
                s.x3 = q[6];
                s.y3 = q[7];
                s.path = pathIndex;
                s.closed = path.closed ? 1 : 0;
                if (run.firstSeg[pathIndex] < 0)
                    run.firstSeg[pathIndex] = nsegs;
                ++nsegs;
            }
            ++pathIndex;
        }
    }
    for (int i = 0; i < run.npaths; ++i) {
        run.order[i] = i;
        run.orderAt[i].x = run.startX[i];
        run.orderAt[i].y = run.startY[i];
    }
    run.nsegs = nsegs;
    run.builtPaths = pathIndex;
}

void releaseRun(PathConvRun &run)
{
    free(run.segs);
    free(run.startX);
    free(run.startY);
    free(run.firstSeg);
    free(run.order);
    free(run.orderAt);
    free(run.flat.points);
}

// Stage 3, order: shuffles the path order for short travel, reproducibly from `seed`.
void orderStage(PathConvRun &run, uint32_t seed)
{
    printf("reorder ");
    orderPaths(run.npaths, run.order, run.orderAt, seed, OrderPasses, g_settings.portableDraws,
               [](int pass) { printf("%d... ", pass); });
    printf("\n");
}

}  // namespace

void pathconv_set_header(const char *text, int length)
{
    if (!text || length <= 0)
        return;
    memcpy(g_settings.header, text, size_t(std::min(length, PathConvHeaderSize)));
}

void pathconv_set_print_mode(int mode) { g_settings.printMode = mode; }
void pathconv_set_travel_speed(float speed) { g_settings.travelSpeed = speed; }
void pathconv_set_feed_speed(float speed) { g_settings.feedSpeed = speed; }
void pathconv_set_print_z(float z) { g_settings.printZ = z; }
void pathconv_set_travel_z(float z) { g_settings.travelZ = z; }
void pathconv_set_machine_ymax(int maxy) { g_settings.machineYmax = maxy; }

void pathconv_set_laser(int power)
{
    snprintf(g_settings.laserOn, sizeof g_settings.laserOn, "M106 S%d \n", power);
    snprintf(g_settings.laserReduced, sizeof g_settings.laserReduced, "M106 S%d \n", power / 2);
}

void pathconv_set_size(int width, int height)
{
    g_settings.width = width;
    g_settings.height = height;
}
void pathconv_set_offset(float x, float y)
{
    g_settings.xoffset = x;
    g_settings.yoffset = y;
}

void pathconv_use_fixed_seed(long long seconds)
{
    g_settings.fixedSeed = true;
    g_settings.seedSeconds = seconds;
}

void pathconv_use_clock_seed() { g_settings.fixedSeed = false; }
void pathconv_use_portable_draws(int on) { g_settings.portableDraws = on != 0; }

float pathconv_take_estimate()
{
    const float t = g_settings.estimate;
    g_settings.estimate = 0;
    return t;
}

int pathconv_convert(const char *input, const char *output, int bezier)
{
    SvgImage *image = SvgReader::parseFromFile(input, "mm", 0.1f);
    if (!image) {
        printf("error: Can't open input %s\n", input);
        return -1;
    }
    const int status = pathconv_convert_image(image, input, output, bezier);
    SvgReader::release(image);
    return status;
}

int pathconv_convert_image(const SvgImage *image, const char *name, const char *output, int bezier)
{
    CNumericLocale cLocale;
    g_settings.bezier = bezier;  // every caller asks for curves; kept as a setting all the same

    PathConvRun run;
    readBounds(*image, run);
    if (!numbersUsable(run)) {
        printf("error: %s gives positions that are not numbers; no G-code written\n", name);
        return -2;
    }
    const uint32_t seed = pathOrderSeed(seedSeconds());

    remove(output);
    FILE *fp = fopen(output, "w");
    if (!fp)
        return -1;
    writePreamble(fp, g_settings);

    printf("paths %d points %d\n", run.npaths, run.npoints);
    buildSegments(*image, run);
    printf("total paths %d, total points %d\n", run.builtPaths, run.nsegs);
    orderStage(run, seed);
    writePaths(fp, g_settings, run);

    fclose(fp);
    releaseRun(run);
    return 0;
}
