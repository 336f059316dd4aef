// Tests of the toolpath preview panel: figures and warnings in plain words for odd files,
// the newest request wins, and every export of the main window is shown.
#include "draw.h"
#include "previewpanel.h"
#include "pgraphicsscene.h"
#include "renderform.h"
#include "testsupport.h"
#include "toolpathview.h"

#include <QDockWidget>
#include <QGraphicsSimpleTextItem>
#include <QLabel>
#include <QMainWindow>
#include <QPushButton>
#include <QScrollBar>
#include <QWheelEvent>
#include <QPainter>
#include <QProgressBar>
#include <QRadioButton>
#include <QSignalSpy>

namespace {

constexpr int LoadTimeout = 60000;  // ms; the machine is shared

bool waitShown(PreviewPanel &panel, QSignalSpy &spy)
{
    return spy.count() > 0 || spy.wait(LoadTimeout) || !panel.isLoading();
}

// Why the work area or one of its labels is not wholly inside the view's viewport, or empty.
QString areaNotInView(const ToolpathView *view)
{
    const QRect port = view->viewport()->rect();
    if (view->horizontalScrollBar()->isVisible() || view->verticalScrollBar()->isVisible())
        return QStringLiteral("scroll bars shown");
    const QRect area = view->mapFromScene(QRectF(0, 0, 170, 200)).boundingRect();
    if (!port.contains(area))
        return QStringLiteral("area %1,%2 %3x%4 outside")
            .arg(area.x())
            .arg(area.y())
            .arg(area.width())
            .arg(area.height());
    int labels = 0;
    for (const QGraphicsItem *item : view->scene()->items()) {
        const auto *label = qgraphicsitem_cast<const QGraphicsSimpleTextItem *>(item);
        if (!label)
            continue;
        ++labels;
        const QRect box =
            label->deviceTransform(view->viewportTransform()).mapRect(label->boundingRect()).toAlignedRect();
        if (!port.contains(box))
            return QStringLiteral("label %1 at %2,%3 outside %4x%5")
                .arg(label->text())
                .arg(box.x())
                .arg(box.y())
                .arg(port.width())
                .arg(port.height());
    }
    return labels ? QString() : QStringLiteral("no labels");
}

}  // namespace

class TestPreviewPanel : public QObject
{
    Q_OBJECT
private slots:
    void texts_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("gcode");
        QTest::addColumn<QString>("figures");
        QTest::addColumn<QString>("warnings");

