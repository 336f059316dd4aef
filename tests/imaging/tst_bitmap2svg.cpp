// Tests of the tracer and the SVG writer: outlines and holes of known shapes, the
// flattening of curves, failures that keep earlier outlines, and the SVG against the picture.
#include "testsupport.h"

#include "bitmap2svg.h"
#include "qxpotrace.h"

#include <QPainter>
#include <QRegularExpression>
#include <QSvgRenderer>
#include <cmath>

namespace {

// One expected outline: its outer bounding box and the bounding boxes of its holes.
struct Outline
{
    QRectF outer;
    QList<QRectF> holes;
};
using OutlineList = QList<Outline>;

constexpr qreal Tolerance = 1.5;

QImage withRects(int w, int h, const QList<QPair<QRect, QRgb>> &rects = {})
{
    QImage image(w, h, QImage::Format_ARGB32);
    image.fill(0xFFFFFFFF);
    QPainter painter(&image);
    for (const auto &r : rects)
        painter.fillRect(r.first, QColor::fromRgba(r.second));
    return image;
}

// Black where the pixel centre lies between the two radii around (50, 50).
QImage circleRing(qreal outer, qreal inner)
{
    QImage image = withRects(100, 100);
    for (int y = 0; y < 100; ++y) {
        for (int x = 0; x < 100; ++x) {
            const qreal d = std::hypot(x + 0.5 - 50, y + 0.5 - 50);
            if (d <= outer && d >= inner)
                image.setPixel(x, y, 0xFF000000);
        }
    }
    return image;
}

QImage textPicture()
{
    QImage image = withRects(400, 160);
    QPainter painter(&image);
    QFont font;
    font.setPixelSize(90);
    font.setBold(true);
    font.setStyleStrategy(QFont::NoAntialias);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(QRect(0, 0, 400, 160), Qt::AlignCenter, QStringLiteral("Tw8@"));
    return image;
}

bool near(const QRectF &a, const QRectF &b)
{
    return qAbs(a.left() - b.left()) <= Tolerance && qAbs(a.top() - b.top()) <= Tolerance
            && qAbs(a.right() - b.right()) <= Tolerance && qAbs(a.bottom() - b.bottom()) <= Tolerance;
}

QString readText(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

// The outlines of an SVG written by WriteSvg, in file order.
QList<QPolygonF> svgOutlines(const QString &svg)
{
    QList<QPolygonF> out;
    QRegularExpression pathRe(QStringLiteral("<path[^>]* d=\"([^\"]*)\""));
    QRegularExpression pointRe(QStringLiteral("[ML]([-0-9.e]+),([-0-9.e]+)"));
    auto paths = pathRe.globalMatch(svg);
    while (paths.hasNext()) {
        QPolygonF polygon;
        auto points = pointRe.globalMatch(paths.next().captured(1));
        while (points.hasNext()) {
            const auto m = points.next();
            polygon << QPointF(m.captured(1).toDouble(), m.captured(2).toDouble());
        }
        out << polygon;
    }
    return out;
}

// The file draws unfilled outlines. Filling each outline alone and combining the fills
// even-odd gives the area the outlines and their holes enclose; rendering goes through
// QSvgRenderer so that what is checked is what an SVG reader sees.
QImage renderEnclosedArea(const QString &svg, const QSize &size)
{
    QImage area(size, QImage::Format_Grayscale8);
    area.fill(0);
    QRegularExpression elementRe(QStringLiteral("<path[^>]*/>"));
    QList<QRegularExpressionMatch> elements;
    auto it = elementRe.globalMatch(svg);
    while (it.hasNext())
        elements << it.next();
    if (elements.isEmpty())
        return area;
    const QString head = svg.left(elements.first().capturedStart());
    const QString tail = svg.mid(elements.last().capturedEnd());
    for (const QRegularExpressionMatch &element : elements) {
        QString one = head + element.captured(0) + tail;
        one.replace(QStringLiteral("fill=\"none\""), QStringLiteral("fill=\"#000000\""));
        one.replace(QStringLiteral("stroke=\"black\""), QStringLiteral("stroke=\"none\""));
        QSvgRenderer renderer(one.toUtf8());
        if (!renderer.isValid())
            return QImage();
        renderer.setViewBox(QRectF(QPointF(0, 0), size));
        QImage layer(size, QImage::Format_ARGB32);
        layer.fill(0);
        QPainter painter(&layer);
        renderer.render(&painter, QRectF(QPointF(0, 0), size));
        painter.end();
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x)
                if (qAlpha(layer.pixel(x, y)) >= 128)
                    area.scanLine(y)[x] ^= 1;
    }
    return area;
}

} // namespace

