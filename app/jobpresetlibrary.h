// The material presets of the Job window: a name in Chinese, English and Korean, an operation, speed
// (mm/min), power (%), passes and interval (mm). Kept as a JSON file in the user's configuration
// folder; it starts with presets for common materials, and the user adds layers as new presets.
#ifndef JOBPRESETLIBRARY_H
#define JOBPRESETLIBRARY_H

#include "jobdocument.h"

#include <QByteArray>
#include <QString>

#include <vector>

struct JobPreset
{
    QString nameZh, nameEn, nameKo;
    Operation operation = Operation::Image;
    double speed = 3000;
    double power = 60;
    int passes = 1;
    double interval = 0.1;  // image line interval or fill hatch interval; unused for line

    // The name in a language ("zh", "en", "ko"), falling back to English.
    QString name(const QString &language) const;
    // Gives a layer the preset's settings (its name and colour stay).
    void applyTo(JobLayer *layer) const;
    static JobPreset fromLayer(const JobLayer &layer, const QString &name);
};

class JobPresetLibrary
{
public:
    std::vector<JobPreset> presets;

    // <configuration folder>/job-presets.json
    static QString path();
    // The presets the library starts with.
    static std::vector<JobPreset> starting();
    // Reads the file, or the starting presets when there is none. False with a message when the file
    // exists but cannot be used (the starting presets are then loaded).
    bool load(QString *error = nullptr);
    bool save(QString *error = nullptr) const;

    QByteArray toJson() const;
    bool fromJson(const QByteArray &json, QString *error);
};

#endif
