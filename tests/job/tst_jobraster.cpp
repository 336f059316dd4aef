// Tests of raster engraving: the grid of an item, sampling with the tone adjustments, threshold and
// every dither kernel on small pictures worked out by hand, and the exact moves of the row scan.
#include "testsupport.h"

#include "jobraster.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

namespace {

// "0 0 255/100 100 100": rows split by '/', grays by spaces; the padding of each line starts
// black so a reader that strays past the width shows up.
QImage gray(const QString &text)
{
    const QStringList rows = text.split(QLatin1Char('/'));
    QImage image(rows.first().split(QLatin1Char(' ')).size(), rows.size(), QImage::Format_Grayscale8);
    std::memset(image.bits(), 0, size_t(image.sizeInBytes()));
    for (int y = 0; y < image.height(); ++y) {
        const QStringList values = rows.at(y).split(QLatin1Char(' '));
        for (int x = 0; x < image.width(); ++x)
            image.scanLine(y)[x] = uchar(values.at(x).toInt());
    }
    return image;
}

// The cells back in the same notation.
QString text(const QImage &image)
{
    QStringList rows;
    for (int y = 0; y < image.height(); ++y) {
        QStringList values;
        for (int x = 0; x < image.width(); ++x)
            values << QString::number(image.constScanLine(y)[x]);
        rows << values.join(QLatin1Char(' '));
    }
    return rows.join(QLatin1Char('/'));
}

class Collect : public MoveSink
{
public:
    void move(const PlannedMove &m) override { moves.push_back(m); }
    std::vector<PlannedMove> moves;
};

// "T9000,20250" a travel, "C10000,20250,600000" a cut with its power. The feed of every cut is
// checked against `feed`, and travel must carry neither power nor feed.
QString moves(const std::vector<PlannedMove> &list, qint32 feed)
{
    QStringList out;
    for (const PlannedMove &m : list) {
        if (m.kind == PlannedMove::Travel) {
            out << QStringLiteral("T%1,%2").arg(m.x).arg(m.y);
            if (m.power != 0 || m.feed != 0)
                out << QStringLiteral("(travel with power or feed)");
        } else {
            out << QStringLiteral("C%1,%2,%3").arg(m.x).arg(m.y).arg(m.power);
            if (m.feed != feed)
                out << QStringLiteral("(feed %1)").arg(m.feed);
        }
    }
    return out.join(QLatin1Char(' '));
}

ImageParams imageParams(ImageMode mode, DitherKernel kernel = DitherKernel::FloydSteinberg)
{
    ImageParams p;
    p.mode = mode;
    p.dither = kernel;
    return p;
}

// The gray pictures of the diffusion tests: a 3 x 3 ramp,
const char *const Ramp = "90 100 110/120 130 140/150 160 170";
// And a 4 x 2 one on which the kernels differ.
const char *const Q = "70 60 110 170/80 170 150 180";

}  // namespace

Q_DECLARE_METATYPE(ImageMode)
Q_DECLARE_METATYPE(DitherKernel)

class TestJobRaster : public QObject
{
    Q_OBJECT

private slots:
    void gridSize_data();
    void gridSize();
    void sampling_data();
    void sampling();
    void sampleOtherFormats();
    void sampleAgainstAreas_data();
    void sampleAgainstAreas();
    void threshold_data();
    void threshold();
    void dither_data();
    void dither();
    void grayscaleKeepsCells();
    void scanPicture_data();
    void scanPicture();
    void scanCells_data();
    void scanCells();
    void grayscalePowers_data();
    void grayscalePowers();
    void burnsMatchCells_data();
    void burnsMatchCells();
};

void TestJobRaster::gridSize_data()
{
    QTest::addColumn<double>("width");
    QTest::addColumn<double>("height");
    QTest::addColumn<double>("interval");
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("rows");
    // clang-format off
    QTest::newRow("4 x 3 at 0.1")      << 0.4 << 0.3 << 0.1 << 4 << 3;
    QTest::newRow("full bed")          << 170.0 << 200.0 << 0.1 << 1700 << 2000;
    QTest::newRow("rounded to nearest") << 0.26 << 0.14 << 0.1 << 3 << 1;
    QTest::newRow("smaller than a cell") << 0.04 << 0.02 << 0.1 << 1 << 1;
    QTest::newRow("coarse interval")   << 60.0 << 10.0 << 20.0 << 3 << 1;
    QTest::newRow("interval zero")     << 10.0 << 10.0 << 0.0 << 1 << 1;
    QTest::newRow("interval negative") << 10.0 << 10.0 << -0.1 << 1 << 1;
    QTest::newRow("empty rectangle")   << 0.0 << 0.0 << 0.1 << 1 << 1;
    // clang-format on
}

void TestJobRaster::gridSize()
{
    QFETCH(double, width);
    QFETCH(double, height);
    QFETCH(double, interval);
    QFETCH(int, columns);
    QFETCH(int, rows);
    const JobRaster::Grid g = JobRaster::grid(QRectF(10, 20, width, height), interval);
    QCOMPARE(g.columns, columns);
    QCOMPARE(g.rows, rows);
}

