// The main window's shell: start-up and shut-down, messages, the interface
// languages and the machine-setting fields; the other concerns live in draw_*.cpp.
#include "draw.h"
#include "ui_draw.h"

#include "allkindpic.h"
#include "appsettings.h"
#include "bitmap2gcode.h"
#include "bitmap2svg.h"
#include "cpserialport.h"
#include "frontend.h"
#include "imgbinaryedit.h"
#include "languagepick.h"
#include "machinevalues.h"
#include "materiallibrary.h"
#include "previewpanel.h"
#include "renderform.h"
#include "svg2gcodep.h"
#include "waitingform.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QIcon>
#include <QLibraryInfo>
#include <QMessageBox>
#include <QTextCursor>
#include <QTranslator>

namespace {
// Slider ranges and starting values.
constexpr int SliderMinimum = 0;
constexpr int SliderMaximum = 100;
constexpr int SliderTickInterval = 10;
constexpr int FontSizeMinimum = 99;
constexpr int FontSizeMaximum = 500;
constexpr int StartFontSize = 99;

const char *const Catalogues[] = {":/bin_zh.qm", ":/bin_en.qm", ":/bin_ko.qm"};
}  // namespace

Draw::Draw(QWidget *parent) : QMainWindow(parent), ui(new Ui::Draw)
{
    m_chooseFile = [this](FileQuestion question, const QString &title, const QString &folder, const QString &filter) {
        return question == FileQuestion::Open ? QFileDialog::getOpenFileName(this, title, folder, filter)
                                              : QFileDialog::getSaveFileName(this, title, folder, filter);
    };
    m_showNotice = [this](Notice kind, const QString &title, const QString &text) {
        if (kind == Notice::Warning)
            QMessageBox::warning(this, title, text);
        else
            QMessageBox::information(this, title, text);
    };
    m_confirmQuit = [this](const QString &title, const QString &text) {
        return QMessageBox::question(this, title, text, QMessageBox::Yes | QMessageBox::No, QMessageBox::No)
               == QMessageBox::Yes;
    };

    // 1. The widget tree.
    ui->setupUi(this);

    // 2. Worker objects; only the canvas form is a child of the window.
    m_serialPanel = new CPSerialPort;
    // The streamer gets the panel as parent and no link: its port connections stay unmade.
    m_frontEnd = new FrontEnd(m_serialPanel, nullptr);
    m_tracer = new Bitmap2Svg;
    m_svgGcode = new Svg2GcodeP;
    m_bitmapGcode = new Bitmap2Gcode;
    m_imgEdit = new ImgBinaryEdit;
    m_serialLayout = new QHBoxLayout;
    m_effects = new AllKindPic;
    m_waiting = new WaitingForm;
    m_renderForm = new RenderForm(this);
    PreviewPanel::addTo(this);

    // 3. Connections between the subsystems.
    connect(m_renderForm, SIGNAL(SigRect(QRectF)), this, SLOT(SlotGetRect(QRectF)));
    connect(this, SIGNAL(SigResetScaleFromLineEdit(double)), m_renderForm, SLOT(SlotLineEditScale(double)));
    connect(this, SIGNAL(SigInitScale()), m_renderForm, SLOT(SlotInitScale()));
    connect(m_imgEdit, SIGNAL(SigBlackWhite()), this, SLOT(SlotLoadBlackWhite()));
    connect(this, SIGNAL(Sig_toarduino(QString)), m_frontEnd, SLOT(SlotUIWrite(QString)));
    connect(this, SIGNAL(Sig_print(QString)), m_frontEnd, SLOT(SlotPrint(QString)));
    connect(this, SIGNAL(Sig_recover()), m_frontEnd, SLOT(SlotRecov()));
    connect(this, SIGNAL(Sig_stop()), m_frontEnd, SLOT(SlotStop()));
    connect(this, SIGNAL(Sig_cancle()), m_frontEnd, SLOT(SlotCancle()));
    connect(this, SIGNAL(Sig_Preview(QRectF)), m_frontEnd, SLOT(GenBounding(QRectF)));
    connect(m_effects, SIGNAL(Sig_PrintImage(QString)), this, SLOT(SlotPrint(QString)));
    connect(m_frontEnd, SIGNAL(Sig_connected(bool)), this, SLOT(SlotConnected(bool)));
    connect(m_renderForm, SIGNAL(SigPixitem(QString)), this, SLOT(SlotPixitemDropped(QString)));
    connect(this, SIGNAL(SigStartSaveGcode(QString, QPointF)), this, SLOT(startSaveGcode(QString, QPointF)));

    // 4. The canvas and the port panel take their places.
    ui->svglayout->addWidget(m_renderForm);
    m_serialLayout->addWidget(m_serialPanel);
    m_serialLayout->setContentsMargins(0, 0, 0, 0);
    ui->serial->setLayout(m_serialLayout);

    // 5-7. Machine settings, mode, hidden fields.
    restoreSettings();
    applyMode();
    hideSettingsWidgets();

    // 8. Interface language.
    installLanguage();

    // 9. Title and icon.
    setWindowTitle(tr("TarnwellLaser V1.0.1"));
    setWindowIcon(QIcon(QStringLiteral(":tn-logo.ico")));

    // 10. Sliders, font size and the form's own signals.
    setUpSliders();

    setUpMachinePanel();

    // 11. Material library, slider values in their labels, the text tool's font.
    startMaterials();
    SlotSetPowerText(ui->powerHorizontalSlider->value());
    SlotSetSpeedText(ui->speedHorizontalSlider->value());
    m_textFont.setFamily(QStringLiteral("SimHei"));
}

