// The Job window: a job of several items on the machine's bed, in layers, with its own menus and
// toolbar. It adds pictures, drawings, text and QR codes, edits them with undo, keeps the job in .tljob
// files, exports G-code through the job engine and hands it to the Machine window to frame and run.
// Questions and file names are asked through replaceable functions, so tests never meet a dialog.
#ifndef JOBWINDOW_H
#define JOBWINDOW_H

#include "jobdocument.h"

#include <QList>
#include <QMainWindow>
#include <QPointF>
#include <QRectF>
#include <QStringList>
#include <QVector>

#include <functional>
#include <memory>

class JobLayoutScene;
class JobLayoutView;
class JobModel;
class LayerPanel;
class MachineProfileStore;
class MachinePanel;
class PreviewPanel;
class QAction;
class QCheckBox;
class QDoubleSpinBox;
class QLabel;
class QMenu;
class QToolBar;

class JobWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit JobWindow(QWidget *parent = nullptr);
    ~JobWindow() override;

    JobModel *model() const { return m_model; }
    JobLayoutScene *scene() const { return m_scene; }
    JobLayoutView *view() const { return m_view; }
    LayerPanel *layerPanel() const { return m_layers; }
    PreviewPanel *previewPanel() const { return m_preview; }
    const JobDocument &document() const;

    // ---- Seams: Qt's dialogs unless replaced. An empty file name means the user cancelled.
    enum class FileQuestion { OpenJob, SaveJob, AddFile, ExportGcode };
    using FileChooser = std::function<QString(FileQuestion question, const QString &title, const QString &filter)>;
    enum class CloseAnswer { Save, Discard, Cancel };
    using CloseQuestion = std::function<CloseAnswer(const QString &text)>;
    using NoticeShower = std::function<void(const QString &text)>;
    // Fills in a text or QR source; false when cancelled.
    using SourceAsker = std::function<bool(JobSource *source)>;
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    void setCloseQuestion(CloseQuestion question) { m_askClose = std::move(question); }
    void setNoticeShower(NoticeShower shower) { m_showNotice = std::move(shower); }
    void setSourceAsker(SourceAsker asker) { m_askSource = std::move(asker); }
    // Edits the machine profiles; false when cancelled.
    using ProfileEditor = std::function<bool(MachineProfileStore *store)>;
    void setProfileEditor(ProfileEditor editor) { m_editProfiles = std::move(editor); }
    // Asks for a material test grid; false when cancelled.
    using GridAsker = std::function<bool(JobDocument *grid)>;
    void setGridAsker(GridAsker asker) { m_askGrid = std::move(asker); }

    // ---- Job files.
    void newJob();
    // Opens a job; when it fails, says why and leaves the current job as it was.
    bool openJob(const QString &path);
    bool save();
    bool saveAs();
    bool saveTo(const QString &path);
    // Asks Save / Discard / Cancel when there are unsaved changes; true when the job may go.
    bool maybeSave();
    QStringList recentFiles() const;

    // ---- Items. New items go to the selected layer when it suits them, else to a new layer that does.
    // A picture or SVG file, centred on `at` (machine mm) or on the bed.
    bool addFile(const QString &path, const QPointF *at = nullptr);
    bool addText();
    bool addQr();
    // Asks again for a text or QR item's text and settings (a double-click on it); one undo step.
    bool editItemText(int index);
    // Adds a finished item as it is (its rectangle kept) and selects it; returns its index.
    int addItem(const JobItem &item, const QString &undoText);
    // The classic canvas's picture or drawing, as a copy at its place and size (machine mm).
    int addFromCanvas(SourceKind kind, const QString &name, const QByteArray &data, const QRectF &rect);

    QList<int> selection() const;
    void setSelection(const QList<int> &items);
    void nudge(double dx, double dy);
    void deleteSelection();
    void duplicateSelection();
    void centreSelection();
    void moveSelectionToLayer(int layer);
    // The selection's bounds in the numeric fields (machine mm); typing there moves or resizes.
    QDoubleSpinBox *xField() const { return m_xField; }
    QDoubleSpinBox *yField() const { return m_yField; }
    QDoubleSpinBox *widthField() const { return m_wField; }
    QDoubleSpinBox *heightField() const { return m_hField; }

    // ---- Machine.
    // The saved profiles (machine-profiles.json); a new job takes the selected one.
    const MachineProfileStore &profiles() const { return *m_profiles; }
    // Edits the profiles, saves them and gives the job the selected one.
    bool editProfiles();
    // Asks for a material test grid and opens it as a new, unsaved job.
    bool newTestGrid();
    // The job's machine profile (one undo step); the layout shows its bed.
    void setProfile(const MachineProfile &profile);
    // Writes the job's G-code; the summary and the preview show the result.
    bool exportTo(const QString &path);
    bool exportJob();
    QStringList exportSummary() const { return m_summary; }
    QString exportedFile() const { return m_exported; }
    void setMachinePanel(MachinePanel *panel);
    // Traces the job's bounds on the machine at the frame power (0: beam off).
    bool frameJob();
    // Exports next to the job (or where asked) and starts it in the Machine window.
    bool runJob();
    // The rectangle around every item of the enabled layers, machine mm.
    QRectF jobBounds() const;

    void retranslateUi();