void TestJobRaster::sampling_data()
{
    QTest::addColumn<QString>("picture");
    QTest::addColumn<int>("columns");
    QTest::addColumn<int>("rows");
    QTest::addColumn<double>("brightness");
    QTest::addColumn<double>("contrast");
    QTest::addColumn<double>("gamma");
    QTest::addColumn<bool>("invert");
    QTest::addColumn<QString>("cells");
    // Means: 2x2 -> 1: (0 + 100 + 200 + 255) / 4 = 138.75 -> 139. 3 -> 2 columns: cell 0 covers
    // pixel 0 and half of pixel 1: (0 + 90 / 2) / 1.5 = 30; cell 1: (90 / 2 + 255) / 1.5 = 200.
    // 1 -> 3 rows and 2 -> 3 columns: cell 1 is half pixel 0, half pixel 1: (10 + 31) / 2 = 20.5 -> 21.
    // Tone on 100: brightness 10 -> 125.5 -> 126; contrast 50 (k 2): -27.5 x 2 + 127.5 = 72.5 -> 73;
    // contrast -50 (k 0.5): 113.75 -> 114; gamma 2: 255 sqrt(64 / 255) = 127.75 -> 128 (on 64);
    // invert: 155. Brightness 100 whitens all; contrast 100 counts as 99 (k 100): 127 -> 77.5 -> 78,
    // 128 -> 177.5 -> 178. All four on 100, fractions kept between steps: 125.5, then
    // (125.5 - 127.5) x 2 + 127.5 = 123.5, then 255 sqrt(123.5 / 255) = 177.46, inverted 77.54 -> 78.
    // clang-format off
    QTest::newRow("same size copied")  << "0 1 2 3/127 128 254 255" << 4 << 2 << 0.0 << 0.0 << 1.0 << false
                                       << "0 1 2 3/127 128 254 255";
    QTest::newRow("2x2 to one cell")   << "0 100/200 255" << 1 << 1 << 0.0 << 0.0 << 1.0 << false << "139";
    QTest::newRow("3 to 2 columns")    << "0 90 255" << 2 << 1 << 0.0 << 0.0 << 1.0 << false << "30 200";
    QTest::newRow("3 to 2 rows")       << "0/90/255" << 1 << 2 << 0.0 << 0.0 << 1.0 << false << "30/200";
    QTest::newRow("enlarged")          << "10 31" << 3 << 2 << 0.0 << 0.0 << 1.0 << false
                                       << "10 21 31/10 21 31";
    QTest::newRow("half up rounding")  << "0 1" << 1 << 1 << 0.0 << 0.0 << 1.0 << false << "1";
    QTest::newRow("brightness 10")     << "100 0 250" << 3 << 1 << 10.0 << 0.0 << 1.0 << false << "126 26 255";
    QTest::newRow("brightness -100")   << "100 255" << 2 << 1 << -100.0 << 0.0 << 1.0 << false << "0 0";
    QTest::newRow("brightness 100")    << "0 100" << 2 << 1 << 100.0 << 0.0 << 1.0 << false << "255 255";
    QTest::newRow("contrast 50")       << "100 200 20" << 3 << 1 << 0.0 << 50.0 << 1.0 << false << "73 255 0";
    QTest::newRow("contrast -50")      << "100 0 255" << 3 << 1 << 0.0 << -50.0 << 1.0 << false
                                       << "114 64 191";
    QTest::newRow("contrast 100")      << "127 128 0" << 3 << 1 << 0.0 << 100.0 << 1.0 << false << "78 178 0";
    QTest::newRow("contrast -100")     << "0 255" << 2 << 1 << 0.0 << -100.0 << 1.0 << false << "128 128";
    QTest::newRow("gamma 2")           << "64 0 255" << 3 << 1 << 0.0 << 0.0 << 2.0 << false << "128 0 255";
    QTest::newRow("gamma 0.5")         << "128" << 1 << 1 << 0.0 << 0.0 << 0.5 << false << "64";
    QTest::newRow("gamma 0 is 1")      << "64" << 1 << 1 << 0.0 << 0.0 << 0.0 << false << "64";
    QTest::newRow("invert")            << "100 0 255" << 3 << 1 << 0.0 << 0.0 << 1.0 << true << "155 255 0";
    QTest::newRow("all in order")      << "100" << 1 << 1 << 10.0 << 50.0 << 2.0 << true << "78";
    QTest::newRow("mean then tone")    << "0 100/200 255" << 1 << 1 << 0.0 << 0.0 << 1.0 << true << "116";
    // clang-format on
}

void TestJobRaster::sampling()
{
    QFETCH(QString, picture);
    QFETCH(int, columns);
    QFETCH(int, rows);
    QFETCH(double, brightness);
    QFETCH(double, contrast);
    QFETCH(double, gamma);
    QFETCH(bool, invert);
    QFETCH(QString, cells);
    ImageParams params;
    params.brightness = brightness;
    params.contrast = contrast;
    params.gamma = gamma;
    params.invert = invert;
    JobRaster::Grid g;
    g.columns = columns;
    g.rows = rows;
    const QImage out = JobRaster::sample(gray(picture), g, params);
    QCOMPARE(out.format(), QImage::Format_Grayscale8);
    QCOMPARE(out.size(), QSize(columns, rows));
    QCOMPARE(text(out), cells);
}

void TestJobRaster::sampleOtherFormats()
{
    JobRaster::Grid g;
    g.columns = 2;
    g.rows = 1;
    // A colour picture is read as gray; a missing one samples as white.
    QImage colour(2, 1, QImage::Format_RGB32);
    colour.setPixel(0, 0, qRgb(0, 0, 0));
    colour.setPixel(1, 0, qRgb(255, 255, 255));
    QCOMPARE(text(JobRaster::sample(colour, g, ImageParams())), QStringLiteral("0 255"));
    QCOMPARE(text(JobRaster::sample(QImage(), g, ImageParams())), QStringLiteral("255 255"));
}

