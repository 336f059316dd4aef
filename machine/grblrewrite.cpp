// The few commands of the program's own output that GRBL does not know, and what GRBL gets instead.
// Recognised through the project's G-code tokenizer, so spacing and comments do not matter.
#include "grblrewrite.h"

#include "gcodetokenizer.h"

#include <algorithm>
#include <cmath>

namespace GrblRewrite {

namespace {

struct Parsed
{
    GcodeTokenizer::Word words[GcodeTokenizer::MaxWords];
    int count = 0;
    bool ok = false;
};

Parsed parse(const QByteArray &line)
{
    Parsed p;
    p.ok = GcodeTokenizer::split(line.constData(), line.size(), p.words, &p.count);
    return p;
}

bool is(const GcodeTokenizer::Word &w, char letter, int number) { return w.letter == letter && w.value == number; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The number at TEXT[begin, end) in plain decimals: six places at most, no trailing zeros, no "-0".
QByteArray plainDecimal(const QByteArray &text, int begin, int end)
{
    bool ok = false;
    const double value = text.mid(begin, end - begin).toDouble(&ok);
    if (!ok || !std::isfinite(value))
        return text.mid(begin, end - begin);
    QByteArray out = QByteArray::number(value, 'f', 6);
    while (out.endsWith('0'))
        out.chop(1);
    if (out.endsWith('.'))
        out.chop(1);
    if (out == "-0")
        out = "0";
    return out;
}

}  // namespace

QByteArray plainNumbers(const QByteArray &text)
{
    if (!text.contains('e') && !text.contains('E'))
        return text;
    QByteArray out;
    const int n = text.size();
    int i = 0;
    while (i < n) {
        // A number starts at a sign, a digit or a point followed by a digit, not inside a word of letters.
        const char c = text[i];
        const bool startsNumber =
            isDigit(c)
            || ((c == '+' || c == '-' || c == '.') && i + 1 < n && (isDigit(text[i + 1]) || text[i + 1] == '.'));
        if (!startsNumber) {
            out += c;
            ++i;
            continue;
        }
        int k = i;
        if (text[k] == '+' || text[k] == '-')
            ++k;
        int digits = 0;
        while (k < n && isDigit(text[k])) {
            ++k;
            ++digits;
        }
        if (k < n && text[k] == '.') {
            ++k;
            while (k < n && isDigit(text[k])) {
                ++k;
                ++digits;
            }
        }
        int end = k;
        if (digits > 0 && k < n && (text[k] == 'e' || text[k] == 'E')) {
            int e = k + 1;
            if (e < n && (text[e] == '+' || text[e] == '-'))
                ++e;
            const int expStart = e;
            while (e < n && isDigit(text[e]))
                ++e;
            if (e > expStart) {
                out += plainDecimal(text, i, e);
                i = e;
                continue;
            }
        }
        if (end == i)
            end = i + 1;
        out += text.mid(i, end - i);
        i = end;
    }
    return out;
}

QByteArray line(const QByteArray &original, int grblMaxPower)
{
    const QByteArray text = plainNumbers(original);
    // The old panel's home text has axis letters without numbers, which the tokenizer refuses.
    if (text.simplified().toUpper() == "G28 X Y")
        return QByteArrayLiteral("G0 X0 Y0");
    const Parsed p = parse(text);
    if (!p.ok || p.count == 0)
        return text;
    const GcodeTokenizer::Word &first = p.words[0];
    if (is(first, 'M', 107) && p.count == 1)
        return QByteArrayLiteral("M5");
    if (is(first, 'M', 106) && p.count <= 2) {
        if (p.count == 1)
            return "M4 S" + QByteArray::number(grblMaxPower);
        if (p.words[1].letter != 'S')
            return text;
        const double scaled = p.words[1].value * grblMaxPower / ProgramMaxPower;
        const long power = std::lround(std::min(std::max(scaled, 0.0), double(grblMaxPower)));
        return "M4 S" + QByteArray::number(qlonglong(power));
    }
    if (is(first, 'G', 28)) {
        // Only the forms the program writes: no axis, or X and Y at zero.
        for (int i = 1; i < p.count; ++i)
            if ((p.words[i].letter != 'X' && p.words[i].letter != 'Y') || p.words[i].value != 0)
                return text;
        return QByteArrayLiteral("G0 X0 Y0");
    }
    return text;
}

bool isProgramPause(const QByteArray &text)
{
    const Parsed p = parse(text);
    return p.ok && p.count == 1 && p.words[0].letter == 'M' && (p.words[0].value == 0 || p.words[0].value == 1);
}

}  // namespace GrblRewrite
