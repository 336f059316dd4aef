// The main window's way into the Job window: the Job button beside the Machine button, and "Add to
// job", which copies the classic canvas's prepared picture or drawing at its place and size.
#include "testsupport.h"

#include "draw.h"
#include "jobwindow.h"
#include "pgraphicsscene.h"
#include "pixmapitem.h"
#include "svgitem.h"
#include "renderform.h"

#include <QGraphicsItem>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>

namespace {
const char SquareSvg[] =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"20mm\" height=\"20mm\" viewBox=\"0 0 20 20\">"
    "<path d=\"M2 2 L18 2 L18 18 L2 18 Z\" fill=\"none\" stroke=\"black\"/></svg>\n";

// The canvas's design item (the picture or drawing placed on the work area).
QGraphicsItem *designItem(Draw &w)
{
    for (QGraphicsItem *item : w.renderForm()->scene()->items())
        if (item->type() == PixmapItem::Type || item->type() == SvgItem::Type)
            return item;
    return nullptr;
}
}  // namespace

class TestJobWindowDraw : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QStandardPaths::setTestModeEnabled(true); }
    void jobButtonOpensTheWindow();
    void closingAsksForTheJob_data();
    void closingAsksForTheJob();
    void addToJobKeepsPlaceAndSize_data();
    void addToJobKeepsPlaceAndSize();
};

void TestJobWindowDraw::jobButtonOpensTheWindow()
{
    ScopedWorkDir dir;
    Draw w;
    auto *button = w.findChild<QPushButton *>(QStringLiteral("btnJobWindow"));
    auto *machine = w.findChild<QPushButton *>(QStringLiteral("btnMachinePanel"));
    QVERIFY(button && machine);
    // Beside the Machine button, in the same row.
    QCOMPARE(button->parentWidget(), machine->parentWidget());
    QVERIFY(!w.jobWindow()->isVisible());
    button->click();
    QVERIFY(w.jobWindow()->isVisible());
    QVERIFY(w.jobWindow()->isWindow());
    // Nothing placed yet: nothing to add.
    QCOMPARE(w.addToJob(), -1);
    QVERIFY(w.jobWindow()->document().items.empty());
}

void TestJobWindowDraw::closingAsksForTheJob_data()
{
    QTest::addColumn<bool>("edited");
    QTest::addColumn<int>("answer");
    QTest::addColumn<int>("questions");
    QTest::addColumn<bool>("closes");
    // clang-format off
    QTest::newRow("nothing to save") << false << int(JobWindow::CloseAnswer::Cancel)  << 0 << true;
    QTest::newRow("cancel")          << true  << int(JobWindow::CloseAnswer::Cancel)  << 1 << false;
    QTest::newRow("discard")         << true  << int(JobWindow::CloseAnswer::Discard) << 1 << true;
    // clang-format on
}

void TestJobWindowDraw::closingAsksForTheJob()
{
    QFETCH(bool, edited);
    QFETCH(int, answer);
    QFETCH(int, questions);
    QFETCH(bool, closes);
    ScopedWorkDir dir;
    Draw w;
    int asked = 0;
    w.jobWindow()->setCloseQuestion([&](const QString &) {
        ++asked;
        return JobWindow::CloseAnswer(answer);
    });
    if (edited) {
        JobItem item;
        item.source.kind = SourceKind::Text;
        item.source.text = QStringLiteral("x");
        item.width = item.height = 5;
        w.jobWindow()->addItem(item, QStringLiteral("add"));
    }
    w.setQuitConfirmer([](const QString &, const QString &) { return true; });
    w.show();
    w.jobWindow()->show();
    QCOMPARE(w.close(), closes);
    // Asked once, though the main window closes the Job window as it goes.
    QCOMPARE(asked, questions);
    QCOMPARE(w.isVisible(), !closes);
    QCOMPARE(w.jobWindow()->isVisible(), !closes);
}

void TestJobWindowDraw::addToJobKeepsPlaceAndSize_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("typedWidth");  // empty: as placed
    QTest::addColumn<QPointF>("moveTo");      // scene position of the design, mm from the top left
    QTest::addColumn<QRectF>("expected");     // machine mm
    // Both the 200 x 100 picture and the square drawing first fill the 170 mm width.
    // clang-format off
    QTest::newRow("picture as placed")   << "in.png"      << ""    << QPointF(0, 0)   << QRectF(0, 115, 170, 85);
    QTest::newRow("picture 100 mm, moved") << "in.png"    << "100" << QPointF(30, 40) << QRectF(30, 110, 100, 50);
    QTest::newRow("drawing as placed")   << "drawing.svg" << ""    << QPointF(0, 30)  << QRectF(0, 0, 170, 170);
    QTest::newRow("drawing 40 mm, moved") << "drawing.svg" << "40" << QPointF(50, 60) << QRectF(50, 100, 40, 40);
    // clang-format on
}

void TestJobWindowDraw::addToJobKeepsPlaceAndSize()
{
    QFETCH(QString, file);
    QFETCH(QString, typedWidth);
    QFETCH(QPointF, moveTo);
    QFETCH(QRectF, expected);
    ScopedWorkDir dir;
    QImage image(200, 100, QImage::Format_RGB32);
    image.fill(Qt::black);
    QVERIFY(image.save(QStringLiteral("in.png")));
    TestFiles::write(QStringLiteral("drawing.svg"), SquareSvg);
    Draw w;
    w.SlotPrint(file);
    if (!typedWidth.isEmpty()) {
        w.findChild<QLineEdit *>(QStringLiteral("w_line"))->setText(typedWidth);
        w.on_w_line_returnPressed();
    }
    QGraphicsItem *design = designItem(w);
    QVERIFY(design);
    design->setPos(moveTo);
    // The design finds out whether it lies in the work area when it is drawn.
    QImage canvas(340, 400, QImage::Format_RGB32);
    QPainter painter(&canvas);
    w.renderForm()->scene()->render(&painter);
    painter.end();
    const QStringList before = QDir().entryList(QDir::Files);
    const int index = w.addToJob();
    QCOMPARE(index, 0);
    const JobItem &item = w.jobWindow()->document().items[0];
    const QRectF got(item.x, item.y, item.width, item.height);
    QVERIFY2(std::abs(got.x() - expected.x()) < 0.01 && std::abs(got.y() - expected.y()) < 0.01
                 && std::abs(got.width() - expected.width()) < 0.01
                 && std::abs(got.height() - expected.height()) < 0.01,
             qPrintable(QStringLiteral("%1,%2 %3x%4").arg(got.x()).arg(got.y()).arg(got.width()).arg(got.height())));
    QCOMPARE(item.source.kind, file.endsWith(QLatin1String(".svg")) ? SourceKind::Svg : SourceKind::Picture);
    QVERIFY(!item.source.data.isEmpty());
    // A copy: the classic canvas and its working files stay as they were.
    QCOMPARE(designItem(w), design);
    QCOMPARE(QDir().entryList(QDir::Files), before);
    QVERIFY(w.jobWindow()->isWindowModified());
}

TARNWELL_TEST_MAIN(TestJobWindowDraw)
#include "tst_jobwindowdraw.moc"
