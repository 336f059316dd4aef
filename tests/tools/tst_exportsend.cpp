// `tarnwell-export send` run as users run it, against firmware stand-ins on pty pairs:
// exit statuses, messages, the frame pause on standard input, and what reached the wire.
#include "exportrunner.h"
#include "firmwarestandin.h"
#include "machinelink.h"
#include "testsupport.h"

namespace {

const QByteArray FramedJob = "G1 F1800 \nG28 X0 Y0  ;move X/Y to min endstops \nM106 S5 \nG1 X40 Y0 \nM0 \n"
                             "M106 S255 \nG1 X1 Y1 \nG1 X2 Y1 \nG1 X3 Y1 \nM107 \nG28 \n";

// job.gcode of 300 lines, each `perLine` with its number after it, sent to a GRBL stand-in that
// takes `ackDelayMs` per line; standard input is left open.
void startSend(QProcess &tool, FirmwareStandIn &fw, const QByteArray &perLine, int ackDelayMs)
{
    QByteArray job;
    for (int i = 0; i < 300; ++i)
        job += perLine + QByteArray::number(i) + " F600\n";
    TestFiles::write("job.gcode", job);
    fw.ackDelayMs = ackDelayMs;
    QVERIFY(fw.start());
    tool.start(TARNWELL_EXPORT, {"send", "--port", fw.pty.endA(), "--input", "job.gcode", "--firmware", "grbl"});
    QVERIFY(tool.waitForStarted());
}

}  // namespace

class TestExportSend : public QObject
{
    Q_OBJECT
private slots:
    void send_data()
    {
        // clang-format off
        QTest::addColumn<int>("kind");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QByteArray>("stdinText");   // written, then closed
        QTest::addColumn<QString>("fault");          // set on the stand-in; job line 5 is on file line 6
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");        // last line of standard error
        QTest::addColumn<QByteArray>("wireEnd");
        const int grbl = FirmwareStandIn::Grbl;
        const QStringList noPause{"--no-pause"};
        const QByteArray home("M5\nG0 X0 Y0\n");
        QTest::newRow("done, no pause") << grbl << noPause << QByteArray() << "" << 0 << "Job done: 11 lines" << home;
        QTest::newRow("enter goes on after the frame")
            << grbl << QStringList() << QByteArray("\n") << "" << 0 << "Job done: 11 lines" << home;
        QTest::newRow("end of input stops at the frame") << grbl << QStringList() << QByteArray() << "" << 3
            << "Stopped by the user at line 5" << QByteArray("G1 X40 Y0\nM5\n\x18M5\n");
        QTest::newRow("marlin done")
            << int(FirmwareStandIn::Marlin) << QStringList{"--no-pause", "--firmware", "marlin"} << QByteArray() << ""
            << 0 << "Job done: 11 lines" << QByteArray("N11 G28*35\nN12 M400*20\n");
        QTest::newRow("firmware error") << grbl << noPause << QByteArray() << "error" << 3
                                        << "Line 6: error:20 (Unsupported command.)" << QByteArray("\x18M5\n");
        QTest::newRow("error, going on") << grbl << QStringList{"--no-pause", "--continue-on-error"} << QByteArray()
                                         << "error" << 0 << "Job done: 11 lines" << QByteArray("G0 X0 Y0\n");
        QTest::newRow("alarm") << grbl << QStringList{"--no-pause", "--continue-on-error"} << QByteArray() << "alarm"
            << 3 << "Line 6: ALARM:1 - Hard limit triggered; position lost. Unlock the machine before going on."
            << QByteArray("\x18M5\n");
        QTest::newRow("no answer") << grbl << QStringList{"--firmware", "grbl", "--timeout", "1"} << QByteArray()
                                   << "silent" << 4 << "The machine did not answer within 1 s" << QByteArray("$$\n");
        // clang-format on
    }
    void send()
    {
        QFETCH(int, kind);
        QFETCH(QStringList, options);
        QFETCH(QByteArray, stdinText);
        QFETCH(QString, fault);
        QFETCH(int, status);
        QFETCH(QString, message);
        QFETCH(QByteArray, wireEnd);
        ScopedWorkDir dir;
        TestFiles::write("job.gcode", FramedJob);
        FirmwareStandIn fw(FirmwareStandIn::Kind(kind), dir.path());
        fw.silent = fault == "silent";
        fw.errorAtLine = fault == "error" ? 5 : 0;
        fw.alarmAtLine = fault == "alarm" ? 5 : 0;
        QVERIFY(fw.start());
        QProcess tool;
        tool.start(TARNWELL_EXPORT, QStringList{"send", "--port", fw.pty.endA(), "--input", "job.gcode"} + options);
        QVERIFY(tool.waitForStarted());
        tool.write(stdinText);
        // Enter (or the end of input) only once the frame has been traced.
        if (!options.contains("--no-pause"))
            QTRY_VERIFY_WITH_TIMEOUT(fw.wire.contains("G1 X40 Y0\nM5\n") || fault == "silent", 15000);
        tool.closeWriteChannel();
        QTest::qWait(200);
        fw.banner();
        QTRY_COMPARE_WITH_TIMEOUT(tool.state(), QProcess::NotRunning, 20000);
        const QStringList err = QString::fromUtf8(tool.readAllStandardError()).trimmed().split('\n');
        QCOMPARE(tool.exitCode(), status);
        QCOMPARE(err.last(), "tarnwell-export: " + message);
        QVERIFY2(fw.wire.replace("?", "").endsWith(wireEnd), fw.wire.right(60).constData());
    }

