// The material library: named materials with their working and default power and speed,
// kept per interface language in a JSON file in the current directory, written back whole.
#include "materiallibrary.h"

#include "appsettings.h"

#include <QFile>
#include <QSaveFile>

#include <nlohmann/json.hpp>

#include <charconv>
#include <cmath>
#include <limits>

namespace {

const char *const ChineseFile = "dataFile_zh.json";
const char *const EnglishFile = "dataFile_en.json";

const char *const KeyName = "name";
const char *const KeyCurrentPower = "currentPower";
const char *const KeyCurrentSpeed = "currentSpeed";
const char *const KeyInitPower = "initPower";
const char *const KeyInitSpeed = "initSpeed";
const char *const KeyThickness = "thickness";

// A library file is a hand-editable text; a value that does not fit a float is a broken
// file, not something to squeeze into one.
float floatField(const nlohmann::json &object, const char *key)
{
    const double v = object.at(key).get<double>();
    if (!std::isfinite(v) || std::fabs(v) > double(std::numeric_limits<float>::max()))
        throw std::range_error(key);
    return float(v);
}

MaterialRecord recordFromJson(const nlohmann::json &object)
{
    MaterialRecord record;
    record.name = QString::fromStdString(object.at(KeyName).get<std::string>());
    record.currentPower = floatField(object, KeyCurrentPower);
    record.currentSpeed = floatField(object, KeyCurrentSpeed);
    record.initPower = floatField(object, KeyInitPower);
    record.initSpeed = floatField(object, KeyInitSpeed);
    record.thickness = floatField(object, KeyThickness);
    return record;
}

// The shortest decimal that reads back as the same float, as a double: 0.2f is written
// as 0.2, the value the user typed, not as 0.20000000298023224.
double asTyped(float value)
{
    char text[32];
    const std::to_chars_result written = std::to_chars(text, text + sizeof text, value);
    double shortest = double(value);
    std::from_chars(text, written.ptr, shortest);
    return shortest;
}

}  // namespace

MaterialLibrary::MaterialLibrary() : m_languages(AppSettings::languageList()) {}

MaterialLibrary &MaterialLibrary::instance()
{
    static MaterialLibrary library;
    return library;
}

void MaterialLibrary::lookupLanguage() { m_languageIndex = AppSettings::languageIndex(); }

QString MaterialLibrary::fileName(int languageIndex)
{
    switch (languageIndex) {
    case Chinese:
        return QString::fromLatin1(ChineseFile);
    case English:
        return QString::fromLatin1(EnglishFile);
    default:
        return QString();
    }
}

bool MaterialLibrary::load()
{
    m_materials.clear();
    const QString name = fileName();
    if (name.isEmpty())
        return false;
    QFile file(name);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();

    // A damaged or hand-edited file must not take the program down: whatever the
    // parser or the conversion rejects leaves the library empty, as a missing file does.
    std::vector<MaterialRecord> loaded;
    try {
        const nlohmann::json document = nlohmann::json::parse(bytes.constBegin(), bytes.constEnd());
        if (!document.is_array())
            return false;
        loaded.reserve(document.size());
        for (const nlohmann::json &element : document)
            loaded.push_back(recordFromJson(element));
    } catch (const std::exception &) {
        return false;
    }
    m_materials = std::move(loaded);
    return true;
}

bool MaterialLibrary::save() const
{
    const QString name = fileName();
    if (name.isEmpty())
        return false;

    // Keys are written in record order so the file reads like the record.
    nlohmann::ordered_json document = nlohmann::ordered_json::array();
    for (const MaterialRecord &record : m_materials) {
        nlohmann::ordered_json object;
        object[KeyName] = record.name.toStdString();
        object[KeyCurrentPower] = asTyped(record.currentPower);
        object[KeyCurrentSpeed] = asTyped(record.currentSpeed);
        object[KeyInitPower] = asTyped(record.initPower);
        object[KeyInitSpeed] = asTyped(record.initSpeed);
        object[KeyThickness] = asTyped(record.thickness);
        document.push_back(std::move(object));
    }
    std::string text;
    try {
        text = document.dump(JsonIndent);
    } catch (const std::exception &) {
        return false;
    }
    text += '\n';

    // Written whole or not at all: a failed write keeps the previous library.
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(text.data(), qint64(text.size())) != qint64(text.size())) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

MaterialRecord *MaterialLibrary::find(const QString &name)
{
    const QByteArray wanted = name.toUtf8();
    for (MaterialRecord &record : m_materials) {
        if (record.name.toUtf8() == wanted)
            return &record;
    }
    return nullptr;
}

const MaterialRecord *MaterialLibrary::find(const QString &name) const
{
    return const_cast<MaterialLibrary *>(this)->find(name);
}

bool MaterialLibrary::add(const MaterialRecord &record)
{
    m_materials.push_back(record);
    return save();
}

bool MaterialLibrary::remove(const QString &name)
{
    const MaterialRecord *record = find(name);
    if (!record)
        return false;
    m_materials.erase(m_materials.begin() + (record - m_materials.data()));
    save();
    return true;
}

QStringList MaterialLibrary::names() const
{
    QStringList list;
    list.reserve(int(m_materials.size()));
    for (const MaterialRecord &record : m_materials)
        list << record.name;
    return list;
}
