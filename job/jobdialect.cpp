// The texts of the three G-code dialects and the S values of their powers.
#include "jobdialect.h"

#include <algorithm>
#include <cmath>

namespace {

// In the order of the Dialect enum.
const DialectTexts Texts[] = {
    // GRBL in laser mode: M4 scales the power with the speed, G0 and S0 need no beam-off line.
    {"G21\nG90\nM4 S0\n", nullptr, nullptr, "M5\nG0 X0 Y0\n", 0, 3},
    // Marlin's laser commands.
    {"G21\nG90\n", "M3 S", "M5\n", "M5\nG0 X0 Y0\n", 255, 0},
    // A laser switched as a fan, as the classic export drives it.
    {"G21\nG90\n", "M106 S", "M107\n", "M107\nG0 X0 Y0\n", 255, 0},
};

}  // namespace

namespace JobDialect {

const DialectTexts &texts(Dialect dialect)
{
    const int i = int(dialect);
    return Texts[i >= 0 && i < 3 ? i : 0];
}

double fullScale(const MachineProfile &profile)
{
    const double scale = texts(profile.dialect).fullScale;
    return scale > 0 ? scale : profile.maxPower;
}

qint32 plannedPower(const MachineProfile &profile, double percent)
{
    const double full = fullScale(profile);
    if (!std::isfinite(percent) || !std::isfinite(full) || !(percent > 0) || !(full > 0))
        return 0;
    const double s = std::min(percent, 100.0) / 100.0 * full;
    // Whole thousandths of an S unit stay well inside 32 bits for any sensible scale.
    const double thousandths = std::min(s * 1000.0, 2.0e9);
    if (texts(profile.dialect).powerDecimals == 0)
        return qint32(std::llround(thousandths / 1000.0) * 1000);
    return qint32(std::llround(thousandths));
}

}  // namespace JobDialect
