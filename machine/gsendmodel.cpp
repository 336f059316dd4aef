// G-code file reader for the job streamer: scans a file once for its command
// count and X/Y extent while emitting every line, then hands out commands one by one.
#include "gsendmodel.h"

#include <QDebug>
#include <QFile>
#include <QRegExp>
#include <QString>
#include <QTextStream>

#include <cstring>
#include <limits>

namespace {
const char *const DefaultFileName = "test.gcode";

// Extent start values: any real coordinate replaces them.
const float ExtentStartMin = 99999.0f;
const float ExtentStartMax = -99999.0f;

// Moves only count when X follows "G1 " / "G0 " after nothing but the letters
// w, d, s and blanks; the number patterns hold no sign.
const char *const G1Pattern = "G1 [wds]* *X([0-9.]*[0-9]*) *Y([0-9.]*[0-9]*)";
const char *const G0Pattern = "G0 [wds]* *X([0-9.]*[0-9]*) *Y([0-9.]*[0-9]*)";
const char *const LayerCountPattern = ";Layer count: *([0-9]*)";
const char *const LayerPattern = ";LAYER: *([0-9]*)";
const char *const TimePattern = ";TIME: *([0-9]*)";
const char *const TrailingCommentPattern = "(.*) *;";

const char *const EndMarker = "end";
const char *const HeaterWait = "M109";

// A capture that is not a number, or too large for a float, counts as 0 like any
// other malformed number; an infinite extent would spoil every later comparison.
float coordinate(const QStringRef &text)
{
    bool ok = false;
    const float v = text.toFloat(&ok);
    return ok && qIsFinite(v) ? v : 0.0f;
}

// Bytes read at once by the scan.
const qint64 ScanBlockSize = 4 * 1024 * 1024;

inline bool isCoordinateChar(char c) { return (c >= '0' && c <= '9') || c == '.'; }

// Leftmost match of the move pattern for "G<digit> " in an ASCII line, without the
// matcher: the pattern's parts take disjoint characters, so the first head whose tail
// fits decides, and each capture is the whole run of digits and points after its letter.
bool matchMove(const char *s, int n, char digit, int *xFrom, int *xLength, int *yFrom, int *yLength)
{
    for (const char *head = s; (head = static_cast<const char *>(memchr(head, 'G', size_t(s + n - head)))); ++head) {
        int q = int(head - s) + 1;
        if (q + 1 >= n || s[q] != digit || s[q + 1] != ' ')
            continue;
        q += 2;
        while (q < n && (s[q] == 'w' || s[q] == 'd' || s[q] == 's'))
            ++q;
        while (q < n && s[q] == ' ')
            ++q;
        if (q >= n || s[q] != 'X')
            continue;
        const int x = ++q;
        while (q < n && isCoordinateChar(s[q]))
            ++q;
        const int xEnd = q;
        while (q < n && s[q] == ' ')
            ++q;
        if (q >= n || s[q] != 'Y')
            continue;
        const int y = ++q;
        while (q < n && isCoordinateChar(s[q]))
            ++q;
        *xFrom = x;
        *xLength = xEnd - x;
        *yFrom = y;
        *yLength = q - y;
        return true;
    }
    return false;
}

// QString::toFloat of a captured run. Up to 15 digits with one point inside are read
// here: the digits make an exact double and so does the power of ten, so the quotient is
// the correctly rounded value the library gives; the float is taken from it the same way.
float toCoordinate(const QString &line, const char *text, int from, int length)
{
    const int MaxFastDigits = 15;
    static const double powersOfTen[MaxFastDigits + 1] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                          1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
    const char *s = text + from;
    qint64 digits = 0;
    int count = 0;
    int point = -1;
    for (int i = 0; i < length; ++i) {
        if (s[i] == '.') {
            if (point >= 0)
                return coordinate(line.midRef(from, length));
            point = i;
        } else if (++count <= MaxFastDigits) {
            digits = digits * 10 + (s[i] - '0');
        }
    }
    if (count == 0 || count > MaxFastDigits || point == 0 || point == length - 1)
        return coordinate(line.midRef(from, length));
    const int decimals = point < 0 ? 0 : length - 1 - point;
    return float(double(digits) / powersOfTen[decimals]);
}

inline bool isAscii(const QByteArray &bytes)
{
    for (const char c : bytes) {
        if (c & 0x80)
            return false;
    }
    return true;
}
}  // namespace

