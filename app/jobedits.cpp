// The edits the Job window makes to a job document.
#include "jobedits.h"

#include <algorithm>

namespace JobEdits {

namespace {
bool valid(const JobDocument &doc, int item) { return item >= 0 && item < int(doc.items.size()); }
}  // namespace

QString layerColor(int index) { return JobLayer::defaultColor(index); }

int addLayer(JobDocument *doc, Operation operation, const QString &name)
{
    JobLayer layer;
    const int index = int(doc->layers.size());
    layer.name = name.isEmpty() ? QStringLiteral("Layer %1").arg(index + 1) : name;
    layer.color = layerColor(index);
    layer.operation = operation;
    if (operation == Operation::Line) {
        layer.speed = 300;
        layer.power = 100;
    } else if (operation == Operation::Fill) {
        layer.speed = 2000;
        layer.power = 40;
    }
    doc->layers.push_back(layer);
    return index;
}

Operation operationFor(SourceKind kind)
{
    return kind == SourceKind::Picture || kind == SourceKind::Qr ? Operation::Image : Operation::Line;
}

int addItem(JobDocument *doc, JobItem item, int layer)
{
    if (layer < 0 || layer >= int(doc->layers.size())) {
        const Operation wanted = operationFor(item.source.kind);
        layer = -1;
        for (int i = int(doc->layers.size()) - 1; i >= 0 && layer < 0; --i)
            if (doc->layers[size_t(i)].operation == wanted)
                layer = i;
        if (layer < 0)
            layer = addLayer(doc, wanted);
    }
    item.layer = layer;
    doc->items.push_back(item);
    return int(doc->items.size()) - 1;
}

void removeLayer(JobDocument *doc, int index)
{
    if (index < 0 || index >= int(doc->layers.size()))
        return;
    doc->layers.erase(doc->layers.begin() + index);
    std::vector<JobItem> kept;
    for (JobItem &item : doc->items) {
        if (item.layer == index)
            continue;
        if (item.layer > index)
            --item.layer;
        kept.push_back(item);
    }
    doc->items = kept;
}

bool reorderLayers(JobDocument *doc, const std::vector<int> &order)
{
    const int count = int(doc->layers.size());
    if (int(order.size()) != count)
        return false;
    std::vector<int> newPlace(size_t(count), -1);
    for (int place = 0; place < count; ++place) {
        const int old = order[size_t(place)];
        if (old < 0 || old >= count || newPlace[size_t(old)] >= 0)
            return false;
        newPlace[size_t(old)] = place;
    }
    std::vector<JobLayer> layers;
    for (int old : order)
        layers.push_back(doc->layers[size_t(old)]);
    doc->layers = layers;
    for (JobItem &item : doc->items)
        if (item.layer >= 0 && item.layer < count)
            item.layer = newPlace[size_t(item.layer)];
    return true;
}

void moveLayer(JobDocument *doc, int from, int to)
{
    const int count = int(doc->layers.size());
    if (from < 0 || from >= count || to < 0 || to >= count || from == to)
        return;
    std::vector<int> order;
    for (int i = 0; i < count; ++i)
        if (i != from)
            order.push_back(i);
    order.insert(order.begin() + to, from);
    reorderLayers(doc, order);
}

void moveItems(JobDocument *doc, const QList<int> &items, double dx, double dy)
{
    for (int i : items) {
        if (!valid(*doc, i))
            continue;
        doc->items[size_t(i)].x += dx;
        doc->items[size_t(i)].y += dy;
    }
}

void setItemRect(JobDocument *doc, int item, const QRectF &rect)
{
    if (!valid(*doc, item) || rect.width() <= 0 || rect.height() <= 0)
        return;
    JobItem &it = doc->items[size_t(item)];
    it.x = rect.x();
    it.y = rect.y();
    it.width = rect.width();
    it.height = rect.height();
}

void moveItemsToLayer(JobDocument *doc, const QList<int> &items, int layer)
{
    if (layer < 0 || layer >= int(doc->layers.size()))
        return;
    for (int i : items)
        if (valid(*doc, i))
            doc->items[size_t(i)].layer = layer;
}

void removeItems(JobDocument *doc, QList<int> items)
{
    std::sort(items.begin(), items.end());
    for (int k = items.size() - 1; k >= 0; --k) {
        const int i = items[k];
        if (valid(*doc, i) && (k + 1 >= items.size() || items[k + 1] != i))
            doc->items.erase(doc->items.begin() + i);
    }
}

QList<int> duplicateItems(JobDocument *doc, const QList<int> &items)
{
    QList<int> added;
    for (int i : items) {
        if (!valid(*doc, i))
            continue;
        JobItem copy = doc->items[size_t(i)];
        copy.x += 5;
        copy.y += 5;
        doc->items.push_back(copy);
        added.append(int(doc->items.size()) - 1);
    }
    return added;
}

QRectF bounds(const JobDocument &doc, const QList<int> &items)
{
    QRectF out;
    for (int i : items) {
        if (!valid(doc, i))
            continue;
        const JobItem &it = doc.items[size_t(i)];
        const QRectF rect(it.x, it.y, it.width, it.height);
        out = out.isNull() ? rect : out.united(rect);
    }
    return out;
}

void alignItems(JobDocument *doc, const QList<int> &items, Align align)
{
    const QRectF all = bounds(*doc, items);
    for (int i : items) {
        if (!valid(*doc, i))
            continue;
        JobItem &it = doc->items[size_t(i)];
        switch (align) {
        case Align::Left:
            it.x = all.left();
            break;
        case Align::HCenter:
            it.x = all.center().x() - it.width / 2;
            break;
        case Align::Right:
            it.x = all.right() - it.width;
            break;
        case Align::Bottom:
            it.y = all.top();
            break;  // QRectF's top is the smaller Y: the bottom on the bed
        case Align::VCenter:
            it.y = all.center().y() - it.height / 2;
            break;
        case Align::Top:
            it.y = all.bottom() - it.height;
            break;
        }
    }
}

void centreOnBed(JobDocument *doc, const QList<int> &items)
{
    const QRectF all = bounds(*doc, items);
    if (all.isNull())
        return;
    moveItems(doc, items, doc->machine.bedWidth / 2 - all.center().x(), doc->machine.bedHeight / 2 - all.center().y());
}

}  // namespace JobEdits
