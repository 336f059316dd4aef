// Planning a job: every enabled layer in list order, its passes back to back, its items (image layers)
// in nearest-neighbour order, raster items scanned by JobRaster and outlines planned by JobVector.
#include "jobplanner.h"

#include "jobdialect.h"
#include "jobraster.h"
#include "jobvector.h"

#include <algorithm>
#include <cmath>

namespace {

QString itemKey(int index) { return QStringLiteral("items[%1]").arg(index); }

bool isBitmap(SourceKind kind) { return kind == SourceKind::Picture || kind == SourceKind::Qr; }

// Squared distance from a point (um) to a rectangle (mm); 0 inside it.
double distanceToRect(qint32 x, qint32 y, const QRectF &rect)
{
    const double px = x / 1000.0;
    const double py = y / 1000.0;
    const double dx = std::max({rect.left() - px, 0.0, px - rect.right()});
    const double dy = std::max({rect.top() - py, 0.0, py - rect.bottom()});
    return dx * dx + dy * dy;
}

// The smallest step of power the dialect writes, in planned units (S x 1000).
qint32 powerStep(const MachineProfile &profile)
{
    qint32 step = 1;
    for (int i = JobDialect::texts(profile.dialect).powerDecimals; i < 3; ++i)
        step *= 10;
    return step;
}

// Why an item is too fine to plan on its layer (its grid, or its hatch lines, would not fit in
// memory or any sensible file); empty when it is not.
QString tooFine(const QRectF &rect, const JobLayer &layer, int layerIndex)
{
    const QString key = QStringLiteral("layers[%1].%2.interval").arg(layerIndex);
    if (layer.operation == Operation::Image) {
        const double interval = layer.image.interval;
        const double columns = std::max(1.0, std::round(rect.width() / interval));
        const double rows = std::max(1.0, std::round(rect.height() / interval));
        if (!(columns * rows <= JobRaster::MaxGridCells))
            return QStringLiteral("too fine to engrave: %1 x %2 cells at %3 %4 mm (at most %5 cells)")
                .arg(QString::number(columns, 'f', 0), QString::number(rows, 'f', 0), key.arg(QStringLiteral("image")),
                     QString::number(interval), QString::number(JobRaster::MaxGridCells, 'f', 0));
    } else if (layer.operation == Operation::Fill) {
        // The hatch lines of each direction span the rectangle across that direction.
        const double a = layer.fill.angle * M_PI / 180.0;
        double span = std::fabs(rect.width() * std::sin(a)) + std::fabs(rect.height() * std::cos(a));
        if (layer.fill.crossHatch)
            span = std::max(span, std::fabs(rect.width() * std::cos(a)) + std::fabs(rect.height() * std::sin(a)));
        const double lines = std::round(span / layer.fill.interval);
        if (!(lines <= double(JobVector::MaxHatchLines)))
            return QStringLiteral("too fine to fill: %1 hatch lines at %2 %3 mm (at most %4)")
                .arg(QString::number(lines, 'f', 0), key.arg(QStringLiteral("fill")),
                     QString::number(layer.fill.interval), QString::number(JobVector::MaxHatchLines));
    }
    return QString();
}

// Why a line layer's cut of an item leaves the bed, half a kerf outside its rectangle; empty when it
// does not.
QString cutLeavesBed(const QRectF &rect, const JobLayer &layer, int layerIndex, const MachineProfile &machine)
{
    if (layer.operation != Operation::Line || layer.line.kerfSide != KerfSide::Outside || !(layer.line.kerf > 0))
        return QString();
    const double half = layer.line.kerf / 2;
    const double slack = 1e-9;
    if (rect.left() - half >= -slack && rect.top() - half >= -slack && rect.right() + half <= machine.bedWidth + slack
        && rect.bottom() + half <= machine.bedHeight + slack)
        return QString();
    return QStringLiteral("the cut, half of layers[%1].line.kerf outside it, leaves the bed (%2 x %3 mm)")
        .arg(layerIndex)
        .arg(QString::number(machine.bedWidth), QString::number(machine.bedHeight));
}

// An image layer's items, ready to scan: their cells on the layer's grid.
struct RasterItem
{
    QRectF rect;
    QImage cells;
};

void planImage(const std::vector<RasterItem> &items, const JobRaster::ScanSettings &settings, MoveSink &sink, qint32 *x,
               qint32 *y)
{
    std::vector<bool> done(items.size(), false);
    for (size_t n = 0; n < items.size(); ++n) {
        size_t best = items.size();
        double bestDistance = 0;
        for (size_t i = 0; i < items.size(); ++i) {
            if (done[i])
                continue;
            const double d = distanceToRect(*x, *y, items[i].rect);
            if (best == items.size() || d < bestDistance) {
                best = i;
                bestDistance = d;
            }
        }
        done[best] = true;
        JobRaster::scan(items[best].cells, items[best].rect, settings, sink, x, y);
    }
}

}  // namespace

