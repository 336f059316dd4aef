// The machine panel: connection, console, jog, frame and running a job on a GRBL or Marlin board.
// Every line goes through the machine link's queue; while a job runs, only its own controls work.
#include "machinepanel.h"
#include "ui_machinepanel.h"

#include "appsettings.h"
#include "cpserialport.h"
#include "gcodetokenizer.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QPushButton>
#include <QScrollBar>
#include <QSerialPortInfo>

namespace {

const int BaudRates[] = {115200, 250000, 230400, 57600, 38400, 19200, 9600};
constexpr double JogSteps[] = {0.1, 1.0, 10.0};
constexpr int ProgressTickMs = 500;

// A settings text as one line of G-code: its first line, comments dropped.
QByteArray gcodeLine(const QString &text)
{
    return GcodeTokenizer::stripComments(text.section(QLatin1Char('\n'), 0, 0).toUtf8());
}

QByteArray mm(double v) { return QByteArray::number(v, 'f', 2); }

}  // namespace

MachinePanel::MachinePanel(QWidget *parent)
    : QWidget(parent, Qt::Window), ui(new Ui::MachinePanel), m_link(new MachineLink(this))
{
    ui->setupUi(this);
    for (const int baud : BaudRates)
        ui->baudCombo->addItem(QString::number(baud), baud);
    ui->firmwareCombo->addItems({QString(), QStringLiteral("GRBL"), QStringLiteral("Marlin")});
    ui->releaseButton->hide();
    ui->progressBar->setFormat(QStringLiteral("%p%"));
    // Messages run to two lines or three; the console gives up the room for them.
    const int line = fontMetrics().lineSpacing();
    ui->linkLabel->setMinimumHeight(2 * line);
    ui->jobMessageLabel->setMinimumHeight(3 * line);
    ui->consoleView->setMinimumHeight(4 * line);
    connect(m_link, &MachineLink::stateChanged, this, &MachinePanel::onLinkStateChanged);
    connect(m_link, &MachineLink::statusChanged, this, &MachinePanel::onStatus);
    connect(m_link, &MachineLink::bytesSent, this, &MachinePanel::onBytesSent);
    connect(m_link, &MachineLink::lineReceived, this, &MachinePanel::onLineReceived);
    connect(m_link, &MachineLink::failed, this, &MachinePanel::onLinkFailed);
    connect(m_link, &MachineLink::connectionLost, this, &MachinePanel::onLinkFailed);
    connect(m_link, &MachineLink::fault, this, &MachinePanel::onFault);
    // The runner comes after the panel's own link slots: a failure during a job reaches the panel
    // while the job is still active, and the runner's fuller message is the one left shown.
    m_runner = new JobRunner(m_link, this);
    // The clock and the remaining time move on between answers (a long frame, the last moves).
    m_progressTimer.setInterval(ProgressTickMs);
    connect(&m_progressTimer, &QTimer::timeout, this, &MachinePanel::onProgress);
    // An unlock answered clears the alarm the stop left.
    connect(m_link, &MachineLink::answered, this, [this] {
        if (!m_runner->isActive())
            updateControls();
    });
    connect(m_runner, &JobRunner::progressChanged, this, &MachinePanel::onProgress);
    connect(m_runner, &JobRunner::stateChanged, this, &MachinePanel::onJobStateChanged);
    connect(m_runner, &JobRunner::lineFailed, this,
            [this](int line, const QString &text) { log(tr("Line %1: %2").arg(line).arg(text)); });
    retranslateUi();
    on_refreshButton_clicked();
    updateControls();
}

MachinePanel::~MachinePanel()
{
    // The runner's own farewell turns the beam off; the link then writes it out before closing.
    // The panel hears nothing more from either on the way.
    m_link->disconnect(this);
    m_runner->disconnect(this);
    delete m_runner;
    m_link->close();
    delete ui;
}

