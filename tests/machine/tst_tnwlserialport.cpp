// Tests of the serial worker on pseudo-terminals: the bytes it puts on the line,
// the open/close toggle, and what it passes on from the machine.
#include "testsupport.h"
#include "ptypair.h"

#include "tnwlserialport.h"

#include <QThread>

namespace {
// The worker in its own thread, reached only through queued calls; its signals
// land on an object of the test thread.
struct WorkerHarness
{
    QObject receiver;
    QThread thread;
    TNWLserialport *worker = new TNWLserialport;
    QList<bool> connects;
    QStringList answers;
    QList<QStringList> lists;

    // With listFirst the first enumeration runs before the thread starts,
    // the way the panel does it.
    explicit WorkerHarness(bool listFirst = false)
    {
        QObject::connect(worker, &TNWLserialport::SigConnected, &receiver,
                         [this](bool open) { connects.append(open); });
        QObject::connect(worker, &TNWLserialport::SigResponseUart, &receiver,
                         [this](const QString &text) { answers.append(text); });
        QObject::connect(worker, &TNWLserialport::SigResponseQStringList, &receiver,
                         [this](const QStringList &names) { lists.append(names); });
        QObject::connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
        worker->moveToThread(&thread);
        if (listFirst)
            worker->InitPorts();
        thread.start();
    }
    ~WorkerHarness()
    {
        thread.quit();
        thread.wait(5000);
    }

    void connectPort(const QString &name)
    {
        QMetaObject::invokeMethod(worker, "SlotConnect", Qt::QueuedConnection,
                                  Q_ARG(QString, name));
    }
    void write(const QString &text)
    {
        QMetaObject::invokeMethod(worker, "SlotWritePort", Qt::QueuedConnection,
                                  Q_ARG(QString, text));
    }
    // Everything queued before this has run once its list arrives.
    bool sync()
    {
        const int before = lists.size();
        QMetaObject::invokeMethod(worker, "SlotUpdata", Qt::QueuedConnection);
        QElapsedTimer clock;
        clock.start();
        while (lists.size() == before && clock.elapsed() < 5000)
            QTest::qWait(5);
        return lists.size() > before;
    }
};

// Waits while the event loop keeps running.
void pause(int ms)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < ms)
        QTest::qWait(10);
}
}

class TestTNWLserialport : public QObject
{
    Q_OBJECT
private slots:
    void writeBytes_data();
    void writeBytes();
    void connectToggle_data();
    void connectToggle();
    void receive_data();
    void receive();
    void openPortLeftOutOfList();
};

void TestTNWLserialport::writeBytes_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("no line end added") << QStringLiteral("G28") << QByteArray("G28");
    QTest::newRow("caller's line end kept")
        << QStringLiteral("G92 X0 Y0 \n") << QByteArray("G92 X0 Y0 \n");
    QTest::newRow("latin-1 character") << QString::fromUtf8("M117 caf\xC3\xA9")
                                       << QByteArray("M117 caf\xE9");
    QTest::newRow("outside latin-1 becomes ?")
        << QString::fromUtf8("\xE4\xB8\xAD" "G1 X1") << QByteArray("?G1 X1");
    QTest::newRow("empty text writes nothing") << QString() << QByteArray();
}

void TestTNWLserialport::writeBytes()
{
    QFETCH(QString, text);
    QFETCH(QByteArray, bytes);

    ScopedWorkDir dir;
    PtyPair pair(dir.path(), "tty");
    QVERIFY(pair.start());
    PtyPeer peer;
    QVERIFY(peer.open(pair.endB()));

    WorkerHarness h;
    h.connectPort(pair.endA());
    QTRY_COMPARE(h.connects, QList<bool>{true});
    h.write(text);
    QVERIFY(h.sync());
    QCOMPARE(peer.read(bytes.size()), bytes);
}

