// The figures of a previewed job in words, in English for scripts and logs.
// The panel puts its own translated words around the same numbers.
#include "toolpathreport.h"

#include "estimatedtime.h"

#include <QRegExp>
#include <QStringList>

#include <cmath>

namespace ToolpathReport {

QString millimetres(double value)
{
    double rounded = std::round(value * 100.0) / 100.0;
    if (rounded == 0)
        rounded = 0;  // no "-0"
    return QString::number(rounded, 'f', 2).remove(QRegExp(QStringLiteral("\\.?0+$")));
}

QString extentText(const ToolpathSummary &s)
{
    if (!s.hasExtent)
        return QStringLiteral("none");
    return QStringLiteral("%1..%2 x %3..%4 mm")
        .arg(millimetres(s.minX), millimetres(s.maxX), millimetres(s.minY), millimetres(s.maxY));
}

QString summaryLine(const ToolpathSummary &s)
{
    return QStringLiteral("Lines: %1  Burn moves: %2  Extent: %3  Estimated time: %4")
        .arg(s.lines)
        .arg(s.burnMoves)
        .arg(extentText(s), EstimatedTimeText(float(s.seconds)));
}

QString reachText(const ToolpathSummary &s)
{
    QStringList sides;
    if (s.outMinX < 0)
        sides << QStringLiteral("X down to %1 mm").arg(millimetres(s.outMinX));
    if (s.outMaxX > s.areaWidth)
        sides << QStringLiteral("X up to %1 mm").arg(millimetres(s.outMaxX));
    if (s.outMinY < 0)
        sides << QStringLiteral("Y down to %1 mm").arg(millimetres(s.outMinY));
    if (s.outMaxY > s.areaHeight)
        sides << QStringLiteral("Y up to %1 mm").arg(millimetres(s.outMaxY));
    return sides.join(QStringLiteral(", "));
}

QString outsideLine(const ToolpathSummary &s)
{
    if (s.burnMovesOutside == 0 && s.travelMovesOutside == 0)
        return QString();
    auto moves = [](qint64 n, const char *kind) {
        return QStringLiteral("%1 %2 move%3").arg(n).arg(QLatin1String(kind)).arg(n == 1 ? "" : "s");
    };
    return QStringLiteral("Outside the work area: %1 and %2 reach %3 (the area is X 0..%4 x Y 0..%5 mm)")
        .arg(moves(s.burnMovesOutside, "burn"), moves(s.travelMovesOutside, "travel"), reachText(s),
             millimetres(s.areaWidth), millimetres(s.areaHeight));
}

}  // namespace ToolpathReport
