// Bitmap design on the canvas: a picture file shown at its size in millimetres,
// moved by its body, resized about its centre from the bottom-right corner.
#include "pixmapitem.h"

#include <QBuffer>
#include <QDebug>
#include <QFile>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QImageReader>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionGraphicsItem>
#include <cmath>

namespace {

constexpr int DecodeOversize = 2;

}  // namespace

PixmapItem::PixmapItem(QGraphicsItem *parent) : QObject(nullptr), DesignItem(CornerZone, parent)
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
    return QRectF(m_rect.x(), m_rect.y(), m_rect.width() + BoundingMargin, m_rect.height() + BoundingMargin);
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
    const bool tooSmall = !m_decodedWhole && (m_decoded.width() < width || m_decoded.height() < height);
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
    setPixmap(loadScaled(truncatedToInt(m_rect.width()), truncatedToInt(m_rect.height())));
}

void PixmapItem::ResetRect(QRectF r)
{
    qDebug() << "in the pixitem reset rect";
    prepareGeometryChange();
    m_rect = r;
    reloadPicture();
    update();
}

void PixmapItem::hoverEnterEvent(QGraphicsSceneHoverEvent *event)
{
    setPixmap(pixmap().scaled(truncatedToInt(m_rect.width()), truncatedToInt(m_rect.height()), Qt::IgnoreAspectRatio,
                              Qt::SmoothTransformation));
    DesignItem::hoverEnterEvent(event);
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
    qDebug().noquote() << QString("x:%1 y:%2 w:%3 h:%4").arg(n.x()).arg(n.y()).arg(n.width()).arg(n.height());

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
    // The bounding margin is part of the scene bounds, hence the same tolerance here.
    // A picture that did not decode has no size: it is nowhere, so nothing gets exported.
    const bool empty = !(m_rect.width() > 0 && m_rect.height() > 0);
    const bool outside = empty || !fitsWorkArea(scenePos(), sceneBoundingRect(), InAreaTolerance);

    if (option->state & QStyle::State_Selected) {
        painter->setPen(framePen(outside, FramePenWidth));
        painter->drawRect(m_rect);
    }
    m_inArea = !outside;

    painter->drawPixmap(QPoint(truncatedToInt(m_rect.x()), truncatedToInt(m_rect.y())), pixmap());
}