Q_DECLARE_METATYPE(Outline)

class TestBitmap2Svg : public QObject
{
    Q_OBJECT
private slots:
    void traceShapes_data();
    void traceShapes();
    void circleRing();
    void writeAfterTrace_data();
    void writeAfterTrace();
    void svgOrder();
    void svgMatchesPicture_data();
    void svgMatchesPicture();
};

void TestBitmap2Svg::traceShapes_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<OutlineList>("expected");

    const QRgb black = 0xFF000000, white = 0xFFFFFFFF;
    QImage clear(40, 40, QImage::Format_ARGB32);
    clear.fill(0x00000000);

    QTest::newRow("empty picture") << withRects(40, 40) << OutlineList();
    QTest::newRow("transparent dark pixels are paper") << clear << OutlineList();
    QTest::newRow("square near the top, y grows down")
            << withRects(40, 40, {{QRect(5, 2, 10, 6), black}})
            << OutlineList{{QRectF(5, 2, 10, 6), {}}};
    QTest::newRow("two blobs")
            << withRects(60, 60, {{QRect(5, 5, 10, 10), black}, {QRect(30, 20, 8, 15), black}})
            << OutlineList{{QRectF(5, 5, 10, 10), {}}, {QRectF(30, 20, 8, 15), {}}};
    QTest::newRow("square ring")
            << withRects(60, 60, {{QRect(10, 10, 40, 40), black}, {QRect(20, 20, 20, 20), white}})
            << OutlineList{{QRectF(10, 10, 40, 40), {QRectF(20, 20, 20, 20)}}};
    QTest::newRow("island inside a hole")
            << withRects(60, 60, {{QRect(10, 10, 40, 40), black}, {QRect(20, 20, 20, 20), white},
                                  {QRect(26, 26, 8, 8), black}})
            << OutlineList{{QRectF(10, 10, 40, 40), {QRectF(20, 20, 20, 20)}}, {QRectF(26, 26, 8, 8), {}}};
    QTest::newRow("gray 127 is ink, 128 is paper")
            << withRects(40, 40, {{QRect(5, 5, 10, 10), qRgb(127, 127, 127)},
                                  {QRect(20, 5, 10, 10), qRgb(128, 128, 128)}})
            << OutlineList{{QRectF(5, 5, 10, 10), {}}};
}

void TestBitmap2Svg::traceShapes()
{
    QFETCH(QImage, picture);
    QFETCH(OutlineList, expected);

    QxPotrace tracer;
    tracer.setBezierPrecision(10);
    QVERIFY(tracer.trace(picture));
    const QList<QxPotrace::Polygon> polygons = tracer.polygons();
    QCOMPARE(polygons.size(), expected.size());

    for (const Outline &want : expected) {
        int matches = 0;
        for (const QxPotrace::Polygon &got : polygons) {
            if (!near(got.boundary.boundingRect(), want.outer))
                continue;
            ++matches;
            QCOMPARE(got.holes.size(), want.holes.size());
            for (int i = 0; i < want.holes.size(); ++i)
                QVERIFY(near(got.holes.at(i).boundingRect(), want.holes.at(i)));
        }
        QCOMPARE(matches, 1);
    }
}

