// The Job window: menus, toolbar, layout, layer panel, files, export and the machine.
#include "jobwindow.h"

#include "configfile.h"

#include "jobdialect.h"
#include "jobedits.h"
#include "jobexport.h"
#include "jobfile.h"
#include "jobformat.h"
#include "jobgeometry.h"
#include "jobitemgraphic.h"
#include "joblayoutscene.h"
#include "joblayoutview.h"
#include "jobmodel.h"
#include "jobtextdialog.h"
#include "layerpanel.h"
#include "machinepanel.h"
#include "machineprofiledialog.h"
#include "machineprofilestore.h"
#include "previewpanel.h"
#include "testgriddialog.h"

#include <QAction>
#include <QCheckBox>
#include <QCloseEvent>
#include <QDir>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QSaveFile>
#include <QScrollArea>
#include <QStandardPaths>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QToolBar>
#include <QUndoStack>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

namespace {

constexpr int MaxRecent = 8;
constexpr double PixelMm = 25.4 / 96;  // a traced picture's pixel, at the CSS resolution
constexpr double StartPictureMm = 50;  // a new picture's longer side
constexpr double StartQrMm = 30;

QString recentPath()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/recent-jobs.json");
}

// A millimetre field that never gets narrower than its longest value, when a crowded toolbar
// squeezes it.
class MmField : public QDoubleSpinBox
{
public:
    QSize minimumSizeHint() const override { return sizeHint(); }
};

QDoubleSpinBox *field(double min)
{
    auto *box = new MmField;
    box->setRange(min, 10000);
    box->setDecimals(2);
    box->setSingleStep(1);
    box->setSuffix(QStringLiteral(" mm"));
    box->setKeyboardTracking(false);
    box->setSpecialValueText(QStringLiteral("\u2014"));  // shown (at the minimum) while nothing is selected
    return box;
}

// The machine the preview reads the job's G-code for: the profile's bed, motion and full power.
PreviewMachine previewMachine(const MachineProfile &profile)
{
    PreviewMachine machine;
    machine.areaWidth = profile.bedWidth;
    machine.areaHeight = profile.bedHeight;
    machine.acceleration = profile.acceleration;
    machine.travelSpeed = profile.travelSpeed;
    machine.fullScale = JobDialect::fullScale(profile);
    return machine;
}

}  // namespace

JobWindow::JobWindow(QWidget *parent) : QMainWindow(parent)
{
    setObjectName(QStringLiteral("JobWindow"));
    setWindowFlag(Qt::Window);  // a window of its own, also when the main window owns it
    resize(1280, 860);
    m_model = new JobModel(this);
    m_scene = new JobLayoutScene(this);
    m_view = new JobLayoutView(m_scene, this);
    setCentralWidget(m_view);

    m_layers = new LayerPanel(m_model, this);
    auto *layerDock = new QDockWidget(this);
    layerDock->setObjectName(QStringLiteral("layerDock"));
    // The settings of an image layer are long: they scroll in a low window.
    auto *layerScroll = new QScrollArea;
    layerScroll->setWidget(m_layers);
    layerScroll->setWidgetResizable(true);
    layerScroll->setFrameShape(QFrame::NoFrame);
    layerDock->setWidget(layerScroll);
    layerDock->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    addDockWidget(Qt::RightDockWidgetArea, layerDock);

    auto *previewBox = new QWidget;
    auto *previewLayout = new QVBoxLayout(previewBox);
    previewLayout->setContentsMargins(0, 0, 0, 0);
    m_summaryLabel = new QLabel;
    m_summaryLabel->setObjectName(QStringLiteral("summaryLabel"));
    m_summaryLabel->setWordWrap(true);
    m_summaryLabel->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_preview = new PreviewPanel;
    // The preview reads files for the job's machine, so its time is the engine's estimate; it writes it
    // as the job's times above it are written.
    m_preview->setMachine(previewMachine(MachineProfile()));
    m_preview->setTimeText([](double seconds) { return QString::fromLatin1(JobFormat::duration(seconds)); });
    previewLayout->addWidget(m_summaryLabel);
    previewLayout->addWidget(m_preview, 1);
    auto *previewDock = new QDockWidget(this);
    previewDock->setObjectName(QStringLiteral("jobPreviewDock"));
    previewDock->setWidget(previewBox);
    layerDock->setMinimumWidth(360);
    previewDock->setMinimumWidth(360);
    addDockWidget(Qt::RightDockWidgetArea, previewDock);
    tabifyDockWidget(layerDock, previewDock);
    layerDock->raise();

    m_pointerLabel = new QLabel;
    statusBar()->addPermanentWidget(m_pointerLabel);

    m_chooseFile = [this](FileQuestion question, const QString &title, const QString &filter) {
        const bool saving = question == FileQuestion::SaveJob || question == FileQuestion::ExportGcode;
        return saving ? QFileDialog::getSaveFileName(this, title, QString(), filter)
                      : QFileDialog::getOpenFileName(this, title, QString(), filter);
    };
    m_askClose = [this](const QString &text) {
        QMessageBox box(QMessageBox::Question, windowTitle(), text, QMessageBox::NoButton, this);
        QPushButton *save = box.addButton(tr("Save"), QMessageBox::AcceptRole);
        QPushButton *discard = box.addButton(tr("Discard"), QMessageBox::DestructiveRole);
        box.addButton(tr("Cancel"), QMessageBox::RejectRole);
        box.setDefaultButton(save);
        box.exec();
        return box.clickedButton() == save      ? CloseAnswer::Save
               : box.clickedButton() == discard ? CloseAnswer::Discard
                                                : CloseAnswer::Cancel;
    };
    m_showNotice = [this](const QString &text) {
        QMessageBox box(QMessageBox::Warning, windowTitle(), text, QMessageBox::NoButton, this);
        box.addButton(tr("OK"), QMessageBox::AcceptRole);
        box.exec();
    };
    m_askSource = [this](JobSource *source) {
        JobTextDialog dialog(source->kind, this);
        dialog.setSource(*source);
        if (dialog.exec() != QDialog::Accepted)
            return false;
        *source = dialog.source();
        return true;
    };

    m_profiles = std::make_unique<MachineProfileStore>();
    QString profileError;
    if (!m_profiles->load(&profileError))
        statusBar()->showMessage(profileError, 8000);
    m_editProfiles = [this](MachineProfileStore *store) {
        MachineProfileDialog dialog(*store, this);
        if (m_machine)
            dialog.setLink(m_machine->link());
        if (dialog.exec() != QDialog::Accepted)
            return false;
        *store = dialog.store();
        return true;
    };

    m_askGrid = [this](JobDocument *grid) {
        TestGridDialog dialog(document().machine, this);
        while (dialog.exec() == QDialog::Accepted) {
            QString error;
            if (dialog.makeDocument(grid, &error))
                return true;
            notice(error);
        }
        return false;
    };

    buildActions();
    buildMenus();
    buildToolBars();

    connect(m_model, &JobModel::documentChanged, this, [this] {
        m_scene->setDocument(m_model->document());
        updateFields();
        updateActions();
        // An empty preview shows the bed of the job's machine; an exported file keeps the machine it was
        // written for.
        if (m_exported.isEmpty())
            m_preview->setMachine(previewMachine(document().machine));
    });
    connect(m_model, &JobModel::modifiedChanged, this, &JobWindow::updateTitle);
    connect(m_model, &JobModel::filePathChanged, this, &JobWindow::updateTitle);
    connect(m_scene, &QGraphicsScene::selectionChanged, this, [this] {
        updateFields();
        updateActions();
        // The layer panel shows the settings the selected items burn with, when they share a layer.
        int layer = -1;
        for (int i : selection()) {
            const int itemLayer = document().items[size_t(i)].layer;
            if (layer >= 0 && itemLayer != layer)
                return;
            layer = itemLayer;
        }
        if (layer >= 0 && layer < int(document().layers.size()) && layer != m_layers->currentLayer())
            m_layers->setCurrentLayer(layer);
    });
    connect(m_view, &JobLayoutView::moveRequested, this, [this](const QList<int> &items, double dx, double dy) {
        m_model->change(tr("Move"), [&](JobDocument &doc) { JobEdits::moveItems(&doc, items, dx, dy); });
        m_scene->setDocument(m_model->document());  // puts items back when nothing changed
    });
    connect(m_view, &JobLayoutView::resizeRequested, this, [this](int item, const QRectF &rect) {
        m_model->change(tr("Resize"), [&](JobDocument &doc) { JobEdits::setItemRect(&doc, item, rect); });
        m_scene->setDocument(m_model->document());
    });
    connect(m_view, &JobLayoutView::deleteRequested, this, &JobWindow::deleteSelection);
    connect(m_view, &JobLayoutView::itemActivated, this, &JobWindow::editItemText);
    connect(m_view, &JobLayoutView::filesDropped, this, [this](const QStringList &paths, const QPointF &at) {
        for (const QString &path : paths)
            addFile(path, &at);
    });
    connect(m_view, &JobLayoutView::pointerMoved, this, [this](const QPointF &at) {
        m_pointerLabel->setText(QStringLiteral("X %1  Y %2 mm").arg(at.x(), 0, 'f', 1).arg(at.y(), 0, 'f', 1));
    });

    retranslateUi();
    newJob();
    if (parent)
        parent->installEventFilter(this);
}

