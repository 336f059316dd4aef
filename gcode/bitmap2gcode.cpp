// Raster engraving G-code: black/white and grayscale scan lines from a placed picture,
// and the two picture conversions (error diffusion, 5 x 5 halftone) offered before an export.
#include "bitmap2gcode.h"

#include "appsettings.h"
#include "languagepick.h"
#include "motionmodel.h"
#include "workarea.h"
#include "rastergcodewriter.h"

#include <QDebug>
#include <QFile>
#include <QMessageBox>
#include <QVector>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

using W = RasterGcodeWriter;

// The header of a black/white export runs at this speed, that of a grayscale one at the other.
constexpr int BlackHeaderSpeed = 7200;
constexpr int GrayHeaderSpeed = 3600;
// The frame is traced with a beam too weak to mark.
constexpr int FramePower = 5;
// Lines closer than this (mm) would burn into each other; rows are skipped to keep it.
constexpr double MinLinePitch = 0.1;
// Keeps the row step representable when the scale is 0 or nearly so.
constexpr qint64 MaxStride = qint64(1) << 40;
// A pixel is black when 11 R + 16 G + 5 B is below this (its qGray below 128).
constexpr int BlackLimit = 4096;
constexpr int White = 255;
constexpr int GrayLevels = 256;

// Error diffusion: the threshold, and the neighbours that share an eighth of the error each.
constexpr int DiffusionThreshold = 127;
constexpr int ErrorShare = 8;
constexpr quint32 OpaqueBlack = 0xff000000u;
constexpr quint32 OpaqueWhite = 0xffffffffu;

// The correction curve of the grayscale power (see correctedPower).
constexpr double CurveCentre = 241.6;
constexpr double CurveWidth = 147.1;
constexpr double CurvePeak = 1.024;
constexpr double CurveLowLimit = 0.057;
constexpr double CurveLowSlope = 5.0;
constexpr double CurveLowBase = 2.0;
constexpr double CurveMidLimit = 0.09;
constexpr double CurveMidShift = 0.0523;
constexpr double CurveMidSlope = 1060.60595703125;
constexpr double CurveHighShift = 0.1156;
constexpr double CurveHighSlope = 194.5946044921875;
constexpr float MaxPower = 255.0f;

// Working files: the halftone as the user last made it, and the preview of a corrected burn.
const char *const HalftoneFile = "hi.png";
constexpr int HalftoneQuality = 100;
const char *const PreviewFile = "Grayimage.jpg";

// Halftone cells: a cell's mean gray picks a pattern, a plain fill, or nothing (250 and 255).
constexpr int Cell = 5;
const char *const PatternA[Cell] = {".....", ".....", "..X..", ".....", "....."};
const char *const PatternB[Cell] = {".....", "..X..", ".XXX.", "..X..", "....."};
const char *const PatternC[Cell] = {"..X..", ".XXX.", "XXXXX", ".XXX.", "..X.."};
const char *const PatternD[Cell] = {".XXX.", "XXXXX", "XXXXX", "XXXXX", ".XXX."};
const char *const AllWhite[Cell] = {".....", ".....", ".....", ".....", "....."};
const char *const AllBlack[Cell] = {"XXXXX", "XXXXX", "XXXXX", "XXXXX", "XXXXX"};
struct HalftoneBand
{
    int lowest;
    int highest;
    const char *const *pattern;
};
const HalftoneBand HalftoneBands[] = {
    {251, 254, AllWhite}, {190, 249, PatternA}, {130, 189, PatternB},
    {70, 129, PatternC},  {10, 69, PatternD},   {0, 9, AllBlack},
};

quint32 opaqueGray(int g) { return OpaqueBlack | quint32(g) << 16 | quint32(g) << 8 | quint32(g); }

