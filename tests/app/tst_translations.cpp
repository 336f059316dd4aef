// Translation catalogues in the resources: known translations, every form text covered
// in each language, and texts that must read the same in every language.
#include "testsupport.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>

class TestTranslations : public QObject
{
    Q_OBJECT

private slots:
    void catalogue_data()
    {
        // clang-format off
        QTest::addColumn<QString>("resource");
        QTest::addColumn<QStringList>("known");   // "context|source|translation"; empty: none
        // The paired warnings keep the start-up language; G-code and times never change.
        const QStringList fixed{"ImgBinaryEdit|无法打开图片|", "Draw|G91|", "Bitmap2Gcode|M107 \n|", "Draw|%1min %2s|"};
        QTest::newRow("zh") << ":/bin_zh.qm" << QStringList{"Draw|导出G代码|导出G代码", "CPSerialPort|断开|断开",
                                                            "CPSerialPort|Notice|提示",
                                                            "CPSerialPort|Serial open failed.|串口打开失败。",
                                                            "ImgBinaryEdit|set value|设置阈值",
                                                            "Bitmap2Gcode|Notice|"} + fixed;
        QTest::newRow("en") << ":/bin_en.qm" << QStringList{"Draw|导出G代码|Export G-code", "CPSerialPort|连接|Connect",
                                                            "CPSerialPort|断开|Disconnect",
                                                            "WaitingForm|正在...,请等待|Working..., please wait",
                                                            "CPSerialPort|选择端口:|Serial Ports", "CPSerialPort|更新|Update",
                                                            "Bitmap2Gcode|提示|"} + fixed;
        // Korean starts with the English literals of the paired messages; nothing switches to it later.
        QTest::newRow("ko") << ":/bin_ko.qm" << QStringList{"Draw|导出G代码|G코드 내보내기", "CPSerialPort|连接|연결",
                                                            "CPSerialPort|Notice|알림", "Bitmap2Gcode|提示|알림",
                                                            "ImgBinaryEdit|The picture cannot be opened|사진을 열 수 없습니다",
                                                            "ImgBinaryEdit|The picture is too large to process|"
                                                            "사진이 너무 커서 처리할 수 없습니다"} + fixed;
        // clang-format on
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
        for (const char *form :
             {"draw.ui", "cpserialport.ui", "imgbinaryedit.ui", "waitingform.ui", "renderform.ui", "allkindpic.ui"}) {
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
                    // Chinese texts read the same in the Chinese catalogue; the few English
                    // ones (window titles) get a Chinese text of their own.
                    const bool chinese = text.contains(QRegularExpression(QStringLiteral("[\\x{4e00}-\\x{9fff}]")));
                    if (!text.isEmpty() && (resource.contains("zh") && chinese ? got != text : got.isEmpty()))
                        missing << QString::fromUtf8(context) + QLatin1Char('/') + text;
                    ++checked;
                }
            }
        }
        QVERIFY(checked > 90);
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QLatin1String(", "))));
    }

    // The machine reads G-code templates as they stand: no catalogue may ever translate one.
    void gcodeTemplatesStayAsWritten()
    {
        const QDir folder(QFileInfo(QFINDTESTDATA("../../resources/translations/bin_zh.ts")).absolutePath());
        const QRegularExpression machineText(QStringLiteral("^(G|M)\\d+\\b"));
        QList<QPair<QByteArray, QByteArray>> templates;
        for (const QString &name : folder.entryList({QStringLiteral("*.ts")}, QDir::Files)) {
            QFile file(folder.filePath(name));
            QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(name));
            QXmlStreamReader xml(&file);
            QByteArray context;
            while (!xml.atEnd()) {
                if (xml.readNext() != QXmlStreamReader::StartElement)
                    continue;
                if (xml.name() == QLatin1String("name")) {
                    context = xml.readElementText().toUtf8();
                } else if (xml.name() == QLatin1String("source")) {
                    const QString source = xml.readElementText();
                    if (machineText.match(source).hasMatch())
                        templates.append({context, source.toUtf8()});
                }
            }
        }
        QVERIFY(templates.size() >= 18);
        for (const char *resource : {":/bin_zh.qm", ":/bin_en.qm", ":/bin_ko.qm"}) {
            QTranslator translator;
            QVERIFY(translator.load(QString::fromLatin1(resource)));
            for (const auto &entry : qAsConst(templates))
                QVERIFY2(translator.translate(entry.first.constData(), entry.second.constData()).isEmpty(),
                         qPrintable(QStringLiteral("%1: %2 %3")
                                        .arg(QLatin1String(resource), QString::fromUtf8(entry.first),
                                             QString::fromUtf8(entry.second))));
        }
    }
};

TARNWELL_TEST_MAIN(TestTranslations)
#include "tst_translations.moc"
