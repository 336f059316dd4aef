// Tests of the threshold editor: the pixel operations, the remembered threshold,
// Finish and its file, the two modes, and pictures that are odd or do not load.
#include "testsupport.h"

#include "appsettings.h"
#include "imgbinaryedit.h"
#include "pixelops.h"

#include <QFrame>
#include <QLabel>
#include <QPushButton>
#include <QSettings>
#include <QSignalSpy>
#include <QSlider>
#include <QRandomGenerator>

#include <algorithm>
#include <vector>

namespace {

constexpr quint32 Black = 0xFF000000u, White = 0xFFFFFFFFu, ClearWhite = 0x00FFFFFFu;

// A w x h picture of one colour, with the given pixels in another.
QImage marked(int w, int h, QRgb background, const QList<QPoint> &points = {}, QRgb colour = 0)
{
    QImage image(w, h, QImage::Format_ARGB32);
    image.fill(background);
    for (const QPoint &p : points)
        image.setPixel(p, colour);
    return image;
}

// One row of w pixels; pixel x has gray level x * step.
QImage ramp(int w, int step)
{
    QImage image(w, 1, QImage::Format_ARGB32);
    for (int x = 0; x < w; ++x)
        image.setPixel(x, 0, qRgb(x * step, x * step, x * step));
    return image;
}

QSlider *slider(ImgBinaryEdit &editor) { return editor.findChild<QSlider *>("horizontalSlider"); }

int countPixels(const QImage &image, quint32 value)
{
    const QImage in = image.convertToFormat(QImage::Format_ARGB32);
    const quint32 *p = reinterpret_cast<const quint32 *>(in.constBits());
    return int(std::count(p, p + in.width() * in.height(), value));
}

// The adaptive threshold read plainly: a full integral image of gray values and the
// window mean compared in whole numbers.
QImage adaptiveByIntegral(const QImage &in)
{
    const int w = in.width(), h = in.height(), half = int(w * 0.125) / 2;
    std::vector<qint64> integral(size_t(w) * h);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            integral[size_t(y) * w + x] = PixelOps::Gray(in.pixel(x, y)) + (x ? integral[size_t(y) * w + x - 1] : 0)
                                          + (y ? integral[size_t(y - 1) * w + x] : 0)
                                          - (x && y ? integral[size_t(y - 1) * w + x - 1] : 0);
    auto at = [&](int x, int y) { return integral[size_t(y) * w + x]; };
    QImage out(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
            const int x1 = std::max(x - half, 0), x2 = std::min(x + half, w - 1);
            const int y1 = std::max(y - half, 0), y2 = std::min(y + half, h - 1);
            const qint64 sum = at(x2, y2) - at(x2, y1) - at(x1, y2) + at(x1, y1);
            const bool dark = PixelOps::Gray(in.pixel(x, y)) * qint64(x2 - x1) * (y2 - y1) < qint64(double(sum) * 0.85);
            out.setPixel(x, y, dark ? Black : White);
        }
    }
    return out;
}

}  // namespace

