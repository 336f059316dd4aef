// The classic generators set up from the window's choices: the speeds, power, mode, placement,
// size and CNC depths that reach the raster and the vector G-code.
#include "bitmap2gcode.h"
#include "classicsetup.h"
#include "svg2gcodep.h"
#include "testsupport.h"

#include <QFile>
#include <QImage>

namespace {

QString readAll(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromLatin1(f.readAll()) : QString();
}

}  // namespace

class TestClassicSetup : public QObject
{
    Q_OBJECT
private slots:
    void setUp_data()
    {
        // clang-format off
        QTest::addColumn<int>("speed");
        QTest::addColumn<int>("power");
        QTest::addColumn<bool>("cnc");
        QTest::addColumn<QStringList>("rasterLines");
        QTest::addColumn<QStringList>("vectorLines");
        QTest::newRow("start sliders, laser") << 33 << 91 << false
            << QStringList{"G0 X10 Y180 Z0.000\nM106 S232 \nG1 F594 \n", "M107 \nG0 F11880 \n"}
            << QStringList{"M106 S232 \nG1 F594.0 \n", "M107\nG0 F11880.0 \n", "G0 X40.00 Y170.00 \n"};
        QTest::newRow("full sliders, router") << 100 << 100 << true
            << QStringList{"M106 S255 \nG1 F1800 \n", "M107 \nG0 F36000 \n"}
            << QStringList{"M106 S255\nG4 P0.5\nG1 F1800.0 \nG1 Z-1.5 \n", "M107\nG0 Z3.0 F36000.0\n"};
        QTest::newRow("odd percentages rounded down") << 7 << 3 << false
            << QStringList{"M106 S7 \nG1 F126 \n", "M107 \nG0 F2520 \n"}
            << QStringList{"M106 S7 \nG1 F126.0 \n", "M107\nG0 F2520.0 \n"};
        QTest::newRow("sliders at zero") << 0 << 0 << false
            << QStringList{"M106 S0 \nG1 F0 \n", "M107 \nG0 F0 \n"}
            << QStringList{"M106 S0 \nG1 F0.0 \n", "M107\nG0 F0.0 \n"};
        // clang-format on
    }
    void setUp()
    {
        QFETCH(int, speed);
        QFETCH(int, power);
        QFETCH(bool, cnc);
        QFETCH(QStringList, rasterLines);
        QFETCH(QStringList, vectorLines);
        ClassicSetup setup;
        setup.speedPercent = speed;
        setup.powerPercent = power;
        setup.cnc = cnc;
        setup.offset = QPointF(10, 20);
        setup.width = 40.7;
        setup.height = 30.2;
        setup.feedZ = -1.5f;
        setup.travelZ = 3;

        QImage picture(2, 1, QImage::Format_Grayscale8);
        picture.fill(0);
        Bitmap2Gcode raster;
        setup.apply(raster);
        raster.ExportBlackPix(picture, "raster.gcode", 1.0);
        const QString rasterText = readAll("raster.gcode");
        for (const QString &line : rasterLines)
            QVERIFY2(rasterText.contains(line), qPrintable(line + " not in:\n" + rasterText));

        QFile svg("in.svg");
        QVERIFY(svg.open(QIODevice::WriteOnly));
        svg.write("<svg xmlns='http://www.w3.org/2000/svg' width='20mm' height='10mm' viewBox='0 0 20 10'>"
                  "<path d='M0 0 L20 0 L20 10 Z'/><path d='M2 2 L4 4'/></svg>");
        svg.close();
        Svg2GcodeP vector;
        setup.apply(vector);
        vector.SvgToGcode("in.svg", "vector.gcode");
        const QString vectorText = readAll("vector.gcode");
        for (const QString &line : vectorLines)
            QVERIFY2(vectorText.contains(line), qPrintable(line + " not in:\n" + vectorText));
        // Whole millimetres: the frame runs 40 x 30 from the offset in Config.ini (none: 0, 0).
        QVERIFY2(vectorText.contains("G0 X40.00 Y200.00 \nG0 X40.00 Y170.00 \nG0 X0.00 Y170.00 \n"),
                 qPrintable(vectorText));
    }
};

TARNWELL_TEST_MAIN(TestClassicSetup)
#include "tst_classicsetup.moc"
