// Sources of a job's items: natural sizes, gray pictures, outlines placed on the bed, rasterised shapes.
#include "jobgeometry.h"
#include "testsupport.h"

#include <QBuffer>
#include <QFont>
#include <QFontMetricsF>
#include <QPainter>

#include <cmath>

namespace {

QByteArray png(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

QByteArray svg(const QByteArray &size, const QByteArray &body)
{
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" " + size + ">" + body + "</svg>";
}

// A 50 x 20 mm drawing holding the elements given.
QByteArray svg(const QByteArray &body) { return svg("width=\"50mm\" height=\"20mm\" viewBox=\"0 0 50 20\"", body); }

JobSource source(SourceKind kind, const QByteArray &data = QByteArray(), const QString &text = QString())
{
    JobSource s;
    s.kind = kind;
    s.data = data;
    s.text = text;
    return s;
}

JobItem item(const JobSource &s, double x, double y, double w, double h, bool keepAspect = true)
{
    JobItem i;
    i.source = s;
    i.x = x;
    i.y = y;
    i.width = w;
    i.height = h;
    i.keepAspect = keepAspect;
    return i;
}

QRectF bounds(const JobGeometry &geometry)
{
    QPolygonF all;
    for (const JobShape &shape : geometry)
        for (const JobContour &c : shape.contours)
            for (const QPointF &p : c.points)
                all << p;
    return all.boundingRect();
}

QString rectText(const QRectF &r)
{
    auto num = [](double v) { return QString::number(std::round(v * 10000) / 10000, 'g', 10); };
    return QStringLiteral("%1,%2 %3x%4").arg(num(r.x()), num(r.y()), num(r.width()), num(r.height()));
}

// The CRC-32 of a PNG chunk (its type and data).
quint32 crc32(const QByteArray &bytes)
{
    quint32 crc = 0xffffffffu;
    for (const char c : bytes) {
        crc ^= quint8(c);
        for (int k = 0; k < 8; ++k)
            crc = crc & 1 ? (crc >> 1) ^ 0xedb88320u : crc >> 1;
    }
    return ~crc;
}

// A PNG file that declares a w x h RGB picture in its header and holds no pixels.
QByteArray pngHeaderOnly(quint32 w, quint32 h)
{
    auto bigEndian = [](quint32 v) {
        const char bytes[4] = {char(v >> 24), char(v >> 16 & 0xff), char(v >> 8 & 0xff), char(v & 0xff)};
        return QByteArray(bytes, 4);
    };
    auto chunk = [&](const QByteArray &type, const QByteArray &data) {
        return bigEndian(quint32(data.size())) + type + data + bigEndian(crc32(type + data));
    };
    const QByteArray header = bigEndian(w) + bigEndian(h) + QByteArray("\x08\x02\x00\x00\x00", 5);
    const QByteArray noPixels("\x78\x9c\x03\x00\x00\x00\x00\x01", 8);  // zlib of nothing
    return QByteArray("\x89PNG\r\n\x1a\n", 8) + chunk("IHDR", header) + chunk("IDAT", noPixels)
           + chunk("IEND", QByteArray());
}

// A white picture with a black square of `side` pixels at (x, y), and a white square hole of
// `hole` pixels in its middle when asked.
QImage squarePicture(int width, int height, int x, int y, int side, int hole = 0)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int j = y; j < y + side; ++j)
        for (int i = x; i < x + side; ++i)
            image.setPixel(i, j, qRgb(0, 0, 0));
    const int h0 = x + (side - hole) / 2, v0 = y + (side - hole) / 2;
    for (int j = v0; j < v0 + hole; ++j)
        for (int i = h0; i < h0 + hole; ++i)
            image.setPixel(i, j, qRgb(255, 255, 255));
    return image;
}

}  // namespace

