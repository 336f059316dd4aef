// The Job window's machine side: profiles kept in the configuration folder and their dialog, GRBL's
// settings read into a profile, material presets, and the test grid dialog against the command-line
// tool's grid.
#include "testsupport.h"

#include "jobexport.h"
#include "jobfile.h"
#include "jobformat.h"
#include "joblayoutscene.h"
#include "jobmodel.h"
#include "jobpresetlibrary.h"
#include "jobwindow.h"
#include "layerpanel.h"
#include "machineprofiledialog.h"
#include "machineprofilestore.h"
#include "testgriddialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProcess>
#include <QPushButton>
#include <QSpinBox>
#include <QStandardPaths>
#include <QMenuBar>
#include <QTranslator>
#include <QUndoStack>

namespace {

// Removes the configuration files a test leaves, so each starts from the defaults.
void clearConfig()
{
    QFile::remove(MachineProfileStore::path());
    QFile::remove(JobPresetLibrary::path());
}

void quiet(JobWindow &w)
{
    w.setNoticeShower([](const QString &text) { QFAIL(qPrintable(text)); });
}

}  // namespace

class TestJobWindowMachine : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void init() { clearConfig(); }
    void cleanupTestCase() { clearConfig(); }

    void profileFile_data();
    void profileFile();
    void grblSettings_data();
    void grblSettings();
    void profileDialogSetsTheJobsBed();
    void presets_data();
    void presets();
    void saveLayerAsPreset();
    void presetNamesFollowTheLanguage_data();
    void presetNamesFollowTheLanguage();
    void testGridMatchesTool_data();
    void testGridMatchesTool();
};

void TestJobWindowMachine::profileFile_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("error");  // empty: read
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("selected");
    QTest::addColumn<double>("bedWidth");  // of the selected
    // clang-format off
    QTest::newRow("two, second chosen") << QByteArray(R"({"profiles":[{"name":"A"},{"name":"B","bed":[400,300],"dialect":"marlin"}],"selected":1})")
                                        << "" << 2 << 1 << 400.0;
    QTest::newRow("selection clamped")  << QByteArray(R"({"profiles":[{"name":"A","bed":[300,200]}],"selected":7})")
                                        << "" << 1 << 0 << 300.0;
    QTest::newRow("unknown dialect")    << QByteArray(R"({"profiles":[{"name":"A","dialect":"smoothie"}]})")
                                        << "machine-profiles.json: profiles[0].dialect: not grbl, marlin or fan" << 1 << 0 << 170.0;
    QTest::newRow("zero bed")           << QByteArray(R"({"profiles":[{"name":"A","bed":[0,200]}]})")
                                        << "machine-profiles.json: profiles[0]: values must be above 0" << 1 << 0 << 170.0;
    QTest::newRow("no profiles")        << QByteArray(R"({"profiles":[]})")
                                        << "machine-profiles.json: profiles: none" << 1 << 0 << 170.0;
    QTest::newRow("not json")           << QByteArray("[1,")
                                        << "machine-profiles.json: not a JSON object" << 1 << 0 << 170.0;
    // clang-format on
}

void TestJobWindowMachine::profileFile()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, error);
    QFETCH(int, count);
    QFETCH(int, selected);
    QFETCH(double, bedWidth);
    ScopedWorkDir dir;
    QVERIFY(
        MachineProfileStore::path().startsWith(QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)));
    QVERIFY(!MachineProfileStore::path().startsWith(dir.path()));
    QDir().mkpath(QFileInfo(MachineProfileStore::path()).absolutePath());
    TestFiles::write(MachineProfileStore::path(), json);
    MachineProfileStore store;
    QString message;
    QCOMPARE(store.load(&message), error.isEmpty());
    QCOMPARE(message, error);
    QCOMPARE(int(store.profiles.size()), count);
    QCOMPARE(store.selected, selected);
    QCOMPARE(store.current().bedWidth, bedWidth);
    // What is saved reads back the same.
    QVERIFY(store.save());
    MachineProfileStore again;
    QVERIFY(again.load());
    QVERIFY(again.profiles == store.profiles);
    QCOMPARE(again.selected, store.selected);
    // A window started now makes its new job for the selected profile.
    JobWindow window;
    QCOMPARE(window.document().machine, store.current());
    QCOMPARE(window.scene()->bedWidth(), bedWidth);
}

