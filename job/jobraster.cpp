// Raster engraving of one item: grid, sampling with the tone adjustments, reduction to burn or no
// burn, and the row scan into planned moves.
//
// Sampling. Cell (i, j) of a C x R grid covers picture X from i W / C to (i + 1) W / C and picture Y
// from j H / R to (j + 1) H / R of a W x H picture; its value is the mean of the pixels weighted by
// the area each one has inside the cell (a box filter, computed exactly in integers), rounded to the
// nearest byte, halves up. A picture as large as the grid is copied unchanged.
//
// Tone, on each sampled byte v (0 black ... 255 white), step by step, each step skipped at its
// neutral value so the defaults change nothing:
//   brightness b (-100..100):  v = clamp(v + 255 b / 100)
//   contrast c (-100..100):    v = clamp((v - 127.5) k + 127.5), k = 100 / (100 - c) for c >= 0 (c
//                              above 99 counts as 99), k = (100 + c) / 100 below 0
//   gamma g (> 0, else 1):     v = 255 (v / 255)^(1 / g)   (above 1 lightens the middle tones)
//   invert:                    v = 255 - v
// then rounded to the nearest byte (halves up); clamp() keeps 0..255.
//
// Reduction. Threshold: a cell below the layer's threshold burns (0), the others do not (255).
// Error diffusion runs left to right on every row, top row first. A cell's value is its byte plus
// the error its neighbours sent it, rounded to a whole level: round(N / D), halves away from zero,
// where N is the sum of error x weight received and D the kernel's divisor. It burns (0) below 128,
// else stays white (255), and sends the difference e = value - result, an integer, to the cells
// after it as e x weight (kept as numerators over D, in three rows of ints). Error that would leave
// the grid is dropped. The kernels, as weights over D for the cells right of the present one, then
// the next row and the one after from two columns left to two columns right:
//   Floyd-Steinberg  D 16:  7     / 3 5 1
//   Atkinson         D 8:   1 1   / 1 1 1 (one column left to one right) / 1 (below only)
//   Jarvis-Judice-Ninke D 48: 7 5 / 3 5 7 5 3 / 1 3 5 3 1
//   Stucki           D 42:  8 4   / 2 4 8 4 2 / 1 2 4 2 1
//   Sierra           D 32:  5 3   / 2 4 5 4 2 / 2 3 2 (one column left to one right)
// Bayer 4x4: the cell in row r, column c (from the top left) burns when its value is below 16 m + 8,
// m the entry at (r mod 4, c mod 4) of 0 8 2 10 / 12 4 14 6 / 3 11 1 9 / 15 7 13 5.
//
// Scan. A cell's power: threshold and dither burn cells below 128 at the layer's power; grayscale
// maps v to minPower + (power - minPower)(255 - v) / 255, rounded to a multiple of the power step.
// A cell of power 0 is white.
// Rows run from the top down; rows with no burnt cell are skipped. When bidirectional, the first
// burnt row starts at whichever end is nearer the current X and each following burnt row turns
// back; otherwise every row runs left to right. A row: travel to its start, a zero-power move over
// the overscan up to the first burnt cell's edge, one move per run of cells of equal power, and a
// zero-power move over the overscan beyond the last burnt cell. A white gap inside a row is crossed
// at zero power, unless it is longer than 2 x overscan + 10 mm: then the row overscans out of the
// run, travels, and overscans back in. Reverse rows are shifted by the reverse offset. Every X is
// kept on the bed (0 .. bed width); moves that go nowhere are left out.
#include "jobraster.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace JobRaster {

