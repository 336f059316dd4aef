// Serial link worker: owns the one serial port to the machine and runs in its
// own thread, driven only by queued signals (open/close, list, write, answers).
#include "tnwlserialport.h"

#include <QByteArray>
#include <QDebug>
#include <QSerialPort>
#include <QSerialPortInfo>

namespace {
const qint32 kBaudRate = 115200;
// This thread does nothing but serve the port, so blocking waits are fine here.
const int kReadWaitMs = 1000;
const int kWriteWaitMs = 1000;
}

TNWLserialport::TNWLserialport(QObject *parent)
    : QObject(parent),
      port(new QSerialPort(this)),
      connected(false)
{
}

TNWLserialport::~TNWLserialport()
{
    portNames.clear();
}

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
            qDebug() << "serial port:" << info.portName() << info.description()
                     << info.manufacturer();
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
        port->setBaudRate(kBaudRate, QSerialPort::AllDirections);
        port->setDataBits(QSerialPort::Data8);
        port->setParity(QSerialPort::NoParity);
        port->setStopBits(QSerialPort::OneStop);
        port->setFlowControl(QSerialPort::NoFlowControl);
        if (port->open(QIODevice::ReadWrite)) {
            connected = true;
            connect(port, &QSerialPort::readyRead, this, &TNWLserialport::SlotResponseUart);
        }
    }
    emit SigConnected(connected);
}

void TNWLserialport::SlotResponseUart()
{
    // Each pass replaces the buffer: only the chunk read after a wait that saw
    // new data is passed on. A silent line keeps this loop waiting.
    QByteArray buffer;
    for (;;) {
        const bool gotData = port->waitForReadyRead(kReadWaitMs);
        buffer = port->readAll();
        if (gotData)
            break;
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
    port->waitForBytesWritten(kWriteWaitMs);
}
