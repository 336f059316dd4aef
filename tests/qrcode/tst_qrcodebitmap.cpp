// QR-code bitmap: exact bytes for small matrices, encoder settings, and files on disk
// read back as pictures module by module.
#include "qrcodebitmap.h"
#include "testsupport.h"

#include <QFile>
#include <QImage>

#include <qrencode.h>

class TestQrCodeBitmap : public QObject
{
    Q_OBJECT

private slots:
    // Only the lowest bit marks a dark module: libqrencode keeps flags in the others.
    void bitmap_data()
    {
        // clang-format off
        QTest::addColumn<int>("width");
        QTest::addColumn<QByteArray>("modules");
        QTest::addColumn<QByteArray>("expected");   // empty: refused
        const QByteArray black(48, '\0'), white(48, char(0xFF));
        const QByteArray head2 = QByteArray::fromHex("424d360c00000000000036000000280000002000"
                                                     "0000e0ffffff01001800") + QByteArray(24, '\0');
        QTest::newRow("1 light") << 1 << QByteArray("\xfe", 1) << QByteArray::fromHex(
            "424d3603000000000000360000002800000010000000f0ffffff01001800") + QByteArray(24, '\0') + white.repeated(16);
        QTest::newRow("diagonal, flag bits set") << 2 << QByteArray("\xc1\xc0\x02\x03", 4)
                                                 << head2 + (black + white).repeated(16) + (white + black).repeated(16);
        QTest::newRow("right column") << 2 << QByteArray("\x00\x81\x80\x01", 4) << head2 + (white + black).repeated(32);
        QTest::newRow("zero width") << 0 << QByteArray(4, '\1') << QByteArray();
        QTest::newRow("too few modules") << 3 << QByteArray(8, '\1') << QByteArray();
        // clang-format on
    }

    void bitmap()
    {
        QFETCH(int, width);
        QFETCH(QByteArray, modules);
        QFETCH(QByteArray, expected);
        QCOMPARE(QrCodeBitmap::bitmap(width, modules).toHex(), expected.toHex());
    }

    // Level H holds 7 bytes in version 1, 14 in version 2 and 1273 in version 40.
    void write_data()
    {
        // clang-format off
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("path");
        QTest::addColumn<int>("modules");   // 0: nothing written
        QTest::addColumn<QByteArray>("header");
        QTest::newRow("7 bytes") << "abcdefg" << QrCodeBitmap::FileName << 21 << QByteArray::fromHex(
            "424d362b050000000000360000002800000050010000b0feffff01001800") + QByteArray(24, '\0');
        QTest::newRow("8 bytes, case kept") << "abcdefgH" << "q.bmp" << 25 << QByteArray();
        QTest::newRow("12 bytes of UTF-8") << "激光雕刻" << "q.bmp" << 25 << QByteArray();
        QTest::newRow("1273 bytes") << QString(1273, 'a') << "q.bmp" << 177 << QByteArray();
        QTest::newRow("1274 bytes") << QString(1274, 'a') << "q.bmp" << 0 << QByteArray();
        QTest::newRow("empty") << QString() << QrCodeBitmap::FileName << 0 << QByteArray();
        QTest::newRow("missing folder") << "abc" << "no/dir/q.bmp" << 0 << QByteArray();
        // clang-format on
    }

    void write()
    {
        QFETCH(QString, text);
        QFETCH(QString, path);
        QFETCH(int, modules);
        QFETCH(QByteArray, header);
        ScopedWorkDir dir;
        QFile old(QStringLiteral("q.bmp"));  // a failed write leaves the previous picture
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();
        QCOMPARE(QrCodeBitmap::write(text, path), modules > 0);
        QFile file(path);
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        if (modules == 0) {
            QCOMPARE(bytes, QByteArray(path == QLatin1String("q.bmp") ? "old" : ""));
            return;
        }
        const int side = modules * 16;
        QCOMPARE(bytes.size(), 54 + side * side * 3);
        if (!header.isEmpty())
            QCOMPARE(bytes.left(54).toHex(), header.toHex());

        // The picture must show libqrencode's modules, with case-sensitive 8-bit text at level H.
        const QByteArray utf8 = text.toUtf8();
        QRcode *code = QRcode_encodeString(utf8.constData(), 0, QR_ECLEVEL_H, QR_MODE_8, 1);
        QVERIFY(code && code->width == modules);
        const QByteArray dark(reinterpret_cast<const char *>(code->data), modules * modules);
        QRcode_free(code);
        QImage image;
        QVERIFY(image.loadFromData(bytes, "BMP"));
        QCOMPARE(image.size(), QSize(side, side));
        for (int i = 0; i < modules * modules; ++i) {
            const int x = i % modules * 16, y = i / modules * 16;
            const QRgb want = (dark.at(i) & 1) ? qRgb(0, 0, 0) : qRgb(255, 255, 255);
            for (const QPoint &p : {QPoint(x, y), QPoint(x + 15, y + 15), QPoint(x + 15, y), QPoint(x, y + 15)}) {
                if (image.pixel(p) != want)
                    QFAIL(qPrintable(QStringLiteral("module %1 wrong at (%2, %3)").arg(i).arg(p.x()).arg(p.y())));
            }
        }
    }
};

TARNWELL_TEST_MAIN(TestQrCodeBitmap)
#include "tst_qrcodebitmap.moc"
