// Pixel operations of the threshold editor, free of any widget: global, adaptive and
// inverted thresholds, the outline operator and gray levels over 32-bit ARGB words.
#include "pixelops.h"

#include <algorithm>
#include <cstring>
#include <thread>
#include <vector>

namespace PixelOps {

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
            {1, 0, 3.030039172}, {0, 1, 3.030039172}, {1, 1, 4.285122492}, {2, 0, 6.060078344},
            {0, 2, 6.060078344}, {2, 1, 6.775373563}, {1, 2, 6.775373563}, {2, 2, 8.570244983},
            {3, 0, 9.090117516}, {0, 3, 9.090117516}, {3, 1, 9.581825183}, {1, 3, 9.581825183},
        };
        std::vector<Neighbour> all;
        for (const Neighbour &n : base) {
            for (int sx : {1, -1}) {
                for (int sy : {1, -1}) {
                    const Neighbour m{n.dx * sx, n.dy * sy, n.weight};
                    const bool seen = std::any_of(all.begin(), all.end(),
                                                  [&](const Neighbour &o) { return o.dx == m.dx && o.dy == m.dy; });
                    if (!seen)
                        all.push_back(m);
                }
            }
        }
        // Heaviest first: the sum passes the limit sooner, and all weights are positive,
        // so stopping early never changes the outcome.
        std::stable_sort(all.begin(), all.end(),
                         [](const Neighbour &a, const Neighbour &b) { return a.weight > b.weight; });
        return all;
    }();
    return table;
}

// gray * count < (whole part of sum * 0.85) is gray * count + 1 <= sum * 0.85: the sums and
// products are whole numbers that doubles hold exactly, so both read the same.
template <typename Sum>
inline quint32 adaptivePixel(const Sum *total, uchar gray, int x1, int x2, int rows)
{
    const double count = double(qint64(x2 - x1) * rows);
    const bool dark = double(gray) * count + 1.0 <= double(total[x2] - total[x1]) * AdaptiveMeanRatio;
    return OpaqueWhite - quint32(dark) * (OpaqueWhite - Black);
}

#if defined(__GNUC__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
__attribute__((target_clones("avx2", "default")))
#endif
void grayRow(const QRgb *row, uchar *gray, int w)
{
    for (int x = 0; x < w; ++x)
        gray[x] = uchar(Gray(row[x]));
}

#if defined(__GNUC__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
__attribute__((target_clones("avx2", "default")))
#endif
void addToColumns(qint64 *column, const uchar *gray, int w, int sign)
{
    for (int x = 0; x < w; ++x)
        column[x] += sign * gray[x];
}

#if defined(__GNUC__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
__attribute__((target_clones("avx2", "default")))
#endif
void addToColumns(qint32 *column, const uchar *gray, int w, int sign)
{
    for (int x = 0; x < w; ++x)
        column[x] += sign * gray[x];
}

// The same with sums that fit in 32 bits: twice as many to a register, converted directly.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
__attribute__((target_clones("avx2", "default")))
#endif
void adaptiveInner(const qint32 *total, const uchar *gray, quint32 *dst, int n, int half, double count)
{
    for (int x = 0; x < n; ++x) {
        const double sum = double(total[x + half] - total[x - half]);
        const bool dark = double(gray[x]) * count + 1.0 <= sum * AdaptiveMeanRatio;
        dst[x] = OpaqueWhite - quint32(dark) * (OpaqueWhite - Black);
    }
}

