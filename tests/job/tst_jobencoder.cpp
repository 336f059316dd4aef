// The G-code text the encoder writes for small move lists in each dialect.
#include "jobencoder.h"
#include "jobtestsupport.h"
#include "testsupport.h"

class TestJobEncoder : public QObject
{
    Q_OBJECT

private slots:
    void moves_data();
    void moves();
    void layerComment_data();
    void layerComment();
};

namespace {

using JobTest::parseMoves;

QByteArray encode(Dialect dialect, const QString &moves)
{
    MachineProfile profile;
    profile.dialect = dialect;
    QByteArray out;
    JobEncoder encoder(profile, &out);
    for (const PlannedMove &m : parseMoves(moves))
        encoder.move(m);
    encoder.finish();
    return out;
}

}  // namespace

void TestJobEncoder::moves_data()
{
    QTest::addColumn<int>("dialect");
    QTest::addColumn<QString>("moves");
    QTest::addColumn<QByteArray>("gcode");
    const int grbl = int(Dialect::Grbl);
    const int marlin = int(Dialect::Marlin);
    const int fan = int(Dialect::Fan);
    // A burn of an L with overscan after it, then travel home.
    const QString ell = "T 10000 20000; C 30000 20000 600000 3000; C 30000 40000 600000 3000;"
                        "C 32000 40000 0 3000; T 0 0";
    // clang-format off
    QTest::newRow("grbl L") << grbl << ell << QByteArray(
        "G21\nG90\nM4 S0\n"
        "G0 X10 Y20\nG1 X30 F3000 S600\nG1 Y40\nG1 X32 S0\nG0 X0 Y0\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("marlin L") << marlin << ell << QByteArray(
        "G21\nG90\n"
        "G0 X10 Y20\nM3 S600\nG1 X30 F3000\nG1 Y40\nM5\nG1 X32\nG0 X0 Y0\n"
        "M5\nG0 X0 Y0\n");
    QTest::newRow("fan L") << fan << ell << QByteArray(
        "G21\nG90\n"
        "G0 X10 Y20\nM106 S600\nG1 X30 F3000\nG1 Y40\nM107\nG1 X32\nG0 X0 Y0\n"
        "M107\nG0 X0 Y0\n");
    QTest::newRow("no moves grbl") << grbl << "" << QByteArray("G21\nG90\nM4 S0\nM5\nG0 X0 Y0\n");
    QTest::newRow("no moves fan") << fan << "" << QByteArray("G21\nG90\nM107\nG0 X0 Y0\n");
    // The first move writes both axes even at the origin; repeats of a position are dropped.
    QTest::newRow("first move at origin") << grbl << "T 0 0; T 0 0; C 0 0 5000 100; T 0 1000" << QByteArray(
        "G21\nG90\nM4 S0\nG0 X0 Y0\nG0 Y1\nM5\nG0 X0 Y0\n");
    // A dropped burn leaves no beam line behind in marlin either.
    QTest::newRow("marlin dropped burn") << marlin << "T 1000 1000; C 1000 1000 5000 100; T 2000 1000" << QByteArray(
        "G21\nG90\nG0 X1 Y1\nG0 X2\nM5\nG0 X0 Y0\n");
    // GRBL keeps S across travel: the second burn at the same power writes no S, nor the same F.
    QTest::newRow("grbl S kept over travel") << grbl
        << "C 1000 0 250500 1200; T 5000 0; C 6000 0 250500 1200; C 7000 0 250000 1200; C 8000 0 250000 600"
        << QByteArray("G21\nG90\nM4 S0\nG1 X1 Y0 F1200 S250.5\nG0 X5\nG1 X6\nG1 X7 S250\nG1 X8 F600\n"
                      "M5\nG0 X0 Y0\n");
    // Marlin turns the beam on again after travel, and on every change of power.
    QTest::newRow("marlin power changes") << marlin
        << "C 1000 0 100000 1200; C 2000 0 200000 1200; T 5000 0; C 6000 0 200000 1200; C 7000 0 0 1200; C 8000 0 200000 1200"
        << QByteArray("G21\nG90\nM3 S100\nG1 X1 Y0 F1200\nM3 S200\nG1 X2\nM5\nG0 X5\nM3 S200\nG1 X6\nM5\nG1 X7\n"
                      "M3 S200\nG1 X8\nM5\nG0 X0 Y0\n");
    // A zero-power move first in GRBL needs no S (M4 S0 set it), and travel before any burn needs no M5.
    QTest::newRow("grbl overscan first") << grbl << "C 2000 3000 0 3000; C 4000 3000 1000 3000" << QByteArray(
        "G21\nG90\nM4 S0\nG1 X2 Y3 F3000\nG1 X4 S1\nM5\nG0 X0 Y0\n");
    QTest::newRow("fan travel first") << fan << "T 2000 3000; T 2000 4000" << QByteArray(
        "G21\nG90\nG0 X2 Y3\nG0 Y4\nM107\nG0 X0 Y0\n");
    // Dialects without decimals round a planned power to whole S; a power rounding to 0 burns nothing.
    QTest::newRow("marlin whole S") << marlin << "C 1000 0 127600 60; C 2000 0 127900 60; C 3000 0 400 60" << QByteArray(
        "G21\nG90\nM3 S128\nG1 X1 Y0 F60\nG1 X2\nM5\nG1 X3\nM5\nG0 X0 Y0\n");
    QTest::newRow("grbl thousandths of S") << grbl << "C 1000 0 1 60; C 2000 0 999999 60" << QByteArray(
        "G21\nG90\nM4 S0\nG1 X1 Y0 F60 S0.001\nG1 X2 S999.999\nM5\nG0 X0 Y0\n");
    QTest::newRow("micrometres and signs") << grbl << "T -500 1; T -1 -1000; T 123456 -7" << QByteArray(
        "G21\nG90\nM4 S0\nG0 X-0.5 Y0.001\nG0 X-0.001 Y-1\nG0 X123.456 Y-0.007\nM5\nG0 X0 Y0\n");
    QTest::newRow("largest coordinates") << grbl << "C 2147483647 -2147483647 2147483647 2147483647" << QByteArray(
        "G21\nG90\nM4 S0\nG1 X2147483.647 Y-2147483.647 F2147483647 S2147483.647\nM5\nG0 X0 Y0\n");
    QTest::newRow("marlin largest power") << marlin << "C 1000 0 2147483647 60" << QByteArray(
        "G21\nG90\nM3 S2147483\nG1 X1 Y0 F60\nM5\nG0 X0 Y0\n");
    // clang-format on
}

