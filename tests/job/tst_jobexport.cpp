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

void TestJobExport::refused_data()
{
    QTest::addColumn<JobDocument>("doc");
    QTest::addColumn<QString>("message");
    const QByteArray picture = pngBytes(QImage(4, 2, QImage::Format_Grayscale8));
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
    // clang-format off
    QTest::newRow("picture on a fill layer") << pictureOnFill << "items[0].source: a picture belongs on an image layer";
    QTest::newRow("qr on a line layer")      << qrOnLine      << "items[1].source: a QR code belongs on an image layer";
    QTest::newRow("no such layer")           << noLayer       << "items[1].layer: no such layer";
    QTest::newRow("undecodable picture")     << notAPicture   << "items[1].source: ";
    // clang-format on
}

void TestJobExport::refused()
{
    QFETCH(JobDocument, doc);
    QFETCH(QString, message);
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
    result.layers = {photo, cut};
    result.itemCounts = {3, 1};
    const QStringList expected = {
        QStringLiteral("Estimated time: 1h 02min 03s"),
        QStringLiteral("layer 1 Photo %1: 3 items, burn 1234.6 mm, 3min 05s"),
        QStringLiteral("layer 3 Cut: 1 items, burn 0.0 mm, 0s"),
    };
    QCOMPARE(JobExport::summary(result), expected);
}

TARNWELL_TEST_MAIN(TestJobExport)
#include "tst_jobexport.moc"
