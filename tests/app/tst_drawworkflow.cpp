// The main window's job road: placing pictures, sizes in millimetres, refusals
// before export, the generated file, deletion of working files and jog commands.
#include "draw.h"
#include "imgbinaryedit.h"
#include "renderform.h"
#include "testsupport.h"

#include <QComboBox>
#include <QPushButton>
#include <QSlider>
#include <QTextEdit>
#include <QLineEdit>
#include <QLabel>
#include <QMessageBox>
#include <QRadioButton>
#include <QSettings>
#include <QSignalSpy>
#include <QTextBrowser>
#include <QPainter>
#include "pgraphicsscene.h"

namespace {

// Stands in for the window's dialogs: every file question gets `answer` (empty cancels)
// and every notice is recorded. Make it after the window and let it go first.
struct DialogAnswerer
{
    explicit DialogAnswerer(Draw &w, const QString &answer = QString())
    {
        w.setFileChooser([this, answer](Draw::FileQuestion, const QString &, const QString &, const QString &) {
            ++fileDialogs;
            return answer;
        });
        w.setNoticeShower([this](Draw::Notice, const QString &, const QString &text) { boxTexts << text; });
    }
    int boxes() const { return boxTexts.size(); }
    int fileDialogs = 0;
    QStringList boxTexts;
};

const char *const SquareSvg =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20mm\" height=\"20mm\" viewBox=\"0 0 20 20\">"
    "<path d=\"M2 2 L18 2 L18 18 L2 18 Z\" fill=\"none\" stroke=\"black\"/></svg>\n";

// The canvas learns where its items stand when it paints them.
void paintCanvas(Draw &w)
{
    QImage canvas(400, 400, QImage::Format_ARGB32);
    QPainter painter(&canvas);
    w.renderForm()->scene()->render(&painter);
}

// Drops the square drawing in Outline style and paints it into place. The file stands
// outside the working folder, since removing a picture clears every *.svg there.
void dropOutlineDrawing(Draw &w, const QTemporaryDir &elsewhere)
{
    const QString drawing = elsewhere.filePath("drawing.svg");
    TestFiles::write(drawing, SquareSvg);
    w.findChild<QRadioButton *>("radioButtonOut")->setChecked(true);
    QMetaObject::invokeMethod(&w, "SlotPixitemDropped", Q_ARG(QString, drawing));
    paintCanvas(w);
}

}  // namespace

class TestDrawWorkflow : public QObject
{
    Q_OBJECT

private slots:
    void pictureSizeIsCapped_data()
    {
        // clang-format off
        QTest::addColumn<QSize>("picture");
        QTest::addColumn<QSize>("kept");
        QTest::newRow("wide 1500x500") << QSize(1500, 500) << QSize(1000, 333);
        QTest::newRow("tall 500x1500") << QSize(500, 1500) << QSize(333, 1000);
        QTest::newRow("999x999 kept") << QSize(999, 999) << QSize(999, 999);
        QTest::newRow("square 1000") << QSize(1000, 1000) << QSize(1000, 1000);
        QTest::newRow("1000x999 truncates") << QSize(1000, 999) << QSize(1000, 998);
        // clang-format on
    }

    void pictureSizeIsCapped()
    {
        QFETCH(QSize, picture);
        QFETCH(QSize, kept);
        ScopedWorkDir dir;
        QImage image(picture, QImage::Format_RGB32);
        image.fill(Qt::white);
        QVERIFY(image.save("in.png"));
        Draw w;
        w.SlotPrint("in.png");
        QCOMPARE(w.pictureSize(), kept);
    }

    void svgIsCopiedAndPlaced()
    {
        ScopedWorkDir dir;
        TestFiles::write("drawing.svg", SquareSvg);
        Draw w;
        w.SlotPrint("drawing.svg");
        QFile copy("black_white.svg");
        QVERIFY(copy.open(QIODevice::ReadOnly));
        QCOMPARE(copy.readAll(), QByteArray(SquareSvg));
        // The user's own file is never touched.
        QFile original("drawing.svg");
        QVERIFY(original.open(QIODevice::ReadOnly));
        QCOMPARE(original.readAll(), QByteArray(SquareSvg));
        QVERIFY(!w.findChild<QLineEdit *>("w_line")->text().isEmpty());
        QVERIFY(w.findChild<QLineEdit *>("w_line")->text() != "0");
    }

