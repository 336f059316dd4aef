// The layout of a job: bed, grid and items.
#include "joblayoutscene.h"

#include "jobitemgraphic.h"

#include <QPainter>
#include <QSet>

#include <cmath>

namespace {
constexpr double Margin = 20;  // mm of scene around the bed
constexpr double GridStep = 10;
}  // namespace

JobLayoutScene::JobLayoutScene(QObject *parent) : QGraphicsScene(parent)
{
    setSceneRect(-Margin, -Margin, m_bedWidth + 2 * Margin, m_bedHeight + 2 * Margin);
}

JobLayoutScene::~JobLayoutScene()
{
    // Items go with the scene; nobody hears of the selection they leave.
    blockSignals(true);
    m_graphics.clear();
}

JobItemGraphic *JobLayoutScene::graphic(int index) const
{
    return index >= 0 && index < m_graphics.size() ? m_graphics[index] : nullptr;
}

QRectF JobLayoutScene::itemRect(const JobItem &item) const
{
    return QRectF(item.x, m_bedHeight - item.y - item.height, item.width, item.height);
}

void JobLayoutScene::setDocument(const JobDocument &document)
{
    const QList<int> selected = selectedIndices();
    if (document.machine.bedWidth != m_bedWidth || document.machine.bedHeight != m_bedHeight) {
        m_bedWidth = document.machine.bedWidth;
        m_bedHeight = document.machine.bedHeight;
        setSceneRect(-Margin, -Margin, m_bedWidth + 2 * Margin, m_bedHeight + 2 * Margin);
        update();
    }
    const QList<JobItemGraphic *> old = m_graphics;
    m_graphics.clear();
    {
        QSignalBlocker blocker(this);  // the selection is put back below
        for (JobItemGraphic *g : old)
            delete g;
    }

    QHash<QByteArray, JobItemLook> kept;
    const JobLayer fallback;
    for (int i = 0; i < int(document.items.size()); ++i) {
        const JobItem &item = document.items[size_t(i)];
        const bool hasLayer = item.layer >= 0 && item.layer < int(document.layers.size());
        const JobLayer &layer = hasLayer ? document.layers[size_t(item.layer)] : fallback;
        const QByteArray key = JobItemLook::key(item, layer);
        auto found = m_looks.constFind(key);
        const JobItemLook look = found != m_looks.constEnd() ? *found : JobItemLook::make(item, layer);
        kept.insert(key, look);
        auto *g = new JobItemGraphic(i, look, item.width, item.height);
        const QRectF rect = itemRect(item);
        g->setPos(rect.topLeft());
        g->setOutside(item.x < -1e-9 || item.y < -1e-9 || item.x + item.width > m_bedWidth + 1e-9
                      || item.y + item.height > m_bedHeight + 1e-9);
        g->setOpacity(hasLayer && !layer.enabled ? 0.35 : 1.0);
        g->setZValue(i);
        addItem(g);
        m_graphics.append(g);
    }
    m_looks.swap(kept);
    selectIndices(selected);
}

QList<int> JobLayoutScene::selectedIndices() const
{
    QList<int> out;
    for (JobItemGraphic *g : m_graphics)
        if (g->isSelected())
            out.append(g->index());
    return out;
}

void JobLayoutScene::selectIndices(const QList<int> &indices)
{
    const QSet<int> wanted(indices.begin(), indices.end());
    QSignalBlocker blocker(this);
    for (JobItemGraphic *g : m_graphics)
        g->setSelected(wanted.contains(g->index()));
    blocker.unblock();
    emit selectionChanged();
}

void JobLayoutScene::drawBackground(QPainter *painter, const QRectF &rect)
{
    painter->fillRect(rect, QColor(0x3a, 0x3f, 0x44));
    const QRectF bed(0, 0, m_bedWidth, m_bedHeight);
    painter->fillRect(bed, Qt::white);
    QPen minor(QColor(0xe4, 0xe8, 0xee), 0);
    QPen major(QColor(0xc4, 0xcc, 0xd6), 0);
    minor.setCosmetic(true);
    major.setCosmetic(true);
    // Grid lines counted from the machine origin at the bottom left.
    for (double x = GridStep; x < m_bedWidth; x += GridStep) {
        painter->setPen(std::fmod(x, 50) < 1e-6 ? major : minor);
        painter->drawLine(QPointF(x, 0), QPointF(x, m_bedHeight));
    }
    for (double y = GridStep; y < m_bedHeight; y += GridStep) {
        painter->setPen(std::fmod(y, 50) < 1e-6 ? major : minor);
        painter->drawLine(QPointF(0, m_bedHeight - y), QPointF(m_bedWidth, m_bedHeight - y));
    }
    QPen edge(QColor(0x80, 0x88, 0x90), 0);
    edge.setCosmetic(true);
    painter->setPen(edge);
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(bed);
}
