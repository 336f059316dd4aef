// Times one corner-resize step of a bitmap item holding a 6000 x 4000 JPEG, next to
// the plain full decode that a reload at every step would otherwise cost; then drag and
// resize steps of a traced page of text as an SVG item, painted in a view.
#include "benchsupport.h"
#include "bitmap2svg.h"
#include "pgraphicsscene.h"
#include "pixmapitem.h"
#include "svgitem.h"
#include "workarea.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QGraphicsView>
#include <QSvgRenderer>
#include <QImage>
#include <QPainter>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTextStream>
#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int PhotoWidth = 6000;
constexpr int PhotoHeight = 4000;
constexpr int Steps = 40;
constexpr int DecodeRuns = 5;

// A photo-like picture: smooth gradients with fine noise, so the JPEG is not trivially small.
QImage makePhoto()
{
    QImage image(PhotoWidth, PhotoHeight, QImage::Format_RGB32);
    QRandomGenerator rng(6);
    for (int y = 0; y < PhotoHeight; ++y) {
        QRgb *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < PhotoWidth; ++x) {
            const int noise = int(rng.bounded(32));
            line[x] = qRgb((x * 255 / PhotoWidth + noise) & 255, (y * 255 / PhotoHeight + noise) & 255,
                           ((x + y) / 40 + noise) & 255);
        }
    }
    return image;
}

void sendMouse(QGraphicsScene *scene, QEvent::Type type, const QPointF &p, const QPointF &down, Qt::MouseButton button,
               Qt::MouseButtons buttons)
{
    QGraphicsSceneMouseEvent ev(type);
    ev.setScenePos(p);
    ev.setScreenPos(p.toPoint());
    ev.setButtonDownScenePos(Qt::LeftButton, down);
    ev.setButton(button);
    ev.setButtons(buttons);
    QApplication::sendEvent(scene, &ev);
}

struct Figures
{
    double median, mean, max;
};

// A 2000 x 2000 page of text traced as the program traces it.
bool writeTracedPage(const QString &svgPath)
{
    const QImage page = pageOfText(2000);
    if (!page.save(QStringLiteral("page.png")))
        return false;
    Bitmap2Svg tracer;
    tracer.Trace(QStringLiteral("page.png"));
    tracer.WriteSvg(svgPath);
    return tracer.LastTraceOk();
}

Figures summarise(std::vector<double> ms)
{
    std::sort(ms.begin(), ms.end());
    double sum = 0;
    for (double v : ms)
        sum += v;
    return {ms[ms.size() / 2], sum / ms.size(), ms.back()};
}

void sendMove(QGraphicsScene *scene, const QPointF &p, const QPointF &down)
{
    sendMouse(scene, QEvent::GraphicsSceneMouseMove, p, down, Qt::NoButton, Qt::LeftButton);
}

