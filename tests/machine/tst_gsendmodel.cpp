// Tests of the G-code file reader: scan results, emitted lines, the commands it
// hands out, its debug lines, and missing or malformed files.
#include "testsupport.h"
#include "capture.h"
#include "gsendmodel.h"

#include <QRandomGenerator>
#include <QSignalSpy>

namespace {
const QRectF kNoExtent(99999, 99999, -199998, -199998);

QString writeJob(const ScopedWorkDir &dir, const QByteArray &bytes)
{
    QFile f(dir.file("job.gcode"));
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        qFatal("cannot write the job file");
    return f.fileName();
}
}

class TestGSendModel : public QObject
{
    Q_OBJECT
private slots:
    void scan_data();
    void scan();
    void nextCommand_data();
    void nextCommand();
    void hostileFiles_data();
    void hostileFiles();
};

void TestGSendModel::scan_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("commands");
    QTest::addColumn<QRectF>("bounds");
    QTest::addColumn<int>("lines");
    QTest::addColumn<QStringList>("debug");  // layer, time and open-failure lines

    QTest::newRow("four lines") << QByteArray("G90\nG0 X10 Y20\nG1 X30 Y5 S255\n;end\n") << 3
                                << QRectF(10, 5, 20, 15) << 4 << QStringList();
    QTest::newRow("negative, feed-first and lower-case moves ignored")
        << QByteArray("G1 X-5 Y3\nG1 F2000 X0 Y0\ng1 X9 Y9\n G1 X2.5 Y4\nG0 sd X6Y1\nG1 X Y8\n")
        << 4 << QRectF(0, 1, 6, 7) << 6 << QStringList();
    QTest::newRow("no moves, blank lines, crlf") << QByteArray("M3 S100\r\n\r\n;c\r\nG90") << 1
                                                 << kNoExtent << 4 << QStringList();
    QTest::newRow("layer count anywhere, time not at line start")
        << QByteArray(";Layer count: 12\n;TIME: 300\nM1 ;TIME:42\n;LAYER: 3\n") << 0 << kNoExtent << 4
        << QStringList{"total layers is : 12", "total time is : 42"};
    QTest::newRow("unopenable file") << QByteArray() << 0 << kNoExtent << 0
                                     << QStringList{"Can't open the g-code file! missing.gcode"};
}

void TestGSendModel::scan()
{
    QFETCH(QByteArray, content);
    QFETCH(int, commands);
    QFETCH(QRectF, bounds);
    QFETCH(int, lines);
    QFETCH(QStringList, debug);

    ScopedWorkDir dir;
    const QString path = debug.value(0).startsWith("Can't") ? "missing.gcode" : writeJob(dir, content);
    GSendModel model;
    QSignalSpy spy(&model, &GSendModel::SigWrite);
    MessageCapture capture;
    model.OpenFile(path);

    QCOMPARE(model.CommandCount(), commands);
    QCOMPARE(model.Bounds(), bounds);
    QCOMPARE(spy.count(), lines);
    QStringList split = QString(content).remove('\r').split('\n');
    for (int i = 0; i < lines; ++i)  // every line as read, with no line end
        QCOMPARE(spy.at(i).at(0).toString(), split.at(i));
    QCOMPARE(capture.starting("Can't") + capture.starting("total layers") + capture.starting("total time"), debug);
    QCOMPARE(capture.starting("total comands"), QStringList{QString("total comands : %1").arg(commands)});
}

void TestGSendModel::nextCommand_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("commands");

    QTest::newRow("trailing comment kept up to the last ;, last line dropped")
        << QByteArray("G1 X1 Y2 ; move\nG1 X1;a ;b\nG1 X3 Y4\n") << QStringList{"G1 X1 Y2 \n", "G1 X1;a \n", "end"};
    QTest::newRow("comments, empty lines and heater waits skipped")
        << QByteArray(";head\n\nM109 S200\nG0 X1 Y1\nG4 M109\n\nG91\nG90") << QStringList{"G0 X1 Y1\n", "G91\n", "end"};
    QTest::newRow("blank-only line handed out") << QByteArray("   \nG90\n") << QStringList{"   \n", "end"};
    QTest::newRow("skipping into the end repeats the previous command")
        << QByteArray("G1 X1\nG1 X2\n;c\n;d\n") << QStringList{"G1 X1\n", "G1 X2\n", "G1 X2\n", "end"};
    QTest::newRow("empty file") << QByteArray() << QStringList{"end", "end"};
}

void TestGSendModel::nextCommand()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, commands);

    ScopedWorkDir dir;
    GSendModel model;
    model.OpenFile(writeJob(dir, "G0 X50 Y50\nG90\n"));
    QCOMPARE(model.NextCommand(), QString("G0 X50 Y50\n"));
    model.Reset();
    model.OpenFile(writeJob(dir, content));  // a new file starts from its first line
    QStringList got;
    for (int i = 0; i < commands.size(); ++i)
        got.append(model.NextCommand());
    QCOMPARE(got, commands);
}

void TestGSendModel::hostileFiles_data()
{
    QTest::addColumn<QByteArray>("content");

    QByteArray random(256 * 1024, '\0');
    QRandomGenerator generator(7);
    for (char &c : random)
        c = char(generator.bounded(256));
    QTest::newRow("random bytes") << random;
    QByteArray longLine;
    while (longLine.size() < 10 * 1024 * 1024)
        longLine.append("G1 X12.5 Y7 ;a G0 X");
    QTest::newRow("one 10 MB line") << longLine;
    QTest::newRow("10 MB line then more") << longLine + "\nG1 X1 Y1\n;x\n";
    QTest::newRow("10 MB line without ; then more") << QByteArray(longLine).replace(';', ' ') + "\nG1 X1 Y1\n;x\n";
    QTest::newRow("NUL bytes") << QByteArray("G1 X5\0 Y6\nG0 X1 Y1\0\0\n\0\n", 22);
}

void TestGSendModel::hostileFiles()
{
    QFETCH(QByteArray, content);

    ScopedWorkDir dir;
    GSendModel model;
    QSignalSpy spy(&model, &GSendModel::SigWrite);
    MessageCapture quiet;  // keeps megabytes of "read gcode:" lines out of the log
    model.OpenFile(writeJob(dir, content));
    QVERIFY(spy.count() >= content.count('\n'));
    int calls = 0;  // the walk must end, one call per line at most
    while (model.NextCommand() != "end" && calls <= spy.count())
        ++calls;
    QVERIFY(calls < spy.count());
}

TARNWELL_TEST_MAIN(TestGSendModel)
#include "tst_gsendmodel.moc"
