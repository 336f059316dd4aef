// Follows a G-code file as a machine would and hands every straight piece of motion on.
// Plain code over bytes read in blocks; arcs are cut into short chords here.
#include "gcodeinterpreter.h"

#include "gcodetokenizer.h"
#include "motionmodel.h"

#include <QBuffer>
#include <QIODevice>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

constexpr qint64 BlockBytes = 1 << 20;
constexpr double MmPerInch = 25.4;
// M106 drives the beam as a fan output: 255 is full power.
constexpr double FanFullScale = 255.0;
// Speed of G0 for the time of other programs' files; the machine's own maximum is not known.
constexpr double RapidRate = 6000.0;  // mm/min
// Arcs: chords stray at most this far from the circle, and no arc gets more chords than this.
constexpr double ArcTolerance = 0.005;  // mm
constexpr int MaxArcChords = 20000;
// Small slack so that a move along the edge of the work area is not taken for leaving it.
constexpr double EdgeSlack = 1e-6;
constexpr double Pi = 3.14159265358979323846;
// Power of the beam that marks a frame (S5 of 255) and stays on into the first travel;
// rapid moves at up to this power are not worth a warning.
constexpr double FaintPower = 0.05;
// Largest number a line may hold (10 km in mm), so that sums of moves stay finite.
constexpr double MaxMagnitude = 1e7;
// Vector time: steps up to this long (mm) are measured over StepWindow points on each side;
// a run of short steps is settled at the latest after MaxRunPoints points.
constexpr float ShortStep = 0.5f;
constexpr int StepWindow = 2;
constexpr size_t MaxRunPoints = 4096;

bool startsWith(const char *text, int length, const char *prefix)
{
    const int n = int(std::strlen(prefix));
    return length >= n && std::memcmp(text, prefix, size_t(n)) == 0;
}

bool contains(const char *text, int length, const char *needle)
{
    const int n = int(std::strlen(needle));
    for (int i = 0; i + n <= length; ++i) {
        if (std::memcmp(text + i, needle, size_t(n)) == 0)
            return true;
    }
    return false;
}

// G and M numbers: G1 and G01 alike; G91.1 and other decimals are not codes we know.
int codeOf(double value)
{
    const double rounded = std::round(value);
    if (std::fabs(value - rounded) > 1e-9 || rounded < 0 || rounded > 1000)
        return -1;
    return int(rounded);
}

bool isSpindleLine(const GcodeTokenizer::Word *words, int count, int code)
{
    for (int i = 0; i < count; ++i) {
        if (words[i].letter == 'M' && codeOf(words[i].value) == code)
            return true;
    }
    return false;
}

}  // namespace

void GcodeInterpreter::reset()
{
    m_sum = ToolpathSummary();
    m_sum.areaWidth = m_areaWidth;
    m_sum.areaHeight = m_areaHeight;
    m_fullScale = m_toldFullScale;
    m_scannedAhead = m_toldFullScale > 0;
    m_x = m_y = m_z = 0;
    m_offX = m_offY = m_offZ = 0;
    m_relative = false;
    m_unit = 1.0;
    m_motion = 0;
    m_feed = 0;
    m_s = 0;
    m_spindleOn = false;
    m_fanPower = -1;
    m_lineNumber = 0;
    m_maxS = 0;
    m_outLine = 0;
    m_candidate = Clock::Generic;
    m_clock = Clock::Generic;
    m_pastPause = false;
    m_pending = false;
    m_pendingLength = 0;
    m_run.assign(1, VectorPoint{0, 0});
    m_pointArmed = false;
    m_clockSum = 0;
    m_genericSeconds = 0;
    m_runClock = MotionModel::RunClock(m_acceleration);
    m_burnBox = Box();
    m_moveBox = Box();
    m_outBox = Box();
    m_cutZ = Box();
}

ToolpathSummary GcodeInterpreter::run(const QByteArray &text)
{
    QByteArray copy = text;  // QBuffer wants a modifiable array; the copy is shared, not copied
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    return run(&buffer);
}