void TestBitmap2Svg::circleRing()
{
    const QImage picture = ::circleRing(30, 15);
    QxPotrace tracer;
    QList<int> pointCounts;
    for (int precision : {1, 10, 20}) {
        tracer.setBezierPrecision(precision);
        QVERIFY(tracer.trace(picture));
        const QList<QxPotrace::Polygon> polygons = tracer.polygons();
        QCOMPARE(polygons.size(), 1);
        QCOMPARE(polygons.first().holes.size(), 1);
        // Every flattened point lies on its circle, within the pixel steps.
        const QPointF centre(50, 50);
        for (const QPointF &p : polygons.first().boundary)
            QVERIFY2(qAbs(QLineF(centre, p).length() - 30) <= Tolerance, qPrintable(QString::number(QLineF(centre, p).length())));
        for (const QPointF &p : polygons.first().holes.first())
            QVERIFY2(qAbs(QLineF(centre, p).length() - 15) <= Tolerance, qPrintable(QString::number(QLineF(centre, p).length())));
        pointCounts << polygons.first().boundary.size() + polygons.first().holes.first().size();
    }
    // A curve segment gives `precision` points and a corner two, so the counts grow by
    // the number of curve segments per step of precision.
    const int curves = (pointCounts.at(2) - pointCounts.at(1)) / 10;
    QVERIFY(curves > 0);
    QCOMPARE(pointCounts.at(2) - pointCounts.at(1), 10 * curves);
    QCOMPARE(pointCounts.at(1) - pointCounts.at(0), 9 * curves);

    // A failed trace keeps the outlines of the last good one.
    QVERIFY(!tracer.trace(QImage()));
    QCOMPARE(tracer.polygons().size(), 1);
}

void TestBitmap2Svg::writeAfterTrace_data()
{
    QTest::addColumn<QStringList>("traced");  // files traced in turn before writing
    QTest::addColumn<int>("outlines");        // outlines in the SVG
    QTest::addColumn<bool>("lastOk");

    QTest::newRow("never traced") << QStringList() << 0 << false;
    QTest::newRow("missing file") << QStringList{"missing.png"} << 0 << false;
    QTest::newRow("not a picture") << QStringList{"text.png"} << 0 << false;
    QTest::newRow("blank picture") << QStringList{"blank.png"} << 0 << true;
    QTest::newRow("failure keeps the previous outlines") << QStringList{"square.png", "missing.png"} << 1 << false;
    QTest::newRow("a later success replaces them") << QStringList{"square.png", "blank.png"} << 0 << true;
}

void TestBitmap2Svg::writeAfterTrace()
{
    QFETCH(QStringList, traced);
    QFETCH(int, outlines);
    QFETCH(bool, lastOk);
    ScopedWorkDir dir;
    QFile text("text.png");
    QVERIFY(text.open(QIODevice::WriteOnly) && text.write("not a picture") > 0);
    text.close();
    QVERIFY(withRects(30, 30).save("blank.png"));
    QVERIFY(withRects(40, 40, {{QRect(5, 5, 10, 10), 0xFF000000}}).save("square.png"));

    Bitmap2Svg tracer;
    for (const QString &file : traced)
        tracer.Trace(file);
    QCOMPARE(tracer.LastTraceOk(), lastOk);
    tracer.WriteSvg("out.svg");

    const QString svg = readText("out.svg");
    QVERIFY(svg.contains("<title>Quill Svg Generate</title>"));
    QVERIFY(svg.contains("<desc>An SVG drawing created by the SVG Generator Provide by quill.</desc>"));
    QCOMPARE(svgOutlines(svg).size(), outlines);
    QCOMPARE(svg.count("<path") + svg.count("<polygon"), outlines);
    QVERIFY(QSvgRenderer(svg.toUtf8()).isValid());
}

