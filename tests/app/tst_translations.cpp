// Translation catalogues in the resources: known translations, every form text covered
// in each language, and the texts that must never change with the language.
#include "testsupport.h"

#include <QFile>
#include <QTranslator>
#include <QXmlStreamReader>

namespace {

const char *const Catalogues[] = {":/bin_zh.qm", ":/bin_en.qm", ":/bin_ko.qm"};
const char *const Forms[] = {"draw.ui", "cpserialport.ui", "imgbinaryedit.ui",
                             "waitingform.ui", "renderform.ui", "allkindpic.ui"};

struct FormText
{
    QString context;
    QString source;
    QString comment;
};

// The translatable texts of a designer form, in the context of the form's class.
QList<FormText> formTexts(const QString &path)
{
    QList<FormText> texts;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return texts;
    QXmlStreamReader xml(&file);
    QString context;
    while (!xml.atEnd()) {
        if (!xml.readNextStartElement())
            continue;
        if (xml.name() == QLatin1String("class") && context.isEmpty()) {
            context = xml.readElementText();
        } else if (xml.name() == QLatin1String("string")) {
            const QXmlStreamAttributes attributes = xml.attributes();
            const bool untranslatable = attributes.value(QLatin1String("notr")) == QLatin1String("true");
            const QString comment = attributes.value(QLatin1String("comment")).toString();
            const QString text = xml.readElementText();
            if (!untranslatable && !text.isEmpty())
                texts.append({context, text, comment});
        }
    }
    return texts;
}

} // namespace

class TestTranslations : public QObject
{
    Q_OBJECT

private slots:
    void known_data()
    {
        QTest::addColumn<int>("catalogue");
        QTest::addColumn<QString>("context");
        QTest::addColumn<QString>("source");
        QTest::addColumn<QString>("translation");
        QTest::newRow("en export") << 1 << "Draw" << "导出G代码" << "Export G-code";
        QTest::newRow("en connect") << 1 << "CPSerialPort" << "连接" << "Connect";
        QTest::newRow("en disconnect, set in code") << 1 << "CPSerialPort" << "断开" << "Disconnect";
        QTest::newRow("en threshold done") << 1 << "ImgBinaryEdit" << "完成" << "Done";
        QTest::newRow("en wait") << 1 << "WaitingForm" << "正在...,请等待" << "Working..., please wait";
        QTest::newRow("en effects") << 1 << "AllKindPic" << "图像效果" << "Image effects";
        QTest::newRow("ko export") << 2 << "Draw" << "导出G代码" << "G코드 내보내기";
        QTest::newRow("ko connect") << 2 << "CPSerialPort" << "连接" << "연결";
        QTest::newRow("ko English text in code") << 2 << "CPSerialPort" << "Notice" << "알림";
        QTest::newRow("zh export stays Chinese") << 0 << "Draw" << "导出G代码" << "导出G代码";
        QTest::newRow("zh disconnect stays Chinese") << 0 << "CPSerialPort" << "断开" << "断开";
        // Warnings chosen by the language index keep the start-up language.
        QTest::newRow("en paired warning untouched") << 1 << "ImgBinaryEdit" << "无法打开图片" << "";
        // G-code and the estimated time must read the same in every language.
        QTest::newRow("en G-code untouched") << 1 << "Draw" << "G91" << "";
        QTest::newRow("ko G-code untouched") << 2 << "Bitmap2Gcode" << "M107 \n" << "";
        QTest::newRow("ko time untouched") << 2 << "Draw" << "%1min %2s" << "";
    }

    void known()
    {
        QFETCH(int, catalogue);
        QFETCH(QString, context);
        QFETCH(QString, source);
        QFETCH(QString, translation);
        QTranslator translator;
        QVERIFY(translator.load(QString::fromLatin1(Catalogues[catalogue])));
        QCOMPARE(translator.translate(context.toUtf8().constData(), source.toUtf8().constData()),
                 translation);
    }

    // A text with no translation falls through to an older translator, so the Chinese
    // catalogue must carry every form text too, or the Chinese button could not undo English.
    void everyFormText_data()
    {
        QTest::addColumn<int>("catalogue");
        QTest::newRow("zh") << 0;
        QTest::newRow("en") << 1;
        QTest::newRow("ko") << 2;
    }

    void everyFormText()
    {
        QFETCH(int, catalogue);
        QTranslator translator;
        QVERIFY(translator.load(QString::fromLatin1(Catalogues[catalogue])));
        int checked = 0;
        QStringList missing;
        for (const char *form : Forms) {
            const QString path = QFINDTESTDATA(QStringLiteral("../../forms/") + QLatin1String(form));
            QVERIFY2(!path.isEmpty(), form);
            const QList<FormText> texts = formTexts(path);
            QVERIFY2(!texts.isEmpty(), form);
            for (const FormText &t : texts) {
                const QByteArray context = t.context.toUtf8(), source = t.source.toUtf8(),
                                 comment = t.comment.toUtf8();
                const QString got = translator.translate(context.constData(), source.constData(),
                                                         comment.isEmpty() ? nullptr : comment.constData());
                const bool ok = catalogue == 0 ? got == t.source : !got.isEmpty();
                if (!ok)
                    missing << t.context + QLatin1Char('/') + t.source;
                ++checked;
            }
        }
        QVERIFY(checked > 90);
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QLatin1String(", "))));
    }
};

TARNWELL_TEST_MAIN(TestTranslations)
#include "tst_translations.moc"