ToolpathSummary GcodeInterpreter::run(QIODevice *device)
{
    reset();
    m_device = device;
    const qint64 total = device->isSequential() ? 0 : device->size();
    qint64 done = 0;
    QByteArray carry;
    std::vector<char> block(static_cast<size_t>(BlockBytes));
    for (;;) {
        const qint64 got = device->read(block.data(), BlockBytes);
        if (got <= 0)
            break;
        done += got;
        const char *data = block.data();
        m_blockRest = data;
        m_blockEnd = data + got;
        qint64 start = 0;
        while (start < got) {
            const char *nl = static_cast<const char *>(std::memchr(data + start, '\n', size_t(got - start)));
            if (!nl) {
                carry.append(data + start, int(got - start));
                break;
            }
            const qint64 end = nl - data;
            m_blockRest = nl + 1;
            if (!carry.isEmpty()) {
                carry.append(data + start, int(end - start));
                readLine(carry.constData(), carry.size());
                carry.clear();
            } else {
                readLine(data + start, int(end - start));
            }
            start = end + 1;
        }
        if (m_onProgress && !m_onProgress(done, total)) {
            m_sum.cancelled = true;
            break;
        }
    }
    m_blockRest = m_blockEnd = nullptr;
    if (!carry.isEmpty() && !m_sum.cancelled)
        readLine(carry.constData(), carry.size());
    finishClock();
    m_device = nullptr;

    // Extent: what burns; when nothing does, wherever the head goes.
    const Box &extent = m_sum.burnMoves > 0 ? m_burnBox : m_moveBox;
    m_sum.hasExtent = extent.valid;
    if (extent.valid) {
        m_sum.minX = extent.x0;
        m_sum.maxX = extent.x1;
        m_sum.minY = extent.y0;
        m_sum.maxY = extent.y1;
    }
    if (m_outBox.valid) {
        m_sum.outMinX = m_outBox.x0;
        m_sum.outMaxX = m_outBox.x1;
        m_sum.outMinY = m_outBox.y0;
        m_sum.outMaxY = m_outBox.y1;
    }
    if (m_cutZ.valid) {
        m_sum.minCutZ = m_cutZ.x0;
        m_sum.maxCutZ = m_cutZ.x1;
    }
    m_sum.seconds = m_clock == Clock::Generic ? m_genericSeconds + m_runClock.seconds() : double(m_clockSum);
    return m_sum;
}

void GcodeInterpreter::readLine(const char *text, int length)
{
    if (length > 0 && text[length - 1] == '\r')
        --length;
    ++m_lineNumber;
    ++m_sum.lines;
    if (m_lineNumber <= 2)
        detectClock(text, length);
    if (!interpretLine(text, length)) {
        ++m_sum.linesNotUnderstood;
        if (m_sum.firstLineNotUnderstood == 0)
            m_sum.firstLineNotUnderstood = m_lineNumber;
    }
}

// The exports begin with their feed and a G28 whose comment they alone write.
void GcodeInterpreter::detectClock(const char *text, int length)
{
    if (m_lineNumber == 1) {
        if (startsWith(text, length, "G1 F7200 ") || startsWith(text, length, "G1 F3600 "))
            m_candidate = Clock::OwnRaster;
        else if (startsWith(text, length, "G1 F2000 "))
            m_candidate = Clock::OwnVector;
        else
            m_candidate = Clock::Generic;
        return;
    }
    if (startsWith(text, length, "G28 X0 Y0") && contains(text, length, ";move X/Y to min endstops"))
        m_clock = m_candidate;
}

