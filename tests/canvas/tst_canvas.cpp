// Tests of the design canvas driven by scene, mouse and key events: corner zones, drags, in-area frames,
// reloads, loaded and bad files, the cleaned "tmp.svg", clearing, keys, wheel zoom, reports and dropped files.
#include "testsupport.h"

#include "backgrqgraphicsitem.h"
#include "graph.h"
#include "pgraphicsscene.h"
#include "pixmapitem.h"
#include "qtcornerbox.h"
#include "qtrulebar.h"
#include "renderform.h"
#include "svgitem.h"
#include "svgpolygons.h"

#include <QGLWidget>
#include <QGraphicsLineItem>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsTextItem>
#include <QTextDocument>
#include <QGraphicsSceneMouseEvent>
#include <QMimeData>
#include <QPainter>
#include <QSignalSpy>
#include <QSvgRenderer>

namespace {

// Plays one mouse gesture on a scene, keeping the press point and the last point
// the way QGraphicsView fills them in.
class SceneMouse
{
public:
    explicit SceneMouse(QGraphicsScene *scene) : m_scene(scene) {}

    // Given an item, the hover goes to it whatever lies under the point.
    void hover(const QPointF &p, QGraphicsItem *item = nullptr)
    {
        QGraphicsSceneHoverEvent ev(QEvent::GraphicsSceneHoverMove);
        ev.setScenePos(p);
        ev.setLastScenePos(m_last);
        if (item) {
            ev.setPos(item->mapFromScene(p));
            m_scene->sendEvent(item, &ev);
        } else {
            QApplication::sendEvent(m_scene, &ev);
        }
        m_last = p;
    }
    void press(const QPointF &p)
    {
        m_down = p;
        send(QEvent::GraphicsSceneMousePress, p, Qt::LeftButton, Qt::LeftButton);
    }
    void move(const QPointF &p) { send(QEvent::GraphicsSceneMouseMove, p, Qt::NoButton, Qt::LeftButton); }
    void release(const QPointF &p) { send(QEvent::GraphicsSceneMouseRelease, p, Qt::LeftButton, Qt::NoButton); }
    void drag(const QPointF &from, const QPointF &to)
    {
        hover(from);
        press(from);
        move(to);
        release(to);
    }
    void send(QEvent::Type type, const QPointF &p, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QGraphicsSceneMouseEvent ev(type);
        ev.setScenePos(p);
        ev.setLastScenePos(m_last);
        ev.setButtonDownScenePos(Qt::LeftButton, m_down);
        ev.setButton(button);
        ev.setButtons(buttons);
        QApplication::sendEvent(m_scene, &ev);
        m_last = p;
    }

private:
    QGraphicsScene *m_scene;
    QPointF m_down;
    QPointF m_last;
};

// "picture:WxH" makes a picture of that size and colour; anything else is written as it stands.
bool writeInput(const QString &path, const QByteArray &content, QRgb colour = qRgb(0, 0, 255))
{
    if (content.startsWith("picture:")) {
        const QList<QByteArray> size = content.mid(8).split('x');
        QImage image(size.at(0).toInt(), size.at(1).toInt(), QImage::Format_RGB32);
        image.fill(colour);
        return image.save(path);
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) && file.write(content) == content.size();
}

// A drawing of one w x h rectangle, with attrs after the namespace.
QByteArray svgText(const QByteArray &attrs, int w, int h)
{
    return "<svg xmlns=\"http://www.w3.org/2000/svg\"" + attrs + "><rect width=\"" + QByteArray::number(w)
           + "\" height=\"" + QByteArray::number(h) + "\"/></svg>";
}

// Renders the scene around the work area at 2 pixels per mm, running every item's paint.
QImage renderScene(QGraphicsScene *scene)
{
    QImage image(520, 580, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    scene->render(&painter, QRectF(image.rect()), QRectF(-30, -30, 260, 290));
    return image;
}

bool hasColour(const QImage &image, QRgb colour)
{
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if ((image.pixel(x, y) & 0xffffff) == (colour & 0xffffff))
                return true;
    return false;
}

// Runs f on the design item as the class it is.
template <typename F>
auto onItem(QGraphicsItem *item, F f)
{
    if (item->type() == PixmapItem::Type)
        return f(static_cast<PixmapItem *>(item));
    return f(static_cast<SvgItem *>(item));
}

QRectF rectOf(QGraphicsItem *item)
{
    return onItem(item, [](auto *d) { return d->rect(); });
}
bool armed(QGraphicsItem *item)
{
    return onItem(item, [](auto *d) { return d->isResizeArmed(); });
}
QObject *objectOf(QGraphicsItem *item)
{
    return onItem(item, [](auto *d) -> QObject * { return d; });
}

QList<QGraphicsItem *> designs(QGraphicsScene *scene)
{
    QList<QGraphicsItem *> found;
    for (QGraphicsItem *item : scene->items(Qt::AscendingOrder)) {
        if (item->type() == PixmapItem::Type || item->type() == SvgItem::Type)
            found << item;
    }
    return found;
}

// A focusable item that records the keys reaching it.
struct KeyRecorder : QGraphicsRectItem
{
    KeyRecorder() : QGraphicsRectItem(0, 0, 10, 10) { setFlag(ItemIsFocusable); }
    void keyPressEvent(QKeyEvent *) override { ++keys; }
    int keys = 0;
};

// A fresh folder holding the blue picture "p.png"; a failed write shows in the checks after.
struct Folder
{
    explicit Folder(const QByteArray &picture = "picture:340x100") { writeInput("p.png", picture); }
    ScopedWorkDir dir;
};

bool shown(QWidget *widget, const QSize &size = QSize(586, 565))
{
    widget->resize(size);
    widget->show();
    return QTest::qWaitForWindowExposed(widget);
}

void wheel(QGraphicsView *view, const QPoint &pos, int delta)
{
    QWheelEvent ev(QPointF(pos), QPointF(view->viewport()->mapToGlobal(pos)), QPoint(), QPoint(0, delta), Qt::NoButton,
                   Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(view->viewport(), &ev);
}

// A scene in a fresh folder holding a 200 x 100 picture.
struct Canvas : Folder
{
    Canvas() : Folder("picture:200x100") {}
    PGraphicsScene scene;
    SceneMouse mouse{&scene};

    // A design of 100 by 50 mm at pos.
    QGraphicsItem *add(bool bitmap, const QPointF &pos = QPointF(20, 20))
    {
        QGraphicsItem *item = bitmap ? static_cast<QGraphicsItem *>(new PixmapItem) : new SvgItem;
        if (bitmap)
            static_cast<PixmapItem *>(item)->setFilePath("p.png");
        else
            static_cast<SvgItem *>(item)->setSharedRenderer(
                new QSvgRenderer(svgText(" width=\"100\" height=\"50\"", 100, 50), &scene));
        onItem(item, [this](auto *d) {
            d->setParent(&scene);
            d->ResetRect(QRectF(0, 0, 100, 50));
        });
        scene.addItem(item);
        item->setPos(pos);
        return item;
    }
};

}  // namespace

class TestCanvas : public QObject
{
    Q_OBJECT
private slots:
    void cornerZone_data()
    {
        // clang-format off
        QTest::addColumn<bool>("throughView");
        QTest::addColumn<bool>("bitmap");
        QTest::addColumn<QPointF>("offset");   // from the bottom-right corner at (120, 70)
        QTest::addColumn<bool>("armedExpected");

        // Hovers sent to the item itself: a zone of 20 for the bitmap, 8 for the svg.
        QTest::newRow("bitmap 10 right of corner") << false << true << QPointF(10, 0) << true;
        QTest::newRow("svg 10 right of corner") << false << false << QPointF(10, 0) << false;
        QTest::newRow("bitmap 19.9 left") << false << true << QPointF(-19.9, 0) << true;
        QTest::newRow("bitmap exactly 20 left") << false << true << QPointF(-20, 0) << false;
        QTest::newRow("svg 7 out both ways") << false << false << QPointF(7, 7) << true;
        QTest::newRow("svg exactly 8 up") << false << false << QPointF(0, -8) << false;
        // Through a view, whose scene has to find the item under a point outside its rectangle.
        QTest::newRow("view: bitmap 10 right") << true << true << QPointF(10, 0) << true;
        QTest::newRow("view: bitmap 15 out both ways") << true << true << QPointF(15, 15) << true;
        QTest::newRow("view: bitmap 25 right") << true << true << QPointF(25, 0) << false;
        QTest::newRow("view: svg on its handle") << true << false << QPointF(4, 4) << true;
        QTest::newRow("view: svg 7 right") << true << false << QPointF(7, 0) << true;
        QTest::newRow("view: svg 10 right") << true << false << QPointF(10, 0) << false;
        // clang-format on
    }

    void cornerZone()
    {
        QFETCH(bool, throughView);
        QFETCH(bool, bitmap);
        QFETCH(QPointF, offset);
        QFETCH(bool, armedExpected);

        Canvas c;
        QGraphicsItem *item = c.add(bitmap);
        const QPointF corner = QPointF(120, 70) + offset;
        // Through the view, the mouse goes as a user moves it: events to the viewport, which
        // the view turns into hovers and presses for whatever item the scene finds under them.
        QGraphicsView view(&c.scene);
        auto send = [&](QEvent::Type type, const QPointF &at, Qt::MouseButton button, Qt::MouseButtons buttons) {
            const QPoint p = view.mapFromScene(at);
            QMouseEvent ev(type, p, view.viewport()->mapToGlobal(p), button, buttons, Qt::NoModifier);
            QApplication::sendEvent(view.viewport(), &ev);
        };
        if (throughView) {
            QVERIFY(shown(&view));
            send(QEvent::MouseMove, QPointF(60, 40), Qt::NoButton, Qt::NoButton);  // over the body
            QVERIFY(!armed(item));
            send(QEvent::MouseMove, corner, Qt::NoButton, Qt::NoButton);
        } else {
            // Armed first from inside, so a point outside the zone must actively disarm.
            c.mouse.hover(QPointF(119, 69), item);
            QVERIFY(armed(item));
            c.mouse.hover(corner, item);
        }
        QCOMPARE(armed(item), armedExpected);
        if (!throughView)
            QCOMPARE(item->cursor().shape(), armedExpected ? Qt::SizeFDiagCursor : Qt::SizeAllCursor);
        if (!throughView || !armedExpected)
            return;
        QCOMPARE(item->cursor().shape(), Qt::SizeFDiagCursor);
        // Pressing there and dragging outward grows the design instead of moving it.
        send(QEvent::MouseButtonPress, corner, Qt::LeftButton, Qt::LeftButton);
        send(QEvent::MouseMove, corner + QPointF(20, 20), Qt::NoButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, corner + QPointF(20, 20), Qt::LeftButton, Qt::NoButton);
        QVERIFY2(rectOf(item).width() > 110, qPrintable(QString::number(rectOf(item).width())));
    }

    void drag_data()
    {
        // clang-format off
        QTest::addColumn<bool>("bitmap");
        QTest::addColumn<QPointF>("to");
        QTest::addColumn<QRectF>("stepReport");
        QTest::addColumn<QPointF>("pos");
        QTest::addColumn<int>("releaseReports");

        auto row = [](const char *name, bool bitmap, QPointF to, QRectF step, QPointF pos, int releases) {
            QTest::newRow(name) << bitmap << to << step << pos << releases;
        };
        // The item stands at (20, 20). A resize grabs the corner zone at (118, 69) and
        // moves by (+10, +2) or (+10, -2); a move grabs the body at (70, 45).
        row("bitmap corner +10,+2", true, {128, 71}, {5, 2.5, 110, 55}, {15, 17.5}, 2);
        row("bitmap corner +10,-2", true, {128, 67}, {-2, -1, 96, 48}, {22, 21}, 2);
        row("svg corner +10,+2", false, {128, 71}, {5, 2.5, 110, 55}, {15, 17.5}, 1);
        row("svg corner +10,-2", false, {128, 67}, {-2, -1, 96, 48}, {22, 21}, 1);
        // The bitmap drops a move reported exactly at its rectangle's corner (0, 0).
        row("bitmap body to 0,0 dropped", true, {0, 0}, {}, {20, 20}, 1);
        row("bitmap body to 1,0 moves", true, {1, 0}, {}, {-49, -25}, 1);
        row("svg body to 0,0 moves", false, {0, 0}, {}, {-50, -25}, 1);
        // clang-format on
    }

    void drag()
    {
        QFETCH(bool, bitmap);
        QFETCH(QPointF, to);
        QFETCH(QRectF, stepReport);
        QFETCH(QPointF, pos);
        QFETCH(int, releaseReports);

        Canvas c;
        QGraphicsItem *item = c.add(bitmap);
        QSignalSpy reports(objectOf(item), SIGNAL(SigPosTag(QRectF)));
        const QPointF grab = stepReport.isNull() ? QPointF(70, 45) : QPointF(118, 69);
        c.mouse.hover(grab);
        c.mouse.press(grab);
        c.mouse.move(to);
        QCOMPARE(reports.count(), stepReport.isNull() ? 0 : 1);
        const QSizeF size = stepReport.isNull() ? QSizeF(100, 50) : stepReport.size();
        if (!stepReport.isNull())
            QCOMPARE(reports.takeFirst().at(0).toRectF(), stepReport);
        QCOMPARE(rectOf(item), QRectF(QPointF(0, 0), size));
        QCOMPARE(item->pos(), pos);
        if (bitmap)  // the reloaded picture has one pixel per millimetre
            QCOMPARE(static_cast<PixmapItem *>(item)->pixmap().size(), size.toSize());

        c.mouse.release(to);
        QCOMPARE(reports.count(), releaseReports);
        for (const QList<QVariant> &report : qAsConst(reports))
            QCOMPARE(report.at(0).toRectF(), QRectF(QPointF(0, 0), size));
        // The release disarms; the hover the scene sends after it arms again only while the
        // mouse still rests in the corner zone, outside the rectangle as well as inside.
        const QPointF corner = item->mapToScene(rectOf(item).bottomRight());
        const double zone = bitmap ? 20 : 8;
        QCOMPARE(armed(item), qAbs(to.x() - corner.x()) < zone && qAbs(to.y() - corner.y()) < zone);

        // A double click selects; the bitmap shows its rectangle, the svg stays silent.
        QSignalSpy shows(objectOf(item), SIGNAL(Sig_ShowPos(QRectF)));
        const QPointF centre = item->mapToScene(rectOf(item).center());
        c.mouse.send(QEvent::GraphicsSceneMouseDoubleClick, centre, Qt::LeftButton, Qt::LeftButton);
        c.mouse.release(centre);
        QVERIFY(item->isSelected());
        QCOMPARE(shows.count(), bitmap ? 1 : 0);
        QCOMPARE(shows.value(0).value(0).toRectF(), bitmap ? rectOf(item) : QRectF());
    }

    void paintInArea_data()
    {
        // clang-format off
        QTest::addColumn<bool>("bitmap");
        QTest::addColumn<QPointF>("pos");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("inside");

        // The items are 100 by 50, so x 70 puts the right edge at 170 mm and x 71 at 171.
        QTest::newRow("bitmap right edge 170") << true << QPointF(70, 20) << true << true;
        QTest::newRow("bitmap right edge 171") << true << QPointF(71, 20) << true << false;
        QTest::newRow("svg right edge 170") << false << QPointF(70, 20) << true << true;
        QTest::newRow("svg right edge 171") << false << QPointF(71, 20) << true << false;
        QTest::newRow("bitmap bottom edge 200") << true << QPointF(10, 150) << true << true;
        QTest::newRow("bitmap bottom edge 201") << true << QPointF(10, 151) << true << false;
        QTest::newRow("svg left of origin") << false << QPointF(-1, 20) << true << false;
        QTest::newRow("bitmap outside unselected") << true << QPointF(71, 20) << false << false;
        // clang-format on
    }

    void paintInArea()
    {
        QFETCH(bool, bitmap);
        QFETCH(QPointF, pos);
        QFETCH(bool, selected);
        QFETCH(bool, inside);

        Canvas c;
        QGraphicsItem *item = c.add(bitmap, pos);
        item->setSelected(selected);
        const QImage image = renderScene(&c.scene);
        QCOMPARE(onItem(item, [](auto *d) { return d->isInArea(); }), inside);
        QCOMPARE(hasColour(image, qRgb(255, 0, 0)), selected && !inside);
        QCOMPARE(hasColour(image, qRgb(67, 240, 20)), selected && inside);
        QCOMPARE(c.scene.CurrentItemPos(), inside ? pos : PGraphicsScene::NoPosition);
    }

    // The drawing is kept as a picture at the view's scale: moved, it shows the same pixels
    // as the outlines drawn there; a corner drag stretches it, and the release draws it sharp.
    void svgPaintKept()
    {
        Canvas c;
        auto *item = static_cast<SvgItem *>(c.add(false, QPointF(20, 20)));
        item->setSharedRenderer(new QSvgRenderer(
            QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"100\" "
                       "height=\"50\"><circle cx=\"30\" cy=\"25\" r=\"20\"/><path d=\"M50 5 L95 45\" stroke=\"black\" "
                       "stroke-width=\"3\"/></svg>"),
            &c.scene));
        // The outlines drawn straight over the rest of the scene as renderScene shows it (2 px/mm from -30, -30).
        auto drawn = [item, &c] {
            item->hide();
            QImage image = renderScene(&c.scene);
            item->show();
            QPainter painter(&image);
            painter.translate(60, 60);
            painter.scale(2, 2);
            painter.translate(item->pos());
            item->renderer()->render(&painter, item->frameRect());
            return image;
        };
        QCOMPARE(renderScene(&c.scene), drawn());
        item->moveBy(12.5, 7);
        QCOMPARE(renderScene(&c.scene), drawn());

        c.mouse.hover(QPointF(130.5, 75.5));
        QVERIFY(item->isResizeArmed());
        c.mouse.press(QPointF(130.5, 75.5));
        c.mouse.move(QPointF(150.5, 95.5));
        QCOMPARE(item->rect(), QRectF(0, 0, 140, 70));
        const QImage stretched = renderScene(&c.scene);
        QVERIFY(hasColour(stretched, qRgb(0, 0, 0)));
        c.mouse.release(QPointF(150.5, 95.5));
        QCOMPARE(renderScene(&c.scene), drawn());
    }

    void reloadFollowsFile_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("file");
        QTest::addColumn<QRgb>("colour");
        QTest::addColumn<QSizeF>("shown");

        // The item shows the blue 200 x 100 picture at 100 x 50 before the file changes.
        const QByteArray same("picture:200x100");
        QTest::newRow("same size, other colour") << same << qRgb(255, 255, 0) << QSizeF(100, 50);
        QTest::newRow("unchanged, shown larger") << same << qRgb(0, 0, 255) << QSizeF(180, 90);
        QTest::newRow("unchanged, shown smaller") << same << qRgb(0, 0, 255) << QSizeF(10, 5);
        QTest::newRow("file gone") << QByteArray() << qRgb(0, 0, 0) << QSizeF(100, 50);
        QTest::newRow("file no longer a picture") << QByteArray("garbage") << qRgb(0, 0, 0) << QSizeF(100, 50);
        // clang-format on
    }