// Adds up the travel time of the straight moves between the positions the scan visits.
class TravelClock
{
public:
    TravelClock(float x, float y, float *total) : m_x(x), m_y(y), m_total(total) {}
    void moveTo(float x, float y, int speed)
    {
        const float dx = x - m_x;
        const float dy = y - m_y;
        const float d = std::sqrt(dx * dx + dy * dy);
        *m_total += MotionModel::classicMoveSecondsUnchecked<float>(d, float(speed));
        m_x = x;
        m_y = y;
    }

private:
    float m_x;
    float m_y;
    float *m_total;
};

// The picture's bytes with room behind them: the leftward grayscale reads take four bytes
// from wherever a pixel starts, which near the end of the last row runs past the picture.
class PaddedBytes
{
public:
    explicit PaddedBytes(const QImage &image)
    {
        const qsizetype size = image.isNull() ? 0 : image.sizeInBytes();
        m_bytes.assign(size_t(size) + size_t(image.width()) + 8, 0);
        if (size > 0)
            std::memcpy(m_bytes.data(), image.constBits(), size_t(size));
        m_pitch = image.bytesPerLine();
    }
    const uchar *row(qint64 r) const { return m_bytes.data() + r * m_pitch; }

private:
    std::vector<uchar> m_bytes;
    qint64 m_pitch = 0;
};

// The picture's pixels taken as packed 32-bit words, W to a row, as the conversions read
// them whatever the format; words past the end of the picture's memory read as 0 and are
// not written back.
class PackedWords
{
public:
    explicit PackedWords(const QImage &image) : m_words(size_t(image.width()) * size_t(image.height()), 0)
    {
        m_bytes = std::min<size_t>(m_words.size() * 4, image.isNull() ? 0 : size_t(image.sizeInBytes()));
        if (m_bytes > 0)
            std::memcpy(m_words.data(), image.constBits(), m_bytes);
    }
    quint32 *data() { return m_words.data(); }
    void copyTo(QImage &image) const
    {
        if (m_bytes > 0)
            std::memcpy(image.bits(), m_words.data(), m_bytes);
    }

private:
    std::vector<quint32> m_words;
    size_t m_bytes = 0;
};

int grayOfWord(const uchar *bytes)
{
    // Little-endian word: byte 2 is red, byte 1 green, byte 0 blue.
    return qGray(bytes[2], bytes[1], bytes[0]);
}

int truncatedToInt(float value)
{
    if (!(value == value))
        return 0;
    if (value >= float(INT_MAX))
        return INT_MAX;
    if (value <= float(INT_MIN))
        return INT_MIN;
    return int(value);
}

// The travel clock of an export starts at the picture's top-left corner on the machine.
TravelClock clockAtCorner(const QPointF &offset, float *total)
{
    return TravelClock(float(offset.x()), float(WorkArea::machineY(offset.y())), total);
}

// Machine Y of picture row r: rows run down from the top of the work area.
double rowMachineY(qint64 r, double scale, const QPointF &offset) { return WorkArea::Height - r * scale - offset.y(); }

// Tells the writer which row comes next and gives the row's machine Y for the travel clock.
float startRow(RasterGcodeWriter &out, qint64 r, double scale, const QPointF &offset)
{
    const double y = rowMachineY(r, scale, offset);
    out.setRow(y);
    return float(y);
}

// Rows (and, for grayscale, columns) taken for a scale: lines never closer than the pitch.
qint64 rowStride(double scale)
{
    const double steps = std::trunc(MinLinePitch / scale);
    if (!(steps >= 1.0))  // also a negative or NaN scale
        return 1;
    if (steps >= double(MaxStride))
        return MaxStride;
    return qint64(steps);
}

// The power burnt for a gray level through the correction curve. It was fitted to the burn
// of the engraver's diode: a bell around CurveCentre with steps where the beam starts to
// mark. The pieces do not meet at the two limits; the fit is used as it is.
float correctedPower(int gray, float power)
{
    const int s = truncatedToInt((White - gray) * power / White);
    const double x = (s - CurveCentre) / CurveWidth;
    const float t = float(CurvePeak * std::exp(float(-(x * x))));
    float corrected;
    if (t < CurveLowLimit)
        corrected = float(t * CurveLowSlope / CurveLowLimit + CurveLowBase);
    else if (t < CurveMidLimit)
        corrected = float((t - CurveMidShift) * CurveMidSlope);
    else
        corrected = float((t + CurveHighShift) * CurveHighSlope);
    return std::min(corrected, MaxPower);
}

}  // namespace

