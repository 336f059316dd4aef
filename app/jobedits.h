// The edits the Job window makes to a job document, as plain functions on the document: adding items
// and layers, moving, resizing, aligning, reordering layers. Each keeps the items' layer indices right.
#ifndef JOBEDITS_H
#define JOBEDITS_H

#include "jobdocument.h"

#include <QList>
#include <QRectF>
#include <QString>

#include <vector>

namespace JobEdits {

// The colours new layers take, in turn.
QString layerColor(int index);
// A new layer named "Layer N" (N = its place + 1) for `operation`, at the end.
int addLayer(JobDocument *doc, Operation operation, const QString &name = QString());
// The operation a new item of this kind is placed on when no layer is chosen.
Operation operationFor(SourceKind kind);
// Adds `item` to `layer` when that is a layer of the document; otherwise to the last layer of the
// suiting operation, or to a new one. Returns the new item's index.
int addItem(JobDocument *doc, JobItem item, int layer);

// Removes layer `index` and its items; the items of later layers follow it down.
void removeLayer(JobDocument *doc, int index);
// Puts the layers in the order `order` (order[new place] = old place); items keep their layers.
bool reorderLayers(JobDocument *doc, const std::vector<int> &order);
// Moves a layer from one place to another.
void moveLayer(JobDocument *doc, int from, int to);

void moveItems(JobDocument *doc, const QList<int> &items, double dx, double dy);
// The item's new rectangle, bottom-left corner and size in mm.
void setItemRect(JobDocument *doc, int item, const QRectF &rect);
void moveItemsToLayer(JobDocument *doc, const QList<int> &items, int layer);
// Removes the items; returns nothing, the remaining keep their order.
void removeItems(JobDocument *doc, QList<int> items);
// Copies of the items, 5 mm up and to the right, at the end; returns their indices.
QList<int> duplicateItems(JobDocument *doc, const QList<int> &items);

// The rectangle around the items, machine mm; empty when there are none.
QRectF bounds(const JobDocument &doc, const QList<int> &items);
enum class Align { Left, HCenter, Right, Bottom, VCenter, Top };
// Aligns the items' edges or centres with those of their common bounds.
void alignItems(JobDocument *doc, const QList<int> &items, Align align);
// Moves the items together so that their bounds sit in the middle of the bed.
void centreOnBed(JobDocument *doc, const QList<int> &items);

}  // namespace JobEdits

#endif
