// Qt face of the vector G-code converter: slots that set the converter's settings
// and run a conversion of an SVG drawing at a placement offset (by default the one in Config.ini).
#include "svg2gcodep.h"

#include "appsettings.h"
#include "pathconverter.h"
#include "svgreader.h"

#include <QByteArray>
#include <QFile>

#include <algorithm>
#include <cmath>

namespace {
// Every conversion from the window flattens curves.
const int BezierOn = 1;
// The converter reads drawings in these units.
const char *const ConverterUnits = "mm";
const float ConverterDpi = 0.1f;
// pathconv_convert's answer when a position would not be a finite number.
const int NotFinite = -2;
}  // namespace

Svg2GcodeP::Svg2GcodeP(QWidget *parent) : QWidget(parent) {}

float Svg2GcodeP::TakeEstimatedTime() { return pathconv_take_estimate(); }

SvgImage *Svg2GcodeP::ReadDrawing(const QString &inputfile)
{
    return SvgReader::parseFromFile(QFile::encodeName(inputfile).constData(), ConverterUnits, ConverterDpi);
}

bool Svg2GcodeP::CanScale(const QString &inputfile)
{
    SvgImage *image = ReadDrawing(inputfile);
    if (!image)
        return false;
    const bool usable = CanScale(*image);
    SvgReader::release(image);
    return usable;
}

bool Svg2GcodeP::CanScale(const SvgImage &drawing)
{
    float minX = HUGE_VALF, maxX = -HUGE_VALF;
    for (const SvgShape &shape : drawing.shapes)
        for (const SvgPath &path : shape.paths)
            for (int i = 0; i < path.npts(); ++i) {
                minX = std::min(minX, path.pts[2 * i]);
                maxX = std::max(maxX, path.pts[2 * i]);
            }
    const bool empty = minX > maxX;
    return empty || (maxX - minX > 0 && std::isfinite(maxX - minX));
}

void Svg2GcodeP::UseFixedSeed(qint64 seconds) { pathconv_use_fixed_seed(seconds); }

void Svg2GcodeP::UseClockSeed() { pathconv_use_clock_seed(); }

void Svg2GcodeP::SvgToGcode(QString inputfile, QString outfile)
{
    SvgToGcodeAt(inputfile, outfile, AppSettings::xOffset(), AppSettings::yOffset());
}

void Svg2GcodeP::SvgToGcodeAt(const QString &inputfile, const QString &outfile, double x, double y)
{
    pathconv_set_offset(float(x), float(y));
    // The converter takes 8-bit names: callers hand it plain names in the working directory.
    const QByteArray in = inputfile.toLatin1();
    const QByteArray out = outfile.toLatin1();
    noteStatus(pathconv_convert(in.constData(), out.constData(), BezierOn));
}

void Svg2GcodeP::SvgToGcodeAt(const SvgImage &drawing, const QString &outfile, double x, double y)
{
    pathconv_set_offset(float(x), float(y));
    const QByteArray out = outfile.toLatin1();
    noteStatus(pathconv_convert_image(&drawing, "drawing", out.constData(), BezierOn));
}

void Svg2GcodeP::noteStatus(int status)
{
    m_refusal = status == NotFinite
                    ? QStringLiteral("No G-code written: the drawing gives positions that are not numbers")
                    : QString();
}

void Svg2GcodeP::SetGcoderHeader(QString header)
{
    const QByteArray bytes = header.toLatin1();
    pathconv_set_header(bytes.constData(), bytes.size());
}

void Svg2GcodeP::SetPrintMode(int mode) { pathconv_set_print_mode(mode); }

void Svg2GcodeP::SetTravelSpeed(int travel_speed) { pathconv_set_travel_speed(float(travel_speed)); }

void Svg2GcodeP::SetFeedSpeed(int feed_speed) { pathconv_set_feed_speed(float(feed_speed)); }

void Svg2GcodeP::SetPrintZValue(float z) { pathconv_set_print_z(z); }

void Svg2GcodeP::SetTravelZValue(float z) { pathconv_set_travel_z(z); }

void Svg2GcodeP::SetMachineYmax(int maxy) { pathconv_set_machine_ymax(maxy); }

void Svg2GcodeP::SetLaser(int power) { pathconv_set_laser(power); }

void Svg2GcodeP::SetgGcodeWidth(int width, int height) { pathconv_set_size(width, height); }
