// The user's machine profiles for the Job window: several, one selected, kept as a JSON file in the
// user's configuration folder (never the working folder). New jobs take the selected profile.
#ifndef MACHINEPROFILESTORE_H
#define MACHINEPROFILESTORE_H

#include "jobdocument.h"

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QString>

#include <vector>

class MachineProfileStore
{
public:
    std::vector<MachineProfile> profiles{MachineProfile()};
    int selected = 0;

    // <configuration folder>/machine-profiles.json
    static QString path();
    // Reads the file; a missing file leaves the one default profile. False with a message when the
    // file exists but cannot be used (then nothing changes).
    bool load(QString *error = nullptr);
    bool save(QString *error = nullptr) const;

    const MachineProfile &current() const;

    // The file's text and back. Keys as in a job file's "machine" object.
    QByteArray toJson() const;
    bool fromJson(const QByteArray &json, QString *error);

    // Takes GRBL's settings as `$$` lists them ("$30=1000", "$130=400.000", ...): $30 the power
    // scale, $130/$131 the bed, the lower of $110/$111 the travel feed and of $120/$121 the
    // acceleration. Settings not listed leave the profile's value. Returns how many were used.
    static int applyGrblSettings(const QList<QByteArray> &lines, MachineProfile *profile);
};

#endif
