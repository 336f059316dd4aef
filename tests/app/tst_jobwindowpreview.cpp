// The Job window's toolpath preview under offscreen: it reads the exported job for the job's machine
// profile (its whole bed drawn, nothing called outside it, shades by the profile's full power, the
// engine's time in the engine's words), an empty preview shows the profile's bed, and the panel
// names the work area it was given when a file goes beyond it.
#include "testsupport.h"

#include "jobedits.h"
#include "jobexport.h"
#include "jobfile.h"
#include "jobmodel.h"
#include "jobwindow.h"
#include "previewpanel.h"
#include "toolpathview.h"

#include <QLabel>
#include <QSignalSpy>
#include <QStandardPaths>
#include <QUndoStack>

#include <cmath>

namespace {

constexpr int LoadTimeout = 60000;  // ms; the machine is shared

const QByteArray Svg = "<svg xmlns='http://www.w3.org/2000/svg' width='96' height='48' viewBox='0 0 96 48'>"
                       "<rect x='0' y='0' width='96' height='48' fill='black'/></svg>";

MachineProfile profileOf(Dialect dialect, double maxPower, QSizeF bed, double travel, double acceleration)
{
    MachineProfile profile;
    profile.name = QStringLiteral("Test");
    profile.dialect = dialect;
    profile.maxPower = maxPower;
    profile.bedWidth = bed.width();
    profile.bedHeight = bed.height();
    profile.travelSpeed = travel;
    profile.acceleration = acceleration;
    return profile;
}

// One filled rectangle at 40 % power, hatched every 0.1 mm.
JobDocument filledRectangle(const MachineProfile &profile, const QRectF &rect)
{
    JobDocument doc;
    doc.machine = profile;
    JobEdits::addLayer(&doc, Operation::Fill, QStringLiteral("Fill"));
    doc.layers[0].power = 40;
    doc.layers[0].speed = 2000;
    doc.layers[0].fill.interval = 0.1;
    JobItem item;
    item.source.kind = SourceKind::Svg;
    item.source.name = QStringLiteral("box.svg");
    item.source.data = Svg;
    item.keepAspect = false;
    item.x = rect.x(), item.y = rect.y(), item.width = rect.width(), item.height = rect.height();
    doc.items = {item};
    return doc;
}

bool waitShown(PreviewPanel *panel, QSignalSpy &spy)
{
    return spy.count() > 0 || spy.wait(LoadTimeout) || !panel->isLoading();
}

// The time at the end of a line "... Estimated time: T".
QString timeOf(const QString &line)
{
    const QString mark = QStringLiteral("Estimated time: ");
    const int at = line.lastIndexOf(mark);
    return at < 0 ? QString() : line.mid(at + mark.size()).section(QLatin1Char('\n'), 0, 0);
}

}  // namespace

class TestJobWindowPreview : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void previewOfTheJobsMachine_data();
    void previewOfTheJobsMachine();
    void emptyPreviewShowsTheBed_data();
    void emptyPreviewShowsTheBed();
    void warningNamesTheArea_data();
    void warningNamesTheArea();
};

void TestJobWindowPreview::previewOfTheJobsMachine_data()
{
    QTest::addColumn<int>("dialect");
    QTest::addColumn<double>("maxPower");
    QTest::addColumn<QSizeF>("bed");
    QTest::addColumn<double>("travel");
    QTest::addColumn<double>("acceleration");
    QTest::addColumn<QRectF>("rect");  // the filled rectangle, machine mm
    // clang-format off
    QTest::newRow("grbl 400 x 400, far corner")   << int(Dialect::Grbl)   << 1000.0 << QSizeF(400, 400)  << 8000.0  << 1500.0 << QRectF(330, 340, 40, 30);
    QTest::newRow("marlin 300 x 250")             << int(Dialect::Marlin) << 255.0  << QSizeF(300, 250)  << 6000.0  << 800.0  << QRectF(250, 200, 30, 20);
    QTest::newRow("fan 400 x 400, top left")      << int(Dialect::Fan)    << 1000.0 << QSizeF(400, 400)  << 3000.0  << 500.0  << QRectF(10, 360, 30, 20);
    QTest::newRow("grbl 1200 x 900, fewer px/mm") << int(Dialect::Grbl)   << 255.0  << QSizeF(1200, 900) << 12000.0 << 2500.0 << QRectF(1100, 800, 50, 40);
    QTest::newRow("grbl classic bed")             << int(Dialect::Grbl)   << 1000.0 << QSizeF(170, 200)  << 3000.0  << 500.0  << QRectF(100, 150, 30, 20);
    // clang-format on
}

