// Pure protocol pieces of the machine link: reading replies, cutting the byte stream
// into lines, and the GRBL rewrite table.
#include "testsupport.h"
#include "grblrewrite.h"
#include "jobrunner.h"
#include "machinereply.h"

class TestMachineProtocol : public QObject
{
    Q_OBJECT
private slots:
    void reply_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<QPointF>("position");   // (-1, -1): none
        const QPointF none(-1, -1);
        QTest::newRow("ok") << QByteArray("ok\r") << int(MachineReply::Ok) << 0 << QByteArray() << none;
        QTest::newRow("marlin ok with temps") << QByteArray("ok T:20.0 /0.0") << int(MachineReply::Ok) << 0 << QByteArray() << none;
        QTest::newRow("grbl error") << QByteArray("error:20") << int(MachineReply::Error) << 20 << QByteArray() << none;
        QTest::newRow("grbl error without number") << QByteArray("error:") << int(MachineReply::Error) << -1 << QByteArray() << none;
        QTest::newRow("marlin error") << QByteArray("Error:Printer halted. kill() called!") << int(MachineReply::Error) << 0 << QByteArray() << none;
        QTest::newRow("alarm") << QByteArray("ALARM:3") << int(MachineReply::Alarm) << 3 << QByteArray() << none;
        QTest::newRow("status mpos") << QByteArray("<Idle|MPos:1.000,-2.500,0.000|FS:0,0>") << int(MachineReply::Status) << 0 << QByteArray("Idle") << QPointF(1, -2.5);
        QTest::newRow("status wpos two axes") << QByteArray("<Hold:0|WPos:3,4|Bf:15,128>") << int(MachineReply::Status) << 0 << QByteArray("Hold:0") << QPointF(3, 4);
        QTest::newRow("status bad number") << QByteArray("<Run|MPos:x,2,0>") << int(MachineReply::Status) << 0 << QByteArray("Run") << none;
        QTest::newRow("unclosed status") << QByteArray("<Idle|MPos:1,2,0") << int(MachineReply::Other) << 0 << QByteArray() << none;
        QTest::newRow("grbl banner") << QByteArray("Grbl 1.1h ['$' for help]") << int(MachineReply::GrblBanner) << 0 << QByteArray() << none;
        QTest::newRow("marlin start") << QByteArray("start") << int(MachineReply::MarlinBanner) << 0 << QByteArray() << none;
        QTest::newRow("marlin busy") << QByteArray("echo:busy: processing") << int(MachineReply::Busy) << 0 << QByteArray() << none;
        QTest::newRow("resend") << QByteArray("Resend: 17") << int(MachineReply::Resend) << 17 << QByteArray() << none;
        QTest::newRow("grbl setting") << QByteArray("$30=255") << int(MachineReply::Setting) << 30 << QByteArray() << none;
        QTest::newRow("setting not a number") << QByteArray("$30=abc") << int(MachineReply::Other) << 30 << QByteArray() << none;
        QTest::newRow("marlin M114") << QByteArray("X:10.00 Y:20.50 Z:0.00 E:0.00 Count X:800 Y:1640 Z:0") << int(MachineReply::Status) << 0 << QByteArray() << QPointF(10, 20.5);
        QTest::newRow("not utf-8") << QByteArray("\xff\xfe\x80ok") << int(MachineReply::Other) << 0 << QByteArray() << none;
        QTest::newRow("echo") << QByteArray("echo:Unknown command: \"$H\"") << int(MachineReply::Other) << 0 << QByteArray() << none;
        // Found by fuzzing: signs, infinities and NaN are no setting numbers or positions.
        QTest::newRow("setting with a sign") << QByteArray("$-30=1000") << int(MachineReply::Other) << 0 << QByteArray() << none;
        QTest::newRow("setting value nan") << QByteArray("$1=nan") << int(MachineReply::Other) << 1 << QByteArray() << none;
        QTest::newRow("status infinite position") << QByteArray("<Idle|MPos:inf,1,2>") << int(MachineReply::Status) << 0 << QByteArray("Idle") << none;
        QTest::newRow("M114 with infinite X") << QByteArray("X:inf Y:2.00 Z:0.00") << int(MachineReply::Other) << 0 << QByteArray() << none;
    }
    void reply()
    {
        QFETCH(QByteArray, line); QFETCH(int, kind); QFETCH(int, code); QFETCH(QByteArray, state); QFETCH(QPointF, position);
        const MachineReply r = MachineReplies::parse(line);
        QCOMPARE(int(r.kind), kind);
        QCOMPARE(r.code, code);
        QCOMPARE(r.state, state);
        QCOMPARE(r.hasPosition, position != QPointF(-1, -1));
        if (r.hasPosition)
            QCOMPARE(QPointF(r.x, r.y), position);
    }

    void splitter_data()
    {
        QTest::addColumn<QList<QByteArray>>("chunks");
        QTest::addColumn<QList<QByteArray>>("lines");
        const QByteArray huge(1 << 20, 'x');
        QTest::newRow("crlf, cr and lf") << QList<QByteArray>{"ok\r\nerror:1\rALARM:2\n"} << QList<QByteArray>{"ok", "error:1", "ALARM:2"};
        QTest::newRow("line across chunks") << QList<QByteArray>{"o", "k\r", "\nGrbl 1.1"} << QList<QByteArray>{"ok"};
        QTest::newRow("blank lines skipped") << QList<QByteArray>{"\r\n\r\n\nok\n"} << QList<QByteArray>{"ok"};
        QTest::newRow("1 MB line cut, next intact") << QList<QByteArray>{huge, "\nok\n"}
                                                   << QList<QByteArray>{QByteArray(MachineReplies::LineSplitter::MaxLine, 'x') + "...", "ok"};
    }
    void splitter()
    {
        QFETCH(QList<QByteArray>, chunks); QFETCH(QList<QByteArray>, lines);
        MachineReplies::LineSplitter splitter;
        QList<QByteArray> got;
        for (const QByteArray &chunk : chunks)
            got += splitter.feed(chunk);
        QCOMPARE(got, lines);
    }

    // The cap counts kept bytes; what is dropped is counted, so the stream is accounted for.
    void splitterCap_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QList<QByteArray>>("lines");
        QTest::addColumn<int>("dropped");
        QTest::addColumn<int>("pending");
        const int cap = MachineReplies::LineSplitter::MaxLine;
        QTest::newRow("exactly the cap kept whole") << QByteArray(cap, 'y') + "\n" << QList<QByteArray>{QByteArray(cap, 'y')} << 0 << 0;
        QTest::newRow("one byte over is cut") << QByteArray(cap + 1, 'y') + "\rok\r" << QList<QByteArray>{QByteArray(cap, 'y') + "...", "ok"} << 1 << 0;
        QTest::newRow("unfinished long line waits") << "ok\n" + QByteArray(cap + 5, 'y') << QList<QByteArray>{"ok"} << 5 << cap;
    }
    void splitterCap()
    {
        QFETCH(QByteArray, bytes); QFETCH(QList<QByteArray>, lines); QFETCH(int, dropped); QFETCH(int, pending);
        MachineReplies::LineSplitter splitter;
        QCOMPARE(splitter.feed(bytes), lines);
        QCOMPARE(splitter.droppedBytes(), qint64(dropped));
        QCOMPARE(splitter.pendingBytes(), pending);
    }

    void clockText_data()
    {
        QTest::addColumn<double>("seconds");
        QTest::addColumn<QString>("text");
        QTest::newRow("nothing") << 0.0 << "0:00";
        QTest::newRow("rounded") << 40.5 << "0:41";
        QTest::newRow("minutes") << 725.0 << "12:05";
        QTest::newRow("hours") << 3723.0 << "1:02:03";
        QTest::newRow("negative") << -5.0 << "0:00";
        QTest::newRow("not a number") << qQNaN() << "0:00";
        // Found by fuzzing: a job with coordinates near 1e58 mm takes longer than any integer holds.
        QTest::newRow("beyond an integer") << 3.2e57 << "99999:59:59";
        QTest::newRow("infinite") << qInf() << "99999:59:59";
    }
    void clockText()
    {
        QFETCH(double, seconds); QFETCH(QString, text);
        QCOMPARE(JobRunner::clockText(seconds), text);
    }

    void grblRewrite_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("maxPower");
        QTest::addColumn<QByteArray>("sent");
        QTest::newRow("full power") << QByteArray("M106 S255") << 1000 << QByteArray("M4 S1000");
        QTest::newRow("frame's weak beam, rounded") << QByteArray("M106 S5") << 1000 << QByteArray("M4 S20");
        QTest::newRow("half power, $30=255") << QByteArray("M106 S128") << 255 << QByteArray("M4 S128");
        QTest::newRow("power above range clamped") << QByteArray("M106 S300") << 1000 << QByteArray("M4 S1000");
        QTest::newRow("no S is full power") << QByteArray("M106") << 1000 << QByteArray("M4 S1000");
        QTest::newRow("blank between letter and number") << QByteArray("M106 S 51") << 100 << QByteArray("M4 S20");
        QTest::newRow("fan off") << QByteArray("M107") << 1000 << QByteArray("M5");
        QTest::newRow("G28 alone") << QByteArray("G28") << 1000 << QByteArray("G0 X0 Y0");
        QTest::newRow("G28 X0 Y0") << QByteArray("G28 X0 Y0") << 1000 << QByteArray("G0 X0 Y0");
        QTest::newRow("G28 X Y") << QByteArray("G28 X Y") << 1000 << QByteArray("G0 X0 Y0");
        QTest::newRow("G28 elsewhere kept") << QByteArray("G28 X10") << 1000 << QByteArray("G28 X10");
        QTest::newRow("other fan form kept") << QByteArray("M106 P1 S3") << 1000 << QByteArray("M106 P1 S3");
        QTest::newRow("moves kept") << QByteArray("G1 X5.5 Y2 F1800") << 1000 << QByteArray("G1 X5.5 Y2 F1800");
        QTest::newRow("system command kept") << QByteArray("$H") << 1000 << QByteArray("$H");
        QTest::newRow("grbl's own laser kept") << QByteArray("M3 S100") << 1000 << QByteArray("M3 S100");
    }
    void grblRewrite()
    {
        QFETCH(QByteArray, line); QFETCH(int, maxPower); QFETCH(QByteArray, sent);
        QCOMPARE(GrblRewrite::line(line, maxPower), sent);
    }

    void programPause_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("pause");
        QTest::newRow("M0") << QByteArray("M0") << true;
        QTest::newRow("M00") << QByteArray("M00") << true;
        QTest::newRow("M1") << QByteArray("M1") << true;
        QTest::newRow("M05 is not") << QByteArray("M05") << false;
        QTest::newRow("M0 with a word is not") << QByteArray("M0 P5") << false;
        QTest::newRow("G0") << QByteArray("G0") << false;
    }
    void programPause()
    {
        QFETCH(QByteArray, line); QFETCH(bool, pause);
        QCOMPARE(GrblRewrite::isProgramPause(line), pause);
    }
};

TARNWELL_TEST_MAIN(TestMachineProtocol)
#include "tst_machineprotocol.moc"
