// G-code file reader for the job streamer: scans a file once for its command
// count and X/Y extent while emitting every line, then hands out commands one by one.
#include "gsendmodel.h"

#include <QDebug>
#include <QFile>
#include <QRegExp>
#include <QTextStream>

namespace {
const char *const kDefaultFileName = "test.gcode";

// Extent start values: any real coordinate replaces them.
const float kExtentStartMin = 99999.0f;
const float kExtentStartMax = -99999.0f;

// Moves only count when X follows "G1 " / "G0 " after nothing but the letters
// w, d, s and blanks; the number patterns hold no sign.
const char *const kG1Pattern = "G1 [wds]* *X([0-9.]*[0-9]*) *Y([0-9.]*[0-9]*)";
const char *const kG0Pattern = "G0 [wds]* *X([0-9.]*[0-9]*) *Y([0-9.]*[0-9]*)";
const char *const kLayerCountPattern = ";Layer count: *([0-9]*)";
const char *const kLayerPattern = ";LAYER: *([0-9]*)";
const char *const kTimePattern = ";TIME: *([0-9]*)";
const char *const kTrailingCommentPattern = "(.*) *;";

const char *const kEndMarker = "end";
const char *const kHeaterWait = "M109";

// A capture that is not a number, or too large for a float, counts as 0 like any
// other malformed number; an infinite extent would spoil every later comparison.
float coordinate(const QString &text)
{
    bool ok = false;
    const float v = text.toFloat(&ok);
    return ok && qIsFinite(v) ? v : 0.0f;
}
}

GSendModel::GSendModel(QObject *parent)
    : QObject(parent),
      file(new QFile(QString::fromLatin1(kDefaultFileName), this)),
      fileName(QString::fromLatin1(kDefaultFileName)),
      stream(new QTextStream(file)),
      lineCounter(0),
      commandCount(0),
      layerCounter(0)
{
}

GSendModel::~GSendModel()
{
    file->close();
    delete stream;
}

void GSendModel::OpenFile(QString path)
{
    lineCounter = 0;
    commandCount = 0;
    layerCounter = 0;
    fileName = path;
    file->close();
    file->setFileName(path);

    float minX = kExtentStartMin;
    float minY = kExtentStartMin;
    float maxX = kExtentStartMax;
    float maxY = kExtentStartMax;

    QRegExp g1(QString::fromLatin1(kG1Pattern), Qt::CaseSensitive);
    QRegExp g0(QString::fromLatin1(kG0Pattern), Qt::CaseSensitive);
    QRegExp layerCount(QString::fromLatin1(kLayerCountPattern), Qt::CaseSensitive);
    QRegExp layer(QString::fromLatin1(kLayerPattern), Qt::CaseSensitive);
    Q_UNUSED(layer);
    QRegExp time(QString::fromLatin1(kTimePattern), Qt::CaseSensitive);
    const QLatin1String g1Tag("G1 ");
    const QLatin1String g0Tag("G0 ");
    const QLatin1String layerCountTag(";Layer count:");
    const QLatin1String timeTag(";TIME:");

    if (!file->open(QIODevice::ReadOnly | QIODevice::Text))
        qDebug().noquote() << "Can't open the g-code file!" << fileName;

    stream->setDevice(file);
    const qint64 start = file->pos();

    while (!stream->atEnd()) {
        const QString line = stream->readLine();
        emit SigWrite(line);

        if (line.startsWith(QLatin1Char('G')))
            ++commandCount;

        // Each pattern needs its literal head somewhere in the line; looking for
        // that first spares the matcher on most lines of a long job.
        if (line.contains(layerCountTag) && layerCount.indexIn(line) != -1)
            qDebug().noquote() << "total layers is :" << layerCount.cap(1);

        // A line that starts with the time tag is left out on purpose.
        if (line.contains(timeTag) && time.indexIn(line) > 0)
            qDebug().noquote() << "total time is :" << time.cap(1);

        QRegExp *move = nullptr;
        if (line.contains(g1Tag) && g1.indexIn(line) != -1)
            move = &g1;
        else if (line.contains(g0Tag) && g0.indexIn(line) != -1)
            move = &g0;
        if (move) {
            const float x = coordinate(move->cap(1));
            const float y = coordinate(move->cap(2));
            if (x <= minX)
                minX = x;
            if (x > maxX)
                maxX = x;
            if (y <= minY)
                minY = y;
            if (y > maxY)
                maxY = y;
        }
    }

    bounds = QRectF(minX, minY, maxX - minX, maxY - minY);

    // Rewind so that NextCommand() starts at the first line again.
    if (file->isOpen())
        stream->seek(start);

    qDebug().noquote() << tr("total comands : %1").arg(commandCount);
}

QString GSendModel::NextCommand()
{
    const QString lineEnd = QStringLiteral("\n");
    // A file that never opened reads as empty, without a warning per call.
    QString line = (file->isOpen() ? stream->readLine() : QString()) + lineEnd;
    QRegExp trailing(QString::fromLatin1(kTrailingCommentPattern), Qt::CaseSensitive);

    if (stream->atEnd()) {
        // The last line of a file is never handed out.
        current = QString::fromLatin1(kEndMarker);
    } else {
        while (!stream->atEnd()) {
            if (line.startsWith(QLatin1Char(';')) || line.startsWith(lineEnd)
                || line.contains(QLatin1String(kHeaterWait))) {
                line = stream->readLine() + lineEnd;
                continue;
            }
            // Without a ';' the pattern cannot match; checking first keeps a
            // very long line from costing quadratic time in the matcher.
            if (!line.contains(QLatin1Char(';')) || trailing.indexIn(line) == -1)
                current = line;
            else
                current = trailing.cap(1) + lineEnd;
            break;
        }
    }

    qDebug() << "read gcode:" << current;
    return current;
}

void GSendModel::Reset()
{
    current.clear();
    lineCounter = 0;
    commandCount = 0;
    layerCounter = 0;
}
