// Tests of the grayscale side of the raster generator: exact G-code of both grayscale exports,
// the correction curve and its preview, the 5 x 5 halftone and the error diffusion.
#include "testsupport.h"

#include "bitmap2gcode.h"

#include <cstring>

namespace {

const QString Header = QStringLiteral("G1 F3600 \nG28 X0 Y0  ;move X/Y to min endstops \nG0 F3600 \nG1 F3600 \n");
const QString Footer = QStringLiteral("M107 \nG28 \n");
// Groups at X = %1, Y = %2 with power %3; rightward and leftward rows spell some lines apart.
const char *const OpenRight = "G0 X%1 Y%2 Z0.000\nM106 S%3 \nG1 F990 \nG1 X%1 Y%2 Z0.000\n ";
const char *const OpenLeft = "G0 X%1 Y%2 Z0.000\nM106 S%3 \nG1 F990 \nG1 X%1 Y%2  Z0.000\n";
const char *const ChangeRight = "G1 X%1 Y%2  Z0.000\nM106 S%3 \nG1 X%1 Y%2  Z0.000\n";
const char *const ChangeLeft = "G1 X%1 Y%2 Z0.000\nM106 S%3 \nG1 X%1 Y%2 Z0.000\n";
const char *const CloseAtEnd = "G1 X%1 Y%2 Z0.000\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z0.000\n ";
const char *const CloseAtWhite = "G1 X%1 Y%2 Z0.000\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z0.000\n";

QString at(const char *group, const char *x, const char *y, const char *s = nullptr)
{
    const QString text = QString::fromLatin1(group).arg(QLatin1String(x), QLatin1String(y));
    return s ? text.arg(QLatin1String(s)) : text;
}

// An 8-bit gray picture from rows of numbers; every byte, padding included, starts white.
QImage grayPicture(const QStringList &rows)
{
    const int width = rows.first().split(' ').size();
    QImage image(width, rows.size(), QImage::Format_Grayscale8);
    std::memset(image.bits(), 0xff, size_t(image.sizeInBytes()));
    for (int y = 0; y < rows.size(); ++y)
        for (int x = 0; x < width; ++x)
            image.scanLine(y)[x] = uchar(rows.at(y).split(' ').at(x).toInt());
    return image;
}

quint32 word(const QImage &image, int x, int y)
{
    return reinterpret_cast<const quint32 *>(image.constScanLine(y))[x];
}

} // namespace

class TestBitmap2GcodeGray : public QObject
{
    Q_OBJECT
private slots:
    void scan_data();
    void scan();
    void preview();
    void halftone_data();
    void halftone();
    void errorDiffusion_data();
    void errorDiffusion();
};

void TestBitmap2GcodeGray::scan_data()
{
    QTest::addColumn<bool>("corrected");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<double>("scale");
    QTest::addColumn<float>("power");
    QTest::addColumn<QString>("body");

    QTest::newRow("all-white row emits nothing") << false << QStringList{"255 255 255 255"} << 1.0 << 255.f << "";
    QTest::newRow("uniform row: open at column 0, close at the last")
        << false << QStringList{"100 100 100 100"} << 1.0 << 255.f
        << at(OpenRight, "10", "180", "155") + at(CloseAtEnd, "13", "180");
    QTest::newRow("gray change inside a burn, no M107")
        << false << QStringList{"100 100 50 255"} << 1.0 << 255.f
        << at(OpenRight, "10", "180", "155") + at(ChangeRight, "12", "180", "205") + at(CloseAtWhite, "13", "180");
    // Leftward rows read the word at the pixel's byte (bytes c + 2, c + 1, c as R, G, B);
    // column 3 reaches into the next row. Grays 230, 153, 100, 100.
    QTest::newRow("leftward row reads 32-bit words")
        << false << QStringList{"255 255 255 255", "100 100 100 100", "255 255 255 255"} << 1.0 << 255.f
        << at(OpenLeft, "13", "179", "25") + at(ChangeLeft, "12", "179", "102")
               + at(ChangeLeft, "11", "179", "155") + at(CloseAtEnd, "10", "179");
    QTest::newRow("W - 1 not a multiple of k: the run is not closed")
        << false << QStringList{"100 100 100 100"} << 0.05 << 255.f << at(OpenRight, "10", "180", "155");
    QTest::newRow("W - 1 a multiple of k: the last column closes")
        << false << QStringList{"100 100 100 100 100"} << 0.05 << 255.f
        << at(OpenRight, "10", "180", "155") + at(CloseAtEnd, "10.2", "180");
    // k = 2: rows 0 and 4 go right, row 2 left (its column 0 reads 0, 255, 255: gray 215).
    QTest::newRow("sampled rows alternate right, left, right")
        << false << QStringList{"0 255 255 255 255", "0 0 0 0 0", "0 255 255 255 255", "0 0 0 0 0", "0 255 255 255 255"}
        << 0.05 << 255.f
        << at(OpenRight, "10", "180", "255") + at(CloseAtWhite, "10.1", "180") + at(CloseAtEnd, "10", "179.9")
               + at(OpenRight, "10", "179.8", "255") + at(CloseAtWhite, "10.1", "179.8");
    QTest::newRow("the burn's gray again after a white gap opens nothing")
        << false << QStringList{"100 255 100 100 255"} << 1.0 << 255.f
        << at(OpenRight, "10", "180", "155") + at(CloseAtWhite, "11", "180");
    QTest::newRow("one-column picture closes without opening")
        << false << QStringList{"0"} << 1.0 << 255.f << at(CloseAtEnd, "10", "180");
    QTest::newRow("linear power with six significant digits")
        << false << QStringList{"128 255"} << 1.0 << 100.f << at(OpenRight, "10", "180", "49.8039") + at(CloseAtWhite, "11", "180");

    // The correction curve, printed with three decimals.
    const struct { const char *name; int gray; float power; const char *burn; } curve[] = {
        {"full black at full power stays below 255", 0, 255, "220.113"},
        {"the top of the curve, s = 241", 14, 255, "221.757"},
        {"nearly white, middle piece", 254, 255, "19.348"},
        {"upper piece", 200, 255, "62.359"},
        {"no power still burns", 0, 0, "17.699"},
        {"beyond the slider range, lowest piece", 0, 600, "2.237"},
    };
    for (const auto &c : curve)
        QTest::newRow(c.name) << true << QStringList{QStringLiteral("%1 255").arg(c.gray)} << 1.0 << c.power
                              << at(OpenRight, "10", "180", c.burn) + at(CloseAtWhite, "11", "180");
    QTest::newRow("white never reaches the curve") << true << QStringList{"255 255"} << 1.0 << 255.f << "";
}

