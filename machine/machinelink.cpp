// A connection to a GRBL or Marlin board on any serial device: detection, flow control, status.
// GRBL gets character counting against its receive buffer, Marlin one numbered line per "ok".
#include "machinelink.h"

#include <QFileInfo>
#include <QSerialPort>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <unistd.h>

namespace {

constexpr int PollMs = 200;         // GRBL status about five times a second
constexpr int ResetSettleMs = 750;  // longest wait for a GRBL board to come back from a reset
constexpr int ConfigTag = -2;       // lines the link sends for itself
constexpr int HistoryLines = 32;    // Marlin lines kept for a Resend
constexpr int GrblMaxPowerSetting = 30;
constexpr int FlushMs = 500;
constexpr double MovedMm = 0.0005;  // less than GRBL's three decimals

QByteArray checksum(const QByteArray &text)
{
    unsigned char sum = 0;
    for (const char c : text)
        sum ^= static_cast<unsigned char>(c);
    return QByteArray::number(sum);
}

}  // namespace

MachineLink::MachineLink(QObject *parent) : QObject(parent)
{
    m_detectTimer.setSingleShot(true);
    m_answerTimer.setSingleShot(true);
    m_resetTimer.setSingleShot(true);
    m_pollTimer.setInterval(PollMs);
    connect(&m_detectTimer, &QTimer::timeout, this, &MachineLink::onDetectTimeout);
    connect(&m_answerTimer, &QTimer::timeout, this, &MachineLink::onAnswerTimeout);
    connect(&m_pollTimer, &QTimer::timeout, this, &MachineLink::onPoll);
    connect(&m_resetTimer, &QTimer::timeout, this, &MachineLink::onResetTimeout);
}

MachineLink::~MachineLink() { close(); }

bool MachineLink::open(const QString &port, int baud, Firmware forced, QString *error)
{
    close();
    m_port = new QSerialPort(this);
    m_port->setPortName(port);
    m_port->setBaudRate(baud);
    m_port->setDataBits(QSerialPort::Data8);
    m_port->setParity(QSerialPort::NoParity);
    m_port->setStopBits(QSerialPort::OneStop);
    m_port->setFlowControl(QSerialPort::NoFlowControl);
    if (!m_port->open(QIODevice::ReadWrite)) {
        QString message;
        switch (m_port->error()) {
        case QSerialPort::DeviceNotFoundError:
            message = tr("No such device: %1").arg(port);
            break;
        case QSerialPort::PermissionError:
            message =
                tr("%1 is busy, or you may not open it (another program, or the port panel above, holds it)").arg(port);
            break;
        default:
            message = tr("Cannot open %1: %2").arg(port, m_port->errorString());
        }
        delete m_port;
        m_port = nullptr;
        if (error)
            *error = message;
        return false;
    }
    connect(m_port, &QSerialPort::readyRead, this, &MachineLink::onReadyRead);
    connect(m_port, &QSerialPort::errorOccurred, this, [this](QSerialPort::SerialPortError e) { onPortError(int(e)); });
    m_portName = port;
    m_forced = forced;
    m_firmware = Firmware::Unknown;
    m_probeStep = 0;
    m_grblMaxPower = 1000;
    m_fillSum = 0;
    m_fillSamples = 0;
    m_statusRequests = m_statusReports = 0;
    m_requestsSinceReport = 0;
    m_lastState.clear();
    setState(Detecting);
    m_detectTimer.start(m_bannerWaitMs);
    return true;
}

void MachineLink::close()
{
    m_detectTimer.stop();
    m_answerTimer.stop();
    m_pollTimer.stop();
    m_resetTimer.stop();
    m_resetStatusDue = false;
    m_queue.clear();
    m_inFlight.clear();
    m_inFlightBytes = 0;
    m_history.clear();
    m_resendFrom = 0;
    m_waitBanner = false;
    m_splitter.clear();
    if (m_port) {
        m_port->disconnect(this);
        // A last beam-off written just before closing must still reach the board.
        if (m_port->isOpen() && m_port->bytesToWrite() > 0)
            m_port->waitForBytesWritten(FlushMs);
        if (m_port->isOpen())
            m_port->close();
        m_port->deleteLater();
        m_port = nullptr;
    }
    setState(Closed);
}