    void reloadFollowsFile()
    {
        QFETCH(QByteArray, file);
        QFETCH(QRgb, colour);
        QFETCH(QSizeF, shown);

        Canvas c;
        auto *item = static_cast<PixmapItem *>(c.add(true, QPointF(0, 0)));
        QCOMPARE(item->pixmap().toImage().pixel(50, 25), qRgb(0, 0, 255));
        QVERIFY(file.isEmpty() ? QFile::remove("p.png") : writeInput("p.png", file, colour));
        item->ResetRect(QRectF(QPointF(0, 0), shown));
        const QImage image = item->pixmap().toImage();
        QCOMPARE(image.isNull(), !file.startsWith("picture:"));
        if (!image.isNull()) {
            QCOMPARE(image.size(), shown.toSize());
            QCOMPARE(image.pixel(image.width() / 2, image.height() / 2), colour);
        }
    }

    void outlineBounds_data()
    {
        // clang-format off
        QTest::addColumn<QVector<QPolygonF>>("outlines");
        QTest::addColumn<QRectF>("bounds");

        QTest::newRow("only empty outlines") << QVector<QPolygonF>{QPolygonF(), QPolygonF()} << QRectF();
        QTest::newRow("one point") << QVector<QPolygonF>{QPolygonF({{3, 4}})} << QRectF(3, 4, 0, 0);
        QTest::newRow("two outlines, negative corner")
            << QVector<QPolygonF>{QPolygonF(QVector<QPointF>{{10, 20}, {30, 5}}), QPolygonF(),
                                  QPolygonF(QVector<QPointF>{{-2, 8}, {4, 40}})}
            << QRectF(-2, 5, 32, 35);
        // clang-format on
    }

