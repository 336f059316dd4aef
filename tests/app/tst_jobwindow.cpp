// The Job window under offscreen: adding each kind of item, moving, resizing and nudging with the
// numeric fields following, undo and redo of each, the layer panel, job files and closing with
// unsaved changes, export against the command-line tool, and the bed of the machine profile.
#include "testsupport.h"

#include "jobedits.h"
#include "jobfile.h"
#include "jobitemgraphic.h"
#include "joblayoutscene.h"
#include "joblayoutview.h"
#include "jobmodel.h"
#include "jobwindow.h"
#include "layerpanel.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QListWidget>
#include <QMimeData>
#include <QProcess>
#include <QPushButton>
#include <QStandardPaths>
#include <QToolButton>
#include <QUndoStack>

namespace {

const QByteArray Svg = "<svg xmlns='http://www.w3.org/2000/svg' width='96' height='48' viewBox='0 0 96 48'>"
                       "<rect x='0' y='0' width='96' height='48' fill='black'/></svg>";

// A 40 x 20 pixel picture, black on the left half.
QByteArray picturePng()
{
    QImage image(40, 20, QImage::Format_RGB32);
    image.fill(Qt::white);
    for (int y = 0; y < 20; ++y)
        for (int x = 0; x < 20; ++x)
            image.setPixel(x, y, qRgb(0, 0, 0));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// A window whose questions are answered by the test.
struct Rig
{
    JobWindow window;
    QStringList notices;
    QString nextFile;
    JobWindow::CloseAnswer closeAnswer = JobWindow::CloseAnswer::Cancel;
    int closeQuestions = 0;
    JobSource nextSource;

    Rig()
    {
        window.setNoticeShower([this](const QString &text) { notices.append(text); });
        window.setFileChooser([this](JobWindow::FileQuestion, const QString &, const QString &) { return nextFile; });
        window.setCloseQuestion([this](const QString &) {
            ++closeQuestions;
            return closeAnswer;
        });
        window.setSourceAsker([this](JobSource *source) {
            const SourceKind kind = source->kind;
            *source = nextSource;
            source->kind = kind;
            return true;
        });
    }
    const JobDocument &doc() const { return window.document(); }
    QUndoStack *undo() { return window.model()->undoStack(); }
};

QRectF rectOf(const JobItem &item) { return QRectF(item.x, item.y, item.width, item.height); }

QRectF fields(const JobWindow &w)
{
    return QRectF(w.xField()->value(), w.yField()->value(), w.widthField()->value(), w.heightField()->value());
}

bool near(const QRectF &a, const QRectF &b, double tolerance = 0.011)
{
    return std::abs(a.x() - b.x()) < tolerance && std::abs(a.y() - b.y()) < tolerance
           && std::abs(a.width() - b.width()) < tolerance && std::abs(a.height() - b.height()) < tolerance;
}

QString describe(const QRectF &r)
{
    return QStringLiteral("%1,%2 %3x%4").arg(r.x()).arg(r.y()).arg(r.width()).arg(r.height());
}

// One item of each kind, added through the window.
bool addKind(Rig &rig, SourceKind kind, const QString &folder)
{
    switch (kind) {
    case SourceKind::Picture:
        TestFiles::write(folder + QStringLiteral("/photo.png"), picturePng());
        return rig.window.addFile(folder + QStringLiteral("/photo.png"));
    case SourceKind::Svg:
        TestFiles::write(folder + QStringLiteral("/outline.svg"), Svg);
        return rig.window.addFile(folder + QStringLiteral("/outline.svg"));
    case SourceKind::Text:
        rig.nextSource.text = QStringLiteral("Hello\nthere");
        rig.nextSource.size = 8;
        return rig.window.addText();
    case SourceKind::Qr:
        rig.nextSource.text = QStringLiteral("https://example.org/42");
        return rig.window.addQr();
    case SourceKind::Trace:
        return rig.window.addFromCanvas(SourceKind::Trace, QStringLiteral("traced"), picturePng(),
                                        QRectF(75, 95, 20, 10))
               >= 0;
    }
    return false;
}

}  // namespace

class TestJobWindow : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

    void addsEachKind_data();
    void addsEachKind();
    void editsFollowFieldsAndUndo_data();
    void editsFollowFieldsAndUndo();
    void selection_data();
    void selection();
    void dropAddsWhereDropped_data();
    void dropAddsWhereDropped();
    void mouseDragMovesAndResizes_data();
    void mouseDragMovesAndResizes();
    void layers_data();
    void layers();
    void doubleClickEditsText_data();
    void doubleClickEditsText();
    void picturesStayOnImageLayers();
    void newItemLayer_data();
    void newItemLayer();
    void saveOpenAndTitle();
    void openFailureChangesNothing_data();
    void openFailureChangesNothing();
    void closeWithUnsavedChanges_data();
    void closeWithUnsavedChanges();
    void exportMatchesTool();
    void profileBedSizesViewAndCheck_data();
    void profileBedSizesViewAndCheck();
};