void TestJobRaster::sampleAgainstAreas_data()
{
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<QSize>("grid");
    // clang-format off
    QTest::newRow("7x5 to 3x2")   << QSize(7, 5) << QSize(3, 2);
    QTest::newRow("5x7 to 4x6")   << QSize(5, 7) << QSize(4, 6);
    QTest::newRow("3x3 to 7x5")   << QSize(3, 3) << QSize(7, 5);
    QTest::newRow("13x11 to 5x9") << QSize(13, 11) << QSize(5, 9);
    QTest::newRow("9x1 to 1x4")   << QSize(9, 1) << QSize(1, 4);
    // clang-format on
}

// Each cell against the mean of every pixel weighted by its overlap with the cell, summed over the
// whole picture; coordinates are scaled by the cell and pixel counts so every overlap is whole.
void TestJobRaster::sampleAgainstAreas()
{
    QFETCH(QSize, picture);
    QFETCH(QSize, grid);
    const int w = picture.width();
    const int h = picture.height();
    QImage image(w, h, QImage::Format_Grayscale8);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.scanLine(y)[x] = uchar((x * 37 + y * 91 + x * y * 13) % 256);
    JobRaster::Grid g;
    g.columns = grid.width();
    g.rows = grid.height();
    const QImage out = JobRaster::sample(image, g, ImageParams());
    QCOMPARE(out.size(), grid);
    const auto overlap = [](double a0, double a1, double b0, double b1) {
        return std::max(0.0, std::min(a1, b1) - std::max(a0, b0));
    };
    for (int j = 0; j < g.rows; ++j) {
        for (int i = 0; i < g.columns; ++i) {
            double sum = 0;
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    sum += image.constScanLine(y)[x]
                           * overlap(double(i) * w, double(i + 1) * w, double(x) * g.columns, double(x + 1) * g.columns)
                           * overlap(double(j) * h, double(j + 1) * h, double(y) * g.rows, double(y + 1) * g.rows);
            const int expected = int(std::floor(sum / (double(w) * h) + 0.5));
            QVERIFY2(out.constScanLine(j)[i] == expected, qPrintable(QStringLiteral("cell %1,%2: %3, expected %4")
                                                                         .arg(i)
                                                                         .arg(j)
                                                                         .arg(out.constScanLine(j)[i])
                                                                         .arg(expected)));
        }
    }
}

void TestJobRaster::threshold_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QString>("cells");
    // clang-format off
    QTest::newRow("128")  << 128 << "127 128 0 255/1 200 129 90" << "0 255 0 255/0 255 255 0";
    QTest::newRow("0")    << 0 << "0 1 255" << "255 255 255";
    QTest::newRow("255")  << 255 << "0 254 255" << "0 0 255";
    QTest::newRow("256")  << 256 << "0 254 255" << "0 0 0";
    // clang-format on
}

void TestJobRaster::threshold()
{
    QFETCH(int, level);
    QFETCH(QString, picture);
    QFETCH(QString, cells);
    ImageParams params = imageParams(ImageMode::Threshold);
    params.threshold = level;
    QImage image = gray(picture);
    JobRaster::reduce(&image, params);
    QCOMPARE(text(image), cells);
}