void TestJobWindowPreview::previewOfTheJobsMachine()
{
    QFETCH(int, dialect);
    QFETCH(double, maxPower);
    QFETCH(QSizeF, bed);
    QFETCH(double, travel);
    QFETCH(double, acceleration);
    QFETCH(QRectF, rect);
    ScopedWorkDir dir;
    JobWindow window;
    QStringList notices;
    window.setNoticeShower([&notices](const QString &text) { notices.append(text); });
    const JobDocument doc = filledRectangle(profileOf(Dialect(dialect), maxPower, bed, travel, acceleration), rect);
    window.model()->reset(doc);
    PreviewPanel *panel = window.previewPanel();
    QSignalSpy shown(panel, &PreviewPanel::shown);
    QVERIFY2(window.exportTo(dir.file(QStringLiteral("job.gcode"))), qPrintable(notices.join(QLatin1Char('\n'))));
    QVERIFY(waitShown(panel, shown));
    const ToolpathSummary &s = panel->summary();

    // The whole bed is the work area: nothing of the job is outside it.
    QCOMPARE(s.burnMovesOutside + s.travelMovesOutside, qint64(0));
    QCOMPARE(panel->warningsText(), QString());
    QVERIFY(s.burnMoves > 100);

    // The time is reckoned with the profile's motion, as the engine's estimate is.
    JobExportResult result;
    QString error;
    QVERIFY2(JobExport::run(doc, &result, &error), qPrintable(error));
    QVERIFY2(std::abs(s.seconds - result.seconds) < 1e-6,
             qPrintable(QStringLiteral("preview %1 s, engine %2 s").arg(s.seconds).arg(result.seconds)));
    // The figures are shown, and their time reads as the engine's time above them.
    auto *figures = panel->findChild<QLabel *>(QStringLiteral("labelFigures"));
    auto *summary = window.findChild<QLabel *>(QStringLiteral("summaryLabel"));
    QVERIFY(figures && summary);
    QVERIFY(!figures->isHidden());
    QCOMPARE(figures->text(), panel->figuresText());
    const QString engineTime = timeOf(summary->text().section(QLatin1Char('\n'), 0, 0));
    QVERIFY(!engineTime.isEmpty());
    QCOMPARE(timeOf(figures->text()), engineTime);

    // The picture covers the bed; the rectangle is burnt at 40 % of the profile's full power.
    const auto *view = window.findChild<ToolpathView *>();
    QVERIFY(view);
    QCOMPARE(view->workArea(), bed);
    const double px = PreviewLoader::pxPerMmFor(bed.width(), bed.height());
    QVERIFY(px <= PreviewLoader::PxPerMm);
    const QImage picture = view->picture();
    QCOMPARE(picture.size(), QSize(int(std::lround(bed.width() * px)), int(std::lround(bed.height() * px))));
    QVERIFY(double(picture.width()) * picture.height() <= PreviewLoader::MaxPixels * 1.001);
    const QPoint centre(int(rect.center().x() * px), int((bed.height() - rect.center().y()) * px));
    int darkest = 255, clear = 0;
    for (int dy = -2; dy <= 2; ++dy) {
        for (int dx = -2; dx <= 2; ++dx) {
            const QRgb pixel = picture.pixel(centre + QPoint(dx, dy));
            darkest = std::min(darkest, qAlpha(pixel) == 0 ? 255 : qRed(pixel));
            clear += qAlpha(pixel) == 0;
        }
    }
    QCOMPARE(clear, 0);
    QVERIFY2(std::abs(darkest - 153) <= 1, qPrintable(QStringLiteral("darkest %1").arg(darkest)));
    // Beside the rectangle nothing burns.
    const QPoint beside(int((rect.left() - 5) * px), centre.y());
    QCOMPARE(qAlpha(picture.pixel(beside)), 0);
}

void TestJobWindowPreview::emptyPreviewShowsTheBed_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QSizeF>("area");
    // clang-format off
    QTest::newRow("profile set")               << "profile"        << QSizeF(400, 300);
    QTest::newRow("profile set, undone")       << "profile undo"   << QSizeF(170, 200);
    QTest::newRow("job opened")                << "open"           << QSizeF(300, 250);
    QTest::newRow("new job after an open")     << "open new"       << QSizeF(170, 200);
    QTest::newRow("exported, then profile set") << "export profile" << QSizeF(170, 200);
    // clang-format on
}

