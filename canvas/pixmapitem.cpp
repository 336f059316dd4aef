// Bitmap design on the canvas: a picture file shown at its size in millimetres,
// moved by its body, resized about its centre from the bottom-right corner.
#include "pixmapitem.h"
#include "workarea.h"

#include <QBuffer>
#include <QDebug>
#include <QFile>
#include <QGraphicsSceneDragDropEvent>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QImageReader>
#include <QPainter>
#include <QPen>
#include <QStyle>
#include <QStyleOptionGraphicsItem>
#include <cmath>

namespace {

// Geometry can turn infinite or NaN for a picture that did not decode; such values
// must never reach an int conversion.
constexpr double IntLimit = 1.0e9;

int truncated(double value)
{
    if (!std::isfinite(value))
        return 0;
    return static_cast<int>(qBound(-IntLimit, value, IntLimit));
}

constexpr int DecodeOversize = 2;

const QColor FrameOutside(255, 0, 0);
const QColor FrameInside(67, 240, 20);

} // namespace

PixmapItem::PixmapItem(QGraphicsItem *parent)
    : QObject(nullptr), QGraphicsPixmapItem(parent)
{
    setZValue(0);
    setAcceptDrops(true);
    setAcceptHoverEvents(true);
    setFlags(QGraphicsItem::ItemIsMovable | QGraphicsItem::ItemIsSelectable);
}

PixmapItem::~PixmapItem() = default;

QRectF PixmapItem::boundingRect() const
{
    // The margin lets the corner zone outside the picture receive the mouse.
    return QRectF(m_rect.x(), m_rect.y(), m_rect.width() + BoundingMargin,
                  m_rect.height() + BoundingMargin);
}

QPainterPath PixmapItem::shape() const
{
    QPainterPath path;
    path.addRect(m_rect);
    return path;
}

bool PixmapItem::contains(const QPointF &point) const
{
    return shape().contains(point) || inCornerZone(mapToScene(point));
}

bool PixmapItem::collidesWithPath(const QPainterPath &path, Qt::ItemSelectionMode mode) const
{
    return QGraphicsPixmapItem::collidesWithPath(path, mode) || m_corner.zoneCollides(m_rect, path, mode);
}

void PixmapItem::dragEnterEvent(QGraphicsSceneDragDropEvent *event)
{
    event->ignore();
}

