// Tests of the port selection panel: its gate for text to the machine, the
// connect/disconnect sequence seen on a pseudo-terminal, the list, an unplug.
#include "testsupport.h"
#include "capture.h"
#include "ptypair.h"
#include "cpserialport.h"

#include <QComboBox>
#include <QPushButton>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <QSignalSpy>
#include <ctime>

namespace {
const QString kConnect = QString::fromUtf8("连接"), kDisconnect = QString::fromUtf8("断开");
const QString kNoPortBox = "Notice|Serial open failed.|1";

QComboBox *combo(CPSerialPort &p) { return p.findChild<QComboBox *>("portCombo"); }
QPushButton *button(CPSerialPort &p) { return p.findChild<QPushButton *>("btnConnect"); }

// Queues open, token, close behind the worker's pending work and waits for the
// token: whatever was asked before it has then been done.
bool drainWorker(CPSerialPort &panel, PtyPair &pty)
{
    emit panel.SigConnect(pty.endA());
    emit panel.SigWritePort("sync");
    emit panel.SigConnect(pty.endA());
    return pty.read(4) == "sync";
}

qint64 processCpuMs()
{
    timespec ts;
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return qint64(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}
}

class TestCPSerialPort : public QObject
{
    Q_OBJECT
private slots:
    void writeGate_data();
    void writeGate();
    void threeClicksOnTheWire();
    void updateTwice();
    void unplugMidSession();
};

void TestCPSerialPort::writeGate_data()
{
    QTest::addColumn<bool>("click");
    QTest::addColumn<int>("boxes");

    QTest::newRow("not connected: one box per write, nothing sent") << false << 3;
    // An empty list still sends a request; the panel believes it without a result.
    QTest::newRow("connect clicked with no ports: passed on") << true << 0;
}

void TestCPSerialPort::writeGate()
{
    QFETCH(bool, click);
    QFETCH(int, boxes);

    CPSerialPort panel;
    combo(panel)->clear();
    QSignalSpy requests(&panel, &CPSerialPort::SigConnect);
    QSignalSpy forwarded(&panel, &CPSerialPort::SigWritePort);
    if (click)
        button(panel)->click();
    QCOMPARE(button(panel)->text(), click ? kDisconnect : kConnect);
    QCOMPARE(requests.count(), int(click));
    QVERIFY(!click || requests.at(0).at(0).toString().isEmpty());

    ModalCloser closer;
    const QStringList texts{"G28", "", "M107"};
    for (const QString &text : texts)
        panel.WritePort(text);
    QCOMPARE(closer.seen, QVector<QString>(boxes, kNoPortBox).toList());
    QCOMPARE(forwarded.count(), boxes ? 0 : 3);
    for (int i = 0; i < forwarded.count(); ++i)
        QCOMPARE(forwarded.at(i).at(0).toString(), texts[i]);
}

void TestCPSerialPort::threeClicksOnTheWire()
{
    ScopedWorkDir dir;
    PtyPair pty(dir.path(), "tty");
    QVERIFY(pty.start());
    CPSerialPort panel;
    panel.SlotRestBox({pty.endA()});
    combo(panel)->setCurrentText(pty.endA());
    QSignalSpy connects(&panel, &CPSerialPort::Sig_connect), disconnects(&panel, &CPSerialPort::Sig_disconnect);
    ModalCloser closer;

    button(panel)->click();  // 1: opens
    panel.retranslateUi();
    QCOMPARE(button(panel)->text(), kDisconnect);
    panel.WritePort("G28");
    QCOMPARE(pty.read(3), QByteArray("G28"));

    button(panel)->click();  // 2: the panel lets go, the worker keeps the port
    QCOMPARE(button(panel)->text(), kConnect);
    panel.WritePort("M107");
    QCOMPARE(closer.seen, QStringList{kNoPortBox});
    emit panel.SigWritePort("open");
    QCOMPARE(pty.read(4), QByteArray("open"));

    button(panel)->click();  // 3: shows connected, but the request closes the port
    QCOMPARE(button(panel)->text(), kDisconnect);
    panel.WritePort("lost");
    button(panel)->click();
    button(panel)->click();  // 5: opens again; only what follows arrives
    panel.WritePort("G90");
    QCOMPARE(pty.read(3), QByteArray("G90"));
    QCOMPARE(closer.seen.size(), 1);
    QCOMPARE(connects.count(), 3);
    QCOMPARE(disconnects.count(), 2);
    emit panel.SigConnect(QString());  // leave it closed before the pty goes
    QVERIFY(drainWorker(panel, pty));
}

void TestCPSerialPort::updateTwice()
{
    QStringList expected;  // the system ports that open right now
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts())
        if (QSerialPort(info).open(QIODevice::ReadWrite))
            expected << info.portName();

    ScopedWorkDir dir;
    PtyPair pty(dir.path(), "tty");
    QVERIFY(pty.start());
    CPSerialPort panel;
    QVERIFY(drainWorker(panel, pty));
    panel.SlotRestBox({"stale"});
    for (int click = 0; click < 2; ++click) {
        panel.findChild<QPushButton *>("updateUart")->click();
        QCOMPARE(combo(panel)->count(), 0);
        QVERIFY(drainWorker(panel, pty));
        QStringList listed;
        for (int i = 0; i < combo(panel)->count(); ++i)
            listed << combo(panel)->itemText(i);
        QCOMPARE(listed, expected);
    }
}

void TestCPSerialPort::unplugMidSession()
{
    ScopedWorkDir dir;
    PtyPair pty(dir.path(), "tty");
    QVERIFY(pty.start());
    CPSerialPort panel;
    panel.SlotRestBox({pty.endA()});
    combo(panel)->setCurrentText(pty.endA());
    button(panel)->click();
    panel.WritePort("G28");
    QCOMPARE(pty.read(3), QByteArray("G28"));

    pty.stop();
    for (int i = 0; i < 5; ++i)  // must neither block this thread nor crash
        panel.WritePort("G1 X1");
    // A dead line must not keep the worker busy: well below one core while idle.
    const qint64 cpu = processCpuMs();
    QTest::qWait(400);
    QVERIFY2(processCpuMs() - cpu < 100, qPrintable(QString::number(processCpuMs() - cpu) + " ms CPU"));
    ModalCloser closer;
    button(panel)->click();
    panel.WritePort("M107");
    QCOMPARE(closer.seen, QStringList{kNoPortBox});
}

TARNWELL_TEST_MAIN(TestCPSerialPort)
#include "tst_cpserialport.moc"
