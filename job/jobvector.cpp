// Vector operations of a layer: outlines to follow (line, with the kerf offset) and shapes to hatch
// (fill), both through Clipper, planned into moves with short travel and holes cut before their parts.
#include "jobvector.h"

#include "clipper.hpp"

#include <QRectF>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <numeric>

namespace {

using ClipperLib::cInt;
using ClipperLib::IntPoint;
using ClipperLib::Path;
using ClipperLib::Paths;

// Clipper works in integers: 1e5 units per mm keeps 10 nm steps and the whole bed in its fast range.
const double Scale = 1e5;
// Round joins of the kerf offset stay as close to the true arc as curves are flattened.
const double ArcTolerance = 0.0025 * Scale;
// How much longer than the two overscans a gap along a hatch line must be to be crossed by travel
// rather than at zero power without stopping (as raster rows do).
const double GapTravel = 10.0;
// Cells a contour's box may cover before it is kept in the list every probe looks at.
const long MaxCellsPerBox = 64;

Path toPath(const std::vector<QPointF> &points)
{
    Path path;
    path.reserve(points.size());
    for (const QPointF &p : points)
        path.emplace_back(cInt(std::llround(p.x() * Scale)), cInt(std::llround(p.y() * Scale)));
    return path;
}

QPointF toPoint(const IntPoint &p) { return QPointF(double(p.X) / Scale, double(p.Y) / Scale); }

// Closed paths split into runs whose X extents, widened by `margin` each way, overlap no other
// run's; each run keeps the paths in their own order. A path only changes the fill (and its offset
// only reaches) inside its own widened box, so the runs can be united or offset apart: Clipper's
// time grows with the square of the edges that lie side by side, and a long line of text has
// thousands of them.
std::vector<Paths> runsAlongX(const Paths &in, cInt margin)
{
    std::vector<std::pair<cInt, cInt>> extent(in.size());
    for (size_t i = 0; i < in.size(); ++i) {
        cInt lo = std::numeric_limits<cInt>::max(), hi = std::numeric_limits<cInt>::min();
        for (const IntPoint &p : in[i]) {
            lo = std::min(lo, p.X);
            hi = std::max(hi, p.X);
        }
        extent[i] = {lo - margin, hi + margin};
    }
    std::vector<size_t> byLeft(in.size());
    std::iota(byLeft.begin(), byLeft.end(), size_t(0));
    std::stable_sort(byLeft.begin(), byLeft.end(),
                     [&](size_t a, size_t b) { return extent[a].first < extent[b].first; });
    // A run ends where the next path starts right of everything before it.
    std::vector<size_t> run(in.size(), 0);
    size_t runs = 0;
    cInt reach = std::numeric_limits<cInt>::min();
    for (size_t k = 0; k < byLeft.size(); ++k) {
        const size_t i = byLeft[k];
        if (k > 0 && extent[i].first > reach)
            ++runs;
        reach = k == 0 ? extent[i].second : std::max(reach, extent[i].second);
        run[i] = runs;
    }
    std::vector<Paths> parts(in.empty() ? 0 : runs + 1);
    for (size_t i = 0; i < in.size(); ++i)
        parts[run[i]].push_back(in[i]);
    return parts;
}

// The union of closed paths by a fill rule, run by run.
Paths unite(const Paths &in, ClipperLib::PolyFillType rule)
{
    Paths out;
    for (const Paths &part : runsAlongX(in, 0)) {
        ClipperLib::Clipper clipper;
        clipper.AddPaths(part, ClipperLib::ptSubject, true);
        Paths united;
        clipper.Execute(ClipperLib::ctUnion, united, rule, rule);
        out.insert(out.end(), std::make_move_iterator(united.begin()), std::make_move_iterator(united.end()));
    }
    return out;
}

// The closed contours of one shape united by its fill rule: outer outlines and holes that no
// longer overlap, so the even-odd and nonzero readings of the result agree.
Paths unitedShape(const JobShape &shape)
{
    Paths in;
    for (const JobContour &c : shape.contours)
        if (c.closed && c.points.size() >= 3)
            in.push_back(toPath(c.points));
    if (in.empty())
        return in;
    return unite(in, shape.evenOdd ? ClipperLib::pftEvenOdd : ClipperLib::pftNonZero);
}

// Every shape filled by its rule, then all of them united.
Paths filledArea(const JobGeometry &geometry)
{
    Paths all;
    int shapes = 0;
    for (const JobShape &shape : geometry) {
        Paths one = unitedShape(shape);
        if (one.empty())
            continue;
        ++shapes;
        all.insert(all.end(), std::make_move_iterator(one.begin()), std::make_move_iterator(one.end()));
    }
    if (shapes > 1)
        return unite(all, ClipperLib::pftNonZero);
    return all;
}

using Segment = JobVector::Segment;
// Hatch lines of one direction: the lines that cross the area, from the lowest up, each line's
// segments in order along the hatch direction.
using ScanLines = std::vector<std::vector<Segment>>;

ScanLines scanLines(const Paths &area, double angleDegrees, double interval)
{
    ScanLines lines;
    if (area.empty() || !(interval > 0))
        return lines;
    const double a = angleDegrees * M_PI / 180.0;
    const QPointF dir(std::cos(a), std::sin(a)), normal(-std::sin(a), std::cos(a));
    // Every vertex in the hatch frame: u along the lines, v across them.
    std::vector<std::vector<QPointF>> frame(area.size());
    double vMin = std::numeric_limits<double>::max(), vMax = std::numeric_limits<double>::lowest();
    for (size_t i = 0; i < area.size(); ++i) {
        frame[i].reserve(area[i].size());
        for (const IntPoint &ip : area[i]) {
            const QPointF p = toPoint(ip);
            const double v = QPointF::dotProduct(p, normal);
            frame[i].emplace_back(QPointF::dotProduct(p, dir), v);
            vMin = std::min(vMin, v);
            vMax = std::max(vMax, v);
        }
    }
    if (!(vMax >= vMin))
        return lines;
    // Lines `interval` apart, centred on the area across the hatch direction.
    const double span = vMax - vMin;
    const long count = std::max(1L, std::lround(span / interval));
    if (count > JobVector::MaxHatchLines)
        return lines;
    const double first = vMin + (span - double(count - 1) * interval) / 2;
    auto lineAt = [&](long k) { return first + double(k) * interval; };

    std::vector<std::vector<double>> crossings(static_cast<size_t>(count));
    for (const std::vector<QPointF> &poly : frame) {
        const size_t n = poly.size();
        for (size_t i = 0; i < n; ++i) {
            const QPointF &p = poly[i], &q = poly[(i + 1) % n];
            if (p.y() == q.y())
                continue;
            const double lo = std::min(p.y(), q.y()), hi = std::max(p.y(), q.y());
            // The lines with lo <= v < hi cross this edge: each crossing is counted once.
            long k = std::max(0L, long(std::ceil((lo - first) / interval)) - 1);
            while (k < count && lineAt(k) < lo)
                ++k;
            const double slope = (q.x() - p.x()) / (q.y() - p.y());
            for (; k < count && lineAt(k) < hi; ++k)
                crossings[size_t(k)].push_back(p.x() + (lineAt(k) - p.y()) * slope);
        }
    }
    for (long k = 0; k < count; ++k) {
        std::vector<double> &xs = crossings[size_t(k)];
        if (xs.size() < 2)
            continue;
        std::sort(xs.begin(), xs.end());
        const double v = lineAt(k);
        std::vector<Segment> line;
        for (size_t i = 0; i + 1 < xs.size(); i += 2) {
            if (xs[i + 1] - xs[i] <= 1e-9)
                continue;
            line.push_back({xs[i] * dir + v * normal, xs[i + 1] * dir + v * normal});
        }
        if (!line.empty())
            lines.push_back(std::move(line));
    }
    return lines;
}

// The lines' segments as burnt: lines in order (from the last with `reverse`), every other line
// run backwards when bidirectional, and all directions turned round with `flip`.
std::vector<std::vector<Segment>> arranged(const ScanLines &lines, bool bidirectional, bool reverse, bool flip)
{
    std::vector<std::vector<Segment>> out;
    out.reserve(lines.size());
    for (size_t i = 0; i < lines.size(); ++i) {
        const std::vector<Segment> &line = lines[reverse ? lines.size() - 1 - i : i];
        const bool forward = (bidirectional ? i % 2 == 0 : true) != flip;
        std::vector<Segment> segs;
        segs.reserve(line.size());
        if (forward) {
            segs = line;
        } else {
            for (auto it = line.rbegin(); it != line.rend(); ++it)
                segs.push_back({it->b, it->a});
        }
        out.push_back(std::move(segs));
    }
    return out;
}

double distance(const QPointF &a, const QPointF &b) { return std::hypot(a.x() - b.x(), a.y() - b.y()); }

// Where a set of lines starts for each arrangement (reverse, flip), in the order 00, 01, 10, 11.
void startPoints(const ScanLines &lines, QPointF out[4])
{
    out[0] = lines.front().front().a;
    out[1] = lines.front().back().b;
    out[2] = lines.back().front().a;
    out[3] = lines.back().back().b;
}

// Writes moves, dropping those that go nowhere in whole micrometres.
class Emitter
{
public:
    Emitter(MoveSink &sink, const JobVector::PlanSettings &settings, qint32 *x, qint32 *y)
        : m_sink(sink), m_settings(settings), m_x(x), m_y(y), m_feed(qint32(std::llround(settings.speed)))
    {}

