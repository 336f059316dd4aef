#include "estimatedtime.h"

#include <QCoreApplication>

QString EstimatedTimeText(float t)
{
    if (t < 0)
        return QString();
    if (t <= 60)
        return QCoreApplication::translate("Draw", "%1s").arg(int(t));
    if (t < 3600)
        return QCoreApplication::translate("Draw", "%1min %2s").arg(int(t) / 60).arg(int(t) % 60);
    const float hourless = t - (t / 3600) * 3600;   // single precision on purpose
    return QCoreApplication::translate("Draw", "%1h %2min %3s")
        .arg(int(t) / 3600)
        .arg(int(hourless) / 60)
        .arg(int(t) % 60);
}
