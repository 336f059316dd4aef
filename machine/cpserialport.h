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
};

#endif
