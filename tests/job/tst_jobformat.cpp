// The job engine's number and time texts, and the S values of the dialects.
#include "jobdialect.h"
#include "jobformat.h"
#include "testsupport.h"

#include <limits>

class TestJobFormat : public QObject
{
    Q_OBJECT

private slots:
    void decimalText_data();
    void decimalText();
    void thousandthsText_data();
    void thousandthsText();
    void durationText_data();
    void durationText();
    void plannedPower_data();
    void plannedPower();
};

void TestJobFormat::decimalText_data()
{
    const double inf = std::numeric_limits<double>::infinity();
    QTest::addColumn<double>("value");
    QTest::addColumn<QByteArray>("text");
    // clang-format off
    QTest::newRow("zero")              << 0.0        << QByteArray("0");
    QTest::newRow("negative zero")     << -0.0       << QByteArray("0");
    QTest::newRow("tiny")              << 1e-14      << QByteArray("0");
    QTest::newRow("tiny negative")     << -1e-14     << QByteArray("0");
    QTest::newRow("rounds to -0")      << -0.0004    << QByteArray("0");
    QTest::newRow("rounds up to 200")  << 199.9996   << QByteArray("200");
    QTest::newRow("rounds down")       << 199.9994   << QByteArray("199.999");
    QTest::newRow("million")           << 1e6        << QByteArray("1000000");
    QTest::newRow("negative half")     << -2.5       << QByteArray("-2.5");
    QTest::newRow("half thousandth")   << 0.0005     << QByteArray("0.001");
    QTest::newRow("negative half th.") << -0.0005    << QByteArray("-0.001");
    QTest::newRow("below half th.")    << 0.00049    << QByteArray("0");
    QTest::newRow("three decimals")    << 12.345     << QByteArray("12.345");
    QTest::newRow("two decimals")      << 0.25       << QByteArray("0.25");
    QTest::newRow("trailing zeros")    << 7.100      << QByteArray("7.1");
    QTest::newRow("inner zero")        << 3.05       << QByteArray("3.05");
    QTest::newRow("zero then digit")   << 3.007      << QByteArray("3.007");
    QTest::newRow("negative small")    << -0.012     << QByteArray("-0.012");
    QTest::newRow("whole negative")    << -170.0     << QByteArray("-170");
    QTest::newRow("ten")               << 10.0       << QByteArray("10");
    QTest::newRow("huge clamps")       << 1e300      << QByteArray("99999999.999");
    QTest::newRow("huge neg. clamps")  << -1e300     << QByteArray("-99999999.999");
    QTest::newRow("largest plain")     << 99999999.0 << QByteArray("99999999");
    QTest::newRow("NaN")               << std::numeric_limits<double>::quiet_NaN() << QByteArray("0");
    QTest::newRow("infinity")          << inf        << QByteArray("0");
    QTest::newRow("minus infinity")    << -inf       << QByteArray("0");
    // clang-format on
}

void TestJobFormat::decimalText()
{
    QFETCH(double, value);
    QFETCH(QByteArray, text);
    QCOMPARE(JobFormat::decimal(value), text);
    char buffer[32];
    std::fill(std::begin(buffer), std::end(buffer), 'x');
    const int n = JobFormat::decimal(value, buffer);
    QCOMPARE(QByteArray(buffer, n), text);
    QVERIFY(n <= 13);
    QCOMPARE(buffer[n], 'x');  // nothing written past the returned length
}

void TestJobFormat::thousandthsText_data()
{
    QTest::addColumn<qint64>("value");
    QTest::addColumn<QByteArray>("text");
    // clang-format off
    QTest::newRow("zero")          << qint64(0)        << QByteArray("0");
    QTest::newRow("one thousandth")<< qint64(1)        << QByteArray("0.001");
    QTest::newRow("minus one")     << qint64(-1)       << QByteArray("-0.001");
    QTest::newRow("tenth")         << qint64(100)      << QByteArray("0.1");
    QTest::newRow("whole")         << qint64(170000)   << QByteArray("170");
    QTest::newRow("mixed")         << qint64(-123456)  << QByteArray("-123.456");
    QTest::newRow("ten and a bit") << qint64(10010)    << QByteArray("10.01");
    QTest::newRow("largest")       << qint64(99999999999LL)  << QByteArray("99999999.999");
    QTest::newRow("too large")     << std::numeric_limits<qint64>::max() << QByteArray("99999999.999");
    QTest::newRow("too small")     << std::numeric_limits<qint64>::min() << QByteArray("-99999999.999");
    // clang-format on
}

