// Helpers shared by the canvas tests: mouse, hover and key events sent through a
// scene as the view would send them, small picture and drawing files, frame colours.
#ifndef CANVASTESTHELPERS_H
#define CANVASTESTHELPERS_H

#include <QApplication>
#include <QFile>
#include <QGraphicsItem>
#include <QGraphicsScene>
#include <QGraphicsSceneHoverEvent>
#include <QGraphicsSceneMouseEvent>
#include <QImage>
#include <QPainter>

// Plays one mouse gesture on a scene, keeping the press point and the last point
// the way QGraphicsView fills them in.
class SceneMouse
{
public:
    explicit SceneMouse(QGraphicsScene *scene) : m_scene(scene) {}

    void hover(const QPointF &p)
    {
        QGraphicsSceneHoverEvent ev(QEvent::GraphicsSceneHoverMove);
        ev.setScenePos(p);
        ev.setLastScenePos(m_last);
        ev.setScreenPos(p.toPoint());
        QApplication::sendEvent(m_scene, &ev);
        m_last = p;
    }
    // Hover delivered to one item whatever lies under the point.
    void hoverItem(QGraphicsItem *item, const QPointF &p)
    {
        QGraphicsSceneHoverEvent ev(QEvent::GraphicsSceneHoverMove);
        ev.setScenePos(p);
        ev.setPos(item->mapFromScene(p));
        ev.setLastScenePos(m_last);
        m_scene->sendEvent(item, &ev);
        m_last = p;
    }
    void press(const QPointF &p) { m_down = p; send(QEvent::GraphicsSceneMousePress, p, Qt::LeftButton, Qt::LeftButton); }
    void move(const QPointF &p) { send(QEvent::GraphicsSceneMouseMove, p, Qt::NoButton, Qt::LeftButton); }
    void release(const QPointF &p) { send(QEvent::GraphicsSceneMouseRelease, p, Qt::LeftButton, Qt::NoButton); }
    void doubleClick(const QPointF &p)
    {
        press(p);
        release(p);
        send(QEvent::GraphicsSceneMouseDoubleClick, p, Qt::LeftButton, Qt::LeftButton);
        release(p);
    }

private:
    void send(QEvent::Type type, const QPointF &p, Qt::MouseButton button, Qt::MouseButtons buttons)
    {
        QGraphicsSceneMouseEvent ev(type);
        ev.setScenePos(p);
        ev.setScreenPos(p.toPoint());
        ev.setLastScenePos(m_last);
        ev.setLastScreenPos(m_last.toPoint());
        ev.setButtonDownScenePos(Qt::LeftButton, m_down);
        ev.setButtonDownScreenPos(Qt::LeftButton, m_down.toPoint());
        ev.setButton(button);
        ev.setButtons(buttons);
        QApplication::sendEvent(m_scene, &ev);
        m_last = p;
    }

    QGraphicsScene *m_scene;
    QPointF m_down;
    QPointF m_last;
};

inline bool writePicture(const QString &path, int w, int h, QColor colour = QColor(0, 0, 255))
{
    QImage image(w, h, QImage::Format_RGB32);
    image.fill(colour);
    return image.save(path);
}

inline bool writeText(const QString &path, const QByteArray &text)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    return file.write(text) == text.size();
}

// Renders the scene region around the work area at 2 pixels per mm, which runs
// every item's paint as the view would.
inline QImage renderScene(QGraphicsScene *scene)
{
    const QRectF source(-30, -30, 260, 290);
    QImage image(520, 580, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    scene->render(&painter, QRectF(image.rect()), source);
    painter.end();
    return image;
}

inline int countColour(const QImage &image, QRgb colour)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            n += (line[x] & 0xffffff) == (colour & 0xffffff);
    }
    return n;
}

const QRgb FrameRed = qRgb(255, 0, 0);
const QRgb FrameGreen = qRgb(67, 240, 20);

#endif
