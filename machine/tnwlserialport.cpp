// Serial link worker: owns the one serial port to the machine and runs in its
// own thread, driven only by queued signals (open/close, list, write, answers).
#include "tnwlserialport.h"

#include <QByteArray>
#include <QDebug>
#include <QElapsedTimer>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <QThread>

namespace {
const qint32 BaudRate = 115200;
// This thread does nothing but serve the port, so blocking waits are fine here.
const int ReadWaitMs = 1000;
const int WriteWaitMs = 1000;
}  // namespace

std::atomic<int> TNWLserialport::readPassesStarted{0};
std::atomic<int> TNWLserialport::readPassesTimedOut{0};

TNWLserialport::TNWLserialport(QObject *parent) : QObject(parent), port(new QSerialPort(this)), connected(false) {}

TNWLserialport::~TNWLserialport() { portNames.clear(); }

void TNWLserialport::InitPorts()
{
    connected = false;
    enumeratePorts();
}

void TNWLserialport::SlotUpdata()
{
    portNames.clear();
    enumeratePorts();
}

void TNWLserialport::enumeratePorts()
{
    const QList<QSerialPortInfo> infos = QSerialPortInfo::availablePorts();
    for (const QSerialPortInfo &info : infos) {
        // Only ports that can be opened right now are offered to the user.
        QSerialPort *trial = new QSerialPort;
        trial->setPort(info);
        if (trial->open(QIODevice::ReadWrite)) {
            qDebug() << "serial port:" << info.portName() << info.description() << info.manufacturer();
            portNames.append(trial->portName());
            trial->close();
        }
        delete trial;
    }
    emit SigResponseQStringList(portNames);
}

void TNWLserialport::SlotConnect(QString name)
{
    // A toggle on our own state: while open, any request closes the port.
    if (connected) {
        connected = false;
        port->disconnect();  // every link of the port, readyRead included
        port->close();
    } else {
        port->setPortName(name);
        port->setBaudRate(BaudRate, QSerialPort::AllDirections);
        port->setDataBits(QSerialPort::Data8);
        port->setParity(QSerialPort::NoParity);
        port->setStopBits(QSerialPort::OneStop);
        port->setFlowControl(QSerialPort::NoFlowControl);
        if (port->open(QIODevice::ReadWrite)) {
            connected = true;
            connect(port, &QSerialPort::readyRead, this, &TNWLserialport::SlotResponseUart);
            connect(port, &QSerialPort::errorOccurred, this, &TNWLserialport::onPortError);
        }
    }
    emit SigConnected(connected);
}

void TNWLserialport::onPortError(QSerialPort::SerialPortError error)
{
    // An unplugged device keeps reporting read errors and would keep this
    // thread busy; close it. The flag stays as it is, so the open/close
    // toggle seen by the user does not change.
    if (error == QSerialPort::ResourceError || error == QSerialPort::ReadError) {
        qDebug() << "serial port lost:" << port->portName() << port->errorString();
        port->close();
    }
}

void TNWLserialport::SlotResponseUart()
{
    // Each pass replaces the buffer: only the chunk read after a wait that saw
    // new data is passed on. A silent line keeps this loop waiting.
    QByteArray buffer;
    QElapsedTimer pass;
    for (;;) {
        pass.start();
        ++readPassesStarted;
        const bool gotData = port->waitForReadyRead(ReadWaitMs);
        buffer = port->readAll();
        if (gotData)
            break;
        ++readPassesTimedOut;
        // A vanished device fails the wait at once; let the pass last its full
        // time anyway so that the loop does not spin a core.
        const qint64 spent = pass.elapsed();
        if (spent < ReadWaitMs)
            QThread::msleep(static_cast<unsigned long>(ReadWaitMs - spent));
    }
    emit SigResponseUart(QString(buffer));
}

void TNWLserialport::SlotWritePort(QString str)
{
    // The machine gets exactly the text it was handed; callers add line ends.
    QString withLineEnd = str;
    withLineEnd.append(QLatin1Char('\n'));
    Q_UNUSED(withLineEnd);
    port->write(str.toLatin1());
    port->waitForBytesWritten(WriteWaitMs);
}
