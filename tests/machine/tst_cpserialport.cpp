// Tests of the port selection panel: its gate for text to the machine, the
// connect/disconnect sequence seen on a pseudo-terminal, and the port list.
#include "testsupport.h"
#include "modalcloser.h"
#include "ptypair.h"

#include "cpserialport.h"

#include <QComboBox>
#include <QPushButton>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <QSignalSpy>

#include <ctime>

namespace {
const QString kConnectText = QString::fromUtf8("连接");
const QString kDisconnectText = QString::fromUtf8("断开");
const QString kNoPortBox = QStringLiteral("Notice|Serial open failed.|1");

QComboBox *combo(CPSerialPort &panel)
{
    return panel.findChild<QComboBox *>(QStringLiteral("portCombo"));
}
QPushButton *connectButton(CPSerialPort &panel)
{
    return panel.findChild<QPushButton *>(QStringLiteral("btnConnect"));
}
QPushButton *updateButton(CPSerialPort &panel)
{
    return panel.findChild<QPushButton *>(QStringLiteral("updateUart"));
}

qint64 processCpuMs()
{
    timespec ts;
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
    return qint64(ts.tv_sec) * 1000 + ts.tv_nsec / 1000000;
}

void selectPort(CPSerialPort &panel, const QString &path)
{
    panel.SlotRestBox({path});
    combo(panel)->setCurrentIndex(combo(panel)->findText(path));
}

// Queues an open, a token and a close behind whatever the worker has to do, and
// waits for the token: everything asked before it has then been done.
bool drainWorker(CPSerialPort &panel, const PtyPair &pair, PtyPeer &peer)
{
    static int round = 0;
    const QByteArray token = "sync" + QByteArray::number(++round);
    emit panel.SigConnect(pair.endA());
    emit panel.SigWritePort(QString::fromLatin1(token));
    emit panel.SigConnect(pair.endA());
    return peer.read(token.size()) == token;
}
}

class TestCPSerialPort : public QObject
{
    Q_OBJECT
private slots:
    void writeGate_data();
    void writeGate();
    void connectWithEmptyList();
    void threeClicksOnTheWire();
    void updateTwice();
    void unplugMidSession();
};

void TestCPSerialPort::writeGate_data()
{
    QTest::addColumn<bool>("clickConnect");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<int>("boxes");

    QTest::newRow("not connected, one write") << false << QStringList{"G28"} << 1;
    QTest::newRow("not connected, box per write")
        << false << QStringList{"G28", "", "M107"} << 3;
    // The panel believes the click, even though the empty name never opened.
    QTest::newRow("after connect click, passed on")
        << true << QStringList{"G28", "", "M107"} << 0;
}

void TestCPSerialPort::writeGate()
{
    QFETCH(bool, clickConnect);
    QFETCH(QStringList, texts);
    QFETCH(int, boxes);

    CPSerialPort panel;
    combo(panel)->clear();
    QSignalSpy forwarded(&panel, &CPSerialPort::SigWritePort);
    if (clickConnect)
        connectButton(panel)->click();

    ModalCloser closer;
    for (const QString &text : texts)
        panel.WritePort(text);

    QCOMPARE(closer.seen(), QStringList(QVector<QString>(boxes, kNoPortBox).toList()));
    QStringList passed;
    for (const QList<QVariant> &args : forwarded)
        passed.append(args.at(0).toString());
    QCOMPARE(passed, boxes ? QStringList() : texts);
}

void TestCPSerialPort::connectWithEmptyList()
{
    CPSerialPort panel;
    combo(panel)->clear();
    QSignalSpy request(&panel, &CPSerialPort::SigConnect);
    QSignalSpy connected(&panel, &CPSerialPort::Sig_connect);

    connectButton(panel)->click();
    QCOMPARE(request.count(), 1);
    QCOMPARE(request.at(0).at(0).toString(), QString(""));
    QCOMPARE(connected.count(), 1);
    QCOMPARE(connectButton(panel)->text(), kDisconnectText);
}

