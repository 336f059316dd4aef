// The vector converter's settings, kept from one conversion to the next, and the
// state of one conversion, shared by the converter's stages.
#ifndef PATHCONVSTATE_H
#define PATHCONVSTATE_H

#include "bezierflattener.h"
#include "workarea.h"
#include "pathorder.h"

#include <cfloat>
#include <cstdint>

const int PathConvHeaderSize = 64;
const int PathConvLaserLineSize = 32;
const float PathConvWorkAreaHeight =
    float(WorkArea::Height);  // the machine's Y is flipped against this, whatever maxy says

// Settings kept from one conversion to the next, and the time estimate they add up.
struct PathConvSettings
{
    char header[PathConvHeaderSize] = {};
    int printMode = 0;  // 0 laser, else CNC router
    float travelSpeed = 0, feedSpeed = 0;
    float printZ = 0, travelZ = 0;
    int machineYmax = 0;
    char laserOn[PathConvLaserLineSize] = {};
    char laserReduced[PathConvLaserLineSize] = {};
    int width = 0, height = 0;
    float xoffset = 0, yoffset = 0;
    int bezier = 0;
    bool fixedSeed = false;
    long long seedSeconds = 0;
    bool portableDraws = false;
    float estimate = 0;
};

struct PathSegment
{
    float x0, y0, x1, y1, x2, y2, x3, y3;
    int32_t path;  // -1 once written
    unsigned char closed;
};

// State of one conversion.
struct PathConvRun
{
    float bounds[4] = {FLT_MAX, FLT_MAX, -FLT_MAX, -FLT_MAX};  // min x, min y, max x, max y in parsed units
    float scale = 0;
    int nshapes = 0, npaths = 0, npoints = 0;
    PathSegment *segs = nullptr;  // one spare zeroed record past the last: the closed test reads it
    int capacity = 0, nsegs = 0, builtPaths = 0;
    float *startX = nullptr, *startY = nullptr;
    int *firstSeg = nullptr;  // -1 for a path without segments
    int *order = nullptr;
    PathStart *orderAt = nullptr;
    Flattened flat;
};

inline float pathConvMachineX(const PathConvSettings &s, const PathConvRun &run, float x)
{
    return s.xoffset + (x - run.bounds[0]) * run.scale;
}

inline float pathConvMachineY(const PathConvSettings &s, const PathConvRun &run, float y)
{
    return PathConvWorkAreaHeight - (s.height - (run.bounds[3] - y) * run.scale - 1 + s.yoffset);
}

#endif
