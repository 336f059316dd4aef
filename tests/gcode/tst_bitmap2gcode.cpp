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

const QString Header = QStringLiteral("G1 F7200 \nG28 X0 Y0  ;move X/Y to min endstops \n"
                                      "G0 F7200 \nG1 F7200 \n");
const QString Footer = QStringLiteral("M107 \nG28 \n");

// Machine values: feed and travel in mm/min, power 232 (the power slider's 91 %).
constexpr int Feed = 990;
constexpr int Travel = 11880;
constexpr float Power = 232;

// 'X' black, '.' white, 'a' gray 127 (black), 'b' gray 128 (white), 't' transparent black.
QImage picture(const QStringList &rows)
{
    const int width = rows.isEmpty() ? 0 : rows.first().size();
    QImage image(width, rows.size(), QImage::Format_ARGB32);
    for (int y = 0; y < rows.size(); ++y) {
        for (int x = 0; x < width; ++x) {
            const QChar ch = rows.at(y).at(x);
            QRgb px = qRgb(255, 255, 255);
            if (ch == QLatin1Char('X'))
                px = qRgb(0, 0, 0);
            else if (ch == QLatin1Char('a'))
                px = qRgb(127, 127, 127);
            else if (ch == QLatin1Char('b'))
                px = qRgb(128, 128, 128);
            else if (ch == QLatin1Char('t'))
                px = qRgba(0, 0, 0, 0);
            image.setPixel(x, y, px);
        }
    }
    return image;
}

QString open(const QString &x, const QString &y, const QString &z = QStringLiteral("0.000"))
{
    return QStringLiteral("G0 X%1 Y%2 Z%3\nM106 S232 \nG1 F990 \nG1 X%1 Y%2  Z%3\n").arg(x, y, z);
}

QString close(const QString &x, const QString &y, const QString &z = QStringLiteral("0.000"))
{
    return QStringLiteral("G1 X%1 Y%2 Z%3\nM107 \nG0 F11880 \nG0 X%1 Y%2 Z%3\n").arg(x, y, z);
}

// A run that reaches the right end of its row is closed with two blanks before Z.
QString closeAtRightEnd(const QString &x, const QString &y)
{
    return QStringLiteral("G1 X%1 Y%2 Z0.000\nM107 \nG0 F11880 \nG0 X%1 Y%2  Z0.000\n").arg(x, y);
}

QString readAll(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return QString();
    return QString::fromLatin1(file.readAll());
}

void setUp(Bitmap2Gcode &generator, float power = Power)
{
    generator.SetFeedSpeed(Feed);
    generator.SetTravelSpeed(Travel);
    generator.SetPower(power);
    generator.offset = QPointF(10, 20);
}

// Closes any message box that comes up and remembers what it said.
class BoxCloser
{
public:
    BoxCloser()
    {
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                m_seen << box->windowTitle() + QLatin1Char('|') + box->text() + QLatin1Char('|')
                              + QString::number(box->icon());
                box->done(QMessageBox::Ok);
            }
        });
        m_timer.start(10);
    }
    QStringList seen() const { return m_seen; }

private:
    QTimer m_timer;
    QStringList m_seen;
};

enum Export { BlackWhite, GrayLinear, GrayCorrected };

void run(Bitmap2Gcode &generator, Export kind, const QImage &image, const QString &file, double scale)
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
        << QStringList{"..X.."} << 1.0 << open("12", "180") + close("13", "180");
    QTest::newRow("run reaching the end going right")
        << QStringList{"...XX"} << 1.0 << open("13", "180") + closeAtRightEnd("14", "180");
    QTest::newRow("run reaching the end going left")
        << QStringList{".....", "XX..."} << 1.0 << open("11", "179") + close("10", "179");
    QTest::newRow("burn opened at the last visited pixel stays on")
        << QStringList{"....X", "X...."} << 1.0 << open("14", "180") + open("10", "179");
    QTest::newRow("gray 127 and transparent black are black, gray 128 is white")
        << QStringList{"ab.t."} << 1.0
        << open("10", "180") + close("11", "180") + open("13", "180") + close("14", "180");
    QTest::newRow("Z rises after eight groups")
        << QStringList{"X.X.X.X.X."} << 1.0
        << open("10", "180") + close("11", "180") + open("12", "180") + close("13", "180")
               + open("14", "180") + close("15", "180") + open("16", "180") + close("17", "180")
               + open("18", "180", "0.001") + close("19", "180", "0.001");
    // Scale 0.02: every fifth row; 5 is odd, so that row runs leftward.
    QTest::newRow("scale 0.02 takes rows 0, 5, 10 right, left, right")
        << QStringList{"X..", "XXX", "XXX", "XXX", "XXX", "X..", "XXX", "XXX", "XXX", "XXX", "X.."}
        << 0.02
        << open("10", "180") + close("10.02", "180") + open("10", "179.9") + open("10", "179.8")
               + close("10.02", "179.8");
    // Scale 0.05: every second row, all of them even and so all rightward.
    QTest::newRow("scale 0.05 scans rows 0 and 2 both rightward")
        << QStringList{"..X", "XXX", "XX."} << 0.05
        << open("10.1", "180") + open("10", "179.9") + close("10.1", "179.9");
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
    QVERIFY(start > 4);
    QCOMPARE(text.mid(start, text.size() - start - Footer.size()), body);
}