bool JobWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == parentWidget() && event->type() == QEvent::Close) {
        if (!maybeSave()) {
            event->ignore();
            return true;
        }
        // The main window closes this one too as it goes: that close asks nothing more. Should the
        // main window stay after all, a later close asks again.
        m_closeApproved = true;
        QTimer::singleShot(0, this, [this] { m_closeApproved = false; });
    }
    return QMainWindow::eventFilter(watched, event);
}

// The model and its undo stack are children that outlive this object's own part: nothing they
// say while they go may reach this window.
JobWindow::~JobWindow()
{
    disconnect(m_model, nullptr, this, nullptr);
    disconnect(m_model->undoStack(), nullptr, this, nullptr);
}

const JobDocument &JobWindow::document() const { return m_model->document(); }

void JobWindow::buildActions()
{
    auto make = [this](const QKeySequence &keys, const char *name) {
        auto *action = new QAction(this);
        action->setObjectName(QLatin1String(name));
        if (!keys.isEmpty())
            action->setShortcut(keys);
        return action;
    };
    m_new = make(QKeySequence::New, "actionNewJob");
    m_open = make(QKeySequence::Open, "actionOpenJob");
    m_save = make(QKeySequence::Save, "actionSaveJob");
    m_saveAs = make(QKeySequence::SaveAs, "actionSaveJobAs");
    m_export = make(QKeySequence(Qt::CTRL + Qt::Key_E), "actionExportJob");
    m_close = make(QKeySequence::Close, "actionCloseJobWindow");
    // Undo and redo name the step in the interface language of the moment (QUndoStack's own
    // actions keep the words of the language they were made in).
    m_undo = make(QKeySequence::Undo, "actionUndo");
    m_redo = make(QKeySequence::Redo, "actionRedo");
    QUndoStack *stack = m_model->undoStack();
    connect(m_undo, &QAction::triggered, stack, &QUndoStack::undo);
    connect(m_redo, &QAction::triggered, stack, &QUndoStack::redo);
    connect(stack, &QUndoStack::indexChanged, this, &JobWindow::updateUndoTexts);
    connect(stack, &QUndoStack::undoTextChanged, this, &JobWindow::updateUndoTexts);
    connect(stack, &QUndoStack::redoTextChanged, this, &JobWindow::updateUndoTexts);
    m_addPicture = make(QKeySequence(), "actionAddPicture");
    m_addSvg = make(QKeySequence(), "actionAddSvg");
    m_addText = make(QKeySequence(Qt::CTRL + Qt::Key_T), "actionAddText");
    m_addQr = make(QKeySequence(), "actionAddQr");
    m_duplicate = make(QKeySequence(Qt::CTRL + Qt::Key_D), "actionDuplicate");
    m_delete = make(QKeySequence::Delete, "actionDelete");
    m_centre = make(QKeySequence(), "actionCentre");
    m_selectAll = make(QKeySequence::SelectAll, "actionSelectAll");
    m_alignLeft = make(QKeySequence(), "actionAlignLeft");
    m_alignHCenter = make(QKeySequence(), "actionAlignHCenter");
    m_alignRight = make(QKeySequence(), "actionAlignRight");
    m_alignBottom = make(QKeySequence(), "actionAlignBottom");
    m_alignVCenter = make(QKeySequence(), "actionAlignVCenter");
    m_alignTop = make(QKeySequence(), "actionAlignTop");
    m_addLayer = make(QKeySequence(), "actionAddLayer");
    m_profilesAction = make(QKeySequence(), "actionMachineProfiles");
    m_gridAction = make(QKeySequence(), "actionTestGrid");
    m_frame = make(QKeySequence(), "actionFrame");
    m_run = make(QKeySequence(), "actionRunJob");
    m_zoomIn = make(QKeySequence::ZoomIn, "actionZoomIn");
    m_zoomOut = make(QKeySequence::ZoomOut, "actionZoomOut");
    m_fit = make(QKeySequence(Qt::CTRL + Qt::Key_0), "actionFitBed");
    // Keys a desktop may leave unbound (a bare X server binds none for Save as), so they always work.
    const std::pair<QAction *, QKeySequence> usual[] = {{m_saveAs, QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_S)},
                                                        {m_close, QKeySequence(Qt::CTRL + Qt::Key_W)},
                                                        {m_undo, QKeySequence(Qt::CTRL + Qt::Key_Z)},
                                                        {m_redo, QKeySequence(Qt::CTRL + Qt::SHIFT + Qt::Key_Z)},
                                                        {m_delete, QKeySequence(Qt::Key_Delete)},
                                                        {m_selectAll, QKeySequence(Qt::CTRL + Qt::Key_A)},
                                                        {m_zoomIn, QKeySequence(Qt::CTRL + Qt::Key_Plus)},
                                                        {m_zoomOut, QKeySequence(Qt::CTRL + Qt::Key_Minus)}};
    for (const auto &pair : usual)
        if (pair.first->shortcut().isEmpty())
            pair.first->setShortcut(pair.second);

    connect(m_new, &QAction::triggered, this, [this] {
        if (maybeSave())
            newJob();
    });
    connect(m_open, &QAction::triggered, this, [this] {
        if (!maybeSave())
            return;
        const QString path = m_chooseFile(FileQuestion::OpenJob, tr("Open job"), jobFilter());
        if (!path.isEmpty())
            openJob(path);
    });
    connect(m_save, &QAction::triggered, this, &JobWindow::save);
    connect(m_saveAs, &QAction::triggered, this, &JobWindow::saveAs);
    connect(m_export, &QAction::triggered, this, &JobWindow::exportJob);
    connect(m_close, &QAction::triggered, this, &QWidget::close);
    connect(m_addPicture, &QAction::triggered, this, [this] {
        const QString path =
            m_chooseFile(FileQuestion::AddFile, tr("Add picture"), tr("Pictures (*.png *.jpg *.jpeg *.bmp *.gif)"));
        if (!path.isEmpty())
            addFile(path);
    });
    connect(m_addSvg, &QAction::triggered, this, [this] {
        const QString path = m_chooseFile(FileQuestion::AddFile, tr("Add SVG"), tr("SVG drawings (*.svg)"));
        if (!path.isEmpty())
            addFile(path);
    });
    connect(m_addText, &QAction::triggered, this, &JobWindow::addText);
    connect(m_addQr, &QAction::triggered, this, &JobWindow::addQr);
    connect(m_duplicate, &QAction::triggered, this, &JobWindow::duplicateSelection);
    connect(m_delete, &QAction::triggered, this, &JobWindow::deleteSelection);
    connect(m_centre, &QAction::triggered, this, &JobWindow::centreSelection);
    connect(m_selectAll, &QAction::triggered, this, [this] {
        QList<int> all;
        for (int i = 0; i < int(document().items.size()); ++i)
            all.append(i);
        setSelection(all);
    });
    const std::pair<QAction *, JobEdits::Align> aligns[] = {
        {m_alignLeft, JobEdits::Align::Left},       {m_alignHCenter, JobEdits::Align::HCenter},
        {m_alignRight, JobEdits::Align::Right},     {m_alignBottom, JobEdits::Align::Bottom},
        {m_alignVCenter, JobEdits::Align::VCenter}, {m_alignTop, JobEdits::Align::Top}};
    for (const auto &pair : aligns) {
        const JobEdits::Align align = pair.second;
        connect(pair.first, &QAction::triggered, this, [this, align] {
            const QList<int> items = selection();
            m_model->change(tr("Align"), [&](JobDocument &doc) { JobEdits::alignItems(&doc, items, align); });
        });
    }
    connect(m_addLayer, &QAction::triggered, this, [this] {
        int added = -1;
        m_model->change(tr("Add layer"), [&](JobDocument &doc) { added = JobEdits::addLayer(&doc, Operation::Image); });
        m_layers->setCurrentLayer(added);
    });
    connect(m_profilesAction, &QAction::triggered, this, &JobWindow::editProfiles);
    connect(m_gridAction, &QAction::triggered, this, &JobWindow::newTestGrid);
    connect(m_frame, &QAction::triggered, this, &JobWindow::frameJob);
    connect(m_run, &QAction::triggered, this, &JobWindow::runJob);
    connect(m_zoomIn, &QAction::triggered, this, [this] { m_view->zoomBy(1.25); });
    connect(m_zoomOut, &QAction::triggered, this, [this] { m_view->zoomBy(0.8); });
    connect(m_fit, &QAction::triggered, m_view, &JobLayoutView::fitBed);
}

