// Number and time texts of the job engine, written digit by digit without locale or printf.
#include "jobformat.h"

#include <algorithm>
#include <cmath>

namespace {

// The largest magnitude written: 99 999 999.999, so a number never takes more than 13 characters.
constexpr qint64 Limit = 99999999999LL;

// Writes the decimal digits of `value` at `out` and returns how many.
inline int writeDigits(quint64 value, char *out)
{
    char reversed[20];
    int n = 0;
    do {
        reversed[n++] = char('0' + value % 10);
        value /= 10;
    } while (value != 0);
    for (int i = 0; i < n; ++i)
        out[i] = reversed[n - 1 - i];
    return n;
}

}  // namespace

namespace JobFormat {

int thousandths(qint64 thousandths, char *out)
{
    if (thousandths == 0) {
        out[0] = '0';
        return 1;
    }
    char *p = out;
    quint64 magnitude;
    if (thousandths < 0) {
        *p++ = '-';
        magnitude = thousandths < -Limit ? quint64(Limit) : quint64(-thousandths);
    } else {
        magnitude = thousandths > Limit ? quint64(Limit) : quint64(thousandths);
    }
    p += writeDigits(magnitude / 1000, p);
    unsigned fraction = unsigned(magnitude % 1000);
    if (fraction != 0) {
        *p++ = '.';
        *p++ = char('0' + fraction / 100);
        fraction %= 100;
        if (fraction != 0) {
            *p++ = char('0' + fraction / 10);
            fraction %= 10;
            if (fraction != 0)
                *p++ = char('0' + fraction);
        }
    }
    return int(p - out);
}

int decimal(double value, char *out)
{
    if (!std::isfinite(value)) {
        out[0] = '0';
        return 1;
    }
    double scaled = value * 1000.0;
    if (scaled > double(Limit))
        scaled = double(Limit);
    else if (scaled < -double(Limit))
        scaled = -double(Limit);
    return thousandths(qint64(std::llround(scaled)), out);
}

QByteArray decimal(double value)
{
    char text[16];
    return QByteArray(text, decimal(value, text));
}

QByteArray duration(double seconds)
{
    if (!std::isfinite(seconds) || !(seconds > 0))
        return QByteArrayLiteral("0s");
    // A thousand years is plenty; beyond it the count would only lose meaning.
    const qint64 total = std::llround(std::min(seconds, 3.2e10));
    const qint64 hours = total / 3600;
    const int minutes = int(total / 60 % 60);
    const int secs = int(total % 60);
    char text[40];
    char *p = text;
    auto twoDigits = [&p](int v) {
        *p++ = char('0' + v / 10);
        *p++ = char('0' + v % 10);
    };
    if (hours > 0) {
        p += writeDigits(quint64(hours), p);
        *p++ = 'h';
        *p++ = ' ';
        twoDigits(minutes);
        *p++ = 'm';
        *p++ = 'i';
        *p++ = 'n';
        *p++ = ' ';
        twoDigits(secs);
    } else if (minutes > 0) {
        p += writeDigits(quint64(minutes), p);
        *p++ = 'm';
        *p++ = 'i';
        *p++ = 'n';
        *p++ = ' ';
        twoDigits(secs);
    } else {
        p += writeDigits(quint64(secs), p);
    }
    *p++ = 's';
    return QByteArray(text, int(p - text));
}

}  // namespace JobFormat