void TestBitmap2Gcode::wholeFile_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<QPointF>("offset");
    QTest::addColumn<double>("scale");
    QTest::addColumn<float>("power");
    QTest::addColumn<QString>("expected");

    const QString frame1x1 = QStringLiteral("G0 X10 Y180 \nM106 S5 \nG1 X11 Y180 \nG1 X11 Y179 \n"
                                            "G1 X10 Y179 \nG1 X10 Y180 \n");
    QTest::newRow("frame of a 1 x 1 picture is traced twice")
        << picture({"X"}) << QPointF(10, 20) << 1.0 << Power
        << Header + frame1x1 + frame1x1 + "M0 \n" + open("10", "180") + Footer;

    const QString point = QStringLiteral("G0 X10 Y180 \nM106 S5 \nG1 X10 Y180 \nG1 X10 Y180 \n"
                                         "G1 X10 Y180 \nG1 X10 Y180 \n");
    QTest::newRow("empty picture") << QImage() << QPointF(10, 20) << 1.0 << Power
                                   << Header + point + point + "M0 \n" + Footer;

    const QString frame = QStringLiteral("G0 X12.3457 Y199.5 \nM106 S5 \nG1 X13.0123 Y199.5 \n"
                                         "G1 X13.0123 Y199.167 \nG1 X12.3457 Y199.167 \n"
                                         "G1 X12.3457 Y199.5 \n");
    QTest::newRow("six significant digits, trailing zeros dropped")
        << picture({"X."}) << QPointF(12.3456789, 0.5) << 0.3333333 << 232.5f
        << Header + frame + frame + "M0 \n"
               + "G0 X12.3457 Y199.5 Z0.000\nM106 S232.5 \nG1 F990 \nG1 X12.3457 Y199.5  Z0.000\n"
               + "G1 X12.679 Y199.5 Z0.000\nM107 \nG0 F11880 \nG0 X12.679 Y199.5 Z0.000\n" + Footer;
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
    setUp(generator, power);
    generator.offset = offset;
    generator.ExportBlackPix(image, dir.file("out.gcode"), scale);
    QCOMPARE(readAll(dir.file("out.gcode")), expected);
}

void TestBitmap2Gcode::estimateIsTakenOnce()
{
    ScopedWorkDir dir;
    Bitmap2Gcode generator;
    setUp(generator);
    // From (10, 180): 2 mm at 16.5 mm/s, too short to reach speed: 0.0825 + 2 / 16.5 s;
    // then 1 mm at 198 mm/s, reached: 2 * sqrt(300) / 300 s.
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
    QTest::addColumn<QStringList>("boxes");

    const QString critical = QString::number(QMessageBox::Critical);
    const QStringList chinese = {QString::fromUtf8("提示|无法创建文件|") + critical};
    const QStringList english = {QStringLiteral("Notice|Can't creat file|") + critical};
    QTest::newRow("black/white, no language stored") << int(BlackWhite) << QString() << chinese;
    QTest::newRow("linear gray, English") << int(GrayLinear) << "English" << english;
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
        AppSettings::setValue(AppSettings::ConfigFile, AppSettings::GroupLanguage,
                              QStringLiteral("language"), language);
    const QString target = dir.file("missing-folder/out.gcode");
    Bitmap2Gcode generator;
    setUp(generator);
    BoxCloser closer;
    run(generator, Export(kind), picture({"X."}), target, 1.0);
    QCOMPARE(closer.seen(), boxes);
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
    // Padding bytes included: the leftward reads see them.
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
    // One pixel per row: the burn opens at the row's last pixel and is never closed.
    QTest::newRow("1 x 100000, black/white") << int(BlackWhite) << tall << 0.1 << 100000 << 0;
    // One pixel per row: the first pixel is the last one, which closes without opening.
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
    run(generator, Export(kind), image, dir.file("out.gcode"), scale);

    const QString text = readAll(dir.file("out.gcode"));
    QVERIFY(text.endsWith(Footer));
    const int start = text.indexOf(QLatin1String("M0 \n"));
    QVERIFY(start > 0);
    const QString body = text.mid(start);
    QCOMPARE(body.count(QLatin1String("M106 S")), burns);
    QCOMPARE(body.count(QLatin1String("M107 \n")), stops + 1);
}

TARNWELL_TEST_MAIN(TestBitmap2Gcode)
#include "tst_bitmap2gcode.moc"
