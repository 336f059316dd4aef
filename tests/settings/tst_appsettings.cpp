// Config.ini and Slice.ini access: keys, defaults, letter case and damaged files.
#include "appsettings.h"
#include "testsupport.h"

#include <QFile>
#include <QSettings>

class TestAppSettings : public QObject
{
    Q_OBJECT

private:
private slots:
    void languageLookup_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<bool>("found");
        QTest::addColumn<int>("index");
        QTest::newRow("no file") << QByteArray() << false << 0;
        QTest::newRow("Chinese") << QByteArray("[Language]\nlanguage=Chinese\n") << true << 0;
        QTest::newRow("English") << QByteArray("[Language]\nlanguage=English\n") << true << 1;
        QTest::newRow("Korean") << QByteArray("[Language]\nlanguage=Korean\n") << true << 2;
        QTest::newRow("lower case english") << QByteArray("[Language]\nlanguage=english\n") << false << 0;
        QTest::newRow("upper case KOREAN") << QByteArray("[Language]\nlanguage=KOREAN\n") << false << 0;
        QTest::newRow("French") << QByteArray("[Language]\nlanguage=French\n") << false << 0;
        QTest::newRow("wrong group") << QByteArray("[Tarnwy]\nlanguage=English\n") << false << 0;
        // clang-format on
    }

    void languageLookup()
    {
        QFETCH(QByteArray, config);
        QFETCH(bool, found);
        QFETCH(int, index);
        ScopedWorkDir dir;
        if (!config.isNull())
            TestFiles::write("Config.ini", config);
        int looked = -7;
        QCOMPARE(AppSettings::lookupLanguage(&looked), found);
        if (found)
            QCOMPARE(looked, index);
        else
            QCOMPARE(looked, -7);  // untouched on failure
        QCOMPARE(AppSettings::languageIndex(), index);
    }

    void defaultsWhenMissing()
    {
        ScopedWorkDir dir;
        QCOMPARE(AppSettings::tarnwyString("laser_on"), QString());
        QCOMPARE(AppSettings::mode(), QString());
        QCOMPARE(AppSettings::preVectorPath(), QString());
        QCOMPARE(AppSettings::xOffset(), 0.0);
        QCOMPARE(AppSettings::yOffset(), 0.0);
        QCOMPARE(AppSettings::threshold(), 0);
        QCOMPARE(AppSettings::slicePath(), QString());
        // Reading creates no file.
        QVERIFY(!QFile::exists("Config.ini"));
        QVERIFY(!QFile::exists("Slice.ini"));
    }

    void writesLandInTheRightFileAndGroup()
    {
        ScopedWorkDir dir;
        AppSettings::setTarnwyString("crue_speed", "1200");
        AppSettings::setOffset(12.5, -3.25);
        AppSettings::setSlicePath("/pictures/a.png");
        AppSettings::setThreshold(137);

        // Read back with an independent reader: the keys must be exactly these.
        QSettings config("Config.ini", QSettings::IniFormat);
        QCOMPARE(config.value("Tarnwy/crue_speed").toString(), QString("1200"));
        QCOMPARE(config.value("Tarnwy/xoffset").toDouble(), 12.5);
        QCOMPARE(config.value("Tarnwy/yoffset").toDouble(), -3.25);
        QCOMPARE(config.value("Slice/pre_vector_path").toString(), QString("/pictures/a.png"));
        QVERIFY(!config.contains("Slice/thread_hold"));
        QSettings slice("Slice.ini", QSettings::IniFormat);
        QCOMPARE(slice.value("Slice/thread_hold").toInt(), 137);

        QCOMPARE(AppSettings::threshold(), 137);
        QCOMPARE(AppSettings::xOffset(), 12.5);
    }

    void eachCallSeesTheFileAsItIsNow()
    {
        ScopedWorkDir dir;
        AppSettings::setMode("cnc");
        QCOMPARE(AppSettings::mode(), QString("cnc"));
        // Another program (or the user) edits the file between two calls.
        QFile::remove("Config.ini");
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\n");
        QCOMPARE(AppSettings::mode(), QString("laser"));
    }

    void otherKeyNameIsNotRead()
    {
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\ncure_speed=900\nCrue_Speed=800\n");
        QCOMPARE(AppSettings::tarnwyString("crue_speed"), QString());
    }

    void damagedFiles_data()
    {
        // clang-format off
        QTest::addColumn<int>("kind");
        QTest::newRow("binary garbage") << 0;
        QTest::newRow("directory in its place") << 1;
        // clang-format on
    }

    void damagedFiles()
    {
        QFETCH(int, kind);
        ScopedWorkDir dir;
        if (kind == 0) {
            QByteArray junk;
            for (int i = 0; i < 4096; ++i)
                junk.append(char((i * 131 + 7) & 0xff));
            TestFiles::write("Config.ini", junk);
            TestFiles::write("Slice.ini", junk);
        } else {
            QVERIFY(QDir().mkdir("Config.ini"));
            QVERIFY(QDir().mkdir("Slice.ini"));
        }
        QCOMPARE(AppSettings::mode(), QString());
        QCOMPARE(AppSettings::languageIndex(), 0);
        QCOMPARE(AppSettings::threshold(), 0);
        AppSettings::setMode("laser");  // must not crash
        AppSettings::setThreshold(10);
        if (kind == 1) {
            QVERIFY(QFileInfo("Config.ini").isDir());
            QCOMPARE(AppSettings::mode(), QString());
        }
    }

    // QSettings decodes "@Variant(...)" values from their binary form; a count in there can ask
    // for any amount of memory. Such a file reads as empty and is started afresh on a write.
    void storedObjects_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<QString>("mode");   // what mode() reads; "<none>": the file is refused
        const QByteArray polygon = "@Variant(\\0\\0\\0G\\0\\xff\\xff\\xff\\xff)";
        QTest::newRow("polygon of 4 billion points") << "mode=" + polygon << "<none>";
        QTest::newRow("quoted") << "mode=\"" + polygon + "\"" << "<none>";
        QTest::newRow("second element of a list") << "mode=laser, " + polygon << "<none>";
        QTest::newRow("at sign as an escape") << "mode=\\x40" + polygon.mid(1) << "<none>";
        QTest::newRow("value continued on the next line") << "mode=laser,\\\n" + polygon << "<none>";
        QTest::newRow("stored date") << QByteArray("mode=@DateTime(\\0\\0\\0\\xff)") << "<none>";
        QTest::newRow("escaped at sign is text") << QByteArray("mode=@@Variant(x)") << "@Variant(x)";
        QTest::newRow("text form") << QByteArray("mode=@String(laser)") << "laser";
        QTest::newRow("at sign inside a value is text") << QByteArray("mode=me@host") << "me@host";
        QTest::newRow("in a comment line") << "; mode=" + polygon << "";
        // clang-format on
    }
    void storedObjects()
    {
        QFETCH(QByteArray, line);
        QFETCH(QString, mode);
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Language]\nlanguage=English\n[Tarnwy]\n" + line + "\nxoffset=7\n");
        const bool refused = mode == "<none>";
        QCOMPARE(AppSettings::mode(), refused ? QString() : mode);
        QCOMPARE(AppSettings::languageIndex(), refused ? 0 : 1);
        AppSettings::setOffset(3, 4);
        QCOMPARE(AppSettings::xOffset(), 3.0);
        QCOMPARE(AppSettings::languageIndex(), refused ? 0 : 1);
    }
};

TARNWELL_TEST_MAIN(TestAppSettings)
#include "tst_appsettings.moc"
