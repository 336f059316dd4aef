// tarnwell-export job and testgrid run as users run them: exit status, the one-line messages,
// no file left behind on bad input, the dialect override, and the grid's job read back.
#include "exportrunner.h"
#include "jobfile.h"
#include "testgrid.h"
#include "testsupport.h"

#include <QBuffer>
#include <QImage>
#include <QRegularExpression>

namespace {

QByteArray pngBase64()
{
    QImage image(4, 3, QImage::Format_Grayscale8);
    image.fill(0);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toBase64();
}

// A picture on an image layer and a square cut around it on a line layer (disabled when asked).
QByteArray twoLayerJob(bool cutEnabled = true)
{
    QByteArray json = R"({"format":1,"machine":{"bed":[170,200]},
"layers":[{"name":"Photo","operation":"image","speed":3000,"power":50},
          {"name":"Cut","operation":"line","speed":300,"power":100,"passes":2,"enabled":ENABLED}],
"items":[{"layer":0,"x":20,"y":30,"width":40,"source":{"kind":"picture","name":"photo.png","data":"PIC"}},
         {"layer":1,"x":19,"y":29,"width":42,"height":32,"keep_aspect":false,
          "source":{"kind":"svg","name":"frame.svg","data":"SVG"}}]})";
    const QByteArray svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"42\" height=\"32\" viewBox=\"0 0 42 32\">"
                           "<path d=\"M0 0 L42 0 L42 32 L0 32 Z\" fill=\"none\" stroke=\"black\"/></svg>";
    json.replace("PIC", pngBase64());
    json.replace("SVG", svg.toBase64());
    json.replace("ENABLED", cutEnabled ? "true" : "false");
    return json;
}

// The files in the current folder.
QStringList files() { return QDir::current().entryList(QDir::Files, QDir::Name); }

}  // namespace

class TestExportJob : public QObject
{
    Q_OBJECT

private slots:
    void help_data()
    {
        QTest::addColumn<QString>("sub");
        // clang-format off
        QTest::newRow("job") << "job";
        QTest::newRow("testgrid") << "testgrid";
        // clang-format on
    }

    void help()
    {
        QFETCH(QString, sub);
        const ExportRun run = runExport({sub, "--help"});
        QCOMPARE(run.status, 0);
        QVERIFY2(run.out.startsWith("Usage: tarnwell-export " + sub.toUtf8()), run.out.constData());
        const ExportRun top = runExport({"--help"});
        QVERIFY(top.out.contains("\n  " + sub.toUtf8() + " "));
    }

