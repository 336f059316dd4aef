// Tests of the raster export: exact G-code of small black/white and gray pictures, the frame,
// the correction curve and its preview, the travel-time estimate, the message when the output
// cannot be created, bad input, the fast output against plain QString::arg formatting,
// the 5 x 5 halftone and the error diffusion.
#include "testsupport.h"

#include "appsettings.h"
#include "bitmap2gcode.h"
#include "rastergcodewriter.h"

#include <QMessageBox>
#include <QRandomGenerator>
#include <QTimer>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

enum Export { BlackWhite, GrayLinear, GrayCorrected };
const QString Footer = QStringLiteral("M107 \nG28 \n");
// Group texts at X = %1, Y = %2 and Z (black/white) or power (gray) %3; feed 990, travel 11880.
// A doubled blank before Z marks the lines the exports spell apart.
const char *const GroupLetters = "OCERLrlew";
const char *const GroupTexts[] = {
    "G0 X%1 Y%2 Z%3\nM106 S232 \nG1 F990 \nG1 X%1 Y%2  Z%3\n",       // O: black/white open
    "G1 X%1 Y%2 Z%3\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z%3\n",           // C: close
    "G1 X%1 Y%2 Z%3\nM107 \nG0 F11880 \nG0 X%1 Y%2  Z%3\n",          // E: close at the right end
    "G0 X%1 Y%2 Z0.000\nM106 S%3 \nG1 F990 \nG1 X%1 Y%2 Z0.000\n ",  // R: gray open, rightward
    "G0 X%1 Y%2 Z0.000\nM106 S%3 \nG1 F990 \nG1 X%1 Y%2  Z0.000\n",  // L: gray open, leftward
    "G1 X%1 Y%2  Z0.000\nM106 S%3 \nG1 X%1 Y%2  Z0.000\n",           // r: power change, rightward
    "G1 X%1 Y%2 Z0.000\nM106 S%3 \nG1 X%1 Y%2 Z0.000\n",             // l: power change, leftward
    "G1 X%1 Y%2 Z0.000\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z0.000\n ",    // e: gray close at the row end
    "G1 X%1 Y%2 Z0.000\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z0.000\n",     // w: gray close at white
};

// "O12,180 C13,180,0.001": groups by letter, X, Y and the third value (Z 0.000 if left out).
QString groups(const QString &list)
{
    QString text;
    for (const QString &group : list.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QStringList v = group.mid(1).split(QLatin1Char(','));
        const QString t =
            QString::fromLatin1(GroupTexts[QString::fromLatin1(GroupLetters).indexOf(group[0])]).arg(v[0], v[1]);
        text += t.contains(QLatin1String("%3")) ? t.arg(v.value(2, QStringLiteral("0.000"))) : t;
    }
    return text;
}

// The weak-beam outline, traced twice before "M0".
QString frame(const char *left, const char *top, const char *right, const char *bottom)
{
    const QString once = QStringLiteral("G0 X%1 Y%2 \nM106 S5 \nG1 X%3 Y%2 \nG1 X%3 Y%4 \nG1 X%1 Y%4 \nG1 X%1 Y%2 \n")
                             .arg(QLatin1String(left), QLatin1String(top), QLatin1String(right), QLatin1String(bottom));
    return once + once;
}

// Rows of space-separated grays give an 8-bit picture whose bytes, padding included, start
// white; otherwise 'X' black, '.' white, 'a' gray 127, 'b' gray 128, 't' transparent black.
QImage picture(const QStringList &rows)
{
    if (rows.isEmpty())
        return QImage();
    if (rows.first().contains(QLatin1Char(' '))) {
        QImage image(rows.first().split(' ').size(), rows.size(), QImage::Format_Grayscale8);
        std::memset(image.bits(), 0xff, size_t(image.sizeInBytes()));
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x)
                image.scanLine(y)[x] = uchar(rows.at(y).split(' ').at(x).toInt());
        return image;
    }
    const QString marks = QStringLiteral("X.abt");
    const QRgb colours[] = {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(127, 127, 127), qRgb(128, 128, 128),
                            qRgba(0, 0, 0, 0)};
    QImage image(rows.first().size(), rows.size(), QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, colours[marks.indexOf(rows.at(y).at(x))]);
    return image;
}