namespace {

// No grid is wider or taller than this many cells.
constexpr double MaxCells = 1000000;
// How much longer than the two overscans a white gap must be to be crossed by travel.
constexpr qint32 GapTravelUm = 10000;

int cells(double length, double interval)
{
    if (!std::isfinite(length) || !std::isfinite(interval) || interval <= 0 || length <= 0)
        return 1;
    const double n = std::round(length / interval);
    return int(std::clamp(n, 1.0, MaxCells));
}

// The overlaps of `cells` cells with `pixels` pixels along one axis, in units of 1 / (pixels x cells)
// of the axis: cell k covers [k pixels, (k + 1) pixels), pixel p covers [p cells, (p + 1) cells).
struct Span
{
    int first = 0;               // first pixel touched
    std::vector<qint64> weight;  // overlap of pixel first + n
};

std::vector<Span> spans(int pixels, int cellCount)
{
    std::vector<Span> result(static_cast<size_t>(cellCount));
    for (int k = 0; k < cellCount; ++k) {
        const qint64 from = qint64(k) * pixels;
        const qint64 to = from + pixels;
        const int first = int(from / cellCount);
        const int last = int((to - 1) / cellCount);
        Span &span = result[size_t(k)];
        span.first = first;
        for (int p = first; p <= last; ++p) {
            const qint64 a = std::max(from, qint64(p) * cellCount);
            const qint64 b = std::min(to, qint64(p + 1) * cellCount);
            span.weight.push_back(b - a);
        }
    }
    return result;
}

double clampLevel(double v) { return std::clamp(v, 0.0, 255.0); }

// The tone adjustments as a table over the 256 sampled values.
void toneTable(const ImageParams &params, uchar table[256])
{
    const double brightness = std::isfinite(params.brightness) ? std::clamp(params.brightness, -100.0, 100.0) : 0;
    const double contrast = std::isfinite(params.contrast) ? std::clamp(params.contrast, -100.0, 99.0) : 0;
    const double gamma = std::isfinite(params.gamma) && params.gamma > 0 ? params.gamma : 1.0;
    const double k = contrast >= 0 ? 100.0 / (100.0 - contrast) : (100.0 + contrast) / 100.0;
    for (int i = 0; i < 256; ++i) {
        double v = i;
        if (brightness != 0)
            v = clampLevel(v + 255.0 * brightness / 100.0);
        if (contrast != 0)
            v = clampLevel((v - 127.5) * k + 127.5);
        if (gamma != 1.0)
            v = 255.0 * std::pow(v / 255.0, 1.0 / gamma);
        if (params.invert)
            v = 255.0 - v;
        table[i] = uchar(std::floor(clampLevel(v) + 0.5));
    }
}

// n / d rounded to the nearest integer, halves away from zero (d > 0).
inline int divRound(int n, int d) { return n >= 0 ? (n + d / 2) / d : -((-n + d / 2) / d); }

struct Tap
{
    int dx;
    int dy;  // 0 this row, 1 the next, 2 the one after
    int weight;
};

struct Kernel
{
    int divisor;
    std::vector<Tap> taps;
};

Kernel kernel(DitherKernel k)
{
    switch (k) {
    case DitherKernel::FloydSteinberg:
        return {16, {{1, 0, 7}, {-1, 1, 3}, {0, 1, 5}, {1, 1, 1}}};
    case DitherKernel::Atkinson:
        return {8, {{1, 0, 1}, {2, 0, 1}, {-1, 1, 1}, {0, 1, 1}, {1, 1, 1}, {0, 2, 1}}};
    case DitherKernel::Jarvis:
        return {48,
                {{1, 0, 7},
                 {2, 0, 5},
                 {-2, 1, 3},
                 {-1, 1, 5},
                 {0, 1, 7},
                 {1, 1, 5},
                 {2, 1, 3},
                 {-2, 2, 1},
                 {-1, 2, 3},
                 {0, 2, 5},
                 {1, 2, 3},
                 {2, 2, 1}}};
    case DitherKernel::Stucki:
        return {42,
                {{1, 0, 8},
                 {2, 0, 4},
                 {-2, 1, 2},
                 {-1, 1, 4},
                 {0, 1, 8},
                 {1, 1, 4},
                 {2, 1, 2},
                 {-2, 2, 1},
                 {-1, 2, 2},
                 {0, 2, 4},
                 {1, 2, 2},
                 {2, 2, 1}}};
    case DitherKernel::Sierra:
    case DitherKernel::Bayer4:
        break;
    }
    return {32,
            {{1, 0, 5},
             {2, 0, 3},
             {-2, 1, 2},
             {-1, 1, 4},
             {0, 1, 5},
             {1, 1, 4},
             {2, 1, 2},
             {-1, 2, 2},
             {0, 2, 3},
             {1, 2, 2}}};
}

// Floyd-Steinberg has its own loop, as it is the kernel jobs use most: the error for the right
// neighbour and the two sums still open on the next row stay in registers, each cell of the next
// row is written once, and n / 16 is rounded without a branch (halves away from zero).
void diffuseFloydSteinberg(QImage *cells)
{
    const int w = cells->width();
    const int h = cells->height();
    std::vector<int> rows(2 * size_t(w + 1), 0);
    int *now = rows.data() + 1;
    int *next = now + (w + 1);
    for (int y = 0; y < h; ++y) {
        uchar *line = cells->scanLine(y);
        int right = 0;      // sent to x by x - 1
        int belowLeft = 0;  // next[x - 1] so far
        int belowHere = 0;  // next[x] so far
        for (int x = 0; x < w; ++x) {
            const int n = now[x] + right;
            const int value = line[x] + ((n + 8 + (n >> 31)) >> 4);
            const int result = value < 128 ? 0 : 255;
            const int e = value - result;
            line[x] = uchar(result);
            right = 7 * e;
            next[x - 1] = belowLeft + 3 * e;
            belowLeft = belowHere + 5 * e;
            belowHere = e;
        }
        next[w - 1] = belowLeft;
        std::swap(now, next);
    }
}

void diffuse(QImage *cells, const Kernel &k)
{
    const int w = cells->width();
    const int h = cells->height();
    const size_t stride = size_t(w) + 4;
    std::vector<int> store(3 * stride, 0);
    int *rows[3] = {store.data() + 2, store.data() + 2 + stride, store.data() + 2 + 2 * stride};
    for (int y = 0; y < h; ++y) {
        uchar *line = cells->scanLine(y);
        for (int x = 0; x < w; ++x) {
            const int value = line[x] + divRound(rows[0][x], k.divisor);
            const int result = value < 128 ? 0 : 255;
            const int e = value - result;
            line[x] = uchar(result);
            for (const Tap &t : k.taps)
                rows[t.dy][x + t.dx] += t.weight * e;
        }
        int *done = rows[0];
        rows[0] = rows[1];
        rows[1] = rows[2];
        rows[2] = done;
        std::fill(done - 2, done + w + 2, 0);
    }
}

void bayer(QImage *cells)
{
    static const int Matrix[4][4] = {{0, 8, 2, 10}, {12, 4, 14, 6}, {3, 11, 1, 9}, {15, 7, 13, 5}};
    for (int y = 0; y < cells->height(); ++y) {
        uchar *line = cells->scanLine(y);
        const int *m = Matrix[y % 4];
        for (int x = 0; x < cells->width(); ++x)
            line[x] = line[x] < 16 * m[x % 4] + 8 ? 0 : 255;
    }
}

// Where the scan is and where its moves go.
class Scanner
{
public:
    Scanner(MoveSink &sink, qint32 x, qint32 y, qint32 feed) : m_sink(sink), m_x(x), m_y(y), m_feed(feed) {}

