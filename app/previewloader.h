// Reads and draws a G-code file for the preview panel in a worker thread, reporting progress,
// so that a file of millions of lines leaves the window responsive.
#ifndef PREVIEWLOADER_H
#define PREVIEWLOADER_H

#include "gcodeinterpreter.h"

#include <QImage>
#include <QMetaType>
#include <QObject>
#include <QString>

#include <atomic>

Q_DECLARE_METATYPE(ToolpathSummary)

class PreviewLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr double PxPerMm = 10;

    // Any thread: the load numbered `ticket` is the one wanted; others stop at their next block.
    void want(int ticket) { m_wanted = ticket; }

public slots:
    void load(int ticket, const QString &path, bool travel, bool depth);

signals:
    void progressed(int ticket, int percent);
    void loaded(int ticket, const QImage &picture, const ToolpathSummary &summary);
    void failed(int ticket, const QString &path);

private:
    std::atomic<int> m_wanted{0};
};

#endif
