// Streams a G-code file to the machine link: flow control, progress, pause, resume and stop,
// firmware errors and alarms, and the beam turned off on every way a job can end early.
#ifndef JOBRUNNER_H
#define JOBRUNNER_H

#include "machinelink.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <QVector>

class JobRunner : public QObject
{
    Q_OBJECT
public:
    // Finishing: every line is acknowledged, the machine is still moving (GRBL: until it reports
    // Idle; Marlin: until M400 is answered). Stopping: GRBL was reset and is not back yet.
    enum State { Idle, Running, Paused, FramePause, Done, Stopped, Failed, Finishing, Stopping };
    enum Failure { NoFailure, FirmwareError, Alarm, ConnectionLost, Timeout };

    struct Line
    {
        QByteArray text;  // without comments or line end
        int fileLine;     // 1-based line number in the file
        bool pause;       // the program pause after the frame
    };

    explicit JobRunner(MachineLink *link, QObject *parent = nullptr);
    ~JobRunner() override;

    // Reads the job. False, with a message naming the file, when it is missing or not G-code.
    bool load(const QString &path, QString *error);
    // The same from text already in memory (NAME is used in messages).
    bool loadText(const QByteArray &text, const QString &name, QString *error);

    void setContinueOnError(bool on) { m_continueOnError = on; }
    void setPauseAtFrame(bool on) { m_pauseAtFrame = on; }
    // What turns the beam off (GRBL gets it rewritten); empty means the firmware's own,
    // GRBL "M5", Marlin "M107".
    void setLaserOffText(const QByteArray &text) { m_laserOff = text.trimmed(); }
    // The generator's estimate for this job, when known: the remaining time is then its share
    // of it, spread over the lines by their moves. Without it the moves give the time.
    void setProgramEstimate(double seconds) { m_programEstimate = seconds; }

    bool start();
    void pause();
    void resume();
    void stop();
    // Clears an alarm ($X on GRBL, M999 on Marlin); the beam-off held back by the alarm follows.
    void unlock();

    State state() const { return m_state; }
    bool isActive() const
    {
        return m_state == Running || m_state == Paused || m_state == FramePause || m_state == Finishing
               || m_state == Stopping;
    }
    // The board came back from the stop in Alarm: nothing runs until it is unlocked.
    bool alarmAfterStop() const { return m_alarmAfterStop; }
    // Acknowledged lines in percent; 99 at most until the machine has finished.
    int percent() const;
    Failure failure() const { return m_failure; }
    QString message() const { return m_message; }
    int total() const { return m_lines.size(); }
    int sent() const { return m_next; }
    int acknowledged() const { return m_acked; }
    int lastAcknowledgedFileLine() const;
    qint64 elapsedMs() const;
    double estimatedSeconds() const { return m_secondsBefore.isEmpty() ? 0 : m_secondsBefore.last(); }
    double remainingSeconds() const;
    QByteArray laserOffText() const;
    // "0:41", "12:05", "1:02:03".
    static QString clockText(double seconds);
    const QVector<Line> &lines() const { return m_lines; }

signals:
    void stateChanged(JobRunner::State state);
    void progressChanged();
    // A firmware error that the job went on after (continue-on-error).
    void lineFailed(int fileLine, const QString &firmwareText);
    void finished();  // Done, Stopped or Failed: see state() and message()

private slots:
    void onAnswered(int tag, const MachineReply &reply);
    void onFault(const MachineReply &reply);
    void onConnectionLost(const QString &message);
    void onAnswerTimedOut(int tag, const QByteArray &line, int ms);
    void onStatus(const QByteArray &state, double x, double y);
    void onResetDone(const QByteArray &state);
    void onFinishTimeout();

private:
    void feed();
    void feedLines();
    void afterAnswer();
    void setState(State state);
    void beginFinishing();
    void waitForIdle();
    void enterFramePause();
    void end(State state, Failure failure, const QString &message, bool beamOff);
    void finish();
    void haltMachine();
    QString machineReport() const;
    void reportProgress(bool force);

    MachineLink *m_link;
    QVector<Line> m_lines;
    QVector<double> m_secondsBefore;  // estimated seconds of the lines before each index (size total + 1)
    QVector<bool> m_answered;
    State m_state = Idle;
    State m_endState = Idle;  // what Stopping ends in
    Failure m_failure = NoFailure;
    QString m_message;
    int m_next = 0;
    int m_acked = 0;
    int m_lastAckIndex = -1;
    bool m_continueOnError = false;
    bool m_pauseAtFrame = true;
    bool m_frameDue = false;
    bool m_frameSettling = false;  // the beam-off after the frame is out; the pause follows when the machine rests
    bool m_waitIdle = false;       // GRBL: a status report of Idle is awaited
    bool m_feeding = false;
    bool m_beamOffSent = false;
    bool m_alarmAfterStop = false;
    bool m_beamOffAfterUnlock = false;
    qint64 m_statusMark = 0;  // status requests written when the last line was acknowledged
    QTimer m_finishTimer;
    double m_seenX = 0, m_seenY = 0;  // the last position reported while finishing
    QByteArray m_laserOff;
    double m_programEstimate = 0;
    QByteArray m_lastPower;  // Marlin: the power in force, restored on resume
    QElapsedTimer m_clock;
    qint64 m_elapsedBefore = 0;
    qint64 m_lastReport = -1000;
};

#endif
