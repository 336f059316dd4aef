// The view of the job's layout: rulers in millimetres from the machine origin, zoom with the wheel,
// pan with the middle button, click and shift-click and rubber-band selection, dragging to move,
// corner handles to resize (aspect kept unless shift is held), arrow keys to nudge. It changes no
// document itself: finished gestures are reported as signals for the window to apply as undo steps.
#ifndef JOBLAYOUTVIEW_H
#define JOBLAYOUTVIEW_H

#include <QGraphicsView>
#include <QList>
#include <QPointF>
#include <QRectF>

class JobLayoutScene;
class JobItemGraphic;
class JobRuler;

class JobLayoutView : public QGraphicsView
{
    Q_OBJECT

public:
    static constexpr int RulerSize = 22;  // pixels
    static constexpr double NudgeStep = 1.0;
    static constexpr double FineNudgeStep = 0.1;

    explicit JobLayoutView(JobLayoutScene *scene, QWidget *parent = nullptr);

    JobLayoutScene *layoutScene() const { return m_scene; }
    // Shows the whole bed.
    void fitBed();
    double zoom() const { return transform().m11(); }
    void zoomBy(double factor);
    // The machine millimetres under a point of the viewport.
    QPointF machineAt(const QPoint &viewportPos) const;

signals:
    // Machine millimetres: X right, Y up.
    void moveRequested(const QList<int> &indices, double dx, double dy);
    // The item's new rectangle, machine millimetres, bottom-left corner and size.
    void resizeRequested(int index, const QRectF &rect);
    void deleteRequested();
    // Files dropped on the view, and where (machine millimetres).
    void filesDropped(const QStringList &paths, const QPointF &at);
    // An item was double-clicked (to edit its text).
    void itemActivated(int index);
    // The pointer's place on the bed, machine millimetres.
    void pointerMoved(const QPointF &at);

protected:
    void drawForeground(QPainter *painter, const QRectF &rect) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    enum class Gesture { None, Move, Resize, Pan };
    // The selected item whose corner handle lies under `viewPos`, and which corner (0 top-left,
    // 1 top-right, 2 bottom-right, 3 bottom-left); null when none.
    JobItemGraphic *handleAt(const QPoint &viewPos, int *corner) const;
    QRectF handleRect(const QRectF &sceneRect, int corner) const;
    // The item a click at `viewPos` means: the smallest one under it.
    JobItemGraphic *itemUnder(const QPoint &viewPos) const;
    bool selectedUnder(const QPoint &viewPos) const;
    void updateResize(const QPointF &scenePos, bool free);

    JobLayoutScene *m_scene;
    JobRuler *m_top;
    JobRuler *m_left;
    Gesture m_gesture = Gesture::None;
    QPointF m_pressScene;
    QPoint m_lastPan;
    QList<JobItemGraphic *> m_moving;
    QList<QPointF> m_startPositions;
    JobItemGraphic *m_resizing = nullptr;
    JobItemGraphic *m_pick = nullptr;  // selected alone on release when the press moved nothing
    int m_corner = 0;
    QRectF m_startRect;  // scene
    QRectF m_newRect;    // scene
    bool m_keepAspect = true;
    bool m_moved = false;
    bool m_autoFit = false;     // the bed is refitted as the view resizes
    QTransform m_fitTransform;  // the zoom of the last fit; any other means the user zoomed
};

#endif
