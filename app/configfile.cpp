// Whole-file writes of the job road's configuration files.
#include "configfile.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace ConfigFile {

bool write(const QString &path, const QByteArray &bytes, QString *error)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    if (error)
        *error = QFileInfo(path).fileName() + QStringLiteral(": cannot be written");
    return false;
}

}  // namespace ConfigFile
