// The job file (.tljob): one JSON document holding the profile, the layers and the items, with their
// sources embedded in base64. Reading checks everything; nothing half-read is ever handed on.
#ifndef JOBFILE_H
#define JOBFILE_H

#include "jobdocument.h"

#include <QByteArray>
#include <QString>

namespace JobFile {

struct ReadOptions
{
    bool checkBed = true;  // refuse an item whose rectangle leaves the bed (the window opens such jobs)
};

// Parses and checks a job. A missing width or height follows from the source's own proportions.
// False with one message naming the key at fault ("items[2].source: not a picture",
// "layers[0].speed: not a finite number"), and `doc` untouched.
bool read(const QByteArray &json, JobDocument *doc, QString *error, ReadOptions options = {});
// The document as a job file; read() of it gives an equal document.
QByteArray write(const JobDocument &doc);

// The same from and to a file. Messages start with the file name ("job.tljob: ..."); saving
// replaces the file as a whole or not at all.
bool load(const QString &path, JobDocument *doc, QString *error, ReadOptions options = {});
bool save(const QString &path, const JobDocument &doc, QString *error);

// The first item whose rectangle leaves the profile's bed, as "items[N] (NAME): outside the bed
// (170 x 200 mm)"; empty when all lie on it.
QString outsideBed(const JobDocument &doc);

}  // namespace JobFile

#endif