signals:
    // The texts were translated again (the main window's Job buttons follow).
    void languageChanged();

protected:
    void closeEvent(QCloseEvent *event) override;
    void changeEvent(QEvent *event) override;
    // Closing the main window asks for this job's unsaved changes first.
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void buildActions();
    void buildMenus();
    void buildToolBars();
    void updateTitle();
    void updateFields();
    void applyField(int which);
    void updateActions();
    void updateUndoTexts();
    void showSummary();
    // Which item lies outside the bed, in the interface language; empty when every item is on it.
    QString outsideNotice() const;
    void addRecent(const QString &path);
    void fillRecentMenu();
    void notice(const QString &text);
    // The size an item takes when first added, mm.
    QSizeF startSize(const JobSource &source) const;
    QString jobFilter() const;

    JobModel *m_model;
    JobLayoutScene *m_scene;
    JobLayoutView *m_view;
    LayerPanel *m_layers;
    PreviewPanel *m_preview;
    QLabel *m_summaryLabel;
    QLabel *m_pointerLabel;
    MachinePanel *m_machine = nullptr;
    QStringList m_summary;
    // The last export's times, shown in the interface language of the moment.
    struct LayerTime
    {
        int index;
        QString name;
        int items;
        double burnMm;
        double seconds;
    };
    QVector<LayerTime> m_layerTimes;
    double m_jobSeconds = -1;  // none shown
    QString m_exported;
    bool m_updatingFields = false;
    bool m_closeApproved = false;  // the main window's close already asked about this job

    FileChooser m_chooseFile;
    CloseQuestion m_askClose;
    NoticeShower m_showNotice;
    SourceAsker m_askSource;
    ProfileEditor m_editProfiles;
    GridAsker m_askGrid;
    std::unique_ptr<MachineProfileStore> m_profiles;

    QMenu *m_fileMenu, *m_editMenu, *m_layerMenu, *m_machineMenu, *m_recentMenu, *m_alignMenu, *m_moveToMenu;
    QToolBar *m_mainBar, *m_itemBar;
    QAction *m_new, *m_open, *m_save, *m_saveAs, *m_export, *m_close;
    QAction *m_undo, *m_redo, *m_addPicture, *m_addSvg, *m_addText, *m_addQr, *m_duplicate, *m_delete, *m_centre,
        *m_selectAll;
    QAction *m_alignLeft, *m_alignHCenter, *m_alignRight, *m_alignBottom, *m_alignVCenter, *m_alignTop;
    QAction *m_profilesAction, *m_gridAction;
    QAction *m_addLayer, *m_frame, *m_run, *m_zoomIn, *m_zoomOut, *m_fit;
    QDoubleSpinBox *m_xField, *m_yField, *m_wField, *m_hField;
    QCheckBox *m_keepAspect;
    QDoubleSpinBox *m_framePower;
    QLabel *m_xLabel, *m_yLabel, *m_wLabel, *m_hLabel, *m_framePowerLabel;
};

#endif
