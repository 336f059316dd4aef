// The threshold editor: turns a picture into the black and white (or gray) working picture.
// Shows source and result side by side, runs the pixel operations, writes the Finish output.
#include "imgbinaryedit.h"
#include "ui_imgbinaryedit.h"

#include "appsettings.h"
#include "pixelops.h"
#include "languagepick.h"

#include <QEvent>
#include <QFile>
#include <QFileDialog>
#include <QImageReader>
#include <QLabel>
#include <QPixmap>
#include <QSignalBlocker>

namespace {

// Memory the system can still give without swapping, in bytes; -1 when it does not say.
qint64 availableMemory()
{
    QFile meminfo(QStringLiteral("/proc/meminfo"));
    if (!meminfo.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : meminfo.readAll().split('\n')) {
        if (line.startsWith("MemAvailable:"))
            return line.mid(13).trimmed().split(' ').value(0).toLongLong() * 1024;
    }
    return -1;
}

// The source and the result, 4 bytes a pixel each, must both fit: a picture larger than
// that is refused before it is decoded. (Allocation alone does not tell: the system
// promises more memory than it has, and ends the program when the pages are touched.)
bool beyondMemory(const QSize &size)
{
    if (!size.isValid())
        return false;
    const double needed = 2.0 * 4.0 * size.width() * size.height();
    const qint64 available = availableMemory();
    if (available >= 0 && needed > double(available))
        return true;
    return QImage(size, QImage::Format_ARGB32).isNull();
}

}  // namespace

const char *const ImgBinaryEdit::OutputFile = "black_white.jpg";

ImgBinaryEdit::ImgBinaryEdit(QWidget *parent) : QWidget(parent), ui(new Ui::ImgBinaryEdit)
{
    ui->setupUi(this);
    setAttribute(Qt::WA_StyledBackground);
    setStyleSheet(QStringLiteral("background-color:rgb(128,128,128);"));
    ui->frameTop->setStyleSheet(QStringLiteral("background-color:rgb(50,50,50);"));
    ui->horizontalSlider->setRange(0, 255);
    connect(ui->horizontalSlider, SIGNAL(valueChanged(int)), this, SLOT(SlotHorizontalSliderValueChanged(int)));
}

ImgBinaryEdit::~ImgBinaryEdit() { delete ui; }

// Pictures of any size are taken as far as memory goes; the editor keeps the source and
// the result at full size (4 bytes a pixel each), and refuses only when that fails.
void ImgBinaryEdit::SetImage(QImage image)
{
    const QImage prepared = PixelOps::Prepare(image);
    if (prepared.isNull() && !image.isNull()) {
        refuseTooLarge();
        return;
    }
    adopt(prepared);
}

void ImgBinaryEdit::SetImageFile(QString path)
{
    QImageReader reader(path);
    if (beyondMemory(reader.size())) {
        refuseTooLarge();
        return;
    }
    QImage loaded;
    if (!reader.read(&loaded)) {
        // An unreadable picture leaves everything empty; Finish then writes nothing.
        adopt(QImage());
        refuse(tr("无法打开图片"), tr("The picture cannot be opened"));
        return;
    }
    // A decoded photo comes as opaque RGB32, whose words are ARGB32 words already: taking
    // them as they are spares a second full-size copy.
    const bool opaque = loaded.format() == QImage::Format_RGB32;
    if (opaque)
        loaded.reinterpretAsFormat(QImage::Format_ARGB32);
    else if (loaded.format() != QImage::Format_ARGB32)
        loaded = loaded.convertToFormat(QImage::Format_ARGB32);
    if (loaded.isNull()) {
        refuseTooLarge();
        return;
    }
    adopt(loaded, opaque);
}

void ImgBinaryEdit::refuseTooLarge() { refuse(tr("图片太大，无法处理"), tr("The picture is too large to process")); }

void ImgBinaryEdit::refuse(const QString &chinese, const QString &english)
{
    source = QImage();
    result = QImage();
    m_shownThreshold = -1;
    m_adaptive = QImage();
    m_showsAdaptive = false;
    ui->labelSrc->clear();
    ui->labelDest->clear();
    ui->labelDest->setText(LanguagePick::pick(AppSettings::languageIndex(), chinese, english, english));
}

void ImgBinaryEdit::adopt(const QImage &picture, bool opaque)
{
    source = picture;
    m_sourceOpaque = opaque;
    m_shownThreshold = -1;
    {
        // Put the remembered threshold on the slider without running it twice.
        const QSignalBlocker blocker(ui->horizontalSlider);
        ui->horizontalSlider->setValue(AppSettings::threshold());
    }
    const int threshold = ui->horizontalSlider->value();
    ui->label->setText(QString::number(threshold));
    if (m_grayMode) {
        result = PixelOps::GrayLevels(source);
        showResult(result, true);
    } else {
        applyGlobalThreshold(threshold);
    }
    if (!source.isNull() && result.isNull()) {
        refuseTooLarge();  // no memory left for the result
        return;
    }
    showPreview(ui->labelSrc, source, true, m_sourceOpaque);
}

