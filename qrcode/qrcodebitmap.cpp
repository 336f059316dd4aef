// QR-code pictures: a text encoded with libqrencode and written as an uncompressed 24-bit
// top-down Windows bitmap, one 16 x 16 pixel black or white block per module, no quiet zone.
#include "qrcodebitmap.h"

#include <QSaveFile>

#include <qrencode.h>

#include <cstring>

namespace {

const quint16 BitmapSignature = 0x4D42;  // "BM" read little-endian
const quint16 Planes = 1;
const quint16 BitsPerPixel = 24;
const char White = char(0xFF);
const char Black = 0x00;

void putU16(char *at, quint16 v)
{
    at[0] = char(v & 0xFF);
    at[1] = char(v >> 8);
}

void putU32(char *at, quint32 v)
{
    for (int i = 0; i < 4; ++i)
        at[i] = char((v >> (8 * i)) & 0xFF);
}

}  // namespace

const char *const QrCodeBitmap::FileName = "qrcode.bmp";

bool QrCodeBitmap::encode(const QString &text, int *width, QByteArray *modules)
{
    return encode(text, Level::H, width, modules);
}

bool QrCodeBitmap::encode(const QString &text, Level level, int *width, QByteArray *modules)
{
    const QRecLevel levels[] = {QR_ECLEVEL_L, QR_ECLEVEL_M, QR_ECLEVEL_Q, QR_ECLEVEL_H};
    const QByteArray utf8 = text.toUtf8();
    QRcode *code = QRcode_encodeString(utf8.constData(), 0, levels[int(level)], QR_MODE_8, 1);
    if (!code)
        return false;
    *width = code->width;
    *modules = QByteArray(reinterpret_cast<const char *>(code->data), code->width * code->width);
    QRcode_free(code);
    return true;
}

QByteArray QrCodeBitmap::bitmap(int width, const QByteArray &modules)
{
    if (width <= 0 || modules.size() / width < width)
        return QByteArray();

    const int side = width * BlockPixels;
    const int rowBytes = side * BytesPerPixel;  // a multiple of 48, so rows need no padding
    const int pixelBytes = rowBytes * side;
    // File header, then the 40-byte info header; everything not set here is zero.
    char header[HeaderBytes] = {};
    putU16(header + 0, BitmapSignature);
    putU32(header + 2, quint32(HeaderBytes + pixelBytes));
    putU32(header + 10, quint32(HeaderBytes));
    putU32(header + 14, quint32(InfoHeaderBytes));
    putU32(header + 18, quint32(side));
    putU32(header + 22, quint32(-side));  // negative height: rows stored top-down
    putU16(header + 26, Planes);
    putU16(header + 28, BitsPerPixel);

    QByteArray file;
    file.reserve(HeaderBytes + pixelBytes);
    file.append(header, HeaderBytes);
    file.append(QByteArray(pixelBytes, White));

    char *pixels = file.data() + HeaderBytes;
    const char *module = modules.constData();
    for (int my = 0; my < width; ++my) {
        for (int mx = 0; mx < width; ++mx) {
            if (!(module[my * width + mx] & 1))
                continue;
            char *block = pixels + my * BlockPixels * rowBytes + mx * BlockPixels * BytesPerPixel;
            for (int y = 0; y < BlockPixels; ++y)
                std::memset(block + y * rowBytes, Black, BlockPixels * BytesPerPixel);
        }
    }
    return file;
}

bool QrCodeBitmap::write(const QString &text, const QString &path)
{
    int width = 0;
    QByteArray modules;
    if (!encode(text, &width, &modules))
        return false;
    const QByteArray bytes = bitmap(width, modules);
    if (bytes.isEmpty())
        return false;
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}