Bitmap2Gcode::Bitmap2Gcode(QObject *parent) : QObject(parent) {}

float Bitmap2Gcode::TakeEstimatedTime()
{
    const float t = m_estimatedTime;
    m_estimatedTime = 0;
    return t;
}

QImage Bitmap2Gcode::Image2Halftone(QImage image)
{
    QImage result = image.copy();
    const int width = result.width();
    const int height = result.height();
    PackedWords words(result);
    quint32 *px = words.data();
    for (int cy = 0; cy + Cell <= height; cy += Cell) {
        for (int cx = 0; cx + Cell <= width; cx += Cell) {
            int sum = 0;
            for (int y = 0; y < Cell; ++y)
                for (int x = 0; x < Cell; ++x)
                    sum += qGray(px[size_t(cy + y) * size_t(width) + size_t(cx + x)]);
            const int mean = sum / (Cell * Cell);

            const char *const *pattern = nullptr;
            for (const HalftoneBand &band : HalftoneBands)
                if (mean >= band.lowest && mean <= band.highest)
                    pattern = band.pattern;
            if (!pattern)
                continue;  // 250 and 255 keep the cell as it is

            for (int y = 0; y < Cell; ++y) {
                for (int x = 0; x < Cell; ++x) {
                    const char mark = pattern[y][x];
                    px[size_t(cy + y) * size_t(width) + size_t(cx + x)] = opaqueGray(mark == 'X' ? 0 : White);
                }
            }
        }
    }
    words.copyTo(result);
    result.save(QString::fromLatin1(HalftoneFile), "PNG", HalftoneQuality);
    return result;
}

void Bitmap2Gcode::SetTravelSpeed(int travel_speed) { this->travel_speed = travel_speed; }

void Bitmap2Gcode::SetFeedSpeed(int feed_speed) { this->feed_speed = feed_speed; }

void Bitmap2Gcode::SetPower(float power) { this->power = power; }

// Every number an export writes lies between the frame's corners, so finite corners and a
// finite power mean a file without "nan" or "inf" in it.
bool Bitmap2Gcode::refuseUnusable(int width, int height, double scale)
{
    const double corners[] = {offset.x(),
                              offset.x() + width * scale,
                              WorkArea::machineY(offset.y()),
                              WorkArea::machineY(offset.y()) - height * scale,
                              scale,
                              double(power)};
    m_refusal.clear();
    for (double value : corners) {
        if (!std::isfinite(value)) {
            m_refusal = QStringLiteral("No G-code written: the picture's size, position or power is not a number");
            qWarning().noquote() << m_refusal;
            return true;
        }
    }
    return false;
}

// The checks every export starts with; the file is open and the beam counted off after it.
bool Bitmap2Gcode::startExport(const QImage &image, double scale, QFile &file)
{
    if (refuseUnusable(image.width(), image.height(), scale) || !openOutput(file))
        return false;
    m_laserOn = false;
    return true;
}

bool Bitmap2Gcode::openOutput(QFile &file)
{
    if (file.open(QIODevice::WriteOnly | QIODevice::Truncate | QIODevice::Text))
        return true;
    // Messages in code follow the language chosen at start-up; Korean has none.
    const int language = AppSettings::languageIndex();
    const QString title = LanguagePick::pick(language, tr("提示"), tr("Notice"));
    if (!title.isNull())
        QMessageBox::critical(nullptr, title, LanguagePick::pick(language, tr("无法创建文件"), tr("Can't creat file")),
                              QMessageBox::Ok);
    return false;
}

void Bitmap2Gcode::writeHeader(RasterGcodeWriter &out, int speed)
{
    out.writeText(tr("G1 F%1 \n").arg(speed));
    out.writeText(tr("G28 X0 Y0  ;move X/Y to min endstops \n"));
    out.writeText(tr("G0 F%1 \n").arg(speed));
    out.writeText(tr("G1 F%1 \n").arg(speed));
}

