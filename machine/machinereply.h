// What one line from the machine means: acknowledgement, error, alarm, status, banner, busy, resend.
// Pure functions on bytes, so any reply the firmware (or a faulty cable) sends can be read safely.
#ifndef MACHINEREPLY_H
#define MACHINEREPLY_H

#include <QByteArray>
#include <QList>
#include <QString>

enum class Firmware { Unknown, Grbl, Marlin };

struct MachineReply
{
    enum Kind { Other, Ok, Error, Alarm, Status, GrblBanner, MarlinBanner, Busy, Resend, Setting };
    Kind kind = Other;
    int code = 0;      // error:N, ALARM:N, Resend: N, $N=
    double value = 0;  // $N=value
    QByteArray text;   // the line as received, trimmed
    QByteArray state;  // status report: Idle, Run, Hold:0, Alarm...
    double x = 0, y = 0, z = 0;
    bool hasPosition = false;
};

namespace MachineReplies {

// Reads one line (without its line end) as GRBL or Marlin would mean it.
MachineReply parse(const QByteArray &line);

// Is STATE (a GRBL status report's) one in which the board rightly makes no progress: a feed
// hold, an open door, or homing?
bool isWaitingState(const QByteArray &state);

// A readable explanation of a GRBL alarm or error number, in English (the caller translates).
QString grblAlarmText(int code);
QString grblErrorText(int code);

// Splits the byte stream into lines on CR or LF. A line longer than MaxLine is cut there and
// the rest of it dropped, so a runaway reply cannot eat the memory.
class LineSplitter
{
public:
    static constexpr int MaxLine = 1024;
    // Appends BYTES and returns the complete lines they finish (empty lines are skipped).
    // A cut line ends in "..." so the reader can see it was longer.
    QList<QByteArray> feed(const QByteArray &bytes);
    void clear()
    {
        m_partial.clear();
        m_dropping = false;
        m_dropped = 0;
    }
    // Bytes thrown away from cut lines so far, and bytes of the line still waiting for its end.
    qint64 droppedBytes() const { return m_dropped; }
    int pendingBytes() const { return m_partial.size(); }

private:
    QByteArray m_partial;
    bool m_dropping = false;
    qint64 m_dropped = 0;
};

}  // namespace MachineReplies

#endif