void MachineLink::setState(State state)
{
    if (m_state == state)
        return;
    m_state = state;
    emit stateChanged(state);
}

void MachineLink::sendLine(const QByteArray &line, int tag)
{
    if (!m_port)
        return;
    m_queue.emplace_back(line, tag);
    pump();
}

void MachineLink::sendRealtime(char byte)
{
    if (!m_port)
        return;
    m_port->write(&byte, 1);
    if (byte == '?') {
        ++m_statusRequests;
        ++m_requestsSinceReport;
    } else {
        emit bytesSent(QByteArray(1, byte));
    }
}

void MachineLink::requestStatus()
{
    if (m_firmware == Firmware::Grbl)
        sendRealtime('?');
}

int MachineLink::clearQueue()
{
    int first = -1;
    for (const auto &queued : m_queue)
        if (queued.second >= 0 && (first < 0 || queued.second < first))
            first = queued.second;
    m_queue.clear();
    return first;
}

void MachineLink::forgetUnanswered()
{
    m_inFlight.clear();
    m_inFlightBytes = 0;
    m_resendFrom = 0;
    m_answerTimer.stop();
}

void MachineLink::softReset()
{
    if (!m_port)
        return;
    sendRealtime('\x18');
    forgetUnanswered();
    m_waitBanner = true;
    m_resetStatusDue = false;
    m_resetTimer.start(ResetSettleMs);
}

void MachineLink::onResetTimeout()
{
    if (!m_port || !resetting())
        return;
    m_waitBanner = m_resetStatusDue = false;
    emit resetDone(QByteArray());
    pump();
}

void MachineLink::writeNow(const QByteArray &bytes)
{
    if (m_port)
        write(bytes);
}

void MachineLink::requestPosition()
{
    if (m_firmware == Firmware::Marlin && m_state == Ready)
        sendLine("M114");
}

QByteArray MachineLink::frame(const QByteArray &line, int *number)
{
    *number = 0;
    if (m_firmware != Firmware::Marlin || m_state != Ready)
        return line + '\n';
    *number = ++m_lineNumber;
    const QByteArray body = 'N' + QByteArray::number(*number) + ' ' + line;
    const QByteArray framed = body + '*' + checksum(body) + '\n';
    m_history.insert(*number, framed);
    m_history.remove(*number - HistoryLines);
    return framed;
}

void MachineLink::pump()
{
    if (!m_port || resetting())
        return;
    bool sent = false;
    while (!m_queue.empty()) {
        if (m_firmware == Firmware::Marlin || m_firmware == Firmware::Unknown) {
            if (!m_inFlight.empty())
                break;
        }
        const std::pair<QByteArray, int> &next = m_queue.front();
        int number = 0;
        // The number goes on only when the line really leaves, so a cleared queue leaves no gap.
        if (m_firmware == Firmware::Grbl && !m_inFlight.empty() && m_inFlightBytes + next.first.size() + 1 > GrblWindow)
            break;
        const QByteArray bytes = frame(next.first, &number);
        if (m_inFlight.empty())
            m_answerTimer.start(m_answerTimeoutMs);
        m_inFlight.push_back({int(bytes.size()), next.second, number, next.first});
        m_inFlightBytes += bytes.size();
        m_queue.pop_front();
        write(bytes);
        sent = true;
    }
    if (sent && m_firmware == Firmware::Grbl) {
        m_fillSum += m_inFlightBytes;
        ++m_fillSamples;
    }
    if (sent || m_queue.empty())
        emit spaceFreed();
}

void MachineLink::write(const QByteArray &bytes)
{
    m_port->write(bytes);
    emit bytesSent(bytes);
}

void MachineLink::onReadyRead()
{
    if (!m_port)
        return;
    const QByteArray bytes = m_port->readAll();
    for (const QByteArray &line : m_splitter.feed(bytes)) {
        handleLine(line);
        if (!m_port)
            return;  // closed while handling
    }
}