void Bitmap2Gcode::writeFrame(RasterGcodeWriter &out, int width, int height, double scale)
{
    // The outline is traced twice with a weak beam so the operator can check the placement,
    // then the machine waits for a go. The beam stays weakly on until the first scan group.
    const double left = offset.x();
    const double right = offset.x() + width * scale;
    const double top = WorkArea::machineY(offset.y());
    const double bottom = WorkArea::machineY(offset.y()) - height * scale;
    const QString move = tr("G0 X%1 Y%2 \n");
    const QString burn = tr("G1 X%1 Y%2 \n");
    const QStringList frame = {
        move.arg(left).arg(top),     tr("M106 S%1 \n").arg(FramePower), burn.arg(right).arg(top),
        burn.arg(right).arg(bottom), burn.arg(left).arg(bottom),        burn.arg(left).arg(top),
    };
    for (int pass = 0; pass < 2; ++pass)
        for (const QString &line : frame)
            out.writeText(line);
    out.writeText(tr("M0 \n"));
}

void Bitmap2Gcode::ExportBlackPix(QImage image, QString savefile, double scale)
{
    QFile file(savefile);
    if (!startExport(image, scale, file))
        return;
    RasterGcodeWriter out(&file, m_plainFormatting);
    qDebug() << "Format" << image.format();

    // Read as 32-bit ARGB words; alpha plays no part, so RGB32 pictures serve as they are.
    const QImage picture =
        image.format() == QImage::Format_RGB32 ? image : image.convertToFormat(QImage::Format_ARGB32);
    const int width = picture.width();
    const int height = picture.height();
    writeHeader(out, BlackHeaderSpeed);
    writeFrame(out, width, height, scale);

    out.setSpeeds(feed_speed, travel_speed);
    out.setColumns(offset.x(), scale, width);
    out.setPowers(QVector<float>(GrayLevels, power), W::PowerShortest);
    const QString laserOn = tr("M106 S%1 \n");
    const QString laserOff = tr("M107 \n");
    const QVector<W::Arg> xyz = {W::ArgX, W::ArgY, W::ArgZ};
    const int open = out.addGroup({{tr("G0 X%1 Y%2 Z%3\n"), xyz},
                                   {laserOn, {W::ArgPower}},
                                   {tr("G1 F%1 \n"), {W::ArgFeed}},
                                   {tr("G1 X%1 Y%2  Z%3\n"), xyz}});
    const W::Line closeStart = {tr("G1 X%1 Y%2 Z%3\n"), xyz};
    const W::Line travelSpeed = {tr("G0 F%1 \n"), {W::ArgTravel}};
    const int close = out.addGroup({closeStart, {laserOff, {}}, travelSpeed, {tr("G0 X%1 Y%2 Z%3\n"), xyz}});
    // A run reaching the right end has its own spelling of the last move.
    const int closeRightEnd = out.addGroup({closeStart, {laserOff, {}}, travelSpeed, {tr("G0 X%1 Y%2  Z%3\n"), xyz}});

    std::vector<float> columnX(size_t(std::max(width, 0)));
    for (int c = 0; c < width; ++c)
        columnX[size_t(c)] = float(offset.x() + c * scale);
    TravelClock clock = clockAtCorner(offset, &m_estimatedTime);

    const qint64 stride = rowStride(scale);
    for (qint64 r = 0; r < height; r += stride) {
        const float rowY = startRow(out, r, scale, offset);
        const QRgb *line = reinterpret_cast<const QRgb *>(picture.constScanLine(int(r)));
        // The direction follows the row number itself, so an even stride scans every row
        // left to right.
        const bool rightward = r % 2 == 0;
        for (int i = 0; i < width; ++i) {
            const int c = rightward ? i : width - 1 - i;
            const QRgb px = line[c];
            const bool black = 11 * qRed(px) + 16 * qGreen(px) + 5 * qBlue(px) < BlackLimit;
            if (black && !m_laserOn) {
                out.writeGroup(open, c, 0);
                clock.moveTo(columnX[size_t(c)], rowY, feed_speed);
                m_laserOn = true;
            } else if (black && i == width - 1) {
                out.writeGroup(rightward ? closeRightEnd : close, c, 0);
                clock.moveTo(columnX[size_t(c)], rowY, travel_speed);
                m_laserOn = false;
            } else if (!black && m_laserOn) {
                out.writeGroup(close, c, 0);
                clock.moveTo(columnX[size_t(c)], rowY, travel_speed);
                m_laserOn = false;
            }
        }
        // A burn opened at the row's last pixel is left on into the next row's travel.
        m_laserOn = false;
    }
    out.writeText(laserOff);
    out.writeText(tr("G28 \n"));
    out.flush();
    file.close();
}

