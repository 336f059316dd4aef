// Raster engraving G-code: black/white and grayscale scan lines from a placed picture,
// and the two picture conversions (error diffusion, 5 x 5 halftone) offered before an export.
#ifndef BITMAP2GCODE_H
#define BITMAP2GCODE_H

#include <QImage>
#include <QObject>
#include <QPointF>
#include <QString>

class QFile;
class RasterGcodeWriter;

class Bitmap2Gcode : public QObject
{
    Q_OBJECT
public:
    explicit Bitmap2Gcode(QObject *parent = nullptr);

    // Seconds of travel gathered by the exports since the last call; starts again from 0.
    float TakeEstimatedTime();

    // Formats every line through QString::arg instead of the cached texts. The bytes are the
    // same; the slow way stays as the reference the fast one is checked against.
    void SetPlainFormatting(bool plain) { m_plainFormatting = plain; }

    // Why the last export wrote no file (a size, position or power that is not a finite
    // number), or empty when it wrote one.
    QString LastRefusal() const { return m_refusal; }

public slots:
    // The order of these slots is the class's meta-object order; keep it.
    QImage Image2Halftone(QImage image);
    void SetTravelSpeed(int travel_speed);
    void SetFeedSpeed(int feed_speed);
    void SetPower(float power);
    void ExportBlackPix(QImage image, QString savefile, double scale);
    void ExportGrayPix(QImage image, QString savefile, double scale);
    void ExportGrayPixEX(QImage image, QString savefile, double scale);
    QImage GrayScalePicture(QImage image);
    void ExportGcode(QPointF offset, QPointF spare, QString savepath, int mode);

private:
    QImage m_image;  // kept empty; nothing reads it

public:
    // Where the picture's top-left corner lies on the work area, in millimetres. The main
    // window writes it directly before an export.
    QPointF offset;

private:
    bool refuseUnusable(int width, int height, double scale);
    bool openOutput(QFile &file);
    bool startExport(const QImage &image, double scale, QFile &file);
    void writeHeader(RasterGcodeWriter &out, int speed);
    void writeFrame(RasterGcodeWriter &out, int width, int height, double scale);
    void exportGray(const QImage &image, const QString &savefile, double scale, bool corrected);

    QPointF m_spare;            // stored by ExportGcode, read by nothing
    int m_threshold = 127;      // unused: the black test has its own fixed level
    bool m_laserOn = false;     // the last group left the laser burning
    int travel_speed = 0;       // mm/min
    int feed_speed = 0;         // mm/min
    float power = 0;            // 0..255, what a full-black pixel gets
    float m_estimatedTime = 0;  // seconds
    bool m_plainFormatting = false;
    QString m_refusal;
};

#endif
