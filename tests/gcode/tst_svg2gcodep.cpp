// Tests of the vector G-code export: exact output for small drawings in laser and
// CNC mode, the header buffer, the path order, flattening limits and failures.
#include "appsettings.h"
#include "pathconverter.h"
#include "svg2gcodep.h"
#include "testsupport.h"

#include <QFile>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fcntl.h>
#include <numeric>
#include <unistd.h>

namespace {

// Sends the converter's standard output to a file until text() is called.
class StdoutCapture
{
public:
    StdoutCapture()
    {
        fflush(stdout);
        m_saved = dup(STDOUT_FILENO);
        const int fd = open("stdout.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
        dup2(fd, STDOUT_FILENO);
        close(fd);
    }
    ~StdoutCapture() { text(); }
    QString text()
    {
        if (m_saved >= 0) {
            fflush(stdout);
            dup2(m_saved, STDOUT_FILENO);
            close(m_saved);
            m_saved = -1;
        }
        QFile f(QStringLiteral("stdout.txt"));
        f.open(QIODevice::ReadOnly);
        return QString::fromLatin1(f.readAll());
    }

private:
    int m_saved = -1;
};

const QByteArray SvgOpen = "<svg xmlns='http://www.w3.org/2000/svg' ";
// User unit = 1 mm.
QByteArray mmSvg(const QByteArray &body, int size = 10)
{
    const QByteArray n = QByteArray::number(size);
    return SvgOpen + "width='" + n + "mm' height='" + n + "mm' viewBox='0 0 " + n + " " + n + "'>" + body + "</svg>";
}

void writeFile(const QString &name, const QByteArray &data)
{
    QFile f(name);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write(data);
}

QString readFile(const QString &name)
{
    QFile f(name);
    if (!f.open(QIODevice::ReadOnly))
        return QStringLiteral("<no file>");
    return QString::fromLatin1(f.readAll());
}

struct Job
{
    int mode = 0;
    int width = 8;
    int height = 8;
    double x = 0;
    double y = 0;
    int power = 232;
    QString header = QStringLiteral("; job\n");
};

// Runs the export as the main window does, in the current directory; returns the G-code.
QString exportSvg(const QByteArray &svg, const Job &job, QString *debug = nullptr)
{
    writeFile(QStringLiteral("black_white.svg"), svg);
    AppSettings::setOffset(job.x, job.y);
    Svg2GcodeP gen;
    gen.SetGcoderHeader(QString(64, QChar(0)));  // clears what earlier tests left
    gen.SetGcoderHeader(job.header);
    gen.SetgGcodeWidth(job.width, job.height);
    gen.SetFeedSpeed(594);
    gen.SetPrintMode(job.mode);
    gen.SetTravelSpeed(11880);
    gen.SetLaser(job.power);
    gen.SetPrintZValue(-1.5f);
    gen.SetTravelZValue(5.0f);
    StdoutCapture capture;
    gen.SvgToGcode(QStringLiteral("black_white.svg"), QStringLiteral("local.gcode"));
    if (debug)
        *debug = capture.text();
    return readFile(QStringLiteral("local.gcode"));
}

QString lines(const QStringList &l)
{
    return l.join(QLatin1Char('\n')) + QLatin1Char('\n');
}

// One written point: the laser line, the move twice, the feed.
QStringList point(const char *move, const char *laser = "M106 S232 ")
{
    return {QLatin1String(laser), QLatin1String(move), QLatin1String(move), QStringLiteral("G1 F594.0 ")};
}

// Lines that move with the tool down.
int countMoves(const QString &gcode)
{
    int n = gcode.startsWith(QLatin1String("G1 X")) ? 1 : 0;
    for (int at = gcode.indexOf(QLatin1String("\nG1 X")); at >= 0; at = gcode.indexOf(QLatin1String("\nG1 X"), at + 1))
        ++n;
    return n;
}

const QStringList Start = {QStringLiteral("G1 F2000 "), QStringLiteral("G28 X0 Y0  ;move X/Y to min endstops ")};

// The path starts, in written order, as the X of each "G0 X.. Y.. Z.. F.." move.
QStringList startXs(const QString &gcode)
{
    QStringList xs;
    const QRegularExpression re(QStringLiteral("^G0 X(\\S+) Y\\S+ Z\\S+ F"), QRegularExpression::MultilineOption);
    auto it = re.globalMatch(gcode);
    while (it.hasNext())
        xs << it.next().captured(1);
    return xs;
}

// The ordering as read plainly: minimal standard generator, draws redrawn outside [0, 1].
QVector<int> referenceOrder(const QVector<QPointF> &starts, long long seconds)
{
    const long long t = (long long)(double(seconds) + 0.5);
    int32_t state = int32_t((t - 1) % 2147483646 + 1);
    auto next = [&state]() {
        const int64_t p = int64_t(state) * 16807;
        int32_t r = int32_t((p >> 31) + (p & 0x7fffffff));
        if (r < 0)
            r = (r + 1) & 0x7fffffff;
        return state = r;
    };
    next();
    next();
    const int n = starts.size();
    auto draw = [&]() {
        double u;
        do
            u = (next() - 1073741823) * std::ldexp(1.0, -29);
        while (u < 0 || u > 1);
        return int(u * (n - 2));
    };
    QVector<int> order(n);
    std::iota(order.begin(), order.end(), 0);
    auto d2 = [&](int p, int q) {
        const float dx = float(starts[order[p]].x()) - float(starts[order[q]].x());
        const float dy = float(starts[order[p]].y()) - float(starts[order[q]].y());
        return dx * dx + dy * dy;
    };
    for (int pass = 0; pass < 30; ++pass)
        for (long long k = 0; k < (long long)n * 800; ++k) {
            const int i = draw(), j = draw();
            if (std::abs(i - j) < 2)
                continue;
            const int a = std::min(i, j), b = std::max(i, j);
            if (d2(a, a + 1) + d2(b, b + 1) > d2(a + 1, b + 1) + d2(a, b) && a + 1 < b)
                std::reverse(order.begin() + a + 1, order.begin() + b + 1);
        }
    return order;
}

} // namespace

class TestSvg2GcodeP : public QObject
{
    Q_OBJECT

private slots:
    void exactGcode_data();
    void exactGcode();
    void headerBuffer_data();
    void headerBuffer();
    void zCounter_data();
    void zCounter();
    void fewPathsKeepTheirOrder_data();
    void fewPathsKeepTheirOrder();
    void seededOrder_data();
    void seededOrder();
    void flatteningBufferFull();
    void failures_data();
    void failures();
    void estimatedTime();
    void badDrawings_data();
    void badDrawings();
};

void TestSvg2GcodeP::exactGcode_data()
{
    QTest::addColumn<QByteArray>("svg");
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("y");
    QTest::addColumn<int>("power");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("debugLine");

    const QByteArray square = mmSvg("<path d='M1 1 H9 V9 H1 Z'/>");
    const QStringList frame8 = {"G0 X0.00 Y200.00 F4600", "M106 S5 ", "G0 X8.00 Y200.00 ", "G0 X8.00 Y192.00 ",
                                "G0 X0.00 Y192.00 ", "G0 X0.00 Y200.00 "};
    QTest::newRow("mm square, laser")
        << square << 0 << 8 << 8 << 0.0 << 0.0 << 232
        << lines(Start + frame8 + frame8
                 + QStringList{"M0 ", "; job", "M107", "G0 X0.0 Y201.0 Z0.0000 F11880.0", "M106 S232 ", "G1 F594.0 "}
                 + point("G1 X8.0 Y201.0 Z0.000 ") + point("G1 X8.0 Y193.0 Z0.000 ")
                 + point("G1 X0.0 Y193.0 Z0.000 ") + point("G1 X0.0 Y201.0 Z0.000 ")
                 + QStringList{"M107", "G0 F11880.0 ", "M107", "G28"})
        << "bounds 0=1.000000 1=1.000000 2=9.000000 3=9.000000";

    const QStringList frameAt = {"G0 X10.00 Y180.00 F4600", "M106 S5 ", "G0 X18.00 Y180.00 ", "G0 X18.00 Y172.00 ",
                                 "G0 X10.00 Y172.00 ", "G0 X10.00 Y180.00 "};
    // The laser line comes before every point in CNC mode too, after the spindle's M106 S255.
    QTest::newRow("mm square, CNC, placed at 10,20, power 255")
        << square << 1 << 8 << 8 << 10.0 << 20.0 << 255
        << lines(Start + frameAt + frameAt
                 + QStringList{"M0 ", "; job", "M107", "G0 X10.0 Y181.0 Z0.0000 F11880.0", "M106 S255", "G4 P0.5",
                               "G1 F594.0 ", "G1 Z-1.5 "}
                 + point("G1 X18.0 Y181.0 Z0.000 ", "M106 S255 ") + point("G1 X18.0 Y173.0 Z0.000 ", "M106 S255 ")
                 + point("G1 X10.0 Y173.0 Z0.000 ", "M106 S255 ") + point("G1 X10.0 Y181.0 Z0.000 ", "M106 S255 ")
                 + QStringList{"M107", "G0 Z5.0 F11880.0", "M107", "G28"})
        << "paths 1 points 13";

    // Its only segment is the drawing's last record, which the writer passes over.
    const QStringList frame82 = {"G0 X0.00 Y200.00 F4600", "M106 S5 ", "G0 X8.00 Y200.00 ", "G0 X8.00 Y198.00 ",
                                 "G0 X0.00 Y198.00 ", "G0 X0.00 Y200.00 "};
    QTest::newRow("a single cubic is skipped")
        << mmSvg("<path d='M0 0 C0 1 4 1 4 0'/>") << 0 << 8 << 2 << 0.0 << 0.0 << 232
        << lines(Start + frame82 + frame82 + QStringList{"M0 ", "; job", "M107", "G28"})
        << "total paths 1, total points 1";

    const QStringList frame86 = {"G0 X0.00 Y200.00 F4600", "M106 S5 ", "G0 X8.00 Y200.00 ", "G0 X8.00 Y194.00 ",
                                 "G0 X0.00 Y194.00 ", "G0 X0.00 Y200.00 "};
    QTest::newRow("cubic split once, then a line, CNC")
        << mmSvg("<path d='M0 0 C0 1 4 1 4 0 L4 3'/>") << 1 << 8 << 6 << 0.0 << 0.0 << 232
        << lines(Start + frame86 + frame86
                 + QStringList{"M0 ", "; job", "M107", "G0 X0.0 Y201.0 Z0.0000 F11880.0", "M106 S255", "G4 P0.5",
                               "G1 F594.0 ", "G1 Z-1.5 "}
                 + point("G1 X4.0 Y199.5 Z0.000 ") + point("G1 X8.0 Y201.0 Z0.000 ")
                 + point("G1 X8.0 Y195.0 Z0.000 ")
                 + QStringList{"M107", "G0 Z5.0 F11880.0", "M107", "G28"})
        << "shapes 1";

    // The open path returns to its start (the next path's flag is read); the closed one does not.
    const QStringList frame2010 = {"G0 X0.00 Y200.00 F4600", "M106 S5 ", "G0 X20.00 Y200.00 ", "G0 X20.00 Y190.00 ",
                                   "G0 X0.00 Y190.00 ", "G0 X0.00 Y200.00 "};
    QTest::newRow("open path then closed path, laser")
        << mmSvg("<path d='M0 0 L10 0 L10 10'/><path d='M12 0 L20 0 L20 10 Z'/>", 20) << 0 << 20 << 10 << 0.0 << 0.0
        << 232
        << lines(Start + frame2010 + frame2010
                 + QStringList{"M0 ", "; job", "M107", "G0 X0.0 Y201.0 Z0.0000 F11880.0", "M106 S232 ", "G1 F594.0 "}
                 + point("G1 X10.0 Y201.0 Z0.000 ") + point("G1 X10.0 Y191.0 Z0.000 ")
                 + QStringList{"M107", "G0 X0.0 Y201.0 Z0.002 ", "M107", "G0 F11880.0 ",
                               "M107", "G0 X12.0 Y201.0 Z0.0002 F11880.0", "M106 S232 ", "G1 F594.0 "}
                 + point("G1 X20.0 Y201.0 Z0.000 ") + point("G1 X20.0 Y191.0 Z0.000 ")
                 + point("G1 X12.0 Y201.0 Z0.000 ")
                 + QStringList{"M107", "G0 F11880.0 ", "M107", "G28"})
        << "shapes 2";

    const QStringList frame2030 = {"G0 X0.00 Y200.00 F4600", "M106 S5 ", "G0 X20.00 Y200.00 ", "G0 X20.00 Y170.00 ",
                                   "G0 X0.00 Y170.00 ", "G0 X0.00 Y200.00 "};
    QTest::newRow("px document without viewBox, power 255")
        << (SvgOpen + "width='100' height='100'><polygon points='10,10 30,10 30,40'/></svg>")
        << 0 << 20 << 30 << 0.0 << 0.0 << 255
        << lines(Start + frame2030 + frame2030
                 + QStringList{"M0 ", "; job", "M107", "G0 X0.0 Y201.0 Z0.0000 F11880.0", "M106 S255 ", "G1 F594.0 "}
                 + point("G1 X20.0 Y201.0 Z0.000 ", "M106 S255 ") + point("G1 X20.0 Y171.0 Z0.000 ", "M106 S255 ")
                 + point("G1 X0.0 Y201.0 Z0.000 ", "M106 S255 ")
                 + QStringList{"M107", "G0 F11880.0 ", "M107", "G28"})
        << "bounds 0=0.000000 1=0.000000 2=5080.000000 3=7620.000000";

    QTest::newRow("no shapes")
        << mmSvg("<g><text>only words</text></g>") << 0 << 8 << 8 << 0.0 << 0.0 << 232
        << lines(Start + frame8 + frame8 + QStringList{"M0 ", "; job", "M107", "G28"})
        << "shapes 0";
}

void TestSvg2GcodeP::exactGcode()
{
    QFETCH(QByteArray, svg);
    QFETCH(int, mode);
    QFETCH(int, width);
    QFETCH(int, height);
    QFETCH(double, x);
    QFETCH(double, y);
    QFETCH(int, power);
    QFETCH(QString, expected);
    QFETCH(QString, debugLine);
    ScopedWorkDir dir;
    const Job job{mode, width, height, x, y, power, QStringLiteral("; job\n")};
    QString debug;
    QCOMPARE(exportSvg(svg, job, &debug), expected);
    QVERIFY2(debug.split(QLatin1Char('\n')).contains(debugLine), qPrintable(debug));
    QVERIFY2(debug.contains(QStringLiteral("reorder 0... 1... ")) && debug.contains(QStringLiteral("29... \n")),
             qPrintable(debug));
}

void TestSvg2GcodeP::headerBuffer_data()
{
    QTest::addColumn<QStringList>("headers");
    QTest::addColumn<QString>("written");

    QTest::newRow("one header") << QStringList{"; hello\n"} << "; hello\n";
    QTest::newRow("a shorter header keeps the older tail")
        << QStringList{"; a longer earlier header\n", "; new\n"} << "; new\nnger earlier header\n";
    QTest::newRow("an empty header changes nothing") << QStringList{"; kept\n", ""} << "; kept\n";
    QTest::newRow("longer than the buffer: cut at 64 bytes")
        << QStringList{QString(70, QLatin1Char('x'))} << QString(64, QLatin1Char('x'));
    QTest::newRow("characters outside Latin-1 become ?") << QStringList{"; \u00e9\u4e2d\n"} << "; \u00e9?\n";
}

void TestSvg2GcodeP::headerBuffer()
{
    QFETCH(QStringList, headers);
    QFETCH(QString, written);
    ScopedWorkDir dir;
    writeFile(QStringLiteral("in.svg"), mmSvg(QByteArray()));
    Svg2GcodeP gen;
    gen.SetGcoderHeader(QString(64, QChar(0)));
    for (const QString &h : headers)
        gen.SetGcoderHeader(h);
    {
        StdoutCapture quiet;
        gen.SvgToGcode(QStringLiteral("in.svg"), QStringLiteral("out.gcode"));
    }
    const QString gcode = readFile(QStringLiteral("out.gcode"));
    const int from = gcode.indexOf(QStringLiteral("M0 \n")) + 4;
    QCOMPARE(gcode.mid(from), written + QStringLiteral("M107\nG28\n"));
}

void TestSvg2GcodeP::zCounter_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("pointNumber");
    QTest::addColumn<QString>("z");
    // Z = counter x 0.0625, the counter growing 0.001 per point and, for the laser, per path start.
    QTest::newRow("laser, point 4: 0.004") << 0 << 4 << "Z0.000 ";
    QTest::newRow("laser, point 12: 0.012") << 0 << 12 << "Z0.001 ";
    QTest::newRow("laser, point 30: 0.030") << 0 << 30 << "Z0.002 ";
    QTest::newRow("CNC, point 13: 0.012") << 1 << 13 << "Z0.001 ";
    QTest::newRow("CNC, point 30: 0.029") << 1 << 30 << "Z0.002 ";
}

