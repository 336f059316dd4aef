// Flattening of cubic Bezier segments into points for the vector converter: split in
// halves until each piece lies within a fixed tolerance of its chord.
#ifndef BEZIERFLATTENER_H
#define BEZIERFLATTENER_H

struct BezPoint
{
    float x, y;
};

// The points one segment flattens to, in a buffer of MaxPoints that the caller owns.
// Past the last place the newest point keeps overwriting it.
struct Flattened
{
    static const int MaxPoints = 4096;
    BezPoint *points = nullptr;
    int count = 0;
};

// Appends the segment's points after its start point (its end point included) to `flat`.
void flattenBezier(Flattened &flat, float x0, float y0, float x1, float y1, float x2, float y2, float x3, float y3);

#endif
