// Tests of the SVG reader: elements to cubic paths, transforms, document units,
// what is not drawn, and files it must refuse or survive.
#include "svgreader.h"
#include "testsupport.h"

namespace {

// "x,y x,y ..." per path ("Z:" first when closed), " | " between paths, a line per shape.
QString dump(const SvgImage *image)
{
    QStringList shapes;
    for (const SvgShape &shape : image->shapes) {
        QStringList paths;
        for (const SvgPath &path : shape.paths) {
            QStringList pts;
            for (int i = 0; i < path.npts(); ++i)
                pts << QStringLiteral("%1,%2")
                           .arg(double(path.pts[2 * i]), 0, 'g', 6)
                           .arg(double(path.pts[2 * i + 1]), 0, 'g', 6);
            paths << (path.closed ? QStringLiteral("Z:") : QString()) + pts.join(QLatin1Char(' '));
        }
        shapes << paths.join(QStringLiteral(" | "));
    }
    return shapes.join(QLatin1Char('\n'));
}

// A document whose user unit is one millimetre, so coordinates come out as written.
QByteArray mmDocument(const QByteArray &body)
{
    return "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100mm\" height=\"100mm\" viewBox=\"0 0 100 100\">" + body
           + "</svg>";
}

QString parseDump(const QByteArray &document)
{
    SvgImage *image = SvgReader::parse(document, "mm", 0.1f);
    if (!image)
        return QStringLiteral("<null>");
    const QString text = dump(image);
    SvgReader::release(image);
    return text;
}

// The dump with the document's size and each shape's pen, for comparing two documents.
QString parseFullDump(const QByteArray &svgTag, const QByteArray &body)
{
    SvgImage *image =
        SvgReader::parse("<svg xmlns='http://www.w3.org/2000/svg' " + svgTag + ">" + body + "</svg>", "mm", 0.1f);
    if (!image)
        return QStringLiteral("<null>");
    QString text =
        QStringLiteral("size %1 x %2\n").arg(double(image->width), 0, 'g', 6).arg(double(image->height), 0, 'g', 6);
    for (const SvgShape &shape : image->shapes)
        text += QStringLiteral("pen %1; ").arg(double(shape.strokeWidth), 0, 'g', 6);
    text += dump(image);
    SvgReader::release(image);
    return text;
}

}  // namespace

class TestSvgReader : public QObject
{
    Q_OBJECT

private slots:
    void elements_data();
    void elements();
    void units_data();
    void units();
    void lengths_data();
    void lengths();
    void refused_data();
    void refused();
    void edgeRules_data();
    void edgeRules();
};