void JobWindow::buildMenus()
{
    m_fileMenu = menuBar()->addMenu(QString());
    m_fileMenu->addAction(m_new);
    m_fileMenu->addAction(m_open);
    m_recentMenu = m_fileMenu->addMenu(QString());
    connect(m_recentMenu, &QMenu::aboutToShow, this, &JobWindow::fillRecentMenu);
    m_fileMenu->addAction(m_save);
    m_fileMenu->addAction(m_saveAs);
    m_fileMenu->addSeparator();
    m_fileMenu->addAction(m_export);
    m_fileMenu->addSeparator();
    m_fileMenu->addAction(m_close);

    m_editMenu = menuBar()->addMenu(QString());
    m_editMenu->addAction(m_undo);
    m_editMenu->addAction(m_redo);
    m_editMenu->addSeparator();
    m_editMenu->addAction(m_addPicture);
    m_editMenu->addAction(m_addSvg);
    m_editMenu->addAction(m_addText);
    m_editMenu->addAction(m_addQr);
    m_editMenu->addSeparator();
    m_editMenu->addAction(m_selectAll);
    m_editMenu->addAction(m_duplicate);
    m_editMenu->addAction(m_delete);
    m_alignMenu = m_editMenu->addMenu(QString());
    for (QAction *a : {m_alignLeft, m_alignHCenter, m_alignRight, m_alignBottom, m_alignVCenter, m_alignTop})
        m_alignMenu->addAction(a);
    m_editMenu->addAction(m_centre);
    m_editMenu->addSeparator();
    m_editMenu->addAction(m_zoomIn);
    m_editMenu->addAction(m_zoomOut);
    m_editMenu->addAction(m_fit);

    m_layerMenu = menuBar()->addMenu(QString());
    m_layerMenu->addAction(m_addLayer);
    m_moveToMenu = m_layerMenu->addMenu(QString());
    connect(m_moveToMenu, &QMenu::aboutToShow, this, [this] {
        m_moveToMenu->clear();
        for (int i = 0; i < int(document().layers.size()); ++i) {
            QAction *a = m_moveToMenu->addAction(document().layers[size_t(i)].name);
            connect(a, &QAction::triggered, this, [this, i] { moveSelectionToLayer(i); });
        }
    });

    m_machineMenu = menuBar()->addMenu(QString());
    m_machineMenu->addAction(m_profilesAction);
    m_machineMenu->addAction(m_gridAction);
    m_machineMenu->addSeparator();
    m_machineMenu->addAction(m_frame);
    m_machineMenu->addAction(m_run);
}

