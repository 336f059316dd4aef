// A ruler beside the job's layout view: millimetres from the machine origin (X to the right, Y up from
// the bed's bottom edge), with a tick spacing that suits the zoom.
#ifndef JOBRULER_H
#define JOBRULER_H

#include <QWidget>

class JobLayoutView;

class JobRuler : public QWidget
{
    Q_OBJECT

public:
    JobRuler(JobLayoutView *view, Qt::Orientation orientation, QWidget *parent = nullptr);

    // The labelled step in millimetres for `pixelsPerMm`: the smallest of 1, 2, 5, 10, 20, 50, 100 mm
    // that puts labels at least 40 pixels apart.
    static double labelStep(double pixelsPerMm);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    JobLayoutView *m_view;
    Qt::Orientation m_orientation;
};

#endif
