// The main window as it comes up: mode from Config.ini, hidden widgets, sliders,
// and the machine settings fields that write themselves back.
#include "draw.h"
#include "testsupport.h"

#include <QFile>
#include <QFrame>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QSettings>
#include <QSlider>
#include <QSpinBox>
#include <QFontComboBox>
#include <QTabWidget>
#include <QProgressBar>

class TestDraw : public QObject
{
    Q_OBJECT

private:
    template <typename T>
    static T *child(Draw &w, const char *name)
    {
        T *found = w.findChild<T *>(QString::fromLatin1(name));
        if (!found)
            qFatal("no widget %s", name);
        return found;
    }

private slots:
    void modeFromConfig_data()
    {
        // clang-format off
        QTest::addColumn<QByteArray>("config");
        QTest::addColumn<bool>("laser");
        QTest::addColumn<bool>("cnc");
        QTest::addColumn<bool>("grayFrameHidden");
        QTest::addColumn<QString>("storedAfter");
        QTest::newRow("laser") << QByteArray("[Tarnwy]\nmode=laser\n") << true << false << false << "laser";
        QTest::newRow("cnc") << QByteArray("[Tarnwy]\nmode=cnc\n") << false << true << true << "cnc";
        QTest::newRow("missing") << QByteArray("[Tarnwy]\nlaser_on=M3\n") << false << false << false << "";
        QTest::newRow("no file") << QByteArray() << false << false << false << "";
        QTest::newRow("wrong case Laser") << QByteArray("[Tarnwy]\nmode=Laser\n") << false << false << false << "Laser";
        QTest::newRow("wrong case CNC") << QByteArray("[Tarnwy]\nmode=CNC\n") << false << false << false << "CNC";
        QByteArray junk;   // a damaged file starts the window as an empty one would
        for (int i = 0; i < 2000; ++i)
            junk.append(char((i * 37 + 11) & 0xff));
        QTest::newRow("binary garbage") << junk << false << false << false << "";
        // clang-format on
    }

    void modeFromConfig()
    {
        QFETCH(QByteArray, config);
        QFETCH(bool, laser);
        QFETCH(bool, cnc);
        QFETCH(bool, grayFrameHidden);
        QFETCH(QString, storedAfter);
        ScopedWorkDir dir;
        if (!config.isEmpty())
            TestFiles::write("Config.ini", config);
        Draw w;
        QCOMPARE(child<QRadioButton>(w, "radioButtonLaser")->isChecked(), laser);
        QCOMPARE(child<QRadioButton>(w, "radioButtonCNC")->isChecked(), cnc);
        QCOMPARE(child<QFrame>(w, "frame_grayout")->isHidden(), grayFrameHidden);
        QSettings s("Config.ini", QSettings::IniFormat);
        QCOMPARE(s.value("Tarnwy/mode").toString(), storedAfter);
    }

    void fieldsWriteTheirKey_data()
    {
        // clang-format off
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("key");
        QTest::addColumn<QString>("text");
        QTest::newRow("laser on") << "lineLaserOn" << "laser_on" << "M3 S255";
        QTest::newRow("laser off") << "lineLaserOff" << "laser_off" << "M5";
        QTest::newRow("cnc on") << "lineCNCOn" << "cnc_on" << "M3";
        QTest::newRow("cnc off") << "lineCNCOff" << "cnc_off" << "M5";
        QTest::newRow("travel") << "lineTravel" << "travel_speed" << "3600";
        QTest::newRow("cure speed key is crue") << "lineCureSpeed" << "crue_speed" << "800";
        QTest::newRow("feed z") << "lineCNCFeedZ" << "cnc_feed_z" << "-0.5";
        QTest::newRow("travel z") << "lineCNCTravelZ" << "cnc_travel_z" << "3";
        QTest::newRow("empty text is written") << "lineLaserOn" << "laser_on" << "";
        // clang-format on
    }

    void fieldsWriteTheirKey()
    {
        QFETCH(QString, field);
        QFETCH(QString, key);
        QFETCH(QString, text);
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\n" + key.toLatin1() + "=old value\n");
        Draw w;
        QLineEdit *edit = w.findChild<QLineEdit *>(field);
        QVERIFY(edit);
        QCOMPARE(edit->text(), QString("old value"));  // restored at start
        edit->setText(text);
        QVERIFY(QMetaObject::invokeMethod(edit, "editingFinished"));
        QSettings s("Config.ini", QSettings::IniFormat);
        QVERIFY(s.contains("Tarnwy/" + key));
        QCOMPARE(s.value("Tarnwy/" + key).toString(), text);
    }