bool GcodeInterpreter::interpretLine(const char *text, int length)
{
    GcodeTokenizer::Word words[GcodeTokenizer::MaxWords];
    int count = 0;
    if (!GcodeTokenizer::split(text, length, words, &count)) {
        // "%" marks the start and end of a program in some files.
        const QByteArray code = GcodeTokenizer::stripComments(text, length);
        return code == "%";
    }
    if (count == 0)
        return true;

    // First make sure every word is one we know, so that a line is taken whole or not at all.
    int motion = -1;
    bool dwell = false, setOrigin = false, home = false, pause = false;
    int units = 0, distance = 0;  // 20/21, 90/91
    int spindle = -1;             // 3, 4 or 5
    int fan = -1;                 // 106 or 107
    bool hasX = false, hasY = false, hasZ = false, hasI = false, hasJ = false;
    bool hasF = false, hasS = false, hasP = false;
    double x = 0, y = 0, z = 0, i = 0, j = 0, f = 0, s = 0, p = 0;
    for (int w = 0; w < count; ++w) {
        const double v = words[w].value;
        // Beyond any machine, and on the way to infinities: not a line we can follow.
        if (!(std::fabs(v) <= MaxMagnitude))
            return false;
        switch (words[w].letter) {
        case 'G':
            switch (codeOf(v)) {
            case 0:
            case 1:
            case 2:
            case 3:
                motion = codeOf(v);
                break;
            case 4:
                dwell = true;
                break;
            case 17:
            case 54:
            case 94:
                break;  // the only plane, work system and feed mode we know
            case 20:
            case 21:
                units = codeOf(v);
                break;
            case 28:
                home = true;
                break;
            case 90:
            case 91:
                distance = codeOf(v);
                break;
            case 92:
                setOrigin = true;
                break;
            default:
                return false;
            }
            break;
        case 'M':
            switch (codeOf(v)) {
            case 0:
            case 1:
                pause = true;
                break;
            case 2:
            case 30:
                break;  // end of program
            case 7:
            case 8:
            case 9:
                break;  // air assist / coolant
            case 3:
            case 4:
            case 5:
                spindle = codeOf(v);
                break;
            case 106:
            case 107:
                fan = codeOf(v);
                break;
            default:
                return false;
            }
            break;
        case 'X':
            hasX = true;
            x = v;
            break;
        case 'Y':
            hasY = true;
            y = v;
            break;
        case 'Z':
            hasZ = true;
            z = v;
            break;
        case 'I':
            hasI = true;
            i = v;
            break;
        case 'J':
            hasJ = true;
            j = v;
            break;
        case 'F':
            hasF = true;
            f = v;
            break;
        case 'S':
            hasS = true;
            s = v;
            break;
        case 'P':
            hasP = true;
            p = v;
            break;
        case 'N':
            break;  // line number
        default:
            return false;
        }
    }
    if ((hasI || hasJ) && !(motion == 2 || motion == 3 || (motion < 0 && (m_motion == 2 || m_motion == 3))))
        return false;
    if (hasP && !dwell)
        return false;
    // Firmware refuses a negative feed rate and runs nothing of the line.
    if (hasF && f < 0)
        return false;

    if (units == 20)
        m_unit = MmPerInch;
    else if (units == 21)
        m_unit = 1.0;
    if (distance == 90)
        m_relative = false;
    else if (distance == 91)
        m_relative = true;
    if (hasF)
        m_feed = f * m_unit;
    if (fan == 106)
        m_pointArmed = true;
    if (fan == 106)
        m_fanPower = hasS ? std::max(s, 0.0) : FanFullScale;
    else if (fan == 107)
        m_fanPower = -1;
    if (hasS && fan != 106) {
        m_s = s;
        m_maxS = std::max(m_maxS, s);
        if (m_toldFullScale <= 0)
            m_fullScale = std::max(m_fullScale, s);
    }
    if (spindle == 3 || spindle == 4) {
        m_spindleOn = true;
        if (!m_scannedAhead) {
            m_scannedAhead = true;
            m_fullScale = std::max(m_fullScale, scanFullScale());
        }
    } else if (spindle == 5) {
        m_spindleOn = false;
    }
    if (dwell && m_clock == Clock::Generic && hasP) {
        m_runClock.stop();
        m_genericSeconds += std::max(p, 0.0);
    }
    if (pause && !m_pastPause) {
        m_pastPause = true;
        m_run.assign(1, VectorPoint{float(m_x), float(m_y)});
    }

    // Coordinates named on the line, as machine positions.
    auto target = [this](bool has, double value, double machine, double offset) {
        if (!has)
            return machine;
        return m_relative ? machine + value * m_unit : value * m_unit + offset;
    };
    const double tx = target(hasX, x, m_x, m_offX);
    const double ty = target(hasY, y, m_y, m_offY);
    const double tz = target(hasZ, z, m_z, m_offZ);

    if (setOrigin) {
        // G92: the present position takes the given program coordinates.
        if (hasX)
            m_offX = m_x - x * m_unit;
        if (hasY)
            m_offY = m_y - y * m_unit;
        if (hasZ)
            m_offZ = m_z - z * m_unit;
        return true;
    }
    if (home) {
        // G28 passes through the named point, then goes to the machine origin on those axes
        // (X and Y when none is named).
        if (hasX || hasY || hasZ)
            moveTo(tx, ty, tz, true, false, false);
        const bool all = !(hasX || hasY || hasZ);
        moveTo(all || hasX ? 0.0 : m_x, all || hasY ? 0.0 : m_y, hasZ ? 0.0 : m_z, true, false, false);
        return true;
    }
    if (motion >= 0)
        m_motion = motion;
    if (!(hasX || hasY || hasZ))
        return true;
    if (m_motion == 2 || m_motion == 3) {
        if (!(hasI || hasJ))
            return false;  // arcs by radius are not read
        arcTo(tx, ty, tz, i * m_unit, j * m_unit, m_motion == 2);
    } else {
        moveTo(tx, ty, tz, m_motion == 0, true, hasX || hasY);
    }
    return true;
}

