// Tests of the threshold editor: the pixel operations, the remembered threshold,
// Finish and its file, the two modes, and pictures that are odd or do not load.
#include "testsupport.h"

#include "appsettings.h"
#include "imgbinaryedit.h"

#include <QImageReader>
#include <QLabel>
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

// Pixel x has gray level x * step.
QImage gradient(int w, int h, int step)
{
    QImage image(w, h, QImage::Format_ARGB32);
    for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x)
            image.setPixel(x, y, qRgb(x * step, x * step, x * step));
    return image;
}

QSlider *slider(ImgBinaryEdit &editor) { return editor.findChild<QSlider *>("horizontalSlider"); }
QLabel *label(ImgBinaryEdit &editor, const char *name) { return editor.findChild<QLabel *>(name); }

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
    void threshold_data();
    void threshold();
    void thresholdRemembered();
    void finish_data();
    void finish();
    void adaptive_data();
    void adaptive();
    void outline_data();
    void outline();
    void badInput_data();
    void badInput();
};

void TestImgBinaryEdit::threshold_data()
{
    QTest::addColumn<bool>("inverted");
    QTest::addColumn<uint>("pixel");
    QTest::addColumn<int>("threshold");
    QTest::addColumn<uint>("expected");

    QTest::newRow("black stays black at 0") << false << 0xFF000000u << 0 << 0xFF000000u;
    QTest::newRow("gray 1 is white at 0") << false << 0xFF010101u << 0 << 0x00FFFFFFu;
    QTest::newRow("white is black at 255") << false << 0xFFFFFFFFu << 255 << 0xFF000000u;
    QTest::newRow("gray equal to threshold is black") << false << 0xFF808080u << 128 << 0xFF000000u;
    QTest::newRow("gray one above threshold is white") << false << 0xFF808080u << 127 << 0x00FFFFFFu;
    QTest::newRow("green 255 weighs gray 127") << false << 0xFF00FF00u << 127 << 0xFF000000u;
    QTest::newRow("red 255 weighs gray 87") << false << 0xFFFF0000u << 86 << 0x00FFFFFFu;
    QTest::newRow("transparent black at 255") << false << 0x00000000u << 255 << 0x00FFFFFFu;
    QTest::newRow("transparent black at 0") << false << 0x00000000u << 0 << 0x00FFFFFFu;
    QTest::newRow("transparent, sum 16, is paper") << false << 0x00000100u << 200 << 0x00FFFFFFu;
    QTest::newRow("transparent, sum 32, goes by gray") << false << 0x00010101u << 5 << 0xFF000000u;
    QTest::newRow("alpha 1 black stays black") << false << 0x01000000u << 255 << 0xFF000000u;
    QTest::newRow("transparent white at 255") << false << 0x00FFFFFFu << 255 << 0xFF000000u;
    QTest::newRow("inverted: below threshold is white") << true << 0xFF7F7F7Fu << 128 << 0xFFFFFFFFu;
    QTest::newRow("inverted: equal to threshold is black") << true << 0xFF808080u << 128 << 0xFF000000u;
    QTest::newRow("inverted: transparent black is dark") << true << 0x00000000u << 10 << 0xFFFFFFFFu;
}

void TestImgBinaryEdit::threshold()
{
    QFETCH(bool, inverted);
    QFETCH(uint, pixel);
    QFETCH(int, threshold);
    QFETCH(uint, expected);
    ScopedWorkDir dir;

    ImgBinaryEdit editor;
    editor.SetImage(filled(3, 2, pixel));
    slider(editor)->setValue(threshold);
    QCOMPARE(AppSettings::threshold(), threshold);
    QCOMPARE(label(editor, "label")->text(), QString::number(threshold));
    if (inverted) {
        AppSettings::setThreshold(33);
        editor.on_btnVacf_clicked();
        QCOMPARE(AppSettings::threshold(), 33);  // the inverted threshold is not remembered
    }
    QCOMPARE(editor.Result().size(), QSize(3, 2));
    QCOMPARE(countPixels(editor.Result(), expected), 6);
}

void TestImgBinaryEdit::thresholdRemembered()
{
    ScopedWorkDir dir;
    const QImage ramp = gradient(256, 1, 1);
    {
        // Nothing stored yet: threshold 0.
        ImgBinaryEdit editor;
        editor.SetImage(ramp);
        QCOMPARE(slider(editor)->value(), 0);
        QCOMPARE(countPixels(editor.Result(), 0xFF000000u), 1);
        slider(editor)->setValue(77);
        QCOMPARE(QSettings("Slice.ini", QSettings::IniFormat).value("Slice/thread_hold").toInt(), 77);
    }
    // The next picture starts from the stored threshold, on the slider and in the result.
    ImgBinaryEdit editor;
    editor.SetImage(ramp);
    QCOMPARE(slider(editor)->value(), 77);
    QCOMPARE(label(editor, "label")->text(), QStringLiteral("77"));
    QCOMPARE(editor.Result().pixel(77, 0), 0xFF000000u);
    QCOMPARE(countPixels(editor.Result(), 0xFF000000u), 78);

    // Dragging the slider runs it too.
    slider(editor)->setSliderDown(true);
    slider(editor)->setSliderPosition(200);
    slider(editor)->setSliderDown(false);
    QCOMPARE(countPixels(editor.Result(), 0xFF000000u), 201);
    QCOMPARE(AppSettings::threshold(), 200);
}

