// Tests of the bitmap and SVG design items driven by scene events: corner zones,
// resize against move, the signals of a release, and the in-area frame of paint.
#include "testsupport.h"
#include "canvastesthelpers.h"

#include "pgraphicsscene.h"
#include "pixmapitem.h"
#include "svgitem.h"
#include "svgpolygons.h"

#include <QSignalSpy>
#include <QSvgRenderer>

namespace {

const QByteArray BlueBox =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100\" height=\"50\">"
    "<rect width=\"100\" height=\"50\" fill=\"#0000ff\"/></svg>";

// A design of 100 by 50 mm standing at pos; the returned object carries SigPosTag.
QGraphicsItem *addDesign(PGraphicsScene *scene, const QString &kind, const QPointF &pos,
                         const QString &picture)
{
    if (kind == "bitmap") {
        auto *item = new PixmapItem;
        item->setParent(scene);
        item->setFilePath(picture);
        item->ResetRect(QRectF(0, 0, 100, 50));
        scene->addItem(item);
        item->setPos(pos);
        return item;
    }
    auto *item = new SvgItem;
    item->setParent(scene);
    item->setSharedRenderer(new QSvgRenderer(BlueBox, scene));
    item->ResetRect(QRectF(0, 0, 100, 50));
    scene->addItem(item);
    item->setPos(pos);
    return item;
}

QObject *objectOf(QGraphicsItem *item)
{
    if (item->type() == PixmapItem::Type)
        return static_cast<PixmapItem *>(item);
    return static_cast<SvgItem *>(item);
}

bool armed(QGraphicsItem *item)
{
    if (item->type() == PixmapItem::Type)
        return static_cast<PixmapItem *>(item)->isResizeArmed();
    return static_cast<SvgItem *>(item)->isResizeArmed();
}

QRectF rectOf(QGraphicsItem *item)
{
    if (item->type() == PixmapItem::Type)
        return static_cast<PixmapItem *>(item)->rect();
    return static_cast<SvgItem *>(item)->rect();
}

bool inArea(QGraphicsItem *item)
{
    if (item->type() == PixmapItem::Type)
        return static_cast<PixmapItem *>(item)->isInArea();
    return static_cast<SvgItem *>(item)->isInArea();
}

} // namespace

class TestCanvasItems : public QObject
{
    Q_OBJECT
private slots:
    void cornerZone_data();
    void cornerZone();
    void dragCorner_data();
    void dragCorner();
    void moveAtRectangleCorner_data();
    void moveAtRectangleCorner();
    void doubleClick_data();
    void doubleClick();
    void paintInArea_data();
    void paintInArea();
    void resetRect_data();
    void resetRect();
    void reloadFollowsFile_data();
    void reloadFollowsFile();
    void outlineBounds_data();
    void outlineBounds();
};

void TestCanvasItems::cornerZone_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QPointF>("offset");
    QTest::addColumn<bool>("armedExpected");

    // Offsets from the bottom-right corner, which stands at (120, 70).
    QTest::newRow("bitmap 10 right of corner") << "bitmap" << QPointF(10, 0) << true;
    QTest::newRow("svg 10 right of corner") << "svg" << QPointF(10, 0) << false;
    QTest::newRow("bitmap just inside") << "bitmap" << QPointF(-2, -1) << true;
    QTest::newRow("svg just inside") << "svg" << QPointF(-2, -1) << true;
    QTest::newRow("svg 7 out both ways") << "svg" << QPointF(7, 7) << true;
    QTest::newRow("bitmap 19.9 left") << "bitmap" << QPointF(-19.9, 0) << true;
    QTest::newRow("bitmap exactly 20 left") << "bitmap" << QPointF(-20, 0) << false;
    QTest::newRow("svg exactly 8 up") << "svg" << QPointF(0, -8) << false;
    QTest::newRow("bitmap body") << "bitmap" << QPointF(-50, -25) << false;
}

void TestCanvasItems::cornerZone()
{
    QFETCH(QString, kind);
    QFETCH(QPointF, offset);
    QFETCH(bool, armedExpected);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 200, 100));
    PGraphicsScene scene;
    QGraphicsItem *item = addDesign(&scene, kind, QPointF(20, 20), "p.png");
    SceneMouse mouse(&scene);

    // Arm first from inside, so a point outside the zone must actively disarm.
    mouse.hoverItem(item, QPointF(119, 69));
    QVERIFY(armed(item));
    mouse.hoverItem(item, QPointF(120, 70) + offset);
    QCOMPARE(armed(item), armedExpected);
    QCOMPARE(item->cursor().shape(), armedExpected ? Qt::SizeFDiagCursor : Qt::SizeAllCursor);
}

