// How the classic generators are set up from the window's choices: speed and power percentages,
// mode, placement, size and CNC depths. The main window and tarnwell-export both go through here.
#ifndef CLASSICSETUP_H
#define CLASSICSETUP_H

#include "machinevalues.h"

#include <QPointF>

class Bitmap2Gcode;
class Svg2GcodeP;

struct ClassicSetup
{
    int speedPercent = MachineValues::StartSpeed;  // the speed slider, 0..100
    int powerPercent = MachineValues::StartPower;  // the power slider, 0..100
    bool cnc = false;                              // the router rather than the laser (vector only)
    QPointF offset;                                // mm; raster only, the vector converter places itself
    double width = 0;                              // mm; the vector converter takes whole millimetres
    double height = 0;
    float feedZ = 0;  // CNC cutting depth and safe height, mm
    float travelZ = 0;

    // Feed and travel speeds and the beam power from the percentages, and the placement.
    void apply(Bitmap2Gcode &generator) const;
    // Size, speeds, mode, beam power and the CNC depths.
    void apply(Svg2GcodeP &generator) const;
};

#endif
