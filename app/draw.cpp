#include "draw.h"
#include "ui_draw.h"

#include "allkindpic.h"
#include "appsettings.h"
#include "bitmap2gcode.h"
#include "bitmap2svg.h"
#include "cpserialport.h"
#include "estimatedtime.h"
#include "frontend.h"
#include "imgbinaryedit.h"
#include "machinepanel.h"
#include "languagepick.h"
#include "machinevalues.h"
#include "workarea.h"
#include "materiallibrary.h"
#include "pgraphicsscene.h"
#include "previewpanel.h"
#include "qrcodebitmap.h"
#include "renderform.h"
#include "svg2gcodep.h"
#include "waitingform.h"

#include <QApplication>
#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QIcon>
#include <QMessageBox>
#include <QPainter>
#include <QProcess>
#include <QSvgRenderer>
#include <QTextCursor>
#include <QThread>
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

// Pictures are handed to the canvas at most this many pixels on a side.
constexpr int LargestPictureSide = 1000;

const char *const BlackWhiteJpg = "black_white.jpg";
const char *const BlackWhiteSvg = "black_white.svg";
const char *const LocalGcode = "local.gcode";
const char *const StaleJobFile = "printfile";
} // namespace

Draw::Draw(QWidget *parent)
    : QMainWindow(parent), ui(new Ui::Draw)
{
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

    // The machine panel: a window of its own, framing where the export would put the job.
    m_machinePanel = new MachinePanel(this);
    m_machinePanel->setPortHolder(m_serialPanel);
    m_machinePanel->setFrameSource([this] {
        const QPointF pos = m_renderForm->CurrentItemPos();
        double width = ui->w_line->text().toDouble(), height = ui->h_line->text().toDouble();
        if (!m_pictureLoaded || pos.x() == -10000.0)
            return QRectF();
        // The vector export works in whole millimetres.
        if (!ui->radioButtonBlackWhite->isChecked() && !ui->radioButtonGray->isChecked())
            width = int(width), height = int(height);
        return QRectF(pos.x(), WorkArea::Height - pos.y() - height, width, height);
    });
    ui->layoutLanguage->insertWidget(0, m_machinePanel->createOpenButton(this));

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
    MaterialLibrary &library = MaterialLibrary::instance();
    library.lookupLanguage();
    m_language = library.languageIndex();
    m_translator = new QTranslator(this);
    if (m_language >= 0 && m_language < int(std::size(Catalogues)))
        m_translator->load(QString::fromLatin1(Catalogues[m_language]));
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
    QMessageBox::warning(this, message("警告", "Warning"), text);
}

// ---- Choosing, preparing and placing a picture -----------------------------

void Draw::on_file_clicked()
{
    on_btndelete_clicked();
    const QString stored = AppSettings::preVectorPath();
    const QString folder = stored.isEmpty() ? QStringLiteral(".") : stored;
    const QString fileName = QFileDialog::getOpenFileName(
        this, tr("Open File"), folder, tr("Images (*.jpeg *.jpg *.png *.bmp *.svg)"));
    if (fileName.isEmpty()) {
        AppSettings::setPreVectorPath(stored);
        return;
    }
    AppSettings::setPreVectorPath(QFileInfo(fileName).absolutePath());
    m_picturePath = fileName;
    routePicture(fileName);
}

void Draw::showEditorBlackWhite(const QString &path)
{
    m_imgEdit->showNormal();
    m_imgEdit->SetBlackWhiteMode();
    m_imgEdit->SetImageFile(path);
}

// An SVG goes straight to the canvas; a raster picture goes through the threshold
// editor, which writes "black_white.jpg" and reports back with SigBlackWhite.
void Draw::routePicture(const QString &path)
{
    if (QFileInfo(path).suffix() == QLatin1String("svg")) {
        loadPicture(path);
        return;
    }
    if (ui->radioButtonLaser->isChecked()) {
        if (ui->radioButtonOut->isChecked() || ui->radioButtonBlackWhite->isChecked()) {
            showEditorBlackWhite(path);
        } else if (ui->radioButtonGray->isChecked()) {
            m_imgEdit->SetGrayscaleMode();
            m_imgEdit->SetImageFile(path);
            m_imgEdit->showNormal();
        }
    } else if (ui->radioButtonCNC->isChecked()) {
        showEditorBlackWhite(path);
    }
}