    QPointF position() const { return QPointF(*m_x / 1000.0, *m_y / 1000.0); }

    void travel(const QPointF &p) { put(PlannedMove::Travel, p, 0, 0); }
    void burn(const QPointF &p) { put(PlannedMove::Cut, p, m_settings.power, m_feed); }
    void idle(const QPointF &p) { put(PlannedMove::Cut, p, 0, m_feed); }

    // The point `length` mm beyond p along the unit vector u, held back to stay on the bed.
    QPointF beyond(const QPointF &p, const QPointF &u, double length) const
    {
        double t = std::max(0.0, length);
        auto limit = [&](double at, double step, double size) {
            if (step > 1e-12)
                t = std::min(t, (size - at) / step);
            else if (step < -1e-12)
                t = std::min(t, -at / step);
        };
        limit(p.x(), u.x(), m_settings.bedWidth);
        limit(p.y(), u.y(), m_settings.bedHeight);
        return p + std::max(0.0, t) * u;
    }

private:
    void put(PlannedMove::Kind kind, const QPointF &p, qint32 power, qint32 feed)
    {
        PlannedMove m;
        m.kind = kind;
        m.x = toMicrons(p.x());
        m.y = toMicrons(p.y());
        if (m.x == *m_x && m.y == *m_y)
            return;
        m.power = power;
        m.feed = feed;
        m_sink.move(m);
        *m_x = m.x;
        *m_y = m.y;
    }

