// Fuzz target of the material library loader: any bytes as a library file. A file that
// loads must hold only finite values and survive a save and a second load unchanged.
#include "fuzzsupport.h"
#include "materiallibrary.h"

#include <cmath>

namespace {

bool sameRecord(const MaterialRecord &a, const MaterialRecord &b)
{
    return a.name == b.name && a.currentPower == b.currentPower && a.currentSpeed == b.currentSpeed
           && a.initPower == b.initPower && a.initSpeed == b.initSpeed && a.thickness == b.thickness;
}

}  // namespace

FUZZ_INITIALIZE()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzBytes in(data, size);
    // Language 1 and 0 have files; 2 has none and must never load.
    const int language = in.intIn(0, 2);
    const QByteArray bytes = in.restCopy();
    MaterialLibrary library;
    library.setLanguageIndex(language);
    if (language != MaterialLibrary::Korean)
        fuzzWriteFile(library.fileName(), bytes);
    if (!library.load()) {
        FUZZ_REQUIRE(library.isEmpty(), bytes);
        return 0;
    }
    FUZZ_REQUIRE(language != MaterialLibrary::Korean, bytes);

    const std::vector<MaterialRecord> first = library.materials();
    for (const MaterialRecord &r : first) {
        FUZZ_REQUIRE(std::isfinite(r.currentPower) && std::isfinite(r.currentSpeed) && std::isfinite(r.initPower)
                         && std::isfinite(r.initSpeed) && std::isfinite(r.thickness),
                     bytes);
        FUZZ_REQUIRE(library.find(r.name) != nullptr, r.name.toUtf8());
    }

    FUZZ_REQUIRE(library.save(), bytes);
    const QByteArray written = fuzzReadFile(library.fileName());
    MaterialLibrary again;
    again.setLanguageIndex(language);
    FUZZ_REQUIRE(again.load(), written);
    const std::vector<MaterialRecord> second = again.materials();
    FUZZ_REQUIRE(second.size() == first.size(), written);
    for (size_t i = 0; i < first.size(); ++i)
        FUZZ_REQUIRE(sameRecord(first[i], second[i]), written);
    return 0;
}
