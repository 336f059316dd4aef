// Streams a G-code file to the machine link: flow control, progress, pause, resume and stop,
// firmware errors and alarms, and the beam turned off on every way a job can end early.
#include "jobrunner.h"

#include "gcodetokenizer.h"
#include "grblrewrite.h"
#include "motionmodel.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace {

// Lines kept waiting in the link's queue: enough to refill GRBL's window at once,
// few enough that a pause or stop leaves nothing much behind.
constexpr int FeedAhead = 24;
constexpr qint64 ReportEveryMs = 100;
constexpr double MaxClockSeconds = 99999.0 * 3600 + 3599;  // "99999:59:59"
// Tags of the runner's own lines, past any job line.
constexpr int FinishTag = 1 << 30;  // Marlin's M400 after the last line
constexpr int UnlockTag = FinishTag + 1;
constexpr int FrameTag = FinishTag + 2;      // the beam-off after the frame
constexpr int FrameWaitTag = FinishTag + 3;  // Marlin's M400 after it
constexpr double MovedMm = 0.0005;

// Follows the moves of the file to give each line its share of the job's time.
class MoveClock
{
public:
    double seconds(const QByteArray &line)
    {
        GcodeTokenizer::Word words[GcodeTokenizer::MaxWords];
        int count = 0;
        GcodeTokenizer::split(line.constData(), line.size(), words, &count);
        double x = m_x, y = m_y;
        bool move = false;
        for (int i = 0; i < count; ++i) {
            const GcodeTokenizer::Word &w = words[i];
            if (w.letter == 'G' && (w.value == 0 || w.value == 1))
                m_motion = true;
            else if (w.letter == 'G' && w.value == 90)
                m_relative = false;
            else if (w.letter == 'G' && w.value == 91)
                m_relative = true;
            else if (w.letter == 'G' && w.value == 28)
                x = 0, y = 0, move = true;
            else if (w.letter == 'F' && w.value > 0)
                m_feed = w.value;
            else if (w.letter == 'X')
                x = m_relative ? m_x + w.value : w.value, move = true;
            else if (w.letter == 'Y')
                y = m_relative ? m_y + w.value : w.value, move = true;
        }
        if (!move || !m_motion)
            return 0;
        const double d = std::hypot(x - m_x, y - m_y);
        m_x = x, m_y = y;
        // The generators' own reckoning of a move, so the time left matches their estimate.
        return MotionModel::classicMoveSeconds<double>(d, m_feed);
    }

private:
    double m_x = 0, m_y = 0, m_feed = 1000;
    bool m_relative = false, m_motion = true;
};

bool isPowerLine(const QByteArray &text)
{
    return text.startsWith("M106") || text.startsWith("M107") || text.startsWith("M3") || text.startsWith("M4")
           || text.startsWith("M5");
}

}  // namespace

JobRunner::JobRunner(MachineLink *link, QObject *parent) : QObject(parent), m_link(link)
{
    connect(m_link, &MachineLink::answered, this, &JobRunner::onAnswered);
    connect(m_link, &MachineLink::fault, this, &JobRunner::onFault);
    connect(m_link, &MachineLink::connectionLost, this, &JobRunner::onConnectionLost);
    connect(m_link, &MachineLink::spaceFreed, this, &JobRunner::feed);
    connect(m_link, &MachineLink::answerTimedOut, this, &JobRunner::onAnswerTimedOut);
    connect(m_link, &MachineLink::statusChanged, this, &JobRunner::onStatus);
    connect(m_link, &MachineLink::resetDone, this, &JobRunner::onResetDone);
    // Closed while waiting for the board to come back (Disconnect after Stop): nothing more will come.
    connect(m_link, &MachineLink::stateChanged, this, [this](MachineLink::State state) {
        if (state == MachineLink::Closed && m_state == Stopping)
            finish();
    });
    m_finishTimer.setSingleShot(true);
    connect(&m_finishTimer, &QTimer::timeout, this, &JobRunner::onFinishTimeout);
}

JobRunner::~JobRunner()
{
    // Closing the program in the middle of a job: the beam goes off before the port closes.
    if (isActive() && m_state != Stopping && m_link->isOpen()) {
        m_link->disconnect(this);
        haltMachine();
    }
}

bool JobRunner::load(const QString &path, QString *error)
{
    QFile file(path);
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly)) {
        *error = tr("Cannot read %1").arg(path);
        return false;
    }
    return loadText(file.readAll(), path, error);
}