// Drag and corner-resize steps of the traced page in a 900 x 1000 view showing the work
// area, each step painted at once; and, for comparison, the drawing stroked at the
// view's scale as every paint did before its picture was kept.
int tracedPageSteps(const QString &shots)
{
    const QString svg = QStringLiteral("black_white.svg");
    if (!writeTracedPage(svg)) {
        std::fprintf(stderr, "cannot trace the page\n");
        return 1;
    }
    PGraphicsScene scene;
    scene.LoadSvgItem(svg, 1);
    SvgItem *item = nullptr;
    for (QGraphicsItem *candidate : scene.items()) {
        if (candidate->type() == SvgItem::Type)
            item = static_cast<SvgItem *>(candidate);
    }
    if (!item) {
        std::fprintf(stderr, "the drawing was not placed\n");
        return 1;
    }
    QGraphicsView view(&scene);
    view.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    view.resize(900, 1000);
    view.show();
    view.fitInView(QRectF(0, 0, WorkArea::Width, WorkArea::Height), Qt::KeepAspectRatio);
    QApplication::processEvents();
    view.viewport()->repaint();

    QElapsedTimer timer;
    std::vector<double> plain;
    for (int i = 0; i < 5; ++i) {
        QImage target(view.viewport()->size(), QImage::Format_ARGB32_Premultiplied);
        target.fill(Qt::white);
        QPainter painter(&target);
        painter.setRenderHints(view.renderHints());
        painter.setTransform(item->sceneTransform() * view.viewportTransform());
        timer.restart();
        item->renderer()->render(&painter, item->boundingRect());
        plain.push_back(timer.nsecsElapsed() / 1e6);
    }
    const Figures p = summarise(plain);
    std::printf("traced page (%d bytes of SVG), %.1f x %.1f mm at %.2f px/mm\n", int(QFileInfo(svg).size()),
                item->rect().width(), item->rect().height(), view.transform().m11());
    std::printf("  outlines stroked at the view's scale (each paint before): median %.2f ms, max %.2f ms\n", p.median,
                p.max);

    std::vector<double> drag;
    for (int i = 0; i < Steps; ++i) {
        timer.restart();
        item->moveBy(i % 2 ? -0.7 : 0.7, 0.3);
        view.viewport()->repaint();
        drag.push_back(timer.nsecsElapsed() / 1e6);
    }
    if (!shots.isEmpty())
        view.grab().save(QDir(shots).filePath(QStringLiteral("canvas-dragged.png")));
    const Figures d = summarise(drag);
    std::printf("  drag step, painted:   median %.2f ms, mean %.2f ms, max %.2f ms (%d steps)\n", d.median, d.mean,
                d.max, Steps);

    const QRectF at = item->sceneBoundingRect();
    QPointF corner(at.right() - 3, at.bottom() - 3);
    QGraphicsSceneHoverEvent hover(QEvent::GraphicsSceneHoverMove);
    hover.setScenePos(corner);
    QApplication::sendEvent(&scene, &hover);
    if (!item->isResizeArmed()) {
        std::fprintf(stderr, "the corner of the drawing did not arm\n");
        return 1;
    }
    const QPointF down = corner;
    sendMouse(&scene, QEvent::GraphicsSceneMousePress, corner, down, Qt::LeftButton, Qt::LeftButton);
    std::vector<double> resize;
    for (int i = 0; i < Steps; ++i) {
        corner += (i % 2 == 0) ? QPointF(-1, -1) : QPointF(0.5, 0.5);
        timer.restart();
        sendMove(&scene, corner, down);
        view.viewport()->repaint();
        resize.push_back(timer.nsecsElapsed() / 1e6);
    }
    if (!shots.isEmpty())
        view.grab().save(QDir(shots).filePath(QStringLiteral("canvas-resizing.png")));
    timer.restart();
    sendMouse(&scene, QEvent::GraphicsSceneMouseRelease, corner, down, Qt::LeftButton, Qt::NoButton);
    view.viewport()->repaint();
    const double settle = timer.nsecsElapsed() / 1e6;
    if (!shots.isEmpty())
        view.grab().save(QDir(shots).filePath(QStringLiteral("canvas-released.png")));
    const Figures r = summarise(resize);
    std::printf("  resize step, painted: median %.2f ms, mean %.2f ms, max %.2f ms (%d steps)\n", r.median, r.mean,
                r.max, Steps);
    std::printf("  release, sharp outlines at the new size: %.2f ms\n", settle);
    return 0;
}

}  // namespace