void TestCanvasItems::dragCorner_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QPointF>("grab");
    QTest::addColumn<QPointF>("delta");
    QTest::addColumn<QSizeF>("size");
    QTest::addColumn<QPointF>("pos");
    QTest::addColumn<QRectF>("stepReport");
    QTest::addColumn<int>("releaseReports");

    const QPointF corner(118, 69);
    const QPointF body(70, 45);
    QTest::newRow("bitmap outward") << "bitmap" << corner << QPointF(10, 2) << QSizeF(110, 55)
                                    << QPointF(15, 17.5) << QRectF(5, 2.5, 110, 55) << 2;
    QTest::newRow("bitmap one way in") << "bitmap" << corner << QPointF(10, -2) << QSizeF(96, 48)
                                       << QPointF(22, 21) << QRectF(-2, -1, 96, 48) << 2;
    QTest::newRow("svg outward") << "svg" << corner << QPointF(10, 2) << QSizeF(110, 55)
                                 << QPointF(15, 17.5) << QRectF(5, 2.5, 110, 55) << 1;
    QTest::newRow("svg one way in") << "svg" << corner << QPointF(10, -2) << QSizeF(96, 48)
                                    << QPointF(22, 21) << QRectF(-2, -1, 96, 48) << 1;
    QTest::newRow("bitmap body move") << "bitmap" << body << QPointF(10, 2) << QSizeF(100, 50)
                                      << QPointF(30, 22) << QRectF() << 1;
    QTest::newRow("svg body move") << "svg" << body << QPointF(10, 2) << QSizeF(100, 50)
                                   << QPointF(30, 22) << QRectF() << 1;
}

void TestCanvasItems::dragCorner()
{
    QFETCH(QString, kind);
    QFETCH(QPointF, grab);
    QFETCH(QPointF, delta);
    QFETCH(QSizeF, size);
    QFETCH(QPointF, pos);
    QFETCH(QRectF, stepReport);
    QFETCH(int, releaseReports);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 200, 100));
    PGraphicsScene scene;
    QGraphicsItem *item = addDesign(&scene, kind, QPointF(20, 20), "p.png");
    QSignalSpy reports(objectOf(item), SIGNAL(SigPosTag(QRectF)));
    SceneMouse mouse(&scene);

    mouse.hover(grab);
    mouse.press(grab);
    mouse.move(grab + delta);
    QCOMPARE(reports.count(), stepReport.isNull() ? 0 : 1);
    if (!stepReport.isNull())
        QCOMPARE(reports.takeFirst().at(0).toRectF(), stepReport);
    QCOMPARE(rectOf(item), QRectF(QPointF(0, 0), size));
    QCOMPARE(item->pos(), pos);
    if (kind == "bitmap") {
        // The reloaded picture has one pixel per millimetre.
        QCOMPARE(static_cast<PixmapItem *>(item)->pixmap().size(), size.toSize());
    }

    mouse.release(grab + delta);
    QCOMPARE(reports.count(), releaseReports);
    for (const QList<QVariant> &report : qAsConst(reports))
        QCOMPARE(report.at(0).toRectF(), QRectF(QPointF(0, 0), size));
    QVERIFY(!armed(item));
}

void TestCanvasItems::moveAtRectangleCorner_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QPointF>("target");
    QTest::addColumn<QPointF>("pos");

    // Grabbed at (70, 45) of an item standing at (20, 20).
    QTest::newRow("bitmap to 0,0 is dropped") << "bitmap" << QPointF(0, 0) << QPointF(20, 20);
    QTest::newRow("bitmap to 1,0 moves") << "bitmap" << QPointF(1, 0) << QPointF(-49, -25);
    QTest::newRow("svg to 0,0 moves") << "svg" << QPointF(0, 0) << QPointF(-50, -25);
}