bool JobRunner::loadText(const QByteArray &text, const QString &name, QString *error)
{
    if (isActive()) {
        *error = tr("A job is running");
        return false;
    }
    QVector<Line> lines;
    QVector<double> before{0};
    MoveClock clock;
    GcodeTokenizer::Word words[GcodeTokenizer::MaxWords];
    int fileLine = 0;
    for (int start = 0; start < text.size();) {
        int end = text.indexOf('\n', start);
        if (end < 0)
            end = text.size();
        ++fileLine;
        const QByteArray code = GcodeTokenizer::stripComments(text.constData() + start, end - start);
        start = end + 1;
        if (code.isEmpty())
            continue;
        int count = 0;
        const bool words_ok = GcodeTokenizer::split(code.constData(), code.size(), words, &count);
        if (code.contains('\0') || (!words_ok && !code.startsWith('$') && code.simplified().toUpper() != "G28 X Y")) {
            *error = tr("%1 is not G-code (line %2)").arg(name).arg(fileLine);
            return false;
        }
        lines.push_back({code, fileLine, GrblRewrite::isProgramPause(code)});
        // A move of absurd length would swamp the total or make it infinite: no line counts for
        // more than the clock can show.
        const double seconds = clock.seconds(code);
        before.push_back(before.last() + (seconds > 0 ? std::min(seconds, MaxClockSeconds) : 0));
    }
    if (lines.isEmpty()) {
        *error = tr("%1 holds no G-code").arg(name);
        return false;
    }
    m_lines = lines;
    m_secondsBefore = before;
    m_programEstimate = 0;
    m_state = Idle;
    m_next = m_acked = 0;
    m_lastAckIndex = -1;
    return true;
}

bool JobRunner::start()
{
    if (m_lines.isEmpty() || isActive() || m_link->state() != MachineLink::Ready)
        return false;
    m_next = m_acked = 0;
    m_lastAckIndex = -1;
    m_answered = QVector<bool>(m_lines.size(), false);
    m_failure = NoFailure;
    m_message.clear();
    m_frameDue = false;
    m_frameSettling = m_waitIdle = false;
    m_beamOffSent = false;
    m_alarmAfterStop = m_beamOffAfterUnlock = false;
    m_lastPower.clear();
    // The clock starts with the first line sent: the frame is part of the job's time.
    m_clock.start();
    m_elapsedBefore = 0;
    setState(Running);
    // Jogging leaves the machine in relative moves; the program's jobs are absolute.
    m_link->sendLine("G90");
    feed();
    return true;
}

void JobRunner::feed()
{
    // Sending a line makes the link ask for more at once; that call finds this loop running.
    if (m_state != Running || m_feeding || m_frameSettling)
        return;
    m_feeding = true;
    feedLines();
    m_feeding = false;
    if (m_state == Running && !m_frameSettling && m_next == m_lines.size() && m_acked == m_lines.size())
        beginFinishing();
}

void JobRunner::feedLines()
{
    const bool grbl = m_link->firmware() == Firmware::Grbl;
    const int ahead = grbl ? FeedAhead : 1;  // Marlin: a pause leaves at most one line behind
    while (m_next < m_lines.size() && m_link->queuedLines() < ahead) {
        const Line &line = m_lines[m_next];
        if (line.pause) {
            if (m_pauseAtFrame) {
                // Wait until the frame has been traced, then hold with the beam off.
                if (m_link->queuedLines() > 0 || m_link->unansweredLines() > 0) {
                    m_frameDue = true;
                    return;
                }
                // The beam goes off; the pause begins once the machine has finished the frame.
                m_frameDue = false;
                m_answered[m_next] = true;
                ++m_acked, m_lastAckIndex = m_next, ++m_next;
                m_frameSettling = true;
                m_link->sendLine(laserOffText(), FrameTag);
                return;
            }
            m_answered[m_next] = true;
            ++m_acked, ++m_next;
            continue;
        }
        const QByteArray text = grbl ? GrblRewrite::line(line.text, m_link->grblMaxPower()) : line.text;
        if (isPowerLine(text))
            m_lastPower = text;
        ++m_next;
        m_link->sendLine(text, m_next - 1);
        if (m_state != Running)
            return;
    }
}

