// The material test grid: the values of its rows and columns, the order of its layers, where each
// cell and label lies, the source of each operation's cells, and the grids it refuses.
#include "jobfile.h"
#include "testgrid.h"
#include "testsupport.h"

#include <QImage>

Q_DECLARE_METATYPE(TestGridParams)

namespace {

TestGridParams speedGrid(double powerFrom, double powerTo, int powers, double speedFrom, double speedTo, int speeds)
{
    TestGridParams p;
    p.powerFrom = powerFrom;
    p.powerTo = powerTo;
    p.powerCount = powers;
    p.speedFrom = speedFrom;
    p.speedTo = speedTo;
    p.speedCount = speeds;
    return p;
}

// The cells' items, in document order (after the labels).
std::vector<JobItem> cells(const JobDocument &doc)
{
    std::vector<JobItem> out;
    for (const JobItem &item : doc.items) {
        if (item.layer > 0)
            out.push_back(item);
    }
    return out;
}

}  // namespace

class TestTestGrid : public QObject
{
    Q_OBJECT

private slots:
    // Columns: powers low to high, rounded to 0.1 %. Rows: speeds high to low, whole mm/min.
    void values_data()
    {
        QTest::addColumn<QVector<double>>("power");  // from, to, count
        QTest::addColumn<QVector<double>>("speed");
        QTest::addColumn<QVector<double>>("powers");
        QTest::addColumn<QVector<double>>("speeds");
        // clang-format off
        QTest::newRow("3 x 2") << QVector<double>{10, 100, 3} << QVector<double>{500, 3000, 2}
                               << QVector<double>{10, 55, 100} << QVector<double>{3000, 500};
        QTest::newRow("one cell") << QVector<double>{40, 90, 1} << QVector<double>{1200, 3000, 1}
                                  << QVector<double>{40} << QVector<double>{1200};
        QTest::newRow("thirds rounded") << QVector<double>{10, 20, 4} << QVector<double>{1000, 2000, 4}
                                        << QVector<double>{10, 13.3, 16.7, 20} << QVector<double>{2000, 1667, 1333, 1000};
        QTest::newRow("ranges given high to low") << QVector<double>{80, 20, 3} << QVector<double>{100, 300, 3}
                                                  << QVector<double>{20, 50, 80} << QVector<double>{300, 200, 100};
        // clang-format on
    }

    void values()
    {
        QFETCH(QVector<double>, power);
        QFETCH(QVector<double>, speed);
        QFETCH(QVector<double>, powers);
        QFETCH(QVector<double>, speeds);
        const TestGridParams p = speedGrid(power[0], power[1], int(power[2]), speed[0], speed[1], int(speed[2]));
        JobDocument doc;
        QString error;
        QVERIFY2(TestGrid::make(p, &doc, &error), qPrintable(error));
        QCOMPARE(doc.layers.size(), size_t(1 + powers.size() * speeds.size()));
        for (int r = 0; r < speeds.size(); ++r) {
            for (int c = 0; c < powers.size(); ++c) {
                const JobLayer &layer = doc.layers[size_t(1 + r * powers.size() + c)];
                QCOMPARE(layer.power, powers[c]);
                QCOMPARE(layer.speed, speeds[r]);
                QCOMPARE(layer.passes, 1);
                QCOMPARE(layer.operation, Operation::Fill);
            }
        }
        // The labels: speeds left of the rows, then powers above the columns, in that order.
        QStringList texts;
        for (const JobItem &item : doc.items) {
            if (item.layer == 0)
                texts << item.source.text;
        }
        QStringList expected;
        for (double s : speeds)
            expected << QString::number(s);
        for (double v : powers)
            expected << QString::number(v) + QLatin1Char('%');
        QCOMPARE(texts, expected);
    }

