// Tests of the black/white raster export: exact G-code of small pictures, the frame, the
// travel-time estimate, the message when the output cannot be created, and bad input.
#include "testsupport.h"

#include "appsettings.h"
#include "bitmap2gcode.h"

#include <QMessageBox>
#include <QTimer>

#include <cmath>
#include <cstring>
#include <limits>

namespace {

const QString Header = QStringLiteral("G1 F7200 \nG28 X0 Y0  ;move X/Y to min endstops \nG0 F7200 \nG1 F7200 \n");
const QString Footer = QStringLiteral("M107 \nG28 \n");
// Groups at X = %1, Y = %2 with Z %3, feed 990, travel 11880 and power 232.
const char *const Open = "G0 X%1 Y%2 Z%3\nM106 S232 \nG1 F990 \nG1 X%1 Y%2  Z%3\n";
const char *const Close = "G1 X%1 Y%2 Z%3\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z%3\n";
// A run reaching the right end of its row is closed with two blanks before Z.
const char *const CloseRightEnd = "G1 X%1 Y%2 Z%3\nM107 \nG0 F11880 \nG0 X%1 Y%2  Z%3\n";

QString at(const char *group, const char *x, const char *y, const char *z = "0.000")
{
    return QString::fromLatin1(group).arg(QLatin1String(x), QLatin1String(y), QLatin1String(z));
}

// 'X' black, '.' white, 'a' gray 127 (black), 'b' gray 128 (white), 't' transparent black.
QImage picture(const QStringList &rows)
{
    const QString marks = QStringLiteral("X.abt");
    const QRgb colours[] = {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(127, 127, 127), qRgb(128, 128, 128), qRgba(0, 0, 0, 0)};
    QImage image(rows.first().size(), rows.size(), QImage::Format_ARGB32);
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            image.setPixel(x, y, colours[marks.indexOf(rows.at(y).at(x))]);
    return image;
}

QString readAll(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromLatin1(file.readAll()) : QString();
}

void setUp(Bitmap2Gcode &generator)
{
    generator.SetFeedSpeed(990);
    generator.SetTravelSpeed(11880);
    generator.SetPower(232);
    generator.offset = QPointF(10, 20);
}

enum Export { BlackWhite, GrayLinear, GrayCorrected };

void run(Bitmap2Gcode &generator, int kind, const QImage &image, const QString &file, double scale)
{
    if (kind == BlackWhite)
        generator.ExportBlackPix(image, file, scale);
    else if (kind == GrayLinear)
        generator.ExportGrayPix(image, file, scale);
    else
        generator.ExportGrayPixEX(image, file, scale);
}

} // namespace

class TestBitmap2Gcode : public QObject
{
    Q_OBJECT
private slots:
    void scanRows_data();
    void scanRows();
    void wholeFile_data();
    void wholeFile();
    void estimateIsTakenOnce();
    void outputCannotBeCreated_data();
    void outputCannotBeCreated();
    void badInput_data();
    void badInput();
};

void TestBitmap2Gcode::scanRows_data()
{
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<double>("scale");
    QTest::addColumn<QString>("body");

    QTest::newRow("all-white row emits nothing") << QStringList{"....."} << 1.0 << QString();
    QTest::newRow("one black pixel closes at the next pixel's corner")
        << QStringList{"..X.."} << 1.0 << at(Open, "12", "180") + at(Close, "13", "180");
    QTest::newRow("run reaching the end going right")
        << QStringList{"...XX"} << 1.0 << at(Open, "13", "180") + at(CloseRightEnd, "14", "180");
    QTest::newRow("run reaching the end going left")
        << QStringList{".....", "XX..."} << 1.0 << at(Open, "11", "179") + at(Close, "10", "179");
    QTest::newRow("burn opened at the last visited pixel stays on")
        << QStringList{"....X", "X...."} << 1.0 << at(Open, "14", "180") + at(Open, "10", "179");
    QTest::newRow("gray 127 and transparent black are black, gray 128 is white")
        << QStringList{"ab.t."} << 1.0
        << at(Open, "10", "180") + at(Close, "11", "180") + at(Open, "13", "180") + at(Close, "14", "180");
    QTest::newRow("Z rises after eight groups")
        << QStringList{"X.X.X.X.X."} << 1.0
        << at(Open, "10", "180") + at(Close, "11", "180") + at(Open, "12", "180") + at(Close, "13", "180")
               + at(Open, "14", "180") + at(Close, "15", "180") + at(Open, "16", "180") + at(Close, "17", "180")
               + at(Open, "18", "180", "0.001") + at(Close, "19", "180", "0.001");
    // Every fifth row; row 5 is odd, so it runs leftward.
    QTest::newRow("scale 0.02 takes rows 0, 5, 10 right, left, right")
        << QStringList{"X..", "XXX", "XXX", "XXX", "XXX", "X..", "XXX", "XXX", "XXX", "XXX", "X.."} << 0.02
        << at(Open, "10", "180") + at(Close, "10.02", "180") + at(Open, "10", "179.9") + at(Open, "10", "179.8")
               + at(Close, "10.02", "179.8");
    // Every second row, all of them even and so all rightward.
    QTest::newRow("scale 0.05 scans rows 0 and 2 both rightward")
        << QStringList{"..X", "XXX", "XX."} << 0.05
        << at(Open, "10.1", "180") + at(Open, "10", "179.9") + at(Close, "10.1", "179.9");
}

