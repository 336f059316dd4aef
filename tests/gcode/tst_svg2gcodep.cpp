// Tests of the vector G-code export: exact output for small drawings in laser and CNC mode,
// the header buffer, the Z counter, the path order, flattening limits, failures and bad drawings.
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
#include <limits>
#include <numeric>
#include <unistd.h>

namespace {

// Runs `run` with the converter's standard output sent to a file; returns what it printed.
template <typename Run>
QString printedBy(Run run)
{
    fflush(stdout);
    const int saved = dup(STDOUT_FILENO);
    const int fd = open("stdout.txt", O_WRONLY | O_CREAT | O_TRUNC, 0644);
    dup2(fd, STDOUT_FILENO);
    close(fd);
    run();
    fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
    QFile f(QStringLiteral("stdout.txt"));
    f.open(QIODevice::ReadOnly);
    return QString::fromLatin1(f.readAll());
}

const QByteArray SvgOpen = "<svg xmlns='http://www.w3.org/2000/svg' ";
// User unit = 1 mm.
QByteArray mmSvg(const QByteArray &body, int size = 10)
{
    const QByteArray n = QByteArray::number(size);
    return SvgOpen + "width='" + n + "mm' height='" + n + "mm' viewBox='0 0 " + n + " " + n + "'>" + body + "</svg>";
}

QString readFile(const QString &name)
{
    QFile f(name);
    return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()) : QStringLiteral("<no file>");
}

struct Job
{
    int mode = 0;
    QSize size = QSize(8, 8);
    QPointF place;
    int power = 232;
    QStringList headers = {QStringLiteral("; job\n")};
};

