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

// The classic exports' own reckoning of one straight move of `distance` mm at `feed` mm/min, which
// their time texts are made of: 2 sqrt(a d)/a when sqrt(a d) is below the speed, otherwise
// 1.5 v/a + d/v. Worked out in the callers' own precision (float or double), so their texts stay
// exactly as they are. A zero feed gives 0.
template<typename Real>
Real classicMoveSeconds(Real distance, Real feed)
{
    const Real a = Real(ClassicAcceleration);
    const Real v = feed / Real(60);
    if (!(v > 0))
        return 0;
    const Real p = std::sqrt(a * distance);
    if (v > p)
        return Real(2) * p / a;
    return v * Real(3) * Real(0.5) / a + distance / v;
}

}  // namespace MotionModel

#endif
