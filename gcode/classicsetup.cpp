// How the classic generators are set up from the window's choices, in the order the window
// has always set them.
#include "classicsetup.h"

#include "bitmap2gcode.h"
#include "svg2gcodep.h"

void ClassicSetup::apply(Bitmap2Gcode &generator) const
{
    generator.offset = offset;
    generator.SetTravelSpeed(MachineValues::travel(speedPercent));
    generator.SetFeedSpeed(MachineValues::feed(speedPercent));
    generator.SetPower(float(MachineValues::power(powerPercent)));
}

void ClassicSetup::apply(Svg2GcodeP &generator) const
{
    generator.SetgGcodeWidth(int(width), int(height));
    generator.SetFeedSpeed(MachineValues::feed(speedPercent));
    generator.SetPrintMode(cnc);
    generator.SetTravelSpeed(MachineValues::travel(speedPercent));
    generator.SetLaser(MachineValues::power(powerPercent));
    generator.SetPrintZValue(feedZ);
    generator.SetTravelZValue(travelZ);
}