double GcodeInterpreter::currentPower() const
{
    double power = m_fanPower >= 0 ? m_fanPower / FanFullScale : 0.0;
    if (m_spindleOn && m_fullScale > 0)
        power = std::max(power, m_s / m_fullScale);
    return std::clamp(power, 0.0, 1.0);
}

void GcodeInterpreter::moveTo(double x, double y, double z, bool rapid, bool programMove, bool xyGiven)
{
    ToolpathMove move;
    move.x0 = m_x;
    move.y0 = m_y;
    move.z0 = m_z;
    move.x1 = x;
    move.y1 = y;
    move.z1 = z;
    move.rapid = rapid;
    move.power = currentPower();
    move.feed = rapid ? RapidRate : m_feed;
    m_x = x;
    m_y = y;
    m_z = z;
    if (programMove)
        clockMove(move, xyGiven);
    else if (m_clock == Clock::Generic)
        clockMove(move, xyGiven);
    const bool moved = move.x0 != move.x1 || move.y0 != move.y1 || move.z0 != move.z1;
    if (!moved)
        return;
    ++m_sum.moves;
    if (move.burns())
        ++m_sum.burnMoves;
    else if (move.rapid && move.power > FaintPower)
        ++m_sum.rapidMovesBeamOn;
    countMove(move);
}

void GcodeInterpreter::arcTo(double x, double y, double z, double i, double j, bool clockwise)
{
    const double cx = m_x + i, cy = m_y + j;
    const double r = std::hypot(m_x - cx, m_y - cy);
    const double a0 = std::atan2(m_y - cy, m_x - cx);
    const double a1 = std::atan2(y - cy, x - cx);
    double sweep = a1 - a0;
    // Back to its start: a whole circle. Otherwise the short way round in the given direction.
    if (std::hypot(x - m_x, y - m_y) < 1e-9)
        sweep = clockwise ? -2 * Pi : 2 * Pi;
    else if (clockwise && sweep > 0)
        sweep -= 2 * Pi;
    else if (!clockwise && sweep < 0)
        sweep += 2 * Pi;
    int chords = 1;
    if (r > ArcTolerance) {
        const double step = 2 * std::acos(1 - ArcTolerance / r);
        chords = int(std::clamp(std::ceil(std::fabs(sweep) / step), 1.0, double(MaxArcChords)));
    }
    const double sz = m_z;
    ToolpathMove piece;
    piece.power = currentPower();
    piece.feed = m_feed;
    bool burned = false, moved = false;
    for (int k = 1; k <= chords; ++k) {
        piece.x0 = m_x;
        piece.y0 = m_y;
        piece.z0 = m_z;
        if (k == chords) {
            piece.x1 = x;
            piece.y1 = y;
            piece.z1 = z;
        } else {
            const double a = a0 + sweep * k / chords;
            piece.x1 = cx + r * std::cos(a);
            piece.y1 = cy + r * std::sin(a);
            piece.z1 = sz + (z - sz) * k / chords;
        }
        m_x = piece.x1;
        m_y = piece.y1;
        m_z = piece.z1;
        clockMove(piece, true);
        if (piece.x0 == piece.x1 && piece.y0 == piece.y1 && piece.z0 == piece.z1)
            continue;
        moved = true;
        burned = burned || piece.burns();
        countMove(piece);
    }
    if (moved) {
        ++m_sum.moves;
        if (burned)
            ++m_sum.burnMoves;
    }
}