void TestSvg2GcodeP::zCounter()
{
    QFETCH(int, mode);
    QFETCH(int, pointNumber);
    QFETCH(QString, z);
    ScopedWorkDir dir;
    QByteArray zigzag = "<path d='M0 0";
    for (int i = 0; i < 30; ++i)
        zigzag += (i % 2) ? " l0 1" : " l1 0";
    Job job;
    job.mode = mode;
    const QStringList moves = exportSvg(mmSvg(zigzag + "'/>", 20), job)
                                  .split(QLatin1Char('\n')).filter(QRegularExpression(QStringLiteral("^G1 X")));
    QCOMPARE(moves.size(), 60);
    QVERIFY2(moves[2 * (pointNumber - 1)].endsWith(z), qPrintable(moves[2 * (pointNumber - 1)]));
}

void TestSvg2GcodeP::fewPathsKeepTheirOrder_data()
{
    QTest::addColumn<qint64>("seed");
    QTest::newRow("seed 1") << qint64(1);
    QTest::newRow("seed 12345") << qint64(12345);
    QTest::newRow("seed 1700000000") << qint64(1700000000);
}

void TestSvg2GcodeP::fewPathsKeepTheirOrder()
{
    QFETCH(qint64, seed);
    ScopedWorkDir dir;
    // Far apart and crossing: any reordering would shorten the travel.
    const QByteArray svg = mmSvg("<path d='M0 0 l1 0 l1 0'/><path d='M90 90 l1 0 l1 0'/>"
                                 "<path d='M2 0 l1 0 l1 0'/>", 100);
    Svg2GcodeP::UseFixedSeed(seed);
    Job job;
    job.width = 92;  // x runs 0..92: one machine mm per unit
    const QString gcode = exportSvg(svg, job);
    Svg2GcodeP::UseClockSeed();
    QCOMPARE(startXs(gcode), QStringList({"0.0", "90.0", "2.0"}));
}

