// The main window's way into the Job window: the "Job" button beside the Machine button, and
// "Add to job", which copies the canvas's prepared picture or drawing into the job.
#include "draw.h"
#include "ui_draw.h"

#include "jobwindow.h"
#include "machinepanel.h"
#include "pgraphicsscene.h"
#include "renderform.h"
#include "workarea.h"

#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QPushButton>

void Draw::setUpJobWindow()
{
    m_jobWindow = new JobWindow(this);
    m_jobWindow->setMachinePanel(m_machinePanel);

    auto *open = new QPushButton(this);
    open->setObjectName(QStringLiteral("btnJobWindow"));
    connect(open, &QPushButton::clicked, this, [this] {
        m_jobWindow->show();
        m_jobWindow->raise();
        m_jobWindow->activateWindow();
    });
    auto *add = new QPushButton(this);
    add->setObjectName(QStringLiteral("btnAddToJob"));
    connect(add, &QPushButton::clicked, this, [this] {
        if (addToJob() >= 0) {
            m_jobWindow->show();
            m_jobWindow->raise();
        }
    });
    auto retranslate = [open, add] {
        open->setText(JobWindow::tr("Job"));
        add->setText(JobWindow::tr("Add to job"));
        add->setToolTip(JobWindow::tr("Copy the prepared picture or drawing into the Job window"));
    };
    retranslate();
    connect(m_jobWindow, &JobWindow::languageChanged, this, retranslate);
    ui->layoutLanguage->insertWidget(1, open);
    ui->layoutLanguage->insertWidget(2, add);
}

int Draw::addToJob()
{
    const QPointF pos = m_renderForm->CurrentItemPos();
    if (!m_pictureLoaded || m_loadedPath.isEmpty() || pos.x() == PGraphicsScene::NoPosition.x())
        return -1;
    QFile file(m_loadedPath);
    if (!file.open(QIODevice::ReadOnly))
        return -1;
    const double width = ui->w_line->text().toDouble(), height = ui->h_line->text().toDouble();
    const QRectF rect(pos.x(), WorkArea::Height - pos.y() - height, width, height);
    const bool svg = QFileInfo(m_loadedPath).suffix().compare(QLatin1String("svg"), Qt::CaseInsensitive) == 0;
    const QString name = QFileInfo(m_picturePath.isEmpty() ? m_loadedPath : m_picturePath).fileName();
    return m_jobWindow->addFromCanvas(svg ? SourceKind::Svg : SourceKind::Picture, name, file.readAll(), rect);
}
