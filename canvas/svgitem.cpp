// Vector design on the canvas: an SVG drawing shown at its size in millimetres,
// moved by its body, resized about its centre from the bottom-right corner.
#include "svgitem.h"

#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionGraphicsItem>
#include <QSvgRenderer>

namespace {

constexpr double InitialSide = 400.0;

}  // namespace

SvgItem::SvgItem(QGraphicsItem *parent)
    : DesignItem(CornerZone, parent), m_rememberedRect(0, 0, InitialSide, InitialSide), m_defaultSize(-1, -1)
{
    m_rect = QRectF(0, 0, InitialSide, InitialSide);
    setZValue(0);
    setAcceptDrops(true);
    setFlags(QGraphicsItem::ItemIsSelectable);
    setAcceptHoverEvents(true);
    setFlag(QGraphicsItem::ItemIsMovable, true);
}

SvgItem::~SvgItem() = default;

QRectF SvgItem::frameRect() const { return m_rect.adjusted(-FrameMargin, -FrameMargin, FrameMargin, FrameMargin); }

QRectF SvgItem::boundingRect() const
{
    // Out to the corner zone's far edge, which also holds the resize handle: the scene
    // only offers points within this rectangle to the item.
    const double reach = qMax(FrameMargin, double(CornerZone));
    return m_rect.adjusted(-FrameMargin, -FrameMargin, reach, reach);
}

void SvgItem::ResetRect(QRectF rect)
{
    prepareGeometryChange();
    m_rect = QRectF(0, 0, rect.width(), rect.height());
    update();
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

void SvgItem::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) { QGraphicsSvgItem::mouseDoubleClickEvent(event); }

void SvgItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *)
{
    QSvgRenderer *drawing = renderer();
    if (drawing && drawing->isValid())
        m_renderCache.paint(painter, drawing, elementId(), frameRect(), m_resizing);

    // The bounds include the frame margin on both sides, hence the tolerance of 4.
    const bool outside = !fitsWorkArea(scenePos(), mapRectToScene(frameRect()), InAreaTolerance);

    if (option->state & QStyle::State_Selected) {
        painter->setPen(framePen(outside, FramePenWidth));
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(QRect(truncatedToInt(m_rect.x() - FrameMargin), truncatedToInt(m_rect.y() - FrameMargin),
                                truncatedToInt(m_rect.width() + 2 * FrameMargin),
                                truncatedToInt(m_rect.height() + 2 * FrameMargin)));
        painter->drawRect(QRectF(m_rect.x() + m_rect.width(), m_rect.y() + m_rect.height(), HandleSize, HandleSize));
    }
    m_inArea = !outside;
}