void TestSvgReader::elements_data()
{
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const QByteArray &body, const char *expected) {
        QTest::newRow(name) << body << QString::fromLatin1(expected);
    };
    const QByteArray line = "<line x1='0' y1='0' x2='3' y2='0'";

    row("line: control points at the thirds", "<line x1='0' y1='0' x2='3' y2='6'/>", "0,0 1,2 2,4 3,6");
    row("Z with the pen elsewhere adds the closing line", "<path d='M0 0 L3 0 L3 3 Z'/>",
        "Z:0,0 1,0 2,0 3,0 3,1 3,2 3,3 2,2 1,1 0,0");
    row("Z with the pen at the start adds nothing", "<path d='M0 0 L3 0 L0 0 Z'/>", "Z:0,0 1,0 2,0 3,0 2,0 1,0 0,0");
    row("relative moves, h and v", "<path d='m1 1 h3 v3'/>", "1,1 2,1 3,1 4,1 4,2 4,3 4,4");
    row("two subpaths in one shape", "<path d='M0 0 L3 0 M6 0 L9 0'/>", "0,0 1,0 2,0 3,0 | 6,0 7,0 8,0 9,0");
    row("moveto pairs continue as lines", "<path d='M0 0 3 0'/>", "0,0 1,0 2,0 3,0");
    row("a drawing command after Z starts at the old start", "<path d='M0 0 L3 0 Z l0 3'/>",
        "Z:0,0 1,0 2,0 3,0 2,0 1,0 0,0 | 0,0 0,1 0,2 0,3");
    row("quadratic raised to cubic", "<path d='M0 0 Q3 3 6 0'/>", "0,0 2,2 4,2 6,0");
    row("S reflects the last control point", "<path d='M0 0 C0 3 3 3 3 0 S6 -3 6 0'/>",
        "0,0 0,3 3,3 3,0 3,-3 6,-3 6,0");
    row("T reflects the last quadratic point", "<path d='M0 0 Q3 3 6 0 T12 0'/>", "0,0 2,2 4,2 6,0 8,-2 10,-2 12,0");
    row("S after a line uses the pen as first control", "<path d='M0 0 L3 0 S6 3 6 0'/>",
        "0,0 1,0 2,0 3,0 3,0 6,3 6,0");
    row("quarter arc is one cubic", "<path d='M10 0 A10 10 0 0 1 0 10'/>", "10,0 10,5.52285 5.52285,10 0,10");
    row("half arc is two cubics, flags written together", "<path d='M0 0a3 3 0 016 0'/>",
        "0,0 0,-1.65685 1.34315,-3 3,-3 4.65685,-3 6,-1.65685 6,0");
    row("arc with radius 0 is a line", "<path d='M0 0 A0 5 0 0 1 3 0'/>", "0,0 1,0 2,0 3,0");
    row("rect", "<rect x='1' y='2' width='3' height='6'/>", "Z:1,2 2,2 3,2 4,2 4,4 4,6 4,8 3,8 2,8 1,8 1,6 1,4 1,2");
    row("rect without area is not drawn", "<rect x='1' y='2' width='0' height='6'/>", "");
    row("circle: four cubics, closed", "<circle cx='5' cy='5' r='2'/>",
        "Z:7,5 7,6.10457 6.10457,7 5,7 3.89543,7 3,6.10457 3,5 3,3.89543 3.89543,3 5,3 6.10457,3 7,3.89543 7,5");
    row("polyline stays open", "<polyline points='0,0 3,0 3,3'/>", "0,0 1,0 2,0 3,0 3,1 3,2 3,3");
    row("polygon closes", "<polygon points='0,0 3,0 3,3'/>", "Z:0,0 1,0 2,0 3,0 3,1 3,2 3,3 2,2 1,1 0,0");
    row("group and element transforms", "<g transform='translate(10,20)'>" + line + " transform='scale(2)'/></g>",
        "10,20 12,20 14,20 16,20");
    row("transform list applies right to left", line + " transform='translate(1 0) scale(2 3)'/>", "1,0 3,0 5,0 7,0");
    row("matrix", line + " transform='matrix(0 1 -1 0 5 5)'/>", "5,5 5,6 5,7 5,8");
    row("one shape per element", line + "/><line x1='0' y1='3' x2='3' y2='3'/>", "0,0 1,0 2,0 3,0\n0,3 1,3 2,3 3,3");
    row("display none, as attribute and in style, hides the subtree",
        line + " display='none'/><g style='fill:red; display : none'>" + line
            + "/></g><line x1='0' y1='3' x2='3' y2='3'/>",
        "0,3 1,3 2,3 3,3");
    row("defs, text, images and gradients are not drawn",
        "<defs><path d='M0 0 L3 0'/></defs><text x='1' y='1'>hi</text><image href='x.png' width='5' height='5'/>"
        "<linearGradient id='g'><stop offset='0'/></linearGradient><line x1='0' y1='3' x2='3' y2='3'/>",
        "0,3 1,3 2,3 3,3");
    row("a lone moveto is dropped", "<path d='M1 1 M0 0 L3 0'/>", "0,0 1,0 2,0 3,0");
    row("bad path data keeps what came before", "<path d='M0 0 L3 0 L x 5'/>", "0,0 1,0 2,0 3,0");
    row("path data not starting with a moveto draws nothing", "<path d='L3 0 L3 3'/>", "");
    const int depth = 20000;
    row("20000 nested groups, each moving by 1",
        QByteArray("<g transform='translate(1,0)'>").repeated(depth) + line + "/>" + QByteArray("</g>").repeated(depth),
        "20000,0 20001,0 20002,0 20003,0");
}

void TestSvgReader::elements()
{
    QFETCH(QByteArray, body);
    QFETCH(QString, expected);
    QCOMPARE(parseDump(mmDocument(body)), expected);
}

