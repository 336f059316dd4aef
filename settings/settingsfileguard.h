// Spots INI files that QSettings must not parse: values it would decode as stored Qt objects,
// whose binary form can ask for any amount of memory and take the program down.
#ifndef SETTINGSFILEGUARD_H
#define SETTINGSFILEGUARD_H

#include <QByteArray>
#include <QString>

namespace SettingsFileGuard {

// True when some value of the INI text, or an element of a comma list, reads (after
// quotes and backslash escapes) as starting with "@Variant(" or "@DateTime(", the stored
// objects QSettings decodes from a binary stream. The program never writes either.
bool holdsStoredObject(const QByteArray &iniText);
// The same for a file; false when it cannot be read.
bool fileHoldsStoredObject(const QString &path);

}  // namespace SettingsFileGuard

#endif
