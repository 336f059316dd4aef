// tarnwell-export run as a separate process: exit status, the one-line messages of every
// subcommand, no partial output, and output identical to what the generators write themselves.
#include "bitmap2gcode.h"
#include "estimatedtime.h"
#include "exportrunner.h"
#include "testsupport.h"

namespace {

// A small picture with black, white and gray pixels.
QImage samplePicture()
{
    QImage picture(6, 3, QImage::Format_RGB32);
    picture.fill(Qt::white);
    picture.setPixel(1, 0, qRgb(0, 0, 0));
    picture.setPixel(2, 0, qRgb(0, 0, 0));
    picture.setPixel(4, 1, qRgb(100, 100, 100));
    picture.setPixel(0, 2, qRgb(30, 30, 30));
    picture.setPixel(5, 2, qRgb(0, 0, 0));
    return picture;
}

const char *const SquareSvg =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20mm\" height=\"20mm\" viewBox=\"0 0 20 20\">"
    "<path d=\"M2 2 L18 2 L18 18 L2 18 Z\" fill=\"none\" stroke=\"black\"/></svg>\n";

// A PNG whose header gives colour type 1, which no decoder accepts.
const QByteArray
    BadHeaderPng("\x89\x50\x4e\x47\x0d\x0a\x1a\x0a\x00\x00\x00\x0d\x49\x48\x44\x52\x00\x00\x00\x20\x00\x00\x00\x20"
                 "\x08\x01\x00\x00\x00\xee\xad\x42\x4d\x00\x00\x00\x12\x49\x44\x41\x54\x78\x9c\x63\x60\x18\x05\xa3"
                 "\x60\x14\x8c\x02\xec\x00\x00\x04\x20\x00\x01\x86\xb3\x3d\x44\x00\x00\x00\x00\x49\x45\x4e\x44\xae"
                 "\x42\x60\x82",
                 75);

}  // namespace

class TestTarnwellExport : public QObject
{
    Q_OBJECT

private slots:
    void helpExitsZero_data()
    {
        // clang-format off
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("expected");  // start of standard output
        QTest::newRow("command") << QStringList{"--help"} << "Usage";
        for (const char *sub : {"raster", "vector", "trace", "qr", "preview", "send"})
            QTest::newRow(sub) << QStringList{sub, "--help"} << QStringLiteral("Usage: tarnwell-export %1").arg(sub);
        QTest::newRow("version") << QStringList{"--version"} << "tarnwell-export " TARNWELL_VERSION "\n";
        // clang-format on
    }

