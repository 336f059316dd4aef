// The few commands of the program's own output that GRBL does not know, and what GRBL gets instead.
// One table, pure functions: exported files stay as written; only the bytes sent to GRBL change.
#ifndef GRBLREWRITE_H
#define GRBLREWRITE_H

#include <QByteArray>

namespace GrblRewrite {

// The program writes fan-style power from 0 to this; GRBL's own scale is its $30.
constexpr int ProgramMaxPower = 255;
constexpr int DefaultGrblMaxPower = 1000;

// LINE is one line without comments or line end. Returns what goes to a GRBL board:
//   M106 S<p>  ->  M4 S<p * $30 / 255, rounded>   (the frame's weak beam too)
//   M106       ->  M4 S<$30>
//   M107       ->  M5
//   G28, G28 X0 Y0, G28 X Y  ->  G0 X0 Y0   (a rapid move to the origin, never a homing cycle)
// Every number with an exponent is first written in plain decimals (see plainNumbers).
// Anything else is returned unchanged.
QByteArray line(const QByteArray &line, int grblMaxPower);

// LINE with every number that carries an exponent ("Y-7.10543e-15", "S1e+03", "X2.5E2") written in
// plain decimals, six places at most, trailing zeros dropped ("Y0", "S1000", "X250"): GRBL reads the
// "e" as a word of its own and refuses the line. The exponent must follow the digits directly.
QByteArray plainNumbers(const QByteArray &line);

// Is LINE the program pause ("M0", "M00", "M1")? The runner pauses itself instead.
bool isProgramPause(const QByteArray &line);

}  // namespace GrblRewrite

#endif