void TestSvgReader::units_data()
{
    QTest::addColumn<QByteArray>("svgTag");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char *name, const char *svgTag, const char *body, const char *expected) {
        QTest::newRow(name) << QByteArray(svgTag) << QByteArray(body) << QString::fromLatin1(expected);
    };
    const char *const line = "<line x1='0' y1='0' x2='3' y2='0'/>";

    row("mm through the viewBox", "width='100mm' height='100mm' viewBox='0 0 50 50'", line, "0,0 2,0 4,0 6,0");
    row("cm", "width='10cm' height='10cm' viewBox='0 0 100 100'", line, "0,0 1,0 2,0 3,0");
    row("in", "width='1in' height='1in' viewBox='0 0 254 254'", line, "0,0 0.1,0 0.2,0 0.3,0");
    row("pt", "width='72pt' height='72pt' viewBox='0 0 72 72'", line, "0,0 0.352778,0 0.705556,0 1.05833,0");
    row("pc", "width='6pc' height='6pc' viewBox='0 0 6 6'", line, "0,0 4.23333,0 8.46667,0 12.7,0");
    row("px with viewBox: times 254", "width='100' height='100' viewBox='0 0 100 100'",
        "<line x1='1' y1='1' x2='4' y2='1'/>", "254,254 508,254 762,254 1016,254");
    row("px without viewBox: times 254, shifted to 0", "width='100px' height='100px'",
        "<line x1='1' y1='2' x2='4' y2='2'/>", "0,0 254,0 508,0 762,0");
    row("no size at all: px, shifted", "", "<line x1='-1' y1='5' x2='2' y2='5'/>", "0,0 254,0 508,0 762,0");
    row("viewBox without size", "viewBox='0 0 10 10'", line, "0,0 254,0 508,0 762,0");
    row("viewBox origin", "width='100mm' height='100mm' viewBox='10 10 100 100'",
        "<line x1='10' y1='10' x2='13' y2='10'/>", "0,0 1,0 2,0 3,0");
    row("aspect kept and centred", "width='100mm' height='50mm' viewBox='0 0 100 100'", line,
        "25,0 25.5,0 26,0 26.5,0");
    row("aspect none stretches", "width='100mm' height='50mm' viewBox='0 0 100 100' preserveAspectRatio='none'",
        "<line x1='0' y1='2' x2='3' y2='2'/>", "0,1 1,1 2,1 3,1");
    row("zero width collapses x without failing", "width='0' height='10mm' viewBox='0 0 10 10'",
        "<line x1='0' y1='3' x2='3' y2='0'/>", "0,5 0,5 0,5 0,5");
}

void TestSvgReader::units()
{
    QFETCH(QByteArray, svgTag);
    QFETCH(QByteArray, body);
    QFETCH(QString, expected);
    QCOMPARE(parseDump("<svg xmlns='http://www.w3.org/2000/svg' " + svgTag + ">" + body + "</svg>"), expected);
}