void Draw::SlotPixitemDropped(QString pixName)
{
    on_btndelete_clicked();
    m_picturePath = pixName;
    if (!ui->radioButtonLaser->isChecked())
        return;   // CNC: the canvas is cleared and the path kept, nothing is loaded
    m_imgEdit->raise();
    routePicture(pixName);
}

void Draw::SlotPrint(QString path)
{
    loadPicture(path);
}

void Draw::SlotLoadBlackWhite()
{
    const bool trace = ui->radioButtonCNC->isChecked()
        || (ui->radioButtonLaser->isChecked() && ui->radioButtonOut->isChecked());
    if (!trace) {
        loadPicture(QString::fromLatin1(BlackWhiteJpg));
        return;
    }
    Bitmap2Svg *tracer = new Bitmap2Svg;
    tracer->Trace(QStringLiteral("./black_white.jpg"));
    QFile::remove(QString::fromLatin1(BlackWhiteSvg));
    const bool traced = tracer->LastTraceOk();
    if (traced)
        tracer->WriteSvg(QString::fromLatin1(BlackWhiteSvg));
    delete tracer;
    if (!traced) {
        // No picture to trace (the editor refused it): an empty drawing would still
        // export as a job that only traces the frame.
        logMessage(message("无法打开图片", "The picture cannot be opened"));
        return;
    }
    loadPicture(QString::fromLatin1(BlackWhiteSvg));
}

void Draw::loadPicture(const QString &path)
{
    m_loadedPath = path;
    const QFileInfo info(path);
    if (info.suffix() == QLatin1String("svg")) {
        const QString working = QString::fromLatin1(BlackWhiteSvg);
        if (info.fileName() != working) {
            QFile::remove(working);
            QFile::copy(path, working);
        }
        const QSize size = QSvgRenderer(working).defaultSize();
        m_pictureWidth = size.width();
        m_pictureHeight = size.height();
        // The canvas opens the file it is given for writing too, so it gets the
        // working copy, never the user's own drawing.
        m_renderForm->LoadItemFromFile(working, 0);
    } else {
        const QImage picture(path);
        if (picture.isNull()) {
            // Nothing to place: an empty item would count as lying in the work area and
            // let an export write a job of "nan" positions.
            m_pictureLoaded = false;
            logMessage(message("无法打开图片", "The picture cannot be opened"));
            return;
        }
        int width = picture.width();
        int height = picture.height();
        if (height > 0 && (width >= LargestPictureSide || height >= LargestPictureSide)) {
            const double ratio = double(width) / height;
            if (ratio > 1) {
                width = LargestPictureSide;
                height = int(LargestPictureSide / ratio);
            } else {
                height = LargestPictureSide;
                width = int(ratio * LargestPictureSide);
            }
        }
        m_pictureWidth = width;
        m_pictureHeight = height;
        m_renderForm->LoadItemFromFile(path, 0);
    }
    m_pictureLoaded = true;
}

void Draw::outputStyleChanged()
{
    if (!m_image.isNull()) {
        m_renderForm->ClearItems();
        m_imgEdit->showNormal();
        m_imgEdit->SetBlackWhiteMode();
        m_imgEdit->SetImage(m_image);
    } else if (m_picturePath.isEmpty()) {
        on_file_clicked();
    } else {
        SlotPixitemDropped(m_picturePath);
    }
}

void Draw::on_radioButtonOut_clicked() { outputStyleChanged(); }
void Draw::on_radioButtonGray_clicked() { outputStyleChanged(); }
void Draw::on_radioButtonBlackWhite_clicked() { outputStyleChanged(); }

// ---- Size in millimetres ----------------------------------------------------

void Draw::SlotGetRect(QRectF rect)
{
    m_itemRect = rect;
    m_itemWidth = rect.width();
    m_itemHeight = rect.height();
    ui->w_line->setText(QString::number(m_itemWidth, 'g', 6));
    ui->h_line->setText(QString::number(m_itemHeight, 'g', 6));
}

void Draw::on_w_line_returnPressed()
{
    const double width = ui->w_line->text().toDouble();
    if (m_pictureLoaded && width > 0 && m_itemRect.width() > 0) {
        const double height = m_itemHeight * (width / m_itemRect.width());
        ui->h_line->setText(QString::number(height, 'g', 6));
        SlotGetRect(QRectF(0, 0, width, height));
        emit SigResetScaleFromLineEdit(width);
        return;
    }
    logMessage(message("请选择图片!!!", "Please select the image!!!"));
    ui->w_line->setText(QString::number(m_itemWidth, 'g', 6));
    ui->h_line->setText(QString::number(m_itemHeight, 'g', 6));
}

