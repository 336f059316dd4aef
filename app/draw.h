// The main window: builds the widget tree, owns every long-lived worker object,
// wires the subsystems together and carries a job from a picture to a G-code file.
#ifndef DRAW_H
#define DRAW_H

#include <QByteArray>
#include <QFont>
#include <QImage>
#include <QMainWindow>
#include <QPointF>
#include <QRectF>
#include <QSize>
#include <QString>

#include <functional>

class AllKindPic;
class Bitmap2Gcode;
class Bitmap2Svg;
class CPSerialPort;
class FrontEnd;
class ImgBinaryEdit;
class MachinePanel;
class QHBoxLayout;
class QLineEdit;
class QTranslator;
class RenderForm;
class Svg2GcodeP;
class WaitingForm;

namespace Ui {
class Draw;
}

class Draw : public QMainWindow
{
    Q_OBJECT

public:
    explicit Draw(QWidget *parent = nullptr);
    ~Draw() override;

    int languageIndex() const { return m_language; }
    RenderForm *renderForm() const { return m_renderForm; }
    ImgBinaryEdit *imageEditor() const { return m_imgEdit; }
    CPSerialPort *serialPanel() const { return m_serialPanel; }
    FrontEnd *streamer() const { return m_frontEnd; }
    MachinePanel *machinePanel() const { return m_machinePanel; }
    QSize pictureSize() const { return QSize(m_pictureWidth, m_pictureHeight); }

    // How the window asks for a file name and shows a notice. Qt's dialogs unless replaced,
    // so tests can answer with a plain function instead of a modal window.
    // An empty file name means the user cancelled.
    enum class FileQuestion { Open, Save };
    using FileChooser = std::function<QString(FileQuestion question, const QString &title, const QString &folder,
                                              const QString &filter)>;
    enum class Notice { Warning, Information };
    using NoticeShower = std::function<void(Notice kind, const QString &title, const QString &text)>;
    void setFileChooser(FileChooser chooser) { m_chooseFile = std::move(chooser); }
    void setNoticeShower(NoticeShower shower) { m_showNotice = std::move(shower); }
    // Asked before the window closes while the canvas holds a design placed or changed after
    // the last export; true lets the window close. A Yes/No box unless replaced.
    using QuitConfirmer = std::function<bool(const QString &title, const QString &text)>;
    void setQuitConfirmer(QuitConfirmer confirmer) { m_confirmQuit = std::move(confirmer); }
    bool hasUnexportedDesign() const;

signals:
    void SigStartSaveGcode(QString filename, QPointF pos);
    void SigResetScaleFromLineEdit(double width);
    void SigInitScale();
    void Sig_render();
    void Sig_toarduino(QString text);
    void Sig_print(QString path);
    void Sig_recover();
    void Sig_stop();
    void Sig_cancle();
    void Sig_Preview(QRectF rect);

public slots:
    // Job workflow (draw_job.cpp).
    void on_file_clicked();
    void SlotPixitemDropped(QString pixName);
    void SlotPrint(QString path);
    void SlotLoadBlackWhite();
    void on_radioButtonOut_clicked();
    void on_radioButtonGray_clicked();
    void on_radioButtonBlackWhite_clicked();
    // Laser or CNC mode (draw.cpp).
    void on_radioButtonLaser_clicked(bool checked);
    void on_radioButtonCNC_clicked(bool checked);
    // Size, clearing, export and job controls (draw_job.cpp).
    void SlotGetRect(QRectF rect);
    void on_w_line_returnPressed();
    void on_h_line_returnPressed();
    void on_btndelete_clicked();
    void on_btnExportGcode_clicked();
    void startSaveGcode(QString filename, QPointF pos);
    void SlotGcodeFinished(QString text);
    void SLotStartWaitWindow();
    void SLotCloseWaitWindow();
    void on_btnPreview_clicked();
    void on_stop_clicked();
    void on_recovery_clicked();
    void on_cancle_clicked();
    void on_start_clicked();
    void on_lineEdit_returnPressed();
    void SlotChoosFileType();
    void on_artpic_clicked();
    // Port state, log and slider labels (draw.cpp).
    void SlotConnected(bool connected);
    void SlotLogMsg(QString text);
    void SlotSetPowerText(int value);
    void SlotSetSpeedText(int value);

    // Machine settings fields: each writes its text to Config.ini when left (draw.cpp).
    void on_lineLaserOn_editingFinished();
    void on_lineLaserOff_editingFinished();
    void on_lineCNCOn_editingFinished();
    void on_lineCNCOff_editingFinished();
    void on_lineTravel_editingFinished();
    void on_lineCureSpeed_editingFinished();
    void on_lineCNCFeedZ_editingFinished();
    void on_lineCNCTravelZ_editingFinished();
    void on_linePixixcelDist_editingFinished();