int main(int argc, char *argv[])
{
    preferOffscreen();
    // The item logs every step; keep the figures readable.
    qputenv("QT_LOGGING_RULES", "*.debug=false");
    QApplication app(argc, argv);
    QTemporaryDir dir;
    QDir::setCurrent(dir.path());
    const QString photo = dir.filePath("photo.jpg");

    QElapsedTimer timer;
    timer.start();
    if (!makePhoto().save(photo, "JPG", 90)) {
        std::fprintf(stderr, "cannot write %s\n", qPrintable(photo));
        return 1;
    }
    std::printf("photo: %d x %d JPEG, %lld bytes, written in %lld ms\n", PhotoWidth, PhotoHeight,
                static_cast<long long>(QFileInfo(photo).size()), static_cast<long long>(timer.elapsed()));

    std::vector<double> full;
    for (int i = 0; i < DecodeRuns; ++i) {
        timer.restart();
        const QPixmap shown = QPixmap(photo).scaled(170, 113, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        full.push_back(timer.nsecsElapsed() / 1e6);
        if (shown.isNull())
            return 1;
    }
    const Figures f = summarise(full);
    std::printf("full decode + smooth scale to 170 x 113: median %.1f ms, mean %.1f ms, max %.1f ms (%d runs)\n",
                f.median, f.mean, f.max, DecodeRuns);

    PGraphicsScene scene;
    scene.LoadItemFromFile(photo, 0);
    PixmapItem *item = nullptr;
    for (QGraphicsItem *candidate : scene.items()) {
        if (candidate->type() == PixmapItem::Type)
            item = static_cast<PixmapItem *>(candidate);
    }
    if (!item) {
        std::fprintf(stderr, "the photo was not placed\n");
        return 1;
    }
    const QRectF placed = item->rect();

    // The first reload of an item has nothing kept yet and decodes the file.
    std::vector<double> cold;
    for (int i = 0; i < DecodeRuns; ++i) {
        PixmapItem fresh;
        fresh.setFilePath(photo);
        timer.restart();
        fresh.ResetRect(placed);
        cold.push_back(timer.nsecsElapsed() / 1e6);
    }
    const Figures c = summarise(cold);
    std::printf("first reload of a fresh item (decode at twice the shown size): median %.1f ms, max %.1f ms\n",
                c.median, c.max);

    // Arm the corner, press, then move in and out by a millimetre per step.
    QPointF p(placed.right() - 2, placed.bottom() - 1);
    QGraphicsSceneHoverEvent hover(QEvent::GraphicsSceneHoverMove);
    hover.setScenePos(p);
    QApplication::sendEvent(&scene, &hover);
    if (!item->isResizeArmed()) {
        std::fprintf(stderr, "the corner did not arm\n");
        return 1;
    }
    const QPointF down = p;
    sendMouse(&scene, QEvent::GraphicsSceneMousePress, p, down, Qt::LeftButton, Qt::LeftButton);
    std::vector<double> steps;
    for (int i = 0; i < Steps; ++i) {
        p += (i % 2 == 0) ? QPointF(-1, -1) : QPointF(1, 1);
        timer.restart();
        sendMouse(&scene, QEvent::GraphicsSceneMouseMove, p, down, Qt::NoButton, Qt::LeftButton);
        steps.push_back(timer.nsecsElapsed() / 1e6);
    }
    timer.restart();
    sendMouse(&scene, QEvent::GraphicsSceneMouseRelease, p, down, Qt::LeftButton, Qt::NoButton);
    const double release = timer.nsecsElapsed() / 1e6;

    const Figures s = summarise(steps);
    std::printf(
        "resize step (reload from file at the shown size): median %.2f ms, mean %.2f ms, max %.2f ms (%d steps)\n",
        s.median, s.mean, s.max, Steps);
    std::printf("release after resize: %.2f ms\n", release);
    std::printf("item placed at %.2f x %.2f mm, now %.2f x %.2f mm, picture %d x %d px\n", placed.width(),
                placed.height(), item->rect().width(), item->rect().height(), item->pixmap().width(),
                item->pixmap().height());
    // A folder as first argument keeps pictures of the view after the drag, during the
    // corner drag and after its release.
    return tracedPageSteps(argc > 1 ? QString::fromLocal8Bit(argv[1]) : QString());
}