// Pixels whose window lies wholly inside the row: `total` and `gray` start at the first.
#if defined(__GNUC__) && defined(__x86_64__) && !defined(__SANITIZE_ADDRESS__)
__attribute__((target_clones("avx2", "default")))
#endif
void adaptiveInner(const qint64 *total, const uchar *gray, quint32 *dst, int n, int half, double count)
{
    // A sum below 2^52 becomes a double by setting the exponent of 2^52 over it and
    // taking 2^52 away: exact, and unlike the conversion instruction it runs four at a time.
    const quint64 twoTo52Bits = 0x4330000000000000ull;
    const double twoTo52 = 4503599627370496.0;
    for (int x = 0; x < n; ++x) {
        const quint64 bits = quint64(total[x + half] - total[x - half]) | twoTo52Bits;
        double sum;
        memcpy(&sum, &bits, sizeof sum);
        sum -= twoTo52;
        const bool dark = double(gray[x]) * count + 1.0 <= sum * AdaptiveMeanRatio;
        dst[x] = OpaqueWhite - quint32(dark) * (OpaqueWhite - Black);
    }
}

// One row of the global threshold. Branch-free so the compiler can run the loop on
// vector registers: this runs on every slider step.
void thresholdRow(const quint32 *__restrict src, quint32 *__restrict dst, int w, quint32 limit)
{
    for (int x = 0; x < w; ++x) {
        const quint32 p = src[x];
        const quint32 sum = 11 * ((p >> 16) & 0xFF) + 16 * ((p >> 8) & 0xFF) + 5 * (p & 0xFF);
        const quint32 transparentDark = quint32(p <= 0x00FFFFFFu) & quint32(sum < quint32(TransparentDarkSum));
        const quint32 white = transparentDark | quint32((sum >> 5) >= limit);
        dst[x] = white ? ClearWhite : Black;
    }
}

// Runs work(from, to) over rows 0 .. h - 1 in two bands, the second on a helper thread,
// when the picture is large enough to pay for one. Each band writes only its own rows;
// a fresh output buffer also gets its pages from the system twice as fast this way.
constexpr qint64 TwoBandsFromPixels = 1 << 20;

template <typename Work>
void inTwoBands(int h, qint64 pixels, Work work)
{
    if (pixels < TwoBandsFromPixels || h < 2 || std::thread::hardware_concurrency() < 2) {
        work(0, h);
        return;
    }
    const int middle = h / 2;
    std::thread helper([&work, middle, h] { work(middle, h); });
    work(0, middle);
    helper.join();
}

// Rows from .. to - 1 of the adaptive threshold (see AdaptiveThreshold). Each row's gray
// levels are worked out once, when the window reaches it, and kept in a ring of rows
// until the window has passed it.
template <typename Sum>
void adaptiveBand(const QImage &in, int half, int from, int to, uchar *bits, qsizetype stride)
{
    const int w = in.width(), h = in.height();
    std::vector<Sum> column(size_t(w), 0);
    std::vector<Sum> total(static_cast<size_t>(w));
    const int ringRows = 2 * half + 2;
    std::vector<uchar> ring(size_t(ringRows) * size_t(w));
    std::vector<uchar> own(static_cast<size_t>(w));
    auto ringRow = [&](int y) { return ring.data() + size_t(y % ringRows) * size_t(w); };
    // The column sums hold rows rowsFrom + 1 .. rowsTo, empty at the band's start.
    int rowsFrom = std::max(from - half, 0), rowsTo = rowsFrom;
    const int firstKept = rowsFrom + 1;
    for (int y = from; y < to; ++y) {
        const int y1 = std::max(y - half, 0), y2 = std::min(y + half, h - 1);
        for (; rowsTo < y2; ++rowsTo) {
            uchar *g = ringRow(rowsTo + 1);
            grayRow(reinterpret_cast<const QRgb *>(in.constScanLine(rowsTo + 1)), g, w);
            addToColumns(column.data(), g, w, 1);
        }
        for (; rowsFrom < y1; ++rowsFrom)
            addToColumns(column.data(), ringRow(rowsFrom + 1), w, -1);
        Sum running = 0;
        for (int x = 0; x < w; ++x) {
            running += column[size_t(x)];
            total[size_t(x)] = running;
        }
        const uchar *g = ringRow(y);
        if (y < firstKept) {  // a row the window never takes in (the top row, or no window)
            grayRow(reinterpret_cast<const QRgb *>(in.constScanLine(y)), own.data(), w);
            g = own.data();
        }
        quint32 *dst = reinterpret_cast<quint32 *>(bits + y * stride);
        const int rows = y2 - y1;
        // The window is clipped at both sides; between them it is the same width throughout.
        const int innerFrom = std::min(half, w), innerTo = std::max(innerFrom, w - 1 - half);
        for (int x = 0; x < innerFrom; ++x)
            dst[x] = adaptivePixel(total.data(), g[x], 0, std::min(x + half, w - 1), rows);
        adaptiveInner(total.data() + innerFrom, g + innerFrom, dst + innerFrom, innerTo - innerFrom, half,
                      double(qint64(2 * half) * rows));
        for (int x = innerTo; x < w; ++x)
            dst[x] = adaptivePixel(total.data(), g[x], std::max(x - half, 0), w - 1, rows);
    }
}

