// The job: a machine profile, an ordered list of layers, and the items placed on the bed.
// Plain data that saves and loads as it is (jobfile.h); every stage of the job engine reads it.
#ifndef JOBDOCUMENT_H
#define JOBDOCUMENT_H

#include <QByteArray>
#include <QString>

#include <vector>

// What a job is written for. The default profile is the 170 x 200 mm GRBL machine.
enum class Dialect { Grbl, Marlin, Fan };

struct MachineProfile
{
    QString name = QStringLiteral("Default");
    Dialect dialect = Dialect::Grbl;
    double maxPower = 1000;  // the S value of 100 % (GRBL's $30); Marlin and fan always write 0..255
    double bedWidth = 170;   // mm, origin at the bottom left
    double bedHeight = 200;
    double travelSpeed = 3000;  // mm/min
    double acceleration = 500;  // mm/s^2, for time estimates only

    bool operator==(const MachineProfile &o) const;
    bool operator!=(const MachineProfile &o) const { return !(*this == o); }
};

enum class Operation { Image, Fill, Line };
enum class ImageMode { Threshold, Dither, Grayscale };
enum class DitherKernel { FloydSteinberg, Atkinson, Jarvis, Stucki, Sierra, Bayer4 };
enum class KerfSide { On, Inside, Outside };

// Raster engraving: the picture sampled on a grid of `interval` mm, row by row.
struct ImageParams
{
    ImageMode mode = ImageMode::Dither;
    DitherKernel dither = DitherKernel::FloydSteinberg;
    int threshold = 128;    // 0..255: a pixel darker than it burns
    double minPower = 0;    // percent: grayscale burns white at this power, black at the layer's
    double brightness = 0;  // -100..100
    double contrast = 0;    // -100..100
    double gamma = 1.0;     // above 0
    bool invert = false;
    double interval = 0.1;  // mm between rows and between samples along a row
    double overscan = 2.0;  // mm of zero-power travel beyond each row's burnt extent
    bool bidirectional = true;
    double reverseOffset = 0;  // mm added to X on rows scanned right to left

    bool operator==(const ImageParams &o) const;
};

// Hatch filling of closed shapes, by the shapes' own fill rule.
struct FillParams
{
    double interval = 0.1;    // mm between hatch lines
    double angle = 0;         // degrees from the X axis
    bool crossHatch = false;  // a second set of lines at angle + 90
    double overscan = 2.0;
    bool bidirectional = true;

    bool operator==(const FillParams &o) const;
};

// Following outlines, shifted by half a kerf to one side of closed shapes.
struct LineParams
{
    KerfSide kerfSide = KerfSide::On;
    double kerf = 0;  // mm

    bool operator==(const LineParams &o) const;
};

struct JobLayer
{
    QString name;                               // the reader gives an unnamed layer "Layer N", N counted from 1
    QString color = QStringLiteral("#2060c0");  // for display only
    bool enabled = true;
    Operation operation = Operation::Image;
    double speed = 3000;  // mm/min
    double power = 60;    // percent of the profile's maxPower
    int passes = 1;
    ImageParams image;  // only the block of the layer's own operation is read and written
    FillParams fill;
    LineParams line;

    // The colour a layer gets when none is given: eight distinct colours in turn, by its index.
    static QString defaultColor(int index);

    bool operator==(const JobLayer &o) const;
};

enum class SourceKind { Picture, Svg, Trace, Text, Qr };
enum class TextAlign { Left, Center, Right };
enum class QrLevel { L, M, Q, H };

// What an item is made of. Files are embedded as their bytes.
struct JobSource
{
    SourceKind kind = SourceKind::Picture;
    QString name;     // for display
    QByteArray data;  // picture, svg and trace: the file's bytes
    // text and qr
    QString text;
    // text
    QString font = QStringLiteral("DejaVu Sans");
    double size = 10;  // the em size in mm
    TextAlign align = TextAlign::Left;
    // qr
    QrLevel level = QrLevel::M;
    int quietZone = 4;  // modules

    bool operator==(const JobSource &o) const;
};

// An item fills its rectangle: x, y is the bottom-left corner on the bed, in mm. After reading, both
// width and height are set (the one left out follows from the source's own proportions).
struct JobItem
{
    int layer = 0;  // index into JobDocument::layers
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;
    bool keepAspect = true;
    JobSource source;

    bool operator==(const JobItem &o) const;
};

struct JobDocument
{
    static constexpr int Format = 1;

    MachineProfile machine;
    std::vector<JobLayer> layers;
    std::vector<JobItem> items;
    QByteArray extra;  // the "extra" object as compact JSON text, kept as it is and never read; empty when absent

    bool operator==(const JobDocument &o) const;
    bool operator!=(const JobDocument &o) const { return !(*this == o); }
};

// The texts of the enums as the job file writes them ("grbl", "floyd-steinberg", "inside", ...).
namespace JobNames {
QString dialect(Dialect d);
QString operation(Operation o);
QString imageMode(ImageMode m);
QString dither(DitherKernel k);
QString kerfSide(KerfSide s);
QString sourceKind(SourceKind k);
QString align(TextAlign a);
QString qrLevel(QrLevel l);
// The reverse: false for a text that names none.
bool dialect(const QString &text, Dialect *d);
bool operation(const QString &text, Operation *o);
bool imageMode(const QString &text, ImageMode *m);
bool dither(const QString &text, DitherKernel *k);
bool kerfSide(const QString &text, KerfSide *s);
bool sourceKind(const QString &text, SourceKind *k);
bool align(const QString &text, TextAlign *a);
bool qrLevel(const QString &text, QrLevel *l);
}  // namespace JobNames

#endif