    // Labels layer first, at low power and the highest speed; then one layer and one cell per cell.
    void layersAndPositions()
    {
        TestGridParams p = speedGrid(10, 100, 3, 500, 3000, 2);
        p.cell = 6;
        p.gap = 1.5;
        p.x = 12;
        p.y = 20;
        JobDocument doc;
        QString error;
        QVERIFY2(TestGrid::make(p, &doc, &error), qPrintable(error));
        QVERIFY(doc.machine == p.machine);
        const JobLayer &labels = doc.layers[0];
        QCOMPARE(labels.name, QStringLiteral("Labels"));
        QCOMPARE(labels.operation, Operation::Fill);
        QCOMPARE(labels.power, 20.0);
        QCOMPARE(labels.speed, 3000.0);
        QCOMPARE(doc.layers[1].name, QStringLiteral("10 % at 3000 mm/min"));
        QCOMPARE(doc.layers[6].name, QStringLiteral("100 % at 500 mm/min"));

        // Labels come first in the items, each on the labels layer, as text.
        QCOMPARE(doc.items.size(), size_t(2 + 3 + 6));
        for (size_t i = 0; i < 5; ++i) {
            QCOMPARE(doc.items[i].layer, 0);
            QCOMPARE(doc.items[i].source.kind, SourceKind::Text);
        }
        const std::vector<JobItem> grid = cells(doc);
        QCOMPARE(grid.size(), size_t(6));
        // The row labels end one gap before the first column; the widest starts at x.
        double widest = 0;
        for (size_t i = 0; i < 2; ++i) {
            QCOMPARE(doc.items[i].x + doc.items[i].width, grid[0].x - 1.5);
            widest = std::max(widest, doc.items[i].width);
        }
        QCOMPARE(grid[0].x, 12 + widest + 1.5);
        const double left = grid[0].x;
        for (size_t i = 0; i < grid.size(); ++i) {
            const int r = int(i) / 3, c = int(i) % 3;
            QCOMPARE(grid[i].layer, int(i) + 1);
            QCOMPARE(grid[i].x, left + c * 7.5);
            QCOMPARE(grid[i].y, 20 + (1 - r) * 7.5);  // the first row (highest speed) on top
            QCOMPARE(grid[i].width, 6.0);
            QCOMPARE(grid[i].height, 6.0);
        }
        // Row labels centred on their rows; power labels centred over their columns, above the cells.
        QCOMPARE(doc.items[0].y + doc.items[0].height / 2, 20 + 7.5 + 3);
        QCOMPARE(doc.items[1].y + doc.items[1].height / 2, 20 + 3.0);
        for (size_t c = 0; c < 3; ++c) {
            const JobItem &label = doc.items[2 + c];
            QCOMPARE(label.x + label.width / 2, left + c * 7.5 + 3);
            QCOMPARE(label.y, 20 + 7.5 + 6 + 1.5);
            QVERIFY(label.height <= 3);
            QVERIFY(label.width <= 6);  // neighbours keep the gap between them
        }
        QCOMPARE(doc.items[0].source.align, TextAlign::Right);
        QCOMPARE(doc.items[2].source.align, TextAlign::Center);
    }

    // Rows over passes: fewest first, all at the first speed.
    void passesRows()
    {
        TestGridParams p = speedGrid(30, 60, 2, 800, 3000, 5);
        p.rowsArePasses = true;
        p.passesFrom = 4;
        p.passesTo = 1;
        p.passesCount = 4;
        JobDocument doc;
        QString error;
        QVERIFY2(TestGrid::make(p, &doc, &error), qPrintable(error));
        QCOMPARE(doc.layers.size(), size_t(1 + 8));
        QCOMPARE(doc.layers[0].speed, 800.0);
        const int expected[] = {1, 1, 2, 2, 3, 3, 4, 4};
        for (size_t i = 0; i < 8; ++i) {
            QCOMPARE(doc.layers[1 + i].passes, expected[i]);
            QCOMPARE(doc.layers[1 + i].speed, 800.0);
        }
        QCOMPARE(doc.layers[8].name, QStringLiteral("60 %, 4 passes"));
        QCOMPARE(doc.layers[1].name, QStringLiteral("30 %, 1 pass"));
        QCOMPARE(doc.items[0].source.text, QStringLiteral("1x"));
        QCOMPARE(doc.items[3].source.text, QStringLiteral("4x"));
    }

    // Each operation's cells: an SVG square for fill and line, a black picture for image.
    void operations_data()
    {
        QTest::addColumn<int>("operation");
        QTest::addColumn<int>("kind");
        // clang-format off
        QTest::newRow("fill") << int(Operation::Fill) << int(SourceKind::Svg);
        QTest::newRow("line") << int(Operation::Line) << int(SourceKind::Svg);
        QTest::newRow("image") << int(Operation::Image) << int(SourceKind::Picture);
        // clang-format on
    }

    void operations()
    {
        QFETCH(int, operation);
        QFETCH(int, kind);
        TestGridParams p = speedGrid(20, 80, 2, 1000, 2000, 2);
        p.operation = Operation(operation);
        JobDocument doc;
        QString error;
        QVERIFY2(TestGrid::make(p, &doc, &error), qPrintable(error));
        QCOMPARE(doc.layers[0].operation, Operation::Fill);
        for (size_t i = 1; i < doc.layers.size(); ++i)
            QCOMPARE(int(doc.layers[i].operation), operation);
        for (const JobItem &cell : cells(doc)) {
            QCOMPARE(int(cell.source.kind), kind);
            if (cell.source.kind == SourceKind::Picture) {
                const QImage picture = QImage::fromData(cell.source.data);
                QCOMPARE(picture.width(), picture.height());
                QCOMPARE(qGray(picture.pixel(picture.width() / 2, picture.height() / 2)), 0);
            } else {
                QVERIFY(cell.source.data.startsWith("<svg"));
            }
        }
        // The grid is a job like any other: it writes and reads back equal, on the bed.
        JobDocument back;
        QVERIFY2(JobFile::read(JobFile::write(doc), &back, &error), qPrintable(error));
        QVERIFY(back == doc);
        QCOMPARE(JobFile::outsideBed(doc), QString());
    }

