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
        // clang-format off
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("kind");
        QTest::addColumn<int>("code");
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<QPointF>("position");   // (-1, -1): none
        auto row = [](const char *name, const QByteArray &line, MachineReply::Kind kind, int code = 0,
                      const QByteArray &state = QByteArray(), QPointF position = QPointF(-1, -1)) {
            QTest::newRow(name) << line << int(kind) << code << state << position;
        };
        row("ok", "ok\r", MachineReply::Ok);
        row("marlin ok with temps", "ok T:20.0 /0.0", MachineReply::Ok);
        row("grbl error", "error:20", MachineReply::Error, 20);
        row("grbl error without number", "error:", MachineReply::Error, -1);
        row("marlin error", "Error:Printer halted. kill() called!", MachineReply::Error);
        row("alarm", "ALARM:3", MachineReply::Alarm, 3);
        row("status mpos", "<Idle|MPos:1.000,-2.500,0.000|FS:0,0>", MachineReply::Status, 0, "Idle", QPointF(1, -2.5));
        row("status wpos two axes", "<Hold:0|WPos:3,4|Bf:15,128>", MachineReply::Status, 0, "Hold:0", QPointF(3, 4));
        row("status bad number", "<Run|MPos:x,2,0>", MachineReply::Status, 0, "Run");
        row("unclosed status", "<Idle|MPos:1,2,0", MachineReply::Other);
        row("grbl banner", "Grbl 1.1h ['$' for help]", MachineReply::GrblBanner);
        row("marlin start", "start", MachineReply::MarlinBanner);
        row("marlin busy", "echo:busy: processing", MachineReply::Busy);
        row("resend", "Resend: 17", MachineReply::Resend, 17);
        row("grbl setting", "$30=255", MachineReply::Setting, 30);
        row("setting not a number", "$30=abc", MachineReply::Other, 30);
        row("marlin M114", "X:10.00 Y:20.50 Z:0.00 E:0.00 Count X:800 Y:1640 Z:0", MachineReply::Status, 0, {},
            {10, 20.5});
        row("not utf-8", "\xff\xfe\x80ok", MachineReply::Other);
        row("echo", "echo:Unknown command: \"$H\"", MachineReply::Other);
        // Found by fuzzing: signs, infinities and NaN are no setting numbers or positions.
        row("setting with a sign", "$-30=1000", MachineReply::Other);
        row("setting value nan", "$1=nan", MachineReply::Other, 1);
        row("status infinite position", "<Idle|MPos:inf,1,2>", MachineReply::Status, 0, "Idle");
        row("M114 with infinite X", "X:inf Y:2.00 Z:0.00", MachineReply::Other);
        // clang-format on
    }
    void reply()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, kind);
        QFETCH(int, code);
        QFETCH(QByteArray, state);
        QFETCH(QPointF, position);
        const MachineReply r = MachineReplies::parse(line);
        QCOMPARE(int(r.kind), kind);
        QCOMPARE(r.code, code);
        QCOMPARE(r.state, state);
        QCOMPARE(r.hasPosition, position != QPointF(-1, -1));
        if (r.hasPosition)
            QCOMPARE(QPointF(r.x, r.y), position);
    }

    // Lines out of a byte stream in chunks. The cap counts kept bytes; what is dropped is
    // counted, so the stream is accounted for.
    // States in which a board rightly answers nothing for a while: the time-out waits through them.
    void waitingState_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("state");
        QTest::addColumn<bool>("waiting");
        QTest::newRow("feed hold") << QByteArray("Hold:0") << true;
        QTest::newRow("hold ending") << QByteArray("Hold:1") << true;
        QTest::newRow("door open") << QByteArray("Door:2") << true;
        QTest::newRow("homing") << QByteArray("Home") << true;
        QTest::newRow("idle") << QByteArray("Idle") << false;
        QTest::newRow("run") << QByteArray("Run") << false;
        QTest::newRow("alarm") << QByteArray("Alarm") << false;
        QTest::newRow("nothing") << QByteArray() << false;
        // clang-format on
    }
    void waitingState()
    {
        QFETCH(QByteArray, state);
        QFETCH(bool, waiting);
        QCOMPARE(MachineReplies::isWaitingState(state), waiting);
    }

    void splitter_data()
    {
        // clang-format off
        using Bytes = QList<QByteArray>;
        QTest::addColumn<Bytes>("chunks");
        QTest::addColumn<Bytes>("lines");
        QTest::addColumn<int>("dropped");
        QTest::addColumn<int>("pending");
        const int cap = MachineReplies::LineSplitter::MaxLine;
        const QByteArray huge(1 << 20, 'x'), cut = QByteArray(cap, 'x') + "...", full(cap, 'y');
        QTest::newRow("crlf, cr and lf") << Bytes{"ok\r\nerror:1\rALARM:2\n"} << Bytes{"ok", "error:1", "ALARM:2"}
                                         << 0 << 0;
        QTest::newRow("line across chunks") << Bytes{"o", "k\r", "\nGrbl 1.1"} << Bytes{"ok"} << 0 << 8;
        QTest::newRow("blank lines skipped") << Bytes{"\r\n\r\n\nok\n"} << Bytes{"ok"} << 0 << 0;
        QTest::newRow("1 MB line cut, next intact") << Bytes{huge, "\nok\n"} << Bytes{cut, "ok"}
                                                   << huge.size() - cap << 0;
        QTest::newRow("exactly the cap kept whole") << Bytes{full + "\n"} << Bytes{full} << 0 << 0;
        QTest::newRow("one byte over is cut") << Bytes{full + "y\rok\r"} << Bytes{full + "...", "ok"} << 1 << 0;
        QTest::newRow("unfinished long line waits") << Bytes{"ok\n" + full + "yyyyy"} << Bytes{"ok"} << 5 << cap;
        // clang-format on
    }
    void splitter()
    {
        QFETCH(QList<QByteArray>, chunks);
        QFETCH(QList<QByteArray>, lines);
        QFETCH(int, dropped);
        QFETCH(int, pending);
        MachineReplies::LineSplitter splitter;
        QList<QByteArray> got;
        for (const QByteArray &chunk : chunks)
            got += splitter.feed(chunk);
        QCOMPARE(got, lines);
        QCOMPARE(splitter.droppedBytes(), qint64(dropped));
        QCOMPARE(splitter.pendingBytes(), pending);
    }

    void clockText_data()
    {
        // clang-format off
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
        // clang-format on
    }
    void clockText()
    {
        QFETCH(double, seconds);
        QFETCH(QString, text);
        QCOMPARE(JobRunner::clockText(seconds), text);
    }

    // What GRBL gets for each line, and which lines are the program's pause (those the runner keeps).
    void grblRewrite_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("maxPower");
        QTest::addColumn<QByteArray>("sent");
        QTest::addColumn<bool>("pause");
        auto row = [](const char *name, const QByteArray &line, const QByteArray &sent, bool pause = false,
                      int maxPower = 1000) { QTest::newRow(name) << line << maxPower << sent << pause; };
        row("full power", "M106 S255", "M4 S1000");
        row("frame's weak beam, rounded", "M106 S5", "M4 S20");
        row("half power, $30=255", "M106 S128", "M4 S128", false, 255);
        row("power above range clamped", "M106 S300", "M4 S1000");
        row("no S is full power", "M106", "M4 S1000");
        row("blank between letter and number", "M106 S 51", "M4 S20", false, 100);
        row("fan off", "M107", "M5");
        row("G28 alone", "G28", "G0 X0 Y0");
        row("G28 X0 Y0", "G28 X0 Y0", "G0 X0 Y0");
        row("G28 X Y", "G28 X Y", "G0 X0 Y0");
        row("G28 elsewhere kept", "G28 X10", "G28 X10");
        row("other fan form kept", "M106 P1 S3", "M106 P1 S3");
        row("moves kept", "G1 X5.5 Y2 F1800", "G1 X5.5 Y2 F1800");
        row("system command kept", "$H", "$H");
        row("grbl's own laser kept", "M3 S100", "M3 S100");
        row("M0", "M0", "M0", true);
        row("M00", "M00", "M00", true);
        row("M1", "M1", "M1", true);
        row("M05 is not", "M05", "M05");
        row("M0 with a word is not", "M0 P5", "M0 P5");
        row("G0", "G0", "G0");
        row("tiny exponent is zero", "G1 X18.3 Y-7.10543e-15", "G1 X18.3 Y0");
        row("exponent with plus sign", "G1 X1.83e+01 Y2E1", "G1 X18.3 Y20");
        row("exponent in a power", "M3 S1e+03", "M3 S1000");
        row("exponent power then scaled", "M106 S1.275e+02", "M4 S500");
        row("exponent in the frame move", "G0 X1e+02 Y-1.5e-1 F4600", "G0 X100 Y-0.15 F4600");
        row("upper-case exponent", "G1 X2.5E2", "G1 X250");
        row("rounded to six places", "G1 X1.23456789e+00", "G1 X1.234568");
        row("blank before e is a word", "G1 X5 E3", "G1 X5 E3");
        row("e without digits kept", "G1 X5e", "G1 X5e");
        row("exponent moves to home", "G28 X0e+00 Y-0e0", "G0 X0 Y0");
        // clang-format on
    }
    void grblRewrite()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, maxPower);
        QFETCH(QByteArray, sent);
        QFETCH(bool, pause);
        QCOMPARE(GrblRewrite::line(line, maxPower), sent);
        QCOMPARE(GrblRewrite::isProgramPause(line), pause);
    }
};

TARNWELL_TEST_MAIN(TestMachineProtocol)
#include "tst_machineprotocol.moc"
