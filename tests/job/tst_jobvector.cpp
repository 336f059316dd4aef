// Kerf offsets, cutting order, hatch fills and the moves planned from them.
#include "jobgeometry.h"
#include "jobvector.h"
#include "testsupport.h"

#include <QPolygonF>

#include <cmath>

namespace {

using Points = std::vector<QPointF>;

JobContour rectContour(double x0, double y0, double x1, double y1, bool clockwise = false)
{
    JobContour c;
    c.points = {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
    if (clockwise)
        std::reverse(c.points.begin(), c.points.end());
    return c;
}

JobShape rectShape(double x0, double y0, double x1, double y1)
{
    JobShape s;
    s.contours.push_back(rectContour(x0, y0, x1, y1));
    return s;
}

QRectF bounds(const Points &points)
{
    QPolygonF poly;
    for (const QPointF &p : points)
        poly << p;
    return poly.boundingRect();
}

// Segments written "x1,y1>x2,y2" joined by spaces, each number rounded to 3 decimals.
QString describe(const std::vector<JobVector::Segment> &segments)
{
    QStringList parts;
    auto num = [](double v) {
        const double r = std::round(v * 1000) / 1000;
        return QString::number(r == 0 ? 0 : r, 'g', 10);
    };
    for (const JobVector::Segment &s : segments)
        parts << QStringLiteral("%1,%2>%3,%4").arg(num(s.a.x()), num(s.a.y()), num(s.b.x()), num(s.b.y()));
    return parts.join(QLatin1Char(' '));
}

double burntLength(const std::vector<JobVector::Segment> &segments)
{
    double sum = 0;
    for (const JobVector::Segment &s : segments)
        sum += std::hypot(s.b.x() - s.a.x(), s.b.y() - s.a.y());
    return sum;
}

// Moves written "T x y" (travel) or "C x y power feed" joined by spaces.
class RecordingSink : public MoveSink
{
public:
    void move(const PlannedMove &m) override
    {
        if (m.kind == PlannedMove::Travel)
            moves << QStringLiteral("T %1 %2").arg(m.x).arg(m.y);
        else
            moves << QStringLiteral("C %1 %2 %3 %4").arg(m.x).arg(m.y).arg(m.power).arg(m.feed);
    }
    QStringList moves;
};

}  // namespace

class TestJobVector : public QObject
{
    Q_OBJECT

private slots:
    void hatchSquare_data();
    void hatchSquare();
    void hatchRing_data();
    void hatchRing();
    void hatchLetterLeavesItsHole();
    void kerfOffset_data();
    void kerfOffset();
    void kerfOffsetOfRing();
    void kerfOffsetSideBySide_data();
    void kerfOffsetSideBySide();
    void innerBeforeOuter_data();
    void innerBeforeOuter();
    void openPathInsideIsCutFirst();
    void deepNesting();
    void nearestNeighbour_data();
    void nearestNeighbour();
    void nearestNeighbourAmongMany();
    void planLineMoves();
    void planFillMoves_data();
    void planFillMoves();
    void planFillFinishesOneItemBeforeTheNext();
};

void TestJobVector::hatchSquare_data()
{
    QTest::addColumn<double>("interval");
    QTest::addColumn<double>("angle");
    QTest::addColumn<bool>("cross");
    QTest::addColumn<bool>("bidirectional");
    QTest::addColumn<QString>("expected");

    // The unit square at (0,0); lines are centred on the shape across the hatch direction.
    // clang-format off
    QTest::newRow("rows one way") << 0.25 << 0.0 << false << false
        << "0,0.125>1,0.125 0,0.375>1,0.375 0,0.625>1,0.625 0,0.875>1,0.875";
    QTest::newRow("rows zig-zag") << 0.25 << 0.0 << false << true
        << "0,0.125>1,0.125 1,0.375>0,0.375 0,0.625>1,0.625 1,0.875>0,0.875";
    QTest::newRow("columns") << 0.5 << 90.0 << false << true
        << "0.75,0>0.75,1 0.25,1>0.25,0";
    QTest::newRow("cross-hatch") << 0.5 << 0.0 << true << false
        << "0,0.25>1,0.25 0,0.75>1,0.75 0.75,0>0.75,1 0.25,0>0.25,1";
    QTest::newRow("coarser than the square") << 3.0 << 0.0 << false << false
        << "0,0.5>1,0.5";
    QTest::newRow("diagonal") << std::sqrt(0.5) << 45.0 << false << false
        << "0.5,0>1,0.5 0,0.5>0.5,1";
    // clang-format on
}

void TestJobVector::hatchSquare()
{
    QFETCH(double, interval);
    QFETCH(double, angle);
    QFETCH(bool, cross);
    QFETCH(bool, bidirectional);
    QFETCH(QString, expected);
    FillParams params;
    params.interval = interval;
    params.angle = angle;
    params.crossHatch = cross;
    params.bidirectional = bidirectional;
    QCOMPARE(describe(JobVector::hatch({rectShape(0, 0, 1, 1)}, params)), expected);
}

void TestJobVector::hatchRing_data()
{
    QTest::addColumn<bool>("evenOdd");
    QTest::addColumn<bool>("innerClockwise");
    QTest::addColumn<QString>("middle");
    QTest::addColumn<double>("length");

    // A 4 mm square with a 2 mm square in its middle, hatched 1 mm apart: the line at y = 1.5
    // crosses the hole.
    // clang-format off
    QTest::newRow("evenodd, same direction")     << true  << false << "0,1.5>1,1.5 3,1.5>4,1.5" << 12.0;
    QTest::newRow("evenodd, opposite direction") << true  << true  << "0,1.5>1,1.5 3,1.5>4,1.5" << 12.0;
    QTest::newRow("nonzero, same direction")     << false << false << "0,1.5>4,1.5"             << 16.0;
    QTest::newRow("nonzero, opposite direction") << false << true  << "0,1.5>1,1.5 3,1.5>4,1.5" << 12.0;
    // clang-format on
}

void TestJobVector::hatchRing()
{
    QFETCH(bool, evenOdd);
    QFETCH(bool, innerClockwise);
    QFETCH(QString, middle);
    QFETCH(double, length);
    JobShape ring;
    ring.evenOdd = evenOdd;
    ring.contours = {rectContour(0, 0, 4, 4), rectContour(1, 1, 3, 3, innerClockwise)};
    FillParams params;
    params.interval = 1;
    params.bidirectional = false;
    const std::vector<JobVector::Segment> segments = JobVector::hatch({ring}, params);
    std::vector<JobVector::Segment> onMiddle;
    for (const JobVector::Segment &s : segments)
        if (std::fabs(s.a.y() - 1.5) < 1e-9)
            onMiddle.push_back(s);
    QCOMPARE(describe(onMiddle), middle);
    QVERIFY(std::fabs(burntLength(segments) - length) < 1e-6);
}

void TestJobVector::hatchLetterLeavesItsHole()
{
    JobItem item;
    item.width = 8;
    item.height = 10;
    item.keepAspect = false;
    item.source.kind = SourceKind::Text;
    item.source.text = QStringLiteral("O");
    JobGeometry letter;
    QString error;
    QVERIFY2(JobSources::geometry(item, &letter, &error), qPrintable(error));
    QCOMPARE(letter.size(), size_t(1));
    QCOMPARE(letter[0].contours.size(), size_t(2));
    // The hole is the smaller of the two outlines.
    const JobContour &a = letter[0].contours[0], &b = letter[0].contours[1];
    const bool firstInner = bounds(a.points).width() < bounds(b.points).width();
    QPolygonF hole;
    for (const QPointF &p : (firstInner ? a : b).points)
        hole << p;
    const QRectF holeBox = hole.boundingRect();

    FillParams params;
    params.interval = 0.1;
    const std::vector<JobVector::Segment> segments = JobVector::hatch(letter, params);
    QVERIFY(segments.size() > 100);
    double middle = segments.front().a.y();
    for (const JobVector::Segment &s : segments)
        if (std::fabs(s.a.y() - holeBox.center().y()) < std::fabs(middle - holeBox.center().y()))
            middle = s.a.y();
    int split = 0;
    for (const JobVector::Segment &s : segments) {
        // Points along the segment, off its ends, never lie inside the hole.
        const double length = std::hypot(s.b.x() - s.a.x(), s.b.y() - s.a.y());
        for (double t = 0.01; t < length - 0.01; t += 0.02) {
            const QPointF p = s.a + (s.b - s.a) * (t / length);
            QVERIFY2(!hole.containsPoint(p, Qt::OddEvenFill),
                     qPrintable(QStringLiteral("burns inside the hole at %1,%2").arg(p.x()).arg(p.y())));
        }
        if (s.a.y() == middle)
            ++split;
    }
    // The line through the hole's middle is burnt in two parts, one on each side of it.
    QCOMPARE(split, 2);
}

void TestJobVector::kerfOffset_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("kerf");
    QTest::addColumn<QRectF>("expected");