    MoveSink &m_sink;
    const JobVector::PlanSettings &m_settings;
    qint32 *m_x;
    qint32 *m_y;
    qint32 m_feed;
};

// Burns arranged hatch lines, each segment with overscan before and after it along the line. A gap
// on the same line no longer than both overscans and GapTravel is crossed at zero power without stopping.
void burnLines(const std::vector<std::vector<Segment>> &lines, double overscan, Emitter &out)
{
    const double run = std::max(0.0, overscan);
    for (const std::vector<Segment> &line : lines) {
        bool open = false;  // the head is at the end of a burnt segment, overscan not yet run
        QPointF last, lastDir;
        for (const Segment &s : line) {
            const double length = distance(s.a, s.b);
            if (length <= 0)
                continue;
            const QPointF u = (s.b - s.a) / length;
            if (open && distance(last, s.a) <= 2 * run + GapTravel) {
                out.idle(s.a);
            } else {
                if (open)
                    out.idle(out.beyond(last, lastDir, run));
                out.travel(out.beyond(s.a, -u, run));
                out.idle(s.a);
            }
            out.burn(s.b);
            open = true;
            last = s.b;
            lastDir = u;
        }
        if (open)
            out.idle(out.beyond(last, lastDir, run));
    }
}

QRectF geometryBox(const JobGeometry &geometry)
{
    double x0 = std::numeric_limits<double>::max(), y0 = x0;
    double x1 = std::numeric_limits<double>::lowest(), y1 = x1;
    for (const JobShape &shape : geometry)
        for (const JobContour &c : shape.contours)
            for (const QPointF &p : c.points) {
                x0 = std::min(x0, p.x());
                x1 = std::max(x1, p.x());
                y0 = std::min(y0, p.y());
                y1 = std::max(y1, p.y());
            }
    if (x1 < x0)
        return QRectF();
    return QRectF(QPointF(x0, y0), QPointF(x1, y1));
}

// ---- Cutting order ----

struct Node
{
    const JobContour *contour = nullptr;
    double x0 = 0, y0 = 0, x1 = 0, y1 = 0;  // bounding box
    double area = 0;                        // absolute; 0 for an open path
    int parent = -1;                        // the smallest closed contour holding this one
    int pending = 0;                        // contours inside this one not cut yet
    bool done = false;
};

// Crossing-number test of a point against a closed polygon.
bool insidePolygon(const std::vector<QPointF> &poly, const QPointF &p)
{
    bool in = false;
    const size_t n = poly.size();
    for (size_t i = 0, j = n - 1; i < n; j = i++) {
        const QPointF &a = poly[i], &b = poly[j];
        if ((a.y() > p.y()) != (b.y() > p.y())) {
            const double x = b.x() + (p.y() - b.y()) * (a.x() - b.x()) / (a.y() - b.y());
            if (p.x() < x)
                in = !in;
        }
    }
    return in;
}

// A uniform grid over a box, cells sized for about `items` entries.
struct GridShape
{
    double x0 = 0, y0 = 0, cw = 1, ch = 1;
    int w = 1, h = 1;

