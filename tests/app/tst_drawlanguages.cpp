// The main window in each interface language: Qt's own dialogs follow it, and every text of
// the main window and the Machine window fits its widget.
#include "draw.h"
#include "machinepanel.h"
#include "testsupport.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QStyle>
#include <QTabWidget>
#include <QStyleOptionButton>
#include <QTextDocument>

namespace {

QByteArray languageConfig(const QString &language)
{
    return "[Tarnwy]\nmode=laser\n[Language]\nlanguage=" + language.toUtf8() + "\n";
}

// The stylesheet the program starts with: it sets fonts and paddings.
QString programStyleSheet()
{
    QFile style(QStringLiteral(":/qdarkstyle/test.qss"));
    return style.open(QFile::ReadOnly | QFile::Text) ? QString::fromUtf8(style.readAll()) : QString();
}

// The widest line of TEXT in FONT; mnemonics ('&') and markup take no room.
int textWidth(const QFontMetrics &metrics, QString text, bool rich)
{
    if (rich) {
        QTextDocument document;
        document.setHtml(text);
        text = document.toPlainText();
    }
    text.replace(QLatin1String("&&"), QLatin1String("\x01")).remove(QLatin1Char('&'));
    text.replace(QLatin1String("\x01"), QLatin1String("&"));
    int widest = 0;
    for (const QString &line : text.split(QLatin1Char('\n')))
        widest = qMax(widest, metrics.horizontalAdvance(line));
    return widest;
}

// Room for the text of a button: its contents box as the style draws it, less the icon. An option
// button gets the room of its narrower state: a checked indicator may be drawn larger.
int buttonRoom(QAbstractButton *button)
{
    QStyle::SubElement element = QStyle::SE_PushButtonContents;
    if (qobject_cast<QCheckBox *>(button))
        element = QStyle::SE_CheckBoxContents;
    else if (qobject_cast<QRadioButton *>(button))
        element = QStyle::SE_RadioButtonContents;
    int room = button->width();
    for (const QStyle::StateFlag state : {QStyle::State_On, QStyle::State_Off}) {
        if (element == QStyle::SE_PushButtonContents
            && state != (button->isChecked() ? QStyle::State_On : QStyle::State_Off))
            continue;
        QStyleOptionButton option;
        option.initFrom(button);
        option.state |= state;
        option.text = button->text();
        option.icon = button->icon();
        option.iconSize = button->iconSize();
        room = qMin(room, button->style()->subElementRect(element, &option, button).width());
    }
    if (!button->icon().isNull())
        room -= button->iconSize().width() + 4;
    return room;
}

// Every shown button, check box and label of WINDOW whose text is wider than its room.
QStringList overflowing(QWidget *window)
{
    QStringList found;
    for (QAbstractButton *button : window->findChildren<QAbstractButton *>()) {
        if (!button->isVisibleTo(window) || button->text().isEmpty() || button->window() != window)
            continue;
        const int need = textWidth(button->fontMetrics(), button->text(), false);
        const int room = buttonRoom(button);
        if (need > room)
            found << QStringLiteral("%1 \"%2\" %3 > %4").arg(button->objectName(), button->text()).arg(need).arg(room);
    }
    for (QLabel *label : window->findChildren<QLabel *>()) {
        if (!label->isVisibleTo(window) || label->text().isEmpty() || label->wordWrap() || label->window() != window)
            continue;
        const bool rich = label->textFormat() == Qt::RichText
                          || (label->textFormat() == Qt::AutoText && Qt::mightBeRichText(label->text()));
        const int need = textWidth(label->fontMetrics(), label->text(), rich);
        const int room = label->contentsRect().width() - 2 * label->margin();
        if (need > room)
            found << QStringLiteral("%1 \"%2\" %3 > %4").arg(label->objectName(), label->text()).arg(need).arg(room);
    }
    return found;
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

    // The main window and the Machine window as the program shows them, in each language and
    // in both modes; every text must show whole.
    void textsFit_data()
    {
        // clang-format off
        QTest::addColumn<QString>("language");
        QTest::addColumn<QString>("mode");
        for (const char *language : {"Chinese", "English", "Korean"})
            for (const char *mode : {"laser", "cnc"})
                QTest::newRow(qPrintable(QStringLiteral("%1, %2").arg(language, mode))) << language << mode;
        // clang-format on
    }
    void textsFit()
    {
        QFETCH(QString, language);
        QFETCH(QString, mode);
        ScopedWorkDir dir;
        TestFiles::write("Config.ini",
                         "[Tarnwy]\nmode=" + mode.toUtf8() + "\n[Language]\nlanguage=" + language.toUtf8() + "\n");
        qApp->setStyleSheet(programStyleSheet());
        Draw w;
        w.show();
        w.machinePanel()->show();
        QVERIFY(QTest::qWaitForWindowExposed(&w));
        QVERIFY(QTest::qWaitForWindowExposed(w.machinePanel()));
        QStringList found = overflowing(w.machinePanel());
        // Each page of the tab widgets in turn: the others are hidden.
        const QList<QTabWidget *> tabs = w.findChildren<QTabWidget *>();
        for (QTabWidget *tab : tabs)
            for (int page = 0; page < tab->count(); ++page) {
                tab->setCurrentIndex(page);
                QCoreApplication::processEvents();
                for (const QString &text : overflowing(&w))
                    if (!found.contains(text))
                        found << text;
            }
        qApp->setStyleSheet(QString());
        QVERIFY2(found.isEmpty(), qPrintable(found.join(QLatin1String("; "))));
    }
};

TARNWELL_TEST_MAIN(TestDrawLanguages)
#include "tst_drawlanguages.moc"