void TestCanvasItems::moveAtRectangleCorner()
{
    QFETCH(QString, kind);
    QFETCH(QPointF, target);
    QFETCH(QPointF, pos);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 200, 100));
    PGraphicsScene scene;
    QGraphicsItem *item = addDesign(&scene, kind, QPointF(20, 20), "p.png");
    SceneMouse mouse(&scene);
    mouse.hover(QPointF(70, 45));
    mouse.press(QPointF(70, 45));
    mouse.move(target);
    QCOMPARE(item->pos(), pos);
    mouse.release(target);
}

void TestCanvasItems::doubleClick_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<int>("shown");

    QTest::newRow("bitmap shows its rectangle") << "bitmap" << 1;
    QTest::newRow("svg stays silent") << "svg" << 0;
}

void TestCanvasItems::doubleClick()
{
    QFETCH(QString, kind);
    QFETCH(int, shown);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 200, 100));
    PGraphicsScene scene;
    QGraphicsItem *item = addDesign(&scene, kind, QPointF(20, 20), "p.png");
    QSignalSpy spy(objectOf(item), SIGNAL(Sig_ShowPos(QRectF)));
    SceneMouse mouse(&scene);
    mouse.hover(QPointF(70, 45));
    mouse.doubleClick(QPointF(70, 45));
    QVERIFY(item->isSelected());
    QCOMPARE(spy.count(), shown);
    if (shown)
        QCOMPARE(spy.first().at(0).toRectF(), QRectF(0, 0, 100, 50));
}

void TestCanvasItems::paintInArea_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QPointF>("pos");
    QTest::addColumn<bool>("selected");
    QTest::addColumn<bool>("inside");

    // The items are 100 by 50, so x 70 puts the right edge at 170 mm and x 71 at 171.
    QTest::newRow("bitmap right edge 170") << "bitmap" << QPointF(70, 20) << true << true;
    QTest::newRow("bitmap right edge 171") << "bitmap" << QPointF(71, 20) << true << false;
    QTest::newRow("svg right edge 170") << "svg" << QPointF(70, 20) << true << true;
    QTest::newRow("svg right edge 171") << "svg" << QPointF(71, 20) << true << false;
    QTest::newRow("bitmap bottom edge 200") << "bitmap" << QPointF(10, 150) << true << true;
    QTest::newRow("bitmap bottom edge 201") << "bitmap" << QPointF(10, 151) << true << false;
    QTest::newRow("svg left of origin") << "svg" << QPointF(-1, 20) << true << false;
    QTest::newRow("bitmap outside unselected") << "bitmap" << QPointF(71, 20) << false << false;
    QTest::newRow("svg inside unselected") << "svg" << QPointF(10, 10) << false << true;
}

void TestCanvasItems::paintInArea()
{
    QFETCH(QString, kind);
    QFETCH(QPointF, pos);
    QFETCH(bool, selected);
    QFETCH(bool, inside);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 200, 100));
    PGraphicsScene scene;
    QGraphicsItem *item = addDesign(&scene, kind, pos, "p.png");
    item->setSelected(selected);
    QCOMPARE(scene.CurrentItemPos(), PGraphicsScene::NoPosition);

    const QImage image = renderScene(&scene);
    QCOMPARE(inArea(item), inside);
    const int red = countColour(image, FrameRed);
    const int green = countColour(image, FrameGreen);
    QCOMPARE(red > 0, selected && !inside);
    QCOMPARE(green > 0, selected && inside);
    QCOMPARE(scene.CurrentItemPos(), inside ? pos : PGraphicsScene::NoPosition);
}

void TestCanvasItems::resetRect_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QRectF>("given");
    QTest::addColumn<QRectF>("expected");

    QTest::newRow("svg drops the origin") << "svg" << QRectF(30, 40, 100, 50) << QRectF(0, 0, 100, 50);
    QTest::newRow("bitmap keeps the origin") << "bitmap" << QRectF(30, 40, 100, 50) << QRectF(30, 40, 100, 50);
}

void TestCanvasItems::resetRect()
{
    QFETCH(QString, kind);
    QFETCH(QRectF, given);
    QFETCH(QRectF, expected);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 200, 100));
    PGraphicsScene scene;
    QGraphicsItem *item = addDesign(&scene, kind, QPointF(20, 20), "p.png");
    QSignalSpy reports(objectOf(item), SIGNAL(SigPosTag(QRectF)));
    if (kind == "bitmap") {
        static_cast<PixmapItem *>(item)->ResetRect(given);
        QCOMPARE(static_cast<PixmapItem *>(item)->pixmap().size(), given.size().toSize());
    } else {
        static_cast<SvgItem *>(item)->ResetRect(given);
    }
    QCOMPARE(rectOf(item), expected);
    QCOMPARE(item->pos(), QPointF(20, 20));
    QCOMPARE(reports.count(), 0);
}