void TestJobWindowPreview::emptyPreviewShowsTheBed()
{
    QFETCH(QString, action);
    QFETCH(QSizeF, area);
    ScopedWorkDir dir;
    JobWindow window;
    QStringList notices;
    window.setNoticeShower([&notices](const QString &text) { notices.append(text); });
    const auto *view = window.findChild<ToolpathView *>();
    QVERIFY(view);
    QCOMPARE(view->workArea(), QSizeF(170, 200));
    const MachineProfile wide = profileOf(Dialect::Grbl, 1000, QSizeF(400, 300), 3000, 500);
    if (action.startsWith(QLatin1String("profile"))) {
        window.setProfile(wide);
        if (action.endsWith(QLatin1String("undo")))
            window.model()->undoStack()->undo();
    } else if (action.startsWith(QLatin1String("open"))) {
        const JobDocument doc =
            filledRectangle(profileOf(Dialect::Marlin, 255, QSizeF(300, 250), 3000, 500), QRectF(10, 10, 20, 10));
        const QString path = dir.file(QStringLiteral("other.tljob"));
        QString error;
        QVERIFY2(JobFile::save(path, doc, &error), qPrintable(error));
        QVERIFY(window.openJob(path));
        if (action.endsWith(QLatin1String("new")))
            window.newJob();
    } else if (action == QLatin1String("export profile")) {
        window.model()->reset(filledRectangle(MachineProfile(), QRectF(10, 10, 20, 10)));
        QSignalSpy shown(window.previewPanel(), &PreviewPanel::shown);
        QVERIFY2(window.exportTo(dir.file(QStringLiteral("job.gcode"))), qPrintable(notices.join(QLatin1Char('\n'))));
        QVERIFY(waitShown(window.previewPanel(), shown));
        // The file on show keeps the machine it was written for.
        window.setProfile(wide);
        QVERIFY(!window.previewPanel()->file().isEmpty());
    }
    QCOMPARE(view->workArea(), area);
    QCOMPARE(window.previewPanel()->machine().areaWidth, area.width());
    QCOMPARE(window.previewPanel()->machine().areaHeight, area.height());
}

void TestJobWindowPreview::warningNamesTheArea_data()
{
    QTest::addColumn<QSizeF>("area");
    QTest::addColumn<QByteArray>("gcode");
    QTest::addColumn<QString>("warnings");
    // clang-format off
    QTest::newRow("400 x 400, inside")
        << QSizeF(400, 400) << QByteArray("G0 X10 Y10\nM106 S255\nG1 X390 Y390 F600\nM107\n") << "";
    QTest::newRow("300 x 250, beyond the right edge")
        << QSizeF(300, 250) << QByteArray("G0 X10 Y10\nM106 S255\nG1 X320 F600\nM107\n")
        << "Part of the job lies outside the 300 x 250 mm work area: 1 burn moves and 0 travel moves go beyond it "
           "(X up to 320 mm). The machine cannot reach that part, and it is not drawn.";
    QTest::newRow("120.5 x 80, above it")
        << QSizeF(120.5, 80) << QByteArray("G0 X10 Y10\nM106 S255\nG1 Y90 F600\nM107\nG0 X0 Y0\n")
        << "Part of the job lies outside the 120.5 x 80 mm work area: 1 burn moves and 1 travel moves go beyond it "
           "(Y up to 90 mm). The machine cannot reach that part, and it is not drawn.";
    QTest::newRow("classic area")
        << QSizeF(170, 200) << QByteArray("G0 X10 Y10\nM106 S255\nG1 X390 Y190 F600\nM107\n")
        << "Part of the job lies outside the 170 x 200 mm work area: 1 burn moves and 0 travel moves go beyond it "
           "(X up to 390 mm). The machine cannot reach that part, and it is not drawn.";
    // clang-format on
}

void TestJobWindowPreview::warningNamesTheArea()
{
    QFETCH(QSizeF, area);
    QFETCH(QByteArray, gcode);
    QFETCH(QString, warnings);
    ScopedWorkDir dir;
    const QString path = dir.file(QStringLiteral("file.gcode"));
    TestFiles::write(path, gcode);
    PreviewPanel panel;
    PreviewMachine machine;
    machine.areaWidth = area.width();
    machine.areaHeight = area.height();
    panel.setMachine(machine);
    QSignalSpy shown(&panel, &PreviewPanel::shown);
    panel.showFile(path);
    QVERIFY(waitShown(&panel, shown));
    QCOMPARE(panel.warningsText(), warnings);
    // The picture covers the area at the panel's resolution.
    const auto *view = panel.findChild<ToolpathView *>();
    QVERIFY(view);
    const double px = PreviewLoader::pxPerMmFor(area.width(), area.height());
    QCOMPARE(view->picture().size(), QSize(int(std::lround(area.width() * px)), int(std::lround(area.height() * px))));
}

TARNWELL_TEST_MAIN(TestJobWindowPreview)
#include "tst_jobwindowpreview.moc"
