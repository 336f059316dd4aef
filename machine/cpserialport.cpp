// Port selection panel: picks a serial port, connects and disconnects, and is
// the single gate for text to the machine and for its answers.
#include "cpserialport.h"
#include "ui_cpserialport.h"

#include "tnwlserialport.h"

#include <QMessageBox>
#include <QThread>

CPSerialPort::CPSerialPort(QWidget *parent)
    : QWidget(parent), ui(new Ui::CPSerialPort), serial(nullptr), connected(false)
{
    ui->setupUi(this);

    // The worker and its thread live as long as the process: the worker may
    // sit in a blocking read that nothing could interrupt cleanly.
    QThread *thread = new QThread;
    serial = new TNWLserialport;

    connect(serial, &TNWLserialport::SigResponseUart, this, &CPSerialPort::SlotResponseUart);
    connect(serial, &TNWLserialport::SigResponseQStringList, this, &CPSerialPort::SlotRestBox);
    connect(this, &CPSerialPort::SigConnect, serial, &TNWLserialport::SlotConnect);
    connect(this, &CPSerialPort::SigUpdata, serial, &TNWLserialport::SlotUpdata);
    connect(this, &CPSerialPort::SigWritePort, serial, &TNWLserialport::SlotWritePort);

    // Which port the worker holds, from its answers; the button and `connected` keep their own belief.
    connect(this, &CPSerialPort::SigConnect, this, [this](const QString &name) { m_pendingRequests << name; });
    connect(serial, &TNWLserialport::SigConnected, this, &CPSerialPort::workerAnswered);

    serial->moveToThread(thread);
    // Still in this thread: the first list reaches the combo right away.
    serial->InitPorts();
    thread->start(QThread::InheritPriority);
}

CPSerialPort::~CPSerialPort()
{
    delete ui;
    names.clear();
}

void CPSerialPort::retranslateUi()
{
    ui->retranslateUi(this);
    ui->btnConnect->setText(connected ? tr("断开") : tr("连接"));
}

void CPSerialPort::workerAnswered(bool open)
{
    const QString name = m_pendingRequests.isEmpty() ? QString() : m_pendingRequests.takeFirst();
    m_heldPort = open ? (name.isEmpty() ? QStringLiteral("?") : name) : QString();
    closeHeldPortIfWanted();
}

void CPSerialPort::closeHeldPortIfWanted()
{
    if (!m_releaseWanted || !m_pendingRequests.isEmpty())
        return;
    m_releaseWanted = false;
    // The worker closes on any request while it is open.
    if (holdsPort())
        emit SigConnect(m_heldPort);
}

void CPSerialPort::releasePort()
{
    if (connected) {
        connected = false;
        ui->btnConnect->setText(tr("连接"));
        emit Sig_disconnect();
    }
    m_releaseWanted = true;
    closeHeldPortIfWanted();
}

void CPSerialPort::SlotResponseUart(QString s) { emit Sig_GetMessage(s); }

void CPSerialPort::WritePort(QString str)
{
    if (!connected) {
        QMessageBox::information(this, tr("Notice"), tr("Serial open failed."), QMessageBox::Ok);
        return;
    }
    emit SigWritePort(str);
}

void CPSerialPort::SlotRestBox(QStringList list) { ui->portCombo->insertItems(ui->portCombo->count(), list); }

void CPSerialPort::on_updateUart_clicked()
{
    ui->portCombo->clear();
    emit SigUpdata();
}

void CPSerialPort::on_btnConnect_clicked()
{
    // The panel trusts its own flag, not the worker's open result; disconnecting
    // only changes this side, the next connect request toggles the worker.
    if (!connected) {
        emit SigConnect(ui->portCombo->currentText());
        ui->btnConnect->setText(tr("断开"));
        connected = true;
        emit Sig_connect();
    } else {
        connected = false;
        ui->btnConnect->setText(tr("连接"));
        emit Sig_disconnect();
    }
}
