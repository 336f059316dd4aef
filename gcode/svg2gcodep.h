// Qt face of the vector G-code converter: slots that set the converter's settings
// and run a conversion of an SVG drawing at a placement offset (by default the one in Config.ini).
#ifndef SVG2GCODEP_H
#define SVG2GCODEP_H

#include <QString>
#include <QWidget>

struct SvgImage;

// Every setter writes the converter's module-wide settings, which stay as they are
// for the next conversion (and the next object); the object keeps only the outcome.
class Svg2GcodeP : public QWidget
{
    Q_OBJECT

public:
    explicit Svg2GcodeP(QWidget *parent = nullptr);

    // Seconds of engraving moves of the conversions since the last call; resets to 0.
    float TakeEstimatedTime();

    // Whether the converter can place this drawing: it reads, and has some width
    // (or nothing to draw). A drawing of zero width would give an infinite scale
    // and "nan" coordinates, so callers check before exporting.
    static bool CanScale(const QString &inputfile);
    static bool CanScale(const SvgImage &drawing);

    // Reads a drawing as the converter reads it (millimetres); null when it does not parse.
    // The caller gives it back with SvgReader::release.
    static SvgImage *ReadDrawing(const QString &inputfile);

    // Converts with the drawing's corner placed at (x, y) mm; SvgToGcode does the same
    // with the offset stored in Config.ini.
    void SvgToGcodeAt(const QString &inputfile, const QString &outfile, double x, double y);
    void SvgToGcodeAt(const SvgImage &drawing, const QString &outfile, double x, double y);

    // Why the last SvgToGcode wrote no file because a position would not be a finite
    // number, or empty.
    QString LastRefusal() const { return m_refusal; }

    // Repeatable path order: `seconds` stands in for the clock in the order's seed.
    static void UseFixedSeed(qint64 seconds);
    static void UseClockSeed();

public slots:
    void SvgToGcode(QString inputfile, QString outfile);
    void SetGcoderHeader(QString header);
    void SetPrintMode(int mode);
    void SetTravelSpeed(int travel_speed);
    void SetFeedSpeed(int feed_speed);
    void SetPrintZValue(float z);
    void SetTravelZValue(float z);
    void SetMachineYmax(int maxy);
    void SetLaser(int power);
    void SetgGcodeWidth(int width, int height);

private:
    void noteStatus(int status);

    QString m_refusal;
};

#endif