void TestJobWindow::addsEachKind_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("operation");
    // clang-format off
    QTest::newRow("picture") << int(SourceKind::Picture) << int(Operation::Image);
    QTest::newRow("svg")     << int(SourceKind::Svg)     << int(Operation::Line);
    QTest::newRow("text")    << int(SourceKind::Text)    << int(Operation::Line);
    QTest::newRow("qr")      << int(SourceKind::Qr)      << int(Operation::Image);
    // clang-format on
}

void TestJobWindow::addsEachKind()
{
    QFETCH(int, kind);
    QFETCH(int, operation);
    ScopedWorkDir dir;
    Rig rig;
    QVERIFY(addKind(rig, SourceKind(kind), dir.path()));
    QCOMPARE(int(rig.doc().items.size()), 1);
    const JobItem item = rig.doc().items[0];
    QCOMPARE(int(item.source.kind), kind);
    QVERIFY(item.width > 0 && item.height > 0);
    // A new job has no layers: the item brings one of the operation that suits it.
    QCOMPARE(int(rig.doc().layers.size()), 1);
    QCOMPARE(int(rig.doc().layers[size_t(item.layer)].operation), operation);
    // It lands in the middle of the bed, selected, with the fields showing it.
    QVERIFY(near(QRectF(item.x + item.width / 2, item.y + item.height / 2, 0, 0), QRectF(85, 100, 0, 0)));
    QCOMPARE(rig.window.selection(), QList<int>{0});
    QVERIFY2(near(fields(rig.window), rectOf(item)), qPrintable(describe(fields(rig.window))));
    QVERIFY(rig.window.scene()->graphic(0));
    QVERIFY(rig.window.scene()->graphic(0)->look().error.isEmpty());
    rig.undo()->undo();
    QVERIFY(rig.doc().items.empty());
    QVERIFY(rig.doc().layers.empty());
    QVERIFY(!rig.window.scene()->graphic(0));
    rig.undo()->redo();
    QCOMPARE(rig.doc().items.size(), size_t(1));
    QVERIFY(rig.doc().items[0] == item);
}

void TestJobWindow::editsFollowFieldsAndUndo_data()
{
    QTest::addColumn<QString>("edit");
    QTest::addColumn<QRectF>("expected");
    // The picture starts at 10, 20, 40 x 20 mm with its proportions kept.
    // clang-format off
    QTest::newRow("x field")          << "x 12.5"   << QRectF(12.5, 20, 40, 20);
    QTest::newRow("y field")          << "y 3"      << QRectF(10, 3, 40, 20);
    QTest::newRow("width keeps aspect")  << "w 60"  << QRectF(10, 20, 60, 30);
    QTest::newRow("height keeps aspect") << "h 10"  << QRectF(10, 20, 20, 10);
    QTest::newRow("width, aspect free")  << "free w 60" << QRectF(10, 20, 60, 20);
    QTest::newRow("arrow right 1 mm") << "key right" << QRectF(11, 20, 40, 20);
    QTest::newRow("arrow down 1 mm")  << "key down"  << QRectF(10, 19, 40, 20);
    QTest::newRow("shift up 0.1 mm")  << "key shift up" << QRectF(10, 20.1, 40, 20);
    QTest::newRow("shift left 0.1 mm") << "key shift left" << QRectF(9.9, 20, 40, 20);
    QTest::newRow("centre on bed")    << "centre"   << QRectF(65, 90, 40, 20);
    // clang-format on
}

void TestJobWindow::editsFollowFieldsAndUndo()
{
    QFETCH(QString, edit);
    QFETCH(QRectF, expected);
    ScopedWorkDir dir;
    Rig rig;
    QVERIFY(addKind(rig, SourceKind::Picture, dir.path()));
    rig.window.model()->change(QStringLiteral("place"),
                               [](JobDocument &doc) { JobEdits::setItemRect(&doc, 0, QRectF(10, 20, 40, 20)); });
    if (edit.startsWith(QLatin1String("free"))) {
        rig.window.findChild<QCheckBox *>(QStringLiteral("keepAspect"))->setChecked(false);
        QVERIFY(!rig.doc().items[0].keepAspect);
        edit = edit.mid(5);
    }
    const JobDocument before = rig.doc();
    const int steps = rig.undo()->index();
    const QString value = edit.section(QLatin1Char(' '), 1);
    auto type = [&](QDoubleSpinBox *box) {
        box->setValue(value.toDouble());
        emit box->editingFinished();
    };
    if (edit.startsWith(QLatin1String("x ")))
        type(rig.window.xField());
    else if (edit.startsWith(QLatin1String("y ")))
        type(rig.window.yField());
    else if (edit.startsWith(QLatin1String("w ")))
        type(rig.window.widthField());
    else if (edit.startsWith(QLatin1String("h ")))
        type(rig.window.heightField());
    else if (edit == QLatin1String("centre"))
        rig.window.centreSelection();
    else {
        const Qt::KeyboardModifiers mods = edit.contains(QLatin1String("shift")) ? Qt::ShiftModifier : Qt::NoModifier;
        const QString name = edit.section(QLatin1Char(' '), -1);
        const Qt::Key key = name == QLatin1String("right")  ? Qt::Key_Right
                            : name == QLatin1String("left") ? Qt::Key_Left
                            : name == QLatin1String("up")   ? Qt::Key_Up
                                                            : Qt::Key_Down;
        QTest::keyClick(rig.window.view(), key, mods);
    }
    const QRectF after = rectOf(rig.doc().items[0]);
    QVERIFY2(near(after, expected, 1e-6), qPrintable(describe(after)));
    QVERIFY2(near(fields(rig.window), expected), qPrintable(describe(fields(rig.window))));
    QCOMPARE(rig.undo()->index(), steps + 1);
    // The graphic follows: its top-left corner on the scene is the item's top edge, Y flipped.
    const QPointF scenePos = rig.window.scene()->graphic(0)->pos();
    QVERIFY(std::abs(scenePos.y() - (200 - expected.y() - expected.height())) < 1e-6);
    rig.undo()->undo();
    QVERIFY(rig.doc() == before);
    QVERIFY2(near(fields(rig.window), QRectF(10, 20, 40, 20)), qPrintable(describe(fields(rig.window))));
    rig.undo()->redo();
    QVERIFY(near(rectOf(rig.doc().items[0]), expected, 1e-6));
}