    // Progress about once a second, in the documented form.
    void progress()
    {
        ScopedWorkDir dir;
        FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
        QProcess tool;
        startSend(tool, fw, "G1 X", 8);
        tool.closeWriteChannel();
        QTRY_COMPARE_WITH_TIMEOUT(tool.state(), QProcess::NotRunning, 30000);
        QCOMPARE(tool.exitCode(), 0);
        const QString err = QString::fromUtf8(tool.readAllStandardError());
        QVERIFY2(QRegularExpression("\\nsent \\d+/300 lines, \\d+%, \\d+:\\d\\d left\\n").match(err).hasMatch(),
                 qPrintable(err));
    }

    // What the machine really does decides the outcome: a line never acknowledged, moves that go on
    // after the last ok, an alarm left by the stop, a device that goes away.
    void machineState_data()
    {
        // clang-format off
        QTest::addColumn<QString>("action");      // done to the job once 20 lines are in: "interrupt", "unplug"
        QTest::addColumn<QString>("board");       // "loses line 34", "moves on 3 s", "alarm on reset", "slow"
        QTest::addColumn<int>("status");
        QTest::addColumn<QString>("message");     // the last line of standard error, a regular expression
        const QString alarm = "; the machine is in alarm after the stop: unlock \\(\\$X\\) before the next job";
        QTest::newRow("never acknowledged") << "" << "loses line 34" << 4
            << "^No answer to line 34 for 2 s; the machine reports Idle at X1.00 Y2.00. Idle with lines unanswered: "
               "a line was lost on the way, or the firmware dropped it$";
        QTest::newRow("still moving after the last ok") << "" << "moves on 3 s" << 0 << "^Job done: 40 lines$";
        QTest::newRow("stopped while moving") << "interrupt" << "alarm on reset" << 3
                                              << "^Stopped by the user at line \\d+" + alarm + "$";
        QTest::newRow("unplugged") << "unplug" << "slow" << 4
            << "^Connection to .*fwA lost: the device went away \\(unplugged or switched off\\); "
               "last acknowledged line \\d+$";
        // clang-format on
    }
    void machineState()
    {
        QFETCH(QString, action);
        QFETCH(QString, board);
        QFETCH(int, status);
        QFETCH(QString, message);
        ScopedWorkDir dir;
        const int lines = action.isEmpty() ? 40 : 400;
        QByteArray job;
        for (int i = 1; i <= lines; ++i)
            job += "G1 X" + QByteArray::number(i % 100) + " Y1 F600\n";
        TestFiles::write("job.gcode", job);
        FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
        fw.loseFromLine = board == "loses line 34" ? 34 : 0;
        fw.runAfterMs = board == "moves on 3 s" ? 3000 : 0;
        fw.alarmOnReset = board == "alarm on reset";
        fw.ackDelayMs = action.isEmpty() ? 0 : 20;
        QVERIFY(fw.start());
        QProcess tool;
        qint64 exitAfterLost = -1;
        bool idleAtExit = false;
        connect(&tool, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, [&] {
            exitAfterLost = fw.lostAt.isValid() ? fw.lostAt.elapsed() : -1;
            idleAtExit = fw.idleSinceOk;
        });
        tool.start(TARNWELL_EXPORT, {"send", "--port", fw.pty.endA(), "--input", "job.gcode", "--firmware", "grbl",
                                     "--no-pause", "--timeout", "2"});
        QVERIFY(tool.waitForStarted());
        tool.closeWriteChannel();
        if (!action.isEmpty()) {
            QTRY_VERIFY_WITH_TIMEOUT(fw.lines.size() > 20, 8000);
            if (action == "interrupt")
                ::kill(pid_t(tool.processId()), SIGINT);
            else
                fw.unplug();
        }
        QTRY_COMPARE_WITH_TIMEOUT(tool.state(), QProcess::NotRunning, 9000);
        const QString err = QString::fromUtf8(tool.readAllStandardError());
        const QString last = err.trimmed().split('\n').last();
        QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
        QVERIFY2(tool.exitCode() == status, qPrintable(err));
        QVERIFY2(last.startsWith("tarnwell-export: "), qPrintable(last));
        QVERIFY2(QRegularExpression(message).match(last.mid(17)).hasMatch(), qPrintable(last));
        const QByteArray wire = fw.wire.replace("?", "");
        if (fw.loseFromLine) {  // within the time-out and a second, not before the time-out
            QVERIFY2(exitAfterLost >= 1900 && exitAfterLost <= 3000, qPrintable(QString::number(exitAfterLost)));
            QVERIFY(wire.endsWith("\x18M5\n"));
        }
        if (fw.runAfterMs) {  // progress went on while the machine moved, and it had stopped at the exit
            QVERIFY(idleAtExit);
            QVERIFY2(err.contains("sent 40/40 lines, 99%, finishing: the machine is still moving\n"), qPrintable(err));
        }
        if (fw.alarmOnReset) {  // nothing the alarm would refuse
            QVERIFY(fw.locked);
            QCOMPARE(wire.mid(wire.lastIndexOf('\x18')), QByteArray("\x18"));
        }
    }