void TestJobRaster::dither_data()
{
    QTest::addColumn<DitherKernel>("kernel");
    QTest::addColumn<QString>("picture");
    QTest::addColumn<QString>("cells");
    // Worked by hand on Ramp (90 100 110 / 120 130 140 / 150 160 170). N is the error a cell has
    // received, as a numerator over the kernel's divisor; the cell's value is its gray plus N / D
    // rounded (halves away from 0); below 128 burns (0) with e = value, else 255 with e = value - 255.
    //
    // Floyd-Steinberg, D 16, right 7, below-left 3, below 5, below-right 1:
    //  row 0: 90 -> 0, e 90; 100 + 630/16 (39) = 139 -> 255, e -116; 110 + (-812/16 = -51) = 59 -> 0, e 59
    //  row 1 N = 450-348 = 102, 90-580+177 = -313, -116+295 = 179:
    //         120 + 6 = 126 -> 0, e 126; 130 + (-313+882)/16 (36) = 166 -> 255, e -89;
    //         140 + (179-623)/16 (-28) = 112 -> 0, e 112
    //  row 2 N = 630-267 = 363, 126-445+336 = 17, -89+560 = 471:
    //         150 + 23 = 173 -> 255, e -82; 160 + (17-574)/16 (-35) = 125 -> 0, e 125;
    //         170 + (471+875)/16 (84) = 254 -> 255
    // Atkinson, D 8, 1 each to right, right 2, below-left, below, below-right, 2 below:
    //  row 0: 90 -> 0, e 90; 100 + 90/8 (11) = 111 -> 0, e 111; 110 + 201/8 (25) = 135 -> 255, e -120
    //  row 1 N = 90+111 = 201, 90+111-120 = 81, 111-120 = -9:
    //         120 + 25 = 145 -> 255, e -110; 130 + (81-110)/8 (-4) = 126 -> 0, e 126;
    //         140 + (-9-110+126)/8 (1) = 141 -> 255, e -114
    //  row 2 N = 90-110+126 = 106, 111-110+126-114 = 13, -120+126-114 = -108:
    //         150 + 13 = 163 -> 255, e -92; 160 + (13-92)/8 (-10) = 150 -> 255, e -105;
    //         170 + (-108-92-105)/8 (-38) = 132 -> 255
    // Jarvis-Judice-Ninke, D 48, right 7 5, next row 3 5 7 5 3, the one after 1 3 5 3 1:
    //  row 0: 90 -> 0, e 90; 100 + 630/48 (13) = 113 -> 0, e 113;
    //         110 + (450+791)/48 (26) = 136 -> 255, e -119
    //  row 1 N = 630+565-357 = 838, 450+791-595 = 646, 270+565-833 = 2:
    //         120 + 17 = 137 -> 255, e -118; 130 + (646-826)/48 (-4) = 126 -> 0, e 126;
    //         140 + (2-590+882)/48 (6) = 146 -> 255, e -109
    //  row 2 N = 450+339-119-826+630-327 = 147, 270+565-357-590+882-545 = 225,
    //         90+339-595-354+630-763 = -653:
    //         150 + 3 = 153 -> 255, e -102; 160 + (225-714)/48 (-10) = 150 -> 255, e -105;
    //         170 + (-653-510-735)/48 (-40) = 130 -> 255
    // Stucki, D 42, right 8 4, next row 2 4 8 4 2, the one after 1 2 4 2 1:
    //  row 0: 90 -> 0, e 90; 100 + 720/42 (17) = 117 -> 0, e 117;
    //         110 + (360+936)/42 (31) = 141 -> 255, e -114
    //  row 1 N = 720+468-228 = 960, 360+936-456 = 840, 180+468-912 = -264:
    //         120 + 23 = 143 -> 255, e -112; 130 + (840-896)/42 (-1) = 129 -> 255, e -126;
    //         140 + (-264-448-1008)/42 (-41) = 99 -> 0, e 99
    //  row 2 N = 360+234-114-896-504+198 = -722, 180+468-228-448-1008+396 = -640,
    //         90+234-456-224-504+792 = -68:
    //         150 + (-17) = 133 -> 255, e -122; 160 + (-640-976)/42 (-38) = 122 -> 0, e 122;
    //         170 + (-68-488+976)/42 (10) = 180 -> 255
    // Sierra, D 32, right 5 3, next row 2 4 5 4 2, the one after 2 3 2:
    //  row 0: 90 -> 0, e 90; 100 + 450/32 (14) = 114 -> 0, e 114;
    //         110 + (270+570)/32 (26) = 136 -> 255, e -119
    //  row 1 N = 450+456-238 = 668, 360+570-476 = 454, 180+456-595 = 41:
    //         120 + 21 = 141 -> 255, e -114; 130 + (454-570)/32 (-4) = 126 -> 0, e 126;
    //         140 + (41-342+630)/32 (10) = 150 -> 255, e -110
    //  row 2 N = 270+228-570+504-220 = 212, 180+342-238-456+630-440 = 18, 228-357-228+504-550 = -403:
    //         150 + 7 = 157 -> 255, e -98; 160 + (18-490)/32 (-15) = 145 -> 255, e -110;
    //         170 + (-403-294-550)/32 (-39) = 131 -> 255
    // The same kernels on Q (70 60 110 170 / 80 170 150 180), where each gives its own result:
    // Floyd-Steinberg: 70 -> 0, e 70; 60 + 490/16 (31) = 91 -> 0, e 91; 110 + 637/16 (40) = 150 -> 255,
    //   e -105; 170 + (-735/16 = -46) = 124 -> 0, e 124; row 1 N = 350+273 = 623, 70+455-315 = 210,
    //   91-525+372 = -62, -105+620 = 515: 80 + 39 = 119 -> 0, e 119; 170 + (210+833)/16 (65) = 235
    //   -> 255, e -20; 150 + (-62-140)/16 (-13) = 137 -> 255, e -118; 180 + (515-826)/16 (-19) -> 255
    // Atkinson: 70 -> 0, e 70; 60 + 70/8 (9) = 69 -> 0, e 69; 110 + 139/8 (17) = 127 -> 0, e 127;
    //   170 + 196/8 (24.5 -> 25) = 195 -> 255, e -60; row 1 N = 139, 266, 136, 67: 80 + 17 = 97 -> 0,
    //   e 97; 170 + 363/8 (45) -> 255, e -40; 150 + 193/8 (24) -> 255, e -81; 180 + (-54/8 = -7) -> 255
    // Jarvis: 70 -> 0, e 70; 60 + 490/48 (10) = 70 -> 0, e 70; 110 + 840/48 (17.5 -> 18) = 128 -> 255,
    //   e -127; 170 + (350-889)/48 (-11) = 159 -> 255, e -96; row 1 N = 490+350-381 = 459,
    //   350+490-635-288 = -83, 210+350-889-480 = -809, 210-635-672 = -1097: 80 + 10 = 90 -> 0, e 90;
    //   170 + 547/48 (11) -> 255, e -74; 150 + (-809+450-518)/48 (-18) = 132 -> 255, e -123;
    //   180 + (-1097-370-861)/48 (-48.5 -> -49) = 131 -> 255
    // Stucki: 70 -> 0, e 70; 60 + 560/42 (13) = 73 -> 0, e 73; 110 + 864/42 (21) = 131 -> 255, e -124;
    //   170 + (292-992)/42 (-17) = 153 -> 255, e -102; row 1 N = 560+292-248 = 604,
    //   280+584-496-204 = 164, 140+292-992-408 = -968, 146-496-816 = -1166: 80 + 14 = 94 -> 0, e 94;
    //   170 + 916/42 (22) -> 255, e -63; 150 + (-968+376-504)/42 (-26) = 124 -> 0, e 124;
    //   180 + (-1166-252+992)/42 (-10) -> 255
    // Sierra: 70 -> 0, e 70; 60 + 350/32 (11) = 71 -> 0, e 71; 110 + 565/32 (18) = 128 -> 255, e -127;
    //   170 + (213-635)/32 (-13) = 157 -> 255, e -98; row 1 N = 350+284-254 = 380,
    //   280+355-508-196 = -69, 140+284-635-392 = -603, 142-508-490 = -856: 80 + 12 = 92 -> 0, e 92;
    //   170 + 391/32 (12) -> 255, e -73; 150 + (-603+276-365)/32 (-22) = 128 -> 255, e -127;
    //   180 + (-856-219-635)/32 (-53) = 127 -> 0
    // Halves: 8 -> 0 sends 56/16 = 3.5 -> 4, and 124 + 4 = 128 stays white; 247 -> 255 sends -56/16
    // = -3.5 -> -4, and 131 - 4 = 127 burns; Atkinson: 251 -> 255 sends -4/8 = -0.5 -> -1: 127 burns.
    // Bayer: row 0 burns below 8 136 40 168 8, row 1 below 200 72 232 104 200, row 4 as row 0.
    // clang-format off
    QTest::newRow("floyd-steinberg") << DitherKernel::FloydSteinberg << Ramp << "0 255 0/0 255 0/255 0 255";
    QTest::newRow("atkinson")        << DitherKernel::Atkinson << Ramp << "0 0 255/255 0 255/255 255 255";
    QTest::newRow("jarvis")          << DitherKernel::Jarvis << Ramp << "0 0 255/255 0 255/255 255 255";
    QTest::newRow("stucki")          << DitherKernel::Stucki << Ramp << "0 0 255/255 255 0/255 0 255";
    QTest::newRow("sierra")          << DitherKernel::Sierra << Ramp << "0 0 255/255 0 255/255 255 255";
    QTest::newRow("floyd-steinberg Q") << DitherKernel::FloydSteinberg << Q << "0 0 255 0/0 255 255 255";
    QTest::newRow("atkinson Q")        << DitherKernel::Atkinson << Q << "0 0 0 255/0 255 255 255";
    QTest::newRow("jarvis Q")          << DitherKernel::Jarvis << Q << "0 0 255 255/0 255 255 255";
    QTest::newRow("stucki Q")          << DitherKernel::Stucki << Q << "0 0 255 255/0 255 0 255";
    QTest::newRow("sierra Q")          << DitherKernel::Sierra << Q << "0 0 255 255/0 255 255 0";
    QTest::newRow("half up")           << DitherKernel::FloydSteinberg << "8 124" << "0 255";
    QTest::newRow("half down")         << DitherKernel::FloydSteinberg << "247 131" << "255 0";
    QTest::newRow("half down, by 8")   << DitherKernel::Atkinson << "251 128" << "255 0";
    QTest::newRow("bayer")           << DitherKernel::Bayer4
                                     << "8 135 39 168 7/199 72 231 104 200/0 0 0 0 0/255 255 255 255 255/7 136 7 7 8"
                                     << "255 0 0 255 0/0 255 0 255 255/0 0 0 0 0/255 255 255 255 255/0 255 0 0 255";
    QTest::newRow("black stays black") << DitherKernel::FloydSteinberg << "0 0 0/0 0 0" << "0 0 0/0 0 0";
    QTest::newRow("white stays white") << DitherKernel::Stucki << "255 255 255/255 255 255"
                                       << "255 255 255/255 255 255";
    QTest::newRow("one cell")        << DitherKernel::Jarvis << "127" << "0";
    // clang-format on
}

