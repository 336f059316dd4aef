// Tests of the job streamer as the main window makes it (no link, texts only
// emitted): frame texts, job states and what they send.
#include "testsupport.h"
#include "capture.h"
#include "frontend.h"

class TestFrontEnd : public QObject
{
    Q_OBJECT
private slots:
    void frame_data()
    {
        // clang-format off
        QTest::addColumn<QRectF>("rect");
        QTest::addColumn<QStringList>("xy");  // x1, y1, x2, y2 as written
        using L = QStringList;
        QTest::newRow("rectangle 100 200 300 400") << QRectF(100, 200, 300, 400) << L{"10", "20", "40", "60"};
        QTest::newRow("fractions") << QRectF(15, 25, 7, 3) << L{"1.5", "2.5", "2.2", "2.8"};
        QTest::newRow("six significant digits") << QRectF(1234567, 10000000, 5, 0)
                                                << L{"123457", "1e+06", "123457", "1e+06"};
        // clang-format on
    }
    void frame()
    {
        QFETCH(QRectF, rect);
        QFETCH(QStringList, xy);
        const auto at = [&xy](int x, int y) { return "X" + xy[x] + " Y" + xy[y]; };
        const QStringList trace{"G0 " + at(0, 1) + " F3000\n",  "M4 P30 \n",
                                "G1 " + at(2, 1) + " F3000 \n", "G1 " + at(2, 3) + " \n",
                                "G1 " + at(0, 3) + " \n",       "G1 " + at(0, 1) + " \n"};
        const QStringList one = QStringList{"G90 \n", "M4 P0 \n"} + trace + trace << "M4 P0 \n"
                                                                                  << "G1 F2000 X0 Y0 \n";
        FrontEnd front;
        QSignalSpy sent(&front, &FrontEnd::Sig_toarduino);
        front.GenBounding(rect);
        front.GenBounding(rect);  // the second call appends
        QCOMPARE(QStringList(front.BoundDraws()), one + one);
        QCOMPARE(args(sent), QStringList({"M4 P0 \n", "M4 P0 \n"}));
        front.ResetBounding();
        QVERIFY(front.BoundDraws().isEmpty() && !front.Bounding());
    }

    void jobStates_data()
    {
        // clang-format off
        QTest::addColumn<QStringList>("actions");  // slot names; other texts are files to print
        QTest::addColumn<QStringList>("sent");
        QTest::addColumn<int>("state");
        QTest::addColumn<bool>("finished");
        using L = QStringList;
        QTest::newRow("print when idle") << L{"job.gcode"} << L{"G90"} << 0 << false;
        QTest::newRow("print refused while stopped") << L{"stop", "job.gcode"} << L{"M107"} << 2 << true;
        QTest::newRow("print refused after resume") << L{"recov", "job.gcode"} << L{"1"} << 1 << false;
        QTest::newRow("cancel allows a print again") << L{"stop", "cancel", "job.gcode"}
                                                     << L{"M107", "M107", "G28 X Y", "G90"} << 0 << false;
        QTest::newRow("missing file still sends G90") << L{"missing.gcode"} << L{"G90"} << 0 << false;
        QTest::newRow("typed line unchanged") << L{"ui"} << L{"G1 X5 F2000"} << 0 << true;
        // clang-format on
    }
    void jobStates()
    {
        QFETCH(QStringList, actions);
        QFETCH(QStringList, sent);
        QFETCH(int, state);
        QFETCH(bool, finished);
        QFile job("job.gcode");  // in the test program's own work directory
        QVERIFY(job.open(QIODevice::WriteOnly) && job.write("G90\nG0 X10 Y20\nG1 X30 Y5 S255\n;end\n") > 0);
        job.close();
        FrontEnd front;
        QSignalSpy out(&front, &FrontEnd::Sig_toarduino);
        for (const QString &action : actions) {
            if (action == "stop")
                front.SlotStop();
            else if (action == "recov")
                front.SlotRecov();
            else if (action == "cancel")
                front.SlotCancle();
            else if (action == "ui")
                front.SlotUIWrite("G1 X5 F2000");
            else
                front.SlotPrint(action);
        }
        QCOMPARE(args(out), sent);
        QCOMPARE(front.State(), state);
        QCOMPARE(front.Finished(), finished);
    }
};

TARNWELL_TEST_MAIN(TestFrontEnd)
#include "tst_frontend.moc"