class TestJobGeometry : public QObject
{
    Q_OBJECT

private slots:
    void naturalSize_data();
    void naturalSize();
    void textSize();
    void refused_data();
    void refused();
    void placement_data();
    void placement();
    void curvesFlattenedFinely();
    void fillRule_data();
    void fillRule();
    void openPathsStayOpen();
    void traced();
    void textItem();
    void qrGray_data();
    void qrGray();
    void pictureGray_data();
    void pictureGray();
    void rasterise_data();
    void rasterise();
    void rasteriseLarge_data();
    void rasteriseLarge();
};

void TestJobGeometry::naturalSize_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("quietZone");
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("height");

    const int picture = int(SourceKind::Picture), drawing = int(SourceKind::Svg), qr = int(SourceKind::Qr);
    const QString twelve = QStringLiteral("abcdefghijkl");  // 12 bytes: version 1 up to level M, 2 above
    // clang-format off
    QTest::newRow("picture") << picture << png(squarePicture(30, 20, 0, 0, 1)) << QString() << 0 << 0 << 30.0 << 20.0;
    QTest::newRow("svg rect") << drawing << svg("<rect x=\"0\" y=\"0\" width=\"50\" height=\"20\"/>")
        << QString() << 0 << 0 << 50.0 << 20.0;
    QTest::newRow("svg shapes, not the page") << drawing << svg("<rect x=\"5\" y=\"2\" width=\"10\" height=\"4\"/>")
        << QString() << 0 << 0 << 10.0 << 4.0;
    QTest::newRow("svg curve by its extremes") << drawing << svg("<path d=\"M0 0 C 0 10 10 10 10 0\"/>")
        << QString() << 0 << 0 << 10.0 << 7.5;
    QTest::newRow("svg in inches") << drawing << svg("width=\"2in\" height=\"1in\" viewBox=\"0 0 2 1\"",
                                                     "<rect x=\"0\" y=\"0\" width=\"1\" height=\"1\"/>")
        << QString() << 0 << 0 << 25.4 << 25.4;
    QTest::newRow("qr L") << qr << QByteArray() << twelve << int(QrLevel::L) << 4 << 29.0 << 29.0;
    QTest::newRow("qr M") << qr << QByteArray() << twelve << int(QrLevel::M) << 4 << 29.0 << 29.0;
    QTest::newRow("qr Q") << qr << QByteArray() << twelve << int(QrLevel::Q) << 4 << 33.0 << 33.0;
    QTest::newRow("qr H") << qr << QByteArray() << twelve << int(QrLevel::H) << 4 << 33.0 << 33.0;
    QTest::newRow("qr without quiet zone") << qr << QByteArray() << twelve << int(QrLevel::M) << 0 << 21.0 << 21.0;
    QTest::newRow("qr wide quiet zone") << qr << QByteArray() << twelve << int(QrLevel::M) << 10 << 41.0 << 41.0;
    // clang-format on
}

void TestJobGeometry::naturalSize()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, data);
    QFETCH(QString, text);
    QFETCH(int, level);
    QFETCH(int, quietZone);
    QFETCH(double, width);
    QFETCH(double, height);
    JobSource s = source(SourceKind(kind), data, text);
    s.level = QrLevel(level);
    s.quietZone = quietZone;
    double w = 0, h = 0;
    QString error;
    QVERIFY2(JobSources::naturalSize(s, &w, &h, &error), qPrintable(error));
    QVERIFY2(std::fabs(w - width) < 1e-4 && std::fabs(h - height) < 1e-4,
             qPrintable(QStringLiteral("%1 x %2").arg(w).arg(h)));
}