void TestBitmap2GcodeGray::scan()
{
    QFETCH(bool, corrected);
    QFETCH(QStringList, rows);
    QFETCH(double, scale);
    QFETCH(float, power);
    QFETCH(QString, body);
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    generator.SetFeedSpeed(990);
    generator.SetTravelSpeed(11880);
    generator.SetPower(power);
    generator.offset = QPointF(10, 20);
    const QString file = dir.file("out.gcode");
    if (corrected)
        generator.ExportGrayPixEX(grayPicture(rows), file, scale);
    else
        generator.ExportGrayPix(grayPicture(rows), file, scale);

    QFile in(file);
    QVERIFY(in.open(QIODevice::ReadOnly));
    const QString text = QString::fromLatin1(in.readAll());
    QVERIFY(text.startsWith(Header));
    QVERIFY(text.endsWith(Footer));
    const int start = text.indexOf(QLatin1String("M0 \n")) + 4;
    QCOMPARE(text.mid(start, text.size() - start - Footer.size()), body);
    QCOMPARE(QFile::exists(dir.file("Grayimage.jpg")), corrected);
}

void TestBitmap2GcodeGray::preview()
{
    ScopedWorkDir dir;
    QImage image(8, 8, QImage::Format_Grayscale8);
    std::memset(image.bits(), 0, size_t(image.sizeInBytes()));
    Bitmap2Gcode generator;
    generator.SetPower(255);
    generator.ExportGrayPixEX(image, dir.file("out.gcode"), 1.0);
    const QImage preview(dir.file("Grayimage.jpg"));
    QCOMPARE(preview.size(), QSize(8, 8));
    // Full black burns at 220.113, shown as trunc(255 - 220.113) = 34; JPEG may drift a little.
    const int shown = qGray(preview.pixel(3, 2));
    QVERIFY2(qAbs(shown - 34) <= 2, qPrintable(QString::number(shown)));
}

void TestBitmap2GcodeGray::halftone_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<uint>("fill");
    QTest::addColumn<int>("corner");   // gray of pixel (0, 0), -1 for the fill
    QTest::addColumn<QStringList>("expected");   // 'X' black, '.' white, 'o' as it was

    const QStringList same = {"ooooo", "ooooo", "ooooo", "ooooo", "ooooo"};
    const QStringList white = {".....", ".....", ".....", ".....", "....."};
    const QStringList a = {".....", ".....", "..X..", ".....", "....."};
    const QStringList b = {".....", "..X..", ".XXX.", "..X..", "....."};
    const QStringList c = {"..X..", ".XXX.", "XXXXX", ".XXX.", "..X.."};
    const QStringList d = {".XXX.", "XXXXX", "XXXXX", "XXXXX", ".XXX."};
    const auto gray = [](int g) { return uint(qRgb(g, g, g)); };
    const QSize cell(5, 5);

    QTest::newRow("4 x 4 has no whole cell") << QSize(4, 4) << gray(0) << -1 << QStringList{"oooo", "oooo", "oooo", "oooo"};
    QTest::newRow("mean 250 is left as it is") << cell << gray(250) << -1 << same;
    QTest::newRow("mean 251 turns white") << cell << gray(251) << -1 << white;
    QTest::newRow("mean 255 is left as it is") << cell << gray(255) << -1 << same;
    QTest::newRow("mean 6274 / 25 truncates to 250") << cell << gray(251) << 250 << same;
    QTest::newRow("mean 249: A") << cell << gray(249) << -1 << a;
    QTest::newRow("mean 189: B") << cell << gray(189) << -1 << b;
    QTest::newRow("mean 129: C") << cell << gray(129) << -1 << c;
    QTest::newRow("mean 69: D") << cell << gray(69) << -1 << d;
    QTest::newRow("mean 10: D") << cell << gray(10) << -1 << d;
    QTest::newRow("mean 9: black") << cell << gray(9) << -1 << QStringList{"XXXXX", "XXXXX", "XXXXX", "XXXXX", "XXXXX"};
    QTest::newRow("red is gray 87: C") << cell << uint(qRgb(255, 0, 0)) << -1 << c;
    QTest::newRow("7 x 6: one cell, the rest untouched")
        << QSize(7, 6) << gray(100) << -1 << QStringList{"..X..oo", ".XXX.oo", "XXXXXoo", ".XXX.oo", "..X..oo", "ooooooo"};
}

