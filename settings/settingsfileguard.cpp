// Spots INI files that QSettings must not parse: values it would decode as stored Qt objects,
// whose binary form can ask for any amount of memory and take the program down.
#include "settingsfileguard.h"

#include <QFile>

#include <cstring>

namespace SettingsFileGuard {

namespace {

// The escapes QSettings understands in values; anything else stands for itself.
int simpleEscape(char c)
{
    switch (c) {
    case 'a':
        return '\a';
    case 'b':
        return '\b';
    case 'f':
        return '\f';
    case 'n':
        return '\n';
    case 'r':
        return '\r';
    case 't':
        return '\t';
    case 'v':
        return '\v';
    default:
        return uchar(c);
    }
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// The two forms QSettings decodes from a binary stream; its other "@" forms are plain text.
bool isStreamedForm(const QByteArray &start) { return start.startsWith("@Variant(") || start.startsWith("@DateTime("); }

// Walks one value: the characters it stands for, element by element. Errs on the side of
// finding a mark: blanks at an element's start are skipped even where QSettings keeps them.
bool valueHoldsMark(const char *p, const char *end)
{
    constexpr int Prefix = 10;  // enough for "@DateTime("
    bool quoted = false;
    QByteArray start;  // the first characters of the current element
    while (p < end) {
        const char c = *p++;
        int ch;
        if (c == '"') {
            quoted = !quoted;
            continue;
        }
        // A ";" may start a comment; read on as if it did not, a later "," still counts.
        if (!quoted && c == ',') {
            if (isStreamedForm(start))
                return true;
            start.clear();
            continue;
        }
        if (c == '\\') {
            if (p >= end)
                break;
            const char e = *p++;
            if (e == '\n' || e == '\r') {
                if (e == '\r' && p < end && *p == '\n')
                    ++p;
                continue;  // the value goes on in the next line
            } else if (e == 'x') {
                ch = 0;
                while (p < end && hexValue(*p) >= 0)
                    ch = (ch * 16 + hexValue(*p++)) & 0xffff;
            } else if (e >= '0' && e <= '7') {
                ch = e - '0';
                while (p < end && *p >= '0' && *p <= '7')
                    ch = (ch * 8 + (*p++ - '0')) & 0xffff;
            } else {
                ch = simpleEscape(e);
            }
        } else {
            if (c == '\n' || c == '\r')
                break;
            ch = uchar(c);
            if (!quoted && start.isEmpty() && ch <= ' ')
                continue;
        }
        if (start.size() < Prefix)
            start.append(ch < 0x80 ? char(ch) : '?');
    }
    return isStreamedForm(start);
}

}  // namespace

bool holdsStoredObject(const QByteArray &iniText)
{
    const char *p = iniText.constData();
    const char *end = p + iniText.size();
    while (p < end) {
        // One logical line: up to a line end that no backslash continues.
        const char *lineEnd = p;
        while (lineEnd < end && *lineEnd != '\n' && *lineEnd != '\r') {
            if (*lineEnd == '\\' && lineEnd + 1 < end) {
                ++lineEnd;
                if (*lineEnd == '\r' && lineEnd + 1 < end && lineEnd[1] == '\n')
                    ++lineEnd;
            }
            ++lineEnd;
        }
        const char *first = p;
        while (first < lineEnd && (*first == ' ' || *first == '\t'))
            ++first;
        if (first < lineEnd && *first == ';') {  // a comment line
            p = lineEnd + 1;
            continue;
        }
        const char *equals = static_cast<const char *>(memchr(p, '=', size_t(lineEnd - p)));
        if (equals && valueHoldsMark(equals + 1, lineEnd))
            return true;
        p = lineEnd + 1;
    }
    return false;
}

bool fileHoldsStoredObject(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    return holdsStoredObject(file.readAll());
}

}  // namespace SettingsFileGuard
