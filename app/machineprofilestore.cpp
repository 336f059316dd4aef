// The user's machine profiles, in a JSON file of the configuration folder.
#include "machineprofilestore.h"

#include "configfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>
#include <QSaveFile>
#include <QStandardPaths>

#include <algorithm>
#include <cmath>

QString MachineProfileStore::path()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation)
           + QStringLiteral("/machine-profiles.json");
}

const MachineProfile &MachineProfileStore::current() const
{
    static const MachineProfile fallback;
    return selected >= 0 && selected < int(profiles.size()) ? profiles[size_t(selected)] : fallback;
}

QByteArray MachineProfileStore::toJson() const
{
    QJsonArray list;
    for (const MachineProfile &p : profiles) {
        QJsonObject o;
        o[QStringLiteral("name")] = p.name;
        o[QStringLiteral("dialect")] = JobNames::dialect(p.dialect);
        o[QStringLiteral("max_power")] = p.maxPower;
        o[QStringLiteral("bed")] = QJsonArray{p.bedWidth, p.bedHeight};
        o[QStringLiteral("travel_speed")] = p.travelSpeed;
        o[QStringLiteral("acceleration")] = p.acceleration;
        list.append(o);
    }
    QJsonObject root;
    root[QStringLiteral("profiles")] = list;
    root[QStringLiteral("selected")] = selected;
    return QJsonDocument(root).toJson();
}

bool MachineProfileStore::fromJson(const QByteArray &json, QString *error)
{
    QJsonParseError parse;
    const QJsonDocument doc = QJsonDocument::fromJson(json, &parse);
    if (!doc.isObject()) {
        *error = QStringLiteral("not a JSON object");
        return false;
    }
    const QJsonObject root = doc.object();
    std::vector<MachineProfile> read;
    const QJsonArray list = root.value(QStringLiteral("profiles")).toArray();
    for (int i = 0; i < list.size(); ++i) {
        const QJsonObject o = list.at(i).toObject();
        MachineProfile p;
        const QString where = QStringLiteral("profiles[%1]").arg(i);
        p.name = o.value(QStringLiteral("name")).toString(p.name);
        if (!JobNames::dialect(o.value(QStringLiteral("dialect")).toString(QStringLiteral("grbl")), &p.dialect)) {
            *error = where + QStringLiteral(".dialect: not grbl, marlin or fan");
            return false;
        }
        p.maxPower = o.value(QStringLiteral("max_power")).toDouble(p.maxPower);
        const QJsonArray bed = o.value(QStringLiteral("bed")).toArray();
        p.bedWidth = bed.at(0).toDouble(p.bedWidth);
        p.bedHeight = bed.at(1).toDouble(p.bedHeight);
        p.travelSpeed = o.value(QStringLiteral("travel_speed")).toDouble(p.travelSpeed);
        p.acceleration = o.value(QStringLiteral("acceleration")).toDouble(p.acceleration);
        for (double v : {p.maxPower, p.bedWidth, p.bedHeight, p.travelSpeed, p.acceleration}) {
            if (!(v > 0) || !std::isfinite(v)) {
                *error = where + QStringLiteral(": values must be above 0");
                return false;
            }
        }
        read.push_back(p);
    }
    if (read.empty()) {
        *error = QStringLiteral("profiles: none");
        return false;
    }
    profiles = read;
    selected = std::clamp(root.value(QStringLiteral("selected")).toInt(0), 0, int(profiles.size()) - 1);
    return true;
}

bool MachineProfileStore::load(QString *error)
{
    QFile file(path());
    if (!file.exists())
        return true;
    QString why;
    if (!file.open(QIODevice::ReadOnly))
        why = QStringLiteral("cannot be read");
    else if (fromJson(file.readAll(), &why))
        return true;
    if (error)
        *error = QFileInfo(path()).fileName() + QStringLiteral(": ") + why;
    return false;
}

bool MachineProfileStore::save(QString *error) const { return ConfigFile::write(path(), toJson(), error); }

int MachineProfileStore::applyGrblSettings(const QList<QByteArray> &lines, MachineProfile *profile)
{
    static const QRegularExpression Setting(QStringLiteral("^\\$(\\d+)=([0-9.]+)"));
    QMap<int, double> values;
    for (const QByteArray &line : lines) {
        const QRegularExpressionMatch m = Setting.match(QString::fromLatin1(line.trimmed()));
        bool ok = false;
        const double v = m.hasMatch() ? m.captured(2).toDouble(&ok) : 0;
        if (ok && v > 0)
            values.insert(m.captured(1).toInt(), v);
    }
    int used = 0;
    auto take = [&](int key, double *into) {
        if (values.contains(key)) {
            *into = values.value(key);
            ++used;
        }
    };
    auto takeLower = [&](int a, int b, double *into) {
        if (values.contains(a) && values.contains(b)) {
            *into = std::min(values.value(a), values.value(b));
            used += 2;
        } else {
            take(a, into);
            take(b, into);
        }
    };
    take(30, &profile->maxPower);
    take(130, &profile->bedWidth);
    take(131, &profile->bedHeight);
    takeLower(110, 111, &profile->travelSpeed);
    takeLower(120, 121, &profile->acceleration);
    return used;
}
