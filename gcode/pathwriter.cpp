// The write stage of the vector converter: the start and frame, then the ordered
// paths as laser or CNC G-code with C stdio, adding up the time estimate as it goes.
#include "pathwriter.h"

#include "motionmodel.h"

#include "bezierflattener.h"

#include <cmath>
#include <cstring>

namespace {

const float ZStep = 0.001f;
const float ZScale = 0.0625f;
const float ZReturnScale = 0.5f;
const float ReducedPowerDistance = 0.0f;  // no point is ever this close: always full power

void writeFrame(FILE *fp, const PathConvSettings &s)
{
    const float top = PathConvWorkAreaHeight - s.yoffset;
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

void writePathStart(FILE *fp, const PathConvSettings &s, const PathConvRun &run, const PathSegment &first, Pen &pen)
{
    const float startZ = pen.zc * ZScale;
    fprintf(fp, "M107\n");
    if (s.printMode == 0)
        pen.zc += ZStep;
    const float x = pathConvMachineX(s, run, first.x0), y = pathConvMachineY(s, run, first.y0);
    fprintf(fp, "G0 X%.1f Y%.1f Z%.4f F%.1f\n", x, y, startZ, s.travelSpeed);
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
void writeSegment(FILE *fp, PathConvSettings &s, PathConvRun &run, const PathSegment &seg, Pen &pen)
{
    run.flat.count = 0;
    flattenBezier(run.flat, seg.x0, seg.y0, seg.x1, seg.y1, seg.x2, seg.y2, seg.x3, seg.y3);
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
        const float mx = pathConvMachineX(s, run, x), my = pathConvMachineY(s, run, y);
        const float z = pen.zc * ZScale;
        fprintf(fp, "G1 X%.1f Y%.1f Z%.3f \n", mx, my, z);
        fprintf(fp, "G1 X%.1f Y%.1f Z%.3f \n", mx, my, z);
        pen.zc += ZStep;
        fprintf(fp, "G1 F%.1f \n", s.feedSpeed);
        const float t = MotionModel::classicMoveSeconds<float>(std::hypot(mx - pen.prevX, my - pen.prevY), s.feedSpeed);
        if (std::isfinite(t))
            s.estimate += t;
        pen.prevX = mx;
        pen.prevY = my;
    }
}

}  // namespace

void writePreamble(FILE *fp, const PathConvSettings &s)
{
    fprintf(fp, "G1 F2000 \n");
    fprintf(fp, "G28 X0 Y0  ;move X/Y to min endstops \n");
    writeFrame(fp, s);
}

void writePaths(FILE *fp, PathConvSettings &s, PathConvRun &run)
{
    fwrite(s.header, 1, strnlen(s.header, PathConvHeaderSize), fp);
    Pen pen;
    pen.prevX = s.xoffset;
    pen.prevY = PathConvWorkAreaHeight - s.yoffset;
    for (int e = 0; e < run.npaths; ++e) {
        const int path = run.order[e];
        const int first = run.firstSeg[path];
        if (first < 0 || run.segs[first].path != path || first == run.nsegs - 1)
            continue;
        writePathStart(fp, s, run, run.segs[first], pen);
        int k = first;
        for (; k < run.nsegs && run.segs[k].path == path; ++k) {
            writeSegment(fp, s, run, run.segs[k], pen);
            run.segs[k].path = -1;
        }
        // The flag comes from the record after the path's last one (the next path's
        // first, or the spare zero record): machines have been run with this output.
        if (k < run.capacity && run.segs[k].closed) {
            fprintf(fp, "M107\n");
            const float x = pathConvMachineX(s, run, run.startX[path]), y = pathConvMachineY(s, run, run.startY[path]);
            fprintf(fp, "G0 X%.1f Y%.1f Z%.3f \n", x, y, pen.zc * ZReturnScale);
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