void TestJobGeometry::textSize()
{
    // The natural size of text is in mm at its em size: twice the size, twice the outline;
    // a second line adds one line spacing of the font to the height.
    JobSource one = source(SourceKind::Text, QByteArray(), QStringLiteral("Hg"));
    double w1 = 0, h1 = 0, w2 = 0, h2 = 0, w3 = 0, h3 = 0;
    QString error;
    QVERIFY2(JobSources::naturalSize(one, &w1, &h1, &error), qPrintable(error));
    JobSource twice = one;
    twice.size = 20;
    QVERIFY(JobSources::naturalSize(twice, &w2, &h2, &error));
    QVERIFY(std::fabs(w2 - 2 * w1) < 1e-6 && std::fabs(h2 - 2 * h1) < 1e-6);
    // DejaVu Sans: a capital H is 0.729 em tall; "Hg" reaches from its top to g's descender.
    QVERIFY2(h1 > 7.29 && h1 < 10, qPrintable(QString::number(h1)));
    JobSource lines = one;
    lines.text = QStringLiteral("Hg\nHg");
    QVERIFY(JobSources::naturalSize(lines, &w3, &h3, &error));
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(1000);
    font.setHintingPreference(QFont::PreferNoHinting);
    const double spacing = QFontMetricsF(font).lineSpacing() / 100;  // mm at an em of 10 mm
    QVERIFY2(std::fabs(h3 - (h1 + spacing)) < 1e-6,
             qPrintable(QStringLiteral("%1 %2 %3").arg(h1).arg(h3).arg(spacing)));
    QVERIFY(std::fabs(w3 - w1) < 1e-6);
}

void TestJobGeometry::refused_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("font");
    QTest::addColumn<QString>("message");

    const int picture = int(SourceKind::Picture), drawing = int(SourceKind::Svg), trace = int(SourceKind::Trace);
    const int text = int(SourceKind::Text), qr = int(SourceKind::Qr);
    const QString dejaVu = QStringLiteral("DejaVu Sans");
    // clang-format off
    QTest::newRow("picture of text") << picture << QByteArray("hello") << QString() << dejaVu << "not a picture";
    QTest::newRow("empty picture") << picture << QByteArray() << QString() << dejaVu << "not a picture";
    QTest::newRow("picture too large") << picture << pngHeaderOnly(20000, 20000) << QString() << dejaVu
        << "the picture is 20000 x 20000 pixels (at most 100000000)";
    QTest::newRow("trace too large") << trace << pngHeaderOnly(100001, 1000) << QString() << dejaVu
        << "the picture is 100001 x 1000 pixels (at most 100000000)";
    QTest::newRow("svg of text") << drawing << QByteArray("hello") << QString() << dejaVu << "not an SVG drawing";
    QTest::newRow("svg cut short") << drawing << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\"><rect")
        << QString() << dejaVu << "not an SVG drawing";
    QTest::newRow("html") << drawing << QByteArray("<html><body/></html>") << QString() << dejaVu << "not an SVG drawing";
    QTest::newRow("svg without shapes") << drawing << svg("<text>hi</text>") << QString() << dejaVu << "no shapes";
    QTest::newRow("trace of text") << trace << QByteArray("hello") << QString() << dejaVu << "not a picture";
    QTest::newRow("trace of white") << trace << png(squarePicture(8, 8, 0, 0, 0)) << QString() << dejaVu
        << "nothing dark to trace";
    QTest::newRow("empty text") << text << QByteArray() << QString() << dejaVu << "the text is empty";
    QTest::newRow("blank text") << text << QByteArray() << QStringLiteral(" \n ") << dejaVu << "nothing to draw";
    QTest::newRow("unknown font") << text << QByteArray() << QStringLiteral("A") << QStringLiteral("No Such Font")
        << "\"No Such Font\" is not installed";
    QTest::newRow("empty qr") << qr << QByteArray() << QString() << dejaVu << "text is empty";
    QTest::newRow("qr too long") << qr << QByteArray() << QString(4000, QLatin1Char('x')) << dejaVu << "too long";
    // clang-format on
}

