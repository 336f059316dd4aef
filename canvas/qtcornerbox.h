// The square where the two rulers of the canvas view meet; it stays visible
// at the view's top-left corner and draws nothing.
#ifndef QTCORNERBOX_H
#define QTCORNERBOX_H

#include <QWidget>

class QtCornerBox : public QWidget
{
    Q_OBJECT
public:
    explicit QtCornerBox(QWidget *parent = nullptr);

protected:
    void paintEvent(QPaintEvent *event) override;
};

#endif
