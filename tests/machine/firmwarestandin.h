// Firmware stand-ins for the machine-link tests: a GRBL-like and a Marlin-like board on the far
// end of a pty pair, answering in the test's own event loop and recording what reached the wire.
#ifndef FIRMWARESTANDIN_H
#define FIRMWARESTANDIN_H

#include "ptypair.h"

#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTimer>
#include <deque>

// The machine running the tests is shared with builds: every wait on the stand-ins is generous.
#undef QTRY_VERIFY
#define QTRY_VERIFY(expr) QTRY_VERIFY_WITH_TIMEOUT(expr, 20000)
#undef QTRY_COMPARE
#define QTRY_COMPARE(expr, expected) QTRY_COMPARE_WITH_TIMEOUT(expr, expected, 20000)

class FirmwareStandIn : public QObject
{
public:
    enum Kind { Grbl, Marlin };
    static constexpr int GrblBuffer = 128;

    Kind kind;
    PtyPair pty;
    QByteArray wire;            // every byte received
    QList<QByteArray> lines;    // every line received (Marlin: without number and checksum)
    int ackDelayMs = 0;         // GRBL: time to "execute" one buffered line
    int errorAtLine = 0;        // answer the Nth job line (counted from 1, after "G90") with an error
    int alarmAtLine = 0;        // GRBL: raise ALARM:1 at the Nth job line
    int resendAtNumber = 0;     // Marlin: ask once for this line number again
    int busyAtLine = 0;         // Marlin: answer "echo:busy" three times before this job line's ok
    bool silent = false;        // answers nothing at all
    int loseFromLine = 0;       // the Nth job line received and every one after it are lost
    int runAfterMs = 0;         // GRBL: after each ok the machine goes on moving (status Run) this long;
                                // Marlin: M400 is answered that long after it came, with a busy first
    bool alarmOnReset = false;  // GRBL: a reset while moving leaves it in alarm (ALARM:3) until $X
    bool locked = false;        // GRBL: in alarm; lines are refused with error:9
    bool idleSinceOk = false;   // GRBL: an Idle status went out after the last ok; Marlin: M400 answered
    QElapsedTimer lostAt;       // started when the first lost line came
    bool held = false, overflowed = false;
    int maxBuffered = 0;  // GRBL: most bytes waiting in its receive buffer
    int jobLines = 0;
    int grblMaxPower = 1000;  // GRBL: the $30 setting it reports

    FirmwareStandIn(Kind k, const QString &dir, const QString &tag = "fw") : kind(k), pty(dir, tag) {}

    bool start()
    {
        if (!pty.start())
            return false;
        m_notifier = new QSocketNotifier(pty.fd, QSocketNotifier::Read, this);
        connect(m_notifier, &QSocketNotifier::activated, this, [this] { pull(); });
        m_tick.setSingleShot(true);
        connect(&m_tick, &QTimer::timeout, this, [this] { execute(); });
        return true;
    }
    void banner() { say(kind == Grbl ? "\r\nGrbl 1.1h ['$' for help]\r\n" : "start\necho: External Reset\n"); }
    void say(const QByteArray &bytes) { pty.write(bytes); }
    // A long reply, written as fast as the other end takes it.
    void sayAll(QByteArray bytes)
    {
        while (!bytes.isEmpty() && pty.fd >= 0) {
            const ssize_t n = ::write(pty.fd, bytes.constData(), size_t(bytes.size()));
            if (n > 0)
                bytes.remove(0, int(n));
            else
                QTest::qWait(1);
        }
    }
    void unplug()
    {
        delete m_notifier;
        m_notifier = nullptr;
        pty.stop();
    }
    // What came after the link's own set-up.
    QByteArray jobWire() const { return wire.contains("G90\n") ? wire.mid(wire.indexOf("G90\n")) : QByteArray(); }

private:
    QSocketNotifier *m_notifier = nullptr;
    QByteArray m_partial;
    std::deque<QByteArray> m_buffer;  // GRBL: lines received, not yet executed
    int m_buffered = 0;
    int m_received = 0;  // GRBL: job lines received
    QTimer m_tick;
    QElapsedTimer m_clock;
    qint64 m_runUntil = 0;
    double m_x = 1;

    bool moving() const { return !m_buffer.empty() || (m_clock.isValid() && m_clock.elapsed() < m_runUntil); }

    void pull()
    {
        char chunk[4096];
        for (ssize_t n; pty.fd >= 0 && (n = ::read(pty.fd, chunk, sizeof chunk)) > 0;)
            for (ssize_t i = 0; i < n; ++i)
                take(chunk[i]);
    }

