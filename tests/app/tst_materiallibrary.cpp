// Material library: which file each language reads, damaged files, edits written back,
// the exact file text, and the two libraries shipped with the program.
#include "materiallibrary.h"
#include "testsupport.h"

#include <QFile>

class TestMaterialLibrary : public QObject
{
    Q_OBJECT

private:
    static void writeFile(const QString &name, const QByteArray &bytes)
    {
        QFile f(name);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(bytes);
    }

    static QByteArray readFile(const QString &name)
    {
        QFile f(name);
        if (!f.open(QIODevice::ReadOnly))
            return QByteArray();
        return f.readAll();
    }

    static MaterialRecord record(const QString &name, float power, float speed)
    {
        MaterialRecord r;
        r.name = name;
        r.currentPower = power;
        r.currentSpeed = speed;
        r.initPower = power + 1;
        r.initSpeed = speed + 2;
        r.thickness = 0.5f;
        return r;
    }

private slots:
    void load_data()
    {
        QTest::addColumn<QByteArray>("zh");   // null: no file
        QTest::addColumn<QByteArray>("en");
        QTest::addColumn<int>("language");
        QTest::addColumn<bool>("ok");
        QTest::addColumn<QStringList>("names");

        const QByteArray felt(R"([{"name":"Felt","currentPower":10,"currentSpeed":20,)"
                              R"("initPower":30,"initSpeed":40,"thickness":2.5}])");
        const QByteArray cork(R"([{"thickness":3,"initSpeed":4,"initPower":5,)"
                              R"("currentSpeed":6.5,"currentPower":7,"name":"软木"}])");
        QTest::newRow("missing file") << QByteArray() << felt << 0 << false << QStringList();
        QTest::newRow("Chinese reads the zh file") << cork << felt << 0 << true << QStringList{"软木"};
        QTest::newRow("English reads the en file") << cork << felt << 1 << true << QStringList{"Felt"};
        QTest::newRow("Korean has no file") << cork << felt << 2 << false << QStringList();
        QTest::newRow("index beyond the list") << cork << felt << 3 << false << QStringList();
        QTest::newRow("empty array") << QByteArray("[]") << felt << 0 << true << QStringList();
        QTest::newRow("empty file") << QByteArray("") << felt << 0 << false << QStringList();
        QTest::newRow("invalid JSON") << QByteArray(R"([{"name": "Felt", )") << felt << 0 << false << QStringList();
        QTest::newRow("trailing text") << QByteArray("[] []") << felt << 0 << false << QStringList();
        QTest::newRow("object, not array") << felt.mid(1, felt.size() - 2) << felt << 0 << false << QStringList();
        QTest::newRow("key missing") << QByteArray(R"([{"name":"Felt"}])") << felt << 0 << false << QStringList();
        QTest::newRow("name not a string")
            << QByteArray(R"([{"name":7,"currentPower":1,"currentSpeed":1,"initPower":1,"initSpeed":1,"thickness":0}])")
            << felt << 0 << false << QStringList();
        QTest::newRow("power as text")
            << QByteArray(R"([{"name":"a","currentPower":"1","currentSpeed":1,"initPower":1,"initSpeed":1,"thickness":0}])")
            << felt << 0 << false << QStringList();
        QTest::newRow("beyond float range")
            << QByteArray(R"([{"name":"a","currentPower":1e300,"currentSpeed":1,"initPower":1,"initSpeed":1,"thickness":0}])")
            << felt << 0 << false << QStringList();
    }

