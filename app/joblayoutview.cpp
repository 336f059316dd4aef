// The view of the job's layout: rulers, zoom, pan, selection and the gestures that edit items.
#include "joblayoutview.h"

#include "jobitemgraphic.h"
#include "joblayoutscene.h"
#include "jobruler.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QUrl>
#include <QWheelEvent>

#include <cmath>

namespace {
constexpr int HandlePixels = 8;
constexpr double MinimumSize = 0.1;  // mm
}  // namespace

JobLayoutView::JobLayoutView(JobLayoutScene *scene, QWidget *parent) : QGraphicsView(scene, parent), m_scene(scene)
{
    setObjectName(QStringLiteral("jobLayoutView"));
    setRenderHint(QPainter::Antialiasing);
    setDragMode(QGraphicsView::RubberBandDrag);
    setRubberBandSelectionMode(Qt::IntersectsItemShape);
    setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    setViewportMargins(RulerSize, RulerSize, 0, 0);
    setAcceptDrops(true);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    // The selected items' corner handles reach beyond the items: partial updates would leave old
    // handles behind when an item moves or the selection changes.
    setViewportUpdateMode(QGraphicsView::FullViewportUpdate);
    m_top = new JobRuler(this, Qt::Horizontal, this);
    m_left = new JobRuler(this, Qt::Vertical, this);
}

void JobLayoutView::resizeEvent(QResizeEvent *event)
{
    QGraphicsView::resizeEvent(event);
    const QRect area = viewport()->geometry();
    m_top->setGeometry(area.left(), area.top() - RulerSize, area.width(), RulerSize);
    m_left->setGeometry(area.left() - RulerSize, area.top(), RulerSize, area.height());
    // Until the user zooms or pans, the whole bed stays in sight as the view grows and shrinks
    // (the window is laid out only when first shown, after the first fit).
    if (m_autoFit && transform() == m_fitTransform)
        fitBed();
}

void JobLayoutView::scrollContentsBy(int dx, int dy)
{
    QGraphicsView::scrollContentsBy(dx, dy);
    m_top->update();
    m_left->update();
}

QPointF JobLayoutView::machineAt(const QPoint &viewportPos) const
{
    return m_scene->toMachine(mapToScene(viewportPos));
}

void JobLayoutView::fitBed()
{
    fitInView(QRectF(-4, -4, m_scene->bedWidth() + 8, m_scene->bedHeight() + 8), Qt::KeepAspectRatio);
    m_fitTransform = transform();
    m_autoFit = true;
}

void JobLayoutView::zoomBy(double factor)
{
    const double next = zoom() * factor;
    if (next < 0.2 || next > 400)
        return;
    scale(factor, factor);
    m_top->update();
    m_left->update();
}

void JobLayoutView::wheelEvent(QWheelEvent *event)
{
    zoomBy(event->angleDelta().y() > 0 ? 1.25 : 0.8);
    event->accept();
}

QRectF JobLayoutView::handleRect(const QRectF &sceneRect, int corner) const
{
    const QPointF corners[4] = {sceneRect.topLeft(), sceneRect.topRight(), sceneRect.bottomRight(),
                                sceneRect.bottomLeft()};
    const QPoint centre = mapFromScene(corners[corner]);
    return QRectF(centre.x() - HandlePixels / 2.0, centre.y() - HandlePixels / 2.0, HandlePixels, HandlePixels);
}

JobItemGraphic *JobLayoutView::handleAt(const QPoint &viewPos, int *corner) const
{
    for (JobItemGraphic *g : m_scene->graphics()) {
        if (!g->isSelected())
            continue;
        const QRectF rect =
            g->mapRectToScene(QRectF(QPointF(), g->boundingRect().adjusted(0.5, 0.5, -0.5, -0.5).size()));
        for (int c = 0; c < 4; ++c) {
            if (handleRect(rect, c).adjusted(-2, -2, 2, 2).contains(viewPos)) {
                *corner = c;
                return g;
            }
        }
    }
    return nullptr;
}