void Draw::on_h_line_returnPressed()
{
    const double height = ui->h_line->text().toDouble();
    if (m_pictureLoaded && height > 0 && m_itemRect.height() > 0) {
        const double width = m_itemWidth * (height / m_itemRect.height());
        ui->w_line->setText(QString::number(width, 'g', 6));
        SlotGetRect(QRectF(0, 0, width, height));
        emit SigResetScaleFromLineEdit(width);   // the canvas scales by width
        return;
    }
    logMessage(message("请选择图片!!!", "Please select the image!!!"));
    ui->w_line->setText(QString::number(m_itemWidth, 'g', 6));
    ui->h_line->setText(QString::number(m_itemHeight, 'g', 6));
}

void Draw::on_btndelete_clicked()
{
    m_renderForm->ClearItems();
    m_pictureLoaded = false;
    QDir here = QDir::current();
    const QStringList working = here.entryList(
        {QStringLiteral("*.svg"), QStringLiteral("*.png"), QStringLiteral("*.jpg"), QStringLiteral("*.gcode")},
        QDir::Files);
    for (const QString &name : working)
        here.remove(name);
    m_picturePath.clear();
    m_image = QImage();
    ui->w_line->setText(QStringLiteral("0"));
    ui->h_line->setText(QStringLiteral("0"));
}

// ---- Export ------------------------------------------------------------------

void Draw::on_btnExportGcode_clicked()
{
    const QString stored = AppSettings::preVectorPath();
    if (m_picturePath.isEmpty() && m_image.isNull()) {
        warn(message("请选择图片!!!", "Please select the image!!!"));
        return;
    }
    if ((ui->radioButtonGray->isChecked() || ui->radioButtonBlackWhite->isChecked())
        && m_picturePath.endsWith(QLatin1String("svg"))) {
        // Drawings are exported as outlines only.
        logMessage(message("请选择轮廓模式!!!", "Warning,Please select Outline mode!!!"));
        warn(message("请选择轮廓模式!!!", "Please select outPut mode!!!"));
        return;
    }
    const QPointF position = m_renderForm->CurrentItemPos();
    if (position.x() == PGraphicsScene::NoPosition.x()) {
        logMessage(message("警告，已超出预览区域!!!", "Warning,out of the preview area!!!"));
        warn(message("警告，已超出预览区域!!!", "Out of the preview area!!!"));
        return;
    }
    const QString title = message("保存文件", "Save file");
    if (title.isNull())
        return;   // no dialog without its title text
    const QString folder = stored.isEmpty() ? QStringLiteral(".") : stored;
    const QString name = QFileDialog::getSaveFileName(this, title, folder, QStringLiteral("Gcode (*.gcode)"));
    if (name.isEmpty()) {
        // Each cancel remembers the parent folder: users have learnt to live with it.
        AppSettings::setPreVectorPath(QFileInfo(folder).path());
        return;
    }
    logMessage(message("请等待Gcode文件正在生成", "Please wait for the Gcode file to be generated!!!"));
    ui->textBrowser->repaint();
    AppSettings::setPreVectorPath(QFileInfo(name).absolutePath());
    emit SigStartSaveGcode(name, position);
}