// All black, padding bytes included, since the leftward reads see them.
QImage black(int width, int height, QImage::Format format)
{
    QImage image(width, height, format);
    std::memset(image.bits(), 0, size_t(image.sizeInBytes()));
    if (image.depth() == 32)
        image.fill(Qt::black);
    return image;
}

void setUp(Bitmap2Gcode &generator, float power = 232, QPointF offset = QPointF(10, 20))
{
    generator.SetFeedSpeed(990);
    generator.SetTravelSpeed(11880);
    generator.SetPower(power);
    generator.offset = offset;
}

// Runs one export and returns the file it wrote (empty if none).
QByteArray run(Bitmap2Gcode &generator, int kind, const QImage &image, double scale, const QString &file = "out.gcode")
{
    if (kind == BlackWhite)
        generator.ExportBlackPix(image, file, scale);
    else if (kind == GrayLinear)
        generator.ExportGrayPix(image, file, scale);
    else
        generator.ExportGrayPixEX(image, file, scale);
    QFile in(file);
    return in.open(QIODevice::ReadOnly) ? in.readAll() : QByteArray();
}

quint32 word(const QImage &image, int x, int y) { return reinterpret_cast<const quint32 *>(image.constScanLine(y))[x]; }

}  // namespace

class TestBitmap2Gcode : public QObject
{
    Q_OBJECT
private slots:
    void scan_data();
    void scan();
    void preview();
    void estimateIsTakenOnce();
    void outputCannotBeCreated_data();
    void outputCannotBeCreated();
    void badInput_data();
    void badInput();
    void fastPathSameBytes_data();
    void fastPathSameBytes();
    void zText();
    void pictures_data();
    void pictures();
};

