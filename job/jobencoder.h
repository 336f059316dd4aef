// The encoding stage: planned moves become G-code text in the profile's dialect (jobdialect.h).
// Axis words, F and S are written only where they change; every line ends in '\n'.
#ifndef JOBENCODER_H
#define JOBENCODER_H

#include "jobdialect.h"
#include "jobdocument.h"
#include "jobmoves.h"

#include <QByteArray>

class JobEncoder : public MoveSink
{
public:
    // Appends to `out`; the dialect's start is written at once.
    JobEncoder(const MachineProfile &profile, QByteArray *out);

    // "; layer N: NAME", N counted from 1 by the layer's place in the document.
    void beginLayer(int index, const JobLayer &layer) override;
    void move(const PlannedMove &m) override;
    // The beam off and the dialect's end. Call once, after the last move.
    void finish();

private:
    const DialectTexts &m_texts;
    QByteArray *m_out;
    // what the machine has been told so far
    bool m_first = true;
    qint32 m_x = 0, m_y = 0;
    qint32 m_feed = -1;
    qint32 m_power = -1;
    bool m_beamOn = false;
};

#endif
