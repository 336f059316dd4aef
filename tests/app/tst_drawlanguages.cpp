// The main window in each interface language: Qt's own dialogs follow it, and every text of
// the main window and the Machine window fits its widget.
#include "draw.h"
#include "machinepanel.h"
#include "testsupport.h"

#include <QCoreApplication>
#include <QPushButton>

namespace {

QByteArray languageConfig(const QString &language)
{
    return "[Tarnwy]\nmode=laser\n[Language]\nlanguage=" + language.toUtf8() + "\n";
}

}  // namespace

class TestDrawLanguages : public QObject
{
    Q_OBJECT

private slots:
    // Qt's file dialogs and standard buttons: Chinese and Korean from Qt's own catalogues,
    // English as Qt writes it, also after the language buttons.
    void qtDialogs_data()
    {
        // clang-format off
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("button");  // the language button pressed after start-up, if any
        QTest::addColumn<QString>("yes");
        QTest::addColumn<QString>("back");
        QTest::newRow("Chinese") << "Chinese" << "" << QString::fromUtf8("是(&Y)") << QString::fromUtf8("后退");
        QTest::newRow("English") << "English" << "" << "&Yes" << "Back";
        QTest::newRow("Korean") << "Korean" << "" << QString::fromUtf8("예(&Y)") << QString::fromUtf8("뒤로");
        QTest::newRow("unknown language is Chinese") << "French" << "" << QString::fromUtf8("是(&Y)")
                                                     << QString::fromUtf8("后退");
        QTest::newRow("Chinese, then English") << "Chinese" << "btnEn" << "&Yes" << "Back";
        QTest::newRow("Korean, then English") << "Korean" << "btnEn" << "&Yes" << "Back";
        QTest::newRow("English, then Chinese") << "English" << "btnZh" << QString::fromUtf8("是(&Y)")
                                               << QString::fromUtf8("后退");
        QTest::newRow("Korean, then Chinese") << "Korean" << "btnZh" << QString::fromUtf8("是(&Y)")
                                              << QString::fromUtf8("后退");
        // clang-format on
    }
    void qtDialogs()
    {
        QFETCH(QString, language);
        QFETCH(QString, button);
        QFETCH(QString, yes);
        QFETCH(QString, back);
        ScopedWorkDir dir;
        TestFiles::write("Config.ini", languageConfig(language));
        {
            Draw w;
            if (!button.isEmpty())
                w.findChild<QPushButton *>(button)->click();
            QCOMPARE(QCoreApplication::translate("QPlatformTheme", "&Yes"), yes);
            QCOMPARE(QCoreApplication::translate("QFileDialog", "Back"), back);
        }
        // The window's translators go with it.
        QCOMPARE(QCoreApplication::translate("QFileDialog", "Back"), QString("Back"));
    }
};

TARNWELL_TEST_MAIN(TestDrawLanguages)
#include "tst_drawlanguages.moc"
