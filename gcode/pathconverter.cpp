// The SVG-to-G-code path converter: flattens the drawing's Bezier segments, orders
// the paths for short travel and writes laser or CNC G-code with C stdio.
#include "pathconverter.h"

#include "pathorder.h"
#include "svgreader.h"

#include <algorithm>
#include <cfloat>
#include <chrono>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <locale.h>

namespace {

const int HeaderSize = 64;
const int LaserLineSize = 32;
const int MaxBezPoints = 4096;
const float BezTolerance = 0.5f;
const int BezMaxDepth = 12;
const float WorkAreaHeight = 200.0f;   // the machine's Y is flipped against this, whatever maxy says
const float ZStep = 0.001f;
const float ZScale = 0.0625f;
const float ZReturnScale = 0.5f;
const float ReducedPowerDistance = 0.0f;  // no point is ever this close: always full power
const float Acceleration = 300.0f;        // mm/s^2, for the time estimate
const int OrderPasses = 30;

// Settings kept from one conversion to the next, and the time estimate they add up.
struct Settings
{
    char header[HeaderSize] = {};
    int printMode = 0;
    float travelSpeed = 0;
    float feedSpeed = 0;
    float printZ = 0;
    float travelZ = 0;
    int machineYmax = 0;
    char laserOn[LaserLineSize] = {};
    char laserReduced[LaserLineSize] = {};
    int width = 0;
    int height = 0;
    float xoffset = 0;
    float yoffset = 0;
    int bezier = 0;
    bool fixedSeed = false;
    long long seedSeconds = 0;
    bool portableDraws = false;
    float estimate = 0;
};

Settings g_settings;

struct Segment
{
    float x0, y0, x1, y1, x2, y2, x3, y3;
    int32_t path;  // -1 once written
    unsigned char closed;
};

struct BezPoint { float x, y; };

// The points one segment flattens to.
struct Flattened
{
    BezPoint *points = nullptr;
    int count = 0;
};

// State of one conversion.
struct Run
{
    float bounds[4] = {FLT_MAX, FLT_MAX, -FLT_MAX, -FLT_MAX};  // min x, min y, max x, max y in parsed units
    float scale = 0;
    int nshapes = 0;
    int npaths = 0;
    int npoints = 0;
    Segment *segs = nullptr;  // one spare zeroed record past the last: the closed test reads it
    int capacity = 0;
    int nsegs = 0;
    int builtPaths = 0;
    float *startX = nullptr;
    float *startY = nullptr;
    int *firstSeg = nullptr;  // -1 for a path without segments
    int *order = nullptr;
    PathStart *orderAt = nullptr;
    Flattened flat;
};

// Restores the caller's locale on every way out: printf must write a decimal point
// even when the desktop's language writes a comma.
class CNumericLocale
{
public:
    CNumericLocale()
    {
        static locale_t cLocale = newlocale(LC_NUMERIC_MASK, "C", locale_t(nullptr));
        m_previous = cLocale ? uselocale(cLocale) : locale_t(nullptr);
    }
    ~CNumericLocale()
    {
        if (m_previous)
            uselocale(m_previous);
    }

private:
    locale_t m_previous;
};

double seedSeconds()
{
    if (g_settings.fixedSeed)
        return double(g_settings.seedSeconds);
    return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch()).count();
}

void addBezPoint(Flattened &flat, float x, float y)
{
    flat.points[flat.count].x = x;
    flat.points[flat.count].y = y;
    ++flat.count;
    if (flat.count >= MaxBezPoints) {
        printf("?!bez count\n");
        flat.count = MaxBezPoints - 1;
    }
}

