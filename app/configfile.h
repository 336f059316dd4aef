// Files of the job road in the user's configuration folder: written whole or not at all.
// The machine profiles, the presets and the recent jobs all go through here.
#ifndef CONFIGFILE_H
#define CONFIGFILE_H

#include <QByteArray>
#include <QString>

namespace ConfigFile {

// Replaces the file at `path` with `bytes`, making its folder when missing. False with
// "NAME: cannot be written" when anything fails; the old file is then left as it was.
bool write(const QString &path, const QByteArray &bytes, QString *error = nullptr);

}  // namespace ConfigFile

#endif
