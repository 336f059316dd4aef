// Tests of the grayscale side of the raster generator: exact G-code of the two grayscale
// exports, the correction curve, the preview picture, the halftone and the error diffusion.
#include "testsupport.h"

#include "bitmap2gcode.h"

#include <cstring>

namespace {

const QString GrayHeader = QStringLiteral("G1 F3600 \nG28 X0 Y0  ;move X/Y to min endstops \n"
                                          "G0 F3600 \nG1 F3600 \n");
const QString Footer = QStringLiteral("M107 \nG28 \n");
constexpr quint32 Black = 0xff000000u;
constexpr quint32 White = 0xffffffffu;

// An 8-bit gray picture from rows of numbers; every byte, padding included, starts white.
QImage grayPicture(const QStringList &rows)
{
    const int width = rows.isEmpty() ? 0 : rows.first().split(' ').size();
    QImage image(width, rows.size(), QImage::Format_Grayscale8);
    std::memset(image.bits(), 0xff, size_t(image.sizeInBytes()));
    for (int y = 0; y < rows.size(); ++y) {
        const QStringList values = rows.at(y).split(' ');
        for (int x = 0; x < width; ++x)
            image.scanLine(y)[x] = uchar(values.at(x).toInt());
    }
    return image;
}

QString openRight(const QString &x, const QString &y, const QString &s)
{
    return QStringLiteral("G0 X%1 Y%2 Z0.000\nM106 S%3 \nG1 F990 \nG1 X%1 Y%2 Z0.000\n ").arg(x, y, s);
}
QString openLeft(const QString &x, const QString &y, const QString &s)
{
    return QStringLiteral("G0 X%1 Y%2 Z0.000\nM106 S%3 \nG1 F990 \nG1 X%1 Y%2  Z0.000\n").arg(x, y, s);
}
QString changeRight(const QString &x, const QString &y, const QString &s)
{
    return QStringLiteral("G1 X%1 Y%2  Z0.000\nM106 S%3 \nG1 X%1 Y%2  Z0.000\n").arg(x, y, s);
}
QString changeLeft(const QString &x, const QString &y, const QString &s)
{
    return QStringLiteral("G1 X%1 Y%2 Z0.000\nM106 S%3 \nG1 X%1 Y%2 Z0.000\n").arg(x, y, s);
}
QString closeAtEnd(const QString &x, const QString &y)
{
    return QStringLiteral("G1 X%1 Y%2 Z0.000\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z0.000\n ").arg(x, y);
}
QString closeAtWhite(const QString &x, const QString &y)
{
    return QStringLiteral("G1 X%1 Y%2 Z0.000\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z0.000\n").arg(x, y);
}

QString readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromLatin1(file.readAll());
}

// Runs one grayscale export at offset (10, 20) and returns what follows "M0 \n" up to the
// footer, after checking the header and the footer.
QString exportBody(bool corrected, const QImage &image, double scale, float power)
{
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    generator.SetFeedSpeed(990);
    generator.SetTravelSpeed(11880);
    generator.SetPower(power);
    generator.offset = QPointF(10, 20);
    if (corrected)
        generator.ExportGrayPixEX(image, dir.file("out.gcode"), scale);
    else
        generator.ExportGrayPix(image, dir.file("out.gcode"), scale);
    const QString text = readAll(dir.file("out.gcode"));
    const int start = text.indexOf(QLatin1String("M0 \n")) + 4;
    if (!text.startsWith(GrayHeader) || !text.endsWith(Footer) || start < 4)
        return QStringLiteral("<malformed>") + text;
    return text.mid(start, text.size() - start - Footer.size());
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
    void linearScan_data();
    void linearScan();
    void correctedPower_data();
    void correctedPower();
    void previewPicture_data();
    void previewPicture();
    void halftone_data();
    void halftone();
    void errorDiffusion_data();
    void errorDiffusion();
};

