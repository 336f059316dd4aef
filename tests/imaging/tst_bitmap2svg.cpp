// Tests of the tracer and the SVG writer: outlines and holes of known shapes, the
// flattening of curves, failures that keep earlier outlines, and the SVG against the picture.
#include "testsupport.h"

#include "bitmap2svg.h"
#include "qxpotrace.h"
#include "svgpathtext.h"

#include <QBuffer>
#include <QPainter>
#include <QRandomGenerator>
#include <QRegularExpression>
#include <QSvgGenerator>
#include <QSvgRenderer>

// Each outline: its outer bounding box, then the bounding boxes of its holes.
using OutlineList = QList<QList<QRectF>>;

namespace {

constexpr QRgb Ink = 0xFF000000, Paper = 0xFFFFFFFF;

// Paper with filled rectangles, or ellipses in those rectangles, drawn in turn.
QImage withRects(int w, int h, const QList<QPair<QRectF, QRgb>> &rects = {}, bool ellipses = false)
{
    QImage image(w, h, QImage::Format_ARGB32);
    image.fill(Paper);
    QPainter painter(&image);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    painter.setPen(Qt::NoPen);
    for (const auto &r : rects) {
        painter.setBrush(QColor::fromRgba(r.second));
        ellipses ? painter.drawEllipse(r.first) : painter.drawRect(r.first);
    }
    return image;
}

// Two square rings, the second with an island in its hole.
QImage rings()
{
    return withRects(120, 60,
                     {{QRect(5, 5, 40, 40), Ink},
                      {QRect(15, 15, 20, 20), Paper},
                      {QRect(60, 5, 50, 50), Ink},
                      {QRect(70, 15, 30, 30), Paper},
                      {QRect(80, 25, 10, 10), Ink}});
}

// A ring between the two radii around (50, 50).
QImage circleRing(qreal outer, qreal inner)
{
    auto disc = [](qreal r) { return QRectF(50 - r, 50 - r, 2 * r, 2 * r); };
    return withRects(100, 100, {{disc(outer), Ink}, {disc(inner), Paper}}, true);
}

// Each edge within a pixel and a half.
bool near(const QRectF &a, const QRectF &b)
{
    const auto grown = [](const QRectF &r) { return r.adjusted(-1.5, -1.5, 1.5, 1.5); };
    return grown(a).contains(b) && grown(b).contains(a);
}

// The first point of each outline in the file.
const QRegularExpression PathRe(QStringLiteral("<path[^>]* d=\"M([-0-9.e]+),([-0-9.e]+)"));

// The file draws unfilled outlines. Filled and combined exclusive-or, they give the area
// the outlines and their holes enclose; QSvgRenderer draws it as an SVG reader would.
QImage renderEnclosedArea(QString svg, const QSize &size)
{
    svg.replace(QStringLiteral("fill=\"none\""), QStringLiteral("fill=\"#000000\""));
    svg.replace(QStringLiteral("stroke=\"black\""), QStringLiteral("stroke=\"none\""));
    QSvgRenderer renderer(svg.toUtf8());
    if (!renderer.isValid())
        return QImage();
    QImage area(size, QImage::Format_ARGB32);
    area.fill(0);
    QPainter painter(&area);
    painter.setCompositionMode(QPainter::CompositionMode_Xor);
    renderer.setViewBox(QRectF(QPointF(0, 0), size));
    renderer.render(&painter, QRectF(QPointF(0, 0), size));
    return area;
}

}  // namespace

class TestBitmap2Svg : public QObject
{
    Q_OBJECT
private slots:
    void traceShapes_data()
    {
        // clang-format off
        QTest::addColumn<QImage>("picture");
        QTest::addColumn<OutlineList>("expected");

        QTest::newRow("empty picture") << withRects(40, 40) << OutlineList();
        QTest::newRow("transparent dark pixels are paper")
            << withRects(40, 40, {{QRect(0, 0, 40, 40), 0x00000000}}) << OutlineList();
        QTest::newRow("circle ring")
            << circleRing(30, 15) << OutlineList{{QRectF(20, 20, 60, 60), QRectF(35, 35, 30, 30)}};
        QTest::newRow("two separate rings, an island in one hole, y grows down") << rings()
            << OutlineList{{QRectF(5, 5, 40, 40), QRectF(15, 15, 20, 20)},
                           {QRectF(60, 5, 50, 50), QRectF(70, 15, 30, 30)}, {QRectF(80, 25, 10, 10)}};
        const QImage grays = withRects(40, 40, {{QRect(5, 5, 10, 10), qRgb(127, 127, 127)},
                                                {QRect(20, 5, 10, 10), qRgb(128, 128, 128)}});
        QTest::newRow("gray 127 is ink, 128 is paper") << grays << OutlineList{{QRectF(5, 5, 10, 10)}};
        // clang-format on
    }

