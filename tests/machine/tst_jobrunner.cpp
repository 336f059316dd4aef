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
    QByteArray file, grblWire;
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
        const QByteArray move = "G1 X" + QByteArray::number(i % 40) + ".25 Y" + QByteArray::number(i / 40);
        add(move + " (scan)", move);
        if (i % 10 == 9)
            add("M107 ", "M5");
    }
    add("G28 ", "G0 X0 Y0");
    return job;
}

QByteArray withoutPolls(QByteArray bytes) { return bytes.replace('?', QByteArray()); }

// LINES moves, one a line, nothing else: job line N is line N of the file.
QByteArray plainJob(int lines)
{
    QByteArray job;
    for (int i = 1; i <= lines; ++i)
        job += "G1 X" + QByteArray::number(i % 100) + " Y1 F600\n";
    return job;
}

// Opens LINK on the stand-in and waits until it is ready for jobs.
bool connectTo(FirmwareStandIn &fw, MachineLink &link, bool banner = true)
{
    QString error;
    if (!fw.start())
        return false;
    link.setDetectTimes(300, 300);
    if (!link.open(fw.pty.endA(), 115200, Firmware::Unknown, &error))
        return false;
    if (banner)
        fw.banner();
    return QTest::qWaitFor([&] { return link.state() == MachineLink::Ready; }, 10000);
}

// A stand-in, a link for it and a runner on the link.
struct Rig
{
    FirmwareStandIn fw;
    MachineLink link;
    JobRunner runner{&link};
    QString message;
    explicit Rig(FirmwareStandIn::Kind kind = FirmwareStandIn::Grbl) : fw(kind, QDir::currentPath()) {}
    bool ready(bool banner = true) { return connectTo(fw, link, banner); }
    bool run(const QByteArray &file) { return runner.loadText(file, "job", &message) && runner.start(); }
};

}  // namespace

