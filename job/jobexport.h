// A job document to G-code in one call: plan, encode and estimate together. The one entry the window's
// "Export job" and `tarnwell-export job` share, so both write the same bytes.
#ifndef JOBEXPORT_H
#define JOBEXPORT_H

#include "jobdocument.h"
#include "jobestimate.h"

#include <QByteArray>

struct JobExportResult
{
    QByteArray gcode;
    double seconds = 0;
    std::vector<JobEstimate::Layer> layers;  // the enabled layers, in order
    std::vector<int> itemCounts;             // items on each of those layers
};

namespace JobExport {
// False with a message naming the key or item at fault; nothing in `result` then.
bool run(const JobDocument &doc, JobExportResult *result, QString *error);
// The lines `tarnwell-export job` prints: "Estimated time: T", then one per enabled layer,
// "layer N NAME: I items, burn B mm, T".
QStringList summary(const JobExportResult &result);
}  // namespace JobExport

#endif