bool is32Bit(const QImage &image)
{
    return image.format() == QImage::Format_ARGB32 || image.format() == QImage::Format_RGB32;
}

}  // namespace

QImage Prepare(const QImage &picture)
{
    if (picture.isNull() || is32Bit(picture))
        return picture;
    return picture.convertToFormat(QImage::Format_ARGB32);
}

QImage GlobalThreshold(const QImage &picture, int threshold, QImage reuse)
{
    if (picture.isNull())
        return QImage();
    const QImage in = Prepare(picture);
    QImage out;
    const bool reused = reuse.isDetached() && reuse.size() == in.size() && reuse.format() == in.format();
    if (reused)
        out = std::move(reuse);
    else
        out = QImage(in.size(), in.format());
    if (out.isNull())
        return QImage();
    const int w = in.width();
    const quint32 limit = quint32(qBound(-1, threshold, 255) + 1);
    uchar *const bits = out.bits();  // detached once here, not from two threads
    const qsizetype stride = out.bytesPerLine();
    // A buffer already in use is filled by this thread alone: the second band only pays
    // when the system still has to hand out the pages.
    inTwoBands(in.height(), reused ? 0 : qint64(w) * in.height(), [&in, bits, stride, w, limit](int from, int to) {
        for (int y = from; y < to; ++y) {
            const quint32 *src = reinterpret_cast<const quint32 *>(in.constScanLine(y));
            quint32 *dst = reinterpret_cast<quint32 *>(bits + y * stride);
            thresholdRow(src, dst, w, limit);
        }
    });
    return out;
}

QImage AdaptiveThreshold(const QImage &picture)
{
    if (picture.isNull())
        return QImage();
    const QImage in = Prepare(picture);
    const int w = in.width(), h = in.height();
    const int window = int(w * AdaptiveWindowRatio);
    const int half = window / 2;

    // The window of pixel (x, y) holds rows y1 + 1 .. y2 and columns x1 + 1 .. x2. Column
    // sums over the current rows follow the window down the picture (both ends only move
    // down), and each row's running total of them gives a window's sum by one difference.
    // All sums are whole numbers far below 2^52, so doubles hold them exactly.
    QImage out(w, h, QImage::Format_ARGB32);
    if (out.isNull())
        return QImage();
    uchar *const bits = out.bits();
    const qsizetype stride = out.bytesPerLine();
    // Sums stay in 32 bits when the largest window sum fits there (every picture up to
    // the editor's size limit but the widest).
    const bool narrowSums = qint64(255) * (2 * half + 1) * w < (qint64(1) << 31);
    inTwoBands(h, qint64(w) * h, [&](int from, int to) {
        if (narrowSums)
            adaptiveBand<qint32>(in, half, from, to, bits, stride);
        else
            adaptiveBand<qint64>(in, half, from, to, bits, stride);
    });
    return out;
}

QImage InvertedThreshold(const QImage &picture, int threshold)
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

QImage Outline(const QImage &inverted)
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

QImage GrayLevels(const QImage &picture)
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

}  // namespace PixelOps