void TestJobWindowMachine::grblSettings_data()
{
    QTest::addColumn<QByteArrayList>("lines");
    QTest::addColumn<int>("used");
    QTest::addColumn<QList<double>>("values");  // max power, bed width, bed height, travel, acceleration
    // clang-format off
    QTest::newRow("full list") << QByteArrayList{"$0=10", "$30=255", "$110=6000.000", "$111=5000.000", "$120=800.000",
                                                 "$121=600.000", "$130=400.000", "$131=380.000"}
                               << 7 << QList<double>{255, 400, 380, 5000, 600};
    QTest::newRow("only $30")  << QByteArrayList{"$30=1000", "ok"} << 1 << QList<double>{1000, 170, 200, 3000, 500};
    QTest::newRow("one axis feed") << QByteArrayList{"$110=4000"} << 1 << QList<double>{1000, 170, 200, 4000, 500};
    QTest::newRow("zero and junk ignored") << QByteArrayList{"$130=0", "$131=abc", "[MSG:x]", "$30 = 9"}
                                           << 0 << QList<double>{1000, 170, 200, 3000, 500};
    // clang-format on
}

void TestJobWindowMachine::grblSettings()
{
    QFETCH(QByteArrayList, lines);
    QFETCH(int, used);
    QFETCH(QList<double>, values);
    MachineProfile profile;
    QCOMPARE(MachineProfileStore::applyGrblSettings(lines, &profile), used);
    QCOMPARE((QList<double>{profile.maxPower, profile.bedWidth, profile.bedHeight, profile.travelSpeed,
                            profile.acceleration}),
             values);
}

void TestJobWindowMachine::profileDialogSetsTheJobsBed()
{
    ScopedWorkDir dir;
    JobWindow window;
    quiet(window);
    window.setProfileEditor([](MachineProfileStore *store) {
        MachineProfileDialog dialog(*store);
        const auto buttons = dialog.findChildren<QPushButton *>();
        for (QPushButton *b : buttons)
            if (b->text() == MachineProfileDialog::tr("Add"))
                b->click();
        dialog.findChild<QLineEdit *>(QStringLiteral("profileName"))->setText(QStringLiteral("Big bed"));
        dialog.findChild<QDoubleSpinBox *>(QStringLiteral("bedWidth"))->setValue(400);
        dialog.findChild<QDoubleSpinBox *>(QStringLiteral("bedHeight"))->setValue(400);
        // Going to the first and back keeps what was typed.
        dialog.selectProfile(0);
        dialog.selectProfile(1);
        QMetaObject::invokeMethod(dialog.findChild<QDialogButtonBox *>(), "accepted");
        *store = dialog.store();
        return dialog.result() == QDialog::Accepted;
    });
    QVERIFY(window.editProfiles());
    QCOMPARE(window.profiles().profiles.size(), size_t(2));
    QCOMPARE(window.profiles().current().name, QStringLiteral("Big bed"));
    QCOMPARE(window.document().machine.bedWidth, 400.0);
    QCOMPARE(window.scene()->bedHeight(), 400.0);
    // Saved in the configuration folder: a new window's new job takes it.
    QVERIFY(QFile::exists(MachineProfileStore::path()));
    JobWindow next;
    QCOMPARE(next.document().machine.name, QStringLiteral("Big bed"));
    QCOMPARE(next.scene()->bedWidth(), 400.0);
    // The working folder holds nothing of it.
    QVERIFY(QDir(dir.path()).entryList(QDir::Files).isEmpty());
}

void TestJobWindowMachine::presets_data()
{
    QTest::addColumn<QString>("english");
    QTest::addColumn<int>("operation");
    QTest::addColumn<double>("speed");
    QTest::addColumn<double>("power");
    QTest::addColumn<int>("passes");
    // clang-format off
    QTest::newRow("plywood cut")   << "Plywood 3 mm, cut"           << int(Operation::Line)  << 300.0  << 100.0 << 3;
    QTest::newRow("acrylic")       << "Acrylic, engrave"            << int(Operation::Fill)  << 2000.0 << 50.0  << 1;
    QTest::newRow("leather")       << "Leather, engrave"            << int(Operation::Image) << 3000.0 << 30.0  << 1;
    QTest::newRow("anodised")      << "Anodised aluminium, engrave" << int(Operation::Fill)  << 1500.0 << 90.0  << 1;
    // clang-format on
}