void TestJobGeometry::refused()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, data);
    QFETCH(QString, text);
    QFETCH(QString, font);
    QFETCH(QString, message);
    JobSource s = source(SourceKind(kind), data, text);
    s.font = font;
    double w = -1, h = -1;
    QString error;
    QVERIFY(!JobSources::naturalSize(s, &w, &h, &error));
    QVERIFY2(error.contains(message), qPrintable(error));
    error.clear();
    QImage image;
    JobGeometry geometry;
    if (s.kind == SourceKind::Picture || s.kind == SourceKind::Qr) {
        QVERIFY(!JobSources::gray(s, &image, &error));
    } else {
        QVERIFY(!JobSources::geometry(item(s, 0, 0, 10, 10), &geometry, &error));
        QVERIFY(geometry.empty());
    }
    QVERIFY2(error.contains(message), qPrintable(error));
}

void TestJobGeometry::placement_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<bool>("keepAspect");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("firstShape");

    const QByteArray frame = "<rect x=\"0\" y=\"0\" width=\"50\" height=\"20\"/>";
    const QByteArray corner = "<rect x=\"0\" y=\"0\" width=\"5\" height=\"2\"/>";  // the drawing's top left
    // clang-format off
    QTest::newRow("halved") << frame << QRectF(30, 40, 25, 10) << true << "30,40 25x10" << "30,40 25x10";
    QTest::newRow("stretched") << frame << QRectF(0, 0, 10, 10) << false << "0,0 10x10" << "0,0 10x10";
    QTest::newRow("top left stays top left") << QByteArray(corner + frame) << QRectF(10, 10, 100, 40) << true
        << "10,10 100x40" << "10,46 10x4";
    QTest::newRow("bounds of the shapes only") << QByteArray("<rect x=\"10\" y=\"5\" width=\"20\" height=\"10\"/>")
        << QRectF(1, 2, 4, 2) << true << "1,2 4x2" << "1,2 4x2";
    QTest::newRow("transformed group") << QByteArray("<g transform=\"translate(5 5) rotate(90)\">" + corner + "</g>")
        << QRectF(0, 0, 2, 5) << true << "0,0 2x5" << "0,0 2x5";
    QTest::newRow("a flat line sits mid-height") << QByteArray("<line x1=\"0\" y1=\"3\" x2=\"40\" y2=\"3\"/>")
        << QRectF(0, 0, 20, 6) << false << "0,3 20x0" << "0,3 20x0";
    // clang-format on
}

void TestJobGeometry::placement()
{
    QFETCH(QByteArray, body);
    QFETCH(QRectF, rect);
    QFETCH(bool, keepAspect);
    QFETCH(QString, expected);
    QFETCH(QString, firstShape);
    JobGeometry geometry;
    QString error;
    QVERIFY2(JobSources::geometry(
                 item(source(SourceKind::Svg, svg(body)), rect.x(), rect.y(), rect.width(), rect.height(), keepAspect),
                 &geometry, &error),
             qPrintable(error));
    QCOMPARE(rectText(bounds(geometry)), expected);
    QCOMPARE(rectText(bounds({geometry.front()})), firstShape);
}

void TestJobGeometry::curvesFlattenedFinely()
{
    // A circle of 5 mm radius: every flattened point and every chord's middle lies within
    // 0.005 mm of it, and its bounds are the rectangle's.
    JobGeometry geometry;
    QString error;
    const QByteArray circle = svg("<circle cx=\"25\" cy=\"10\" r=\"10\"/>");
    QVERIFY(JobSources::geometry(item(source(SourceKind::Svg, circle), 20, 30, 10, 10), &geometry, &error));
    QCOMPARE(rectText(bounds(geometry)), QStringLiteral("20,30 10x10"));
    const std::vector<QPointF> &pts = geometry.at(0).contours.at(0).points;
    QVERIFY(pts.size() > 40);
    QVERIFY(pts.front() != pts.back());
    for (size_t i = 0; i < pts.size(); ++i) {
        const QPointF p = pts[i], q = pts[(i + 1) % pts.size()], mid = (p + q) / 2;
        QVERIFY(std::fabs(std::hypot(p.x() - 25, p.y() - 35) - 5) < 0.005);
        QVERIFY(std::fabs(std::hypot(mid.x() - 25, mid.y() - 35) - 5) < 0.005);
    }
}