void TestBitmap2Gcode::scanRows()
{
    QFETCH(QStringList, rows);
    QFETCH(double, scale);
    QFETCH(QString, body);
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    setUp(generator);
    generator.ExportBlackPix(picture(rows), dir.file("out.gcode"), scale);

    const QString text = readAll(dir.file("out.gcode"));
    QVERIFY(text.startsWith(Header));
    QVERIFY(text.endsWith(Footer));
    const int start = text.indexOf(QLatin1String("M0 \n")) + 4;
    QCOMPARE(text.mid(start, text.size() - start - Footer.size()), body);
}

void TestBitmap2Gcode::wholeFile_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QPointF>("offset");
    QTest::addColumn<double>("scale");
    QTest::addColumn<float>("power");
    QTest::addColumn<QString>("expected");

    const QString frame1x1 = "G0 X10 Y180 \nM106 S5 \nG1 X11 Y180 \nG1 X11 Y179 \nG1 X10 Y179 \nG1 X10 Y180 \n";
    QTest::newRow("frame of a 1 x 1 picture is traced twice")
        << picture({"X"}) << QPointF(10, 20) << 1.0 << 232.f
        << Header + frame1x1 + frame1x1 + "M0 \n" + at(Open, "10", "180") + Footer;
    const QString point = "G0 X10 Y180 \nM106 S5 \nG1 X10 Y180 \nG1 X10 Y180 \nG1 X10 Y180 \nG1 X10 Y180 \n";
    QTest::newRow("empty picture") << QImage() << QPointF(10, 20) << 1.0 << 232.f
                                   << Header + point + point + "M0 \n" + Footer;
    const QString frame = "G0 X12.3457 Y199.5 \nM106 S5 \nG1 X13.0123 Y199.5 \nG1 X13.0123 Y199.167 \n"
                          "G1 X12.3457 Y199.167 \nG1 X12.3457 Y199.5 \n";
    QTest::newRow("six significant digits, trailing zeros dropped")
        << picture({"X."}) << QPointF(12.3456789, 0.5) << 0.3333333 << 232.5f
        << Header + frame + frame + "M0 \n" + "G0 X12.3457 Y199.5 Z0.000\nM106 S232.5 \nG1 F990 \nG1 X12.3457 Y199.5  Z0.000\n"
               + at(Close, "12.679", "199.5") + Footer;
}

void TestBitmap2Gcode::wholeFile()
{
    QFETCH(QImage, image);
    QFETCH(QPointF, offset);
    QFETCH(double, scale);
    QFETCH(float, power);
    QFETCH(QString, expected);
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    setUp(generator);
    generator.SetPower(power);
    generator.offset = offset;
    generator.ExportBlackPix(image, dir.file("out.gcode"), scale);
    QCOMPARE(readAll(dir.file("out.gcode")), expected);
}

void TestBitmap2Gcode::estimateIsTakenOnce()
{
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    setUp(generator);
    // From (10, 180): 2 mm at 16.5 mm/s, too short to reach speed: 16.5 x 1.5 / 300 + 2 / 16.5 s;
    // then 1 mm at 198 mm/s, reached: 2 x sqrt(300) / 300 s.
    const float oneJob = 0.0825f + 2.0f / 16.5f + 2.0f * std::sqrt(300.0f) / 300.0f;
    generator.ExportBlackPix(picture({"..X.."}), dir.file("a.gcode"), 1.0);
    QVERIFY(qAbs(generator.TakeEstimatedTime() - oneJob) < 1e-5f);
    QCOMPARE(generator.TakeEstimatedTime(), 0.0f);
    // Untaken estimates add up over exports.
    generator.ExportBlackPix(picture({"..X.."}), dir.file("a.gcode"), 1.0);
    generator.ExportBlackPix(picture({"..X.."}), dir.file("b.gcode"), 1.0);
    QVERIFY(qAbs(generator.TakeEstimatedTime() - 2 * oneJob) < 1e-5f);
}