void TestImgBinaryEdit::finish_data()
{
    QTest::addColumn<QStringList>("actions");
    QTest::addColumn<int>("left");      // gray written at x = 10; -1: no file
    QTest::addColumn<int>("right");     // gray written at x = 54
    QTest::addColumn<bool>("grayFile");

    // The picture is a ramp (gray 4x); the stored threshold is 128.
    QTest::newRow("global") << QStringList() << 0 << 255 << false;
    QTest::newRow("adaptive then finish keeps the global result") << QStringList{"adaptive"} << 0 << 255 << false;
    QTest::newRow("inverted") << QStringList{"inverted"} << 255 << 0 << false;
    QTest::newRow("adaptive keeps the inverted result") << QStringList{"inverted", "adaptive"} << 255 << 0 << false;
    QTest::newRow("slider after inverted") << QStringList{"inverted", "slider:20"} << 255 << 255 << false;
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
    writeFile("black_white.jpg", "stale");

    ImgBinaryEdit editor;
    QSignalSpy spy(&editor, SIGNAL(SigBlackWhite()));
    editor.show();
    editor.SetImage(gradient(64, 64, 4));
    for (const QString &action : actions) {
        if (action == "adaptive")
            editor.on_btnAdaptive_clicked();
        else if (action == "inverted")
            editor.on_btnVacf_clicked();
        else if (action == "gray")
            editor.SetGrayscaleMode();
        else if (action == "bw")
            editor.SetBlackWhiteMode();
        else if (action == "unreadable")
            editor.SetImageFile(dir.file("missing.png"));
        else
            slider(editor)->setValue(action.mid(7).toInt());
    }
    QCOMPARE(slider(editor)->isHidden(), grayFile);
    editor.on_btnFinish_clicked();
    QCOMPARE(spy.count(), 1);
    QVERIFY(!editor.isVisible());
    if (left < 0) {
        QVERIFY(!QFile::exists("black_white.jpg"));
        return;
    }
    QImageReader reader("black_white.jpg");
    QCOMPARE(reader.format(), QByteArray("jpeg"));
    const QImage written = reader.read();
    QCOMPARE(written.size(), QSize(64, 64));
    QCOMPARE(written.format() == QImage::Format_Grayscale8, grayFile);
    for (int y : {5, 32, 60}) {
        QVERIFY(qAbs(qGray(written.pixel(10, y)) - left) <= 6);
        QVERIFY(qAbs(qGray(written.pixel(54, y)) - right) <= 6);
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
    QCOMPARE(editor.Result().pixel(centre), expected);
    for (const QPoint &offset : bright)  // black input stays black
        QCOMPARE(editor.Result().pixel(centre + offset), 0xFF000000u);
}

void TestImgBinaryEdit::badInput_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QSize>("resultSize");   // 0 x 0: no result
    QTest::addColumn<int>("blackPixels");

    QTest::newRow("missing file") << "missing" << QSize(0, 0) << 0;
    QTest::newRow("not a picture") << "text" << QSize(0, 0) << 0;
    QTest::newRow("1 x 1") << "one" << QSize(1, 1) << 1;
    QTest::newRow("all black") << "black" << QSize(50, 40) << 2000;
    QTest::newRow("all white") << "white" << QSize(50, 40) << 0;
    QTest::newRow("palette with transparency") << "palette" << QSize(4, 2) << 2;
    QTest::newRow("20000 x 20000") << "huge" << QSize(0, 0) << 0;
}

void TestImgBinaryEdit::badInput()
{
    QFETCH(QString, kind);
    QFETCH(QSize, resultSize);
    QFETCH(int, blackPixels);
    ScopedWorkDir dir;
    AppSettings::setThreshold(128);

    const QString path = dir.file("picture.png");
    if (kind == "text") {
        writeFile(path, "this is not a picture");
    } else if (kind == "one" || kind == "black" || kind == "white") {
        QVERIFY(filled(kind == "one" ? 1 : 50, kind == "one" ? 1 : 40, kind == "white" ? 0xFFFFFFFF : 0xFF000000).save(path));
    } else if (kind == "palette") {
        // Row 0: transparent black; row 1: black, black, white, white.
        QImage palette(4, 2, QImage::Format_Indexed8);
        palette.setColorTable({qRgba(0, 0, 0, 0), qRgb(0, 0, 0), qRgb(255, 255, 255)});
        const uchar rows[2][4] = {{0, 0, 0, 0}, {1, 1, 2, 2}};
        for (int y = 0; y < 2; ++y)
            memcpy(palette.scanLine(y), rows[y], 4);
        QVERIFY(palette.save(path));
    } else if (kind == "huge") {
        QImage huge(20000, 20000, QImage::Format_Mono);
        huge.fill(0);
        QVERIFY(huge.save(path));
    }

    ImgBinaryEdit editor;
    editor.show();
    editor.SetImageFile(path);
    QCOMPARE(editor.Result().size(), resultSize);
    QCOMPARE(countPixels(editor.Result(), 0xFF000000u), blackPixels);
    // Failures are told in the result pane, not in a blocking message box.
    QCOMPARE(label(editor, "labelDest")->text().isEmpty(), !resultSize.isEmpty());

    // The dialog stays usable: the next picture is handled normally.
    editor.SetImage(gradient(16, 1, 16));
    QCOMPARE(countPixels(editor.Result(), 0xFF000000u), 9);
    QVERIFY(label(editor, "labelDest")->text().isEmpty());
    editor.on_btnFinish_clicked();
    QVERIFY(!QImage("black_white.jpg").isNull());
}

TARNWELL_TEST_MAIN(TestImgBinaryEdit)
#include "tst_imgbinaryedit.moc"
