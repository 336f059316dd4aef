// The G-code tokenizer: words, comments, numbers in the C locale, lines it does not understand.
#include "testsupport.h"

#include "gcodetokenizer.h"

class TestGcodeTokenizer : public QObject
{
    Q_OBJECT

private slots:
    void split_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("words");   // letter=value, space separated
        QTest::addColumn<bool>("understood");
        QTest::newRow("move") << QByteArray("G1 X12.5 Y-3 F1800") << "G=1 X=12.5 Y=-3 F=1800" << true;
        QTest::newRow("packed") << QByteArray("g1x.5y+2.") << "G=1 X=0.5 Y=2" << true;
        QTest::newRow("blank between letter and number") << QByteArray("G 0 X 1") << "G=0 X=1" << true;
        QTest::newRow("semicolon comment") << QByteArray("M5 ;off (not this)") << "M=5" << true;
        QTest::newRow("paren comment inside") << QByteArray("G0 (travel) X1") << "G=0 X=1" << true;
        QTest::newRow("unclosed paren") << QByteArray("G0 X1 (no end Y2") << "G=0 X=1" << true;
        QTest::newRow("comment only") << QByteArray("; header") << "" << true;
        QTest::newRow("empty") << QByteArray("") << "" << true;
        QTest::newRow("carriage return") << QByteArray("M107 \r") << "M=107" << true;
        QTest::newRow("grbl system command") << QByteArray("$H") << "" << false;
        QTest::newRow("letter without number") << QByteArray("G1 X") << "G=1" << false;
        QTest::newRow("garbage after words") << QByteArray("G1 X1 #!") << "G=1 X=1" << false;
        QTest::newRow("long fraction") << QByteArray("X0.1234567890123456789") << "X=0.123456789012346" << true;
        QTest::newRow("huge") << QByteArray("X123456789012345678901234") << "X=1.23456789012346e+23" << true;
        // The words up to the limit are kept; the line as a whole is not understood.
        QTest::newRow("too many words") << QByteArray("X1 ").repeated(GcodeTokenizer::MaxWords + 1)
                                        << QString("X=1 ").repeated(GcodeTokenizer::MaxWords).trimmed() << false;
        // clang-format on
    }

    void split()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, words);
        QFETCH(bool, understood);
        GcodeTokenizer::Word found[GcodeTokenizer::MaxWords];
        int count = -1;
        QCOMPARE(GcodeTokenizer::split(line.constData(), line.size(), found, &count), understood);
        QStringList text;
        for (int i = 0; i < count; ++i)
            text << QStringLiteral("%1=%2").arg(QLatin1Char(found[i].letter)).arg(found[i].value, 0, 'g', 15);
        QCOMPARE(text.join(QLatin1Char(' ')), words);
    }

    // Exact decimal values, so a preview or a rewrite never drifts from what the file says.
    void exactValues()
    {
        const QByteArray line("X170.001 Y-0.1 S255");
        GcodeTokenizer::Word found[GcodeTokenizer::MaxWords];
        int count = 0;
        QVERIFY(GcodeTokenizer::split(line.constData(), line.size(), found, &count));
        QCOMPARE(count, 3);
        QCOMPARE(found[0].value, 170.001);
        QCOMPARE(found[1].value, -0.1);
        QCOMPARE(found[2].value, 255.0);
    }

    void stripComments_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QByteArray>("code");
        QTest::newRow("plain") << QByteArray("G1 X5 F1000") << QByteArray("G1 X5 F1000");
        QTest::newRow("trailing comment") << QByteArray("  M3 S100 ; burn") << QByteArray("M3 S100");
        QTest::newRow("paren") << QByteArray("G0(fast)X1") << QByteArray("G0X1");
        QTest::newRow("only comment") << QByteArray("(header) ; more") << QByteArray();
        QTest::newRow("blank") << QByteArray(" \t\r") << QByteArray();
        QTest::newRow("system command kept") << QByteArray("$J=G91 X1 F100 ;jog") << QByteArray("$J=G91 X1 F100");
        // clang-format on
    }

    void stripComments()
    {
        QFETCH(QByteArray, line);
        QFETCH(QByteArray, code);
        QCOMPARE(GcodeTokenizer::stripComments(line), code);
    }
};

TARNWELL_TEST_MAIN(TestGcodeTokenizer)
#include "tst_gcodetokenizer.moc"
