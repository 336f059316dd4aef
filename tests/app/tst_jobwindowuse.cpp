// The Job window as a user meets it, offscreen: a drawing comes in at its size on paper, a click
// inside a cut outline reaches the item within, undo and redo and the export's times speak the
// interface language of the moment, an item off the bed is named in that language before any file
// is asked for, nothing in the toolbar or the layer panel is cut, the whole bed is in sight when
// the window opens, and moving an item repaints where its handles were.
#include "testsupport.h"

#include "jobedits.h"
#include "jobitemgraphic.h"
#include "joblayoutscene.h"
#include "joblayoutview.h"
#include "jobmodel.h"
#include "jobwindow.h"
#include "layerpanel.h"
#include "previewpanel.h"

#include <QAction>
#include <QComboBox>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QPaintEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTranslator>
#include <QUndoStack>

namespace {

// A window whose questions are answered by the test.
struct Rig
{
    JobWindow window;
    QStringList notices;
    QString nextFile;
    int fileQuestions = 0;
    JobSource nextSource;

    Rig()
    {
        window.setNoticeShower([this](const QString &text) { notices.append(text); });
        window.setFileChooser([this](JobWindow::FileQuestion, const QString &, const QString &) {
            ++fileQuestions;
            return nextFile;
        });
        window.setCloseQuestion([](const QString &) { return JobWindow::CloseAnswer::Discard; });
        window.setSourceAsker([this](JobSource *source) {
            const SourceKind kind = source->kind;
            *source = nextSource;
            source->kind = kind;
            return true;
        });
    }
    const JobDocument &doc() const { return window.document(); }
};

// Installs a catalogue (none for an empty name) for as long as it lives.
class Language
{
public:
    explicit Language(const QString &catalogue)
    {
        if (!catalogue.isEmpty() && m_translator.load(catalogue))
            QCoreApplication::installTranslator(&m_translator);
    }
    ~Language() { QCoreApplication::removeTranslator(&m_translator); }
    bool isEmpty() const { return m_translator.isEmpty(); }

private:
    QTranslator m_translator;
};

void tellLanguageChanged(QWidget *window)
{
    QEvent change(QEvent::LanguageChange);
    QCoreApplication::sendEvent(window, &change);
}

// One 20 mm square outline on a line layer.
JobDocument squareJob()
{
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation::Line);
    doc.layers[0].name = QStringLiteral("Cut");
    JobItem square;
    square.source.kind = SourceKind::Svg;
    square.source.name = QStringLiteral("square.svg");
    square.source.data = "<svg xmlns='http://www.w3.org/2000/svg' width='20mm' height='20mm' viewBox='0 0 20 20'>"
                         "<rect width='20' height='20' fill='none' stroke='black'/></svg>";
    square.x = 10, square.y = 10, square.width = 20, square.height = 20;
    doc.items.push_back(square);
    return doc;
}

JobItem textItem(double x, double y, double width, double height, const QString &name)
{
    JobItem item;
    item.source.kind = SourceKind::Text;
    item.source.text = QStringLiteral("I");
    item.source.name = name;
    item.keepAspect = false;
    item.x = x, item.y = y, item.width = width, item.height = height;
    return item;
}

// The Edit menu's first (Undo) or second (Redo) entry.
QAction *editEntry(const JobWindow &window, int entry)
{
    const QMenu *edit = window.menuBar()->actions().value(1)->menu();
    return edit ? edit->actions().value(entry) : nullptr;
}

}  // namespace

class TestJobWindowUse : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void drawingsComeAtTheirPaperSize_data();
    void drawingsComeAtTheirPaperSize();
    void clickReachesTheItemInside_data();
    void clickReachesTheItemInside();
    void undoNamesFollowTheLanguage_data();
    void undoNamesFollowTheLanguage();
    void exportTimesFollowTheLanguage_data();
    void exportTimesFollowTheLanguage();
    void itemOffTheBedNamedBeforeAsking_data();
    void itemOffTheBedNamedBeforeAsking();
    void fieldsShowTheirWholeValue_data();
    void fieldsShowTheirWholeValue();
    void layerSettingsNeedNoSidewaysScroll_data();
    void layerSettingsNeedNoSidewaysScroll();
    void wholeBedInSightWhenShown_data();
    void wholeBedInSightWhenShown();
    void movingRepaintsOldHandles_data();
    void movingRepaintsOldHandles();
    void usualKeysBound_data();
    void usualKeysBound();
    void previewForgetsTheJobBefore_data();
    void previewForgetsTheJobBefore();
    void selectionShowsItsLayer_data();
    void selectionShowsItsLayer();
};