void JobWindow::buildToolBars()
{
    m_mainBar = addToolBar(QString());
    m_mainBar->setObjectName(QStringLiteral("jobToolBar"));
    m_mainBar->setToolButtonStyle(Qt::ToolButtonTextOnly);
    for (QAction *a : {m_new, m_open, m_save})
        m_mainBar->addAction(a);
    m_mainBar->addSeparator();
    for (QAction *a : {m_addPicture, m_addSvg, m_addText, m_addQr})
        m_mainBar->addAction(a);
    m_mainBar->addSeparator();
    for (QAction *a : {m_undo, m_redo})
        m_mainBar->addAction(a);
    m_mainBar->addSeparator();
    for (QAction *a : {m_export, m_frame, m_run})
        m_mainBar->addAction(a);
    m_framePowerLabel = new QLabel;
    m_framePower = new QDoubleSpinBox;
    m_framePower->setObjectName(QStringLiteral("framePower"));
    m_framePower->setRange(0, 10);
    m_framePower->setDecimals(0);
    m_framePower->setSuffix(QStringLiteral(" %"));
    m_mainBar->addWidget(m_framePowerLabel);
    m_mainBar->addWidget(m_framePower);

    addToolBarBreak();
    m_itemBar = addToolBar(QString());
    m_itemBar->setObjectName(QStringLiteral("itemToolBar"));
    m_xField = field(-10000);
    m_yField = field(-10000);
    m_wField = field(0);
    m_hField = field(0);
    m_xField->setObjectName(QStringLiteral("xField"));
    m_yField->setObjectName(QStringLiteral("yField"));
    m_wField->setObjectName(QStringLiteral("widthField"));
    m_hField->setObjectName(QStringLiteral("heightField"));
    m_xLabel = new QLabel;
    m_yLabel = new QLabel;
    m_wLabel = new QLabel;
    m_hLabel = new QLabel;
    m_keepAspect = new QCheckBox;
    m_keepAspect->setObjectName(QStringLiteral("keepAspect"));
    const std::pair<QLabel *, QDoubleSpinBox *> fields[] = {
        {m_xLabel, m_xField}, {m_yLabel, m_yField}, {m_wLabel, m_wField}, {m_hLabel, m_hField}};
    int which = 0;
    for (const auto &pair : fields) {
        m_itemBar->addWidget(pair.first);
        m_itemBar->addWidget(pair.second);
        connect(pair.second, &QDoubleSpinBox::editingFinished, this, [this, which] { applyField(which); });
        ++which;
    }
    m_itemBar->addWidget(m_keepAspect);
    connect(m_keepAspect, &QCheckBox::toggled, this, [this](bool on) {
        if (m_updatingFields)
            return;
        const QList<int> items = selection();
        m_model->change(tr("Keep proportions"), [&](JobDocument &doc) {
            for (int i : items)
                doc.items[size_t(i)].keepAspect = on;
        });
    });
    m_itemBar->addSeparator();
    for (QAction *a : {m_alignLeft, m_alignHCenter, m_alignRight, m_alignBottom, m_alignVCenter, m_alignTop})
        m_itemBar->addAction(a);
    m_itemBar->addAction(m_centre);
    m_itemBar->addAction(m_duplicate);
    m_itemBar->addAction(m_delete);
}

