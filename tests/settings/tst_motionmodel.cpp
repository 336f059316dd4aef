// The one motion model: the classic exports' move time in both precisions and its zero-feed forms,
// and the rest-to-rest time of the job engine.
#include "testsupport.h"
#include "motionmodel.h"

#include <cmath>
#include <limits>

class TestMotionModel : public QObject
{
    Q_OBJECT
private slots:
    // One straight move: the long-run form 1.5 v/a + d/v, the short-run form 2 sqrt(a d)/a.
    void classicMove_data()
    {
        // clang-format off
        QTest::addColumn<double>("distance");
        QTest::addColumn<double>("feed");
        QTest::addColumn<double>("seconds");
        QTest::newRow("long run at 600 mm/min") << 1.5 << 600.0 << 0.2;          // 10*1.5/300 + 1.5/10
        QTest::newRow("short run at 6000 mm/min") << 0.12 << 6000.0 << 0.04;      // 2*sqrt(36)/300
        QTest::newRow("speed equal to sqrt(a d)") << 3.0 << 1800.0 << 0.25;      // v = p = 30: long form
        QTest::newRow("no distance") << 0.0 << 1000.0 << 0.0;                     // short form, p = 0
        QTest::newRow("zero feed") << 5.0 << 0.0 << 0.0;
        QTest::newRow("negative feed") << 5.0 << -60.0 << 0.0;
        // clang-format on
    }
    void classicMove()
    {
        QFETCH(double, distance);
        QFETCH(double, feed);
        QFETCH(double, seconds);
        QVERIFY(qAbs(MotionModel::classicMoveSeconds<double>(distance, feed) - seconds) < 1e-12);
        QVERIFY(qAbs(double(MotionModel::classicMoveSeconds<float>(float(distance), float(feed))) - seconds) < 1e-6);
        if (feed > 0)
            QCOMPARE(MotionModel::classicMoveSecondsUnchecked<float>(float(distance), float(feed)),
                     MotionModel::classicMoveSeconds<float>(float(distance), float(feed)));
    }

    // The raster export's sum has no feed check: a zero feed is infinite, or undefined with no distance.
    void uncheckedZeroFeed()
    {
        QVERIFY(std::isinf(MotionModel::classicMoveSecondsUnchecked<float>(2.0f, 0.0f)));
        QVERIFY(std::isnan(MotionModel::classicMoveSecondsUnchecked<float>(0.0f, 0.0f)));
    }

    void restToRest_data()
    {
        // clang-format off
        QTest::addColumn<double>("distance");
        QTest::addColumn<double>("feed");
        QTest::addColumn<double>("acceleration");
        QTest::addColumn<double>("seconds");
        const double inf = std::numeric_limits<double>::infinity();
        QTest::newRow("trapezoid") << 10.0 << 600.0 << 100.0 << 1.1;             // 10/10 + 10/100
        QTest::newRow("just reaches the feed") << 1.0 << 600.0 << 100.0 << 0.2;   // d = v^2/a
        QTest::newRow("triangle") << 0.25 << 600.0 << 100.0 << 0.1;              // 2 sqrt(0.25/100)
        QTest::newRow("no distance") << 0.0 << 600.0 << 100.0 << 0.0;
        QTest::newRow("zero feed") << 5.0 << 0.0 << 100.0 << 0.0;
        QTest::newRow("zero acceleration") << 5.0 << 600.0 << 0.0 << 0.0;
        QTest::newRow("infinite distance") << inf << 600.0 << 100.0 << 0.0;
        // clang-format on
    }
    void restToRest()
    {
        QFETCH(double, distance);
        QFETCH(double, feed);
        QFETCH(double, acceleration);
        QFETCH(double, seconds);
        QVERIFY(qAbs(MotionModel::restToRestSeconds(distance, feed, acceleration) - seconds) < 1e-12);
    }
};

TARNWELL_TEST_MAIN(TestMotionModel)
#include "tst_motionmodel.moc"