Draw::~Draw()
{
    // The streamer is the panel's child: it goes with the panel.
    delete m_serialPanel;
    delete m_tracer;
    delete m_svgGcode;
    delete m_bitmapGcode;
    delete m_imgEdit;
    delete m_effects;
    delete m_waiting;
    delete ui;
}

bool Draw::hasUnexportedDesign() const
{
    if (!m_pictureLoaded)
        return false;
    return m_exportedPlacement != m_placements || m_itemRect != m_exportedRect
           || m_renderForm->CurrentItemPos() != m_exportedPosition;
}

void Draw::closeEvent(QCloseEvent *event)
{
    if (hasUnexportedDesign() && !m_confirmQuit(tr("退出"), tr("画布上的设计尚未导出。仍要退出吗？"))) {
        event->ignore();
        return;
    }
    event->accept();
    // The threshold editor and the other dialogs have no parent; the program ends with this window.
    for (QWidget *window : QApplication::topLevelWidgets())
        if (window != this && window->isVisible())
            window->close();
}

void Draw::restoreSettings()
{
    ui->lineLaserOn->setText(AppSettings::tarnwyString("laser_on"));
    ui->lineLaserOff->setText(AppSettings::tarnwyString("laser_off"));
    ui->lineCNCOn->setText(AppSettings::tarnwyString("cnc_on"));
    ui->lineCNCOff->setText(AppSettings::tarnwyString("cnc_off"));
    ui->lineTravel->setText(AppSettings::tarnwyString("travel_speed"));
    ui->lineCureSpeed->setText(AppSettings::tarnwyString("crue_speed"));
    ui->lineCNCFeedZ->setText(AppSettings::tarnwyString("cnc_feed_z"));
    ui->lineCNCTravelZ->setText(AppSettings::tarnwyString("cnc_travel_z"));
}

void Draw::applyMode()
{
    // Exact, case-sensitive values only; anything else leaves both buttons unchecked.
    const QString mode = AppSettings::mode();
    if (mode == QLatin1String("laser")) {
        ui->radioButtonLaser->setChecked(true);
        AppSettings::setMode(QStringLiteral("laser"));
        ui->frame_grayout->show();
    } else if (mode == QLatin1String("cnc")) {
        ui->radioButtonCNC->setChecked(true);
        AppSettings::setMode(QStringLiteral("cnc"));
        ui->frame_grayout->hide();
    }
}