void TestJobWindow::selection_data()
{
    QTest::addColumn<QString>("gesture");  // "click X,Y", "shift X,Y", "band X,Y X,Y", machine mm; one per ';'
    QTest::addColumn<QList<int>>("selected");
    // Item 0 covers 10..30 x 10..30 mm, item 1 covers 60..80 x 10..30 mm.
    // clang-format off
    QTest::newRow("click")              << "click 20,20"                 << QList<int>{0};
    QTest::newRow("click other")        << "click 20,20;click 70,20"     << QList<int>{1};
    QTest::newRow("shift adds")         << "click 20,20;shift 70,20"     << QList<int>{0, 1};
    QTest::newRow("shift takes away")   << "click 20,20;shift 70,20;shift 20,20" << QList<int>{1};
    QTest::newRow("empty clears")       << "click 20,20;click 50,100"    << QList<int>{};
    QTest::newRow("band over both")     << "band 5,40 90,5"              << QList<int>{0, 1};
    QTest::newRow("band over one")      << "band 50,40 90,5"             << QList<int>{1};
    // clang-format on
}

void TestJobWindow::selection()
{
    QFETCH(QString, gesture);
    QFETCH(QList<int>, selected);
    Rig rig;
    rig.window.show();
    JobDocument doc;
    JobEdits::addLayer(&doc, Operation::Line);
    for (double x : {10.0, 60.0}) {
        JobItem item;
        item.source.kind = SourceKind::Text;
        item.source.text = QStringLiteral("I");
        item.keepAspect = false;
        item.x = x, item.y = 10, item.width = 20, item.height = 20;
        doc.items.push_back(item);
    }
    rig.window.model()->reset(doc);
    JobLayoutView *view = rig.window.view();
    view->resetTransform();
    view->scale(3, 3);
    view->centerOn(rig.window.scene()->toScene(QPointF(50, 20)));
    auto at = [&](const QString &xy) {
        return view->mapFromScene(rig.window.scene()->toScene(
            QPointF(xy.section(QLatin1Char(','), 0, 0).toDouble(), xy.section(QLatin1Char(','), 1).toDouble())));
    };
    for (const QString &step : gesture.split(QLatin1Char(';'))) {
        const QStringList part = step.split(QLatin1Char(' '));
        const Qt::KeyboardModifiers mods = part[0] == QLatin1String("shift") ? Qt::ShiftModifier : Qt::NoModifier;
        if (part[0] == QLatin1String("band")) {
            QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::NoModifier, at(part[1]));
            for (int i = 1; i <= 4; ++i) {
                const QPoint p = at(part[1]) + (at(part[2]) - at(part[1])) * i / 4;
                QMouseEvent move(QEvent::MouseMove, p, Qt::NoButton, Qt::LeftButton, Qt::NoModifier);
                QApplication::sendEvent(view->viewport(), &move);
            }
            QTest::mouseRelease(view->viewport(), Qt::LeftButton, Qt::NoModifier, at(part[2]));
        } else {
            QTest::mouseClick(view->viewport(), Qt::LeftButton, mods, at(part[1]));
        }
    }
    QCOMPARE(rig.window.selection(), selected);
    // Selecting changes no document.
    QCOMPARE(rig.undo()->count(), 0);
    QCOMPARE(rig.window.widthField()->isEnabled(), selected.size() == 1);
    QCOMPARE(rig.window.xField()->isEnabled(), !selected.isEmpty());
    // With nothing selected the fields show a dash, not a made-up place.
    if (selected.isEmpty())
        QCOMPARE(rig.window.widthField()->text(), QStringLiteral("\u2014"));
    else
        QCOMPARE(rig.window.xField()->value(), selected == QList<int>{1} ? 60.0 : 10.0);
}

