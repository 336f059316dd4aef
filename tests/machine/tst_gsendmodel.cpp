// Tests of the G-code file reader: scan results, emitted lines, the commands it
// hands out, its debug lines, and files that are missing or malformed.
#include "testsupport.h"
#include "messagecapture.h"

#include "gsendmodel.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSignalSpy>

namespace {
void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    QCOMPARE(f.write(bytes), qint64(bytes.size()));
}

QStringList emitted(const QSignalSpy &spy)
{
    QStringList lines;
    for (const QList<QVariant> &args : spy)
        lines.append(args.at(0).toString());
    return lines;
}

const QRectF kNoExtent(99999, 99999, -199998, -199998);
}

class TestGSendModel : public QObject
{
    Q_OBJECT
private slots:
    void scan_data();
    void scan();
    void nextCommand_data();
    void nextCommand();
    void scanDebugLines_data();
    void scanDebugLines();
    void unopenableFile();
    void reopenRestartsScan();
    void hostileFiles_data();
    void hostileFiles();
};

void TestGSendModel::scan_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("commands");
    QTest::addColumn<QRectF>("bounds");
    QTest::addColumn<QStringList>("lines");

    QTest::newRow("four lines")
        << QByteArray("G90\nG0 X10 Y20\nG1 X30 Y5 S255\n;end\n") << 3
        << QRectF(10, 5, 20, 15)
        << QStringList{"G90", "G0 X10 Y20", "G1 X30 Y5 S255", ";end"};
    QTest::newRow("negative coordinate ignored")
        << QByteArray("G1 X-5 Y3\nG0 X2 Y4\nG0 X6 Y1\n") << 3 << QRectF(2, 1, 4, 3)
        << QStringList{"G1 X-5 Y3", "G0 X2 Y4", "G0 X6 Y1"};
    QTest::newRow("feed before X ignored")
        << QByteArray("G1 F2000 X0 Y0\nG1 X7.5 Y8.25\nG1 X9 Y9\n") << 3
        << QRectF(7.5, 8.25, 1.5, 0.75)
        << QStringList{"G1 F2000 X0 Y0", "G1 X7.5 Y8.25", "G1 X9 Y9"};
    QTest::newRow("letters w d s and blanks before X")
        << QByteArray("G1 sdw  X4 Y6\nG0 ws X2Y3\n") << 2 << QRectF(2, 3, 2, 3)
        << QStringList{"G1 sdw  X4 Y6", "G0 ws X2Y3"};
    QTest::newRow("no moves") << QByteArray("M3 S100\n;comment\n\nG90\n") << 1 << kNoExtent
                              << QStringList{"M3 S100", ";comment", "", "G90"};
    QTest::newRow("empty file") << QByteArray() << 0 << kNoExtent << QStringList();
    QTest::newRow("only capital G at line start counts")
        << QByteArray(" G1 X1 Y1\ng1 X2 Y2\nM5 G1 X3 Y3\nG28\n") << 1 << QRectF(1, 1, 2, 2)
        << QStringList{" G1 X1 Y1", "g1 X2 Y2", "M5 G1 X3 Y3", "G28"};
    QTest::newRow("crlf and missing last line end")
        << QByteArray("G0 X1 Y1\r\nG1 X3 Y2") << 2 << QRectF(1, 1, 2, 1)
        << QStringList{"G0 X1 Y1", "G1 X3 Y2"};
    QTest::newRow("empty captures read as zero")
        << QByteArray("G1 X Y\nG1 X5 Y5\n") << 2 << QRectF(0, 0, 5, 5)
        << QStringList{"G1 X Y", "G1 X5 Y5"};
}

void TestGSendModel::scan()
{
    QFETCH(QByteArray, content);
    QFETCH(int, commands);
    QFETCH(QRectF, bounds);
    QFETCH(QStringList, lines);

    ScopedWorkDir dir;
    const QString path = dir.file("job.gcode");
    writeFile(path, content);

    GSendModel model;
    QSignalSpy spy(&model, &GSendModel::SigWrite);
    model.OpenFile(path);

    QCOMPARE(model.CommandCount(), commands);
    QCOMPARE(model.Bounds(), bounds);
    QCOMPARE(emitted(spy), lines);
    QCOMPARE(model.FileName(), path);
}

void TestGSendModel::nextCommand_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("commands");

    QTest::newRow("trailing comment, last line dropped")
        << QByteArray("G1 X1 Y2 ; move\nG1 X3 Y4\n") << QStringList{"G1 X1 Y2 \n", "end"};
    QTest::newRow("greedy up to the last semicolon")
        << QByteArray("G1 X1;a ;b\nG90\n") << QStringList{"G1 X1;a \n", "end"};
    QTest::newRow("heater wait skipped")
        << QByteArray("M109 S200\nG1 X1 Y1\nG4 M109\nG1 X2 Y2\nG90\n")
        << QStringList{"G1 X1 Y1\n", "G1 X2 Y2\n", "end"};
    QTest::newRow("comments and empty lines skipped")
        << QByteArray(";head\n\nG0 X1 Y1\n\n;x\nG91\nG90\n")
        << QStringList{"G0 X1 Y1\n", "G91\n", "end"};
    QTest::newRow("blank-only line handed out")
        << QByteArray("   \nG90\n") << QStringList{"   \n", "end"};
    QTest::newRow("skipping into the end repeats the previous command")
        << QByteArray("G1 X1\nG1 X2\n;c\n;d\n")
        << QStringList{"G1 X1\n", "G1 X2\n", "G1 X2\n", "end"};
    QTest::newRow("empty file") << QByteArray() << QStringList{"end", "end"};
    QTest::newRow("single line") << QByteArray("G28\n") << QStringList{"end"};
    QTest::newRow("no final line end")
        << QByteArray("G90\nG91") << QStringList{"G90\n", "end"};
}

