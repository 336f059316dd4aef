// Tests of the canvas view and form: wheel zoom, the hidden rulers, the plain
// viewport without OpenGL, the geometry reports and the files dropped on the canvas.
#include "testsupport.h"
#include "canvastesthelpers.h"

#include "backgrqgraphicsitem.h"
#include "graph.h"
#include "pgraphicsscene.h"
#include "pixmapitem.h"
#include "qtcornerbox.h"
#include "qtrulebar.h"
#include "renderform.h"

#include <QGLWidget>
#include <QMimeData>
#include <QMouseEvent>
#include <QSignalSpy>
#include <QUrl>
#include <QWheelEvent>

namespace {

void wheel(QGraphicsView *view, const QPoint &pos, int delta)
{
    QWheelEvent ev(QPointF(pos), QPointF(view->viewport()->mapToGlobal(pos)), QPoint(),
                   QPoint(0, delta), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view->viewport(), &ev);
}

void dropOn(QGraphicsView *view, const QPointF &scenePoint, const QList<QUrl> &urls)
{
    QMimeData mime;
    mime.setUrls(urls);
    const QPoint p = view->mapFromScene(scenePoint);
    QDragEnterEvent enter(p, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &enter);
    QDragMoveEvent move(p, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &move);
    QDropEvent drop(p, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(view->viewport(), &drop);
}

PixmapItem *firstBitmap(QGraphicsScene *scene)
{
    for (QGraphicsItem *item : scene->items()) {
        if (item->type() == PixmapItem::Type)
            return static_cast<PixmapItem *>(item);
    }
    return nullptr;
}

} // namespace

class TestCanvasView : public QObject
{
    Q_OBJECT
private slots:
    void wheelZoom_data();
    void wheelZoom();
    void rulersStayHidden();
    void plainViewportWithoutOpenGL();
    void geometryReports_data();
    void geometryReports();
    void droppedFiles_data();
    void droppedFiles();
    void deleteFromKeyboard();
};

void TestCanvasView::wheelZoom_data()
{
    QTest::addColumn<QList<int>>("deltas");
    QTest::addColumn<bool>("handDrag");
    QTest::addColumn<double>("scale");

    QTest::newRow("down at the start scale") << QList<int>{-120} << true << 1.2;
    QTest::newRow("up then down") << QList<int>{120, -120} << true << 1.2;
    QTest::newRow("up once") << QList<int>{120} << true << 1.44;
    QTest::newRow("up twice") << QList<int>{120, 120} << true << 1.728;
    QTest::newRow("never below the start") << QList<int>{120, -120, -120, -120} << true << 1.2;
    QTest::newRow("no zoom without hand drag") << QList<int>{120} << false << 1.2;
}

void TestCanvasView::wheelZoom()
{
    QFETCH(QList<int>, deltas);
    QFETCH(bool, handDrag);
    QFETCH(double, scale);

    PGraphicsScene scene;
    Graph view;
    view.setScene(&scene);
    view.setDragMode(handDrag ? QGraphicsView::ScrollHandDrag : QGraphicsView::NoDrag);
    view.resize(150, 150);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCOMPARE(view.transform().m11(), 1.2);

    const QPoint mouse(70, 60);
    const QPointF underMouse = view.mapToScene(mouse);
    for (int delta : deltas)
        wheel(&view, mouse, delta);
    QCOMPARE(view.transform().m11(), scale);
    QCOMPARE(view.transform().m22(), scale);
    if (scale > 1.2) {
        // The scene point that was under the mouse is still there, to the pixel.
        const QPoint now = view.mapFromScene(underMouse);
        QVERIFY2((now - mouse).manhattanLength() <= 2,
                 qPrintable(QString("%1,%2").arg(now.x()).arg(now.y())));
    }
}

void TestCanvasView::rulersStayHidden()
{
    PGraphicsScene scene;
    Graph view;
    view.setScene(&scene);
    view.resize(300, 300);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));

    QVERIFY(!view.horizontalRuler()->isVisible());
    QVERIFY(!view.verticalRuler()->isVisible());
    QCOMPARE(view.horizontalRuler()->orientation(), Qt::Horizontal);
    QCOMPARE(view.verticalRuler()->orientation(), Qt::Vertical);
    QVERIFY(view.cornerBox()->isVisible());
    QCOMPARE(view.cornerBox()->geometry(), QRect(0, 0, 16, 16));

    QMouseEvent move(QEvent::MouseMove, QPointF(40, 30), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(view.viewport(), &move);
    QCOMPARE(view.horizontalRuler()->cursorPos(), QPoint(40, 30));
    QCOMPARE(view.verticalRuler()->cursorPos(), QPoint(40, 30));

    view.resize(320, 280);
    wheel(&view, QPoint(50, 50), 120);
    QVERIFY(!view.horizontalRuler()->isVisible());
    QVERIFY(!view.verticalRuler()->isVisible());
    QCOMPARE(view.cornerBox()->geometry(), QRect(0, 0, 16, 16));
}

void TestCanvasView::plainViewportWithoutOpenGL()
{
    if (QGuiApplication::platformName() != "offscreen")
        QSKIP("needs the offscreen platform, which offers no OpenGL context");
    RenderForm form;
    form.resize(586, 565);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    QVERIFY(!form.hasOpenGLViewport());
    QVERIFY(!qobject_cast<QGLWidget *>(form.view()->viewport()));
    QCOMPARE(form.view()->scene(), static_cast<QGraphicsScene *>(form.scene()));
    QCOMPARE(form.view()->dragMode(), QGraphicsView::ScrollHandDrag);

    // Every repaint without OpenGL says so in the log.
    QTest::ignoreMessage(QtWarningMsg,
                         "OpenGLScene: drawBackground needs a QGLWidget to be set as viewport on the graphics view");
    form.view()->viewport()->repaint();
}

