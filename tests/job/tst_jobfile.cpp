// The job file: a full document read back equal, the defaults of a short job, the written layout,
// every kind of bad file with its message, sizes that follow the source, and files on disk.
#include "jobfile.h"
#include "jobgeometry.h"
#include "testsupport.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <QBuffer>
#include <QImage>

#include <cmath>

namespace {

// A 4 x 3 pixel picture, black and white.
QByteArray pngBytes(int width = 4, int height = 3)
{
    QImage image(width, height, QImage::Format_Grayscale8);
    image.fill(255);
    image.setPixel(0, 0, qRgb(0, 0, 0));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// A black block on white, something to trace.
QByteArray blockPngBytes()
{
    QImage image(40, 30, QImage::Format_Grayscale8);
    image.fill(255);
    for (int y = 8; y < 22; ++y)
        for (int x = 10; x < 30; ++x)
            image.setPixel(x, y, qRgb(0, 0, 0));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// A 20 x 10 rectangle filling its drawing.
const QByteArray SvgBytes =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20\" height=\"10\" viewBox=\"0 0 20 10\">"
    "<path d=\"M0 0 L20 0 L20 10 L0 10 Z\"/></svg>";

// `PIC` and `SVG` in a job text stand for the base64 of the picture and the drawing.
QByteArray withSources(QByteArray json)
{
    json.replace("PIC", pngBytes().toBase64());
    json.replace("SVG", SvgBytes.toBase64());
    return json;
}

// One picture item on an image layer and a line layer; `item` holds the item's keys.
QByteArray pictureJob(const QByteArray &item)
{
    return withSources(R"({"layers":[{"operation":"image"},{"operation":"line"}],"items":[{)" + item + "}]}");
}

JobDocument fullDocument()
{
    JobDocument doc;
    doc.machine.name = QStringLiteral("Bench \"K40\" – ünïcode");
    doc.machine.dialect = Dialect::Marlin;
    doc.machine.maxPower = 255;
    doc.machine.bedWidth = 300.5;
    doc.machine.bedHeight = 210.25;
    doc.machine.travelSpeed = 6000;
    doc.machine.acceleration = 1234.5678901234567;

    JobLayer photo;
    photo.name = QStringLiteral("Photo");
    photo.color = QStringLiteral("#ff8000");
    photo.enabled = false;
    photo.operation = Operation::Image;
    photo.speed = 100.0 / 3;
    photo.power = 33.333333333333336;
    photo.passes = 2;
    photo.image.mode = ImageMode::Grayscale;
    photo.image.dither = DitherKernel::Bayer4;
    photo.image.threshold = 17;
    photo.image.minPower = 5.5;
    photo.image.brightness = -12.5;
    photo.image.contrast = 99;
    photo.image.gamma = 2.2;
    photo.image.invert = true;
    photo.image.interval = 0.0845;
    photo.image.overscan = 0;
    photo.image.bidirectional = false;
    photo.image.reverseOffset = -0.05;

    JobLayer fill;
    fill.name = QStringLiteral("Fill");
    fill.operation = Operation::Fill;
    fill.speed = 2000;
    fill.power = 0.1 + 0.2;
    fill.fill.interval = 0.07;
    fill.fill.angle = -45;
    fill.fill.crossHatch = true;
    fill.fill.overscan = 1.5;
    fill.fill.bidirectional = false;

    JobLayer cut;
    cut.name = QStringLiteral("Cut");
    cut.operation = Operation::Line;
    cut.speed = 300;
    cut.power = 100;
    cut.passes = 1000;
    cut.line.kerfSide = KerfSide::Outside;
    cut.line.kerf = 0.15;
    doc.layers = {photo, fill, cut};

    JobItem picture;
    picture.layer = 0;
    picture.x = 0.30000000000000004;
    picture.y = 30;
    picture.width = 40;
    picture.height = 30;
    picture.source.kind = SourceKind::Picture;
    picture.source.name = QStringLiteral("photo.png");
    picture.source.data = pngBytes();

    JobItem svg;
    svg.layer = 2;
    svg.x = 18;
    svg.y = 28;
    svg.width = 44;
    svg.height = 22;
    svg.source.kind = SourceKind::Svg;
    svg.source.name = QStringLiteral("outline.svg");
    svg.source.data = SvgBytes;

    JobItem trace;
    trace.layer = 1;
    trace.x = 100;
    trace.y = 100;
    trace.width = 12;
    trace.height = 9;
    trace.keepAspect = false;
    trace.source.kind = SourceKind::Trace;
    trace.source.data = blockPngBytes();

    JobItem text;
    text.layer = 1;
    text.x = 20;
    text.y = 62;
    text.width = 40;
    text.height = 6;
    text.keepAspect = false;
    text.source.kind = SourceKind::Text;
    text.source.text = QStringLiteral("Hello, \"world\"\n\u00e9\u4e2d");
    text.source.font = QStringLiteral("DejaVu Serif");
    text.source.size = 8.25;
    text.source.align = TextAlign::Right;

    JobItem qr;
    qr.layer = 0;
    qr.x = 120;
    qr.y = 150;
    qr.width = 30;
    qr.height = 30;
    qr.source.kind = SourceKind::Qr;
    qr.source.name = QStringLiteral("tag");
    qr.source.text = QStringLiteral("https://example.org/tag/42");
    qr.source.level = QrLevel::H;
    qr.source.quietZone = 0;
    doc.items = {picture, svg, trace, text, qr};
    doc.extra = R"({"author":"me","n":[1,2.5,null]})";
    return doc;
}

bool readJob(const QByteArray &json, JobDocument *doc, QString *error = nullptr)
{
    QString message;
    const bool ok = JobFile::read(json, doc, &message);
    if (error)
        *error = message;
    else if (!ok)
        qWarning("%s", qPrintable(message));
    return ok;
}

}  // namespace

class TestJobFile : public QObject
{
    Q_OBJECT

private slots:
    void roundTripOfEverySourceKind()
    {
        const JobDocument doc = fullDocument();
        const QByteArray written = JobFile::write(doc);
        JobDocument back;
        QVERIFY(readJob(written, &back));
        QVERIFY(back == doc);
        QVERIFY(back.machine.acceleration == 1234.5678901234567);
        QCOMPARE(back.items[3].source.text, doc.items[3].source.text);
        QCOMPARE(back.extra, doc.extra);
        // Written again, the same bytes.
        QCOMPARE(JobFile::write(back), written);
        // Each block only under its own layer.
        QCOMPARE(written.count("\"image\": {"), 1);
        QCOMPARE(written.count("\"fill\": {"), 1);
        QCOMPARE(written.count("\"line\": {"), 1);
    }

    // Numbers at the edges of their ranges and with long fractions come back bit for bit.
    void numbersReadBackExactly_data()
    {
        QTest::addColumn<double>("speed");
        QTest::addColumn<double>("power");
        QTest::addColumn<double>("x");
        // clang-format off
        QTest::newRow("whole") << 3000.0 << 60.0 << 0.0;
        QTest::newRow("thirds") << 1000.0 / 3 << 100.0 / 3 << 10.0 / 3;
        QTest::newRow("tiny") << 1e-300 << 5e-324 << 1e-9;
        QTest::newRow("edges") << 100000.0 << 100.0 << 130.0;
        QTest::newRow("long") << 0.1 + 0.2 << 99.99999999999999 << 129.99999999999997;
        QTest::newRow("negative zero") << 1.0 << -0.0 << -0.0;
        // clang-format on
    }

    void numbersReadBackExactly()
    {
        QFETCH(double, speed);
        QFETCH(double, power);
        QFETCH(double, x);
        JobDocument doc;
        doc.layers.resize(1);
        doc.layers[0].name = QStringLiteral("L");
        doc.layers[0].speed = speed;
        doc.layers[0].power = power;
        doc.items.resize(1);
        doc.items[0].x = x;
        doc.items[0].width = 40;
        doc.items[0].height = 30;
        doc.items[0].source.data = pngBytes();
        JobDocument back;
        QVERIFY(readJob(JobFile::write(doc), &back));
        // QCOMPARE would allow a rounding error; these must be the same doubles.
        QVERIFY2(back.layers[0].speed == speed, qPrintable(QString::number(back.layers[0].speed, 'g', 17)));
        QVERIFY2(back.layers[0].power == power, qPrintable(QString::number(back.layers[0].power, 'g', 17)));
        QVERIFY2(back.items[0].x == x, qPrintable(QString::number(back.items[0].x, 'g', 17)));
        QVERIFY(back == doc);
    }

    void defaultsOfAShortJob()
    {
        JobDocument doc;
        QVERIFY(readJob(pictureJob(R"("width":40,"source":{"kind":"picture","data":"PIC"})"), &doc));
        const MachineProfile &m = doc.machine;
        QCOMPARE(m.name, QStringLiteral("Default"));
        QCOMPARE(m.dialect, Dialect::Grbl);
        QCOMPARE(m.maxPower, 1000.0);
        QCOMPARE(m.bedWidth, 170.0);
        QCOMPARE(m.bedHeight, 200.0);
        QCOMPARE(m.travelSpeed, 3000.0);
        QCOMPARE(m.acceleration, 500.0);
        QCOMPARE(doc.layers.size(), size_t(2));
        const JobLayer &image = doc.layers[0];
        QCOMPARE(image.name, QStringLiteral("Layer 1"));
        QCOMPARE(doc.layers[1].name, QStringLiteral("Layer 2"));
        QCOMPARE(image.color, QStringLiteral("#2060c0"));
        QCOMPARE(doc.layers[1].color, QStringLiteral("#d03030"));  // layers without a colour differ
        QCOMPARE(image.enabled, true);
        QCOMPARE(image.operation, Operation::Image);
        QCOMPARE(image.speed, 3000.0);
        QCOMPARE(image.power, 60.0);
        QCOMPARE(image.passes, 1);
        QCOMPARE(image.image.mode, ImageMode::Dither);
        QCOMPARE(image.image.dither, DitherKernel::FloydSteinberg);
        QCOMPARE(image.image.threshold, 128);
        QCOMPARE(image.image.gamma, 1.0);
        QCOMPARE(image.image.interval, 0.1);
        QCOMPARE(image.image.overscan, 2.0);
        QCOMPARE(image.image.bidirectional, true);
        QCOMPARE(doc.layers[1].operation, Operation::Line);
        QCOMPARE(doc.layers[1].line.kerfSide, KerfSide::On);
        QCOMPARE(doc.items.size(), size_t(1));
        const JobItem &item = doc.items[0];
        QCOMPARE(item.layer, 0);
        QCOMPARE(item.x, 0.0);
        QCOMPARE(item.y, 0.0);
        QCOMPARE(item.width, 40.0);
        QCOMPARE(item.height, 30.0);  // from the picture's 4 x 3 pixels
        QCOMPARE(item.keepAspect, true);
        QCOMPARE(item.source.data, pngBytes());
        QVERIFY(doc.extra.isEmpty());

        JobDocument empty;
        QVERIFY(readJob("{}", &empty));
        QVERIFY(empty == JobDocument());
        JobDocument text;
        QVERIFY(
            readJob(R"({"layers":[{"operation":"fill"}],"items":[{"source":{"kind":"text","text":"Hi"}}]})", &text));
        QCOMPARE(text.items[0].source.font, QStringLiteral("DejaVu Sans"));
        QCOMPARE(text.items[0].source.size, 10.0);
        QCOMPARE(text.items[0].source.align, TextAlign::Left);
        JobDocument qr;
        QVERIFY(readJob(R"({"layers":[{}],"items":[{"width":20,"source":{"kind":"qr","text":"x"}}]})", &qr));
        QCOMPARE(qr.items[0].source.level, QrLevel::M);
        QCOMPARE(qr.items[0].source.quietZone, 4);
    }

    // The blocks of other operations are not read, whatever they hold.
    void onlyTheOwnBlockIsRead()
    {
        JobDocument doc;
        QVERIFY(readJob(R"({"layers":[{"operation":"line","image":{"dpi":1},"fill":{"interval":-1},)"
                        R"("line":{"kerf":0.2}}]})",
                        &doc));
        QCOMPARE(doc.layers[0].line.kerf, 0.2);
        QVERIFY(doc.layers[0].image == ImageParams());
        QVERIFY(doc.layers[0].fill == FillParams());
    }

    // Width and height: one follows the source's proportions, both must agree with them to 1 %.
    void sizes_data()
    {
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<double>("width");
        QTest::addColumn<double>("height");
        // clang-format off
        QTest::newRow("width only") << QByteArray(R"("width":40)") << 40.0 << 30.0;
        QTest::newRow("height only") << QByteArray(R"("height":6)") << 8.0 << 6.0;
        QTest::newRow("both agree") << QByteArray(R"("width":40,"height":30)") << 40.0 << 30.0;
        QTest::newRow("0.9 % off") << QByteArray(R"("width":40,"height":30.27)") << 40.0 << 30.27;
        QTest::newRow("0.9 % off the other way") << QByteArray(R"("width":40,"height":29.74)") << 40.0 << 29.74;
        QTest::newRow("stretched") << QByteArray(R"("width":40,"height":5,"keep_aspect":false)") << 40.0 << 5.0;
        QTest::newRow("unkept, width only") << QByteArray(R"("width":20,"keep_aspect":false)") << 20.0 << 15.0;
        // clang-format on
    }

    void sizes()
    {
        QFETCH(QByteArray, keys);
        QFETCH(double, width);
        QFETCH(double, height);
        JobDocument doc;
        QVERIFY(readJob(pictureJob(keys + R"(,"source":{"kind":"picture","data":"PIC"})"), &doc));
        QCOMPARE(doc.items[0].width, width);
        QCOMPARE(doc.items[0].height, height);
    }

    // A drawing that is a straight line along one axis: both sides given, or the missing one named.
    void flatDrawings_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("keys");
        QTest::addColumn<QString>("message");  // empty: read with the width and height given
        const QByteArray across = "M0 5 L50 5", up = "M5 0 L5 50", twice = "M0 5 L20 5 M30 5 L50 5";
        // clang-format off
        QTest::newRow("across, both given")  << across << QByteArray(R"("width":40,"height":2)") << QString();
        QTest::newRow("across, unkept")      << across << QByteArray(R"("width":40,"height":2,"keep_aspect":false)") << QString();
        QTest::newRow("two pieces in a row") << twice  << QByteArray(R"("width":40,"height":0.5)") << QString();
        QTest::newRow("up, both given")      << up     << QByteArray(R"("width":1,"height":30)") << QString();
        QTest::newRow("across, width only")  << across << QByteArray(R"("width":40)")
            << "items[0].height: missing (the drawing has no height: give both width and height)";
        QTest::newRow("up, height only")     << up     << QByteArray(R"("height":40)")
            << "items[0].width: missing (the drawing has no width: give both width and height)";
        QTest::newRow("across, zero height") << across << QByteArray(R"("width":40,"height":0)")
            << "items[0].height: must be above 0";
        QTest::newRow("a single point")      << QByteArray("M5 5 L5 5") << QByteArray(R"("width":40,"height":2)")
            << "items[0].source: has no size";
        // clang-format on
    }

    void flatDrawings()
    {
        QFETCH(QByteArray, path);
        QFETCH(QByteArray, keys);
        QFETCH(QString, message);
        const QByteArray svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"50\" height=\"50\"><path d=\"" + path
                               + "\" fill=\"none\" stroke=\"black\"/></svg>";
        QByteArray json = R"({"layers":[{"operation":"line"}],"items":[{"x":10,"y":10,KEYS,)"
                          R"("source":{"kind":"svg","data":"SVG"}}]})";
        json.replace("KEYS", keys);
        json.replace("SVG", svg.toBase64());
        JobDocument doc;
        QString error;
        const bool read = readJob(json, &doc, &error);
        if (!message.isEmpty()) {
            QVERIFY(!read);
            QCOMPARE(error, message);
            return;
        }
        QVERIFY2(read, qPrintable(error));
        const JobItem &item = doc.items[0];
        const QJsonObject given = QJsonDocument::fromJson("{" + keys + "}").object();
        QCOMPARE(item.width, given.value(QStringLiteral("width")).toDouble());
        QCOMPARE(item.height, given.value(QStringLiteral("height")).toDouble());
        // Written and read again, it stays the same.
        JobDocument back;
        QVERIFY(readJob(JobFile::write(doc), &back));
        QVERIFY(back == doc);
    }

    // A text with neither width nor height takes its natural size; one given, the other follows.
    void textTakesItsNaturalSize()
    {
        JobSource source;
        source.kind = SourceKind::Text;
        source.text = QStringLiteral("Hello");
        source.size = 8;
        double naturalWidth = 0, naturalHeight = 0;
        QString error;
        QVERIFY2(JobSources::naturalSize(source, &naturalWidth, &naturalHeight, &error), qPrintable(error));
        JobDocument doc;
        QVERIFY(readJob(R"({"layers":[{"operation":"fill"}],"items":[{"x":10,"y":10,)"
                        R"("source":{"kind":"text","text":"Hello","size":8}},)"
                        R"({"height":20,"source":{"kind":"text","text":"Hello","size":8}}]})",
                        &doc));
        QCOMPARE(doc.items[0].width, naturalWidth);
        QCOMPARE(doc.items[0].height, naturalHeight);
        QCOMPARE(doc.items[1].height, 20.0);
        QCOMPARE(doc.items[1].width, 20.0 * naturalWidth / naturalHeight);
    }

    void badFiles_data()
    {
        QTest::addColumn<QByteArray>("json");
        QTest::addColumn<QString>("message");
        const QByteArray picture = R"("width":40,"source":{"kind":"picture","data":"PIC"})";
        const QByteArray layers = R"("layers":[{"operation":"image"},{"operation":"line"}])";
        // clang-format off
        QTest::newRow("empty") << QByteArray() << "not a job file";
        QTest::newRow("not JSON") << QByteArray(R"({"layers": [)") << "not a job file";
        QTest::newRow("trailing text") << QByteArray("{} {}") << "not a job file";
        QTest::newRow("not UTF-8") << QByteArray("{\"machine\":{\"name\":\"caf\xe9\"}}") << "not a job file";
        QTest::newRow("Latin-1 outside strings") << QByteArray("\xff\xfe{}") << "not a job file";
        QTest::newRow("not an object") << QByteArray("[1, 2]") << "not a job file";
        QTest::newRow("a number") << QByteArray("1") << "not a job file";
        QTest::newRow("nested too deeply") << "{\"extra\":{\"a\":" + QByteArray(200, '[') + QByteArray(200, ']') + "}}"
                                           << "not a job file";
        QTest::newRow("newer format") << QByteArray(R"({"format":2})")
            << "format: the file comes from a newer version of TarnwellLaser (format 2; this version reads format 1)";
        QTest::newRow("newer format, new keys") << QByteArray(R"({"format":3,"groups":[]})")
            << "format: the file comes from a newer version of TarnwellLaser (format 3; this version reads format 1)";
        QTest::newRow("format 0") << QByteArray(R"({"format":0})") << "format: must be 1";
        QTest::newRow("format as text") << QByteArray(R"({"format":"1"})") << "format: not a number";
        QTest::newRow("unknown key") << QByteArray(R"({"layer":[]})") << "layer: unknown key";
        QTest::newRow("unknown machine key") << QByteArray(R"({"machine":{"bed_size":[1,2]}})")
                                             << "machine.bed_size: unknown key";
        QTest::newRow("unknown layer key") << QByteArray(R"({"layers":[{},{"sped":100}]})")
                                           << "layers[1].sped: unknown key";
        QTest::newRow("unknown image key") << QByteArray(R"({"layers":[{"image":{"dpi":300}}]})")
                                           << "layers[0].image.dpi: unknown key";
        QTest::newRow("unknown item key") << pictureJob(picture + R"(,"rotation":90)") << "items[0].rotation: unknown key";
        QTest::newRow("key of another source kind")
            << QByteArray(R"({"layers":[{}],"items":[{"source":{"kind":"text","text":"a","level":"H"}}]})")
            << "items[0].source.level: unknown key";
        QTest::newRow("unknown operation") << QByteArray(R"({"layers":[{"operation":"cut"}]})")
                                           << "layers[0].operation: unknown operation \"cut\"";
        QTest::newRow("unknown dialect") << QByteArray(R"({"machine":{"dialect":"GRBL"}})")
                                         << "machine.dialect: unknown dialect \"GRBL\"";
        QTest::newRow("unknown mode") << QByteArray(R"({"layers":[{"image":{"mode":"halftone"}}]})")
                                      << "layers[0].image.mode: unknown mode \"halftone\"";
        QTest::newRow("unknown dither") << QByteArray(R"({"layers":[{"image":{"dither":"floyd"}}]})")
                                        << "layers[0].image.dither: unknown dither \"floyd\"";
        QTest::newRow("unknown kerf side") << QByteArray(R"({"layers":[{"operation":"line","line":{"kerf_side":"in"}}]})")
                                           << "layers[0].line.kerf_side: unknown kerf side \"in\"";
        QTest::newRow("unknown kind") << QByteArray(R"({"layers":[{}],"items":[{"source":{"kind":"dxf"}}]})")
                                      << "items[0].source.kind: unknown kind \"dxf\"";
        QTest::newRow("unknown alignment")
            << QByteArray(R"({"layers":[{}],"items":[{"source":{"kind":"text","text":"a","align":"justify"}}]})")
            << "items[0].source.align: unknown alignment \"justify\"";
        QTest::newRow("unknown level")
            << QByteArray(R"({"layers":[{}],"items":[{"width":9,"source":{"kind":"qr","text":"a","level":"X"}}]})")
            << "items[0].source.level: unknown level \"X\"";
        QTest::newRow("machine not an object") << QByteArray(R"({"machine":[]})") << "machine: not an object";
        QTest::newRow("layers not a list") << QByteArray(R"({"layers":{}})") << "layers: not a list";
        QTest::newRow("layer not an object") << QByteArray(R"({"layers":[3]})") << "layers[0]: not an object";
        QTest::newRow("name not a text") << QByteArray(R"({"machine":{"name":5}})") << "machine.name: not a text";
        QTest::newRow("number as text") << QByteArray(R"({"machine":{"max_power":"1000"}})")
                                        << "machine.max_power: not a number";
        QTest::newRow("null number") << QByteArray(R"({"layers":[{"power":null}]})") << "layers[0].power: not a number";
        QTest::newRow("flag as number") << QByteArray(R"({"layers":[{"enabled":1}]})")
                                        << "layers[0].enabled: not true or false";
        QTest::newRow("bed of one") << QByteArray(R"({"machine":{"bed":[170]}})")
                                    << "machine.bed: not a width and a height";
        QTest::newRow("bed as text") << QByteArray(R"({"machine":{"bed":[170,"200"]}})")
                                     << "machine.bed[1]: not a number";
        QTest::newRow("bad colour") << QByteArray("{\"layers\":[{\"color\":\"#12345\"}]}") << "layers[0].color: not a colour";
        QTest::newRow("number beyond a double") << QByteArray(R"({"layers":[{"speed":1e999}]})")
                                            << "not a job file";
        QTest::newRow("negative overflow") << QByteArray(R"({"machine":{"travel_speed":-1e400}})")
                                           << "not a job file";
        QTest::newRow("zero speed") << QByteArray(R"({"layers":[{"speed":0}]})") << "layers[0].speed: must be above 0";
        QTest::newRow("negative speed") << QByteArray(R"({"layers":[{"speed":-5}]})")
                                        << "layers[0].speed: must be above 0";
        QTest::newRow("absurd speed") << QByteArray(R"({"layers":[{"speed":1e7}]})")
                                      << "layers[0].speed: must be at most 100000";
        QTest::newRow("power over 100") << QByteArray(R"({"layers":[{"power":100.5}]})")
                                        << "layers[0].power: must be at most 100";
        QTest::newRow("negative power") << QByteArray(R"({"layers":[{"power":-1}]})")
                                        << "layers[0].power: must be at least 0";
        QTest::newRow("no passes") << QByteArray(R"({"layers":[{"passes":0}]})") << "layers[0].passes: must be at least 1";
        QTest::newRow("half a pass") << QByteArray(R"({"layers":[{"passes":2.5}]})")
                                     << "layers[0].passes: not a whole number";
        QTest::newRow("absurd passes") << QByteArray(R"({"layers":[{"passes":1e12}]})")
                                       << "layers[0].passes: must be at most 1000";
        QTest::newRow("zero bed") << QByteArray(R"({"machine":{"bed":[0,200]}})") << "machine.bed[0]: must be above 0";
        QTest::newRow("absurd bed") << QByteArray(R"({"machine":{"bed":[170,20000]}})")
                                    << "machine.bed[1]: must be at most 10000";
        QTest::newRow("zero max power") << QByteArray(R"({"machine":{"max_power":0}})")
                                        << "machine.max_power: must be above 0";
        QTest::newRow("negative acceleration") << QByteArray(R"({"machine":{"acceleration":-500}})")
                                               << "machine.acceleration: must be above 0";
        QTest::newRow("zero interval") << QByteArray(R"({"layers":[{"image":{"interval":0}}]})")
                                       << "layers[0].image.interval: must be at least 0.001";
        QTest::newRow("huge interval") << QByteArray(R"({"layers":[{"operation":"fill","fill":{"interval":11}}]})")
                                       << "layers[0].fill.interval: must be at most 10";
        QTest::newRow("zero gamma") << QByteArray(R"({"layers":[{"image":{"gamma":0}}]})")
                                    << "layers[0].image.gamma: must be above 0";
        QTest::newRow("threshold 256") << QByteArray(R"({"layers":[{"image":{"threshold":256}}]})")
                                       << "layers[0].image.threshold: must be at most 255";
        QTest::newRow("negative overscan") << QByteArray(R"({"layers":[{"image":{"overscan":-2}}]})")
                                           << "layers[0].image.overscan: must be at least 0";
        QTest::newRow("negative kerf") << QByteArray(R"({"layers":[{"operation":"line","line":{"kerf":-0.1}}]})")
                                       << "layers[0].line.kerf: must be at least 0";
        QTest::newRow("absurd position") << pictureJob(picture + R"(,"x":1e6)") << "items[0].x: must be at most 10000";
        QTest::newRow("negative width") << pictureJob(R"("width":-40,"source":{"kind":"picture","data":"PIC"})")
                                        << "items[0].width: must be above 0";
        QTest::newRow("missing source") << pictureJob(R"("width":40)") << "items[0].source: missing";
        QTest::newRow("missing kind") << pictureJob(R"("width":40,"source":{"data":"PIC"})")
                                      << "items[0].source.kind: missing";
        QTest::newRow("missing data") << pictureJob(R"("width":40,"source":{"kind":"picture"})")
                                      << "items[0].source.data: missing";
        QTest::newRow("empty data") << pictureJob(R"("width":40,"source":{"kind":"picture","data":""})")
                                    << "items[0].source.data: empty";
        QTest::newRow("data not a text") << pictureJob(R"("width":40,"source":{"kind":"picture","data":[1]})")
                                         << "items[0].source.data: not a text";
        QTest::newRow("base64 unpadded") << pictureJob(R"("width":40,"source":{"kind":"picture","data":"QUJD RA"})")
                                         << "items[0].source.data: not base64";
        QTest::newRow("base64 short") << pictureJob(R"("width":40,"source":{"kind":"picture","data":"QUJDRA="})")
                                      << "items[0].source.data: not base64";
        QTest::newRow("base64 line break") << pictureJob(R"("width":40,"source":{"kind":"picture","data":"QUJD\nRA=="})")
                                           << "items[0].source.data: not base64";
        QTest::newRow("base64 stray bits") << pictureJob(R"("width":40,"source":{"kind":"picture","data":"QR=="})")
                                           << "items[0].source.data: not base64";
        QTest::newRow("base64 url alphabet") << pictureJob(R"("width":40,"source":{"kind":"picture","data":"-_-_"})")
                                             << "items[0].source.data: not base64";
        QTest::newRow("padding inside") << pictureJob(R"("width":40,"source":{"kind":"picture","data":"QQ==QUJD"})")
                                        << "items[0].source.data: not base64";
        QTest::newRow("undecodable picture") << pictureJob(R"("width":40,"source":{"kind":"picture","data":"aGVsbG8="})")
                                             << "items[0].source: not a picture";
        QTest::newRow("undecodable drawing")
            << pictureJob(R"("layer":1,"width":40,"source":{"kind":"svg","data":"PGh0bWw+PC9odG1sPg=="})")
            << "items[0].source: not an SVG drawing";
        QTest::newRow("empty text") << QByteArray(R"({"layers":[{}],"items":[{"source":{"kind":"text","text":""}}]})")
                                    << "items[0].source.text: empty";
        QTest::newRow("text missing") << QByteArray(R"({"layers":[{}],"items":[{"source":{"kind":"qr"}}]})")
                                      << "items[0].source.text: missing";
        QTest::newRow("picture without a size") << pictureJob(R"("source":{"kind":"picture","data":"PIC"})")
                                                << "items[0].width: missing (give width, height or both)";
        QTest::newRow("layer out of range") << pictureJob(picture + R"(,"layer":2)")
                                            << "items[0].layer: there is no layer 2 (the job has 2)";
        QTest::newRow("negative layer") << pictureJob(picture + R"(,"layer":-1)") << "items[0].layer: must be at least 0";
        QTest::newRow("no layers at all") << withSources(R"({"items":[{)" + picture + "}]}")
                                          << "items[0].layer: there is no layer 0 (the job has 0)";
        QTest::newRow("picture on a line layer") << pictureJob(picture + R"(,"layer":1)")
            << "items[0].layer: a picture item belongs on an image layer, not on a line layer";
        QTest::newRow("aspect mismatch") << pictureJob(R"("width":40,"height":31,"source":{"kind":"picture","data":"PIC"})")
                                         << "items[0].height: 31 does not keep the source's proportions (30 for width 40)";
        QTest::newRow("aspect just over 1 %") << pictureJob(R"("width":40,"height":29.69,"source":{"kind":"picture","data":"PIC"})")
                                              << "items[0].height: 29.69 does not keep the source's proportions (30 for width 40)";
        QTest::newRow("outside the bed on the right") << pictureJob(R"("x":130.001,)" + picture)
                                                      << "items[0] (picture): outside the bed (170 x 200 mm)";
        QTest::newRow("outside the bed below")
            << withSources("{" + layers + R"(,"items":[{"x":1,"y":1,)" + picture + R"(},{"y":-0.5,"width":40,)"
                           R"("source":{"kind":"picture","name":"photo.png","data":"PIC"}}]})")
            << "items[1] (photo.png): outside the bed (170 x 200 mm)";
        QTest::newRow("outside a smaller bed")
            << withSources(R"({"machine":{"bed":[100,50.5]},)" + layers + R"(,"items":[{"y":21,)" + picture + "}]}")
            << "items[0] (picture): outside the bed (100 x 50.5 mm)";
        QTest::newRow("text outside the bed named by its text")
            << QByteArray(R"({"layers":[{}],"items":[{"x":160,"height":20,"source":{"kind":"text","text":"Hi"}}]})")
            << "items[0] (Hi): outside the bed (170 x 200 mm)";
        QTest::newRow("line break in a key") << QByteArray(R"({"machine":{"na\nme":"x"}})")
                                             << "machine.na\\nme: unknown key";
        QTest::newRow("control character in a value") << QByteArray(R"({"layers":[{"operation":"fi\u0007ll"}]})")
                                                       << "layers[0].operation: unknown operation \"fi\\u0007ll\"";
        QTest::newRow("long value cut short") << "{\"machine\":{\"dialect\":\"" + QByteArray(100, 'g') + "\"}}"
            << "machine.dialect: unknown dialect \"" + QString(40, 'g') + "...\"";
        QTest::newRow("item named on one line")
            << pictureJob(R"("x":140,"width":40,"source":{"kind":"picture","name":"A\nB","data":"PIC"})")
            << "items[0] (A\\nB): outside the bed (170 x 200 mm)";
        QTest::newRow("extra not an object") << QByteArray(R"({"extra":[1]})") << "extra: not an object";
        // clang-format on
    }

    void badFiles()
    {
        QFETCH(QByteArray, json);
        QFETCH(QString, message);
        JobDocument doc = fullDocument();
        const JobDocument before = doc;
        QString error;
        QVERIFY(!readJob(json, &doc, &error));
        QCOMPARE(error, message);
        QVERIFY(doc == before);  // nothing half-read handed on
    }

    void bedEdges_data()
    {
        QTest::addColumn<double>("x");
        QTest::addColumn<double>("y");
        QTest::addColumn<bool>("inside");
        // clang-format off
        QTest::newRow("bottom-left corner") << 0.0 << 0.0 << true;
        QTest::newRow("top-right corner") << 130.0 << 170.0 << true;
        QTest::newRow("over the right edge") << 130.01 << 0.0 << false;
        QTest::newRow("over the top edge") << 0.0 << 170.01 << false;
        QTest::newRow("left of the origin") << -0.01 << 10.0 << false;
        QTest::newRow("below the origin") << 10.0 << -0.01 << false;
        // clang-format on
    }

    // Items on the very edge are on the bed; the window may open the others with the check off.
    void bedEdges()
    {
        QFETCH(double, x);
        QFETCH(double, y);
        QFETCH(bool, inside);
        const QByteArray json =
            pictureJob(QStringLiteral(R"("x":%1,"y":%2,"width":40,"source":{"kind":"picture","data":"PIC"})")
                           .arg(x)
                           .arg(y)
                           .toUtf8());
        JobDocument doc;
        QString error;
        QCOMPARE(JobFile::read(json, &doc, &error), inside);
        QCOMPARE(error.isEmpty(), inside);
        JobFile::ReadOptions unchecked;
        unchecked.checkBed = false;
        QVERIFY(JobFile::read(json, &doc, &error, unchecked));
        QCOMPARE(doc.items[0].x, x);
        QCOMPARE(JobFile::outsideBed(doc).isEmpty(), inside);
    }

    // The layout of a written job: keys in the documented order, two-space indents, whole numbers
    // without a fraction, the blocks of the layer's own operation, a closing line feed.
    void writtenLayout()
    {
        JobDocument doc;
        JobLayer layer;
        layer.name = QStringLiteral("Cut");
        layer.operation = Operation::Line;
        layer.speed = 300.5;
        doc.layers.push_back(layer);
        JobItem item;
        item.width = 20;
        item.height = 10;
        item.source.kind = SourceKind::Svg;
        item.source.data = "<svg/>";
        doc.items.push_back(item);
        doc.extra = R"({"b":1})";
        const QByteArray expected = R"({
  "format": 1,
  "machine": {
    "name": "Default",
    "dialect": "grbl",
    "max_power": 1000,
    "bed": [
      170,
      200
    ],
    "travel_speed": 3000,
    "acceleration": 500
  },
  "layers": [
    {
      "name": "Cut",
      "color": "#2060c0",
      "enabled": true,
      "operation": "line",
      "speed": 300.5,
      "power": 60,
      "passes": 1,
      "line": {
        "kerf_side": "on",
        "kerf": 0
      }
    }
  ],
  "items": [
    {
      "layer": 0,
      "x": 0,
      "y": 0,
      "width": 20,
      "height": 10,
      "keep_aspect": true,
      "source": {
        "kind": "svg",
        "data": "PHN2Zy8+"
      }
    }
  ],
  "extra": {
    "b": 1
  }
}
)";
        QCOMPARE(JobFile::write(doc), expected);
    }

    void filesOnDisk()
    {
        ScopedWorkDir dir;
        const JobDocument doc = fullDocument();
        QString error;
        QVERIFY2(JobFile::save(QStringLiteral("job.tljob"), doc, &error), qPrintable(error));
        QCOMPARE(TestFiles::read(QStringLiteral("job.tljob")), JobFile::write(doc));
        JobDocument back;
        QVERIFY2(JobFile::load(QStringLiteral("job.tljob"), &back, &error), qPrintable(error));
        QVERIFY(back == doc);

        // Saving replaces the whole file.
        JobDocument small;
        QVERIFY(JobFile::save(QStringLiteral("job.tljob"), small, &error));
        QVERIFY(JobFile::load(dir.file(QStringLiteral("job.tljob")), &back, &error));
        QVERIFY(back == small);

        // Messages start with the file's name; the document stays as it was.
        back = doc;
        QVERIFY(!JobFile::load(QStringLiteral("missing.tljob"), &back, &error));
        QCOMPARE(error, QStringLiteral("missing.tljob: no such file"));
        TestFiles::write(QStringLiteral("latin1.tljob"), "{\"machine\":{\"name\":\"Caf\xe9\"}}");
        QVERIFY(!JobFile::load(QStringLiteral("latin1.tljob"), &back, &error));
        QCOMPARE(error, QStringLiteral("latin1.tljob: not a job file"));
        TestFiles::write(QStringLiteral("bad.tljob"), R"({"layers":[{"power":150}]})");
        QVERIFY(!JobFile::load(dir.file(QStringLiteral("bad.tljob")), &back, &error));
        QCOMPARE(error, QStringLiteral("bad.tljob: layers[0].power: must be at most 100"));
        QVERIFY(!JobFile::load(dir.path(), &back, &error));
        QCOMPARE(error, QDir(dir.path()).dirName() + QStringLiteral(": cannot read the file"));
        QVERIFY(back == doc);

        // A file that cannot be written leaves nothing behind.
        QVERIFY(!JobFile::save(QStringLiteral("no/such/folder/job.tljob"), doc, &error));
        QCOMPARE(error, QStringLiteral("job.tljob: cannot write the file"));
        QVERIFY(!QFileInfo::exists(QStringLiteral("no")));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList({"bad.tljob", "job.tljob", "latin1.tljob"}));
    }
};

TARNWELL_TEST_MAIN(TestJobFile)
#include "tst_jobfile.moc"