    void outlineBounds()
    {
        QFETCH(QVector<QPolygonF>, outlines);
        QFETCH(QRectF, bounds);

        SvgPolygons polygons;
        QSignalSpy spy(&polygons, SIGNAL(SigRect(QRectF)));
        polygons.setPolygons(outlines);
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first().at(0).toRectF(), bounds);
    }

    void load_data()
    {
        // clang-format off
        QTest::addColumn<bool>("cleaning");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QRectF>("rect");
        QTest::addColumn<QRectF>("reported");
        QTest::addColumn<QByteArray>("tmpSvg");

        auto row = [](const char *name, bool cleaning, const char *file, const QByteArray &content, QRectF rect,
                      QRectF reported, const QByteArray &tmpSvg = QByteArray()) {
            QTest::newRow(name) << cleaning << QString(file) << content << rect << reported << tmpSvg;
        };
        const QByteArray mmSvg = svgText(" width=\"100mm\" height=\"50mm\" viewBox=\"0 0 10 5\"", 10, 5);
        const QByteArray plainSvg = svgText(" width=\"50\" height=\"100\" viewBox=\"0 0 5 10\"", 5, 10);
        row("wide bitmap", true, "p.png", "picture:340x100", {0, 0, 170, 50}, {0, 0, 170, 50});
        row("small bitmap enlarged", true, "small.jpg", "picture:10x10", {0, 0, 170, 170}, {0, 0, 170, 170});
        // Without its size and view box the drawing measures 10 by 5, fitted to 170 by 85,
        // before the declared millimetres take over.
        row("svg in mm keeps its size", true, "mm.svg", mmSvg, {0, 0, 100, 50}, {0, 0, 170, 85},
            svgText("      ", 10, 5));
        row("svg without mm fitted", true, "plain.svg", plainSvg, {0, 0, 100, 200}, {0, 0, 100, 200},
            svgText(" width=\"50\" height=\"100\"  ", 5, 10));
        row("uncleaned svg fitted to 170 both ways", false, "tall.svg",
            svgText(" width=\"100\" height=\"200\"", 100, 200), {0, 0, 85, 170}, {0, 0, 85, 170});
        // Read as it stands, 100 mm is 354 by 177 units, fitted to 170 by 85.
        row("uncleaned svg in mm keeps its size", false, "mm.svg", mmSvg, {0, 0, 100, 50}, {0, 0, 170, 85});
        // clang-format on
    }

    void load()
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
        cleaning ? scene.LoadItemFromFile(name, 0) : scene.LoadSvgItem(name, 0);

        QCOMPARE(designs(&scene).size(), 1);
        QGraphicsItem *item = designs(&scene).first();
        QCOMPARE(rectOf(item), rect);
        QVERIFY(item->isSelected());
        QCOMPARE(spy.count(), 1);
        QCOMPARE(spy.first().at(0).toRectF(), reported);
        if (auto *svg = qgraphicsitem_cast<SvgItem *>(item)) {
            QCOMPARE(svg->filePath(), QString("tmp.svg"));
            QVERIFY(svg->renderer()->isValid());
            QCOMPARE(TestFiles::read(name), content);  // the source is left as it was
        } else {
            QCOMPARE(static_cast<PixmapItem *>(item)->filePath(), name);
            QCOMPARE(static_cast<PixmapItem *>(item)->pixmap().size(), rect.size().toSize());
        }
        QCOMPARE(TestFiles::read("tmp.svg"), tmpSvg);
    }

    void badInput_data()
    {
        // clang-format off
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<int>("placed");

        QTest::newRow("bitmap that does not decode") << "broken.png" << QByteArray("not a picture") << 1;
        QTest::newRow("empty svg") << "empty.svg" << QByteArray() << 1;
        QTest::newRow("svg that does not parse") << "broken.svg" << QByteArray("<svg><rect width=") << 1;
        QTest::newRow("svg of zero size") << "zero.svg" << svgText(" width=\"0\" height=\"0\"", 0, 0) << 1;
        QTest::newRow("upper-case picture suffix") << "PIC.PNG" << QByteArray("picture:20x20") << 0;
        QTest::newRow("upper-case svg suffix") << "DRAW.SVG" << QByteArray("<svg/>") << 0;
        QTest::newRow("one pixel wide") << "thin.png" << QByteArray("picture:1x20000") << 1;
        // clang-format on
    }

    void badInput()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, content);
        QFETCH(int, placed);

        Folder folder;
        QVERIFY(writeInput(name, content));
        PGraphicsScene scene;
        scene.LoadItemFromFile(name, 0);
        QCOMPARE(designs(&scene).size(), placed);
        for (QGraphicsItem *item : designs(&scene))
            QVERIFY(qIsFinite(item->boundingRect().width()) && qIsFinite(item->boundingRect().height()));
        renderScene(&scene);
        // A picture without size lies nowhere: it never gives a position to export at.
        if (auto *pix = qgraphicsitem_cast<PixmapItem *>(designs(&scene).value(0)))
            QCOMPARE(pix->isInArea(), !pix->rect().isEmpty());

        // The canvas goes on working with the next file.
        scene.LoadItemFromFile("p.png", 0);
        QCOMPARE(designs(&scene).size(), placed + 1);
        QCOMPARE(rectOf(designs(&scene).last()), QRectF(0, 0, 170, 50));
        renderScene(&scene);
        QCOMPARE(scene.CurrentItemPos(), QPointF(0, 0));
    }

    // The last design inside the work area gives the position; cleared, none does.
    void severalItems()
    {
        Folder folder;
        PGraphicsScene scene;
        const int fixed = scene.items().size();
        scene.LoadItemFromFile("p.png", 0);
        scene.LoadItemFromFile("p.png", 0);
        const QList<QGraphicsItem *> placed = designs(&scene);
        QCOMPARE(placed.size(), 2);
        placed.at(0)->setPos(0, 10);   // lower in the stack
        placed.at(1)->setPos(0, 100);  // on top
        renderScene(&scene);
        QCOMPARE(scene.CurrentItemPos(), QPointF(0, 10));
        placed.at(0)->setPos(150, 10);  // still painted, but its right edge at 320 mm
        renderScene(&scene);
        QCOMPARE(scene.CurrentItemPos(), QPointF(0, 100));

        scene.ClearItems();
        QCOMPARE(scene.items().size(), fixed);
        // Taken off, not destroyed: the items can still be asked about themselves.
        QCOMPARE(placed.at(0)->scene(), static_cast<QGraphicsScene *>(nullptr));
        QVERIFY(!scene.HasSelectedItem());
        QCOMPARE(scene.CurrentItemPos(), PGraphicsScene::NoPosition);
    }

    void wheelZoom_data()
    {
        // clang-format off
        QTest::addColumn<QList<int>>("deltas");
        QTest::addColumn<bool>("handDrag");
        QTest::addColumn<double>("scale");

        QTest::newRow("down at the start scale") << QList<int>{-120} << true << 1.2;
        QTest::newRow("up then down") << QList<int>{120, -120} << true << 1.2;
        QTest::newRow("up once") << QList<int>{120} << true << 1.44;
        QTest::newRow("no zoom without hand drag") << QList<int>{120} << false << 1.2;
        // clang-format on
    }

    void wheelZoom()
    {
        QFETCH(QList<int>, deltas);
        QFETCH(bool, handDrag);
        QFETCH(double, scale);

        PGraphicsScene scene;
        Graph view;
        view.setScene(&scene);
        view.setDragMode(handDrag ? QGraphicsView::ScrollHandDrag : QGraphicsView::NoDrag);
        QVERIFY(shown(&view, QSize(150, 150)));
        QCOMPARE(view.transform().m11(), 1.2);
        const QPoint mouse(70, 60);
        const QPointF underMouse = view.mapToScene(mouse);
        for (int delta : deltas)
            wheel(&view, mouse, delta);
        QCOMPARE(view.transform().m11(), scale);
        QCOMPARE(view.transform().m22(), scale);
        // The scene point that was under the mouse is still there, to the pixel.
        if (scale > 1.2)
            QVERIFY((view.mapFromScene(underMouse) - mouse).manhattanLength() <= 2);
        // The rulers stay hidden placeholders, the corner box in its corner.
        QVERIFY(!view.horizontalRuler()->isVisible() && !view.verticalRuler()->isVisible());
        QCOMPARE(view.cornerBox()->geometry(), QRect(0, 0, 16, 16));
    }

    void geometryReports_data()
    {
        // clang-format off
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("gesture");
        QTest::addColumn<QList<QRectF>>("reports");
        QTest::addColumn<QRectF>("rect");
        QTest::addColumn<QPointF>("pos");

        // Both 340 by 100 files land at (0, 0) as 170 by 50; for a gesture they are moved to (20, 20).
        auto row = [](const char *name, const char *file, const char *gesture, const QList<QRectF> &reports,
                      QRectF rect, QPointF pos) {
            QTest::newRow(name) << QString(file) << QString(gesture) << reports << rect << pos;
        };
        const QRectF loaded(0, 0, 170, 50);
        row("load", "p.png", "load", {loaded}, loaded, {0, 0});
        row("plain move", "p.png", "move", {loaded}, loaded, {30, 30});
        // Inward by 5 mm down: factor 0.9 about the centre.
        row("corner resize", "p.png", "resize", {{-8.5, -2.5, 153, 45}, {0, 0, 153, 45}, {0, 0, 153, 45}},
            {0, 0, 153, 45}, {28.5, 22.5});
        // A typed width: the bitmap takes the whole rectangle, the svg drops its position.
        row("typed width, bitmap", "p.png", "width", {}, {20, 20, 85, 25}, {20, 20});
        row("typed width, svg", "d.svg", "width", {}, {0, 0, 85, 25}, {20, 20});
        row("typed width, nothing selected", "p.png", "unselected", {}, loaded, {20, 20});
        // clang-format on
    }

    void geometryReports()
    {
        QFETCH(QString, name);
        QFETCH(QString, gesture);
        QFETCH(QList<QRectF>, reports);
        QFETCH(QRectF, rect);
        QFETCH(QPointF, pos);

        Folder folder;
        QVERIFY(writeInput("d.svg", svgText(" width=\"340\" height=\"100\"", 340, 100)));
        RenderForm form;
        QSignalSpy spy(&form, SIGNAL(SigRect(QRectF)));
        form.LoadItemFromFile(name, 0);
        QGraphicsItem *item = designs(form.scene()).value(0);
        QVERIFY(item);
        if (gesture != "load") {
            item->setPos(20, 20);
            spy.clear();
        }
        SceneMouse mouse(form.scene());
        if (gesture == "move") {
            mouse.drag(QPointF(60, 40), QPointF(70, 50));
        } else if (gesture == "resize") {
            mouse.drag(QPointF(188, 68), QPointF(190, 63));
        } else if (gesture != "load") {
            item->setSelected(gesture == "width");
            form.SlotLineEditScale(85);
        }
        QCOMPARE(rectOf(item), rect);
        QCOMPARE(item->pos(), pos);
        if (auto *pix = qgraphicsitem_cast<PixmapItem *>(item))
            QCOMPARE(pix->pixmap().size(), rect.size().toSize());
        QList<QRectF> got;
        for (const QList<QVariant> &args : qAsConst(spy))
            got << args.at(0).toRectF();
        QCOMPARE(got, reports);
    }

    void droppedFiles_data()
    {
        // clang-format off
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<QPointF>("at");
        QTest::addColumn<QStringList>("reported");

        QTest::newRow("two files on the work area report the first")
            << QStringList{"/tmp/first.png", "/tmp/second.svg"} << QPointF(120, 150) << QStringList{"/tmp/first.png"};
        QTest::newRow("no urls") << QStringList{} << QPointF(85, 100) << QStringList{};
        QTest::newRow("left of the work area, on the bed") << QStringList{"/tmp/first.png"} << QPointF(-60, 20)
                                                           << QStringList{"/tmp/first.png"};
        QTest::newRow("below the bed picture") << QStringList{"/tmp/first.png"} << QPointF(85, 300) << QStringList{};
        // A design already placed does not swallow the next file.
        QTest::newRow("on a placed design") << QStringList{"/tmp/next.png"} << QPointF(85, 20)
                                            << QStringList{"/tmp/next.png"};
        // clang-format on
    }

    void droppedFiles()
    {
        QFETCH(QStringList, files);
        QFETCH(QPointF, at);
        QFETCH(QStringList, reported);

        Folder folder;
        RenderForm form;
        QVERIFY(shown(&form));
        form.LoadItemFromFile("p.png", 0);  // 170 x 50 at the top of the work area
        QSignalSpy spy(&form, SIGNAL(SigPixitem(QString)));
        // Under the offscreen platform there is no OpenGL context, and every repaint says so.
        if (QGuiApplication::platformName() == "offscreen") {
            QVERIFY(!form.hasOpenGLViewport() && !qobject_cast<QGLWidget *>(form.view()->viewport()));
            QTest::ignoreMessage(QtWarningMsg, "OpenGLScene: drawBackground needs a QGLWidget to be set as "
                                               "viewport on the graphics view");
            form.view()->viewport()->repaint();
        }
        // The bed lies behind the whole work area, at its fixed place, under every mark of the area.
        BackGrQGraphicsItem *bed = form.scene()->backgroundItem();
        QCOMPARE(bed->pos(), QPointF(-157, -88));
        QCOMPARE(bed->scale(), 0.48);
        QVERIFY(bed->sceneBoundingRect().contains(QRectF(-5, -5, 180, 210)));
        const QList<QGraphicsItem *> stack = form.scene()->items(Qt::DescendingOrder);
        QCOMPARE(stack.last(), static_cast<QGraphicsItem *>(bed));
        QCOMPARE(stack.size(), 1 + 4 + 4 + 4 + 2 + 1);  // design, labels, outline, margin, centre lines
        // The corner labels stand clear of the outline and the margin.
        for (QGraphicsItem *label : stack) {
            auto *text = qgraphicsitem_cast<QGraphicsTextItem *>(label);
            if (!text || text->toPlainText() == "Preview Area")
                continue;
            const double margin = text->document()->documentMargin();  // blank around the letters
            const QRectF letters = text->sceneBoundingRect().adjusted(margin, margin, -margin, -margin);
            for (QGraphicsItem *line : stack)
                if (auto *l = qgraphicsitem_cast<QGraphicsLineItem *>(line))
                    QVERIFY2(!letters.intersects(l->sceneBoundingRect()), qPrintable(text->toPlainText()));
        }

        QMimeData mime;
        QList<QUrl> urls;
        for (const QString &file : files)
            urls << QUrl::fromLocalFile(file);
        mime.setUrls(urls);
        const QPoint p = form.view()->mapFromScene(at);
        QVERIFY(form.view()->viewport()->rect().contains(p));
        QDragEnterEvent enter(p, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(form.view()->viewport(), &enter);
        QDragMoveEvent move(p, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(form.view()->viewport(), &move);
        QDropEvent drop(p, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(form.view()->viewport(), &drop);
        QStringList got;
        for (const QList<QVariant> &args : qAsConst(spy))
            got << args.at(0).toString();
        QCOMPARE(got, reported);
    }

    void keys_data()
    {
        // clang-format off
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("selected");
        QTest::addColumn<bool>("removed");

        QTest::newRow("delete with a selection") << int(Qt::Key_Delete) << true << true;
        QTest::newRow("delete without a selection") << int(Qt::Key_Delete) << false << false;
        QTest::newRow("other key swallowed") << int(Qt::Key_A) << true << false;
        // clang-format on
    }

    // A click on the design gives the canvas the keyboard, as a user would do it; a
    // focused recorder in the scene shows whether the key is passed on.
    void keys()
    {
        QFETCH(int, key);
        QFETCH(bool, selected);
        QFETCH(bool, removed);

        Folder folder;
        RenderForm form;
        QVERIFY(shown(&form));
        form.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&form));
        form.LoadItemFromFile("p.png", 0);
        QGraphicsItem *item = designs(form.scene()).value(0);
        QVERIFY(item);
        QTest::mouseClick(form.view()->viewport(), Qt::LeftButton, Qt::NoModifier,
                          form.view()->mapFromScene(QPointF(85, 25)));
        QVERIFY(item->isSelected());
        item->setSelected(selected);
        auto *recorder = new KeyRecorder;
        form.scene()->addItem(recorder);
        recorder->setFocus();
        QCOMPARE(form.scene()->focusItem(), static_cast<QGraphicsItem *>(recorder));
        QVERIFY(QApplication::focusWidget());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key(key));
        QCOMPARE(recorder->keys, 0);
        QCOMPARE(item->scene() == nullptr, removed);
        QCOMPARE(form.HasSelectedItem(), selected && !removed);
        if (removed)
            delete item;
    }
};

TARNWELL_TEST_MAIN(TestCanvas)
#include "tst_canvas.moc"