class TestImgBinaryEdit : public QObject
{
    Q_OBJECT
private slots:
    void pixels_data()
    {
        // clang-format off
        QTest::addColumn<QString>("op");
        QTest::addColumn<QImage>("picture");
        QTest::addColumn<int>("threshold");
        QTest::addColumn<QPoint>("at");
        QTest::addColumn<uint>("expected");
        auto row = [](const char *name, const char *op, const QImage &picture, int threshold, QPoint at,
                      uint expected) {
            QTest::newRow(name) << QString(op) << picture << threshold << at << expected;
        };
        auto pixel = [](QRgb colour) { return marked(1, 1, colour); };
        row("black stays black at 0", "global", pixel(Black), 0, {}, Black);
        row("gray 1 is white at 0", "global", pixel(0xFF010101u), 0, {}, ClearWhite);
        row("white is black at 255", "global", pixel(White), 255, {}, Black);
        row("gray equal to threshold is black", "global", pixel(0xFF808080u), 128, {}, Black);
        row("gray one above threshold is white", "global", pixel(0xFF808080u), 127, {}, ClearWhite);
        row("green 255 weighs gray 127", "global", pixel(0xFF00FF00u), 127, {}, Black);
        row("transparent black is paper at 255", "global", pixel(0x00000000u), 255, {}, ClearWhite);
        row("transparent, sum 32, goes by gray", "global", pixel(0x00010101u), 5, {}, Black);
        row("alpha 1 black stays black", "global", pixel(0x01000000u), 255, {}, Black);
        row("inverted: below threshold is white", "inverted", pixel(0xFF7F7F7Fu), 128, {}, White);
        row("inverted: equal to threshold is black", "inverted", pixel(0xFF808080u), 128, {}, Black);
        row("inverted: transparent black is dark", "inverted", pixel(0x00000000u), 10, {}, White);

        // Outline of the inverted picture at 128 around (4, 4): the bright pixels turn black.
        const QPoint c(4, 4);
        auto bright = [](const QList<QPoint> &points) { return marked(9, 9, Black, points, White); };
        row("one direct neighbour (3.03)", "outline", bright({{5, 4}}), 128, c, Black);
        row("one diagonal neighbour (4.29)", "outline", bright({{3, 5}}), 128, c, Black);
        row("two direct neighbours (6.06)", "outline", bright({{5, 4}, {3, 4}}), 128, c, White);
        row("bright source pixel stays black", "outline", bright({{5, 4}, {3, 4}}), 128, {5, 4}, Black);
        row("one at distance two", "outline", bright({{4, 2}}), 128, c, White);
        row("one at (3, -1)", "outline", bright({{7, 3}}), 128, c, White);
        row("(3, 2) is outside the window", "outline", bright({{7, 6}}), 128, c, Black);
        row("corner pixel, two neighbours", "outline", bright({{1, 0}, {0, 1}}), 128, {0, 0}, White);
        row("corner pixel, one neighbour", "outline", bright({{7, 8}}), 128, {8, 8}, Black);

        auto dot = [](int size, QPoint at) { return marked(size, size, White, {at}, Black); };
        row("adaptive: dark dot on white", "adaptive", dot(32, {16, 16}), 0, {16, 16}, Black);
        row("adaptive: dark dot in the corner", "adaptive", dot(32, {0, 0}), 0, {0, 0}, Black);
        row("adaptive: narrower than 8 pixels has no window", "adaptive", dot(7, {3, 3}), 0, {3, 3}, White);
        // clang-format on
    }

    void pixels()
    {
        QFETCH(QString, op);
        QFETCH(QImage, picture);
        QFETCH(int, threshold);
        QFETCH(QPoint, at);
        QFETCH(uint, expected);

        const QImage out = op == "global"     ? PixelOps::GlobalThreshold(picture, threshold)
                           : op == "inverted" ? PixelOps::InvertedThreshold(picture, threshold)
                           : op == "outline"  ? PixelOps::Outline(PixelOps::InvertedThreshold(picture, threshold))
                                              : PixelOps::AdaptiveThreshold(picture);
        QCOMPARE(out.size(), picture.size());
        QCOMPARE(out.pixel(at), expected);
        if (op == "adaptive")  // every other pixel is white, and unlike the global threshold, opaque
            QCOMPARE(countPixels(out, White), out.width() * out.height() - (expected == Black ? 1 : 0));
    }

