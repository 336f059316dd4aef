// Tests of the port selection panel: its gate for text to the machine, the
// connect/disconnect sequence seen on a pseudo-terminal, the list, and a job
// streamer linked to the panel, up to an unplug.
#include "testsupport.h"
#include "capture.h"
#include "ptypair.h"
#include "cpserialport.h"
#include "tnwlserialport.h"
#include "frontend.h"

#include <QComboBox>
#include <QPushButton>
#include <QSerialPort>
#include <QSerialPortInfo>

namespace {
const QString kConnect = QString::fromUtf8("连接"), kDisconnect = QString::fromUtf8("断开");
const QString kNoPortBox = "Notice|Serial open failed.|1";

// A panel whose list holds the end of a fresh pty pair.
struct Rig
{
    ScopedWorkDir dir;
    PtyPair pty{dir.path(), "tty"};
    CPSerialPort panel;
    QComboBox *combo = panel.findChild<QComboBox *>("portCombo");
    QPushButton *button = panel.findChild<QPushButton *>("btnConnect");
    QStringList listed() const
    {
        QStringList l;
        for (int i = 0; i < combo->count(); ++i)
            l << combo->itemText(i);
        return l;
    }
    bool start()
    {
        panel.SlotRestBox({pty.endA()});
        combo->setCurrentText(pty.endA());
        return pty.start();
    }
    // Queues open, token, close behind the worker's pending work and waits for
    // the token: whatever was asked before it has then been done.
    bool drainWorker()
    {
        emit panel.SigConnect(pty.endA());
        emit panel.SigWritePort("sync");
        emit panel.SigConnect(pty.endA());
        return pty.read(4) == "sync";
    }
};
}  // namespace

class TestCPSerialPort : public QObject
{
    Q_OBJECT
private slots:
    void writeGate()
    {
        Rig rig;
        rig.combo->clear();
        QSignalSpy requests(&rig.panel, &CPSerialPort::SigConnect), forwarded(&rig.panel, &CPSerialPort::SigWritePort);
        ModalCloser closer;
        const QStringList texts{"G28", "", "M107"};
        for (const QString &text : texts)  // not connected: one box per write, nothing sent
            rig.panel.WritePort(text);
        QCOMPARE(closer.seen, QStringList({kNoPortBox, kNoPortBox, kNoPortBox}));
        rig.button->click();  // an empty list still sends a request; the panel believes it
        QCOMPARE(rig.button->text(), kDisconnect);
        for (const QString &text : texts)
            rig.panel.WritePort(text);
        QCOMPARE(closer.seen.size(), 3);
        QCOMPARE(args(requests), QStringList{""});
        QCOMPARE(args(forwarded), texts);
    }

    void threeClicksOnTheWire()
    {
        Rig rig;
        QVERIFY(rig.start());
        QSignalSpy connects(&rig.panel, &CPSerialPort::Sig_connect);
        QSignalSpy disconnects(&rig.panel, &CPSerialPort::Sig_disconnect);
        ModalCloser closer;
        rig.button->click();  // 1: opens
        rig.panel.retranslateUi();
        QCOMPARE(rig.button->text(), kDisconnect);
        rig.panel.WritePort("G28");
        QCOMPARE(rig.pty.read(3), QByteArray("G28"));
        rig.button->click();  // 2: the panel lets go, the worker keeps the port
        QCOMPARE(rig.button->text(), kConnect);
        rig.panel.WritePort("M107");
        QCOMPARE(closer.seen, QStringList{kNoPortBox});
        emit rig.panel.SigWritePort("open");
        QCOMPARE(rig.pty.read(4), QByteArray("open"));
        rig.button->click();  // 3: shows connected, but the request closes the port
        QCOMPARE(rig.button->text(), kDisconnect);
        rig.panel.WritePort("lost");
        QVERIFY(rig.drainWorker());  // "lost" never arrives; the port ends closed
        QCOMPARE(closer.seen.size(), 1);
        QCOMPARE(QList<int>({connects.count(), disconnects.count()}), QList<int>({2, 1}));
    }