class TestJobRunner : public QObject
{
    Q_OBJECT
private slots:
    void load_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");   // empty: loads
        QTest::addColumn<int>("lines");
        QTest::addColumn<int>("pauses");
        auto row = [](const char *name, const QByteArray &text, const char *error, int lines = 0, int pauses = 0) {
            QTest::newRow(name) << text << QString(error) << lines << pauses;
        };
        row("program output", makeJob(20, true).file, "", makeJob(20, true).lines, 1);
        row("comments and blanks dropped", "\n; note\n(only a comment)\nG0 X1 ; go\n\n", "", 1);
        row("system commands pass", "$H\nG0 X1\n", "", 2);
        row("only comments", "; nothing\n\n", "holds no G-code");
        row("a picture", QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16), "is not G-code (line 1)");
        row("prose on line 3", "G0 X1\nG1 X2\nhello world\n", "is not G-code (line 3)");
        // clang-format on
    }
    void load()
    {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        QFETCH(int, lines);
        QFETCH(int, pauses);
        Rig r;
        QCOMPARE(r.runner.loadText(text, "job.gcode", &r.message), error.isEmpty());
        QVERIFY2(r.message.contains(error), qPrintable(r.message));
        if (!error.isEmpty())
            return;
        QCOMPARE(r.runner.total(), lines);
        const QVector<JobRunner::Line> &got = r.runner.lines();
        QCOMPARE(int(std::count_if(got.begin(), got.end(), [](const JobRunner::Line &l) { return l.pause; })), pauses);
        QVERIFY(!r.runner.load("no-such-file.gcode", &r.message) && r.message.contains("no-such-file.gcode"));
    }

    void estimate_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<double>("seconds");
        const QByteArray huge = "1" + QByteArray(400, '0');
        const double cap = 99999.0 * 3600 + 3599;
        // 60 mm at 600 mm/min: 6 s plus the ramp of 10 mm/s at 300 mm/s^2 (0.05 s); the rest does not move.
        QTest::newRow("one move") << QByteArray("G1 F600\nG1 X60\nM106 S3\nM107\n") << 6.05;
        // Found by fuzzing: coordinates beyond a double's range gave an infinite time.
        QTest::newRow("out beyond any number") << "G1 X" + huge + "\n" << cap;
        QTest::newRow("out and back") << "G1 X" + huge + "\nG1 X0\nG1 Y" + huge + "\n" << 3 * cap;
        const QByteArray far = huge.left(300);
        QTest::newRow("relative out beyond") << "G91\nG1 X" + far + "\nG1 X" + far + "\n" << 2 * cap;
        // clang-format on
    }
    void estimate()
    {
        QFETCH(QByteArray, text);
        QFETCH(double, seconds);
        Rig r;
        QVERIFY(r.runner.loadText(text, "job", &r.message));
        QVERIFY(qAbs(r.runner.estimatedSeconds() - seconds) < 1e-6);
        QCOMPARE(r.runner.remainingSeconds(), r.runner.estimatedSeconds());
        r.runner.setProgramEstimate(46);  // the generator's figure wins, spread over the moves
        QCOMPARE(r.runner.remainingSeconds(), 46.0);
        QVERIFY(r.runner.loadText("G1 X1\n", "job", &r.message));  // a new job forgets it
        QVERIFY(r.runner.remainingSeconds() < 1);
    }

    // The whole job reaches GRBL rewritten, in order, without overfilling its 128-byte buffer.
    // With the frame pause asked for, the runner holds after the frame with the beam off, and
    // no M0 reaches GRBL.
    void grblStream_data()
    {
        // clang-format off
        QTest::addColumn<int>("ackDelayMs");
        QTest::addColumn<bool>("framePause");
        QTest::addColumn<int>("maxPower");   // the board's $30: full power goes out as M4 S<$30>
        QTest::newRow("answers at once") << 0 << false << 1000;
        QTest::newRow("answers late") << 3 << false << 1000;
        QTest::newRow("frame pause") << 0 << true << 1000;
        QTest::newRow("$30=500") << 0 << false << 500;
        // clang-format on
    }
    void grblStream()
    {
        QFETCH(int, ackDelayMs);
        QFETCH(bool, framePause);
        QFETCH(int, maxPower);
        Rig r;
        r.fw.ackDelayMs = ackDelayMs;
        r.fw.grblMaxPower = maxPower;
        QVERIFY(r.ready());
        QCOMPARE(r.link.firmware(), Firmware::Grbl);
        QCOMPARE(r.link.grblMaxPower(), maxPower);
        r.runner.setPauseAtFrame(framePause);
        if (framePause)
            r.runner.setLaserOffText("M107 ");  // the machine settings' text, in GRBL's words
        const Job job = makeJob(framePause ? 30 : 300, true);
        QVERIFY(r.run(job.file));
        if (framePause) {
            QTRY_COMPARE(r.runner.state(), JobRunner::FramePause);
            QTest::qWait(200);
            QCOMPARE(withoutPolls(r.fw.jobWire()), QByteArray("G90\nG1 F1800\nG0 X0 Y0\nM4 S20\nG1 X40 Y0\nM5\n"));
            r.runner.resume();
        }
        QTRY_COMPARE_WITH_TIMEOUT(r.runner.state(), JobRunner::Done, 30000);
        QCOMPARE(r.runner.acknowledged(), job.lines);
        QCOMPARE(r.runner.remainingSeconds(), 0.0);
        QByteArray expected = "G90\n" + job.grblWire;
        if (!framePause)
            expected.replace("M4 S20\nG1 X40 Y0\nM5\n", "M4 S20\nG1 X40 Y0\n");
        expected.replace("M4 S1000\n", "M4 S" + QByteArray::number(maxPower) + "\n");
        expected.replace("M4 S20\n", "M4 S" + QByteArray::number(qRound(5.0 * maxPower / 255)) + "\n");
        QCOMPARE(withoutPolls(r.fw.jobWire()), expected);
        QVERIFY(!r.fw.overflowed);
        QVERIFY(r.fw.maxBuffered <= MachineLink::GrblWindow);
        if (ackDelayMs)  // the window is used, not one line at a time
            QVERIFY2(r.fw.maxBuffered > 100, qPrintable(QString::number(r.fw.maxBuffered)));
    }

    // Pause, resume and stop put exactly these bytes on the wire.
    void grblControls()
    {
        Rig r;
        r.fw.ackDelayMs = 10;
        QVERIFY(r.ready() && r.run(makeJob(400).file));
        QTRY_VERIFY_WITH_TIMEOUT(r.runner.acknowledged() > 20, 10000);
        int mark = r.fw.wire.size();
        r.runner.pause();
        QTest::qWait(300);
        QCOMPARE(r.runner.state(), JobRunner::Paused);
        QByteArray after = withoutPolls(r.fw.wire.mid(mark));  // may begin with lines written just before
        QCOMPARE(after.mid(after.indexOf('!')), QByteArray("!"));
        QTRY_VERIFY(r.link.unansweredBytes() > 0);  // held lines wait in the board
        mark = r.fw.wire.size();
        r.runner.resume();
        QTRY_VERIFY_WITH_TIMEOUT(withoutPolls(r.fw.wire.mid(mark)).size() > 20, 5000);
        after = withoutPolls(r.fw.wire.mid(mark));
        QVERIFY(after.startsWith("~G1") || after.startsWith("~M"));
        mark = r.fw.wire.size();
        r.runner.stop();
        QCOMPARE(r.runner.state(), JobRunner::Stopping);  // until GRBL is back from its reset
        QTRY_COMPARE(r.runner.state(), JobRunner::Stopped);
        QTRY_VERIFY_WITH_TIMEOUT(r.fw.wire.endsWith("M5\n"), 5000);
        QTest::qWait(200);
        after = withoutPolls(r.fw.wire.mid(mark));
        QCOMPARE(after.mid(after.indexOf('\x18')), QByteArray("\x18M5\n"));  // nothing of the job after it
    }

    // Disconnecting while GRBL comes back from the stop's reset ends the stop at once.
    void closedWhileStopping()
    {
        Rig r;
        r.fw.ackDelayMs = 10;
        QVERIFY(r.ready() && r.run(plainJob(300)));
        QTRY_VERIFY(r.runner.acknowledged() > 20);
        QSignalSpy finished(&r.runner, &JobRunner::finished);
        r.fw.silent = true;  // the board does not come back
        r.runner.stop();
        QCOMPARE(r.runner.state(), JobRunner::Stopping);
        r.link.close();
        QCOMPARE(r.runner.state(), JobRunner::Stopped);
        QCOMPARE(finished.count(), 1);
        QTRY_VERIFY(withoutPolls(r.fw.wire).endsWith("\x18"));
    }

    void marlinControls()
    {
        Rig r(FirmwareStandIn::Marlin);
        QVERIFY(r.ready());
        QCOMPARE(r.link.firmware(), Firmware::Marlin);
        QVERIFY(r.run(makeJob(100000).file));
        QTRY_VERIFY(r.runner.acknowledged() > 30);
        r.runner.pause();
        // The job has M107 lines of its own: wait until the pause's one is also answered.
        QTRY_VERIFY(r.link.unansweredLines() == 0 && r.link.queuedLines() == 0 && r.fw.lines.last() == "M107");
        const int held = r.fw.lines.size();
        QTest::qWait(200);
        QCOMPARE(r.fw.lines.size(), held);  // nothing more while paused
        QVERIFY(QRegularExpression("\\nN\\d+ M107\\*\\d+\\n$").match(r.fw.wire).hasMatch());
        QByteArray power;  // the last power command before the pause
        for (int i = 0; i < held - 1; ++i)
            if (r.fw.lines[i].startsWith("M10"))
                power = r.fw.lines[i];
        r.runner.resume();
        QTRY_VERIFY(r.fw.lines.size() > held + 5);
        QCOMPARE(r.fw.lines[held], power);  // the power in force comes back
        r.runner.stop();
        QTRY_VERIFY(r.fw.wire.endsWith("M410\nM107\n"));
    }

    // The first firmware error or alarm, or a board that stops answering, stops the job and
    // turns the beam off.
    void errors_data()
    {
        // clang-format off
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("fault");       // "error", "alarm", "silent", or "continue" for an error gone past
        QTest::addColumn<int>("failure");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QByteArray>("beamOff");  // how the wire ends
        const int grbl = FirmwareStandIn::Grbl;
        const QByteArray reset("\x18M5\n");
        // Job line 5 is "G1 X1.25 Y0 (scan)" on line 7 of the file (after a comment and a blank line).
        QTest::newRow("grbl error") << grbl << "error" << int(JobRunner::FirmwareError)
                                    << "Line 7: error:20 (Unsupported command.)" << reset;
        QTest::newRow("grbl goes on") << grbl << "continue" << int(JobRunner::NoFailure) << "Job done"
                                      << QByteArray("G0 X0 Y0\n");
        QTest::newRow("grbl alarm") << grbl << "alarm" << int(JobRunner::Alarm)
                                    << "Line 7: ALARM:1 - Hard limit triggered; position lost. Unlock" << reset;
        QTest::newRow("marlin halted") << int(FirmwareStandIn::Marlin) << "error" << int(JobRunner::FirmwareError)
                                       << "Line 7: Error:Printer halted" << QByteArray("M410\nM107\n");
        QTest::newRow("no answer") << grbl << "silent" << int(JobRunner::Timeout)
                                   << "No answer to G90 for 0.5 s; the machine does not answer status requests"
                                   << reset;
        // clang-format on
    }
    void errors()
    {
        QFETCH(int, kind);
        QFETCH(QString, fault);
        QFETCH(int, failure);
        QFETCH(QString, message);
        QFETCH(QByteArray, beamOff);
        Rig r{FirmwareStandIn::Kind(kind)};
        (fault == "alarm" ? r.fw.alarmAtLine : r.fw.errorAtLine) = 5;
        r.fw.ackDelayMs = 2;
        QVERIFY(r.ready());
        if (fault == "silent") {
            r.link.setAnswerTimeout(500);
            r.fw.silent = true;
        }
        r.runner.setContinueOnError(fault == "continue");
        QSignalSpy lineFailed(&r.runner, &JobRunner::lineFailed);
        QVERIFY(r.run(makeJob(200).file));
        QTRY_VERIFY_WITH_TIMEOUT(!r.runner.isActive(), 20000);
        QCOMPARE(r.runner.state(), failure == JobRunner::NoFailure ? JobRunner::Done : JobRunner::Failed);
        QCOMPARE(int(r.runner.failure()), failure);
        QVERIFY2(r.runner.message().startsWith(message), qPrintable(r.runner.message()));
        QTRY_VERIFY_WITH_TIMEOUT(withoutPolls(r.fw.wire).endsWith(beamOff), 5000);
        QCOMPARE(lineFailed.count(), fault == "continue" ? 1 : 0);
        if (fault == "continue")
            QCOMPARE(lineFailed.at(0).at(0).toInt(), 7);
    }

    // A line that is never acknowledged ends the job after the time-out, counted from that line:
    // the status reports GRBL keeps sending do not put it off. The beam goes off.
    void answerTimeout_data()
    {
        // clang-format off
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("message");
        QTest::addColumn<QByteArray>("beamOff");
        QTest::newRow("grbl idle, line lost") << int(FirmwareStandIn::Grbl)
            << "No answer to line 34 for 1 s; the machine reports Idle at X1.00 Y2.00. Idle with lines unanswered: "
               "a line was lost on the way, or the firmware dropped it" << QByteArray("\x18M5\n");
        QTest::newRow("marlin") << int(FirmwareStandIn::Marlin) << "No answer to line 34 for 1 s"
                                << QByteArray("M410\nM107\n");
        // clang-format on
    }
    void answerTimeout()
    {
        QFETCH(int, kind);
        QFETCH(QString, message);
        QFETCH(QByteArray, beamOff);
        Rig r{FirmwareStandIn::Kind(kind)};
        r.fw.loseFromLine = 34;
        QVERIFY(r.ready());
        r.link.setAnswerTimeout(1000);
        QVERIFY(r.run(plainJob(40)));
        QTRY_VERIFY_WITH_TIMEOUT(!r.runner.isActive(), 8000);
        // Within the time-out and a second of the lost line, not before the time-out.
        QVERIFY(r.fw.lostAt.isValid());
        const qint64 waited = r.fw.lostAt.elapsed();
        QVERIFY2(waited >= 900 && waited <= 2000, qPrintable(QString::number(waited)));
        QCOMPARE(r.runner.state(), JobRunner::Failed);
        QCOMPARE(r.runner.failure(), JobRunner::Timeout);
        QCOMPARE(r.runner.message(), message);
        QCOMPARE(r.runner.acknowledged(), 33);
        QTRY_VERIFY(withoutPolls(r.fw.wire).endsWith(beamOff));
    }

    // A pause longer than the time-out is no failure: GRBL reports Hold all along.
    void pauseOutlastsTimeout()
    {
        Rig r;
        r.fw.ackDelayMs = 10;
        QVERIFY(r.ready());
        r.link.setAnswerTimeout(800);
        QVERIFY(r.run(plainJob(300)));
        QTRY_VERIFY(r.runner.acknowledged() > 20);
        r.runner.pause();
        QTRY_VERIFY(r.fw.held && r.link.unansweredLines() > 0);
        QTest::qWait(1500);
        QCOMPARE(r.runner.state(), JobRunner::Paused);
        r.runner.resume();
        QTRY_COMPARE(r.runner.state(), JobRunner::Done);
        QCOMPARE(r.runner.acknowledged(), 300);
    }

    // All lines acknowledged is not done: the machine goes on moving for 3 s, and the runner
    // says "done" only once the board says it has finished (GRBL: Idle; Marlin: M400 answered).
    void finishing_data()
    {
        // clang-format off
        QTest::addColumn<int>("kind");
        QTest::newRow("grbl") << int(FirmwareStandIn::Grbl);
        QTest::newRow("marlin") << int(FirmwareStandIn::Marlin);
        // clang-format on
    }
    void finishing()
    {
        QFETCH(int, kind);
        Rig r{FirmwareStandIn::Kind(kind)};
        r.fw.runAfterMs = 3000;
        QVERIFY(r.ready());
        bool finishedAtDone = false;
        connect(&r.runner, &JobRunner::stateChanged, this, [&](JobRunner::State state) {
            if (state == JobRunner::Done)
                finishedAtDone = r.fw.idleSinceOk;
        });
        QVERIFY(r.run(plainJob(20)));
        QTRY_COMPARE(r.runner.state(), JobRunner::Finishing);
        QCOMPARE(r.runner.acknowledged(), 20);
        QCOMPARE(r.runner.percent(), 99);
        QVERIFY(!r.fw.idleSinceOk);
        QTRY_COMPARE_WITH_TIMEOUT(r.runner.state(), JobRunner::Done, 8000);
        QVERIFY(finishedAtDone);
        QCOMPARE(r.runner.percent(), 100);
        QVERIFY2(r.runner.elapsedMs() >= 2900, qPrintable(QString::number(r.runner.elapsedMs())));
        QCOMPARE(r.runner.message(), QString("Job done: 20 lines"));
    }

    // The pause after the frame begins once the machine has traced it (GRBL: Idle after the
    // beam-off; Marlin: M400 answered), and the clock, started with the first line, counts the
    // frame's time but not the wait at the pause.
    void framePause_data()
    {
        // clang-format off
        QTest::addColumn<int>("kind");
        QTest::newRow("grbl") << int(FirmwareStandIn::Grbl);
        QTest::newRow("marlin") << int(FirmwareStandIn::Marlin);
        // clang-format on
    }
    void framePause()
    {
        QFETCH(int, kind);
        Rig r{FirmwareStandIn::Kind(kind)};
        r.fw.runAfterMs = 1000;  // the frame's moves go on this long after the last ok
        QVERIFY(r.ready());
        bool tracedAtPause = false;
        connect(&r.runner, &JobRunner::stateChanged, this, [&](JobRunner::State state) {
            if (state == JobRunner::FramePause)
                tracedAtPause = r.fw.idleSinceOk;
        });
        QVERIFY(r.run(makeJob(10, true).file));
        QTRY_COMPARE(r.runner.state(), JobRunner::FramePause);
        QVERIFY(tracedAtPause);
        QVERIFY2(r.runner.elapsedMs() >= 950, qPrintable(QString::number(r.runner.elapsedMs())));
        const qint64 atFrame = r.runner.elapsedMs();
        QTest::qWait(300);
        QCOMPARE(r.runner.elapsedMs(), atFrame);  // waiting at the frame does not count
        r.fw.runAfterMs = 0;
        r.runner.resume();
        QTRY_COMPARE(r.runner.state(), JobRunner::Done);
        QVERIFY(r.runner.elapsedMs() >= atFrame);
    }

    // A reset while GRBL moves leaves it in alarm: the runner says so, sends nothing the alarm
    // would refuse, and the beam-off follows the unlock. A reset at rest leaves it idle.
    void alarmAfterStop_data()
    {
        // clang-format off
        QTest::addColumn<QString>("how");         // "stop", "error" (firmware error at job line 30), "frame"
        QTest::addColumn<bool>("alarm");
        QTest::addColumn<QString>("message");     // a regular expression
        const QString note = "; the machine is in alarm after the stop: unlock \\(\\$X\\) before the next job$";
        QTest::newRow("stop while moving") << "stop" << true << "^Stopped by the user at line \\d+" + note;
        QTest::newRow("error while moving") << "error" << true
                                            << "^Line 30: error:20 \\(Unsupported command.\\)" + note;
        QTest::newRow("stop at the frame") << "frame" << false << "^Stopped by the user at line 5$";
        // clang-format on
    }
    void alarmAfterStop()
    {
        QFETCH(QString, how);
        QFETCH(bool, alarm);
        QFETCH(QString, message);
        Rig r;
        r.fw.ackDelayMs = 20;
        r.fw.alarmOnReset = true;
        r.fw.errorAtLine = how == "error" ? 30 : 0;
        QVERIFY(r.ready());
        r.runner.setPauseAtFrame(how == "frame");
        QVERIFY(r.run(how == "frame" ? makeJob(20, true).file : plainJob(400)));
        if (how == "frame") {
            QTRY_COMPARE(r.runner.state(), JobRunner::FramePause);
            QTRY_VERIFY(r.fw.lines.last() == "M5" && r.link.unansweredLines() == 0);  // at rest
        } else {
            QTRY_VERIFY(r.runner.acknowledged() > 20);
        }
        if (how != "error")
            r.runner.stop();
        QTRY_VERIFY(!r.runner.isActive());
        QVERIFY2(QRegularExpression(message).match(r.runner.message()).hasMatch(), qPrintable(r.runner.message()));
        QCOMPARE(r.runner.alarmAfterStop(), alarm);
        QCOMPARE(r.fw.locked, alarm);
        QTest::qWait(300);  // anything sent after the reset has arrived
        const QByteArray afterReset = withoutPolls(r.fw.wire.mid(r.fw.wire.lastIndexOf('\x18')));
        QCOMPARE(afterReset, alarm ? QByteArray("\x18") : QByteArray("\x18M5\n"));
        QVERIFY(!r.fw.wire.contains("error:9"));
        if (alarm) {
            r.runner.unlock();  // then the beam-off
            QTRY_VERIFY(withoutPolls(r.fw.wire).endsWith("\x18$X\nM5\n"));
            QTRY_VERIFY(!r.runner.alarmAfterStop());
        }
        // The next job runs.
        r.fw.errorAtLine = 0;
        QVERIFY(r.run(plainJob(5)));
        QTRY_COMPARE(r.runner.state(), JobRunner::Done);
    }

    // Marlin's busy and Resend: every line arrives once, in order, the resent one twice on the wire.
    void marlinFlow()
    {
        Rig r(FirmwareStandIn::Marlin);
        r.fw.resendAtNumber = 6;
        r.fw.busyAtLine = 10;
        QVERIFY(r.ready() && r.run(makeJob(40).file));
        QTRY_COMPARE_WITH_TIMEOUT(r.runner.state(), JobRunner::Done, 10000);
        QList<QByteArray> expected{"M110 N0", "G90"};
        for (const JobRunner::Line &line : r.runner.lines())
            expected << line.text;
        expected << "M400";  // done once the moves are
        QCOMPARE(r.fw.lines, expected);
        QCOMPARE(r.fw.wire.count("N6 "), 2);
    }

    // Pulling the plug is reported with the last acknowledged line; a new connection then works.
    void unplugAndReconnect()
    {
        Rig r;
        r.fw.ackDelayMs = 5;
        QSignalSpy lost(&r.link, &MachineLink::connectionLost);
        QVERIFY(r.ready() && r.run(makeJob(2000).file));
        QTRY_VERIFY_WITH_TIMEOUT(r.runner.acknowledged() > 50, 10000);
        r.fw.unplug();
        QTRY_COMPARE_WITH_TIMEOUT(r.runner.state(), JobRunner::Failed, 10000);
        QCOMPARE(r.runner.failure(), JobRunner::ConnectionLost);
        QCOMPARE(lost.count(), 1);
        QVERIFY(r.runner.lastAcknowledgedFileLine() > 50);
        const QString last = QString("last acknowledged line %1").arg(r.runner.lastAcknowledgedFileLine());
        QVERIFY2(r.runner.message().endsWith(last), qPrintable(r.runner.message()));
        QVERIFY2(r.runner.message().startsWith("Connection to " + r.fw.pty.endA()
                                               + " lost: the device went away (unplugged or switched off);"),
                 qPrintable(r.runner.message()));
        QCOMPARE(r.link.state(), MachineLink::Closed);

        FirmwareStandIn again(FirmwareStandIn::Grbl, QDir::currentPath(), "again");
        QVERIFY(connectTo(again, r.link) && r.run(makeJob(10).file));
        QTRY_COMPARE(r.runner.state(), JobRunner::Done);
    }

    void detection_data()
    {
        // clang-format off
        QTest::addColumn<int>("kind");
        QTest::addColumn<bool>("banner");
        QTest::addColumn<bool>("silent");
        QTest::addColumn<int>("firmware");
        const int grbl = FirmwareStandIn::Grbl, marlin = FirmwareStandIn::Marlin;
        QTest::newRow("grbl banner") << grbl << true << false << int(Firmware::Grbl);
        QTest::newRow("grbl found by status probe") << grbl << false << false << int(Firmware::Grbl);
        QTest::newRow("marlin banner") << marlin << true << false << int(Firmware::Marlin);
        QTest::newRow("marlin found by M115") << marlin << false << false << int(Firmware::Marlin);
        QTest::newRow("nothing answers") << grbl << false << true << int(Firmware::Unknown);
        // clang-format on
    }
    void detection()
    {
        QFETCH(int, kind);
        QFETCH(bool, banner);
        QFETCH(bool, silent);
        QFETCH(int, firmware);
        Rig r{FirmwareStandIn::Kind(kind)};
        r.fw.silent = silent;
        QSignalSpy failed(&r.link, &MachineLink::failed);
        const bool ready = r.ready(banner);
        QCOMPARE(ready, firmware != int(Firmware::Unknown));
        QCOMPARE(int(r.link.firmware()), firmware);
        if (!ready) {
            QTRY_COMPARE(failed.count(), 1);
            QVERIFY(failed.at(0).at(0).toString().startsWith("No answer from"));
            QCOMPARE(r.link.state(), MachineLink::Closed);
        }
    }

    // Ports that cannot be opened, and replies no firmware should send.
    void badPortsAndReplies()
    {
        Rig r;
        QString error;
        QVERIFY(!r.link.open("/dev/no-such-tty", 115200, Firmware::Unknown, &error));
        QVERIFY2(error.startsWith("No such device: /dev/no-such-tty"), qPrintable(error));
        QVERIFY(r.ready());
        MachineLink second;
        QVERIFY(!second.open(r.fw.pty.endA(), 115200, Firmware::Unknown, &error));
        QVERIFY2(error.contains("is busy"), qPrintable(error));

        QSignalSpy received(&r.link, &MachineLink::lineReceived);
        r.fw.sayAll("\xff\xfe\x80\r\n" + QByteArray(1 << 20, 'x') + "\r\nok\r\n");
        QTRY_VERIFY_WITH_TIMEOUT(received.count() >= 3, 10000);
        QCOMPARE(received.at(0).at(0).toByteArray(), QByteArray("\xff\xfe\x80"));
        QCOMPARE(received.at(1).at(0).toByteArray().size(), MachineReplies::LineSplitter::MaxLine + 3);
        QVERIFY(r.run(makeJob(5).file));
        QTRY_COMPARE(r.runner.state(), JobRunner::Done);
    }
};

TARNWELL_TEST_MAIN(TestJobRunner)
#include "tst_jobrunner.moc"