void TestJobGeometry::fillRule_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<bool>("evenOdd");

    const QByteArray path = "d=\"M0 0 H10 V10 H0 Z M2 2 H8 V8 H2 Z\"";
    // clang-format off
    QTest::newRow("default") << QByteArray("<path " + path + "/>") << false;
    QTest::newRow("attribute") << QByteArray("<path fill-rule=\"evenodd\" " + path + "/>") << true;
    QTest::newRow("style") << QByteArray("<path style=\"fill:red;fill-rule:evenodd\" " + path + "/>") << true;
    QTest::newRow("style over attribute") << QByteArray("<path fill-rule=\"evenodd\" style=\"fill-rule:nonzero\" " + path + "/>") << false;
    QTest::newRow("from the group") << QByteArray("<g fill-rule=\"evenodd\"><g><path " + path + "/></g></g>") << true;
    QTest::newRow("own rule over the group's") << QByteArray("<g style=\"fill-rule:evenodd\"><path fill-rule=\"nonzero\" " + path + "/></g>") << false;
    QTest::newRow("inherit") << QByteArray("<g fill-rule=\"evenodd\"><path fill-rule=\"inherit\" " + path + "/></g>") << true;
    QTest::newRow("sibling unaffected") << QByteArray("<g fill-rule=\"evenodd\"/><path " + path + "/>") << false;
    // clang-format on
}

void TestJobGeometry::fillRule()
{
    QFETCH(QByteArray, body);
    QFETCH(bool, evenOdd);
    JobGeometry geometry;
    QString error;
    QVERIFY(JobSources::geometry(item(source(SourceKind::Svg, svg(body)), 0, 0, 10, 10), &geometry, &error));
    QCOMPARE(geometry.size(), size_t(1));
    QCOMPARE(geometry[0].contours.size(), size_t(2));
    QCOMPARE(geometry[0].evenOdd, evenOdd);
    // Rasterised at 1 mm: the middle pixel is the hole, left white only by the even-odd rule.
    const QImage image = JobSources::rasterise(geometry, QRectF(0, 0, 10, 10), 1);
    QCOMPARE(qGray(image.pixel(5, 5)) == 255, evenOdd);
    QCOMPARE(qGray(image.pixel(0, 0)), 0);
}

void TestJobGeometry::openPathsStayOpen()
{
    JobGeometry geometry;
    QString error;
    const QByteArray body = "<polyline points=\"0,0 10,0 10,10\"/><path d=\"M20 0 L30 10 Z\"/>";
    QVERIFY(JobSources::geometry(item(source(SourceKind::Svg, svg(body)), 0, 0, 30, 10), &geometry, &error));
    QCOMPARE(geometry.size(), size_t(2));
    const JobContour &open = geometry[0].contours.at(0);
    QVERIFY(!open.closed);
    // Y flipped: the drawing's top edge is the rectangle's top.
    QCOMPARE(open.points, (std::vector<QPointF>{{0, 10}, {10, 10}, {10, 0}}));
    const JobContour &closed = geometry[1].contours.at(0);
    QVERIFY(closed.closed);
    QCOMPARE(closed.points, (std::vector<QPointF>{{20, 10}, {30, 0}}));
}