// Runs the export as the main window does, in the current directory; returns the G-code.
QString exportSvg(const QByteArray &svg, const Job &job, QString *debug = nullptr)
{
    QFile in(QStringLiteral("black_white.svg"));
    in.open(QIODevice::WriteOnly);
    in.write(svg);
    in.close();
    AppSettings::setOffset(job.place.x(), job.place.y());
    Svg2GcodeP gen;
    gen.SetGcoderHeader(QString(64, QChar(0)));  // clears what earlier tests left
    for (const QString &header : job.headers)
        gen.SetGcoderHeader(header);
    gen.SetgGcodeWidth(job.size.width(), job.size.height());
    gen.SetFeedSpeed(594);
    gen.SetPrintMode(job.mode);
    gen.SetTravelSpeed(11880);
    gen.SetLaser(job.power);
    gen.SetPrintZValue(-1.5f);
    gen.SetTravelZValue(5.0f);
    const QString printed = printedBy([&gen] { gen.SvgToGcode("black_white.svg", "local.gcode"); });
    if (debug)
        *debug = printed;
    return readFile(QStringLiteral("local.gcode"));
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

// The path starts, in written order, as the X of each "G0 X.. Y.. Z.. F.." move.
QStringList startXs(const QString &gcode)
{
    QStringList xs;
    const QRegularExpression re(QStringLiteral("^G0 X(\\S+) Y\\S+ Z\\S+ F"), QRegularExpression::MultilineOption);
    for (auto it = re.globalMatch(gcode); it.hasNext();)
        xs << it.next().captured(1);
    return xs;
}

// The ordering as read plainly: minimal standard generator, draws redrawn outside [0, 1].
QVector<int> referenceOrder(const QPolygonF &starts, long long seconds)
{
    int32_t state = int32_t(((long long)(double(seconds) + 0.5) - 1) % 2147483646 + 1);
    auto next = [&state]() {
        const int64_t p = int64_t(state) * 16807;
        int32_t r = int32_t((p >> 31) + (p & 0x7fffffff));
        return state = r < 0 ? (r + 1) & 0x7fffffff : r;
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
    for (long long k = 0; k < 30LL * n * 800; ++k) {
        const int i = draw(), j = draw();
        const int a = std::min(i, j), b = std::max(i, j);
        if (b - a >= 2 && d2(a, a + 1) + d2(b, b + 1) > d2(a + 1, b + 1) + d2(a, b))
            std::reverse(order.begin() + a + 1, order.begin() + b + 1);
    }
    return order;
}

}  // namespace

class TestSvg2GcodeP : public QObject
{
    Q_OBJECT

private slots:
    void exactGcode_data();
    void exactGcode();
    void zCounter_data();
    void zCounter();
    void order_data();
    void order();
    void estimatedTime();
    void badInput_data();
    void badInput();
    void positionsNotNumbers_data();
    void positionsNotNumbers();
};

void TestSvg2GcodeP::exactGcode_data()
{
    QTest::addColumn<QByteArray>("svg");
    QTest::addColumn<int>("mode");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<int>("power");
    QTest::addColumn<QStringList>("headers");  // given in turn to the 64-byte header buffer
    QTest::addColumn<QString>("written");      // what the buffer holds after them
    QTest::addColumn<QStringList>("body");     // between the header and the closing "M107", "G28"
    QTest::addColumn<QString>("debugLine");
    const auto row = [](const char *name, const QByteArray &svg, int mode, QSize size, const QStringList &body,
                        const char *debugLine, int power = 232, QPointF place = QPointF()) {
        QTest::newRow(name) << svg << mode << size << place << power << QStringList{"; job\n"} << "; job\n"
                            << body << QString::fromLatin1(debugLine);
    };
    const auto header = [](const char *name, const QStringList &headers, const QString &written) {
        QTest::newRow(name) << mmSvg("") << 0 << QSize(8, 8) << QPointF() << 232 << headers << written << QStringList()
                            << "shapes 0";
    };
    const QStringList laserStart = {"M107", "G0 X0.0 Y201.0 Z0.0000 F11880.0", "M106 S232 ", "G1 F594.0 "};
    const QStringList laserEnd = {"M107", "G0 F11880.0 "};
    const QStringList cncEnd = {"M107", "G0 Z5.0 F11880.0"};
    const QByteArray square = mmSvg("<path d='M1 1 H9 V9 H1 Z'/>");

    row("mm square, laser", square, 0, QSize(8, 8),
        laserStart + point("G1 X8.0 Y201.0 Z0.000 ") + point("G1 X8.0 Y193.0 Z0.000 ") + point("G1 X0.0 Y193.0 Z0.000 ")
            + point("G1 X0.0 Y201.0 Z0.000 ") + laserEnd,
        "bounds 0=1.000000 1=1.000000 2=9.000000 3=9.000000");
    // The laser line comes before every point in CNC mode too, after the spindle's M106 S255.
    const char *const s255 = "M106 S255 ";
    row("mm square, CNC, placed at 10,20, power 255", square, 1, QSize(8, 8),
        QStringList{"M107", "G0 X10.0 Y181.0 Z0.0000 F11880.0", "M106 S255", "G4 P0.5", "G1 F594.0 ", "G1 Z-1.5 "}
            + point("G1 X18.0 Y181.0 Z0.000 ", s255) + point("G1 X18.0 Y173.0 Z0.000 ", s255)
            + point("G1 X10.0 Y173.0 Z0.000 ", s255) + point("G1 X10.0 Y181.0 Z0.000 ", s255) + cncEnd,
        "paths 1 points 13", 255, QPointF(10, 20));
    // Its only segment is the drawing's last record, which the writer passes over.
    row("a single cubic is skipped", mmSvg("<path d='M0 0 C0 1 4 1 4 0'/>"), 0, QSize(8, 2), {},
        "total paths 1, total points 1");
    row("cubic split once, then a line, CNC", mmSvg("<path d='M0 0 C0 1 4 1 4 0 L4 3'/>"), 1, QSize(8, 6),
        QStringList{"M107", "G0 X0.0 Y201.0 Z0.0000 F11880.0", "M106 S255", "G4 P0.5", "G1 F594.0 ", "G1 Z-1.5 "}
            + point("G1 X4.0 Y199.5 Z0.000 ") + point("G1 X8.0 Y201.0 Z0.000 ") + point("G1 X8.0 Y195.0 Z0.000 ")
            + cncEnd,
        "shapes 1");
    // The open path returns to its start (the next path's flag is read); the closed one does not.
    row("open path then closed path, laser", mmSvg("<path d='M0 0 L10 0 L10 10'/><path d='M12 0 L20 0 L20 10 Z'/>", 20),
        0, QSize(20, 10),
        laserStart + point("G1 X10.0 Y201.0 Z0.000 ") + point("G1 X10.0 Y191.0 Z0.000 ")
            + QStringList{"M107", "G0 X0.0 Y201.0 Z0.002 ", "M107", "G0 F11880.0 ", "M107",
                          "G0 X12.0 Y201.0 Z0.0002 F11880.0", "M106 S232 ", "G1 F594.0 "}
            + point("G1 X20.0 Y201.0 Z0.000 ") + point("G1 X20.0 Y191.0 Z0.000 ") + point("G1 X12.0 Y201.0 Z0.000 ")
            + laserEnd,
        "shapes 2");
    row("px document without viewBox, power 255",
        SvgOpen + "width='100' height='100'><polygon points='10,10 30,10 30,40'/></svg>", 0, QSize(20, 30),
        QStringList{"M107", "G0 X0.0 Y201.0 Z0.0000 F11880.0", "M106 S255 ", "G1 F594.0 "}
            + point("G1 X20.0 Y201.0 Z0.000 ", s255) + point("G1 X20.0 Y171.0 Z0.000 ", s255)
            + point("G1 X0.0 Y201.0 Z0.000 ", s255) + laserEnd,
        "bounds 0=0.000000 1=0.000000 2=5080.000000 3=7620.000000", 255);
    row("no shapes", mmSvg("<g><text>only words</text></g>"), 0, QSize(8, 8), {}, "shapes 0");
    header("header: a shorter one keeps the older tail", {"; a longer earlier header\n", "; new\n"},
           "; new\nnger earlier header\n");
    header("header: an empty one changes nothing", {"; kept\n", ""}, "; kept\n");
    header("header: longer than the buffer, cut at 64 bytes", {QString(70, QLatin1Char('x'))},
           QString(64, QLatin1Char('x')));
    header("header: characters outside Latin-1 become ?", {"; \u00e9\u4e2d\n"}, "; \u00e9?\n");
}

void TestSvg2GcodeP::exactGcode()
{
    QFETCH(QByteArray, svg);
    QFETCH(int, mode);
    QFETCH(QSize, size);
    QFETCH(QPointF, place);
    QFETCH(int, power);
    QFETCH(QStringList, headers);
    QFETCH(QString, written);
    QFETCH(QStringList, body);
    QFETCH(QString, debugLine);
    ScopedWorkDir dir;
    // The outline, traced twice with a weak beam, in machine coordinates (the work area is 200 mm high).
    const auto mm = [](double v) { return QString::number(v, 'f', 2); };
    const QString l = mm(place.x()), r = mm(place.x() + size.width()), t = mm(200 - place.y()),
                  b = mm(200 - place.y() - size.height());
    const QStringList frame = {"G0 X" + l + " Y" + t + " F4600", "M106 S5 ",
                               "G0 X" + r + " Y" + t + " ",      "G0 X" + r + " Y" + b + " ",
                               "G0 X" + l + " Y" + b + " ",      "G0 X" + l + " Y" + t + " "};
    const QStringList start = QStringList{"G1 F2000 ", "G28 X0 Y0  ;move X/Y to min endstops "} + frame + frame;
    const QStringList end = body + QStringList{"M107", "G28", ""};
    QString debug;
    QCOMPARE(exportSvg(svg, Job{mode, size, place, power, headers}, &debug),
             start.join('\n') + "\nM0 \n" + written + end.join('\n'));
    QVERIFY2(debug.split(QLatin1Char('\n')).contains(debugLine), qPrintable(debug));
    QVERIFY2(debug.contains(QStringLiteral("reorder 0... 1... ")) && debug.contains(QStringLiteral("29... \n")),
             qPrintable(debug));
}

void TestSvg2GcodeP::zCounter_data()
{
    QTest::addColumn<int>("mode");
    QTest::addColumn<int>("pointNumber");
    QTest::addColumn<QString>("z");
    // Z = counter x 0.0625, the counter growing 0.001 per point and, for the laser, per path start.
    QTest::newRow("laser, point 4: 0.004") << 0 << 4 << "Z0.000 ";
    QTest::newRow("laser, point 12: 0.012") << 0 << 12 << "Z0.001 ";
    QTest::newRow("CNC, point 13: 0.012") << 1 << 13 << "Z0.001 ";
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
                                  .split(QLatin1Char('\n'))
                                  .filter(QRegularExpression(QStringLiteral("^G1 X")));
    QCOMPARE(moves.size(), 60);
    QVERIFY2(moves[2 * (pointNumber - 1)].endsWith(z), qPrintable(moves[2 * (pointNumber - 1)]));
}

void TestSvg2GcodeP::order_data()
{
    QTest::addColumn<QPolygonF>("starts");
    QTest::addColumn<qint64>("seed");
    QTest::addColumn<bool>("portable");

    // Far apart and crossing: any reordering would shorten the travel, yet three paths leave the
    // draws no pair to swap, so they keep their order (0, 90, 2) whatever the seed.
    const QPolygonF three = QVector<QPointF>{{0, 0}, {90, 90}, {2, 0}};
    QTest::newRow("three paths, seed 1") << three << qint64(1) << false;
    QTest::newRow("three paths, seed 1700000000") << three << qint64(1700000000) << false;
    QPolygonF forty;
    for (int i = 0; i < 40; ++i)
        forty << QPointF((i * 37) % 97, (i * 53) % 89);
    QTest::newRow("40 paths, seed 424242, vector unit") << forty << qint64(424242) << false;
    QTest::newRow("40 paths, seed 424242, plain integer code") << forty << qint64(424242) << true;
    QTest::newRow("40 paths, seed 99") << forty << qint64(99) << false;
    // Enough draws to run through hundreds of the blocks made ahead, and swaps late in a pass.
    QPolygonF many;
    for (int i = 0; i < 500; ++i)
        many << QPointF((i * 7919) % 499, (i * 104729) % 491);
    QTest::newRow("500 paths, seed 1700000000") << many << qint64(1700000000) << false;
}

void TestSvg2GcodeP::order()
{
    QFETCH(QPolygonF, starts);
    QFETCH(qint64, seed);
    QFETCH(bool, portable);
    ScopedWorkDir dir;
    QByteArray body;
    Job job;
    job.size.setWidth(2);
    for (const QPointF &p : starts) {
        job.size.setWidth(std::max(job.size.width(), int(p.x()) + 2));  // one machine mm per unit
        body += "<path d='M" + QByteArray::number(p.x()) + " " + QByteArray::number(p.y()) + " l1 0 l1 0'/>";
    }
    pathconv_use_portable_draws(portable);
    Svg2GcodeP::UseFixedSeed(seed);
    const QStringList written = startXs(exportSvg(mmSvg(body, 100), job));
    Svg2GcodeP::UseClockSeed();
    pathconv_use_portable_draws(false);

    QStringList expected;
    for (int index : referenceOrder(starts, seed))
        expected << QString::number(starts[index].x(), 'f', 1);
    QCOMPARE(written, expected);
    if (starts.size() == 3)
        QCOMPARE(written, QStringList({"0.0", "90.0", "2.0"}));
}

void TestSvg2GcodeP::estimatedTime()
{
    ScopedWorkDir dir;
    Svg2GcodeP gen;
    gen.TakeEstimatedTime();
    exportSvg(mmSvg("<path d='M1 1 H9 V9 H1 Z'/>"), Job());
    // 9.9 mm/s from (0,200): to (8,201) then three 8 mm sides, each v*1.5/300 + d/v.
    const double v = 594.0 / 60;
    const double expected = 4 * (v * 1.5 / 300) + (std::sqrt(65.0) + 24) / v;
    QVERIFY2(std::fabs(gen.TakeEstimatedTime() - expected) < 1e-4, qPrintable(QString::number(expected)));
    QCOMPARE(gen.TakeEstimatedTime(), 0.0f);
}

void TestSvg2GcodeP::badInput_data()
{
    QTest::addColumn<QByteArray>("svg");  // empty: no input file
    QTest::addColumn<QString>("output");
    QTest::addColumn<bool>("scalable");
    QTest::addColumn<int>("moves");        // -1, -2: fails with this result and no output file
    QTest::addColumn<QString>("printed");  // printed once in the debug output

    const QByteArray good = mmSvg("<path d='M0 0 l1 0 l1 0'/>");
    const QString cannotOpen = QStringLiteral("error: Can't open input in.svg\n");
    QTest::newRow("a drawing") << good << "out.gcode" << true << 4 << "shapes 1\n";
    QTest::newRow("nothing to draw") << mmSvg("<text>words</text>") << "out.gcode" << true << 0 << "shapes 0\n";
    QTest::newRow("zero document width")
        << (SvgOpen + "width='0' height='10mm' viewBox='0 0 10 10'><path d='M0 0 l0 5 l5 0'/></svg>") << "out.gcode"
        << false << -2 << "shapes 1\n";
    // No width gives an infinite scale: the positions would be "nan", so nothing is written.
    QTest::newRow("vertical line") << mmSvg("<path d='M5 0 l0 5 l0 5'/>") << "out.gcode" << false << -2 << "shapes 1\n";
    QTest::newRow("missing input") << QByteArray() << "out.gcode" << false << -1 << cannotOpen;
    QTest::newRow("malformed input") << QByteArray("<svg><path d='M0 0 L1") << "out.gcode" << false << -1 << cannotOpen;
    QTest::newRow("not XML") << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR", 16) << "out.gcode" << false << -1
                             << cannotOpen;
    QTest::newRow("output folder missing") << good << "nowhere/out.gcode" << true << -1 << "shapes 1\n";
    QByteArray longPath = "<path d='M0 0";
    for (int i = 0; i < 100000; ++i)
        longPath += (i % 2) ? " l0.01 0" : " l0 0.01";
    // A parabola tall enough to be split down to the depth limit everywhere: 4096 pieces, of which
    // 4095 are written (the last place was overwritten), then the line's end.
    QTest::newRow("segment flattened past 4096 points")
        << mmSvg("<path d='M0 0 C8388608 4194304 16777216 4194304 25165824 0 L25165824 1'/>", 100) << "out.gcode"
        << true << 2 * (4095 + 1) << "?!bez count\n";
    QTest::newRow("100000 segments") << mmSvg(longPath + "'/>", 1000) << "out.gcode" << true << 200000 << "shapes 1\n";
}

// The export checks CanScale first; the converter itself must survive what it is given.
void TestSvg2GcodeP::badInput()
{
    QFETCH(QByteArray, svg);
    QFETCH(QString, output);
    QFETCH(bool, scalable);
    QFETCH(int, moves);
    QFETCH(QString, printed);
    ScopedWorkDir dir;
    QFile in(QStringLiteral("in.svg"));
    if (!svg.isEmpty())
        QVERIFY(in.open(QIODevice::WriteOnly) && in.write(svg) == svg.size());
    in.close();
    QCOMPARE(Svg2GcodeP::CanScale(QStringLiteral("in.svg")), scalable);
    int result = 0;
    const QString debug =
        printedBy([&] { result = pathconv_convert("in.svg", QFile::encodeName(output).constData(), 1); });
    QVERIFY2(debug.count(printed) == 1, qPrintable(debug.left(500)));
    QCOMPARE(result, moves < 0 ? moves : 0);
    const QString gcode = readFile(output);
    if (moves < 0)
        QCOMPARE(gcode, QStringLiteral("<no file>"));
    else
        QVERIFY(gcode.endsWith(QStringLiteral("M107\nG28\n")) && countMoves(gcode) == moves);
}

void TestSvg2GcodeP::positionsNotNumbers_data()
{
    QTest::addColumn<QPointF>("place");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("written");
    const double inf = std::numeric_limits<double>::infinity();
    QTest::newRow("x not a number") << QPointF(qQNaN(), 0) << QSize(8, 8) << false;
    QTest::newRow("y infinite") << QPointF(0, inf) << QSize(8, 8) << false;
    QTest::newRow("scale overflowing") << QPointF(0, 0) << QSize(2000000000, 8) << false;
    QTest::newRow("usable") << QPointF(1, 2) << QSize(8, 8) << true;
}

// The converter never writes "nan" or "inf": it refuses, and the old file stays untouched.
void TestSvg2GcodeP::positionsNotNumbers()
{
    QFETCH(QPointF, place);
    QFETCH(QSize, size);
    QFETCH(bool, written);
    ScopedWorkDir dir;
    QFile in(QStringLiteral("in.svg"));
    QVERIFY(in.open(QIODevice::WriteOnly));
    in.write(mmSvg("<path d='M0 0 L1e-36 1e-36'/>"));
    in.close();
    AppSettings::setOffset(place.x(), place.y());
    Svg2GcodeP gen;
    gen.SetgGcodeWidth(size.width(), size.height());
    printedBy([&gen] { gen.SvgToGcode("in.svg", "out.gcode"); });
    QCOMPARE(gen.LastRefusal().isEmpty(), written);
    const QString gcode = readFile(QStringLiteral("out.gcode"));
    QCOMPARE(gcode != QStringLiteral("<no file>"), written);
    QVERIFY(!gcode.contains(QLatin1String("nan")) && !gcode.contains(QLatin1String("inf")));
}

TARNWELL_TEST_MAIN(TestSvg2GcodeP)
#include "tst_svg2gcodep.moc"
