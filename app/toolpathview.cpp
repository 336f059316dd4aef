// The work area as a graphics scene in millimetres, scene Y downwards: machine Y = height - y.
// The job picture lies over a light grid; labels keep their size at every zoom.
#include "toolpathview.h"

#include "workarea.h"

#include <QGraphicsPixmapItem>
#include <QGraphicsRectItem>
#include <QGraphicsSimpleTextItem>
#include <QMouseEvent>
#include <QResizeEvent>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace {

constexpr double GridStep = 10;   // mm
constexpr double LabelStep = 50;  // mm
constexpr double Margin = 12;     // mm of room around the area for the labels
constexpr double FitPadding = 4;  // pixels between the fitted labels and the view's edge
constexpr double WheelStep = 1.25;
constexpr int MaxDetailLevel = 5;               // down to 1/32 of the picture
constexpr double MinZoom = 0.2, MaxZoom = 400;  // screen pixels per mm

QGraphicsSimpleTextItem *label(QGraphicsScene *scene, const QString &text, QPointF at, bool alignRight)
{
    auto *item = scene->addSimpleText(text);
    item->setFlag(QGraphicsItem::ItemIgnoresTransformations);
    item->setBrush(QColor(90, 90, 90));
    const QRectF box = item->boundingRect();
    item->setPos(at);
    item->setTransform(QTransform::fromTranslate(alignRight ? -box.width() - 3 : -box.width() / 2,
                                                 alignRight ? -box.height() / 2 : 2));
    return item;
}

}  // namespace

ToolpathView::ToolpathView(QWidget *parent)
    : QGraphicsView(parent), m_areaWidth(WorkArea::Width), m_areaHeight(WorkArea::Height)
{
    auto *scene = new QGraphicsScene(this);
    scene->setBackgroundBrush(QColor(214, 214, 214));
    setScene(scene);
    buildArea();
    setDragMode(QGraphicsView::ScrollHandDrag);
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setRenderHint(QPainter::SmoothPixmapTransform);
}

void ToolpathView::setWorkArea(double width, double height)
{
    if (!(width > 0) || !(height > 0) || (width == m_areaWidth && height == m_areaHeight))
        return;
    m_areaWidth = width;
    m_areaHeight = height;
    scene()->clear();
    m_labels.clear();
    m_full = QImage();
    m_level = -1;
    buildArea();
    m_fit = QRectF();
    m_autoFit = true;
    applyFit();
}

void ToolpathView::buildArea()
{
    const double width = m_areaWidth, height = m_areaHeight;
    QGraphicsScene *scene = this->scene();
    scene->setSceneRect(-Margin, -Margin, width + 2 * Margin, height + 2 * Margin);
    scene->addRect(0, 0, width, height, Qt::NoPen, Qt::white);
    QPen grid(QColor(225, 232, 240));
    grid.setCosmetic(true);
    for (double x = GridStep; x < width; x += GridStep)
        scene->addLine(x, 0, x, height, grid);
    for (double y = GridStep; y < height; y += GridStep)
        scene->addLine(0, height - y, width, height - y, grid);
    m_picture = scene->addPixmap(QPixmap());
    m_picture->setTransformationMode(Qt::SmoothTransformation);
    QPen outline(QColor(60, 60, 60));
    outline.setCosmetic(true);
    scene->addRect(0, 0, width, height, outline);
    // Machine origin: bottom left.
    QPen origin(QColor(200, 40, 40));
    origin.setCosmetic(true);
    origin.setWidth(2);
    scene->addLine(0, height, 8, height, origin);
    scene->addLine(0, height, 0, height - 8, origin);
    // The last step's label would crowd the area's width.
    QPen overreach(QColor(220, 40, 40), 2, Qt::DashLine);
    overreach.setCosmetic(true);
    m_overreach = scene->addRect(QRectF(), overreach);
    m_overreach->hide();
    for (double x = 0; x <= width - LabelStep / 2; x += LabelStep)
        m_labels << label(scene, QString::number(x), QPointF(x, height), false);
    m_labels << label(scene, QString::number(width), QPointF(width, height), false);
    for (double y = LabelStep; y <= height; y += LabelStep)
        m_labels << label(scene, QString::number(y), QPointF(0, height - y), true);
}

void ToolpathView::setPicture(const QImage &picture, double pxPerMm)
{
    // White (nothing burns) becomes clear so the grid shows through; premultiplied, so that
    // averaging clear and burned pixels gives a lighter burn and not a gray veil.
    QImage clear = picture.convertToFormat(QImage::Format_ARGB32);
    for (int r = 0; r < clear.height(); ++r) {
        QRgb *line = reinterpret_cast<QRgb *>(clear.scanLine(r));
        for (int c = 0; c < clear.width(); ++c) {
            if (line[c] == 0xffffffff)
                line[c] = 0;
        }
    }
    m_full = clear.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    m_pxPerMm = pxPerMm;
    m_level = -1;
    updateDetail();
}