void TestJobGeometry::traced()
{
    // A 10 px black square with a 4 px hole, on a 20 x 20 picture: the traced outlines' bounds
    // fill the item, as one even-odd shape of two contours.
    const QByteArray picture = png(squarePicture(20, 20, 4, 6, 10, 4));
    JobSource s = source(SourceKind::Trace, picture);
    double w = 0, h = 0;
    QString error;
    QVERIFY2(JobSources::naturalSize(s, &w, &h, &error), qPrintable(error));
    QCOMPARE(w, 10.0);
    QCOMPARE(h, 10.0);
    JobGeometry geometry;
    QVERIFY(JobSources::geometry(item(s, 50, 60, 20, 20), &geometry, &error));
    QCOMPARE(rectText(bounds(geometry)), QStringLiteral("50,60 20x20"));
    QCOMPARE(geometry.size(), size_t(1));
    QVERIFY(geometry[0].evenOdd);
    QCOMPARE(geometry[0].contours.size(), size_t(2));
    QCOMPARE(rectText(bounds(JobGeometry{JobShape{{geometry[0].contours[1]}, true}})), QStringLiteral("56,66 8x8"));
}

void TestJobGeometry::textItem()
{
    JobSource s = source(SourceKind::Text, QByteArray(), QStringLiteral("Hi O"));
    JobGeometry geometry;
    QString error;
    QVERIFY(JobSources::geometry(item(s, 12, 34, 40, 9, false), &geometry, &error));
    QCOMPARE(rectText(bounds(geometry)), QStringLiteral("12,34 40x9"));
    QCOMPARE(geometry.size(), size_t(1));
    QVERIFY(!geometry[0].evenOdd);
    // H, the i's stem and dot, and the O's two outlines.
    QCOMPARE(geometry[0].contours.size(), size_t(5));

    // Aligned lines: a short line sits left, in the middle or right of the widest one.
    const QString text = QStringLiteral("WWWW\nI");
    double lefts[3];
    const TextAlign aligns[] = {TextAlign::Left, TextAlign::Center, TextAlign::Right};
    for (int a = 0; a < 3; ++a) {
        JobSource t = source(SourceKind::Text, QByteArray(), text);
        t.align = aligns[a];
        JobGeometry g;
        double w = 0, h = 0;
        QVERIFY(JobSources::naturalSize(t, &w, &h, &error));
        QVERIFY(JobSources::geometry(item(t, 0, 0, w, h), &g, &error));
        // The I is the last contour; its left edge in mm from the item's left (glyphs are placed
        // in 1/64 of a font pixel).
        lefts[a] = bounds(JobGeometry{JobShape{{g[0].contours.back()}, false}}).left();
    }
    QVERIFY(lefts[0] < 2);
    QVERIFY(lefts[1] > lefts[0] + 5);
    QVERIFY2(std::fabs((lefts[2] - lefts[0]) - 2 * (lefts[1] - lefts[0])) < 1e-3,
             qPrintable(QStringLiteral("%1 %2 %3").arg(lefts[0]).arg(lefts[1]).arg(lefts[2])));
}

void TestJobGeometry::qrGray_data()
{
    QTest::addColumn<int>("quietZone");
    QTest::addColumn<int>("side");

    // clang-format off
    QTest::newRow("4 modules") << 4 << 29;
    QTest::newRow("none")      << 0 << 21;
    QTest::newRow("1 module")  << 1 << 23;
    // clang-format on
}

void TestJobGeometry::qrGray()
{
    QFETCH(int, quietZone);
    QFETCH(int, side);
    JobSource s = source(SourceKind::Qr, QByteArray(), QStringLiteral("hello"));
    s.quietZone = quietZone;
    QImage image;
    QString error;
    QVERIFY(JobSources::gray(s, &image, &error));
    QCOMPARE(image.format(), QImage::Format_Grayscale8);
    QCOMPARE(image.size(), QSize(side, side));
    // The quiet zone is white; the finder patterns' corners are dark, their inner ring light.
    for (int i = 0; i < side; ++i)
        for (int q = 0; q < quietZone; ++q) {
            QCOMPARE(image.constScanLine(q)[i], uchar(255));
            QCOMPARE(image.constScanLine(i)[side - 1 - q], uchar(255));
        }
    const int z = quietZone;
    QCOMPARE(image.constScanLine(z)[z], uchar(0));
    QCOMPARE(image.constScanLine(z + 6)[side - 1 - z], uchar(0));
    QCOMPARE(image.constScanLine(z + 1)[z + 1], uchar(255));
    QCOMPARE(image.constScanLine(z + 3)[z + 3], uchar(0));
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x)
            QVERIFY(image.constScanLine(y)[x] == 0 || image.constScanLine(y)[x] == 255);
}

