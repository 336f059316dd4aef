// The job's time and burn length, from its planned moves through the one motion model
// (motionmodel.h): the estimate the command line, the window and the preview show.
#ifndef JOBESTIMATE_H
#define JOBESTIMATE_H

#include "jobdocument.h"
#include "jobmoves.h"

#include <QString>

#include <vector>

// Moves in one straight line at one feed run on without stopping; a change of direction, of feed, or
// between travel and cut starts a new run, which starts and ends at rest. Travel runs at the
// profile's travel speed.
class JobEstimate : public MoveSink
{
public:
    struct Layer
    {
        int index = 0;  // in the document
        QString name;
        double seconds = 0;
        double burnMm = 0;  // length of the moves with power above 0
    };

    explicit JobEstimate(const MachineProfile &profile);

    void beginLayer(int index, const JobLayer &layer) override;
    void move(const PlannedMove &m) override;
    void endLayer() override;

    // Every move so far, the open run included.
    double seconds() const;
    double burnMm() const;
    const std::vector<Layer> &layers() const { return m_layers; }

private:
    void closeRun();

    double m_acceleration;
    double m_travelSpeed;
    double m_seconds = 0;
    double m_burnMm = 0;
    std::vector<Layer> m_layers;
    // the position, and the run in progress
    qint32 m_x = 0, m_y = 0;
    bool m_runOpen = false;
    PlannedMove::Kind m_runKind = PlannedMove::Travel;
    qint32 m_runFeed = 0;
    double m_runDx = 0, m_runDy = 0;  // unit direction
    double m_runLength = 0;
    double m_layerStartSeconds = 0;
    double m_layerStartBurn = 0;
};

#endif