void TestJobWindowUse::drawingsComeAtTheirPaperSize_data()
{
    QTest::addColumn<QByteArray>("svg");
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("height");
    // The item takes the bounds of the shapes, measured on paper.
    // clang-format off
    QTest::newRow("mm, inset rect") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='120mm' height='90mm' viewBox='0 0 120 90'>"
                                                  "<rect x='10' y='5' width='100' height='80' fill='none' stroke='black'/></svg>")
                                    << 100.0 << 80.0;
    QTest::newRow("pixels")         << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='96' height='48' viewBox='0 0 96 48'>"
                                                  "<rect width='96' height='48'/></svg>")
                                    << 25.4 << 12.7;
    QTest::newRow("inches, scaled") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='2in' height='1in' viewBox='0 0 20 10'>"
                                                  "<rect width='20' height='10'/></svg>")
                                    << 50.8 << 25.4;
    QTest::newRow("cm, no viewBox") << QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='8cm' height='4cm'>"
                                                  "<circle cx='20mm' cy='20mm' r='15mm'/></svg>")
                                    << 30.0 << 30.0;
    // clang-format on
}

void TestJobWindowUse::drawingsComeAtTheirPaperSize()
{
    QFETCH(QByteArray, svg);
    QFETCH(double, width);
    QFETCH(double, height);
    ScopedWorkDir dir;
    Rig rig;
    TestFiles::write(dir.file(QStringLiteral("drawing.svg")), svg);
    QVERIFY(rig.window.addFile(dir.file(QStringLiteral("drawing.svg"))));
    QCOMPARE(int(rig.doc().items.size()), 1);
    const JobItem &item = rig.doc().items[0];
    QVERIFY2(std::abs(item.width - width) < 0.05 && std::abs(item.height - height) < 0.05,
             qPrintable(QStringLiteral("%1 x %2 mm").arg(item.width).arg(item.height)));
    QVERIFY2(std::abs(rig.window.widthField()->value() - width) < 0.05, qPrintable(rig.window.widthField()->text()));
}

void TestJobWindowUse::clickReachesTheItemInside_data()
{
    QTest::addColumn<QString>("gesture");  // "click X,Y", "shift X,Y" or "drag X,Y X,Y", machine mm; ';' between
    QTest::addColumn<QList<int>>("selected");
    QTest::addColumn<double>("outlineMovedX");  // how far the outline moved, mm
    // Item 0, a text, covers 40..60 x 40..50 mm; item 1, its cut outline on top, covers 10..110 x 10..90 mm.
    // clang-format off
    QTest::newRow("inner")                << "click 50,45"                  << QList<int>{0}    << 0.0;
    QTest::newRow("outline")              << "click 20,20"                  << QList<int>{1}    << 0.0;
    QTest::newRow("outline, then inner")  << "click 20,20;click 50,45"      << QList<int>{0}    << 0.0;
    QTest::newRow("inner, then outline")  << "click 50,45;click 20,20"      << QList<int>{1}    << 0.0;
    QTest::newRow("shift adds the inner") << "click 20,20;shift 50,45"      << QList<int>{0, 1} << 0.0;
    QTest::newRow("drag from inside")     << "click 20,20;drag 50,45 60,45" << QList<int>{1}    << 10.0;
    // clang-format on
}

