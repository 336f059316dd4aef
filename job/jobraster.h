// Raster engraving of one item: the picture adjusted and reduced to burn or no burn (threshold,
// dither) or to powers (grayscale) on the layer's grid, then scanned row by row into planned moves.
#ifndef JOBRASTER_H
#define JOBRASTER_H

#include "jobdocument.h"
#include "jobmoves.h"

#include <QImage>
#include <QRectF>

namespace JobRaster {

// The grid an item is scanned on: rows = max(1, round(height / interval)) counted from the bottom,
// row k at Y = y + (k + 0.5) height / rows; columns = max(1, round(width / interval)), cell i
// covering X from x + i width / columns to x + (i + 1) width / columns. Burns run from cell edge to
// cell edge, so a burnt edge cell reaches the rectangle's edge exactly.
struct Grid
{
    int columns = 1;
    int rows = 1;
};
Grid grid(const QRectF &rect, double interval);

// The most cells one item's grid may hold (a byte each); the planner refuses a finer grid by name.
constexpr double MaxGridCells = 1e8;

// The gray picture (Format_Grayscale8) sampled onto the grid (area average), brightness, contrast,
// gamma and invert applied: one byte per cell, row 0 at the top, 0 black ... 255 white.
QImage sample(const QImage &gray, const Grid &grid, const ImageParams &params);

// Burn levels per cell, in place, for the threshold and dither modes: 0 burns, 255 does not.
// Grayscale leaves the cells as they are.
void reduce(QImage *cells, const ImageParams &params);

// Scans the cells of an item placed in `rect` into moves for `sink`, starting from the machine's
// current position `*x`, `*y` (um, updated). `power` and `minPower` are planned powers (S x 1000,
// jobdialect.h); grayscale maps white to minPower and black to power (white at 0 is not burnt).
// White is never burnt: rows and runs that are all white are skipped by travel. Overscan runs at
// zero power beyond each row's burnt extent, kept on the bed (0..bedWidth). Rows alternate direction
// when bidirectional; reverse rows are shifted by reverseOffset.
struct ScanSettings
{
    ImageParams params;
    double speed = 0;  // mm/min
    qint32 power = 0;
    qint32 minPower = 0;
    qint32 powerStep = 1;  // grayscale powers are rounded to multiples of it (1000 where S is whole)
    double bedWidth = 170;
};
void scan(const QImage &cells, const QRectF &rect, const ScanSettings &settings, MoveSink &sink, qint32 *x, qint32 *y);

}  // namespace JobRaster

#endif