// Bounds, the work-area test and the handler, for one piece that goes somewhere.
void GcodeInterpreter::countMove(const ToolpathMove &move)
{
    const double x0 = std::min(move.x0, move.x1), x1 = std::max(move.x0, move.x1);
    const double y0 = std::min(move.y0, move.y1), y1 = std::max(move.y0, move.y1);
    m_moveBox.add(x0, y0, x1, y1);
    if (move.burns()) {
        m_burnBox.add(x0, y0, x1, y1);
        const double zLow = std::min(move.z0, move.z1);
        m_cutZ.add(zLow, 0, zLow, 0);
    }
    const bool outside =
        x0 < -EdgeSlack || y0 < -EdgeSlack || x1 > m_areaWidth + EdgeSlack || y1 > m_areaHeight + EdgeSlack;
    if (outside && m_outLine != m_lineNumber) {
        // One count per line, however many chords an arc is cut into.
        m_outLine = m_lineNumber;
        if (move.burns())
            ++m_sum.burnMovesOutside;
        else
            ++m_sum.travelMovesOutside;
    }
    if (outside)
        addOutsidePart(move);
    if (m_onMove)
        m_onMove(move);
}

// Widens the outside box by the parts of a move that lie beyond the work area: the move less
// the stretch that the area clips out of it (Liang-Barsky).
void GcodeInterpreter::addOutsidePart(const ToolpathMove &move)
{
    const double dx = move.x1 - move.x0, dy = move.y1 - move.y0;
    double enter = 0, leave = 1;
    auto clip = [&enter, &leave](double p, double q) {
        if (p == 0)
            return q >= 0;
        const double t = q / p;
        if (p < 0)
            enter = std::max(enter, t);
        else
            leave = std::min(leave, t);
        return enter <= leave;
    };
    const bool crosses =
        clip(-dx, move.x0) && clip(dx, m_areaWidth - move.x0) && clip(-dy, move.y0) && clip(dy, m_areaHeight - move.y0);
    auto at = [&move, dx, dy](double t) { return std::make_pair(move.x0 + t * dx, move.y0 + t * dy); };
    auto add = [this](std::pair<double, double> a, std::pair<double, double> b) {
        m_outBox.add(std::min(a.first, b.first), std::min(a.second, b.second), std::max(a.first, b.first),
                     std::max(a.second, b.second));
    };
    if (!crosses) {
        add(at(0), at(1));
        return;
    }
    if (enter > 0)
        add(at(0), at(enter));
    if (leave < 1)
        add(at(leave), at(1));
}

void GcodeInterpreter::clockMove(const ToolpathMove &move, bool xyGiven)
{
    switch (m_clock) {
    case Clock::Generic: {
        // Runs of straight moves at one feed, as the job engine times its own files.
        m_runClock.add(move.x1 - move.x0, move.y1 - move.y0, move.z1 - move.z0, move.rapid ? m_travelSpeed : move.feed,
                       move.rapid ? 0 : 1);
        break;
    }
    case Clock::OwnRaster: {
        // The raster exports time each step at the feed that the following group sets:
        // the step to a burn at the burn feed, the burn itself at the travel feed.
        if (!m_pastPause)
            return;
        if (m_pending)
            m_clockSum += MotionModel::classicMoveSeconds<float>(m_pendingLength, float(m_feed));
        const float dx = float(move.x1) - float(move.x0);
        const float dy = float(move.y1) - float(move.y0);
        m_pendingLength = std::sqrt(dx * dx + dy * dy);
        m_pending = true;
        break;
    }
    case Clock::OwnVector: {
        // The vector export counts its engraved points only, each from the one before. A
        // point is the first move after a beam-on line (each is written twice).
        if (!m_pastPause || move.rapid || !xyGiven || !m_pointArmed)
            return;
        m_pointArmed = false;
        addVectorPoint(float(move.x1), float(move.y1));
        break;
    }
    }
}

