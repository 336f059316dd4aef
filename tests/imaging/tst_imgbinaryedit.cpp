// Tests of the threshold editor: the four pixel operations, the remembered threshold,
// Finish and its file, the two modes, and pictures that are odd or do not load.
#include "testsupport.h"

#include "appsettings.h"
#include "imgbinaryedit.h"

#include <QImageReader>
#include <QLabel>
#include <QPainter>
#include <QSettings>
#include <QSignalSpy>
#include <QSlider>

using PointList = QList<QPoint>;

namespace {

QImage filled(int w, int h, QRgb colour)
{
    QImage image(w, h, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

// Pixel x has gray level x * step (the gray formula gives back the channel value).
QImage gradient(int w, int h, int step)
{
    QImage image(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y, qRgb(x * step, x * step, x * step));
    return image;
}

QSlider *slider(ImgBinaryEdit &editor)
{
    return editor.findChild<QSlider *>(QStringLiteral("horizontalSlider"));
}

QLabel *label(ImgBinaryEdit &editor, const char *name)
{
    return editor.findChild<QLabel *>(QString::fromLatin1(name));
}

int countPixels(const QImage &image, quint32 value)
{
    int n = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            n += image.pixel(x, y) == value ? 1 : 0;
    return n;
}

void writeFile(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class TestImgBinaryEdit : public QObject
{
    Q_OBJECT
private slots:
    void globalThreshold_data();
    void globalThreshold();
    void thresholdRemembered();
    void finish_data();
    void finish();
    void adaptive_data();
    void adaptive();
    void invertedThreshold_data();
    void invertedThreshold();
    void outline_data();
    void outline();
    void badInput_data();
    void badInput();
};

void TestImgBinaryEdit::globalThreshold_data()
{
    QTest::addColumn<uint>("pixel");
    QTest::addColumn<int>("threshold");
    QTest::addColumn<uint>("expected");

    QTest::newRow("black stays black at 0") << 0xFF000000u << 0 << 0xFF000000u;
    QTest::newRow("gray 1 is white at 0") << 0xFF010101u << 0 << 0x00FFFFFFu;
    QTest::newRow("white is black at 255") << 0xFFFFFFFFu << 255 << 0xFF000000u;
    QTest::newRow("gray equal to threshold is black") << 0xFF808080u << 128 << 0xFF000000u;
    QTest::newRow("gray one above threshold is white") << 0xFF808080u << 127 << 0x00FFFFFFu;
    // Weighted gray: green counts 16/32, red 11/32.
    QTest::newRow("green 255 is gray 127, black") << 0xFF00FF00u << 127 << 0xFF000000u;
    QTest::newRow("green 255 is gray 127, white") << 0xFF00FF00u << 126 << 0x00FFFFFFu;
    QTest::newRow("red 255 is gray 87, black") << 0xFFFF0000u << 87 << 0xFF000000u;
    QTest::newRow("red 255 is gray 87, white") << 0xFFFF0000u << 86 << 0x00FFFFFFu;
    QTest::newRow("transparent black at 255") << 0x00000000u << 255 << 0x00FFFFFFu;
    QTest::newRow("transparent black at 0") << 0x00000000u << 0 << 0x00FFFFFFu;
    QTest::newRow("transparent, sum 16") << 0x00000100u << 200 << 0x00FFFFFFu;
    QTest::newRow("transparent, sum 32 is judged by gray") << 0x00010101u << 5 << 0xFF000000u;
    QTest::newRow("alpha 1 black stays black") << 0x01000000u << 255 << 0xFF000000u;
    QTest::newRow("transparent white at 255") << 0x00FFFFFFu << 255 << 0xFF000000u;
}

void TestImgBinaryEdit::globalThreshold()
{
    QFETCH(uint, pixel);
    QFETCH(int, threshold);
    QFETCH(uint, expected);
    ScopedWorkDir dir;

    ImgBinaryEdit editor;
    editor.SetImage(filled(3, 2, pixel));
    slider(editor)->setValue(threshold);
    QCOMPARE(AppSettings::threshold(), threshold);

    const QImage result = editor.Result();
    QCOMPARE(result.size(), QSize(3, 2));
    QCOMPARE(countPixels(result, expected), 6);
    QCOMPARE(label(editor, "label")->text(), QString::number(threshold));
}

void TestImgBinaryEdit::thresholdRemembered()
{
    ScopedWorkDir dir;
    const QImage ramp = gradient(256, 1, 1);

    {
        // Nothing stored yet: threshold 0, only gray 0 is black.
        ImgBinaryEdit editor;
        editor.SetImage(ramp);
        QCOMPARE(slider(editor)->value(), 0);
        QCOMPARE(editor.Result().pixel(0, 0), 0xFF000000u);
        QCOMPARE(editor.Result().pixel(1, 0), 0x00FFFFFFu);

        slider(editor)->setValue(77);
        QSettings slice(QStringLiteral("Slice.ini"), QSettings::IniFormat);
        QCOMPARE(slice.value(QStringLiteral("Slice/thread_hold")).toInt(), 77);
    }

    // The next picture starts from the stored threshold, on the slider and in the result.
    ImgBinaryEdit editor;
    editor.SetImage(ramp);
    QCOMPARE(slider(editor)->value(), 77);
    QCOMPARE(label(editor, "label")->text(), QStringLiteral("77"));
    QCOMPARE(editor.Result().pixel(77, 0), 0xFF000000u);
    QCOMPARE(editor.Result().pixel(78, 0), 0x00FFFFFFu);
    QCOMPARE(countPixels(editor.Result(), 0xFF000000u), 78);

    // Dragging the slider runs the threshold too.
    slider(editor)->setSliderDown(true);
    slider(editor)->setSliderPosition(200);
    slider(editor)->setSliderDown(false);
    QCOMPARE(countPixels(editor.Result(), 0xFF000000u), 201);
    QCOMPARE(AppSettings::threshold(), 200);
}

void TestImgBinaryEdit::finish_data()
{
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<int>("left");      // expected gray at x = 10; -1: no file
    QTest::addColumn<int>("right");     // expected gray at x = 54
    QTest::addColumn<bool>("grayFile");

    // The picture is a ramp (gray 4x); the stored threshold is 128.
    QTest::newRow("global") << QStringList() << 0 << 255 << false;
    QTest::newRow("adaptive then finish keeps the global result")
            << QStringList{"adaptive"} << 0 << 255 << false;
    QTest::newRow("inverted") << QStringList{"inverted"} << 255 << 0 << false;
    QTest::newRow("adaptive after inverted keeps the inverted result")
            << QStringList{"inverted", "adaptive"} << 255 << 0 << false;
    QTest::newRow("slider after inverted thresholds again")
            << QStringList{"inverted", "slider:20"} << 255 << 255 << false;
    QTest::newRow("grayscale mode writes gray levels") << QStringList{"gray"} << 40 << 216 << true;
    QTest::newRow("back to black and white") << QStringList{"gray", "bw"} << 0 << 255 << false;
    QTest::newRow("unreadable picture writes nothing") << QStringList{"unreadable"} << -1 << -1 << false;
}

void TestImgBinaryEdit::finish()
{
    QFETCH(QStringList, actions);
    QFETCH(int, left);
    QFETCH(int, right);
    QFETCH(bool, grayFile);
    ScopedWorkDir dir;
    AppSettings::setThreshold(128);
    writeFile(QStringLiteral("black_white.jpg"), "stale");

    ImgBinaryEdit editor;
    QSignalSpy spy(&editor, SIGNAL(SigBlackWhite()));
    editor.show();
    editor.SetImage(gradient(64, 64, 4));
    for (const QString &action : actions) {
        if (action == QLatin1String("adaptive"))
            editor.on_btnAdaptive_clicked();
        else if (action == QLatin1String("inverted"))
            editor.on_btnVacf_clicked();
        else if (action == QLatin1String("gray"))
            editor.SetGrayscaleMode();
        else if (action == QLatin1String("bw"))
            editor.SetBlackWhiteMode();
        else if (action == QLatin1String("unreadable"))
            editor.SetImageFile(dir.file(QStringLiteral("missing.png")));
        else if (action.startsWith(QLatin1String("slider:")))
            slider(editor)->setValue(action.mid(7).toInt());
    }
    QCOMPARE(slider(editor)->isHidden(), grayFile);

    editor.on_btnFinish_clicked();
    QCOMPARE(spy.count(), 1);
    QVERIFY(!editor.isVisible());

    if (left < 0) {
        QVERIFY(!QFile::exists(QStringLiteral("black_white.jpg")));
        return;
    }
    QImageReader reader(QStringLiteral("black_white.jpg"));
    QCOMPARE(reader.format(), QByteArray("jpeg"));
    const QImage written = reader.read();
    QCOMPARE(written.size(), QSize(64, 64));
    QCOMPARE(written.format() == QImage::Format_Grayscale8, grayFile);
    for (int y : {5, 32, 60}) {
        QVERIFY2(qAbs(qGray(written.pixel(10, y)) - left) <= 6, qPrintable(QString::number(qGray(written.pixel(10, y)))));
        QVERIFY2(qAbs(qGray(written.pixel(54, y)) - right) <= 6, qPrintable(QString::number(qGray(written.pixel(54, y)))));
    }
}

void TestImgBinaryEdit::adaptive_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<PointList>("black");

    QImage dot = filled(32, 32, 0xFFFFFFFF);
    dot.setPixel(16, 16, 0xFF000000);
    QImage corner = filled(32, 32, 0xFFFFFFFF);
    corner.setPixel(0, 0, 0xFF000000);
    QImage narrow = filled(7, 7, 0xFFFFFFFF);
    narrow.setPixel(3, 3, 0xFF000000);

    QTest::newRow("uniform gray is white") << filled(32, 32, qRgb(100, 100, 100)) << PointList();
    QTest::newRow("dark dot on white") << dot << PointList{QPoint(16, 16)};
    QTest::newRow("dark dot in the corner") << corner << PointList{QPoint(0, 0)};
    QTest::newRow("narrower than 8 pixels has no window") << narrow << PointList();
    QTest::newRow("1 x 1") << filled(1, 1, 0xFF000000) << PointList();
}

void TestImgBinaryEdit::adaptive()
{
    QFETCH(QImage, picture);
    QFETCH(PointList, black);

    const QImage out = ImgBinaryEdit::AdaptiveThreshold(picture);
    QCOMPARE(out.size(), picture.size());
    for (const QPoint &p : black)
        QCOMPARE(out.pixel(p), 0xFF000000u);
    QCOMPARE(countPixels(out, 0xFF000000u), black.size());
    // Unlike the global threshold, the adaptive white is opaque.
    QCOMPARE(countPixels(out, 0xFFFFFFFFu), picture.width() * picture.height() - black.size());
}

void TestImgBinaryEdit::invertedThreshold_data()
{
    QTest::addColumn<uint>("pixel");
    QTest::addColumn<int>("threshold");
    QTest::addColumn<uint>("expected");

    QTest::newRow("gray below threshold is white") << 0xFF7F7F7Fu << 128 << 0xFFFFFFFFu;
    QTest::newRow("gray equal to threshold is black") << 0xFF808080u << 128 << 0xFF000000u;
    QTest::newRow("threshold 0 makes everything black") << 0xFF000000u << 0 << 0xFF000000u;
    QTest::newRow("transparent black counts as dark") << 0x00000000u << 10 << 0xFFFFFFFFu;
}

void TestImgBinaryEdit::invertedThreshold()
{
    QFETCH(uint, pixel);
    QFETCH(int, threshold);
    QFETCH(uint, expected);
    ScopedWorkDir dir;

    ImgBinaryEdit editor;
    editor.SetImage(filled(2, 2, pixel));
    slider(editor)->setValue(threshold);
    AppSettings::setThreshold(33);
    editor.on_btnVacf_clicked();
    QCOMPARE(countPixels(editor.Result(), expected), 4);
    // The inverted threshold leaves the stored value alone.
    QCOMPARE(AppSettings::threshold(), 33);
}

void TestImgBinaryEdit::outline_data()
{
    QTest::addColumn<QPoint>("centre");
    QTest::addColumn<PointList>("bright");  // offsets from the centre, bright in the source
    QTest::addColumn<uint>("expected");     // outline at the centre

    const QPoint mid(4, 4);
    QTest::newRow("no black neighbour") << mid << PointList() << 0xFF000000u;
    QTest::newRow("one direct neighbour (3.03)") << mid << PointList{{1, 0}} << 0xFF000000u;
    QTest::newRow("one diagonal neighbour (4.29)") << mid << PointList{{-1, 1}} << 0xFF000000u;
    QTest::newRow("two direct neighbours (6.06)") << mid << PointList{{1, 0}, {-1, 0}} << 0xFFFFFFFFu;
    QTest::newRow("direct and diagonal (7.32)") << mid << PointList{{0, 1}, {-1, -1}} << 0xFFFFFFFFu;
    QTest::newRow("one at distance two") << mid << PointList{{0, -2}} << 0xFFFFFFFFu;
    QTest::newRow("one at (-2, 1)") << mid << PointList{{-2, 1}} << 0xFFFFFFFFu;
    QTest::newRow("one at (3, -1)") << mid << PointList{{3, -1}} << 0xFFFFFFFFu;
    QTest::newRow("(3, 2) is outside the window") << mid << PointList{{3, 2}} << 0xFF000000u;
    QTest::newRow("(-3, -3) is outside the window") << mid << PointList{{-3, -3}} << 0xFF000000u;
    QTest::newRow("corner pixel, two neighbours") << QPoint(0, 0) << PointList{{1, 0}, {0, 1}} << 0xFFFFFFFFu;
    QTest::newRow("corner pixel, one neighbour") << QPoint(8, 8) << PointList{{-1, 0}} << 0xFF000000u;
}

void TestImgBinaryEdit::outline()
{
    QFETCH(QPoint, centre);
    QFETCH(PointList, bright);
    QFETCH(uint, expected);
    ScopedWorkDir dir;

    // Dark pixels turn white in the inverted picture, bright ones black.
    QImage picture = filled(9, 9, 0xFF000000);
    for (const QPoint &offset : bright)
        picture.setPixel(centre + offset, 0xFFFFFFFF);

    ImgBinaryEdit editor;
    editor.SetImage(picture);
    slider(editor)->setValue(128);
    editor.on_btnBorder_clicked();
    const QImage out = editor.Result();
    QCOMPARE(out.size(), QSize(9, 9));
    QCOMPARE(out.pixel(centre), expected);
    // Black input pixels stay black.
    for (const QPoint &offset : bright)
        QCOMPARE(out.pixel(centre + offset), 0xFF000000u);
}

void TestImgBinaryEdit::badInput_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QSize>("resultSize");   // empty: no result
    QTest::addColumn<int>("blackPixels");
    QTest::addColumn<bool>("message");

    QTest::newRow("missing file") << "missing" << QSize(0, 0) << 0 << true;
    QTest::newRow("not a picture") << "text" << QSize(0, 0) << 0 << true;
    QTest::newRow("1 x 1") << "one" << QSize(1, 1) << 1 << false;
    QTest::newRow("all black") << "black" << QSize(50, 40) << 2000 << false;
    QTest::newRow("all white") << "white" << QSize(50, 40) << 0 << false;
    QTest::newRow("palette with transparency") << "palette" << QSize(4, 2) << 2 << false;
    QTest::newRow("20000 x 20000") << "huge" << QSize(0, 0) << 0 << true;
}

void TestImgBinaryEdit::badInput()
{
    QFETCH(QString, kind);
    QFETCH(QSize, resultSize);
    QFETCH(int, blackPixels);
    QFETCH(bool, message);
    ScopedWorkDir dir;
    AppSettings::setThreshold(128);

    const QString path = dir.file(QStringLiteral("picture.png"));
    if (kind == QLatin1String("text")) {
        writeFile(path, "this is not a picture");
    } else if (kind == QLatin1String("one")) {
        QVERIFY(filled(1, 1, 0xFF000000).save(path));
    } else if (kind == QLatin1String("black")) {
        QVERIFY(filled(50, 40, 0xFF000000).save(path));
    } else if (kind == QLatin1String("white")) {
        QVERIFY(filled(50, 40, 0xFFFFFFFF).save(path));
    } else if (kind == QLatin1String("palette")) {
        // Row 0: transparent black, row 1: opaque black then white.
        QImage palette(4, 2, QImage::Format_Indexed8);
        palette.setColorTable({qRgba(0, 0, 0, 0), qRgb(0, 0, 0), qRgb(255, 255, 255)});
        const uchar rows[2][4] = {{0, 0, 0, 0}, {1, 1, 2, 2}};
        for (int y = 0; y < 2; ++y)
            memcpy(palette.scanLine(y), rows[y], 4);
        QVERIFY(palette.save(path));
    } else if (kind == QLatin1String("huge")) {
        QImage huge(20000, 20000, QImage::Format_Mono);
        huge.fill(0);
        QVERIFY(huge.save(path));
    }

    ImgBinaryEdit editor;
    editor.show();
    editor.SetImageFile(path);
    QCOMPARE(editor.Result().size(), resultSize);
    if (!resultSize.isEmpty())
        QCOMPARE(countPixels(editor.Result(), 0xFF000000u), blackPixels);
    QCOMPARE(!label(editor, "labelDest")->text().isEmpty(), message);

    // The dialog stays usable: the next picture is handled normally.
    editor.SetImage(gradient(16, 1, 16));
    QCOMPARE(countPixels(editor.Result(), 0xFF000000u), 9);
    QVERIFY(label(editor, "labelDest")->text().isEmpty());
    editor.on_btnFinish_clicked();
    QVERIFY(!QImage(QStringLiteral("black_white.jpg")).isNull());
}

TARNWELL_TEST_MAIN(TestImgBinaryEdit)
#include "tst_imgbinaryedit.moc"
