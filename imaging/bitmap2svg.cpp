// Traces the black and white working picture into an SVG of closed outlines.
// The outlines stay in picture pixels; the canvas sizes the drawing in millimetres.
#include "bitmap2svg.h"

#include "svgpathtext.h"

#include <QBuffer>
#include <QDebug>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QPen>
#include <QSvgGenerator>

namespace {
constexpr qreal PenWidth = 2.0;
}

Bitmap2Svg::Bitmap2Svg(QWidget *parent) : QWidget(parent) {}

Bitmap2Svg::~Bitmap2Svg() = default;

void Bitmap2Svg::Trace(QString path)
{
    m_lastTraceOk = false;
    // Any size is tried; a picture beyond the memory at hand fails to read and is reported.
    QImageReader reader(path);
    QImage loaded;
    if (!reader.read(&loaded)) {
        qDebug() << "cannot load picture to trace:" << path << reader.errorString();
        return;
    }
    image = loaded.mirrored(false, false);

    potrace.setBezierPrecision(BezierPrecision);
    const bool ok = potrace.trace(image);
    if (!ok)
        return;
    m_lastTraceOk = true;
    if (potrace.polygons().isEmpty())
        qDebug() << "traced picture holds no outlines:" << path;
}

void Bitmap2Svg::WriteSvg(QString path)
{
    const QList<QxPotrace::Polygon> polygons = potrace.polygons();
    if (!polygons.isEmpty() && writeSvgDirect(polygons, path))
        return;
    writeSvgPainted(polygons, path);
}

void Bitmap2Svg::writeSvgPainted(const QList<QxPotrace::Polygon> &polygons, const QString &path)
{
    QSvgGenerator generator;
    generator.setFileName(path);
    paintSvg(&generator, polygons);
}

// The generator and painter set up as the file has always been written: the title and
// description, and the painter's default pen, not the one set before begin().
void Bitmap2Svg::paintSvg(QSvgGenerator *generator, const QList<QxPotrace::Polygon> &polygons)
{
    generator->setTitle(tr("Quill Svg Generate"));
    generator->setDescription(tr("An SVG drawing created by the SVG Generator Provide by quill."));
    qDebug() << "relution is :" << generator->resolution();

    // The pen is set while the painter is still closed, so the painter's default pen is
    // what ends up in the file; drawings made so far depend on that thin stroke.
    QPen pen(QBrush(Qt::black, Qt::SolidPattern), PenWidth, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
    QPainter painter;
    painter.setPen(pen);
    painter.begin(generator);
    painter.setBrush(Qt::NoBrush);

    for (const QxPotrace::Polygon &polygon : polygons) {
        painter.drawPolygon(polygon.boundary, Qt::OddEvenFill);
        for (const QPolygonF &hole : polygon.holes)
            painter.drawPolygon(hole, Qt::OddEvenFill);
    }
    painter.end();
}

// The same bytes without the painter: the text around the paths comes from the
// generator drawing one probe triangle into memory, and each outline is written as the
// generator writes a polygon, a path of the points closed back to its start, with the
// numbers formatted here. Outlines the shortcut cannot vouch for (too few points,
// numbers out of range) leave the whole file to the painter.
bool Bitmap2Svg::writeSvgDirect(const QList<QxPotrace::Polygon> &polygons, const QString &path)
{
    for (const QxPotrace::Polygon &polygon : polygons) {
        if (!SvgPathText::fits(polygon.boundary))
            return false;
        for (const QPolygonF &hole : polygon.holes) {
            if (!SvgPathText::fits(hole))
                return false;
        }
    }
    QBuffer probe;
    QSvgGenerator generator;
    generator.setOutputDevice(&probe);
    QxPotrace::Polygon triangle;
    triangle.boundary << QPointF(0, 0) << QPointF(1, 0) << QPointF(0, 1);
    paintSvg(&generator, {triangle});
    const QByteArray probed = probe.data();
    const int pathFrom = probed.indexOf("<path ");
    const int pathTo = probed.indexOf("\"/>\n", pathFrom);
    if (pathFrom < 0 || pathTo < 0
        || probed.mid(pathFrom, pathTo + 4 - pathFrom) != SvgPathText::path(triangle.boundary))
        return false;

    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    SvgPathText text;
    text.append(probed.constData(), pathFrom);
    for (const QxPotrace::Polygon &polygon : polygons) {
        text.appendPath(polygon.boundary);
        for (const QPolygonF &hole : polygon.holes)
            text.appendPath(hole);
    }
    text.append(probed.constData() + pathTo + 4, probed.size() - pathTo - 4);
    return file.write(text.bytes()) == text.bytes().size();
}