void TestJobWindowUse::clickReachesTheItemInside()
{
    QFETCH(QString, gesture);
    QFETCH(QList<int>, selected);
    QFETCH(double, outlineMovedX);
    Rig rig;
    rig.window.show();
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation::Line);
    doc.items.push_back(textItem(40, 40, 20, 10, QStringLiteral("text")));
    doc.items.push_back(textItem(10, 10, 100, 80, QStringLiteral("outline")));
    rig.window.model()->reset(doc);
    JobLayoutView *view = rig.window.view();
    view->resetTransform();
    view->scale(3, 3);
    view->centerOn(rig.window.scene()->toScene(QPointF(50, 45)));
    auto at = [&](const QString &xy) {
        return view->mapFromScene(rig.window.scene()->toScene(
            QPointF(xy.section(QLatin1Char(','), 0, 0).toDouble(), xy.section(QLatin1Char(','), 1).toDouble())));
    };
    for (const QString &step : gesture.split(QLatin1Char(';'))) {
        const QStringList part = step.split(QLatin1Char(' '));
        if (part[0] == QLatin1String("drag")) {
            QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::NoModifier, at(part[1]));
            for (int i = 1; i <= 4; ++i) {
                const QPoint p = at(part[1]) + (at(part[2]) - at(part[1])) * i / 4;
                QMouseEvent move(QEvent::MouseMove, p, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
                QApplication::sendEvent(view->viewport(), &move);
            }
            QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier, at(part[2]));
        } else {
            const Qt::KeyboardModifiers mods = part[0] == QLatin1String("shift") ? Qt::ShiftModifier : Qt::NoModifier;
            QTest::mouseClick(view->viewport(), Qt::LeftButton, mods, at(part[1]));
        }
    }
    QCOMPARE(rig.window.selection(), selected);
    QVERIFY2(std::abs(rig.doc().items[1].x - (10 + outlineMovedX)) < 0.5,
             qPrintable(QString::number(rig.doc().items[1].x)));
    QCOMPARE(rig.doc().items[0].x, 40.0);
}

void TestJobWindowUse::undoNamesFollowTheLanguage_data()
{
    QTest::addColumn<QString>("before");  // the catalogue when the step is made; empty: none
    QTest::addColumn<QString>("after");   // the catalogue the user switches to
    QTest::addColumn<QString>("undo");    // the Undo action's text after the switch
    QTest::addColumn<QString>("redo");    // the Redo action's text once that step is undone
    QTest::addColumn<QString>("idle");    // the Undo action's text with nothing to undo
    // The step keeps the name it was given; the words around it follow the language.
    // clang-format off
    QTest::newRow("none to zh") << ""            << ":/bin_zh.qm" << "撤销 Add text"           << "重做 Add text"           << "撤销";
    QTest::newRow("none to ko") << ""            << ":/bin_ko.qm" << "실행 취소: Add text"     << "다시 실행: Add text"     << "실행 취소";
    QTest::newRow("zh to en")   << ":/bin_zh.qm" << ":/bin_en.qm" << "Undo 添加文字"          << "Redo 添加文字"          << "Undo";
    QTest::newRow("ko to zh")   << ":/bin_ko.qm" << ":/bin_zh.qm" << "撤销 텍스트 추가"        << "重做 텍스트 추가"        << "撤销";
    // clang-format on
}

void TestJobWindowUse::undoNamesFollowTheLanguage()
{
    QFETCH(QString, before);
    QFETCH(QString, after);
    QFETCH(QString, undo);
    QFETCH(QString, redo);
    QFETCH(QString, idle);
    auto first = std::make_unique<Language>(before);
    Rig rig;
    rig.nextSource.text = QStringLiteral("Hello");
    QVERIFY(rig.window.addText());
    first.reset();
    Language second(after);
    QVERIFY(!second.isEmpty());
    tellLanguageChanged(&rig.window);
    QAction *undoAction = editEntry(rig.window, 0);
    QAction *redoAction = editEntry(rig.window, 1);
    QVERIFY(undoAction && redoAction);
    QCOMPARE(undoAction->text(), undo);
    QVERIFY(undoAction->isEnabled());
    QVERIFY(!redoAction->isEnabled());
    undoAction->trigger();
    QVERIFY(rig.doc().items.empty());
    QCOMPARE(redoAction->text(), redo);
    QCOMPARE(undoAction->text(), idle);
    QVERIFY(!undoAction->isEnabled());
    redoAction->trigger();
    QCOMPARE(int(rig.doc().items.size()), 1);
    QCOMPARE(undoAction->text(), undo);
}