void TestBitmap2Gcode::scan_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<double>("scale");
    QTest::addColumn<float>("power");
    QTest::addColumn<QPointF>("offset");
    QTest::addColumn<QString>("frame");  // empty: not checked
    QTest::addColumn<QString>("body");   // between "M0 \n" and the footer
    const auto row = [](const char *name, int kind, const QStringList &rows, double scale, const QString &body,
                        float power = -1, const QString &frame = QString(), QPointF offset = QPointF(10, 20)) {
        power = power >= 0 ? power : kind == BlackWhite ? 232 : 255;
        QTest::newRow(name) << kind << rows << scale << power << offset << frame << body;
    };

    row("all-white row emits nothing", BlackWhite, {"....."}, 1.0, "");
    row("one black pixel", BlackWhite, {"..X.."}, 1.0, groups("O12,180 C13,180"));
    row("run reaching the end going right", BlackWhite, {"...XX"}, 1.0, groups("O13,180 E14,180"));
    row("run reaching the end going left", BlackWhite, {".....", "XX..."}, 1.0, groups("O11,179 C10,179"));
    row("burn opened at the last visited pixel stays on", BlackWhite, {"....X", "X...."}, 1.0,
        groups("O14,180 O10,179"));
    row("127 and transparent are black, 128 white", BlackWhite, {"ab.t."}, 1.0,
        groups("O10,180 C11,180 O13,180 C14,180"));
    row("Z rises after eight groups", BlackWhite, {"X.X.X.X.X."}, 1.0,
        groups("O10,180 C11,180 O12,180 C13,180 O14,180 C15,180 O16,180 C17,180 O18,180,0.001 C19,180,0.001"));
    // Every fifth row; row 5 is odd, so it runs leftward.
    row("scale 0.02 takes rows 0, 5, 10 right, left, right", BlackWhite,
        {"X..", "XXX", "XXX", "XXX", "XXX", "X..", "XXX", "XXX", "XXX", "XXX", "X.."}, 0.02,
        groups("O10,180 C10.02,180 O10,179.9 O10,179.8 C10.02,179.8"));
    // Every second row, all of them even and so all rightward.
    row("scale 0.05 scans rows 0 and 2 both rightward", BlackWhite, {"..X", "XXX", "XX."}, 0.05,
        groups("O10.1,180 O10,179.9 C10.1,179.9"));
    row("frame of a 1 x 1 picture", BlackWhite, {"X"}, 1.0, groups("O10,180"), -1, frame("10", "180", "11", "179"));
    row("empty picture", BlackWhite, {}, 1.0, "", -1, frame("10", "180", "10", "180"));
    row("six significant digits, trailing zeros dropped", BlackWhite, {"X."}, 0.3333333,
        "G0 X12.3457 Y199.5 Z0.000\nM106 S232.5 \nG1 F990 \nG1 X12.3457 Y199.5  Z0.000\n" + groups("C12.679,199.5"),
        232.5f, frame("12.3457", "199.5", "13.0123", "199.167"), QPointF(12.3456789, 0.5));

    row("gray: all-white row emits nothing", GrayLinear, {"255 255 255 255"}, 1.0, "");
    row("gray: uniform row, closed at its last pixel", GrayLinear, {"100 100 100 100"}, 1.0,
        groups("R10,180,155 e13,180"));
    row("gray: change in a burn, no M107", GrayLinear, {"100 100 50 255"}, 1.0,
        groups("R10,180,155 r12,180,205 w13,180"));
    // Leftward rows read the word at the pixel's byte (bytes c + 2, c + 1, c as R, G, B);
    // column 3 reaches into the next row. Grays 230, 153, 100, 100.
    row("gray: leftward row reads 32-bit words", GrayLinear, {"255 255 255 255", "100 100 100 100", "255 255 255 255"},
        1.0, groups("L13,179,25 l12,179,102 l11,179,155 e10,179"));
    row("gray: W - 1 not a multiple of k, open", GrayLinear, {"100 100 100 100"}, 0.05, groups("R10,180,155"));
    row("gray: W - 1 a multiple of k, closed", GrayLinear, {"100 100 100 100 100"}, 0.05,
        groups("R10,180,155 e10.2,180"));
    // k = 2: rows 0 and 4 go right, row 2 left (its column 0 reads 0, 255, 255: gray 215).
    row("gray: sampled rows alternate right, left, right", GrayLinear,
        {"0 255 255 255 255", "0 0 0 0 0", "0 255 255 255 255", "0 0 0 0 0", "0 255 255 255 255"}, 0.05,
        groups("R10,180,255 w10.1,180 e10,179.9 R10,179.8,255 w10.1,179.8"));
    row("gray: same gray after white, no open", GrayLinear, {"100 255 100 100 255"}, 1.0,
        groups("R10,180,155 w11,180"));
    row("gray: linear power, 6 digits", GrayLinear, {"128 255"}, 1.0, groups("R10,180,49.8039 w11,180"), 100);

    // The correction curve, printed with three decimals.
    const struct
    {
        const char *name;
        int gray;
        float power;
        const char *burn;
    } curve[] = {
        {"curve: full black at full power stays below 255", 0, 255, "220.113"},
        {"curve: the top, s = 241", 14, 255, "221.757"},
        {"curve: nearly white, middle piece", 254, 255, "19.348"},
        {"curve: upper piece", 200, 255, "62.359"},
        {"curve: no power still burns", 0, 0, "17.699"},
        {"curve: beyond the slider range, lowest piece", 0, 600, "2.237"},
    };
    for (const auto &c : curve)
        row(c.name, GrayCorrected, {QStringLiteral("%1 255").arg(c.gray)}, 1.0,
            groups(QStringLiteral("R10,180,%1 w11,180").arg(QLatin1String(c.burn))), c.power);
    row("curve: white never reaches it", GrayCorrected, {"255 255"}, 1.0, "");
}

void TestBitmap2Gcode::scan()
{
    QFETCH(int, kind);
    QFETCH(QStringList, rows);
    QFETCH(double, scale);
    QFETCH(float, power);
    QFETCH(QPointF, offset);
    QFETCH(QString, frame);
    QFETCH(QString, body);
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    setUp(generator, power, offset);
    const QString text = QString::fromLatin1(run(generator, kind, picture(rows), scale));

    const QString header = QStringLiteral("G1 F%1 \nG28 X0 Y0  ;move X/Y to min endstops \nG0 F%1 \nG1 F%1 \n")
                               .arg(kind == BlackWhite ? 7200 : 3600);
    QVERIFY2(text.startsWith(header), qPrintable(text));
    QVERIFY(text.endsWith(Footer));
    const int m0 = text.indexOf(QLatin1String("M0 \n"));
    if (!frame.isEmpty())
        QCOMPARE(text.mid(header.size(), m0 - header.size()), frame);
    QCOMPARE(text.mid(m0 + 4, text.size() - m0 - 4 - Footer.size()), body);
    QCOMPARE(QFile::exists("Grayimage.jpg"), kind == GrayCorrected);
}

