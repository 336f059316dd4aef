// Whole jobs through the job engine: the exact G-code of small jobs, the summary, refusals, and a
// picture and the rectangle drawn around it burning the same edges when replayed.
#include "gcodeinterpreter.h"
#include "jobexport.h"
#include "jobmoves.h"
#include "jobplanner.h"
#include "testsupport.h"

#include <QBuffer>
#include <QImage>
#include <QRegularExpression>

#include <cmath>

Q_DECLARE_METATYPE(JobDocument)

class TestJobExport : public QObject
{
    Q_OBJECT

private slots:
    void wholeJob_data();
    void wholeJob();
    void alignment();
    void summaryOfAJob();
    void refused_data();
    void refused();
    void disabledLayerNotDecoded();
    void summaryLines();
};

namespace {

QByteArray pngBytes(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

JobLayer layerOf(const QString &name, Operation operation, double speed, double power)
{
    JobLayer layer;
    layer.name = name;
    layer.operation = operation;
    layer.speed = speed;
    layer.power = power;
    return layer;
}

JobItem itemOf(int layer, SourceKind kind, const QByteArray &data, const QRectF &rect)
{
    JobItem item;
    item.layer = layer;
    item.source.kind = kind;
    item.source.data = data;
    item.x = rect.x();
    item.y = rect.y();
    item.width = rect.width();
    item.height = rect.height();
    return item;
}

// A W x H picture from rows of '#' (black), '+' (gray 100) and '.' (white).
QByteArray picture(const QStringList &rows)
{
    QImage image(rows.front().size(), rows.size(), QImage::Format_Grayscale8);
    for (int y = 0; y < rows.size(); ++y)
        for (int x = 0; x < rows[y].size(); ++x)
            image.scanLine(y)[x] = rows[y][x] == QLatin1Char('#') ? 0 : rows[y][x] == QLatin1Char('+') ? 100 : 255;
    return pngBytes(image);
}

// A filled rectangle of w x h drawing units, its top-left corner at the drawing's origin.
QByteArray rectangleSvg(int w, int h)
{
    return QStringLiteral("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"%1mm\" height=\"%2mm\" "
                          "viewBox=\"0 0 %1 %2\"><path d=\"M0 0 H%1 V%2 H0 Z\" fill=\"black\"/></svg>")
        .arg(w)
        .arg(h)
        .toUtf8();
}

// Every line of a job's output: no exponent, no negative zero, none over 70 characters.
void checkLines(const QByteArray &gcode)
{
    static const QRegularExpression negativeZero(QStringLiteral("-0(?![.0-9])"));
    QVERIFY(gcode.endsWith('\n'));
    const QList<QByteArray> lines = gcode.left(gcode.size() - 1).split('\n');
    for (const QByteArray &line : lines) {
        QVERIFY2(line.size() <= 70, line.constData());
        QVERIFY2(!line.isEmpty(), "empty line");
        if (line.startsWith(';'))
            continue;
        QVERIFY2(!line.contains('e') && !line.contains('E'), line.constData());
        QVERIFY2(!negativeZero.match(QString::fromLatin1(line)).hasMatch(), line.constData());
    }
}

}  // namespace

void TestJobExport::wholeJob_data()
{
    QTest::addColumn<JobDocument>("doc");
    QTest::addColumn<QByteArray>("gcode");

    // Image: a 4 x 2 picture on a 1 mm grid at (10, 20), threshold, 1 mm overscan, reverse rows 0.25 mm
    // to the right, 1200 mm/min at 50 %. The top row (Y 21.5) burns columns 0-1 left to right (the
    // left end is nearer the origin); the bottom row (Y 20.5) turns back and crosses its 2 mm white
    // gap at zero power (shorter than 2 x overscan + 10 mm).
    JobDocument image;
    image.layers = {layerOf("Engrave", Operation::Image, 1200, 50)};
    image.layers[0].image.mode = ImageMode::Threshold;
    image.layers[0].image.interval = 1;
    image.layers[0].image.overscan = 1;
    image.layers[0].image.reverseOffset = 0.25;
    image.items = {itemOf(0, SourceKind::Picture, picture({"##..", "#..#"}), QRectF(10, 20, 4, 2))};
    JobDocument imageMarlin = image;
    imageMarlin.machine.dialect = Dialect::Marlin;
    JobDocument imageFan = image;
    imageFan.machine.dialect = Dialect::Fan;

    // Fill: a 2 mm square at (10, 20) hatched every 0.5 mm (lines at Y 20.25 ... 21.75, centred),
    // 1 mm overscan, bidirectional, 1500 mm/min at 40 %.
    JobDocument fill;
    fill.layers = {layerOf("Fill", Operation::Fill, 1500, 40)};
    fill.layers[0].fill.interval = 0.5;
    fill.layers[0].fill.overscan = 1;
    fill.items = {itemOf(0, SourceKind::Svg, rectangleSvg(10, 10), QRectF(10, 20, 2, 2))};
    JobDocument fillMarlin = fill;
    fillMarlin.machine.dialect = Dialect::Marlin;
    JobDocument fillFan = fill;
    fillFan.machine.dialect = Dialect::Fan;

    // Line: the same square cut once from its corner nearest the origin, 300 mm/min at 100 %.
    // The drawing's path runs (0,0) (10,0) (10,10) (0,10), which is (10,22) (12,22) (12,20) (10,20)
    // on the bed, so the cut starts at its last corner and goes on to its first.
    JobDocument line;
    line.layers = {layerOf("Cut", Operation::Line, 300, 100)};
    line.items = {itemOf(0, SourceKind::Svg, rectangleSvg(10, 10), QRectF(10, 20, 2, 2))};
    JobDocument lineMarlin = line;
    lineMarlin.machine.dialect = Dialect::Marlin;
    JobDocument lineFan = line;
    lineFan.machine.dialect = Dialect::Fan;

    // A disabled layer before it: left out, the cut's comment keeps its place in the document.
    JobDocument disabled = line;
    disabled.layers.insert(disabled.layers.begin(), layerOf("Off", Operation::Image, 1000, 90));
    disabled.layers[0].enabled = false;
    disabled.items[0].layer = 1;
    disabled.items.push_back(itemOf(0, SourceKind::Picture, picture({"#"}), QRectF(50, 50, 1, 1)));

    // Two layers, two passes each: a 2 x 1 picture at (10, 20) on a 1 mm grid, then a 3 x 2.5 mm
    // rectangle around it at (9.5, 19.5). The second pass of the row starts from the right end,
    // where the first one stopped; the cut starts at its corner nearest that end, (9.5, 19.5).
    JobDocument twoLayers;
    twoLayers.layers = {layerOf("Engrave", Operation::Image, 1200, 50), layerOf("Cut", Operation::Line, 300, 100)};
    twoLayers.layers[0].passes = 2;
    twoLayers.layers[0].image.mode = ImageMode::Threshold;
    twoLayers.layers[0].image.interval = 1;
    twoLayers.layers[0].image.overscan = 1;
    twoLayers.layers[1].passes = 2;
    twoLayers.items = {itemOf(1, SourceKind::Svg, rectangleSvg(30, 25), QRectF(9.5, 19.5, 3, 2.5)),
                       itemOf(0, SourceKind::Picture, picture({"##"}), QRectF(10, 20, 2, 1))};

    // Two dots on one image layer: the one nearer the origin first, whatever their order in the list.
    JobDocument dots;
    dots.layers = {layerOf("Dots", Operation::Image, 600, 10)};
    dots.layers[0].image.interval = 1;
    dots.layers[0].image.overscan = 0;
    dots.items = {itemOf(0, SourceKind::Picture, picture({"#"}), QRectF(100, 100, 1, 1)),
                  itemOf(0, SourceKind::Picture, picture({"#"}), QRectF(10, 10, 1, 1))};

    // An SVG drawing on an image layer is rasterised at the layer's interval: two full rows.
    JobDocument svgImage;
    svgImage.layers = {layerOf("Engrave", Operation::Image, 1200, 50)};
    svgImage.layers[0].image.mode = ImageMode::Threshold;
    svgImage.layers[0].image.interval = 1;
    svgImage.layers[0].image.overscan = 1;
    svgImage.items = {itemOf(0, SourceKind::Svg, rectangleSvg(10, 10), QRectF(10, 20, 2, 2))};

    // clang-format off
    QTest::newRow("image grbl") << image << QByteArray(
        "G21\nG90\nM4 S0\n; layer 1: Engrave\n"
        "G0 X9 Y21.5\nG1 X10 F1200\nG1 X12 S500\nG1 X13 S0\n"
        "G0 X15.25 Y20.5\nG1 X14.25\nG1 X13.25 S500\nG1 X11.25 S0\nG1 X10.25 S500\nG1 X9.25 S0\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("image marlin") << imageMarlin << QByteArray(
        "G21\nG90\n; layer 1: Engrave\n"
        "G0 X9 Y21.5\nG1 X10 F1200\nM3 S128\nG1 X12\nM5\nG1 X13\n"
        "G0 X15.25 Y20.5\nG1 X14.25\nM3 S128\nG1 X13.25\nM5\nG1 X11.25\nM3 S128\nG1 X10.25\nM5\nG1 X9.25\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("image fan") << imageFan << QByteArray(
        "G21\nG90\n; layer 1: Engrave\n"
        "G0 X9 Y21.5\nG1 X10 F1200\nM106 S128\nG1 X12\nM107\nG1 X13\n"
        "G0 X15.25 Y20.5\nG1 X14.25\nM106 S128\nG1 X13.25\nM107\nG1 X11.25\nM106 S128\nG1 X10.25\nM107\nG1 X9.25\n"
        "M107\nG0 X0 Y0\n");
    QTest::newRow("fill grbl") << fill << QByteArray(
        "G21\nG90\nM4 S0\n; layer 1: Fill\n"
        "G0 X9 Y20.25\nG1 X10 F1500\nG1 X12 S400\nG1 X13 S0\n"
        "G0 Y20.75\nG1 X12\nG1 X10 S400\nG1 X9 S0\n"
        "G0 Y21.25\nG1 X10\nG1 X12 S400\nG1 X13 S0\n"
        "G0 Y21.75\nG1 X12\nG1 X10 S400\nG1 X9 S0\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("fill marlin") << fillMarlin << QByteArray(
        "G21\nG90\n; layer 1: Fill\n"
        "G0 X9 Y20.25\nG1 X10 F1500\nM3 S102\nG1 X12\nM5\nG1 X13\n"
        "G0 Y20.75\nG1 X12\nM3 S102\nG1 X10\nM5\nG1 X9\n"
        "G0 Y21.25\nG1 X10\nM3 S102\nG1 X12\nM5\nG1 X13\n"
        "G0 Y21.75\nG1 X12\nM3 S102\nG1 X10\nM5\nG1 X9\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("fill fan") << fillFan << QByteArray(
        "G21\nG90\n; layer 1: Fill\n"
        "G0 X9 Y20.25\nG1 X10 F1500\nM106 S102\nG1 X12\nM107\nG1 X13\n"
        "G0 Y20.75\nG1 X12\nM106 S102\nG1 X10\nM107\nG1 X9\n"
        "G0 Y21.25\nG1 X10\nM106 S102\nG1 X12\nM107\nG1 X13\n"
        "G0 Y21.75\nG1 X12\nM106 S102\nG1 X10\nM107\nG1 X9\n"
        "M107\nG0 X0 Y0\n");
    QTest::newRow("line grbl") << line << QByteArray(
        "G21\nG90\nM4 S0\n; layer 1: Cut\n"
        "G0 X10 Y20\nG1 Y22 F300 S1000\nG1 X12\nG1 Y20\nG1 X10\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("line marlin") << lineMarlin << QByteArray(
        "G21\nG90\n; layer 1: Cut\n"
        "G0 X10 Y20\nM3 S255\nG1 Y22 F300\nG1 X12\nG1 Y20\nG1 X10\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("line fan") << lineFan << QByteArray(
        "G21\nG90\n; layer 1: Cut\n"
        "G0 X10 Y20\nM106 S255\nG1 Y22 F300\nG1 X12\nG1 Y20\nG1 X10\n"
        "M107\nG0 X0 Y0\n");
    QTest::newRow("disabled layer") << disabled << QByteArray(
        "G21\nG90\nM4 S0\n; layer 2: Cut\n"
        "G0 X10 Y20\nG1 Y22 F300 S1000\nG1 X12\nG1 Y20\nG1 X10\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("two layers, two passes") << twoLayers << QByteArray(
        "G21\nG90\nM4 S0\n; layer 1: Engrave\n"
        "G0 X9 Y20.5\nG1 X10 F1200\nG1 X12 S500\nG1 X13 S0\n"
        "G1 X12\nG1 X10 S500\nG1 X9 S0\n"
        "; layer 2: Cut\n"
        "G0 X9.5 Y19.5\nG1 Y22 F300 S1000\nG1 X12.5\nG1 Y19.5\nG1 X9.5\n"
        "G1 Y22\nG1 X12.5\nG1 Y19.5\nG1 X9.5\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("nearest item first") << dots << QByteArray(
        "G21\nG90\nM4 S0\n; layer 1: Dots\n"
        "G0 X10 Y10.5\nG1 X11 F600 S100\nG0 X100 Y100.5\nG1 X101\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("svg on an image layer") << svgImage << QByteArray(
        "G21\nG90\nM4 S0\n; layer 1: Engrave\n"
        "G0 X9 Y21.5\nG1 X10 F1200\nG1 X12 S500\nG1 X13 S0\n"
        "G0 Y20.5\nG1 X12\nG1 X10 S500\nG1 X9 S0\n"
        "M5\nG0 X0 Y0\n");
    // clang-format on
}

void TestJobExport::wholeJob()
{
    QFETCH(JobDocument, doc);
    QFETCH(QByteArray, gcode);
    JobExportResult result;
    QString error;
    QVERIFY2(JobExport::run(doc, &result, &error), qPrintable(error));
    QCOMPARE(result.gcode, gcode);
    checkLines(result.gcode);
}

void TestJobExport::alignment()
{
    // A 20 x 10 picture, black at its edge and gray inside, engraved (dithered, the default) over
    // 20 x 10 mm at (30, 40) on a 0.1 mm grid; the same rectangle drawn as an SVG and cut on a second
    // layer. Replayed through the preview's interpreter, the burns of both layers span the same box.
    const double interval = 0.1;
    QStringList rows;
    for (int y = 0; y < 10; ++y)
        rows << (y == 0 || y == 9 ? QString(20, QLatin1Char('#')) : "#" + QString(18, QLatin1Char('+')) + "#");
    const QRectF rect(30, 40, 20, 10);
    JobDocument doc;
    doc.layers = {layerOf("Photo", Operation::Image, 3000, 60), layerOf("Cut", Operation::Line, 300, 100)};
    doc.layers[0].image.interval = interval;
    doc.items = {itemOf(0, SourceKind::Picture, picture(rows), rect),
                 itemOf(1, SourceKind::Svg, rectangleSvg(200, 100), rect)};
    JobExportResult result;
    QString error;
    QVERIFY2(JobExport::run(doc, &result, &error), qPrintable(error));
    checkLines(result.gcode);

    struct Box
    {
        double x0 = 1e9, y0 = 1e9, x1 = -1e9, y1 = -1e9;
        int moves = 0;
        void add(const ToolpathMove &m)
        {
            x0 = std::min({x0, m.x0, m.x1});
            x1 = std::max({x1, m.x0, m.x1});
            y0 = std::min({y0, m.y0, m.y1});
            y1 = std::max({y1, m.y0, m.y1});
            ++moves;
        }
    } engraved, cut;
    GcodeInterpreter interpreter;
    interpreter.setSpindleFullScale(1000);
    // The photo burns at S600 (60 %), the cut at S1000.
    interpreter.setMoveHandler([&](const ToolpathMove &m) {
        if (!m.burns())
            return;
        (std::abs(m.power - 0.6) < 1e-6 ? engraved : cut).add(m);
    });
    const ToolpathSummary summary = interpreter.run(result.gcode);
    QCOMPARE(summary.linesNotUnderstood, qint64(0));
    // The preview times the file with the same motion model as the engine's estimate.
    QVERIFY2(std::abs(summary.seconds - result.seconds) < 1e-6,
             qPrintable(QStringLiteral("preview %1 s, job %2 s").arg(summary.seconds).arg(result.seconds)));
    QVERIFY(engraved.moves > 100);
    QCOMPARE(cut.moves, 4);
    // The cut follows the rectangle itself.
    QVERIFY(std::abs(cut.x0 - 30) < 1e-9 && std::abs(cut.x1 - 50) < 1e-9);
    QVERIFY(std::abs(cut.y0 - 40) < 1e-9 && std::abs(cut.y1 - 50) < 1e-9);
    // The engraving's edges lie on it to within the line interval (rows run at their centres).
    const QString extents =
        QStringLiteral("engraved %1..%2 x %3..%4").arg(engraved.x0).arg(engraved.x1).arg(engraved.y0).arg(engraved.y1);
    QVERIFY2(std::abs(engraved.x0 - cut.x0) <= interval / 10, qPrintable(extents));
    QVERIFY2(std::abs(engraved.x1 - cut.x1) <= interval / 10, qPrintable(extents));
    QVERIFY2(std::abs(engraved.y0 - cut.y0) <= interval, qPrintable(extents));
    QVERIFY2(std::abs(engraved.y1 - cut.y1) <= interval, qPrintable(extents));
}

void TestJobExport::summaryOfAJob()
{
    // A 2 mm square cut at 300 mm/min: v = 5 mm/s reaches its feed in v^2/a = 5^2/500 = 0.05 mm, so
    // each side takes 2/5 + 5/500 = 0.41 s, 1.64 s in all. Travel to (10, 20) and home again:
    // sqrt(10^2 + 20^2) = 22.3607 mm at 50 mm/s, 22.3607/50 + 50/500 = 0.547214 s each way.
    JobDocument doc;
    doc.layers = {layerOf("Cut", Operation::Line, 300, 100)};
    doc.items = {itemOf(0, SourceKind::Svg, rectangleSvg(10, 10), QRectF(10, 20, 2, 2))};
    JobExportResult result;
    QString error;
    QVERIFY2(JobExport::run(doc, &result, &error), qPrintable(error));
    const double travel = std::sqrt(500.0) / 50 + 0.1;
    QVERIFY(std::abs(result.seconds - (1.64 + 2 * travel)) < 1e-6);
    QCOMPARE(int(result.layers.size()), 1);
    QVERIFY(std::abs(result.layers[0].seconds - (1.64 + travel)) < 1e-6);
    QVERIFY(std::abs(result.layers[0].burnMm - 8) < 1e-6);
    const QStringList expected = {QStringLiteral("Estimated time: 3s"),
                                  QStringLiteral("layer 1 Cut: 1 items, burn 8.0 mm, 2s")};
    QCOMPARE(JobExport::summary(result), expected);
}

void TestJobExport::refused_data()
{
    QTest::addColumn<JobDocument>("doc");
    QTest::addColumn<QString>("message");
    QTest::addColumn<bool>("byPlanner");  // refused by the planner too, not only by the export
    const QByteArray picture = ::picture({"#..#", ".##."});
    JobDocument pictureOnFill;
    pictureOnFill.layers = {layerOf("Fill", Operation::Fill, 1000, 50)};
    pictureOnFill.items = {itemOf(0, SourceKind::Picture, picture, QRectF(10, 10, 4, 2))};
    JobDocument qrOnLine;
    qrOnLine.layers = {layerOf("Image", Operation::Image, 1000, 50), layerOf("Cut", Operation::Line, 100, 90)};
    qrOnLine.items = {itemOf(0, SourceKind::Picture, picture, QRectF(10, 10, 4, 2)),
                      itemOf(1, SourceKind::Qr, QByteArray(), QRectF(10, 10, 4, 4))};
    qrOnLine.items[1].source.text = QStringLiteral("hello");
    JobDocument noLayer;
    noLayer.layers = {layerOf("Image", Operation::Image, 1000, 50)};
    noLayer.items = {itemOf(0, SourceKind::Picture, picture, QRectF(10, 10, 4, 2)),
                     itemOf(3, SourceKind::Picture, picture, QRectF(10, 10, 4, 2))};
    JobDocument notAPicture;
    notAPicture.layers = {layerOf("Image", Operation::Image, 1000, 50)};
    notAPicture.items = {itemOf(0, SourceKind::Picture, picture, QRectF(10, 10, 4, 2)),
                         itemOf(0, SourceKind::Picture, "not a picture at all", QRectF(20, 10, 4, 2))};
    JobDocument outside;
    outside.layers = {layerOf("Image", Operation::Image, 1000, 50)};
    outside.items = {itemOf(0, SourceKind::Picture, picture, QRectF(10, 10, 4, 2)),
                     itemOf(0, SourceKind::Picture, picture, QRectF(168, 10, 4, 2))};
    outside.items[1].source.name = QStringLiteral("dot.png");
    // Grids and hatchings past what memory or a file can hold, on a bed large enough to take them.
    JobDocument fineGrid;
    fineGrid.machine.bedWidth = fineGrid.machine.bedHeight = 1000;
    fineGrid.layers = {layerOf("Image", Operation::Image, 1000, 50)};
    fineGrid.layers[0].image.interval = 0.001;
    fineGrid.items = {itemOf(0, SourceKind::Picture, picture, QRectF(0, 0, 1000, 500))};
    JobDocument fineDrawing = fineGrid;
    fineDrawing.layers.insert(fineDrawing.layers.begin(), layerOf("Cut", Operation::Line, 100, 90));
    fineDrawing.items = {itemOf(1, SourceKind::Svg, rectangleSvg(2, 1), QRectF(0, 0, 1000, 500))};
    JobDocument fineFill;
    fineFill.machine.bedWidth = fineFill.machine.bedHeight = 10000;
    fineFill.layers = {layerOf("Fill", Operation::Fill, 1000, 50)};
    fineFill.layers[0].fill.interval = 0.001;
    fineFill.items = {itemOf(0, SourceKind::Svg, rectangleSvg(1, 1), QRectF(0, 0, 10000, 10000))};
    JobDocument fineSlantedFill = fineFill;
    fineSlantedFill.layers[0].fill.interval = 0.003;
    fineSlantedFill.layers[0].fill.angle = 45;
    JobDocument fineCrossFill = fineFill;
    fineCrossFill.layers[0].fill.interval = 0.002;
    fineCrossFill.items[0].height = 1000;
    fineCrossFill.layers[0].fill.crossHatch = true;
    // A cut with its kerf outside, around items that touch the bed's edges.
    JobDocument kerfOff;
    kerfOff.layers = {layerOf("Image", Operation::Image, 1000, 50), layerOf("Cut", Operation::Line, 100, 90)};
    kerfOff.layers[1].line.kerfSide = KerfSide::Outside;
    kerfOff.layers[1].line.kerf = 0.2;
    kerfOff.items = {itemOf(1, SourceKind::Svg, rectangleSvg(2, 1), QRectF(0.1, 10, 20, 10)),
                     itemOf(1, SourceKind::Svg, rectangleSvg(2, 1), QRectF(0.05, 10, 20, 10))};
    JobDocument kerfOffTop = kerfOff;
    kerfOffTop.items = {itemOf(1, SourceKind::Svg, rectangleSvg(2, 1), QRectF(150, 190, 20, 10))};
    // clang-format off
    QTest::newRow("outside the bed")         << outside       << "items[1] (dot.png): outside the bed (170 x 200 mm)" << false;
    QTest::newRow("picture on a fill layer") << pictureOnFill << "items[0].source: a picture belongs on an image layer" << true;
    QTest::newRow("qr on a line layer")      << qrOnLine      << "items[1].source: a QR code belongs on an image layer" << true;
    QTest::newRow("no such layer")           << noLayer       << "items[1].layer: no such layer" << true;
    QTest::newRow("undecodable picture")     << notAPicture   << "items[1].source: " << true;
    QTest::newRow("kerf off the left edge")  << kerfOff       << "items[1]: the cut, half of layers[1].line.kerf outside it, leaves the bed (170 x 200 mm)" << true;
    QTest::newRow("kerf off the top corner") << kerfOffTop    << "items[0]: the cut, half of layers[1].line.kerf outside it, leaves the bed (170 x 200 mm)" << true;
    QTest::newRow("picture grid too fine")   << fineGrid      << "items[0]: too fine to engrave: 1000000 x 500000 cells at layers[0].image.interval 0.001 mm (at most 100000000 cells)" << true;
    QTest::newRow("drawing grid too fine")   << fineDrawing   << "items[0]: too fine to engrave: 1000000 x 500000 cells at layers[1].image.interval 0.001 mm (at most 100000000 cells)" << true;
    QTest::newRow("fill too fine")           << fineFill      << "items[0]: too fine to fill: 10000000 hatch lines at layers[0].fill.interval 0.001 mm (at most 4000000)" << true;
    QTest::newRow("slanted fill too fine")   << fineSlantedFill << "items[0]: too fine to fill: 4714045 hatch lines at layers[0].fill.interval 0.003 mm (at most 4000000)" << true;
    QTest::newRow("cross hatch too fine")    << fineCrossFill << "items[0]: too fine to fill: 5000000 hatch lines at layers[0].fill.interval 0.002 mm (at most 4000000)" << true;
    // clang-format on
}

void TestJobExport::refused()
{
    QFETCH(JobDocument, doc);
    QFETCH(QString, message);
    QFETCH(bool, byPlanner);
    JobExportResult result;
    result.gcode = "untouched";
    QString error;
    QVERIFY(!JobExport::run(doc, &result, &error));
    // A message ending in ": " is followed by the decoder's own words.
    if (message.endsWith(QLatin1String(": ")))
        QVERIFY2(error.startsWith(message) && error.size() > message.size(), qPrintable(error));
    else
        QCOMPARE(error, message);
    QCOMPARE(result.gcode, QByteArray("untouched"));

    if (!byPlanner)
        return;
    // The planner alone plans nothing at all for such a job.
    struct Counter : MoveSink
    {
        int calls = 0;
        void beginLayer(int, const JobLayer &) override { ++calls; }
        void move(const PlannedMove &) override { ++calls; }
    } counter;
    QString planError;
    QVERIFY(!JobPlanner::plan(doc, counter, &planError));
    QCOMPARE(planError, error);
    QCOMPARE(counter.calls, 0);
}

void TestJobExport::disabledLayerNotDecoded()
{
    // Items of a disabled layer are neither decoded nor checked against their layer's operation.
    JobDocument doc;
    doc.layers = {layerOf("Off", Operation::Fill, 1000, 50)};
    doc.layers[0].enabled = false;
    doc.items = {itemOf(0, SourceKind::Picture, "garbage", QRectF(10, 10, 4, 2))};
    std::vector<PreparedItem> items(3);
    QString error;
    QVERIFY2(JobPlanner::prepare(doc, &items, &error), qPrintable(error));
    QVERIFY(items.empty());
    JobExportResult result;
    QVERIFY2(JobExport::run(doc, &result, &error), qPrintable(error));
    QCOMPARE(result.gcode, QByteArray("G21\nG90\nM4 S0\nM5\nG0 X0 Y0\n"));
    checkLines(result.gcode);
    QVERIFY(result.layers.empty());
    QCOMPARE(JobExport::summary(result), QStringList{QStringLiteral("Estimated time: 0s")});
}

void TestJobExport::summaryLines()
{
    JobExportResult result;
    result.seconds = 3723.4;
    JobEstimate::Layer photo;
    photo.index = 0;
    photo.name = QStringLiteral("Photo %1");
    photo.seconds = 185;
    photo.burnMm = 1234.56;
    JobEstimate::Layer cut;
    cut.index = 2;
    cut.name = QStringLiteral("Cut");
    cut.seconds = 0.4;
    cut.burnMm = 0.04;
    // A name of several lines stays on its layer's one line.
    JobEstimate::Layer text;
    text.index = 3;
    text.name = QStringLiteral("Two\nlines\r\tand a tab");
    result.layers = {photo, cut, text};
    result.itemCounts = {3, 1, 2};
    const QStringList expected = {
        QStringLiteral("Estimated time: 1h 02min 03s"),
        QStringLiteral("layer 1 Photo %1: 3 items, burn 1234.6 mm, 3min 05s"),
        QStringLiteral("layer 3 Cut: 1 items, burn 0.0 mm, 0s"),
        QStringLiteral("layer 4 Two lines  and a tab: 2 items, burn 0.0 mm, 0s"),
    };
    QCOMPARE(JobExport::summary(result), expected);
}

TARNWELL_TEST_MAIN(TestJobExport)
#include "tst_jobexport.moc"