void TestJobRaster::dither()
{
    QFETCH(DitherKernel, kernel);
    QFETCH(QString, picture);
    QFETCH(QString, cells);
    QImage image = gray(picture);
    JobRaster::reduce(&image, imageParams(ImageMode::Dither, kernel));
    QCOMPARE(text(image), cells);
}

void TestJobRaster::grayscaleKeepsCells()
{
    QImage image = gray(QStringLiteral("0 90 200/255 128 1"));
    JobRaster::reduce(&image, imageParams(ImageMode::Grayscale));
    QCOMPARE(text(image), QStringLiteral("0 90 200/255 128 1"));
}

// The 4 x 3 picture P = 0 0 255 50 / 255 255 255 255 / 100 100 100 255 at 0.1 mm per pixel, its
// bottom-left corner at (10, 20): cell edges X 10000 10100 10200 10300 10400, rows at Y 20250
// (top), 20150, 20050. Speed 3000, power 600000 (S 600), overscan 1 mm, reverse rows shifted by
// 0.05 mm (edges 10050 ... 10450). Threshold: row 0 burns cells 0 1 3, row 2 cells 0 1 2.
// Floyd-Steinberg: row 0 as threshold (50 -> 0 sends 150 250 to row 1, which stays white and sends
// on 27 105 109 sixteenths); row 2: 100 -> 0; 100 + 45 -> 255; 100 + (105 - 770)/16 (-42) -> 0;
// 255 + 32 -> 255, so cells 0 and 2. Grayscale powers 600000 (255 - v) / 255: 0 -> 600000,
// 50 -> 482353, 100 -> 364706; with min power 60000: 60000 + 540000 (255 - v) / 255: 50 -> 494118,
// 100 -> 388235, white 60000 (so the white row is burnt too).
void TestJobRaster::scanPicture_data()
{
    QTest::addColumn<ImageMode>("mode");
    QTest::addColumn<bool>("bidirectional");
    QTest::addColumn<int>("minPower");
    QTest::addColumn<int>("startX");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<int>("endX");
    QTest::addColumn<int>("endY");
    // clang-format off
    QTest::newRow("threshold both ways") << ImageMode::Threshold << true << 0 << 0
        << "T9000,20250 C10000,20250,0 C10200,20250,600000 C10300,20250,0 C10400,20250,600000 C11400,20250,0 "
           "T11350,20050 C10350,20050,0 C10050,20050,600000 C9050,20050,0" << 9050 << 20050;
    QTest::newRow("threshold one way") << ImageMode::Threshold << false << 0 << 0
        << "T9000,20250 C10000,20250,0 C10200,20250,600000 C10300,20250,0 C10400,20250,600000 C11400,20250,0 "
           "T9000,20050 C10000,20050,0 C10300,20050,600000 C11300,20050,0" << 11300 << 20050;
    QTest::newRow("threshold from the right") << ImageMode::Threshold << true << 0 << 170000
        << "T11450,20250 C10450,20250,0 C10350,20250,600000 C10250,20250,0 C10050,20250,600000 C9050,20250,0 "
           "T9000,20050 C10000,20050,0 C10300,20050,600000 C11300,20050,0" << 11300 << 20050;
    QTest::newRow("one way from the right") << ImageMode::Threshold << false << 0 << 170000
        << "T9000,20250 C10000,20250,0 C10200,20250,600000 C10300,20250,0 C10400,20250,600000 C11400,20250,0 "
           "T9000,20050 C10000,20050,0 C10300,20050,600000 C11300,20050,0" << 11300 << 20050;
    QTest::newRow("dither both ways") << ImageMode::Dither << true << 0 << 0
        << "T9000,20250 C10000,20250,0 C10200,20250,600000 C10300,20250,0 C10400,20250,600000 C11400,20250,0 "
           "T11350,20050 C10350,20050,0 C10250,20050,600000 C10150,20050,0 C10050,20050,600000 C9050,20050,0"
        << 9050 << 20050;
    QTest::newRow("dither one way") << ImageMode::Dither << false << 0 << 0
        << "T9000,20250 C10000,20250,0 C10200,20250,600000 C10300,20250,0 C10400,20250,600000 C11400,20250,0 "
           "T9000,20050 C10000,20050,0 C10100,20050,600000 C10200,20050,0 C10300,20050,600000 C11300,20050,0"
        << 11300 << 20050;
    QTest::newRow("grayscale both ways") << ImageMode::Grayscale << true << 0 << 0
        << "T9000,20250 C10000,20250,0 C10200,20250,600000 C10300,20250,0 C10400,20250,482353 C11400,20250,0 "
           "T11350,20050 C10350,20050,0 C10050,20050,364706 C9050,20050,0" << 9050 << 20050;
    QTest::newRow("grayscale one way") << ImageMode::Grayscale << false << 0 << 0
        << "T9000,20250 C10000,20250,0 C10200,20250,600000 C10300,20250,0 C10400,20250,482353 C11400,20250,0 "
           "T9000,20050 C10000,20050,0 C10300,20050,364706 C11300,20050,0" << 11300 << 20050;
    QTest::newRow("grayscale min power") << ImageMode::Grayscale << true << 60000 << 0
        << "T9000,20250 C10000,20250,0 C10200,20250,600000 C10300,20250,60000 C10400,20250,494118 C11400,20250,0 "
           "T11450,20150 C10450,20150,0 C10050,20150,60000 C9050,20150,0 "
           "T9000,20050 C10000,20050,0 C10300,20050,388235 C10400,20050,60000 C11400,20050,0" << 11400 << 20050;
    // clang-format on
}

