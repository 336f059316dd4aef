// Reads and draws a G-code file for the preview panel in a worker thread, reporting progress,
// so that a file of millions of lines leaves the window responsive.
#ifndef PREVIEWLOADER_H
#define PREVIEWLOADER_H

#include "gcodeinterpreter.h"

#include <QImage>
#include <QMetaType>
#include <QObject>
#include <QString>

#include <atomic>

Q_DECLARE_METATYPE(ToolpathSummary)

// The machine a file is read for: its work area, and the motion and full power that its time
// and its shades are reckoned with. The defaults are the classic machine's.
struct PreviewMachine
{
    double areaWidth = WorkArea::Width;  // mm
    double areaHeight = WorkArea::Height;
    double acceleration = MotionModel::DefaultAcceleration;  // mm/s^2
    double travelSpeed = MotionModel::DefaultTravelSpeed;    // mm/min
    double fullScale = 0;                                    // the S value of full power; 0: the largest S of the file

    bool operator==(const PreviewMachine &o) const;
    bool operator!=(const PreviewMachine &o) const { return !(*this == o); }
};

class PreviewLoader : public QObject
{
    Q_OBJECT

public:
    static constexpr double PxPerMm = 10;
    // The picture never grows beyond this many pixels: a larger area is drawn at fewer pixels per mm.
    static constexpr double MaxPixels = 16e6;

    // Pixels per mm of the picture of an area: PxPerMm, less for an area too large for it.
    static double pxPerMmFor(double areaWidth, double areaHeight);

    // Any thread: the load numbered `ticket` is the one wanted; others stop at their next block.
    void want(int ticket) { m_wanted = ticket; }

public slots:
    void load(int ticket, const QString &path, bool travel, bool depth, const PreviewMachine &machine = {});

signals:
    void progressed(int ticket, int percent);
    void loaded(int ticket, const QImage &picture, const ToolpathSummary &summary);
    void failed(int ticket, const QString &path);

private:
    std::atomic<int> m_wanted{0};
};

#endif
