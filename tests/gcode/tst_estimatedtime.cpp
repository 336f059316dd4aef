// Tests of the estimated-time text shown after an export: the three forms, their limits,
// the hour form's minutes that come out 0, and the cases without an estimate.
#include "testsupport.h"

#include "estimatedtime.h"

#include <limits>

class TestEstimatedTime : public QObject
{
    Q_OBJECT
private slots:
    void text_data();
    void text();
};

void TestEstimatedTime::text_data()
{
    QTest::addColumn<float>("seconds");
    QTest::addColumn<QString>("expected");

    QTest::newRow("0 s") << 0.0f << "0s";
    QTest::newRow("fractions are cut") << 59.9f << "59s";
    QTest::newRow("60 s is still seconds") << 60.0f << "60s";
    QTest::newRow("just over 60 s") << 60.5f << "1min 0s";
    QTest::newRow("3599 s") << 3599.0f << "59min 59s";
    QTest::newRow("3600 s") << 3600.0f << "1h 0min 0s";
    // The minutes of the hour form are worked out in single precision and come out 0.
    QTest::newRow("3725 s") << 3725.0f << "1h 0min 5s";
    QTest::newRow("negative") << -1.0f << QString();
    QTest::newRow("NaN from a speed of 0") << std::numeric_limits<float>::quiet_NaN() << QString();
    QTest::newRow("infinite") << std::numeric_limits<float>::infinity() << QString();
}

void TestEstimatedTime::text()
{
    QFETCH(float, seconds);
    QFETCH(QString, expected);
    QCOMPARE(EstimatedTimeText(seconds), expected);
}

TARNWELL_TEST_MAIN(TestEstimatedTime)
#include "tst_estimatedtime.moc"