    // Which port the worker holds after clicks (c) and releases (r), the state after each step
    // (H held, N none); the worker's port is then checked on the wire.
    void heldPort_data()
    {
        // clang-format off
        QTest::addColumn<QString>("steps");
        QTest::addColumn<QString>("states");
        QTest::addColumn<bool>("emptyList");
        QTest::addColumn<QString>("buttonText");
        QTest::addColumn<int>("disconnects");
        QTest::newRow("never connected") << "" << "" << false << kConnect << 0;
        QTest::newRow("connected") << "c" << "H" << false << kDisconnect << 0;
        QTest::newRow("disconnect keeps the port") << "cc" << "HH" << false << kConnect << 1;
        QTest::newRow("third click closes it") << "ccc" << "HHN" << false << kDisconnect << 1;
        QTest::newRow("fourth click only lets go") << "cccc" << "HHNN" << false << kConnect << 2;
        QTest::newRow("failed open holds nothing") << "c" << "N" << true << kDisconnect << 0;
        QTest::newRow("release while connected") << "cr" << "HN" << false << kConnect << 1;
        QTest::newRow("release after disconnect") << "ccr" << "HHN" << false << kConnect << 1;
        QTest::newRow("release after the third click") << "cccr" << "HHNN" << false << kConnect << 2;
        QTest::newRow("release holding nothing") << "r" << "N" << false << kConnect << 0;
        QTest::newRow("connect after release") << "crc" << "HNH" << false << kDisconnect << 1;
        // clang-format on
    }
    void heldPort()
    {
        QFETCH(QString, steps);
        QFETCH(QString, states);
        QFETCH(bool, emptyList);
        QFETCH(QString, buttonText);
        QFETCH(int, disconnects);
        Rig rig;
        QVERIFY(rig.start());
        if (emptyList)
            rig.combo->clear();
        QSignalSpy disconnected(&rig.panel, &CPSerialPort::Sig_disconnect);
        for (int i = 0; i < steps.size(); ++i) {
            if (steps[i] == 'c')
                rig.button->click();
            else
                rig.panel.releasePort();
            const bool held = states[i] == 'H';
            QTRY_COMPARE(rig.panel.holdsPort(), held);
            QCOMPARE(rig.panel.heldPort(), held ? rig.pty.endA() : QString());
        }
        QCOMPARE(rig.button->text(), buttonText);
        QCOMPARE(disconnected.count(), disconnects);
        if (states.endsWith('H')) {
            emit rig.panel.SigWritePort("held");
            QCOMPARE(rig.pty.read(4), QByteArray("held"));
        } else {
            QVERIFY(rig.drainWorker());  // only a closed worker lets the token through
        }
        QTRY_COMPARE(rig.panel.holdsPort(), states.endsWith('H'));
    }

    void updateTwice()
    {
        QStringList expected;  // the system ports that open right now
        for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts())
            if (QSerialPort(info).open(QIODevice::ReadWrite))
                expected << info.portName();
        Rig rig;
        QCOMPARE(rig.listed(), expected);  // the first list is in before the worker's thread runs
        QVERIFY(rig.start());
        QSerialPort held(expected.value(0));  // a port open elsewhere is left out, until it is closed
        QVERIFY(expected.isEmpty() || held.open(QIODevice::ReadWrite));
        for (const QStringList &now : {QStringList(expected.mid(1)), expected}) {
            rig.panel.findChild<QPushButton *>("updateUart")->click();
            QCOMPARE(rig.combo->count(), 0);
            QVERIFY(rig.drainWorker());
            QCOMPARE(rig.listed(), now);
            held.close();
        }
    }

    void linkedStreamer()
    {
        Rig rig;
        QVERIFY(rig.start());
        QFile job(rig.dir.file("job.gcode"));
        QVERIFY(job.open(QIODevice::WriteOnly) && job.write("G90\nG0 X10 Y20\nG1 X30 Y5 S255\n;end\n") > 0);
        job.close();
        FrontEnd front(nullptr, &rig.panel);
        QSignalSpy connected(&front, &FrontEnd::Sig_connected), shown(&front, &FrontEnd::Sig_uishow);
        MessageCapture capture;
        rig.button->click();
        front.SlotPrint(job.fileName());  // lines leave as read: nothing on the way adds a line end
        QCOMPARE(rig.pty.read(34), QByteArray("G90G0 X10 Y20G1 X30 Y5 S255;endG90"));
        front.SlotStop();
        front.SlotRecov();
        front.SlotCancle();
        QCOMPARE(rig.pty.read(16), QByteArray("M1071M107G28 X Y"));
        // An answer is passed on once a wait sees a second burst. The second goes out when
        // the worker waits; should the machine be so slow that this wait times out first,
        // its read of the first burst is replaced and only the second is passed on.
        const int started = TNWLserialport::ReadPassesStarted();
        const int timedOut = TNWLserialport::ReadPassesTimedOut();
        QVERIFY(rig.pty.write("ok\n"));
        QTRY_VERIFY_WITH_TIMEOUT(TNWLserialport::ReadPassesStarted() > started, 20000);
        QVERIFY(rig.pty.write("ok T:21\n"));
        QTRY_COMPARE_WITH_TIMEOUT(args(shown).size(), 1, 20000);
        const QString answer = TNWLserialport::ReadPassesTimedOut() == timedOut ? "ok\nok T:21\n" : "ok T:21\n";
        QCOMPARE(args(shown), QStringList{answer});
        front.ReadArduino(QString());  // shown, but no debug line
        QCOMPARE(args(shown), QStringList({answer, ""}));
        QCOMPARE(capture.starting("get from arduino:"),
                 QStringList{"get from arduino: " + QString(answer).replace("\n", "\\n").prepend('"').append('"')});
        rig.pty.stop();              // unplugged while open
        for (int i = 0; i < 5; ++i)  // must neither block this thread nor crash
            rig.panel.WritePort("G1 X1");
        ModalCloser closer;
        rig.button->click();
        rig.panel.WritePort("M107");
        QCOMPARE(closer.seen, QStringList{kNoPortBox});
        QCOMPARE(args(connected), QStringList({"true", "false"}));
    }
};

TARNWELL_TEST_MAIN(TestCPSerialPort)
#include "tst_cpserialport.moc"