void Draw::hideSettingsWidgets()
{
    const QList<QWidget *> hidden = {
        ui->frame_6,     ui->lineCNCOn,  ui->lineCNCOff,    ui->lineCNCFeedZ,    ui->lineCNCTravelZ,  ui->lineLaserOff,
        ui->lineLaserOn, ui->lineTravel, ui->lineCureSpeed, ui->label_5,         ui->label_6,         ui->label_7,
        ui->label_8,     ui->label_9,    ui->label_10,      ui->label_11,        ui->label_12,        ui->label_16,
        ui->label_17,    ui->label_18,   ui->label_19,      ui->btnLoadGcodeEnd, ui->btnLoadGcodeHead};
    for (QWidget *w : hidden)
        w->hide();
    ui->carTabWidget->removeTab(0);
    ui->TimeProgressBar->hide();
    ui->frame_2->hide();
}

void Draw::installLanguage()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    library.lookupLanguage();
    m_language = library.languageIndex();
    m_translator = new QTranslator(this);
    if (m_language >= 0 && m_language < int(std::size(Catalogues))) {
        m_translator->load(QString::fromLatin1(Catalogues[m_language]));
        installQtCatalogue(QString::fromLatin1(Catalogues[m_language]));
    }
    // Installed even when empty: the texts then stay in Chinese.
    qApp->installTranslator(m_translator);
    ui->retranslateUi(this);
    m_serialPanel->retranslateUi();
    m_imgEdit->RetranslateUi();
}

void Draw::setUpSliders()
{
    for (QSlider *slider : {ui->speedHorizontalSlider, ui->powerHorizontalSlider}) {
        slider->setRange(SliderMinimum, SliderMaximum);
        slider->setSingleStep(1);
        slider->setTickInterval(SliderTickInterval);
        slider->setTickPosition(QSlider::TicksAbove);
    }
    ui->FontSizeSpinBox->setRange(FontSizeMinimum, FontSizeMaximum);

    connect(ui->powerHorizontalSlider, SIGNAL(valueChanged(int)), this, SLOT(SlotSetPowerText(int)));
    connect(ui->speedHorizontalSlider, SIGNAL(valueChanged(int)), this, SLOT(SlotSetSpeedText(int)));
    connect(ui->fontComboBox, SIGNAL(currentFontChanged(QFont)), this, SLOT(SlotSetTextEditFont(QFont)));
    connect(ui->FontSizeSpinBox, SIGNAL(valueChanged(QString)), this, SLOT(SlotSetTextEditFontSize(QString)));
    connect(ui->TextToImgButton, SIGNAL(clicked()), this, SLOT(SlotTextToImgButton()));
    connect(m_frontEnd, SIGNAL(Sig_uishow(QString)), this, SLOT(SlotLogMsg(QString)));

    ui->speedHorizontalSlider->setValue(MachineValues::StartSpeed);
    ui->powerHorizontalSlider->setValue(MachineValues::StartPower);
    ui->FontSizeSpinBox->setValue(StartFontSize);
    ui->fontComboBox->setEditable(false);
}

void Draw::saveField(const char *key, const QLineEdit *field)
{
    // Written even when empty, so clearing a field clears the setting.
    AppSettings::setTarnwyString(QString::fromLatin1(key), field->text());
}

void Draw::on_lineLaserOn_editingFinished() { saveField("laser_on", ui->lineLaserOn); }
void Draw::on_lineLaserOff_editingFinished() { saveField("laser_off", ui->lineLaserOff); }
void Draw::on_lineCNCOn_editingFinished() { saveField("cnc_on", ui->lineCNCOn); }
void Draw::on_lineCNCOff_editingFinished() { saveField("cnc_off", ui->lineCNCOff); }
void Draw::on_lineTravel_editingFinished() { saveField("travel_speed", ui->lineTravel); }
// The key really is "crue_speed": existing Config.ini files use it.
void Draw::on_lineCureSpeed_editingFinished() { saveField("crue_speed", ui->lineCureSpeed); }
void Draw::on_lineCNCFeedZ_editingFinished() { saveField("cnc_feed_z", ui->lineCNCFeedZ); }
void Draw::on_lineCNCTravelZ_editingFinished() { saveField("cnc_travel_z", ui->lineCNCTravelZ); }
void Draw::on_linePixixcelDist_editingFinished() {}