void TestSvg2GcodeP::seededOrder_data()
{
    QTest::addColumn<bool>("portable");
    QTest::newRow("vector unit") << false;
    QTest::newRow("plain integer code") << true;
}

void TestSvg2GcodeP::seededOrder()
{
    QFETCH(bool, portable);
    ScopedWorkDir dir;
    pathconv_use_portable_draws(portable);
    const int paths = 40;
    QVector<QPointF> starts;
    QByteArray body;
    int maxX = 0;
    for (int i = 0; i < paths; ++i) {
        const int x = (i * 37) % 97, y = (i * 53) % 89;
        maxX = std::max(maxX, x);
        starts << QPointF(x, y);
        body += "<path d='M" + QByteArray::number(x) + " " + QByteArray::number(y) + " l1 0 l1 0'/>";
    }
    Job job;
    job.width = maxX + 2;  // x runs from 0 to the last path's two steps: one machine mm per unit
    const QByteArray svg = mmSvg(body, 100);

    QStringList runs[3];
    const qint64 seeds[3] = {424242, 424242, 99};
    for (int r = 0; r < 3; ++r) {
        Svg2GcodeP::UseFixedSeed(seeds[r]);
        runs[r] = startXs(exportSvg(svg, job));
    }
    Svg2GcodeP::UseClockSeed();
    pathconv_use_portable_draws(false);

    QStringList expected;
    for (int index : referenceOrder(starts, 424242))
        expected << QString::number(starts[index].x(), 'f', 1);
    QCOMPARE(runs[0], expected);
    QCOMPARE(runs[1], runs[0]);
    QVERIFY(runs[2] != runs[0]);
    QStringList original;
    for (const QPointF &p : starts)
        original << QString::number(p.x(), 'f', 1);
    QVERIFY(runs[0] != original);
    std::sort(runs[0].begin(), runs[0].end());
    std::sort(original.begin(), original.end());
    QCOMPARE(runs[0], original);  // every path once, none lost
}