void TestJobWindow::dropAddsWhereDropped_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QPointF>("at");  // machine mm
    QTest::addColumn<int>("added");
    // clang-format off
    QTest::newRow("picture")            << QStringList{"photo.png"}               << QPointF(40, 150) << 1;
    QTest::newRow("picture and drawing") << QStringList{"photo.png", "outline.svg"} << QPointF(100, 50) << 2;
    QTest::newRow("not a picture")      << QStringList{"notes.txt"}               << QPointF(40, 150) << 0;
    // clang-format on
}

void TestJobWindow::dropAddsWhereDropped()
{
    QFETCH(QStringList, files);
    QFETCH(QPointF, at);
    QFETCH(int, added);
    ScopedWorkDir dir;
    TestFiles::write(dir.file(QStringLiteral("photo.png")), picturePng());
    TestFiles::write(dir.file(QStringLiteral("outline.svg")), Svg);
    TestFiles::write(dir.file(QStringLiteral("notes.txt")), "not a picture");
    Rig rig;
    rig.window.show();
    JobLayoutView *view = rig.window.view();
    QList<QUrl> urls;
    for (const QString &file : files)
        urls << QUrl::fromLocalFile(dir.file(file));
    QMimeData mime;
    mime.setUrls(urls);
    const QPoint pos = view->mapFromScene(rig.window.scene()->toScene(at));
    // A drop goes to the widget that took the drag's entry.
    QDragEnterEvent enter(pos, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &enter);
    QVERIFY(enter.isAccepted());
    QDropEvent drop(pos, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &drop);
    QCOMPARE(int(rig.doc().items.size()), added);
    QCOMPARE(rig.notices.size(), added ? 0 : 1);
    // Each lands centred where it was dropped (within a screen pixel).
    const double pixel = 1.5 / view->zoom();
    for (const JobItem &item : rig.doc().items) {
        QVERIFY(std::abs(item.x + item.width / 2 - at.x()) < pixel);
        QVERIFY(std::abs(item.y + item.height / 2 - at.y()) < pixel);
    }
}

void TestJobWindow::mouseDragMovesAndResizes_data()
{
    QTest::addColumn<QString>("gesture");
    QTest::addColumn<QPointF>("from");  // machine mm
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRectF>("expected");
    // The picture lies at 20, 30, 40 x 20 mm; drags go by whole millimetres at 4 px/mm.
    // clang-format off
    QTest::newRow("move")                << "move"   << QPointF(40, 40) << QPointF(50, 35) << QRectF(30, 25, 40, 20);
    QTest::newRow("top-right corner")    << "resize" << QPointF(60, 50) << QPointF(80, 55) << QRectF(20, 30, 60, 30);
    QTest::newRow("bottom-left corner")  << "resize" << QPointF(20, 30) << QPointF(0, 30)  << QRectF(0, 20, 60, 30);
    QTest::newRow("shift frees aspect")  << "free"   << QPointF(60, 50) << QPointF(80, 50) << QRectF(20, 30, 60, 20);
    QTest::newRow("click without drag")  << "move"   << QPointF(40, 40) << QPointF(40, 40) << QRectF(20, 30, 40, 20);
    // clang-format on
}

void TestJobWindow::mouseDragMovesAndResizes()
{
    QFETCH(QString, gesture);
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QRectF, expected);
    ScopedWorkDir dir;
    Rig rig;
    rig.window.show();
    QVERIFY(addKind(rig, SourceKind::Picture, dir.path()));
    rig.window.model()->change(QStringLiteral("place"),
                               [](JobDocument &doc) { JobEdits::setItemRect(&doc, 0, QRectF(20, 30, 40, 20)); });
    JobLayoutView *view = rig.window.view();
    view->resetTransform();
    view->scale(4, 4);
    const int steps = rig.undo()->index();
    auto at = [&](const QPointF &machine) { return view->mapFromScene(rig.window.scene()->toScene(machine)); };
    const Qt::KeyboardModifiers mods = gesture == QLatin1String("free") ? Qt::ShiftModifier : Qt::NoModifier;
    QTest::mousePress(view->viewport(), Qt::LeftButton, Qt::NoModifier, at(from));
    QTest::mouseMove(view->viewport(), at((from + to) / 2));
    QMouseEvent move(QEvent::MouseMove, at(to), Qt::NoButton, Qt::LeftButton, mods);
    QApplication::sendEvent(view->viewport(), &move);
    QTest::mouseRelease(view->viewport(), Qt::LeftButton, mods, at(to));
    const QRectF after = rectOf(rig.doc().items[0]);
    QVERIFY2(near(after, expected, 0.3), qPrintable(describe(after)));
    QCOMPARE(rig.undo()->index(), steps + (from == to ? 0 : 1));
    QCOMPARE(rig.window.selection(), QList<int>{0});
    if (from != to) {
        rig.undo()->undo();
        QVERIFY(near(rectOf(rig.doc().items[0]), QRectF(20, 30, 40, 20), 1e-9));
    }
}