    GridShape(const QRectF &box, size_t items)
    {
        const double bw = std::max(box.width(), 1e-3), bh = std::max(box.height(), 1e-3);
        const double cells = std::clamp(double(items), 1.0, double(1 << 18));
        w = std::clamp(int(std::ceil(std::sqrt(cells * bw / bh))), 1, 4096);
        h = std::clamp(int(std::ceil(cells / w)), 1, 4096);
        x0 = box.x();
        y0 = box.y();
        cw = bw / w;
        ch = bh / h;
    }
    int cellX(double x) const { return std::clamp(int(std::floor((x - x0) / cw)), 0, w - 1); }
    int cellY(double y) const { return std::clamp(int(std::floor((y - y0) / ch)), 0, h - 1); }
};

// Entry points of the contours that may be cut next, for nearest-neighbour look-ups.
class EntryGrid
{
public:
    struct Entry
    {
        QPointF p;
        quint32 node;
        quint32 vertex;
    };

    EntryGrid(const QRectF &box, size_t entries) : m_shape(box, entries / 8 + 1)
    {
        m_cells.resize(size_t(m_shape.w) * size_t(m_shape.h));
    }

    void insert(const Entry &e)
    {
        m_cells[size_t(m_shape.cellY(e.p.y())) * size_t(m_shape.w) + size_t(m_shape.cellX(e.p.x()))].push_back(e);
    }