void TestBitmap2GcodeGray::linearScan_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<double>("scale");
    QTest::addColumn<float>("power");
    QTest::addColumn<QString>("body");

    QTest::newRow("all-white row emits nothing") << QStringList{"255 255 255 255"} << 1.0 << 255.0f
                                                 << QString();
    QTest::newRow("uniform row: open at column 0, close at the last")
        << QStringList{"100 100 100 100"} << 1.0 << 255.0f
        << openRight("10", "180", "155") + closeAtEnd("13", "180");
    QTest::newRow("gray change inside a burn, no M107")
        << QStringList{"100 100 50 255"} << 1.0 << 255.0f
        << openRight("10", "180", "155") + changeRight("12", "180", "205") + closeAtWhite("13", "180");
    // Leftward rows take the word at the pixel's byte: bytes c + 2, c + 1, c as R, G, B, and
    // column 3 reaches into the next row (255 255). Grays 230, 153, 100, 100.
    QTest::newRow("leftward row reads 32-bit words")
        << QStringList{"255 255 255 255", "100 100 100 100", "255 255 255 255"} << 1.0 << 255.0f
        << openLeft("13", "179", "25") + changeLeft("12", "179", "102")
               + changeLeft("11", "179", "155") + closeAtEnd("10", "179");
    QTest::newRow("W - 1 not a multiple of k: the run is not closed")
        << QStringList{"100 100 100 100"} << 0.05 << 255.0f << openRight("10", "180", "155");
    QTest::newRow("W - 1 a multiple of k: the last column closes")
        << QStringList{"100 100 100 100 100"} << 0.05 << 255.0f
        << openRight("10", "180", "155") + closeAtEnd("10.2", "180");
    // k = 2: rows 0 and 4 go right, row 2 left (its column 0 reads 0, 255, 255: gray 215).
    QTest::newRow("sampled rows alternate right, left, right")
        << QStringList{"0 255 255 255 255", "0 0 0 0 0", "0 255 255 255 255", "0 0 0 0 0",
                       "0 255 255 255 255"}
        << 0.05 << 255.0f
        << openRight("10", "180", "255") + closeAtWhite("10.1", "180") + closeAtEnd("10", "179.9")
               + openRight("10", "179.8", "255") + closeAtWhite("10.1", "179.8");
    QTest::newRow("the burn's gray again after a white gap opens nothing")
        << QStringList{"100 255 100 100 255"} << 1.0 << 255.0f
        << openRight("10", "180", "155") + closeAtWhite("11", "180");
    QTest::newRow("one-column picture closes without opening")
        << QStringList{"0"} << 1.0 << 255.0f << closeAtEnd("10", "180");
    QTest::newRow("power printed with six significant digits")
        << QStringList{"128 255 255 255"} << 1.0 << 100.0f
        << openRight("10", "180", "49.8039") + closeAtWhite("11", "180");
}

void TestBitmap2GcodeGray::linearScan()
{
    QFETCH(QStringList, rows);
    QFETCH(double, scale);
    QFETCH(float, power);
    QFETCH(QString, body);
    QCOMPARE(exportBody(false, grayPicture(rows), scale, power), body);
}

void TestBitmap2GcodeGray::correctedPower_data()
{
    QTest::addColumn<int>("gray");
    QTest::addColumn<float>("power");
    QTest::addColumn<QString>("burn");   // empty: nothing is burnt

    QTest::newRow("full black at full power stays below 255") << 0 << 255.0f << "220.113";
    QTest::newRow("the top of the curve, s = 241") << 14 << 255.0f << "221.757";
    QTest::newRow("nearly white, middle piece") << 254 << 255.0f << "19.348";
    QTest::newRow("upper piece") << 200 << 255.0f << "62.359";
    QTest::newRow("no power still burns") << 0 << 0.0f << "17.699";
    QTest::newRow("beyond the slider range, lowest piece") << 0 << 600.0f << "2.237";
    QTest::newRow("white never reaches the curve") << 255 << 255.0f << QString();
}

