// Path ordering for the vector converter: randomised 2-opt passes over the order of
// the paths' start points, with the draws made ahead on helper threads.
#ifndef PATHORDER_H
#define PATHORDER_H

#include <cstdint>
#include <functional>

struct PathStart
{
    float x, y;
};

// The generator state the order's draws start from, given a time in seconds since
// the epoch (the clock's, or a fixed one for a repeatable run).
uint32_t pathOrderSeed(double seconds);

// Shortens the travel between paths with `passes` 2-opt passes. order[0..n) holds path
// numbers and at[0..n) the start point of the path at each position; both are reversed
// together. `portable` avoids the vector unit (same result, slower). `passDone` is told
// each finished pass, also when there are too few paths to change anything.
void orderPaths(int n, int *order, PathStart *at, uint32_t seed, int passes, bool portable,
                const std::function<void(int)> &passDone);

#endif
