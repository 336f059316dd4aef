#include "draw.h"
#include "ui_draw.h"

#include "appsettings.h"

#include <QApplication>
#include <QIcon>
#include <QScrollBar>
#include <QTextCursor>
#include <QTranslator>

namespace {
// Slider ranges and starting values.
constexpr int SliderMinimum = 0;
constexpr int SliderMaximum = 100;
constexpr int SliderTickInterval = 10;
constexpr int StartSpeed = 33;
constexpr int StartPower = 91;
constexpr int FontSizeMinimum = 99;
constexpr int FontSizeMaximum = 500;
constexpr int StartFontSize = 99;

const char *const Catalogues[] = {":/bin_zh.qm", ":/bin_en.qm", ":/bin_ko.qm"};
} // namespace

Draw::Draw(QWidget *parent)
    : QMainWindow(parent), ui(new Ui::Draw)
{
    // 1. The widget tree.
    ui->setupUi(this);

    // 2-4. Worker objects, their connections and their places in the window
    // are added here as each subsystem arrives.

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

    // 11. Slider values in their labels, the text tool's font.
    SlotSetPowerText(ui->powerHorizontalSlider->value());
    SlotSetSpeedText(ui->speedHorizontalSlider->value());
    m_textFont.setFamily(QStringLiteral("SimHei"));
}

Draw::~Draw()
{
    delete ui;
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
        ui->frame_6,      ui->lineCNCOn,    ui->lineCNCOff,      ui->lineCNCFeedZ,
        ui->lineCNCTravelZ, ui->lineLaserOff, ui->lineLaserOn,   ui->lineTravel,
        ui->lineCureSpeed, ui->label_5,     ui->label_6,         ui->label_7,
        ui->label_8,      ui->label_9,      ui->label_10,        ui->label_11,
        ui->label_12,     ui->label_16,     ui->label_17,        ui->label_18,
        ui->label_19,     ui->btnLoadGcodeEnd, ui->btnLoadGcodeHead};
    for (QWidget *w : hidden)
        w->hide();
    ui->carTabWidget->removeTab(0);
    ui->TimeProgressBar->hide();
    ui->frame_2->hide();
}

void Draw::installLanguage()
{
    m_language = AppSettings::languageIndex();
    m_translator = new QTranslator(this);
    if (m_language >= 0 && m_language < int(std::size(Catalogues)))
        m_translator->load(QString::fromLatin1(Catalogues[m_language]));
    // Installed even when empty: the texts then stay in Chinese.
    qApp->installTranslator(m_translator);
    ui->retranslateUi(this);
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

    ui->speedHorizontalSlider->setValue(StartSpeed);
    ui->powerHorizontalSlider->setValue(StartPower);
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

void Draw::SlotSetPowerText(int value)
{
    ui->labelPower->setText(tr("%1").arg(value));
}

void Draw::SlotSetSpeedText(int value)
{
    ui->labelSpeed->setText(tr("%1").arg(value));
}

void Draw::SlotLogMsg(QString text)
{
    ui->textBrowser->append(text);
    ui->textBrowser->moveCursor(QTextCursor::End);
}

void Draw::SlotConnected(bool connected)
{
    ui->frame_2->setEnabled(connected);
}