void TestSvg2GcodeP::flatteningBufferFull()
{
    ScopedWorkDir dir;
    // A parabola tall enough to be split down to the depth limit everywhere: 4096 pieces.
    const QByteArray svg = mmSvg("<path d='M0 0 C8388608 4194304 16777216 4194304 25165824 0 L25165824 1'/>", 100);
    Job job;
    job.width = 100;
    job.height = 100;
    QString debug;
    const QString gcode = exportSvg(svg, job, &debug);
    QCOMPARE(debug.count(QStringLiteral("?!bez count\n")), 1);
    // 4095 points of the curve (the last place was overwritten and is not written) and the line's end.
    QCOMPARE(countMoves(gcode), 2 * (4095 + 1));
}

void TestSvg2GcodeP::failures_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QByteArray>("content");  // empty: the input is not created
    QTest::addColumn<QString>("output");
    QTest::addColumn<QString>("debug");

    const QByteArray good = mmSvg("<path d='M0 0 l1 0 l1 0'/>");
    QTest::newRow("missing input") << "missing.svg" << QByteArray() << "out.gcode"
                                   << "error: Can't open input missing.svg\n";
    QTest::newRow("malformed input") << "bad.svg" << QByteArray("<svg><path d='M0 0 L1") << "out.gcode"
                                     << "error: Can't open input bad.svg\n";
    QTest::newRow("not XML") << "junk.svg" << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << "out.gcode"
                             << "error: Can't open input junk.svg\n";
    QTest::newRow("output folder missing") << "in.svg" << good << "nowhere/out.gcode" << "shapes 1\n";
}

