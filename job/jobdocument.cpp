// Equality of job documents (a saved and reloaded job compares equal) and the names of the enums.
#include "jobdocument.h"

#include <iterator>

bool MachineProfile::operator==(const MachineProfile &o) const
{
    return name == o.name && dialect == o.dialect && maxPower == o.maxPower && bedWidth == o.bedWidth
           && bedHeight == o.bedHeight && travelSpeed == o.travelSpeed && acceleration == o.acceleration;
}

bool ImageParams::operator==(const ImageParams &o) const
{
    return mode == o.mode && dither == o.dither && threshold == o.threshold && minPower == o.minPower
           && brightness == o.brightness && contrast == o.contrast && gamma == o.gamma && invert == o.invert
           && interval == o.interval && overscan == o.overscan && bidirectional == o.bidirectional
           && reverseOffset == o.reverseOffset;
}

bool FillParams::operator==(const FillParams &o) const
{
    return interval == o.interval && angle == o.angle && crossHatch == o.crossHatch && overscan == o.overscan
           && bidirectional == o.bidirectional;
}

bool LineParams::operator==(const LineParams &o) const { return kerfSide == o.kerfSide && kerf == o.kerf; }

bool JobLayer::operator==(const JobLayer &o) const
{
    return name == o.name && color == o.color && enabled == o.enabled && operation == o.operation && speed == o.speed
           && power == o.power && passes == o.passes && image == o.image && fill == o.fill && line == o.line;
}

QString JobLayer::defaultColor(int index)
{
    static const char *const Colors[] = {"#2060c0", "#d03030", "#20a040", "#e08000",
                                         "#8040c0", "#00a0a0", "#c04080", "#606060"};
    return QString::fromLatin1(Colors[(index % 8 + 8) % 8]);
}

bool JobSource::operator==(const JobSource &o) const
{
    return kind == o.kind && name == o.name && data == o.data && text == o.text && font == o.font && size == o.size
           && align == o.align && level == o.level && quietZone == o.quietZone;
}

bool JobItem::operator==(const JobItem &o) const
{
    return layer == o.layer && x == o.x && y == o.y && width == o.width && height == o.height
           && keepAspect == o.keepAspect && source == o.source;
}

bool JobDocument::operator==(const JobDocument &o) const
{
    return machine == o.machine && layers == o.layers && items == o.items && extra == o.extra;
}

namespace {

// One table per enum: the value's text, in the order of the enum.
const char *const DialectNames[] = {"grbl", "marlin", "fan"};
const char *const OperationNames[] = {"image", "fill", "line"};
const char *const ImageModeNames[] = {"threshold", "dither", "grayscale"};
const char *const DitherNames[] = {"floyd-steinberg", "atkinson", "jarvis", "stucki", "sierra", "bayer4"};
const char *const KerfSideNames[] = {"on", "inside", "outside"};
const char *const SourceKindNames[] = {"picture", "svg", "trace", "text", "qr"};
const char *const AlignNames[] = {"left", "center", "right"};
const char *const QrLevelNames[] = {"L", "M", "Q", "H"};

template <typename Enum, size_t N>
bool lookUp(const char *const (&names)[N], const QString &text, Enum *value)
{
    for (size_t i = 0; i < N; ++i) {
        if (text == QLatin1String(names[i])) {
            *value = Enum(i);
            return true;
        }
    }
    return false;
}

}  // namespace

namespace JobNames {

QString dialect(Dialect d) { return QLatin1String(DialectNames[int(d)]); }
QString operation(Operation o) { return QLatin1String(OperationNames[int(o)]); }
QString imageMode(ImageMode m) { return QLatin1String(ImageModeNames[int(m)]); }
QString dither(DitherKernel k) { return QLatin1String(DitherNames[int(k)]); }
QString kerfSide(KerfSide s) { return QLatin1String(KerfSideNames[int(s)]); }
QString sourceKind(SourceKind k) { return QLatin1String(SourceKindNames[int(k)]); }
QString align(TextAlign a) { return QLatin1String(AlignNames[int(a)]); }
QString qrLevel(QrLevel l) { return QLatin1String(QrLevelNames[int(l)]); }

bool dialect(const QString &text, Dialect *d) { return lookUp(DialectNames, text, d); }
bool operation(const QString &text, Operation *o) { return lookUp(OperationNames, text, o); }
bool imageMode(const QString &text, ImageMode *m) { return lookUp(ImageModeNames, text, m); }
bool dither(const QString &text, DitherKernel *k) { return lookUp(DitherNames, text, k); }
bool kerfSide(const QString &text, KerfSide *s) { return lookUp(KerfSideNames, text, s); }
bool sourceKind(const QString &text, SourceKind *k) { return lookUp(SourceKindNames, text, k); }
bool align(const QString &text, TextAlign *a) { return lookUp(AlignNames, text, a); }
bool qrLevel(const QString &text, QrLevel *l) { return lookUp(QrLevelNames, text, l); }

}  // namespace JobNames