// One row of pixels in the format given.
QImage pixelRow(QImage::Format format, const QVector<QRgb> &pixels, const QVector<QRgb> &palette = {})
{
    QImage image(pixels.size(), 1, format);
    if (!palette.isEmpty()) {
        image.setColorTable(palette);
        for (int i = 0; i < pixels.size(); ++i)
            image.setPixel(i, 0, uint(pixels[i]));  // palette indexes
        return image;
    }
    for (int i = 0; i < pixels.size(); ++i)
        image.setPixel(i, 0, pixels[i]);
    return image;
}

void TestJobGeometry::pictureGray_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<QVector<int>>("expected");

    // Gray is qGray's (11 red + 16 green + 5 blue) / 32, laid on white by the pixel's opacity:
    // red gives 87, blue 39, green 127, black at 51/255 opacity 204.
    const QRgb clear = qRgba(0, 0, 0, 0), faint = qRgba(0, 0, 0, 51);
    const QRgb black = qRgb(0, 0, 0), white = qRgb(255, 255, 255), red = qRgb(255, 0, 0);
    // clang-format off
    QTest::newRow("argb") << pixelRow(QImage::Format_ARGB32, {clear, black, faint, red}) << QVector<int>{255, 0, 204, 87};
    QTest::newRow("rgb") << pixelRow(QImage::Format_RGB32, {white, qRgb(50, 50, 50), qRgb(0, 0, 255)}) << QVector<int>{255, 50, 39};
    QTest::newRow("gray") << pixelRow(QImage::Format_Grayscale8, {black, qRgb(77, 77, 77), white}) << QVector<int>{0, 77, 255};
    QTest::newRow("one bit") << pixelRow(QImage::Format_Mono, {1, 0, 1}, {white, black}) << QVector<int>{0, 255, 0};
    QTest::newRow("palette with alpha") << pixelRow(QImage::Format_Indexed8, {0, 1, 2}, {clear, red, faint}) << QVector<int>{255, 87, 204};
    QTest::newRow("rgb 24-bit") << pixelRow(QImage::Format_RGB888, {qRgb(0, 255, 0), black}) << QVector<int>{127, 0};
    // clang-format on
}

void TestJobGeometry::pictureGray()
{
    QFETCH(QImage, picture);
    QFETCH(QVector<int>, expected);
    // Through the bytes of a PNG file, which keeps the format: gray, one bit, palette or colour.
    QImage image;
    QString error;
    QVERIFY(JobSources::gray(source(SourceKind::Picture, png(picture)), &image, &error));
    QCOMPARE(image.format(), QImage::Format_Grayscale8);
    QCOMPARE(image.size(), QSize(expected.size(), 1));
    QVector<int> got;
    for (int x = 0; x < image.width(); ++x)
        got << image.constScanLine(0)[x];
    QCOMPARE(got, expected);
    QVERIFY(!JobSources::gray(source(SourceKind::Svg, svg("<rect width=\"1\" height=\"1\"/>")), &image, &error));
}

void TestJobGeometry::rasterise_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<double>("interval");
    QTest::addColumn<QStringList>("rows");

    // A 1 mm square at (1, 0), rasterised over the rectangle given; rows from the top.
    // clang-format off
    QTest::newRow("quarter mm") << QRectF(0, 0, 2, 1) << 0.25
        << QStringList{"....####", "....####", "....####", "....####"};
    QTest::newRow("taller rectangle") << QRectF(0, 0, 2, 2) << 0.5 << QStringList{"....", "....", "..##", "..##"};
    QTest::newRow("shifted rectangle") << QRectF(0.5, -0.5, 1, 1) << 0.5 << QStringList{".#", ".."};
    QTest::newRow("coarser than the square") << QRectF(0, 0, 2, 1) << 1.0 << QStringList{".#"};
    // clang-format on
}

