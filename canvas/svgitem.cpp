// Vector design on the canvas: an SVG drawing shown at its size in millimetres,
// moved by its body, resized about its centre from the bottom-right corner.
#include "svgitem.h"
#include "workarea.h"

#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QPen>
#include <QStyle>
#include <QStyleOptionGraphicsItem>
#include <QSvgRenderer>
#include <cmath>

namespace {

// A drawing that did not parse can give odd sizes; keep them away from int overflow.
constexpr double IntLimit = 1.0e9;

int truncated(double value)
{
    if (!std::isfinite(value))
        return 0;
    return static_cast<int>(qBound(-IntLimit, value, IntLimit));
}

const QColor FrameOutside(255, 0, 0);
const QColor FrameInside(67, 240, 20);
constexpr double InitialSide = 400.0;

} // namespace

SvgItem::SvgItem(QGraphicsItem *parent)
    : QGraphicsSvgItem(parent),
      m_rememberedRect(0, 0, InitialSide, InitialSide),
      m_rect(0, 0, InitialSide, InitialSide),
      m_defaultSize(-1, -1)
{
    setZValue(0);
    setAcceptDrops(true);
    setFlags(QGraphicsItem::ItemIsSelectable);
    setAcceptHoverEvents(true);
    setFlag(QGraphicsItem::ItemIsMovable, true);
}

SvgItem::~SvgItem() = default;

QRectF SvgItem::frameRect() const
{
    return m_rect.adjusted(-FrameMargin, -FrameMargin, FrameMargin, FrameMargin);
}

QRectF SvgItem::boundingRect() const
{
    // Out to the corner zone's far edge, which also holds the resize handle: the scene
    // only offers points within this rectangle to the item.
    const double reach = qMax(FrameMargin, double(CornerZone));
    return m_rect.adjusted(-FrameMargin, -FrameMargin, reach, reach);
}

bool SvgItem::contains(const QPointF &point) const
{
    return shape().contains(point) || inCornerZone(mapToScene(point));
}

bool SvgItem::collidesWithPath(const QPainterPath &path, Qt::ItemSelectionMode mode) const
{
    return QGraphicsSvgItem::collidesWithPath(path, mode) || m_corner.zoneCollides(m_rect, path, mode);
}

void SvgItem::dragEnterEvent(QGraphicsSceneDragDropEvent *event)
{
    event->ignore();
}

QPainterPath SvgItem::shape() const
{
    QPainterPath path;
    path.addRect(m_rect);
    return path;
}

void SvgItem::ResetRect(QRectF rect)
{
    prepareGeometryChange();
    m_rect = QRectF(0, 0, rect.width(), rect.height());
    update();
}

bool SvgItem::inCornerZone(const QPointF &p) const
{
    return m_corner.zoneContains(m_rect, scenePos(), p);
}

void SvgItem::hoverEnterEvent(QGraphicsSceneHoverEvent *event)
{
    m_corner.enter(this, inCornerZone(event->scenePos()));
    QGraphicsSvgItem::hoverEnterEvent(event);
}

void SvgItem::hoverMoveEvent(QGraphicsSceneHoverEvent *event)
{
    m_corner.move(this, inCornerZone(event->scenePos()));
    QGraphicsSvgItem::hoverMoveEvent(event);
}

void SvgItem::hoverLeaveEvent(QGraphicsSceneHoverEvent *event)
{
    m_corner.leave(this);
    update();
    emit Sig_HidePosTag();
    QGraphicsSvgItem::hoverLeaveEvent(event);
}

void SvgItem::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        m_start = event->scenePos();
    update();
    QGraphicsSvgItem::mousePressEvent(event);
}

void SvgItem::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    m_end = event->scenePos();
    if (!m_corner.isArmed()) {
        update();
        QGraphicsSvgItem::mouseMoveEvent(event);
        return;
    }
    const double dx = m_end.x() - m_start.x();
    const double dy = m_end.y() - m_start.y();
    m_start = m_end;
    if (m_corner.dragMode() != CornerHover::ResizeBottomRight)
        return;

    const CornerHover::Step step = CornerHover::resizeStep(m_rect, dx, dy);
    const QRectF n = step.rect;
    const double hx = step.hx, hy = step.hy;

    prepareGeometryChange();
    m_rect = QRectF(0, 0, n.width(), n.height());
    prepareGeometryChange();
    m_resizing = true;

    emit SigPosTag(n);
    // Shift back by half the growth so the drawing stays centred where it was.
    moveBy(-hx, -hy);
}

void SvgItem::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    m_corner.disarm();
    if (m_resizing) {
        // The stretched picture of the drag gives way to sharp outlines at the new size.
        m_resizing = false;
        update();
    }
    emit SigPosTag(m_rect);
    QGraphicsSvgItem::mouseReleaseEvent(event);
}

void SvgItem::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    QGraphicsSvgItem::mouseDoubleClickEvent(event);
}

void SvgItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *)
{
    QSvgRenderer *drawing = renderer();
    if (drawing && drawing->isValid())
        m_renderCache.paint(painter, drawing, elementId(), frameRect(), m_resizing);

    const QPointF pos = scenePos();
    const QRectF bounds = mapRectToScene(frameRect());
    const int x = truncated(pos.x());
    const int y = truncated(pos.y());
    const int w = truncated(bounds.width());
    const int h = truncated(bounds.height());
    // W and H include the frame margin on both sides, hence the tolerance of 4.
    const bool outside = x < 0 || y < 0 || w + x > WorkArea::Width + InAreaTolerance
                         || h + y > WorkArea::Height + InAreaTolerance;

    if (option->state & QStyle::State_Selected) {
        QPen pen(QBrush(outside ? FrameOutside : FrameInside), FramePenWidth,
                 Qt::DashDotDotLine, Qt::SquareCap, Qt::BevelJoin);
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(QRect(truncated(m_rect.x() - FrameMargin), truncated(m_rect.y() - FrameMargin),
                                truncated(m_rect.width() + 2 * FrameMargin),
                                truncated(m_rect.height() + 2 * FrameMargin)));
        painter->drawRect(QRectF(m_rect.x() + m_rect.width(), m_rect.y() + m_rect.height(),
                                 HandleSize, HandleSize));
    }
    m_inArea = !outside;
}