void TestBitmap2Gcode::outputCannotBeCreated_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QStringList>("boxes");   // title|text|icon of each box that came up

    const QString critical = QString::number(QMessageBox::Critical);
    const QStringList chinese = {QString::fromUtf8("提示|无法创建文件|") + critical};
    QTest::newRow("black/white, no language stored") << int(BlackWhite) << QString() << chinese;
    QTest::newRow("linear gray, English") << int(GrayLinear) << "English" << QStringList{"Notice|Can't creat file|" + critical};
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
    run(generator, kind, picture({"X."}), target, 1.0);
    QCOMPARE(seen, boxes);
    QVERIFY(!QFile::exists(target));
    QVERIFY(!QFile::exists(dir.file("Grayimage.jpg")));
}

void TestBitmap2Gcode::badInput_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QImage>("image");
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("burns");   // "M106 S" lines after the frame
    QTest::addColumn<int>("stops");   // "M107" lines before the footer

    const double nan = std::numeric_limits<double>::quiet_NaN();
    QImage black3(3, 3, QImage::Format_RGB32);
    black3.fill(Qt::black);
    QImage tall(1, 100000, QImage::Format_RGB32);
    tall.fill(Qt::black);
    QImage wide(100000, 1, QImage::Format_RGB32);
    wide.fill(Qt::black);
    // Padding bytes included, since the leftward reads see them.
    QImage tallGray(1, 100000, QImage::Format_Grayscale8);
    std::memset(tallGray.bits(), 0, size_t(tallGray.sizeInBytes()));
    QImage gray4x2(4, 2, QImage::Format_Grayscale8);
    std::memset(gray4x2.bits(), 0, size_t(gray4x2.sizeInBytes()));

    QTest::newRow("null picture, black/white") << int(BlackWhite) << QImage() << 0.1 << 0 << 0;
    QTest::newRow("null picture, corrected gray") << int(GrayCorrected) << QImage() << 0.1 << 0 << 0;
    QTest::newRow("scale 0 scans the first row only") << int(BlackWhite) << black3 << 0.0 << 1 << 1;
    // Gray rows sample every k-th column too: the end of the row is never reached.
    QTest::newRow("scale 0, gray") << int(GrayLinear) << black3 << 0.0 << 1 << 0;
    QTest::newRow("negative scale scans every row") << int(BlackWhite) << black3 << -1.0 << 3 << 3;
    QTest::newRow("NaN scale scans every row") << int(BlackWhite) << black3 << nan << 3 << 3;
    // Leftward words of a 32-bit picture mix colour and alpha bytes: a power change mid-row.
    QTest::newRow("NaN scale, corrected gray") << int(GrayCorrected) << black3 << nan << 4 << 3;
    // One pixel a row: the burn opens at the row's last pixel and is never closed.
    QTest::newRow("1 x 100000, black/white") << int(BlackWhite) << tall << 0.1 << 100000 << 0;
    // One pixel a row: the first pixel is also the last, which closes without opening.
    QTest::newRow("1 x 100000, gray") << int(GrayCorrected) << tallGray << 0.1 << 0 << 100000;
    QTest::newRow("100000 x 1, black/white") << int(BlackWhite) << wide << 0.1 << 1 << 1;
    // The leftward row reads a word that runs past the last pixel of the picture.
    QTest::newRow("leftward word at the end of the picture") << int(GrayLinear) << gray4x2 << 1.0 << 2 << 2;
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
    run(generator, kind, image, dir.file("out.gcode"), scale);

    const QString text = readAll(dir.file("out.gcode"));
    QVERIFY(text.endsWith(Footer));
    const QString body = text.mid(text.indexOf(QLatin1String("M0 \n")));
    QCOMPARE(body.count(QLatin1String("M106 S")), burns);
    QCOMPARE(body.count(QLatin1String("M107 \n")), stops + 1);
}

TARNWELL_TEST_MAIN(TestBitmap2Gcode)
#include "tst_bitmap2gcode.moc"
