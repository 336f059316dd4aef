// The material test grid as a job document. Layout, from the bottom-left corner (x, y): a column
// of row labels (speed or passes, right-aligned), then the cells, then a row of power labels above
// them. Row 0, the top row, is the lightest burn: the highest speed, or the fewest passes.
#include "testgrid.h"

#include "jobgeometry.h"

#include <QBuffer>
#include <QImage>

#include <algorithm>
#include <cmath>

namespace {

// Labels are at most this tall (mm), and half a cell when cells are smaller.
constexpr double MaxLabelHeight = 3;
// Labels burn at this power (percent), or at the grid's highest power when that is lower.
constexpr double LabelPower = 20;
constexpr int MaxPasses = 1000;
constexpr double MaxSpeed = 100000;

// A square filling its drawing, for fill and line cells.
const char *const CellSvg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"10mm\" height=\"10mm\" "
                            "viewBox=\"0 0 10 10\"><path d=\"M0 0 L10 0 L10 10 L0 10 Z\"/></svg>\n";

// A black square picture, for image cells.
QByteArray cellPicture()
{
    QImage image(8, 8, QImage::Format_Grayscale8);
    image.fill(0);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// `count` values from `from` to `to`, both ends included, rounded to 1 / `perUnit`, lowest first.
std::vector<double> spread(double from, double to, int count, double perUnit)
{
    std::vector<double> values;
    for (int i = 0; i < count; ++i) {
        const double v = count == 1 ? from : from + (to - from) * i / (count - 1);
        values.push_back(std::round(v * perUnit) / perUnit);
    }
    std::sort(values.begin(), values.end());
    return values;
}

// Up to one decimal, trailing zero dropped: "40", "12.5".
QString valueText(double v)
{
    QString text = QString::number(v, 'f', 1);
    if (text.endsWith(QLatin1String(".0")))
        text.chop(2);
    return text;
}

bool finiteIn(double v, double low, double high) { return std::isfinite(v) && v >= low && v <= high; }

// A text item `height` mm tall (less when it would be wider than `maxWidth`), at its own proportions.
// Power labels get their cell's width at most, so that neighbours keep a gap between them.
bool labelItem(const QString &text, TextAlign align, double height, double maxWidth, JobItem *item, QString *error)
{
    item->layer = 0;
    item->source.kind = SourceKind::Text;
    item->source.text = text;
    item->source.size = height;
    item->source.align = align;
    double naturalWidth = 0;
    double naturalHeight = 0;
    QString message;
    if (!JobSources::naturalSize(item->source, &naturalWidth, &naturalHeight, &message)
        || !(naturalWidth > 0 && naturalHeight > 0)) {
        *error = QStringLiteral("the label \"%1\" cannot be set: %2").arg(text, message);
        return false;
    }
    const double aspect = naturalWidth / naturalHeight;
    item->height = height;
    item->width = height * aspect;
    if (item->width > maxWidth) {
        item->width = maxWidth;
        item->height = maxWidth / aspect;
    }
    return true;
}

QString sizeText(double v) { return QString::number(v, 'g', 6); }

}  // namespace

namespace TestGrid {

bool make(const TestGridParams &p, JobDocument *doc, QString *error)
{
    const bool passes = p.rowsArePasses;
    const int columns = p.powerCount;
    const int rows = passes ? p.passesCount : p.speedCount;
    if (columns < 1) {
        *error = QStringLiteral("the number of powers must be at least 1");
        return false;
    }
    if (rows < 1) {
        *error = passes ? QStringLiteral("the number of passes must be at least 1")
                        : QStringLiteral("the number of speeds must be at least 1");
        return false;
    }
    if (!finiteIn(p.powerFrom, 0, 100) || !finiteIn(p.powerTo, 0, 100)) {
        *error = QStringLiteral("powers must be from 0 to 100 %");
        return false;
    }
    if (!finiteIn(p.speedFrom, 0, MaxSpeed) || p.speedFrom <= 0
        || (!passes && (!finiteIn(p.speedTo, 0, MaxSpeed) || p.speedTo <= 0))) {
        *error = QStringLiteral("speeds must be above 0 and at most %1 mm/min").arg(MaxSpeed);
        return false;
    }
    if (passes && (p.passesFrom < 1 || p.passesTo < 1 || p.passesFrom > MaxPasses || p.passesTo > MaxPasses)) {
        *error = QStringLiteral("passes must be from 1 to %1").arg(MaxPasses);
        return false;
    }
    if (!finiteIn(p.cell, 0, 1000) || p.cell <= 0) {
        *error = QStringLiteral("the cell size must be above 0 and at most 1000 mm");
        return false;
    }
    if (!finiteIn(p.gap, 0, 1000)) {
        *error = QStringLiteral("the gap must be from 0 to 1000 mm");
        return false;
    }
    if (!std::isfinite(p.x) || !std::isfinite(p.y)) {
        *error = QStringLiteral("the grid's corner is not a finite position");
        return false;
    }

    const MachineProfile &m = p.machine;
    const double pitch = p.cell + p.gap;
    const double labelGap = p.gap > 0 ? p.gap : 1;
    auto refuseSize = [&](double width, double height) {
        *error = QStringLiteral("the grid (%1 x %2 mm at %3, %4) does not fit on the bed (%5 x %6 mm)")
                     .arg(sizeText(width), sizeText(height), sizeText(p.x), sizeText(p.y), sizeText(m.bedWidth),
                          sizeText(m.bedHeight));
        return false;
    };
    // The cells alone first, so that absurd counts stop before any label is made.
    const double cellsWidth = columns * pitch - p.gap;
    const double cellsHeight = rows * pitch - p.gap;
    if (p.x < 0 || p.y < 0 || p.x + cellsWidth > m.bedWidth || p.y + cellsHeight > m.bedHeight)
        return refuseSize(cellsWidth, cellsHeight);

    const std::vector<double> powers = spread(p.powerFrom, p.powerTo, columns, 10);
    std::vector<double> rowValues =
        passes ? spread(p.passesFrom, p.passesTo, rows, 1) : spread(p.speedFrom, p.speedTo, rows, 1);
    if (!passes)
        std::reverse(rowValues.begin(), rowValues.end());  // highest speed first
    if (!passes && rowValues.back() <= 0) {
        *error = QStringLiteral("speeds must be above 0 and at most %1 mm/min").arg(MaxSpeed);
        return false;
    }

    JobDocument out;
    out.machine = m;
    const double labelHeight = std::min(MaxLabelHeight, p.cell / 2);

    // Row labels first: their widest sets where the cells begin.
    std::vector<JobItem> rowLabels(static_cast<size_t>(rows));
    double rowLabelWidth = 0;
    for (int r = 0; r < rows; ++r) {
        const QString text =
            passes ? QStringLiteral("%1x").arg(int(rowValues[size_t(r)])) : valueText(rowValues[size_t(r)]);
        if (!labelItem(text, TextAlign::Right, labelHeight, 1e9, &rowLabels[size_t(r)], error))
            return false;
        rowLabelWidth = std::max(rowLabelWidth, rowLabels[size_t(r)].width);
    }
    const double cellsLeft = p.x + rowLabelWidth + labelGap;
    const double cellsTop = p.y + cellsHeight;
    auto cellBottom = [&](int r) { return p.y + (rows - 1 - r) * pitch; };
    for (int r = 0; r < rows; ++r) {
        JobItem &label = rowLabels[size_t(r)];
        label.x = cellsLeft - labelGap - label.width;
        label.y = cellBottom(r) + (p.cell - label.height) / 2;
    }
    std::vector<JobItem> columnLabels(static_cast<size_t>(columns));
    double columnLabelHeight = 0;
    for (int c = 0; c < columns; ++c) {
        JobItem &label = columnLabels[size_t(c)];
        if (!labelItem(valueText(powers[size_t(c)]) + QLatin1Char('%'), TextAlign::Center, labelHeight, p.cell, &label,
                       error))
            return false;
        label.x = cellsLeft + c * pitch + (p.cell - label.width) / 2;
        label.y = cellsTop + labelGap;
        columnLabelHeight = std::max(columnLabelHeight, label.height);
    }
    // Power labels are no wider than their cells, so the cells and row labels set the width.
    const double right = cellsLeft + cellsWidth;
    const double top = cellsTop + labelGap + columnLabelHeight;
    if (right > m.bedWidth || top > m.bedHeight)
        return refuseSize(right - p.x, top - p.y);

    const double highestPower = powers.back();
    JobLayer labels;
    labels.name = QStringLiteral("Labels");
    labels.operation = Operation::Fill;
    labels.power = std::min(LabelPower, highestPower);
    labels.speed = passes ? p.speedFrom : rowValues.front();
    out.layers.push_back(labels);
    for (JobItem &label : rowLabels)
        out.items.push_back(label);
    for (JobItem &label : columnLabels)
        out.items.push_back(label);

    JobSource cellSource;
    if (p.operation == Operation::Image) {
        cellSource.kind = SourceKind::Picture;
        cellSource.name = QStringLiteral("cell.png");
        cellSource.data = cellPicture();
    } else {
        cellSource.kind = SourceKind::Svg;
        cellSource.name = QStringLiteral("cell.svg");
        cellSource.data = CellSvg;
    }
    for (int r = 0; r < rows; ++r) {
        for (int c = 0; c < columns; ++c) {
            JobLayer layer;
            layer.operation = p.operation;
            layer.power = powers[size_t(c)];
            if (passes) {
                layer.speed = p.speedFrom;
                layer.passes = int(rowValues[size_t(r)]);
                layer.name = (layer.passes == 1 ? QStringLiteral("%1 %, %2 pass") : QStringLiteral("%1 %, %2 passes"))
                                 .arg(valueText(layer.power))
                                 .arg(layer.passes);
            } else {
                layer.speed = rowValues[size_t(r)];
                layer.name = QStringLiteral("%1 % at %2 mm/min").arg(valueText(layer.power), valueText(layer.speed));
            }
            if (p.operation == Operation::Image)
                layer.image.mode = ImageMode::Threshold;  // the black cell burns solid
            JobItem cell;
            cell.layer = int(out.layers.size());
            cell.x = cellsLeft + c * pitch;
            cell.y = cellBottom(r);
            cell.width = p.cell;
            cell.height = p.cell;
            cell.source = cellSource;
            out.layers.push_back(layer);
            out.items.push_back(cell);
        }
    }
    *doc = std::move(out);
    return true;
}

}  // namespace TestGrid