    // The nearest entry whose node is not done (dropping those that are); false when none is left.
    bool nearest(const QPointF &from, const std::vector<Node> &nodes, Entry *found)
    {
        const int cx = m_shape.cellX(from.x()), cy = m_shape.cellY(from.y());
        const double step = std::min(m_shape.cw, m_shape.ch);
        const int maxRing = std::max(m_shape.w, m_shape.h);
        double best = std::numeric_limits<double>::max();
        bool any = false;
        for (int r = 0; r <= maxRing; ++r) {
            const int ya = cy - r, yb = cy + r;
            for (int y = std::max(0, ya); y <= std::min(m_shape.h - 1, yb); ++y) {
                const bool edgeRow = y == ya || y == yb;
                const int dx = edgeRow ? 1 : 2 * r;
                for (int x = cx - r; x <= cx + r; x += std::max(1, dx)) {
                    if (x < 0 || x >= m_shape.w)
                        continue;
                    std::vector<Entry> &cell = m_cells[size_t(y) * size_t(m_shape.w) + size_t(x)];
                    for (size_t i = 0; i < cell.size();) {
                        if (nodes[cell[i].node].done) {
                            cell[i] = cell.back();
                            cell.pop_back();
                            continue;
                        }
                        const double dxp = cell[i].p.x() - from.x(), dyp = cell[i].p.y() - from.y();
                        const double d = dxp * dxp + dyp * dyp;
                        if (d < best) {
                            best = d;
                            *found = cell[i];
                            any = true;
                        }
                        ++i;
                    }
                }
            }
            // Entries beyond this ring lie at least r cells away.
            if (any && best <= (r * step) * (r * step))
                break;
        }
        return any;
    }

private:
    GridShape m_shape;
    std::vector<std::vector<Entry>> m_cells;
};

// Finds each contour's parent: the smallest closed contour whose box holds its box and whose
// inside holds its first point.
void findParents(std::vector<Node> &nodes, const QRectF &box)
{
    std::vector<int> closed;
    for (size_t i = 0; i < nodes.size(); ++i)
        if (nodes[i].contour->closed && nodes[i].area > 0)
            closed.push_back(int(i));
    if (closed.empty())
        return;
    // Smallest first, so the first candidate found to hold a contour is its parent.
    std::stable_sort(closed.begin(), closed.end(),
                     [&](int a, int b) { return nodes[size_t(a)].area < nodes[size_t(b)].area; });
    const GridShape grid(box, closed.size());
    std::vector<std::vector<int>> cells(size_t(grid.w) * size_t(grid.h));
    std::vector<int> large;
    for (int i : closed) {
        const Node &n = nodes[size_t(i)];
        const int ax = grid.cellX(n.x0), bx = grid.cellX(n.x1), ay = grid.cellY(n.y0), by = grid.cellY(n.y1);
        if (long(bx - ax + 1) * long(by - ay + 1) > MaxCellsPerBox) {
            large.push_back(i);
            continue;
        }
        for (int y = ay; y <= by; ++y)
            for (int x = ax; x <= bx; ++x)
                cells[size_t(y) * size_t(grid.w) + size_t(x)].push_back(i);
    }
    for (size_t i = 0; i < nodes.size(); ++i) {
        Node &n = nodes[i];
        const QPointF probe = n.contour->points.front();
        const std::vector<int> &cell =
            cells[size_t(grid.cellY(probe.y())) * size_t(grid.w) + size_t(grid.cellX(probe.x()))];
        double bestArea = std::numeric_limits<double>::max();
        // The smallest holder in an area-sorted list: true once the rest can only be larger.
        auto search = [&](const std::vector<int> &list) {
            for (int j : list) {
                const Node &c = nodes[size_t(j)];
                if (c.area >= bestArea)
                    return;
                if (size_t(j) == i || !(c.area > n.area))
                    continue;
                if (c.x0 > n.x0 || c.y0 > n.y0 || c.x1 < n.x1 || c.y1 < n.y1)
                    continue;
                if (!insidePolygon(c.contour->points, probe))
                    continue;
                bestArea = c.area;
                n.parent = j;
                return;
            }
        };
        search(cell);
        search(large);
    }
    for (const Node &n : nodes)
        if (n.parent >= 0)
            ++nodes[size_t(n.parent)].pending;
}

}  // namespace

