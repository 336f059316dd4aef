// The machine's work area: 170 mm wide, 200 mm high, origin at the front left corner.
// Pictures and the canvas count Y down from the top edge; the machine's Y is flipped against the height.
#ifndef WORKAREA_H
#define WORKAREA_H

namespace WorkArea {

constexpr int Width = 170;   // mm
constexpr int Height = 200;  // mm

// Machine Y of a point `y` millimetres below the top edge (and the other way round).
constexpr double machineY(double y) { return Height - y; }

}  // namespace WorkArea

#endif
