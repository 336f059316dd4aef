// Vector operations of a layer: outlines to follow (line, with the kerf offset) and shapes to hatch
// (fill), both through Clipper, planned into moves with short travel and holes cut before their parts.
#ifndef JOBVECTOR_H
#define JOBVECTOR_H

#include "jobdocument.h"
#include "jobgeometry.h"
#include "jobmoves.h"

#include <vector>

namespace JobVector {

// The most hatch lines one direction of a fill may have; the planner refuses a finer fill by name.
constexpr long MaxHatchLines = 4000000;

// The kerf offset: closed contours of each shape shifted by `kerf` / 2 outward (Outside) or inward
// (Inside), by the shape's fill rule; open paths and KerfSide::On are left as they are.
JobGeometry offset(const JobGeometry &geometry, const LineParams &params);

// Every contour of the items' geometries as polylines in the order they are cut: nearest neighbour
// from the position (x, y), a closed contour lying inside another always before it. Closed contours
// are returned with their first point repeated at the end; a closed contour may start at any vertex
// and an open path may be reversed, whichever is nearer.
std::vector<JobContour> order(const std::vector<JobGeometry> &items, QPointF from);

// The hatch lines that fill the shapes (each by its rule, then united), `interval` mm apart, at
// `angle` degrees (and angle + 90 with crossHatch), as segments in the order they are burnt.
struct Segment
{
    QPointF a, b;
};
std::vector<Segment> hatch(const JobGeometry &geometry, const FillParams &params);

// Plans the contours (line) or the hatch segments of one layer's items into moves. `power` is a
// planned power (S x 1000); `*x`, `*y` is the machine's position in um, updated.
struct PlanSettings
{
    double speed = 0;  // mm/min
    qint32 power = 0;
    double bedWidth = 170;  // overscan stays on the bed
    double bedHeight = 200;
};
void planLine(const std::vector<JobGeometry> &items, const LineParams &params, const PlanSettings &settings,
              MoveSink &sink, qint32 *x, qint32 *y);
void planFill(const std::vector<JobGeometry> &items, const FillParams &params, const PlanSettings &settings,
              MoveSink &sink, qint32 *x, qint32 *y);

}  // namespace JobVector

#endif