namespace JobVector {

JobGeometry offset(const JobGeometry &geometry, const LineParams &params)
{
    if (params.kerfSide == KerfSide::On || !(params.kerf > 0))
        return geometry;
    const double delta = (params.kerfSide == KerfSide::Outside ? 0.5 : -0.5) * params.kerf * Scale;
    JobGeometry out;
    out.reserve(geometry.size());
    for (const JobShape &shape : geometry) {
        JobShape shifted;
        shifted.evenOdd = shape.evenOdd;
        const Paths united = unitedShape(shape);
        // The offset of each run reaches no other run, so the runs are offset apart.
        for (const Paths &part : runsAlongX(united, cInt(std::ceil(std::fabs(delta))) + 1)) {
            ClipperLib::ClipperOffset clipperOffset(2.0, ArcTolerance);
            clipperOffset.AddPaths(part, ClipperLib::jtRound, ClipperLib::etClosedPolygon);
            Paths result;
            clipperOffset.Execute(result, delta);
            for (const Path &path : result) {
                JobContour c;
                c.points.reserve(path.size());
                for (const IntPoint &p : path)
                    c.points.push_back(toPoint(p));
                shifted.contours.push_back(std::move(c));
            }
        }
        for (const JobContour &c : shape.contours)
            if (!c.closed)
                shifted.contours.push_back(c);
        if (!shifted.contours.empty())
            out.push_back(std::move(shifted));
    }
    return out;
}

std::vector<JobContour> order(const std::vector<JobGeometry> &items, QPointF from)
{
    std::vector<Node> nodes;
    size_t entries = 0;
    double bx0 = from.x(), by0 = from.y(), bx1 = from.x(), by1 = from.y();
    for (const JobGeometry &g : items) {
        for (const JobShape &shape : g) {
            for (const JobContour &c : shape.contours) {
                if (c.points.size() < 2)
                    continue;
                Node n;
                n.contour = &c;
                n.x0 = n.x1 = c.points.front().x();
                n.y0 = n.y1 = c.points.front().y();
                double twiceArea = 0;
                for (size_t i = 0; i < c.points.size(); ++i) {
                    const QPointF &p = c.points[i], &q = c.points[(i + 1) % c.points.size()];
                    n.x0 = std::min(n.x0, p.x());
                    n.x1 = std::max(n.x1, p.x());
                    n.y0 = std::min(n.y0, p.y());
                    n.y1 = std::max(n.y1, p.y());
                    twiceArea += p.x() * q.y() - q.x() * p.y();
                }
                n.area = c.closed ? std::fabs(twiceArea) / 2 : 0;
                entries += c.closed ? c.points.size() : 2;
                bx0 = std::min(bx0, n.x0);
                by0 = std::min(by0, n.y0);
                bx1 = std::max(bx1, n.x1);
                by1 = std::max(by1, n.y1);
                nodes.push_back(n);
            }
        }
    }
    std::vector<JobContour> out;
    if (nodes.empty())
        return out;
    const QRectF box(QPointF(bx0, by0), QPointF(bx1, by1));
    findParents(nodes, box);

    EntryGrid grid(box, entries);
    auto offer = [&](quint32 i) {
        const JobContour &c = *nodes[i].contour;
        if (c.closed) {
            for (size_t v = 0; v < c.points.size(); ++v)
                grid.insert({c.points[v], i, quint32(v)});
        } else {
            grid.insert({c.points.front(), i, 0});
            grid.insert({c.points.back(), i, quint32(c.points.size() - 1)});
        }
    };
    for (size_t i = 0; i < nodes.size(); ++i)
        if (nodes[i].pending == 0)
            offer(quint32(i));

    out.reserve(nodes.size());
    QPointF at = from;
    EntryGrid::Entry e;
    while (out.size() < nodes.size() && grid.nearest(at, nodes, &e)) {
        Node &n = nodes[e.node];
        const std::vector<QPointF> &pts = n.contour->points;
        JobContour c;
        c.closed = n.contour->closed;
        if (c.closed) {
            c.points.reserve(pts.size() + 1);
            c.points.insert(c.points.end(), pts.begin() + e.vertex, pts.end());
            c.points.insert(c.points.end(), pts.begin(), pts.begin() + e.vertex + 1);
        } else if (e.vertex == 0) {
            c.points = pts;
        } else {
            c.points.assign(pts.rbegin(), pts.rend());
        }
        at = c.points.back();
        out.push_back(std::move(c));
        n.done = true;
        if (n.parent >= 0 && --nodes[size_t(n.parent)].pending == 0)
            offer(quint32(n.parent));
    }
    return out;
}

std::vector<Segment> hatch(const JobGeometry &geometry, const FillParams &params)
{
    std::vector<Segment> out;
    const Paths area = filledArea(geometry);
    std::vector<double> angles{params.angle};
    if (params.crossHatch)
        angles.push_back(params.angle + 90);
    for (double angle : angles) {
        const ScanLines lines = scanLines(area, angle, params.interval);
        for (const std::vector<Segment> &line : arranged(lines, params.bidirectional, false, false))
            out.insert(out.end(), line.begin(), line.end());
    }
    return out;
}

void planLine(const std::vector<JobGeometry> &items, const LineParams &params, const PlanSettings &settings,
              MoveSink &sink, qint32 *x, qint32 *y)
{
    std::vector<JobGeometry> shifted;
    shifted.reserve(items.size());
    for (const JobGeometry &g : items)
        shifted.push_back(offset(g, params));
    Emitter out(sink, settings, x, y);
    for (const JobContour &c : order(shifted, out.position())) {
        out.travel(c.points.front());
        for (size_t i = 1; i < c.points.size(); ++i)
            out.burn(c.points[i]);
    }
}

void planFill(const std::vector<JobGeometry> &items, const FillParams &params, const PlanSettings &settings,
              MoveSink &sink, qint32 *x, qint32 *y)
{
    // Items whose boxes overlap are filled together, so what they share is burnt once.
    std::vector<QRectF> boxes;
    std::vector<int> group;
    for (const JobGeometry &g : items) {
        boxes.push_back(geometryBox(g));
        group.push_back(int(group.size()));
    }
    std::function<int(int)> root = [&](int i) {
        return group[size_t(i)] == i ? i : group[size_t(i)] = root(group[size_t(i)]);
    };
    for (size_t i = 0; i < boxes.size(); ++i)
        for (size_t j = i + 1; j < boxes.size(); ++j)
            if (!boxes[i].isNull() && !boxes[j].isNull() && boxes[i].intersects(boxes[j]))
                group[size_t(root(int(i)))] = root(int(j));

    // Each group's hatch lines, one set per direction.
    std::vector<std::vector<ScanLines>> sets;
    for (size_t i = 0; i < items.size(); ++i) {
        if (root(int(i)) != int(i))
            continue;
        JobGeometry merged;
        for (size_t j = 0; j < items.size(); ++j)
            if (root(int(j)) == int(i))
                merged.insert(merged.end(), items[j].begin(), items[j].end());
        const Paths area = filledArea(merged);
        std::vector<ScanLines> groupSets;
        ScanLines first = scanLines(area, params.angle, params.interval);
        if (!first.empty())
            groupSets.push_back(std::move(first));
        if (params.crossHatch) {
            ScanLines second = scanLines(area, params.angle + 90, params.interval);
            if (!second.empty())
                groupSets.push_back(std::move(second));
        }
        if (!groupSets.empty())
            sets.push_back(std::move(groupSets));
    }

    Emitter out(sink, settings, x, y);
    std::vector<bool> used(sets.size(), false);
    for (size_t round = 0; round < sets.size(); ++round) {
        // The group that starts nearest, then each of its sets from its nearest end.
        const QPointF at = out.position();
        size_t pick = 0;
        double best = std::numeric_limits<double>::max();
        for (size_t g = 0; g < sets.size(); ++g) {
            if (used[g])
                continue;
            QPointF starts[4];
            startPoints(sets[g].front(), starts);
            for (const QPointF &s : starts) {
                if (distance(at, s) < best) {
                    best = distance(at, s);
                    pick = g;
                }
            }
        }
        used[pick] = true;
        for (const ScanLines &lines : sets[pick]) {
            QPointF starts[4];
            startPoints(lines, starts);
            const QPointF now = out.position();
            int choice = 0;
            for (int k = 1; k < 4; ++k)
                if (distance(now, starts[k]) < distance(now, starts[choice]))
                    choice = k;
            burnLines(arranged(lines, params.bidirectional, choice >= 2, choice % 2 == 1), params.overscan, out);
        }
    }
}

}  // namespace JobVector