    void helpExitsZero()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, expected);
        const ExportRun run = runExport(args);
        QCOMPARE(run.status, 0);
        QVERIFY2(run.out.startsWith(expected.toUtf8()), run.out.constData());
    }

    void badInput_data()
    {
        // clang-format off
        QTest::addColumn<QStringList>("args");
        QTest::addColumn<QString>("named");   // what the message must mention
        const QStringList raster{"raster", "--input", "pic.png", "--output", "out.gcode"};
        const QStringList width10{"--output", "out.gcode", "--width", "10"};
        QTest::newRow("no subcommand") << QStringList{} << "subcommand";
        QTest::newRow("unknown subcommand") << QStringList{"engrave"} << "engrave";
        QTest::newRow("unknown option") << raster + QStringList{"--width", "10", "--colour", "red"} << "--colour";
        QTest::newRow("missing input") << QStringList{"raster", "--input", "nothere.png"} + width10 << "nothere.png";
        QTest::newRow("not a picture") << QStringList{"raster", "--input", "junk.png"} + width10 << "junk.png";
        QTest::newRow("width not a number") << raster + QStringList{"--width", "ten"} << "ten";
        QTest::newRow("width zero") << raster + QStringList{"--width", "0"} << "width";
        QTest::newRow("speed out of range") << raster + QStringList{"--width", "10", "--speed", "101"} << "speed";
        QTest::newRow("unknown style") << raster + QStringList{"--width", "10", "--style", "sepia"} << "sepia";
        QTest::newRow("output folder missing")
            << QStringList{"raster", "--input", "pic.png", "--output", "no/such/folder/out.gcode", "--width", "10"}
            << "out.gcode";
        QTest::newRow("svg does not parse") << QStringList{"vector", "--input", "junk.svg"} + width10
                                                   + QStringList{"--height", "10"} << "junk.svg";
        QTest::newRow("svg height missing") << QStringList{"vector", "--input", "square.svg"} + width10 << "height";
        QTest::newRow("trace of junk") << QStringList{"trace", "--input", "junk.png", "--output", "out.gcode"}
                                       << "junk.png";
        // The decoder's own complaint about the header must not reach standard error.
        QTest::newRow("raster, header invalid") << QStringList{"raster", "--input", "ihdr.png"} + width10 << "ihdr.png";
        QTest::newRow("trace, header invalid") << QStringList{"trace", "--input", "ihdr.png", "--output", "out.gcode"}
                                               << "ihdr.png";
        QTest::newRow("vector positions not numbers") << QStringList{"vector", "--input", "tiny.svg", "--output",
                                                                     "out.gcode", "--width", "20", "--height", "20"}
                                                      << "tiny.svg";
        QTest::newRow("raster extent not a number") << raster + QStringList{"--width", "1e308", "--x", "1e308"}
                                                    << "pic.png";
        const QStringList preview{"preview", "--input", "job.gcode", "--output", "out.png"};
        QTest::newRow("preview of a missing file")
            << QStringList{"preview", "--input", "missing.gcode", "--output", "out.png"}
            << "missing.gcode does not exist";
        QTest::newRow("preview of a folder") << QStringList{"preview", "--input", ".", "--output", "out.png"}
                                             << "cannot read";
        QTest::newRow("preview, no output") << QStringList{"preview", "--input", "job.gcode"} << "--output is missing";
        QTest::newRow("preview into a missing folder")
            << QStringList{"preview", "--input", "job.gcode", "--output", "no/such/out.png"} << "cannot write";
        QTest::newRow("preview, scale not a number") << preview + QStringList{"--px-per-mm", "ten"} << "not a number";
        QTest::newRow("preview, scale 0") << preview + QStringList{"--px-per-mm", "0"} << "more than 0";
        QTest::newRow("preview, unknown option") << preview + QStringList{"--dpi", "3"} << "unknown option";
        // clang-format on
    }

    void badInput()
    {
        QFETCH(QStringList, args);
        QFETCH(QString, named);
        ScopedWorkDir dir;
        QVERIFY(samplePicture().save("pic.png"));
        TestFiles::write("junk.png", "this is not a picture at all");
        TestFiles::write("junk.svg", "<svg><path d=");
        TestFiles::write("ihdr.png", BadHeaderPng);
        TestFiles::write("square.svg", SquareSvg);
        TestFiles::write("job.gcode", "G1 X1\n");
        // So narrow that scaling it to 20 mm overflows.
        TestFiles::write("tiny.svg", "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20mm\" height=\"20mm\" "
                                     "viewBox=\"0 0 20 20\"><path d=\"M0 0 L1e-40 1e-40\"/></svg>");
        const ExportRun run = runExport(args);
        QCOMPARE(run.status, 2);
        QVERIFY2(run.err.endsWith('\n') && run.err.count('\n') == 1, run.err.constData());
        QVERIFY2(run.err.contains(named.toUtf8()), run.err.constData());
        QVERIFY(run.out.isEmpty());
        QVERIFY(!QFile::exists("out.gcode") && !QFile::exists("out.png"));
        // Nothing of the generators' working files lands in the caller's folder.
        QVERIFY(!QFile::exists("local.gcode"));
        QVERIFY(!QFile::exists("black_white.svg"));
    }

    void rasterMatchesTheGenerator_data()
    {
        // clang-format off
        QTest::addColumn<QString>("style");
        QTest::addColumn<int>("speed");
        QTest::addColumn<int>("power");
        QTest::newRow("bw defaults") << "bw" << 33 << 91;
        QTest::newRow("gray") << "gray" << 50 << 100;
        QTest::newRow("gray-linear") << "gray-linear" << 7 << 3;
        // clang-format on
    }

    void rasterMatchesTheGenerator()
    {
        QFETCH(QString, style);
        QFETCH(int, speed);
        QFETCH(int, power);
        ScopedWorkDir dir;
        const QImage picture = samplePicture();
        QVERIFY(picture.save("pic.png"));
        const QImage loaded("pic.png");

        // What the main window would write for the same job.
        Bitmap2Gcode generator;
        generator.offset = QPointF(12.5, 40);
        generator.SetTravelSpeed(speed * 30 * 12);
        generator.SetFeedSpeed(speed * 30 * 60 / 100);
        generator.SetPower(float(power * 255 / 100));
        const double scale = 3.0 / loaded.width();
        if (style == "bw")
            generator.ExportBlackPix(loaded, "expected.gcode", scale);
        else if (style == "gray")
            generator.ExportGrayPixEX(loaded, "expected.gcode", scale);
        else
            generator.ExportGrayPix(loaded, "expected.gcode", scale);
        const QString time = EstimatedTimeText(generator.TakeEstimatedTime());

        QStringList args{"raster", "--input", "pic.png", "--output", "out.gcode", "--width", "3",
                         "--x",    "12.5",    "--y",     "40",       "--style",   style};
        if (speed != 33)
            args << "--speed" << QString::number(speed);
        if (power != 91)
            args << "--power" << QString::number(power);
        const ExportRun run = runExport(args);
        QCOMPARE(run.status, 0);
        QCOMPARE(run.err, QByteArray());
        QCOMPARE(QString::fromLatin1(run.out), QString("Estimated time: %1\n").arg(time));
        const QByteArray expected = TestFiles::read("expected.gcode");
        QVERIFY(!expected.isEmpty());
        QCOMPARE(TestFiles::read("out.gcode"), expected);
        QVERIFY(!QFile::exists("local.gcode"));
    }

    void vectorIsRepeatableWithSeed()
    {
        ScopedWorkDir dir;
        TestFiles::write("square.svg", SquareSvg);
        const QStringList args{"vector", "--input", "square.svg", "--output", "a.gcode", "--width", "20", "--height",
                               "20",     "--x",     "5",          "--y",      "5",       "--seed",  "7"};
        ExportRun first = runExport(args);
        QCOMPARE(first.status, 0);
        QVERIFY(first.out.startsWith("Estimated time: "));
        QStringList again = args;
        again[4] = "b.gcode";
        QCOMPARE(runExport(again).status, 0);
        const QByteArray a = TestFiles::read("a.gcode");
        QVERIFY(a.contains("G1"));
        QVERIFY(!a.contains("nan"));
        QCOMPARE(TestFiles::read("b.gcode"), a);
    }

    void qrWritesBitmap()
    {
        ScopedWorkDir dir;
        const ExportRun run = runExport({"qr", "--text", "TarnwellLaser", "--output", "tag.bmp"});
        QCOMPARE(run.status, 0);
        const QByteArray bmp = TestFiles::read("tag.bmp");
        QVERIFY(bmp.startsWith("BM"));
        const QImage image("tag.bmp");
        QVERIFY(!image.isNull());
        QCOMPARE(image.width() % 16, 0);
        QCOMPARE(image.width(), image.height());
    }
};

TARNWELL_TEST_MAIN(TestTarnwellExport)
#include "tst_tarnwellexport.moc"