    // Noise with blobs, so that pixels sit on both sides of and right at their window's mean.
    void adaptiveAsIntegral_data()
    {
        // clang-format off
        QTest::addColumn<QSize>("size");
        QTest::newRow("square") << QSize(64, 64);
        QTest::newRow("wide, window taller than the picture") << QSize(300, 9);
        QTest::newRow("tall") << QSize(40, 257);
        QTest::newRow("odd window") << QSize(88, 51);
        QTest::newRow("one row") << QSize(97, 1);
        QTest::newRow("large enough for two bands") << QSize(1030, 1021);
        QTest::newRow("wide enough for 64-bit sums") << QSize(12000, 3);
        // clang-format on
    }
    void adaptiveAsIntegral()
    {
        QFETCH(QSize, size);
        QImage picture(size, QImage::Format_ARGB32);
        QRandomGenerator random(size.width() * 1000 + size.height());
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x) {
                const int level = ((x / 7 + y / 5) % 3) * 60 + random.bounded(4) * 20;
                picture.setPixel(x, y, qRgba(level, level + random.bounded(2), level, random.bounded(256)));
            }
        QCOMPARE(PixelOps::AdaptiveThreshold(picture), adaptiveByIntegral(picture));
    }

    void finish_data()
    {
        // clang-format off
        QTest::addColumn<QStringList>("actions");
        QTest::addColumn<int>("left");      // gray written at x = 10
        QTest::addColumn<int>("right");     // gray written at x = 54

        // The picture is a ramp (gray 4x); the threshold stored in Slice.ini is 128.
        QTest::newRow("global, stored threshold") << QStringList() << 0 << 255;
        QTest::newRow("slider stores its threshold") << QStringList{"slider"} << 255 << 255;
        QTest::newRow("adaptive then finish keeps the global result")
            << QStringList{"on_btnAdaptive_clicked"} << 0 << 255;
        QTest::newRow("inverted") << QStringList{"on_btnVacf_clicked"} << 255 << 0;
        QTest::newRow("outline") << QStringList{"on_btnBorder_clicked"} << 0 << 0;
        QTest::newRow("grayscale mode writes gray levels") << QStringList{"gray"} << 40 << 216;
        QTest::newRow("back to black and white") << QStringList{"gray", "bw"} << 0 << 255;
        // clang-format on
    }

    void finish()
    {
        QFETCH(QStringList, actions);
        QFETCH(int, left);
        QFETCH(int, right);
        const bool grayFile = actions.endsWith("gray");
        ScopedWorkDir dir;
        QSettings("Slice.ini", QSettings::IniFormat).setValue("Slice/thread_hold", 128);

        // Under the program's own style sheet, as the user sees it.
        QFile style(":/qdarkstyle/test.qss");
        QVERIFY(style.open(QIODevice::ReadOnly));
        qApp->setStyleSheet(QString::fromUtf8(style.readAll()));
        ImgBinaryEdit editor;
        QSignalSpy spy(&editor, SIGNAL(SigBlackWhite()));
        editor.show();
        QVERIFY(QTest::qWaitForWindowExposed(&editor));
        // The previews take the room; the bar above them keeps to its own height.
        QVERIFY(editor.findChild<QFrame *>("frameTop")->height() <= 70);
        QVERIFY(editor.findChild<QLabel *>("labelSrc")->height() > editor.height() * 3 / 4);
        editor.SetImage(ramp(64, 4).scaled(64, 64));
        for (const QString &action : actions) {
            if (action == "gray")
                editor.SetGrayscaleMode();
            else if (action == "bw")
                editor.SetBlackWhiteMode();
            else if (action == "slider")
                slider(editor)->setValue(30);
            else
                QVERIFY(QMetaObject::invokeMethod(&editor, qPrintable(action)));
        }
        QCOMPARE(slider(editor)->isHidden(), grayFile);
        QCOMPARE(QSettings("Slice.ini", QSettings::IniFormat).value("Slice/thread_hold").toInt(),
                 slider(editor)->value());
        editor.findChild<QPushButton *>("btnFinish")->click();
        QCOMPARE(spy.count(), 1);
        QVERIFY(!editor.isVisible());
        const QImage written("black_white.jpg", "JPEG");
        QCOMPARE(written.size(), QSize(64, 64));
        QCOMPARE(written.format() == QImage::Format_Grayscale8, grayFile);
        QVERIFY(qAbs(qGray(written.pixel(10, 32)) - left) <= 6);
        QVERIFY(qAbs(qGray(written.pixel(54, 32)) - right) <= 6);
    }

    void badInput_data()
    {
        // clang-format off
        QTest::addColumn<QImage>("picture");    // saved as the file to open; null: no file
        QTest::addColumn<QSize>("resultSize");  // 0 x 0: no result
        QTest::addColumn<int>("blackPixels");

        // Transparent black but for two black pixels.
        QImage palette(4, 2, QImage::Format_Indexed8);
        palette.setColorTable({qRgba(0, 0, 0, 0), qRgb(0, 0, 0)});
        palette.fill(0);
        palette.setPixel(0, 1, 1);
        palette.setPixel(1, 1, 1);
        // Beyond 64 million pixels, which phone photos pass.
        QImage large(8200, 8000, QImage::Format_Mono);
        large.fill(1);

        QTest::newRow("missing file") << QImage() << QSize(0, 0) << 0;
        QTest::newRow("1 x 1") << marked(1, 1, Black) << QSize(1, 1) << 1;
        QTest::newRow("all black") << marked(50, 40, Black) << QSize(50, 40) << 2000;
        QTest::newRow("all white") << marked(50, 40, White) << QSize(50, 40) << 0;
        QTest::newRow("palette with transparency") << palette << QSize(4, 2) << 2;
        QTest::newRow("65.6 MP taken") << large << QSize(8200, 8000) << 0;
        // Terabytes at 4 bytes a pixel: refused before any decoding.
        QTest::newRow("beyond memory") << QImage() << QSize(0, 0) << 0;
        // clang-format on
    }

    void badInput()
    {
        QFETCH(QImage, picture);
        QFETCH(QSize, resultSize);
        QFETCH(int, blackPixels);
        ScopedWorkDir dir;
        AppSettings::setThreshold(128);
        const QString path = dir.file("picture.png");
        if (QTest::currentDataTag() == QLatin1String("beyond memory")) {
            // A PNG header for 500000 x 500000 gray pixels, and a first scrap of data.
            QFile header(path);
            QVERIFY(header.open(QIODevice::WriteOnly));
            header.write(QByteArray::fromHex("89504e470d0a1a0a0000000d494844520007a1200007a1200800000000f96378ec"
                                             "0000000b49444154789c63604005000010000139bd8f65"
                                             "0000000049454e44ae426082"));
        } else {
            QVERIFY(picture.isNull() || picture.save(path));
        }
        QVERIFY(marked(3, 3, White).save("black_white.jpg", "JPEG"));  // an earlier output

        ImgBinaryEdit editor;
        editor.show();
        editor.SetImageFile(path);
        QCOMPARE(editor.Result().size(), resultSize);
        QCOMPARE(countPixels(editor.Result(), Black), blackPixels);
        // Failures are told in the result pane, not in a blocking message box.
        QLabel *dest = editor.findChild<QLabel *>("labelDest");
        QCOMPARE(dest->text().isEmpty(), !resultSize.isEmpty());
        if (QTest::currentDataTag() == QLatin1String("beyond memory"))
            QCOMPARE(dest->text(), QString("图片太大，无法处理"));
        // Finish replaces the earlier file; a refused picture leaves none.
        editor.on_btnFinish_clicked();
        QCOMPARE(QImage("black_white.jpg").size(), resultSize);

        // The dialog stays usable: the next picture is handled normally.
        editor.SetImage(ramp(16, 16));
        QCOMPARE(countPixels(editor.Result(), Black), 9);
        QVERIFY(dest->text().isEmpty());
        editor.on_btnFinish_clicked();
        QCOMPARE(QImage("black_white.jpg").size(), QSize(16, 1));
    }
};

TARNWELL_TEST_MAIN(TestImgBinaryEdit)
#include "tst_imgbinaryedit.moc"
