// What `tarnwell-export job` and `tarnwell-export testgrid` share: the machine overrides, and a job
// document turned into G-code through the job engine, written whole, its figures printed.
#ifndef EXPORTJOB_H
#define EXPORTJOB_H

#include "exportcommon.h"
#include "jobdocument.h"

namespace ExportJob {

// --dialect and --max-power, when given, replace the profile's values. False with a message
// naming the option.
bool applyMachineOptions(const ExportCommon::Options &options, MachineProfile *machine, QString *error);

// Runs the job engine on `doc` and writes its G-code to `output` whole. False with a message
// (starting with `source`, the name the job goes by) and nothing written on failure; on success
// `lines` holds the lines to print.
bool exportGcode(const JobDocument &doc, const QString &source, const QString &output, QStringList *lines,
                 QString *error);

}  // namespace ExportJob

#endif
