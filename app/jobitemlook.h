// How an item of the job looks on the layout: the processed picture of an image layer, or the outlines
// of a vector item, filled for fill layers and stroked for line layers, in the layer's colour.
#ifndef JOBITEMLOOK_H
#define JOBITEMLOOK_H

#include "jobdocument.h"

#include <QImage>
#include <QPainterPath>
#include <QString>

struct JobItemLook
{
    QImage picture;       // fills the item's rectangle; null for outlines
    QPainterPath path;    // mm, relative to the item's top-left corner, Y down
    bool filled = false;  // fill the path (fill layers and vector items on image layers), else stroke it
    QColor color;
    QString error;  // the source does not decode

    // Makes the look of `item` on `layer`. Pictures are processed at no more than `maxCells` cells
    // along the longer side, enough for the screen and fast on large pictures.
    static JobItemLook make(const JobItem &item, const JobLayer &layer, int maxCells = 700);
    // What the look depends on: equal keys give equal looks (the position on the bed is not part of it).
    static QByteArray key(const JobItem &item, const JobLayer &layer);
};

#endif