void JobRunner::onAnswered(int tag, const MachineReply &reply)
{
    if (tag == FinishTag) {
        if (m_state != Finishing)
            return;
        if (reply.kind == MachineReply::Error)
            end(Failed, FirmwareError, tr("After the last line: %1").arg(QString::fromUtf8(reply.text)), true);
        else
            end(Done, NoFailure, tr("Job done: %1 lines").arg(m_lines.size()), false);
        return;
    }
    if (tag == FrameTag || tag == FrameWaitTag) {
        if (m_state != Running || !m_frameSettling)
            return;
        if (m_link->firmware() == Firmware::Grbl)
            waitForIdle();
        else if (tag == FrameTag)
            m_link->sendLine("M400", FrameWaitTag);  // Marlin answers it once the moves are done
        else
            enterFramePause();
        return;
    }
    if (tag == UnlockTag) {
        if (reply.kind == MachineReply::Ok) {
            m_alarmAfterStop = false;
            if (m_beamOffAfterUnlock)
                m_link->sendLine(laserOffText());
            m_beamOffAfterUnlock = false;
        }
        return;
    }
    if (tag >= 0 && tag < m_lines.size() && isActive() && !m_answered[tag]) {
        m_answered[tag] = true;
        ++m_acked;
        m_lastAckIndex = qMax(m_lastAckIndex, tag);
        if (reply.kind == MachineReply::Error) {
            const QString text = QString::fromUtf8(reply.text);
            const QString explained =
                reply.code > 0 ? QStringLiteral("%1 (%2)").arg(text, MachineReplies::grblErrorText(reply.code)) : text;
            if (!m_continueOnError) {
                end(Failed, FirmwareError, tr("Line %1: %2").arg(m_lines[tag].fileLine).arg(explained), true);
                return;
            }
            emit lineFailed(m_lines[tag].fileLine, explained);
        }
        reportProgress(false);
    }
    afterAnswer();
}

void JobRunner::afterAnswer()
{
    const bool drained = m_link->unansweredLines() == 0 && m_link->queuedLines() == 0;
    if (m_state == Running && m_frameDue && drained)
        feed();
    else if (m_state == Running && !m_frameSettling && m_acked == m_lines.size())
        beginFinishing();
    else if (m_state == Paused && !m_beamOffSent && m_link->firmware() != Firmware::Grbl && drained) {
        m_beamOffSent = true;
        m_link->sendLine(laserOffText());
    }
}

void JobRunner::onFault(const MachineReply &reply)
{
    // While stopping, the board's state comes with its first status report after the reset.
    if (!isActive() || m_state == Stopping)
        return;
    // The board was working on the oldest line it had not answered.
    int index = m_lastAckIndex + 1;
    while (index < m_lines.size() - 1 && m_answered[index])
        ++index;
    index = qMin(index, m_lines.size() - 1);
    const QString text = QString::fromUtf8(reply.text);
    if (reply.kind == MachineReply::Alarm)
        end(Failed, Alarm,
            tr("Line %1: %2 - %3 Unlock the machine before going on.")
                .arg(m_lines[index].fileLine)
                .arg(text, MachineReplies::grblAlarmText(reply.code)),
            true);
    else
        end(Failed, FirmwareError, tr("Line %1: %2").arg(m_lines[index].fileLine).arg(text), true);
}

void JobRunner::onConnectionLost(const QString &message)
{
    if (m_state == Stopping)
        finish();
    else if (isActive())
        end(Failed, ConnectionLost, tr("%1; last acknowledged line %2").arg(message).arg(lastAcknowledgedFileLine()),
            false);
}

QString JobRunner::machineReport() const
{
    if (m_link->firmware() != Firmware::Grbl)
        return QString();
    if (!m_link->statusCurrent())
        return tr("the machine does not answer status requests");
    return tr("the machine reports %1 at X%2 Y%3")
        .arg(QString::fromUtf8(m_link->lastState()))
        .arg(m_link->lastX(), 0, 'f', 2)
        .arg(m_link->lastY(), 0, 'f', 2);
}

