// Numbers as the job's G-code writes them: fixed decimals, trailing zeros trimmed, never an
// exponent, never "-0". Fast enough for millions of lines a second (no locale, no printf).
#ifndef JOBFORMAT_H
#define JOBFORMAT_H

#include <QByteArray>
#include <QtGlobal>

namespace JobFormat {

// Writes `thousandths` / 1000 with up to 3 decimals at `out` ("12.345", "0.5", "-2", "0") and returns
// the number of characters written (at most 13). -0.0004 mm is "0".
int thousandths(qint64 thousandths, char *out);
// The same for a double: rounded to 3 decimals first. Non-finite values write "0".
int decimal(double value, char *out);
QByteArray decimal(double value);

// A time in seconds as "12s", "3min 05s" or "1h 02min 03s" (negative or non-finite: "0s").
QByteArray duration(double seconds);

}  // namespace JobFormat

#endif
