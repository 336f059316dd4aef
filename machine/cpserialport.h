// Port selection panel: picks a serial port, connects and disconnects, and is
// the single gate for text to the machine and for its answers.
#ifndef CPSERIALPORT_H
#define CPSERIALPORT_H

#include <QString>
#include <QStringList>
#include <QWidget>

namespace Ui {
class CPSerialPort;
}
class TNWLserialport;

class CPSerialPort : public QWidget
{
    Q_OBJECT
public:
    explicit CPSerialPort(QWidget *parent = nullptr);
    ~CPSerialPort() override;

    // Sets the texts again after the interface language changed.
    void retranslateUi();

    // Whether the worker holds a serial port open, and which one (the name the panel asked it to
    // open; empty when none). Follows the worker's own answers: a failed open holds nothing, and
    // the worker keeps its port after Disconnect until the next Connect closes it.
    bool holdsPort() const { return !m_heldPort.isEmpty(); }
    QString heldPort() const { return m_heldPort; }
    // Lets go of the port: the panel shows not connected (emitting Sig_disconnect if it showed
    // connected), and the worker closes the port it holds, as soon as its pending requests are done.
    void releasePort();

signals:
    void Sig_GetMessage(QString);
    void Sig_disconnect();
    void Sig_connect();
    void SigConnect(QString);
    void SigUpdata();
    void SigWritePort(QString);

public slots:
    void SlotResponseUart(QString);
    void WritePort(QString str);
    void SlotRestBox(QStringList);
    void on_updateUart_clicked();
    void on_btnConnect_clicked();

private:
    Ui::CPSerialPort *ui;
    TNWLserialport *serial;
    QStringList names;
    bool connected;
    QStringList m_pendingRequests;  // names of the connect requests the worker has not answered
    QString m_heldPort;
    bool m_releaseWanted = false;

    void workerAnswered(bool open);
    void closeHeldPortIfWanted();
};

#endif