    void deleteRemovesWorkingFiles()
    {
        ScopedWorkDir dir;
        // Name patterns match regardless of letter case, so "E.JPG" goes too.
        for (const char *name : {"a.svg", "b.png", "c.jpg", "d.gcode", "keep.bmp", "Config.ini", "E.JPG", "f.jpeg"})
            TestFiles::write(name, "x");
        Draw w;
        w.on_btndelete_clicked();
        QStringList left = QDir().entryList(QDir::Files, QDir::Name);
        QCOMPARE(left, QStringList({"Config.ini", "f.jpeg", "keep.bmp"}));
        QCOMPARE(w.findChild<QLineEdit *>("w_line")->text(), QString("0"));
        QCOMPARE(w.findChild<QLineEdit *>("h_line")->text(), QString("0"));
    }

    void typedWidthRescales()
    {
        ScopedWorkDir dir;
        Draw w;
        QLineEdit *width = w.findChild<QLineEdit *>("w_line");
        QLineEdit *height = w.findChild<QLineEdit *>("h_line");
        QSignalSpy rescale(&w, SIGNAL(SigResetScaleFromLineEdit(double)));

        // Nothing on the canvas: refused, fields restored.
        width->setText("50");
        w.on_w_line_returnPressed();
        QCOMPARE(rescale.count(), 0);
        QCOMPARE(width->text(), QString("0"));
        QVERIFY(w.findChild<QTextBrowser *>("textBrowser")->toPlainText().contains("请选择图片!!!"));

        QImage image(200, 100, QImage::Format_RGB32);
        image.fill(Qt::black);
        QVERIFY(image.save("in.png"));
        w.SlotPrint("in.png");
        QCOMPARE(width->text(), QString("170"));
        QCOMPARE(height->text(), QString("85"));

        width->setText("100");
        w.on_w_line_returnPressed();
        QCOMPARE(height->text(), QString("50"));
        QCOMPARE(rescale.count(), 1);
        QCOMPARE(rescale.at(0).at(0).toDouble(), 100.0);

        // A typed height also reports the width.
        height->setText("25");
        w.on_h_line_returnPressed();
        QCOMPARE(width->text(), QString("50"));
        QCOMPARE(rescale.count(), 2);
        QCOMPARE(rescale.at(1).at(0).toDouble(), 50.0);

        width->setText("-3");
        w.on_w_line_returnPressed();
        QCOMPARE(rescale.count(), 2);
        QCOMPARE(width->text(), QString("50"));
    }

