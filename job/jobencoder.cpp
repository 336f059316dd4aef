// Planned moves to G-code text: each move is built in a small buffer on the stack and appended to
// the output in one piece, numbers by the integer formatter.
#include "jobencoder.h"

#include "jobformat.h"

#include <algorithm>
#include <limits>

namespace {

// The longest line written.
constexpr int MaxLine = 70;

inline char *put(char *p, const char *text)
{
    while (*text)
        *p++ = *text++;
    return p;
}

inline char *putWord(char *p, char letter, qint64 thousandths)
{
    *p++ = ' ';
    *p++ = letter;
    return p + JobFormat::thousandths(thousandths, p);
}

// A whole number, as the feed is written.
inline char *putInteger(char *p, char letter, qint64 value)
{
    *p++ = ' ';
    *p++ = letter;
    quint64 magnitude = quint64(value);
    if (value < 0) {
        *p++ = '-';
        magnitude = 0 - magnitude;
    }
    char reversed[20];
    int n = 0;
    do {
        reversed[n++] = char('0' + magnitude % 10);
        magnitude /= 10;
    } while (magnitude != 0);
    while (n > 0)
        *p++ = reversed[--n];
    return p;
}

// Rounds a planned power to the S the dialect writes (whole units when it writes no decimals).
inline qint32 dialectPower(qint32 power, int decimals)
{
    if (decimals >= 3 || power <= 0)
        return power < 0 ? 0 : power;
    qint32 step = 1000;
    for (int i = 0; i < decimals; ++i)
        step /= 10;
    const qint64 rounded = (qint64(power) + step / 2) / step * step;
    return qint32(rounded > std::numeric_limits<qint32>::max() ? rounded - step : rounded);
}

}  // namespace

JobEncoder::JobEncoder(const MachineProfile &profile, QByteArray *out)
    : m_texts(JobDialect::texts(profile.dialect)), m_out(out)
{
    m_out->append(m_texts.start);
    // GRBL's start sets S0; the other dialects start with the beam off and no power given.
    if (!m_texts.beamOn)
        m_power = 0;
}

void JobEncoder::beginLayer(int index, const JobLayer &layer)
{
    char line[MaxLine + 8];
    char *p = put(line, "; layer ");
    p += JobFormat::thousandths((qint64(index) + 1) * 1000, p);
    *p++ = ':';
    *p++ = ' ';
    const QByteArray name = layer.name.toUtf8();
    const int room = MaxLine - int(p - line);
    int n = std::min(room, name.size());
    // Never cut a character in two: step back over continuation bytes to the start of the last one.
    if (n < name.size())
        while (n > 0 && (uchar(name[n]) & 0xC0) == 0x80)
            --n;
    for (int i = 0; i < n; ++i) {
        const char c = name[i];
        *p++ = uchar(c) < 0x20 || c == 0x7f ? ' ' : c;
    }
    while (p > line && p[-1] == ' ')
        --p;
    *p++ = '\n';
    m_out->append(line, int(p - line));
}

void JobEncoder::move(const PlannedMove &m)
{
    const bool moveX = m_first || m.x != m_x;
    const bool moveY = m_first || m.y != m_y;
    if (!moveX && !moveY)
        return;

    char line[160];
    char *p = line;
    qint32 power = 0;
    bool writeS = false;
    if (m.kind == PlannedMove::Cut)
        power = dialectPower(m.power, m_texts.powerDecimals);
    if (!m_texts.beamOn) {
        // The power rides on the G1 itself; G0 turns the beam off by itself.
        writeS = m.kind == PlannedMove::Cut && power != m_power;
    } else if (m.kind == PlannedMove::Travel || power == 0) {
        if (m_beamOn) {
            p = put(p, m_texts.beamOff);
            m_beamOn = false;
        }
    } else if (!m_beamOn || power != m_power) {
        p = put(p, m_texts.beamOn);
        p += JobFormat::thousandths(power, p);
        *p++ = '\n';
        m_beamOn = true;
        m_power = power;
    }

    *p++ = 'G';
    *p++ = m.kind == PlannedMove::Travel ? '0' : '1';
    if (moveX)
        p = putWord(p, 'X', m.x);
    if (moveY)
        p = putWord(p, 'Y', m.y);
    if (m.kind == PlannedMove::Cut) {
        if (m.feed != m_feed) {
            p = putInteger(p, 'F', m.feed);
            m_feed = m.feed;
        }
        if (writeS) {
            p = putWord(p, 'S', power);
            m_power = power;
        }
    }
    *p++ = '\n';
    m_out->append(line, int(p - line));
    m_x = m.x;
    m_y = m.y;
    m_first = false;
}

void JobEncoder::finish() { m_out->append(m_texts.end); }
