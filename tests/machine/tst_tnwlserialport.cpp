// Tests of the serial worker on pseudo-terminals: the bytes it puts on the line,
// the open/close toggle and what it passes on from the machine.
#include "testsupport.h"
#include "ptypair.h"
#include "tnwlserialport.h"

// The worker in its own thread, reached only by queued calls; its signals land
// on this object, in the test's thread.
struct Worker : QObject
{
    QThread thread;
    TNWLserialport *port = new TNWLserialport;
    QList<bool> opens;
    QStringList answers;
    QList<QStringList> lists;

    Worker()
    {
        connect(port, &TNWLserialport::SigConnected, this, [this](bool open) { opens << open; });
        connect(port, &TNWLserialport::SigResponseUart, this, [this](QString s) { answers << s; });
        connect(port, &TNWLserialport::SigResponseQStringList, this, [this](QStringList l) { lists << l; });
        connect(&thread, &QThread::finished, port, &QObject::deleteLater);
        port->moveToThread(&thread);
        thread.start();
    }
    ~Worker() override
    {
        thread.quit();
        thread.wait(5000);
    }
    void call(const char *slot, const QString &arg)
    {
        QMetaObject::invokeMethod(port, slot, Qt::QueuedConnection, Q_ARG(QString, arg));
    }
    // Asks for a list; once it is back, everything queued before it has run.
    bool sync()
    {
        const int before = lists.size();
        QMetaObject::invokeMethod(port, "SlotUpdata", Qt::QueuedConnection);
        return QTest::qWaitFor([&] { return lists.size() > before; }, 5000);
    }
};

class TestTNWLserialport : public QObject
{
    Q_OBJECT
private slots:
    void toggleAndWrite_data()
    {
        // clang-format off
        // "A" and "B" are two pty pairs, "none" a path that does not exist. Each
        // connect request is followed by a write of the text with the same index.
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<QStringList>("texts");
        QTest::addColumn<QList<bool>>("opens");
        QTest::addColumn<QByteArray>("onA");
        QTest::addColumn<QByteArray>("onB");
        using L = QStringList;
        using Opens = QList<bool>;
        QTest::newRow("exact bytes; same name twice opens then closes")
            << L{"A", "A"} << L{"G28", "m1"} << Opens{true, false} << QByteArray("G28") << QByteArray();
        QTest::newRow("latin-1 kept, others become ?; other name while open only closes, next call opens it")
            << L{"A", "B", "B"} << L{QString::fromUtf8("G92 X0 \n\xC3\xA9\xE4\xB8\xAD"), "m1", "m2"}
            << Opens{true, false, true} << QByteArray("G92 X0 \n\xE9?") << QByteArray("m2");
        QTest::newRow("failed opens stay closed")
            << L{"", "none", "A"} << L{"m0", "m1", "m2"} << Opens{false, false, true}
            << QByteArray("m2") << QByteArray();
        // clang-format on
    }
    void toggleAndWrite()
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

    // A pass that timed out read the first burst; the read after the wait that
    // saw the second one replaces it. (A burst within the wait: see the panel's tests.)
    void pauseBeyondOneWaitDropsFirstBurst()
    {
        ScopedWorkDir dir;
        PtyPair pty(dir.path(), "tty");
        QVERIFY(pty.start());
        Worker w;
        w.call("SlotConnect", pty.endA());
        QTRY_COMPARE(w.opens, QList<bool>{true});
        const int timedOut = TNWLserialport::ReadPassesTimedOut();
        QVERIFY(pty.write("ok\n"));
        // However slow the machine, the second burst goes out once a pass has timed out.
        QTRY_VERIFY_WITH_TIMEOUT(TNWLserialport::ReadPassesTimedOut() > timedOut, 20000);
        QVERIFY(w.answers.isEmpty());
        QVERIFY(pty.write("ok \xC3\xA9\n"));
        QTRY_COMPARE(w.answers, QStringList{QString::fromUtf8("ok \xC3\xA9\n")});
        QVERIFY(w.sync());  // the loop has ended and nothing else came
        QCOMPARE(w.answers.size(), 1);
    }
};

TARNWELL_TEST_MAIN(TestTNWLserialport)
#include "tst_tnwlserialport.moc"