    void load()
    {
        QFETCH(QByteArray, zh);
        QFETCH(QByteArray, en);
        QFETCH(int, language);
        QFETCH(bool, ok);
        QFETCH(QStringList, names);
        ScopedWorkDir dir;

        // A record left from an earlier load must not survive a failed one.
        MaterialLibrary library;
        library.setLanguageIndex(language);
        library.add(record(QStringLiteral("stale"), 1, 1));
        QCOMPARE(library.names(), QStringList{"stale"});

        QFile::remove(QStringLiteral("dataFile_zh.json"));
        QFile::remove(QStringLiteral("dataFile_en.json"));
        if (!zh.isNull())
            writeFile(QStringLiteral("dataFile_zh.json"), zh);
        if (!en.isNull())
            writeFile(QStringLiteral("dataFile_en.json"), en);
        QCOMPARE(library.load(), ok);
        QCOMPARE(library.names(), names);
        if (names == QStringList{"Felt"}) {
            const MaterialRecord *r = library.find(QStringLiteral("Felt"));
            QVERIFY(r);
            QCOMPARE(r->currentPower, 10.0f);
            QCOMPARE(r->currentSpeed, 20.0f);
            QCOMPARE(r->initPower, 30.0f);
            QCOMPARE(r->initSpeed, 40.0f);
            QCOMPARE(r->thickness, 2.5f);
        } else if (!names.isEmpty()) {
            // Key order in the file does not matter.
            const MaterialRecord *r = library.find(names.first());
            QVERIFY(r);
            QCOMPARE(r->currentPower, 7.0f);
            QCOMPARE(r->currentSpeed, 6.5f);
            QCOMPARE(r->initPower, 5.0f);
            QCOMPARE(r->initSpeed, 4.0f);
            QCOMPARE(r->thickness, 3.0f);
        }
    }

    // Steps: "+name" adds, "-name" removes; results gives each step's return value.
    void edits_data()
    {
        QTest::addColumn<int>("language");
        QTest::addColumn<QStringList>("steps");
        QTest::addColumn<QString>("results");
        QTest::addColumn<QStringList>("names");     // after reading the file again
        QTest::addColumn<QStringList>("absent");    // names find() must not match

        QTest::newRow("add to empty") << 0 << QStringList{"+Wood"} << "1"
                                      << QStringList{"Wood"} << QStringList{"wood", "Wood "};
        QTest::newRow("other letter case is a second record") << 1 << QStringList{"+Wood", "+wood"} << "11"
                                      << QStringList{"Wood", "wood"} << QStringList{"WOOD"};
        QTest::newRow("remove by name") << 0 << QStringList{"+Wood", "+Felt", "-Wood"} << "111"
                                        << QStringList{"Felt"} << QStringList{"Wood"};
        QTest::newRow("remove needs exact case") << 1 << QStringList{"+Wood", "-wood"} << "10"
                                                 << QStringList{"Wood"} << QStringList{"wood"};
        QTest::newRow("remove the first of two equal names") << 0 << QStringList{"+A", "+B", "+A", "-A"} << "1111"
                                                             << QStringList{"B", "A"} << QStringList();
        QTest::newRow("remove the last record") << 0 << QStringList{"+A", "-A", "-A"} << "110"
                                                << QStringList() << QStringList{"A"};
        QTest::newRow("UTF-8 names, composed and decomposed differ") << 0
            << QStringList{"+橡木", QStringLiteral("+caf\u00e9")} << "11"
            << QStringList{"橡木", QStringLiteral("caf\u00e9")} << QStringList{QStringLiteral("cafe\u0301")};
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
                ? library.add(record(name, 10 * i + 0.5f, i + 0.25f))
                : library.remove(name);
            got += ok ? QLatin1Char('1') : QLatin1Char('0');
        }
        QCOMPARE(got, results);

