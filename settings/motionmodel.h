// How long the machine takes for its moves: the one motion model behind every time estimate.
// Tunables and formulas live here only; the exports, the preview, the runner and the job engine call them.
#ifndef MOTIONMODEL_H
#define MOTIONMODEL_H

#include <cmath>

namespace MotionModel {

// The acceleration the classic exports, their preview and the job runner assume, in mm/s^2.
constexpr double ClassicAcceleration = 300.0;

// Seconds for a straight run of `distance` mm that starts and ends at rest, at `feed` mm/min, with
// `acceleration` mm/s^2: a trapezoid, d/v + v/a, when the run is long enough to reach the feed
// (d >= v^2/a); a triangle, 2 sqrt(d/a), when it is not. 0 for no distance, a feed or an acceleration
// of 0 or less, or a number that is not finite.
inline double restToRestSeconds(double distance, double feed, double acceleration)
{
    const double v = feed / 60.0;
    if (!(distance > 0) || !(v > 0) || !(acceleration > 0) || !std::isfinite(distance) || !std::isfinite(v)
        || !std::isfinite(acceleration))
        return 0;
    if (distance >= v * v / acceleration)
        return distance / v + v / acceleration;
    return 2.0 * std::sqrt(distance / acceleration);
}

// Defaults of a machine profile of the job road, also the preview's for G-code it did not write itself.
constexpr double DefaultAcceleration = 500.0;  // mm/s^2
constexpr double DefaultTravelSpeed = 3000.0;  // mm/min

// Times a sequence of straight moves: moves in one straight line, at one feed and of one kind (travel or
// cut) run on without stopping; any change of direction, feed or kind ends the run, and every run starts
// and ends at rest (restToRestSeconds). The one clock of the job estimate and of the preview.
class RunClock
{
public:
    explicit RunClock(double acceleration) : m_acceleration(acceleration) {}

    // A move by (dx, dy, dz) mm at `feed` mm/min; `kind` tells travel from cut (any small number).
    // A move of no length changes nothing.
    void add(double dx, double dy, double dz, double feed, int kind)
    {
        const double length = std::sqrt(dx * dx + dy * dy + dz * dz);
        if (!(length > 0) || !std::isfinite(length))
            return;
        const double ux = dx / length, uy = dy / length, uz = dz / length;
        const bool goesOn =
            m_open && m_kind == kind && m_feed == feed && ux * m_ux + uy * m_uy + uz * m_uz >= 1.0 - Collinear;
        if (!goesOn) {
            stop();
            m_open = true;
            m_kind = kind;
            m_feed = feed;
            m_ux = ux, m_uy = uy, m_uz = uz;
        }
        m_length += length;
    }
    // The machine comes to rest: the run in progress ends.
    void stop()
    {
        m_seconds = seconds();
        m_open = false;
        m_length = 0;
    }
    // Every move so far, the run in progress included.
    double seconds() const
    {
        return m_open ? m_seconds + restToRestSeconds(m_length, m_feed, m_acceleration) : m_seconds;
    }

private:
    // Two moves go on in one run when their directions differ by less than this (1 - cos of the angle,
    // about 0.003 degrees).
    static constexpr double Collinear = 1e-9;

    double m_acceleration;
    double m_seconds = 0;
    bool m_open = false;
    int m_kind = 0;
    double m_feed = 0;
    double m_ux = 0, m_uy = 0, m_uz = 0;
    double m_length = 0;
};

// The classic exports' own reckoning of one straight move of `distance` mm at `feed` mm/min, which
// their time texts are made of: 2 sqrt(a d)/a when sqrt(a d) is below the speed, otherwise
// 1.5 v/a + d/v. Worked out in the callers' own precision (float or double), so their texts stay
// exactly as they are. No check on the feed: the raster export's sum turns infinite (or undefined)
// at a feed of 0, as it always has.
template <typename Real>
Real classicMoveSecondsUnchecked(Real distance, Real feed)
{
    const Real a = Real(ClassicAcceleration);
    const Real v = feed / Real(60);
    const Real p = std::sqrt(a * distance);
    // Both times worked out and one picked: which applies changes from move to move in a
    // dithered picture, too often for a branch.
    const Real accelerating = Real(2) * p / a;
    const Real cruising = v * Real(3) * Real(0.5) / a + distance / v;
    return v > p ? accelerating : cruising;
}

// The same, with 0 for a feed of 0 or less (a move that never gets anywhere has no time to give).
template <typename Real>
Real classicMoveSeconds(Real distance, Real feed)
{
    if (!(feed / Real(60) > 0))
        return 0;
    return classicMoveSecondsUnchecked(distance, feed);
}

}  // namespace MotionModel

#endif
