// Tests of the job streamer: frame texts, job states and what they send, answers
// passed to the log, and a streamer linked to a panel on a pseudo-terminal.
#include "testsupport.h"
#include "capture.h"
#include "ptypair.h"
#include "cpserialport.h"
#include "frontend.h"
#include "gsendmodel.h"

#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>

namespace {
QString jobPath;

QStringList texts(const QSignalSpy &spy)
{
    QStringList out;
    for (const QList<QVariant> &args : spy)
        out << args.at(0).toString();
    return out;
}

void act(FrontEnd &front, const QString &action)
{
    if (action == "print") front.SlotPrint(jobPath);
    else if (action == "printMissing") front.SlotPrint("missing.gcode");
    else if (action == "stop") front.SlotStop();
    else if (action == "recov") front.SlotRecov();
    else if (action == "cancel") front.SlotCancle();
    else if (action == "frame") front.GenBounding(QRectF(100, 200, 300, 400));
    else if (action == "ui") front.SlotUIWrite("G1 X5 F2000");
}
}

class TestFrontEnd : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void frame_data();
    void frame();
    void jobStates_data();
    void jobStates();
    void linkedJob_data();
    void linkedJob();
    void answersAndConnectReachStreamer();
};

void TestFrontEnd::initTestCase()
{
    QFile job("job.gcode");  // in the test program's own work directory
    jobPath = QFileInfo(job).absoluteFilePath();
    QVERIFY(job.open(QIODevice::WriteOnly) && job.write("G90\nG0 X10 Y20\nG1 X30 Y5 S255\n;end\n") > 0);
}

void TestFrontEnd::frame_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<int>("calls");
    QTest::addColumn<QStringList>("corners");  // x1, y1, x2, y2 as written

    QTest::newRow("rectangle 100 200 300 400") << QRectF(100, 200, 300, 400) << 1 << QStringList{"10", "20", "40", "60"};
    QTest::newRow("second call appends") << QRectF(100, 200, 300, 400) << 2 << QStringList{"10", "20", "40", "60"};
    QTest::newRow("fractions") << QRectF(15, 25, 7, 3) << 1 << QStringList{"1.5", "2.5", "2.2", "2.8"};
    QTest::newRow("six significant digits") << QRectF(1234567, 10000000, 5, 0) << 1
                                            << QStringList{"123457", "1e+06", "123457", "1e+06"};
}

void TestFrontEnd::frame()
{
    QFETCH(QRectF, rect);
    QFETCH(int, calls);
    QFETCH(QStringList, corners);

    const QString x1 = corners[0], y1 = corners[1], x2 = corners[2], y2 = corners[3];
    const QStringList trace{"G0 X" + x1 + " Y" + y1 + " F3000\n", "M4 P30 \n", "G1 X" + x2 + " Y" + y1 + " F3000 \n",
                            "G1 X" + x2 + " Y" + y2 + " \n", "G1 X" + x1 + " Y" + y2 + " \n", "G1 X" + x1 + " Y" + y1 + " \n"};
    const QStringList one = QStringList{"G90 \n", "M4 P0 \n"} + trace + trace + QStringList{"M4 P0 \n", "G1 F2000 X0 Y0 \n"};
    FrontEnd front;
    QSignalSpy sent(&front, &FrontEnd::Sig_toarduino);
    QStringList expected;
    for (int i = 0; i < calls; ++i) {
        front.GenBounding(rect);
        expected += one;
    }
    QCOMPARE(QStringList(front.BoundDraws()), expected);
    QCOMPARE(texts(sent), QVector<QString>(calls, "M4 P0 \n").toList());
    front.ResetBounding();
    QVERIFY(front.BoundDraws().isEmpty() && !front.Bounding());
}

void TestFrontEnd::jobStates_data()
{
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("finished");
    QTest::addColumn<int>("linesRead");

    QTest::newRow("print when idle") << QStringList{"print"} << QStringList{"G90"} << 0 << false << 4;
    QTest::newRow("stop") << QStringList{"stop"} << QStringList{"M107"} << 2 << true << 0;
    QTest::newRow("resume") << QStringList{"recov"} << QStringList{"1"} << 1 << false << 0;
    QTest::newRow("cancel") << QStringList{"cancel"} << QStringList{"M107", "G28 X Y"} << 0 << true << 0;
    QTest::newRow("print refused while stopped") << QStringList{"stop", "print"} << QStringList{"M107"} << 2 << true << 0;
    QTest::newRow("print refused after resume") << QStringList{"recov", "print"} << QStringList{"1"} << 1 << false << 0;
    QTest::newRow("cancel allows a print again")
        << QStringList{"stop", "cancel", "print"} << QStringList{"M107", "M107", "G28 X Y", "G90"} << 0 << false << 4;
    QTest::newRow("missing file still sends G90") << QStringList{"printMissing"} << QStringList{"G90"} << 0 << false << 0;
    QTest::newRow("typed line unchanged") << QStringList{"ui"} << QStringList{"G1 X5 F2000"} << 0 << true << 0;
}