    void refusals_data()
    {
        QTest::addColumn<TestGridParams>("params");
        QTest::addColumn<QString>("message");
        TestGridParams base = speedGrid(10, 100, 3, 500, 3000, 3);
        auto with = [&base](auto change) {
            TestGridParams p = base;
            change(p);
            return p;
        };
        // clang-format off
        QTest::newRow("no powers") << with([](TestGridParams &p) { p.powerCount = 0; })
                                   << "the number of powers must be at least 1";
        QTest::newRow("no speeds") << with([](TestGridParams &p) { p.speedCount = -2; })
                                   << "the number of speeds must be at least 1";
        QTest::newRow("no passes") << with([](TestGridParams &p) { p.rowsArePasses = true; p.passesCount = 0; })
                                   << "the number of passes must be at least 1";
        QTest::newRow("power over 100") << with([](TestGridParams &p) { p.powerTo = 120; })
                                        << "powers must be from 0 to 100 %";
        QTest::newRow("negative power") << with([](TestGridParams &p) { p.powerFrom = -5; })
                                        << "powers must be from 0 to 100 %";
        QTest::newRow("zero speed") << with([](TestGridParams &p) { p.speedFrom = 0; })
                                    << "speeds must be above 0 and at most 100000 mm/min";
        QTest::newRow("speed rounding to 0") << with([](TestGridParams &p) { p.speedFrom = 0.2; })
                                             << "speeds must be above 0 and at most 100000 mm/min";
        QTest::newRow("zero passes") << with([](TestGridParams &p) { p.rowsArePasses = true; p.passesFrom = 0; })
                                     << "passes must be from 1 to 1000";
        QTest::newRow("zero cell") << with([](TestGridParams &p) { p.cell = 0; })
                                   << "the cell size must be above 0 and at most 1000 mm";
        QTest::newRow("negative gap") << with([](TestGridParams &p) { p.gap = -1; })
                                      << "the gap must be from 0 to 1000 mm";
        QTest::newRow("too many columns") << with([](TestGridParams &p) { p.powerCount = 30; p.speedCount = 1; })
                                          << "the grid (208 x 5 mm at 10, 10) does not fit on the bed (170 x 200 mm)";
        QTest::newRow("too many rows") << with([](TestGridParams &p) { p.powerCount = 1; p.speedCount = 100000000; })
                                       << "the grid (5 x 7e+08 mm at 10, 10) does not fit on the bed (170 x 200 mm)";
        QTest::newRow("left of the bed") << with([](TestGridParams &p) { p.x = -1; })
                                         << "the grid (19 x 19 mm at -1, 10) does not fit on the bed (170 x 200 mm)";
        QTest::newRow("small bed") << with([](TestGridParams &p) { p.machine.bedHeight = 20; })
                                   << "the grid (19 x 19 mm at 10, 10) does not fit on the bed (170 x 20 mm)";
        // clang-format on
    }

    void refusals()
    {
        QFETCH(TestGridParams, params);
        QFETCH(QString, message);
        JobDocument doc;
        doc.machine.name = QStringLiteral("untouched");
        QString error;
        QVERIFY(!TestGrid::make(params, &doc, &error));
        QCOMPARE(error, message);
        QCOMPARE(doc.machine.name, QStringLiteral("untouched"));
    }

    // Cells that fit but whose labels would not: the labels count, too.
    void labelsMustFit()
    {
        TestGridParams p = speedGrid(10, 100, 3, 500, 3000, 3);
        p.y = 200 - 19;  // the cells reach the top edge exactly; the power labels would be above it
        JobDocument doc;
        QString error;
        QVERIFY(!TestGrid::make(p, &doc, &error));
        QVERIFY2(error.startsWith(QStringLiteral("the grid ("))
                     && error.endsWith(QStringLiteral("mm at 10, 181) does not fit on the bed (170 x 200 mm)")),
                 qPrintable(error));
        p.y = 200 - 19 - 2 - 3;  // room for one gap and the tallest label
        QVERIFY2(TestGrid::make(p, &doc, &error), qPrintable(error));
        QCOMPARE(JobFile::outsideBed(doc), QString());
    }
};

TARNWELL_TEST_MAIN(TestTestGrid)
#include "tst_testgrid.moc"
