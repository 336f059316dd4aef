// The threshold editor: turns a picture into the black and white (or gray) working picture.
// Global, adaptive and inverted thresholds, an outline operator, and the Finish output.
#include "imgbinaryedit.h"
#include "ui_imgbinaryedit.h"

#include "appsettings.h"

#include <QEvent>
#include <QFile>
#include <QFileDialog>
#include <QImageReader>
#include <QLabel>
#include <QPixmap>
#include <QSignalBlocker>

#include <algorithm>
#include <vector>

namespace {

constexpr quint32 Black = 0xFF000000u;
constexpr quint32 OpaqueWhite = 0xFFFFFFFFu;
// The global threshold writes its white with alpha 0; the raster export and the
// JPEG writer both read it as white.
constexpr quint32 ClearWhite = 0x00FFFFFFu;
// 11R + 16G + 5B below this is gray 0: a transparent pixel that dark is paper, not ink.
constexpr int TransparentDarkSum = 32;

constexpr double AdaptiveWindowRatio = 0.125;
constexpr double AdaptiveMeanRatio = 0.85;

// Outline: input words from this value up count as white.
constexpr quint32 OutlineWhiteFrom = 0xFFC8C8C8u;
constexpr double OutlineLimit = 5.0;
constexpr int OutlineReach = 3;

struct Neighbour
{
    int dx, dy;
    double weight;
};

// The weight of each neighbour is 3.030039172 times its distance.
const std::vector<Neighbour> &outlineNeighbours()
{
    static const std::vector<Neighbour> table = [] {
        const Neighbour base[] = {
            {1, 0, 3.030039172}, {0, 1, 3.030039172},
            {1, 1, 4.285122492},
            {2, 0, 6.060078344}, {0, 2, 6.060078344},
            {2, 1, 6.775373563}, {1, 2, 6.775373563},
            {2, 2, 8.570244983},
            {3, 0, 9.090117516}, {0, 3, 9.090117516},
            {3, 1, 9.581825183}, {1, 3, 9.581825183},
        };
        std::vector<Neighbour> all;
        for (const Neighbour &n : base) {
            for (int sx : {1, -1}) {
                for (int sy : {1, -1}) {
                    const Neighbour m{n.dx * sx, n.dy * sy, n.weight};
                    const bool seen = std::any_of(all.begin(), all.end(), [&](const Neighbour &o) {
                        return o.dx == m.dx && o.dy == m.dy;
                    });
                    if (!seen)
                        all.push_back(m);
                }
            }
        }
        // Heaviest first: the sum passes the limit sooner, and all weights are positive,
        // so stopping early never changes the outcome.
        std::stable_sort(all.begin(), all.end(), [](const Neighbour &a, const Neighbour &b) {
            return a.weight > b.weight;
        });
        return all;
    }();
    return table;
}

bool is32Bit(const QImage &image)
{
    return image.format() == QImage::Format_ARGB32 || image.format() == QImage::Format_RGB32;
}

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

} // namespace

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

ImgBinaryEdit::~ImgBinaryEdit()
{
    delete ui;
}

QImage ImgBinaryEdit::Prepare(const QImage &picture)
{
    if (picture.isNull() || is32Bit(picture))
        return picture;
    return picture.convertToFormat(QImage::Format_ARGB32);
}

// Pictures of any size are taken as far as memory goes; the editor keeps the source and
// the result at full size (4 bytes a pixel each), and refuses only when that fails.
void ImgBinaryEdit::SetImage(QImage image)
{
    const QImage prepared = Prepare(image);
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

void ImgBinaryEdit::refuseTooLarge()
{
    refuse(tr("图片太大，无法处理"), tr("The picture is too large to process"));
}

void ImgBinaryEdit::refuse(const QString &chinese, const QString &english)
{
    source = QImage();
    result = QImage();
    m_shownThreshold = -1;
    m_adaptive = QImage();
    m_showsAdaptive = false;
    ui->labelSrc->clear();
    ui->labelDest->clear();
    ui->labelDest->setText(AppSettings::languageIndex() == 0 ? chinese : english);
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
        result = GrayLevels(source);
        showResult(result, true);
    } else {
        applyGlobalThreshold(threshold);
    }
    if (!source.isNull() && result.isNull()) {
        refuseTooLarge();   // no memory left for the result
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
        result = GrayLevels(source);
        showResult(result, true);
    }
}