QPixmap PixmapItem::loadScaled(int width, int height)
{
    if (width <= 0 || height <= 0)
        return QPixmap();
    QFile file(m_path);
    QByteArray bytes;
    if (file.open(QIODevice::ReadOnly))
        bytes = file.readAll();
    const QSize wanted(width, height);
    if (bytes.isEmpty()) {
        m_decodedBytes.clear();
        m_decoded = QImage();
        return QPixmap();
    }
    // A photo of many megapixels costs hundreds of milliseconds to decode, far too
    // slow for a drag; the file is still read at every step, but decoded again only
    // when its bytes changed or the kept picture became too small.
    const bool tooSmall = !m_decodedWhole
                          && (m_decoded.width() < width || m_decoded.height() < height);
    if (bytes != m_decodedBytes || m_decoded.isNull() || tooSmall) {
        QBuffer buffer(&bytes);
        QImageReader reader(&buffer);
        const QSize full = reader.size();
        m_decodedWhole = true;
        if (full.isValid()) {
            // Twice the shown size keeps the smooth scaling below as fine as from the original.
            const QSize reduced(int(qMin<qint64>(full.width(), qint64(DecodeOversize) * width)),
                                int(qMin<qint64>(full.height(), qint64(DecodeOversize) * height)));
            if (reduced != full) {
                reader.setScaledSize(reduced);
                m_decodedWhole = false;
            }
        }
        m_decoded = reader.read();
        m_decodedBytes = m_decoded.isNull() ? QByteArray() : bytes;
    }
    if (m_decoded.isNull())
        return QPixmap();
    if (m_decoded.size() == wanted)
        return QPixmap::fromImage(m_decoded);
    return QPixmap::fromImage(m_decoded.scaled(wanted, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
}

void PixmapItem::reloadPicture()
{
    setPixmap(loadScaled(truncated(m_rect.width()), truncated(m_rect.height())));
}

void PixmapItem::ResetRect(QRectF r)
{
    qDebug() << "in the pixitem reset rect";
    prepareGeometryChange();
    m_rect = r;
    reloadPicture();
    update();
}

bool PixmapItem::inCornerZone(const QPointF &p) const
{
    return m_corner.zoneContains(m_rect, scenePos(), p);
}

void PixmapItem::hoverEnterEvent(QGraphicsSceneHoverEvent *event)
{
    setPixmap(pixmap().scaled(truncated(m_rect.width()), truncated(m_rect.height()),
                              Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    m_corner.enter(this, inCornerZone(event->scenePos()));
    QGraphicsPixmapItem::hoverEnterEvent(event);
}

void PixmapItem::hoverMoveEvent(QGraphicsSceneHoverEvent *event)
{
    m_corner.move(this, inCornerZone(event->scenePos()));
    QGraphicsPixmapItem::hoverMoveEvent(event);
}

void PixmapItem::hoverLeaveEvent(QGraphicsSceneHoverEvent *event)
{
    m_corner.leave(this);
    emit Sig_HidePosTag();
    QGraphicsPixmapItem::hoverLeaveEvent(event);
}

void PixmapItem::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        m_start = event->scenePos();
    QGraphicsPixmapItem::mousePressEvent(event);
}

void PixmapItem::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    m_end = event->scenePos();
    // Compares a scene point with the item-local corner on purpose: a move reported
    // exactly at the rectangle's corner is dropped.
    if (m_end.x() == m_rect.x() && m_end.y() == m_rect.y())
        return;
    if (!m_corner.isArmed()) {
        update();
        QGraphicsPixmapItem::mouseMoveEvent(event);
        return;
    }
    if (m_corner.dragMode() != CornerHover::ResizeBottomRight)
        return;

    const CornerHover::Step step = CornerHover::resizeStep(m_rect, m_end.x() - m_start.x(), m_end.y() - m_start.y());
    const QRectF n = step.rect;
    const double hx = step.hx, hy = step.hy;
    qDebug().noquote() << QString("x:%1 y:%2 w:%3 h:%4")
                              .arg(n.x()).arg(n.y()).arg(n.width()).arg(n.height());

    ResetRect(QRectF(0, 0, n.width(), n.height()));
    prepareGeometryChange();

    const QString label = QString("W:%1 H:%2").arg(n.width() / 10.0).arg(n.height() / 10.0);
    emit SigPosTag(n);
    qDebug().noquote() << label;

    // Shift back by half the growth so the picture stays centred where it was.
    moveBy(-hx, -hy);
    qDebug().noquote() << QString("x:%1 y:%2").arg(hy).arg(hx);
    m_start = m_end;
}

void PixmapItem::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    if (m_corner.isArmed()) {
        m_corner.disarm();
        qDebug() << "mouse release checked!";
        reloadPicture();
        emit SigPosTag(m_rect);
        emit Sig_HidePosTag();
    }
    emit SigPosTag(m_rect);
    QGraphicsPixmapItem::mouseReleaseEvent(event);
}

void PixmapItem::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    emit Sig_ShowPos(m_rect);
    QGraphicsPixmapItem::mouseDoubleClickEvent(event);
}

QVariant PixmapItem::itemChange(GraphicsItemChange change, const QVariant &value)
{
    // Items taken off the canvas live on until the scene goes; they need not keep
    // a whole photo file in memory meanwhile.
    if (change == ItemSceneHasChanged && !scene()) {
        m_decodedBytes.clear();
        m_decoded = QImage();
    }
    return QGraphicsPixmapItem::itemChange(change, value);
}

void PixmapItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *)
{
    const QPointF pos = scenePos();
    const QRectF bounds = sceneBoundingRect();
    const int x = truncated(pos.x());
    const int y = truncated(pos.y());
    const int w = truncated(bounds.width());
    const int h = truncated(bounds.height());
    // The bounding margin is part of W and H, hence the same tolerance here.
    // A picture that did not decode has no size: it is nowhere, so nothing gets exported.
    const bool empty = !(m_rect.width() > 0 && m_rect.height() > 0);
    const bool outside = empty || x < 0 || y < 0 || w + x > WorkArea::Width + InAreaTolerance
                         || h + y > WorkArea::Height + InAreaTolerance;

    if (option->state & QStyle::State_Selected) {
        QPen pen(QBrush(outside ? FrameOutside : FrameInside), FramePenWidth,
                 Qt::DashDotDotLine, Qt::SquareCap, Qt::BevelJoin);
        painter->setPen(pen);
        painter->drawRect(m_rect);
    }
    m_inArea = !outside;

    painter->drawPixmap(QPoint(truncated(m_rect.x()), truncated(m_rect.y())), pixmap());
}