    // Every bad input: exit 2, one line naming the problem, and no output file.
    void badInput_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("message");  // "@" stands for the test's folder
        const QStringList out{"--output", "out.gcode"};
        const QStringList grid{"testgrid", "--output", "out.gcode", "--powers", "10:100:3"};
        // clang-format off
        QTest::newRow("job without input") << QStringList{"job", "--output", "out.gcode"} << "job: --input is missing";
        QTest::newRow("job without output") << QStringList{"job", "--input", "good.tljob"} << "job: --output is missing";
        QTest::newRow("unknown option") << QStringList{"job", "--input", "good.tljob", "--speed", "3"} + out
                                        << "job: unknown option '--speed'";
        QTest::newRow("no such file") << QStringList{"job", "--input", "nothere.tljob"} + out
                                      << "nothere.tljob: no such file";
        QTest::newRow("not a job") << QStringList{"job", "--input", "notjson.tljob"} + out
                                   << "notjson.tljob: not a job file";
        QTest::newRow("newer format") << QStringList{"job", "--input", "newer.tljob"} + out
            << "newer.tljob: format: the file comes from a newer version of TarnwellLaser (format 2; this version reads format 1)";
        QTest::newRow("not a picture") << QStringList{"job", "--input", "broken.tljob"} + out
                                       << "broken.tljob: items[0].source: not a picture";
        QTest::newRow("outside the bed") << QStringList{"job", "--input", "outside.tljob"} + out
                                         << "outside.tljob: items[0] (photo.png): outside the bed (170 x 200 mm)";
        QTest::newRow("grid too fine") << QStringList{"job", "--input", "fine.tljob"} + out
            << "fine.tljob: items[0]: too fine to engrave: 1000000 x 750000 cells at layers[0].image.interval 0.001 mm "
               "(at most 100000000 cells)";
        QTest::newRow("unknown dialect") << QStringList{"job", "--input", "good.tljob", "--dialect", "smoothie"} + out
                                         << "job: --dialect: unknown dialect 'smoothie' (grbl, marlin or fan)";
        QTest::newRow("max power not a number") << QStringList{"job", "--input", "good.tljob", "--max-power", "full"} + out
                                                << "job: --max-power: 'full' is not a number";
        QTest::newRow("max power zero") << QStringList{"job", "--input", "good.tljob", "--max-power", "0"} + out
                                        << "job: --max-power must be above 0 and at most 100000, not 0";
        QTest::newRow("output folder missing") << QStringList{"job", "--input", "good.tljob", "--output", "no/out.gcode"}
                                               << "job: cannot write @/no/out.gcode";
        QTest::newRow("output over the input") << QStringList{"job", "--input", "good.tljob", "--output", "./good.tljob"}
                                               << "job: the output @/good.tljob would replace the job file";
        QTest::newRow("grid without powers") << QStringList{"testgrid", "--output", "out.gcode", "--speeds", "500"}
                                             << "testgrid: --powers is missing";
        QTest::newRow("grid without speeds") << grid << "testgrid: --speeds is missing";
        QTest::newRow("powers of two parts") << QStringList{"testgrid", "--powers", "10:100", "--speeds", "500"} + out
                                             << "testgrid: --powers: '10:100' is not A:B:N (from, to and how many)";
        QTest::newRow("powers not numbers") << QStringList{"testgrid", "--powers", "a:b:3", "--speeds", "500"} + out
                                            << "testgrid: --powers: 'a:b:3' is not A:B:N (from, to and how many)";
        QTest::newRow("fractional count") << QStringList{"testgrid", "--powers", "10:20:2.5", "--speeds", "500"} + out
                                          << "testgrid: --powers: '10:20:2.5' is not A:B:N (from, to and how many)";
        QTest::newRow("zero count") << grid + QStringList{"--speeds", "500:3000:0"}
                                    << "testgrid: --speeds: the count must be at least 1, not 0";
        QTest::newRow("power over 100") << QStringList{"testgrid", "--powers", "50:150:3", "--speeds", "500"} + out
                                        << "testgrid: powers must be from 0 to 100 %";
        QTest::newRow("zero speed") << grid + QStringList{"--speeds", "0:3000:3"}
                                    << "testgrid: speeds must be above 0 and at most 100000 mm/min";
        QTest::newRow("fractional passes") << grid + QStringList{"--speeds", "500", "--passes", "1:2.5:2"}
                                           << "testgrid: --passes: '1:2.5:2' is not whole numbers of passes";
        QTest::newRow("unknown operation") << grid + QStringList{"--speeds", "500", "--operation", "engrave"}
                                           << "testgrid: --operation: unknown operation 'engrave' (fill, image or line)";
        QTest::newRow("cell not a number") << grid + QStringList{"--speeds", "500", "--cell", "big"}
                                           << "testgrid: --cell: 'big' is not a number";
        QTest::newRow("grid off the bed") << grid + QStringList{"--speeds", "500", "--x", "160"}
            << "testgrid: the grid (19 x 5 mm at 160, 10) does not fit on the bed (170 x 200 mm)";
        QTest::newRow("too many rows") << grid + QStringList{"--speeds", "500:900:30", "--dialect", "marlin"}
            << "testgrid: the grid (19 x 208 mm at 10, 10) does not fit on the bed (170 x 200 mm)";
        QTest::newRow("grid job over the G-code") << grid + QStringList{"--speeds", "500", "--job", "out.gcode"}
                                                  << "testgrid: --job and --output both name @/out.gcode";
        QTest::newRow("grid job unwritable") << grid + QStringList{"--speeds", "500", "--job", "no/grid.tljob"}
                                             << "testgrid: cannot write @/no/grid.tljob";
        // clang-format on
    }

    void badInput()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, message);
        ScopedWorkDir dir;
        TestFiles::write(QStringLiteral("good.tljob"), twoLayerJob());
        TestFiles::write(QStringLiteral("notjson.tljob"), "G21\nG90\n");
        TestFiles::write(QStringLiteral("newer.tljob"), R"({"format":2,"pages":[]})");
        TestFiles::write(QStringLiteral("broken.tljob"), R"({"layers":[{}],"items":[{"width":5,)"
                                                         R"("source":{"kind":"picture","data":"aGVsbG8="}}]})");
        QByteArray outside = twoLayerJob();
        outside.replace(R"("x":20,"y":30)", R"("x":140,"y":30)");
        TestFiles::write(QStringLiteral("outside.tljob"), outside);
        QByteArray fine = R"({"machine":{"bed":[1000,1000]},"layers":[{"image":{"interval":0.001}}],)"
                          R"("items":[{"width":1000,"source":{"kind":"picture","data":"PIC"}}]})";
        fine.replace("PIC", pngBase64());
        TestFiles::write(QStringLiteral("fine.tljob"), fine);
        const QStringList before = files();
        const ExportRun run = runExport(args);
        QCOMPARE(run.status, 2);
        // "@" stands for the folder the test runs in.
        message.replace(QLatin1Char('@'), dir.path());
        QCOMPARE(QString::fromUtf8(run.err), "tarnwell-export: " + message + "\n");
        QVERIFY(run.out.isEmpty());
        QCOMPARE(files(), before);
    }

    // The file's dialect, or the one on the command line; the printed lines name each enabled layer.
    void dialects_data()
    {
        QTest::addColumn<QStringList>("extra");
        QTest::addColumn<QByteArray>("start");
        QTest::addColumn<QByteArray>("end");
        QTest::addColumn<bool>("laserMode");        // M4 written
        QTest::addColumn<QByteArray>("fullPower");  // how the cut layer's 100 % is written
        // clang-format off
        QTest::newRow("the file's grbl") << QStringList() << QByteArray("G21\nG90\nM4 S0\n") << QByteArray("M5\nG0 X0 Y0\n")
                                         << true << QByteArray(" S1000\n");
        QTest::newRow("marlin") << QStringList{"--dialect", "marlin"} << QByteArray("G21\nG90\n") << QByteArray("M5\nG0 X0 Y0\n")
                                << false << QByteArray("\nM3 S255\n");
        QTest::newRow("fan") << QStringList{"--dialect", "fan"} << QByteArray("G21\nG90\n") << QByteArray("M107\nG0 X0 Y0\n")
                             << false << QByteArray("\nM106 S255\n");
        QTest::newRow("grbl at $30=255") << QStringList{"--dialect", "grbl", "--max-power", "255"}
                                         << QByteArray("G21\nG90\nM4 S0\n") << QByteArray("M5\nG0 X0 Y0\n") << true
                                         << QByteArray(" S255\n");
        // clang-format on
    }

    void dialects()
    {
        QFETCH(QStringList, extra);
        QFETCH(QByteArray, start);
        QFETCH(QByteArray, end);
        QFETCH(bool, laserMode);
        QFETCH(QByteArray, fullPower);
        ScopedWorkDir dir;
        TestFiles::write(QStringLiteral("job.tljob"), twoLayerJob());
        const ExportRun run = runExport(QStringList{"job", "--input", "job.tljob", "--output", "job.gcode"} + extra);
        QCOMPARE(run.status, 0);
        QVERIFY(run.err.isEmpty());
        const QByteArray gcode = TestFiles::read(QStringLiteral("job.gcode"));
        QVERIFY2(gcode.startsWith(start), gcode.left(60).constData());
        QVERIFY(gcode.endsWith(end));
        QCOMPARE(gcode.contains("M4"), laserMode);
        QVERIFY(gcode.contains("\n; layer 1: Photo\n"));
        QVERIFY(gcode.contains("\n; layer 2: Cut\n"));
        const QByteArray cut = gcode.mid(gcode.indexOf("; layer 2: Cut"));
        QVERIFY2(cut.contains(fullPower), cut.left(200).constData());
        // Nothing above full power anywhere.
        double highest = 0;
        auto words = QRegularExpression(QStringLiteral(" S(\\d+(\\.\\d+)?)\n")).globalMatch(QString::fromLatin1(gcode));
        while (words.hasNext())
            highest = std::max(highest, words.next().captured(1).toDouble());
        QCOMPARE(QByteArray(" S") + QByteArray::number(highest) + "\n", fullPower.mid(fullPower.indexOf(" S")));
        const QStringList lines = QString::fromUtf8(run.out).split(QLatin1Char('\n'));
        QCOMPARE(lines.size(), 4);  // the time, two layers, and the closing line feed
        QVERIFY2(QRegularExpression(QStringLiteral("^Estimated time: \\S.*$")).match(lines[0]).hasMatch(),
                 qPrintable(lines[0]));
        QVERIFY2(QRegularExpression(QStringLiteral("^layer 1 Photo: 1 items, burn \\d+\\.\\d mm, \\S.*$"))
                     .match(lines[1])
                     .hasMatch(),
                 qPrintable(lines[1]));
        QVERIFY2(QRegularExpression(QStringLiteral("^layer 2 Cut: 1 items, burn \\d+\\.\\d mm, \\S.*$"))
                     .match(lines[2])
                     .hasMatch(),
                 qPrintable(lines[2]));
        QCOMPARE(lines[3], QString());
        QCOMPARE(files(), QStringList({"job.gcode", "job.tljob"}));
    }

    // A disabled layer is left out of the G-code and of the printed lines.
    void disabledLayer()
    {
        ScopedWorkDir dir;
        TestFiles::write(QStringLiteral("job.tljob"), twoLayerJob(false));
        const ExportRun run = runExport({"job", "--input", "job.tljob", "--output", "job.gcode"});
        QCOMPARE(run.status, 0);
        const QByteArray gcode = TestFiles::read(QStringLiteral("job.gcode"));
        QVERIFY(gcode.contains("; layer 1: Photo"));
        QVERIFY(!gcode.contains("; layer 2"));
        QCOMPARE(run.out.count('\n'), 2);
        QVERIFY(run.out.contains("\nlayer 1 Photo: 1 items, burn "));
    }

    // --job writes the grid as a job file that reads back as the same grid; the G-code holds its layers.
    void testGridWritesItsJob_data()
    {
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<int>("layers");
        // clang-format off
        QTest::newRow("fill, speeds") << QStringList{"--powers", "10:100:4", "--speeds", "500:3000:3"} << 1 + 12;
        QTest::newRow("image, passes") << QStringList{"--powers", "50", "--speeds", "1000", "--passes", "1:3:3",
                                                      "--operation", "image", "--cell", "4", "--gap", "1"} << 1 + 3;
        QTest::newRow("line, moved, marlin") << QStringList{"--powers", "20:80:2", "--speeds", "300:600:2", "--operation",
                                                            "line", "--x", "50", "--y", "60", "--dialect", "marlin",
                                                            "--max-power", "255"} << 1 + 4;
        // clang-format on
    }

    void testGridWritesItsJob()
    {
        QFETCH(QStringList, args);
        QFETCH(int, layers);
        ScopedWorkDir dir;
        const ExportRun run =
            runExport(QStringList{"testgrid", "--output", "grid.gcode", "--job", "grid.tljob"} + args);
        QCOMPARE(run.status, 0);
        QVERIFY(run.err.isEmpty());
        JobDocument doc;
        QString error;
        QVERIFY2(JobFile::load(QStringLiteral("grid.tljob"), &doc, &error), qPrintable(error));
        QCOMPARE(int(doc.layers.size()), layers);
        QCOMPARE(doc.layers[0].name, QStringLiteral("Labels"));
        const QByteArray gcode = TestFiles::read(QStringLiteral("grid.gcode"));
        for (int i = 0; i < layers; ++i)
            QVERIFY(
                gcode.contains("; layer " + QByteArray::number(i + 1) + ": " + doc.layers[size_t(i)].name.toUtf8()));
        QCOMPARE(run.out.count('\n'), 1 + layers);
        QVERIFY(run.out.startsWith("Estimated time: "));
        QVERIFY(run.out.contains("\nlayer 1 Labels: "));
        QCOMPARE(files(), QStringList({"grid.gcode", "grid.tljob"}));

        // Exported again from the job file, the same G-code.
        const ExportRun again = runExport({"job", "--input", "grid.tljob", "--output", "again.gcode"});
        QCOMPARE(again.status, 0);
        QCOMPARE(TestFiles::read(QStringLiteral("again.gcode")), gcode);
        QCOMPARE(again.out, run.out);
    }
};

TARNWELL_TEST_MAIN(TestExportJob)
#include "tst_exportjob.moc"
