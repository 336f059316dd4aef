// The material library: named materials with their working and default power and speed,
// kept per interface language in a JSON file in the current directory, written back whole.
#ifndef MATERIALLIBRARY_H
#define MATERIALLIBRARY_H

#include <QString>
#include <QStringList>

#include <vector>

// One material. Power and speed are slider percentages (0 to 100).
struct MaterialRecord
{
    QString name;
    float currentPower = 0;
    float currentSpeed = 0;
    float initPower = 0;
    float initSpeed = 0;
    float thickness = 0;
};

class MaterialLibrary
{
public:
    // Language indices of the interface; only the first two have a library file.
    enum Language { Chinese = 0, English = 1, Korean = 2 };

    static constexpr int JsonIndent = 4;

    MaterialLibrary();

    // The one library of the running program.
    static MaterialLibrary &instance();

    // "Chinese", "English", "Korean": the position in this list is the language index.
    const QStringList &languages() const { return m_languages; }
    int languageIndex() const { return m_languageIndex; }
    void setLanguageIndex(int index) { m_languageIndex = index; }
    // Takes the index from the language stored in Config.ini (0 when it is not in the list).
    void lookupLanguage();

    // "dataFile_zh.json" for Chinese, "dataFile_en.json" for English, empty for any other index.
    static QString fileName(int languageIndex);
    QString fileName() const { return fileName(m_languageIndex); }

    // Reads the language's file. False, with an empty list, when there is no file for the
    // language, it cannot be opened, it is not JSON, or it is not an array of materials.
    bool load();
    // Writes the whole list with an indentation of 4; false when nothing could be written.
    bool save() const;

    // The record whose name has exactly the same UTF-8 bytes, or null. The pointer stays
    // valid until the list is next changed by add, remove or load.
    MaterialRecord *find(const QString &name);
    const MaterialRecord *find(const QString &name) const;

    // Appends the record and saves. Names are not checked for duplicates here: the
    // main window decides what counts as one.
    bool add(const MaterialRecord &record);
    // Removes the first record of that name and saves; false when there is none.
    bool remove(const QString &name);

    std::vector<MaterialRecord> materials() const { return m_materials; }
    QStringList names() const;
    bool isEmpty() const { return m_materials.empty(); }

private:
    QStringList m_languages;
    int m_languageIndex = Chinese;
    std::vector<MaterialRecord> m_materials;
};

#endif
