// Tests of the G-code interpreter and the toolpath renderer: exact pixels of tiny jobs, the
// figures of odd and broken files, and time estimates that agree with the exports' own.
#include "testsupport.h"

#include "bitmap2gcode.h"
#include "estimatedtime.h"
#include "gcodeinterpreter.h"
#include "svg2gcodep.h"
#include "toolpathrenderer.h"
#include "toolpathreport.h"

#include <QPainter>

namespace {

// Burned (gray) pixels of a rendering as "column,row" or "column,row=level" when not black,
// in reading order; travel pixels as "column,row~".
QString pixelsOf(const QImage &image)
{
    QStringList found;
    for (int r = 0; r < image.height(); ++r) {
        const QRgb *line = reinterpret_cast<const QRgb *>(image.constScanLine(r));
        for (int c = 0; c < image.width(); ++c) {
            const QRgb px = line[c] & 0xffffff;
            if (px == 0xffffff)
                continue;
            if (QRgb(px | 0xff000000) == ToolpathRenderer::TravelColour)
                found << QStringLiteral("%1,%2~").arg(c).arg(r);
            else if (qRed(px) == 0)
                found << QStringLiteral("%1,%2").arg(c).arg(r);
            else
                found << QStringLiteral("%1,%2=%3").arg(c).arg(r).arg(qRed(px));
        }
    }
    return found.join(QLatin1Char(' '));
}

// The moves of `gcode` in the order `interpreter` hands them out.
QList<ToolpathMove> movesOf(GcodeInterpreter &interpreter, const QByteArray &gcode, ToolpathSummary *summary = nullptr)
{
    QList<ToolpathMove> moves;
    interpreter.setMoveHandler([&moves](const ToolpathMove &m) { moves << m; });
    const ToolpathSummary s = interpreter.run(gcode);
    if (summary)
        *summary = s;
    return moves;
}

QImage render(const QByteArray &gcode, double pxPerMm, bool travel = false, bool depth = false)
{
    ToolpathRenderer renderer(pxPerMm);
    renderer.setShowTravel(travel);
    if (depth)
        renderer.setDepthColours(true);
    GcodeInterpreter interpreter;
    for (const ToolpathMove &m : movesOf(interpreter, gcode))
        renderer.addMove(m);
    return renderer.image();
}

}  // namespace