void JobWindow::retranslateUi()
{
    m_fileMenu->setTitle(tr("&File"));
    m_editMenu->setTitle(tr("&Edit"));
    m_layerMenu->setTitle(tr("&Layer"));
    m_machineMenu->setTitle(tr("&Machine"));
    m_recentMenu->setTitle(tr("Open &recent"));
    m_alignMenu->setTitle(tr("Align"));
    m_moveToMenu->setTitle(tr("Move selection to layer"));
    m_new->setText(tr("New"));
    m_open->setText(tr("Open…"));
    m_save->setText(tr("Save"));
    m_saveAs->setText(tr("Save as…"));
    m_export->setText(tr("Export job…"));
    m_close->setText(tr("Close"));
    updateUndoTexts();
    m_addPicture->setText(tr("Add picture…"));
    m_addSvg->setText(tr("Add SVG…"));
    m_addText->setText(tr("Add text…"));
    m_addQr->setText(tr("Add QR code…"));
    m_duplicate->setText(tr("Duplicate"));
    m_delete->setText(tr("Delete"));
    m_centre->setText(tr("Centre on bed"));
    m_selectAll->setText(tr("Select all"));
    m_alignLeft->setText(tr("Align left"));
    m_alignHCenter->setText(tr("Align centres across"));
    m_alignRight->setText(tr("Align right"));
    m_alignBottom->setText(tr("Align bottom"));
    m_alignVCenter->setText(tr("Align centres up and down"));
    m_alignTop->setText(tr("Align top"));
    m_addLayer->setText(tr("Add layer"));
    m_frame->setText(tr("Frame"));
    m_profilesAction->setText(tr("Machine profiles…"));
    m_gridAction->setText(tr("Material test grid…"));
    m_run->setText(tr("Run job"));
    m_zoomIn->setText(tr("Zoom in"));
    m_zoomOut->setText(tr("Zoom out"));
    m_fit->setText(tr("Show the whole bed"));
    m_framePowerLabel->setText(tr(" Frame power "));
    m_framePower->setToolTip(tr("0 traces the frame with the beam off"));
    m_mainBar->setWindowTitle(tr("Job"));
    m_itemBar->setWindowTitle(tr("Item"));
    m_xLabel->setText(tr(" X "));
    m_yLabel->setText(tr(" Y "));
    m_wLabel->setText(tr(" W "));
    m_hLabel->setText(tr(" H "));
    m_xField->setToolTip(tr("Left edge, from the bed's left side"));
    m_yField->setToolTip(tr("Bottom edge, from the bed's front side"));
    m_wField->setToolTip(tr("Width"));
    m_hField->setToolTip(tr("Height"));
    m_keepAspect->setText(tr("Keep proportions"));
    showSummary();
    if (auto *dock = findChild<QDockWidget *>(QStringLiteral("layerDock"))) {
        dock->setWindowTitle(tr("Layers"));
        // Wide enough for the panel's settings in this language: they scroll up and down only.
        if (auto *scroll = qobject_cast<QScrollArea *>(dock->widget())) {
            m_layers->ensurePolished();
            const int bar = scroll->style()->pixelMetric(QStyle::PM_ScrollBarExtent, nullptr, scroll);
            scroll->setMinimumWidth(m_layers->minimumSizeHint().width() + bar + 2 * scroll->frameWidth());
        }
    }
    if (auto *dock = findChild<QDockWidget *>(QStringLiteral("jobPreviewDock")))
        dock->setWindowTitle(tr("Preview"));
    updateTitle();
}

void JobWindow::updateUndoTexts()
{
    const QUndoStack *stack = m_model->undoStack();
    m_undo->setEnabled(stack->canUndo());
    m_redo->setEnabled(stack->canRedo());
    m_undo->setText(stack->canUndo() ? tr("Undo %1").arg(stack->undoText()) : tr("Undo"));
    m_redo->setText(stack->canRedo() ? tr("Redo %1").arg(stack->redoText()) : tr("Redo"));
}

void JobWindow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        retranslateUi();
        emit languageChanged();
    }
    QMainWindow::changeEvent(event);
}

void JobWindow::updateTitle()
{
    const QString path = m_model->filePath();
    const QString name = path.isEmpty() ? tr("Untitled job") : QFileInfo(path).fileName();
    setWindowTitle(QStringLiteral("%1[*] \u2014 %2").arg(name, tr("Job")));
    setWindowModified(m_model->isModified());
}

void JobWindow::notice(const QString &text)
{
    statusBar()->showMessage(text, 8000);
    m_showNotice(text);
}

QString JobWindow::jobFilter() const { return tr("Jobs (*.tljob);;All files (*)"); }

// ---- Files ---------------------------------------------------------------------

void JobWindow::newJob()
{
    JobDocument doc;
    doc.machine = m_profiles->current();
    m_model->reset(doc);
    m_summary.clear();
    m_jobSeconds = -1;
    m_summaryLabel->clear();
    // The preview showed the job that was open before.
    m_exported.clear();
    m_preview->clear();
    m_preview->setMachine(previewMachine(document().machine));
    m_layers->setCurrentLayer(0);
    m_view->fitBed();
}

bool JobWindow::openJob(const QString &path)
{
    JobDocument doc;
    QString error;
    JobFile::ReadOptions options;
    options.checkBed = false;  // shown outlined red, to be moved on the bed
    if (!JobFile::load(path, &doc, &error, options)) {
        notice(tr("The job could not be opened: %1").arg(error));
        return false;
    }
    m_model->reset(doc, QFileInfo(path).absoluteFilePath());
    m_summary.clear();
    m_jobSeconds = -1;
    m_summaryLabel->clear();
    // The preview showed the job that was open before.
    m_exported.clear();
    m_preview->clear();
    m_preview->setMachine(previewMachine(document().machine));
    m_layers->setCurrentLayer(0);
    addRecent(m_model->filePath());
    m_view->fitBed();
    const QString outside = outsideNotice();
    if (!outside.isEmpty())
        statusBar()->showMessage(outside, 8000);
    return true;
}

bool JobWindow::saveTo(const QString &path)
{
    QString error;
    if (!JobFile::save(path, m_model->document(), &error)) {
        notice(tr("The job could not be saved: %1").arg(error));
        return false;
    }
    m_model->markSaved(QFileInfo(path).absoluteFilePath());
    addRecent(m_model->filePath());
    statusBar()->showMessage(tr("Saved %1").arg(QFileInfo(path).fileName()), 4000);
    return true;
}

bool JobWindow::save()
{
    if (m_model->filePath().isEmpty())
        return saveAs();
    return saveTo(m_model->filePath());
}

bool JobWindow::saveAs()
{
    QString path = m_chooseFile(FileQuestion::SaveJob, tr("Save job"), jobFilter());
    if (path.isEmpty())
        return false;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".tljob");
    return saveTo(path);
}

bool JobWindow::maybeSave()
{
    if (!m_model->isModified())
        return true;
    const QString name = m_model->filePath().isEmpty() ? tr("Untitled job") : QFileInfo(m_model->filePath()).fileName();
    switch (m_askClose(tr("%1 has unsaved changes. Save them?").arg(name))) {
    case CloseAnswer::Save:
        return save();
    case CloseAnswer::Discard:
        return true;
    case CloseAnswer::Cancel:
        break;
    }
    return false;
}

void JobWindow::closeEvent(QCloseEvent *event)
{
    if (m_closeApproved || maybeSave())
        event->accept();
    else
        event->ignore();
}