void TestBitmap2GcodeGray::correctedPower()
{
    QFETCH(int, gray);
    QFETCH(float, power);
    QFETCH(QString, burn);
    const QString expected =
        burn.isEmpty() ? QString() : openRight("10", "180", burn) + closeAtWhite("11", "180");
    QCOMPARE(exportBody(true, grayPicture({QStringLiteral("%1 255 255 255").arg(gray)}), 1.0, power),
             expected);
}

void TestBitmap2GcodeGray::previewPicture_data()
{
    QTest::addColumn<bool>("corrected");
    QTest::newRow("corrected export writes the preview") << true;
    QTest::newRow("linear export writes none") << false;
}

void TestBitmap2GcodeGray::previewPicture()
{
    QFETCH(bool, corrected);
    ScopedWorkDir dir;
    QImage image(8, 8, QImage::Format_Grayscale8);
    std::memset(image.bits(), 0, size_t(image.sizeInBytes()));
    Bitmap2Gcode generator;
    generator.SetPower(255);
    if (corrected)
        generator.ExportGrayPixEX(image, dir.file("out.gcode"), 1.0);
    else
        generator.ExportGrayPix(image, dir.file("out.gcode"), 1.0);

    QCOMPARE(QFile::exists(dir.file("Grayimage.jpg")), corrected);
    if (!corrected)
        return;
    const QImage preview(dir.file("Grayimage.jpg"));
    QCOMPARE(preview.size(), QSize(8, 8));
    // Full black burns at 220.113, shown as 255 - 220.113, truncated: 34 (JPEG may drift a bit).
    QVERIFY2(qAbs(qGray(preview.pixel(3, 2)) - 34) <= 2, qPrintable(QString::number(qGray(preview.pixel(3, 2)))));
}

void TestBitmap2GcodeGray::halftone_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<uint>("fill");
    QTest::addColumn<int>("corner");   // gray of pixel (0, 0), or -1 for the fill
    // 'X' black, '.' white, 'o' as it was.
    QTest::addColumn<QStringList>("expected");

    const QStringList same5 = {"ooooo", "ooooo", "ooooo", "ooooo", "ooooo"};
    const QStringList white5 = {".....", ".....", ".....", ".....", "....."};
    const QStringList black5 = {"XXXXX", "XXXXX", "XXXXX", "XXXXX", "XXXXX"};
    const QStringList a = {".....", ".....", "..X..", ".....", "....."};
    const QStringList b = {".....", "..X..", ".XXX.", "..X..", "....."};
    const QStringList c = {"..X..", ".XXX.", "XXXXX", ".XXX.", "..X.."};
    const QStringList d = {".XXX.", "XXXXX", "XXXXX", "XXXXX", ".XXX."};
    const auto gray = [](int g) { return uint(qRgb(g, g, g)); };

    QTest::newRow("4 x 4 has no whole cell") << QSize(4, 4) << gray(0) << -1
                                             << QStringList{"oooo", "oooo", "oooo", "oooo"};
    QTest::newRow("mean 250 is left as it is") << QSize(5, 5) << gray(250) << -1 << same5;
    QTest::newRow("mean 251 turns white") << QSize(5, 5) << gray(251) << -1 << white5;
    QTest::newRow("mean 254 turns white") << QSize(5, 5) << gray(254) << -1 << white5;
    QTest::newRow("mean 255 is left as it is") << QSize(5, 5) << gray(255) << -1 << same5;
    QTest::newRow("mean 6274 / 25 truncates to 250") << QSize(5, 5) << gray(251) << 250 << same5;
    QTest::newRow("mean 249: A") << QSize(5, 5) << gray(249) << -1 << a;
    QTest::newRow("mean 190: A") << QSize(5, 5) << gray(190) << -1 << a;
    QTest::newRow("mean 189: B") << QSize(5, 5) << gray(189) << -1 << b;
    QTest::newRow("mean 130: B") << QSize(5, 5) << gray(130) << -1 << b;
    QTest::newRow("mean 129: C") << QSize(5, 5) << gray(129) << -1 << c;
    QTest::newRow("mean 70: C") << QSize(5, 5) << gray(70) << -1 << c;
    QTest::newRow("mean 69: D") << QSize(5, 5) << gray(69) << -1 << d;
    QTest::newRow("mean 10: D") << QSize(5, 5) << gray(10) << -1 << d;
    QTest::newRow("mean 9: black") << QSize(5, 5) << gray(9) << -1 << black5;
    QTest::newRow("red is gray 87: C") << QSize(5, 5) << uint(qRgb(255, 0, 0)) << -1 << c;
    QTest::newRow("7 x 6: one cell, the rest untouched")
        << QSize(7, 6) << gray(100) << -1
        << QStringList{"..X..oo", ".XXX.oo", "XXXXXoo", ".XXX.oo", "..X..oo", "ooooooo"};
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
            const quint32 want = mark == QLatin1Char('X') ? Black
                                 : mark == QLatin1Char('.') ? White
                                                            : word(image, x, y);
            QCOMPARE(word(result, x, y), want);
        }
    }
    const QImage saved(dir.file("hi.png"));
    QCOMPARE(saved.size(), size);
    QCOMPARE(saved.pixel(size.width() - 1, size.height() - 1),
             result.pixel(size.width() - 1, size.height() - 1));
}