void Draw::startSaveGcode(QString filename, QPointF pos)
{
    QFile::remove(QString::fromLatin1(StaleJobFile));
    AppSettings::setOffset(pos.x(), pos.y());

    const int speed = ui->speedHorizontalSlider->value();
    const int power = ui->powerHorizontalSlider->value();
    const double width = ui->w_line->text().toDouble();
    const double height = ui->h_line->text().toDouble();
    const int feed = MachineValues::feed(speed);
    const int travel = MachineValues::travel(speed);
    const int laser = MachineValues::power(power);

    bool generated = false;
    // When a generator refuses, nothing is copied: an old "local.gcode" must not stand in.
    bool refused = false;
    QString why;
    float seconds = 0;
    if (ui->radioButtonBlackWhite->isChecked() || ui->radioButtonGray->isChecked()) {
        const bool blackWhite = ui->radioButtonBlackWhite->isChecked();
        QThread *thread = blackWhite ? new QThread : nullptr;
        Bitmap2Gcode *generator = new Bitmap2Gcode;
        if (thread)
            generator->moveToThread(thread);   // never started: the call below is direct
        generator->offset = pos;
        generator->SetTravelSpeed(travel);
        generator->SetFeedSpeed(feed);
        generator->SetPower(float(laser));
        const QImage picture(QString::fromLatin1(BlackWhiteJpg));
        const double scale = width / m_imgEdit->Result().width();
        qDebug() << "the image width scale is:" << scale;
        if (blackWhite)
            generator->ExportBlackPix(picture, QString::fromLatin1(LocalGcode), scale);
        else
            generator->ExportGrayPixEX(picture, QString::fromLatin1(LocalGcode), scale);
        seconds = generator->TakeEstimatedTime();
        refused = !generator->LastRefusal().isEmpty();
        why = message("图片的尺寸或位置不是有效数字，未生成文件!!!",
                      "The picture's size or position is not a number; no file was written!!!");
        delete generator;
        delete thread;
        generated = !refused;
    } else if (ui->radioButtonCNC->isChecked()
               || (ui->radioButtonLaser->isChecked() && ui->radioButtonOut->isChecked())) {
        const QString drawing = QString::fromLatin1(BlackWhiteSvg);
        if (!Svg2GcodeP::CanScale(drawing)) {
            // A drawing without width would put NaN coordinates into the job.
            refused = true;
            why = message("图形无法读取或没有宽度，无法缩放，未生成文件!!!",
                          "The drawing cannot be read or has no width to scale; no file was written!!!");
        } else {
            Svg2GcodeP *generator = new Svg2GcodeP;
            generator->SetgGcodeWidth(int(width), int(height));
            generator->SetFeedSpeed(feed);
            generator->SetPrintMode(!ui->radioButtonLaser->isChecked());
            generator->SetTravelSpeed(travel);
            generator->SetLaser(laser);
            generator->SetPrintZValue(ui->lineCNCFeedZ->text().toFloat());
            generator->SetTravelZValue(ui->lineCNCTravelZ->text().toFloat());
            generator->SvgToGcode(drawing, QString::fromLatin1(LocalGcode));
            qDebug() << "Now the width is:" << int(width);
            seconds = generator->TakeEstimatedTime();
            refused = !generator->LastRefusal().isEmpty();
            why = message("图形的位置不是有效数字，未生成文件!!!",
                          "The drawing's positions are not numbers; no file was written!!!");
            delete generator;
            generated = !refused;
        }
    }

    if (refused) {
        logMessage(why);
        warn(why);
        return;
    }

    if (generated) {
        const QString text = EstimatedTimeText(seconds);
        logMessage(message("预估时间:%1", "Estimated time:%1").arg(text));
        m_timeText = text;
        ui->timeLabel->setText(tr("%1").arg(text));
    }

    // Also when nothing was generated: the last "local.gcode" is what gets copied.
    QFile local(QString::fromLatin1(LocalGcode));
    local.open(QIODevice::ReadWrite);
    const QByteArray gcode = local.readAll();
    local.close();
    if (QFile::exists(filename))
        QFile::remove(filename);
    QFile out(filename);
    if (out.open(QIODevice::WriteOnly) && out.write(gcode) == gcode.size())
        m_machinePanel->setJobFile(filename, seconds);
    // The preview reads the file after this function has closed it.
    if (auto *preview = findChild<PreviewPanel *>())
        preview->showFile(filename, ui->radioButtonCNC->isChecked());
}

void Draw::SlotGcodeFinished(QString)
{
    m_waiting->close();
    QMessageBox::information(this, tr("info"), tr("start"));
}

void Draw::SLotStartWaitWindow()
{
    m_waiting->activateWindow();
    m_waiting->setWindowFlags(Qt::SubWindow);
}

void Draw::SLotCloseWaitWindow() {}

// ---- Job controls ----------------------------------------------------------------

void Draw::on_btnPreview_clicked() { emit Sig_Preview(m_previewRect); }
void Draw::on_stop_clicked() { emit Sig_stop(); }
void Draw::on_recovery_clicked() { emit Sig_recover(); }
void Draw::on_cancle_clicked() { emit Sig_cancle(); }
void Draw::on_start_clicked() {}
void Draw::on_lineEdit_returnPressed() {}
void Draw::SlotChoosFileType() {}

