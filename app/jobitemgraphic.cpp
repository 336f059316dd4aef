// One item of the job on the layout scene.
#include "jobitemgraphic.h"

#include <QPainter>
#include <QPen>

JobItemGraphic::JobItemGraphic(int index, const JobItemLook &look, double width, double height)
    : m_index(index), m_look(look), m_lookWidth(width), m_lookHeight(height), m_width(width), m_height(height)
{
    setFlag(ItemIsSelectable);
}

void JobItemGraphic::setOutside(bool outside)
{
    m_outside = outside;
    update();
}

void JobItemGraphic::setSize(double width, double height)
{
    prepareGeometryChange();
    m_width = width;
    m_height = height;
}

QRectF JobItemGraphic::boundingRect() const { return QRectF(0, 0, m_width, m_height).adjusted(-0.5, -0.5, 0.5, 0.5); }

QPainterPath JobItemGraphic::shape() const
{
    // The whole rectangle takes clicks, so thin text and outlines are easy to pick.
    QPainterPath path;
    path.addRect(QRectF(0, 0, m_width, m_height));
    return path;
}

void JobItemGraphic::paint(QPainter *painter, const QStyleOptionGraphicsItem *, QWidget *)
{
    const QRectF rect(0, 0, m_width, m_height);
    painter->save();
    if (!m_look.picture.isNull()) {
        painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
        painter->drawImage(rect, m_look.picture);
    } else if (!m_look.path.isEmpty()) {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->scale(m_lookWidth > 0 ? m_width / m_lookWidth : 1, m_lookHeight > 0 ? m_height / m_lookHeight : 1);
        QPen pen(m_look.color, 0);  // one screen pixel wide at any zoom
        pen.setCosmetic(true);
        if (m_look.filled) {
            QColor fill = m_look.color;
            painter->fillPath(m_look.path, fill);
        }
        painter->strokePath(m_look.path, pen);
    } else {
        // Nothing to show (the source does not decode): a crossed box.
        QPen pen(Qt::darkGray, 0, Qt::DashLine);
        pen.setCosmetic(true);
        painter->setPen(pen);
        painter->drawRect(rect);
        painter->drawLine(rect.topLeft(), rect.bottomRight());
        painter->drawLine(rect.topRight(), rect.bottomLeft());
    }
    painter->restore();

    if (m_outside) {
        QPen pen(QColor(220, 0, 0), 2);
        pen.setCosmetic(true);
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(rect);
    }
    if (isSelected()) {
        QPen pen(QColor(0, 120, 215), 1, Qt::DashLine);
        pen.setCosmetic(true);
        painter->setPen(pen);
        painter->setBrush(Qt::NoBrush);
        painter->drawRect(rect);
    }
}
