// Tests of the serial worker on pseudo-terminals: the bytes it puts on the line,
// the open/close toggle, what it passes on from the machine, and the port list.
#include "testsupport.h"
#include "ptypair.h"
#include "tnwlserialport.h"

#include <QThread>

// The worker in its own thread, reached only by queued calls; its signals land
// on an object of the test's thread.
struct Worker
{
    QObject receiver;
    QThread thread;
    TNWLserialport *worker = new TNWLserialport;
    QList<bool> opens;
    QStringList answers;
    QList<QStringList> lists;

    explicit Worker(bool listFirst = false)
    {
        QObject::connect(worker, &TNWLserialport::SigConnected, &receiver, [this](bool open) { opens << open; });
        QObject::connect(worker, &TNWLserialport::SigResponseUart, &receiver, [this](QString s) { answers << s; });
        QObject::connect(worker, &TNWLserialport::SigResponseQStringList, &receiver, [this](QStringList l) { lists << l; });
        QObject::connect(&thread, &QThread::finished, worker, &QObject::deleteLater);
        worker->moveToThread(&thread);
        if (listFirst)  // as the panel does, before the thread starts
            worker->InitPorts();
        thread.start();
    }
    ~Worker() { thread.quit(); thread.wait(5000); }
    void call(const char *slot, const QString &arg)
    {
        QMetaObject::invokeMethod(worker, slot, Qt::QueuedConnection, Q_ARG(QString, arg));
    }
    // Asks for a list; once it is back, everything queued before it has run.
    bool sync()
    {
        const int before = lists.size();
        QMetaObject::invokeMethod(worker, "SlotUpdata", Qt::QueuedConnection);
        return QTest::qWaitFor([&] { return lists.size() > before; }, 5000);
    }
};

class TestTNWLserialport : public QObject
{
    Q_OBJECT
private slots:
    void toggleAndWrite_data();
    void toggleAndWrite();
    void receive_data();
    void receive();
    void openPortLeftOutOfList();
};

void TestTNWLserialport::toggleAndWrite_data()
{
    // "A" and "B" are two pty pairs, "none" a path that does not exist. Each
    // connect request is followed by a write of the text with the same index.
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("texts");
    QTest::addColumn<QList<bool>>("opens");
    QTest::addColumn<QByteArray>("onA");
    QTest::addColumn<QByteArray>("onB");

    QTest::newRow("exact bytes, no line end added")
        << QStringList{"A"} << QStringList{"G28"} << QList<bool>{true} << QByteArray("G28") << QByteArray();
    QTest::newRow("caller's line end kept, latin-1 kept, others become ?")
        << QStringList{"A"} << QStringList{QString::fromUtf8("G92 X0 \n\xC3\xA9\xE4\xB8\xAD")} << QList<bool>{true}
        << QByteArray("G92 X0 \n\xE9?") << QByteArray();
    QTest::newRow("same name twice opens then closes")
        << QStringList{"A", "A"} << QStringList{"m0", "m1"} << QList<bool>{true, false} << QByteArray("m0") << QByteArray();
    QTest::newRow("other name while open only closes, next call opens it")
        << QStringList{"A", "B", "B"} << QStringList{"m0", "m1", "m2"} << QList<bool>{true, false, true}
        << QByteArray("m0") << QByteArray("m2");
    QTest::newRow("failed opens stay closed")
        << QStringList{"", "none", "A"} << QStringList{"m0", "m1", "m2"} << QList<bool>{false, false, true}
        << QByteArray("m2") << QByteArray();
}

void TestTNWLserialport::toggleAndWrite()
{
    QFETCH(QStringList, names);
    QFETCH(QStringList, texts);
    QFETCH(QList<bool>, opens);
    QFETCH(QByteArray, onA);
    QFETCH(QByteArray, onB);

    ScopedWorkDir dir;
    PtyPair a(dir.path(), "a"), b(dir.path(), "b");
    QVERIFY(a.start() && b.start());
    Worker w;
    const QMap<QString, QString> paths{{"A", a.endA()}, {"B", b.endA()}, {"none", dir.file("none")}};
    for (int i = 0; i < names.size(); ++i) {
        w.call("SlotConnect", paths.value(names[i], names[i]));
        w.call("SlotWritePort", texts[i]);
    }
    QVERIFY(w.sync());
    QCOMPARE(w.opens, opens);
    QCOMPARE(a.read(onA.size()), onA);
    QCOMPARE(b.read(onB.size()), onB);
}

void TestTNWLserialport::receive_data()
{
    QTest::addColumn<int>("pauseMs");
    QTest::addColumn<QString>("answer");

    // Within one wait the unread first burst is still in the port.
    QTest::newRow("second burst inside the wait") << 200 << QString::fromUtf8("ok\nok \xC3\xA9\n");
    // A pass that timed out read the first burst; the next read replaces it.
    QTest::newRow("pause beyond one wait drops the first burst") << 1300 << QString::fromUtf8("ok \xC3\xA9\n");
}

void TestTNWLserialport::receive()
{
    QFETCH(int, pauseMs);
    QFETCH(QString, answer);

    ScopedWorkDir dir;
    PtyPair pty(dir.path(), "tty");
    QVERIFY(pty.start());
    Worker w;
    w.call("SlotConnect", pty.endA());
    QTRY_COMPARE(w.opens, QList<bool>{true});
    QVERIFY(pty.write("ok\n"));
    QTest::qWait(pauseMs);
    QVERIFY(w.answers.isEmpty());
    QVERIFY(pty.write("ok \xC3\xA9\n"));
    QTRY_COMPARE(w.answers, QStringList{answer});
    QVERIFY(w.sync());  // the loop has ended and nothing else came
    QCOMPARE(w.answers.size(), 1);
}

void TestTNWLserialport::openPortLeftOutOfList()
{
    Worker w(true);
    QCOMPARE(w.lists.size(), 1);
    const QStringList all = w.lists.first();
    if (all.isEmpty())
        QSKIP("no system serial port can be opened on this machine");
    w.call("SlotConnect", all.first());  // held open: its trial open fails
    QVERIFY(w.sync());
    QCOMPARE(w.lists.last(), all.mid(1));
    w.call("SlotConnect", QString());
    QVERIFY(w.sync());
    QCOMPARE(w.opens, (QList<bool>{true, false}));
    QCOMPARE(w.lists.last(), all);
}

TARNWELL_TEST_MAIN(TestTNWLserialport)
#include "tst_tnwlserialport.moc"
