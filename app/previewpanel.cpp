// The toolpath preview panel: a file is read and drawn by a PreviewLoader in its own thread;
// the panel shows the picture, the figures and the warnings, in the window's language.
#include "previewpanel.h"
#include "ui_previewpanel.h"

#include "estimatedtime.h"
#include "toolpathreport.h"

#include <QDir>
#include <QDockWidget>
#include <QEvent>
#include <QFileDialog>
#include <QFileInfo>
#include <QMainWindow>
#include <QSignalBlocker>
#include <QTimer>

#include <algorithm>

namespace {

constexpr int InitialDockWidth = 300;  // pixels

}  // namespace

PreviewPanel::PreviewPanel(QWidget *parent) : QWidget(parent), ui(new Ui::PreviewPanel), m_loader(new PreviewLoader)
{
    ui->setupUi(this);
    ui->progress->hide();
    qRegisterMetaType<ToolpathSummary>();
    m_loader->moveToThread(&m_thread);
    connect(&m_thread, &QThread::finished, m_loader, &QObject::deleteLater);
    connect(m_loader, &PreviewLoader::progressed, this, &PreviewPanel::loaderProgressed);
    connect(m_loader, &PreviewLoader::loaded, this, &PreviewPanel::loaderFinished);
    connect(m_loader, &PreviewLoader::failed, this, &PreviewPanel::loaderFailed);
    m_thread.start();
    ui->view->setPicture(QImage(), pxPerMm());
    showTexts();
}

PreviewPanel::~PreviewPanel()
{
    m_loader->want(-1);  // a running read stops at its next block
    m_thread.quit();
    m_thread.wait();
    delete ui;
}

PreviewPanel *PreviewPanel::addTo(QMainWindow *window)
{
    auto *dock = new QDockWidget(window);
    dock->setObjectName(QStringLiteral("dockPreview"));
    dock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    auto *panel = new PreviewPanel(dock);
    dock->setWidget(panel);
    dock->setWindowTitle(panel->windowTitle());
    window->addDockWidget(Qt::RightDockWidgetArea, dock);
    // Narrow at first, so that the window still fits a small screen; the user can widen it.
    window->resizeDocks({dock}, {InitialDockWidth}, Qt::Horizontal);
    return panel;
}

void PreviewPanel::setMachine(const PreviewMachine &machine)
{
    if (machine == m_machine)
        return;
    m_machine = machine;
    ui->view->setWorkArea(machine.areaWidth, machine.areaHeight);
    if (m_path.isEmpty())
        return;
    m_fitPending = true;
    reload();
}

void PreviewPanel::setTimeText(TimeText text)
{
    m_timeText = std::move(text);
    showTexts();
}

void PreviewPanel::showFile(const QString &path, bool cnc)
{
    m_path = path;
    m_fitPending = true;
    {
        const QSignalBlocker block(ui->checkDepth);
        ui->checkDepth->setChecked(cnc);
    }
    // The loader reads the file once the caller is done writing it.
    QTimer::singleShot(0, this, &PreviewPanel::reload);
}

void PreviewPanel::clear()
{
    m_path.clear();
    ++m_ticket;  // a load under way reports to a ticket nobody waits for
    m_loading = false;
    m_failed = false;
    m_hasSummary = false;
    m_fitPending = false;
    ui->progress->hide();
    ui->view->setPicture(QImage(), pxPerMm());
    ui->view->setOverreach(QRectF());
    ui->view->fitMachineRect(QRectF());
    showTexts();
}

void PreviewPanel::reload()
{
    if (m_path.isEmpty())
        return;
    const int ticket = ++m_ticket;
    m_loader->want(ticket);
    m_loading = true;
    m_failed = false;
    ui->progress->setValue(0);
    ui->progress->show();
    const QString path = m_path;
    const bool travel = ui->checkTravel->isChecked();
    const bool depth = ui->checkDepth->isChecked();
    const PreviewMachine machine = m_machine;
    PreviewLoader *loader = m_loader;
    QMetaObject::invokeMethod(
        loader, [loader, ticket, path, travel, depth, machine] { loader->load(ticket, path, travel, depth, machine); },
        Qt::QueuedConnection);
    showTexts();
}

void PreviewPanel::on_btnOpen_clicked()
{
    const QString folder = m_path.isEmpty() ? QDir::currentPath() : QFileInfo(m_path).absolutePath();
    const QString path = QFileDialog::getOpenFileName(this, tr("Open G-code file"), folder,
                                                      tr("G-code (*.gcode *.nc *.ngc *.gc *.txt);;All files (*)"));
    if (!path.isEmpty())
        showFile(path, false);
}

void PreviewPanel::on_btnFit_clicked()
{
    const ToolpathSummary &s = m_summary;
    if (m_hasSummary && s.hasExtent && s.burnMovesOutside + s.travelMovesOutside > 0)
        ui->view->fitMachineRect(
            QRectF(QPointF(std::min({s.minX, s.outMinX, 0.0}), std::min({s.minY, s.outMinY, 0.0})),
                   QPointF(std::max({s.maxX, s.outMaxX, s.areaWidth}), std::max({s.maxY, s.outMaxY, s.areaHeight}))));
    else if (m_hasSummary && s.hasExtent)
        ui->view->fitMachineRect(QRectF(QPointF(s.minX, s.minY), QPointF(s.maxX, s.maxY)));
    else
        ui->view->fitMachineRect(QRectF());
}

void PreviewPanel::on_checkTravel_toggled(bool) { reload(); }

