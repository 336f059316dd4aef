// tarnwell-export preview run as users run it: each export style drawn back and compared
// with the picture it came from, the warnings, broken and empty files.
#include "exportrunner.h"
#include "testsupport.h"

#include <QPainter>

namespace {

// Shapes with solid black parts, thin lines and curves, framed by a border so that a trace
// of it spans the whole picture.
QImage shapesPicture(int width, int height)
{
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter p(&picture);
    p.setPen(Qt::NoPen);
    p.setBrush(Qt::black);
    p.drawRect(0, 0, width, 8);
    p.drawRect(0, height - 8, width, 8);
    p.drawRect(0, 0, 8, height);
    p.drawRect(width - 8, 0, 8, height);
    p.drawEllipse(QPoint(width / 3, height / 3), width / 5, height / 6);
    p.drawRect(width / 2, height / 2, width / 3, height / 4);
    p.setPen(QPen(Qt::black, 6));
    p.drawLine(30, height - 40, width - 40, height / 2 - 20);
    return picture;
}

// Pixels of `mask` (width x height, row major) within `radius` of a set pixel.
std::vector<char> dilate(const std::vector<char> &mask, int width, int height, int radius)
{
    std::vector<char> out(mask.size(), 0);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            if (!mask[size_t(y * width + x)])
                continue;
            for (int dy = -radius; dy <= radius; ++dy)
                for (int dx = -radius; dx <= radius; ++dx) {
                    const int u = x + dx, v = y + dy;
                    if (u >= 0 && v >= 0 && u < width && v < height)
                        out[size_t(v * width + u)] = 1;
                }
        }
    return out;
}

// Part of `a` covered by `b`.
double covered(const std::vector<char> &a, const std::vector<char> &b)
{
    qint64 all = 0, hit = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        all += a[i];
        hit += a[i] && b[i];
    }
    return all ? double(hit) / double(all) : 0.0;
}

// The pixels of `image` darker than `darkerThan` over a width x height window whose corner is
// at (left, top); a picture's pixel (c, r) lies at (c + left, r + top) in a preview at one
// preview pixel per picture pixel.
std::vector<char> mask(const QImage &image, int left, int top, int width, int height, int darkerThan)
{
    std::vector<char> out(size_t(width * height), 0);
    for (int r = 0; r < height; ++r)
        for (int c = 0; c < width; ++c) {
            const int x = c + left, y = r + top;
            if (x >= 0 && y >= 0 && x < image.width() && y < image.height())
                out[size_t(r * width + c)] = qGray(image.pixel(x, y)) < darkerThan;
        }
    return out;
}

// Exports with `args` (which write job.gcode) and previews that as job.png. The preview repeats
// the export's estimate. Returns the preview's standard output; empty on a failure.
QByteArray exportAndPreview(const QStringList &args)
{
    const ExportRun exported = runExport(args);
    const ExportRun preview = runExport({"preview", "--input", "job.gcode", "--output", "job.png"});
    const QByteArray estimate = exported.out.mid(exported.out.indexOf("Estimated time:"));
    if (exported.status != 0 || preview.status != 0 || !exported.out.contains("Estimated time:")
        || !preview.out.endsWith(estimate)) {
        qWarning("export %d: %s%s\npreview %d: %s%s", exported.status, exported.out.constData(),
                 exported.err.constData(), preview.status, preview.out.constData(), preview.err.constData());
        return QByteArray();
    }
    return preview.out;
}

}  // namespace

class TestExportPreview : public QObject
{
    Q_OBJECT
private slots:
    // Burned pixels against the picture's black ones, at the export's own resolution.
    void blackWhiteRoundTrip()
    {
        ScopedWorkDir dir;
        const QImage picture = shapesPicture(400, 300);
        QVERIFY(picture.save(dir.file("shapes.png")));
        const QByteArray out = exportAndPreview(
            {"raster", "--input", "shapes.png", "--output", "job.gcode", "--width", "40", "--x", "12", "--y", "30"});
        QVERIFY2(out.contains("Extent: 12..52 x 140..170 mm"), out.constData());

        const QImage png(dir.file("job.png"));
        QCOMPARE(png.size(), QSize(1700, 2000));
        const std::vector<char> black = mask(picture, 0, 0, 400, 300, 128);
        const std::vector<char> burned = mask(png, 120, 300, 400, 300, 128);
        qint64 both = 0, either = 0;
        for (size_t i = 0; i < black.size(); ++i) {
            both += black[i] && burned[i];
            either += black[i] || burned[i];
        }
        const double iou = double(both) / double(either);
        QVERIFY2(iou >= 0.97, qPrintable(QString::number(iou)));
        // Nothing but the weak frame around the picture.
        const std::vector<char> outside = mask(png, 0, 0, 1700, 2000, 250);
        qint64 stray = 0;
        for (int r = 0; r < 2000; ++r)
            for (int c = 0; c < 1700; ++c)
                stray += outside[size_t(r * 1700 + c)] && !(c >= 120 && c < 520 && r >= 300 && r < 600);
        QCOMPARE(stray, qint64(0));
    }

