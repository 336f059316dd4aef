// The machine panel under offscreen against firmware stand-ins: connect, jog, frame, console,
// a short run with the frame pause, the controls a job disables, and closing mid-job.
#include "testsupport.h"
#include "firmwarestandin.h"
#include "machinepanel.h"
#include "draw.h"
#include "cpserialport.h"
#include "pgraphicsscene.h"
#include "renderform.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QTranslator>

namespace {

template <typename T = QPushButton>
T *child(QWidget *panel, const char *name)
{
    T *w = panel->findChild<T *>(QLatin1String(name));
    if (!w)
        qFatal("no widget %s", name);
    return w;
}

void click(QWidget *panel, const char *name)
{
    QVERIFY2(child(panel, name)->isEnabled(), name);
    child(panel, name)->click();
}

using Lines = QList<QByteArray>;

const QByteArray Job = "G1 F1800 \nG28 X0 Y0  ;move X/Y to min endstops \nM106 S5 \nG1 X40 Y0 \nM0 \n"
                       "M106 S255 \nG1 X1 Y1 \nG1 X2 Y1 \nM107 \nG28 \n";

// Connects the panel to the stand-in, framing (10, 20) to (40, 60), and waits until it is ready.
bool connectPanel(MachinePanel *panel, FirmwareStandIn &fw)
{
    if (!fw.start())
        return false;
    panel->setFrameSource([] { return QRectF(10, 20, 30, 40); });
    panel->link()->setDetectTimes(300, 300);
    child<QLineEdit>(panel, "pathEdit")->setText(fw.pty.endA());
    child(panel, "connectButton")->click();
    fw.banner();
    // Marlin is asked for its position once connected; that line comes first.
    return QTest::qWaitFor(
        [&] {
            return panel->link()->state() == MachineLink::Ready
                   && (fw.kind == FirmwareStandIn::Grbl || fw.lines.contains("M114"));
        },
        10000);
}

}  // namespace

