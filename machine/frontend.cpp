// Job streamer: turns print, stop, resume, cancel, frame and single-line
// requests into machine text and hands the machine's answers to the log.
#include "frontend.h"

#include "cpserialport.h"
#include "gsendmodel.h"

#include <QDebug>

namespace {
const char *const FanOff = "M107";
const char *const HomeXY = "G28 X Y";
const char *const Absolute = "G90";
const char *const Resume = "1";
// The reader's own end marker is "end"; a command text of exactly ";end" is
// what stops a job here.
const char *const JobEnd = ";end";

// Frame preview: coordinates arrive in tenths of a millimetre.
const double FrameScale = 0.1;
const int FramePasses = 2;
const char *const FrameAbsolute = "G90 \n";
const char *const BeamOff = "M4 P0 \n";
const char *const BeamWeak = "M4 P30 \n";
const char *const FrameRapid = "G0 X%1 Y%2 F3000\n";
const char *const FrameFirstSide = "G1 X%1 Y%2 F3000 \n";
const char *const FrameSide = "G1 X%1 Y%2 \n";
const char *const FrameHome = "G1 F2000 X0 Y0 \n";
}  // namespace

FrontEnd::FrontEnd(QObject *parent, CPSerialPort *link)
    : QThread(parent), state(Idle), link(link), reader(new GSendModel), finished(true), bounding(false)
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

    emit Sig_toarduino(QString::fromLatin1(Absolute));
    qDebug() << "gcode process finish!";
    state = Idle;
}

void FrontEnd::SlotStop()
{
    finished = true;
    state = Stopped;
    emit Sig_toarduino(QString::fromLatin1(FanOff));
}

void FrontEnd::SlotRecov()
{
    finished = false;
    state = Printing;
    emit Sig_toarduino(QString::fromLatin1(Resume));
}

void FrontEnd::SlotCancle()
{
    finished = true;
    state = Idle;
    reader->Reset();
    emit Sig_toarduino(QString::fromLatin1(FanOff));
    emit Sig_toarduino(QString::fromLatin1(HomeXY));
}

void FrontEnd::AddToSender() { takeNextCommand(); }

void FrontEnd::takeNextCommand()
{
    do {
        current = reader->NextCommand();
    } while (current.startsWith(QLatin1Char(';')));

    if (current == QLatin1String(JobEnd)) {
        emit Sig_toarduino(QString::fromLatin1(FanOff));
        emit Sig_toarduino(QString::fromLatin1(HomeXY));
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
    const QRectF r(rect.x() * FrameScale, rect.y() * FrameScale, rect.width() * FrameScale, rect.height() * FrameScale);

    bounddraws.append(QString::fromLatin1(FrameAbsolute));
    bounddraws.append(QString::fromLatin1(BeamOff));
    for (int pass = 0; pass < FramePasses; ++pass) {
        const double left = r.x();
        const double top = r.y();
        const double right = r.x() + r.width();
        const double bottom = r.y() + r.height();
        bounddraws.append(QString::fromLatin1(FrameRapid).arg(left).arg(top));
        bounddraws.append(QString::fromLatin1(BeamWeak));
        bounddraws.append(QString::fromLatin1(FrameFirstSide).arg(right).arg(top));
        bounddraws.append(QString::fromLatin1(FrameSide).arg(right).arg(bottom));
        bounddraws.append(QString::fromLatin1(FrameSide).arg(left).arg(bottom));
        bounddraws.append(QString::fromLatin1(FrameSide).arg(left).arg(top));
    }
    bounddraws.append(QString::fromLatin1(BeamOff));
    bounddraws.append(QString::fromLatin1(FrameHome));

    emit Sig_toarduino(QString::fromLatin1(BeamOff));
}

void FrontEnd::SetBounding(QQueue<QString> bounddraws) { this->bounddraws = bounddraws; }

void FrontEnd::ResetBounding()
{
    bounding = false;
    bounddraws.clear();
}

void FrontEnd::SlotUIWrite(QString s) { emit Sig_toarduino(s); }

void FrontEnd::SlotDisconnect() { emit Sig_connected(false); }

void FrontEnd::SlotConnect() { emit Sig_connected(true); }
