// The planning stage: a job document, its sources decoded and placed, becomes the moves the machine
// makes, layer after layer in list order, each layer's passes back to back.
#ifndef JOBPLANNER_H
#define JOBPLANNER_H

#include "jobdocument.h"
#include "jobgeometry.h"
#include "jobmoves.h"

#include <QImage>

#include <vector>

// An item ready to plan: its picture as gray (image layers), or its outlines on the bed.
struct PreparedItem
{
    int index = 0;         // in JobDocument::items
    QRectF rect;           // mm, machine coordinates
    QImage gray;           // image layers: the picture, or the rasterised outlines
    JobGeometry geometry;  // fill and line layers
};

namespace JobPlanner {

// Decodes the sources of the items on enabled layers. False with a message naming the item
// ("items[2].source: not a picture"), also when its layer's interval would give it more cells
// (JobRaster::MaxGridCells) or hatch lines (JobVector::MaxHatchLines) than a job may hold, or
// when a cut with its kerf outside would leave the bed.
bool prepare(const JobDocument &doc, std::vector<PreparedItem> *items, QString *error);

// Plans the whole job into `sink`, from the origin. Inside a layer, items follow each other by
// nearest neighbour. False with a message (and nothing planned) when an item cannot be prepared.
bool plan(const JobDocument &doc, MoveSink &sink, QString *error);

}  // namespace JobPlanner

#endif
