// Draws moves into a picture of the work area, one pixel wide, darker with more power.
// Own line stepping over plain byte buffers: exact pixels and millions of moves a second.
#include "toolpathrenderer.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr uchar White = 255;
// A coordinate that lands a hair short of a pixel edge, from printed decimals, still counts
// as on the edge.
constexpr double EdgeSlack = 1e-3;

uchar levelOf(double power) { return uchar(White - std::lround(std::clamp(power, 0.0, 1.0) * White)); }

// A line along the bottom or right edge of the area belongs to the last row or column.
double pixelIndex(double coordinate, int size)
{
    const double index = std::floor(coordinate + EdgeSlack);
    return index == size && coordinate <= size + EdgeSlack ? size - 1 : index;
}

QRgb mix(QRgb a, QRgb b, double t)
{
    auto channel = [t](int x, int y) { return int(std::lround(x + (y - x) * t)); };
    return qRgb(channel(qRed(a), qRed(b)), channel(qGreen(a), qGreen(b)), channel(qBlue(a), qBlue(b)));
}

}  // namespace

const QRgb ToolpathRenderer::TravelColour = qRgb(90, 160, 255);
const QRgb ToolpathRenderer::ShallowColour = qRgb(235, 120, 0);
const QRgb ToolpathRenderer::DeepColour = qRgb(0, 40, 170);

ToolpathRenderer::ToolpathRenderer(double pxPerMm, double areaWidth, double areaHeight)
    : m_scale(pxPerMm), m_areaHeight(areaHeight), m_width(int(std::lround(areaWidth * pxPerMm))),
      m_height(int(std::lround(areaHeight * pxPerMm))), m_burn(size_t(m_width) * size_t(m_height), White)
{}

void ToolpathRenderer::setDepthColours(bool depth)
{
    m_depthColours = depth;
    if (depth && m_depth.empty())
        m_depth.assign(m_burn.size(), std::numeric_limits<float>::infinity());
}

// Visits the pixels of a one-pixel line: along the longer axis, every pixel whose centre
// lies in [start, end) of the move, and across it the pixel the line crosses there.
template <typename Plot>
void ToolpathRenderer::rasterise(const ToolpathMove &move, Plot plot)
{
    const double ax = move.x0 * m_scale;
    const double ay = (m_areaHeight - move.y0) * m_scale;
    const double bx = move.x1 * m_scale;
    const double by = (m_areaHeight - move.y1) * m_scale;
    const double dx = bx - ax, dy = by - ay;
    if (std::fabs(dx) >= std::fabs(dy)) {
        if (dx == 0)
            return;
        const double lo = std::min(ax, bx), hi = std::max(ax, bx);
        const double first = std::max(std::ceil(lo - 0.5), 0.0);
        const double last = std::min(std::ceil(hi - 0.5) - 1, double(m_width - 1));
        if (first > last)
            return;
        const double slope = dy / dx;
        if (dy == 0) {
            const double row = pixelIndex(ay, m_height);
            if (row < 0 || row >= m_height)
                return;
            for (int i = int(first); i <= int(last); ++i)
                plot(size_t(row) * size_t(m_width) + size_t(i));
            return;
        }
        for (int i = int(first); i <= int(last); ++i) {
            const double row = pixelIndex(ay + (i + 0.5 - ax) * slope, m_height);
            if (row >= 0 && row < m_height)
                plot(size_t(row) * size_t(m_width) + size_t(i));
        }
    } else {
        const double lo = std::min(ay, by), hi = std::max(ay, by);
        const double first = std::max(std::ceil(lo - 0.5), 0.0);
        const double last = std::min(std::ceil(hi - 0.5) - 1, double(m_height - 1));
        if (first > last)
            return;
        const double slope = dx / dy;
        for (int j = int(first); j <= int(last); ++j) {
            const double column = pixelIndex(ax + (j + 0.5 - ay) * slope, m_width);
            if (column >= 0 && column < m_width)
                plot(size_t(j) * size_t(m_width) + size_t(column));
        }
    }
}

void ToolpathRenderer::addMove(const ToolpathMove &move)
{
    if (move.burns()) {
        const uchar level = levelOf(move.power);
        uchar *burn = m_burn.data();
        if (m_depthColours) {
            float *depth = m_depth.data();
            const float z = float(std::min(move.z0, move.z1));
            rasterise(move, [burn, depth, level, z](size_t at) {
                burn[at] = std::min(burn[at], level);
                depth[at] = std::min(depth[at], z);
            });
        } else {
            rasterise(move, [burn, level](size_t at) { burn[at] = std::min(burn[at], level); });
        }
    } else if (m_showTravel) {
        if (m_travel.empty())
            m_travel.assign(m_burn.size(), 0);
        uchar *travel = m_travel.data();
        rasterise(move, [travel](size_t at) { travel[at] = 1; });
    }
}

QImage ToolpathRenderer::image() const
{
    QImage picture(m_width, m_height, QImage::Format_RGB32);
    float zLow = std::numeric_limits<float>::infinity(), zHigh = -zLow;
    if (m_depthColours) {
        for (size_t k = 0; k < m_burn.size(); ++k) {
            if (m_burn[k] != White) {
                zLow = std::min(zLow, m_depth[k]);
                zHigh = std::max(zHigh, m_depth[k]);
            }
        }
    }
    const bool travel = m_showTravel && !m_travel.empty();
    for (int row = 0; row < m_height; ++row) {
        QRgb *line = reinterpret_cast<QRgb *>(picture.scanLine(row));
        const size_t base = size_t(row) * size_t(m_width);
        for (int c = 0; c < m_width; ++c) {
            const uchar level = m_burn[base + size_t(c)];
            if (level != White) {
                if (m_depthColours) {
                    // Deeper cuts darker; all at one depth shows the deep colour.
                    const float z = m_depth[base + size_t(c)];
                    const double t = zHigh > zLow ? double(zHigh - z) / double(zHigh - zLow) : 1.0;
                    line[c] = mix(ShallowColour, DeepColour, t);
                } else {
                    line[c] = qRgb(level, level, level);
                }
            } else if (travel && m_travel[base + size_t(c)]) {
                line[c] = TravelColour;
            } else {
                line[c] = qRgb(White, White, White);
            }
        }
    }
    return picture;
}
