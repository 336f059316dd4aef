// Fuzz target of the preview's G-code interpreter: any bytes as a job. Every move must be
// made of finite numbers with a power between 0 and 1, and lie inside the extent reported.
#include "fuzzsupport.h"
#include "gcodeinterpreter.h"

#include <cmath>
#include <vector>

namespace {

bool finite(const ToolpathMove &m)
{
    return std::isfinite(m.x0) && std::isfinite(m.y0) && std::isfinite(m.z0) && std::isfinite(m.x1)
           && std::isfinite(m.y1) && std::isfinite(m.z1) && std::isfinite(m.power) && std::isfinite(m.feed);
}

bool inside(double v, double low, double high)
{
    const double slack = 1e-9 * (1 + std::fabs(low) + std::fabs(high));
    return v >= low - slack && v <= high + slack;
}

}  // namespace

FUZZ_INITIALIZE()

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray job = FuzzBytes(data, size).restView();
    std::vector<ToolpathMove> moves;
    GcodeInterpreter interpreter;
    interpreter.setMoveHandler([&moves](const ToolpathMove &m) { moves.push_back(m); });
    const ToolpathSummary sum = interpreter.run(job);

    FUZZ_REQUIRE(std::isfinite(sum.seconds) && sum.seconds >= 0, job);
    FUZZ_REQUIRE(sum.linesNotUnderstood >= 0 && sum.linesNotUnderstood <= sum.lines, job);
    FUZZ_REQUIRE(sum.firstLineNotUnderstood >= 0 && sum.firstLineNotUnderstood <= sum.lines, job);
    FUZZ_REQUIRE(sum.burnMoves >= 0 && sum.burnMoves <= sum.moves, job);
    FUZZ_REQUIRE(sum.hasExtent == !moves.empty(), job);
    FUZZ_REQUIRE(!sum.hasExtent || (sum.minX <= sum.maxX && sum.minY <= sum.maxY), job);
    bool burnSeen = false;
    for (const ToolpathMove &m : moves) {
        FUZZ_REQUIRE(finite(m), job);
        FUZZ_REQUIRE(m.power >= 0 && m.power <= 1 && m.feed >= 0, job);
        burnSeen = burnSeen || m.burns();
    }
    FUZZ_REQUIRE(burnSeen == (sum.burnMoves > 0), job);
    // The extent covers what burns, or every move when nothing burns.
    for (const ToolpathMove &m : moves) {
        if (burnSeen && !m.burns())
            continue;
        FUZZ_REQUIRE(inside(m.x0, sum.minX, sum.maxX) && inside(m.x1, sum.minX, sum.maxX)
                         && inside(m.y0, sum.minY, sum.maxY) && inside(m.y1, sum.minY, sum.maxY),
                     job);
    }
    return 0;
}