    void cut(qint32 x, qint32 power)
    {
        if (x == m_x)
            return;
        m_sink.move(PlannedMove{PlannedMove::Cut, x, m_y, power, m_feed});
        m_x = x;
    }
    void travel(qint32 x, qint32 y)
    {
        if (x == m_x && y == m_y)
            return;
        m_sink.move(PlannedMove{PlannedMove::Travel, x, y, 0, 0});
        m_x = x;
        m_y = y;
    }
    qint32 x() const { return m_x; }
    qint32 y() const { return m_y; }

private:
    MoveSink &m_sink;
    qint32 m_x;
    qint32 m_y;
    qint32 m_feed;
};

}  // namespace

Grid grid(const QRectF &rect, double interval)
{
    Grid g;
    g.columns = cells(rect.width(), interval);
    g.rows = cells(rect.height(), interval);
    return g;
}

QImage sample(const QImage &gray, const Grid &grid, const ImageParams &params)
{
    const int columns = std::max(1, grid.columns);
    const int rows = std::max(1, grid.rows);
    QImage out(columns, rows, QImage::Format_Grayscale8);
    if (out.isNull())
        return out;
    if (gray.isNull()) {
        out.fill(255);
        return out;
    }
    const QImage picture =
        gray.format() == QImage::Format_Grayscale8 ? gray : gray.convertToFormat(QImage::Format_Grayscale8);
    const int w = picture.width();
    const int h = picture.height();
    if (w == columns && h == rows) {
        for (int y = 0; y < rows; ++y)
            std::memcpy(out.scanLine(y), picture.constScanLine(y), size_t(columns));
    } else {
        const std::vector<Span> across = spans(w, columns);
        const std::vector<Span> down = spans(h, rows);
        const qint64 total = qint64(w) * h;
        std::vector<qint64> rowSums(static_cast<size_t>(columns));
        std::vector<qint64> sums(static_cast<size_t>(columns));
        for (int j = 0; j < rows; ++j) {
            std::fill(sums.begin(), sums.end(), 0);
            const Span &vertical = down[size_t(j)];
            for (size_t n = 0; n < vertical.weight.size(); ++n) {
                const uchar *line = picture.constScanLine(vertical.first + int(n));
                for (int i = 0; i < columns; ++i) {
                    const Span &horizontal = across[size_t(i)];
                    qint64 s = 0;
                    for (size_t m = 0; m < horizontal.weight.size(); ++m)
                        s += line[horizontal.first + int(m)] * horizontal.weight[m];
                    rowSums[size_t(i)] = s;
                }
                const qint64 wy = vertical.weight[n];
                for (int i = 0; i < columns; ++i)
                    sums[size_t(i)] += rowSums[size_t(i)] * wy;
            }
            uchar *target = out.scanLine(j);
            for (int i = 0; i < columns; ++i)
                target[i] = uchar((2 * sums[size_t(i)] + total) / (2 * total));
        }
    }
    uchar table[256];
    toneTable(params, table);
    bool identity = true;
    for (int i = 0; i < 256 && identity; ++i)
        identity = table[i] == i;
    if (!identity) {
        for (int y = 0; y < rows; ++y) {
            uchar *line = out.scanLine(y);
            for (int x = 0; x < columns; ++x)
                line[x] = table[line[x]];
        }
    }
    return out;
}