void MachineLink::handleLine(const QByteArray &line)
{
    const MachineReply reply = MachineReplies::parse(line);
    if (reply.kind != MachineReply::Status)
        emit lineReceived(reply.text);
    // A board that talks is alive, but only an answer or a movement shows that the job goes on:
    // the oldest unanswered line's time runs on through everything else.

    switch (reply.kind) {
    case MachineReply::GrblBanner:
        if (m_waitBanner) {
            // Back from a reset: its state comes with the next status report.
            m_waitBanner = false;
            if (m_resetTimer.isActive()) {
                m_resetStatusDue = true;
                requestStatus();
            } else {
                pump();
            }
        }
        if (m_state == Detecting)
            detected(m_forced != Firmware::Unknown ? m_forced : Firmware::Grbl);
        return;
    case MachineReply::MarlinBanner:
        if (m_state == Detecting)
            detected(m_forced != Firmware::Unknown ? m_forced : Firmware::Marlin);
        return;
    case MachineReply::Status:
        if (m_state == Detecting && m_probeStep == 1)
            detected(Firmware::Grbl);
        if (!reply.state.isEmpty()) {
            ++m_statusReports;
            m_requestsSinceReport = 0;
            m_lastState = reply.state;
        }
        if (reply.hasPosition) {
            const bool moved = std::fabs(reply.x - m_lastX) > MovedMm || std::fabs(reply.y - m_lastY) > MovedMm
                               || std::fabs(reply.z - m_lastZ) > MovedMm;
            m_lastX = reply.x, m_lastY = reply.y, m_lastZ = reply.z;
            if (moved && !m_inFlight.empty())
                m_answerTimer.start(m_answerTimeoutMs);  // the machine is moving: the job goes on
        }
        // Held (Pause, or the board's own button) or homing: waiting is what it should do.
        if (MachineReplies::isWaitingState(reply.state) && !m_inFlight.empty())
            m_answerTimer.start(m_answerTimeoutMs);
        if (reply.hasPosition || !reply.state.isEmpty())
            emit statusChanged(reply.state, reply.x, reply.y);
        if (m_resetStatusDue && !reply.state.isEmpty()) {
            m_resetStatusDue = false;
            m_resetTimer.stop();
            emit resetDone(reply.state);
            pump();
        }
        return;
    case MachineReply::Setting:
        if (reply.code == GrblMaxPowerSetting && reply.value > 0)
            m_grblMaxPower = int(reply.value);
        return;
    case MachineReply::Resend:
        // Marlin sends "ok" after "Resend:"; that ok asks for the line again.
        m_resendFrom = reply.code;
        return;
    case MachineReply::Busy:
        // Marlin works on a long command (homing, M400) and says so every few seconds.
        if (!m_inFlight.empty())
            m_answerTimer.start(m_answerTimeoutMs);
        return;
    case MachineReply::Alarm:
        emit fault(reply);
        return;
    case MachineReply::Error:
        if (m_firmware == Firmware::Marlin || reply.code < 0) {
            // Line-number and checksum faults are answered by a Resend; the rest stop the job.
            const QByteArray lower = reply.text.toLower();
            if (!lower.contains("checksum") && !lower.contains("line number") && !lower.contains("last line"))
                emit fault(reply);
            return;
        }
        break;
    case MachineReply::Ok:
        if (m_state == Detecting && m_probeStep == 2) {
            detected(Firmware::Marlin);
            return;
        }
        break;
    default:
        return;
    }

    // ok or error:N answers the oldest line.
    if (m_inFlight.empty())
        return;
    if (m_resendFrom > 0 && m_firmware == Firmware::Marlin) {
        const QByteArray again = m_history.value(m_resendFrom);
        m_resendFrom = 0;
        if (!again.isEmpty()) {
            write(again);
            m_answerTimer.start(m_answerTimeoutMs);
            return;
        }
    }
    const Sent done = m_inFlight.front();
    m_inFlight.pop_front();
    m_inFlightBytes -= done.bytes;
    // The next line's time counts from now: it may have waited in the board's buffer behind this one.
    if (m_inFlight.empty())
        m_answerTimer.stop();
    else
        m_answerTimer.start(m_answerTimeoutMs);
    if (done.tag == ConfigTag) {
        if (m_state == Configuring && m_inFlight.empty() && m_queue.empty()) {
            setState(Ready);
            if (m_firmware == Firmware::Grbl)
                m_pollTimer.start();
        }
    } else {
        emit answered(done.tag, reply);
    }
    pump();
}

