// Job streamer: turns print, stop, resume, cancel, frame and single-line
// requests into machine text and hands the machine's answers to the log.
#include "frontend.h"

#include "cpserialport.h"
#include "gsendmodel.h"

#include <QDebug>

namespace {
const char *const kFanOff = "M107";
const char *const kHomeXY = "G28 X Y";
const char *const kAbsolute = "G90";
const char *const kResume = "1";
// The reader's own end marker is "end"; a command text of exactly ";end" is
// what stops a job here.
const char *const kJobEnd = ";end";

// Frame preview: coordinates arrive in tenths of a millimetre.
const double kFrameScale = 0.1;
const int kFramePasses = 2;
const char *const kFrameAbsolute = "G90 \n";
const char *const kBeamOff = "M4 P0 \n";
const char *const kBeamWeak = "M4 P30 \n";
const char *const kFrameRapid = "G0 X%1 Y%2 F3000\n";
const char *const kFrameFirstSide = "G1 X%1 Y%2 F3000 \n";
const char *const kFrameSide = "G1 X%1 Y%2 \n";
const char *const kFrameHome = "G1 F2000 X0 Y0 \n";
}

FrontEnd::FrontEnd(QObject *parent, CPSerialPort *link)
    : QThread(parent),
      state(Idle),
      link(link),
      reader(new GSendModel),
      finished(true),
      bounding(false)
{
    if (link) {
        connect(this, &FrontEnd::Sig_toarduino, link, &CPSerialPort::WritePort);
        connect(link, &CPSerialPort::Sig_GetMessage, this, &FrontEnd::ReadArduino);
        connect(link, &CPSerialPort::Sig_disconnect, this, &FrontEnd::SlotDisconnect);
        connect(link, &CPSerialPort::Sig_connect, this, &FrontEnd::SlotConnect);
        connect(reader, &GSendModel::SigWrite, link, &CPSerialPort::WritePort);
    }
}

FrontEnd::~FrontEnd()
{
    // The reader holds the job file open; give it back with the streamer.
    delete reader;
}

void FrontEnd::SlotPrint(QString gcodefile)
{
    if (state != Idle)
        return;

    reader->Reset();
    state = Printing;
    // Opening the file scans it and emits every line: that is the transfer.
    reader->OpenFile(gcodefile);
    finished = false;

    takeNextCommand();

    emit Sig_toarduino(QString::fromLatin1(kAbsolute));
    qDebug() << "gcode process finish!";
    state = Idle;
}

void FrontEnd::SlotStop()
{
    finished = true;
    state = Stopped;
    emit Sig_toarduino(QString::fromLatin1(kFanOff));
}

void FrontEnd::SlotRecov()
{
    finished = false;
    state = Printing;
    emit Sig_toarduino(QString::fromLatin1(kResume));
}

void FrontEnd::SlotCancle()
{
    finished = true;
    state = Idle;
    reader->Reset();
    emit Sig_toarduino(QString::fromLatin1(kFanOff));
    emit Sig_toarduino(QString::fromLatin1(kHomeXY));
}

void FrontEnd::AddToSender()
{
    takeNextCommand();
}

void FrontEnd::takeNextCommand()
{
    do {
        current = reader->NextCommand();
    } while (current.startsWith(QLatin1Char(';')));

    if (current == QLatin1String(kJobEnd)) {
        emit Sig_toarduino(QString::fromLatin1(kFanOff));
        emit Sig_toarduino(QString::fromLatin1(kHomeXY));
        current.clear();
        finished = true;
        reader->Reset();
    }
}

void FrontEnd::ReadArduino(QString cmd)
{
    emit Sig_uishow(cmd);
    if (!cmd.isEmpty())
        qDebug() << "get from arduino:" << cmd;
}

void FrontEnd::GenBounding(QRectF rect)
{
    bounding = true;
    const QRectF r(rect.x() * kFrameScale, rect.y() * kFrameScale,
                   rect.width() * kFrameScale, rect.height() * kFrameScale);

    bounddraws.append(QString::fromLatin1(kFrameAbsolute));
    bounddraws.append(QString::fromLatin1(kBeamOff));
    for (int pass = 0; pass < kFramePasses; ++pass) {
        const double left = r.x();
        const double top = r.y();
        const double right = r.x() + r.width();
        const double bottom = r.y() + r.height();
        bounddraws.append(QString::fromLatin1(kFrameRapid).arg(left).arg(top));
        bounddraws.append(QString::fromLatin1(kBeamWeak));
        bounddraws.append(QString::fromLatin1(kFrameFirstSide).arg(right).arg(top));
        bounddraws.append(QString::fromLatin1(kFrameSide).arg(right).arg(bottom));
        bounddraws.append(QString::fromLatin1(kFrameSide).arg(left).arg(bottom));
        bounddraws.append(QString::fromLatin1(kFrameSide).arg(left).arg(top));
    }
    bounddraws.append(QString::fromLatin1(kBeamOff));
    bounddraws.append(QString::fromLatin1(kFrameHome));

    emit Sig_toarduino(QString::fromLatin1(kBeamOff));
}

void FrontEnd::SetBounding(QQueue<QString> bounddraws)
{
    this->bounddraws = bounddraws;
}

void FrontEnd::ResetBounding()
{
    bounding = false;
    bounddraws.clear();
}

void FrontEnd::SlotUIWrite(QString s)
{
    emit Sig_toarduino(s);
}

void FrontEnd::SlotDisconnect()
{
    emit Sig_connected(false);
}

void FrontEnd::SlotConnect()
{
    emit Sig_connected(true);
}