void TestJobWindowUse::exportTimesFollowTheLanguage_data()
{
    QTest::addColumn<QString>("catalogue");
    QTest::addColumn<QString>("firstLine");  // its start: the time itself is not checked here
    QTest::addColumn<QString>("layerLine");
    // clang-format off
    QTest::newRow("zh")   << ":/bin_zh.qm" << "预计用时："      << "图层 1 Cut：1 个对象，雕刻 80.0 mm，";
    QTest::newRow("ko")   << ":/bin_ko.qm" << "예상 시간: "     << "레이어 1 Cut: 항목 1개, 가공 80.0 mm, ";
    QTest::newRow("en")   << ":/bin_en.qm" << "Estimated time: " << "Layer 1 Cut: 1 items, burn 80.0 mm, ";
    // clang-format on
}

void TestJobWindowUse::exportTimesFollowTheLanguage()
{
    QFETCH(QString, catalogue);
    QFETCH(QString, firstLine);
    QFETCH(QString, layerLine);
    ScopedWorkDir dir;
    Rig rig;
    rig.window.model()->reset(squareJob());
    QVERIFY2(rig.window.exportTo(dir.file(QStringLiteral("job.gcode"))),
             qPrintable(rig.notices.join(QLatin1Char('\n'))));
    auto *summary = rig.window.findChild<QLabel *>(QStringLiteral("summaryLabel"));
    QVERIFY(summary);
    const QString english = summary->text();
    QVERIFY2(english.startsWith(QStringLiteral("Estimated time: ")), qPrintable(english));
    Language language(catalogue);
    QVERIFY(!language.isEmpty());
    tellLanguageChanged(&rig.window);
    const QStringList lines = summary->text().split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 2);
    QVERIFY2(lines[0].startsWith(firstLine), qPrintable(lines[0]));
    QVERIFY2(lines[1].startsWith(layerLine), qPrintable(lines[1]));
    // The times themselves are the same in every language.
    QCOMPARE(lines[0].mid(firstLine.size()), english.section(QLatin1Char('\n'), 0, 0).mid(16));
}

void TestJobWindowUse::itemOffTheBedNamedBeforeAsking_data()
{
    QTest::addColumn<QString>("catalogue");
    QTest::addColumn<QString>("notice");
    // clang-format off
    QTest::newRow("none") << ""            << "Nothing was written: outline.svg lies outside the bed (170 x 200 mm): move it onto the bed";
    QTest::newRow("zh")   << ":/bin_zh.qm" << "未写入任何文件：outline.svg 超出工作台（170 x 200 mm）：请把它移到工作台上";
    QTest::newRow("ko")   << ":/bin_ko.qm" << "아무것도 쓰지 않았습니다: outline.svg이(가) 작업대(170 x 200 mm)를 벗어났습니다: 작업대 안으로 옮기십시오";
    // clang-format on
}

void TestJobWindowUse::itemOffTheBedNamedBeforeAsking()
{
    QFETCH(QString, catalogue);
    QFETCH(QString, notice);
    ScopedWorkDir dir;
    Language language(catalogue);
    Rig rig;
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation::Line);
    doc.items.push_back(textItem(10, 10, 20, 20, QStringLiteral("inside")));
    doc.items.push_back(textItem(160, 10, 20, 20, QStringLiteral("outline.svg")));
    rig.window.model()->reset(doc);
    rig.nextFile = dir.file(QStringLiteral("job.gcode"));
    QVERIFY(!rig.window.exportJob());
    QCOMPARE(rig.notices, QStringList{notice});
    // Refused before a file name is asked for, and nothing is written.
    QCOMPARE(rig.fileQuestions, 0);
    QVERIFY(!QFile::exists(rig.nextFile));
    // The item is outlined red in the layout.
    QVERIFY(rig.window.scene()->graphic(1)->isOutside());
    QVERIFY(!rig.window.scene()->graphic(0)->isOutside());
}

void TestJobWindowUse::fieldsShowTheirWholeValue_data()
{
    QTest::addColumn<QString>("catalogue");
    QTest::addColumn<int>("windowWidth");
    // clang-format off
    QTest::newRow("en 1280") << ":/bin_en.qm" << 1280;
    QTest::newRow("zh 1280") << ":/bin_zh.qm" << 1280;
    QTest::newRow("ko 1280") << ":/bin_ko.qm" << 1280;
    QTest::newRow("zh 900")  << ":/bin_zh.qm" << 900;
    QTest::newRow("ko 900")  << ":/bin_ko.qm" << 900;
    // clang-format on
}

