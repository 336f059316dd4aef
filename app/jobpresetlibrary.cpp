// The material presets of the Job window.
#include "jobpresetlibrary.h"

#include "configfile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSaveFile>
#include <QStandardPaths>

#include <cmath>

QString JobPreset::name(const QString &language) const
{
    if (language == QLatin1String("zh") && !nameZh.isEmpty())
        return nameZh;
    if (language == QLatin1String("ko") && !nameKo.isEmpty())
        return nameKo;
    return nameEn.isEmpty() ? (nameZh.isEmpty() ? nameKo : nameZh) : nameEn;
}

void JobPreset::applyTo(JobLayer *layer) const
{
    layer->operation = operation;
    layer->speed = speed;
    layer->power = power;
    layer->passes = passes;
    if (operation == Operation::Image)
        layer->image.interval = interval;
    else if (operation == Operation::Fill)
        layer->fill.interval = interval;
}

JobPreset JobPreset::fromLayer(const JobLayer &layer, const QString &name)
{
    JobPreset p;
    p.nameZh = p.nameEn = p.nameKo = name;
    p.operation = layer.operation;
    p.speed = layer.speed;
    p.power = layer.power;
    p.passes = layer.passes;
    p.interval = layer.operation == Operation::Fill ? layer.fill.interval : layer.image.interval;
    return p;
}

QString JobPresetLibrary::path()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/job-presets.json");
}

std::vector<JobPreset> JobPresetLibrary::starting()
{
    auto preset = [](const char *zh, const char *en, const char *ko, Operation op, double speed, double power,
                     int passes, double interval) {
        JobPreset p;
        p.nameZh = QString::fromUtf8(zh);
        p.nameEn = QString::fromUtf8(en);
        p.nameKo = QString::fromUtf8(ko);
        p.operation = op;
        p.speed = speed;
        p.power = power;
        p.passes = passes;
        p.interval = interval;
        return p;
    };
    return {
        preset("胶合板 3 mm 雕刻", "Plywood 3 mm, engrave", "합판 3 mm 조각", Operation::Image, 3000, 40, 1, 0.1),
        preset("胶合板 3 mm 切割", "Plywood 3 mm, cut", "합판 3 mm 절단", Operation::Line, 300, 100, 3, 0.1),
        preset("中密度板 3 mm 雕刻", "MDF 3 mm, engrave", "MDF 3 mm 조각", Operation::Fill, 2500, 45, 1, 0.1),
        preset("中密度板 3 mm 切割", "MDF 3 mm, cut", "MDF 3 mm 절단", Operation::Line, 250, 100, 4, 0.1),
        preset("卡纸 雕刻", "Cardboard, engrave", "판지 조각", Operation::Image, 4000, 20, 1, 0.1),
        preset("卡纸 切割", "Cardboard, cut", "판지 절단", Operation::Line, 800, 80, 1, 0.1),
        preset("皮革 雕刻", "Leather, engrave", "가죽 조각", Operation::Image, 3000, 30, 1, 0.1),
        preset("亚克力 雕刻", "Acrylic, engrave", "아크릴 조각", Operation::Fill, 2000, 50, 1, 0.08),
        preset("阳极氧化铝 雕刻", "Anodised aluminium, engrave", "아노다이징 알루미늄 조각", Operation::Fill, 1500, 90,
               1, 0.05),
    };
}

QByteArray JobPresetLibrary::toJson() const
{
    QJsonArray list;
    for (const JobPreset &p : presets) {
        QJsonObject o;
        o[QStringLiteral("name")] = QJsonObject{
            {QStringLiteral("zh"), p.nameZh}, {QStringLiteral("en"), p.nameEn}, {QStringLiteral("ko"), p.nameKo}};
        o[QStringLiteral("operation")] = JobNames::operation(p.operation);
        o[QStringLiteral("speed")] = p.speed;
        o[QStringLiteral("power")] = p.power;
        o[QStringLiteral("passes")] = p.passes;
        o[QStringLiteral("interval")] = p.interval;
        list.append(o);
    }
    return QJsonDocument(QJsonObject{{QStringLiteral("presets"), list}}).toJson();
}

bool JobPresetLibrary::fromJson(const QByteArray &json, QString *error)
{
    const QJsonDocument doc = QJsonDocument::fromJson(json);
    if (!doc.isObject() || !doc.object().value(QStringLiteral("presets")).isArray()) {
        *error = QStringLiteral("presets: not a list");
        return false;
    }
    std::vector<JobPreset> read;
    const QJsonArray list = doc.object().value(QStringLiteral("presets")).toArray();
    for (int i = 0; i < list.size(); ++i) {
        const QJsonObject o = list.at(i).toObject();
        const QString where = QStringLiteral("presets[%1]").arg(i);
        JobPreset p;
        const QJsonObject name = o.value(QStringLiteral("name")).toObject();
        p.nameZh = name.value(QStringLiteral("zh")).toString();
        p.nameEn = name.value(QStringLiteral("en")).toString();
        p.nameKo = name.value(QStringLiteral("ko")).toString();
        if (p.name(QStringLiteral("en")).isEmpty()) {
            *error = where + QStringLiteral(".name: empty");
            return false;
        }
        if (!JobNames::operation(o.value(QStringLiteral("operation")).toString(), &p.operation)) {
            *error = where + QStringLiteral(".operation: not image, fill or line");
            return false;
        }
        p.speed = o.value(QStringLiteral("speed")).toDouble(-1);
        p.power = o.value(QStringLiteral("power")).toDouble(-1);
        p.passes = o.value(QStringLiteral("passes")).toInt(1);
        p.interval = o.value(QStringLiteral("interval")).toDouble(0.1);
        if (!(p.speed > 0) || !(p.power >= 0 && p.power <= 100) || p.passes < 1 || !(p.interval > 0)) {
            *error = where + QStringLiteral(": speed, power, passes or interval out of range");
            return false;
        }
        read.push_back(p);
    }
    presets = read;
    return true;
}

bool JobPresetLibrary::load(QString *error)
{
    QFile file(path());
    if (!file.exists()) {
        presets = starting();
        return true;
    }
    QString why;
    if (file.open(QIODevice::ReadOnly) && fromJson(file.readAll(), &why))
        return true;
    presets = starting();
    if (error)
        *error = QFileInfo(path()).fileName() + QStringLiteral(": ")
                 + (why.isEmpty() ? QStringLiteral("cannot be read") : why);
    return false;
}

bool JobPresetLibrary::save(QString *error) const { return ConfigFile::write(path(), toJson(), error); }
