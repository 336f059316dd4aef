// The figures of a previewed job in words: the summary line that the command-line preview
// prints and the panel shows, and the line about moves that leave the work area.
#ifndef TOOLPATHREPORT_H
#define TOOLPATHREPORT_H

#include "gcodeinterpreter.h"

#include <QString>

namespace ToolpathReport {

// Millimetres with at most two decimals: "12.5", "-3", "170".
QString millimetres(double value);
// "X0..X1 x Y0..Y1 mm" of the extent; "none" for a file without moves.
QString extentText(const ToolpathSummary &summary);
// "Lines: N  Burn moves: B  Extent: X0..X1 x Y0..Y1 mm  Estimated time: T"
QString summaryLine(const ToolpathSummary &summary);
// How far the moves that leave the area go: "X up to 180 mm, Y down to -2 mm".
QString reachText(const ToolpathSummary &summary);
// "Outside the work area: ..." or empty when everything stays inside.
QString outsideLine(const ToolpathSummary &summary);

}  // namespace ToolpathReport

#endif
