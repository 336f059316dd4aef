// Tests of the canvas scene: fitting loaded pictures and drawings, the cleaned
// "tmp.svg", bad files, clearing, scaling, the Delete key and the work-area set-up.
#include "testsupport.h"
#include "canvastesthelpers.h"

#include "backgrqgraphicsitem.h"
#include "pgraphicsscene.h"
#include "pixmapitem.h"
#include "svgitem.h"

#include <QGraphicsLineItem>
#include <QGraphicsTextItem>
#include <QKeyEvent>
#include <QSignalSpy>
#include <QSvgRenderer>

namespace {

QList<QGraphicsItem *> designs(QGraphicsScene *scene)
{
    QList<QGraphicsItem *> found;
    const QList<QGraphicsItem *> all = scene->items(Qt::AscendingOrder);
    for (QGraphicsItem *item : all) {
        if (item->type() == PixmapItem::Type || item->type() == SvgItem::Type)
            found << item;
    }
    return found;
}

QRectF rectOf(QGraphicsItem *item)
{
    if (item->type() == PixmapItem::Type)
        return static_cast<PixmapItem *>(item)->rect();
    return static_cast<SvgItem *>(item)->rect();
}

// "picture:WxH" makes a PNG of that size; anything else is written as it stands.
bool writeInput(const QString &name, const QByteArray &content)
{
    if (content.startsWith("picture:")) {
        const QList<QByteArray> size = content.mid(8).split('x');
        return writePicture(name, size.at(0).toInt(), size.at(1).toInt());
    }
    return writeText(name, content);
}

QByteArray readFile(const QString &name)
{
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}

// A focusable item that records the keys reaching it.
class KeyRecorder : public QGraphicsRectItem
{
public:
    KeyRecorder() : QGraphicsRectItem(0, 0, 10, 10) { setFlag(ItemIsFocusable); }
    int keys = 0;

protected:
    void keyPressEvent(QKeyEvent *) override { ++keys; }
};

void activate(QGraphicsScene *scene)
{
    QEvent activation(QEvent::WindowActivate);
    QApplication::sendEvent(scene, &activation);
}

} // namespace

class TestCanvasScene : public QObject
{
    Q_OBJECT
private slots:
    void workArea();
    void load_data();
    void load();
    void badInput_data();
    void badInput();
    void clearItems();
    void scaleSelected_data();
    void scaleSelected();
    void keys_data();
    void keys();
    void currentItemPosLastInsideWins();
};

void TestCanvasScene::workArea()
{
    PGraphicsScene scene;
    QCOMPARE(scene.sceneRect(), QRectF(0, 0, 170, 200));
    QCOMPARE(scene.backgroundItem()->pos(), QPointF(-157, -88));
    QCOMPARE(scene.backgroundItem()->scale(), 0.48);
    QVERIFY(!scene.backgroundItem()->pixmap().isNull());

    QMap<QString, QPointF> labels;
    QList<QLineF> lines;
    for (QGraphicsItem *item : scene.items(Qt::AscendingOrder)) {
        if (auto *text = qgraphicsitem_cast<QGraphicsTextItem *>(item)) {
            labels.insert(text->toPlainText(), text->pos());
            QCOMPARE(text->defaultTextColor(), QColor(Qt::gray));
        } else if (auto *line = qgraphicsitem_cast<QGraphicsLineItem *>(item)) {
            QVERIFY(!(line->flags() & QGraphicsItem::ItemIsSelectable));
            lines << line->line();
        }
    }
    QCOMPARE(labels.value("Preview Area"), QPointF(85, 175));
    QCOMPARE(labels.value("170mm"), QPointF(170, 190));
    QCOMPARE(labels.value("200mm"), QPointF(-35, -10));
    QCOMPARE(labels.value("0mm"), QPointF(-25, 190));
    QCOMPARE(labels.size(), 4);
    const QList<QLineF> expected = {
        {170, 0, 170, 200}, {0, 200, 170, 200}, {0, 200, 0, 0}, {0, 0, 170, 0},
        {165, 5, 165, 195}, {5, 195, 165, 195}, {5, 195, 5, 5}, {5, 5, 165, 5},
        {85, 5, 85, 195}, {5, 100, 165, 100}};
    QCOMPARE(lines, expected);
}