void Draw::on_artpic_clicked()
{
    // The companion drawing program runs on its own; nobody waits for it.
    QProcess *sketch = new QProcess;
    sketch->setWorkingDirectory(QDir::currentPath());
    sketch->start(QStringLiteral("Tosketch.exe"), QStringList(), QIODevice::ReadWrite);
}

// ---- Manual machine control ---------------------------------------------------

void Draw::on_radioButton01mm_clicked(bool checked)
{
    if (checked)
        m_jogStep = 0.1;
}

void Draw::on_radioButton1mm_clicked(bool checked)
{
    if (checked)
        m_jogStep = 1.0;
}

void Draw::on_radioButton10mm_clicked(bool checked)
{
    if (checked)
        m_jogStep = 10.0;
}

void Draw::sendJog(const char *axisTemplate)
{
    // Relative mode first; the machine stays in it after the move.
    emit Sig_toarduino(tr("G91"));
    emit Sig_toarduino(tr(axisTemplate).arg(m_jogStep));
}

void Draw::on_xa_clicked() { sendJog("G1 X%1 F2000"); }
void Draw::on_xp_clicked() { sendJog("G1 X-%1 F2000"); }
void Draw::on_ya_clicked() { sendJog("G1 Y%1 F2000"); }
void Draw::on_yp_clicked() { sendJog("G1 Y-%1 F2000"); }
void Draw::on_home_clicked() { emit Sig_toarduino(QStringLiteral("G28 X Y")); }
void Draw::on_setHome_clicked() { emit Sig_toarduino(QStringLiteral("G92 X0 Y0 \n")); }
void Draw::on_backHome_clicked() { emit Sig_toarduino(QStringLiteral("G1 X0 Y0 \n")); }

void Draw::on_btnSend_clicked()
{
    m_serialPanel->WritePort(ui->lineEditGcodeLine->text());
}

void Draw::on_lineEditGcodeLine_returnPressed()
{
    m_serialPanel->WritePort(ui->lineEditGcodeLine->text());
}

void Draw::loadSnippet(const QString &target)
{
    const QString chosen = QFileDialog::getOpenFileName(this, tr("Gcode Header"), QStringLiteral("."),
                                                        QStringLiteral("Gcode(*.gcode)"));
    if (!chosen.isEmpty())
        QFile::copy(chosen, target);   // an existing snippet is kept
}

void Draw::on_btnLoadGcodeHead_clicked() { loadSnippet(QStringLiteral("./start.gm")); }
void Draw::on_btnLoadGcodeEnd_clicked() { loadSnippet(QStringLiteral("./end.gm")); }

// ---- Text pictures -------------------------------------------------------------

void Draw::SlotSetTextEditFont(QFont font)
{
    m_textFont = font;
    ui->textEdit->setFont(font);
}

void Draw::SlotSetTextEditFontSize(QString size)
{
    m_textPixelSize = size.toInt();
    QFont font = ui->textEdit->font();
    if (m_textPixelSize > 0)
        font.setPixelSize(m_textPixelSize);
    ui->textEdit->setFont(font);
}