void TestJobGeometry::rasterise()
{
    QFETCH(QRectF, rect);
    QFETCH(double, interval);
    QFETCH(QStringList, rows);
    JobShape square;
    square.contours.push_back(JobContour{{{1, 0}, {2, 0}, {2, 1}, {1, 1}}, true});
    JobContour open;
    open.closed = false;
    open.points = {{0, 0}, {0.9, 1}, {0, 1}};  // an open path is not filled
    square.contours.push_back(open);
    const QImage image = JobSources::rasterise({square}, rect, interval);
    QCOMPARE(image.format(), QImage::Format_Grayscale8);
    QStringList got;
    for (int y = 0; y < image.height(); ++y) {
        QString row;
        for (int x = 0; x < image.width(); ++x)
            row += image.constScanLine(y)[x] == 0 ? '#' : image.constScanLine(y)[x] == 255 ? '.' : '?';
        got << row;
    }
    QCOMPARE(got, rows);
}

void TestJobGeometry::rasteriseLarge_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<double>("interval");
    QTest::addColumn<QRectF>("shape");  // a filled rectangle, its edges on cell edges

    // Grids wider or taller than a painter reaches in one go (32767 pixels), and one of many tiles.
    // clang-format off
    QTest::newRow("right half of a wide row")  << QRectF(0, 0, 170, 0.05) << 0.005 << QRectF(85, 0, 85, 0.05);
    QTest::newRow("bottom half of a tall one") << QRectF(0, 0, 0.05, 200) << 0.005 << QRectF(0, 0, 0.05, 100);
    QTest::newRow("middle of a very wide row") << QRectF(0, 0, 10000, 0.2) << 0.1 << QRectF(2500, 0, 5000, 0.1);
    QTest::newRow("square across tiles")       << QRectF(10, 20, 50, 50) << 0.01 << QRectF(20, 30, 30, 30);
    // clang-format on
}

void TestJobGeometry::rasteriseLarge()
{
    QFETCH(QRectF, rect);
    QFETCH(double, interval);
    QFETCH(QRectF, shape);
    JobShape square;
    square.contours.push_back(
        JobContour{{shape.bottomLeft(), shape.bottomRight(), shape.topRight(), shape.topLeft()}, true});
    const QImage image = JobSources::rasterise({square}, rect, interval);
    QCOMPARE(image.format(), QImage::Format_Grayscale8);
    QCOMPARE(image.width(), qRound(rect.width() / interval));
    QCOMPARE(image.height(), qRound(rect.height() / interval));
    // A cell is black exactly when its centre lies in the shape; rows from the top.
    const double top = rect.y() + rect.height();
    qint64 wrong = 0;
    QString first;
    for (int j = 0; j < image.height(); ++j) {
        const double y = top - (j + 0.5) * rect.height() / image.height();
        const uchar *row = image.constScanLine(j);
        for (int i = 0; i < image.width(); ++i) {
            const double x = rect.x() + (i + 0.5) * rect.width() / image.width();
            const uchar expected = shape.contains(x, y) ? 0 : 255;
            if (row[i] != expected && wrong++ == 0)
                first = QStringLiteral("cell %1, %2 is %3").arg(i).arg(j).arg(row[i]);
        }
    }
    QVERIFY2(wrong == 0, qPrintable(QStringLiteral("%1 cells wrong, the first: %2").arg(wrong).arg(first)));
}

TARNWELL_TEST_MAIN(TestJobGeometry)
#include "tst_jobgeometry.moc"