void TestJobEncoder::moves()
{
    QFETCH(int, dialect);
    QFETCH(QString, moves);
    QFETCH(QByteArray, gcode);
    const QByteArray out = encode(Dialect(dialect), moves);
    QCOMPARE(out, gcode);
    for (const QByteArray &line : out.split('\n'))
        QVERIFY2(line.size() <= 70, line.constData());
}

void TestJobEncoder::layerComment_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("line");
    const QString longName = QString(80, QLatin1Char('a'));
    // "; layer 12: " takes 12 characters, leaving 58 for the name.
    const QString longWide = QString(20, QLatin1Char('b')) + QString(30, QChar(0x00e9));
    // clang-format off
    QTest::newRow("first")       << 0  << "Photo"          << QByteArray("; layer 1: Photo\n");
    QTest::newRow("twelfth")     << 11 << "Cut"            << QByteArray("; layer 12: Cut\n");
    QTest::newRow("newlines")    << 2  << "two\nlines\r"   << QByteArray("; layer 3: two lines\n");
    QTest::newRow("tab")         << 0  << "a\tb"           << QByteArray("; layer 1: a b\n");
    QTest::newRow("empty")       << 0  << ""               << QByteArray("; layer 1:\n");
    QTest::newRow("long cut")    << 11 << longName         << QByteArray("; layer 12: ") + QByteArray(58, 'a') + "\n";
    // e-acute takes two bytes: 20 + 19 x 2 = 58 bytes fit exactly.
    QTest::newRow("long utf-8")  << 11 << longWide         << QByteArray("; layer 12: ") + QByteArray(20, 'b')
                                                              + QString(19, QChar(0x00e9)).toUtf8() + "\n";
    // One byte less room: the character that would be cut in two is left out whole.
    QTest::newRow("utf-8 edge")  << 99 << longWide         << QByteArray("; layer 100: ") + QByteArray(20, 'b')
                                                              + QString(18, QChar(0x00e9)).toUtf8() + "\n";
    QTest::newRow("chinese")     << 0  << QString::fromUtf8("\xe5\x9b\xbe\xe5\xb1\x82") << QByteArray("; layer 1: \xe5\x9b\xbe\xe5\xb1\x82\n");
    // clang-format on
}

void TestJobEncoder::layerComment()
{
    QFETCH(int, index);
    QFETCH(QString, name);
    QFETCH(QByteArray, line);
    MachineProfile profile;
    profile.dialect = Dialect::Marlin;
    QByteArray out;
    JobEncoder encoder(profile, &out);
    JobLayer layer;
    layer.name = name;
    encoder.beginLayer(index, layer);
    QCOMPARE(out, QByteArray("G21\nG90\n") + line);
    QVERIFY(line.size() <= 71);
}

TARNWELL_TEST_MAIN(TestJobEncoder)
#include "tst_jobencoder.moc"
