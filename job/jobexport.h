// A job document to G-code in one call: plan, encode and estimate together. The one entry the window's
// "Export job" and `tarnwell-export job` share, so both write the same bytes.
#ifndef JOBEXPORT_H
#define JOBEXPORT_H

#include "jobdocument.h"
#include "jobestimate.h"

#include <QByteArray>

class QIODevice;

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
// The same, the G-code written to `device` as it is made, a megabyte at a time, so that a large job
// never waits in memory whole (`result->gcode` stays empty). False as above, or when the device
// refuses to write: what was written by then stays, and the caller discards it.
bool write(const JobDocument &doc, QIODevice *device, JobExportResult *result, QString *error);
// The lines `tarnwell-export job` prints: "Estimated time: T", then one per enabled layer,
// "layer N NAME: I items, burn B mm, T".
QStringList summary(const JobExportResult &result);
}  // namespace JobExport

#endif
