// The canvas view: shows the scene at 1.2 times to start, zooms with the wheel
// about the mouse and carries the (hidden) rulers and their corner box.
#ifndef GRAPH_H
#define GRAPH_H

#include <QGraphicsView>

class QtCornerBox;
class QtRuleBar;

class Graph : public QGraphicsView
{
    Q_OBJECT
public:
    explicit Graph(QWidget *parent = nullptr);

    QtRuleBar *horizontalRuler() const { return m_hRuler; }
    QtRuleBar *verticalRuler() const { return m_vRuler; }
    QtCornerBox *cornerBox() const { return m_corner; }

    static constexpr double InitialScale = 1.2;
    static constexpr double ZoomInFactor = 1.2;
    static constexpr double ZoomOutFactor = 0.8333333333333334;

protected:
    void mouseMoveEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void refreshRulers();

    static constexpr int CornerBoxSide = 16;

    bool m_fitSceneToView = false;
    QtRuleBar *m_hRuler = nullptr;
    QtRuleBar *m_vRuler = nullptr;
    QtCornerBox *m_corner = nullptr;
};

#endif