void TestSvgReader::lengths_data()
{
    QTest::addColumn<QByteArray>("svgTag");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<double>("stroke");  // the first shape's pen width
    // One user unit is one millimetre of output in both documents; the second starts its
    // viewBox at (10, 20), which comes out at 0, 0.
    const QByteArray mm = "width='100mm' height='100mm' viewBox='0 0 100 100'";
    const QByteArray wide = "width='200mm' height='100mm' viewBox='10 20 200 100'";
    const auto row = [](const char *name, const QByteArray &tag, const QByteArray &body, const char *expected,
                        double stroke = 1) {
        QTest::newRow(name) << tag << body << QString::fromLatin1(expected) << stroke;
    };
    const QByteArray thirds = "0,0 32,0 64,0 96,0";  // a line from 0 to 96 user units (1 in)

    row("mm at 96 dpi", mm, "<line x1='0' y1='0' x2='25.4mm' y2='0'/>", thirds);
    row("cm", mm, "<line x1='0' y1='0' x2='2.54cm' y2='0'/>", thirds);
    row("in", mm, "<line x1='0' y1='0' x2='1in' y2='0'/>", thirds);
    row("pt", mm, "<line x1='0' y1='0' x2='72pt' y2='0'/>", thirds);
    row("pc", mm, "<line x1='0' y1='0' x2='6pc' y2='0'/>", thirds);
    row("px is a user unit", mm, "<line x1='0px' y1='0' x2='3px' y2='0'/>", "0,0 1,0 2,0 3,0");
    row("rect width in mm on a 200-wide viewBox", wide, "<rect x='10' y='20' width='26.4583mm' height='3'/>",
        "Z:0,0 33.3333,0 66.6666,0 99.9999,0 99.9999,1 "
        "99.9999,2 99.9999,3 66.6666,3 33.3333,3 0,3 0,2 0,1 0,0");
    row("percent: positions from the viewBox corner, sizes of its width and height", wide,
        "<rect x='0%' y='0%' width='50%' height='3%'/>",
        "Z:0,0 33.3333,0 66.6667,0 100,0 100,1 100,2 100,3 "
        "66.6667,3 33.3333,3 0,3 0,2 0,1 0,0");
    row("percent radius of the normalised diagonal", wide, "<circle cx='50' cy='50' r='10%'/>",
        "Z:55.8114,30 55.8114,38.7324 48.7324,45.8114 40,45.8114 31.2676,45.8114 24.1886,38.7324 24.1886,30 "
        "24.1886,21.2676 31.2676,14.1886 40,14.1886 48.7324,14.1886 55.8114,21.2676 55.8114,30");
    row("em of the default font size", mm, "<line x1='0' y1='0' x2='2em' y2='0'/>", "0,0 8,0 16,0 24,0");
    row("ex", mm, "<line x1='0' y1='0' x2='1ex' y2='0'/>", "0,0 2.08,0 4.16,0 6.24,0");
    row("em of an inherited font size", mm, "<g font-size='20'><line x1='0' y1='0' x2='1.5em' y2='0'/></g>",
        "0,0 10,0 20,0 30,0");
    row("font size from a style, in mm", mm, "<g style='font-size:1in'><line x1='0' y1='0' x2='0.5em' y2='0'/></g>",
        "0,0 16,0 32,0 48,0");
    row("geometry in the style wins over attributes", mm,
        "<rect x='50' width='1' height='1' style='x:1; y:2 ;width:3;height:6'/>",
        "Z:1,2 2,2 3,2 4,2 4,4 4,6 4,8 3,8 2,8 1,8 1,6 1,4 1,2");
    row("transform in the style", mm, "<line x1='0' y1='0' x2='3' y2='0' style='transform:translate(10,20)'/>",
        "10,20 11,20 12,20 13,20");
    row("ellipse: rx alone stands for ry", mm, "<ellipse cx='5' cy='5' rx='2'/>",
        "Z:7,5 7,6.10457 6.10457,7 5,7 3.89543,7 3,6.10457 3,5 3,3.89543 3.89543,3 5,3 6.10457,3 7,3.89543 7,5");
    row("ellipse: ry alone stands for rx", mm, "<ellipse cx='5' cy='5' style='ry:2'/>",
        "Z:7,5 7,6.10457 6.10457,7 5,7 3.89543,7 3,6.10457 3,5 3,3.89543 3.89543,3 5,3 6.10457,3 7,3.89543 7,5");
    row("stroke width in mm, inherited, scaled by the transform", mm,
        "<g stroke-width='0.5mm'><line x1='0' y1='0' x2='3' y2='0' transform='scale(2)'/></g>", "0,0 2,0 4,0 6,0",
        96 / 25.4);
    row("stroke width in the style", mm, "<line x1='0' y1='0' x2='3' y2='0' style='stroke-width:4%'/>",
        "0,0 1,0 2,0 3,0", 4);
}

void TestSvgReader::lengths()
{
    QFETCH(QByteArray, svgTag);
    QFETCH(QByteArray, body);
    QFETCH(QString, expected);
    QFETCH(double, stroke);
    SvgImage *image =
        SvgReader::parse("<svg xmlns='http://www.w3.org/2000/svg' " + svgTag + ">" + body + "</svg>", "mm", 0.1f);
    QVERIFY(image && !image->shapes.empty());
    const QString got = dump(image);
    const double pen = image->shapes.front().strokeWidth;
    SvgReader::release(image);
    QCOMPARE(got, expected);
    QVERIFY2(std::fabs(pen - stroke) < 1e-4, qPrintable(QString::number(pen)));
}

void TestSvgReader::refused_data()
{
    QTest::addColumn<QByteArray>("document");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("truncated") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg'><path d='M0 0 L1");
    QTest::newRow("unclosed root") << QByteArray("<svg><line x1='0' y1='0' x2='3' y2='0'/>");
    QByteArray garbage;
    for (int i = 0; i < 4096; ++i)
        garbage.append(char((i * 7919 + 13) % 256));
    QTest::newRow("binary garbage") << garbage;
    QTest::newRow("not an svg root") << QByteArray("<html><line x1='0' y1='0' x2='3' y2='0'/></html>");
    QTest::newRow("coordinate beyond a float") << QByteArray("<svg><line x1='0' y1='0' x2='1e37' y2='0'/></svg>");
    QTest::newRow("document size beyond a float")
        << QByteArray("<svg width='1e37' height='1'><line x1='0' y1='0' x2='1' y2='0'/></svg>");
    QTest::newRow("shift to the origin beyond a float")
        << QByteArray("<svg><line x1='-1e36' y1='0' x2='1e36' y2='0'/></svg>");
}