void MachinePanel::retranslateUi()
{
    ui->retranslateUi(this);
    ui->firmwareCombo->setItemText(0, tr("Detect"));
    onLinkStateChanged();
}

void MachinePanel::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslateUi();
    QWidget::changeEvent(event);
}

QPushButton *MachinePanel::createOpenButton(QWidget *parent)
{
    QPushButton *button = new QPushButton(windowTitle(), parent);
    button->setObjectName(QStringLiteral("btnMachinePanel"));
    connect(this, &QWidget::windowTitleChanged, button, &QPushButton::setText);
    connect(button, &QPushButton::clicked, this, [this] {
        show();
        raise();
        activateWindow();
    });
    return button;
}

void MachinePanel::setJobFile(const QString &path, double estimatedSeconds)
{
    m_exportedFile = path;
    m_exportedEstimate = estimatedSeconds;
    ui->jobEdit->setPlaceholderText(QFileInfo(path).fileName());
}

void MachinePanel::on_refreshButton_clicked()
{
    const QString current = ui->portCombo->currentData().toString();
    ui->portCombo->clear();
    for (const QSerialPortInfo &info : QSerialPortInfo::availablePorts())
        ui->portCombo->addItem(info.description().isEmpty() ? info.portName()
                                                            : info.portName() + " - " + info.description(),
                               info.systemLocation());
    const int index = ui->portCombo->findData(current);
    if (index >= 0)
        ui->portCombo->setCurrentIndex(index);
}

QString MachinePanel::chosenPort() const
{
    const QString path = ui->pathEdit->text().trimmed();
    return path.isEmpty() ? ui->portCombo->currentData().toString() : path;
}

bool MachinePanel::holderHoldsPort(const QString &port) const
{
    if (!m_holder)
        return false;
    const QString held = m_holder->heldPort();
    return m_holder->holdsPort()
           && (port == held || QFileInfo(port).fileName() == held || QSerialPortInfo(held).systemLocation() == port);
}

void MachinePanel::on_connectButton_clicked()
{
    const QString port = chosenPort();
    if (port.isEmpty()) {
        showMessage(tr("Choose a port, or type the path of the device"), true);
        return;
    }
    const Firmware forced = Firmware(ui->firmwareCombo->currentIndex());
    QString error;
    if (!m_link->open(port, ui->baudCombo->currentData().toInt(), forced, &error)) {
        const bool held = holderHoldsPort(port);
        ui->releaseButton->setVisible(held);
        showMessage(held ? tr("The port panel above holds %1.").arg(port) : error, true);
        return;
    }
    ui->releaseButton->hide();
    showMessage(QString(), false);
    log(tr("Opening %1...").arg(port));
}

void MachinePanel::on_disconnectButton_clicked()
{
    m_runner->stop();
    m_link->close();
}

void MachinePanel::on_releaseButton_clicked()
{
    if (m_holder)
        m_holder->releasePort();
    ui->releaseButton->hide();
    // The port panel closes the port in its own thread; try again when it has.
    QTimer::singleShot(500, this, &MachinePanel::on_connectButton_clicked);
}

void MachinePanel::send(const QList<QByteArray> &lines)
{
    for (const QByteArray &line : lines)
        m_link->sendLine(line);
    // GRBL reports where it is by itself; Marlin is asked after each move.
    if (m_link->firmware() == Firmware::Marlin)
        m_link->requestPosition();
}

void MachinePanel::jog(char axis, int direction)
{
    const double step = ui->step01Radio->isChecked()   ? JogSteps[0]
                        : ui->step10Radio->isChecked() ? JogSteps[2]
                                                       : JogSteps[1];
    const QByteArray move =
        QByteArray(1, axis) + mm(step * direction) + " F" + QByteArray::number(ui->feedSpin->value());
    // GRBL's jog leaves the modal state alone; Marlin goes back to absolute moves at once.
    if (m_link->firmware() == Firmware::Grbl)
        send({"$J=G91 " + move});
    else
        send({"G91", "G1 " + move, "G90"});
}