// Splits at t = 0.5 until the curve's midpoint lies within the tolerance of its chord.
void flattenBezier(Flattened &flat, float x0, float y0, float x1, float y1, float x2, float y2, float x3, float y3,
                   int depth)
{
    if (depth > BezMaxDepth)
        return;
    const float x01 = (x0 + x1) * 0.5f, y01 = (y0 + y1) * 0.5f;
    const float x12 = (x1 + x2) * 0.5f, y12 = (y1 + y2) * 0.5f;
    const float x23 = (x2 + x3) * 0.5f, y23 = (y2 + y3) * 0.5f;
    const float x012 = (x01 + x12) * 0.5f, y012 = (y01 + y12) * 0.5f;
    const float x123 = (x12 + x23) * 0.5f, y123 = (y12 + y23) * 0.5f;
    const float mx = (x012 + x123) * 0.5f, my = (y012 + y123) * 0.5f;

    const float cx = x3 - x0, cy = y3 - y0;
    const float chord2 = cx * cx + cy * cy;
    float t = (mx - x0) * cx + (my - y0) * cy;
    if (chord2 > 0)
        t /= chord2;
    t = std::min(1.0f, std::max(0.0f, t));
    const float dx = mx - (x0 + t * cx), dy = my - (y0 + t * cy);
    if (dx * dx + dy * dy > BezTolerance * BezTolerance) {
        flattenBezier(flat, x0, y0, x01, y01, x012, y012, mx, my, depth + 1);
        flattenBezier(flat, mx, my, x123, y123, x23, y23, x3, y3, depth + 1);
    } else {
        addBezPoint(flat, x3, y3);
    }
}

float machineX(const Run &run, float x)
{
    return g_settings.xoffset + (x - run.bounds[0]) * run.scale;
}

float machineY(const Run &run, float y)
{
    return WorkAreaHeight - (g_settings.height - (run.bounds[3] - y) * run.scale - 1 + g_settings.yoffset);
}

// Straight move of length d at `speed` mm/min with a fixed acceleration.
float moveSeconds(float d, float speed)
{
    const float v = speed / 60.0f;
    if (!(v > 0))
        return 0;  // a zero feed never gets anywhere; there is no time to give
    const float p = std::sqrt(Acceleration * d);
    if (v > p)
        return 2.0f * p / Acceleration;
    return v * 3.0f * 0.5f / Acceleration + d / v;
}

// Stage 1, read bounds: counts shapes, paths and points and finds the drawing's bounds and scale.
void readBounds(const SvgImage &image, Run &run)
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
bool numbersUsable(const Run &run)
{
    const Settings &s = g_settings;
    const float settings[] = {s.xoffset, s.yoffset, float(s.width) + s.xoffset,
                              WorkAreaHeight - s.yoffset - float(s.height), s.feedSpeed,
                              s.travelSpeed, s.printZ, s.travelZ};
    for (float v : settings)
        if (!std::isfinite(v))
            return false;
    if (run.npoints == 0)
        return true;
    return std::isfinite(machineX(run, run.bounds[0])) && std::isfinite(machineX(run, run.bounds[2]))
        && std::isfinite(machineY(run, run.bounds[1])) && std::isfinite(machineY(run, run.bounds[3]));
}