QStringList JobWindow::recentFiles() const
{
    QFile file(recentPath());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList out;
    for (const QJsonValue &value : QJsonDocument::fromJson(file.readAll()).array())
        if (value.isString())
            out.append(value.toString());
    return out;
}

void JobWindow::addRecent(const QString &path)
{
    QStringList list = recentFiles();
    list.removeAll(path);
    list.prepend(path);
    while (list.size() > MaxRecent)
        list.removeLast();
    QDir().mkpath(QFileInfo(recentPath()).absolutePath());
    ConfigFile::write(recentPath(), QJsonDocument(QJsonArray::fromStringList(list)).toJson());
}

void JobWindow::fillRecentMenu()
{
    m_recentMenu->clear();
    for (const QString &path : recentFiles()) {
        QAction *a = m_recentMenu->addAction(QFileInfo(path).fileName());
        a->setToolTip(path);
        connect(a, &QAction::triggered, this, [this, path] {
            if (maybeSave())
                openJob(path);
        });
    }
    m_recentMenu->setEnabled(!m_recentMenu->isEmpty());
}

// ---- Items ---------------------------------------------------------------------

QSizeF JobWindow::startSize(const JobSource &source) const
{
    double w = 0, h = 0;
    QString error;
    if (!JobSources::naturalSize(source, &w, &h, &error) || w <= 0 || h <= 0)
        return QSizeF();
    switch (source.kind) {
    case SourceKind::Text:
    case SourceKind::Svg:
        break;  // already mm: text at its em size, a drawing at its size on paper
    case SourceKind::Trace:
        w *= PixelMm;
        h *= PixelMm;
        break;
    case SourceKind::Picture: {
        const double factor = StartPictureMm / std::max(w, h);
        w *= factor;
        h *= factor;
        break;
    }
    case SourceKind::Qr: {
        const double factor = StartQrMm / std::max(w, h);
        w *= factor;
        h *= factor;
        break;
    }
    }
    // Never larger than most of the bed.
    const MachineProfile &m = document().machine;
    const double fit = std::min({1.0, m.bedWidth * 0.8 / w, m.bedHeight * 0.8 / h});
    return QSizeF(w * fit, h * fit);
}

int JobWindow::addItem(const JobItem &item, const QString &undoText)
{
    int index = -1;
    const int layer = m_layers->currentLayer();
    const JobLayer *current =
        layer >= 0 && layer < int(document().layers.size()) ? &document().layers[size_t(layer)] : nullptr;
    // The selected layer takes the item when it suits it: pictures and QR codes on image layers, drawings,
    // text and traced outlines on fill and line layers. Otherwise the item brings a new layer that suits it.
    const bool picture = item.source.kind == SourceKind::Picture || item.source.kind == SourceKind::Qr;
    const bool suits = current && (current->operation == Operation::Image) == picture;
    m_model->change(undoText, [&](JobDocument &doc) {
        const int target = suits ? layer : JobEdits::addLayer(&doc, JobEdits::operationFor(item.source.kind));
        index = JobEdits::addItem(&doc, item, target);
    });
    if (index >= 0) {
        setSelection({index});
        m_layers->setCurrentLayer(document().items[size_t(index)].layer);
    }
    return index;
}

bool JobWindow::addFile(const QString &path, const QPointF *at)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        notice(tr("%1 could not be read").arg(QFileInfo(path).fileName()));
        return false;
    }
    JobItem item;
    item.source.name = QFileInfo(path).fileName();
    item.source.data = file.readAll();
    item.source.kind = QFileInfo(path).suffix().compare(QLatin1String("svg"), Qt::CaseInsensitive) == 0
                           ? SourceKind::Svg
                           : SourceKind::Picture;
    const QSizeF size = startSize(item.source);
    if (size.isEmpty()) {
        notice(tr("%1 is neither a picture nor an SVG drawing").arg(item.source.name));
        return false;
    }
    const QPointF centre = at ? *at : QPointF(document().machine.bedWidth / 2, document().machine.bedHeight / 2);
    item.width = size.width();
    item.height = size.height();
    item.x = centre.x() - size.width() / 2;
    item.y = centre.y() - size.height() / 2;
    return addItem(item, item.source.kind == SourceKind::Svg ? tr("Add SVG") : tr("Add picture")) >= 0;
}

bool JobWindow::addText()
{
    JobItem item;
    item.source.kind = SourceKind::Text;
    if (!m_askSource(&item.source) || item.source.text.trimmed().isEmpty())
        return false;
    item.source.name = item.source.text.section(QLatin1Char('\n'), 0, 0).left(40);
    const QSizeF size = startSize(item.source);
    if (size.isEmpty()) {
        notice(tr("The text has nothing to engrave"));
        return false;
    }
    item.width = size.width();
    item.height = size.height();
    item.x = (document().machine.bedWidth - item.width) / 2;
    item.y = (document().machine.bedHeight - item.height) / 2;
    return addItem(item, tr("Add text")) >= 0;
}

bool JobWindow::addQr()
{
    JobItem item;
    item.source.kind = SourceKind::Qr;
    if (!m_askSource(&item.source) || item.source.text.isEmpty())
        return false;
    item.source.name = item.source.text.left(40);
    const QSizeF size = startSize(item.source);
    if (size.isEmpty()) {
        notice(tr("The text is too long for a QR code"));
        return false;
    }
    item.width = size.width();
    item.height = size.height();
    item.x = (document().machine.bedWidth - item.width) / 2;
    item.y = (document().machine.bedHeight - item.height) / 2;
    return addItem(item, tr("Add QR code")) >= 0;
}

bool JobWindow::editItemText(int index)
{
    if (index < 0 || index >= int(document().items.size()))
        return false;
    const JobItem &item = document().items[size_t(index)];
    if (item.source.kind != SourceKind::Text && item.source.kind != SourceKind::Qr)
        return false;
    JobSource source = item.source;
    if (!m_askSource(&source) || source.text.trimmed().isEmpty())
        return false;
    source.name = source.text.section(QLatin1Char('\n'), 0, 0).left(40);
    // The new text keeps the item's height and bottom-left corner; its width follows the text.
    JobItem changed = item;
    changed.source = source;
    const QSizeF natural = startSize(source);
    if (natural.isEmpty()) {
        notice(source.kind == SourceKind::Qr ? tr("The text is too long for a QR code")
                                             : tr("The text has nothing to engrave"));
        return false;
    }
    if (item.keepAspect)
        changed.width = item.height * natural.width() / natural.height();
    return m_model->change(tr("Edit text"), [&](JobDocument &doc) { doc.items[size_t(index)] = changed; });
}

