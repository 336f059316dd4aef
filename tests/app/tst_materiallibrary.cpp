// Material library: which file each language reads, damaged files, edits written back
// with indentation 4, and the two libraries shipped with the program.
#include "materiallibrary.h"
#include "testsupport.h"

#include <QFile>

static bool put(const QString &name, const QByteArray &bytes)
{
    QFile f(name);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

static MaterialRecord material(const QString &name, float power, float speed)
{
    return MaterialRecord{name, power, speed, power + 1, speed + 2, 0.5f};
}

class TestMaterialLibrary : public QObject
{
    Q_OBJECT

private slots:
    void load_data()
    {
        // clang-format off
        QTest::addColumn<int>("language");
        QTest::addColumn<QByteArray>("zh");   // null: no file; the en file always holds Felt
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QStringList>("names");
        const QString keys =
            QStringLiteral(R"("currentPower":10,"currentSpeed":20.5,"initPower":30,"initSpeed":40,"thickness":2.5)");
        QTest::newRow("missing file") << 0 << QByteArray() << false << QStringList();
        QTest::newRow("zh file, name last") << 0 << QString(R"([{%1,"name":"软木"}])").arg(keys).toUtf8() << true
                                            << QStringList{"软木"};
        QTest::newRow("en file") << 1 << QByteArray("[]") << true << QStringList{"Felt"};
        QTest::newRow("Korean has no file") << 2 << QByteArray("[]") << false << QStringList();
        QTest::newRow("empty array") << 0 << QByteArray("[]") << true << QStringList();
        QTest::newRow("invalid JSON") << 0 << QByteArray(R"([{"name": "Felt", )") << false
                                      << QStringList();
        QTest::newRow("trailing text") << 0 << QByteArray("[] []") << false << QStringList();
        QTest::newRow("object, not array") << 0 << QString(R"({"name":"a",%1})").arg(keys).toUtf8() << false
                                           << QStringList();
        QTest::newRow("key missing") << 0 << QByteArray(R"([{"name":"Felt"}])") << false << QStringList();
        QTest::newRow("power as text") << 0
                                       << QString(R"([{"name":"a",%1}])").arg(keys).replace("10", "\"10\"").toUtf8()
                                       << false << QStringList();
        QTest::newRow("beyond float")
            << 0 << QString(R"([{"name":"a",%1}])").arg(keys).replace("40", "4e300").toUtf8() << false << QStringList();
        // clang-format on
    }

    void load()
    {
        QFETCH(int, language);
        QFETCH(QByteArray, zh);
        QFETCH(bool, ok);
        QFETCH(QStringList, names);
        ScopedWorkDir dir;
        MaterialLibrary library;  // a record from before must not survive a failed load
        library.setLanguageIndex(language);
        library.add(material(QStringLiteral("stale"), 1, 1));

        QFile::remove(QStringLiteral("dataFile_zh.json"));
        QVERIFY(put(QStringLiteral("dataFile_en.json"), R"([{"name":"Felt","currentPower":10,"currentSpeed":20.5,)"
                                                        R"("initPower":30,"initSpeed":40,"thickness":2.5}])"));
        QVERIFY(zh.isNull() || put(QStringLiteral("dataFile_zh.json"), zh));

        QCOMPARE(library.load(), ok);
        QCOMPARE(library.names(), names);
        for (const MaterialRecord &r : library.materials()) {
            QCOMPARE(r.currentPower, 10.0f);
            QCOMPARE(r.currentSpeed, 20.5f);
            QCOMPARE(r.initPower, 30.0f);
            QCOMPARE(r.initSpeed, 40.0f);
            QCOMPARE(r.thickness, 2.5f);
        }
    }

    // Steps: "+name" adds, "-name" removes; results holds each step's return value.
    void edits_data()
    {
        // clang-format off
        QTest::addColumn<int>("language");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("results");
        QTest::addColumn<QStringList>("names");    // read back from the file
        QTest::addColumn<QStringList>("absent");   // names find() must not match
        QTest::newRow("add") << 0 << QStringList{"+Wood"} << "1" << QStringList{"Wood"}
                             << QStringList{"wood", "Wood "};
        QTest::newRow("other case is a second record") << 1 << QStringList{"+Wood", "+wood"} << "11"
                                                       << QStringList{"Wood", "wood"} << QStringList{"WOOD"};
        QTest::newRow("remove") << 0 << QStringList{"+Wood", "+Felt", "-Wood"} << "111" << QStringList{"Felt"}
                                << QStringList{"Wood"};
        QTest::newRow("remove needs exact case") << 1 << QStringList{"+Wood", "-wood"} << "10" << QStringList{"Wood"}
                                                 << QStringList{"wood"};
        QTest::newRow("remove first of equal names") << 0 << QStringList{"+A", "+B", "+A", "-A"} << "1111"
                                                     << QStringList{"B", "A"} << QStringList();
        QTest::newRow("remove the last one") << 0 << QStringList{"+A", "-A", "-A"} << "110" << QStringList()
                                             << QStringList{"A"};
        QTest::newRow("composed and decomposed differ") << 0 << QStringList{"+橡木", QStringLiteral("+caf\u00e9")} << "11"
            << QStringList{"橡木", QStringLiteral("caf\u00e9")} << QStringList{QStringLiteral("cafe\u0301")};
        QTest::newRow("Korean writes nothing") << 2 << QStringList{"+Wood"} << "0" << QStringList()
                                               << QStringList{"Wood"};
        // clang-format on
    }

    void edits()
    {
        QFETCH(int, language);
        QFETCH(QStringList, steps);
        QFETCH(QString, results);
        QFETCH(QStringList, names);
        QFETCH(QStringList, absent);
        ScopedWorkDir dir;
        MaterialLibrary library;
        library.setLanguageIndex(language);
        QString got;
        for (int i = 0; i < steps.size(); ++i) {
            const QString name = steps.at(i).mid(1);
            const bool ok = steps.at(i).startsWith(QLatin1Char('+'))
                                ? library.add(material(name, 10 * i + 0.5f, i + 0.25f))
                                : library.remove(name);
            got += QLatin1Char(ok ? '1' : '0');
        }
        QCOMPARE(got, results);

        const QString file = MaterialLibrary::fileName(language);
        QCOMPARE(QDir().entryList(QDir::Files), file.isEmpty() ? QStringList() : QStringList{file});
        MaterialLibrary reread;
        reread.setLanguageIndex(language);
        QCOMPARE(reread.load(), !file.isEmpty());
        QCOMPARE(reread.names(), names);
        for (const QString &name : absent)
            QVERIFY2(!reread.find(name), qPrintable(name));
        for (const MaterialRecord &r : reread.materials()) {  // values of the step that added it
            const int i = steps.lastIndexOf(QLatin1Char('+') + r.name);
            QCOMPARE(r.currentPower, 10 * i + 0.5f);
            QCOMPARE(r.initSpeed, i + 2.25f);
        }
    }

    // Exact text, and a change to a found record (the init button) reaching it only on save.
    void fileText()
    {
        ScopedWorkDir dir;
        MaterialLibrary library;
        QVERIFY(library.save());
        QCOMPARE(TestFiles::read(QStringLiteral("dataFile_zh.json")), QByteArray("[]\n"));
        QVERIFY(library.add(material(QStringLiteral("亚克力 \"黑\""), 80, 20.5f)));
        const QByteArray text("[\n    {\n        \"name\": \"亚克力 \\\"黑\\\"\",\n"
                              "        \"currentPower\": 80.0,\n        \"currentSpeed\": 20.5,\n"
                              "        \"initPower\": 81.0,\n        \"initSpeed\": 22.5,\n"
                              "        \"thickness\": 0.5\n    }\n]\n");
        QCOMPARE(TestFiles::read(QStringLiteral("dataFile_zh.json")), text);
        library.find(QStringLiteral("亚克力 \"黑\""))->currentPower = 81;
        QCOMPARE(TestFiles::read(QStringLiteral("dataFile_zh.json")), text);
        QVERIFY(library.save());
        QCOMPARE(TestFiles::read(QStringLiteral("dataFile_zh.json")), QByteArray(text).replace("80.0", "81.0"));
    }

    // Floats go to the file as the shortest text that reads back the same, as typed.
    void numbersAsTyped_data()
    {
        // clang-format off
        QTest::addColumn<float>("thickness");
        QTest::addColumn<QByteArray>("written");
        QTest::newRow("0.2") << 0.2f << QByteArray("0.2");
        QTest::newRow("0.1") << 0.1f << QByteArray("0.1");
        QTest::newRow("33.3") << 33.3f << QByteArray("33.3");
        QTest::newRow("whole number") << 3.0f << QByteArray("3.0");
        QTest::newRow("tiny") << 1e-7f << QByteArray("1e-07");
        QTest::newRow("beyond float precision") << 16777217.0f << QByteArray("16777216.0");
        // clang-format on
    }

    void numbersAsTyped()
    {
        QFETCH(float, thickness);
        QFETCH(QByteArray, written);
        ScopedWorkDir dir;
        MaterialLibrary library;
        MaterialRecord record = material(QStringLiteral("Birch"), 10, 20);
        record.thickness = thickness;
        QVERIFY(library.add(record));
        QVERIFY(TestFiles::read(QStringLiteral("dataFile_zh.json")).contains("\"thickness\": " + written + "\n"));
        MaterialLibrary reread;
        QVERIFY(reread.load());
        QCOMPARE(reread.materials().at(0).thickness, thickness);
    }

    void shippedLibraries_data()
    {
        // clang-format off
        QTest::addColumn<int>("language");
        QTest::newRow("zh") << 0;
        QTest::newRow("en") << 1;
        // clang-format on
    }

    void shippedLibraries()
    {
        QFETCH(int, language);
        const QString name = MaterialLibrary::fileName(language);
        const QString shipped = QFINDTESTDATA("../../resources/materials/" + name);
        ScopedWorkDir dir;
        QVERIFY(QFile::copy(shipped, name));
        MaterialLibrary library;
        library.setLanguageIndex(language);
        QVERIFY(library.load());
        QVERIFY(library.materials().size() >= 4);
        QCOMPARE(library.names().removeDuplicates(), 0);
        for (const MaterialRecord &r : library.materials()) {
            for (float v : {r.currentPower, r.currentSpeed, r.initPower, r.initSpeed})
                QVERIFY2(v >= 0 && v <= 100, qPrintable(r.name));
        }
    }
};

TARNWELL_TEST_MAIN(TestMaterialLibrary)
#include "tst_materiallibrary.moc"