    void take(char c)
    {
        wire.append(c);
        if (silent)
            return;
        if (kind == Grbl && (c == '?' || c == '!' || c == '~' || c == '\x18')) {
            realtime(c);
            return;
        }
        if (kind == Grbl && ++m_buffered > GrblBuffer)  // the line end takes its byte too
            overflowed = true;
        maxBuffered = qMax(maxBuffered, m_buffered);
        if (c != '\n') {
            m_partial.append(c);
            return;
        }
        const QByteArray line = m_partial.trimmed();
        m_partial.clear();
        if (kind == Grbl) {
            lines << line;
            if (line != "G90" && !line.startsWith('$') && loseFromLine && ++m_received >= loseFromLine) {
                m_buffered -= line.size() + 1;  // never reaches the planner, never answered
                if (!lostAt.isValid())
                    lostAt.start();
                return;
            }
            m_buffer.push_back(line);
            if (!m_tick.isActive() && !held)
                m_tick.start(ackDelayMs);
        } else {
            marlinLine(line);
        }
    }

    void realtime(char c)
    {
        if (c == '?') {
            const char *state = locked ? "Alarm" : held ? "Hold:0" : moving() ? "Run" : "Idle";
            idleSinceOk = idleSinceOk || QByteArray(state) == "Idle";
            if (m_clock.isValid() && m_clock.elapsed() < m_runUntil)
                m_x += 0.1;  // moving on after the last ok
            say(QByteArray("<") + state + "|MPos:" + QByteArray::number(m_x, 'f', 3) + ",2.000,0.000|FS:0,0>\r\n");
        } else if (c == '!') {
            held = true;
            m_tick.stop();
        } else if (c == '~') {
            held = false;
            if (!m_buffer.empty())
                m_tick.start(ackDelayMs);
        } else {
            const bool alarm = alarmOnReset && moving();
            if (alarm)
                say("ALARM:3\r\n");
            held = false;
            m_buffer.clear();
            m_buffered = 0;
            m_runUntil = 0;
            m_tick.stop();
            banner();
            if (alarm) {
                locked = true;
                say("[MSG:'$H'|'$X' to unlock]\r\n");
            }
        }
    }

    // GRBL: executes the oldest buffered line and answers it.
    void execute()
    {
        if (m_buffer.empty() || held)
            return;
        const QByteArray line = m_buffer.front();
        m_buffer.pop_front();
        m_buffered -= line.size() + 1;
        if (overflowed) {
            say("error:overflow\r\n");
        } else if (line == "$$") {
            say("$0=10\r\n$30=" + QByteArray::number(grblMaxPower) + "\r\n$32=1\r\nok\r\n");
        } else if (line.startsWith("$X")) {
            locked = false;
            say("[MSG:Caution: Unlocked]\r\nok\r\n");
        } else if (locked) {
            say("error:9\r\n");
        } else {
            if (line != "G90" && !line.startsWith('$'))
                ++jobLines;
            if (alarmAtLine && jobLines == alarmAtLine) {
                m_buffer.clear();
                m_buffered = 0;
                say("ALARM:1\r\n[MSG:Reset to continue]\r\n");
                return;
            }
            say(errorAtLine && jobLines == errorAtLine ? "error:20\r\n" : "ok\r\n");
            idleSinceOk = false;
            if (runAfterMs) {
                if (!m_clock.isValid())
                    m_clock.start();
                m_runUntil = m_clock.elapsed() + runAfterMs;
            }
        }
        if (!m_buffer.empty())
            m_tick.start(ackDelayMs);
    }

    void marlinLine(QByteArray line)
    {
        int number = -1;
        if (line.startsWith('N')) {
            const int star = line.lastIndexOf('*');
            const int blank = line.indexOf(' ');
            number = line.mid(1, blank - 1).toInt();
            unsigned char sum = 0;
            for (int i = 0; i < star; ++i)
                sum ^= static_cast<unsigned char>(line[i]);
            if (star < 0 || line.mid(star + 1).toInt() != sum) {
                say("Error:checksum mismatch, Last Line: " + QByteArray::number(number - 1)
                    + "\nResend: " + QByteArray::number(number) + "\nok\n");
                return;
            }
            line = line.mid(blank + 1, star - blank - 1);
        }
        if (number > 0 && number == resendAtNumber) {
            resendAtNumber = 0;
            say("Error:Line Number is not Last Line Number+1, Last Line: " + QByteArray::number(number - 1)
                + "\nResend: " + QByteArray::number(number) + "\nok\n");
            return;
        }
        lines << line;
        if (line == "M115") {
            say("FIRMWARE_NAME:Marlin 2.1 (stand-in)\nok\n");
            return;
        }
        if (line.isEmpty() || line == "?") {
            say("echo:Unknown command: \"" + line + "\"\nok\n");
            return;
        }
        if (line != "G90" && number > 0)
            ++jobLines;
        if (loseFromLine && jobLines >= loseFromLine && number > 0 && line != "G90") {
            if (!lostAt.isValid())
                lostAt.start();
            return;
        }
        if (line == "M400" && runAfterMs) {
            say("echo:busy: processing\n");
            QTimer::singleShot(runAfterMs, this, [this] {
                idleSinceOk = true;
                say("ok\n");
            });
            return;
        }
        idleSinceOk = false;
        if (busyAtLine && jobLines == busyAtLine && number > 0)
            say("echo:busy: processing\necho:busy: processing\necho:busy: processing\n");
        say(errorAtLine && jobLines == errorAtLine && number > 0 ? "Error:Printer halted. kill() called!\n" : "ok\n");
    }
};

#endif
