// A connection to a GRBL or Marlin board on any serial device: detection, flow control, status.
// Event driven on QSerialPort; every line written goes through one queue that never overfills the board.
#ifndef MACHINELINK_H
#define MACHINELINK_H

#include "machinereply.h"

#include <QByteArray>
#include <QElapsedTimer>
#include <QHash>
#include <QObject>
#include <QTimer>
#include <deque>

class QSerialPort;

class MachineLink : public QObject
{
    Q_OBJECT
public:
    enum State { Closed, Detecting, Configuring, Ready };
    // Tag of a line that belongs to nobody in particular (console, jog, frame).
    static constexpr int Manual = -1;
    // GRBL's receive buffer is 128 bytes; one is kept free.
    static constexpr int GrblWindow = 127;
    static constexpr int DefaultBaud = 115200;

    explicit MachineLink(QObject *parent = nullptr);
    ~MachineLink() override;

    // PORT is a port name ("ttyUSB0") or any device path. FORCED skips the detection.
    // False (with a message) when the port cannot be opened; detection goes on afterwards.
    bool open(const QString &port, int baud = DefaultBaud, Firmware forced = Firmware::Unknown,
              QString *error = nullptr);
    void close();

    State state() const { return m_state; }
    bool isOpen() const { return m_state != Closed; }
    Firmware firmware() const { return m_firmware; }
    QString portName() const { return m_portName; }
    int grblMaxPower() const { return m_grblMaxPower; }  // $30
    int answerTimeout() const { return m_answerTimeoutMs; }
    void setAnswerTimeout(int ms) { m_answerTimeoutMs = ms; }
    void setDetectTimes(int bannerMs, int probeMs) { m_bannerWaitMs = bannerMs, m_probeWaitMs = probeMs; }

    // Queues one line (no line end) under flow control; TAG comes back with its answer.
    void sendLine(const QByteArray &line, int tag = Manual);
    // Writes one real-time byte past the queue (GRBL '?', '!', '~', 0x18).
    void sendRealtime(char byte);
    // Writes BYTES at once, outside the flow control (a stop must not wait behind the job).
    void writeNow(const QByteArray &bytes);
    // Drops every queued line that has not gone out yet; returns the lowest tag among
    // them that is not Manual, or -1.
    int clearQueue();
    // Forgets the lines the board has not answered (after a stop): their answers will not
    // come, or mean nothing now.
    void forgetUnanswered();
    // GRBL: writes a soft reset (0x18) and forgets the unanswered lines. Queued lines wait until
    // the board is back: its banner, then a status report; resetDone() gives that report's
    // state ("Idle", "Alarm"...), or nothing when the board did not come back in time.
    void softReset();
    bool resetting() const { return m_waitBanner || m_resetStatusDue; }

    int queuedLines() const { return int(m_queue.size()); }
    int unansweredLines() const { return int(m_inFlight.size()); }
    int unansweredBytes() const { return m_inFlightBytes; }
    // Sum of unanswered bytes sampled at each write, for the window-fill figure.
    double meanWindowFill() const { return m_fillSamples ? m_fillSum / m_fillSamples : 0; }

    // Marlin: asks for the position once (GRBL reports it by itself).
    void requestPosition();
    // GRBL: asks for a status report now ('?').
    void requestStatus();
    // GRBL status requests written and reports received since opening: a report counts as
    // newer than a moment when more reports have come than requests had been written then.
    qint64 statusRequests() const { return m_statusRequests; }
    qint64 statusReports() const { return m_statusReports; }
    // The last status report: state and position; current when the board answered the
    // requests written since, but for the last one.
    QByteArray lastState() const { return m_lastState; }
    double lastX() const { return m_lastX; }
    double lastY() const { return m_lastY; }
    bool statusCurrent() const { return m_statusReports > 0 && m_requestsSinceReport <= 1; }

signals:
    void stateChanged(MachineLink::State state);
    void firmwareDetected(Firmware firmware);
    void bytesSent(const QByteArray &bytes);            // for the console
    void lineReceived(const QByteArray &line);          // every reply line, for the console
    void answered(int tag, const MachineReply &reply);  // ok or error for a queued line
    void fault(const MachineReply &reply);              // alarm, or a Marlin error that is not a line fault
    void statusChanged(const QByteArray &state, double x, double y);
    void spaceFreed();                    // the queue can take more
    void failed(const QString &message);  // opening, detection or a time-out
    // The oldest unanswered line (TAG, LINE as written) made no progress for MS milliseconds:
    // no answer, no movement in the status reports, no "busy" from Marlin. Follows failed();
    // the unanswered lines are forgotten by then.
    void answerTimedOut(int tag, const QByteArray &line, int ms);
    void resetDone(const QByteArray &state);
    void connectionLost(const QString &message);

private slots:
    void onReadyRead();
    void onPortError(int error);
    void onDetectTimeout();
    void onAnswerTimeout();
    void onPoll();
    void onResetTimeout();

private:
    struct Sent
    {
        int bytes;
        int tag;
        int number;  // Marlin line number, 0 when not numbered
        QByteArray text;
    };
    void handleLine(const QByteArray &line);
    void detected(Firmware firmware);
    void configure();
    void setState(State state);
    void pump();
    void write(const QByteArray &bytes);
    QByteArray frame(const QByteArray &line, int *number);
    void lose(const QString &message);
    QString lossReason(int error);

    QSerialPort *m_port = nullptr;
    State m_state = Closed;
    Firmware m_firmware = Firmware::Unknown;
    Firmware m_forced = Firmware::Unknown;
    QString m_portName;
    MachineReplies::LineSplitter m_splitter;
    std::deque<std::pair<QByteArray, int>> m_queue;
    std::deque<Sent> m_inFlight;
    int m_inFlightBytes = 0;
    int m_lineNumber = 0;
    QHash<int, QByteArray> m_history;  // Marlin: recent numbered lines, for Resend
    int m_resendFrom = 0;
    bool m_waitBanner = false;
    bool m_resetStatusDue = false;
    qint64 m_statusRequests = 0;
    qint64 m_statusReports = 0;
    int m_requestsSinceReport = 0;
    QByteArray m_lastState;
    double m_lastX = 0, m_lastY = 0, m_lastZ = 0;
    int m_probeStep = 0;
    int m_grblMaxPower = 1000;
    int m_answerTimeoutMs = 30000;
    int m_bannerWaitMs = 2000;
    int m_probeWaitMs = 1000;
    double m_fillSum = 0;
    qint64 m_fillSamples = 0;
    QTimer m_detectTimer;
    QTimer m_answerTimer;
    QTimer m_pollTimer;
    QTimer m_resetTimer;
};

#endif