void reduce(QImage *cells, const ImageParams &params)
{
    if (!cells || cells->isNull() || params.mode == ImageMode::Grayscale)
        return;
    if (cells->format() != QImage::Format_Grayscale8)
        *cells = cells->convertToFormat(QImage::Format_Grayscale8);
    if (params.mode == ImageMode::Threshold) {
        for (int y = 0; y < cells->height(); ++y) {
            uchar *line = cells->scanLine(y);
            for (int x = 0; x < cells->width(); ++x)
                line[x] = line[x] < params.threshold ? 0 : 255;
        }
        return;
    }
    switch (params.dither) {
    case DitherKernel::FloydSteinberg:
        diffuseFloydSteinberg(cells);
        break;
    case DitherKernel::Bayer4:
        bayer(cells);
        break;
    default:
        diffuse(cells, kernel(params.dither));
        break;
    }
}

void scan(const QImage &cells, const QRectF &rect, const ScanSettings &settings, MoveSink &sink, qint32 *x, qint32 *y)
{
    if (cells.isNull() || cells.format() != QImage::Format_Grayscale8)
        return;
    const int columns = cells.width();
    const int rows = cells.height();
    const ImageParams &params = settings.params;

    qint32 power[256];
    const qint32 step = std::max(1, settings.powerStep);
    for (int v = 0; v < 256; ++v) {
        const double gray = settings.minPower + double(settings.power - settings.minPower) * (255 - v) / 255.0;
        if (params.mode == ImageMode::Grayscale)
            power[v] = qint32(std::llround(gray / step) * step);
        else
            power[v] = v < 128 ? settings.power : 0;
        power[v] = std::max(power[v], 0);
    }

    const qint32 bed = std::max(0, toMicrons(settings.bedWidth));
    const auto onBed = [bed](qint64 v) { return qint32(std::clamp<qint64>(v, 0, bed)); };
    const qint32 overscan = std::max(0, toMicrons(std::isfinite(params.overscan) ? params.overscan : 0));
    const qint32 offset = toMicrons(std::isfinite(params.reverseOffset) ? params.reverseOffset : 0);
    const qint64 gapTravel = 2 * qint64(overscan) + GapTravelUm;
    const qint32 feed = qint32(std::llround(settings.speed));

    // Cell edges, and the same edges as reverse rows burn them.
    std::vector<qint32> forward(size_t(columns) + 1);
    std::vector<qint32> reverse(size_t(columns) + 1);
    for (int i = 0; i <= columns; ++i) {
        const qint32 edge =
            i == columns ? toMicrons(rect.x() + rect.width()) : toMicrons(rect.x() + rect.width() * i / columns);
        forward[size_t(i)] = onBed(edge);
        reverse[size_t(i)] = onBed(qint64(edge) + offset);
    }

    Scanner out(sink, *x, *y, feed);
    bool haveRow = false;
    bool leftToRight = true;
    for (int j = 0; j < rows; ++j) {
        const uchar *line = cells.constScanLine(j);
        int lo = 0;
        while (lo < columns && power[line[lo]] == 0)
            ++lo;
        if (lo == columns)
            continue;
        int hi = columns - 1;
        while (power[line[hi]] == 0)
            --hi;
        const qint32 rowY = toMicrons(rect.y() + (rows - j - 0.5) * rect.height() / rows);

        if (!haveRow) {
            if (params.bidirectional) {
                const qint64 toLeft = std::abs(qint64(out.x()) - onBed(qint64(forward[size_t(lo)]) - overscan));
                const qint64 toRight = std::abs(qint64(out.x()) - onBed(qint64(reverse[size_t(hi) + 1]) + overscan));
                leftToRight = toLeft <= toRight;
            }
            haveRow = true;
        } else if (params.bidirectional) {
            leftToRight = !leftToRight;
        }

        if (leftToRight) {
            const qint32 *edge = forward.data();
            out.travel(onBed(qint64(edge[lo]) - overscan), rowY);
            out.cut(edge[lo], 0);
            int i = lo;
            while (i <= hi) {
                const qint32 p = power[line[i]];
                int k = i + 1;
                while (k <= hi && power[line[k]] == p)
                    ++k;
                if (p == 0 && qint64(edge[k]) - edge[i] > gapTravel) {
                    out.cut(onBed(qint64(edge[i]) + overscan), 0);
                    out.travel(onBed(qint64(edge[k]) - overscan), rowY);
                }
                out.cut(edge[k], p);
                i = k;
            }
            out.cut(onBed(qint64(edge[hi + 1]) + overscan), 0);
        } else {
            const qint32 *edge = reverse.data();
            out.travel(onBed(qint64(edge[hi + 1]) + overscan), rowY);
            out.cut(edge[hi + 1], 0);
            int i = hi;
            while (i >= lo) {
                const qint32 p = power[line[i]];
                int k = i - 1;
                while (k >= lo && power[line[k]] == p)
                    --k;
                if (p == 0 && qint64(edge[i + 1]) - edge[k + 1] > gapTravel) {
                    out.cut(onBed(qint64(edge[i + 1]) - overscan), 0);
                    out.travel(onBed(qint64(edge[k + 1]) + overscan), rowY);
                }
                out.cut(edge[k + 1], p);
                i = k;
            }
            out.cut(onBed(qint64(edge[lo]) - overscan), 0);
        }
    }
    *x = out.x();
    *y = out.y();
}

}  // namespace JobRaster
