// The machine link and job runner against firmware stand-ins on pty pairs: detection, flow
// control, rewrites on the wire, pause/resume/stop bytes, errors, alarms, unplug and time-outs.
#include "testsupport.h"
#include "firmwarestandin.h"
#include "jobrunner.h"
#include "machinelink.h"

namespace {

// A small raster-like job as the program writes it, and what GRBL must receive for it.
struct Job
{
    QByteArray file;
    QByteArray grblWire;
    int lines = 0;
};

Job makeJob(int moves, bool framePause = false)
{
    Job job;
    auto add = [&job](const QByteArray &fileLine, const QByteArray &wire) {
        job.file += fileLine + "\n";
        if (!wire.isEmpty())
            job.grblWire += wire + "\n";
        ++job.lines;
    };
    add("G1 F1800 ", "G1 F1800");
    add("G28 X0 Y0  ;move X/Y to min endstops ", "G0 X0 Y0");
    if (framePause) {
        add("M106 S5 ", "M4 S20");
        add("G1 X40 Y0 ", "G1 X40 Y0");
        add("M0 ", "M5");
    }
    job.file += "; a comment line\n\n";
    for (int i = 0; i < moves; ++i) {
        if (i % 10 == 0)
            add("M106 S255 ", "M4 S1000");
        add("G1 X" + QByteArray::number(i % 40) + ".25 Y" + QByteArray::number(i / 40) + " (scan)", "G1 X" + QByteArray::number(i % 40) + ".25 Y" + QByteArray::number(i / 40));
        if (i % 10 == 9)
            add("M107 ", "M5");
    }
    add("G28 ", "G0 X0 Y0");
    return job;
}

QByteArray withoutPolls(QByteArray bytes)
{
    return bytes.replace('?', QByteArray());
}

} // namespace

class TestJobRunner : public QObject
{
    Q_OBJECT