void TestFrontEnd::jobStates()
{
    QFETCH(QStringList, actions);
    QFETCH(QStringList, sent);
    QFETCH(int, state);
    QFETCH(bool, finished);
    QFETCH(int, linesRead);

    FrontEnd front;  // as the main window makes it: no link, texts only emitted
    QSignalSpy out(&front, &FrontEnd::Sig_toarduino);
    QSignalSpy lines(front.Reader(), &GSendModel::SigWrite);
    for (const QString &action : actions)
        act(front, action);
    QCOMPARE(texts(out), sent);
    QCOMPARE(front.State(), state);
    QCOMPARE(front.Finished(), finished);
    QCOMPARE(lines.count(), linesRead);
}

void TestFrontEnd::linkedJob_data()
{
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QByteArray>("wire");

    // Lines leave as read, with no line ends: nothing on the way adds one.
    QTest::newRow("print sends every line then G90") << QStringList{"print"} << QByteArray("G90G0 X10 Y20G1 X30 Y5 S255;endG90");
    QTest::newRow("stop, resume, cancel") << QStringList{"stop", "recov", "cancel"} << QByteArray("M1071M107G28 X Y");
    QTest::newRow("refused print, then print after cancel")
        << QStringList{"stop", "print", "cancel", "print"} << QByteArray("M107M107G28 X YG90G0 X10 Y20G1 X30 Y5 S255;endG90");
    QTest::newRow("frame sends one beam-off") << QStringList{"frame"} << QByteArray("M4 P0 \n");
}

void TestFrontEnd::linkedJob()
{
    QFETCH(QStringList, actions);
    QFETCH(QByteArray, wire);

    ScopedWorkDir dir;
    PtyPair pty(dir.path(), "tty");
    QVERIFY(pty.start());
    CPSerialPort panel;
    panel.SlotRestBox({pty.endA()});
    panel.findChild<QComboBox *>("portCombo")->setCurrentText(pty.endA());
    panel.findChild<QPushButton *>("btnConnect")->click();
    FrontEnd front(nullptr, &panel);
    for (const QString &action : actions)
        act(front, action);
    QCOMPARE(pty.read(wire.size()), wire);
    emit panel.SigConnect(QString());  // close before the pty goes
    emit panel.SigWritePort("late");
    QCOMPARE(pty.read(0), QByteArray());
}

void TestFrontEnd::answersAndConnectReachStreamer()
{
    ScopedWorkDir dir;
    PtyPair pty(dir.path(), "tty");
    QVERIFY(pty.start());
    CPSerialPort panel;
    panel.SlotRestBox({pty.endA()});
    panel.findChild<QComboBox *>("portCombo")->setCurrentText(pty.endA());
    FrontEnd front(nullptr, &panel);
    QSignalSpy connected(&front, &FrontEnd::Sig_connected), shown(&front, &FrontEnd::Sig_uishow);
    MessageCapture capture;

    panel.findChild<QPushButton *>("btnConnect")->click();
    panel.WritePort("M105");
    QCOMPARE(pty.read(4), QByteArray("M105"));
    QVERIFY(pty.write("ok\n"));
    QTest::qWait(100);
    QVERIFY(pty.write("ok T:21\n"));
    QTRY_COMPARE(texts(shown), QStringList{"ok\nok T:21\n"});
    QCOMPARE(capture.starting("get from arduino:"), QStringList{"get from arduino: \"ok\\nok T:21\\n\""});
    front.ReadArduino(QString());  // shown, but no debug line
    QCOMPARE(texts(shown).size(), 2);
    QCOMPARE(capture.starting("get from arduino:").size(), 1);

    panel.findChild<QPushButton *>("btnConnect")->click();
    QCOMPARE(connected.count(), 2);
    QVERIFY(connected.at(0).at(0).toBool() && !connected.at(1).at(0).toBool());
    emit panel.SigConnect(QString());  // the worker still holds the port: close it
    emit panel.SigWritePort("late");
    QCOMPARE(pty.read(0), QByteArray());
}

TARNWELL_TEST_MAIN(TestFrontEnd)
#include "tst_frontend.moc"