class TestMachinePanel : public QObject
{
    Q_OBJECT
private slots:
    void workflow_data()
    {
        // clang-format off
        QTest::addColumn<int>("kind");
        QTest::addColumn<Lines>("jog");     // 10 mm in -X
        QTest::addColumn<Lines>("frame");   // (10, 20) to (40, 60), beam off
        QTest::addColumn<Lines>("run");     // the job up to its frame pause
        const Lines corners{"G0 X10.00 Y20.00", "G1 X40.00 Y20.00 F2000", "G1 X40.00 Y60.00", "G1 X10.00 Y60.00",
                            "G1 X10.00 Y20.00"};
        QTest::newRow("grbl") << int(FirmwareStandIn::Grbl) << Lines{"$J=G91 X-10.00 F2000"}
                              << Lines{"G90", "M5"} + corners + Lines{"M5"}
                              << Lines{"G90", "G1 F1800", "G0 X0 Y0", "M4 S20", "G1 X40 Y0", "M5"};
        QTest::newRow("marlin") << int(FirmwareStandIn::Marlin) << Lines{"G91", "G1 X-10.00 F2000", "G90", "M114"}
                                << Lines{"G90", "M107"} + corners + Lines{"M107", "M114"}
                                << Lines{"G90", "G1 F1800", "G28 X0 Y0", "M106 S5", "G1 X40 Y0", "M107", "M400"};
        // clang-format on
    }
    void workflow()
    {
        QFETCH(int, kind);
        QFETCH(Lines, jog);
        QFETCH(Lines, frame);
        QFETCH(Lines, run);
        const bool grbl = kind == FirmwareStandIn::Grbl;
        ScopedWorkDir dir;
        TestFiles::write(dir.file("job.gcode"), Job);
        FirmwareStandIn fw(FirmwareStandIn::Kind(kind), dir.path());
        auto owner = std::make_unique<MachinePanel>();
        MachinePanel *panel = owner.get();
        panel->setJobFile(dir.file("job.gcode"));
        QVERIFY(connectPanel(panel, fw));
        QCOMPARE(child<QLabel>(panel, "linkLabel")->text(),
                 grbl ? "Connected to fwA (GRBL)" : "Connected to fwA (Marlin)");
        QVERIFY(!child(panel, "connectButton")->isEnabled() && !child<QLineEdit>(panel, "pathEdit")->isEnabled());

        int mark = fw.lines.size();
        child<QRadioButton>(panel, "step10Radio")->setChecked(true);
        click(panel, "xMinusButton");
        QTRY_COMPARE(fw.lines.mid(mark), jog);
        mark = fw.lines.size();
        click(panel, "frameButton");
        QTRY_COMPARE(fw.lines.mid(mark), frame);
        mark = fw.lines.size();
        child<QLineEdit>(panel, "commandEdit")->setText("G0 X1");
        QTest::keyClick(child<QLineEdit>(panel, "commandEdit"), Qt::Key_Return);
        QTRY_COMPARE(fw.lines.mid(mark), Lines{"G0 X1"});

        mark = fw.lines.size();
        click(panel, "runButton");
        QTRY_COMPARE(panel->runner()->state(), JobRunner::FramePause);
        QTRY_COMPARE(fw.lines.mid(mark), run);
        QVERIFY(child<QLabel>(panel, "jobMessageLabel")->text().contains("check the frame, then Resume"));
        for (const char *name :
             {"xPlusButton", "homeButton", "frameButton", "runButton", "sendButton", "pauseButton", "disconnectButton"})
            QCOMPARE(child(panel, name)->isEnabled(), QByteArray(name) == "disconnectButton");
        QVERIFY(child(panel, "resumeButton")->isEnabled() && child(panel, "stopButton")->isEnabled());
        click(panel, "resumeButton");
        QTRY_COMPARE(panel->runner()->state(), JobRunner::Done);
        QCOMPARE(child<QProgressBar>(panel, "progressBar")->value(), 100);
        QVERIFY(child(panel, "xPlusButton")->isEnabled());
        // Marlin is done when M400 after the last line is answered.
        const Lines end = grbl ? Lines{"G0 X0 Y0"} : Lines{"G28", "M400"};
        QCOMPARE(fw.lines.mid(fw.lines.size() - end.size()), end);

        // Closing the program in the middle of a job stops the machine and the beam.
        fw.ackDelayMs = 200;
        QByteArray slow;
        for (int i = 0; i < 200; ++i)
            slow += "M106 S255\nG1 X" + QByteArray::number(i) + "\n";
        TestFiles::write(dir.file("slow.gcode"), slow);
        child<QLineEdit>(panel, "jobEdit")->setText(dir.file("slow.gcode"));
        click(panel, "runButton");
        QTRY_VERIFY(panel->runner()->acknowledged() > 2);
        owner.reset();
        QTRY_VERIFY(fw.wire.replace("?", "").endsWith(grbl ? QByteArray("\x18") : QByteArray("M410\nM107\n")));
    }

    // What the user sees on the way: a job about 40% through, paused, and an error (English, then Chinese).
    void pausedAndError_data()
    {
        // clang-format off
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("paused");
        QTest::addColumn<QString>("error");
        QTest::newRow("en") << "en" << "Paused"
                            << "Line 31: error:20 (Unsupported command.) The job was stopped and the beam turned off.";
        QTest::newRow("zh") << "zh" << "已暂停" << "第 31 行：error:20 (Unsupported command.) 作业已停止，光束已关闭。";
        // clang-format on
    }
    void pausedAndError()
    {
        QFETCH(QString, language);
        QFETCH(QString, paused);
        QFETCH(QString, error);
        QTranslator translator;
        QVERIFY(translator.load(":/bin_" + language + ".qm"));
        qApp->installTranslator(&translator);
        ScopedWorkDir dir;
        QByteArray job;
        for (int i = 0; i < 50; ++i)
            job += "G1 X" + QByteArray::number(i) + " Y2 F1200\n";
        TestFiles::write(dir.file("job.gcode"), job);
        FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
        fw.ackDelayMs = 40;
        fw.errorAtLine = 31;
        MachinePanel panel;
        QVERIFY(connectPanel(&panel, fw));
        click(&panel, "frameButton");
        QTRY_VERIFY(fw.lines.size() > 6 && panel.link()->unansweredLines() == 0);
        fw.jobLines = 0;  // the error comes on line 31 of the job itself
        child<QLineEdit>(&panel, "jobEdit")->setText(dir.file("job.gcode"));
        click(&panel, "runButton");
        QTRY_VERIFY(panel.runner()->acknowledged() >= 20);
        click(&panel, "pauseButton");
        QTRY_COMPARE(child<QLabel>(&panel, "jobMessageLabel")->text(), paused);
        QTest::qWait(300);
        click(&panel, "resumeButton");
        QTRY_COMPARE_WITH_TIMEOUT(panel.runner()->state(), JobRunner::Failed, 10000);
        QCOMPARE(child<QLabel>(&panel, "jobMessageLabel")->text(), error);
        qApp->removeTranslator(&translator);
    }

