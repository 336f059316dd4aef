// G-code file reader for the job streamer: scans a file once for its command
// count and X/Y extent while emitting every line, then hands out commands one by one.
#ifndef GSENDMODEL_H
#define GSENDMODEL_H

#include <QObject>
#include <QRectF>
#include <QString>

class QFile;
class QTextStream;

class GSendModel : public QObject
{
    Q_OBJECT
public:
    explicit GSendModel(QObject *parent = nullptr);
    ~GSendModel() override;

    // Opens and scans the file; results are Bounds(), CommandCount() and
    // one SigWrite per line.
    void OpenFile(QString path);
    // Next command with one "\n" at its end, or "end" once the file is used up.
    QString NextCommand();
    // Clears the handed-out command and the counters; the stream stays where it is.
    void Reset();

    QRectF Bounds() const { return bounds; }
    qint32 CommandCount() const { return commandCount; }
    QString FileName() const { return fileName; }

signals:
    void SigWrite(QString);

private:
    QFile *file;
    QString fileName;
    QRectF bounds;
    QTextStream *stream;
    QString current;
    qint32 lineCounter;
    qint32 commandCount;
    qint32 layerCounter;
};

#endif