void TestBitmap2Svg::svgOrder()
{
    ScopedWorkDir dir;
    // Two rings, the second with an island in its hole.
    const QImage picture = withRects(120, 60, {{QRect(5, 5, 40, 40), 0xFF000000}, {QRect(15, 15, 20, 20), 0xFFFFFFFF},
                                               {QRect(60, 5, 50, 50), 0xFF000000}, {QRect(70, 15, 30, 30), 0xFFFFFFFF},
                                               {QRect(80, 25, 10, 10), 0xFF000000}});
    QVERIFY(picture.save(QStringLiteral("black_white.png")));

    Bitmap2Svg tracer;
    tracer.Trace(QStringLiteral("./black_white.png"));
    QVERIFY(tracer.LastTraceOk());
    tracer.WriteSvg(QStringLiteral("black_white.svg"));
    const QString svg = readText(QStringLiteral("black_white.svg"));

    // Outlines drawn unfilled, even-odd, each outer outline followed by its holes.
    QVERIFY(svg.contains(QStringLiteral("<g fill=\"none\"")));
    QList<QPolygonF> order;
    for (const QxPotrace::Polygon &polygon : tracer.Polygons()) {
        order << polygon.boundary;
        order += polygon.holes;
    }
    QCOMPARE(order.size(), 5);
    const QList<QPolygonF> written = svgOutlines(svg);
    QCOMPARE(written.size(), order.size());
    for (int i = 0; i < order.size(); ++i) {
        // The generator closes each path by repeating its first point.
        QVERIFY(written.at(i).size() >= order.at(i).size());
        for (int k = 0; k < order.at(i).size(); ++k)
            QVERIFY(QLineF(written.at(i).at(k), order.at(i).at(k)).length() < 0.01);
    }
    QCOMPARE(svg.count(QStringLiteral("fill-rule=\"evenodd\"")), 1 + order.size());
}

void TestBitmap2Svg::svgMatchesPicture_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QString>("file");
    QTest::addColumn<double>("allowed");   // mismatching pixels per black pixel

    const QImage rings = withRects(120, 60, {{QRect(5, 5, 40, 40), 0xFF000000}, {QRect(15, 15, 20, 20), 0xFFFFFFFF},
                                             {QRect(60, 5, 50, 50), 0xFF000000}, {QRect(70, 15, 30, 30), 0xFFFFFFFF},
                                             {QRect(80, 25, 10, 10), 0xFF000000}});
    QTest::newRow("rings and island") << rings << "black_white.png" << 0.01;
    QTest::newRow("rings as the editor's JPEG") << rings << "black_white.jpg" << 0.01;
    QTest::newRow("circle ring") << ::circleRing(40, 20) << "black_white.png" << 0.03;
    QTest::newRow("text") << textPicture() << "black_white.png" << 0.05;
}

void TestBitmap2Svg::svgMatchesPicture()
{
    QFETCH(QImage, picture);
    QFETCH(QString, file);
    QFETCH(double, allowed);
    ScopedWorkDir dir;
    QVERIFY(picture.save(file, nullptr, 100));

    Bitmap2Svg tracer;
    tracer.Trace(file);
    QVERIFY(tracer.LastTraceOk());
    tracer.WriteSvg(QStringLiteral("black_white.svg"));

    const QImage area = renderEnclosedArea(readText(QStringLiteral("black_white.svg")), picture.size());
    QVERIFY(!area.isNull());
    int black = 0, wrong = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const bool ink = qGray(picture.pixel(x, y)) < 128;
            black += ink ? 1 : 0;
            wrong += (area.scanLine(y)[x] != 0) != ink ? 1 : 0;
        }
    }
    QVERIFY(black > 500);
    QVERIFY2(wrong <= allowed * black, qPrintable(QStringLiteral("%1 of %2 pixels differ").arg(wrong).arg(black)));
}

TARNWELL_TEST_MAIN(TestBitmap2Svg)
#include "tst_bitmap2svg.moc"