void MachinePanel::on_homeButton_clicked()
{
    send({m_link->firmware() == Firmware::Grbl ? QByteArrayLiteral("$H") : QByteArrayLiteral("G28 X Y")});
}

void MachinePanel::on_unlockButton_clicked()
{
    // The runner sends the unlock, and after it the beam-off an alarm held back.
    m_runner->unlock();
}

void MachinePanel::on_setOriginButton_clicked() { send({"G92 X0 Y0"}); }

void MachinePanel::on_goOriginButton_clicked() { send({"G90", "G0 X0 Y0"}); }

QList<QByteArray> MachinePanel::frameLines(const QRectF &area, Firmware firmware, int powerPercent, int feed,
                                           int grblMaxPower)
{
    const bool grbl = firmware == Firmware::Grbl;
    const QByteArray off = grbl ? "M5" : "M107";
    const QByteArray l = mm(area.left()), r = mm(area.right()), b = mm(area.top()), t = mm(area.bottom());
    QList<QByteArray> lines{"G90", off, "G0 X" + l + " Y" + b};
    if (powerPercent > 0)
        lines << (grbl ? "M3 S" + QByteArray::number(powerPercent * grblMaxPower / 100)
                       : "M106 S" + QByteArray::number(powerPercent * 255 / 100));
    lines << "G1 X" + r + " Y" + b + " F" + QByteArray::number(feed) << "G1 X" + r + " Y" + t << "G1 X" + l + " Y" + t
          << "G1 X" + l + " Y" + b << off;
    return lines;
}

void MachinePanel::on_frameButton_clicked()
{
    const QRectF area = m_frameSource ? m_frameSource() : QRectF();
    if (area.isEmpty()) {
        showMessage(tr("Place a picture inside the work area first"), true);
        return;
    }
    send(frameLines(area, m_link->firmware(), ui->framePowerSpin->value(), ui->feedSpin->value(),
                    m_link->grblMaxPower()));
    showMessage(
        tr("Framing X %1 to %2, Y %3 to %4 mm").arg(area.left()).arg(area.right()).arg(area.top()).arg(area.bottom()),
        false);
}

void MachinePanel::on_chooseButton_clicked()
{
    const QString name = QFileDialog::getOpenFileName(this, tr("Job to run"), QString(),
                                                      tr("G-code (*.gcode *.nc *.gc);;All files (*)"));
    if (!name.isEmpty())
        ui->jobEdit->setText(name);
}

void MachinePanel::on_runButton_clicked()
{
    const QString file = ui->jobEdit->text().trimmed().isEmpty() ? m_exportedFile : ui->jobEdit->text().trimmed();
    if (file.isEmpty()) {
        showMessage(tr("Export a job first, or choose a G-code file"), true);
        return;
    }
    QString error;
    if (!m_runner->load(file, &error)) {
        showMessage(error, true);
        return;
    }
    if (file == m_exportedFile)
        m_runner->setProgramEstimate(m_exportedEstimate);
    m_runner->setContinueOnError(ui->continueCheck->isChecked());
    // The laser-off text of the machine settings, when there is one.
    m_runner->setLaserOffText(gcodeLine(AppSettings::tarnwyString(QStringLiteral("laser_off"))));
    if (!m_runner->start()) {
        showMessage(tr("Connect to the machine first"), true);
        return;
    }
    showMessage(tr("Running %1").arg(QFileInfo(file).fileName()), false);
}

void MachinePanel::on_pauseButton_clicked() { m_runner->pause(); }

void MachinePanel::on_resumeButton_clicked()
{
    m_runner->resume();
    showMessage(QString(), false);
}

void MachinePanel::on_stopButton_clicked() { m_runner->stop(); }