void TestJobWindowMachine::presets()
{
    QFETCH(QString, english);
    QFETCH(int, operation);
    QFETCH(double, speed);
    QFETCH(double, power);
    QFETCH(int, passes);
    JobWindow window;
    JobDocument doc;
    doc.layers.resize(2);
    doc.layers[1].name = QStringLiteral("Mine");
    window.model()->reset(doc);
    LayerPanel *panel = window.layerPanel();
    panel->setCurrentLayer(1);
    int index = -1;
    for (int i = 0; i < int(panel->presets().presets.size()); ++i)
        if (panel->presets().presets[size_t(i)].nameEn == english)
            index = i;
    QVERIFY(index >= 0);
    // Every starting preset is named in all three languages.
    for (const JobPreset &p : panel->presets().presets)
        QVERIFY(!p.nameZh.isEmpty() && !p.nameEn.isEmpty() && !p.nameKo.isEmpty());
    QVERIFY(panel->applyPreset(index));
    const JobLayer &layer = window.document().layers[1];
    QCOMPARE(int(layer.operation), operation);
    QCOMPARE(layer.speed, speed);
    QCOMPARE(layer.power, power);
    QCOMPARE(layer.passes, passes);
    QCOMPARE(layer.name, QStringLiteral("Mine"));
    QVERIFY(window.document().layers[0] == JobLayer());
    window.model()->undoStack()->undo();
    QVERIFY(window.document() == doc);
}

void TestJobWindowMachine::saveLayerAsPreset()
{
    ScopedWorkDir dir;
    JobWindow window;
    JobDocument doc;
    doc.layers.resize(1);
    doc.layers[0].operation = Operation::Fill;
    doc.layers[0].speed = 1234;
    doc.layers[0].power = 56;
    doc.layers[0].passes = 2;
    doc.layers[0].fill.interval = 0.07;
    window.model()->reset(doc);
    LayerPanel *panel = window.layerPanel();
    panel->setNameAsker([](const QString &) { return QString(); });
    QVERIFY(!panel->saveLayerAsPreset());  // cancelled
    QVERIFY(!QFile::exists(JobPresetLibrary::path()));
    panel->setNameAsker([](const QString &) { return QStringLiteral("Cork 2 mm"); });
    const size_t before = panel->presets().presets.size();
    QVERIFY(panel->saveLayerAsPreset());
    QCOMPARE(panel->presets().presets.size(), before + 1);
    QCOMPARE(panel->findChild<QComboBox *>(QStringLiteral("presetCombo"))->currentText(), QStringLiteral("Cork 2 mm"));
    JobPresetLibrary reread;
    QVERIFY(reread.load());
    const JobPreset &p = reread.presets.back();
    QCOMPARE(p.name(QStringLiteral("ko")), QStringLiteral("Cork 2 mm"));
    QCOMPARE(int(p.operation), int(Operation::Fill));
    QCOMPARE(p.speed, 1234.0);
    QCOMPARE(p.power, 56.0);
    QCOMPARE(p.passes, 2);
    QCOMPARE(p.interval, 0.07);
    QVERIFY(QDir(dir.path()).entryList(QDir::Files).isEmpty());
}

void TestJobWindowMachine::presetNamesFollowTheLanguage_data()
{
    QTest::addColumn<QString>("catalogue");
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("firstPreset");
    QTest::addColumn<QString>("fileMenu");
    // clang-format off
    QTest::newRow("zh")   << ":/bin_zh.qm" << "zh" << "胶合板 3 mm 雕刻"     << "文件(&F)";
    QTest::newRow("en")   << ":/bin_en.qm" << "en" << "Plywood 3 mm, engrave" << "&File";
    QTest::newRow("ko")   << ":/bin_ko.qm" << "ko" << "합판 3 mm 조각"        << "파일(&F)";
    QTest::newRow("none") << ""            << "en" << "Plywood 3 mm, engrave" << "&File";
    // clang-format on
}

void TestJobWindowMachine::presetNamesFollowTheLanguage()
{
    QFETCH(QString, catalogue);
    QFETCH(QString, language);
    QFETCH(QString, firstPreset);
    QFETCH(QString, fileMenu);
    QTranslator translator;
    if (!catalogue.isEmpty()) {
        QVERIFY(translator.load(catalogue));
        QCoreApplication::installTranslator(&translator);
    }
    JobWindow window;
    QCOMPARE(LayerPanel::language(), language);
    QCOMPARE(window.layerPanel()->findChild<QComboBox *>(QStringLiteral("presetCombo"))->itemText(0), firstPreset);
    QCOMPARE(window.menuBar()->actions().value(0)->text(), fileMenu);
    QCoreApplication::removeTranslator(&translator);
}

