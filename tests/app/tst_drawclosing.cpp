// Closing the main window: the question about a design that was never exported, in each
// interface language, and the end of the program with every other window it opened.
#include "draw.h"
#include "imgbinaryedit.h"
#include "machinepanel.h"
#include "renderform.h"
#include "testsupport.h"

#include <QLineEdit>
#include <QPainter>
#include <QRadioButton>
#include <QTimer>

#include "pgraphicsscene.h"

namespace {

const char *const SquareSvg =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20mm\" height=\"20mm\" viewBox=\"0 0 20 20\">"
    "<path d=\"M2 2 L18 2 L18 18 L2 18 Z\" fill=\"none\" stroke=\"black\"/></svg>\n";

// Answers every question of the window: file names with `target`, quitting with `quit`.
struct Answers
{
    Answers(Draw &w, const QString &target, bool quit)
    {
        w.setFileChooser(
            [target](Draw::FileQuestion, const QString &, const QString &, const QString &) { return target; });
        w.setNoticeShower([this](Draw::Notice, const QString &, const QString &text) { notices << text; });
        w.setQuitConfirmer([this, quit](const QString &title, const QString &text) {
            questions << title + "|" + text;
            return quit;
        });
    }
    QStringList notices;
    QStringList questions;
};

// The steps a user takes before closing: p places the square drawing, e exports it,
// r types a new width, d deletes the picture.
void act(Draw &w, const QTemporaryDir &elsewhere, QChar step)
{
    if (step == 'p') {
        const QString drawing = elsewhere.filePath("drawing.svg");
        TestFiles::write(drawing, SquareSvg);
        w.findChild<QRadioButton *>("radioButtonOut")->setChecked(true);
        QMetaObject::invokeMethod(&w, "SlotPixitemDropped", Q_ARG(QString, drawing));
    } else if (step == 'e') {
        w.on_btnExportGcode_clicked();
    } else if (step == 'r') {
        w.findChild<QLineEdit *>("w_line")->setText("15");
        w.on_w_line_returnPressed();
    } else if (step == 'd') {
        w.on_btndelete_clicked();
    }
    // The canvas learns where its items stand when it paints them.
    QImage canvas(400, 400, QImage::Format_ARGB32);
    QPainter painter(&canvas);
    w.renderForm()->scene()->render(&painter);
}

}  // namespace

class TestDrawClosing : public QObject
{
    Q_OBJECT

private slots:
    void unexportedDesign_data()
    {
        // clang-format off
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("steps");
        QTest::addColumn<bool>("answer");
        QTest::addColumn<QString>("question");  // title|text, empty when none is asked
        QTest::addColumn<bool>("closed");
        const QString zh = QString::fromUtf8("退出|画布上的设计尚未导出。仍要退出吗？");
        const QString en = "Quit|The design on the canvas has not been exported. Quit anyway?";
        const QString ko = QString::fromUtf8("종료|캔버스의 디자인을 아직 내보내지 않았습니다. 그래도 종료하시겠습니까?");
        QTest::newRow("empty canvas") << "Chinese" << "" << false << "" << true;
        QTest::newRow("placed, stays open") << "Chinese" << "p" << false << zh << false;
        QTest::newRow("placed, quit anyway") << "Chinese" << "p" << true << zh << true;
        QTest::newRow("placed and exported") << "Chinese" << "pe" << false << "" << true;
        QTest::newRow("resized after the export") << "Chinese" << "per" << false << zh << false;
        QTest::newRow("placed again after the export") << "Chinese" << "pep" << false << zh << false;
        QTest::newRow("resized, then exported") << "Chinese" << "pre" << false << "" << true;
        QTest::newRow("deleted unexported") << "Chinese" << "pd" << false << "" << true;
        QTest::newRow("English") << "English" << "p" << false << en << false;
        QTest::newRow("English, exported") << "English" << "pe" << false << "" << true;
        QTest::newRow("Korean") << "Korean" << "p" << true << ko << true;
        // clang-format on
    }
    void unexportedDesign()
    {
        QFETCH(QString, language);
        QFETCH(QString, steps);
        QFETCH(bool, answer);
        QFETCH(QString, question);
        QFETCH(bool, closed);
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\n[Language]\nlanguage=" + language.toUtf8() + "\n");
        QTemporaryDir elsewhere;
        Draw w;
        Answers answers(w, elsewhere.filePath("out.gcode"), answer);
        w.show();
        for (const QChar step : steps)
            act(w, elsewhere, step);
        if (steps.contains('e'))
            QVERIFY2(QFile::exists(elsewhere.filePath("out.gcode")), qPrintable(answers.notices.join('\n')));
        w.close();
        QCOMPARE(answers.questions, question.isEmpty() ? QStringList() : QStringList{question});
        QCOMPARE(!w.isVisible(), closed);
    }

    // The threshold editor and the Machine window close with the main window, and the
    // event loop ends; a window left open would keep it running until the guard stops it.
    void closingEndsTheProgram()
    {
        ScopedWorkDir dir;
        Draw w;
        Answers answers(w, QString(), false);
        w.show();
        w.imageEditor()->show();
        w.machinePanel()->show();
        bool stoppedByGuard = false;
        QTimer guard;
        guard.setSingleShot(true);
        connect(&guard, &QTimer::timeout, qApp, [&] {
            stoppedByGuard = true;
            qApp->quit();
        });
        guard.start(20000);
        QTimer::singleShot(0, &w, [&w] { w.close(); });
        QCOMPARE(qApp->exec(), 0);
        QVERIFY(!stoppedByGuard);
        QVERIFY(!w.isVisible());
        QVERIFY(!w.imageEditor()->isVisible());
        QVERIFY(!w.machinePanel()->isVisible());
        QVERIFY(answers.questions.isEmpty());
    }
};

TARNWELL_TEST_MAIN(TestDrawClosing)
#include "tst_drawclosing.moc"