void TestCanvasItems::reloadFollowsFile_data()
{
    QTest::addColumn<QSize>("newPicture");
    QTest::addColumn<QRgb>("newColour");
    QTest::addColumn<QSizeF>("shown");
    QTest::addColumn<bool>("shows");

    // The item shows a blue 200 x 100 picture at 100 x 50 before the file changes.
    QTest::newRow("same size, other colour") << QSize(200, 100) << qRgb(255, 255, 0) << QSizeF(100, 50) << true;
    QTest::newRow("smaller picture") << QSize(20, 10) << qRgb(0, 255, 255) << QSizeF(100, 50) << true;
    QTest::newRow("unchanged, shown larger") << QSize(200, 100) << qRgb(0, 0, 255) << QSizeF(180, 90) << true;
    QTest::newRow("unchanged, shown smaller") << QSize(200, 100) << qRgb(0, 0, 255) << QSizeF(10, 5) << true;
    QTest::newRow("file gone") << QSize() << qRgb(0, 0, 0) << QSizeF(100, 50) << false;
    QTest::newRow("file no longer a picture") << QSize(-1, -1) << qRgb(0, 0, 0) << QSizeF(100, 50) << false;
}

void TestCanvasItems::reloadFollowsFile()
{
    QFETCH(QSize, newPicture);
    QFETCH(QRgb, newColour);
    QFETCH(QSizeF, shown);
    QFETCH(bool, shows);

    ScopedWorkDir dir;
    QVERIFY(writePicture("p.png", 200, 100, QColor(0, 0, 255)));
    PGraphicsScene scene;
    auto *item = static_cast<PixmapItem *>(addDesign(&scene, "bitmap", QPointF(0, 0), "p.png"));
    QCOMPARE(item->pixmap().toImage().pixel(50, 25), qRgb(0, 0, 255));

    if (newPicture.isEmpty() && newPicture.width() == -1)
        QVERIFY(writeText("p.png", "garbage"));
    else if (newPicture.isEmpty())
        QVERIFY(QFile::remove("p.png"));
    else
        QVERIFY(writePicture("p.png", newPicture.width(), newPicture.height(), QColor(newColour)));

    item->ResetRect(QRectF(QPointF(0, 0), shown));
    QCOMPARE(item->rect(), QRectF(QPointF(0, 0), shown));
    QCOMPARE(item->pixmap().isNull(), !shows);
    if (shows) {
        const QImage image = item->pixmap().toImage();
        QCOMPARE(image.size(), shown.toSize());
        QCOMPARE(image.pixel(image.width() / 2, image.height() / 2), newColour);
    }
}

void TestCanvasItems::outlineBounds_data()
{
    QTest::addColumn<QVector<QPolygonF>>("outlines");
    QTest::addColumn<QRectF>("bounds");

    QTest::newRow("nothing") << QVector<QPolygonF>{} << QRectF();
    QTest::newRow("only empty outlines") << QVector<QPolygonF>{QPolygonF(), QPolygonF()} << QRectF();
    QTest::newRow("one point") << QVector<QPolygonF>{QPolygonF(QVector<QPointF>{{3, 4}})} << QRectF(3, 4, 0, 0);
    QTest::newRow("two outlines, negative corner")
        << QVector<QPolygonF>{QPolygonF(QVector<QPointF>{{10, 20}, {30, 5}}), QPolygonF(), QPolygonF(QVector<QPointF>{{-2, 8}, {4, 40}})}
        << QRectF(-2, 5, 32, 35);
}

void TestCanvasItems::outlineBounds()
{
    QFETCH(QVector<QPolygonF>, outlines);
    QFETCH(QRectF, bounds);

    SvgPolygons polygons;
    QSignalSpy spy(&polygons, SIGNAL(SigRect(QRectF)));
    polygons.setPolygons(outlines);
    QCOMPARE(spy.count(), 1);
    const QRectF reported = spy.first().at(0).toRectF();
    QCOMPARE(reported.topLeft(), bounds.topLeft());
    QCOMPARE(reported.size(), bounds.size());
}

TARNWELL_TEST_MAIN(TestCanvasItems)
#include "tst_canvasitems.moc"