void TestSvg2GcodeP::failures()
{
    QFETCH(QString, input);
    QFETCH(QByteArray, content);
    QFETCH(QString, output);
    QFETCH(QString, debug);
    ScopedWorkDir dir;
    if (!content.isEmpty())
        writeFile(input, content);
    StdoutCapture capture;
    const int result = pathconv_convert(QFile::encodeName(input).constData(), QFile::encodeName(output).constData(), 1);
    const QString printed = capture.text();
    QCOMPARE(result, -1);
    QVERIFY(!QFile::exists(output));
    QVERIFY2(printed.startsWith(debug), qPrintable(printed));
}

void TestSvg2GcodeP::estimatedTime()
{
    ScopedWorkDir dir;
    Svg2GcodeP gen;
    gen.TakeEstimatedTime();
    Job job;
    exportSvg(mmSvg("<path d='M1 1 H9 V9 H1 Z'/>"), job);
    // 9.9 mm/s from (0,200): to (8,201) then three 8 mm sides, each v*1.5/300 + d/v.
    const double v = 594.0 / 60;
    const double expected = 4 * (v * 1.5 / 300) + (std::sqrt(65.0) + 24) / v;
    QVERIFY2(std::fabs(gen.TakeEstimatedTime() - expected) < 1e-4, qPrintable(QString::number(expected)));
    QCOMPARE(gen.TakeEstimatedTime(), 0.0f);
}

