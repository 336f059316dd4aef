// Pixel operations of the threshold editor, free of any widget: global, adaptive and
// inverted thresholds, the outline operator and gray levels over 32-bit ARGB words.
#ifndef PIXELOPS_H
#define PIXELOPS_H

#include <QImage>
#include <QRgb>

namespace PixelOps {

// All read and write 32-bit ARGB words; Prepare() gives a picture in such a format
// (the picture itself when it already is one). A null picture gives a null one.
QImage Prepare(const QImage &picture);
inline int Gray(QRgb p) { return (11 * qRed(p) + 16 * qGreen(p) + 5 * qBlue(p)) >> 5; }

// Black below `threshold`, white (alpha 0) from it up. `reuse` lends its pixel buffer
// when it is unshared and of the right size: on a dragged slider that saves the cost
// of fresh memory for every step.
QImage GlobalThreshold(const QImage &picture, int threshold, QImage reuse = QImage());
// Black where a pixel is darker than 0.85 of the mean of the window around it.
QImage AdaptiveThreshold(const QImage &picture);
// White below `threshold`, black from it up.
QImage InvertedThreshold(const QImage &picture, int threshold);
// The edges of an inverted-threshold picture, black on white.
QImage Outline(const QImage &inverted);
// 8-bit gray levels, transparency seen against white paper.
QImage GrayLevels(const QImage &picture);

}  // namespace PixelOps

#endif
