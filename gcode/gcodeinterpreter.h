// Follows a G-code file line by line as a machine would: positions, beam power, Z and feed
// of every move, the time the job takes. Reads in blocks and never keeps the file in memory.
#ifndef GCODEINTERPRETER_H
#define GCODEINTERPRETER_H

#include "motionmodel.h"
#include "workarea.h"

#include <QByteArray>
#include <QtGlobal>

#include <functional>
#include <vector>

class QIODevice;

// One straight piece of a move, in millimetres on the machine (origin bottom left).
struct ToolpathMove
{
    double x0 = 0, y0 = 0, z0 = 0;
    double x1 = 0, y1 = 0, z1 = 0;
    double power = 0;  // fraction of full scale, 0..1; 0 while the beam is off
    double feed = 0;   // mm/min
    bool rapid = false;
    bool burns() const { return !rapid && power > 0; }
};

struct ToolpathSummary
{
    qint64 lines = 0;
    qint64 linesNotUnderstood = 0;
    qint64 firstLineNotUnderstood = 0;  // 1-based, 0 when every line was understood
    qint64 moves = 0;
    qint64 burnMoves = 0;
    // Rapid moves made while the beam is on above a faint marking power: drawn as travel, but a firmware that keeps the
    // beam firing during G0 burns a line there.
    qint64 rapidMovesBeamOn = 0;
    // Bounds of what burns; of every move when nothing burns. Empty: no move at all.
    bool hasExtent = false;
    double minX = 0, maxX = 0, minY = 0, maxY = 0;
    // The work area the file was read against (mm, origin bottom left), the moves that leave
    // it, and the box of their parts outside it.
    double areaWidth = WorkArea::Width;
    double areaHeight = WorkArea::Height;
    qint64 burnMovesOutside = 0;
    qint64 travelMovesOutside = 0;
    double outMinX = 0, outMaxX = 0, outMinY = 0, outMaxY = 0;
    // Cuts (moves with the spindle or beam on) by depth, for CNC files.
    double minCutZ = 0, maxCutZ = 0;
    double seconds = 0;
    bool cancelled = false;
};

class GcodeInterpreter
{
public:
    using MoveHandler = std::function<void(const ToolpathMove &)>;
    // Bytes read so far and the size of the file; returning false stops the reading.
    using ProgressHandler = std::function<bool(qint64 done, qint64 total)>;

    static constexpr double WorkAreaWidth = WorkArea::Width;
    static constexpr double WorkAreaHeight = WorkArea::Height;

    GcodeInterpreter() = default;

    // The S value that stands for full power with M3/M4. Without it the largest S of the
    // file is taken (the file is scanned ahead for it when it uses M3/M4 at all).
    void setSpindleFullScale(double s) { m_toldFullScale = s; }
    // The machine the time of a file not written by the classic exports is reckoned for: its
    // acceleration (mm/s^2) and the speed of its rapid moves (mm/min). Defaults: a job profile's.
    void setMotion(double acceleration, double travelSpeed)
    {
        m_acceleration = acceleration;
        m_travelSpeed = travelSpeed;
    }
    // The machine's work area in mm (origin bottom left); moves beyond it are counted as outside.
    // Default: the classic 170 x 200 mm.
    void setWorkArea(double width, double height)
    {
        m_areaWidth = width;
        m_areaHeight = height;
    }
    void setMoveHandler(MoveHandler handler) { m_onMove = std::move(handler); }
    void setProgressHandler(ProgressHandler handler) { m_onProgress = std::move(handler); }

    // Reads the device from where it stands to its end.
    ToolpathSummary run(QIODevice *device);
    ToolpathSummary run(const QByteArray &text);

private:
    // How the time is reckoned: this program's own raster and vector files are counted as
    // the exports count them, so that the preview agrees with the export's estimate.
    enum class Clock { Generic, OwnRaster, OwnVector };

    void reset();
    void readLine(const char *text, int length);
    bool interpretLine(const char *text, int length);
    void moveTo(double x, double y, double z, bool rapid, bool programMove, bool xyGiven);
    void arcTo(double x, double y, double z, double i, double j, bool clockwise);
    void countMove(const ToolpathMove &move);
    void addOutsidePart(const ToolpathMove &move);
    void clockMove(const ToolpathMove &move, bool xyGiven);
    void finishClock();
    void addVectorPoint(float x, float y);
    void flushRun();
    void addVectorStep(float d);
    void detectClock(const char *text, int length);
    double currentPower() const;
    double scanFullScale();

    struct Box
    {
        bool valid = false;
        double x0 = 0, y0 = 0, x1 = 0, y1 = 0;
        void add(double ax, double ay, double bx, double by)
        {
            if (!valid) {
                x0 = ax;
                y0 = ay;
                x1 = bx;
                y1 = by;
                valid = true;
                return;
            }
            x0 = ax < x0 ? ax : x0;
            y0 = ay < y0 ? ay : y0;
            x1 = bx > x1 ? bx : x1;
            y1 = by > y1 ? by : y1;
        }
    };

    MoveHandler m_onMove;
    ProgressHandler m_onProgress;
    double m_toldFullScale = 0;
    double m_fullScale = 0;
    QIODevice *m_device = nullptr;
    // The unread rest of the block in hand, for the look ahead at the largest S.
    const char *m_blockRest = nullptr;
    const char *m_blockEnd = nullptr;
    bool m_scannedAhead = false;
    double m_maxS = 0;

    ToolpathSummary m_sum;
    // Machine position and the G92 offset (program = machine - offset), in mm.
    double m_x = 0, m_y = 0, m_z = 0;
    double m_offX = 0, m_offY = 0, m_offZ = 0;
    bool m_relative = false;
    double m_unit = 1.0;  // mm per program unit
    int m_motion = 0;     // 0, 1, 2 or 3
    double m_feed = 0;
    double m_s = 0;
    bool m_spindleOn = false;
    double m_fanPower = -1;  // M106 power 0..255, -1 when off
    qint64 m_lineNumber = 0;

    Clock m_clock = Clock::Generic;
    Clock m_candidate = Clock::Generic;
    Box m_burnBox, m_moveBox, m_outBox;
    Box m_cutZ;  // x0..x1 hold the lowest and highest Z of the cuts
    qint64 m_outLine = 0;
    bool m_pastPause = false;  // the exports count the job from the pause after the frame
    // Own raster files: a move's time is taken with the feed in force at the next move.
    bool m_pending = false;
    float m_pendingLength = 0;
    // Own vector files: engraving points are timed from the previous engraving point.
    struct VectorPoint
    {
        float x, y;
    };
    std::vector<VectorPoint> m_run{VectorPoint{0, 0}};  // the last point timed, then the run since
    bool m_pointArmed = false;
    float m_clockSum = 0;         // single precision, as the exports add it up
    double m_genericSeconds = 0;  // dwells
    double m_areaWidth = WorkAreaWidth;
    double m_areaHeight = WorkAreaHeight;
    double m_acceleration = MotionModel::DefaultAcceleration;
    double m_travelSpeed = MotionModel::DefaultTravelSpeed;
    MotionModel::RunClock m_runClock{MotionModel::DefaultAcceleration};
};

#endif