void Bitmap2Gcode::ExportGrayPix(QImage image, QString savefile, double scale)
{
    exportGray(image, savefile, scale, false);
}

void Bitmap2Gcode::ExportGrayPixEX(QImage image, QString savefile, double scale)
{
    exportGray(image, savefile, scale, true);
}

void Bitmap2Gcode::exportGray(const QImage &image, const QString &savefile, double scale, bool corrected)
{
    QFile file(savefile);
    if (!startExport(image, scale, file))
        return;
    RasterGcodeWriter out(&file, m_plainFormatting);
    const PaddedBytes picture(image);
    const int width = image.width();
    const int height = image.height();
    // What the corrected power will burn, for a look before the job; unvisited pixels white.
    QImage preview;
    if (corrected) {
        preview = QImage(width, height, QImage::Format_Grayscale8);
        preview.fill(White);
    }

    writeHeader(out, GrayHeaderSpeed);
    qDebug().noquote() << QStringLiteral("Now the height = %1").arg(height);
    writeFrame(out, width, height, scale);

    QVector<float> powers(GrayLevels);
    for (int g = 0; g < GrayLevels; ++g)
        powers[g] = corrected ? correctedPower(g, power) : (White - g) * power / White;
    out.setSpeeds(feed_speed, travel_speed);
    out.setColumns(offset.x(), scale, width);
    out.setPowers(powers, corrected ? W::PowerThreeDecimals : W::PowerShortest);

    const QVector<W::Arg> xyz = {W::ArgX, W::ArgY, W::ArgZ};
    const W::Line laserOn = {tr("M106 S%1 \n"), {W::ArgPower}};
    const W::Line laserOff = {tr("M107 \n"), {}};
    const W::Line feedSpeed = {tr("G1 F%1 \n"), {W::ArgFeed}};
    const W::Line travelSpeed = {tr("G0 F%1 \n"), {W::ArgTravel}};
    const W::Line moveTo = {tr("G0 X%1 Y%2 Z%3\n"), xyz};
    const W::Line burnTo = {tr("G1 X%1 Y%2 Z%3\n"), xyz};
    const W::Line burnTo2 = {tr("G1 X%1 Y%2  Z%3\n"), xyz};
    // Rightward and leftward rows spell some lines differently; the files have always been so.
    const int openRight = out.addGroup({moveTo, laserOn, feedSpeed, {tr("G1 X%1 Y%2 Z%3\n "), xyz}});
    const int openLeft = out.addGroup({moveTo, laserOn, feedSpeed, burnTo2});
    const int changeRight = out.addGroup({burnTo2, laserOn, burnTo2});
    const int changeLeft = out.addGroup({burnTo, laserOn, burnTo});
    const int closeAtEnd = out.addGroup({burnTo, laserOff, travelSpeed, {tr("G0 X%1 Y%2 Z%3\n "), xyz}});
    const int closeAtWhite = out.addGroup({burnTo, laserOff, travelSpeed, moveTo});

    TravelClock clock = clockAtCorner(offset, &m_estimatedTime);
    const qint64 stride = rowStride(scale);
    for (qint64 r = 0; r < height; r += stride) {
        const float rowY = startRow(out, r, scale, offset);
        const uchar *row = picture.row(r);
        const bool rightward = r % (2 * stride) == 0;
        // Rightward rows read one byte per pixel (an 8-bit picture is expected); leftward rows
        // read the 32-bit word starting at the same byte. Both readings are kept as shipped.
        int previous = rightward ? row[0] : grayOfWord(row);
        const qint64 first = rightward ? 0 : width - 1;
        const qint64 last = rightward ? width - 1 : 0;
        const qint64 step = rightward ? stride : -stride;
        for (qint64 c = first; c >= 0 && c < width; c += step) {
            const int g = rightward ? row[c] : grayOfWord(row + c);
            const float x = float(offset.x() + c * scale);
            if (g < White) {
                if (corrected)
                    preview.scanLine(int(r))[c] = uchar(truncatedToInt(White - powers[g]));
                if (c != last) {
                    if (c != first && g == previous)
                        continue;
                    if (m_laserOn) {
                        out.writeGroup(rightward ? changeRight : changeLeft, int(c), g);
                    } else {
                        out.writeGroup(rightward ? openRight : openLeft, int(c), g);
                        m_laserOn = true;
                    }
                    clock.moveTo(x, rowY, feed_speed);
                    previous = g;
                } else {
                    out.writeGroup(closeAtEnd, int(c), g);
                    clock.moveTo(x, rowY, travel_speed);
                    m_laserOn = false;
                }
            } else if (m_laserOn) {
                out.writeGroup(closeAtWhite, int(c), g);
                clock.moveTo(x, rowY, travel_speed);
                m_laserOn = false;
            }
        }
        m_laserOn = false;
    }

    qDebug() << "export finish!!";
    if (corrected)
        preview.save(QString::fromLatin1(PreviewFile));
    out.writeText(laserOff.pattern);
    out.writeText(tr("G28 \n"));
    out.flush();
    file.close();
}

