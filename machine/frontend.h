// Job streamer: turns print, stop, resume, cancel, frame and single-line
// requests into machine text and hands the machine's answers to the log.
#ifndef FRONTEND_H
#define FRONTEND_H

#include <QQueue>
#include <QRectF>
#include <QString>
#include <QThread>

class CPSerialPort;
class GSendModel;

class FrontEnd : public QThread
{
    Q_OBJECT
public:
    enum JobState { Idle = 0, Printing = 1, Stopped = 2 };

    // Without a link nothing is wired to a port: texts are emitted only.
    explicit FrontEnd(QObject *parent = nullptr, CPSerialPort *link = nullptr);
    ~FrontEnd() override;

    int State() const { return state; }
    bool Finished() const { return finished; }
    bool Bounding() const { return bounding; }
    QQueue<QString> BoundDraws() const { return bounddraws; }
    QString Current() const { return current; }
    GSendModel *Reader() const { return reader; }

signals:
    void Sig_toarduino(QString);
    void Sig_uishow(QString);
    void Sig_connected(bool);

public slots:
    void SlotPrint(QString gcodefile);
    void SlotStop();
    void SlotRecov();
    void SlotCancle();
    void AddToSender();
    void ReadArduino(QString cmd);
    void GenBounding(QRectF);
    void SetBounding(QQueue<QString> bounddraws);
    void ResetBounding();
    void SlotUIWrite(QString);
    void SlotDisconnect();
    void SlotConnect();

private:
    void takeNextCommand();

    qint32 state;
    CPSerialPort *link;
    GSendModel *reader;
    QString current;
    bool finished;
    bool bounding;
    QQueue<QString> bounddraws;
};

#endif