void TestJobRaster::scanPicture()
{
    QFETCH(ImageMode, mode);
    QFETCH(bool, bidirectional);
    QFETCH(int, minPower);
    QFETCH(int, startX);
    QFETCH(QString, expected);
    QFETCH(int, endX);
    QFETCH(int, endY);
    const QRectF rect(10, 20, 0.4, 0.3);
    JobRaster::ScanSettings settings;
    settings.params = imageParams(mode);
    settings.params.bidirectional = bidirectional;
    settings.params.overscan = 1;
    settings.params.reverseOffset = 0.05;
    settings.speed = 3000;
    settings.power = 600000;
    settings.minPower = minPower;
    const JobRaster::Grid g = JobRaster::grid(rect, settings.params.interval);
    QImage cells =
        JobRaster::sample(gray(QStringLiteral("0 0 255 50/255 255 255 255/100 100 100 255")), g, settings.params);
    JobRaster::reduce(&cells, settings.params);
    Collect sink;
    qint32 x = startX;
    qint32 y = 0;
    JobRaster::scan(cells, rect, settings, sink, &x, &y);
    QCOMPARE(moves(sink.moves, 3000), expected);
    QCOMPARE(x, endX);
    QCOMPARE(y, endY);
}

// Cells given as they come out of reduce (0 burns, 255 not), threshold mode, power 1000, speed 600.
void TestJobRaster::scanCells_data()
{
    QTest::addColumn<QString>("cells");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<double>("overscan");
    QTest::addColumn<double>("offset");
    QTest::addColumn<double>("bedWidth");
    QTest::addColumn<int>("startX");
    QTest::addColumn<QString>("expected");
    // Gaps: 3 cells of 20 mm at X 10 leave a 20 mm white gap, longer than 2 x 2 + 10 mm, so it is
    // travelled; 3 cells of 14 mm leave 14 mm, not longer, so it is crossed at zero power.
    // clang-format off
    QTest::newRow("all white") << "255 255/255 255" << QRectF(10, 10, 0.2, 0.2) << 2.0 << 0.0 << 170.0 << 5000
        << "";
    QTest::newRow("one row, clamped both sides") << "0 255 255 0" << QRectF(0.5, 0, 0.4, 0.1) << 2.0 << 0.0 << 1.0
        << 0 << "T0,50 C500,50,0 C600,50,1000 C800,50,0 C900,50,1000 C1000,50,0";
    QTest::newRow("at the bed's right edge") << "0 0" << QRectF(169.8, 5, 0.2, 0.1) << 2.0 << 0.0 << 170.0
        << 170000 << "T170000,5050 C169800,5050,1000 C167800,5050,0";
    QTest::newRow("offset kept on the bed") << "0 0/0 0" << QRectF(169.8, 0, 0.2, 0.2) << 0.5 << 0.05 << 170.0
        << 0 << "T169300,150 C169800,150,0 C170000,150,1000 T170000,50 C169850,50,1000 C169350,50,0";
    QTest::newRow("as near either end") << "0" << QRectF(10, 10, 0.1, 0.1) << 0.0 << 0.0 << 170.0 << 10050
        << "T10000,10050 C10100,10050,1000";
    QTest::newRow("no overscan") << "255 0 0 255" << QRectF(1, 1, 0.4, 0.1) << 0.0 << 0.0 << 170.0 << 1100
        << "T1100,1050 C1300,1050,1000";
    QTest::newRow("long gap travelled") << "0 255 0" << QRectF(10, 10, 60, 10) << 2.0 << 0.0 << 170.0 << 0
        << "T8000,15000 C10000,15000,0 C30000,15000,1000 C32000,15000,0 T48000,15000 C50000,15000,0 "
           "C70000,15000,1000 C72000,15000,0";
    QTest::newRow("long gap travelled leftwards") << "0 255 0" << QRectF(10, 10, 60, 10) << 2.0 << 0.0 << 170.0
        << 170000 << "T72000,15000 C70000,15000,0 C50000,15000,1000 C48000,15000,0 T32000,15000 C30000,15000,0 "
           "C10000,15000,1000 C8000,15000,0";
    QTest::newRow("short gap crossed") << "0 255 0" << QRectF(10, 10, 42, 10) << 2.0 << 0.0 << 170.0 << 0
        << "T8000,15000 C10000,15000,0 C24000,15000,1000 C38000,15000,0 C52000,15000,1000 C54000,15000,0";
    QTest::newRow("white rows keep the turn") << "0/255/0/0" << QRectF(0, 0, 0.1, 0.4) << 1.0 << 0.0 << 170.0
        << 0 << "T0,350 C100,350,1000 C1100,350,0 T1100,150 C100,150,0 C0,150,1000 "
           "T0,50 C100,50,1000 C1100,50,0";
    QTest::newRow("thirds of a micrometre") << "0 0 255" << QRectF(1, 1, 0.001, 0.002) << 0.0 << 0.0 << 170.0
        << 1000 << "T1000,1001 C1001,1001,1000";
    // clang-format on
}

