// Fuzz target of the settings files: any bytes as Config.ini and Slice.ini. Every read
// must give a usable value, and a value written must read back as written without
// disturbing the others.
#include "appsettings.h"
#include "fuzzsupport.h"
#include "settingsfileguard.h"

#include <QSettings>

#include <cmath>

namespace {

const char *const TarnwyKeys[] = {"laser_on",   "laser_off",  "cnc_on",       "cnc_off", "travel_speed",
                                  "crue_speed", "cnc_feed_z", "cnc_travel_z", "mode",    "pre_vector_path"};

struct Snapshot
{
    QStringList strings;
    double x;
    double y;
    int language;
    QString slicePath;
    int threshold;
};

Snapshot readAll()
{
    Snapshot s;
    for (const char *key : TarnwyKeys)
        s.strings << AppSettings::tarnwyString(QString::fromLatin1(key));
    s.x = AppSettings::xOffset();
    s.y = AppSettings::yOffset();
    s.language = AppSettings::languageIndex();
    s.slicePath = AppSettings::slicePath();
    s.threshold = AppSettings::threshold();
    return s;
}

}  // namespace

// QSettings keeps every file it parsed; leak checks would then scan the heap per input.
FUZZ_INITIALIZE("-detect_leaks=0")

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzBytes in(data, size);
    const QByteArray config = in.take(size_t(in.intIn(0, 4096)));
    const int configSize = config.size();
    const QByteArray slice = in.restCopy();
    // QSettings keeps parsed files by path and date; a new folder per input keeps it honest.
    fuzzFreshFolder();
    fuzzWriteFile(QString::fromLatin1(AppSettings::ConfigFile), config);
    fuzzWriteFile(QString::fromLatin1(AppSettings::SliceFile), slice);
    const QByteArray both = config + "\n--- Slice.ini:\n" + slice;

    const Snapshot before = readAll();
    // An offset may read as nan or inf ("nan" converts); the vector generator refuses those.
    FUZZ_REQUIRE(before.language >= 0 && before.language <= 2, both);

    // The round trip below is asked only of a file QSettings reads without a format error:
    // what it makes of a broken one is its own affair.
    {
        QSettings parsed(QString::fromLatin1(AppSettings::ConfigFile), QSettings::IniFormat);
        if (!SettingsFileGuard::holdsStoredObject(config) && parsed.status() != QSettings::NoError)
            return 0;
    }

    // Writing one key keeps every other value as it was read.
    // What a line edit can hold: printable characters (QSettings drops a value's tail at a NUL).
    QString text;
    for (const QChar c : QString::fromUtf8(slice.left(64)))
        if (c.isPrint() && c != QChar::ReplacementCharacter)
            text += c;
    AppSettings::setTarnwyString(QStringLiteral("laser_on"), text);
    const QString readBack = AppSettings::tarnwyString(QStringLiteral("laser_on"));
    FUZZ_REQUIRE(readBack == text, both + "\n--- wrote:\n" + text.toUtf8() + "\n--- read:\n" + readBack.toUtf8()
                                       + "\n--- file:\n" + fuzzReadFile(QString::fromLatin1(AppSettings::ConfigFile)));
    Snapshot expected = before;
    expected.strings[0] = text;
    // nan never equals itself; such offsets are compared by their text.
    const Snapshot after = readAll();
    FUZZ_REQUIRE(after.strings == expected.strings && after.language == expected.language
                     && after.slicePath == expected.slicePath && after.threshold == expected.threshold
                     && QByteArray::number(after.x) == QByteArray::number(expected.x)
                     && QByteArray::number(after.y) == QByteArray::number(expected.y),
                 both);

    const double x = double(configSize) / 7.0 - 100.0;
    AppSettings::setOffset(x, -x);
    FUZZ_REQUIRE(AppSettings::xOffset() == x && AppSettings::yOffset() == -x, both);
    AppSettings::setThreshold(int(configSize));
    FUZZ_REQUIRE(AppSettings::threshold() == int(configSize), both);
    return 0;
}