    // Gray levels: what burns is what is not white, darker where the picture is darker.
    void grayRoundTrip()
    {
        ScopedWorkDir dir;
        QImage picture(300, 200, QImage::Format_Grayscale8);
        picture.fill(255);
        for (int r = 20; r < 180; ++r)
            for (int c = 20; c < 280; ++c)
                picture.scanLine(r)[c] = uchar(c < 150 ? 40 : 200);
        QVERIFY(picture.save(dir.file("gray.png")));
        QVERIFY(!exportAndPreview(
                     {"raster", "--input", "gray.png", "--output", "job.gcode", "--width", "30", "--style", "gray"})
                     .isEmpty());
        const QImage png(dir.file("job.png"));
        const std::vector<char> burned = mask(png, 0, 0, 300, 200, 250), gray = mask(picture, 0, 0, 300, 200, 255);
        QVERIFY2(covered(gray, burned) >= 0.97, qPrintable(QString::number(covered(gray, burned))));
        QVERIFY2(covered(burned, gray) >= 0.97, qPrintable(QString::number(covered(burned, gray))));
        const int dark = qGray(png.pixel(60, 100)), light = qGray(png.pixel(240, 100));
        QVERIFY2(dark < light && light < 250, qPrintable(QStringLiteral("%1 %2").arg(dark).arg(light)));
    }

    void vectorRoundTrip_data()
    {
        // clang-format off
        QTest::addColumn<QString>("mode");
        QTest::newRow("traced picture, laser") << "laser";
        QTest::newRow("CNC SVG export") << "cnc";
        // clang-format on
    }

    // Outlines: every burned pixel lies on an edge of the drawing, and every edge is burned.
    void vectorRoundTrip()
    {
        QFETCH(QString, mode);
        ScopedWorkDir dir;
        const int w = 400, h = 300;
        const QImage picture = shapesPicture(w, h);
        QVERIFY(picture.save(dir.file("shapes.png")));
        if (mode == QLatin1String("laser")) {
            QCOMPARE(runExport({"trace", "--input", "shapes.png", "--output", "drawing.svg"}).status, 0);
        } else {
            // The same shapes drawn as an SVG, as a user's CNC drawing would come.
            TestFiles::write(
                dir.file("drawing.svg"),
                "<svg xmlns='http://www.w3.org/2000/svg' width='400' height='300' viewBox='0 0 400 300'>"
                "<g fill='black'><path d='M0 0 H400 V300 H0 Z M8 8 V292 H392 V8 Z'/>"
                "<ellipse cx='133' cy='100' rx='80' ry='50'/><rect x='200' y='150' width='133' height='75'/>"
                "<path d='M26.1 258.3 L361.7 126.1 L363.9 131.7 L28.3 263.9 Z'/></g></svg>");
        }
        QVERIFY(
            !exportAndPreview({"vector",   "--input", "drawing.svg", "--output", "job.gcode", "--width",    "40",
                               "--height", "30",      "--x",         "20",       "--y",       "50",         "--seed",
                               "3",        "--mode",  mode,          "--feed-z", "-1",        "--travel-z", "3"})
                 .isEmpty());

        // Edges of the picture (black pixels with a white neighbour) or of the SVG's shapes, in a
        // window with a margin, as a burn along the picture's outer edge may lie just beyond it.
        const int m = 4, mw = w + 2 * m, mh = h + 2 * m;
        std::vector<char> edge(size_t(mw * mh), 0);
        if (mode == QLatin1String("cnc")) {
            // Every shape of the SVG is cut along its own outline, overlapping or not.
            QImage outlines(mw, mh, QImage::Format_RGB32);
            outlines.fill(Qt::white);
            QPainter p(&outlines);
            p.translate(m, m);
            p.setPen(QPen(Qt::black, 1));
            p.drawRect(QRectF(0, 0, 400, 300));
            p.drawRect(QRectF(8, 8, 384, 284));
            p.drawEllipse(QPointF(133, 100), 80, 50);
            p.drawRect(QRectF(200, 150, 133, 75));
            p.drawPolygon(
                QPolygonF({QPointF(26.1, 258.3), QPointF(361.7, 126.1), QPointF(363.9, 131.7), QPointF(28.3, 263.9)}));
            p.end();
            edge = mask(outlines, 0, 0, mw, mh, 128);
        }
        for (int r = 0; r < h && mode != QLatin1String("cnc"); ++r)
            for (int c = 0; c < w; ++c) {
                if (qGray(picture.pixel(c, r)) >= 128)
                    continue;
                const bool outer = r == 0 || c == 0 || r == h - 1 || c == w - 1;
                bool white = false;
                for (const QPoint d : {QPoint(1, 0), QPoint(-1, 0), QPoint(0, 1), QPoint(0, -1)}) {
                    const QPoint q(c + d.x(), r + d.y());
                    if (q.x() >= 0 && q.y() >= 0 && q.x() < w && q.y() < h && qGray(picture.pixel(q)) >= 128)
                        white = true;
                }
                edge[size_t((r + m) * mw + c + m)] = outer || white;
            }
        // The drawing lands 1 mm higher than the picture's place: 10 preview pixels.
        const std::vector<char> burned = mask(QImage(dir.file("job.png")), 200 - m, 500 - 10 - m, mw, mh, 128);
        const double onEdges = covered(burned, dilate(edge, mw, mh, 2));
        const double edgesBurned = covered(edge, dilate(burned, mw, mh, 2));
        QVERIFY2(onEdges >= 0.97 && edgesBurned >= 0.97,
                 qPrintable(QStringLiteral("%1 %2").arg(onEdges).arg(edgesBurned)));
    }