void TestJobRaster::scanCells()
{
    QFETCH(QString, cells);
    QFETCH(QRectF, rect);
    QFETCH(double, overscan);
    QFETCH(double, offset);
    QFETCH(double, bedWidth);
    QFETCH(int, startX);
    QFETCH(QString, expected);
    JobRaster::ScanSettings settings;
    settings.params = imageParams(ImageMode::Threshold);
    settings.params.overscan = overscan;
    settings.params.reverseOffset = offset;
    settings.speed = 600;
    settings.power = 1000;
    settings.bedWidth = bedWidth;
    Collect sink;
    qint32 x = startX;
    qint32 y = 0;
    JobRaster::scan(gray(cells), rect, settings, sink, &x, &y);
    QCOMPARE(moves(sink.moves, 600), expected);
    if (sink.moves.empty()) {
        QCOMPARE(x, startX);
        QCOMPARE(y, 0);
    } else {
        QCOMPARE(x, sink.moves.back().x);
        QCOMPARE(y, sink.moves.back().y);
    }
}

// Cells 0.1 mm wide at (1, 1): edges X 1000 1100 1200 1300, the row at Y 1050, where the scan starts.
// Power 100000 (S 100): 100 -> 100 x 155 / 255 = 60.784, 101 -> 60.392, 102 -> 60; with min power
// 20000: 255 -> 20, 0 -> 100, 128 -> 20 + 80 x 127 / 255 = 59.843.
void TestJobRaster::grayscalePowers_data()
{
    QTest::addColumn<QString>("cells");
    QTest::addColumn<int>("minPower");
    QTest::addColumn<int>("step");
    QTest::addColumn<QString>("expected");
    // clang-format off
    QTest::newRow("thousandths")      << "100 101 102" << 0 << 1 << "C1100,1050,60784 C1200,1050,60392 C1300,1050,60000";
    QTest::newRow("whole S merges")   << "100 101 102" << 0 << 1000 << "C1100,1050,61000 C1300,1050,60000";
    QTest::newRow("min power")        << "255 0 128" << 20000 << 1000
                                      << "C1100,1050,20000 C1200,1050,100000 C1300,1050,60000";
    QTest::newRow("white not burnt")  << "255 0 255" << 0 << 1000 << "T1100,1050 C1200,1050,100000";
    QTest::newRow("step 0 counts as 1") << "100" << 0 << 0 << "C1100,1050,60784";
    // clang-format on
}

void TestJobRaster::grayscalePowers()
{
    QFETCH(QString, cells);
    QFETCH(int, minPower);
    QFETCH(int, step);
    QFETCH(QString, expected);
    JobRaster::ScanSettings settings;
    settings.params = imageParams(ImageMode::Grayscale);
    settings.params.overscan = 0;
    settings.speed = 1500;
    settings.power = 100000;
    settings.minPower = minPower;
    settings.powerStep = step;
    const QImage image = gray(cells);
    Collect sink;
    qint32 x = 1000;
    qint32 y = 1050;
    JobRaster::scan(image, QRectF(1, 1, 0.1 * image.width(), 0.1), settings, sink, &x, &y);
    QCOMPARE(moves(sink.moves, 1500), expected);
}

