// Checks that the fast output of the raster exports is byte for byte what formatting every
// line through QString::arg gives, on random pictures, scales, offsets and powers.
#include "testsupport.h"

#include "bitmap2gcode.h"
#include "rastergcodewriter.h"

#include <QRandomGenerator>

namespace {

enum Export { BlackWhite, GrayLinear, GrayCorrected };

QByteArray readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

// Runs of a few values, so that bursts, power changes and long white stretches all occur.
QImage randomPicture(QRandomGenerator &random, int width, int height, QImage::Format format)
{
    QImage image(width, height, format);
    const int palette[] = {255, 255, 255, 0, 17, 100, 127, 128, 200, 254};
    int value = 255;
    for (int y = 0; y < height; ++y) {
        uchar *line = image.scanLine(y);
        for (int x = 0; x < image.bytesPerLine(); ++x) {
            if (random.bounded(4) == 0)
                value = random.bounded(8) == 0 ? int(random.bounded(256)) : palette[random.bounded(10)];
            line[x] = uchar(value);
        }
    }
    return image;
}

QByteArray runExport(Export kind, bool plain, const QImage &image, double scale, QPointF offset,
                     float power, const QString &file)
{
    Bitmap2Gcode generator;
    generator.SetPlainFormatting(plain);
    generator.SetFeedSpeed(990);
    generator.SetTravelSpeed(11880);
    generator.SetPower(power);
    generator.offset = offset;
    if (kind == BlackWhite)
        generator.ExportBlackPix(image, file, scale);
    else if (kind == GrayLinear)
        generator.ExportGrayPix(image, file, scale);
    else
        generator.ExportGrayPixEX(image, file, scale);
    return readAll(file);
}

} // namespace

class TestBitmap2GcodeFastPath : public QObject
{
    Q_OBJECT
private slots:
    void sameBytes_data();
    void sameBytes();
    void zText_data();
    void zText();
};

void TestBitmap2GcodeFastPath::sameBytes_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("format");
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("pictures");
    QTest::addColumn<int>("maxSide");

    QTest::newRow("black/white, small pictures") << int(BlackWhite) << int(QImage::Format_RGB32) << 11u << 40 << 40;
    QTest::newRow("black/white, gray input") << int(BlackWhite) << int(QImage::Format_Grayscale8) << 12u << 20 << 40;
    // Tens of thousands of groups, so the Z text passes through many values.
    QTest::newRow("black/white, large") << int(BlackWhite) << int(QImage::Format_RGB32) << 13u << 2 << 400;
    QTest::newRow("linear gray") << int(GrayLinear) << int(QImage::Format_Grayscale8) << 21u << 40 << 40;
    QTest::newRow("linear gray, 32-bit input") << int(GrayLinear) << int(QImage::Format_RGB32) << 22u << 20 << 40;
    QTest::newRow("corrected gray") << int(GrayCorrected) << int(QImage::Format_Grayscale8) << 31u << 40 << 40;
    QTest::newRow("corrected gray, large") << int(GrayCorrected) << int(QImage::Format_Grayscale8) << 32u << 2 << 400;
}

void TestBitmap2GcodeFastPath::sameBytes()
{
    QFETCH(int, kind);
    QFETCH(int, format);
    QFETCH(quint32, seed);
    QFETCH(int, pictures);
    QFETCH(int, maxSide);
    ScopedWorkDir dir;
    QRandomGenerator random(seed);
    const double scales[] = {1.0, 0.3, 0.1, 0.07, 0.05, 0.0333, 0.02, 0.0137};
    qint64 lines = 0;
    for (int i = 0; i < pictures; ++i) {
        const int width = 1 + int(random.bounded(maxSide));
        const int height = 1 + int(random.bounded(maxSide));
        const QImage image = randomPicture(random, width, height, QImage::Format(format));
        const double scale = scales[random.bounded(8)];
        const QPointF offset(random.bounded(10000) / 97.0, random.bounded(10000) / 89.0);
        const float power = float(random.bounded(25600)) / 100.0f;
        const QByteArray plain = runExport(Export(kind), true, image, scale, offset, power, dir.file("plain.gcode"));
        const QByteArray fast = runExport(Export(kind), false, image, scale, offset, power, dir.file("fast.gcode"));
        lines += plain.count('\n');
        QVERIFY2(fast == plain, qPrintable(QStringLiteral("picture %1: %2 x %3 at scale %4")
                                                .arg(i).arg(width).arg(height).arg(scale)));
    }
    // Header, frame and footer are 19 lines a file; most of what was compared must be scan lines.
    QVERIFY2(lines > 19 * pictures * 3, qPrintable(QString::number(lines)));
}

void TestBitmap2GcodeFastPath::zText_data()
{
    QTest::addColumn<QString>("range");
    QTest::newRow("the counter as the exports grow it") << "sequence";
    // Whole counters give exact halves (1 x 0.0625 = 0.0625): rounded up, as Qt does.
    QTest::newRow("whole counters up to 32768") << "whole";
    QTest::newRow("random counters") << "random";
}

void TestBitmap2GcodeFastPath::zText()
{
    QFETCH(QString, range);
    QRandomGenerator random(7);
    float counter = 0;
    for (int i = 0; i <= 200000; ++i) {
        if (range == QLatin1String("sequence"))
            counter += 0.001;
        else if (range == QLatin1String("whole"))
            counter = float(i % 32769);
        else
            counter = float(random.bounded(32768.0));
        const QByteArray plain = RasterGcodeWriter::zText(counter).toLatin1();
        if (RasterGcodeWriter::quickZText(counter) != plain)
            QFAIL(qPrintable(QStringLiteral("counter %1: %2 instead of %3")
                                 .arg(double(counter), 0, 'g', 9)
                                 .arg(QString::fromLatin1(RasterGcodeWriter::quickZText(counter)),
                                      QString::fromLatin1(plain))));
    }
}

TARNWELL_TEST_MAIN(TestBitmap2GcodeFastPath)
#include "tst_bitmap2gcodefastpath.moc"
