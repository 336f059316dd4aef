// The estimated job time as the main window shows it in its time label.
// Shared by the main window and the command-line exporter so both print the same text.
#include "estimatedtime.h"

#include <QCoreApplication>

#include <climits>

QString EstimatedTimeText(float t)
{
    // No estimate (negative, or NaN and infinity from a speed of 0) shows nothing, and
    // nothing too large for the integer conversions below.
    if (!(t >= 0) || t >= float(INT_MAX))
        return QString();
    if (t <= 60)
        return QCoreApplication::translate("Draw", "%1s").arg(int(t));
    if (t < 3600)
        return QCoreApplication::translate("Draw", "%1min %2s").arg(int(t) / 60).arg(int(t) % 60);
    const float hourless = t - (t / 3600) * 3600;  // single precision on purpose
    return QCoreApplication::translate("Draw", "%1h %2min %3s")
        .arg(int(t) / 3600)
        .arg(int(hourless) / 60)
        .arg(int(t) % 60);
}
