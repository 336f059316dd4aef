// Splits one line of G-code into words, skipping comments.
// Plain code over bytes: no allocation in split(), so a file of millions of lines reads fast.
#include "gcodetokenizer.h"

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v'; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// Powers of ten that a double holds exactly, so mantissa / 10^k is correctly rounded.
const double ExactPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
const int MaxExactPower = 22;
// Digits past this many are read but no longer change the mantissa.
const int MaxMantissaDigits = 18;

// mantissa / 10^fraction, correctly rounded while both are exact in a double.
inline double scaled(unsigned long long mantissa, int power)
{
    double v = double(mantissa);
    while (power > MaxExactPower) {
        v *= ExactPowersOfTen[MaxExactPower];
        power -= MaxExactPower;
    }
    while (power < -MaxExactPower) {
        v /= ExactPowersOfTen[MaxExactPower];
        power += MaxExactPower;
    }
    return power >= 0 ? v * ExactPowersOfTen[power] : v / ExactPowersOfTen[-power];
}

// Reads a number in the C locale ([+-]digits[.digits]) at *pos; false when there is none.
// strtod would follow the user's locale, which Qt sets from the environment.
bool readNumber(const char *text, int length, int *pos, double *value)
{
    int i = *pos;
    bool negative = false;
    if (i < length && (text[i] == '+' || text[i] == '-')) {
        negative = text[i] == '-';
        ++i;
    }
    // Usual numbers have few digits: all of them fit the mantissa, read in one sweep.
    {
        int k = i;
        unsigned long long quick = 0;
        int count = 0, fractionDigits = 0;
        while (k < length && isDigit(text[k]) && count <= MaxMantissaDigits) {
            quick = quick * 10 + unsigned(text[k] - '0');
            ++count;
            ++k;
        }
        if (k < length && text[k] == '.' && count <= MaxMantissaDigits) {
            ++k;
            while (k < length && isDigit(text[k]) && count <= MaxMantissaDigits) {
                quick = quick * 10 + unsigned(text[k] - '0');
                ++count;
                ++fractionDigits;
                ++k;
            }
        }
        if (count <= MaxMantissaDigits) {
            if (count == 0)
                return false;
            const double v = scaled(quick, -fractionDigits);
            *value = negative ? -v : v;
            *pos = k;
            return true;
        }
    }
    unsigned long long mantissa = 0;
    int digits = 0, kept = 0, fraction = 0, dropped = 0;
    while (i < length && isDigit(text[i])) {
        if (kept < MaxMantissaDigits) {
            mantissa = mantissa * 10 + unsigned(text[i] - '0');
            if (mantissa)
                ++kept;
        } else {
            ++dropped;
        }
        ++digits;
        ++i;
    }
    if (i < length && text[i] == '.') {
        ++i;
        while (i < length && isDigit(text[i])) {
            if (kept < MaxMantissaDigits) {
                mantissa = mantissa * 10 + unsigned(text[i] - '0');
                if (mantissa)
                    ++kept;
                ++fraction;
            }
            ++digits;
            ++i;
        }
    }
    if (digits == 0)
        return false;
    const double v = scaled(mantissa, dropped - fraction);
    *value = negative ? -v : v;
    *pos = i;
    return true;
}

// Moves *pos past blanks and comments; false at the end of the code (end of line or ';').
inline bool skipToCode(const char *text, int length, int *pos)
{
    int i = *pos;
    // Most often there is nothing to skip.
    if (i < length && !isBlank(text[i]) && text[i] != '(')
        return text[i] != ';';
    while (i < length) {
        const char c = text[i];
        if (isBlank(c)) {
            ++i;
        } else if (c == '(') {
            while (i < length && text[i] != ')')
                ++i;
            if (i < length)
                ++i;
        } else {
            break;
        }
    }
    *pos = i;
    return i < length && text[i] != ';';
}

}  // namespace

bool GcodeTokenizer::split(const char *text, int length, Word *words, int *count)
{
    *count = 0;
    int i = 0;
    while (skipToCode(text, length, &i)) {
        char letter = text[i];
        if (letter >= 'a' && letter <= 'z')
            letter = char(letter - 'a' + 'A');
        if (letter < 'A' || letter > 'Z' || *count == MaxWords)
            return false;
        ++i;
        skipToCode(text, length, &i);
        double value = 0;
        if (!readNumber(text, length, &i, &value))
            return false;
        words[*count].letter = letter;
        words[*count].value = value;
        ++*count;
    }
    return true;
}

QByteArray GcodeTokenizer::stripComments(const char *text, int length)
{
    QByteArray code;
    code.reserve(length);
    int i = 0;
    while (i < length && text[i] != ';') {
        if (text[i] == '(') {
            while (i < length && text[i] != ')')
                ++i;
            if (i < length)
                ++i;
            continue;
        }
        code.append(text[i]);
        ++i;
    }
    return code.trimmed();
}