void TestJobWindow::layers_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QStringList>("names");  // the layers afterwards, in order
    QTest::addColumn<QList<int>>("itemLayers");
    QTest::addColumn<QList<bool>>("enabled");
    // Three layers A, B, C with one item each (items 0, 1, 2 on layers 0, 1, 2); layer B is selected.
    // clang-format off
    QTest::newRow("up button")     << "up"      << QStringList{"B", "A", "C"} << QList<int>{1, 0, 2} << QList<bool>{true, true, true};
    QTest::newRow("down button")   << "down"    << QStringList{"A", "C", "B"} << QList<int>{0, 2, 1} << QList<bool>{true, true, true};
    QTest::newRow("list order")    << "drag"    << QStringList{"C", "A", "B"} << QList<int>{1, 2, 0} << QList<bool>{true, true, true};
    QTest::newRow("switch off")    << "off"     << QStringList{"A", "B", "C"} << QList<int>{0, 1, 2} << QList<bool>{true, false, true};
    QTest::newRow("item to layer") << "move"    << QStringList{"A", "B", "C"} << QList<int>{2, 1, 2} << QList<bool>{true, true, true};
    QTest::newRow("remove layer")  << "remove"  << QStringList{"A", "C"}      << QList<int>{0, 1}    << QList<bool>{true, true};
    QTest::newRow("power typed")   << "power"   << QStringList{"A", "B", "C"} << QList<int>{0, 1, 2} << QList<bool>{true, true, true};
    QTest::newRow("colour picked") << "colour"  << QStringList{"A", "B", "C"} << QList<int>{0, 1, 2} << QList<bool>{true, true, true};
    // clang-format on
}

void TestJobWindow::layers()
{
    QFETCH(QString, action);
    QFETCH(QStringList, names);
    QFETCH(QList<int>, itemLayers);
    QFETCH(QList<bool>, enabled);
    Rig rig;
    JobDocument start;
    for (const char *name : {"A", "B", "C"}) {
        JobEdits::addLayer(&start, Operation::Line, QLatin1String(name));
        JobItem item;
        item.source.kind = SourceKind::Text;
        item.source.text = QLatin1String(name);
        item.width = item.height = 10;
        JobEdits::addItem(&start, item, int(start.layers.size()) - 1);
    }
    rig.window.model()->reset(start);
    LayerPanel *panel = rig.window.layerPanel();
    panel->setCurrentLayer(1);
    QCOMPARE(panel->list()->count(), 3);
    auto buttons = panel->findChildren<QToolButton *>();
    auto button = [&](Qt::ArrowType arrow) {
        for (QToolButton *b : buttons)
            if (b->arrowType() == arrow)
                return b;
        return static_cast<QToolButton *>(nullptr);
    };
    if (action == QLatin1String("up"))
        button(Qt::UpArrow)->click();
    else if (action == QLatin1String("down"))
        button(Qt::DownArrow)->click();
    else if (action == QLatin1String("drag")) {
        // What a drop inside the list does: the row taken out and put in at its new place.
        QListWidget *list = panel->list();
        QListWidgetItem *c = list->takeItem(2);
        list->insertItem(0, c);
        QTRY_COMPARE(rig.doc().layers[0].name, QStringLiteral("C"));
    } else if (action == QLatin1String("off"))
        panel->list()->item(1)->setCheckState(Qt::Unchecked);
    else if (action == QLatin1String("move")) {
        rig.window.setSelection({0});
        rig.window.moveSelectionToLayer(2);
    } else if (action == QLatin1String("remove")) {
        for (QToolButton *b : buttons)
            if (b->arrowType() == Qt::NoArrow && b->text() != QLatin1String("+"))
                b->click();
    } else if (action == QLatin1String("colour")) {
        panel->setColorChooser([](const QColor &) { return QColor(0xff, 0x80, 0x00); });
        for (QPushButton *b : panel->findChildren<QPushButton *>())
            if (b->text() == start.layers[1].color)
                b->click();
        QCOMPARE(rig.doc().layers[1].color, QStringLiteral("#ff8000"));
        // The layer's item is drawn in the new colour.
        QCOMPARE(rig.window.scene()->graphic(1)->look().color, QColor(0xff, 0x80, 0x00));
    } else if (action == QLatin1String("power")) {
        auto *power = panel->findChildren<QDoubleSpinBox *>().at(1);
        power->setValue(77);
        emit power->editingFinished();
        QCOMPARE(rig.doc().layers[1].power, 77.0);
    }
    QStringList got;
    QList<int> layersOfItems;
    QList<bool> on;
    for (const JobLayer &l : rig.doc().layers) {
        got.append(l.name);
        on.append(l.enabled);
    }
    // Items are matched by their text, which names the layer they started on.
    for (const char *name : {"A", "B", "C"})
        for (const JobItem &item : rig.doc().items)
            if (item.source.text == QLatin1String(name))
                layersOfItems.append(item.layer);
    QCOMPARE(got, names);
    QCOMPARE(layersOfItems, itemLayers);
    QCOMPARE(on, enabled);
    // The list shows the document's order and switches.
    for (int i = 0; i < panel->list()->count(); ++i) {
        QVERIFY(panel->list()->item(i)->text().startsWith(names[i]));
        QCOMPARE(panel->list()->item(i)->checkState() == Qt::Checked, enabled[i]);
    }
    QCOMPARE(rig.undo()->count(), 1);
    rig.undo()->undo();
    QVERIFY(rig.doc() == start);
    QCOMPARE(panel->list()->item(0)->text().left(1), QStringLiteral("A"));
}