int JobWindow::addFromCanvas(SourceKind kind, const QString &name, const QByteArray &data, const QRectF &rect)
{
    if (data.isEmpty() || rect.width() <= 0 || rect.height() <= 0)
        return -1;
    JobItem item;
    item.source.kind = kind;
    item.source.name = name;
    item.source.data = data;
    item.x = rect.x();
    item.y = rect.y();
    item.width = rect.width();
    item.height = rect.height();
    item.keepAspect = false;  // the canvas may have stretched it; keep the size as it is
    return addItem(item, tr("Add to job"));
}

QList<int> JobWindow::selection() const { return m_scene->selectedIndices(); }

void JobWindow::setSelection(const QList<int> &items) { m_scene->selectIndices(items); }

void JobWindow::nudge(double dx, double dy)
{
    const QList<int> items = selection();
    m_model->change(tr("Move"), [&](JobDocument &doc) { JobEdits::moveItems(&doc, items, dx, dy); });
}

void JobWindow::deleteSelection()
{
    const QList<int> items = selection();
    if (items.isEmpty())
        return;
    m_scene->selectIndices({});
    m_model->change(tr("Delete"), [&](JobDocument &doc) { JobEdits::removeItems(&doc, items); });
}

void JobWindow::duplicateSelection()
{
    const QList<int> items = selection();
    QList<int> added;
    m_model->change(tr("Duplicate"), [&](JobDocument &doc) { added = JobEdits::duplicateItems(&doc, items); });
    setSelection(added);
}

void JobWindow::centreSelection()
{
    const QList<int> items = selection();
    m_model->change(tr("Centre on bed"), [&](JobDocument &doc) { JobEdits::centreOnBed(&doc, items); });
}

void JobWindow::moveSelectionToLayer(int layer)
{
    const QList<int> items = selection();
    if (layer < 0 || layer >= int(document().layers.size()))
        return;
    // Pictures and QR codes are engraved as pictures: only an image layer takes them.
    if (document().layers[size_t(layer)].operation != Operation::Image) {
        for (int i : items) {
            const SourceKind kind = document().items[size_t(i)].source.kind;
            if (kind == SourceKind::Picture || kind == SourceKind::Qr) {
                notice(tr("%1 is a picture: only an image layer can engrave it")
                           .arg(document().items[size_t(i)].source.name));
                return;
            }
        }
    }
    m_model->change(tr("Move to layer"), [&](JobDocument &doc) { JobEdits::moveItemsToLayer(&doc, items, layer); });
}

void JobWindow::updateFields()
{
    const QList<int> items = selection();
    const QRectF bounds = JobEdits::bounds(document(), items);
    m_updatingFields = true;
    const bool any = !items.isEmpty();
    for (QDoubleSpinBox *f : {m_xField, m_yField})
        f->setEnabled(any);
    m_wField->setEnabled(items.size() == 1);
    m_hField->setEnabled(items.size() == 1);
    m_keepAspect->setEnabled(any);
    if (any) {
        m_xField->setValue(bounds.x());
        m_yField->setValue(bounds.y());
        m_wField->setValue(bounds.width());
        m_hField->setValue(bounds.height());
        m_keepAspect->setChecked(document().items[size_t(items.first())].keepAspect);
    } else {
        for (QDoubleSpinBox *f : {m_xField, m_yField, m_wField, m_hField})
            f->setValue(f->minimum());
    }
    m_updatingFields = false;
}

void JobWindow::applyField(int which)
{
    if (m_updatingFields)
        return;
    const QList<int> items = selection();
    if (items.isEmpty())
        return;
    const QRectF bounds = JobEdits::bounds(document(), items);
    if (which == 0 || which == 1) {
        const double dx = which == 0 ? m_xField->value() - bounds.x() : 0;
        const double dy = which == 1 ? m_yField->value() - bounds.y() : 0;
        if (std::abs(dx) < 1e-9 && std::abs(dy) < 1e-9)
            return;
        m_model->change(tr("Move"), [&](JobDocument &doc) { JobEdits::moveItems(&doc, items, dx, dy); });
        return;
    }
    if (items.size() != 1)
        return;
    const JobItem &item = document().items[size_t(items.first())];
    double w = m_wField->value(), h = m_hField->value();
    if (item.keepAspect && item.width > 0 && item.height > 0) {
        if (which == 2)
            h = item.height * w / item.width;
        else
            w = item.width * h / item.height;
    }
    const QRectF rect(item.x, item.y, w, h);
    if (!m_model->change(tr("Resize"), [&](JobDocument &doc) { JobEdits::setItemRect(&doc, items.first(), rect); }))
        updateFields();
}

void JobWindow::updateActions()
{
    const bool any = !selection().isEmpty();
    for (QAction *a : {m_duplicate, m_delete, m_centre, m_alignLeft, m_alignHCenter, m_alignRight, m_alignBottom,
                       m_alignVCenter, m_alignTop})
        a->setEnabled(any);
    m_moveToMenu->setEnabled(any);
}

// ---- Machine -------------------------------------------------------------------

void JobWindow::setMachinePanel(MachinePanel *panel)
{
    m_machine = panel;
    if (!m_machine)
        return;
    // A GRBL board knows its own power scale, speeds and bed: say where to read them.
    connect(m_machine->link(), &MachineLink::stateChanged, this, [this](MachineLink::State state) {
        if (state == MachineLink::Ready && m_machine->link()->firmware() == Firmware::Grbl)
            statusBar()->showMessage(tr("A GRBL board is connected: Machine > Machine profiles… can read its settings"),
                                     10000);
    });
}

void JobWindow::setProfile(const MachineProfile &profile)
{
    m_model->change(tr("Machine profile"), [&](JobDocument &doc) { doc.machine = profile; });
    m_view->fitBed();
}

bool JobWindow::editProfiles()
{
    MachineProfileStore edited = *m_profiles;
    if (!m_editProfiles(&edited))
        return false;
    QString error;
    if (!edited.save(&error)) {
        notice(error);
        return false;
    }
    *m_profiles = edited;
    setProfile(m_profiles->current());
    return true;
}