    void exportRefusals_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<QString>("picture");
        QTest::addColumn<QString>("style");
        QTest::addColumn<int>("boxes");
        QTest::addColumn<QString>("boxText");
        QTest::newRow("no picture, Chinese") << QByteArray() << "" << "radioButtonBlackWhite" << 1 << "请选择图片!!!";
        QTest::newRow("no picture, English") << QByteArray("[Language]\nlanguage=English\n") << ""
                                             << "radioButtonBlackWhite" << 1 << "Please select the image!!!";
        QTest::newRow("no picture, Korean") << QByteArray("[Language]\nlanguage=Korean\n") << ""
                                            << "radioButtonBlackWhite" << 0 << "";
        QTest::newRow("svg in grayscale, English") << QByteArray("[Language]\nlanguage=English\n") << "drawing.svg"
                                                   << "radioButtonGray" << 1 << "Please select outPut mode!!!";
        QTest::newRow("svg in black/white, Chinese") << QByteArray() << "drawing.svg"
                                                     << "radioButtonBlackWhite" << 1 << "请选择轮廓模式!!!";
        QTest::newRow("svg in grayscale, Korean") << QByteArray("[Language]\nlanguage=Korean\n") << "drawing.svg"
                                                  << "radioButtonGray" << 0 << "";
        // clang-format on
    }

    void exportRefusals()
    {
        QFETCH(QByteArray, config);
        QFETCH(QString, picture);
        QFETCH(QString, style);
        QFETCH(int, boxes);
        QFETCH(QString, boxText);
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\n" + config);
        TestFiles::write("drawing.svg", SquareSvg);
        Draw w;
        if (!picture.isEmpty())
            w.SlotPrint(picture);
        // The style is set without its click, which would start the file routing.
        w.findChild<QRadioButton *>(style)->setChecked(true);
        if (!picture.isEmpty())
            QMetaObject::invokeMethod(&w, "SlotPixitemDropped", Q_ARG(QString, picture));
        QSignalSpy start(&w, SIGNAL(SigStartSaveGcode(QString, QPointF)));
        DialogAnswerer answerer(w, dir.file("out.gcode"));
        w.on_btnExportGcode_clicked();
        QCOMPARE(answerer.boxes(), boxes);
        if (boxes)
            QCOMPARE(answerer.boxTexts.first(), boxText);
        QCOMPARE(answerer.fileDialogs, 0);
        QCOMPARE(start.count(), 0);
        QVERIFY(!QFile::exists("out.gcode"));
    }

    // A picture that does not open places nothing; a drawing that cannot be scaled writes
    // no job. Neither may hand the user a file, old or new.
    void unusableInputWritesNothing_data()
    {
        // clang-format off
        QTest::addColumn<QString>("style");
        QTest::addColumn<QString>("file");
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QString>("boxText");
        QTest::addColumn<int>("fileDialogs");
        QTest::newRow("corrupt picture, black/white") << "radioButtonBlackWhite" << "broken.png"
                                                     << QByteArray("\x89PNG\r\n\x1a\nrandom bytes", 20)
                                                     << "Out of the preview area!!!" << 0;
        QTest::newRow("corrupt picture, outline") << "radioButtonOut" << "broken.png"
                                                 << QByteArray("\x89PNG\r\n\x1a\nrandom bytes", 20)
                                                 << "Out of the preview area!!!" << 0;
        QTest::newRow("drawing of no width, outline")
            << "radioButtonOut" << "line.svg"
            << QByteArray("<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20mm\" height=\"20mm\" "
                          "viewBox=\"0 0 20 20\"><path d=\"M5 2 L5 18\" stroke=\"black\"/></svg>")
            << "The drawing cannot be read or has no width to scale; no file was written!!!" << 1;
        // clang-format on
    }

    void unusableInputWritesNothing()
    {
        QFETCH(QString, style);
        QFETCH(QString, file);
        QFETCH(QByteArray, content);
        QFETCH(QString, boxText);
        QFETCH(int, fileDialogs);
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\n[Language]\nlanguage=English\n");
        QTemporaryDir elsewhere;
        TestFiles::write(elsewhere.filePath(file), content);
        Draw w;
        w.findChild<QRadioButton *>(style)->setChecked(true);
        QMetaObject::invokeMethod(&w, "SlotPixitemDropped", Q_ARG(QString, elsewhere.filePath(file)));
        if (file.endsWith(".png"))
            w.imageEditor()->on_btnFinish_clicked();  // Done on the editor's refusal
        paintCanvas(w);
        TestFiles::write("local.gcode", "G1 X1 Y1 ; stale\n");
        const QString target = dir.file("job.gcode");
        DialogAnswerer answerer(w, target);
        w.on_btnExportGcode_clicked();
        QCOMPARE(answerer.fileDialogs, fileDialogs);
        QCOMPARE(answerer.boxTexts, QStringList{boxText});
        QVERIFY(!QFile::exists(target));
    }

    // Open questions: a cancelled picture choice keeps the remembered folder, a chosen one
    // remembers its own and lands on the canvas; a G-code snippet is copied in once and kept.
    void fileChoices()
    {
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\npre_vector_path=/a/b\n");
        QTemporaryDir elsewhere;
        auto remembered = [] {
            return QSettings("Config.ini", QSettings::IniFormat).value("Tarnwy/pre_vector_path").toString();
        };
        Draw w;
        DialogAnswerer cancel(w);
        w.on_file_clicked();
        QCOMPARE(cancel.fileDialogs, 1);
        QCOMPARE(remembered(), QString("/a/b"));

        TestFiles::write(elsewhere.filePath("drawing.svg"), SquareSvg);
        DialogAnswerer pick(w, elsewhere.filePath("drawing.svg"));
        w.on_file_clicked();
        QCOMPARE(remembered(), elsewhere.path());
        paintCanvas(w);
        QVERIFY(w.renderForm()->CurrentItemPos().x() != PGraphicsScene::NoPosition.x());

        TestFiles::write(elsewhere.filePath("first.gcode"), "G21\n");
        TestFiles::write(elsewhere.filePath("second.gcode"), "G20\n");
        DialogAnswerer first(w, elsewhere.filePath("first.gcode"));
        w.on_btnLoadGcodeHead_clicked();
        w.on_btnLoadGcodeEnd_clicked();
        DialogAnswerer second(w, elsewhere.filePath("second.gcode"));
        w.on_btnLoadGcodeHead_clicked();
        QCOMPARE(QString::fromUtf8(TestFiles::read("start.gm")), QString("G21\n"));
        QCOMPARE(QString::fromUtf8(TestFiles::read("end.gm")), QString("G21\n"));
    }

    void cancelledSaveMovesFolderUp()
    {
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\npre_vector_path=/a/b/c\n");
        QTemporaryDir elsewhere;
        Draw w;
        dropOutlineDrawing(w, elsewhere);
        QVERIFY(w.renderForm()->CurrentItemPos().x() != -10000.0);
        DialogAnswerer cancel(w);
        w.on_btnExportGcode_clicked();
        QCOMPARE(cancel.fileDialogs, 1);
        QCOMPARE(QSettings("Config.ini", QSettings::IniFormat).value("Tarnwy/pre_vector_path").toString(),
                 QString("/a/b"));
        w.on_btnExportGcode_clicked();
        QCOMPARE(QSettings("Config.ini", QSettings::IniFormat).value("Tarnwy/pre_vector_path").toString(),
                 QString("/a"));
    }

    void outlineExportWritesTheFile()
    {
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\n[Language]\nlanguage=English\n");
        QTemporaryDir elsewhere;
        Draw w;
        dropOutlineDrawing(w, elsewhere);
        QVERIFY(w.renderForm()->CurrentItemPos().x() != -10000.0);
        const QString target = dir.file("job.gcode");
        DialogAnswerer save(w, target);
        QSignalSpy started(&w, SIGNAL(SigStartSaveGcode(QString, QPointF)));
        w.on_btnExportGcode_clicked();
        QCOMPARE(started.count(), 1);
        QCOMPARE(started.at(0).at(0).toString(), target);
        QCOMPARE(save.fileDialogs, 1);
        QCOMPARE(save.boxes(), 0);

        QFile local("local.gcode");
        QVERIFY(local.open(QIODevice::ReadOnly));
        const QByteArray generated = local.readAll();
        QVERIFY(generated.contains("G1"));
        QFile job(target);
        QVERIFY(job.open(QIODevice::ReadOnly));
        QCOMPARE(job.readAll(), generated);

        QSettings config("Config.ini", QSettings::IniFormat);
        QCOMPARE(config.value("Tarnwy/pre_vector_path").toString(), dir.path());
        QVERIFY(config.contains("Tarnwy/xoffset"));
        QVERIFY(!w.findChild<QLabel *>("timeLabel")->text().isEmpty());
        QVERIFY(w.findChild<QTextBrowser *>("textBrowser")->toPlainText().contains("Estimated time:"));

        // Generating again over an existing, longer file replaces it whole.
        TestFiles::write(target, QByteArray(generated.size() * 2, 'x'));
        w.startSaveGcode(target, QPointF(0, 0));
        QFile again(target);
        QVERIFY(again.open(QIODevice::ReadOnly));
        QVERIFY(again.readAll().startsWith("G"));
        QCOMPARE(again.size(), QFile("local.gcode").size());
    }

    void materialControls_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("language");
        QTest::addColumn<QString>("file");
        QTest::addColumn<bool>("enabled");
        QTest::newRow("Chinese") << QByteArray() << "dataFile_zh.json" << true;
        QTest::newRow("English") << QByteArray("English") << "dataFile_en.json" << true;
        QTest::newRow("Korean has no library") << QByteArray("Korean") << "dataFile_en.json" << false;
        QTest::newRow("Chinese without a file") << QByteArray() << "dataFile_en.json" << false;
        // clang-format on
    }

    void materialControls()
    {
        QFETCH(QByteArray, language);
        QFETCH(QString, file);
        QFETCH(bool, enabled);
        ScopedWorkDir dir;
        if (!language.isEmpty())
            TestFiles::write("Config.ini", "[Language]\nlanguage=" + language + "\n");
        TestFiles::write(file, "[{\"name\": \"Wood\", \"currentPower\": 40, \"currentSpeed\": 20,"
                               " \"initPower\": 50, \"initSpeed\": 25, \"thickness\": 3}]");
        Draw w;
        QComboBox *box = w.findChild<QComboBox *>("materialComboBox");
        QCOMPARE(box->isEnabled(), enabled);
        QCOMPARE(w.findChild<QPushButton *>("addMaterialButton")->isEnabled(), enabled);
        if (!enabled)
            return;
        // The selected material sets the sliders.
        QCOMPARE(w.findChild<QSlider *>("powerHorizontalSlider")->value(), 40);
        QCOMPARE(w.findChild<QSlider *>("speedHorizontalSlider")->value(), 20);
        // The init button restores defaults in memory only.
        w.on_initButton_clicked();
        QCOMPARE(w.findChild<QSlider *>("powerHorizontalSlider")->value(), 50);
        QVERIFY(QString::fromUtf8(TestFiles::read(file)).contains("40"));
        // A name differing only in letter case is a new material.
        box->setEditText("wood");
        w.on_addMaterialButton_clicked();
        QCOMPARE(box->count(), 2);
        QCOMPARE(box->currentText(), QString("wood"));
        // The same name again is refused with a log line.
        box->setEditText("wood");
        w.on_addMaterialButton_clicked();
        QCOMPARE(box->count(), 2);
        QVERIFY(w.findChild<QTextBrowser *>("textBrowser")
                    ->toPlainText()
                    .contains(language == "English" ? "The material already exists " : "此材料已存在!!!"));
        box->setEditText("Wood");
        w.on_deleteMaterialButton_clicked();
        QCOMPARE(box->count(), 1);
        QCOMPARE(box->itemText(0), QString("wood"));
        QVERIFY(!QString::fromUtf8(TestFiles::read(file)).contains("\"Wood\""));
    }

    void qrCodePicture()
    {
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=cnc\n");
        Draw w;
        w.findChild<QTextEdit *>("textEdit")->setPlainText("TarnwellLaser");
        w.on_TextToQRcodeButton_clicked();
        const QImage code("qrcode.bmp");
        QVERIFY(!code.isNull());
        QCOMPARE(code.width() % 16, 0);
        // An empty text makes nothing and leaves the last code alone.
        QFile::remove("qrcode.bmp");
        w.findChild<QTextEdit *>("textEdit")->setPlainText("");
        w.on_TextToQRcodeButton_clicked();
        QVERIFY(!QFile::exists("qrcode.bmp"));
    }

    void jogCommands_data()
    {
        // clang-format off
        QTest::addColumn<QString>("step");
        QTest::addColumn<QString>("button");
        QTest::addColumn<QStringList>("sent");
        QTest::newRow("10 mm, -Y") << "radioButton10mm" << "yp" << QStringList({"G91", "G1 Y-10 F2000"});
        QTest::newRow("0.1 mm, +X") << "radioButton01mm" << "xa" << QStringList({"G91", "G1 X0.1 F2000"});
        QTest::newRow("1 mm, -X") << "radioButton1mm" << "xp" << QStringList({"G91", "G1 X-1 F2000"});
        QTest::newRow("1 mm, +Y") << "radioButton1mm" << "ya" << QStringList({"G91", "G1 Y1 F2000"});
        QTest::newRow("home") << "radioButton1mm" << "home" << QStringList({"G28 X Y"});
        QTest::newRow("set home") << "radioButton1mm" << "setHome" << QStringList({"G92 X0 Y0 \n"});
        QTest::newRow("back home") << "radioButton1mm" << "backHome" << QStringList({"G1 X0 Y0 \n"});
        // clang-format on
    }

    void jogCommands()
    {
        QFETCH(QString, step);
        QFETCH(QString, button);
        QFETCH(QStringList, sent);
        ScopedWorkDir dir;
        Draw w;
        w.findChild<QRadioButton *>(step)->click();
        QSignalSpy spy(&w, SIGNAL(Sig_toarduino(QString)));
        QMetaObject::invokeMethod(&w, qPrintable("on_" + button + "_clicked"));
        QStringList texts;
        for (const QList<QVariant> &call : spy)
            texts << call.at(0).toString();
        QCOMPARE(texts, sent);
    }

    // Last: the translators it installs stay for the rest of the program.
    void languageButtonsKeepLiveTexts()
    {
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\n");
        QTemporaryDir elsewhere;
        Draw w;
        dropOutlineDrawing(w, elsewhere);
        w.startSaveGcode(dir.file("job.gcode"), QPointF(0, 0));
        QLabel *time = w.findChild<QLabel *>("timeLabel");
        const QString shown = time->text();
        QVERIFY(shown.endsWith("s") && shown != "0s");
        QPushButton *done = w.imageEditor()->findChild<QPushButton *>("btnFinish");
        QCOMPARE(done->text(), QString("完成"));
        QCOMPARE(w.imageEditor()->windowTitle(), QString("设置阈值"));

        w.on_btnEn_clicked();
        QApplication::processEvents();  // a new translator reaches the widgets as posted events
        QCOMPARE(time->text(), shown);
        QCOMPARE(done->text(), QString("Done"));
        QCOMPARE(w.findChild<QPushButton *>("btnExportGcode")->text(), QString("Export G-code"));
        // The Chinese button turns the window back, and leaves the editor as it was.
        w.on_btnZh_clicked();
        QApplication::processEvents();
        QCOMPARE(time->text(), shown);
        QCOMPARE(done->text(), QString("Done"));
        QCOMPARE(w.findChild<QPushButton *>("btnExportGcode")->text(), QString("导出G代码"));
    }
};

TARNWELL_TEST_MAIN(TestDrawWorkflow)
#include "tst_drawworkflow.moc"