    void pixelDistanceWritesNothing()
    {
        ScopedWorkDir dir;
        Draw w;
        QLineEdit *edit = child<QLineEdit>(w, "linePixixcelDist");
        edit->setText("0.1");
        QVERIFY(QMetaObject::invokeMethod(edit, "editingFinished"));
        QSettings s("Config.ini", QSettings::IniFormat);
        QCOMPARE(s.allKeys(), QStringList());
    }

    void startingState()
    {
        ScopedWorkDir dir;
        Draw w;
        for (const char *name :
             {"frame_6",      "lineCNCOn",       "lineCNCOff",       "lineCNCFeedZ",    "lineCNCTravelZ",
              "lineLaserOff", "lineLaserOn",     "lineTravel",       "lineCureSpeed",   "label_5",
              "label_6",      "label_7",         "label_8",          "label_9",         "label_10",
              "label_11",     "label_12",        "label_16",         "label_17",        "label_18",
              "label_19",     "btnLoadGcodeEnd", "btnLoadGcodeHead", "TimeProgressBar", "frame_2"}) {
            QWidget *widget = w.findChild<QWidget *>(QString::fromLatin1(name));
            QVERIFY2(widget, name);
            QVERIFY2(widget->isHidden(), name);
        }
        // The settings tab is gone from the tab bar, the job tab leads.
        QTabWidget *tabs = child<QTabWidget>(w, "carTabWidget");
        QCOMPARE(tabs->count(), 3);
        QCOMPARE(tabs->indexOf(w.findChild<QWidget *>("tabSettings")), -1);

        for (const char *name : {"speedHorizontalSlider", "powerHorizontalSlider"}) {
            QSlider *slider = child<QSlider>(w, name);
            QCOMPARE(slider->minimum(), 0);
            QCOMPARE(slider->maximum(), 100);
            QCOMPARE(slider->singleStep(), 1);
            QCOMPARE(slider->tickInterval(), 10);
            QCOMPARE(slider->tickPosition(), QSlider::TicksAbove);
        }
        QCOMPARE(child<QSlider>(w, "speedHorizontalSlider")->value(), 33);
        QCOMPARE(child<QSlider>(w, "powerHorizontalSlider")->value(), 91);
        QCOMPARE(child<QLabel>(w, "labelSpeed")->text(), QString("33"));
        QCOMPARE(child<QLabel>(w, "labelPower")->text(), QString("91"));
        QSpinBox *size = child<QSpinBox>(w, "FontSizeSpinBox");
        QCOMPARE(size->minimum(), 99);
        QCOMPARE(size->maximum(), 500);
        QCOMPARE(size->value(), 99);
        QVERIFY(!child<QFontComboBox>(w, "fontComboBox")->isEditable());
        QCOMPARE(w.windowTitle(), QString("TarnwellLaser V1.0.1"));
        QVERIFY(!w.windowIcon().isNull());

        // Slider moves show in the labels.
        child<QSlider>(w, "powerHorizontalSlider")->setValue(7);
        QCOMPARE(child<QLabel>(w, "labelPower")->text(), QString("7"));
    }

    void modeButtonsWriteMode()
    {
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", "[Tarnwy]\nmode=laser\n");
        Draw w;
        QRadioButton *cnc = child<QRadioButton>(w, "radioButtonCNC");
        cnc->click();
        QSettings s("Config.ini", QSettings::IniFormat);
        QCOMPARE(s.value("Tarnwy/mode").toString(), QString("cnc"));
        QVERIFY(child<QFrame>(w, "frame_grayout")->isHidden());
        child<QRadioButton>(w, "radioButtonLaser")->click();
        QSettings again("Config.ini", QSettings::IniFormat);
        QCOMPARE(again.value("Tarnwy/mode").toString(), QString("laser"));
        QVERIFY(!child<QFrame>(w, "frame_grayout")->isHidden());
    }
};

TARNWELL_TEST_MAIN(TestDraw)
#include "tst_draw.moc"
