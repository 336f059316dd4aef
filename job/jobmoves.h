// The planned moves of a job: what the planner hands on to the encoder, the estimate and the tests.
// Coordinates are whole micrometres and powers whole thousandths of an S unit, so every stage agrees exactly.
#ifndef JOBMOVES_H
#define JOBMOVES_H

#include <QtGlobal>

#include <cmath>

struct JobLayer;

struct PlannedMove
{
    enum Kind : quint8 {
        Travel,  // G0: a rapid move with the beam off
        Cut      // G1 at `feed` with `power`; a power of 0 moves at the feed with the beam off (overscan)
    };
    Kind kind = Travel;
    qint32 x = 0;      // um, machine coordinates (origin at the bed's bottom left)
    qint32 y = 0;      // um
    qint32 power = 0;  // S x 1000 in the dialect's own scale (Cut only)
    qint32 feed = 0;   // mm/min (Cut only)

    bool operator==(const PlannedMove &o) const
    {
        return kind == o.kind && x == o.x && y == o.y && power == o.power && feed == o.feed;
    }
};

// Millimetres to the whole micrometres of a planned move, rounded to nearest.
inline qint32 toMicrons(double mm) { return qint32(std::llround(mm * 1000.0)); }

// Receives a job's moves in the order the machine makes them. Layers are given by their index in the
// document (a disabled layer never begins); every pass of a layer comes between its begin and end.
class MoveSink
{
public:
    virtual ~MoveSink() = default;
    virtual void beginLayer(int /*index*/, const JobLayer & /*layer*/) {}
    virtual void move(const PlannedMove &m) = 0;
    virtual void endLayer() {}
};

#endif