void JobLayoutView::mousePressEvent(QMouseEvent *event)
{
    m_moved = false;
    m_pick = nullptr;
    if (event->button() == Qt::MiddleButton) {
        m_autoFit = false;
        m_gesture = Gesture::Pan;
        m_lastPan = event->pos();
        event->accept();
        return;
    }
    if (event->button() != Qt::LeftButton) {
        QGraphicsView::mousePressEvent(event);
        return;
    }
    m_pressScene = mapToScene(event->pos());
    int corner = 0;
    if (JobItemGraphic *g = handleAt(event->pos(), &corner)) {
        m_gesture = Gesture::Resize;
        m_resizing = g;
        m_corner = corner;
        m_startRect = QRectF(g->pos(), g->boundingRect().adjusted(0.5, 0.5, -0.5, -0.5).size());
        m_newRect = m_startRect;
        event->accept();
        return;
    }
    JobItemGraphic *hit = itemUnder(event->pos());
    if (hit) {
        const bool add = event->modifiers() & Qt::ShiftModifier;
        if (add) {
            hit->setSelected(!hit->isSelected());
        } else if (!hit->isSelected() && selectedUnder(event->pos())) {
            // Inside a selected item's frame: a drag moves the selection, a click picks the inner item.
            m_pick = hit;
        } else if (!hit->isSelected()) {
            QSignalBlocker blocker(m_scene);
            m_scene->clearSelection();
            blocker.unblock();
            hit->setSelected(true);
        }
        m_gesture = hit->isSelected() || m_pick ? Gesture::Move : Gesture::None;
        m_moving.clear();
        m_startPositions.clear();
        for (JobItemGraphic *g : m_scene->graphics()) {
            if (g->isSelected()) {
                m_moving.append(g);
                m_startPositions.append(g->pos());
            }
        }
        event->accept();
        return;
    }
    if (!(event->modifiers() & Qt::ShiftModifier))
        m_scene->clearSelection();
    m_gesture = Gesture::None;
    QGraphicsView::mousePressEvent(event);  // the rubber band
}

JobItemGraphic *JobLayoutView::itemUnder(const QPoint &viewPos) const
{
    // The smallest item under the pointer, so that an item inside another's frame (a text inside
    // its cut outline) can be clicked; the topmost of equal ones.
    JobItemGraphic *best = nullptr;
    double bestArea = 0;
    for (QGraphicsItem *item : items(viewPos)) {
        auto *g = dynamic_cast<JobItemGraphic *>(item);
        if (!g)
            continue;
        const QRectF rect = g->boundingRect();
        const double area = rect.width() * rect.height();
        if (!best || area < bestArea) {
            best = g;
            bestArea = area;
        }
    }
    return best;
}

bool JobLayoutView::selectedUnder(const QPoint &viewPos) const
{
    for (QGraphicsItem *item : items(viewPos))
        if (dynamic_cast<JobItemGraphic *>(item) && item->isSelected())
            return true;
    return false;
}

void JobLayoutView::updateResize(const QPointF &scenePos, bool free)
{
    // The corner opposite the dragged one stays where it is.
    const QPointF corners[4] = {m_startRect.topLeft(), m_startRect.topRight(), m_startRect.bottomRight(),
                                m_startRect.bottomLeft()};
    const QPointF anchor = corners[(m_corner + 2) % 4];
    double width = std::max(MinimumSize, std::abs(scenePos.x() - anchor.x()));
    double height = std::max(MinimumSize, std::abs(scenePos.y() - anchor.y()));
    if (!free && m_startRect.width() > 0 && m_startRect.height() > 0) {
        const double factor = std::max(width / m_startRect.width(), height / m_startRect.height());
        width = m_startRect.width() * factor;
        height = m_startRect.height() * factor;
    }
    const double left = (m_corner == 0 || m_corner == 3) ? anchor.x() - width : anchor.x();
    const double top = (m_corner == 0 || m_corner == 1) ? anchor.y() - height : anchor.y();
    m_newRect = QRectF(left, top, width, height);
    m_resizing->setPos(m_newRect.topLeft());
    m_resizing->setSize(width, height);
}

