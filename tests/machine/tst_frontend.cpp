// Tests of the job streamer: frame texts, job states and the texts they send,
// answers passed to the log, and a linked streamer driving a pseudo-terminal.
#include "testsupport.h"
#include "messagecapture.h"
#include "modalcloser.h"
#include "ptypair.h"

#include "cpserialport.h"
#include "frontend.h"
#include "gsendmodel.h"

#include <QComboBox>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>

namespace {
const QByteArray kJob("G90\nG0 X10 Y20\nG1 X30 Y5 S255\n;end\n");

QStringList texts(const QSignalSpy &spy)
{
    QStringList out;
    for (const QList<QVariant> &args : spy)
        out.append(args.at(0).toString());
    return out;
}

bool writeJob(const QString &path, const QByteArray &content)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(content) == content.size();
}

// Runs one named action; "print" uses job.gcode, "printMissing" a file that
// does not exist, "ui" sends a hand-typed line.
void act(FrontEnd &front, const QString &action, const QString &dir)
{
    if (action == "print")
        front.SlotPrint(dir + "/job.gcode");
    else if (action == "printMissing")
        front.SlotPrint(dir + "/missing.gcode");
    else if (action == "stop")
        front.SlotStop();
    else if (action == "recov")
        front.SlotRecov();
    else if (action == "cancel")
        front.SlotCancle();
    else if (action == "frame")
        front.GenBounding(QRectF(100, 200, 300, 400));
    else if (action == "ui")
        front.SlotUIWrite(QStringLiteral("G1 X5 F2000"));
    else
        QFAIL(qPrintable("unknown action " + action));
}
}

class TestFrontEnd : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase();
    void cleanupTestCase();
    void frame_data();
    void frame();
    void jobStates_data();
    void jobStates();
    void readArduino_data();
    void readArduino();
    void linkedJob_data();
    void linkedJob();
    void answersReachLog();

private:
    PtyPair *pair = nullptr;
    PtyPeer peer;
    CPSerialPort *panel = nullptr;
    FrontEnd *relay = nullptr;
    QSignalSpy *relayConnected = nullptr;
    ScopedWorkDir *work = nullptr;
};

void TestFrontEnd::initTestCase()
{
    work = new ScopedWorkDir;
    QVERIFY(writeJob(work->file("job.gcode"), kJob));
    pair = new PtyPair(work->path(), "tty");
    QVERIFY(pair->start());
    QVERIFY(peer.open(pair->endB()));

    panel = new CPSerialPort;
    panel->SlotRestBox({pair->endA()});
    auto *combo = panel->findChild<QComboBox *>("portCombo");
    combo->setCurrentIndex(combo->findText(pair->endA()));
    relay = new FrontEnd(nullptr, panel);
    relayConnected = new QSignalSpy(relay, &FrontEnd::Sig_connected);

    panel->findChild<QPushButton *>("btnConnect")->click();
    QCOMPARE(relayConnected->count(), 1);
    QCOMPARE(relayConnected->at(0).at(0).toBool(), true);
    panel->WritePort(QStringLiteral("M105"));
    QCOMPARE(peer.read(4), QByteArray("M105"));
}

void TestFrontEnd::cleanupTestCase()
{
    // The panel's own disconnect reaches the streamer; the next click closes the port.
    auto *button = panel->findChild<QPushButton *>("btnConnect");
    button->click();
    QCOMPARE(relayConnected->count(), 2);
    QCOMPARE(relayConnected->at(1).at(0).toBool(), false);
    button->click();
    ModalCloser closer;  // a wrong click sequence must not leave a box open
    panel->WritePort(QStringLiteral("M2"));
    QCOMPARE(peer.read(0), QByteArray());
    QVERIFY(closer.seen().isEmpty());

    delete relayConnected;
    delete relay;
    delete panel;  // its worker thread stays, as in the program
    peer.close();
    delete pair;
    delete work;
}