void ImgBinaryEdit::applyGlobalThreshold(int threshold)
{
    if (m_grayMode)
        return;
    if (threshold != m_shownThreshold || source.isNull()) {
        QImage copy = GlobalThreshold(source, threshold, std::move(result));
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
        shown = QImage(picture.constBits(), picture.width(), picture.height(),
                       picture.bytesPerLine(), QImage::Format_RGB32);
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
void ImgBinaryEdit::RetranslateUi()
{
    ui->retranslateUi(this);
}

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

QImage ImgBinaryEdit::GlobalThreshold(const QImage &picture, int threshold, QImage reuse)
{
    if (picture.isNull())
        return QImage();
    const QImage in = Prepare(picture);
    QImage out;
    if (reuse.isDetached() && reuse.size() == in.size() && reuse.format() == in.format())
        out = std::move(reuse);
    else
        out = QImage(in.size(), in.format());
    if (out.isNull())
        return QImage();
    const int w = in.width();
    const quint32 limit = quint32(qBound(-1, threshold, 255) + 1);
    // Branch-free so the compiler can run the loop on vector registers: this runs on
    // every slider step.
    for (int y = 0; y < in.height(); ++y) {
        const quint32 *src = reinterpret_cast<const quint32 *>(in.constScanLine(y));
        quint32 *dst = reinterpret_cast<quint32 *>(out.scanLine(y));
        for (int x = 0; x < w; ++x) {
            const quint32 p = src[x];
            const quint32 sum = 11 * ((p >> 16) & 0xFF) + 16 * ((p >> 8) & 0xFF) + 5 * (p & 0xFF);
            const quint32 transparentDark = quint32(p <= 0x00FFFFFFu) & quint32(sum < quint32(TransparentDarkSum));
            const quint32 white = transparentDark | quint32((sum >> 5) >= limit);
            dst[x] = white ? ClearWhite : Black;
        }
    }
    return out;
}

QImage ImgBinaryEdit::AdaptiveThreshold(const QImage &picture)
{
    if (picture.isNull())
        return QImage();
    const QImage in = Prepare(picture);
    const int w = in.width(), h = in.height();
    const int window = int(w * AdaptiveWindowRatio);
    const int half = window / 2;

    // Integral of gray values: I(x, y) = I(x - 1, y) + the column sum of rows 0..y.
    std::vector<qint64> integral(size_t(w) * size_t(h));
    std::vector<qint64> column(size_t(w), 0);
    for (int y = 0; y < h; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(in.constScanLine(y));
        qint64 *line = integral.data() + size_t(y) * size_t(w);
        for (int x = 0; x < w; ++x) {
            column[size_t(x)] += Gray(row[x]);
            line[x] = (x > 0 ? line[x - 1] : 0) + column[size_t(x)];
        }
    }
    auto at = [&](int x, int y) { return integral[size_t(y) * size_t(w) + size_t(x)]; };

    QImage out(w, h, QImage::Format_ARGB32);
    if (out.isNull())
        return QImage();
    for (int y = 0; y < h; ++y) {
        const QRgb *row = reinterpret_cast<const QRgb *>(in.constScanLine(y));
        quint32 *dst = reinterpret_cast<quint32 *>(out.scanLine(y));
        const int y1 = std::max(y - half, 0), y2 = std::min(y + half, h - 1);
        for (int x = 0; x < w; ++x) {
            const int x1 = std::max(x - half, 0), x2 = std::min(x + half, w - 1);
            const qint64 count = qint64(x2 - x1) * (y2 - y1);
            const qint64 sum = at(x2, y2) - at(x2, y1) - at(x1, y2) + at(x1, y1);
            const bool dark = Gray(row[x]) * count < qint64(double(sum) * AdaptiveMeanRatio);
            dst[x] = dark ? Black : OpaqueWhite;
        }
    }
    return out;
}

QImage ImgBinaryEdit::InvertedThreshold(const QImage &picture, int threshold)
{
    if (picture.isNull())
        return QImage();
    const QImage in = Prepare(picture);
    QImage out(in.size(), QImage::Format_ARGB32);
    if (out.isNull())
        return QImage();
    for (int y = 0; y < in.height(); ++y) {
        const QRgb *src = reinterpret_cast<const QRgb *>(in.constScanLine(y));
        quint32 *dst = reinterpret_cast<quint32 *>(out.scanLine(y));
        for (int x = 0; x < in.width(); ++x)
            dst[x] = Gray(src[x]) < threshold ? OpaqueWhite : Black;
    }
    return out;
}

QImage ImgBinaryEdit::Outline(const QImage &inverted)
{
    if (inverted.isNull())
        return QImage();
    const QImage in = Prepare(inverted);
    const int w = in.width(), h = in.height();
    QImage out(w, h, QImage::Format_ARGB32);
    if (out.isNull())
        return QImage();
    const std::vector<Neighbour> &table = outlineNeighbours();
    const qsizetype stride = in.bytesPerLine() / qsizetype(sizeof(quint32));
    std::vector<qsizetype> offsets;
    for (const Neighbour &n : table)
        offsets.push_back(qsizetype(n.dy) * stride + n.dx);
    const quint32 *base = reinterpret_cast<const quint32 *>(in.constBits());

    // Black pixels per column within rows y - 3 .. y + 3, summed across columns x - 3 .. x + 3:
    // a white pixel with no black in that 7 x 7 box is settled without visiting its neighbours.
    std::vector<int> column(size_t(w), 0);
    auto countRow = [&](int row, int delta) {
        const quint32 *line = base + qsizetype(row) * stride;
        for (int x = 0; x < w; ++x)
            column[size_t(x)] += line[x] == Black ? delta : 0;
    };
    for (int row = 0; row < std::min(OutlineReach, h); ++row)
        countRow(row, 1);

    for (int y = 0; y < h; ++y) {
        if (y + OutlineReach < h)
            countRow(y + OutlineReach, 1);
        const quint32 *src = base + qsizetype(y) * stride;
        quint32 *dst = reinterpret_cast<quint32 *>(out.scanLine(y));
        const bool innerRow = y >= OutlineReach && y < h - OutlineReach;
        int box = 0;
        for (int x = 0; x < std::min(OutlineReach, w); ++x)
            box += column[size_t(x)];
        for (int x = 0; x < w; ++x) {
            if (x + OutlineReach < w)
                box += column[size_t(x + OutlineReach)];
            if (x - OutlineReach - 1 >= 0)
                box -= column[size_t(x - OutlineReach - 1)];
            if (src[x] < OutlineWhiteFrom || box == 0) {
                dst[x] = Black;
                continue;
            }
            double sum = 0.0;
            if (innerRow && x >= OutlineReach && x < w - OutlineReach) {
                const quint32 *p = src + x;
                for (size_t i = 0; i < offsets.size() && sum <= OutlineLimit; ++i) {
                    if (p[offsets[i]] == Black)
                        sum += table[i].weight;
                }
            } else {
                for (size_t i = 0; i < table.size() && sum <= OutlineLimit; ++i) {
                    const int nx = x + table[i].dx, ny = y + table[i].dy;
                    if (nx < 0 || ny < 0 || nx >= w || ny >= h)
                        continue;
                    if (base[qsizetype(ny) * stride + nx] == Black)
                        sum += table[i].weight;
                }
            }
            dst[x] = sum > OutlineLimit ? OpaqueWhite : Black;
        }
        if (y - OutlineReach >= 0)
            countRow(y - OutlineReach, -1);
    }
    return out;
}

QImage ImgBinaryEdit::GrayLevels(const QImage &picture)
{
    if (picture.isNull())
        return QImage();
    const QImage in = Prepare(picture);
    QImage out(in.size(), QImage::Format_Grayscale8);
    if (out.isNull())
        return QImage();
    const bool hasAlpha = in.format() == QImage::Format_ARGB32;
    for (int y = 0; y < in.height(); ++y) {
        const QRgb *src = reinterpret_cast<const QRgb *>(in.constScanLine(y));
        uchar *dst = out.scanLine(y);
        for (int x = 0; x < in.width(); ++x) {
            const int gray = Gray(src[x]);
            // Seen through its transparency onto white paper.
            const int alpha = hasAlpha ? qAlpha(src[x]) : 255;
            dst[x] = uchar((gray * alpha + 255 * (255 - alpha) + 127) / 255);
        }
    }
    return out;
}

void ImgBinaryEdit::SlotSliderValueChanged(int value)
{
    ui->label->setText(QString::number(value));
}

void ImgBinaryEdit::on_btnLoad_clicked()
{
    const QString path = QFileDialog::getOpenFileName(this, tr("装载"), QString(),
                                                      QStringLiteral("Image(*.jpg *.png)"));
    if (!path.isEmpty())
        SetImageFile(path);
}

void ImgBinaryEdit::on_btnAdaptive_clicked()
{
    // Shown only: Finish and Save keep writing the last global, inverted or outline result.
    const QImage adaptive = AdaptiveThreshold(source);
    m_shownThreshold = -1;
    showResult(adaptive, false);
}

void ImgBinaryEdit::on_horizontalSlider_sliderMoved(int position)
{
    applyGlobalThreshold(position);
}

void ImgBinaryEdit::on_btnSavr_clicked()
{
    const QString path = QFileDialog::getSaveFileName(this, tr("保存图片"), AppSettings::slicePath(),
                                                      QStringLiteral("Image(*.jpg)"));
    if (path.isEmpty())
        return;
    AppSettings::setSlicePath(path);
    result.save(path, "JPEG", OutputQuality);
}

void ImgBinaryEdit::on_btnVacf_clicked()
{
    result = InvertedThreshold(source, ui->horizontalSlider->value());
    m_shownThreshold = -1;
    showResult(result, true);
}

void ImgBinaryEdit::on_btnBorder_clicked()
{
    result = Outline(InvertedThreshold(source, ui->horizontalSlider->value()));
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

void ImgBinaryEdit::SlotHorizontalSliderValueChanged(int value)
{
    applyGlobalThreshold(value);
}
