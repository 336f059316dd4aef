// Ruler strip beside the canvas view; it follows the mouse but draws nothing,
// so the view keeps it hidden.
#ifndef QTRULEBAR_H
#define QTRULEBAR_H

#include <QAbstractScrollArea>
#include <QColor>
#include <QPoint>
#include <QWidget>

class QtRuleBar : public QWidget
{
    Q_OBJECT
public:
    QtRuleBar(Qt::Orientation orientation, QAbstractScrollArea *view, QWidget *parent = nullptr);

    void setCursorPos(const QPoint &pos);
    QPoint cursorPos() const { return m_cursorPos; }
    Qt::Orientation orientation() const { return m_orientation; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    static constexpr int LabelPixelSize = 10;

    Qt::Orientation m_orientation;
    QPoint m_cursorPos;
    QColor m_background;
    QAbstractScrollArea *m_view;
    double m_rangeStart = 0;
    double m_rangeEnd = 0;
    double m_origin = 0;
};

#endif