void PreviewPanel::on_checkDepth_toggled(bool) { reload(); }

void PreviewPanel::loaderProgressed(int ticket, int percent)
{
    if (ticket == m_ticket)
        ui->progress->setValue(percent);
}

void PreviewPanel::loaderFinished(int ticket, const QImage &picture, const ToolpathSummary &summary)
{
    if (ticket != m_ticket)
        return;
    m_loading = false;
    ui->progress->hide();
    m_summary = summary;
    m_hasSummary = true;
    ui->view->setPicture(picture, pxPerMm());
    // Where the job goes beyond the area: the box of everything that lies outside it.
    if (summary.burnMovesOutside + summary.travelMovesOutside > 0)
        ui->view->setOverreach(
            QRectF(QPointF(summary.outMinX, summary.outMinY), QPointF(summary.outMaxX, summary.outMaxY)));
    else
        ui->view->setOverreach(QRectF());
    if (m_fitPending) {
        m_fitPending = false;
        on_btnFit_clicked();
    }
    showTexts();
    emit shown();
}

void PreviewPanel::loaderFailed(int ticket, const QString &)
{
    if (ticket != m_ticket)
        return;
    m_loading = false;
    m_failed = true;
    m_hasSummary = false;
    ui->progress->hide();
    ui->view->setPicture(QImage(), pxPerMm());
    ui->view->setOverreach(QRectF());
    showTexts();
    emit shown();
}

QString PreviewPanel::figuresText() const
{
    if (!m_hasSummary)
        return QString();
    const ToolpathSummary &s = m_summary;
    const QString extent = s.hasExtent
                               ? tr("X %1..%2, Y %3..%4 mm")
                                     .arg(ToolpathReport::millimetres(s.minX), ToolpathReport::millimetres(s.maxX),
                                          ToolpathReport::millimetres(s.minY), ToolpathReport::millimetres(s.maxY))
                               : tr("none");
    QString text = tr("Lines: %1   Burn moves: %2   Extent: %3   Estimated time: %4")
                       .arg(s.lines)
                       .arg(s.burnMoves)
                       .arg(extent, m_timeText ? m_timeText(s.seconds) : EstimatedTimeText(float(s.seconds)));
    if (ui->checkDepth->isChecked() && s.burnMoves > 0)
        text += QLatin1Char('\n')
                + tr("Cuts from Z %1 mm (orange) down to Z %2 mm (blue)")
                      .arg(ToolpathReport::millimetres(s.maxCutZ), ToolpathReport::millimetres(s.minCutZ));
    return text;
}

QString PreviewPanel::warningsText() const
{
    if (m_failed)
        return tr("The file cannot be read.");
    if (!m_hasSummary)
        return QString();
    const ToolpathSummary &s = m_summary;
    QStringList warnings;
    if (s.burnMovesOutside + s.travelMovesOutside > 0)
        warnings << tr("Part of the job lies outside the %1 x %2 mm work area: %3 burn moves and %4 travel "
                       "moves go beyond it (%5). The machine cannot reach that part, and it is not drawn.")
                        .arg(ToolpathReport::millimetres(s.areaWidth), ToolpathReport::millimetres(s.areaHeight))
                        .arg(s.burnMovesOutside)
                        .arg(s.travelMovesOutside)
                        .arg(reachText());
    if (s.lines == 0)
        warnings << tr("The file is empty.");
    else if (s.burnMoves == 0)
        warnings << tr("Nothing burns: no move in this file runs with the beam on.");
    if (s.rapidMovesBeamOn > 0)
        warnings << tr("%1 rapid moves (G0) run with the beam on. They are drawn as travel; a machine that keeps "
                       "the beam firing during G0 burns a line there.")
                        .arg(s.rapidMovesBeamOn);
    if (s.linesNotUnderstood > 0)
        warnings << tr("%1 lines were not understood and are left out (the first is line %2).")
                        .arg(s.linesNotUnderstood)
                        .arg(s.firstLineNotUnderstood);
    return warnings.join(QLatin1Char('\n'));
}

QString PreviewPanel::reachText() const
{
    const ToolpathSummary &s = m_summary;
    QStringList sides;
    if (s.outMinX < 0)
        sides << tr("X down to %1 mm").arg(ToolpathReport::millimetres(s.outMinX));
    if (s.outMaxX > s.areaWidth)
        sides << tr("X up to %1 mm").arg(ToolpathReport::millimetres(s.outMaxX));
    if (s.outMinY < 0)
        sides << tr("Y down to %1 mm").arg(ToolpathReport::millimetres(s.outMinY));
    if (s.outMaxY > s.areaHeight)
        sides << tr("Y up to %1 mm").arg(ToolpathReport::millimetres(s.outMaxY));
    return sides.join(tr(", "));
}

void PreviewPanel::showTexts()
{
    ui->labelFile->setText(m_path.isEmpty() ? tr("No file shown yet: export a job or open a G-code file.")
                                            : QDir::toNativeSeparators(m_path));
    ui->labelFigures->setText(figuresText());
    const QString warnings = warningsText();
    ui->labelWarnings->setText(warnings);
    ui->labelWarnings->setVisible(!warnings.isEmpty());
}

void PreviewPanel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        ui->retranslateUi(this);
        if (auto *dock = qobject_cast<QDockWidget *>(parentWidget()))
            dock->setWindowTitle(windowTitle());
        showTexts();
    }
    QWidget::changeEvent(event);
}