void MachinePanel::on_sendButton_clicked()
{
    const QByteArray line = ui->commandEdit->text().trimmed().toUtf8();
    if (line.isEmpty())
        return;
    if (!m_link->isOpen()) {
        showMessage(tr("Not connected"), true);
        return;
    }
    m_link->sendLine(line);
    ui->commandEdit->clear();
}

void MachinePanel::onLinkStateChanged()
{
    static const char *const Names[] = {"", "GRBL", "Marlin"};
    switch (m_link->state()) {
    case MachineLink::Closed:
        ui->linkLabel->setText(tr("Not connected"));
        ui->machineLabel->clear();
        break;
    case MachineLink::Detecting:
    case MachineLink::Configuring:
        ui->linkLabel->setText(tr("Connecting to %1...").arg(QFileInfo(m_link->portName()).fileName()));
        break;
    case MachineLink::Ready:
        ui->linkLabel->setText(
            tr("Connected to %1 (%2)")
                .arg(QFileInfo(m_link->portName()).fileName(), QLatin1String(Names[int(m_link->firmware())])));
        if (m_link->firmware() == Firmware::Marlin)
            m_link->requestPosition();
        break;
    }
    updateControls();
}

void MachinePanel::onStatus(const QByteArray &state, double x, double y)
{
    const bool alarmBefore = m_state.startsWith("Alarm");
    m_state = state;
    if (alarmBefore != m_state.startsWith("Alarm"))
        updateControls();
    ui->machineLabel->setText(tr("State: %1   X %2  Y %3")
                                  .arg(state.isEmpty() ? QStringLiteral("-") : QString::fromUtf8(state))
                                  .arg(x, 0, 'f', 2)
                                  .arg(y, 0, 'f', 2));
}

void MachinePanel::log(const QString &text) { ui->consoleView->appendPlainText(text); }

void MachinePanel::onBytesSent(const QByteArray &bytes)
{
    // Lines are shown while the user works; during a job only the job's state is shown.
    if (m_runner->isActive() && bytes.size() > 1)
        return;
    if (bytes == "!")
        log(tr("> ! (feed hold)"));
    else if (bytes == "~")
        log(tr("> ~ (cycle start)"));
    else if (bytes.size() == 1)
        log(tr("> 0x%1 (reset)").arg(uchar(bytes[0]), 2, 16, QLatin1Char('0')));
    else
        log(QStringLiteral("> ") + QString::fromUtf8(bytes).trimmed());
}

void MachinePanel::onLineReceived(const QByteArray &line)
{
    if (m_runner->isActive() && (line == "ok" || line.startsWith("echo:busy")))
        return;
    // Not UTF-8 from a wrong baud rate shows as replacement characters, never as a crash.
    log(QStringLiteral("< ") + QString::fromUtf8(line));
}

void MachinePanel::onLinkFailed(const QString &message)
{
    log(message);
    if (!m_runner->isActive())
        showMessage(message, true);
    updateControls();
}

void MachinePanel::onFault(const MachineReply &reply)
{
    // During a job the runner explains it; outside one (a jog past the limits) it is said here.
    if (m_runner->isActive())
        return;
    QString text = QString::fromUtf8(reply.text);
    if (reply.kind == MachineReply::Alarm)
        text += QStringLiteral(" - ") + MachineReplies::grblAlarmText(reply.code)
                + tr(" Unlock the machine before going on.");
    showMessage(text, true);
}

void MachinePanel::onProgress()
{
    const int total = m_runner->total();
    const int done = m_runner->acknowledged();
    ui->progressBar->setValue(m_runner->percent());
    ui->progressLabel->setText(tr("%1 / %2 lines   elapsed %3   left %4")
                                   .arg(done)
                                   .arg(total)
                                   .arg(JobRunner::clockText(m_runner->elapsedMs() / 1000.0),
                                        JobRunner::clockText(m_runner->remainingSeconds())));
}