void TestBitmap2Gcode::preview()
{
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    generator.SetPower(255);
    run(generator, GrayCorrected, black(8, 8, QImage::Format_Grayscale8), 1.0);
    const QImage preview("Grayimage.jpg");
    QCOMPARE(preview.size(), QSize(8, 8));
    // Full black burns at 220.113, shown as trunc(255 - 220.113) = 34; JPEG may drift a little.
    const int shown = qGray(preview.pixel(3, 2));
    QVERIFY2(qAbs(shown - 34) <= 2, qPrintable(QString::number(shown)));
}

void TestBitmap2Gcode::estimateIsTakenOnce()
{
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    setUp(generator);
    // From (10, 180): 2 mm at 16.5 mm/s, too short to reach speed: 16.5 x 1.5 / 300 + 2 / 16.5 s;
    // then 1 mm at 198 mm/s, reached: 2 x sqrt(300) / 300 s.
    const float oneJob = 0.0825f + 2.0f / 16.5f + 2.0f * std::sqrt(300.0f) / 300.0f;
    run(generator, BlackWhite, picture({"..X.."}), 1.0);
    QVERIFY(qAbs(generator.TakeEstimatedTime() - oneJob) < 1e-5f);
    QCOMPARE(generator.TakeEstimatedTime(), 0.0f);
    // Untaken estimates add up over exports.
    run(generator, BlackWhite, picture({"..X.."}), 1.0);
    run(generator, BlackWhite, picture({"..X.."}), 1.0);
    QVERIFY(qAbs(generator.TakeEstimatedTime() - 2 * oneJob) < 1e-5f);
}

void TestBitmap2Gcode::outputCannotBeCreated_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("boxes");  // title|text|icon of each box that came up

    const QString critical = QString::number(QMessageBox::Critical);
    const QStringList chinese = {QString::fromUtf8("提示|无法创建文件|") + critical};
    QTest::newRow("black/white, no language stored") << int(BlackWhite) << QString() << chinese;
    QTest::newRow("linear gray, English")
        << int(GrayLinear) << "English" << QStringList{"Notice|Can't creat file|" + critical};
    QTest::newRow("corrected gray, Chinese") << int(GrayCorrected) << "Chinese" << chinese;
    QTest::newRow("black/white, Korean shows nothing") << int(BlackWhite) << "Korean" << QStringList();
}

void TestBitmap2Gcode::outputCannotBeCreated()
{
    QFETCH(int, kind);
    QFETCH(QString, language);
    QFETCH(QStringList, boxes);
    ScopedWorkDir dir;
    if (!language.isEmpty())
        AppSettings::setValue(AppSettings::ConfigFile, AppSettings::GroupLanguage, "language", language);
    // Closes any message box that comes up and remembers what it said.
    QStringList seen;
    QTimer closer;
    connect(&closer, &QTimer::timeout, [&seen] {
        if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
            seen << box->windowTitle() + '|' + box->text() + '|' + QString::number(box->icon());
            box->done(QMessageBox::Ok);
        }
    });
    closer.start(10);
    Bitmap2Gcode generator;
    setUp(generator);
    const QString target = dir.file("missing-folder/out.gcode");
    run(generator, kind, picture({"X."}), 1.0, target);
    QCOMPARE(seen, boxes);
    QVERIFY(!QFile::exists(target));
    QVERIFY(!QFile::exists(dir.file("Grayimage.jpg")));
}