        QTest::newRow("inside, burning")
            << QByteArray("G0 X10 Y10\nM106 S255\nG1 X20 F600\nM107\n")
            << "Lines: 4   Burn moves: 1   Extent: X 10..20, Y 10..10 mm   Estimated time: 1s" << "";
        // Runs at 500 mm/s^2, travel 3000 mm/min: 160.31/50 + 0.1, then 15.5/10 + 0.02, then 175.91/50 + 0.1
        // add up to 8.49 s.
        QTest::newRow("leaves the area")
            << QByteArray("G0 X160 Y10\nM106 S255\nG1 X175.5 F600\nM107\nG0 X0 Y-2\n")
            << "Lines: 5   Burn moves: 1   Extent: X 160..175.5, Y 10..10 mm   Estimated time: 8s"
            << "Part of the job lies outside the 170 x 200 mm work area: 1 burn moves and 1 travel moves go "
               "beyond it (X up to 175.5 mm, Y down to -2 mm). "
               "The machine cannot reach that part, and it is not drawn.";
        QTest::newRow("nothing burns")
            << QByteArray("G0 X10 Y10\nM106 S0\nG1 X20 F600\n")
            << "Lines: 3   Burn moves: 0   Extent: X 0..20, Y 0..10 mm   Estimated time: 1s"
            << "Nothing burns: no move in this file runs with the beam on.";
        // The faint beam that marks a frame is no warning.
        QTest::newRow("rapid move with the beam on")
            << QByteArray("M106 S5\nG0 X5\nM106 S200\nG0 X10\nM106 S255\nG1 X20 F600\n")
            << "Lines: 6   Burn moves: 1   Extent: X 10..20, Y 0..0 mm   Estimated time: 1s"
            << "1 rapid moves (G0) run with the beam on. They are drawn as travel; a machine that keeps the beam "
               "firing during G0 burns a line there.";
        QTest::newRow("empty") << QByteArray() << "Lines: 0   Burn moves: 0   Extent: none   Estimated time: 0s"
                               << "The file is empty.";
        QTest::newRow("garbage") << QByteArray("M106\nG1 X5 F600\nwhat\nG1 X6 Q1\n")
                                 << "Lines: 4   Burn moves: 1   Extent: X 0..5, Y 0..0 mm   Estimated time: 0s"
                                 << "2 lines were not understood and are left out (the first is line 3).";
        // clang-format on
    }

    void texts()
    {
        QFETCH(QByteArray, gcode);
        QFETCH(QString, figures);
        QFETCH(QString, warnings);
        ScopedWorkDir dir;
        TestFiles::write(dir.file("job.gcode"), gcode);
        PreviewPanel panel;
        QSignalSpy shown(&panel, &PreviewPanel::shown);
        panel.showFile(dir.file("job.gcode"));
        QVERIFY(waitShown(panel, shown));
        QCOMPARE(shown.count(), 1);
        QCOMPARE(panel.figuresText(), figures);
        QCOMPARE(panel.warningsText(), warnings);
        QCOMPARE(panel.findChild<QLabel *>("labelWarnings")->isVisibleTo(&panel), !warnings.isEmpty());
        QVERIFY(panel.findChild<QProgressBar *>("progress")->isHidden());
    }

    // A second file asked for while the first is read: only the second is shown; a file that
    // cannot be read says so.
    void newestRequestWins()
    {
        ScopedWorkDir dir;
        QByteArray big = "M106 S255\n";
        for (int i = 0; i < 100000; ++i)
            big += "G1 X" + QByteArray::number(i % 170) + " Y" + QByteArray::number(i % 200) + " F600\n";
        TestFiles::write(dir.file("big.gcode"), big);
        TestFiles::write(dir.file("small.gcode"), "M106\nG1 X1 F600\n");
        PreviewPanel panel;
        QSignalSpy shown(&panel, &PreviewPanel::shown);
        panel.showFile(dir.file("big.gcode"));
        panel.showFile(dir.file("small.gcode"));
        QVERIFY(waitShown(panel, shown));
        QTest::qWait(100);
        QCOMPARE(shown.count(), 1);
        QCOMPARE(panel.summary().lines, qint64(2));

        panel.showFile(dir.file("missing.gcode"));
        QVERIFY(shown.wait(LoadTimeout));
        QCOMPARE(panel.warningsText(), QStringLiteral("The file cannot be read."));
        QCOMPARE(panel.figuresText(), QString());
    }

    // The main window's export is shown in its preview, with the time the window shows.
    void showsEveryExport()
    {
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\n[Language]\nlanguage=English\n");
        QTemporaryDir elsewhere;
        const QString drawing = elsewhere.filePath("drawing.svg");
        TestFiles::write(drawing, "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20mm\" height=\"20mm\" "
                                  "viewBox=\"0 0 20 20\"><path d=\"M2 2 L18 2 L18 18 L2 18 Z\" "
                                  "fill=\"none\" stroke=\"black\"/></svg>\n");
        Draw w;
        w.findChild<QRadioButton *>("radioButtonOut")->setChecked(true);
        QMetaObject::invokeMethod(&w, "SlotPixitemDropped", Q_ARG(QString, drawing));
        QImage canvas(400, 400, QImage::Format_ARGB32);
        QPainter painter(&canvas);
        w.renderForm()->scene()->render(&painter);  // items learn their place when painted
        painter.end();
        PreviewPanel *panel = w.findChild<PreviewPanel *>();
        QVERIFY(panel);
        QSignalSpy shown(panel, &PreviewPanel::shown);
        const QString target = dir.file("job.gcode");
        w.startSaveGcode(target, QPointF(10, 20));
        QVERIFY(waitShown(*panel, shown));
        QCOMPARE(panel->file(), target);
        QVERIFY(panel->summary().burnMoves > 0);
        QCOMPARE(panel->summary().linesNotUnderstood, qint64(0));
        const QString time = w.findChild<QLabel *>("timeLabel")->text();
        QVERIFY2(panel->figuresText().endsWith("Estimated time: " + time),
                 qPrintable(panel->figuresText() + " / " + time));
    }

    void fitShowsAreaAndLabels_data()
    {
        // clang-format off
        QTest::addColumn<QSize>("window");
        QTest::addColumn<int>("dockWidth");   // after show, as the window's layout may do
        QTest::newRow("narrow dock") << QSize(1200, 800) << 260;
        QTest::newRow("wide dock") << QSize(1400, 800) << 700;
        QTest::newRow("low window") << QSize(1000, 360) << 320;
        // clang-format on
    }

    // On show, after the dock is resized and on Fit, the whole area and every label are in view;
    // once the user zooms, resizing keeps the zoom.
    void fitShowsAreaAndLabels()
    {
        QFETCH(QSize, window);
        QFETCH(int, dockWidth);
        QMainWindow w;
        w.setCentralWidget(new QWidget);
        w.resize(window);
        PreviewPanel *panel = PreviewPanel::addTo(&w);
        auto *view = panel->findChild<ToolpathView *>();
        QVERIFY(view);
        w.show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QTRY_COMPARE(areaNotInView(view), QString());

        w.resizeDocks({w.findChild<QDockWidget *>()}, {dockWidth}, Qt::Horizontal);
        QTRY_COMPARE(areaNotInView(view), QString());

        const QPoint middle = view->viewport()->rect().center();
        QWheelEvent wheel(middle, view->viewport()->mapToGlobal(middle), QPoint(), QPoint(0, 240), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        const double fitted = view->zoom();
        QApplication::sendEvent(view->viewport(), &wheel);
        const double zoomed = view->zoom();
        QVERIFY(zoomed > fitted * 1.5);
        w.resize(window + QSize(-100, 100));
        QTRY_COMPARE(w.size(), window + QSize(-100, 100));
        QCOMPARE(view->zoom(), zoomed);

        panel->findChild<QPushButton *>("btnFit")->click();
        QTRY_COMPARE(areaNotInView(view), QString());
    }
};

TARNWELL_TEST_MAIN(TestPreviewPanel)
#include "tst_previewpanel.moc"