class TestGcodeInterpreter : public QObject
{
    Q_OBJECT
private slots:
    void pixels_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("gcode");
        QTest::addColumn<double>("pxPerMm");
        QTest::addColumn<bool>("travel");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *gcode, const char *expected, bool travel = false) {
            QTest::newRow(name) << QByteArray(gcode) << 1.0 << travel << QString(expected);
        };

        // At 1 px/mm the work area is 170 x 200 pixels; machine Y 200 is row 0. A burn along
        // machine Y lies on the top edge of the pixel row it marks.
        row("one burn line", "M106 S255\nG0 X1 Y1\nG1 X4 Y1 F600\nM107\n", "1,199 2,199 3,199");
        QTest::newRow("one burn line, 10 px/mm")
            << QByteArray("G0 X0.2 Y199.9\nM106\nG1 X0.5 F600\n") << 10.0 << false << "2,1 3,1 4,1";
        row("square, M3 at the largest S", "G0 X2 Y2\nM3 S1000\nG1 X5 Y2 F300\nG1 X5 Y5\nG1 X2 Y5\nG1 X2 Y2\nM5\n",
            "2,195 3,195 4,195 5,195 2,196 5,196 2,197 5,197 2,198 3,198 4,198");
        row("half power of the largest S", "G0 X2 Y2\nM4 S500\nG1 X4 F300\nS1000\nG1 X6\nM5\n",
            "2,198=127 3,198=127 4,198 5,198");
        row("M106 power out of 255", "M106 S51\nG1 X2 F100\n", "0,199=204 1,199=204");
        row("relative moves", "G91\nG0 X1 Y1\nM106 S255\nG1 X2 F600\nG1 Y2\nG90\nG1 X0 Y0\nM107\n",
            "2,197 3,197 1,198 3,198 0,199 1,199 2,199");
        row("G92 moves the origin", "G0 X10 Y10\nG92 X0 Y0\nM106 S255\nG1 X2 Y0 F600\nM107\nG0 X0 Y0\n",
            "10,190 11,190");
        row("inches", "G20\nM106 S255\nG1 X0.1 Y0.1 F10\n", "2,197 1,198 0,199");
        row("moves without a G word keep the last one", "G1 F600\nM106 S255\nX2\nY2 (up)\nG0\nX4 ; travel\n",
            "2,198 0,199 1,199 2,199");
        row("quarter arc G3 with I J", "G0 X7 Y5\nM106 S255\nG3 X5 Y7 I-2 J0 F300\n", "5,193 6,194");
        row("full circle G2 back to its start", "G0 X7 Y5\nM106 S255\nG2 X7 Y5 I-2 J0 F300\n",
            "4,193 5,193 3,194 6,194 3,195 6,195 4,196 5,196");
        row("rapid move with the beam on does not burn", "M106 S255\nG0 X5 Y5\nG00 X10 Y5\nM107\n", "");
        row("travel drawn when asked", "G0 X2 Y1\nM106 S255\nG1 X4 F600\nM107\nG1 X6\n",
            "0,199~ 1,199~ 2,199 3,199 4,199~ 5,199~", true);
        row("burn wins over travel, darkest burn wins",
            "G0 X3 Y1\nM106 S128\nG1 X0 F600\nM106 S255\nG1 X1\nM107\nG1 X3\n",
            "0,199 1,199=127 2,199=127", true);
        row("G28 goes home without burning", "G0 X5 Y5\nM106 S255\nG28\nG1 X1 F600\n", "0,199");
        row("along the bottom and right edges", "M106 S255\nG1 X2 F600\nG0 X170 Y2\nG1 Y0\n",
            "169,198 0,199 1,199 169,199");
        row("outside is not drawn", "M106 S255\nG0 X-5 Y1\nG1 X2 F600\nG0 X168 Y-1\nG1 X175\n", "0,199 1,199");
        // clang-format on
    }

    void pixels()
    {
        QFETCH(QByteArray, gcode);
        QFETCH(double, pxPerMm);
        QFETCH(bool, travel);
        QFETCH(QString, expected);
        const QImage image = render(gcode, pxPerMm, travel);
        QCOMPARE(image.size(), QSize(qRound(170 * pxPerMm), qRound(200 * pxPerMm)));
        QCOMPARE(pixelsOf(image), expected);
    }

    void figures_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("gcode");
        QTest::addColumn<QString>("expected");   // lines, not understood (first), moves, burns, outside

        QTest::newRow("0 bytes") << QByteArray() << "0 0(0) 0 0 none 0/0";
        QTest::newRow("one blank line") << QByteArray("\n") << "1 0(0) 0 0 none 0/0";
        QTest::newRow("no line end at the end, CR LF")
            << QByteArray("M106 S255\r\nG1 X1 Y2 F100\r\nG1 X3") << "3 0(0) 2 2 0..3 x 0..2 mm 0/0";
        QTest::newRow("comments, line numbers, percent signs")
            << QByteArray("%\n(header)\nN10 G21 G90 G17 G94 (mm) M8\n; note\nM3 S100 ( on )\nG1 X2 F60 ; go\n"
                          "M5 M9\nM2\n%\n")
            << "9 0(0) 1 1 0..2 x 0..0 mm 0/0";
        QTest::newRow("garbage is counted and skipped")
            << QByteArray("hello world\nG1 X1\n$H\nG1 X\n\xff\xfe\x01garbage\nG65 P1\nM999\nG2 X5 Y0 R3\n"
                          "M106 S255\nG1 X4 Y1 T2\nG1 X5 F10 P3\nG1 X6\n")
            << "12 9(1) 2 1 1..6 x 0..0 mm 0/0";
        QTest::newRow("absurd numbers and arcs")
            << QByteArray("M106 S255\nG1 X1" + QByteArray(400, '9') + "\nG1 X20000000 F100\nG1 X5 F"
                          + QByteArray(30, '9') + "\nG2 X5 Y0 I0 J0\nG3 X0 Y0 I9999999 J0\nG1 X0 Y0 F0\n")
            << "7 3(2) 2 2 0..5 x 0..0 mm 0/0";
        QTest::newRow("negative feed is not understood")
            << QByteArray("M106 S255\nG1 X1 F100\nG1 F-5\nG1 X3\n") << "4 1(3) 2 2 0..3 x 0..0 mm 0/0";
        QTest::newRow("nothing burns: extent of the travel")
            << QByteArray("G0 X10 Y20\nG1 X30 F100\n") << "2 0(0) 2 0 0..30 x 0..20 mm 0/0";
        QTest::newRow("zero-length burns are no moves")
            << QByteArray("G0 X5 Y5\nM106 S255\nG1 X5 Y5 F100\nG1 X5\n") << "4 0(0) 1 0 0..5 x 0..5 mm 0/0";
        QTest::newRow("leaving the area, counted per move")
            << QByteArray("M106 S255\nG1 X180 Y10 F100\nG1 X10\nG0 X-2 Y-3\nG0 X5 Y5\nG2 X-95 Y105 I0 J100\n")
            << "6 0(0) 5 3 -95..180 x 0..105 mm 3/2";
        // clang-format on
    }

    void figures()
    {
        QFETCH(QByteArray, gcode);
        QFETCH(QString, expected);
        GcodeInterpreter interpreter;
        const ToolpathSummary s = interpreter.run(gcode);
        QCOMPARE(QStringLiteral("%1 %2(%3) %4 %5 %6 %7/%8")
                     .arg(s.lines)
                     .arg(s.linesNotUnderstood)
                     .arg(s.firstLineNotUnderstood)
                     .arg(s.moves)
                     .arg(s.burnMoves)
                     .arg(ToolpathReport::extentText(s))
                     .arg(s.burnMovesOutside)
                     .arg(s.travelMovesOutside),
                 expected);
    }

    // M3/M4 power is a fraction of the largest S in the whole file, found before drawing, or of a
    // full scale given by the caller.
    void spindleScale()
    {
        GcodeInterpreter interpreter;
        const auto powers = [&interpreter](const QByteArray &gcode) {
            QList<double> found;
            for (const ToolpathMove &m : movesOf(interpreter, gcode))
                found << m.power;
            return found;
        };
        QCOMPARE(powers("M3 S250\nG1 X1 F100\nS1000\nG1 X2\nM5\nM106 S255\nG1 X3\nM107\nM3 S500\nG1 X4\n"),
                 (QList<double>{0.25, 1.0, 1.0, 0.5}));
        interpreter.setSpindleFullScale(2000);
        QCOMPARE(powers("M3 S250\nG1 X1 F100\nS1000\nG1 X2\n"), (QList<double>{0.125, 0.5}));
    }

    // Arc chords stay on the circle and the arc's end is exactly where the line says.
    void arcChords()
    {
        GcodeInterpreter interpreter;
        ToolpathSummary s;
        const QList<ToolpathMove> pieces =
            movesOf(interpreter, "G0 X60 Y50\nM106 S255\nG2 X50 Y40 I-10 J0 Z-1 F600\n", &s);
        QCOMPARE(s.burnMoves, qint64(1));
        QVERIFY(pieces.size() > 20);
        QCOMPARE(pieces.last().x1, 50.0);
        QCOMPARE(pieces.last().y1, 40.0);
        QCOMPARE(pieces.last().z1, -1.0);
        for (const ToolpathMove &m : pieces) {
            QVERIFY(qAbs(std::hypot(m.x1 - 50, m.y1 - 50) - 10) < 1e-9);
            QVERIFY(m.x1 >= 50 - 1e-9 && m.y1 <= 50 + 1e-9);  // clockwise: the lower right quarter
        }
    }

    // A file longer than one read block: lines cut by block edges are read whole, and the
    // progress reports reach the file's size; stopping from progress cancels.
    void streamsInBlocks()
    {
        ScopedWorkDir dir;
        QFile file(dir.file(QStringLiteral("long.gcode")));
        QByteArray text = "M106 S255\n";
        const int lines = 200000;
        for (int i = 1; i <= lines; ++i)
            text +=
                "G1 X" + QByteArray::number(i % 2 ? 10 : 0) + " Y" + QByteArray::number(i * 0.0005, 'f', 4) + " F600\n";
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
        file.close();
        QVERIFY(file.open(QIODevice::ReadOnly));
        GcodeInterpreter interpreter;
        qint64 lastDone = 0, total = 0;
        interpreter.setProgressHandler([&](qint64 done, qint64 size) {
            lastDone = done;
            total = size;
            return true;
        });
        const ToolpathSummary s = interpreter.run(&file);
        QCOMPARE(s.lines, qint64(lines + 1));
        QCOMPARE(s.linesNotUnderstood, qint64(0));
        QCOMPARE(s.burnMoves, qint64(lines));
        QCOMPARE(ToolpathReport::extentText(s), QStringLiteral("0..10 x 0..100 mm"));
        QCOMPARE(lastDone, qint64(text.size()));
        QCOMPARE(total, qint64(text.size()));

        file.seek(0);
        interpreter.setProgressHandler([](qint64, qint64) { return false; });
        const ToolpathSummary stopped = interpreter.run(&file);
        QVERIFY(stopped.cancelled);
        QVERIFY(stopped.lines < lines);
    }

    void timeAgreesWithExports_data()
    {
        // clang-format off
        QTest::addColumn<QString>("style");
        QTest::addColumn<int>("width");        // mm, for the vector styles
        QTest::addColumn<double>("tolerance"); // part of the export's figure
        // The raster files hold every position the export timed; the vector files round the
        // points to 0.1 mm, which matters more the smaller the drawing.
        QTest::newRow("black/white") << "bw" << 0 << 0.0;
        QTest::newRow("grayscale") << "gray" << 0 << 0.0;
        QTest::newRow("grayscale, linear") << "gray-linear" << 0 << 0.0;
        QTest::newRow("vector, laser") << "laser" << 60 << 0.002;
        QTest::newRow("vector, laser, 15 mm") << "laser" << 15 << 0.01;
        QTest::newRow("vector, CNC") << "cnc" << 60 << 0.002;
        // clang-format on
    }

    // The preview's time for the program's own files is the time the export showed.
    void timeAgreesWithExports()
    {
        QFETCH(QString, style);
        QFETCH(int, width);
        QFETCH(double, tolerance);
        ScopedWorkDir dir;
        const QString out = dir.file(QStringLiteral("job.gcode"));
        float expected = 0;
        if (style == QLatin1String("laser") || style == QLatin1String("cnc")) {
            QFile svg(dir.file(QStringLiteral("d.svg")));
            QVERIFY(svg.open(QIODevice::WriteOnly));
            svg.write("<svg xmlns='http://www.w3.org/2000/svg' width='60mm' height='40mm' viewBox='0 0 60 40'>"
                      "<circle cx='20' cy='20' r='15' fill='none' stroke='black'/>"
                      "<path d='M35 5 C 60 5, 60 35, 35 35 Z' fill='none' stroke='black'/>"
                      "<rect x='2' y='2' width='10' height='6' fill='none' stroke='black'/></svg>");
            svg.close();
            Svg2GcodeP::UseFixedSeed(1234);
            Svg2GcodeP generator;
            generator.SetgGcodeWidth(width, width * 2 / 3);
            generator.SetFeedSpeed(594);
            generator.SetTravelSpeed(11880);
            generator.SetPrintMode(style == QLatin1String("cnc"));
            generator.SetLaser(232);
            generator.SetPrintZValue(-1.5f);
            generator.SetTravelZValue(3);
            generator.SvgToGcode(svg.fileName(), out);
            expected = generator.TakeEstimatedTime();
            Svg2GcodeP::UseClockSeed();
        } else {
            QImage picture(300, 200, QImage::Format_RGB32);
            picture.fill(Qt::white);
            QPainter painter(&picture);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setBrush(QColor(40, 40, 40));
            painter.drawEllipse(20, 20, 160, 150);
            painter.setBrush(QColor(150, 150, 150));
            painter.drawRect(190, 30, 90, 140);
            painter.end();
            Bitmap2Gcode generator;
            generator.offset = QPointF(12, 30);
            generator.SetFeedSpeed(594);
            generator.SetTravelSpeed(11880);
            generator.SetPower(232);
            const double scale = 0.1;
            if (style == QLatin1String("bw"))
                generator.ExportBlackPix(picture, out, scale);
            else if (style == QLatin1String("gray"))
                generator.ExportGrayPixEX(picture.convertToFormat(QImage::Format_Grayscale8), out, scale);
            else
                generator.ExportGrayPix(picture.convertToFormat(QImage::Format_Grayscale8), out, scale);
            expected = generator.TakeEstimatedTime();
        }
        QFile file(out);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const ToolpathSummary s = GcodeInterpreter().run(&file);
        QVERIFY2(expected > 5, qPrintable(QString::number(expected)));
        QVERIFY2(qAbs(s.seconds - expected) <= tolerance * expected,
                 qPrintable(QStringLiteral("preview %1 s, export %2 s").arg(s.seconds).arg(expected)));
        QCOMPARE(s.linesNotUnderstood, qint64(0));
    }

    void depthColours()
    {
        const QImage image = render("G0 X0 Y1 Z2\nM3 S1000\nG1 Z-1 F100\nG1 X2\nG1 Z-3\nG1 X4\n"
                                    "G0 Z2\nG0 X0 Y3\nG1 Z0\nG1 X2\n",
                                    1, false, true);
        // The deepest cut gets the deep colour, the shallowest the shallow one, between in between.
        QCOMPARE(image.pixel(2, 199), ToolpathRenderer::DeepColour);
        QCOMPARE(image.pixel(0, 197), ToolpathRenderer::ShallowColour);
        const QRgb middle = image.pixel(0, 199);
        QVERIFY(qRed(middle) < qRed(ToolpathRenderer::ShallowColour));
        QVERIFY(qRed(middle) > qRed(ToolpathRenderer::DeepColour));
    }

    void report()
    {
        GcodeInterpreter interpreter;
        // Only the parts beyond the area make the outside box: the burn past X 170 and the start
        // of the way home.
        const ToolpathSummary edge = interpreter.run(QByteArray("M106 S255\nG0 X160 Y10\nG1 X180 F600\nG28\n"));
        QCOMPARE(QStringLiteral("%1 %2 %3 %4")
                     .arg(edge.outMinX)
                     .arg(edge.outMaxX)
                     .arg(edge.outMinY, 0, 'f', 3)
                     .arg(edge.outMaxY),
                 QStringLiteral("170 180 9.444 10"));

        const ToolpathSummary inside = interpreter.run(QByteArray("G1 F600\nM106 S255\nG1 X10.125 Y20\nG1 X12.5\n"));
        QCOMPARE(ToolpathReport::summaryLine(inside),
                 QStringLiteral("Lines: 4  Burn moves: 2  Extent: 0..12.5 x 0..20 mm  Estimated time: %1")
                     .arg(EstimatedTimeText(float(inside.seconds))));
        QCOMPARE(ToolpathReport::outsideLine(inside), QString());
        const ToolpathSummary outside = interpreter.run(QByteArray("M106 S255\nG1 X-0.5 Y201 F600\nM107\nG0 X171\n"));
        QCOMPARE(ToolpathReport::outsideLine(outside),
                 QStringLiteral("Outside the work area: 1 burn move and 1 travel move reach X down to -0.5 mm, "
                                "X up to 171 mm, Y up to 201 mm (the area is X 0..170 x Y 0..200 mm)"));
    }

    // A machine with another work area: moves are outside by its edges, the picture covers all of it
    // with its top row at the area's far Y, and the report names it.
    void otherWorkArea_data()
    {
        QTest::addColumn<QSizeF>("area");
        QTest::addColumn<QByteArray>("gcode");
        QTest::addColumn<QPoint>("burned");  // a pixel at 1 px/mm that the file burns
        QTest::addColumn<int>("pixels");     // how many it burns inside the area
        QTest::addColumn<QString>("outside");
        // clang-format off
        QTest::newRow("400 x 400, far corner inside")
            << QSizeF(400, 400) << QByteArray("M106 S255\nG0 X380 Y390\nG1 X395 F600\nM107\n") << QPoint(390, 10) << 15
            << "";
        QTest::newRow("400 x 400, beyond its right edge")
            << QSizeF(400, 400) << QByteArray("M106 S255\nG0 X380 Y390\nG1 X410 F600\nM107\n") << QPoint(399, 10) << 20
            << "Outside the work area: 1 burn move and 0 travel moves reach X up to 410 mm "
               "(the area is X 0..400 x Y 0..400 mm)";
        QTest::newRow("120.5 x 80, above it")
            << QSizeF(120.5, 80) << QByteArray("M106 S255\nG0 X10 Y70\nG1 Y90 F600\nM107\nG0 X0 Y0\n")
            << QPoint(10, 5) << 10
            << "Outside the work area: 1 burn move and 1 travel move reach Y up to 90 mm "
               "(the area is X 0..120.5 x Y 0..80 mm)";
        QTest::newRow("classic area, set")
            << QSizeF(170, 200) << QByteArray("M106 S255\nG0 X160 Y190\nG1 X175 F600\nM107\n") << QPoint(165, 10) << 10
            << "Outside the work area: 1 burn move and 0 travel moves reach X up to 175 mm "
               "(the area is X 0..170 x Y 0..200 mm)";
        // clang-format on
    }

    void otherWorkArea()
    {
        QFETCH(QSizeF, area);
        QFETCH(QByteArray, gcode);
        QFETCH(QPoint, burned);
        QFETCH(int, pixels);
        QFETCH(QString, outside);
        GcodeInterpreter interpreter;
        interpreter.setWorkArea(area.width(), area.height());
        ToolpathRenderer renderer(1.0, area.width(), area.height());
        interpreter.setMoveHandler([&renderer](const ToolpathMove &m) { renderer.addMove(m); });
        const ToolpathSummary s = interpreter.run(gcode);
        QCOMPARE(ToolpathReport::outsideLine(s), outside);
        QCOMPARE(s.areaWidth, area.width());
        QCOMPARE(s.areaHeight, area.height());
        const QImage image = renderer.image();
        QCOMPARE(image.size(), QSize(int(std::lround(area.width())), int(std::lround(area.height()))));
        QCOMPARE(image.pixel(burned), qRgb(0, 0, 0));
        int dark = 0;
        for (int row = 0; row < image.height(); ++row)
            for (int column = 0; column < image.width(); ++column)
                dark += image.pixel(column, row) != qRgb(255, 255, 255);
        QCOMPARE(dark, pixels);
    }
};

TARNWELL_TEST_MAIN(TestGcodeInterpreter)
#include "tst_gcodeinterpreter.moc"