    // Manual machine control (draw_machine.cpp).
    void on_radioButton01mm_clicked(bool checked);
    void on_radioButton1mm_clicked(bool checked);
    void on_radioButton10mm_clicked(bool checked);
    void on_xa_clicked();
    void on_xp_clicked();
    void on_ya_clicked();
    void on_yp_clicked();
    void on_home_clicked();
    void on_setHome_clicked();
    void on_backHome_clicked();
    void on_btnSend_clicked();
    void on_lineEditGcodeLine_returnPressed();
    void on_btnLoadGcodeHead_clicked();
    void on_btnLoadGcodeEnd_clicked();

    // Text pictures (draw_materials.cpp).
    void SlotSetTextEditFont(QFont font);
    void SlotSetTextEditFontSize(QString size);
    void SlotTextToImgButton();

    // Material library (draw_materials.cpp).
    void on_materialComboBox_currentIndexChanged(QString name);
    void on_initButton_clicked();
    void on_saveMaterialButton_clicked();
    void on_addMaterialButton_clicked();
    void on_deleteMaterialButton_clicked();

    // QR-code pictures (draw_materials.cpp).
    void on_TextToQRcodeButton_clicked();

    // Languages (draw.cpp).
    void on_btnEn_clicked();
    void on_btnZh_clicked();

protected:
    // Asks about an unexported design, then closes every other window of the program with
    // this one, so that the event loop ends.
    void closeEvent(QCloseEvent *event) override;

private:
    // A message that exists as a Chinese and an English literal: the start-up language
    // picks one; in other languages there is none (and the dialog it heads is skipped).
    QString message(const char *chinese, const char *english) const;
    void logMessage(const QString &text);
    void warn(const QString &text);

    // Start-up, settings and languages (draw.cpp).
    void saveField(const char *key, const QLineEdit *field);
    void restoreSettings();
    void applyMode();
    void hideSettingsWidgets();
    void installLanguage();
    void setUpSliders();
    void restoreTextsAfterRetranslate();
    void switchLanguage(const QString &catalogue, bool editorToo);
    // Qt's own texts (file dialogs, standard buttons) in the language of CATALOGUE, one of the
    // program's catalogues; English needs none.
    void installQtCatalogue(const QString &catalogue);

    // The job road (draw_job.cpp).
    void routePicture(const QString &path);
    void showEditorBlackWhite(const QString &path);
    void loadPicture(const QString &path);
    void applyTypedSize(bool widthTyped);
    void outputStyleChanged();
    // Manual control (draw_machine.cpp).
    void sendJog(const char *axisTemplate);
    void setUpMachinePanel();
    void loadSnippet(const QString &target);
    // Material library (draw_materials.cpp).
    void startMaterials();
    void fillMaterials();
    void setMaterialControlsEnabled(bool enabled);

    Ui::Draw *ui;
    FileChooser m_chooseFile;
    NoticeShower m_showNotice;
    QuitConfirmer m_confirmQuit;

    // Job state.
    QString m_loadedPath;
    int m_pictureWidth = 0;
    int m_pictureHeight = 0;
    double m_itemWidth = 0;
    double m_itemHeight = 0;
    double m_jogStep = 1.0;
    QRectF m_itemRect;
    QString m_picturePath;
    QRectF m_previewRect;
    bool m_pictureLoaded = false;
    QFont m_textFont;
    QImage m_image;
    QString m_timeText;  // the last estimated time shown, put back after a language switch
    // What the last export wrote: which placed picture, its size and its place.
    int m_placements = 0;  // pictures placed so far
    int m_exportedPlacement = -1;
    QRectF m_exportedRect;
    QPointF m_exportedPosition;

    int m_textPixelSize = -1;  // not yet chosen
    int m_language = 0;        // 0 Chinese, 1 English, 2 Korean

    // Worker objects, in the order they are made.
    CPSerialPort *m_serialPanel = nullptr;
    FrontEnd *m_frontEnd = nullptr;
    Bitmap2Svg *m_tracer = nullptr;
    Svg2GcodeP *m_svgGcode = nullptr;
    struct JobRecord
    {
        double x = 0, y = 0, width = 0, height = 0;
        QByteArray header, footer;
        QString name;
    } m_record;  // kept for the job format to come; nothing reads it yet
    Bitmap2Gcode *m_bitmapGcode = nullptr;
    ImgBinaryEdit *m_imgEdit = nullptr;
    QHBoxLayout *m_serialLayout = nullptr;
    AllKindPic *m_effects = nullptr;
    WaitingForm *m_waiting = nullptr;
    RenderForm *m_renderForm = nullptr;
    MachinePanel *m_machinePanel = nullptr;

    QTranslator *m_translator = nullptr;
    QTranslator *m_qtTranslator = nullptr;        // Qt's own catalogue for the language last installed
    struct MaterialRecord *m_material = nullptr;  // the record selected in the combo box
};

#endif
