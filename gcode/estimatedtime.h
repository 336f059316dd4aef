// The estimated job time as the main window shows it in its time label.
// Shared by the main window and the command-line exporter so both print the same text.
#ifndef ESTIMATEDTIME_H
#define ESTIMATEDTIME_H

#include <QString>

// Seconds up to 60: "Ns"; below an hour: "Mmin Ss"; from an hour: "Hh Mmin Ss"; negative or
// no estimate at all (NaN, infinite): empty. The minutes of the hour form are worked out in
// single precision as t - (t/3600)*3600, which comes out as 0: users have seen it so and it stays.
QString EstimatedTimeText(float seconds);

#endif