void TestCanvasScene::load_data()
{
    QTest::addColumn<bool>("cleaning");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<QRectF>("reported");
    QTest::addColumn<QByteArray>("tmpSvg");

    const QByteArray mmSvg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100mm\" height=\"50mm\" "
                             "viewBox=\"0 0 10 5\"><rect width=\"10\" height=\"5\"/></svg>";
    const QByteArray plainSvg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"50\" height=\"100\" "
                                "viewBox=\"0 0 5 10\"><rect width=\"5\" height=\"10\"/></svg>";
    const QByteArray tallSvg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100\" height=\"200\">"
                               "<rect width=\"100\" height=\"200\"/></svg>";

    QTest::newRow("wide bitmap") << true << "wide.png" << QByteArray("picture:340x100")
                                 << QRectF(0, 0, 170, 50) << QRectF(0, 0, 170, 50) << QByteArray();
    QTest::newRow("small bitmap enlarged") << true << "small.jpg" << QByteArray("picture:10x10")
                                           << QRectF(0, 0, 170, 170) << QRectF(0, 0, 170, 170) << QByteArray();
    // Without its size and view box the drawing measures 10 by 5, fitted to 170 by 85,
    // before the declared millimetres take over.
    QTest::newRow("svg in mm keeps its size")
        << true << "mm.svg" << mmSvg << QRectF(0, 0, 100, 50) << QRectF(0, 0, 170, 85)
        << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\"      ><rect width=\"10\" height=\"5\"/></svg>");
    QTest::newRow("svg without mm fitted")
        << true << "plain.svg" << plainSvg << QRectF(0, 0, 100, 200) << QRectF(0, 0, 100, 200)
        << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"50\" height=\"100\"  >"
                      "<rect width=\"5\" height=\"10\"/></svg>");
    QTest::newRow("uncleaned svg fitted to 170 both ways")
        << false << "tall.svg" << tallSvg << QRectF(0, 0, 85, 170) << QRectF(0, 0, 85, 170) << QByteArray();
    // Read as it stands, 100 mm is 354 by 177 units, fitted to 170 by 85.
    QTest::newRow("uncleaned svg in mm keeps its size")
        << false << "mm.svg" << mmSvg << QRectF(0, 0, 100, 50) << QRectF(0, 0, 170, 85) << QByteArray();
}

void TestCanvasScene::load()
{
    QFETCH(bool, cleaning);
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QRectF, rect);
    QFETCH(QRectF, reported);
    QFETCH(QByteArray, tmpSvg);

    ScopedWorkDir dir;
    QVERIFY(writeInput(name, content));
    PGraphicsScene scene;
    QSignalSpy spy(&scene, SIGNAL(SigRect(QRectF)));
    if (cleaning)
        scene.LoadItemFromFile(name, 7);
    else
        scene.LoadSvgItem(name, 7);

    const QList<QGraphicsItem *> placed = designs(&scene);
    QCOMPARE(placed.size(), 1);
    QGraphicsItem *item = placed.first();
    QCOMPARE(rectOf(item), rect);
    QCOMPARE(item->pos(), QPointF(0, 0));
    QVERIFY(item->isSelected());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().at(0).toRectF(), reported);

    if (item->type() == SvgItem::Type) {
        auto *svg = static_cast<SvgItem *>(item);
        QCOMPARE(svg->filePath(), QString("tmp.svg"));
        QCOMPARE(svg->kindTag(), 7);
        QVERIFY(svg->renderer()->isValid());
    } else {
        auto *pix = static_cast<PixmapItem *>(item);
        QCOMPARE(pix->filePath(), name);
        QCOMPARE(pix->pixmap().size(), rect.size().toSize());
    }
    if (tmpSvg.isEmpty())
        QVERIFY(!QFile::exists("tmp.svg"));
    else
        QCOMPARE(readFile("tmp.svg"), tmpSvg);
    // The source itself is left as it was.
    if (!content.startsWith("picture:"))
        QCOMPARE(readFile(name), content);
}

void TestCanvasScene::badInput_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<int>("placed");

    QTest::newRow("bitmap that does not decode") << "broken.png" << QByteArray("not a picture") << 1;
    QTest::newRow("empty svg") << "empty.svg" << QByteArray() << 1;
    QTest::newRow("svg that does not parse") << "broken.svg" << QByteArray("<svg><rect width=") << 1;
    QTest::newRow("svg of zero size") << "zero.svg"
                                      << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"0\" height=\"0\"/>")
                                      << 1;
    QTest::newRow("upper-case picture suffix") << "PIC.PNG" << QByteArray("picture:20x20") << 0;
    QTest::newRow("upper-case svg suffix") << "DRAW.SVG" << QByteArray("<svg/>") << 0;
    QTest::newRow("unknown suffix") << "notes.txt" << QByteArray("hello") << 0;
    QTest::newRow("one pixel wide") << "thin.png" << QByteArray("picture:1x20000") << 1;
}

void TestCanvasScene::badInput()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(int, placed);

    ScopedWorkDir dir;
    QVERIFY(writeInput(name, content));
    QVERIFY(writePicture("good.png", 340, 100));
    PGraphicsScene scene;
    scene.LoadItemFromFile(name, 0);
    QCOMPARE(designs(&scene).size(), placed);
    for (QGraphicsItem *item : designs(&scene)) {
        const QRectF r = item->boundingRect();
        QVERIFY(qIsFinite(r.width()) && qIsFinite(r.height()));
    }
    renderScene(&scene);

    // The canvas goes on working with the next file.
    scene.LoadItemFromFile("good.png", 0);
    const QList<QGraphicsItem *> after = designs(&scene);
    QCOMPARE(after.size(), placed + 1);
    QCOMPARE(rectOf(after.last()), QRectF(0, 0, 170, 50));
    QVERIFY(after.last()->isSelected());
    renderScene(&scene);
    QCOMPARE(scene.CurrentItemPos(), QPointF(0, 0));
}