void TestJobRaster::burnsMatchCells_data()
{
    QTest::addColumn<ImageMode>("mode");
    QTest::addColumn<DitherKernel>("kernel");
    QTest::addColumn<bool>("bidirectional");
    QTest::addColumn<double>("overscan");
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<QSize>("picture");
    QTest::addColumn<int>("startX");
    // clang-format off
    QTest::newRow("floyd-steinberg") << ImageMode::Dither << DitherKernel::FloydSteinberg << true << 2.0
                                     << QRectF(12.345, 20.07, 17.3, 9.9) << QSize(40, 30) << 0;
    QTest::newRow("atkinson one way") << ImageMode::Dither << DitherKernel::Atkinson << false << 1.0
                                      << QRectF(0.5, 0.5, 6.1, 4.3) << QSize(61, 43) << 170000;
    QTest::newRow("jarvis at the edge") << ImageMode::Dither << DitherKernel::Jarvis << true << 5.0
                                        << QRectF(0, 3, 3.33, 2.5) << QSize(20, 20) << 90000;
    QTest::newRow("stucki")          << ImageMode::Dither << DitherKernel::Stucki << true << 0.0
                                     << QRectF(160.01, 190, 9.99, 10) << QSize(33, 33) << 170000;
    QTest::newRow("sierra")          << ImageMode::Dither << DitherKernel::Sierra << true << 0.3
                                     << QRectF(50, 50, 7.77, 1.23) << QSize(100, 10) << 0;
    QTest::newRow("bayer")           << ImageMode::Dither << DitherKernel::Bayer4 << true << 2.0
                                     << QRectF(1, 1, 4.4, 4.4) << QSize(44, 44) << 0;
    QTest::newRow("threshold")       << ImageMode::Threshold << DitherKernel::FloydSteinberg << true << 2.0
                                     << QRectF(100, 100, 70, 0.35) << QSize(30, 7) << 0;
    QTest::newRow("grayscale")       << ImageMode::Grayscale << DitherKernel::FloydSteinberg << true << 2.0
                                     << QRectF(20, 20, 3.05, 2.05) << QSize(17, 23) << 0;
    // clang-format on
}

// Replays the moves of a sampled, reduced and scanned picture of speckled grays: every cell's centre
// is crossed by exactly one burn at the cell's own power (none for cells of power 0), burns run
// along their row between the rectangle's edges, and nothing leaves the bed.
void TestJobRaster::burnsMatchCells()
{
    QFETCH(ImageMode, mode);
    QFETCH(DitherKernel, kernel);
    QFETCH(bool, bidirectional);
    QFETCH(double, overscan);
    QFETCH(QRectF, rect);
    QFETCH(QSize, picture);
    QFETCH(int, startX);
    QImage image(picture, QImage::Format_Grayscale8);
    quint32 state = 12345;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            state = state * 1103515245u + 12345u;
            // Runs of white and of black among the grays, so rows and gaps get skipped.
            const int r = int((state >> 16) % 400);
            image.scanLine(y)[x] = uchar(r < 100 ? 255 : r < 150 ? 0 : r - 150);
        }
    }
    JobRaster::ScanSettings settings;
    settings.params = imageParams(mode, kernel);
    settings.params.bidirectional = bidirectional;
    settings.params.overscan = overscan;
    settings.speed = 2000;
    settings.power = 700000;
    const JobRaster::Grid g = JobRaster::grid(rect, settings.params.interval);
    QImage cells = JobRaster::sample(image, g, settings.params);
    JobRaster::reduce(&cells, settings.params);
    Collect sink;
    qint32 x = startX;
    qint32 y = 0;
    JobRaster::scan(cells, rect, settings, sink, &x, &y);

    const qint32 left = toMicrons(rect.x());
    const qint32 right = toMicrons(rect.x() + rect.width());
    std::vector<int> crossings(size_t(g.columns) * size_t(g.rows), 0);
    qint32 px = startX;
    qint32 py = 0;
    for (const PlannedMove &m : sink.moves) {
        QVERIFY(m.x >= 0 && m.x <= 170000);
        if (m.kind == PlannedMove::Cut) {
            QCOMPARE(m.y, py);
            QCOMPARE(m.feed, 2000);
        }
        if (m.kind == PlannedMove::Cut && m.power > 0) {
            QVERIFY(std::min(px, m.x) >= left && std::max(px, m.x) <= right);
            const double row = (rect.y() + rect.height() - m.y / 1000.0) / (rect.height() / g.rows) - 0.5;
            const int j = int(std::lround(row));
            QVERIFY2(std::abs(row - j) < 0.01 && j >= 0 && j < g.rows, qPrintable(QString::number(m.y)));
            for (int i = 0; i < g.columns; ++i) {
                const double centre = 1000.0 * (rect.x() + (i + 0.5) * rect.width() / g.columns);
                if (centre > std::min(px, m.x) && centre < std::max(px, m.x)) {
                    const uchar v = cells.constScanLine(j)[i];
                    const qint32 expected = mode == ImageMode::Grayscale
                                                ? qint32(std::llround(700000.0 * (255 - v) / 255))
                                                : (v < 128 ? 700000 : 0);
                    QCOMPARE(m.power, expected);
                    ++crossings[size_t(j) * size_t(g.columns) + size_t(i)];
                }
            }
        }
        px = m.x;
        py = m.y;
    }
    int burnt = 0;
    for (int j = 0; j < g.rows; ++j) {
        for (int i = 0; i < g.columns; ++i) {
            const uchar v = cells.constScanLine(j)[i];
            const bool burns = mode == ImageMode::Grayscale ? v < 255 : v < 128;
            QCOMPARE(crossings[size_t(j) * size_t(g.columns) + size_t(i)], burns ? 1 : 0);
            burnt += burns;
        }
    }
    QVERIFY(burnt > 0);
    QCOMPARE(x, px);
    QCOMPARE(y, py);
}

TARNWELL_TEST_MAIN(TestJobRaster)
#include "tst_jobraster.moc"