void TestSvgReader::refused()
{
    QFETCH(QByteArray, document);
    QCOMPARE(parseDump(document), QStringLiteral("<null>"));
}

// Edge rules of SVG 2 and CSS Values 4: each document must read exactly as the plainer one
// that says the same thing.
void TestSvgReader::edgeRules_data()
{
    QTest::addColumn<QByteArray>("svgTag");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("sameTag");
    QTest::addColumn<QByteArray>("sameBody");
    const QByteArray mm = "width='100mm' height='100mm' viewBox='0 0 100 100'";
    const QByteArray px = "width='200' height='100' viewBox='0 0 200 100'";  // a user unit is a CSS px
    const auto row = [](const char *name, const QByteArray &tag, const QByteArray &body, const QByteArray &sameTag,
                        const QByteArray &sameBody) { QTest::newRow(name) << tag << body << sameTag << sameBody; };
    const auto same = [&row, &mm](const char *name, const QByteArray &body, const QByteArray &sameBody) {
        row(name, mm, body, mm, sameBody);
    };
    const auto lineTo = [](const QByteArray &x2) { return "<line x1='0' y1='0' x2='" + x2 + "' y2='0'/>"; };
    const QByteArray circle2 = "<circle cx='5' cy='5' r='2'/>";
    const auto rect = [](const QByteArray &more) { return "<rect x='0' y='0' width='10' height='10' " + more + "/>"; };

    // clang-format off
    same("s after a relative c reflects its second control point", "<path d='m0 0 c0 3 3 3 3 0 s3 -3 3 0'/>",
         "<path d='M0 0 C0 3 3 3 3 0 C3 -3 6 -3 6 0'/>");
    same("S after S reflects the S before", "<path d='M0 0 C0 3 3 3 3 0 S6 -3 6 0 S9 3 9 0'/>",
         "<path d='M0 0 C0 3 3 3 3 0 C3 -3 6 -3 6 0 C6 3 9 3 9 0'/>");
    same("S after repeated C pairs reflects the last one", "<path d='M0 0 C0 3 3 3 3 0 3 -3 6 -3 6 0 s3 3 3 0'/>",
         "<path d='M0 0 C0 3 3 3 3 0 C3 -3 6 -3 6 0 C6 3 9 3 9 0'/>");
    same("S after Q starts at the pen", "<path d='M0 0 Q3 3 6 0 S9 3 9 0'/>",
         "<path d='M0 0 Q3 3 6 0 C6 0 9 3 9 0'/>");
    same("S after Z starts at the pen", "<path d='M0 0 C0 3 3 3 3 0 Z S6 3 6 0'/>",
         "<path d='M0 0 C0 3 3 3 3 0 Z C0 0 6 3 6 0'/>");
    same("ellipse: a negative rx is auto and takes ry", "<ellipse cx='5' cy='5' rx='-4' ry='2'/>", circle2);
    same("ellipse: a negative ry is auto and takes rx", "<ellipse cx='5' cy='5' rx='2' ry='-1'/>", circle2);
    same("ellipse: both radii negative draws nothing", "<ellipse cx='5' cy='5' rx='-2' ry='-2'/>", "");
    same("ellipse: an rx that does not parse takes ry", "<ellipse cx='5' cy='5' rx='abc' ry='2'/>", circle2);
    same("rect: a negative rx is auto and takes ry", rect("rx='-3' ry='2'"), rect("rx='2' ry='2'"));
    same("rect: a negative ry is auto and takes rx", rect("rx='2' ry='-3'"), rect("rx='2' ry='2'"));
    same("rect: both radii negative give square corners", rect("rx='-1' ry='-1'"), rect(""));
    same("rect: a negative width draws nothing", "<rect x='0' y='0' width='-10' height='10'/>", "");
    same("Q is a quarter millimetre", lineTo("101.6q"), lineTo("25.4mm"));
    same("unit letters in any case", lineTo("25.4MM"), lineTo("25.4mm"));
    same("ic is one em", lineTo("2ic"), lineTo("2em"));
    same("cap is seven tenths of an em", lineTo("10cap"), lineTo("7em"));
    same("lh is the normal line height of the font", "<g font-size='20'>" + lineTo("1lh") + "</g>", lineTo("24"));
    row("rlh takes the root's font size", mm + " font-size='10'", "<g font-size='20'>" + lineTo("1rlh") + "</g>",
        mm + " font-size='10'", lineTo("12"));
    row("vw is a hundredth of the document width", px, lineTo("10vw"), px, lineTo("20"));
    row("vh is a hundredth of the document height", px, lineTo("10vh"), px, lineTo("10"));
    row("vi runs along the lines, as vw", px, lineTo("10vi"), px, lineTo("20"));
    row("vb runs across the lines, as vh", px, lineTo("10vb"), px, lineTo("10"));
    row("vmin is the smaller", px, lineTo("10vmin"), px, lineTo("10"));
    row("vmax is the larger", px, lineTo("10vmax"), px, lineTo("20"));
    row("viewport units of a document without size take the viewBox", "viewBox='0 0 50 80'", lineTo("10vw"),
        "viewBox='0 0 50 80'", lineTo("5"));
    same("an unknown unit ignores the attribute", "<rect x='5foo' y='0' width='3' height='3'/>",
         "<rect y='0' width='3' height='3'/>");
    same("a blank between number and unit ignores the attribute", "<rect x='5 mm' y='0' width='3' height='3'/>",
         "<rect y='0' width='3' height='3'/>");
    same("a second number ignores the attribute", "<rect x='0' y='0' width='3px 4' height='3'/>", "");
    same("a leading comma ignores the attribute", "<rect x=',5' y='0' width='3' height='3'/>",
         "<rect y='0' width='3' height='3'/>");
    same("blanks around the value are fine", "<rect x=' 5mm ' y='0' width='3' height='3'/>",
         "<rect x='5mm' y='0' width='3' height='3'/>");
    same("a style value that does not parse leaves the attribute", "<rect x='2' y='0' width='3' height='3' style='x:abc'/>",
         "<rect x='2' y='0' width='3' height='3'/>");
    same("a stroke width that does not parse keeps the inherited one",
         "<g stroke-width='3'>" + lineTo("3") + "<line x1='0' y1='0' x2='3' y2='0' stroke-width='2zz'/></g>",
         "<g stroke-width='3'>" + lineTo("3") + lineTo("3") + "</g>");
    row("svg: a negative width is ignored, the viewBox gives it", "width='-100mm' height='50mm' viewBox='0 0 50 25'",
        lineTo("3"), "width='100mm' height='50mm' viewBox='0 0 50 25'", lineTo("3"));
    row("svg: a width that does not parse is ignored", "width='abc' height='50mm' viewBox='0 0 50 25'", lineTo("3"),
        "width='100mm' height='50mm' viewBox='0 0 50 25'", lineTo("3"));
    row("svg: a width alone, the height follows the viewBox", "width='100mm' viewBox='0 0 50 25'", lineTo("3"),
        "width='100mm' height='50mm' viewBox='0 0 50 25'", lineTo("3"));
    row("svg: a height alone, the width follows the viewBox", "height='50mm' viewBox='0 0 50 25'", lineTo("3"),
        "width='100mm' height='50mm' viewBox='0 0 50 25'", lineTo("3"));
    row("svg: a negative height without viewBox is ignored", "width='100px' height='-5px'", lineTo("3"),
        "width='100px'", lineTo("3"));
    same("polygon: an odd coordinate is dropped", "<polygon points='0,0 3,0 3,3 5'/>", "<polygon points='0,0 3,0 3,3'/>");
    same("polyline: an odd coordinate is dropped", "<polyline points='0,0 3,0 3'/>", "<polyline points='0,0 3,0'/>");
    same("polygon: invalid data keeps the points before it", "<polygon points='0,0 3,0 3,3 x 9,9'/>",
         "<polygon points='0,0 3,0 3,3'/>");
    same("polygon: a doubled comma is invalid data", "<polygon points='0,0 3,0,,3,3 9,9'/>",
         "<polygon points='0,0 3,0'/>");
    same("polygon: a leading comma draws nothing", "<polygon points=',0,0 3,0 3,3'/>", "");
    same("polygon: numbers may run together", "<polygon points='0-1 3-1 3,3'/>", "<polygon points='0,-1 3,-1 3,3'/>");
    // clang-format on
}

void TestSvgReader::edgeRules()
{
    QFETCH(QByteArray, svgTag);
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, sameTag);
    QFETCH(QByteArray, sameBody);
    const QString expected = parseFullDump(sameTag, sameBody);
    QVERIFY(expected != QStringLiteral("<null>"));
    QCOMPARE(parseFullDump(svgTag, body), expected);
}

TARNWELL_TEST_MAIN(TestSvgReader)
#include "tst_svgreader.moc"