void TestCanvasScene::clearItems()
{
    ScopedWorkDir dir;
    QVERIFY(writePicture("a.png", 340, 100));
    QVERIFY(writeText("b.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10\" height=\"10\"/>"));
    PGraphicsScene scene;
    const int fixed = scene.items().size();
    scene.LoadItemFromFile("a.png", 0);
    scene.LoadItemFromFile("b.svg", 0);
    const QList<QGraphicsItem *> placed = designs(&scene);
    QCOMPARE(placed.size(), 2);

    scene.ClearItems();
    QCOMPARE(scene.items().size(), fixed);
    QVERIFY(designs(&scene).isEmpty());
    // Taken off, not destroyed: the items can still be asked about themselves.
    for (QGraphicsItem *item : placed)
        QCOMPARE(item->scene(), static_cast<QGraphicsScene *>(nullptr));
    QVERIFY(!scene.HasSelectedItem());
    QCOMPARE(scene.CurrentItemPos(), PGraphicsScene::NoPosition);
}

void TestCanvasScene::scaleSelected_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QPointF>("pos");
    QTest::addColumn<bool>("selected");
    QTest::addColumn<double>("width");
    QTest::addColumn<QRectF>("rect");

    const QString svg = "d.svg";
    QTest::newRow("bitmap at origin") << "p.png" << QPointF(0, 0) << true << 85.0 << QRectF(0, 0, 85, 25);
    // The bitmap takes the whole rectangle, its scene position included.
    QTest::newRow("moved bitmap") << "p.png" << QPointF(10, 20) << true << 85.0 << QRectF(10, 20, 85, 25);
    QTest::newRow("moved svg") << svg << QPointF(10, 20) << true << 34.0 << QRectF(0, 0, 34, 10);
    QTest::newRow("unselected untouched") << "p.png" << QPointF(0, 0) << false << 85.0 << QRectF(0, 0, 170, 50);
}

void TestCanvasScene::scaleSelected()
{
    QFETCH(QString, name);
    QFETCH(QPointF, pos);
    QFETCH(bool, selected);
    QFETCH(double, width);
    QFETCH(QRectF, rect);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 340, 100));
    QVERIFY(writeText("d.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"340\" height=\"100\"/>"));
    PGraphicsScene scene;
    scene.LoadItemFromFile(name, 0);
    QGraphicsItem *item = designs(&scene).value(0);
    QVERIFY(item);
    item->setPos(pos);
    item->setSelected(selected);
    scene.ScaleSelected(width);
    QCOMPARE(rectOf(item), rect);
    QCOMPARE(item->pos(), pos);
}

void TestCanvasScene::keys_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<bool>("selected");
    QTest::addColumn<int>("left");

    QTest::newRow("delete with a selection") << int(Qt::Key_Delete) << true << 0;
    QTest::newRow("delete without a selection") << int(Qt::Key_Delete) << false << 1;
    QTest::newRow("other key swallowed") << int(Qt::Key_A) << true << 1;
}

void TestCanvasScene::keys()
{
    QFETCH(int, key);
    QFETCH(bool, selected);
    QFETCH(int, left);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 340, 100));

    // A plain scene hands the key to the focus item, so the recorder can hear it.
    QGraphicsScene plain;
    activate(&plain);
    auto *control = new KeyRecorder;
    plain.addItem(control);
    control->setFocus();
    QKeyEvent controlPress(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&plain, &controlPress);
    QCOMPARE(control->keys, 1);

    PGraphicsScene scene;
    activate(&scene);
    scene.LoadItemFromFile("p.png", 0);
    QGraphicsItem *item = designs(&scene).value(0);
    QVERIFY(item);
    item->setSelected(selected);
    auto *recorder = new KeyRecorder;
    scene.addItem(recorder);
    recorder->setFocus();
    QCOMPARE(scene.focusItem(), static_cast<QGraphicsItem *>(recorder));

    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&scene, &press);
    QCOMPARE(designs(&scene).size(), left);
    QCOMPARE(recorder->keys, 0);
    QCOMPARE(scene.HasSelectedItem(), left == 1 && selected);
    if (left == 0)
        delete item;
}

void TestCanvasScene::currentItemPosLastInsideWins()
{
    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 340, 100));
    PGraphicsScene scene;
    scene.LoadItemFromFile("p.png", 0);
    scene.LoadItemFromFile("p.png", 0);
    const QList<QGraphicsItem *> placed = designs(&scene);
    QCOMPARE(placed.size(), 2);
    placed.at(0)->setPos(0, 10);  // lower in the stack
    placed.at(1)->setPos(0, 100); // on top
    renderScene(&scene);
    QCOMPARE(scene.CurrentItemPos(), QPointF(0, 10));
    // Still painted, but its right edge now at 320 mm.
    placed.at(0)->setPos(150, 10);
    renderScene(&scene);
    QCOMPARE(scene.CurrentItemPos(), QPointF(0, 100));
}

TARNWELL_TEST_MAIN(TestCanvasScene)
#include "tst_canvasscene.moc"