GSendModel::GSendModel(QObject *parent)
    : QObject(parent), file(new QFile(QString::fromLatin1(DefaultFileName), this)),
      fileName(QString::fromLatin1(DefaultFileName)), stream(new QTextStream(file)), lineCounter(0), commandCount(0),
      layerCounter(0)
{}

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

    float minX = ExtentStartMin;
    float minY = ExtentStartMin;
    float maxX = ExtentStartMax;
    float maxY = ExtentStartMax;

    QRegExp g1(QString::fromLatin1(G1Pattern), Qt::CaseSensitive);
    QRegExp g0(QString::fromLatin1(G0Pattern), Qt::CaseSensitive);
    QRegExp layerCount(QString::fromLatin1(LayerCountPattern), Qt::CaseSensitive);
    QRegExp layer(QString::fromLatin1(LayerPattern), Qt::CaseSensitive);
    Q_UNUSED(layer);
    QRegExp time(QString::fromLatin1(TimePattern), Qt::CaseSensitive);
    const QLatin1String g1Tag("G1 ");
    const QLatin1String g0Tag("G0 ");
    const QLatin1String layerCountTag(";Layer count:");
    const QLatin1String timeTag(";TIME:");

    if (!file->open(QIODevice::ReadOnly | QIODevice::Text))
        qDebug().noquote() << "Can't open the g-code file!" << fileName;

    stream->setDevice(file);
    const qint64 start = file->pos();

    auto extend = [&](float x, float y) {
        if (x <= minX)
            minX = x;
        if (x > maxX)
            maxX = x;
        if (y <= minY)
            minY = y;
        if (y > maxY)
            maxY = y;
    };

    // A plain ASCII file (every job the generators write) is split and matched here from
    // one read; anything else goes through the text stream and the patterns themselves.
    QByteArray bytes;
    if (file->isOpen() && file->size() < std::numeric_limits<int>::max() / 2) {
        bytes.reserve(int(file->size()));
        while (!file->atEnd()) {
            const QByteArray block = file->read(ScanBlockSize);
            if (block.isEmpty())
                break;
            bytes += block;
        }
    }
    const bool plain = file->isOpen() && file->atEnd() && isAscii(bytes);
    if (plain) {
        const char *data = bytes.constData();
        const int size = bytes.size();
        for (int from = 0; from < size;) {
            const char *newline = static_cast<const char *>(memchr(data + from, '\n', size_t(size - from)));
            const int end = newline ? int(newline - data) : size;
            const char *text = data + from;
            const int length = end - from;
            const QString line = QString::fromLatin1(text, length);
            emit SigWrite(line);

            if (length > 0 && text[0] == 'G')
                ++commandCount;

            // Both tags start with ';', which most lines of a job lack.
            if (memchr(text, ';', size_t(length))) {
                if (line.contains(layerCountTag) && layerCount.indexIn(line) != -1)
                    qDebug().noquote() << "total layers is :" << layerCount.cap(1);
                if (line.contains(timeTag) && time.indexIn(line) > 0)
                    qDebug().noquote() << "total time is :" << time.cap(1);
            }

            int x, xLength, y, yLength;
            if (matchMove(text, length, '1', &x, &xLength, &y, &yLength)
                || matchMove(text, length, '0', &x, &xLength, &y, &yLength))
                extend(toCoordinate(line, text, x, xLength), toCoordinate(line, text, y, yLength));
            from = end + 1;
        }
    } else {
        if (file->isOpen()) {
            file->seek(start);
            stream->setDevice(file);
        }
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
                const QString x = move->cap(1), y = move->cap(2);
                extend(coordinate(QStringRef(&x)), coordinate(QStringRef(&y)));
            }
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
    QRegExp trailing(QString::fromLatin1(TrailingCommentPattern), Qt::CaseSensitive);

    if (stream->atEnd()) {
        // The last line of a file is never handed out.
        current = QString::fromLatin1(EndMarker);
    } else {
        while (!stream->atEnd()) {
            if (line.startsWith(QLatin1Char(';')) || line.startsWith(lineEnd)
                || line.contains(QLatin1String(HeaterWait))) {
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
