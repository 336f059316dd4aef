// The job's time and burn length against figures worked out by hand.
#include "jobestimate.h"
#include "jobtestsupport.h"
#include "testsupport.h"

#include <cmath>

class TestJobEstimate : public QObject
{
    Q_OBJECT

private slots:
    void runs_data();
    void runs();
    void layers();
};

namespace {

// Moves written compactly (jobtestsupport.h).
void feed(JobEstimate &estimate, const QString &text)
{
    for (const PlannedMove &m : JobTest::parseMoves(text))
        estimate.move(m);
}

// The default profile: acceleration 500 mm/s^2, travel 3000 mm/min.
MachineProfile profile()
{
    MachineProfile p;
    p.acceleration = 500;
    p.travelSpeed = 3000;
    return p;
}

}  // namespace

void TestJobEstimate::runs_data()
{
    QTest::addColumn<QString>("moves");
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("burnMm");
    // a = 500 mm/s^2. F3000 is v = 50 mm/s and needs v^2/a = 5 mm to reach the feed (and to stop);
    // F1200 is v = 20 mm/s and needs 0.8 mm. A run of d mm takes d/v + v/a when d >= v^2/a,
    // otherwise 2 sqrt(d/a).
    // clang-format off
    // 1 mm < 5 mm: 2 sqrt(1/500) = 0.0894427 s
    QTest::newRow("too short for its feed") << "C 1000 0 500 3000"         << 2 * std::sqrt(1.0 / 500) << 1.0;
    // 100/50 + 50/500 = 2 + 0.1
    QTest::newRow("long move")              << "C 100000 0 500 3000"       << 2.1  << 100.0;
    // the same length as one run in two collinear pieces
    QTest::newRow("long move in pieces")    << "C 30000 0 500 3000; C 100000 0 500 3000" << 2.1 << 100.0;
    // two runs of 20 mm at 20 mm/s: 2 x (20/20 + 20/500) = 2 x 1.04
    QTest::newRow("corner")                 << "C 20000 0 500 1200; C 20000 20000 500 1200" << 2.08 << 40.0;
    // overscan 2, burn 10, white 2 at zero power, burn 8, overscan 2: one run of 24 mm, 24/50 + 0.1
    QTest::newRow("raster row, overscan")   << "C 2000 0 0 3000; C 12000 0 500 3000; C 14000 0 0 3000;"
                                               "C 22000 0 700 3000; C 24000 0 0 3000" << 0.58 << 18.0;
    // the next row back, 0.1 mm up: a step of 0.1 mm (2 sqrt(0.1/500)) and a row of 24 mm the other way
    QTest::newRow("raster row and back")    << "C 24000 0 500 3000; C 24000 100 0 3000; C 0 100 500 3000"
                                            << 0.58 + 2 * std::sqrt(0.1 / 500) + 0.58 << 48.0;
    // 50 mm at the travel speed: 50/50 + 0.1
    QTest::newRow("travel")                 << "T 30000 40000"             << 1.1  << 0.0;
    // 30 mm of travel in one run: 30/50 + 0.1
    QTest::newRow("collinear travel")       << "T 10000 0; T 30000 0"      << 0.7  << 0.0;
    // there and back: two runs of 10 mm, 2 x (10/50 + 0.1)
    QTest::newRow("reversal")               << "C 10000 0 500 3000; C 0 0 500 3000" << 0.6 << 20.0;
    // the feed changes on a straight line: 10/50 + 0.1, then 10/20 + 20/500
    QTest::newRow("feed change")            << "C 10000 0 500 3000; C 20000 0 500 1200" << 0.84 << 20.0;
    // travel then a cut along the same line: 10/50 + 0.1 twice
    QTest::newRow("travel then cut")        << "T 10000 0; C 20000 0 500 3000" << 0.6 << 10.0;
    // moves to where the machine already is cost nothing
    QTest::newRow("standing still")         << "C 0 0 500 3000; T 0 0"     << 0.0  << 0.0;
    QTest::newRow("nothing")                << ""                          << 0.0  << 0.0;
    // clang-format on
}

void TestJobEstimate::runs()
{
    QFETCH(QString, moves);
    QFETCH(double, seconds);
    QFETCH(double, burnMm);
    JobEstimate estimate(profile());
    feed(estimate, moves);
    QVERIFY2(std::abs(estimate.seconds() - seconds) < 1e-9, qPrintable(QString::number(estimate.seconds(), 'g', 12)));
    QVERIFY(std::abs(estimate.burnMm() - burnMm) < 1e-9);
}

void TestJobEstimate::layers()
{
    JobEstimate estimate(profile());
    JobLayer a;
    a.name = QStringLiteral("A");
    JobLayer c;
    c.name = QStringLiteral("C");
    estimate.beginLayer(0, a);
    // 100 mm burnt at 50 mm/s: 2.1 s
    feed(estimate, "C 100000 0 500 3000");
    estimate.endLayer();
    estimate.beginLayer(2, c);
    // the line goes on in the next layer, but a layer starts and ends at rest: 10/50 + 0.1 = 0.3 s,
    // then 100 mm of travel back, 2.1 s, and a 1 mm cut, 2 sqrt(1/500)
    feed(estimate, "C 110000 0 500 3000; T 10000 0; C 10000 1000 500 3000");
    estimate.endLayer();
    const double layerC = 0.3 + 2.1 + 2 * std::sqrt(1.0 / 500);

    QCOMPARE(int(estimate.layers().size()), 2);
    const JobEstimate::Layer &first = estimate.layers()[0];
    const JobEstimate::Layer &second = estimate.layers()[1];
    QCOMPARE(first.index, 0);
    QCOMPARE(first.name, QStringLiteral("A"));
    QVERIFY(std::abs(first.seconds - 2.1) < 1e-9);
    QVERIFY(std::abs(first.burnMm - 100) < 1e-9);
    QCOMPARE(second.index, 2);
    QCOMPARE(second.name, QStringLiteral("C"));
    QVERIFY2(std::abs(second.seconds - layerC) < 1e-9, qPrintable(QString::number(second.seconds, 'g', 12)));
    QVERIFY(std::abs(second.burnMm - 11) < 1e-9);
    QVERIFY(std::abs(estimate.seconds() - (2.1 + layerC)) < 1e-9);
    QVERIFY(std::abs(estimate.burnMm() - 111) < 1e-9);
}

TARNWELL_TEST_MAIN(TestJobEstimate)
#include "tst_jobestimate.moc"
