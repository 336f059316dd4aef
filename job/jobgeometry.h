// The outlines of an item in millimetres on the bed, and how each kind of source becomes them:
// SVG through the project's SVG reader, text from Qt's glyph outlines, QR modules, traced pictures.
#ifndef JOBGEOMETRY_H
#define JOBGEOMETRY_H

#include "jobdocument.h"

#include <QImage>
#include <QPointF>
#include <QRectF>

#include <vector>

// One outline: a closed contour (the last point joins the first, not repeated) or an open path.
struct JobContour
{
    std::vector<QPointF> points;  // mm, machine coordinates
    bool closed = true;
};

// One drawn shape: its contours are filled together by its fill rule.
struct JobShape
{
    std::vector<JobContour> contours;
    bool evenOdd = false;  // the SVG fill rule: evenodd, or nonzero
};

using JobGeometry = std::vector<JobShape>;

namespace JobSources {

// The source's own size, in its own units (pixels, drawing units, mm of text at its em size,
// modules), from which a missing width or height follows. False with a message when it does not
// decode (the message names what is wrong, not the key: "not a picture", "not an SVG drawing").
bool naturalSize(const JobSource &source, double *width, double *height, QString *error);

// A picture or QR source as 8-bit gray (Format_Grayscale8), white where nothing burns.
// A picture with transparency is laid on white. False with a message when it does not decode.
bool gray(const JobSource &source, QImage *image, QString *error);

// An svg, trace or text item's outlines, scaled and moved so that their bounds fill the item's
// rectangle exactly (stretched to it when keepAspect is false), Y flipped to the machine's axes.
// Curves are flattened to within 0.005 mm. False with a message when the source does not decode.
bool geometry(const JobItem &item, JobGeometry *out, QString *error);

// Vector outlines filled (by each shape's rule) into 8-bit gray over `rect`, one pixel per
// `interval` mm each way: how svg, trace and text items are engraved on an image layer.
QImage rasterise(const JobGeometry &geometry, const QRectF &rect, double interval);

}  // namespace JobSources

#endif
