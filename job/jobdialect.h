// The few texts each G-code dialect writes, as data: start, beam on with a power, beam off, end.
// The encoder is the same code for all three; only this table differs.
#ifndef JOBDIALECT_H
#define JOBDIALECT_H

#include "jobdocument.h"

struct DialectTexts
{
    const char *start;    // lines before the first move, each ending in '\n'
    const char *beamOn;   // a line of its own before a burn whose power changes ("M3 S"), followed by the
                          // S value; nullptr where the power is written on the G1 itself (GRBL: "S")
    const char *beamOff;  // a line of its own before travel or a zero-power move; nullptr where G0 and
                          // S0 turn the beam off by themselves (GRBL's laser mode)
    const char *end;      // lines after the last move, each ending in '\n'
    double fullScale;     // the S of 100 %; 0 means the profile's maxPower
    int powerDecimals;    // decimals of S: GRBL 3 (trailing zeros trimmed), 0..255 dialects 0
};

namespace JobDialect {
const DialectTexts &texts(Dialect dialect);
// The S value of 100 % for this profile: maxPower for GRBL, 255 for Marlin and fan.
double fullScale(const MachineProfile &profile);
// A layer's power percentage as the planned moves carry it: S x 1000, rounded to the dialect's decimals.
qint32 plannedPower(const MachineProfile &profile, double percent);
}  // namespace JobDialect

#endif