void Draw::on_radioButtonLaser_clicked(bool checked)
{
    if (!checked)
        return;
    AppSettings::setMode(QStringLiteral("laser"));
    ui->frame_grayout->show();
}

void Draw::on_radioButtonCNC_clicked(bool checked)
{
    if (!checked)
        return;
    AppSettings::setMode(QStringLiteral("cnc"));
    ui->frame_grayout->hide();
}

void Draw::SlotSetPowerText(int value) { ui->labelPower->setText(tr("%1").arg(value)); }

void Draw::SlotSetSpeedText(int value) { ui->labelSpeed->setText(tr("%1").arg(value)); }

void Draw::SlotLogMsg(QString text)
{
    ui->textBrowser->append(text);
    ui->textBrowser->moveCursor(QTextCursor::End);
}

void Draw::SlotConnected(bool connected) { ui->frame_2->setEnabled(connected); }

// ---- Messages -------------------------------------------------------------

QString Draw::message(const char *chinese, const char *english) const
{
    const char *text = LanguagePick::pick(m_language, chinese, english);
    return text ? tr(text) : QString();
}

void Draw::logMessage(const QString &text)
{
    if (!text.isNull())
        SlotLogMsg(text);
}

void Draw::warn(const QString &text)
{
    if (text.isNull())
        return;
    m_showNotice(Notice::Warning, message("警告", "Warning"), text);
}

// ---- Languages -------------------------------------------------------------------

void Draw::on_btnEn_clicked() { switchLanguage(QStringLiteral(":/bin_en.qm"), true); }

// The threshold editor keeps the texts it has; only the window and the panel change.
void Draw::on_btnZh_clicked() { switchLanguage(QStringLiteral(":/bin_zh.qm"), false); }

void Draw::switchLanguage(const QString &catalogue, bool editorToo)
{
    // Translators are only ever added; the newest wins.
    QTranslator *translator = new QTranslator(this);
    translator->load(catalogue);
    installQtCatalogue(catalogue);
    qApp->installTranslator(translator);
    ui->retranslateUi(this);
    m_serialPanel->retranslateUi();
    if (editorToo)
        m_imgEdit->RetranslateUi();
    restoreTextsAfterRetranslate();
}

void Draw::installQtCatalogue(const QString &catalogue)
{
    // Only Qt's catalogue is ever replaced; its contexts (QFileDialog, QPlatformTheme, ...) are
    // none of the program's, so the program's own translators keep every text they had.
    if (m_qtTranslator) {
        qApp->removeTranslator(m_qtTranslator);
        delete m_qtTranslator;
        m_qtTranslator = nullptr;
    }
    const QString locale = catalogue == QLatin1String(Catalogues[0])   ? QStringLiteral("zh_CN")
                           : catalogue == QLatin1String(Catalogues[2]) ? QStringLiteral("ko")
                                                                       : QString();
    if (locale.isEmpty())
        return;
    auto *translator = new QTranslator(this);
    if (!translator->load(QStringLiteral("qtbase_") + locale, QLibraryInfo::location(QLibraryInfo::TranslationsPath))) {
        delete translator;
        return;
    }
    qApp->installTranslator(translator);
    m_qtTranslator = translator;
}

// The form's retranslation puts back its design-time texts; the live ones return here.
void Draw::restoreTextsAfterRetranslate()
{
    setWindowTitle(tr("TarnwellLaser V1.0.1"));
    SlotSetPowerText(ui->powerHorizontalSlider->value());
    SlotSetSpeedText(ui->speedHorizontalSlider->value());
    ui->w_line->setText(QString::number(m_itemWidth, 'g', 6));
    ui->h_line->setText(QString::number(m_itemHeight, 'g', 6));
    if (!m_timeText.isNull())
        ui->timeLabel->setText(tr("%1").arg(m_timeText));
}