    // Ctrl-C in the middle of a job: exit 3, and the machine is reset with the beam off.
    void interrupted()
    {
        ScopedWorkDir dir;
        FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
        QProcess tool;
        startSend(tool, fw, "M106 S255\nG1 X", 20);
        QTRY_VERIFY_WITH_TIMEOUT(fw.lines.size() > 20, 15000);
        ::kill(pid_t(tool.processId()), SIGINT);
        QTest::qWait(200);
        fw.banner();  // after its reset
        QTRY_COMPARE_WITH_TIMEOUT(tool.state(), QProcess::NotRunning, 10000);
        QCOMPARE(tool.exitStatus(), QProcess::NormalExit);
        QCOMPARE(tool.exitCode(), 3);
        QVERIFY(QString::fromUtf8(tool.readAllStandardError()).contains("Stopped by the user at line"));
        const QByteArray wire = fw.wire.replace("?", "");
        QCOMPARE(wire.mid(wire.lastIndexOf('\x18')), QByteArray("\x18M5\n"));
    }

    void badInput_data()
    {
        // clang-format off
        QTest::addColumn<QString>("port");      // "pty": the stand-in's; "held": the same, already open
        QTest::addColumn<QString>("input");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("message");
        QTest::newRow("no such device") << "/dev/no-such-tty" << "job.gcode" << QStringList()
                                        << "No such device: /dev/no-such-tty";
        QTest::newRow("busy device") << "held" << "job.gcode" << QStringList() << "is busy";
        QTest::newRow("missing file") << "pty" << "missing.gcode" << QStringList() << "Cannot read";
        QTest::newRow("not G-code") << "pty" << "picture.png" << QStringList() << "is not G-code (line 1)";
        QTest::newRow("bad firmware name") << "pty" << "job.gcode" << QStringList{"--firmware", "smoothie"}
                                           << "is not auto, grbl or marlin";
        QTest::newRow("bad timeout") << "pty" << "job.gcode" << QStringList{"--timeout", "soon"} << "is not";
        // clang-format on
    }
    void badInput()
    {
        QFETCH(QString, port);
        QFETCH(QString, input);
        QFETCH(QStringList, options);
        QFETCH(QString, message);
        ScopedWorkDir dir;
        TestFiles::write("job.gcode", FramedJob);
        TestFiles::write("picture.png", QByteArray("\x89PNG\r\n\x1a\n\0\0", 10));
        FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
        QVERIFY(fw.start());
        MachineLink holder;
        if (port == "held")
            QVERIFY(holder.open(fw.pty.endA()));
        const QString device = port == "pty" || port == "held" ? fw.pty.endA() : port;
        const ExportRun run = runExport(QStringList{"send", "--port", device, "--input", input} + options);
        QCOMPARE(run.status, 2);
        QVERIFY2(run.err.contains(message.toUtf8()) && run.err.count('\n') == 1, run.err.constData());
        QTest::qWait(200);  // what the tool may have written is read in this loop
        QVERIFY(!fw.wire.contains("G1"));
    }
};

TARNWELL_TEST_MAIN(TestExportSend)
#include "tst_exportsend.moc"