void TestJobWindowUse::fieldsShowTheirWholeValue()
{
    QFETCH(QString, catalogue);
    QFETCH(int, windowWidth);
    Language language(catalogue);
    QVERIFY(!language.isEmpty());
    Rig rig;
    rig.window.resize(windowWidth, 800);
    rig.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&rig.window));
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation::Line);
    doc.items.push_back(textItem(-1234.56, 1088.25, 1118.75, 1088.5, QStringLiteral("wide")));
    rig.window.model()->reset(doc);
    rig.window.setSelection({0});
    QCoreApplication::processEvents();
    for (QDoubleSpinBox *field :
         {rig.window.xField(), rig.window.yField(), rig.window.widthField(), rig.window.heightField()}) {
        const QLineEdit *edit = field->findChild<QLineEdit *>();
        QVERIFY(edit);
        const int needed = edit->fontMetrics().horizontalAdvance(edit->text());
        QVERIFY2(field->isVisible(), qPrintable(field->objectName()));
        QVERIFY2(needed <= edit->width() - 4, qPrintable(QStringLiteral("%1: \"%2\" needs %3 px, has %4")
                                                             .arg(field->objectName(), edit->text())
                                                             .arg(needed)
                                                             .arg(edit->width())));
    }
}

void TestJobWindowUse::layerSettingsNeedNoSidewaysScroll_data()
{
    QTest::addColumn<QString>("catalogue");
    QTest::addColumn<int>("operation");
    // clang-format off
    QTest::newRow("en image") << ":/bin_en.qm" << int(Operation::Image);
    QTest::newRow("en fill")  << ":/bin_en.qm" << int(Operation::Fill);
    QTest::newRow("en line")  << ":/bin_en.qm" << int(Operation::Line);
    QTest::newRow("zh image") << ":/bin_zh.qm" << int(Operation::Image);
    QTest::newRow("ko image") << ":/bin_ko.qm" << int(Operation::Image);
    QTest::newRow("ko line")  << ":/bin_ko.qm" << int(Operation::Line);
    // clang-format on
}

void TestJobWindowUse::layerSettingsNeedNoSidewaysScroll()
{
    QFETCH(QString, catalogue);
    QFETCH(int, operation);
    Language language(catalogue);
    QVERIFY(!language.isEmpty());
    Rig rig;
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation(operation));
    rig.window.model()->reset(doc);
    rig.window.layerPanel()->setCurrentLayer(0);
    rig.window.resize(1280, 860);
    rig.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&rig.window));
    QCoreApplication::processEvents();
    auto *dock = rig.window.findChild<QDockWidget *>(QStringLiteral("layerDock"));
    QVERIFY(dock);
    auto *scroll = qobject_cast<QScrollArea *>(dock->widget());
    QVERIFY(scroll);
    QVERIFY2(scroll->horizontalScrollBar()->maximum() == 0,
             qPrintable(QStringLiteral("panel %1 px wide in a %2 px view")
                            .arg(rig.window.layerPanel()->width())
                            .arg(scroll->viewport()->width())));
    QVERIFY(rig.window.layerPanel()->width() <= scroll->viewport()->width());
}

void TestJobWindowUse::wholeBedInSightWhenShown_data()
{
    QTest::addColumn<QSize>("windowSize");
    // clang-format off
    QTest::newRow("1280 x 860")  << QSize(1280, 860);
    QTest::newRow("900 x 700")   << QSize(900, 700);
    QTest::newRow("1600 x 1000") << QSize(1600, 1000);
    // clang-format on
}

void TestJobWindowUse::wholeBedInSightWhenShown()
{
    QFETCH(QSize, windowSize);
    Rig rig;
    rig.window.resize(windowSize);
    rig.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&rig.window));
    QCoreApplication::processEvents();
    JobLayoutView *view = rig.window.view();
    const QRect port = view->viewport()->rect();
    const MachineProfile &m = rig.doc().machine;
    const QRect bed = view->mapFromScene(QRectF(0, 0, m.bedWidth, m.bedHeight)).boundingRect();
    const QString seen = QStringLiteral("bed %1 x %2 px at %3,%4 in a %5 x %6 px view")
                             .arg(bed.width())
                             .arg(bed.height())
                             .arg(bed.x())
                             .arg(bed.y())
                             .arg(port.width())
                             .arg(port.height());
    QVERIFY2(port.contains(bed), qPrintable(seen));
    // Most of the view, one way or the other.
    QVERIFY2(bed.width() >= 0.85 * port.width() || bed.height() >= 0.85 * port.height(), qPrintable(seen));
    // Once the user zooms, growing the window keeps the zoom.
    view->zoomBy(1.25);
    const double zoom = view->zoom();
    rig.window.resize(windowSize + QSize(100, 100));
    QCoreApplication::processEvents();
    QCOMPARE(view->zoom(), zoom);
}