void TestBitmap2Gcode::badInput_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QImage>("image");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("burns");  // "M106 S" lines after the frame; -1: refused, no file
    QTest::addColumn<int>("stops");  // "M107" lines before the footer

    const double nan = std::numeric_limits<double>::quiet_NaN();
    const QImage black3 = black(3, 3, QImage::Format_RGB32);
    QTest::newRow("null picture, black/white") << int(BlackWhite) << QImage() << 0.1 << 0 << 0;
    QTest::newRow("null picture, corrected gray") << int(GrayCorrected) << QImage() << 0.1 << 0 << 0;
    QTest::newRow("scale 0 scans the first row only") << int(BlackWhite) << black3 << 0.0 << 1 << 1;
    // Gray rows sample every k-th column too: the end of the row is never reached.
    QTest::newRow("scale 0, gray") << int(GrayLinear) << black3 << 0.0 << 1 << 0;
    QTest::newRow("negative scale scans every row") << int(BlackWhite) << black3 << -1.0 << 3 << 3;
    // A number that is not finite would reach the file as "nan" or "inf": nothing is written.
    const double inf = std::numeric_limits<double>::infinity();
    QTest::newRow("NaN scale refused") << int(BlackWhite) << black3 << nan << -1 << 0;
    QTest::newRow("NaN scale, corrected gray refused") << int(GrayCorrected) << black3 << nan << -1 << 0;
    QTest::newRow("null picture, infinite scale refused") << int(BlackWhite) << QImage() << inf << -1 << 0;
    QTest::newRow("extent overflowing refused")
        << int(GrayLinear) << black(1, 20, QImage::Format_Grayscale8) << 1e308 << -1 << 0;
    // One pixel a row: the burn opens at the row's last pixel and is never closed.
    QTest::newRow("1 x 100000, black/white")
        << int(BlackWhite) << black(1, 100000, QImage::Format_RGB32) << 0.1 << 100000 << 0;
    // One pixel a row: the first pixel is also the last, which closes without opening.
    QTest::newRow("1 x 100000, gray") << int(GrayCorrected) << black(1, 100000, QImage::Format_Grayscale8) << 0.1 << 0
                                      << 100000;
    // The leftward row reads a word that runs past the last pixel of the picture.
    QTest::newRow("leftward word at the end of the picture")
        << int(GrayLinear) << black(4, 2, QImage::Format_Grayscale8) << 1.0 << 2 << 2;
}

void TestBitmap2Gcode::badInput()
{
    QFETCH(int, kind);
    QFETCH(QImage, image);
    QFETCH(double, scale);
    QFETCH(int, burns);
    QFETCH(int, stops);
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    setUp(generator);
    if (burns < 0)
        QTest::ignoreMessage(
            QtWarningMsg,
            qPrintable(QStringLiteral("No G-code written: the picture's size, position or power is not a number")));
    const QByteArray text = run(generator, kind, image, scale);
    QCOMPARE(generator.LastRefusal().isEmpty(), burns >= 0);
    if (burns < 0) {
        QVERIFY(!QFile::exists("out.gcode"));
        return;
    }
    QVERIFY(text.endsWith(Footer.toLatin1()));
    const QByteArray body = text.mid(text.indexOf("M0 \n"));
    QCOMPARE(body.count("M106 S"), burns);
    QCOMPARE(body.count("M107 \n"), stops + 1);
}

void TestBitmap2Gcode::fastPathSameBytes_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("format");
    QTest::addColumn<quint32>("seed");
    QTest::addColumn<int>("pictures");
    QTest::addColumn<int>("maxSide");

    QTest::newRow("black/white") << int(BlackWhite) << int(QImage::Format_RGB32) << 11u << 40 << 40;
    // Tens of thousands of groups, so the Z text passes through many values.
    QTest::newRow("black/white, large") << int(BlackWhite) << int(QImage::Format_RGB32) << 13u << 2 << 400;
    QTest::newRow("linear gray, 32-bit input") << int(GrayLinear) << int(QImage::Format_RGB32) << 22u << 20 << 40;
    QTest::newRow("corrected gray") << int(GrayCorrected) << int(QImage::Format_Grayscale8) << 31u << 40 << 40;
    QTest::newRow("corrected gray, large") << int(GrayCorrected) << int(QImage::Format_Grayscale8) << 32u << 2 << 400;
}