void TestFrontEnd::frame_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<int>("calls");
    QTest::addColumn<QStringList>("moves");  // the ten texts between the header and footer

    const QStringList rectangle{
        "G0 X10 Y20 F3000\n", "M4 P30 \n", "G1 X40 Y20 F3000 \n",
        "G1 X40 Y60 \n", "G1 X10 Y60 \n", "G1 X10 Y20 \n"};
    QTest::newRow("rectangle 100 200 300 400") << QRectF(100, 200, 300, 400) << 1 << rectangle;
    QTest::newRow("second call appends") << QRectF(100, 200, 300, 400) << 2 << rectangle;
    QTest::newRow("fractions")
        << QRectF(15, 25, 7, 3) << 1
        << QStringList{"G0 X1.5 Y2.5 F3000\n", "M4 P30 \n", "G1 X2.2 Y2.5 F3000 \n",
                       "G1 X2.2 Y2.8 \n", "G1 X1.5 Y2.8 \n", "G1 X1.5 Y2.5 \n"};
    QTest::newRow("six significant digits")
        << QRectF(1234567, 10000000, 5, 0) << 1
        << QStringList{"G0 X123457 Y1e+06 F3000\n", "M4 P30 \n", "G1 X123457 Y1e+06 F3000 \n",
                       "G1 X123457 Y1e+06 \n", "G1 X123457 Y1e+06 \n", "G1 X123457 Y1e+06 \n"};
    QTest::newRow("negative origin")
        << QRectF(-50, -20, 100, 40) << 1
        << QStringList{"G0 X-5 Y-2 F3000\n", "M4 P30 \n", "G1 X5 Y-2 F3000 \n",
                       "G1 X5 Y2 \n", "G1 X-5 Y2 \n", "G1 X-5 Y-2 \n"};
}

void TestFrontEnd::frame()
{
    QFETCH(QRectF, rect);
    QFETCH(int, calls);
    QFETCH(QStringList, moves);

    QStringList one{"G90 \n", "M4 P0 \n"};
    one += moves;
    one += moves;
    one += QStringList{"M4 P0 \n", "G1 F2000 X0 Y0 \n"};
    QCOMPARE(one.size(), 16);

    FrontEnd front;
    QSignalSpy sent(&front, &FrontEnd::Sig_toarduino);
    QStringList expected;
    QStringList expectedSent;
    for (int i = 0; i < calls; ++i) {
        front.GenBounding(rect);
        expected += one;
        expectedSent += QStringLiteral("M4 P0 \n");
    }
    QCOMPARE(QStringList(front.BoundDraws()), expected);
    QCOMPARE(texts(sent), expectedSent);
    QVERIFY(front.Bounding());

    front.ResetBounding();
    QVERIFY(front.BoundDraws().isEmpty());
    QVERIFY(!front.Bounding());
}

void TestFrontEnd::jobStates_data()
{
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QStringList>("sent");
    QTest::addColumn<int>("state");
    QTest::addColumn<bool>("finished");
    QTest::addColumn<int>("linesRead");
    QTest::addColumn<QString>("current");

    QTest::newRow("print when idle")
        << QStringList{"print"} << QStringList{"G90"} << 0 << false << 4 << "G90\n";
    QTest::newRow("stop") << QStringList{"stop"} << QStringList{"M107"} << 2 << true << 0 << "";
    QTest::newRow("resume") << QStringList{"recov"} << QStringList{"1"} << 1 << false << 0 << "";
    QTest::newRow("cancel")
        << QStringList{"cancel"} << QStringList{"M107", "G28 X Y"} << 0 << true << 0 << "";
    QTest::newRow("print refused while stopped")
        << QStringList{"stop", "print"} << QStringList{"M107"} << 2 << true << 0 << "";
    QTest::newRow("print refused after resume")
        << QStringList{"recov", "print"} << QStringList{"1"} << 1 << false << 0 << "";
    QTest::newRow("cancel after stop allows a print")
        << QStringList{"stop", "cancel", "print"}
        << QStringList{"M107", "M107", "G28 X Y", "G90"} << 0 << false << 4 << "G90\n";
    QTest::newRow("stop after print")
        << QStringList{"print", "stop"} << QStringList{"G90", "M107"} << 2 << true << 4
        << "G90\n";
    QTest::newRow("missing file still sends G90")
        << QStringList{"printMissing"} << QStringList{"G90"} << 0 << false << 0 << "end";
    QTest::newRow("hand-typed line unchanged")
        << QStringList{"ui"} << QStringList{"G1 X5 F2000"} << 0 << true << 0 << "";
}

