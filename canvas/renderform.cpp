// The canvas form embedded in the main window: the view on an OpenGL viewport,
// the scene, and the scene's operations and signals under the form's name.
#include "renderform.h"
#include "ui_renderform.h"

#include "graph.h"
#include "pgraphicsscene.h"

#include <QDropEvent>
#include <QGLFormat>
#include <QGLWidget>
#include <QMimeData>
#include <QOpenGLContext>
#include <QUrl>

RenderForm::RenderForm(QWidget *parent) : QWidget(parent), ui(new Ui::RenderForm)
{
    ui->setupUi(this);

    // The scene belongs to the window that holds the form; a form without a
    // parent keeps it itself so it is not lost.
    m_scene = new PGraphicsScene(parent ? static_cast<QObject *>(parent) : this);
    connect(m_scene, SIGNAL(SigRect(QRectF)), this, SLOT(SlotGetRect(QRectF)));
    connect(m_scene, SIGNAL(SigPixitem(QString)), this, SLOT(SlotPixitemDropped(QString)));

    m_spareScene = std::make_unique<QGraphicsScene>();

    installViewport();

    Graph *graph = ui->graphicsView;
    graph->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    graph->setViewportUpdateMode(QGraphicsView::SmartViewportUpdate);
    graph->setScene(m_scene);
    // The wheel zoom works only in this mode.
    graph->setDragMode(QGraphicsView::ScrollHandDrag);
    graph->show();
}

RenderForm::~RenderForm() { delete ui; }

void RenderForm::installViewport()
{
    // Without an OpenGL context (offscreen platform, no driver) the view gets a
    // plain viewport instead. It is set up the same way as the GL one, so the view
    // takes keyboard focus on a click either way and Delete reaches the scene.
    QOpenGLContext probe;
    if (!probe.create()) {
        ui->graphicsView->setViewport(new QWidget);
        return;
    }
    auto *gl = new QGLWidget(QGLFormat(QGL::SampleBuffers));
    if (!gl->isValid()) {
        delete gl;
        ui->graphicsView->setViewport(new QWidget);
        return;
    }
    ui->graphicsView->setViewport(gl);
    // Installed after the view's own filter, so it sees each paint first.
    gl->setAutoFillBackground(true);
    gl->installEventFilter(this);
    m_openGL = true;
}

bool RenderForm::eventFilter(QObject *watched, QEvent *event)
{
    // The scene paints no background of its own, so the GL viewport must clear
    // itself before each paint; otherwise moved or deleted designs stay visible on
    // black. A style sheet turns the fill off when it polishes the view, hence the
    // check at every paint rather than once.
    if (m_openGL && event->type() == QEvent::Paint && watched == ui->graphicsView->viewport()) {
        auto *viewport = static_cast<QWidget *>(watched);
        if (!viewport->autoFillBackground())
            viewport->setAutoFillBackground(true);
    }
    return QWidget::eventFilter(watched, event);
}

Graph *RenderForm::view() const { return ui->graphicsView; }

void RenderForm::LoadItemFromFile(const QString &path, int kindTag) { m_scene->LoadItemFromFile(path, kindTag); }

void RenderForm::LoadSvgItem(const QString &path, int kindTag) { m_scene->LoadSvgItem(path, kindTag); }

QPointF RenderForm::CurrentItemPos() { return m_scene->CurrentItemPos(); }

void RenderForm::ClearItems() { m_scene->ClearItems(); }

bool RenderForm::HasSelectedItem() { return m_scene->HasSelectedItem(); }

void RenderForm::SlotGetRect(QRectF rect) { emit SigRect(rect); }

void RenderForm::SlotLineEditScale(double widthMm)
{
    m_scene->ScaleSelected(widthMm);
    ui->graphicsView->repaint();
    ui->graphicsView->update();
}

void RenderForm::SlotInitScale() {}

void RenderForm::SlotPixitemDropped(QString path) { emit SigPixitem(path); }

void RenderForm::dropEvent(QDropEvent *event)
{
    // Files are taken by the background item of the scene; the form lets them pass.
    const QList<QUrl> urls = event->mimeData() ? event->mimeData()->urls() : QList<QUrl>();
    if (!urls.isEmpty())
        (void)urls.first().toLocalFile();
}
