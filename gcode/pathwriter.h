// The write stage of the vector converter: the start and frame, then the ordered
// paths as laser or CNC G-code with C stdio, adding up the time estimate as it goes.
#ifndef PATHWRITER_H
#define PATHWRITER_H

#include "pathconvstate.h"

#include <cstdio>

// Homing and the frame around the drawing's placement, traced twice, then a pause.
void writePreamble(FILE *fp, const PathConvSettings &settings);

// The header, then each path in run.order: travel to it, light, trace, put out, then the
// way home. Marks written segments in the run and adds to settings.estimate.
void writePaths(FILE *fp, PathConvSettings &settings, PathConvRun &run);

#endif