void ImgBinaryEdit::ShowSlider()
{
    ui->horizontalSlider->show();
    ui->label->show();
}

void ImgBinaryEdit::SetBlackWhiteMode()
{
    m_grayMode = false;
    ShowSlider();
    m_shownThreshold = -1;
    if (!source.isNull())
        applyGlobalThreshold(ui->horizontalSlider->value());
}

void ImgBinaryEdit::SetGrayscaleMode()
{
    m_grayMode = true;
    ui->horizontalSlider->hide();
    ui->label->hide();
    m_shownThreshold = -1;
    if (!source.isNull()) {
        result = PixelOps::GrayLevels(source);
        showResult(result, true);
    }
}

void ImgBinaryEdit::applyGlobalThreshold(int threshold)
{
    if (m_grayMode)
        return;
    if (threshold != m_shownThreshold || source.isNull()) {
        QImage copy = PixelOps::GlobalThreshold(source, threshold, std::move(result));
        result = copy;
        showResult(result, true);
        AppSettings::setThreshold(threshold);
        m_shownThreshold = source.isNull() ? -1 : threshold;
    }
    ui->label->setText(QString::number(threshold));
}

// `scaled` false shows the adaptive picture at its own size; everything else is fitted
// into the label.
void ImgBinaryEdit::showResult(const QImage &picture, bool scaled)
{
    m_showsAdaptive = !scaled;
    m_adaptive = scaled ? QImage() : picture;
    showPreview(ui->labelDest, picture, scaled, true);
}

void ImgBinaryEdit::showPreview(QLabel *label, const QImage &picture, bool scaled, bool asWritten)
{
    if (picture.isNull()) {
        label->clear();
        return;
    }
    QImage shown = picture;
    if (asWritten && picture.format() == QImage::Format_ARGB32) {
        // The JPEG file keeps the colour and drops the alpha, so the result is shown the
        // same way: its alpha-0 white as white. Reading the words as RGB32 shares the
        // pixels and spares the scaler a premultiplied copy of the whole picture.
        shown = QImage(picture.constBits(), picture.width(), picture.height(), picture.bytesPerLine(),
                       QImage::Format_RGB32);
    }
    if (scaled) {
        const QSize box = label->size().expandedTo(QSize(1, 1));
        shown = shown.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    }
    // The pixmap may keep the pixels it is made from; it must not keep a view of a buffer
    // that the next slider step overwrites or that goes with the next picture.
    if (shown.constBits() == picture.constBits())
        shown = shown.copy();
    label->setPixmap(QPixmap::fromImage(shown));
}

// Only on request, never on a language change of its own accord: the main window's
// Chinese button leaves the editor's texts as they are.
void ImgBinaryEdit::RetranslateUi() { ui->retranslateUi(this); }

void ImgBinaryEdit::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    if (!source.isNull())
        showPreview(ui->labelSrc, source, true, m_sourceOpaque);
    if (m_showsAdaptive)
        showPreview(ui->labelDest, m_adaptive, false, true);
    else if (!result.isNull())
        showPreview(ui->labelDest, result, true, true);
}

void ImgBinaryEdit::SlotSliderValueChanged(int value) { ui->label->setText(QString::number(value)); }

void ImgBinaryEdit::on_btnLoad_clicked()
{
    const QString path =
        QFileDialog::getOpenFileName(this, tr("装载"), QString(), QStringLiteral("Image(*.jpg *.png)"));
    if (!path.isEmpty())
        SetImageFile(path);
}

void ImgBinaryEdit::on_btnAdaptive_clicked()
{
    // Shown only: Finish and Save keep writing the last global, inverted or outline result.
    const QImage adaptive = PixelOps::AdaptiveThreshold(source);
    m_shownThreshold = -1;
    showResult(adaptive, false);
}

void ImgBinaryEdit::on_horizontalSlider_sliderMoved(int position) { applyGlobalThreshold(position); }

void ImgBinaryEdit::on_btnSavr_clicked()
{
    const QString path =
        QFileDialog::getSaveFileName(this, tr("保存图片"), AppSettings::slicePath(), QStringLiteral("Image(*.jpg)"));
    if (path.isEmpty())
        return;
    AppSettings::setSlicePath(path);
    result.save(path, "JPEG", OutputQuality);
}

void ImgBinaryEdit::on_btnVacf_clicked()
{
    result = PixelOps::InvertedThreshold(source, ui->horizontalSlider->value());
    m_shownThreshold = -1;
    showResult(result, true);
}

void ImgBinaryEdit::on_btnBorder_clicked()
{
    result = PixelOps::Outline(PixelOps::InvertedThreshold(source, ui->horizontalSlider->value()));
    m_shownThreshold = -1;
    showResult(result, true);
}

void ImgBinaryEdit::on_btnFinish_clicked()
{
    const QString file = QString::fromLatin1(OutputFile);
    if (QFile::exists(file))
        QFile::remove(file);
    result.save(file, "JPEG", OutputQuality);
    emit SigBlackWhite();
    close();
}

void ImgBinaryEdit::SlotHorizontalSliderValueChanged(int value) { applyGlobalThreshold(value); }
