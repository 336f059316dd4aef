// Reads and draws a G-code file in the worker thread; progress once per block read.
// A newer request makes the running one stop early, and its result is dropped.
#include "previewloader.h"

#include "toolpathrenderer.h"

#include <QFile>

#include <cmath>

bool PreviewMachine::operator==(const PreviewMachine &o) const
{
    return areaWidth == o.areaWidth && areaHeight == o.areaHeight && acceleration == o.acceleration
           && travelSpeed == o.travelSpeed && fullScale == o.fullScale;
}

double PreviewLoader::pxPerMmFor(double areaWidth, double areaHeight)
{
    const double area = areaWidth * areaHeight;
    if (!(area > 0) || area * PxPerMm * PxPerMm <= MaxPixels)
        return PxPerMm;
    return std::sqrt(MaxPixels / area);
}

void PreviewLoader::load(int ticket, const QString &path, bool travel, bool depth, const PreviewMachine &machine)
{
    if (ticket != m_wanted)
        return;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        emit failed(ticket, path);
        return;
    }
    ToolpathRenderer renderer(pxPerMmFor(machine.areaWidth, machine.areaHeight), machine.areaWidth, machine.areaHeight);
    renderer.setShowTravel(travel);
    renderer.setDepthColours(depth);
    GcodeInterpreter interpreter;
    interpreter.setWorkArea(machine.areaWidth, machine.areaHeight);
    interpreter.setMotion(machine.acceleration, machine.travelSpeed);
    interpreter.setSpindleFullScale(machine.fullScale);
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