void TestJobFormat::thousandthsText()
{
    QFETCH(qint64, value);
    QFETCH(QByteArray, text);
    char buffer[32];
    const int n = JobFormat::thousandths(value, buffer);
    QCOMPARE(QByteArray(buffer, n), text);
}

void TestJobFormat::durationText_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QByteArray>("text");
    // clang-format off
    QTest::newRow("zero")            << 0.0      << QByteArray("0s");
    QTest::newRow("negative")        << -5.0     << QByteArray("0s");
    QTest::newRow("NaN")             << std::numeric_limits<double>::quiet_NaN() << QByteArray("0s");
    QTest::newRow("infinity")        << std::numeric_limits<double>::infinity()  << QByteArray("0s");
    QTest::newRow("rounds down")     << 12.4     << QByteArray("12s");
    QTest::newRow("rounds up")       << 12.5     << QByteArray("13s");
    QTest::newRow("59.6 is a minute")<< 59.6     << QByteArray("1min 00s");
    QTest::newRow("minutes")         << 185.0    << QByteArray("3min 05s");
    QTest::newRow("just an hour")    << 3600.0   << QByteArray("1h 00min 00s");
    QTest::newRow("hours")           << 3723.0   << QByteArray("1h 02min 03s");
    QTest::newRow("many hours")      << 100.0 * 3600 + 59 * 60 + 59 << QByteArray("100h 59min 59s");
    // clang-format on
}

void TestJobFormat::durationText()
{
    QFETCH(double, seconds);
    QFETCH(QByteArray, text);
    QCOMPARE(JobFormat::duration(seconds), text);
}

void TestJobFormat::plannedPower_data()
{
    QTest::addColumn<int>("dialect");
    QTest::addColumn<double>("maxPower");
    QTest::addColumn<double>("percent");
    QTest::addColumn<int>("power");
    // clang-format off
    // grbl: percent / 100 x maxPower, to 0.001 of S
    QTest::newRow("grbl 60% of 1000")   << int(Dialect::Grbl)   << 1000.0 << 60.0    << 600000;
    QTest::newRow("grbl 100% of 255")   << int(Dialect::Grbl)   << 255.0  << 100.0   << 255000;
    QTest::newRow("grbl 33.3333% of 1") << int(Dialect::Grbl)   << 1.0    << 33.3333 << 333;
    QTest::newRow("grbl 12.34% of 1000")<< int(Dialect::Grbl)   << 1000.0 << 12.34   << 123400;
    QTest::newRow("grbl 0")             << int(Dialect::Grbl)   << 1000.0 << 0.0     << 0;
    QTest::newRow("grbl negative")      << int(Dialect::Grbl)   << 1000.0 << -5.0    << 0;
    QTest::newRow("grbl above 100")     << int(Dialect::Grbl)   << 1000.0 << 150.0   << 1000000;
    QTest::newRow("grbl NaN")           << int(Dialect::Grbl)   << 1000.0 << std::numeric_limits<double>::quiet_NaN() << 0;
    // marlin and fan: 255 whatever maxPower says, whole S
    QTest::newRow("marlin 60%")         << int(Dialect::Marlin) << 1000.0 << 60.0    << 153000;
    QTest::newRow("marlin 50% rounds")  << int(Dialect::Marlin) << 1000.0 << 50.0    << 128000;
    QTest::newRow("marlin 100%")        << int(Dialect::Marlin) << 1.0    << 100.0   << 255000;
    QTest::newRow("fan 40%")            << int(Dialect::Fan)    << 1000.0 << 40.0    << 102000;
    QTest::newRow("fan 0.1% is 0")      << int(Dialect::Fan)    << 1000.0 << 0.1     << 0;
    // clang-format on
}

void TestJobFormat::plannedPower()
{
    QFETCH(int, dialect);
    QFETCH(double, maxPower);
    QFETCH(double, percent);
    QFETCH(int, power);
    MachineProfile profile;
    profile.dialect = Dialect(dialect);
    profile.maxPower = maxPower;
    QCOMPARE(JobDialect::plannedPower(profile, percent), power);
}

TARNWELL_TEST_MAIN(TestJobFormat)
#include "tst_jobformat.moc"