void TestBitmap2GcodeGray::errorDiffusion_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QVector<uint>>("expected");   // empty: returned as it came

    QImage indexed(5, 3, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(0, 0, 0), qRgb(200, 200, 200)});
    indexed.fill(1);
    QImage mono(5, 3, QImage::Format_Mono);
    mono.fill(1);
    QTest::newRow("indexed picture unchanged") << indexed << QVector<uint>();
    QTest::newRow("1-bit picture unchanged") << mono << QVector<uint>();
    QTest::newRow("null picture unchanged") << QImage() << QVector<uint>();

    // Gray 100 everywhere but (2, 0), which is gray 202: it turns white and leaves -6,
    // the word 0xfffafafa, whose borrows run from blue into green and red.
    QImage light(5, 3, QImage::Format_ARGB32);
    light.fill(qRgb(100, 100, 100));
    light.setPixel(2, 0, 0xff80ffc8u);
    QTest::newRow("light pixel, error borrows across bytes")
        << light
        << QVector<uint>{0xffffffff, 0xffffffff, 0xffffffff, 0xfe5f5f5e, 0xfe5f5f5e,
                         0xfdffffff, 0xfdfafaf9, 0xfe5f5f5e, 0xff5f5f5e, 0xff646464,
                         0xfeffffff, 0xfeffffff, 0xff5f5f5e, 0xff646464, 0xff646464};
    // Gray 60 turns black and leaves 7 (0xff070707); on the white margin it carries over.
    QImage dark(5, 3, QImage::Format_ARGB32);
    dark.fill(qRgb(60, 60, 60));
    QTest::newRow("dark pixel, error carries across bytes")
        << dark
        << QVector<uint>{0xffffffff, 0xffffffff, 0xff000000, 0xfd434343, 0xfd434343,
                         0xfdffffff, 0xfd070706, 0xfd434343, 0xfe434343, 0xff3c3c3c,
                         0xfeffffff, 0xfeffffff, 0xfe434343, 0xff3c3c3c, 0xff3c3c3c};
    // Too few rows to diffuse: a white margin of two columns, gray (108) elsewhere.
    QImage small(3, 2, QImage::Format_ARGB32);
    small.fill(qRgb(10, 200, 30));
    QTest::newRow("two rows: margin and gray only")
        << small
        << QVector<uint>{0xffffffff, 0xffffffff, 0xff6c6c6c, 0xffffffff, 0xffffffff, 0xff6c6c6c};
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