        MaterialLibrary reread;
        reread.setLanguageIndex(language);
        QVERIFY(reread.load());
        QCOMPARE(reread.names(), names);
        for (const QString &name : absent)
            QVERIFY2(!reread.find(name), qPrintable(name));
        // Every record read back equals the one added with that position's values.
        for (const MaterialRecord &r : reread.materials()) {
            const int step = steps.lastIndexOf(QLatin1Char('+') + r.name);
            QVERIFY(step >= 0);
            const MaterialRecord added = record(r.name, 10 * step + 0.5f, step + 0.25f);
            QCOMPARE(r.currentPower, added.currentPower);
            QCOMPARE(r.currentSpeed, added.currentSpeed);
            QCOMPARE(r.initPower, added.initPower);
            QCOMPARE(r.initSpeed, added.initSpeed);
            QCOMPARE(r.thickness, added.thickness);
        }
        QVERIFY(!QFile::exists(MaterialLibrary::fileName(1 - language)));
    }

    // Korean keeps its list in memory only: nothing is written anywhere.
    void koreanWritesNothing()
    {
        ScopedWorkDir dir;
        MaterialLibrary library;
        library.setLanguageIndex(MaterialLibrary::Korean);
        QVERIFY(!library.add(record(QStringLiteral("Wood"), 1, 2)));
        QVERIFY(library.find(QStringLiteral("Wood")));
        QVERIFY(!library.save());
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files), QStringList());
    }

    // Changing a found record (as the init button does) reaches the file only on save.
    void changesReachTheFileOnSave()
    {
        ScopedWorkDir dir;
        MaterialLibrary library;
        QVERIFY(library.add(record(QStringLiteral("Wood"), 40, 50)));
        const QByteArray before = readFile(QStringLiteral("dataFile_zh.json"));
        MaterialRecord *wood = library.find(QStringLiteral("Wood"));
        QVERIFY(wood);
        wood->currentPower = wood->initPower;
        wood->currentSpeed = wood->initSpeed;
        QCOMPARE(readFile(QStringLiteral("dataFile_zh.json")), before);
        QVERIFY(library.save());

        MaterialLibrary reread;
        QVERIFY(reread.load());
        QCOMPARE(reread.find(QStringLiteral("Wood"))->currentPower, 41.0f);
        QCOMPARE(reread.find(QStringLiteral("Wood"))->currentSpeed, 52.0f);
    }

    void fileText_data()
    {
        QTest::addColumn<QString>("name");   // empty: no record
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("empty list") << QString() << QByteArray("[]\n");
        QTest::newRow("one record") << QStringLiteral("Plywood 3mm") << QByteArray(
            "[\n"
            "    {\n"
            "        \"name\": \"Plywood 3mm\",\n"
            "        \"currentPower\": 80.0,\n"
            "        \"currentSpeed\": 20.5,\n"
            "        \"initPower\": 81.0,\n"
            "        \"initSpeed\": 22.5,\n"
            "        \"thickness\": 0.5\n"
            "    }\n"
            "]\n");
        QTest::newRow("UTF-8 and quotes kept as text") << QStringLiteral("亚克力 \"黑\"") << QByteArray(
            "[\n"
            "    {\n"
            "        \"name\": \"亚克力 \\\"黑\\\"\",\n"
            "        \"currentPower\": 80.0,\n"
            "        \"currentSpeed\": 20.5,\n"
            "        \"initPower\": 81.0,\n"
            "        \"initSpeed\": 22.5,\n"
            "        \"thickness\": 0.5\n"
            "    }\n"
            "]\n");
    }

    void fileText()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, text);
        ScopedWorkDir dir;
        MaterialLibrary library;
        if (name.isEmpty())
            QVERIFY(library.save());
        else
            QVERIFY(library.add(record(name, 80, 20.5f)));
        QCOMPARE(readFile(QStringLiteral("dataFile_zh.json")), text);
    }

    // The libraries shipped with the program load, and hold slider percentages.
    void shippedLibraries_data()
    {
        QTest::addColumn<int>("language");
        QTest::newRow("zh") << 0;
        QTest::newRow("en") << 1;
    }

    void shippedLibraries()
    {
        QFETCH(int, language);
        const QString fileName = MaterialLibrary::fileName(language);
        const QString shipped = QFINDTESTDATA("../../resources/materials/" + fileName);
        QVERIFY(!shipped.isEmpty());
        ScopedWorkDir dir;
        QVERIFY(QFile::copy(shipped, fileName));
        MaterialLibrary library;
        library.setLanguageIndex(language);
        QVERIFY(library.load());
        QVERIFY(library.materials().size() >= 4);
        QCOMPARE(library.names().removeDuplicates(), 0);
        for (const MaterialRecord &r : library.materials()) {
            for (float v : {r.currentPower, r.currentSpeed, r.initPower, r.initSpeed})
                QVERIFY2(v >= 0 && v <= 100, qPrintable(r.name));
            QVERIFY(r.thickness >= 0);
        }
    }
};

TARNWELL_TEST_MAIN(TestMaterialLibrary)
#include "tst_materiallibrary.moc"