    void traceShapes()
    {
        QFETCH(QImage, picture);
        QFETCH(OutlineList, expected);

        QxPotrace tracer;
        tracer.setBezierPrecision(10);
        QVERIFY(tracer.trace(picture));
        const QList<QxPotrace::Polygon> polygons = tracer.polygons();
        QCOMPARE(polygons.size(), expected.size());
        for (const QList<QRectF> &want : expected) {
            int matches = 0;
            for (const QxPotrace::Polygon &got : polygons) {
                if (!near(got.boundary.boundingRect(), want.first()))
                    continue;
                ++matches;
                QCOMPARE(got.holes.size(), want.size() - 1);
                for (int i = 0; i < got.holes.size(); ++i)
                    QVERIFY(near(got.holes.at(i).boundingRect(), want.at(i + 1)));
            }
            QCOMPARE(matches, 1);
        }
    }

    void flattening()
    {
        // A curve segment gives `precision` points and a corner two, so the point count
        // grows linearly with the precision.
        QxPotrace tracer;
        QList<int> points;
        for (int precision : {1, 10, 20}) {
            tracer.setBezierPrecision(precision);
            QVERIFY(tracer.trace(circleRing(30, 15)));
            points << tracer.polygons().first().boundary.size() + tracer.polygons().first().holes.first().size();
        }
        QVERIFY(points.at(2) > points.at(1));
        QCOMPARE((points.at(2) - points.at(1)) * 9, (points.at(1) - points.at(0)) * 10);
    }

    // One-bit pictures are packed without a 32-bit copy: the outlines must be those of the copy.
    void monoAsColour_data()
    {
        // clang-format off
        QTest::addColumn<int>("format");
        QTest::addColumn<QRgb>("colour0");
        QTest::addColumn<QRgb>("colour1");
        QTest::addColumn<int>("width");
        QTest::newRow("ink is 1, width across words") << int(QImage::Format_Mono) << Paper << Ink << 131;
        QTest::newRow("ink is 0") << int(QImage::Format_Mono) << Ink << Paper << 64;
        QTest::newRow("least significant bit first") << int(QImage::Format_MonoLSB) << Paper << Ink << 77;
        QTest::newRow("transparent black is paper") << int(QImage::Format_Mono) << 0x20000000u << Ink << 70;
        QTest::newRow("both colours ink") << int(QImage::Format_Mono) << 0xFF404040u << Ink << 9;
        // clang-format on
    }
    void monoAsColour()
    {
        QFETCH(int, format);
        QFETCH(QRgb, colour0);
        QFETCH(QRgb, colour1);
        QFETCH(int, width);
        QImage mono(width, 50, QImage::Format(format));
        mono.setColorTable({colour0, colour1});
        mono.fill(0);
        for (int y = 0; y < mono.height(); ++y)
            for (int x = 0; x < width; ++x)
                mono.setPixel(x, y, ((x / 9 + y / 7) % 3 == 0 || (x * x + y) % 23 == 0 || x == width - 1) ? 1 : 0);
        QxPotrace packed, copied;
        QVERIFY(packed.trace(mono));
        QVERIFY(copied.trace(mono.convertToFormat(QImage::Format_ARGB32)));
        QCOMPARE(packed.polygons().size(), copied.polygons().size());
        QVERIFY(!copied.polygons().isEmpty());
        for (int i = 0; i < copied.polygons().size(); ++i) {
            QCOMPARE(packed.polygons()[i].boundary, copied.polygons()[i].boundary);
            QCOMPARE(packed.polygons()[i].holes, copied.polygons()[i].holes);
        }
    }

    // The SVG text written directly against the generator's, for awkward numbers too.
    void svgAsPainted()
    {
        ScopedWorkDir dir;
        QList<QxPotrace::Polygon> polygons;
        QxPotrace::Polygon polygon;
        const double awkward[] = {
            0,       -0.0,      1e-5,     0.0001, 0.00012345675, 99999.95,          99999.4,  123456.7,
            -3.5,    0.3203125, 1.234375, 2.5,    999.9995,      1e-4 * 0.99999999, 64000.25, 0.1,
            1.0 / 3, -1e-7,     1e9};
        for (double a : awkward)
            polygon.boundary << QPointF(a, 1.5) << QPointF(2, a) << QPointF(a, a);
        polygon.boundary << QPointF(1, 1) << QPointF(1, 1) << QPointF(1 + 1e-14, 1) << QPointF(0, 1.5 + 1e-13);
        polygon.holes << QPolygonF({QPointF(1, 2), QPointF(3, 4), QPointF(5, 6 + 1e-13), QPointF(1, 2)});
        QRandomGenerator random(3);
        for (int i = 0; i < 400; ++i)
            polygon.holes.last() << QPointF(random.generateDouble() * std::pow(10.0, random.bounded(10) - 4),
                                            -random.generateDouble() * 2000);
        polygons << polygon;
        SvgPathText text;
        QBuffer painted;
        QSvgGenerator generator;
        generator.setOutputDevice(&painted);
        QPainter painter(&generator);
        for (const QxPotrace::Polygon &p : polygons) {
            painter.drawPolygon(p.boundary, Qt::OddEvenFill);
            for (const QPolygonF &hole : p.holes)
                painter.drawPolygon(hole, Qt::OddEvenFill);
            text.appendPath(p.boundary);
            for (const QPolygonF &hole : p.holes)
                text.appendPath(hole);
        }
        painter.end();
        const QByteArray all = painted.data();
        const int from = all.indexOf("<path "), to = all.lastIndexOf("\"/>\n") + 4;
        QCOMPARE(text.bytes(), all.mid(from, to - from));
        for (double a : awkward)
            QCOMPARE(SvgPathText::number(a), QString::number(a, 'g', 6).toLatin1());
    }