void TestJobWindow::doubleClickEditsText_data()
{
    QTest::addColumn<int>("kind");
    QTest::addColumn<QString>("text");
    QTest::addColumn<bool>("edited");
    // clang-format off
    QTest::newRow("longer text")  << int(SourceKind::Text)    << "Hello there" << true;
    QTest::newRow("qr")           << int(SourceKind::Qr)      << "https://example.org/a-longer-address/43" << true;
    QTest::newRow("emptied text") << int(SourceKind::Text)    << "   "         << false;
    QTest::newRow("picture")      << int(SourceKind::Picture) << "ignored"     << false;
    // clang-format on
}

void TestJobWindow::doubleClickEditsText()
{
    QFETCH(int, kind);
    QFETCH(QString, text);
    QFETCH(bool, edited);
    ScopedWorkDir dir;
    Rig rig;
    rig.window.show();
    QVERIFY(addKind(rig, SourceKind(kind), dir.path()));
    const JobItem before = rig.doc().items[0];
    rig.nextSource = before.source;
    rig.nextSource.text = text;
    JobLayoutView *view = rig.window.view();
    const QPointF centre(before.x + before.width / 2, before.y + before.height / 2);
    QTest::mouseDClick(view->viewport(), Qt::LeftButton, Qt::NoModifier,
                       view->mapFromScene(rig.window.scene()->toScene(centre)));
    const JobItem after = rig.doc().items[0];
    QCOMPARE(after.source.text, edited ? text : before.source.text);
    QCOMPARE(rig.undo()->count(), edited ? 2 : 1);
    if (!edited)
        return;
    // The bottom-left corner and the height stay; the width follows the new text's proportions.
    QCOMPARE(after.x, before.x);
    QCOMPARE(after.y, before.y);
    QCOMPARE(after.height, before.height);
    if (SourceKind(kind) == SourceKind::Qr)
        QCOMPARE(after.width, after.height);
    else
        QVERIFY(after.width > before.width * 1.5);
    rig.undo()->undo();
    QVERIFY(rig.doc().items[0] == before);
}

void TestJobWindow::picturesStayOnImageLayers()
{
    ScopedWorkDir dir;
    Rig rig;
    QVERIFY(addKind(rig, SourceKind::Picture, dir.path()));
    QVERIFY(addKind(rig, SourceKind::Qr, dir.path()));
    rig.window.model()->change(QStringLiteral("layer"),
                               [](JobDocument &doc) { JobEdits::addLayer(&doc, Operation::Line); });
    const JobDocument before = rig.doc();
    rig.window.setSelection({0, 1});
    rig.window.moveSelectionToLayer(1);
    QVERIFY(rig.doc() == before);
    QCOMPARE(rig.notices.size(), 1);
    QVERIFY2(rig.notices[0].contains(QLatin1String("photo.png")), qPrintable(rig.notices[0]));
}

void TestJobWindow::newItemLayer_data()
{
    // The job has an image layer 0, a fill layer 1 and a line layer 2; layer 3 is one the item brings.
    QTest::addColumn<int>("selected");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("layer");
    QTest::addColumn<int>("operation");
    // clang-format off
    QTest::newRow("picture on image")  << 0 << int(SourceKind::Picture) << 0 << int(Operation::Image);
    QTest::newRow("picture on fill")   << 1 << int(SourceKind::Picture) << 3 << int(Operation::Image);
    QTest::newRow("picture on line")   << 2 << int(SourceKind::Picture) << 3 << int(Operation::Image);
    QTest::newRow("qr on image")       << 0 << int(SourceKind::Qr)      << 0 << int(Operation::Image);
    QTest::newRow("qr on fill")        << 1 << int(SourceKind::Qr)      << 3 << int(Operation::Image);
    QTest::newRow("svg on image")      << 0 << int(SourceKind::Svg)     << 3 << int(Operation::Line);
    QTest::newRow("svg on fill")       << 1 << int(SourceKind::Svg)     << 1 << int(Operation::Fill);
    QTest::newRow("svg on line")       << 2 << int(SourceKind::Svg)     << 2 << int(Operation::Line);
    QTest::newRow("text on image")     << 0 << int(SourceKind::Text)    << 3 << int(Operation::Line);
    QTest::newRow("text on fill")      << 1 << int(SourceKind::Text)    << 1 << int(Operation::Fill);
    QTest::newRow("text on line")      << 2 << int(SourceKind::Text)    << 2 << int(Operation::Line);
    QTest::newRow("traced on image")   << 0 << int(SourceKind::Trace)   << 3 << int(Operation::Line);
    QTest::newRow("traced on fill")    << 1 << int(SourceKind::Trace)   << 1 << int(Operation::Fill);
    QTest::newRow("traced on line")    << 2 << int(SourceKind::Trace)   << 2 << int(Operation::Line);
    // clang-format on
}

