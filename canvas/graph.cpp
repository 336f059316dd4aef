// The canvas view: shows the scene at 1.2 times to start, zooms with the wheel
// about the mouse and carries the (hidden) rulers and their corner box.
#include "graph.h"

#include "qtcornerbox.h"
#include "qtrulebar.h"

#include <QMouseEvent>
#include <QResizeEvent>
#include <QScrollBar>
#include <QWheelEvent>

Graph::Graph(QWidget *) : QGraphicsView()
{
    // The parent is left to the layout that adopts the view.
    m_fitSceneToView = false;
    m_hRuler = new QtRuleBar(Qt::Horizontal, this, this);
    m_vRuler = new QtRuleBar(Qt::Vertical, this, this);
    m_corner = new QtCornerBox(this);
    scale(InitialScale, InitialScale);
    m_hRuler->hide();
    m_vRuler->hide();
}

void Graph::mouseMoveEvent(QMouseEvent *event)
{
    m_hRuler->setCursorPos(event->pos());
    m_vRuler->setCursorPos(event->pos());
    QGraphicsView::mouseMoveEvent(event);
}

void Graph::resizeEvent(QResizeEvent *event)
{
    m_corner->resize(CornerBoxSide, CornerBoxSide);
    m_corner->move(0, 0);
    refreshRulers();
    if (scene() && m_fitSceneToView)
        scene()->setSceneRect(0, 0, event->size().width(), event->size().height());
    QGraphicsView::resizeEvent(event);
}

void Graph::scrollContentsBy(int dx, int dy)
{
    QGraphicsView::scrollContentsBy(dx, dy);
    refreshRulers();
}

void Graph::wheelEvent(QWheelEvent *event)
{
    // Zooming belongs to the hand-drag mode only.
    if (dragMode() != QGraphicsView::ScrollHandDrag)
        return;
    const QPoint p = event->position().toPoint();
    const QPointF s = mapToScene(p);
    const double m11 = transform().m11();
    if (event->angleDelta().y() > 0) {
        scale(ZoomInFactor, ZoomInFactor);
    } else if (m11 > InitialScale) {
        // Never smaller than the start scale, where the whole area is in view.
        scale(ZoomOutFactor, ZoomOutFactor);
    }
    // Keep the scene point under the mouse where it was.
    const QPointF m = transform().map(s);
    horizontalScrollBar()->setValue(static_cast<int>(m.x() - p.x()));
    verticalScrollBar()->setValue(static_cast<int>(m.y() - p.y()));
}

void Graph::refreshRulers()
{
    // The rulers draw no scale, so they are only asked to repaint.
    if (!scene())
        return;
    m_hRuler->update();
    m_vRuler->update();
}
