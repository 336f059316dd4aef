// The time estimate: moves are gathered into straight runs at one feed, each run timed from rest to
// rest by the motion model.
#include "jobestimate.h"

#include "motionmodel.h"

#include <cmath>

namespace {

// Two moves go on in one run when their directions differ by less than this (1 - cos of the angle,
// about 0.003 degrees).
constexpr double Collinear = 1e-9;

}  // namespace

JobEstimate::JobEstimate(const MachineProfile &profile)
    : m_acceleration(profile.acceleration), m_travelSpeed(profile.travelSpeed)
{}

void JobEstimate::beginLayer(int index, const JobLayer &layer)
{
    closeRun();
    Layer entry;
    entry.index = index;
    entry.name = layer.name;
    m_layers.push_back(entry);
    m_layerStartSeconds = m_seconds;
    m_layerStartBurn = m_burnMm;
}

void JobEstimate::move(const PlannedMove &m)
{
    const qint64 stepX = qint64(m.x) - m_x;
    const qint64 stepY = qint64(m.y) - m_y;
    if (stepX == 0 && stepY == 0)
        return;
    m_x = m.x;
    m_y = m.y;
    // Raster rows and their steps run along an axis: no square root for them.
    double length, ux, uy;
    if (stepY == 0) {
        length = double(stepX > 0 ? stepX : -stepX) / 1000.0;
        ux = stepX > 0 ? 1 : -1;
        uy = 0;
    } else if (stepX == 0) {
        length = double(stepY > 0 ? stepY : -stepY) / 1000.0;
        ux = 0;
        uy = stepY > 0 ? 1 : -1;
    } else {
        const double dx = double(stepX) / 1000.0;
        const double dy = double(stepY) / 1000.0;
        length = std::sqrt(dx * dx + dy * dy);
        ux = dx / length;
        uy = dy / length;
    }
    const qint32 feed = m.kind == PlannedMove::Travel ? 0 : m.feed;
    const bool goesOn =
        m_runOpen && m_runKind == m.kind && m_runFeed == feed && ux * m_runDx + uy * m_runDy >= 1.0 - Collinear;
    if (!goesOn) {
        closeRun();
        m_runOpen = true;
        m_runKind = m.kind;
        m_runFeed = feed;
        m_runDx = ux;
        m_runDy = uy;
        m_runLength = 0;
    }
    m_runLength += length;
    if (m.kind == PlannedMove::Cut && m.power > 0)
        m_burnMm += length;
}

void JobEstimate::endLayer()
{
    closeRun();
    if (m_layers.empty())
        return;
    m_layers.back().seconds = m_seconds - m_layerStartSeconds;
    m_layers.back().burnMm = m_burnMm - m_layerStartBurn;
}

double JobEstimate::seconds() const
{
    if (!m_runOpen)
        return m_seconds;
    const double feed = m_runKind == PlannedMove::Travel ? m_travelSpeed : double(m_runFeed);
    return m_seconds + MotionModel::restToRestSeconds(m_runLength, feed, m_acceleration);
}

double JobEstimate::burnMm() const { return m_burnMm; }

void JobEstimate::closeRun()
{
    m_seconds = seconds();
    m_runOpen = false;
    m_runLength = 0;
}