    // The machine still moving after the last line, then left in alarm by a stop, in each language:
    // "Finishing" until it is idle, then the alarm with Unlock offered, and the beam-off after it.
    void finishingAndAlarm_data()
    {
        // clang-format off
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("finishing");
        QTest::addColumn<QString>("done");
        QTest::addColumn<QString>("alarm");
        QTest::newRow("en") << "en" << "Finishing…" << "Job done"
            << "Stopped. The machine is in alarm after the stop: press Unlock ($X) before the next job.";
        QTest::newRow("zh") << "zh" << "正在完成…" << "作业完成"
            << "已停止。停止后机器处于报警状态：开始下一个作业前请按“解锁”（$X）。";
        QTest::newRow("ko") << "ko" << "마무리 중…" << "작업 완료"
            << "정지됨. 정지 후 기계가 알람 상태입니다: 다음 작업 전에 잠금 해제($X)를 누르세요.";
        // clang-format on
    }
    void finishingAndAlarm()
    {
        QFETCH(QString, language);
        QFETCH(QString, finishing);
        QFETCH(QString, done);
        QFETCH(QString, alarm);
        QTranslator translator;
        QVERIFY(translator.load(":/bin_" + language + ".qm"));
        qApp->installTranslator(&translator);
        ScopedWorkDir dir;
        QByteArray job;
        for (int i = 0; i < 200; ++i)
            job += "G1 X" + QByteArray::number(i % 100) + " Y2 F1200\n";
        TestFiles::write(dir.file("job.gcode"), job);
        FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
        fw.runAfterMs = 1500;
        fw.alarmOnReset = true;
        MachinePanel panel;
        QVERIFY(connectPanel(&panel, fw));
        QLabel *message = child<QLabel>(&panel, "jobMessageLabel");
        QProgressBar *bar = child<QProgressBar>(&panel, "progressBar");
        child<QLineEdit>(&panel, "jobEdit")->setText(dir.file("job.gcode"));
        click(&panel, "runButton");
        QTRY_COMPARE(panel.runner()->state(), JobRunner::Finishing);
        QCOMPARE(message->text(), finishing);
        QCOMPARE(bar->value(), 99);
        QVERIFY(child(&panel, "stopButton")->isEnabled() && !child(&panel, "runButton")->isEnabled());
        QTRY_COMPARE(panel.runner()->state(), JobRunner::Done);
        QVERIFY(fw.idleSinceOk);
        QCOMPARE(message->text(), done);
        QCOMPARE(bar->value(), 100);

        fw.ackDelayMs = 50;  // moving, when the stop comes
        click(&panel, "runButton");
        QTRY_VERIFY(panel.runner()->acknowledged() > 5);
        click(&panel, "stopButton");
        QTRY_COMPARE(panel.runner()->state(), JobRunner::Stopped);
        QCOMPARE(message->text(), alarm);
        QVERIFY(child(&panel, "unlockButton")->isEnabled());
        QVERIFY(!child(&panel, "runButton")->isEnabled() && !child(&panel, "frameButton")->isEnabled());
        QVERIFY(child(&panel, "homeButton")->isEnabled());  // homing clears an alarm too
        QTest::qWait(300);
        QVERIFY(!fw.wire.mid(fw.wire.lastIndexOf('\x18')).contains("M5"));
        click(&panel, "unlockButton");
        QTRY_VERIFY(fw.wire.replace("?", "").endsWith("$X\nM5\n"));
        QVERIFY(!fw.locked);
        QTRY_VERIFY(child(&panel, "runButton")->isEnabled() && child(&panel, "frameButton")->isEnabled());
        qApp->removeTranslator(&translator);
    }