QImage Bitmap2Gcode::GrayScalePicture(QImage image)
{
    if (image.format() < QImage::Format_RGB32)  // invalid, 1-bit and indexed pictures
        return image;
    qDebug().noquote() << QStringLiteral("format = %1").arg(int(image.format()));
    QImage result = image.copy();
    const int width = result.width();
    const int height = result.height();
    PackedWords words(result);
    quint32 *px = words.data();
    const size_t count = size_t(width) * size_t(height);

    // Two columns of white margin, everything else as opaque gray.
    for (size_t i = 0; i < count; ++i)
        px[i] = (i % size_t(width) < 2) ? OpaqueWhite : opaqueGray(qGray(px[i]));

    // Error diffusion over all but the last two rows and columns. The error is added to the
    // whole word, so it carries from one colour byte into the next; that is how the pictures
    // users know were made.
    for (int r = 0; r + 2 < height; ++r) {
        for (int c = 0; c + 2 < width; ++c) {
            const size_t i = size_t(r) * size_t(width) + size_t(c);
            const int g = qGray(px[i]);
            const int n = g < DiffusionThreshold ? 0 : White;
            px[i] = n == 0 ? OpaqueBlack : OpaqueWhite;
            const quint32 e = quint32((g - n) / ErrorShare);
            const quint32 spread = ((((e | ~0xffu) << 8) | (e & 0xffu)) << 8) | (e & 0xffu);
            const size_t w = size_t(width);
            // (c - 1, r + 1) at c = 0 is the last pixel of row r.
            for (size_t j : {i + 1, i + 2, i + w - 1, i + w, i + w + 1, i + 2 * w})
                px[j] += spread;
        }
    }
    words.copyTo(result);
    return result;
}

void Bitmap2Gcode::ExportGcode(QPointF offset, QPointF spare, QString savepath, int mode)
{
    // Older builds kept the machine settings here; only the two points remain of that.
    Q_UNUSED(savepath)
    Q_UNUSED(mode)
    this->offset = offset;
    m_spare = spare;
}