void TestFrontEnd::jobStates()
{
    QFETCH(QStringList, actions);
    QFETCH(QStringList, sent);
    QFETCH(int, state);
    QFETCH(bool, finished);
    QFETCH(int, linesRead);
    QFETCH(QString, current);

    FrontEnd front;  // no link: texts are only emitted
    QSignalSpy out(&front, &FrontEnd::Sig_toarduino);
    QSignalSpy lines(front.Reader(), &GSendModel::SigWrite);
    for (const QString &action : actions)
        act(front, action, work->path());

    QCOMPARE(texts(out), sent);
    QCOMPARE(front.State(), state);
    QCOMPARE(front.Finished(), finished);
    QCOMPARE(lines.count(), linesRead);
    QCOMPARE(front.Current(), current);
}

void TestFrontEnd::readArduino_data()
{
    QTest::addColumn<QString>("answer");
    QTest::addColumn<QStringList>("debug");

    QTest::newRow("empty answer, no debug line") << QString() << QStringList();
    QTest::newRow("answer logged")
        << QStringLiteral("ok") << QStringList{QStringLiteral("get from arduino: \"ok\"")};
}

void TestFrontEnd::readArduino()
{
    QFETCH(QString, answer);
    QFETCH(QStringList, debug);

    FrontEnd front;
    QSignalSpy shown(&front, &FrontEnd::Sig_uishow);
    MessageCapture capture;
    front.ReadArduino(answer);

    QCOMPARE(texts(shown), QStringList{answer});
    QCOMPARE(capture.startingWith("get from arduino:"), debug);
}

void TestFrontEnd::linkedJob_data()
{
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<QByteArray>("wire");

    // Lines leave as read, without line ends: the worker adds none.
    QTest::newRow("print sends every line then G90")
        << QStringList{"print"} << QByteArray("G90G0 X10 Y20G1 X30 Y5 S255;endG90");
    QTest::newRow("stop, resume, cancel")
        << QStringList{"stop", "recov", "cancel"} << QByteArray("M1071M107G28 X Y");
    QTest::newRow("print after cancel")
        << QStringList{"stop", "print", "cancel", "print"}
        << QByteArray("M107M107G28 X YG90G0 X10 Y20G1 X30 Y5 S255;endG90");
    QTest::newRow("missing file") << QStringList{"printMissing"} << QByteArray("G90");
    QTest::newRow("frame sends one beam-off")
        << QStringList{"frame"} << QByteArray("M4 P0 \n");
    QTest::newRow("hand-typed line") << QStringList{"ui"} << QByteArray("G1 X5 F2000");
}

void TestFrontEnd::linkedJob()
{
    QFETCH(QStringList, actions);
    QFETCH(QByteArray, wire);

    FrontEnd front(nullptr, panel);
    for (const QString &action : actions)
        act(front, action, work->path());
    QCOMPARE(peer.read(wire.size()), wire);
}

void TestFrontEnd::answersReachLog()
{
    QSignalSpy shown(relay, &FrontEnd::Sig_uishow);
    QVERIFY(peer.write("ok\n"));
    QTest::qWait(100);
    QVERIFY(peer.write("ok T:21\n"));
    QTRY_COMPARE(shown.count(), 1);
    QCOMPARE(shown.at(0).at(0).toString(), QStringLiteral("ok\nok T:21\n"));
}

TARNWELL_TEST_MAIN(TestFrontEnd)
#include "tst_frontend.moc"
