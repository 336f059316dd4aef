// Serial link worker: owns the one serial port to the machine and runs in its
// own thread, driven only by queued signals (open/close, list, write, answers).
#ifndef TNWLSERIALPORT_H
#define TNWLSERIALPORT_H

#include <QObject>
#include <QSerialPort>
#include <QString>
#include <QStringList>

#include <atomic>

class TNWLserialport : public QObject
{
    Q_OBJECT
public:
    explicit TNWLserialport(QObject *parent = nullptr);
    ~TNWLserialport() override;

    // First enumeration, called once by the owner before the worker's thread starts.
    void InitPorts();

    // Passes of the receive loop begun, and ended by a wait that saw nothing new, since
    // the program started (all workers together). Readable from any thread: whoever
    // watches the line's timing from outside learns where the loop stands.
    static int ReadPassesStarted() { return readPassesStarted.load(); }
    static int ReadPassesTimedOut() { return readPassesTimedOut.load(); }

signals:
    void SigResponseUart(QString);
    void SigResponseQStringList(QStringList);
    void SigConnected(bool init);

public slots:
    void SlotResponseUart();
    void SlotUpdata();
    void SlotConnect(QString);
    void SlotWritePort(QString str);

private:
    void enumeratePorts();
    void onPortError(QSerialPort::SerialPortError error);

    QSerialPort *port;
    bool connected;
    QStringList portNames;

    static std::atomic<int> readPassesStarted;
    static std::atomic<int> readPassesTimedOut;
};

#endif
