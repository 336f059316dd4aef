// Traces the black and white working picture into an SVG of closed outlines.
// Trace() keeps the outlines of the last successful trace; WriteSvg() writes them.
#ifndef BITMAP2SVG_H
#define BITMAP2SVG_H

#include "qxpotrace.h"

#include <QImage>
#include <QWidget>

class Bitmap2Svg : public QWidget
{
    Q_OBJECT
public:
    // Curve segments are flattened into this many points.
    static constexpr int BezierPrecision = 10;

    explicit Bitmap2Svg(QWidget *parent = nullptr);
    ~Bitmap2Svg() override;

    // Loads and traces the picture; fails silently, keeping the previous outlines.
    void Trace(QString path);
    // Writes the outlines of the last successful trace (none before the first).
    void WriteSvg(QString path);

    // Whether the last Trace() call succeeded (the exporter reports failures).
    bool LastTraceOk() const { return m_lastTraceOk; }
    QList<QxPotrace::Polygon> Polygons() const { return potrace.polygons(); }

private:
    QImage image;
    QxPotrace potrace;
    bool m_lastTraceOk = false;
};

#endif