namespace JobPlanner {

bool prepare(const JobDocument &doc, std::vector<PreparedItem> *items, QString *error)
{
    std::vector<PreparedItem> prepared;
    const int layerCount = int(doc.layers.size());
    for (int i = 0; i < int(doc.items.size()); ++i) {
        const JobItem &item = doc.items[size_t(i)];
        if (item.layer < 0 || item.layer >= layerCount) {
            if (error)
                *error = itemKey(i) + QStringLiteral(".layer: no such layer");
            return false;
        }
        const JobLayer &layer = doc.layers[size_t(item.layer)];
        if (!layer.enabled)
            continue;
        PreparedItem p;
        p.index = i;
        p.rect = QRectF(item.x, item.y, item.width, item.height);
        QString refusal = tooFine(p.rect, layer, item.layer);
        if (refusal.isEmpty())
            refusal = cutLeavesBed(p.rect, layer, item.layer, doc.machine);
        if (!refusal.isEmpty()) {
            if (error)
                *error = itemKey(i) + QStringLiteral(": ") + refusal;
            return false;
        }
        QString message;
        bool ok = true;
        if (layer.operation == Operation::Image) {
            if (isBitmap(item.source.kind)) {
                ok = JobSources::gray(item.source, &p.gray, &message);
            } else {
                ok = JobSources::geometry(item, &p.geometry, &message);
                if (ok) {
                    p.gray = JobSources::rasterise(p.geometry, p.rect, layer.image.interval);
                    p.geometry.clear();
                    if (p.gray.isNull()) {
                        ok = false;
                        message = QStringLiteral("not enough memory to rasterise it");
                    }
                }
            }
        } else if (isBitmap(item.source.kind)) {
            ok = false;
            message = item.source.kind == SourceKind::Qr ? QStringLiteral("a QR code belongs on an image layer")
                                                         : QStringLiteral("a picture belongs on an image layer");
        } else {
            ok = JobSources::geometry(item, &p.geometry, &message);
        }
        if (!ok) {
            if (error)
                *error = itemKey(i) + QStringLiteral(".source: ") + message;
            return false;
        }
        prepared.push_back(std::move(p));
    }
    *items = std::move(prepared);
    return true;
}

bool plan(const JobDocument &doc, MoveSink &sink, QString *error)
{
    std::vector<PreparedItem> prepared;
    if (!prepare(doc, &prepared, error))
        return false;

    qint32 x = 0;
    qint32 y = 0;
    for (int l = 0; l < int(doc.layers.size()); ++l) {
        const JobLayer &layer = doc.layers[size_t(l)];
        if (!layer.enabled)
            continue;
        const qint32 power = JobDialect::plannedPower(doc.machine, layer.power);
        sink.beginLayer(l, layer);
        if (layer.operation == Operation::Image) {
            // The cells do not change from pass to pass: sample and reduce each item once.
            std::vector<RasterItem> items;
            for (const PreparedItem &p : prepared) {
                if (doc.items[size_t(p.index)].layer != l)
                    continue;
                const JobRaster::Grid grid = JobRaster::grid(p.rect, layer.image.interval);
                RasterItem r;
                r.rect = p.rect;
                r.cells = JobRaster::sample(p.gray, grid, layer.image);
                if (r.cells.isNull()) {
                    if (error)
                        *error = itemKey(p.index) + QStringLiteral(": not enough memory for its cells");
                    return false;
                }
                JobRaster::reduce(&r.cells, layer.image);
                items.push_back(std::move(r));
            }
            JobRaster::ScanSettings settings;
            settings.params = layer.image;
            settings.speed = layer.speed;
            settings.power = power;
            settings.minPower = JobDialect::plannedPower(doc.machine, layer.image.minPower);
            settings.powerStep = powerStep(doc.machine);
            settings.bedWidth = doc.machine.bedWidth;
            for (int pass = 0; pass < layer.passes; ++pass)
                planImage(items, settings, sink, &x, &y);
        } else {
            std::vector<JobGeometry> items;
            for (PreparedItem &p : prepared)
                if (doc.items[size_t(p.index)].layer == l)
                    items.push_back(std::move(p.geometry));
            JobVector::PlanSettings settings;
            settings.speed = layer.speed;
            settings.power = power;
            settings.bedWidth = doc.machine.bedWidth;
            settings.bedHeight = doc.machine.bedHeight;
            for (int pass = 0; pass < layer.passes; ++pass) {
                if (layer.operation == Operation::Line)
                    JobVector::planLine(items, layer.line, settings, sink, &x, &y);
                else
                    JobVector::planFill(items, layer.fill, settings, sink, &x, &y);
            }
        }
        sink.endLayer();
    }
    return true;
}

}  // namespace JobPlanner
