// The parsed form of an SVG drawing that the vector G-code converter walks:
// shapes made of paths, every path a start point followed by cubic Bezier segments.
#ifndef SVGIMAGE_H
#define SVGIMAGE_H

#include <vector>

// One subpath. `pts` holds x0,y0 and then three points (six floats) per cubic
// segment, so npts() is always 1 + 3 * segments. Straight lines, quadratics and
// arcs are stored as cubics too; `closed` is set by a closing Z (or a polygon,
// rect, circle or ellipse).
struct SvgPath
{
    std::vector<float> pts;
    bool closed = false;

    int npts() const { return int(pts.size() / 2); }
};

// One drawn element: a path element gives one path per subpath, the basic shapes one path.
struct SvgShape
{
    std::vector<SvgPath> paths;
    float strokeWidth = 0;  // the pen's width in the drawing's units (outlines ignore it)
    bool evenOdd = false;   // fill-rule: evenodd (true) or nonzero (false, the default); outlines ignore it
};

// The whole drawing in the units it was read in; width and height are the document's size.
struct SvgImage
{
    float width = 0;
    float height = 0;
    std::vector<SvgShape> shapes;
};

#endif