// Random pictures, scales, offsets and powers: the fast output is byte for byte the plain one.
void TestBitmap2Gcode::fastPathSameBytes()
{
    QFETCH(int, kind);
    QFETCH(int, format);
    QFETCH(quint32, seed);
    QFETCH(int, pictures);
    QFETCH(int, maxSide);
    ScopedWorkDir dir;
    QRandomGenerator random(seed);
    const double scales[] = {1.0, 0.3, 0.1, 0.07, 0.05, 0.0333, 0.02, 0.0137};
    const int palette[] = {255, 255, 255, 0, 17, 100, 127, 128, 200, 254};
    qint64 lines = 0;
    for (int i = 0; i < pictures; ++i) {
        // Runs of a few values, so that bursts, power changes and long white stretches all occur.
        QImage image(1 + int(random.bounded(maxSide)), 1 + int(random.bounded(maxSide)), QImage::Format(format));
        int value = 255;
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.bytesPerLine(); ++x) {
                if (random.bounded(4) == 0)
                    value = random.bounded(8) == 0 ? int(random.bounded(256)) : palette[random.bounded(10)];
                image.scanLine(y)[x] = uchar(value);
            }
        const double scale = scales[random.bounded(8)];
        const QPointF offset(random.bounded(10000) / 97.0, random.bounded(10000) / 89.0);
        const float power = float(random.bounded(25600)) / 100.0f;
        QByteArray out[2];
        for (bool plain : {true, false}) {
            Bitmap2Gcode generator;
            generator.SetPlainFormatting(plain);
            setUp(generator, power, offset);
            out[plain] = run(generator, kind, image, scale);
        }
        lines += out[1].count('\n');
        QVERIFY2(out[0] == out[1], qPrintable(QStringLiteral("picture %1: %2 x %3 at scale %4")
                                                  .arg(i)
                                                  .arg(image.width())
                                                  .arg(image.height())
                                                  .arg(scale)));
    }
    // Header, frame and footer are 19 lines a file; most of what was compared must be scan lines.
    QVERIFY2(lines > 19 * pictures * 3, qPrintable(QString::number(lines)));
}

// The Z counter as the exports grow it, whole counters (exact halves, rounded up as Qt does)
// and random ones: the quick text is the plain one.
void TestBitmap2Gcode::zText()
{
    QRandomGenerator random(7);
    float counter = 0;
    for (int i = 0; i <= 3 * 200000; ++i) {
        const int range = i % 3;
        if (range == 0)
            counter += 0.001;
        const float z = range == 0 ? counter : range == 1 ? float((i / 3) % 32769) : float(random.bounded(32768.0));
        const QByteArray plain = RasterGcodeWriter::zText(z).toLatin1();
        if (RasterGcodeWriter::quickZText(z) != plain)
            QFAIL(qPrintable(
                QStringLiteral("counter %1: %2 instead of %3")
                    .arg(double(z), 0, 'g', 9)
                    .arg(QString::fromLatin1(RasterGcodeWriter::quickZText(z)), QString::fromLatin1(plain))));
    }
}