void TestJobWindowUse::movingRepaintsOldHandles_data()
{
    QTest::addColumn<double>("pixelsPerMm");
    QTest::addColumn<QString>("change");  // "move" (the X field) or "deselect"
    // clang-format off
    QTest::newRow("move, 1 px/mm")     << 1.0 << "move";
    QTest::newRow("move, 3 px/mm")     << 3.0 << "move";
    QTest::newRow("deselect, 3 px/mm") << 3.0 << "deselect";
    // clang-format on
}

void TestJobWindowUse::movingRepaintsOldHandles()
{
    QFETCH(double, pixelsPerMm);
    QFETCH(QString, change);

    // Records what the view repaints.
    struct Painted : QObject
    {
        QRegion region;
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                region += static_cast<QPaintEvent *>(event)->region();
            return false;
        }
    } painted;

    Rig rig;
    rig.window.resize(1280, 860);
    rig.window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&rig.window));
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation::Line);
    doc.items.push_back(textItem(40, 40, 30, 20, QStringLiteral("box")));
    rig.window.model()->reset(doc);
    JobLayoutView *view = rig.window.view();
    view->resetTransform();
    view->scale(pixelsPerMm, pixelsPerMm);
    view->centerOn(rig.window.scene()->toScene(QPointF(70, 50)));
    rig.window.setSelection({0});
    QCoreApplication::processEvents();
    // Where the corner handles are drawn now: 8 px squares on the item's corners.
    QList<QRect> handles;
    const QRectF sceneRect = rig.window.scene()->graphic(0)->sceneBoundingRect().adjusted(0.5, 0.5, -0.5, -0.5);
    for (const QPointF &corner :
         {sceneRect.topLeft(), sceneRect.topRight(), sceneRect.bottomRight(), sceneRect.bottomLeft()})
        handles.append(QRect(view->mapFromScene(corner) - QPoint(4, 4), QSize(8, 8)));
    view->viewport()->installEventFilter(&painted);
    if (change == QLatin1String("move")) {
        rig.window.xField()->setValue(100);
        emit rig.window.xField()->editingFinished();
        QCOMPARE(rig.doc().items[0].x, 100.0);
    } else {
        rig.window.setSelection({});
    }
    QCoreApplication::processEvents();
    for (const QRect &handle : qAsConst(handles))
        QVERIFY2(painted.region.intersected(handle) == QRegion(handle),
                 qPrintable(QStringLiteral("the handle at %1,%2 is left on screen").arg(handle.x()).arg(handle.y())));
}

void TestJobWindowUse::usualKeysBound_data()
{
    QTest::addColumn<int>("menu");  // the menu's position in the menu bar
    QTest::addColumn<QString>("action");
    // clang-format off
    QTest::newRow("save as")    << 0 << "actionSaveJobAs";
    QTest::newRow("save")       << 0 << "actionSaveJob";
    QTest::newRow("close")      << 0 << "actionCloseJobWindow";
    QTest::newRow("export")     << 0 << "actionExportJob";
    QTest::newRow("undo")       << 1 << "actionUndo";
    QTest::newRow("redo")       << 1 << "actionRedo";
    QTest::newRow("select all") << 1 << "actionSelectAll";
    QTest::newRow("delete")     << 1 << "actionDelete";
    QTest::newRow("zoom in")    << 1 << "actionZoomIn";
    QTest::newRow("zoom out")   << 1 << "actionZoomOut";
    // clang-format on
}

