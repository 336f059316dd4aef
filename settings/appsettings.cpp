// Reads and writes the program's INI files, Config.ini and Slice.ini, in the current directory.
// Every call opens the file afresh and closes it again, so each change is on disk when it returns.
#include "appsettings.h"

#include "settingsfileguard.h"

#include <QFile>
#include <QSettings>

namespace AppSettings {

const char *const ConfigFile = "Config.ini";
const char *const SliceFile = "Slice.ini";
const char *const GroupTarnwy = "Tarnwy";
const char *const GroupLanguage = "Language";
const char *const GroupSlice = "Slice";

QVariant value(const QString &file, const QString &group, const QString &key, const QVariant &defaultValue)
{
    // A missing, unreadable or garbled file reads as a file with no keys; so does one with
    // a stored object in it, which QSettings would decode at any cost.
    if (SettingsFileGuard::fileHoldsStoredObject(file))
        return defaultValue;
    QSettings settings(file, QSettings::IniFormat);
    settings.beginGroup(group);
    const QVariant v = settings.value(key, defaultValue);
    settings.endGroup();
    return v;
}

void setValue(const QString &file, const QString &group, const QString &key, const QVariant &v)
{
    // Write failures (read-only file, a folder in its place) are not reported. Writing
    // parses the whole file first, so one with a stored object in it is started afresh.
    if (SettingsFileGuard::fileHoldsStoredObject(file))
        QFile::remove(file);
    QSettings settings(file, QSettings::IniFormat);
    settings.beginGroup(group);
    settings.setValue(key, v);
    settings.endGroup();
}

QString tarnwyString(const QString &key) { return value(ConfigFile, GroupTarnwy, key, QString()).toString(); }

void setTarnwyString(const QString &key, const QString &text) { setValue(ConfigFile, GroupTarnwy, key, text); }

double tarnwyDouble(const QString &key) { return value(ConfigFile, GroupTarnwy, key, QString()).toDouble(); }

void setTarnwyDouble(const QString &key, double v) { setValue(ConfigFile, GroupTarnwy, key, v); }

QString mode() { return tarnwyString("mode"); }
void setMode(const QString &m) { setTarnwyString("mode", m); }

QString preVectorPath() { return tarnwyString("pre_vector_path"); }
void setPreVectorPath(const QString &path) { setTarnwyString("pre_vector_path", path); }

double xOffset() { return tarnwyDouble("xoffset"); }
double yOffset() { return tarnwyDouble("yoffset"); }

void setOffset(double x, double y)
{
    setTarnwyDouble("xoffset", x);
    setTarnwyDouble("yoffset", y);
}

QStringList languageList()
{
    return QStringList{QStringLiteral("Chinese"), QStringLiteral("English"), QStringLiteral("Korean")};
}

bool lookupLanguage(int *index)
{
    const QString stored = value(ConfigFile, GroupLanguage, "language", QString()).toString();
    const int i = languageList().indexOf(stored);  // exact, case-sensitive
    if (i < 0)
        return false;
    if (index)
        *index = i;
    return true;
}

int languageIndex()
{
    int index = 0;
    if (!lookupLanguage(&index))
        index = 0;
    return index;
}

QString slicePath() { return value(ConfigFile, GroupSlice, "pre_vector_path", QString()).toString(); }

void setSlicePath(const QString &path) { setValue(ConfigFile, GroupSlice, "pre_vector_path", path); }

int threshold() { return value(SliceFile, GroupSlice, "thread_hold", QString()).toInt(); }

void setThreshold(int v) { setValue(SliceFile, GroupSlice, "thread_hold", v); }

}  // namespace AppSettings