// The export timed its points at full precision; the file has them to 0.1 mm, which turns
// runs of short steps into stairs and repeats. Short steps are therefore measured over a few
// neighbours on each side, long ones as they stand.
void GcodeInterpreter::addVectorPoint(float x, float y)
{
    const VectorPoint &last = m_run.back();
    const float dx = x - last.x, dy = y - last.y;
    const float d = std::sqrt(dx * dx + dy * dy);
    if (d > ShortStep) {
        flushRun();
        addVectorStep(d);
        m_run.assign(1, VectorPoint{x, y});
        return;
    }
    m_run.push_back(VectorPoint{x, y});
    if (m_run.size() > MaxRunPoints)
        flushRun();
}

void GcodeInterpreter::flushRun()
{
    const int n = int(m_run.size()) - 1;
    for (int i = 1; i <= n; ++i) {
        const int lo = std::max(0, i - StepWindow), hi = std::min(n, i + StepWindow - 1);
        const float dx = m_run[size_t(hi)].x - m_run[size_t(lo)].x;
        const float dy = m_run[size_t(hi)].y - m_run[size_t(lo)].y;
        addVectorStep(std::sqrt(dx * dx + dy * dy) / float(hi - lo));
    }
    const VectorPoint end = m_run.back();
    m_run.assign(1, end);
}

void GcodeInterpreter::addVectorStep(float d)
{
    const float t = MotionModel::classicMoveSeconds<float>(d, float(m_feed));
    if (std::isfinite(t))
        m_clockSum += t;
}

void GcodeInterpreter::finishClock()
{
    if (m_clock == Clock::OwnRaster && m_pending)
        m_clockSum += MotionModel::classicMoveSeconds<float>(m_pendingLength, float(m_feed));
    if (m_clock == Clock::OwnVector)
        flushRun();
    m_pending = false;
}

// The largest S from here to the end of the file, read ahead so that M3/M4 power is known
// before the first burn is drawn. The device is put back where it was.
double GcodeInterpreter::scanFullScale()
{
    double largest = m_maxS;
    auto scanText = [&largest](const char *data, qint64 size) {
        GcodeTokenizer::Word words[GcodeTokenizer::MaxWords];
        qint64 start = 0;
        while (start < size) {
            const char *nl = static_cast<const char *>(std::memchr(data + start, '\n', size_t(size - start)));
            const qint64 end = nl ? nl - data : size;
            int count = 0;
            GcodeTokenizer::split(data + start, int(end - start), words, &count);
            if (!isSpindleLine(words, count, 106)) {
                for (int w = 0; w < count; ++w) {
                    if (words[w].letter == 'S')
                        largest = std::max(largest, words[w].value);
                }
            }
            start = end + 1;
        }
    };
    if (m_blockRest && m_blockEnd > m_blockRest)
        scanText(m_blockRest, m_blockEnd - m_blockRest);
    if (m_device && !m_device->isSequential()) {
        const qint64 back = m_device->pos();
        std::vector<char> block(static_cast<size_t>(BlockBytes));
        QByteArray carry;
        for (;;) {
            const qint64 got = m_device->read(block.data(), BlockBytes);
            if (got <= 0)
                break;
            // Lines cut by the block edge are read whole on the next round.
            const char *lastNl = nullptr;
            for (qint64 k = got - 1; k >= 0; --k) {
                if (block[size_t(k)] == '\n') {
                    lastNl = block.data() + k;
                    break;
                }
            }
            if (!lastNl) {
                carry.append(block.data(), int(got));
                continue;
            }
            carry.append(block.data(), int(lastNl - block.data()));
            scanText(carry.constData(), carry.size());
            carry = QByteArray(lastNl + 1, int(block.data() + got - (lastNl + 1)));
        }
        scanText(carry.constData(), carry.size());
        m_device->seek(back);
    }
    return largest;
}