    // Opens LINK on the stand-in and waits until it is ready for jobs.
    bool connectTo(FirmwareStandIn &fw, MachineLink &link, bool banner = true)
    {
        if (!fw.start())
            return false;
        link.setDetectTimes(300, 300);
        QString error;
        if (!link.open(fw.pty.endA(), 115200, Firmware::Unknown, &error))
            return false;
        if (banner)
            fw.banner();
        return QTest::qWaitFor([&] { return link.state() == MachineLink::Ready; }, 10000);
    }

private slots:
    void load_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");   // empty: loads
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("pauses");
        QTest::newRow("program output") << makeJob(20, true).file << QString() << makeJob(20, true).lines << 1;
        QTest::newRow("comments and blanks dropped") << QByteArray("\n; note\n(only a comment)\nG0 X1 ; go\n\n") << QString() << 1 << 0;
        QTest::newRow("system commands pass") << QByteArray("$H\nG0 X1\n") << QString() << 2 << 0;
        QTest::newRow("only comments") << QByteArray("; nothing\n\n") << QString("holds no G-code") << 0 << 0;
        QTest::newRow("a picture") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << QString("is not G-code (line 1)") << 0 << 0;
        QTest::newRow("prose on line 3") << QByteArray("G0 X1\nG1 X2\nhello world\n") << QString("is not G-code (line 3)") << 0 << 0;
    }
    void load()
    {
        QFETCH(QByteArray, text); QFETCH(QString, error); QFETCH(int, lines); QFETCH(int, pauses);
        MachineLink link;
        JobRunner runner(&link);
        QString message;
        QCOMPARE(runner.loadText(text, "job.gcode", &message), error.isEmpty());
        QVERIFY2(message.contains(error), qPrintable(message));
        if (!error.isEmpty())
            return;
        QCOMPARE(runner.total(), lines);
        QCOMPARE(int(std::count_if(runner.lines().begin(), runner.lines().end(), [](const JobRunner::Line &l) { return l.pause; })), pauses);
        QVERIFY(!runner.load("no-such-file.gcode", &message) && message.contains("no-such-file.gcode"));
    }

    void estimate()
    {
        MachineLink link;
        JobRunner runner(&link);
        QString message;
        // 60 mm at 600 mm/min: 6 s plus the ramp of 10 mm/s at 300 mm/s^2 (0.05 s); the rest does not move.
        QVERIFY(runner.loadText("G1 F600\nG1 X60\nM106 S3\nM107\n", "job", &message));
        QVERIFY(qAbs(runner.estimatedSeconds() - 6.05) < 1e-6);
        QCOMPARE(runner.remainingSeconds(), runner.estimatedSeconds());
        runner.setProgramEstimate(46);   // the generator's figure wins, spread over the moves
        QCOMPARE(runner.remainingSeconds(), 46.0);
        QVERIFY(runner.loadText("G1 X1\n", "job", &message));   // a new job forgets it
        QVERIFY(runner.remainingSeconds() < 1);
    }

    // Found by fuzzing: coordinates beyond a double's range gave an infinite time.
    void estimateOfAbsurdMoves_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<double>("seconds");
        const QByteArray huge = "1" + QByteArray(400, '0');
        const double cap = 99999.0 * 3600 + 3599;
        QTest::newRow("out beyond any number") << "G1 X" + huge + "\n" << cap;
        QTest::newRow("out and back") << "G1 X" + huge + "\nG1 X0\nG1 Y" + huge + "\n" << 3 * cap;
        QTest::newRow("relative out beyond") << "G91\nG1 X" + huge.left(300) + "\nG1 X" + huge.left(300) + "\n" << 2 * cap;
    }
    void estimateOfAbsurdMoves()
    {
        QFETCH(QByteArray, text); QFETCH(double, seconds);
        MachineLink link;
        JobRunner runner(&link);
        QString message;
        QVERIFY(runner.loadText(text, "job", &message));
        QCOMPARE(runner.estimatedSeconds(), seconds);
        QCOMPARE(runner.remainingSeconds(), seconds);
    }

    // The whole job reaches GRBL rewritten, in order, without overfilling its 128-byte buffer.
    void grblStream_data()
    {
        QTest::addColumn<int>("ackDelayMs");
        QTest::newRow("answers at once") << 0;
        QTest::newRow("answers late") << 3;
    }
    void grblStream()
    {
        QFETCH(int, ackDelayMs);
        FirmwareStandIn fw(FirmwareStandIn::Grbl, QDir::currentPath());
        fw.ackDelayMs = ackDelayMs;
        MachineLink link;
        QVERIFY(connectTo(fw, link));
        QCOMPARE(link.firmware(), Firmware::Grbl);
        QCOMPARE(link.grblMaxPower(), 1000);
        JobRunner runner(&link);
        runner.setPauseAtFrame(false);
        const Job job = makeJob(300, true);
        QString message;
        QVERIFY(runner.loadText(job.file, "job", &message));
        QVERIFY(runner.start());
        QTRY_COMPARE_WITH_TIMEOUT(runner.state(), JobRunner::Done, 30000);
        QCOMPARE(runner.acknowledged(), job.lines);
        QCOMPARE(runner.remainingSeconds(), 0.0);
        QByteArray expected = "G90\n" + job.grblWire;
        expected.replace("M0\n", "").replace("M4 S20\nG1 X40 Y0\nM5\n", "M4 S20\nG1 X40 Y0\n");   // no pause asked
        QCOMPARE(withoutPolls(fw.jobWire()), expected);
        QVERIFY(!fw.overflowed);
        QVERIFY(fw.maxBuffered <= MachineLink::GrblWindow);
        if (ackDelayMs)
            QVERIFY2(fw.maxBuffered > 100, qPrintable(QString::number(fw.maxBuffered)));   // the window is used, not one line at a time
    }

    // Pause, resume and stop put exactly these bytes on the wire.
    void grblControls()
    {
        FirmwareStandIn fw(FirmwareStandIn::Grbl, QDir::currentPath());
        fw.ackDelayMs = 10;
        MachineLink link;
        QVERIFY(connectTo(fw, link));
        JobRunner runner(&link);
        QString message;
        QVERIFY(runner.loadText(makeJob(400).file, "job", &message));
        QVERIFY(runner.start());
        QTRY_VERIFY_WITH_TIMEOUT(runner.acknowledged() > 20, 10000);
        int mark = fw.wire.size();
        runner.pause();
        QTest::qWait(300);
        QCOMPARE(runner.state(), JobRunner::Paused);
        QByteArray after = withoutPolls(fw.wire.mid(mark));   // may begin with lines written just before
        QCOMPARE(after.mid(after.indexOf('!')), QByteArray("!"));
        QTRY_VERIFY(link.unansweredBytes() > 0);   // held lines wait in the board
        mark = fw.wire.size();
        runner.resume();
        QTRY_VERIFY_WITH_TIMEOUT(withoutPolls(fw.wire.mid(mark)).size() > 20, 5000);
        after = withoutPolls(fw.wire.mid(mark));
        QVERIFY(after.startsWith("~G1") || after.startsWith("~M"));
        mark = fw.wire.size();
        runner.stop();
        QCOMPARE(runner.state(), JobRunner::Stopped);
        QTRY_VERIFY_WITH_TIMEOUT(fw.wire.endsWith("M5\n"), 5000);
        QTest::qWait(200);
        after = withoutPolls(fw.wire.mid(mark));
        QCOMPARE(after.mid(after.indexOf('\x18')), QByteArray("\x18M5\n"));   // nothing of the job after it
    }

    void marlinControls()
    {
        FirmwareStandIn fw(FirmwareStandIn::Marlin, QDir::currentPath());
        MachineLink link;
        QVERIFY(connectTo(fw, link));
        QCOMPARE(link.firmware(), Firmware::Marlin);
        JobRunner runner(&link);
        QString message;
        QVERIFY(runner.loadText(makeJob(100000).file, "job", &message));
        QVERIFY(runner.start());
        QTRY_VERIFY(runner.acknowledged() > 30);
        runner.pause();
        // The job has M107 lines of its own: wait until the pause's one is also answered.
        QTRY_VERIFY(link.unansweredLines() == 0 && link.queuedLines() == 0 && fw.lines.last() == "M107");
        const int held = fw.lines.size();
        QTest::qWait(200);
        QCOMPARE(fw.lines.size(), held);   // nothing more while paused
        QVERIFY(QRegularExpression("\\nN\\d+ M107\\*\\d+\\n$").match(fw.wire).hasMatch());
        QByteArray power;   // the last power command before the pause
        for (int i = 0; i < held - 1; ++i)
            if (fw.lines[i].startsWith("M10"))
                power = fw.lines[i];
        runner.resume();
        QTRY_VERIFY(fw.lines.size() > held + 5);
        QCOMPARE(fw.lines[held], power);   // the power in force comes back
        runner.stop();
        QTRY_VERIFY(fw.wire.endsWith("M410\nM107\n"));
    }

    // The first firmware error or alarm stops the job and turns the beam off.
    void errors_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("setting");     // "error", "alarm" or "continue"
        QTest::addColumn<int>("state");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QByteArray>("beamOff");  // how the wire ends
        // Job line 5 is "G1 X1.25 Y0 (scan)" on line 7 of the file (after a comment and a blank line).
        QTest::newRow("grbl error") << int(FirmwareStandIn::Grbl) << "error" << int(JobRunner::Failed)
                                    << "Line 7: error:20 (Unsupported command.)" << QByteArray("\x18M5\n");
        QTest::newRow("grbl goes on") << int(FirmwareStandIn::Grbl) << "continue" << int(JobRunner::Done) << "Job done" << QByteArray("G0 X0 Y0\n");
        QTest::newRow("grbl alarm") << int(FirmwareStandIn::Grbl) << "alarm" << int(JobRunner::Failed)
                                    << "Line 7: ALARM:1 - Hard limit triggered; position lost. Unlock" << QByteArray("\x18M5\n");
        QTest::newRow("marlin halted") << int(FirmwareStandIn::Marlin) << "error" << int(JobRunner::Failed)
                                       << "Line 7: Error:Printer halted" << QByteArray("M410\nM107\n");
    }
    void errors()
    {
        QFETCH(int, kind); QFETCH(QString, setting); QFETCH(int, state); QFETCH(QString, message); QFETCH(QByteArray, beamOff);
        FirmwareStandIn fw(FirmwareStandIn::Kind(kind), QDir::currentPath());
        (setting == "alarm" ? fw.alarmAtLine : fw.errorAtLine) = 5;
        fw.ackDelayMs = 2;
        MachineLink link;
        QVERIFY(connectTo(fw, link));
        JobRunner runner(&link);
        runner.setContinueOnError(setting == "continue");
        QSignalSpy lineFailed(&runner, &JobRunner::lineFailed);
        QString error;
        QVERIFY(runner.loadText(makeJob(200).file, "job", &error));
        QVERIFY(runner.start());
        QTRY_VERIFY_WITH_TIMEOUT(!runner.isActive(), 20000);
        QCOMPARE(int(runner.state()), state);
        QVERIFY2(runner.message().startsWith(message), qPrintable(runner.message()));
        QTRY_VERIFY_WITH_TIMEOUT(withoutPolls(fw.wire).endsWith(beamOff), 5000);
        QCOMPARE(lineFailed.count(), setting == "continue" ? 1 : 0);
        if (setting == "continue")
            QCOMPARE(lineFailed.at(0).at(0).toInt(), 7);
    }

    // Marlin's busy and Resend: every line arrives once, in order, the resent one twice on the wire.
    void marlinFlow()
    {
        FirmwareStandIn fw(FirmwareStandIn::Marlin, QDir::currentPath());
        fw.resendAtNumber = 6;
        fw.busyAtLine = 10;
        MachineLink link;
        QVERIFY(connectTo(fw, link));
        JobRunner runner(&link);
        const Job job = makeJob(40);
        QString error;
        QVERIFY(runner.loadText(job.file, "job", &error));
        QVERIFY(runner.start());
        QTRY_COMPARE_WITH_TIMEOUT(runner.state(), JobRunner::Done, 10000);
        QList<QByteArray> expected{"M110 N0", "G90"};
        for (const JobRunner::Line &line : runner.lines())
            expected << line.text;
        QCOMPARE(fw.lines, expected);
        QCOMPARE(fw.wire.count("N6 "), 2);
    }

    // The job's own pause after the frame: the runner holds, the beam off, and no M0 reaches GRBL.
    void framePause()
    {
        FirmwareStandIn fw(FirmwareStandIn::Grbl, QDir::currentPath());
        MachineLink link;
        QVERIFY(connectTo(fw, link));
        JobRunner runner(&link);
        runner.setLaserOffText("M107 ");   // the machine settings' text, in GRBL's words
        const Job job = makeJob(30, true);
        QString error;
        QVERIFY(runner.loadText(job.file, "job", &error));
        QVERIFY(runner.start());
        QTRY_COMPARE(runner.state(), JobRunner::FramePause);
        QTest::qWait(200);
        QCOMPARE(withoutPolls(fw.jobWire()), QByteArray("G90\nG1 F1800\nG0 X0 Y0\nM4 S20\nG1 X40 Y0\nM5\n"));
        runner.resume();
        QTRY_COMPARE(runner.state(), JobRunner::Done);
        QCOMPARE(withoutPolls(fw.jobWire()), "G90\n" + job.grblWire);
    }

    // Pulling the plug is reported with the last acknowledged line; a new connection then works.
    void unplugAndReconnect()
    {
        auto fw = std::make_unique<FirmwareStandIn>(FirmwareStandIn::Grbl, QDir::currentPath(), "first");
        fw->ackDelayMs = 5;
        MachineLink link;
        QVERIFY(connectTo(*fw, link));
        JobRunner runner(&link);
        QSignalSpy lost(&link, &MachineLink::connectionLost);
        QString error;
        QVERIFY(runner.loadText(makeJob(2000).file, "job", &error));
        QVERIFY(runner.start());
        QTRY_VERIFY_WITH_TIMEOUT(runner.acknowledged() > 50, 10000);
        fw->unplug();
        QTRY_COMPARE_WITH_TIMEOUT(runner.state(), JobRunner::Failed, 10000);
        QCOMPARE(runner.failure(), JobRunner::ConnectionLost);
        QCOMPARE(lost.count(), 1);
        QVERIFY(runner.lastAcknowledgedFileLine() > 50);
        QVERIFY2(runner.message().endsWith(QString("last acknowledged line %1").arg(runner.lastAcknowledgedFileLine())), qPrintable(runner.message()));
        QCOMPARE(link.state(), MachineLink::Closed);

        FirmwareStandIn again(FirmwareStandIn::Grbl, QDir::currentPath(), "second");
        QVERIFY(connectTo(again, link));
        QVERIFY(runner.loadText(makeJob(10).file, "job", &error));
        QVERIFY(runner.start());
        QTRY_COMPARE(runner.state(), JobRunner::Done);
    }

    // A board that stops answering: time-out, report, and the beam-off still goes out.
    void answerNeverComes()
    {
        FirmwareStandIn fw(FirmwareStandIn::Grbl, QDir::currentPath());
        MachineLink link;
        QVERIFY(connectTo(fw, link));
        link.setAnswerTimeout(500);
        fw.silent = true;
        JobRunner runner(&link);
        QString error;
        QVERIFY(runner.loadText(makeJob(10).file, "job", &error));
        QVERIFY(runner.start());
        QTRY_COMPARE_WITH_TIMEOUT(runner.state(), JobRunner::Failed, 10000);
        QCOMPARE(runner.failure(), JobRunner::Timeout);
        QVERIFY2(runner.message().contains("did not answer within 0.5 s; last acknowledged line 0"), qPrintable(runner.message()));
        QTRY_VERIFY_WITH_TIMEOUT(withoutPolls(fw.wire).endsWith("\x18M5\n"), 5000);
    }

    void detection_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("banner");
        QTest::addColumn<bool>("silent");
        QTest::addColumn<int>("firmware");
        QTest::newRow("grbl banner") << int(FirmwareStandIn::Grbl) << true << false << int(Firmware::Grbl);
        QTest::newRow("grbl found by status probe") << int(FirmwareStandIn::Grbl) << false << false << int(Firmware::Grbl);
        QTest::newRow("marlin banner") << int(FirmwareStandIn::Marlin) << true << false << int(Firmware::Marlin);
        QTest::newRow("marlin found by M115") << int(FirmwareStandIn::Marlin) << false << false << int(Firmware::Marlin);
        QTest::newRow("nothing answers") << int(FirmwareStandIn::Grbl) << false << true << int(Firmware::Unknown);
    }
    void detection()
    {
        QFETCH(int, kind); QFETCH(bool, banner); QFETCH(bool, silent); QFETCH(int, firmware);
        FirmwareStandIn fw(FirmwareStandIn::Kind(kind), QDir::currentPath());
        fw.silent = silent;
        MachineLink link;
        QSignalSpy failed(&link, &MachineLink::failed);
        const bool ready = connectTo(fw, link, banner);
        QCOMPARE(ready, firmware != int(Firmware::Unknown));
        QCOMPARE(int(link.firmware()), firmware);
        if (!ready) {
            QTRY_COMPARE(failed.count(), 1);
            QVERIFY(failed.at(0).at(0).toString().startsWith("No answer from"));
            QCOMPARE(link.state(), MachineLink::Closed);
        }
    }

    // Ports that cannot be opened, and replies no firmware should send.
    void badPortsAndReplies()
    {
        MachineLink link;
        QString error;
        QVERIFY(!link.open("/dev/no-such-tty", 115200, Firmware::Unknown, &error));
        QVERIFY2(error.startsWith("No such device: /dev/no-such-tty"), qPrintable(error));

        FirmwareStandIn fw(FirmwareStandIn::Grbl, QDir::currentPath());
        QVERIFY(connectTo(fw, link));
        MachineLink second;
        QVERIFY(!second.open(fw.pty.endA(), 115200, Firmware::Unknown, &error));
        QVERIFY2(error.contains("is busy"), qPrintable(error));

        QSignalSpy received(&link, &MachineLink::lineReceived);
        fw.sayAll("\xff\xfe\x80\r\n" + QByteArray(1 << 20, 'x') + "\r\nok\r\n");
        QTRY_VERIFY_WITH_TIMEOUT(received.count() >= 3, 10000);
        QCOMPARE(received.at(0).at(0).toByteArray(), QByteArray("\xff\xfe\x80"));
        QCOMPARE(received.at(1).at(0).toByteArray().size(), MachineReplies::LineSplitter::MaxLine + 3);
        JobRunner runner(&link);
        QVERIFY(runner.loadText(makeJob(5).file, "job", &error));
        QVERIFY(runner.start());
        QTRY_COMPARE(runner.state(), JobRunner::Done);
    }
};

TARNWELL_TEST_MAIN(TestJobRunner)
#include "tst_jobrunner.moc"