void TestJobWindowMachine::testGridMatchesTool_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("setup");  // fields as name=value
    // clang-format off
    QTest::newRow("defaults")     << QStringList{"--powers", "10:100:5", "--speeds", "500:3000:5"} << "";
    QTest::newRow("3 x 2 line")   << QStringList{"--powers", "20:80:3", "--speeds", "400:1200:2", "--operation", "line", "--cell", "8", "--gap", "3"}
                                  << "powerFrom=20 powerTo=80 powerCount=3 speedFrom=400 speedTo=1200 speedCount=2 operation=2 cell=8 gap=3";
    QTest::newRow("passes rows")  << QStringList{"--powers", "50:100:2", "--speeds", "600:600:1", "--passes", "1:4:4", "--x", "30", "--y", "40"}
                                  << "powerFrom=50 powerTo=100 powerCount=2 speedFrom=600 speedTo=600 speedCount=1 rowsArePasses=1 passesFrom=1 passesTo=4 passesCount=4 gridX=30 gridY=40";
    // clang-format on
}

void TestJobWindowMachine::testGridMatchesTool()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, setup);
    ScopedWorkDir dir;
    TestGridDialog dialog{MachineProfile()};
    for (const QString &pair : setup.split(QLatin1Char(' '), Qt::SkipEmptyParts)) {
        const QString name = pair.section(QLatin1Char('='), 0, 0);
        const double value = pair.section(QLatin1Char('='), 1).toDouble();
        if (auto *d = dialog.findChild<QDoubleSpinBox *>(name))
            d->setValue(value);
        else if (auto *i = dialog.findChild<QSpinBox *>(name))
            i->setValue(int(value));
        else if (auto *c = dialog.findChild<QComboBox *>(name))
            c->setCurrentIndex(int(value));
        else if (auto *b = dialog.findChild<QCheckBox *>(name))
            b->setChecked(value != 0);
        else
            QFAIL(qPrintable(name));
    }
    dialog.refresh();
    // Only the fields the rows use take input.
    const bool passes = setup.contains(QLatin1String("rowsArePasses=1"));
    QCOMPARE(dialog.findChild<QSpinBox *>(QStringLiteral("passesCount"))->isEnabled(), passes);
    QCOMPARE(dialog.findChild<QSpinBox *>(QStringLiteral("speedCount"))->isEnabled(), !passes);
    JobDocument grid;
    QString error;
    QVERIFY2(dialog.makeDocument(&grid, &error), qPrintable(error));
    // The time shown is the engine's estimate of that grid.
    JobExportResult result;
    QVERIFY2(JobExport::run(grid, &result, &error), qPrintable(error));
    QVERIFY2(dialog.timeText().contains(QString::fromLatin1(JobFormat::duration(result.seconds))),
             qPrintable(dialog.timeText()));

    QProcess tool;
    tool.start(QStringLiteral(TARNWELL_EXPORT_TOOL),
               QStringList{QStringLiteral("testgrid"), QStringLiteral("--output"),
                           dir.file(QStringLiteral("grid.gcode")), QStringLiteral("--job"),
                           dir.file(QStringLiteral("grid.tljob"))}
                   + arguments);
    QVERIFY(tool.waitForFinished(60000));
    QCOMPARE(tool.exitCode(), 0);
    JobDocument written;
    QVERIFY2(JobFile::load(dir.file(QStringLiteral("grid.tljob")), &written, &error), qPrintable(error));
    QVERIFY(grid == written);

    // The window opens it as a new job, unsaved, and undo leaves the empty job.
    JobWindow window;
    quiet(window);
    window.setGridAsker([&](JobDocument *doc) {
        *doc = grid;
        return true;
    });
    QVERIFY(window.newTestGrid());
    QVERIFY(window.document() == grid);
    QVERIFY(window.model()->filePath().isEmpty());
    QVERIFY(window.isWindowModified());
    QCOMPARE(window.scene()->graphics().size(), int(grid.items.size()));
}

TARNWELL_TEST_MAIN(TestJobWindowMachine)
#include "tst_jobwindowmachine.moc"