void MachinePanel::onJobStateChanged()
{
    switch (m_runner->state()) {
    case JobRunner::FramePause:
        showMessage(tr("Frame traced: check the frame, then Resume"), false);
        break;
    case JobRunner::Paused:
        showMessage(tr("Paused"), false);
        break;
    case JobRunner::Finishing:
        showMessage(tr("Finishing…"), false);
        break;
    case JobRunner::Stopping:
        showMessage(tr("Stopping…"), false);
        break;
    case JobRunner::Done:
        showMessage(tr("Job done"), false);
        break;
    case JobRunner::Stopped:
        if (m_runner->alarmAfterStop())
            showMessage(tr("Stopped. The machine is in alarm after the stop: press Unlock ($X) before the next job."),
                        true);
        else
            showMessage(tr("Stopped; the beam is off"), false);
        break;
    case JobRunner::Failed: {
        QString tail;
        if (m_runner->failure() == JobRunner::ConnectionLost)
            tail = tr(" Check the machine: it may still be running the lines it had received.");
        else if (m_runner->failure() != JobRunner::Alarm && !m_runner->alarmAfterStop())
            tail = tr(" The job was stopped and the beam turned off.");
        showMessage(m_runner->message() + tail, true);
        break;
    }
    default:
        break;
    }
    const JobRunner::State state = m_runner->state();
    if (state == JobRunner::Running || state == JobRunner::Finishing)
        m_progressTimer.start();
    else
        m_progressTimer.stop();
    onProgress();
    updateControls();
}

void MachinePanel::showMessage(const QString &text, bool error)
{
    ui->jobMessageLabel->setText(text);
    ui->jobMessageLabel->setStyleSheet(error ? QStringLiteral("color: #ff6060;") : QString());
    if (error && !text.isEmpty())
        log(text);
}

void MachinePanel::updateControls()
{
    const bool open = m_link->isOpen();
    const bool ready = m_link->state() == MachineLink::Ready;
    const bool job = m_runner->isActive();
    const JobRunner::State state = m_runner->state();
    const bool idle = ready && !job;
    // In alarm every line but the unlock (and homing) is refused: that is what is offered.
    const bool alarm = m_runner->alarmAfterStop() || m_state.startsWith("Alarm");
    ui->connectButton->setEnabled(!open);
    ui->disconnectButton->setEnabled(open);
    for (QWidget *w : {static_cast<QWidget *>(ui->portCombo), static_cast<QWidget *>(ui->pathEdit),
                       static_cast<QWidget *>(ui->baudCombo), static_cast<QWidget *>(ui->firmwareCombo),
                       static_cast<QWidget *>(ui->refreshButton)})
        w->setEnabled(!open);
    for (QWidget *w : {ui->xPlusButton, ui->xMinusButton, ui->yPlusButton, ui->yMinusButton, ui->homeButton,
                       ui->setOriginButton, ui->goOriginButton, ui->frameButton, ui->runButton, ui->sendButton})
        w->setEnabled(idle);
    // Moves and the job wait for the unlock; homing, the console and Unlock stay.
    for (QWidget *w : {ui->xPlusButton, ui->xMinusButton, ui->yPlusButton, ui->yMinusButton, ui->setOriginButton,
                       ui->goOriginButton, ui->frameButton, ui->runButton})
        w->setEnabled(idle && !alarm);
    ui->unlockButton->setStyleSheet(idle && alarm ? QStringLiteral("font-weight: bold; color: #ff6060;") : QString());
    if (idle && alarm && m_runner->alarmAfterStop())
        ui->unlockButton->setFocus();
    ui->commandEdit->setEnabled(idle);
    ui->chooseButton->setEnabled(!job);
    ui->jobEdit->setEnabled(!job);
    ui->continueCheck->setEnabled(!job);
    ui->unlockButton->setEnabled(idle);
    ui->pauseButton->setEnabled(state == JobRunner::Running);
    ui->resumeButton->setEnabled(state == JobRunner::Paused || state == JobRunner::FramePause);
    ui->stopButton->setEnabled(job);
}
