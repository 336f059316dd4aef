// The job road of the main window: choosing, loading and placing a picture, its size
// in millimetres, clearing the canvas, exporting G-code and the job controls.
#include "draw.h"
#include "ui_draw.h"

#include "appsettings.h"
#include "bitmap2gcode.h"
#include "bitmap2svg.h"
#include "classicsetup.h"
#include "estimatedtime.h"
#include "imgbinaryedit.h"
#include "machinepanel.h"
#include "pgraphicsscene.h"
#include "previewpanel.h"
#include "renderform.h"
#include "svg2gcodep.h"
#include "waitingform.h"

#include <QDebug>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSvgRenderer>
#include <QThread>

namespace {
// Pictures are handed to the canvas at most this many pixels on a side.
constexpr int LargestPictureSide = 1000;

const char *const BlackWhiteJpg = "black_white.jpg";
const char *const BlackWhiteSvg = "black_white.svg";
const char *const LocalGcode = "local.gcode";
const char *const StaleJobFile = "printfile";
}  // namespace

// ---- Choosing, preparing and placing a picture -----------------------------

void Draw::on_file_clicked()
{
    on_btndelete_clicked();
    const QString stored = AppSettings::preVectorPath();
    const QString folder = stored.isEmpty() ? QStringLiteral(".") : stored;
    const QString fileName =
        m_chooseFile(FileQuestion::Open, tr("Open File"), folder, tr("Images (*.jpeg *.jpg *.png *.bmp *.svg)"));
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
        return;  // CNC: the canvas is cleared and the path kept, nothing is loaded
    m_imgEdit->raise();
    routePicture(pixName);
}

void Draw::SlotPrint(QString path) { loadPicture(path); }

void Draw::SlotLoadBlackWhite()
{
    const bool trace =
        ui->radioButtonCNC->isChecked() || (ui->radioButtonLaser->isChecked() && ui->radioButtonOut->isChecked());
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
    ++m_placements;
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

void Draw::on_w_line_returnPressed() { applyTypedSize(true); }
void Draw::on_h_line_returnPressed() { applyTypedSize(false); }

// A size typed into one field keeps the picture's proportions; the canvas scales by width.
// Without a picture, or with no usable number, both fields show the current size again.
void Draw::applyTypedSize(bool widthTyped)
{
    const double typed = (widthTyped ? ui->w_line : ui->h_line)->text().toDouble();
    const double current = widthTyped ? m_itemRect.width() : m_itemRect.height();
    if (m_pictureLoaded && typed > 0 && current > 0) {
        const double width = widthTyped ? typed : m_itemWidth * (typed / current);
        const double height = widthTyped ? m_itemHeight * (typed / current) : typed;
        (widthTyped ? ui->h_line : ui->w_line)->setText(QString::number(widthTyped ? height : width, 'g', 6));
        SlotGetRect(QRectF(0, 0, width, height));
        emit SigResetScaleFromLineEdit(width);
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
        return;  // no dialog without its title text
    const QString folder = stored.isEmpty() ? QStringLiteral(".") : stored;
    const QString name = m_chooseFile(FileQuestion::Save, title, folder, QStringLiteral("Gcode (*.gcode)"));
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
    ClassicSetup setup;
    setup.speedPercent = speed;
    setup.powerPercent = power;
    setup.cnc = !ui->radioButtonLaser->isChecked();
    setup.offset = pos;
    setup.width = width;
    setup.height = height;
    setup.feedZ = ui->lineCNCFeedZ->text().toFloat();
    setup.travelZ = ui->lineCNCTravelZ->text().toFloat();

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
            generator->moveToThread(thread);  // never started: the call below is direct
        setup.apply(*generator);
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
            setup.apply(*generator);
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
    if (out.open(QIODevice::WriteOnly) && out.write(gcode) == gcode.size()) {
        m_machinePanel->setJobFile(filename, seconds);
        if (generated) {
            m_exportedPlacement = m_placements;
            m_exportedRect = m_itemRect;
            m_exportedPosition = pos;
        }
    }
    // The preview reads the file after this function has closed it.
    if (auto *preview = findChild<PreviewPanel *>())
        preview->showFile(filename, ui->radioButtonCNC->isChecked());
}

void Draw::SlotGcodeFinished(QString)
{
    m_waiting->close();
    m_showNotice(Notice::Information, tr("info"), tr("start"));
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
