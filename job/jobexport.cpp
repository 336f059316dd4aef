// One job to G-code: the planner's moves go to the encoder and the estimate at the same time.
#include "jobexport.h"

#include "jobencoder.h"
#include "jobfile.h"
#include "jobformat.h"
#include "jobplanner.h"

#include <QIODevice>
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

// Passes the moves on to the encoder, and hands its text to a device whenever a block is full.
class Flushing : public MoveSink
{
public:
    static constexpr int Block = 1 << 20;

    Flushing(MoveSink &encoder, QByteArray *text, QIODevice *device)
        : m_encoder(encoder), m_text(text), m_device(device)
    {
        m_text->reserve(Block + 4096);  // kept through every flush
    }
    void beginLayer(int index, const JobLayer &layer) override { m_encoder.beginLayer(index, layer); }
    void move(const PlannedMove &m) override
    {
        m_encoder.move(m);
        if (m_text->size() >= Block)
            flush();
    }
    void endLayer() override { m_encoder.endLayer(); }
    bool flush()
    {
        if (m_ok && !m_text->isEmpty())
            m_ok = m_device->write(*m_text) == m_text->size();
        m_text->resize(0);
        return m_ok;
    }

private:
    MoveSink &m_encoder;
    QByteArray *m_text;
    QIODevice *m_device;
    bool m_ok = true;
};

// Plans the job into the encoder (through `through`, when given) and the estimate; the result's times.
bool plan(const JobDocument &doc, JobEncoder &encoder, MoveSink *through, JobExportResult *out, QString *error)
{
    const QString outside = JobFile::outsideBed(doc);
    if (!outside.isEmpty()) {
        if (error)
            *error = outside;
        return false;
    }
    JobEstimate estimate(doc.machine);
    FanOut both(through ? *through : encoder, estimate);
    if (!JobPlanner::plan(doc, both, error))
        return false;
    encoder.finish();
    // The machine goes back to the origin at the end.
    PlannedMove home;
    home.kind = PlannedMove::Travel;
    estimate.move(home);
    out->seconds = estimate.seconds();
    out->layers = estimate.layers();
    for (const JobEstimate::Layer &layer : out->layers) {
        int count = 0;
        for (const JobItem &item : doc.items)
            count += item.layer == layer.index ? 1 : 0;
        out->itemCounts.push_back(count);
    }
    return true;
}

}  // namespace

namespace JobExport {

bool write(const JobDocument &doc, QIODevice *device, JobExportResult *result, QString *error)
{
    QByteArray text;
    JobEncoder encoder(doc.machine, &text);
    Flushing flushing(encoder, &text, device);
    JobExportResult out;
    if (!plan(doc, encoder, &flushing, &out, error))
        return false;
    if (!flushing.flush()) {
        if (error)
            *error = device->errorString();
        return false;
    }
    *result = std::move(out);
    return true;
}

bool run(const JobDocument &doc, JobExportResult *result, QString *error)
{
    QByteArray gcode;
    JobEncoder encoder(doc.machine, &gcode);
    JobExportResult out;
    if (!plan(doc, encoder, nullptr, &out, error))
        return false;
    out.gcode = std::move(gcode);
    *result = std::move(out);
    return true;
}

QStringList summary(const JobExportResult &result)
{
    // A layer's name on its one line, as the G-code comment writes it: control characters as spaces.
    auto oneLine = [](QString name) {
        for (QChar &c : name)
            if (c.category() == QChar::Other_Control || c.category() == QChar::Separator_Line
                || c.category() == QChar::Separator_Paragraph)
                c = QLatin1Char(' ');
        return name;
    };
    QStringList lines;
    lines << QStringLiteral("Estimated time: ") + QString::fromLatin1(JobFormat::duration(result.seconds));
    for (size_t i = 0; i < result.layers.size(); ++i) {
        const JobEstimate::Layer &layer = result.layers[i];
        const int items = i < result.itemCounts.size() ? result.itemCounts[i] : 0;
        lines << QStringLiteral("layer %1 %2: %3 items, burn %4 mm, %5")
                     .arg(QString::number(layer.index + 1), oneLine(layer.name), QString::number(items),
                          QString::number(layer.burnMm, 'f', 1),
                          QString::fromLatin1(JobFormat::duration(layer.seconds)));
    }
    return lines;
}

}  // namespace JobExport