void JobRunner::onAnswerTimedOut(int tag, const QByteArray &line, int ms)
{
    if (!isActive() || m_state == Stopping)
        return;
    const QString seconds = QString::number(ms / 1000.0);
    QString text = tag >= 0 && tag < m_lines.size()
                       ? tr("No answer to line %1 for %2 s").arg(m_lines[tag].fileLine).arg(seconds)
                       : tr("No answer to %1 for %2 s").arg(QString::fromUtf8(line), seconds);
    const QString report = machineReport();
    if (!report.isEmpty())
        text += QStringLiteral("; ") + report;
    if (m_link->firmware() == Firmware::Grbl && m_link->statusCurrent() && m_link->lastState() == "Idle")
        text += tr(". Idle with lines unanswered: a line was lost on the way, or the firmware dropped it");
    end(Failed, Timeout, text, true);
}

void JobRunner::beginFinishing()
{
    setState(Finishing);
    reportProgress(true);
    if (m_link->firmware() == Firmware::Grbl) {
        waitForIdle();
    } else {
        // Marlin answers M400 once every move is done.
        m_link->sendLine("M400", FinishTag);
    }
}

void JobRunner::waitForIdle()
{
    // Finished when a report asked for from now on says Idle; until then the machine may still be moving.
    m_waitIdle = true;
    m_statusMark = m_link->statusRequests();
    m_seenX = m_link->lastX(), m_seenY = m_link->lastY();
    m_link->requestStatus();
    m_finishTimer.start(m_link->answerTimeout());
}

void JobRunner::enterFramePause()
{
    m_frameSettling = m_waitIdle = false;
    m_finishTimer.stop();
    m_elapsedBefore += m_clock.restart();
    setState(FramePause);
    reportProgress(true);
}

void JobRunner::onStatus(const QByteArray &state, double x, double y)
{
    if (!m_waitIdle || !isActive() || m_state == Stopping)
        return;
    if (std::fabs(x - m_seenX) > MovedMm || std::fabs(y - m_seenY) > MovedMm || MachineReplies::isWaitingState(state))
        m_finishTimer.start(m_link->answerTimeout());  // still moving, or held: the wait goes on
    m_seenX = x, m_seenY = y;
    if (m_link->statusReports() <= m_statusMark || state != "Idle")
        return;
    m_waitIdle = false;
    if (m_state == Finishing)
        end(Done, NoFailure, tr("Job done: %1 lines").arg(m_lines.size()), false);
    else if (m_state == Running && m_frameSettling)
        enterFramePause();
}

void JobRunner::onFinishTimeout()
{
    if (m_state != Finishing && !(m_state == Running && m_frameSettling))
        return;
    end(Failed, Timeout,
        tr("The machine did not finish within %1 s of the last line; %2")
            .arg(m_link->answerTimeout() / 1000.0)
            .arg(machineReport()),
        true);
}

void JobRunner::onResetDone(const QByteArray &state)
{
    if (m_state != Stopping)
        return;
    if (state.startsWith("Alarm")) {
        // Any line now would be refused (error:9); the beam-off waits for the unlock.
        m_alarmAfterStop = m_beamOffAfterUnlock = true;
        if (m_failure != Alarm)
            m_message += tr("; the machine is in alarm after the stop: unlock ($X) before the next job");
    } else {
        // Back and unlocked (or silent): the beam-off goes out now.
        m_link->sendLine(laserOffText());
    }
    finish();
}

void JobRunner::pause()
{
    // While the frame finishes, the pause after it is only moments away.
    if (m_state != Running || m_frameSettling)
        return;
    m_elapsedBefore += m_clock.restart();
    setState(Paused);
    // Lines not yet written go out again on resume.
    const int unsent = m_link->clearQueue();
    if (unsent >= 0 && unsent < m_lines.size()) {
        m_next = unsent;
        // A power line taken back from the queue never reached the board: the power in
        // force is the last one written before the first line that goes out again.
        m_lastPower.clear();
        const bool grbl = m_link->firmware() == Firmware::Grbl;
        for (int i = m_next - 1; i >= 0 && m_lastPower.isEmpty(); --i) {
            const QByteArray text = grbl ? GrblRewrite::line(m_lines[i].text, m_link->grblMaxPower()) : m_lines[i].text;
            if (isPowerLine(text))
                m_lastPower = text;
        }
    }
    if (m_link->firmware() == Firmware::Grbl)
        m_link->sendRealtime('!');  // GRBL's laser mode turns the beam off in a hold
    else
        afterAnswer();  // Marlin: the beam goes off once the lines already sent are done
}