void TestTNWLserialport::connectToggle_data()
{
    // Names: "A" and "B" are two separate pty pairs, "missing" a path that does
    // not exist. After the i-th connect request the worker is asked to write "m<i>".
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QList<bool>>("states");
    QTest::addColumn<QByteArray>("onA");
    QTest::addColumn<QByteArray>("onB");

    QTest::newRow("same name opens then closes")
        << QStringList{"A", "A"} << QList<bool>{true, false} << QByteArray("m0") << QByteArray();
    QTest::newRow("other name while open only closes")
        << QStringList{"A", "B"} << QList<bool>{true, false} << QByteArray("m0") << QByteArray();
    QTest::newRow("next request opens the other name")
        << QStringList{"A", "B", "B"} << QList<bool>{true, false, true} << QByteArray("m0")
        << QByteArray("m2");
    QTest::newRow("empty name fails") << QStringList{""} << QList<bool>{false} << QByteArray()
                                      << QByteArray();
    QTest::newRow("failed open leaves it closed")
        << QStringList{"missing", "A"} << QList<bool>{false, true} << QByteArray("m1")
        << QByteArray();
}

void TestTNWLserialport::connectToggle()
{
    QFETCH(QStringList, names);
    QFETCH(QList<bool>, states);
    QFETCH(QByteArray, onA);
    QFETCH(QByteArray, onB);

    ScopedWorkDir dir;
    PtyPair pairA(dir.path(), "a");
    PtyPair pairB(dir.path(), "b");
    QVERIFY(pairA.start());
    QVERIFY(pairB.start());
    PtyPeer peerA;
    PtyPeer peerB;
    QVERIFY(peerA.open(pairA.endB()));
    QVERIFY(peerB.open(pairB.endB()));

    WorkerHarness h;
    for (int i = 0; i < names.size(); ++i) {
        QString name = names.at(i);
        if (name == "A")
            name = pairA.endA();
        else if (name == "B")
            name = pairB.endA();
        else if (name == "missing")
            name = dir.file("no-such-tty");
        h.connectPort(name);
        h.write(QStringLiteral("m%1").arg(i));
    }
    QVERIFY(h.sync());
    QCOMPARE(h.connects, states);
    QCOMPARE(peerA.read(onA.size()), onA);
    QCOMPARE(peerB.read(onB.size()), onB);
}

void TestTNWLserialport::receive_data()
{
    QTest::addColumn<QByteArray>("first");
    QTest::addColumn<int>("pauseMs");
    QTest::addColumn<QByteArray>("second");
    QTest::addColumn<QString>("answer");

    // Within one wait the unread bytes are still in the port: one chunk of both.
    QTest::newRow("second burst inside the wait")
        << QByteArray("ok\n") << 200 << QByteArray("ok T:25\n") << QStringLiteral("ok\nok T:25\n");
    // A timed-out pass reads the first burst, the next pass replaces it.
    QTest::newRow("pause longer than a wait drops the first burst")
        << QByteArray("lost\n") << 1300 << QByteArray("ok \xC3\xA9\n")
        << QString::fromUtf8("ok \xC3\xA9\n");
}

void TestTNWLserialport::receive()
{
    QFETCH(QByteArray, first);
    QFETCH(int, pauseMs);
    QFETCH(QByteArray, second);
    QFETCH(QString, answer);

    ScopedWorkDir dir;
    PtyPair pair(dir.path(), "tty");
    QVERIFY(pair.start());
    PtyPeer peer;
    QVERIFY(peer.open(pair.endB()));

    WorkerHarness h;
    h.connectPort(pair.endA());
    QTRY_COMPARE(h.connects, QList<bool>{true});

    QVERIFY(peer.write(first));
    pause(pauseMs);
    QVERIFY(h.answers.isEmpty());
    QVERIFY(peer.write(second));
    QTRY_COMPARE_WITH_TIMEOUT(h.answers.size(), 1, 3000);
    QCOMPARE(h.answers.first(), answer);
    // The loop has ended: the worker serves queued calls again.
    QVERIFY(h.sync());
    QCOMPARE(h.answers.size(), 1);
}

void TestTNWLserialport::openPortLeftOutOfList()
{
    WorkerHarness h(true);
    QCOMPARE(h.lists.size(), 1);
    const QStringList all = h.lists.first();
    if (all.isEmpty())
        QSKIP("no system serial port can be opened on this machine");

    // While the worker holds the first port, a trial open of it fails.
    h.connectPort(all.first());
    QVERIFY(h.sync());
    QCOMPARE(h.connects, QList<bool>{true});
    QCOMPARE(h.lists.last(), all.mid(1));

    h.connectPort(QString());
    QVERIFY(h.sync());
    QCOMPARE(h.connects, (QList<bool>{true, false}));
    QCOMPARE(h.lists.last(), all);
}

TARNWELL_TEST_MAIN(TestTNWLserialport)
#include "tst_tnwlserialport.moc"