void TestJobWindowUse::usualKeysBound()
{
    QFETCH(int, menu);
    QFETCH(QString, action);
    Rig rig;
    const QMenu *shown = rig.window.menuBar()->actions().value(menu)->menu();
    QVERIFY(shown);
    QAction *found = nullptr;
    for (QAction *a : shown->actions())
        if (a->objectName() == action)
            found = a;
    QVERIFY2(found, qPrintable(action));
    // A key of its own, whatever the desktop binds: an empty one, or one another action also
    // holds, never fires.
    QVERIFY2(!found->shortcut().isEmpty(), qPrintable(action));
    for (const QAction *other : rig.window.findChildren<QAction *>())
        if (other != found)
            for (const QKeySequence &keys : other->shortcuts())
                QVERIFY2(!found->shortcuts().contains(keys),
                         qPrintable(QStringLiteral("%1 and %2 share %3")
                                        .arg(action, other->objectName(), keys.toString(QKeySequence::PortableText))));
}

void TestJobWindowUse::previewForgetsTheJobBefore_data()
{
    QTest::addColumn<QString>("next");  // how the next job comes: "new", "open" or "grid"
    // clang-format off
    QTest::newRow("new job")   << "new";
    QTest::newRow("open job")  << "open";
    QTest::newRow("test grid") << "grid";
    // clang-format on
}

void TestJobWindowUse::previewForgetsTheJobBefore()
{
    QFETCH(QString, next);
    ScopedWorkDir dir;
    Rig rig;
    rig.window.model()->reset(squareJob());
    const QString exported = dir.file(QStringLiteral("first.gcode"));
    QVERIFY(rig.window.exportTo(exported));
    QCOMPARE(rig.window.previewPanel()->file(), QFileInfo(exported).absoluteFilePath());
    if (next == QLatin1String("new")) {
        rig.window.newJob();
    } else if (next == QLatin1String("open")) {
        JobDocument other = squareJob();
        other.items[0].x = 50;
        rig.nextFile = dir.file(QStringLiteral("other.tljob"));
        QVERIFY(rig.window.saveTo(rig.nextFile));
        QVERIFY(rig.window.openJob(rig.nextFile));
    } else {
        rig.window.setGridAsker([](JobDocument *grid) {
            *grid = squareJob();
            return true;
        });
        QVERIFY(rig.window.newTestGrid());
    }
    QCoreApplication::processEvents();  // a load the export started finds nothing to show
    QCOMPARE(rig.window.previewPanel()->file(), QString());
    QCOMPARE(rig.window.previewPanel()->figuresText(), QString());
    QCOMPARE(rig.window.exportedFile(), QString());
    QCOMPARE(rig.window.findChild<QLabel *>(QStringLiteral("summaryLabel"))->text(), QString());
}

void TestJobWindowUse::selectionShowsItsLayer_data()
{
    QTest::addColumn<int>("startLayer");  // the layer panel's current layer before
    QTest::addColumn<QList<int>>("select");
    QTest::addColumn<int>("shownLayer");
    // Items 0 and 1 lie on layer 1, item 2 on layer 2, layer 0 is empty.
    // clang-format off
    QTest::newRow("one item")              << 0 << QList<int>{0}       << 1;
    QTest::newRow("item of another layer") << 1 << QList<int>{2}       << 2;
    QTest::newRow("two of one layer")      << 0 << QList<int>{0, 1}    << 1;
    QTest::newRow("layers differ")         << 0 << QList<int>{1, 2}    << 0;
    QTest::newRow("nothing")               << 2 << QList<int>{}        << 2;
    // clang-format on
}

void TestJobWindowUse::selectionShowsItsLayer()
{
    QFETCH(int, startLayer);
    QFETCH(QList<int>, select);
    QFETCH(int, shownLayer);
    Rig rig;
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation::Image);
    JobEdits::addLayer(&doc, Operation::Fill);
    JobEdits::addLayer(&doc, Operation::Line);
    for (int layer : {1, 1, 2}) {
        doc.items.push_back(textItem(10 + 30 * doc.items.size(), 10, 20, 10, QStringLiteral("t")));
        doc.items.back().layer = layer;
    }
    rig.window.model()->reset(doc);
    rig.window.layerPanel()->setCurrentLayer(startLayer);
    rig.window.setSelection(select);
    QCOMPARE(rig.window.selection(), select);
    QCOMPARE(rig.window.layerPanel()->currentLayer(), shownLayer);
    // Showing a layer changes no document.
    QCOMPARE(rig.window.model()->undoStack()->count(), 0);
}

TARNWELL_TEST_MAIN(TestJobWindowUse)
#include "tst_jobwindowuse.moc"
