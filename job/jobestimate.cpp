// The time estimate: moves are gathered into straight runs at one feed, each run timed from rest to
// rest by the motion model.
#include "jobestimate.h"

#include "motionmodel.h"

#include <cmath>

JobEstimate::JobEstimate(const MachineProfile &profile)
    : m_travelSpeed(profile.travelSpeed), m_clock(profile.acceleration)
{}

void JobEstimate::beginLayer(int index, const JobLayer &layer)
{
    m_clock.stop();
    Layer entry;
    entry.index = index;
    entry.name = layer.name;
    m_layers.push_back(entry);
    m_layerStartSeconds = m_clock.seconds();
    m_layerStartBurn = m_burnMm;
}

void JobEstimate::move(const PlannedMove &m)
{
    const double dx = double(qint64(m.x) - m_x) / 1000.0;
    const double dy = double(qint64(m.y) - m_y) / 1000.0;
    m_x = m.x;
    m_y = m.y;
    const bool travel = m.kind == PlannedMove::Travel;
    m_clock.add(dx, dy, 0, travel ? m_travelSpeed : double(m.feed), int(m.kind));
    if (!travel && m.power > 0)
        m_burnMm += std::sqrt(dx * dx + dy * dy);
}

void JobEstimate::endLayer()
{
    m_clock.stop();
    if (m_layers.empty())
        return;
    m_layers.back().seconds = m_clock.seconds() - m_layerStartSeconds;
    m_layers.back().burnMm = m_burnMm - m_layerStartBurn;
}

double JobEstimate::seconds() const { return m_clock.seconds(); }

double JobEstimate::burnMm() const { return m_burnMm; }
