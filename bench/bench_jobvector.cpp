// Times the vector side of the job engine: 20,000 traced outlines planned as a line layer, a
// full-bed page of text (traced, and as vector text) hatched at 0.1 mm as a fill layer, and one
// line of 10,000 characters filled and cut.
#include "benchsupport.h"
#include "jobgeometry.h"
#include "jobvector.h"

#include <QBuffer>
#include <QTextStream>

#include <cmath>
#include <ctime>

namespace {

constexpr int Runs = 5;

// Counts what it is given instead of writing it.
class CountingSink : public MoveSink
{
public:
    void move(const PlannedMove &m) override
    {
        ++moves;
        if (m.kind == PlannedMove::Cut && m.power > 0)
            burn += std::hypot(double(m.x - m_x), double(m.y - m_y)) / 1000;
        else if (m.kind == PlannedMove::Travel)
            ++travels;
        m_x = m.x;
        m_y = m.y;
    }
    long moves = 0;
    long travels = 0;
    double burn = 0;

private:
    qint32 m_x = 0, m_y = 0;
};

QByteArray png(const QImage &image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

// A picture of `columns` x `rows` black dots: each traces into one outline.
QImage dots(int columns, int rows, int pitch, int diameter)
{
    QImage image(columns * pitch, rows * pitch, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    for (int r = 0; r < rows; ++r)
        for (int c = 0; c < columns; ++c)
            painter.drawEllipse(c * pitch + (pitch - diameter) / 2, r * pitch + (pitch - diameter) / 2, diameter,
                                diameter);
    return image;
}

JobItem bedItem(SourceKind kind, const QByteArray &data, const QString &text = QString())
{
    JobItem item;
    item.x = 0;
    item.y = 0;
    item.width = 170;
    item.height = 200;
    item.keepAspect = false;
    item.source.kind = kind;
    item.source.data = data;
    item.source.text = text;
    item.source.size = 4;
    return item;
}

double cpuMs() { return double(std::clock()) * 1000.0 / CLOCKS_PER_SEC; }

// Median wall time and the processor time of the same runs, printed on one line.
template <typename Work>
void report(QTextStream &out, const QString &label, Work work)
{
    const double cpuBefore = cpuMs();
    const double ms = medianMs(Runs, work);
    out << label << ": " << ms << " ms median wall, " << (cpuMs() - cpuBefore) / Runs << " ms processor per run\n";
    out.flush();
}

size_t contourCount(const JobGeometry &g)
{
    size_t n = 0;
    for (const JobShape &s : g)
        n += s.contours.size();
    return n;
}

}  // namespace

int main(int argc, char **argv)
{
    BenchApplication app(argc, argv);
    QTextStream out(stdout);
    QString error;

    // 143 x 140 dots, 20,020 outlines over the whole bed.
    const QByteArray dotPicture = png(dots(143, 140, 14, 9));
    JobGeometry dotsGeometry;
    report(out, QStringLiteral("trace 2002 x 1960 px of dots into outlines"),
           [&] { JobSources::geometry(bedItem(SourceKind::Trace, dotPicture), &dotsGeometry, &error); });
    out << "  outlines: " << contourCount(dotsGeometry) << "\n";

    JobVector::PlanSettings settings;
    settings.speed = 600;
    settings.power = 1000000;
    for (KerfSide side : {KerfSide::On, KerfSide::Outside}) {
        LineParams line;
        line.kerfSide = side;
        line.kerf = 0.1;
        CountingSink sink;
        report(out, QStringLiteral("line layer of the outlines, kerf %1").arg(JobNames::kerfSide(side)), [&] {
            sink = CountingSink();
            qint32 x = 0, y = 0;
            JobVector::planLine({dotsGeometry}, line, settings, sink, &x, &y);
        });
        out << "  moves: " << sink.moves << ", travels: " << sink.travels << ", burn: " << sink.burn << " mm\n";
    }

    // A page of text lines, traced, and the same kind of page as vector text.
    const QByteArray page = png(pageOfText(2000));
    JobGeometry traced;
    report(out, QStringLiteral("trace a 2000 x 2000 px text page"),
           [&] { JobSources::geometry(bedItem(SourceKind::Trace, page), &traced, &error); });
    out << "  outlines: " << contourCount(traced) << "\n";
    QStringList lines;
    for (int i = 0; i < 40; ++i)
        lines << QStringLiteral("The quick brown fox jumps over the lazy dog 0123456789 ABCDEFG");
    JobGeometry text;
    report(out, QStringLiteral("outlines of 40 lines of vector text"), [&] {
        JobSources::geometry(bedItem(SourceKind::Text, QByteArray(), lines.join(QLatin1Char('\n'))), &text, &error);
    });
    out << "  outlines: " << contourCount(text) << "\n";

    FillParams fill;
    fill.interval = 0.1;
    for (const auto &job : {std::make_pair(QStringLiteral("traced page"), &traced),
                            std::make_pair(QStringLiteral("vector text page"), &text)}) {
        CountingSink sink;
        report(out, QStringLiteral("full-bed fill of the %1 at 0.1 mm").arg(job.first), [&] {
            sink = CountingSink();
            qint32 x = 0, y = 0;
            JobVector::planFill({*job.second}, fill, settings, sink, &x, &y);
        });
        out << "  moves: " << sink.moves << ", travels: " << sink.travels << ", burn: " << sink.burn << " mm\n";
    }

    // One line of 10,000 characters: thousands of outlines side by side across every hatch line.
    QString longLine;
    for (int i = 0; longLine.size() < 10000; ++i)
        longLine += QStringLiteral("Lorem ipsum dolor sit amet %1 ").arg(i);
    longLine.truncate(10000);
    JobItem lineItem = bedItem(SourceKind::Text, QByteArray(), longLine);
    lineItem.height = 2;
    JobGeometry lineText;
    JobSources::geometry(lineItem, &lineText, &error);
    out << "one line of 10,000 characters of vector text, 170 x 2 mm: " << contourCount(lineText) << " outlines\n";
    {
        CountingSink sink;
        report(out, QStringLiteral("  fill at 0.1 mm"), [&] {
            sink = CountingSink();
            qint32 x = 0, y = 0;
            JobVector::planFill({lineText}, fill, settings, sink, &x, &y);
        });
        LineParams inside;
        inside.kerfSide = KerfSide::Inside;
        inside.kerf = 0.01;
        report(out, QStringLiteral("  line, kerf inside"), [&] {
            sink = CountingSink();
            qint32 x = 0, y = 0;
            JobVector::planLine({lineText}, inside, settings, sink, &x, &y);
        });
    }
    if (!error.isEmpty())
        out << "error: " << error << "\n";
    return 0;
}