void TestBitmap2GcodeGray::halftone()
{
    QFETCH(QSize, size);
    QFETCH(uint, fill);
    QFETCH(int, corner);
    QFETCH(QStringList, expected);
    ScopedWorkDir dir;
    QImage image(size, QImage::Format_ARGB32);
    image.fill(fill);
    if (corner >= 0)
        image.setPixel(0, 0, qRgb(corner, corner, corner));

    Bitmap2Gcode generator;
    const QImage result = generator.Image2Halftone(image);
    QCOMPARE(result.size(), size);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const QChar mark = expected.at(y).at(x);
            QCOMPARE(word(result, x, y), mark == 'X' ? 0xff000000u : mark == '.' ? 0xffffffffu : word(image, x, y));
        }
    }
    QCOMPARE(QImage(dir.file("hi.png")).convertToFormat(QImage::Format_ARGB32), result);
}

void TestBitmap2GcodeGray::errorDiffusion_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QVector<uint>>("expected");   // empty: returned as it came

    QImage indexed(5, 3, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(0, 0, 0), qRgb(200, 200, 200)});
    indexed.fill(1);
    QTest::newRow("indexed picture unchanged") << indexed << QVector<uint>();
    QTest::newRow("null picture unchanged") << QImage() << QVector<uint>();

    // Gray 100 but (2, 0), gray 202: it turns white and leaves -6, the word 0xfffafafa, whose
    // borrows run from blue into green and red. (c - 1, r + 1) at c = 0 is the end of row 0.
    QImage light(5, 3, QImage::Format_ARGB32);
    light.fill(qRgb(100, 100, 100));
    light.setPixel(2, 0, 0xff80ffc8u);
    QTest::newRow("light pixel, error borrows across bytes")
        << light << QVector<uint>{0xffffffff, 0xffffffff, 0xffffffff, 0xfe5f5f5e, 0xfe5f5f5e,
                                  0xfdffffff, 0xfdfafaf9, 0xfe5f5f5e, 0xff5f5f5e, 0xff646464,
                                  0xfeffffff, 0xfeffffff, 0xff5f5f5e, 0xff646464, 0xff646464};
    // Gray 60 turns black and leaves 7 (0xff070707); on the white margin it carries over.
    QImage dark(5, 3, QImage::Format_ARGB32);
    dark.fill(qRgb(60, 60, 60));
    QTest::newRow("dark pixel, error carries across bytes")
        << dark << QVector<uint>{0xffffffff, 0xffffffff, 0xff000000, 0xfd434343, 0xfd434343,
                                 0xfdffffff, 0xfd070706, 0xfd434343, 0xfe434343, 0xff3c3c3c,
                                 0xfeffffff, 0xfeffffff, 0xfe434343, 0xff3c3c3c, 0xff3c3c3c};
    // Too few rows to diffuse: a white margin of two columns, gray 108 elsewhere.
    QImage small(3, 2, QImage::Format_ARGB32);
    small.fill(qRgb(10, 200, 30));
    QTest::newRow("two rows: margin and gray only")
        << small << QVector<uint>{0xffffffff, 0xffffffff, 0xff6c6c6c, 0xffffffff, 0xffffffff, 0xff6c6c6c};
}

void TestBitmap2GcodeGray::errorDiffusion()
{
    QFETCH(QImage, image);
    QFETCH(QVector<uint>, expected);
    Bitmap2Gcode generator;
    const QImage result = generator.GrayScalePicture(image);
    QCOMPARE(result.format(), image.format());
    if (expected.isEmpty()) {
        QCOMPARE(result, image);
        return;
    }
    QVector<uint> words;
    for (int y = 0; y < result.height(); ++y)
        for (int x = 0; x < result.width(); ++x)
            words << word(result, x, y);
    QCOMPARE(words, expected);
}

TARNWELL_TEST_MAIN(TestBitmap2GcodeGray)
#include "tst_bitmap2gcodegray.moc"
