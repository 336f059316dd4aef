// Translation catalogues in the resources: known translations, every form text covered
// in each language, and texts that must read the same in every language.
#include "testsupport.h"

#include <QFile>
#include <QTranslator>
#include <QXmlStreamReader>

class TestTranslations : public QObject
{
    Q_OBJECT

private slots:
    void catalogue_data()
    {
        QTest::addColumn<QString>("resource");
        QTest::addColumn<QStringList>("known");   // "context|source|translation"; empty: none
        // The paired warnings keep the start-up language; G-code and times never change.
        const QStringList fixed{"ImgBinaryEdit|无法打开图片|", "Draw|G91|", "Bitmap2Gcode|M107 \n|", "Draw|%1min %2s|"};
        QTest::newRow("zh") << ":/bin_zh.qm" << QStringList{"Draw|导出G代码|导出G代码", "CPSerialPort|断开|断开"} + fixed;
        QTest::newRow("en") << ":/bin_en.qm" << QStringList{"Draw|导出G代码|Export G-code", "CPSerialPort|连接|Connect",
                                                            "CPSerialPort|断开|Disconnect", "WaitingForm|正在...,请等待|Working..., please wait"} + fixed;
        QTest::newRow("ko") << ":/bin_ko.qm" << QStringList{"Draw|导出G代码|G코드 내보내기", "CPSerialPort|连接|연결",
                                                            "CPSerialPort|Notice|알림"} + fixed;
    }

    // A text with no translation falls through to an older translator, so the Chinese
    // catalogue carries every form text too, or the Chinese button could not undo English.
    void catalogue()
    {
        QFETCH(QString, resource);
        QFETCH(QStringList, known);
        QTranslator translator;
        QVERIFY(translator.load(resource));
        for (const QString &entry : known) {
            const QStringList part = entry.split(QLatin1Char('|'));
            QCOMPARE(translator.translate(part[0].toUtf8().constData(), part[1].toUtf8().constData()), part[2]);
        }

        QStringList missing;
        int checked = 0;
        for (const char *form : {"draw.ui", "cpserialport.ui", "imgbinaryedit.ui", "waitingform.ui", "renderform.ui", "allkindpic.ui"}) {
            QFile file(QFINDTESTDATA(QStringLiteral("../../forms/") + QLatin1String(form)));
            QVERIFY2(file.open(QIODevice::ReadOnly), form);
            QXmlStreamReader xml(&file);
            QByteArray context;
            while (!xml.atEnd()) {
                if (xml.readNext() != QXmlStreamReader::StartElement)
                    continue;
                if (xml.name() == QLatin1String("class") && context.isEmpty()) {
                    context = xml.readElementText().toUtf8();
                } else if (xml.name() == QLatin1String("string")
                           && xml.attributes().value(QLatin1String("notr")) != QLatin1String("true")) {
                    const QByteArray comment = xml.attributes().value(QLatin1String("comment")).toUtf8();
                    const QString text = xml.readElementText();
                    const QString got = translator.translate(context.constData(), text.toUtf8().constData(),
                                                             comment.isEmpty() ? nullptr : comment.constData());
                    if (!text.isEmpty() && (resource.contains("zh") ? got != text : got.isEmpty()))
                        missing << QString::fromUtf8(context) + QLatin1Char('/') + text;
                    ++checked;
                }
            }
        }
        QVERIFY(checked > 90);
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QLatin1String(", "))));
    }
};

TARNWELL_TEST_MAIN(TestTranslations)
#include "tst_translations.moc"
