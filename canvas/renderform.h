// The canvas form embedded in the main window: the view on an OpenGL viewport,
// the scene, and the scene's operations and signals under the form's name.
#ifndef RENDERFORM_H
#define RENDERFORM_H

#include <QPointF>
#include <QRectF>
#include <QWidget>
#include <memory>

class Graph;
class PGraphicsScene;
class QGraphicsScene;

namespace Ui {
class RenderForm;
}

class RenderForm : public QWidget
{
    Q_OBJECT
public:
    explicit RenderForm(QWidget *parent = nullptr);
    ~RenderForm() override;

    void LoadItemFromFile(const QString &path, int kindTag);
    void LoadSvgItem(const QString &path, int kindTag);
    QPointF CurrentItemPos();
    void ClearItems();
    bool HasSelectedItem();

    PGraphicsScene *scene() const { return m_scene; }
    Graph *view() const;
    // True when the view draws through OpenGL, false on the plain fallback viewport.
    bool hasOpenGLViewport() const { return m_openGL; }

signals:
    void SigRect(QRectF rect);
    void SigPixitem(QString path);

public slots:
    void SlotGetRect(QRectF rect);
    void SlotLineEditScale(double widthMm);
    void SlotInitScale();
    void SlotPixitemDropped(QString path);

protected:
    void dropEvent(QDropEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void installViewport();

    PGraphicsScene *m_scene = nullptr;
    std::unique_ptr<QGraphicsScene> m_spareScene;
    Ui::RenderForm *ui = nullptr;
    bool m_openGL = false;
};

#endif
