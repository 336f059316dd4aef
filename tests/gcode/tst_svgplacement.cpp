// Tests of the vector export's placement offset: given as arguments, for a file or a drawing
// read once, it writes the same bytes as the offset stored in Config.ini, and writes no settings.
#include "appsettings.h"
#include "svg2gcodep.h"
#include "svgreader.h"
#include "testsupport.h"

#include <QFile>

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

const char *const Drawing = "drawing.svg";

// The converter chats on standard output; the test's own output stays readable without it.
class SilentStdout
{
public:
    SilentStdout()
    {
        fflush(stdout);
        m_saved = dup(STDOUT_FILENO);
        const int devNull = open("/dev/null", O_WRONLY);
        dup2(devNull, STDOUT_FILENO);
        close(devNull);
    }
    ~SilentStdout()
    {
        fflush(stdout);
        dup2(m_saved, STDOUT_FILENO);
        close(m_saved);
    }

private:
    int m_saved;
};

void configure(Svg2GcodeP &gen)
{
    gen.SetGcoderHeader(QString(64, QChar(0)));
    gen.SetgGcodeWidth(20, 20);
    gen.SetFeedSpeed(594);
    gen.SetPrintMode(0);
    gen.SetTravelSpeed(11880);
    gen.SetLaser(232);
    Svg2GcodeP::UseFixedSeed(7);
}

}  // namespace

class TestSvgPlacement : public QObject
{
    Q_OBJECT

private slots:
    void cleanupTestCase() { Svg2GcodeP::UseClockSeed(); }
    void offsetAsArguments_data();
    void offsetAsArguments();
};

void TestSvgPlacement::offsetAsArguments_data()
{
    QTest::addColumn<QByteArray>("svg");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<bool>("refused");
    const QByteArray open = "<svg xmlns='http://www.w3.org/2000/svg' width='20mm' height='20mm' viewBox='0 0 20 20'>";
    const QByteArray two = open + "<path d='M2 2 L18 2 L18 18 Z'/><path d='M5 10 L15 12'/></svg>";
    QTest::newRow("origin") << two << 0.0 << 0.0 << false;
    QTest::newRow("placed") << two << 12.5 << 40.0 << false;
    QTest::newRow("negative") << two << -3.25 << 150.0 << false;
    // So narrow that scaling it overflows: refused the same way on every path.
    QTest::newRow("not numbers") << open + "<path d='M0 0 L1e-40 1e-40'/></svg>" << 5.0 << 5.0 << true;
}

void TestSvgPlacement::offsetAsArguments()
{
    QFETCH(QByteArray, svg);
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(bool, refused);
    ScopedWorkDir dir;
    QFile in(Drawing);
    QVERIFY(in.open(QIODevice::WriteOnly));
    in.write(svg);
    in.close();
    SilentStdout silent;

    // As the window runs it: the offset comes from Config.ini.
    AppSettings::setOffset(x, y);
    Svg2GcodeP stored;
    configure(stored);
    stored.SvgToGcode(Drawing, "stored.gcode");
    QVERIFY(QFile::remove(AppSettings::ConfigFile));

    Svg2GcodeP byFile;
    configure(byFile);
    byFile.SvgToGcodeAt(QString::fromLatin1(Drawing), "file.gcode", x, y);

    SvgImage *drawing = Svg2GcodeP::ReadDrawing(QString::fromLatin1(Drawing));
    QVERIFY(drawing);
    Svg2GcodeP byDrawing;
    configure(byDrawing);
    byDrawing.SvgToGcodeAt(*drawing, "drawing.gcode", x, y);
    SvgReader::release(drawing);

    QVERIFY(!QFile::exists(AppSettings::ConfigFile));
    QCOMPARE(byFile.LastRefusal().isEmpty(), !refused);
    QCOMPARE(byDrawing.LastRefusal(), stored.LastRefusal());
    QCOMPARE(byFile.LastRefusal(), stored.LastRefusal());
    QCOMPARE(QFile::exists("drawing.gcode"), !refused);
    if (refused)
        return;
    const QByteArray expected = TestFiles::read("stored.gcode");
    QCOMPARE(TestFiles::read("file.gcode"), expected);
    QCOMPARE(TestFiles::read("drawing.gcode"), expected);
    // The frame starts at the offset; machine Y is flipped against the 200 mm height.
    const QByteArray frame =
        QStringLiteral("\nG0 X%1 Y%2 F4600\n").arg(x, 0, 'f', 2).arg(200 - y, 0, 'f', 2).toLatin1();
    QVERIFY2(expected.contains(frame), expected.constData());
}

TARNWELL_TEST_MAIN(TestSvgPlacement)
#include "tst_svgplacement.moc"