// Stage 2, build segments: one record per cubic segment, tagged with its path, and each path's start.
void buildSegments(const SvgImage &image, Run &run)
{
    run.capacity = std::max(run.npoints, 1);
    const int pathSlots = std::max(run.npaths, 1);
    run.segs = static_cast<Segment *>(calloc(size_t(run.capacity), sizeof(Segment)));
    run.startX = static_cast<float *>(calloc(size_t(pathSlots), sizeof(float)));
    run.startY = static_cast<float *>(calloc(size_t(pathSlots), sizeof(float)));
    run.firstSeg = static_cast<int *>(calloc(size_t(pathSlots), sizeof(int)));
    run.order = static_cast<int *>(calloc(size_t(pathSlots), sizeof(int)));
    run.orderAt = static_cast<PathStart *>(calloc(size_t(pathSlots), sizeof(PathStart)));
    run.flat.points = static_cast<BezPoint *>(calloc(MaxBezPoints, sizeof(BezPoint)));
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
                Segment &s = run.segs[nsegs];
                const float *q = p + 2 * i;
                s.x0 = q[0]; s.y0 = q[1];
                s.x1 = q[2]; s.y1 = q[3];
                s.x2 = q[4]; s.y2 = q[5];
                s.x3 = q[6]; s.y3 = q[7];
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

void releaseRun(Run &run)
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
void orderStage(Run &run, uint32_t seed)
{
    printf("reorder ");
    orderPaths(run.npaths, run.order, run.orderAt, seed, OrderPasses, g_settings.portableDraws,
               [](int pass) { printf("%d... ", pass); });
    printf("\n");
}

void writeFrame(FILE *fp)
{
    const Settings &s = g_settings;
    const float top = WorkAreaHeight - s.yoffset;
    for (int i = 0; i < 2; ++i) {
        fprintf(fp, "G0 X%.2f Y%.2f F4600\n", s.xoffset, top);
        fprintf(fp, "M106 S%d \n", 5);
        fprintf(fp, "G0 X%.2f Y%.2f \n", s.width + s.xoffset, top);
        fprintf(fp, "G0 X%.2f Y%.2f \n", s.width + s.xoffset, top - s.height);
        fprintf(fp, "G0 X%.2f Y%.2f \n", s.xoffset, top - s.height);
        fprintf(fp, "G0 X%.2f Y%.2f \n", s.xoffset, top);
    }
    fprintf(fp, "M0 \n");
}

// Where the writer stands between paths: the layer counter and the last positions.
struct Pen
{
    float zc = 0;
    float prevX = 0, prevY = 0;          // machine units, for the estimate
    float prevPartX = 0, prevPartY = 0;  // parsed units, for the power choice
};

void writePathStart(FILE *fp, const Run &run, const Segment &first, Pen &pen)
{
    const Settings &s = g_settings;
    const float startZ = pen.zc * ZScale;
    fprintf(fp, "M107\n");
    if (s.printMode == 0)
        pen.zc += ZStep;
    fprintf(fp, "G0 X%.1f Y%.1f Z%.4f F%.1f\n", machineX(run, first.x0), machineY(run, first.y0), startZ,
            s.travelSpeed);
    if (s.printMode == 0) {
        fputs(s.laserOn, fp);
    } else {
        fprintf(fp, "M106 S255\n");
        fprintf(fp, "G4 P0.5\n");
    }
    fprintf(fp, "G1 F%.1f \n", s.feedSpeed);
    if (s.printMode != 0)
        fprintf(fp, "G1 Z%.1f \n", s.printZ);
    pen.prevPartX = first.x0;
    pen.prevPartY = first.y0;
}

// Writes the flattened points of one segment; points off the drawing are dropped.
void writeSegment(FILE *fp, Run &run, const Segment &seg, Pen &pen)
{
    Settings &s = g_settings;
    run.flat.count = 0;
    flattenBezier(run.flat, seg.x0, seg.y0, seg.x1, seg.y1, seg.x2, seg.y2, seg.x3, seg.y3, 0);
    for (int b = 0; b < run.flat.count; ++b) {
        const float x = run.flat.points[b].x, y = run.flat.points[b].y;
        if (std::isnan(x) || std::isnan(y))
            continue;
        if (x > run.bounds[2] || x < run.bounds[0]) {
            printf("bezPoints %f %f\n", x, run.bounds[0]);
            continue;
        }
        if (y > run.bounds[3]) {
            printf("bezPoints y %d\n", b);
            continue;
        }
        const float step = std::hypot(x - pen.prevPartX, y - pen.prevPartY);
        fputs(step < ReducedPowerDistance ? s.laserReduced : s.laserOn, fp);
        pen.prevPartX = x;
        pen.prevPartY = y;
        const float mx = machineX(run, x), my = machineY(run, y);
        const float z = pen.zc * ZScale;
        fprintf(fp, "G1 X%.1f Y%.1f Z%.3f \n", mx, my, z);
        fprintf(fp, "G1 X%.1f Y%.1f Z%.3f \n", mx, my, z);
        pen.zc += ZStep;
        fprintf(fp, "G1 F%.1f \n", s.feedSpeed);
        const float t = moveSeconds(std::hypot(mx - pen.prevX, my - pen.prevY), s.feedSpeed);
        if (std::isfinite(t))
            s.estimate += t;
        pen.prevX = mx;
        pen.prevY = my;
    }
}

// Stage 4, write: the paths in their order, each lit, traced and put out, then the way home.
void writePaths(FILE *fp, Run &run)
{
    const Settings &s = g_settings;
    fwrite(s.header, 1, strnlen(s.header, HeaderSize), fp);
    Pen pen;
    pen.prevX = s.xoffset;
    pen.prevY = WorkAreaHeight - s.yoffset;
    for (int e = 0; e < run.npaths; ++e) {
        const int path = run.order[e];
        const int first = run.firstSeg[path];
        if (first < 0 || run.segs[first].path != path || first == run.nsegs - 1)
            continue;
        writePathStart(fp, run, run.segs[first], pen);
        int k = first;
        for (; k < run.nsegs && run.segs[k].path == path; ++k) {
            writeSegment(fp, run, run.segs[k], pen);
            run.segs[k].path = -1;
        }
        // The flag comes from the record after the path's last one (the next path's
        // first, or the spare zero record): machines have been run with this output.
        if (k < run.capacity && run.segs[k].closed) {
            fprintf(fp, "M107\n");
            fprintf(fp, "G0 X%.1f Y%.1f Z%.3f \n", machineX(run, run.startX[path]), machineY(run, run.startY[path]),
                    pen.zc * ZReturnScale);
        }
        fprintf(fp, "M107\n");
        if (s.printMode == 0)
            fprintf(fp, "G0 F%.1f \n", s.travelSpeed);
        else
            fprintf(fp, "G0 Z%.1f F%.1f\n", s.travelZ, s.travelSpeed);
    }
    fprintf(fp, "M107\n");
    fprintf(fp, "G28\n");
}

} // namespace