void TestGSendModel::nextCommand()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, commands);

    ScopedWorkDir dir;
    const QString path = dir.file("job.gcode");
    writeFile(path, content);

    GSendModel model;
    model.OpenFile(path);
    QStringList got;
    for (int i = 0; i < commands.size(); ++i)
        got.append(model.NextCommand());
    QCOMPARE(got, commands);
}

void TestGSendModel::scanDebugLines_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("layer count anywhere")
        << QByteArray(";Layer count: 12\nG1 ;Layer count:7\n")
        << QStringList{"total layers is : 12", "total layers is : 7"};
    QTest::newRow("time only after the first character")
        << QByteArray(";TIME: 300\nM1 ;TIME:42\n") << QStringList{"total time is : 42"};
    QTest::newRow("unused layer tag is silent")
        << QByteArray(";LAYER: 3\nG90\n") << QStringList();
}

void TestGSendModel::scanDebugLines()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, expected);

    ScopedWorkDir dir;
    const QString path = dir.file("job.gcode");
    writeFile(path, content);

    GSendModel model;
    MessageCapture capture;
    model.OpenFile(path);

    QStringList got = capture.startingWith("total layers is :");
    got += capture.startingWith("total time is :");
    QCOMPARE(got, expected);
    QCOMPARE(capture.startingWith("total comands : "),
             QStringList{QStringLiteral("total comands : %1").arg(model.CommandCount())});
}

void TestGSendModel::unopenableFile()
{
    ScopedWorkDir dir;
    const QString path = dir.file("missing.gcode");

    GSendModel model;
    QSignalSpy spy(&model, &GSendModel::SigWrite);
    MessageCapture capture;
    model.OpenFile(path);

    QCOMPARE(spy.count(), 0);
    QCOMPARE(model.Bounds(), kNoExtent);
    QCOMPARE(model.CommandCount(), 0);
    QCOMPARE(capture.startingWith("Can't open the g-code file!"),
             QStringList{QStringLiteral("Can't open the g-code file! ") + path});
    QCOMPARE(model.NextCommand(), QStringLiteral("end"));
}

void TestGSendModel::reopenRestartsScan()
{
    // A second file replaces the first: fresh count, fresh extent, first line first.
    ScopedWorkDir dir;
    writeFile(dir.file("a.gcode"), "G1 X50 Y50\nG1 X60 Y70\nG90\n");
    writeFile(dir.file("b.gcode"), "G0 X1 Y2\nG91\nG90\n");

    GSendModel model;
    model.OpenFile(dir.file("a.gcode"));
    QCOMPARE(model.NextCommand(), QStringLiteral("G1 X50 Y50\n"));
    model.Reset();
    model.OpenFile(dir.file("b.gcode"));
    QCOMPARE(model.CommandCount(), 3);
    QCOMPARE(model.Bounds(), QRectF(1, 2, 0, 0));
    QCOMPARE(model.NextCommand(), QStringLiteral("G0 X1 Y2\n"));
    QCOMPARE(model.NextCommand(), QStringLiteral("G91\n"));
    QCOMPARE(model.NextCommand(), QStringLiteral("end"));
}

void TestGSendModel::hostileFiles_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("lines");

    QByteArray random(256 * 1024, '\0');
    QRandomGenerator generator(7);
    for (char &c : random) {
        c = static_cast<char>(generator.bounded(256));
        if (c == '\r')
            c = 'r';  // keep line ends countable: only "\n" separates lines
    }
    QTest::newRow("random bytes") << random << int(random.count('\n') + 1);

    QByteArray longLine;
    longLine.reserve(10 * 1024 * 1024);
    while (longLine.size() < 10 * 1024 * 1024)
        longLine.append("G1 X12.5 Y7 ;a G0 X");
    QTest::newRow("one 10 MB line") << longLine << 1;
    QTest::newRow("10 MB line then more")
        << (longLine + "\nG1 X1 Y1\n;x\n") << 3;

    QByteArray nul("G1 X5\0 Y6\nG0 X1 Y1\0\0\n\0\n", 22);
    QTest::newRow("NUL bytes") << nul << 3;
}

void TestGSendModel::hostileFiles()
{
    QFETCH(QByteArray, content);
    QFETCH(int, lines);

    ScopedWorkDir dir;
    const QString path = dir.file("job.gcode");
    writeFile(path, content);

    GSendModel model;
    QSignalSpy spy(&model, &GSendModel::SigWrite);
    model.OpenFile(path);
    QCOMPARE(spy.count(), lines);

    // Handing out must reach the end within one call per line.
    int calls = 0;
    while (model.NextCommand() != QLatin1String("end") && calls <= lines)
        ++calls;
    QVERIFY(calls < lines);
}

TARNWELL_TEST_MAIN(TestGSendModel)
#include "tst_gsendmodel.moc"