void TestSvg2GcodeP::badDrawings_data()
{
    QTest::addColumn<QByteArray>("svg");  // empty: no file
    QTest::addColumn<bool>("scalable");
    QTest::addColumn<int>("moves");      // -1: no output expected

    QTest::newRow("a drawing") << mmSvg("<path d='M0 0 l1 0 l1 0'/>") << true << 4;
    QTest::newRow("nothing to draw") << mmSvg("<text>words</text>") << true << 0;
    QTest::newRow("zero document width") << (SvgOpen + "width='0' height='10mm' viewBox='0 0 10 10'>"
                                                       "<path d='M0 0 l0 5 l5 0'/></svg>") << false << 4;
    QTest::newRow("vertical line") << mmSvg("<path d='M5 0 l0 5 l0 5'/>") << false << 4;
    QTest::newRow("malformed") << QByteArray("<svg><path") << false << -1;
    QTest::newRow("missing") << QByteArray() << false << -1;
    QByteArray nested;
    for (int i = 0; i < 5000; ++i)
        nested += "<g>";
    nested += "<path d='M0 0 l1 0 l1 0'/>" + QByteArray("</g>").repeated(5000);
    QTest::newRow("deeply nested groups") << mmSvg(nested) << true << 4;
    QByteArray longPath = "<path d='M0 0";
    for (int i = 0; i < 100000; ++i)
        longPath += (i % 2) ? " l0.01 0" : " l0 0.01";
    QTest::newRow("100000 segments") << mmSvg(longPath + "'/>", 1000) << true << 200000;
}

// The export checks CanScale first; the converter itself must survive what it is given.
void TestSvg2GcodeP::badDrawings()
{
    QFETCH(QByteArray, svg);
    QFETCH(bool, scalable);
    QFETCH(int, moves);
    ScopedWorkDir dir;
    if (!svg.isEmpty())
        writeFile(QStringLiteral("in.svg"), svg);
    QCOMPARE(Svg2GcodeP::CanScale(QStringLiteral("in.svg")), scalable);
    {
        StdoutCapture quiet;
        Svg2GcodeP().SvgToGcode(QStringLiteral("in.svg"), QStringLiteral("out.gcode"));
    }
    const QString gcode = readFile(QStringLiteral("out.gcode"));
    if (moves < 0) {
        QCOMPARE(gcode, QStringLiteral("<no file>"));
        return;
    }
    QVERIFY(gcode.endsWith(QStringLiteral("M107\nG28\n")));
    QCOMPARE(countMoves(gcode), moves);
}

TARNWELL_TEST_MAIN(TestSvg2GcodeP)
#include "tst_svg2gcodep.moc"
