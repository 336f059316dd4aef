// Tests of the G-code file reader: scan results, emitted lines, the commands it
// hands out, its debug lines, and missing or malformed files.
#include "testsupport.h"
#include "capture.h"
#include "gsendmodel.h"

#include <QRandomGenerator>
#include <QRegExp>

static QString writeJob(const ScopedWorkDir &dir, const QByteArray &bytes)
{
    QFile f(dir.file("job.gcode"));
    if (!f.open(QIODevice::WriteOnly) || f.write(bytes) != bytes.size())
        qFatal("cannot write the job file");
    return f.fileName();
}

class TestGSendModel : public QObject
{
    Q_OBJECT
private slots:
    void read_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("content");  // empty: a file that cannot be opened
        QTest::addColumn<int>("count");
        QTest::addColumn<QRectF>("bounds");
        QTest::addColumn<QStringList>("debug");  // layer, time and open-failure lines
        QTest::addColumn<QStringList>("commands");
        const QRectF none(99999, 99999, -199998, -199998);
        auto row = [](const char *name, const QByteArray &content, int count, const QRectF &bounds,
                      const QStringList &commands, const QStringList &debug = {}) {
            QTest::newRow(name) << content << count << bounds << debug << commands;
        };
        row("four lines", "G90\nG0 X10 Y20\nG1 X30 Y5 S255\n;end\n", 3, {10, 5, 20, 15},
            {"G90\n", "G0 X10 Y20\n", "G1 X30 Y5 S255\n", "end"});
        row("negative, feed-first and lower-case moves ignored",
            "G1 X-5 Y3\nG1 F2000 X0 Y0\ng1 X9 Y9\n G1 X2.5 Y4\nG0 sd X6Y1\nG1 X Y8\n", 4, {0, 1, 6, 7},
            {"G1 X-5 Y3\n"});
        row("trailing comment kept up to the last ;, last line dropped", "G1 X1 Y2 ; move\nG1 X1;a ;b\nG1 X3 Y4\n", 3,
            {1, 2, 2, 2}, {"G1 X1 Y2 \n", "G1 X1;a \n", "end"});
        row("comments, empty lines and heater waits skipped", ";head\n\nM109 S200\nG0 X1 Y1\nG4 M109\n\nG91\nG90", 4,
            {1, 1, 0, 0}, {"G0 X1 Y1\n", "G91\n", "end"});
        row("crlf; skipping into the end repeats the previous command", "M3 S100\r\n\r\n;c\r\nG90", 1, none,
            {"M3 S100\n", "M3 S100\n", "end"});
        const QByteArray zeros(60, '0');
        row("a number too large for a float reads as 0", "G1 X3" + zeros + " Y5\nG1 X2 Y1" + zeros + "\n", 2,
            {0, 0, 2, 5}, {"G1 X3" + QString(zeros) + " Y5\n", "end"});
        row("blank-only line handed out", "   \nG90\n", 1, none, {"   \n", "end"});
        row("layer count anywhere, time not at line start", ";Layer count: 12\n;TIME: 300\nM1 ;TIME:42\n;LAYER: 3\n", 0,
            none, {"M1 \n", "end"}, {"total layers is : 12", "total time is : 42"});
        row("unopenable file", QByteArray(), 0, none, {"end", "end"}, {"Can't open the g-code file! missing.gcode"});
        // clang-format on
    }
    void read()
    {
        QFETCH(QByteArray, content);
        QFETCH(int, count);
        QFETCH(QRectF, bounds);
        QFETCH(QStringList, debug);
        QFETCH(QStringList, commands);
        ScopedWorkDir dir;
        GSendModel model;
        model.OpenFile(writeJob(dir, "G0 X50 Y50\nG90\n"));  // a new file starts from its first line
        QCOMPARE(model.NextCommand(), QString("G0 X50 Y50\n"));
        const QString path = content.isEmpty() ? "missing.gcode" : writeJob(dir, content);
        QSignalSpy spy(&model, &GSendModel::SigWrite);
        MessageCapture capture;
        model.OpenFile(path);
        QCOMPARE(model.CommandCount(), count);
        QCOMPARE(model.Bounds(), bounds);
        QStringList lines = QString(content).remove('\r').split('\n');  // every line as read, with no line end
        if (content.isEmpty() || content.endsWith('\n'))
            lines.removeLast();
        QCOMPARE(args(spy), lines);
        QCOMPARE(capture.starting("Can't") + capture.starting("total layers") + capture.starting("total time"), debug);
        QCOMPARE(capture.starting("total comands"), QStringList{QString("total comands : %1").arg(count)});
        QStringList got;
        while (got.size() < commands.size())
            got.append(model.NextCommand());
        QCOMPARE(got, commands);
    }

    // Random near-moves, each alone in a file: the extent must be what the move patterns
    // and QString::toFloat make of the line.
    void movesAsThePatternsRead()
    {
        const QList<QByteArray> heads = {"G1 ", "G0 ", " G1 ", "G01 ", "G1 G0 ", "G0 X1 G1 ", ";G1 ", "G2 "};
        const QList<QByteArray> letters = {"", "", "w", "ds", "s ", "wx", " d"};
        const QList<QByteArray> spaces = {"", "", " ", "  "};
        const QList<QByteArray> numbers = {"",
                                           "0",
                                           "7",
                                           "00.5",
                                           "12.5",
                                           "3.",
                                           ".25",
                                           "170.0",
                                           "1.2.3",
                                           "-4",
                                           "1e5",
                                           "123456789012345",
                                           "1.23456789012345",
                                           "1234567890123456.5",
                                           "9.99999999",
                                           "0.1000000000000001"};
        const QList<QByteArray> tails = {"", "", " S255", " ;c", "Y2", " G1 X5 Y6", "\r"};
        const QString xy = " [wds]* *X([0-9.]*[0-9]*) *Y([0-9.]*[0-9]*)";
        QRegExp g1("G1" + xy), g0("G0" + xy);
        QRandomGenerator random(11);
        auto pick = [&random](const QList<QByteArray> &list) { return list[random.bounded(list.size())]; };
        ScopedWorkDir dir;
        GSendModel model;
        MessageCapture quiet;
        for (int n = 0; n < 800; ++n) {
            const QByteArray line = pick(heads) + pick(letters) + pick(spaces) + (random.bounded(8) ? "X" : "x")
                                    + pick(numbers) + pick(spaces) + (random.bounded(8) ? "Y" : "F") + pick(numbers)
                                    + pick(tails);
            QRectF expected(99999, 99999, -199998, -199998);
            const QString text = QString::fromLatin1(line).remove('\r');
            QRegExp *move = g1.indexIn(text) != -1 ? &g1 : g0.indexIn(text) != -1 ? &g0 : nullptr;
            // One point against the start values: a low one moves only the corner, a high one only the size.
            if (move) {
                const float x = move->cap(1).toFloat(), y = move->cap(2).toFloat();
                const float left = std::min(x, 99999.0f), top = std::min(y, 99999.0f);
                expected = QRectF(left, top, std::max(x, -99999.0f) - left, std::max(y, -99999.0f) - top);
            }
            model.OpenFile(writeJob(dir, line + "\n"));
            QVERIFY2(model.Bounds() == expected, line.constData());
        }
    }

    void hostileFiles_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("content");
        QByteArray random(256 * 1024, '\0');
        QRandomGenerator(7).fillRange(reinterpret_cast<quint32 *>(random.data()), random.size() / 4);
        QTest::newRow("random bytes, NULs among them") << random;
        const QByteArray longLine = QByteArray("G1 X12.5 Y7 ;a G0 X").repeated(10 * 1024 * 1024 / 19 + 1);
        QTest::newRow("one 10 MB line") << longLine;
        QTest::newRow("10 MB line then more") << longLine + "\nG1 X1 Y1\n;x\n";
        QTest::newRow("10 MB line without ; then more") << QByteArray(longLine).replace(';', ' ') + "\nG1 X1 Y1\n;x\n";
        // clang-format on
    }
    void hostileFiles()
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
};

TARNWELL_TEST_MAIN(TestGSendModel)
#include "tst_gsendmodel.moc"