void TestJobWindow::newItemLayer()
{
    QFETCH(int, selected);
    QFETCH(int, kind);
    QFETCH(int, layer);
    QFETCH(int, operation);
    ScopedWorkDir dir;
    Rig rig;
    JobDocument start;
    for (Operation op : {Operation::Image, Operation::Fill, Operation::Line})
        JobEdits::addLayer(&start, op);
    rig.window.model()->reset(start);
    rig.window.layerPanel()->setCurrentLayer(selected);
    QVERIFY(addKind(rig, SourceKind(kind), dir.path()));
    QCOMPARE(rig.doc().items.size(), size_t(1));
    QCOMPARE(rig.doc().items[0].layer, layer);
    QCOMPARE(int(rig.doc().layers.size()), std::max(3, layer + 1));
    QCOMPARE(int(rig.doc().layers[size_t(layer)].operation), operation);
    // The layer panel follows the item to its layer.
    QCOMPARE(rig.window.layerPanel()->currentLayer(), layer);
    // The item and a layer it brought are one undo step.
    QCOMPARE(rig.undo()->count(), 1);
    rig.undo()->undo();
    QVERIFY(rig.doc() == start);
}

void TestJobWindow::saveOpenAndTitle()
{
    ScopedWorkDir dir;
    Rig rig;
    QVERIFY(rig.window.windowTitle().contains(QLatin1String("[*]")));
    QVERIFY(!rig.window.isWindowModified());
    QVERIFY(addKind(rig, SourceKind::Picture, dir.path()));
    QVERIFY(addKind(rig, SourceKind::Text, dir.path()));
    QVERIFY(rig.window.isWindowModified());
    rig.nextFile = dir.file(QStringLiteral("three"));
    QVERIFY(rig.window.save());  // no file yet: asks, and adds the suffix
    const QString path = dir.file(QStringLiteral("three.tljob"));
    QVERIFY(QFile::exists(path));
    QVERIFY(!rig.window.isWindowModified());
    QVERIFY(rig.window.windowTitle().startsWith(QLatin1String("three.tljob")));
    QCOMPARE(rig.window.recentFiles().value(0), QFileInfo(path).absoluteFilePath());
    // The recent list lives in the configuration folder, never in the working folder.
    QVERIFY(QDir(dir.path()).entryList({QStringLiteral("*.json")}).isEmpty());

    Rig other;
    QVERIFY(other.window.openJob(path));
    QVERIFY(other.doc() == rig.doc());
    QVERIFY(!other.window.isWindowModified());
    QCOMPARE(other.window.model()->filePath(), QFileInfo(path).absoluteFilePath());
    QCOMPARE(other.window.scene()->graphics().size(), 2);

    // A change marks it again; saving clears the mark without asking.
    rig.window.setSelection({0});
    rig.window.nudge(1, 0);
    QVERIFY(rig.window.isWindowModified());
    rig.nextFile.clear();
    QVERIFY(rig.window.save());
    QVERIFY(!rig.window.isWindowModified());
    JobDocument reread;
    QString error;
    QVERIFY(JobFile::load(path, &reread, &error));
    QVERIFY(reread == rig.doc());
}

void TestJobWindow::openFailureChangesNothing_data()
{
    QTest::addColumn<QByteArray>("bytes");
    // clang-format off
    QTest::newRow("not json")    << QByteArray("{ nothing");
    QTest::newRow("newer format") << QByteArray("{\"format\": 99}");
    QTest::newRow("missing file") << QByteArray();
    // clang-format on
}

void TestJobWindow::openFailureChangesNothing()
{
    QFETCH(QByteArray, bytes);
    ScopedWorkDir dir;
    Rig rig;
    QVERIFY(addKind(rig, SourceKind::Text, dir.path()));
    const JobDocument before = rig.doc();
    const QString path = dir.file(QStringLiteral("bad.tljob"));
    if (!bytes.isEmpty())
        TestFiles::write(path, bytes);
    QVERIFY(!rig.window.openJob(path));
    QCOMPARE(rig.notices.size(), 1);
    QVERIFY2(rig.notices[0].contains(QLatin1String("bad.tljob")), qPrintable(rig.notices[0]));
    QVERIFY(rig.doc() == before);
    QVERIFY(rig.window.isWindowModified());
    QCOMPARE(rig.undo()->count(), 1);
}

void TestJobWindow::closeWithUnsavedChanges_data()
{
    QTest::addColumn<int>("answer");
    QTest::addColumn<bool>("closes");
    QTest::addColumn<bool>("saved");
    // clang-format off
    QTest::newRow("save")    << int(JobWindow::CloseAnswer::Save)    << true  << true;
    QTest::newRow("discard") << int(JobWindow::CloseAnswer::Discard) << true  << false;
    QTest::newRow("cancel")  << int(JobWindow::CloseAnswer::Cancel)  << false << false;
    // clang-format on
}

