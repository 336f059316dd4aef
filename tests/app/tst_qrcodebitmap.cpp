// QR-code bitmap: header bytes, module blocks, encoder settings, and the file on disk
// read back as a picture.
#include "qrcodebitmap.h"
#include "testsupport.h"

#include <QFile>
#include <QImage>

#include <qrencode.h>

class TestQrCodeBitmap : public QObject
{
    Q_OBJECT

private:
    static QByteArray readFile(const QString &name)
    {
        QFile f(name);
        if (!f.open(QIODevice::ReadOnly))
            return QByteArray();
        return f.readAll();
    }

private slots:
    // Header fields for symbols of 1, 2 and 21 modules, written out byte by byte.
    void header_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<int>("fileSize");
        QTest::addColumn<QByteArray>("header");
        const QByteArray tail = QByteArray::fromHex("01001800") + QByteArray(24, '\0');
        QTest::newRow("1 module") << 1 << 822
            << QByteArray::fromHex("424d36030000000000003600000028000000"
                                   "10000000f0ffffff") + tail;
        QTest::newRow("2 modules") << 2 << 3126
            << QByteArray::fromHex("424d360c0000000000003600000028000000"
                                   "20000000e0ffffff") + tail;
        QTest::newRow("21 modules") << 21 << 338742
            << QByteArray::fromHex("424d362b0500000000003600000028000000"
                                   "50010000b0feffff") + tail;
    }

    void header()
    {
        QFETCH(int, width);
        QFETCH(int, fileSize);
        QFETCH(QByteArray, header);
        QCOMPARE(header.size(), 54);
        const QByteArray bmp = QrCodeBitmap::bitmap(width, QByteArray(width * width, '\0'));
        QCOMPARE(bmp.size(), fileSize);
        QCOMPARE(bmp.left(54).toHex(), header.toHex());
        // All light modules: every pixel byte white.
        QCOMPARE(bmp.mid(54), QByteArray(fileSize - 54, char(0xFF)));
    }

    // Only the lowest bit marks a dark module: libqrencode keeps flags in the others.
    void blocks_data()
    {
        QTest::addColumn<QByteArray>("modules");
        QTest::addColumn<QByteArray>("pixels");
        const QByteArray black(48, '\0'), white(48, char(0xFF));
        QTest::newRow("diagonal, flag bits set") << QByteArray("\xc1\xc0\x02\x03", 4)
            << (black + white).repeated(16) + (white + black).repeated(16);
        QTest::newRow("top row dark") << QByteArray("\x01\x01\xfe\x00", 4)
            << (black + black).repeated(16) + (white + white).repeated(16);
        QTest::newRow("right column dark") << QByteArray("\x00\x81\x80\x01", 4)
            << (white + black).repeated(32);
    }

    void blocks()
    {
        QFETCH(QByteArray, modules);
        QFETCH(QByteArray, pixels);
        const QByteArray bmp = QrCodeBitmap::bitmap(2, modules);
        QCOMPARE(bmp.size(), 54 + 32 * 96);
        QCOMPARE(bmp.mid(54), pixels);
    }

    void badMatrix_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QByteArray>("modules");
        QTest::newRow("zero width") << 0 << QByteArray(4, '\1');
        QTest::newRow("negative width") << -2 << QByteArray(4, '\1');
        QTest::newRow("too few modules") << 3 << QByteArray(8, '\1');
    }

    void badMatrix()
    {
        QFETCH(int, width);
        QFETCH(QByteArray, modules);
        QVERIFY(QrCodeBitmap::bitmap(width, modules).isEmpty());
    }

    // Level H capacities in bytes: version 1 holds 7, version 2 holds 14, version 40 1273.
    void encode_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("width");   // 0: encoding fails
        QTest::newRow("empty") << QString() << 0;
        QTest::newRow("7 bytes, version 1") << QStringLiteral("abcdefg") << 21;
        QTest::newRow("8 bytes, version 2") << QStringLiteral("abcdefgh") << 25;
        QTest::newRow("UTF-8 of 4 Chinese characters, 12 bytes") << QStringLiteral("激光雕刻") << 25;
        QTest::newRow("1273 bytes, version 40") << QString(1273, QLatin1Char('a')) << 177;
        QTest::newRow("1274 bytes, too long") << QString(1274, QLatin1Char('a')) << 0;
    }

    void encode()
    {
        QFETCH(QString, text);
        QFETCH(int, width);
        int got = -1;
        QByteArray modules;
        QCOMPARE(QrCodeBitmap::encode(text, &got, &modules), width > 0);
        if (width > 0) {
            QCOMPARE(got, width);
            QCOMPARE(modules.size(), width * width);
        }
    }

    // Case-sensitive 8-bit mode: lower case is not folded into alphanumeric upper case.
    void encodeKeepsLetterCase()
    {
        int lowerWidth = 0, upperWidth = 0;
        QByteArray lower, upper;
        QVERIFY(QrCodeBitmap::encode(QStringLiteral("hello"), &lowerWidth, &lower));
        QVERIFY(QrCodeBitmap::encode(QStringLiteral("HELLO"), &upperWidth, &upper));
        QCOMPARE(lowerWidth, upperWidth);
        QVERIFY(lower != upper);
    }

    // Written files, and the cases that must leave an existing file alone.
    void writeFile_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("path");
        QTest::addColumn<bool>("ok");
        QTest::newRow("hello") << QStringLiteral("hello") << QString::fromLatin1(QrCodeBitmap::FileName) << true;
        QTest::newRow("address") << QStringLiteral("https://example.org/tarnwell?q=1")
                                 << QStringLiteral("out.bmp") << true;
        QTest::newRow("empty text") << QString() << QString::fromLatin1(QrCodeBitmap::FileName) << false;
        QTest::newRow("too long") << QString(1300, QLatin1Char('x')) << QStringLiteral("out.bmp") << false;
        QTest::newRow("missing folder") << QStringLiteral("hello") << QStringLiteral("no/such/dir/q.bmp") << false;
    }

    void writeFile()
    {
        QFETCH(QString, text);
        QFETCH(QString, path);
        QFETCH(bool, ok);
        ScopedWorkDir dir;
        const QByteArray previous("previous picture");
        if (!path.contains(QLatin1Char('/'))) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly));
            f.write(previous);
        }
        QCOMPARE(QrCodeBitmap::write(text, path), ok);
        const QByteArray bytes = readFile(path);
        if (!ok) {
            QCOMPARE(bytes, path.contains(QLatin1Char('/')) ? QByteArray() : previous);
            return;
        }

        // The modules straight from libqrencode, as the picture must show them.
        const QByteArray utf8 = text.toUtf8();
        QRcode *code = QRcode_encodeString(utf8.constData(), 0, QR_ECLEVEL_H, QR_MODE_8, 1);
        QVERIFY(code);
        const int width = code->width;
        const QByteArray modules(reinterpret_cast<const char *>(code->data), width * width);
        QRcode_free(code);

        const int side = width * 16;
        QCOMPARE(bytes.size(), 54 + side * side * 3);
        QImage image;
        QVERIFY(image.loadFromData(bytes, "BMP"));
        QCOMPARE(image.size(), QSize(side, side));
        for (int my = 0; my < width; ++my) {
            for (int mx = 0; mx < width; ++mx) {
                const QRgb expected = (modules.at(my * width + mx) & 1) ? qRgb(0, 0, 0) : qRgb(255, 255, 255);
                const int x = mx * 16, y = my * 16;
                for (const QPoint &p : {QPoint(x, y), QPoint(x + 15, y), QPoint(x, y + 15),
                                        QPoint(x + 15, y + 15), QPoint(x + 7, y + 8)}) {
                    if (image.pixel(p) != expected)
                        QFAIL(qPrintable(QStringLiteral("module (%1, %2) wrong at pixel (%3, %4)")
                                         .arg(mx).arg(my).arg(p.x()).arg(p.y())));
                }
            }
        }
    }
};

TARNWELL_TEST_MAIN(TestQrCodeBitmap)
#include "tst_qrcodebitmap.moc"