bool JobWindow::newTestGrid()
{
    if (!maybeSave())
        return false;
    JobDocument grid;
    if (!m_askGrid(&grid))
        return false;
    newJob();
    // One undo step, so the new job counts as unsaved and closing it asks.
    m_model->change(tr("Material test grid"), [&](JobDocument &doc) { doc = grid; });
    m_view->fitBed();
    return true;
}

QRectF JobWindow::jobBounds() const
{
    QList<int> items;
    for (int i = 0; i < int(document().items.size()); ++i) {
        const int layer = document().items[size_t(i)].layer;
        if (layer >= 0 && layer < int(document().layers.size()) && document().layers[size_t(layer)].enabled)
            items.append(i);
    }
    return JobEdits::bounds(document(), items);
}

bool JobWindow::exportTo(const QString &path)
{
    JobExportResult result;
    QString error;
    const QString outside = outsideNotice();
    if (!outside.isEmpty()) {
        notice(tr("Nothing was written: %1").arg(outside));
        return false;
    }
    if (!JobExport::run(document(), &result, &error)) {
        notice(tr("Nothing was written: %1").arg(error));
        return false;
    }
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(result.gcode) != result.gcode.size() || !file.commit()) {
        notice(tr("%1 could not be written").arg(QFileInfo(path).fileName()));
        return false;
    }
    m_exported = QFileInfo(path).absoluteFilePath();
    m_summary = JobExport::summary(result);
    m_jobSeconds = result.seconds;
    m_layerTimes.clear();
    for (size_t i = 0; i < result.layers.size(); ++i) {
        const JobEstimate::Layer &layer = result.layers[i];
        m_layerTimes.append({layer.index, layer.name, result.itemCounts.at(i), layer.burnMm, layer.seconds});
    }
    showSummary();
    m_preview->clear();
    m_preview->setMachine(previewMachine(document().machine));
    m_preview->showFile(m_exported);
    if (auto *dock = findChild<QDockWidget *>(QStringLiteral("jobPreviewDock")))
        dock->raise();
    if (m_machine)
        m_machine->setJobFile(m_exported, result.seconds);
    statusBar()->showMessage(tr("Exported %1").arg(QFileInfo(path).fileName()), 6000);
    return true;
}

void JobWindow::showSummary()
{
    if (m_jobSeconds < 0) {
        m_summaryLabel->clear();
        return;
    }
    QStringList shown{tr("Estimated time: %1").arg(QString::fromLatin1(JobFormat::duration(m_jobSeconds)))};
    for (const LayerTime &layer : qAsConst(m_layerTimes))
        shown << tr("Layer %1 %2: %3 items, burn %4 mm, %5")
                     .arg(layer.index + 1)
                     .arg(layer.name)
                     .arg(layer.items)
                     .arg(layer.burnMm, 0, 'f', 1)
                     .arg(QString::fromLatin1(JobFormat::duration(layer.seconds)));
    m_summaryLabel->setText(shown.join(QLatin1Char('\n')));
}

QString JobWindow::outsideNotice() const
{
    const JobDocument &doc = document();
    if (JobFile::outsideBed(doc).isEmpty())
        return QString();
    // The engine's check, item by item, to name the first one in the user's words.
    JobDocument one;
    one.machine = doc.machine;
    for (size_t i = 0; i < doc.items.size(); ++i) {
        one.items = {doc.items[i]};
        if (JobFile::outsideBed(one).isEmpty())
            continue;
        const QString name = doc.items[i].source.name.isEmpty() ? tr("Item %1").arg(i + 1) : doc.items[i].source.name;
        return tr("%1 lies outside the bed (%2 x %3 mm): move it onto the bed")
            .arg(name)
            .arg(doc.machine.bedWidth)
            .arg(doc.machine.bedHeight);
    }
    return JobFile::outsideBed(doc);
}

bool JobWindow::exportJob()
{
    const QString outside = outsideNotice();
    if (!outside.isEmpty()) {
        notice(tr("Nothing was written: %1").arg(outside));
        return false;
    }
    QString path = m_chooseFile(FileQuestion::ExportGcode, tr("Export job"), tr("G-code (*.gcode)"));
    if (path.isEmpty())
        return false;
    if (QFileInfo(path).suffix().isEmpty())
        path += QStringLiteral(".gcode");
    return exportTo(path);
}

bool JobWindow::frameJob()
{
    const QRectF bounds = jobBounds();
    if (bounds.isNull()) {
        notice(tr("The job has nothing to frame"));
        return false;
    }
    const QString outside = outsideNotice();
    if (!outside.isEmpty()) {
        notice(tr("Nothing was sent: %1").arg(outside));
        return false;
    }
    if (!m_machine || m_machine->link()->state() != MachineLink::Ready) {
        notice(tr("Connect to the machine in the Machine window first"));
        return false;
    }
    const auto lines = MachinePanel::frameLines(bounds, m_machine->link()->firmware(), int(m_framePower->value()),
                                                int(document().machine.travelSpeed), m_machine->link()->grblMaxPower());
    for (const QByteArray &line : lines)
        m_machine->link()->sendLine(line);
    statusBar()->showMessage(tr("Framing X %1 to %2, Y %3 to %4 mm")
                                 .arg(bounds.left())
                                 .arg(bounds.right())
                                 .arg(bounds.top())
                                 .arg(bounds.bottom()),
                             6000);
    return true;
}

bool JobWindow::runJob()
{
    QString path;
    if (!m_model->filePath().isEmpty()) {
        const QFileInfo info(m_model->filePath());
        path = info.absolutePath() + QLatin1Char('/') + info.completeBaseName() + QStringLiteral(".gcode");
    } else {
        path = m_chooseFile(FileQuestion::ExportGcode, tr("Export job"), tr("G-code (*.gcode)"));
        if (path.isEmpty())
            return false;
    }
    if (!exportTo(path))
        return false;
    if (!m_machine) {
        notice(tr("The Machine window is not available"));
        return false;
    }
    m_machine->show();
    m_machine->raise();
    QMetaObject::invokeMethod(m_machine, "on_runButton_clicked");
    return true;
}