void ToolpathView::updateDetail()
{
    if (m_full.isNull()) {
        m_picture->setPixmap(QPixmap());
        return;
    }
    const double ratio = zoom() / m_pxPerMm;  // screen pixels per picture pixel
    const int level = ratio >= 1 ? 0 : std::min(MaxDetailLevel, int(std::floor(std::log2(1 / ratio))));
    if (level == m_level)
        return;
    m_level = level;
    const int step = 1 << level;
    const QImage shown = level == 0
                             ? m_full
                             : m_full.scaled(std::max(1, m_full.width() / step), std::max(1, m_full.height() / step),
                                             Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    m_picture->setPixmap(QPixmap::fromImage(shown));
    m_picture->setScale(double(m_full.width()) / shown.width() / m_pxPerMm);
}

void ToolpathView::setOverreach(const QRectF &machine)
{
    const QRectF area = areaRect().adjusted(-Margin, -Margin, Margin, Margin);
    if (machine.isNull()) {
        m_overreach->hide();
        scene()->setSceneRect(area);
        updateScrollRange(mapToScene(viewport()->rect()).boundingRect());
        return;
    }
    const QRectF box(machine.left(), m_areaHeight - machine.bottom(), machine.width(), machine.height());
    m_overreach->setRect(box);
    m_overreach->show();
    updateScrollRange(mapToScene(viewport()->rect()).boundingRect());
    // Let the view scroll out to it.
    scene()->setSceneRect(area.united(box.adjusted(-Margin, -Margin, Margin, Margin)));
}

void ToolpathView::fitMachineRect(const QRectF &machine)
{
    // The whole area needs no room of its own: the labels' room is added in pixels.
    m_fit = areaRect();
    if (machine.isValid() || machine.width() > 0 || machine.height() > 0) {
        const QRectF scene(machine.left(), m_areaHeight - machine.bottom(), machine.width(), machine.height());
        // Some room around the job, and never closer than a few millimetres.
        const double room = std::max(2.0, 0.05 * std::max(scene.width(), scene.height()));
        m_fit = scene.adjusted(-room, -room, room, room);
    }
    m_autoFit = true;
    applyFit();
}

QMarginsF ToolpathView::labelRoom(const QRectF &rect) const
{
    // Labels keep their pixel size, so the room they need in millimetres depends on the zoom;
    // only labels anchored inside the rectangle count.
    const QRectF anchors = rect.adjusted(-0.01, -0.01, 0.01, 0.01);
    QMarginsF room;
    for (const QGraphicsItem *item : m_labels) {
        if (!anchors.contains(item->pos()))
            continue;
        const QRectF pixels = item->transform().mapRect(item->boundingRect());
        room.setLeft(std::max(room.left(), -pixels.left()));
        room.setTop(std::max(room.top(), -pixels.top()));
        room.setRight(std::max(room.right(), pixels.right()));
        room.setBottom(std::max(room.bottom(), pixels.bottom()));
    }
    return room;
}

void ToolpathView::updateScrollRange(const QRectF &visible)
{
    const double z = zoom();
    const QMarginsF room = labelRoom(areaRect());
    QRectF range = areaRect().adjusted(-room.left() / z, -room.top() / z, room.right() / z, room.bottom() / z);
    if (m_overreach->isVisible())
        range |= m_overreach->rect().adjusted(-Margin, -Margin, Margin, Margin);
    setSceneRect(range | visible);
}

void ToolpathView::applyFit()
{
    if (m_fit.isEmpty())
        m_fit = areaRect();
    const QMarginsF room = labelRoom(m_fit) + QMarginsF(FitPadding, FitPadding, FitPadding, FitPadding);
    // Sized for a viewport without scroll bars; when the fit still calls for them, their
    // arrival resizes the viewport and the fit runs again on the smaller one.
    const QSizeF port = maximumViewportSize();
    const double zoom = std::clamp(std::min((port.width() - room.left() - room.right()) / m_fit.width(),
                                            (port.height() - room.top() - room.bottom()) / m_fit.height()),
                                   MinZoom, MaxZoom);
    const QRectF padded =
        m_fit.adjusted(-room.left() / zoom, -room.top() / zoom, room.right() / zoom, room.bottom() / zoom);
    // A pixel short of the viewport each way, so that rounding never calls for scroll bars.
    QRectF visible(0, 0, (port.width() - 2) / zoom, (port.height() - 2) / zoom);
    visible.moveCenter(padded.center());
    setTransform(QTransform::fromScale(zoom, zoom));
    updateScrollRange(visible);
    centerOn(padded.center());
    updateDetail();
}

void ToolpathView::resizeEvent(QResizeEvent *event)
{
    QGraphicsView::resizeEvent(event);
    if (m_autoFit)
        applyFit();
}

void ToolpathView::mousePressEvent(QMouseEvent *event)
{
    m_autoFit = false;
    QGraphicsView::mousePressEvent(event);
}

void ToolpathView::wheelEvent(QWheelEvent *event)
{
    const double factor = std::pow(WheelStep, event->angleDelta().y() / 120.0);
    const double next = zoom() * factor;
    if (next < MinZoom || next > MaxZoom)
        return;
    m_autoFit = false;
    scale(factor, factor);
    updateScrollRange(mapToScene(viewport()->rect()).boundingRect());
    updateDetail();
    event->accept();
}
