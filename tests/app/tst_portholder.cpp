// The Machine window and the port panel above it: whichever way the panel left its worker, the
// Machine window tells whether the panel holds the port and takes it over on Release.
#include "cpserialport.h"
#include "draw.h"
#include "machinepanel.h"
#include "ptypair.h"
#include "testsupport.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

class TestPortHolder : public QObject
{
    Q_OBJECT

private slots:
    void releaseFromThePanel_data()
    {
        // clang-format off
        QTest::addColumn<QString>("heldAfterClicks");  // after each click on the panel: H held, N not
        QTest::newRow("panel connected") << "H";
        QTest::newRow("panel disconnected, its worker still holds the port") << "HH";
        QTest::newRow("third click closed the port") << "HHN";
        // clang-format on
    }
    void releaseFromThePanel()
    {
        QFETCH(QString, heldAfterClicks);
        ScopedWorkDir dir;
        PtyPair pty(dir.path(), "tty");
        QVERIFY(pty.start());
        TestFiles::write("Config.ini", "[Language]\nlanguage=English\n");
        Draw w;
        CPSerialPort *holder = w.serialPanel();
        QComboBox *ports = holder->findChild<QComboBox *>("portCombo");
        ports->addItem(pty.endA());
        ports->setCurrentText(pty.endA());
        for (const QChar state : heldAfterClicks) {
            holder->findChild<QPushButton *>("btnConnect")->click();
            QTRY_COMPARE(holder->holdsPort(), state == 'H');
        }
        const bool held = heldAfterClicks.endsWith('H');

        MachinePanel *panel = w.machinePanel();
        panel->findChild<QLineEdit *>("pathEdit")->setText(pty.endA());
        panel->findChild<QPushButton *>("connectButton")->click();
        QPushButton *release = panel->findChild<QPushButton *>("releaseButton");
        QCOMPARE(!release->isHidden(), held);
        if (held) {
            QCOMPARE(panel->findChild<QLabel *>("jobMessageLabel")->text(),
                     "The port panel above holds " + pty.endA() + ".");
            release->click();
            QTRY_VERIFY(!holder->holdsPort());
        }
        QTRY_VERIFY_WITH_TIMEOUT(panel->link()->isOpen(), 5000);
        QVERIFY(!holder->holdsPort());
    }
};

TARNWELL_TEST_MAIN(TestPortHolder)
#include "tst_portholder.moc"
