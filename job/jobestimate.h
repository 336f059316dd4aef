// The job's time and burn length, from its planned moves through the one motion model
// (motionmodel.h): the estimate the command line, the window and the preview show.
#ifndef JOBESTIMATE_H
#define JOBESTIMATE_H

#include "jobdocument.h"
#include "jobmoves.h"
#include "motionmodel.h"

#include <QString>

#include <vector>

// Moves are timed by the motion model's run clock (motionmodel.h), the same clock as the preview's:
// straight runs at one feed go on without stopping, each run starts and ends at rest. Travel runs at
// the profile's travel speed; every layer starts and ends at rest.
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
    double m_travelSpeed;
    MotionModel::RunClock m_clock;
    double m_burnMm = 0;
    std::vector<Layer> m_layers;
    qint32 m_x = 0, m_y = 0;  // where the machine is, um
    double m_layerStartSeconds = 0;
    double m_layerStartBurn = 0;
};

#endif