    void files_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("gcode");
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<QString>("output");
        QTest::addColumn<int>("darkPixels");
        QTest::addColumn<int>("travelPixels");

        QTest::newRow("0 bytes") << QByteArray() << QStringList()
                                 << "Lines: 0  Burn moves: 0  Extent: none  Estimated time: 0s\n" << 0 << 0;
        QTest::newRow("garbage lines")
            << QByteArray("\x01\x02\x03\n@@@@\nG1 X1 Y\nM106 S255\nG1 X10 F600\nG1 X10 Y10 Q5\n")
            << QStringList() << "Lines: 6  Burn moves: 1  Extent: 0..10 x 0..0 mm  Estimated time: 1s\n" << 100 << 0;
        QTest::newRow("nothing burns, travel on")
            << QByteArray("G0 X10 Y0\nG0 X10 Y10\n") << QStringList{"--travel", "--px-per-mm", "2"}
            << "Lines: 2  Burn moves: 0  Extent: 0..10 x 0..10 mm  Estimated time: 0s\n" << 0 << 40;
        // Runs at 500 mm/s^2, travel 3000 mm/min: 188.68/50 + 0.1, then 20/100 + 0.2: 4.27 s.
        QTest::newRow("leaves the area")
            << QByteArray("G0 X160 Y100\nM106 S255\nG1 X180 F6000\nM107\n") << QStringList{"--px-per-mm", "1"}
            << "Lines: 4  Burn moves: 1  Extent: 160..180 x 100..100 mm  Estimated time: 4s\n"
               "Outside the work area: 1 burn move and 0 travel moves reach X up to 180 mm "
               "(the area is X 0..170 x Y 0..200 mm)\n"
            << 10 << 0;
        // clang-format on
    }

    void files()
    {
        QFETCH(QByteArray, gcode);
        QFETCH(QStringList, options);
        QFETCH(QString, output);
        QFETCH(int, darkPixels);
        QFETCH(int, travelPixels);
        ScopedWorkDir dir;
        TestFiles::write(dir.file("job.gcode"), gcode);
        const ExportRun run =
            runExport(QStringList{"preview", "--input", "job.gcode", "--output", "job.png"} + options);
        QCOMPARE(run.status, 0);
        QCOMPARE(QString::fromUtf8(run.out), output);
        QCOMPARE(run.err, QByteArray());
        const QImage png(dir.file("job.png"));
        int dark = 0, travel = 0;
        for (int r = 0; r < png.height(); ++r)
            for (int c = 0; c < png.width(); ++c) {
                const QRgb px = png.pixel(c, r);
                dark += qRed(px) == qBlue(px) && qRed(px) < 128;
                travel += qRed(px) != qBlue(px);
            }
        QCOMPARE(dark, darkPixels);
        QCOMPARE(travel, travelPixels);
    }
};

TARNWELL_TEST_MAIN(TestExportPreview)
#include "tst_exportpreview.moc"