void TestBitmap2Gcode::pictures_data()
{
    QTest::addColumn<bool>("halftone");  // the 5 x 5 halftone, else the error diffusion
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QVector<uint>>("expected");  // words of the result; empty: returned as it came

    // 'X' black, '.' white, 'o' as it was, row by row; pixel (0, 0) takes gray `corner` unless -1.
    const auto halftone = [](const char *name, QSize size, int gray, QString marks, int corner = -1) {
        QImage image(size, QImage::Format_ARGB32);
        image.fill(gray < 0 ? qRgb(255, 0, 0) : qRgb(gray, gray, gray));
        if (corner >= 0)
            image.setPixel(0, 0, qRgb(corner, corner, corner));
        marks.remove(QLatin1Char(' '));
        QVector<uint> words;
        for (int i = 0; i < marks.size(); ++i)
            words << (marks[i] == 'X'   ? 0xff000000u
                      : marks[i] == '.' ? 0xffffffffu
                                        : word(image, i % size.width(), i / size.width()));
        QTest::newRow(name) << true << image << words;
    };
    const char *const same = "ooooo ooooo ooooo ooooo ooooo";
    const char *const c = "..X.. .XXX. XXXXX .XXX. ..X..";
    const char *const d = ".XXX. XXXXX XXXXX XXXXX .XXX.";
    const QSize cell(5, 5);
    halftone("4 x 4 has no whole cell", QSize(4, 4), 0, "oooo oooo oooo oooo");
    halftone("mean 250 is left as it is", cell, 250, same);
    halftone("mean 251 turns white", cell, 251, "..... ..... ..... ..... .....");
    halftone("mean 255 is left as it is", cell, 255, same);
    halftone("mean 6274 / 25 truncates to 250", cell, 251, same, 250);
    halftone("mean 249: A", cell, 249, "..... ..... ..X.. ..... .....");
    halftone("mean 189: B", cell, 189, "..... ..X.. .XXX. ..X.. .....");
    halftone("mean 129: C", cell, 129, c);
    halftone("mean 10: D", cell, 10, d);
    halftone("mean 9: black", cell, 9, "XXXXX XXXXX XXXXX XXXXX XXXXX");
    halftone("red is gray 87: C", cell, -1, c);
    halftone("7 x 6: one cell, the rest untouched", QSize(7, 6), 100,
             "..X..oo .XXX.oo XXXXXoo .XXX.oo ..X..oo ooooooo");

    QImage indexed(5, 3, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(0, 0, 0), qRgb(200, 200, 200)});
    indexed.fill(1);
    QTest::newRow("diffusion: indexed picture unchanged") << false << indexed << QVector<uint>();
    QTest::newRow("diffusion: null picture unchanged") << false << QImage() << QVector<uint>();
    // Gray 100 but (2, 0), gray 202: it turns white and leaves -6, the word 0xfffafafa, whose
    // borrows run from blue into green and red. (c - 1, r + 1) at c = 0 is the end of row 0.
    QImage light(5, 3, QImage::Format_ARGB32);
    light.fill(qRgb(100, 100, 100));
    light.setPixel(2, 0, 0xff80ffc8u);
    QTest::newRow("diffusion: light pixel, error borrows across bytes")
        << false << light
        << QVector<uint>{0xffffffff, 0xffffffff, 0xffffffff, 0xfe5f5f5e, 0xfe5f5f5e, 0xfdffffff, 0xfdfafaf9, 0xfe5f5f5e,
                         0xff5f5f5e, 0xff646464, 0xfeffffff, 0xfeffffff, 0xff5f5f5e, 0xff646464, 0xff646464};
    // Gray 60 turns black and leaves 7 (0xff070707); on the white margin it carries over.
    QImage dark(5, 3, QImage::Format_ARGB32);
    dark.fill(qRgb(60, 60, 60));
    QTest::newRow("diffusion: dark pixel, error carries across bytes")
        << false << dark
        << QVector<uint>{0xffffffff, 0xffffffff, 0xff000000, 0xfd434343, 0xfd434343, 0xfdffffff, 0xfd070706, 0xfd434343,
                         0xfe434343, 0xff3c3c3c, 0xfeffffff, 0xfeffffff, 0xfe434343, 0xff3c3c3c, 0xff3c3c3c};
    // Too few rows to diffuse: a white margin of two columns, gray 108 elsewhere.
    QImage small(3, 2, QImage::Format_ARGB32);
    small.fill(qRgb(10, 200, 30));
    QTest::newRow("diffusion: two rows, margin and gray only")
        << false << small << QVector<uint>{0xffffffff, 0xffffffff, 0xff6c6c6c, 0xffffffff, 0xffffffff, 0xff6c6c6c};
}

void TestBitmap2Gcode::pictures()
{
    QFETCH(bool, halftone);
    QFETCH(QImage, image);
    QFETCH(QVector<uint>, expected);
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    const QImage result = halftone ? generator.Image2Halftone(image) : generator.GrayScalePicture(image);
    QCOMPARE(result.format(), image.format());
    QCOMPARE(result.size(), image.size());
    if (halftone)
        QCOMPARE(QImage("hi.png").convertToFormat(QImage::Format_ARGB32), result);
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

TARNWELL_TEST_MAIN(TestBitmap2Gcode)
#include "tst_bitmap2gcode.moc"