void TestCPSerialPort::threeClicksOnTheWire()
{
    ScopedWorkDir dir;
    PtyPair pair(dir.path(), "tty");
    QVERIFY(pair.start());
    PtyPeer peer;
    QVERIFY(peer.open(pair.endB()));

    CPSerialPort panel;
    selectPort(panel, pair.endA());
    QSignalSpy connects(&panel, &CPSerialPort::Sig_connect);
    QSignalSpy disconnects(&panel, &CPSerialPort::Sig_disconnect);
    QSignalSpy requests(&panel, &CPSerialPort::SigConnect);
    ModalCloser closer;

    // Click 1: opens the port.
    connectButton(panel)->click();
    QCOMPARE(connectButton(panel)->text(), kDisconnectText);
    panel.retranslateUi();
    QCOMPARE(connectButton(panel)->text(), kDisconnectText);
    panel.WritePort(QStringLiteral("G28"));
    QCOMPARE(peer.read(3), QByteArray("G28"));

    // Click 2: the panel lets go, the worker keeps the port open.
    connectButton(panel)->click();
    QCOMPARE(connectButton(panel)->text(), kConnectText);
    panel.retranslateUi();
    QCOMPARE(connectButton(panel)->text(), kConnectText);
    panel.WritePort(QStringLiteral("M107"));
    QCOMPARE(closer.seen(), QStringList{kNoPortBox});
    emit panel.SigWritePort(QStringLiteral("still open"));
    QCOMPARE(peer.read(10), QByteArray("still open"));

    // Click 3: shows connected, but the request closes the worker's port.
    connectButton(panel)->click();
    QCOMPARE(connectButton(panel)->text(), kDisconnectText);
    panel.WritePort(QStringLiteral("lost"));
    QCOMPARE(closer.seen().size(), 1);

    // Two more clicks open it again; only what follows reaches the line.
    connectButton(panel)->click();
    connectButton(panel)->click();
    panel.WritePort(QStringLiteral("G90"));
    QCOMPARE(peer.read(3), QByteArray("G90"));

    QCOMPARE(requests.count(), 3);
    for (const QList<QVariant> &args : requests)
        QCOMPARE(args.at(0).toString(), pair.endA());
    QCOMPARE(connects.count(), 3);
    QCOMPARE(disconnects.count(), 2);

    // Leave the port closed before the pty goes away.
    connectButton(panel)->click();
    connectButton(panel)->click();
    QVERIFY(drainWorker(panel, pair, peer));
}

void TestCPSerialPort::updateTwice()
{
    // What the worker should list here: the system ports that open right now.
    QStringList expected;
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts()) {
        QSerialPort trial(info);
        if (trial.open(QIODevice::ReadWrite))
            expected.append(info.portName());
    }

    ScopedWorkDir dir;
    PtyPair pair(dir.path(), "tty");
    QVERIFY(pair.start());
    PtyPeer peer;
    QVERIFY(peer.open(pair.endB()));

    CPSerialPort panel;
    QVERIFY(drainWorker(panel, pair, peer));
    panel.SlotRestBox({QStringLiteral("stale1"), QStringLiteral("stale2")});

    for (int click = 0; click < 2; ++click) {
        updateButton(panel)->click();
        QCOMPARE(combo(panel)->count(), 0);
        QVERIFY(drainWorker(panel, pair, peer));
        QStringList listed;
        for (int i = 0; i < combo(panel)->count(); ++i)
            listed.append(combo(panel)->itemText(i));
        QCOMPARE(listed, expected);
    }
}

void TestCPSerialPort::unplugMidSession()
{
    ScopedWorkDir dir;
    PtyPair pair(dir.path(), "tty");
    QVERIFY(pair.start());
    PtyPeer peer;
    QVERIFY(peer.open(pair.endB()));

    CPSerialPort panel;
    selectPort(panel, pair.endA());
    QSignalSpy answers(&panel, &CPSerialPort::Sig_GetMessage);
    connectButton(panel)->click();
    panel.WritePort(QStringLiteral("G28"));
    QCOMPARE(peer.read(3), QByteArray("G28"));

    peer.close();
    pair.stop();

    // Writes after the device is gone must neither block this thread nor crash.
    ModalCloser closer;
    for (int i = 0; i < 5; ++i)
        panel.WritePort(QStringLiteral("G1 X%1").arg(i));
    bool timerRan = false;
    QTimer::singleShot(50, &panel, [&timerRan] { timerRan = true; });
    QTRY_VERIFY(timerRan);
    QVERIFY(closer.seen().isEmpty());

    // The dead line must not keep the worker thread busy: over an idle spell
    // the whole process stays far below one core.
    const qint64 cpuBefore = processCpuMs();
    QElapsedTimer idle;
    idle.start();
    while (idle.elapsed() < 400)
        QTest::qWait(20);
    QVERIFY2(processCpuMs() - cpuBefore < 100,
             qPrintable(QStringLiteral("%1 ms CPU while idle").arg(processCpuMs() - cpuBefore)));

    connectButton(panel)->click();
    QCOMPARE(connectButton(panel)->text(), kConnectText);
    panel.WritePort(QStringLiteral("M107"));
    QCOMPARE(closer.seen(), QStringList{kNoPortBox});
}

TARNWELL_TEST_MAIN(TestCPSerialPort)
#include "tst_cpserialport.moc"
