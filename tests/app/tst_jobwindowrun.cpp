// The Job window on a machine, against the GRBL firmware stand-in: Frame traces the job's bounds,
// Run job hands the exported file to the Machine window's runner, which sends it through, and the
// profile dialog reads the board's $30.
#include "testsupport.h"
#include "firmwarestandin.h"

#include "jobedits.h"
#include "jobmodel.h"
#include "jobwindow.h"
#include "machinepanel.h"
#include "machineprofiledialog.h"

#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QPushButton>
#include <QStandardPaths>

namespace {

using Lines = QList<QByteArray>;

bool connectPanel(MachinePanel *panel, FirmwareStandIn &fw)
{
    if (!fw.start())
        return false;
    panel->link()->setDetectTimes(300, 300);
    panel->findChild<QLineEdit *>(QStringLiteral("pathEdit"))->setText(fw.pty.endA());
    panel->findChild<QPushButton *>(QStringLiteral("connectButton"))->click();
    fw.banner();
    return QTest::qWaitFor([&] { return panel->link()->state() == MachineLink::Ready; }, 10000);
}

// Two outlines on a line layer: 10..30 x 20..25 mm and 40..50 x 5..45 mm, the second on a layer that
// can be switched off.
JobDocument twoItems()
{
    const QByteArray svg = "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
                           "<rect x='0' y='0' width='10' height='10'/></svg>";
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation::Line, QStringLiteral("Cut"));
    JobEdits::addLayer(&doc, Operation::Line, QStringLiteral("Tall"));
    JobItem a;
    a.source.kind = SourceKind::Svg;
    a.source.name = QStringLiteral("a.svg");
    a.source.data = svg;
    a.keepAspect = false;
    a.x = 10, a.y = 20, a.width = 20, a.height = 5;
    JobItem b = a;
    b.layer = 1;
    b.x = 40, b.y = 5, b.width = 10, b.height = 40;
    doc.items = {a, b};
    return doc;
}

}  // namespace

class TestJobWindowRun : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void frame_data();
    void frame();
    void runOnGrbl();
    void readsProfileFromGrbl();
};

void TestJobWindowRun::frame_data()
{
    QTest::addColumn<int>("power");
    QTest::addColumn<bool>("tallOn");
    QTest::addColumn<Lines>("sent");
    // clang-format off
    QTest::newRow("beam off, both layers") << 0 << true
        << Lines{"G90", "M5", "G0 X10.00 Y5.00", "G1 X50.00 Y5.00 F3000", "G1 X50.00 Y45.00", "G1 X10.00 Y45.00",
                 "G1 X10.00 Y5.00", "M5"};
    QTest::newRow("5 %, tall layer off")  << 5 << false
        << Lines{"G90", "M5", "G0 X10.00 Y20.00", "M3 S50", "G1 X30.00 Y20.00 F3000", "G1 X30.00 Y25.00",
                 "G1 X10.00 Y25.00", "G1 X10.00 Y20.00", "M5"};
    // clang-format on
}

void TestJobWindowRun::frame()
{
    QFETCH(int, power);
    QFETCH(bool, tallOn);
    QFETCH(Lines, sent);
    ScopedWorkDir dir;
    FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
    MachinePanel panel;
    JobWindow window;
    QStringList notices;
    window.setNoticeShower([&](const QString &text) { notices << text; });
    window.setMachinePanel(&panel);
    JobDocument doc = twoItems();
    doc.layers[1].enabled = tallOn;
    window.model()->reset(doc);
    // Not connected yet: nothing goes out, and the window says why.
    QVERIFY(!window.frameJob());
    QCOMPARE(notices.size(), 1);
    QVERIFY(connectPanel(&panel, fw));
    window.findChild<QDoubleSpinBox *>(QStringLiteral("framePower"))->setValue(power);
    const int mark = fw.lines.size();
    QVERIFY(window.frameJob());
    QTRY_COMPARE(fw.lines.mid(mark), sent);
    QCOMPARE(notices.size(), 1);
}

void TestJobWindowRun::runOnGrbl()
{
    ScopedWorkDir dir;
    FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
    MachinePanel panel;
    JobWindow window;
    window.setNoticeShower([](const QString &text) { QFAIL(qPrintable(text)); });
    window.setMachinePanel(&panel);
    window.model()->reset(twoItems());
    window.setFileChooser([&](JobWindow::FileQuestion, const QString &, const QString &) {
        return dir.file(QStringLiteral("two.tljob"));
    });
    QVERIFY(window.saveAs());
    QVERIFY(connectPanel(&panel, fw));
    const int mark = fw.lines.size();
    QVERIFY(window.runJob());
    // Exported beside the job file, and sent line by line to the end.
    const QString gcode = dir.file(QStringLiteral("two.gcode"));
    QCOMPARE(window.exportedFile(), gcode);
    QVERIFY(panel.isVisible());
    QTRY_COMPARE(panel.runner()->state(), JobRunner::Done);
    Lines expected{"G90"};
    for (const QByteArray &line : TestFiles::read(gcode).split('\n'))
        if (!line.isEmpty() && !line.startsWith(';'))
            expected << line;
    QCOMPARE(fw.lines.mid(mark), expected);
    QCOMPARE(expected.last(), QByteArray("G0 X0 Y0"));
}

void TestJobWindowRun::readsProfileFromGrbl()
{
    ScopedWorkDir dir;
    FirmwareStandIn fw(FirmwareStandIn::Grbl, dir.path());
    fw.grblMaxPower = 500;
    MachinePanel panel;
    MachineProfileStore store;
    MachineProfileDialog dialog(store);
    dialog.setLink(panel.link());
    auto *read = dialog.findChild<QPushButton *>(QStringLiteral("readButton"));
    QVERIFY(!read->isEnabled());
    QVERIFY(!dialog.readFromMachine());
    QVERIFY(connectPanel(&panel, fw));
    QTRY_VERIFY(read->isEnabled());
    read->click();
    QTRY_COMPARE(dialog.findChild<QDoubleSpinBox *>(QStringLiteral("maxPower"))->value(), 500.0);
    QVERIFY(fw.lines.contains("$$"));
    // The bed stays as it was: this board does not list $130/$131.
    QCOMPARE(dialog.findChild<QDoubleSpinBox *>(QStringLiteral("bedWidth"))->value(), 170.0);
}

TARNWELL_TEST_MAIN(TestJobWindowRun)
#include "tst_jobwindowrun.moc"