    // A 10 mm square at (5, 5).
    // clang-format off
    QTest::newRow("inside")       << int(KerfSide::Inside)  << 0.2 << QRectF(5.1, 5.1, 9.8, 9.8);
    QTest::newRow("outside")      << int(KerfSide::Outside) << 0.2 << QRectF(4.9, 4.9, 10.2, 10.2);
    QTest::newRow("outside wide") << int(KerfSide::Outside) << 1.0 << QRectF(4.5, 4.5, 11, 11);
    QTest::newRow("on the line")  << int(KerfSide::On)      << 0.2 << QRectF(5, 5, 10, 10);
    QTest::newRow("no kerf")      << int(KerfSide::Inside)  << 0.0 << QRectF(5, 5, 10, 10);
    // clang-format on
}

void TestJobVector::kerfOffset()
{
    QFETCH(int, side);
    QFETCH(double, kerf);
    QFETCH(QRectF, expected);
    LineParams params;
    params.kerfSide = KerfSide(side);
    params.kerf = kerf;
    JobShape shape = rectShape(5, 5, 15, 15);
    JobContour open;
    open.closed = false;
    open.points = {{1, 1}, {2, 3}};
    shape.contours.push_back(open);
    const JobGeometry out = JobVector::offset({shape}, params);
    QCOMPARE(out.size(), size_t(1));
    QCOMPARE(out[0].contours.size(), size_t(2));
    const JobContour &closed = out[0].contours[0].closed ? out[0].contours[0] : out[0].contours[1];
    const JobContour &path = out[0].contours[0].closed ? out[0].contours[1] : out[0].contours[0];
    const QRectF r = bounds(closed.points);
    QVERIFY2(std::fabs(r.left() - expected.left()) < 1e-4 && std::fabs(r.right() - expected.right()) < 1e-4
                 && std::fabs(r.top() - expected.top()) < 1e-4 && std::fabs(r.bottom() - expected.bottom()) < 1e-4,
             qPrintable(QStringLiteral("%1,%2 %3x%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height())));
    // The cut keeps its distance all round: every point of an inside offset is half a kerf in.
    if (params.kerfSide == KerfSide::Inside && kerf > 0) {
        for (const QPointF &p : closed.points) {
            const double edge = std::min({p.x() - 5, 15 - p.x(), p.y() - 5, 15 - p.y()});
            QVERIFY(std::fabs(edge - kerf / 2) < 1e-4);
        }
    }
    QVERIFY(!path.closed);
    QCOMPARE(path.points, open.points);
}

void TestJobVector::kerfOffsetOfRing()
{
    JobShape ring;
    ring.evenOdd = true;
    ring.contours = {rectContour(0, 0, 4, 4), rectContour(1, 1, 3, 3)};
    LineParams params;
    params.kerfSide = KerfSide::Outside;
    params.kerf = 0.2;
    const JobGeometry out = JobVector::offset({ring}, params);
    QCOMPARE(out.size(), size_t(1));
    QCOMPARE(out[0].contours.size(), size_t(2));
    // The part grows outward on both sides: the outline out, the hole in.
    QRectF outer = bounds(out[0].contours[0].points), inner = bounds(out[0].contours[1].points);
    if (outer.width() < inner.width())
        std::swap(outer, inner);
    QVERIFY(std::fabs(outer.left() + 0.1) < 1e-4 && std::fabs(outer.right() - 4.1) < 1e-4);
    QVERIFY(std::fabs(inner.left() - 1.1) < 1e-4 && std::fabs(inner.right() - 2.9) < 1e-4);
}

void TestJobVector::kerfOffsetSideBySide_data()
{
    QTest::addColumn<double>("gap");  // between two 4 mm squares side by side in one shape
    QTest::addColumn<int>("side");
    QTest::addColumn<double>("kerf");
    QTest::addColumn<QString>("expected");  // the offset contours' X extents, left to right

    // Shapes apart are offset apart, but never when their offsets meet.
    // clang-format off
    QTest::newRow("apart, outside")      << 1.0  << int(KerfSide::Outside) << 0.4 << "-0.2..4.2 4.8..9.2";
    QTest::newRow("offsets meet")        << 0.3  << int(KerfSide::Outside) << 0.4 << "-0.2..8.5";
    QTest::newRow("offsets just touch")  << 0.4  << int(KerfSide::Outside) << 0.4 << "-0.2..8.6";
    QTest::newRow("close, inside")       << 0.1  << int(KerfSide::Inside)  << 0.4 << "0.2..3.8 4.3..7.9";
    QTest::newRow("overlapping squares") << -1.0 << int(KerfSide::Outside) << 0.4 << "-0.2..7.2";
    // clang-format on
}

void TestJobVector::kerfOffsetSideBySide()
{
    QFETCH(double, gap);
    QFETCH(int, side);
    QFETCH(double, kerf);
    QFETCH(QString, expected);
    JobShape shape;
    shape.contours = {rectContour(0, 0, 4, 4), rectContour(4 + gap, 0, 8 + gap, 4)};
    LineParams params;
    params.kerfSide = KerfSide(side);
    params.kerf = kerf;
    const JobGeometry out = JobVector::offset({shape}, params);
    QCOMPARE(out.size(), size_t(1));
    std::vector<QRectF> boxes;
    for (const JobContour &c : out[0].contours)
        boxes.push_back(bounds(c.points));
    std::sort(boxes.begin(), boxes.end(), [](const QRectF &a, const QRectF &b) { return a.left() < b.left(); });
    QStringList got;
    for (const QRectF &b : boxes)
        got << QStringLiteral("%1..%2")
                   .arg(std::round(b.left() * 1000) / 1000)
                   .arg(std::round(b.right() * 1000) / 1000);
    QCOMPARE(got.join(QLatin1Char(' ')), expected);
}

void TestJobVector::innerBeforeOuter_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QString>("expected");

    // A part (0..10) with a hole (2..8) holding an island (4..6), and a separate square (20..21).
    // Each contour is named by the first point it is cut from.
    // clang-format off
    QTest::newRow("from the origin") << QPointF(0, 0)   << "4,4 2,2 0,0 20,0";
    QTest::newRow("from the right")  << QPointF(30, 0)  << "21,0 6,4 8,2 10,0";
    QTest::newRow("from the middle") << QPointF(5.5, 5.5) << "6,6 8,8 10,10 20,1";
    // clang-format on
}

void TestJobVector::innerBeforeOuter()
{
    QFETCH(QPointF, from);
    QFETCH(QString, expected);
    JobGeometry part{rectShape(0, 0, 10, 10), rectShape(2, 2, 8, 8), rectShape(4, 4, 6, 6)};
    JobGeometry other{rectShape(20, 0, 21, 1)};
    const std::vector<JobContour> cut = JobVector::order({other, part}, from);
    QStringList starts;
    for (const JobContour &c : cut) {
        QVERIFY(c.closed);
        QCOMPARE(c.points.size(), size_t(5));
        QCOMPARE(c.points.front(), c.points.back());
        starts << QStringLiteral("%1,%2").arg(c.points.front().x()).arg(c.points.front().y());
    }
    QCOMPARE(starts.join(QLatin1Char(' ')), expected);
}

void TestJobVector::openPathInsideIsCutFirst()
{
    // An engraved line inside a part is made before the part is cut free, though the part's
    // corner is nearer; the line's nearer end comes first.
    JobShape part = rectShape(0, 0, 10, 10);
    JobContour line;
    line.closed = false;
    line.points = {{7, 4}, {3, 4}};
    part.contours.push_back(line);
    const std::vector<JobContour> cut = JobVector::order({{part}}, QPointF(-1, -1));
    QCOMPARE(cut.size(), size_t(2));
    QVERIFY(!cut[0].closed);
    QCOMPARE(cut[0].points, (Points{{3, 4}, {7, 4}}));
    QVERIFY(cut[1].closed);
    QCOMPARE(cut[1].points.front(), QPointF(10, 0));
}

void TestJobVector::deepNesting()
{
    // 100 nested squares, given from the outside in, and a lone square beside them: from anywhere,
    // every square is cut before the one around it.
    JobGeometry nest;
    for (int k = 100; k >= 1; --k)
        nest.push_back(rectShape(100 - k * 0.5, 100 - k * 0.5, 100 + k * 0.5, 100 + k * 0.5));
    for (const QPointF &from : {QPointF(0, 0), QPointF(100, 100), QPointF(200, 0)}) {
        const std::vector<JobContour> cut = JobVector::order({nest, {rectShape(160, 0, 161, 1)}}, from);
        QCOMPARE(cut.size(), size_t(101));
        double last = 0;
        for (const JobContour &c : cut) {
            const double side = bounds(c.points).width();
            if (side == 1.0 && c.points.front().x() >= 160)
                continue;
            QVERIFY2(side > last, qPrintable(QStringLiteral("%1 after %2").arg(side).arg(last)));
            last = side;
        }
    }
}

void TestJobVector::nearestNeighbour_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QString>("expected");

    // Squares at x = 0, 10 and 20 and an open path from (40,0) to (30,0), each named by the
    // point it starts from; an open path runs from its nearer end.
    // clang-format off
    QTest::newRow("from the left")   << QPointF(-5, 0) << "0,0 10,0 20,0 30,0";
    QTest::newRow("from the right")  << QPointF(45, 0) << "40,0 21,0 11,0 1,0";
    QTest::newRow("from the middle") << QPointF(12, 3) << "11,1 20,1 30,0 1,0";
    // clang-format on
}

void TestJobVector::nearestNeighbour()
{
    QFETCH(QPointF, from);
    QFETCH(QString, expected);
    JobShape squares;
    for (double x : {0.0, 10.0, 20.0})
        squares.contours.push_back(rectContour(x, 0, x + 1, 1));
    JobShape path;
    JobContour line;
    line.closed = false;
    line.points = {{40, 0}, {35, 0.5}, {30, 0}};
    path.contours.push_back(line);
    const std::vector<JobContour> cut = JobVector::order({{squares}, {path}}, from);
    QStringList starts;
    for (const JobContour &c : cut)
        starts << QStringLiteral("%1,%2").arg(c.points.front().x()).arg(c.points.front().y());
    QCOMPARE(starts.join(QLatin1Char(' ')), expected);
    // Every point of every contour is cut exactly as given, only rotated or reversed.
    for (const JobContour &c : cut)
        QCOMPARE(c.points.size(), c.closed ? size_t(5) : size_t(3));
}

void TestJobVector::nearestNeighbourAmongMany()
{
    // 400 small triangles scattered over the bed: each next contour starts at the vertex nearest
    // to where the last one ended, checked against every vertex left.
    quint32 seed = 12345;
    auto next = [&seed] {
        seed = seed * 1664525u + 1013904223u;
        return double(seed >> 8) / double(1 << 24);
    };
    JobShape shape;
    for (int i = 0; i < 400; ++i) {
        const QPointF c((i % 20) * 8 + next() * 6, (i / 20) * 10 + next() * 8);
        shape.contours.push_back(
            JobContour{{c, c + QPointF(1 + next(), next()), c + QPointF(next(), 1 + next())}, true});
    }
    const std::vector<JobContour> cut = JobVector::order({{shape}}, QPointF(85, 100));
    QCOMPARE(cut.size(), size_t(400));
    std::vector<bool> used(400, false);
    QPointF at(85, 100);
    for (const JobContour &c : cut) {
        double best = 1e18;
        for (size_t i = 0; i < 400; ++i)
            if (!used[i])
                for (const QPointF &p : shape.contours[i].points)
                    best = std::min(best, std::hypot(p.x() - at.x(), p.y() - at.y()));
        const double taken = std::hypot(c.points.front().x() - at.x(), c.points.front().y() - at.y());
        QCOMPARE(taken, best);
        for (size_t i = 0; i < 400; ++i) {
            const Points &pts = shape.contours[i].points;
            if (!used[i] && std::find(pts.begin(), pts.end(), c.points.front()) != pts.end()) {
                used[i] = true;
                break;
            }
        }
        at = c.points.back();
    }
    QVERIFY(std::all_of(used.begin(), used.end(), [](bool u) { return u; }));
}

void TestJobVector::planLineMoves()
{
    // A 2 mm square with a 0.2 mm kerf outside, from the origin: it starts at its nearest corner.
    LineParams params;
    params.kerfSide = KerfSide::Outside;
    params.kerf = 0.2;
    JobVector::PlanSettings settings;
    settings.speed = 300;
    settings.power = 1000000;
    RecordingSink sink;
    qint32 x = 0, y = 0;
    JobShape square = rectShape(1, 1, 3, 3);
    // The offset rounds the corners; with a kerf on the line they stay as they are.
    JobVector::planLine({{square}}, LineParams(), settings, sink, &x, &y);
    QCOMPARE(sink.moves.join(QLatin1Char(' ')),
             QStringLiteral("T 1000 1000 C 3000 1000 1000000 300 C 3000 3000 1000000 300 "
                            "C 1000 3000 1000000 300 C 1000 1000 1000000 300"));
    QCOMPARE(x, 1000);
    QCOMPARE(y, 1000);

    sink.moves.clear();
    x = 0;
    y = 0;
    JobVector::planLine({{square}}, params, settings, sink, &x, &y);
    QVERIFY(sink.moves.size() > 5);
    QVERIFY(sink.moves.first().startsWith(QLatin1String("T ")));
    // Back where it started, all cuts on the offset outline 0.1 mm outside the square.
    QCOMPARE(sink.moves.last().section(QLatin1Char(' '), 1, 2), sink.moves.first().section(QLatin1Char(' '), 1, 2));
    for (const QString &m : sink.moves) {
        const double px = m.section(QLatin1Char(' '), 1, 1).toDouble() / 1000;
        const double py = m.section(QLatin1Char(' '), 2, 2).toDouble() / 1000;
        const double dx = std::max({1 - px, px - 3, 0.0}), dy = std::max({1 - py, py - 3, 0.0});
        QVERIFY2(std::fabs(std::hypot(dx, dy) - 0.1) <= 0.0015, qPrintable(m));
    }
}

void TestJobVector::planFillMoves_data()
{
    QTest::addColumn<double>("gap");
    QTest::addColumn<double>("left");
    QTest::addColumn<QString>("expected");

    // Unit squares `left` mm from the bed's edge (one, or two `gap` apart on the same lines),
    // hatched 0.5 mm apart with 1 mm overscan at 600 mm/min, from the origin. A gap up to the two
    // overscans and 10 mm is crossed at zero power.
    // clang-format off
    QTest::newRow("one square") << -1.0 << 10.0
        << "T 9000 250 C 10000 250 0 600 C 11000 250 5000 600 C 12000 250 0 600 "
           "T 12000 750 C 11000 750 0 600 C 10000 750 5000 600 C 9000 750 0 600";
    QTest::newRow("overscan held on the bed") << -1.0 << 0.5
        << "T 0 250 C 500 250 0 600 C 1500 250 5000 600 C 2500 250 0 600 "
           "T 2500 750 C 1500 750 0 600 C 500 750 5000 600 C 0 750 0 600";
    QTest::newRow("short gap crossed at zero power") << 12.0 << 10.0
        << "T 9000 250 C 10000 250 0 600 C 11000 250 5000 600 C 23000 250 0 600 C 24000 250 5000 600 "
           "C 25000 250 0 600 T 25000 750 C 24000 750 0 600 C 23000 750 5000 600 C 11000 750 0 600 "
           "C 10000 750 5000 600 C 9000 750 0 600";
    QTest::newRow("long gap travelled") << 12.5 << 10.0
        << "T 9000 250 C 10000 250 0 600 C 11000 250 5000 600 C 12000 250 0 600 T 22500 250 "
           "C 23500 250 0 600 C 24500 250 5000 600 C 25500 250 0 600 T 25500 750 C 24500 750 0 600 "
           "C 23500 750 5000 600 C 22500 750 0 600 T 12000 750 C 11000 750 0 600 C 10000 750 5000 600 "
           "C 9000 750 0 600";
    // clang-format on
}

void TestJobVector::planFillMoves()
{
    QFETCH(double, gap);
    QFETCH(double, left);
    QFETCH(QString, expected);
    JobGeometry item{rectShape(left, 0, left + 1, 1)};
    if (gap > 0)
        item.push_back(rectShape(left + 1 + gap, 0, left + 2 + gap, 1));
    FillParams params;
    params.interval = 0.5;
    params.overscan = 1;
    JobVector::PlanSettings settings;
    settings.speed = 600;
    settings.power = 5000;
    RecordingSink sink;
    qint32 x = 0, y = 0;
    JobVector::planFill({item}, params, settings, sink, &x, &y);
    QCOMPARE(sink.moves.join(QLatin1Char(' ')), expected);
    QCOMPARE(x, toMicrons(left - 1 < 0 ? 0 : left - 1));
    QCOMPARE(y, 750);
}

void TestJobVector::planFillFinishesOneItemBeforeTheNext()
{
    // Two squares far apart on the same rows, as two items: each is filled whole before the
    // head travels to the other, starting with the nearer one.
    FillParams params;
    params.interval = 0.25;
    params.overscan = 0;
    JobVector::PlanSettings settings;
    settings.speed = 1000;
    settings.power = 1000;
    RecordingSink sink;
    qint32 x = 100000, y = 0;
    JobVector::planFill({{rectShape(10, 0, 11, 1)}, {rectShape(90, 0, 91, 1)}}, params, settings, sink, &x, &y);
    QStringList burnsAt;
    for (const QString &m : sink.moves)
        if (m.startsWith(QLatin1String("C ")) && !m.endsWith(QLatin1String(" 0 1000")))
            burnsAt << (m.section(QLatin1Char(' '), 1, 1).toInt() > 50000 ? QStringLiteral("far")
                                                                          : QStringLiteral("near"));
    QCOMPARE(burnsAt.join(QLatin1Char(' ')), QStringLiteral("far far far far near near near near"));
}

TARNWELL_TEST_MAIN(TestJobVector)
#include "tst_jobvector.moc"