void MachineLink::detected(Firmware firmware)
{
    m_detectTimer.stop();
    m_firmware = firmware;
    emit firmwareDetected(firmware);
    configure();
}

void MachineLink::configure()
{
    setState(Configuring);
    m_lineNumber = 0;
    // GRBL: its settings give the power scale ($30). Marlin: line numbers start again.
    if (m_firmware == Firmware::Grbl)
        sendLine("$$", ConfigTag);
    else
        sendLine("M110 N0", ConfigTag);
}

void MachineLink::onDetectTimeout()
{
    if (m_state != Detecting || !m_port)
        return;
    if (m_forced != Firmware::Unknown) {
        detected(m_forced);
        return;
    }
    // No banner: many boards stay silent when the port opens. Ask.
    ++m_probeStep;
    if (m_probeStep == 1) {
        sendRealtime('?');
        m_detectTimer.start(m_probeWaitMs);
    } else if (m_probeStep == 2) {
        write("\nM115\n");
        m_detectTimer.start(m_probeWaitMs);
    } else {
        const QString port = m_portName;
        close();
        emit failed(tr("No answer from %1: is a GRBL or Marlin board there, at this baud rate?").arg(port));
    }
}

void MachineLink::onAnswerTimeout()
{
    if (m_inFlight.empty() || !m_port)
        return;
    const Sent oldest = m_inFlight.front();
    // Lines that will never be answered must not block the ones sent next.
    forgetUnanswered();
    emit failed(tr("The machine did not answer within %1 s").arg(m_answerTimeoutMs / 1000.0));
    if (m_port)
        emit answerTimedOut(oldest.tag, oldest.text, m_answerTimeoutMs);
    if (m_port)
        pump();
}

void MachineLink::onPoll()
{
    if (m_port && m_firmware == Firmware::Grbl && !m_waitBanner)
        requestStatus();
}

void MachineLink::onPortError(int error)
{
    if (error == QSerialPort::ResourceError || error == QSerialPort::ReadError || error == QSerialPort::WriteError)
        lose(tr("Connection to %1 lost: %2").arg(m_portName, lossReason(error)));
}

QString MachineLink::lossReason(int error)
{
    // The port's own error text is often stale or empty here; ask the device itself.
    const QString device = m_portName.contains(QLatin1Char('/')) ? m_portName : QStringLiteral("/dev/") + m_portName;
    if (!QFileInfo::exists(device))
        return tr("the device went away (unplugged or switched off)");
    const int fd = m_port ? int(m_port->handle()) : -1;
    if (fd >= 0) {
        char byte;
        errno = 0;
        const ssize_t n = error == QSerialPort::WriteError ? ::write(fd, "", 0) : ::read(fd, &byte, 1);
        const int code = errno;
        if (n == 0 && error != QSerialPort::WriteError)
            return tr("the device closed the connection");
        if (n < 0 && code != EAGAIN && code != EWOULDBLOCK && code != EINTR) {
            const QString system = QString::fromLocal8Bit(std::strerror(code));
            return error == QSerialPort::WriteError ? tr("writing failed: %1").arg(system)
                                                    : tr("reading failed: %1").arg(system);
        }
    }
    const QString given = m_port ? m_port->errorString() : QString();
    if (!given.isEmpty() && given != QLatin1String("Unknown error")
        && given != QString::fromLocal8Bit(std::strerror(EAGAIN)))
        return given;
    return error == QSerialPort::WriteError ? tr("writing to the device failed") : tr("reading from the device failed");
}

void MachineLink::lose(const QString &message)
{
    if (!m_port)
        return;
    close();
    emit connectionLost(message);
}