void TestCanvasView::geometryReports_data()
{
    QTest::addColumn<QString>("gesture");
    QTest::addColumn<QList<QRectF>>("reports");

    // The 340 by 100 picture lands at (0, 0) as 170 by 50, then is moved to (20, 20).
    QTest::newRow("load") << "load" << QList<QRectF>{QRectF(0, 0, 170, 50)};
    QTest::newRow("plain move") << "move" << QList<QRectF>{QRectF(0, 0, 170, 50)};
    QTest::newRow("corner resize")
        << "resize"
        << QList<QRectF>{QRectF(-8.5, -2.5, 153, 45), QRectF(0, 0, 153, 45), QRectF(0, 0, 153, 45)};
    QTest::newRow("typed width") << "width" << QList<QRectF>{};
}

void TestCanvasView::geometryReports()
{
    QFETCH(QString, gesture);
    QFETCH(QList<QRectF>, reports);

    ScopedWorkDir dir;
    QVERIFY(writePicture("wide.png", 340, 100));
    RenderForm form;
    QSignalSpy spy(&form, SIGNAL(SigRect(QRectF)));
    form.LoadItemFromFile("wide.png", 0);
    PixmapItem *item = firstBitmap(form.scene());
    QVERIFY(item);
    if (gesture != "load") {
        item->setPos(20, 20);
        spy.clear();
    }

    SceneMouse mouse(form.scene());
    if (gesture == "move") {
        mouse.hover(QPointF(60, 40));
        mouse.press(QPointF(60, 40));
        mouse.move(QPointF(70, 50));
        mouse.release(QPointF(70, 50));
        QCOMPARE(item->pos(), QPointF(30, 30));
    } else if (gesture == "resize") {
        // Inward by 5 mm down: factor 0.9 about the centre.
        mouse.hover(QPointF(188, 68));
        mouse.press(QPointF(188, 68));
        mouse.move(QPointF(190, 63));
        mouse.release(QPointF(190, 63));
        QCOMPARE(item->pos(), QPointF(28.5, 22.5));
    } else if (gesture == "width") {
        form.SlotLineEditScale(85);
        QCOMPARE(item->rect(), QRectF(20, 20, 85, 25));
        QCOMPARE(item->pixmap().size(), QSize(85, 25));
    }

    QCOMPARE(spy.count(), reports.size());
    for (int i = 0; i < reports.size(); ++i)
        QCOMPARE(spy.at(i).at(0).toRectF(), reports.at(i));
}

void TestCanvasView::droppedFiles_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<bool>("onBackground");
    QTest::addColumn<QStringList>("reported");

    QTest::newRow("two files report the first")
        << QStringList{"/tmp/first.png", "/tmp/second.svg"} << true << QStringList{"/tmp/first.png"};
    QTest::newRow("one file") << QStringList{"/tmp/only.svg"} << true << QStringList{"/tmp/only.svg"};
    QTest::newRow("no urls") << QStringList{} << true << QStringList{};
    QTest::newRow("outside the background picture")
        << QStringList{"/tmp/first.png"} << false << QStringList{};
}

void TestCanvasView::droppedFiles()
{
    QFETCH(QStringList, files);
    QFETCH(bool, onBackground);
    QFETCH(QStringList, reported);

    RenderForm form;
    form.resize(586, 565);
    form.show();
    QVERIFY(QTest::qWaitForWindowExposed(&form));
    QSignalSpy spy(&form, SIGNAL(SigPixitem(QString)));

    QList<QUrl> urls;
    for (const QString &file : files)
        urls << QUrl::fromLocalFile(file);
    const QPointF target = onBackground ? form.scene()->backgroundItem()->sceneBoundingRect().center()
                                        : QPointF(120, 150);
    dropOn(form.view(), target, urls);

    QStringList got;
    for (const QList<QVariant> &args : qAsConst(spy))
        got << args.at(0).toString();
    QCOMPARE(got, reported);
}

void TestCanvasView::deleteFromKeyboard()
{
    ScopedWorkDir dir;
    QVERIFY(writePicture("wide.png", 340, 100));
    RenderForm form;
    form.resize(586, 565);
    form.show();
    form.activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(&form));
    form.LoadItemFromFile("wide.png", 0);
    PixmapItem *item = firstBitmap(form.scene());
    QVERIFY(item);

    // A click on the design gives the canvas the keyboard, as a user would do it.
    QTest::mouseClick(form.view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                      form.view()->mapFromScene(QPointF(85, 25)));
    QWidget *focus = QApplication::focusWidget();
    QVERIFY(focus);
    QVERIFY(item->isSelected());
    QTest::keyClick(focus, Qt::Key_Delete);
    QCOMPARE(item->scene(), static_cast<QGraphicsScene *>(nullptr));
    QVERIFY(!form.HasSelectedItem());
    QCOMPARE(form.CurrentItemPos(), PGraphicsScene::NoPosition);
}

TARNWELL_TEST_MAIN(TestCanvasView)
#include "tst_canvasview.moc"
