// Reads and writes the program's INI files, Config.ini and Slice.ini, in the current directory.
// Every call opens the file afresh and closes it again, so each change is on disk when it returns.
#ifndef APPSETTINGS_H
#define APPSETTINGS_H

#include <QString>
#include <QStringList>
#include <QVariant>

namespace AppSettings {

extern const char *const ConfigFile;  // "Config.ini"
extern const char *const SliceFile;   // "Slice.ini"

extern const char *const GroupTarnwy;  // machine settings, paths, last offset
extern const char *const GroupLanguage;
extern const char *const GroupSlice;

// Plain access: one group, one key, the file opened and closed around it.
QVariant value(const QString &file, const QString &group, const QString &key,
               const QVariant &defaultValue = QVariant());
void setValue(const QString &file, const QString &group, const QString &key, const QVariant &value);

// Config.ini, group Tarnwy.
QString tarnwyString(const QString &key);  // missing: empty
void setTarnwyString(const QString &key, const QString &text);
double tarnwyDouble(const QString &key);  // missing: 0.0
void setTarnwyDouble(const QString &key, double v);

QString mode();  // "laser", "cnc" or anything else
void setMode(const QString &mode);

QString preVectorPath();  // missing: empty; callers turn that into "."
void setPreVectorPath(const QString &path);

double xOffset();
double yOffset();
void setOffset(double x, double y);

// Config.ini, group Language.
QStringList languageList();  // "Chinese", "English", "Korean"
// Looks the stored language up in languageList(); false when missing or not an exact match.
bool lookupLanguage(int *index);
int languageIndex();  // the stored index, 0 when lookup fails

// Config.ini, group Slice: the threshold editor's last save path.
QString slicePath();
void setSlicePath(const QString &path);

// Slice.ini, group Slice: the black/white threshold.
int threshold();  // missing: 0
void setThreshold(int value);

}  // namespace AppSettings

#endif