    void svg_data()
    {
        // clang-format off
        QTest::addColumn<QStringList>("traced");  // files traced in turn before writing
        QTest::addColumn<int>("outlines");        // outlines in the SVG
        QTest::addColumn<double>("allowed");      // mismatching pixels per ink pixel

        QTest::newRow("never traced") << QStringList() << 0 << 0.0;
        QTest::newRow("missing file") << QStringList{"missing.png"} << 0 << 0.0;
        QTest::newRow("failure keeps the previous outlines") << QStringList{"square.png", "missing.png"} << 1 << 0.01;
        QTest::newRow("a later success replaces them") << QStringList{"square.png", "blank.png"} << 0 << 0.0;
        QTest::newRow("rings and island") << QStringList{"rings.png"} << 5 << 0.01;
        QTest::newRow("rings as the editor's JPEG") << QStringList{"rings.jpg"} << 5 << 0.01;
        QTest::newRow("circle ring") << QStringList{"circle.png"} << 2 << 0.03;
        // clang-format on
    }

    void svg()
    {
        QFETCH(QStringList, traced);
        QFETCH(int, outlines);
        QFETCH(double, allowed);
        ScopedWorkDir dir;
        QVERIFY(withRects(30, 30).save("blank.png")
                && withRects(40, 40, {{QRect(5, 5, 10, 10), Ink}}).save("square.png") && rings().save("rings.png")
                && rings().save("rings.jpg", nullptr, 100) && circleRing(40, 20).save("circle.png"));

        Bitmap2Svg tracer;
        QImage picture = withRects(40, 40);  // the last picture traced
        for (const QString &file : traced) {
            tracer.Trace(file);
            picture = QFile::exists(file) ? QImage(file) : picture;
        }
        QCOMPARE(tracer.LastTraceOk(), !traced.isEmpty() && QFile::exists(traced.last()));
        tracer.WriteSvg("out.svg");
        QFile file("out.svg");
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString svg = QString::fromUtf8(file.readAll());
        QVERIFY(svg.contains("<title>Quill Svg Generate</title>")
                && svg.contains("<desc>An SVG drawing created by the SVG Generator Provide by quill.</desc>"));

        // Unfilled, even-odd, each outer outline followed by its holes.
        QVERIFY(svg.contains(QStringLiteral("<g fill=\"none\"")));
        QCOMPARE(svg.count(QStringLiteral("fill-rule=\"evenodd\"")), 1 + outlines);
        QList<QPolygonF> order;
        for (const QxPotrace::Polygon &polygon : tracer.Polygons())
            order << polygon.boundary << polygon.holes;
        QCOMPARE(order.size(), outlines);
        auto path = PathRe.globalMatch(svg);
        for (const QPolygonF &outline : order) {
            const auto m = path.next();
            const QPointF first(m.captured(1).toDouble(), m.captured(2).toDouble());
            QVERIFY(QLineF(first, outline.first()).length() < 0.01);
        }

        // The enclosed area is the picture's ink.
        const QImage area = renderEnclosedArea(svg, picture.size());
        QVERIFY(!area.isNull());
        int ink = 0, wrong = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) {
                ink += qGray(picture.pixel(x, y)) < 128 ? 1 : 0;
                wrong += (qAlpha(area.pixel(x, y)) >= 128) != (qGray(picture.pixel(x, y)) < 128) ? 1 : 0;
            }
        }
        QVERIFY2(wrong <= allowed * ink, qPrintable(QStringLiteral("%1 of %2 pixels differ").arg(wrong).arg(ink)));
    }
};

TARNWELL_TEST_MAIN(TestBitmap2Svg)
#include "tst_bitmap2svg.moc"
