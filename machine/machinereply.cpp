// What one line from the machine means: acknowledgement, error, alarm, status, banner, busy, resend.
// Plain code over bytes; no state but the splitter's partial line and its count of dropped bytes.
#include "machinereply.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int MaxKeyDigits = 9;  // still fits an int

bool startsWith(const QByteArray &line, const char *prefix) { return line.startsWith(prefix); }

// TEXT as a number; infinity, NaN and overflow count as no number (0), so that a garbled
// reply cannot carry them into positions or settings.
double finiteNumber(const QByteArray &text, bool *ok)
{
    const double value = text.toDouble(ok);
    if (std::isfinite(value))
        return value;
    *ok = false;
    return 0;
}

// The integer after PREFIX, or -1 when there is none.
int numberAfter(const QByteArray &line, int from)
{
    int i = from;
    while (i < line.size() && line[i] == ' ')
        ++i;
    int value = 0, digits = 0;
    while (i < line.size() && line[i] >= '0' && line[i] <= '9' && digits < 9) {
        value = value * 10 + (line[i] - '0');
        ++i, ++digits;
    }
    return digits ? value : -1;
}

// "<Idle|MPos:1.000,2.000,0.000|FS:0,0>": the state and the machine or work position.
void readStatus(const QByteArray &line, MachineReply *reply)
{
    const QByteArray inner = line.mid(1, line.size() - 2);
    const QList<QByteArray> fields = inner.split('|');
    reply->state = fields.value(0);
    for (const QByteArray &field : fields) {
        if (!field.startsWith("MPos:") && !field.startsWith("WPos:"))
            continue;
        const QList<QByteArray> axes = field.mid(5).split(',');
        bool okX = false, okY = false, okZ = true;
        reply->x = finiteNumber(axes.value(0), &okX);
        reply->y = finiteNumber(axes.value(1), &okY);
        if (axes.size() > 2)
            reply->z = finiteNumber(axes.value(2), &okZ);
        reply->hasPosition = okX && okY && okZ;
    }
}

// Marlin's M114 answer: "X:1.00 Y:2.00 Z:0.00 E:0.00 Count X:..." (only the part before Count).
bool readMarlinPosition(const QByteArray &line, MachineReply *reply)
{
    const QByteArray head = line.left(line.indexOf(" Count") < 0 ? line.size() : line.indexOf(" Count"));
    bool any = false;
    for (const QByteArray &part : head.split(' ')) {
        if (part.size() < 3 || part[1] != ':')
            continue;
        bool ok = false;
        const double v = finiteNumber(part.mid(2), &ok);
        if (!ok)
            continue;
        if (part[0] == 'X')
            reply->x = v, any = true;
        else if (part[0] == 'Y')
            reply->y = v;
        else if (part[0] == 'Z')
            reply->z = v;
    }
    return any && head.startsWith("X:");
}

}  // namespace

namespace MachineReplies {

MachineReply parse(const QByteArray &raw)
{
    MachineReply reply;
    reply.text = raw.trimmed();
    const QByteArray &line = reply.text;
    if (line == "ok" || startsWith(line, "ok ")) {
        reply.kind = MachineReply::Ok;
    } else if (startsWith(line, "error:")) {
        reply.kind = MachineReply::Error;
        reply.code = numberAfter(line, 6);
    } else if (startsWith(line, "Error:") || startsWith(line, "!!")) {
        reply.kind = MachineReply::Error;
    } else if (startsWith(line, "ALARM:")) {
        reply.kind = MachineReply::Alarm;
        reply.code = numberAfter(line, 6);
    } else if (line.size() >= 2 && line.front() == '<' && line.back() == '>') {
        reply.kind = MachineReply::Status;
        readStatus(line, &reply);
    } else if (startsWith(line, "Grbl ") || startsWith(line, "[VER:")) {
        reply.kind = MachineReply::GrblBanner;
    } else if (line == "start" || startsWith(line, "FIRMWARE_NAME:")) {
        reply.kind = MachineReply::MarlinBanner;
    } else if (startsWith(line, "echo:busy:") || startsWith(line, "busy:")) {
        reply.kind = MachineReply::Busy;
    } else if (startsWith(line, "Resend:") || startsWith(line, "rs ")) {
        reply.kind = MachineReply::Resend;
        reply.code = numberAfter(line, line.indexOf(line[0] == 'R' ? ':' : ' ') + 1);
    } else if (line.size() > 1 && line[0] == '$' && line.indexOf('=') > 1) {
        const int eq = line.indexOf('=');
        const QByteArray key = line.mid(1, eq - 1);
        // Setting numbers are plain digits; a sign or blank would read as a number otherwise.
        const bool okKey = key.size() <= MaxKeyDigits
                           && std::all_of(key.begin(), key.end(), [](char c) { return c >= '0' && c <= '9'; });
        bool okValue = false;
        reply.code = okKey ? key.toInt() : 0;
        reply.value = finiteNumber(line.mid(eq + 1), &okValue);
        if (okKey && okValue)
            reply.kind = MachineReply::Setting;
    } else if (readMarlinPosition(line, &reply)) {
        reply.kind = MachineReply::Status;
        reply.hasPosition = true;
    }
    return reply;
}

bool isWaitingState(const QByteArray &state)
{
    return state.startsWith("Hold") || state.startsWith("Door") || state == "Home";
}

QString grblAlarmText(int code)
{
    switch (code) {
    case 1:
        return QStringLiteral("Hard limit triggered; position lost.");
    case 2:
        return QStringLiteral("Move beyond the machine's travel (soft limit).");
    case 3:
        return QStringLiteral("Reset while moving; position lost.");
    case 4:
    case 5:
        return QStringLiteral("Probe failed.");
    case 6:
    case 7:
    case 8:
    case 9:
        return QStringLiteral("Homing failed.");
    default:
        return QStringLiteral("The machine stopped with an alarm.");
    }
}

QString grblErrorText(int code)
{
    switch (code) {
    case 1:
        return QStringLiteral("Command letter missing.");
    case 2:
        return QStringLiteral("Bad number format.");
    case 9:
        return QStringLiteral("Commands are locked during an alarm; unlock first.");
    case 11:
        return QStringLiteral("Line too long.");
    case 15:
        return QStringLiteral("Jog target beyond the machine's travel.");
    case 20:
        return QStringLiteral("Unsupported command.");
    case 22:
        return QStringLiteral("Feed rate not set.");
    case 33:
        return QStringLiteral("Invalid target for the motion.");
    default:
        return QStringLiteral("The machine rejected the line.");
    }
}

QList<QByteArray> LineSplitter::feed(const QByteArray &bytes)
{
    QList<QByteArray> lines;
    for (const char c : bytes) {
        if (c == '\n' || c == '\r') {
            if (m_dropping)
                lines << m_partial + "...";
            else if (!m_partial.isEmpty())
                lines << m_partial;
            m_partial.clear();
            m_dropping = false;
        } else if (m_partial.size() < MaxLine) {
            m_partial.append(c);
        } else {
            // Cut only when a byte beyond the cap arrives: a line of exactly MaxLine stays whole.
            m_dropping = true;
            ++m_dropped;
        }
    }
    return lines;
}

}  // namespace MachineReplies
