// Flattening of cubic Bezier segments into points for the vector converter: split in
// halves until each piece lies within a fixed tolerance of its chord.
#include "bezierflattener.h"

#include <algorithm>
#include <cstdio>

namespace {

const float Tolerance = 0.5f;
const int MaxDepth = 12;

void addPoint(Flattened &flat, float x, float y)
{
    flat.points[flat.count].x = x;
    flat.points[flat.count].y = y;
    ++flat.count;
    if (flat.count >= Flattened::MaxPoints) {
        printf("?!bez count\n");
        flat.count = Flattened::MaxPoints - 1;
    }
}

// Splits at t = 0.5 until the curve's midpoint lies within the tolerance of its chord.
void split(Flattened &flat, float x0, float y0, float x1, float y1, float x2, float y2, float x3, float y3, int depth)
{
    if (depth > MaxDepth)
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
    if (dx * dx + dy * dy > Tolerance * Tolerance) {
        split(flat, x0, y0, x01, y01, x012, y012, mx, my, depth + 1);
        split(flat, mx, my, x123, y123, x23, y23, x3, y3, depth + 1);
    } else {
        addPoint(flat, x3, y3);
    }
}

}  // namespace

void flattenBezier(Flattened &flat, float x0, float y0, float x1, float y1, float x2, float y2, float x3, float y3)
{
    split(flat, x0, y0, x1, y1, x2, y2, x3, y3, 0);
}
