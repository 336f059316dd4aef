// Machine values from the window's speed and power sliders (percentages), in integer
// arithmetic so a setting gives the same G-code in the window, the exporter and the tests.
#ifndef MACHINEVALUES_H
#define MACHINEVALUES_H

namespace MachineValues {

// Where the sliders stand when the program starts.
constexpr int StartSpeed = 33;
constexpr int StartPower = 91;

constexpr int SpeedScale = 30;   // slider percent to mm/s at full scale
constexpr int PowerScale = 255;  // the laser's full power
constexpr int SecondsPerMinute = 60;
constexpr int TravelFactor = 12;
constexpr int Percent = 100;

// Burning feed rate, mm/min.
constexpr int feed(int speedPercent) { return speedPercent * SpeedScale * SecondsPerMinute / Percent; }
// Travel feed rate, mm/min.
constexpr int travel(int speedPercent) { return speedPercent * SpeedScale * TravelFactor; }
// Laser power, 0..255.
constexpr int power(int powerPercent) { return powerPercent * PowerScale / Percent; }

}  // namespace MachineValues

#endif