void TestJobWindow::closeWithUnsavedChanges()
{
    QFETCH(int, answer);
    QFETCH(bool, closes);
    QFETCH(bool, saved);
    ScopedWorkDir dir;
    Rig rig;
    rig.window.show();
    // Nothing to save: no question.
    QVERIFY(rig.window.close());
    QCOMPARE(rig.closeQuestions, 0);
    rig.window.show();
    QVERIFY(addKind(rig, SourceKind::Text, dir.path()));
    rig.closeAnswer = JobWindow::CloseAnswer(answer);
    rig.nextFile = dir.file(QStringLiteral("kept.tljob"));
    QCOMPARE(rig.window.close(), closes);
    QCOMPARE(rig.closeQuestions, 1);
    QCOMPARE(rig.window.isVisible(), !closes);
    QCOMPARE(QFile::exists(rig.nextFile), saved);
    QCOMPARE(rig.window.isWindowModified(), !saved);
}

void TestJobWindow::exportMatchesTool()
{
    ScopedWorkDir dir;
    Rig rig;
    QVERIFY(addKind(rig, SourceKind::Picture, dir.path()));
    QVERIFY(addKind(rig, SourceKind::Text, dir.path()));
    // The picture's image layer was selected, so the text brought a line layer of its own; it is made a
    // fill layer.
    QCOMPARE(rig.doc().layers.size(), size_t(2));
    QCOMPARE(rig.doc().items[1].layer, 1);
    rig.window.model()->change(QStringLiteral("fill"), [](JobDocument &doc) {
        doc.layers[1].operation = Operation::Fill;
        doc.layers[1].fill.interval = 0.5;
        doc.layers[0].image.interval = 0.5;
    });
    rig.nextFile = dir.file(QStringLiteral("job.tljob"));
    QVERIFY(rig.window.saveAs());
    rig.nextFile = dir.file(QStringLiteral("window.gcode"));
    QVERIFY2(rig.window.exportJob(), qPrintable(rig.notices.join('\n')));
    QCOMPARE(rig.window.exportedFile(), QFileInfo(rig.nextFile).absoluteFilePath());

    QProcess tool;
    tool.start(QStringLiteral(TARNWELL_EXPORT_TOOL),
               {QStringLiteral("job"), QStringLiteral("--input"), dir.file(QStringLiteral("job.tljob")),
                QStringLiteral("--output"), dir.file(QStringLiteral("tool.gcode"))});
    QVERIFY(tool.waitForFinished(60000));
    QCOMPARE(tool.exitCode(), 0);
    const QByteArray gcode = TestFiles::read(dir.file(QStringLiteral("window.gcode")));
    QVERIFY(gcode.startsWith("G21\n"));
    QCOMPARE(gcode, TestFiles::read(dir.file(QStringLiteral("tool.gcode"))));
    // The figures shown are the lines the tool prints.
    const QStringList printed = QString::fromUtf8(tool.readAllStandardOutput()).split('\n', Qt::SkipEmptyParts);
    QCOMPARE(rig.window.exportSummary(), printed);
}

void TestJobWindow::profileBedSizesViewAndCheck_data()
{
    QTest::addColumn<double>("bedWidth");
    QTest::addColumn<double>("bedHeight");
    QTest::addColumn<bool>("fits");
    // An item at 300, 300, 50 x 50 mm.
    // clang-format off
    QTest::newRow("170 x 200") << 170.0 << 200.0 << false;
    QTest::newRow("400 x 400") << 400.0 << 400.0 << true;
    QTest::newRow("400 x 340") << 400.0 << 340.0 << false;
    // clang-format on
}

void TestJobWindow::profileBedSizesViewAndCheck()
{
    QFETCH(double, bedWidth);
    QFETCH(double, bedHeight);
    QFETCH(bool, fits);
    ScopedWorkDir dir;
    Rig rig;
    MachineProfile profile;
    profile.name = QStringLiteral("Big");
    profile.bedWidth = bedWidth;
    profile.bedHeight = bedHeight;
    rig.window.setProfile(profile);
    QCOMPARE(rig.window.scene()->bedWidth(), bedWidth);
    QCOMPARE(rig.window.scene()->bedHeight(), bedHeight);
    QVERIFY(rig.window.scene()->sceneRect().contains(QRectF(0, 0, bedWidth, bedHeight)));
    JobItem item;
    item.source.kind = SourceKind::Svg;
    item.source.name = QStringLiteral("far.svg");
    item.source.data = Svg;
    item.x = item.y = 300;
    item.width = item.height = 50;
    rig.window.addItem(item, QStringLiteral("add"));
    QCOMPARE(rig.window.scene()->graphic(0)->isOutside(), !fits);
    rig.nextFile = dir.file(QStringLiteral("far.gcode"));
    QCOMPARE(rig.window.exportJob(), fits);
    QCOMPARE(QFile::exists(rig.nextFile), fits);
    if (!fits) {
        QCOMPARE(rig.notices.size(), 1);
        QVERIFY2(rig.notices[0].contains(QLatin1String("far.svg")), qPrintable(rig.notices[0]));
    }
    // Undoing the profile brings the default bed back.
    rig.undo()->undo();
    rig.undo()->undo();
    QCOMPARE(rig.window.scene()->bedWidth(), 170.0);
}

TARNWELL_TEST_MAIN(TestJobWindow)
#include "tst_jobwindow.moc"