void pathconv_set_header(const char *text, int length)
{
    if (!text || length <= 0)
        return;
    memcpy(g_settings.header, text, size_t(std::min(length, HeaderSize)));
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

void pathconv_use_clock_seed()
{
    g_settings.fixedSeed = false;
}

void pathconv_use_portable_draws(int on)
{
    g_settings.portableDraws = on != 0;
}

float pathconv_take_estimate()
{
    const float t = g_settings.estimate;
    g_settings.estimate = 0;
    return t;
}

int pathconv_convert(const char *input, const char *output, int bezier)
{
    CNumericLocale cLocale;
    g_settings.bezier = bezier;  // every caller asks for curves; kept as a setting all the same

    SvgImage *image = SvgReader::parseFromFile(input, "mm", 0.1f);
    if (!image) {
        printf("error: Can't open input %s\n", input);
        return -1;
    }
    Run run;
    readBounds(*image, run);
    if (!numbersUsable(run)) {
        printf("error: %s gives positions that are not numbers; no G-code written\n", input);
        SvgReader::release(image);
        return -2;
    }
    const uint32_t seed = pathOrderSeed(seedSeconds());

    remove(output);
    FILE *fp = fopen(output, "w");
    if (!fp) {
        SvgReader::release(image);
        return -1;
    }
    fprintf(fp, "G1 F2000 \n");
    fprintf(fp, "G28 X0 Y0  ;move X/Y to min endstops \n");
    writeFrame(fp);

    printf("paths %d points %d\n", run.npaths, run.npoints);
    buildSegments(*image, run);
    printf("total paths %d, total points %d\n", run.builtPaths, run.nsegs);
    orderStage(run, seed);
    writePaths(fp, run);

    fclose(fp);
    releaseRun(run);
    SvgReader::release(image);
    return 0;
}
