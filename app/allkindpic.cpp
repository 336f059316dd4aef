#include "allkindpic.h"
#include "ui_allkindpic.h"

#include <QDialogButtonBox>
#include <QFile>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>

namespace {
const char *const ResultFile = "print.jpg";
const char *const VoronoiProgram = "./voronoi.exe";
constexpr int VoronoiTimeoutMs = 60000;
constexpr int SketchBlurRadius = 4;
}  // namespace

AllKindPic::AllKindPic(QWidget *parent) : QDialog(parent), ui(new Ui::AllKindPic)
{
    ui->setupUi(this);
    connect(ui->comboEffect, SIGNAL(currentIndexChanged(int)), this, SLOT(SlotEffectChosen(int)));
    connect(ui->buttonBox, SIGNAL(accepted()), this, SLOT(SlotAccepted()));
    connect(ui->buttonBox, SIGNAL(rejected()), this, SLOT(reject()));
}

AllKindPic::~AllKindPic() { delete ui; }

void AllKindPic::SetImageFile(const QString &path)
{
    m_sourcePath = path;
    m_source.load(path);
    ui->comboEffect->setCurrentIndex(Original);
    SlotEffectChosen(Original);
}

// Colour dodge of the gray picture over its blurred negative: pencil lines on white.
static QImage sketchOf(const QImage &gray)
{
    const int w = gray.width();
    const int h = gray.height();
    QImage blurred(w, h, QImage::Format_Grayscale8);
    // Box blur of the inverted picture, rows then columns.
    QVector<int> row(w), column(h);
    QImage tmp(w, h, QImage::Format_Grayscale8);
    for (int y = 0; y < h; ++y) {
        const uchar *src = gray.constScanLine(y);
        uchar *dst = tmp.scanLine(y);
        for (int x = 0; x < w; ++x) {
            int sum = 0, n = 0;
            for (int k = qMax(0, x - SketchBlurRadius); k <= qMin(w - 1, x + SketchBlurRadius); ++k, ++n)
                sum += 255 - src[k];
            dst[x] = uchar(sum / n);
        }
    }
    for (int x = 0; x < w; ++x) {
        for (int y = 0; y < h; ++y) {
            int sum = 0, n = 0;
            for (int k = qMax(0, y - SketchBlurRadius); k <= qMin(h - 1, y + SketchBlurRadius); ++k, ++n)
                sum += tmp.constScanLine(k)[x];
            blurred.scanLine(y)[x] = uchar(sum / n);
        }
    }
    QImage out(w, h, QImage::Format_Grayscale8);
    for (int y = 0; y < h; ++y) {
        const uchar *base = gray.constScanLine(y);
        const uchar *blend = blurred.constScanLine(y);
        uchar *dst = out.scanLine(y);
        for (int x = 0; x < w; ++x)
            dst[x] = blend[x] >= 255 ? 255 : uchar(qMin(255, base[x] * 255 / (255 - blend[x])));
    }
    return out;
}

QImage AllKindPic::applyEffect(const QImage &source, Effect effect)
{
    if (source.isNull())
        return QImage();
    switch (effect) {
    case Original:
    case Voronoi:
        return source;
    case Gray:
        return source.convertToFormat(QImage::Format_Grayscale8);
    case Invert: {
        QImage out = source.convertToFormat(QImage::Format_RGB32);
        out.invertPixels();
        return out;
    }
    case Sketch:
        return sketchOf(source.convertToFormat(QImage::Format_Grayscale8));
    case Dither:
        return source.convertToFormat(QImage::Format_Mono, Qt::MonoOnly | Qt::DiffuseDither)
            .convertToFormat(QImage::Format_Grayscale8);
    }
    return source;
}

void AllKindPic::SlotEffectChosen(int index)
{
    m_result = applyEffect(m_source, Effect(index));
    showPreview();
}

void AllKindPic::showPreview()
{
    if (m_result.isNull()) {
        ui->labelPreview->setText(tr("没有图片"));
        return;
    }
    ui->labelPreview->setPixmap(
        QPixmap::fromImage(m_result).scaled(ui->labelPreview->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
}

void AllKindPic::SlotAccepted()
{
    if (m_source.isNull()) {
        reject();
        return;
    }
    QFile::remove(QString::fromLatin1(ResultFile));
    if (ui->comboEffect->currentIndex() == Voronoi) {
        // The stippling program reads the picture and writes the result file itself.
        QProcess voronoi;
        voronoi.start(QString::fromLatin1(VoronoiProgram), {m_sourcePath, QString::fromLatin1(ResultFile)});
        if (!voronoi.waitForFinished(VoronoiTimeoutMs) || !QFile::exists(ResultFile)) {
            QMessageBox::warning(this, tr("Warning"), tr("无法运行 %1").arg(VoronoiProgram));
            return;
        }
    } else if (!m_result.save(QString::fromLatin1(ResultFile), "JPG", 100)) {
        QMessageBox::warning(this, tr("Warning"), tr("无法保存 %1").arg(ResultFile));
        return;
    }
    accept();
    emit Sig_PrintImage(QString::fromLatin1(ResultFile));
}