void JobLayoutView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF scenePos = mapToScene(event->pos());
    emit pointerMoved(m_scene->toMachine(scenePos));
    switch (m_gesture) {
    case Gesture::Pan: {
        const QPoint delta = event->pos() - m_lastPan;
        m_lastPan = event->pos();
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - delta.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - delta.y());
        return;
    }
    case Gesture::Move: {
        const QPointF delta = scenePos - m_pressScene;
        m_moved = m_moved || (mapFromScene(scenePos) - mapFromScene(m_pressScene)).manhattanLength() >= 2;
        if (m_moved)
            for (int i = 0; i < m_moving.size(); ++i)
                m_moving[i]->setPos(m_startPositions[i] + delta);
        return;
    }
    case Gesture::Resize:
        m_moved = true;
        updateResize(scenePos, event->modifiers() & Qt::ShiftModifier);
        return;
    case Gesture::None:
        break;
    }
    int corner = 0;
    if (!(event->buttons() & Qt::LeftButton))
        viewport()->setCursor(handleAt(event->pos(), &corner)
                                  ? ((corner % 2) == 0 ? Qt::SizeFDiagCursor : Qt::SizeBDiagCursor)
                                  : Qt::ArrowCursor);
    QGraphicsView::mouseMoveEvent(event);
}

void JobLayoutView::mouseReleaseEvent(QMouseEvent *event)
{
    const Gesture gesture = m_gesture;
    m_gesture = Gesture::None;
    if (gesture == Gesture::Move && m_moved && !m_moving.isEmpty()) {
        const QPointF delta = m_moving.first()->pos() - m_startPositions.first();
        QList<int> indices;
        for (JobItemGraphic *g : m_moving)
            indices.append(g->index());
        m_moving.clear();
        m_pick = nullptr;
        emit moveRequested(indices, delta.x(), -delta.y());
        return;
    }
    if (gesture == Gesture::Resize && m_moved && m_resizing) {
        JobItemGraphic *g = m_resizing;
        m_resizing = nullptr;
        const QPointF bottomLeft = m_scene->toMachine(m_newRect.bottomLeft());
        emit resizeRequested(g->index(), QRectF(bottomLeft, m_newRect.size()));
        return;
    }
    m_moving.clear();
    m_resizing = nullptr;
    if (JobItemGraphic *pick = m_pick) {
        m_pick = nullptr;
        QSignalBlocker blocker(m_scene);
        m_scene->clearSelection();
        blocker.unblock();
        pick->setSelected(true);
        return;
    }
    if (gesture == Gesture::None)
        QGraphicsView::mouseReleaseEvent(event);
}

void JobLayoutView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (JobItemGraphic *hit = itemUnder(event->pos())) {
        emit itemActivated(hit->index());
        event->accept();
        return;
    }
    QGraphicsView::mouseDoubleClickEvent(event);
}

void JobLayoutView::keyPressEvent(QKeyEvent *event)
{
    const double step = (event->modifiers() & Qt::ShiftModifier) ? FineNudgeStep : NudgeStep;
    double dx = 0, dy = 0;
    switch (event->key()) {
    case Qt::Key_Left:
        dx = -step;
        break;
    case Qt::Key_Right:
        dx = step;
        break;
    case Qt::Key_Up:
        dy = step;
        break;
    case Qt::Key_Down:
        dy = -step;
        break;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        emit deleteRequested();
        return;
    default:
        QGraphicsView::keyPressEvent(event);
        return;
    }
    const QList<int> selected = m_scene->selectedIndices();
    if (!selected.isEmpty())
        emit moveRequested(selected, dx, dy);
    event->accept();
}

void JobLayoutView::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void JobLayoutView::dragMoveEvent(QDragMoveEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void JobLayoutView::dropEvent(QDropEvent *event)
{
    QStringList paths;
    for (const QUrl &url : event->mimeData()->urls())
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    if (paths.isEmpty())
        return;
    event->acceptProposedAction();
    emit filesDropped(paths, m_scene->toMachine(mapToScene(event->pos())));
}

void JobLayoutView::drawForeground(QPainter *painter, const QRectF &)
{
    // Corner handles of the selected items, a fixed size on screen.
    painter->save();
    painter->resetTransform();
    painter->setPen(QPen(QColor(0, 120, 215), 1));
    painter->setBrush(Qt::white);
    for (JobItemGraphic *g : m_scene->graphics()) {
        if (!g->isSelected())
            continue;
        const QRectF rect =
            g->mapRectToScene(QRectF(QPointF(), g->boundingRect().adjusted(0.5, 0.5, -0.5, -0.5).size()));
        for (int c = 0; c < 4; ++c)
            painter->drawRect(handleRect(rect, c));
    }
    painter->restore();
}