    // In the main window: the frame goes where the export put the job's own frame, the
    // exported file is the one to run, and a port held by the port panel above is offered back.
    void inTheMainWindow()
    {
        ScopedWorkDir dir;
        TestFiles::write(dir.file("Config.ini"), "[Tarnwy]\nmode=laser\n[Language]\nlanguage=English\n");
        QTemporaryDir elsewhere;  // removing a picture clears every *.svg of the working folder
        TestFiles::write(
            elsewhere.filePath("drawing.svg"),
            "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"23mm\" height=\"17mm\" viewBox=\"0 0 23 17\">"
            "<path d=\"M2 2 L21 2 L21 15 L2 15 Z\" fill=\"none\" stroke=\"black\"/></svg>\n");
        Draw w;
        w.findChild<QRadioButton *>("radioButtonOut")->setChecked(true);
        QMetaObject::invokeMethod(&w, "SlotPixitemDropped", Q_ARG(QString, elsewhere.filePath("drawing.svg")));
        QImage canvas(400, 400, QImage::Format_ARGB32);  // the canvas learns where items stand when painted
        QPainter painter(&canvas);
        w.renderForm()->scene()->render(&painter);
        w.startSaveGcode(dir.file("job.gcode"), w.renderForm()->CurrentItemPos());
        QFile job(dir.file("job.gcode"));
        QVERIFY(job.open(QIODevice::ReadOnly));
        QSet<QByteArray> exportedCorners;  // the job's own frame, before its pause
        for (QByteArray line; !(line = job.readLine()).startsWith("M0");)
            if (line.startsWith("G0 X"))
                exportedCorners << line.trimmed().split(' ').mid(1, 2).join(' ');  // "X.. Y.."
        QCOMPARE(exportedCorners.size(), 4);

        MachinePanel *panel = w.machinePanel();
        QCOMPARE(child<QLineEdit>(panel, "jobEdit")->placeholderText(), QString("job.gcode"));
        w.findChild<QPushButton *>("btnMachinePanel")->click();
        QVERIFY(panel->isVisible() && panel->isWindow());

        FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
        QVERIFY(fw.start());
        // The port panel above takes the port first.
        QComboBox *held = w.serialPanel()->findChild<QComboBox *>("portCombo");
        held->addItem(fw.pty.endA());
        held->setCurrentText(fw.pty.endA());
        w.serialPanel()->findChild<QPushButton *>("btnConnect")->click();
        QTest::qWait(300);
        panel->link()->setDetectTimes(300, 300);
        child<QLineEdit>(panel, "pathEdit")->setText(fw.pty.endA());
        click(panel, "connectButton");
        QCOMPARE(child<QLabel>(panel, "jobMessageLabel")->text(), "The port panel above holds " + fw.pty.endA() + ".");
        QVERIFY(!child(panel, "releaseButton")->isHidden());
        click(panel, "releaseButton");
        QTRY_VERIFY2_WITH_TIMEOUT(panel->link()->isOpen(), qPrintable(child<QLabel>(panel, "jobMessageLabel")->text()),
                                  5000);
        fw.banner();
        QTRY_COMPARE(panel->link()->state(), MachineLink::Ready);

        const int mark = fw.lines.size();
        click(panel, "frameButton");
        QTRY_VERIFY(fw.lines.size() >= mark + 8);
        QSet<QByteArray> framed;
        for (const QByteArray &line : fw.lines.mid(mark))
            if (line.startsWith("G0 X") || line.startsWith("G1 X"))
                framed << line.split(' ').mid(1, 2).join(' ');
        QCOMPARE(framed, exportedCorners);
    }
};

TARNWELL_TEST_MAIN(TestMachinePanel)
#include "tst_machinepanel.moc"