void Draw::SlotTextToImgButton()
{
    on_btndelete_clicked();
    QFont font = m_textFont;
    if (m_textPixelSize > 0)
        font.setPixelSize(m_textPixelSize);
    const QString text = ui->textEdit->toPlainText();
    const int lines = text.split(QLatin1Char('\n')).size();
    const QFontMetrics metrics(font);
    const QRect bounds = metrics.boundingRect(text);
    const int width = bounds.width();
    const int lineHeight = bounds.height();
    if (text.isEmpty() || width <= 0 || lineHeight <= 0)
        return;
    QImage picture(width, lines * lineHeight, QImage::Format_ARGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(picture.rect(), Qt::AlignHCenter, text);
    painter.end();
    m_image = picture;
    m_imgEdit->raise();
    m_imgEdit->showNormal();
    m_imgEdit->SetBlackWhiteMode();
    m_imgEdit->SetImage(m_image);
}

// ---- Languages -------------------------------------------------------------------

void Draw::on_btnEn_clicked()
{
    // Translators are only ever added; the newest wins.
    QTranslator *english = new QTranslator(this);
    english->load(QStringLiteral(":/bin_en.qm"));
    qApp->installTranslator(english);
    ui->retranslateUi(this);
    m_serialPanel->retranslateUi();
    m_imgEdit->RetranslateUi();
    restoreTextsAfterRetranslate();
}

void Draw::on_btnZh_clicked()
{
    // The threshold editor keeps its texts here; only the window and the panel change.
    QTranslator *chinese = new QTranslator(this);
    chinese->load(QStringLiteral(":/bin_zh.qm"));
    qApp->installTranslator(chinese);
    ui->retranslateUi(this);
    m_serialPanel->retranslateUi();
    restoreTextsAfterRetranslate();
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

// ---- Material library ------------------------------------------------------------

void Draw::setMaterialControlsEnabled(bool enabled)
{
    for (QWidget *w : {static_cast<QWidget *>(ui->saveMaterialButton), static_cast<QWidget *>(ui->initButton),
                       static_cast<QWidget *>(ui->addMaterialButton), static_cast<QWidget *>(ui->deleteMaterialButton),
                       static_cast<QWidget *>(ui->materialComboBox)})
        w->setEnabled(enabled);
}

void Draw::startMaterials()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    if (!library.load())
        setMaterialControlsEnabled(false);
    for (const QString &name : library.names())
        ui->materialComboBox->addItem(tr(name.toUtf8().constData()));
    m_material = library.find(ui->materialComboBox->currentText());
    if (m_material) {
        ui->speedHorizontalSlider->setValue(int(m_material->currentSpeed));
        ui->powerHorizontalSlider->setValue(int(m_material->currentPower));
    }
}

void Draw::fillMaterials()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    m_material = nullptr;
    ui->materialComboBox->clear();
    for (const QString &name : library.names())
        ui->materialComboBox->addItem(tr(name.toUtf8().constData()));
    if (library.isEmpty()) {
        ui->speedHorizontalSlider->setValue(0);
        ui->powerHorizontalSlider->setValue(0);
        setMaterialControlsEnabled(false);
        return;
    }
    m_material = library.find(ui->materialComboBox->currentText());
    if (m_material) {
        ui->speedHorizontalSlider->setValue(int(m_material->currentSpeed));
        ui->powerHorizontalSlider->setValue(int(m_material->currentPower));
    }
}

void Draw::on_materialComboBox_currentIndexChanged(QString name)
{
    if (name.isEmpty())
        return;
    m_material = MaterialLibrary::instance().find(name);
    if (!m_material)
        return;
    ui->powerHorizontalSlider->setValue(int(m_material->currentPower));
    ui->speedHorizontalSlider->setValue(int(m_material->currentSpeed));
}

void Draw::on_initButton_clicked()
{
    if (!m_material)
        return;
    ui->powerHorizontalSlider->setValue(int(m_material->initPower));
    ui->speedHorizontalSlider->setValue(int(m_material->initSpeed));
    // Only in memory: the file keeps the old values until the next save.
    m_material->currentPower = m_material->initPower;
    m_material->currentSpeed = m_material->initSpeed;
}

void Draw::on_saveMaterialButton_clicked()
{
    if (!m_material)
        return;
    m_material->currentPower = float(ui->powerHorizontalSlider->value());
    m_material->currentSpeed = float(ui->speedHorizontalSlider->value());
    MaterialLibrary::instance().save();
}

void Draw::on_addMaterialButton_clicked()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    const QString name = ui->materialComboBox->currentText();
    if (library.names().contains(name)) {
        logMessage(message("此材料已存在!!!", "The material already exists "));
        return;
    }
    MaterialRecord record;
    record.name = name;
    record.currentPower = record.initPower = float(ui->powerHorizontalSlider->value());
    record.currentSpeed = record.initSpeed = float(ui->speedHorizontalSlider->value());
    record.thickness = 0;
    library.add(record);
    fillMaterials();
    ui->materialComboBox->setCurrentIndex(ui->materialComboBox->count() - 1);
}

void Draw::on_deleteMaterialButton_clicked()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    const QString name = ui->materialComboBox->currentText();
    if (!library.find(name)) {
        logMessage(message("此材料不存在!!!", "The material dose not exists "));
        return;
    }
    m_material = nullptr;
    library.remove(name);
    fillMaterials();
}

// ---- QR-code pictures --------------------------------------------------------------

void Draw::on_TextToQRcodeButton_clicked()
{
    const QString file = QString::fromLatin1(QrCodeBitmap::FileName);
    if (!QrCodeBitmap::write(ui->textEdit->toPlainText(), file))
        return;   // encoding or file errors end quietly
    m_picturePath = file;
    SlotPixitemDropped(file);
}
