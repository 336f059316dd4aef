// Reads and draws a G-code file in the worker thread; progress once per block read.
// A newer request makes the running one stop early, and its result is dropped.
#include "previewloader.h"

#include "toolpathrenderer.h"

#include <QFile>

void PreviewLoader::load(int ticket, const QString &path, bool travel, bool depth)
{
    if (ticket != m_wanted)
        return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        emit failed(ticket, path);
        return;
    }
    ToolpathRenderer renderer(PxPerMm);
    renderer.setShowTravel(travel);
    renderer.setDepthColours(depth);
    GcodeInterpreter interpreter;
    interpreter.setMoveHandler([&renderer](const ToolpathMove &m) { renderer.addMove(m); });
    int shown = -1;
    interpreter.setProgressHandler([this, ticket, &shown](qint64 done, qint64 total) {
        const int percent = total > 0 ? int(done * 100 / total) : 0;
        if (percent != shown) {
            shown = percent;
            emit progressed(ticket, percent);
        }
        return ticket == m_wanted;
    });
    const ToolpathSummary summary = interpreter.run(&file);
    if (summary.cancelled || ticket != m_wanted)
        return;
    emit loaded(ticket, renderer.image(), summary);
}
