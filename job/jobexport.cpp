// One job to G-code: the planner's moves go to the encoder and the estimate at the same time.
#include "jobexport.h"

#include "jobencoder.h"
#include "jobfile.h"
#include "jobformat.h"
#include "jobplanner.h"

#include <QStringList>

namespace {

// Hands every move to two sinks.
class FanOut : public MoveSink
{
public:
    FanOut(MoveSink &a, MoveSink &b) : m_a(a), m_b(b) {}
    void beginLayer(int index, const JobLayer &layer) override
    {
        m_a.beginLayer(index, layer);
        m_b.beginLayer(index, layer);
    }
    void move(const PlannedMove &m) override
    {
        m_a.move(m);
        m_b.move(m);
    }
    void endLayer() override
    {
        m_a.endLayer();
        m_b.endLayer();
    }

private:
    MoveSink &m_a;
    MoveSink &m_b;
};

}  // namespace

namespace JobExport {

bool run(const JobDocument &doc, JobExportResult *result, QString *error)
{
    const QString outside = JobFile::outsideBed(doc);
    if (!outside.isEmpty()) {
        if (error)
            *error = outside;
        return false;
    }
    QByteArray gcode;
    JobEncoder encoder(doc.machine, &gcode);
    JobEstimate estimate(doc.machine);
    FanOut both(encoder, estimate);
    if (!JobPlanner::plan(doc, both, error))
        return false;
    encoder.finish();
    // The machine goes back to the origin at the end.
    PlannedMove home;
    home.kind = PlannedMove::Travel;
    estimate.move(home);

    JobExportResult out;
    out.gcode = std::move(gcode);
    out.seconds = estimate.seconds();
    out.layers = estimate.layers();
    for (const JobEstimate::Layer &layer : out.layers) {
        int count = 0;
        for (const JobItem &item : doc.items)
            count += item.layer == layer.index ? 1 : 0;
        out.itemCounts.push_back(count);
    }
    *result = std::move(out);
    return true;
}

QStringList summary(const JobExportResult &result)
{
    QStringList lines;
    lines << QStringLiteral("Estimated time: ") + QString::fromLatin1(JobFormat::duration(result.seconds));
    for (size_t i = 0; i < result.layers.size(); ++i) {
        const JobEstimate::Layer &layer = result.layers[i];
        const int items = i < result.itemCounts.size() ? result.itemCounts[i] : 0;
        lines << QStringLiteral("layer %1 %2: %3 items, burn %4 mm, %5")
                     .arg(QString::number(layer.index + 1), layer.name, QString::number(items),
                          QString::number(layer.burnMm, 'f', 1),
                          QString::fromLatin1(JobFormat::duration(layer.seconds)));
    }
    return lines;
}

}  // namespace JobExport