void JobRunner::resume()
{
    if (m_state == Paused) {
        if (m_link->firmware() == Firmware::Grbl)
            m_link->sendRealtime('~');
        else if (!m_lastPower.isEmpty())
            m_link->sendLine(m_lastPower);
    } else if (m_state != FramePause) {
        return;
    }
    m_beamOffSent = false;
    m_clock.restart();
    setState(Running);
    feed();
}

void JobRunner::unlock()
{
    if (isActive() || !m_link->isOpen())
        return;
    if (m_link->firmware() == Firmware::Grbl)
        m_link->sendLine("$X", UnlockTag);
    else
        m_link->sendLine("M999");
}

void JobRunner::stop()
{
    if (isActive() && m_state != Stopping)
        end(Stopped, NoFailure, tr("Stopped by the user at line %1").arg(lastAcknowledgedFileLine()), true);
}

void JobRunner::haltMachine()
{
    m_link->clearQueue();
    if (m_link->firmware() == Firmware::Grbl) {
        // A soft reset empties GRBL's buffer and stops the beam.
        m_link->softReset();
    } else {
        // Quick stop, then the beam off, ahead of anything still buffered.
        m_link->forgetUnanswered();
        m_link->writeNow("M410\n" + laserOffText() + '\n');
    }
}

void JobRunner::end(State state, Failure failure, const QString &message, bool beamOff)
{
    m_finishTimer.stop();
    m_frameSettling = m_waitIdle = false;
    if (m_clock.isValid() && (m_state == Running || m_state == Finishing))
        m_elapsedBefore += m_clock.elapsed();
    m_clock.invalidate();
    m_failure = failure;
    m_message = message;
    m_endState = state;
    if (beamOff && m_link->isOpen()) {
        haltMachine();
        if (m_link->firmware() == Firmware::Grbl) {
            // The beam-off, and the word on an alarm, wait until the board is back from its reset.
            setState(Stopping);
            reportProgress(true);
            return;
        }
    }
    finish();
}

void JobRunner::finish()
{
    setState(m_endState);
    reportProgress(true);
    emit finished();
}

void JobRunner::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    emit stateChanged(state);
}

void JobRunner::reportProgress(bool force)
{
    const qint64 now = elapsedMs();
    if (!force && now - m_lastReport < ReportEveryMs)
        return;
    m_lastReport = now;
    emit progressChanged();
}

int JobRunner::lastAcknowledgedFileLine() const { return m_lastAckIndex >= 0 ? m_lines[m_lastAckIndex].fileLine : 0; }

qint64 JobRunner::elapsedMs() const
{
    const bool counting = m_state == Running || m_state == Finishing;
    return m_elapsedBefore + (m_clock.isValid() && counting ? m_clock.elapsed() : 0);
}

int JobRunner::percent() const
{
    if (m_lines.isEmpty())
        return 0;
    const int share = int(qint64(m_acked) * 100 / m_lines.size());
    return m_state == Done ? 100 : qMin(share, 99);
}

double JobRunner::remainingSeconds() const
{
    if (m_secondsBefore.isEmpty())
        return 0;
    const double all = m_secondsBefore.last();
    const double left = all - m_secondsBefore[m_lastAckIndex + 1];
    if (m_programEstimate > 0)
        return all > 0 ? m_programEstimate * left / all : m_programEstimate * (1.0 - double(m_acked) / m_lines.size());
    return left;
}

QByteArray JobRunner::laserOffText() const
{
    const bool grbl = m_link->firmware() == Firmware::Grbl;
    if (!m_laserOff.isEmpty())
        return grbl ? GrblRewrite::line(m_laserOff, m_link->grblMaxPower()) : m_laserOff;
    return grbl ? QByteArrayLiteral("M5") : QByteArrayLiteral("M107");
}

QString JobRunner::clockText(double seconds)
{
    // A file with absurd coordinates can give any time at all; beyond the cap it is shown as the cap.
    const qint64 t = seconds > 0 ? qint64(std::min(seconds, MaxClockSeconds) + 0.5) : 0;
    const QString minSec = QStringLiteral("%1:%2").arg(t / 60 % 60).arg(t % 60, 2, 10, QLatin1Char('0'));
    if (t < 3600)
        return QStringLiteral("%1:%2").arg(t / 60).arg(t % 60, 2, 10, QLatin1Char('0'));
    return QStringLiteral("%1:%2").arg(t / 3600).arg(minSec.rightJustified(5, QLatin1Char('0')));
}
