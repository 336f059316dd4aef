// QR-code pictures: a text encoded with libqrencode and written as an uncompressed 24-bit
// top-down Windows bitmap, one 16 x 16 pixel black or white block per module, no quiet zone.
#ifndef QRCODEBITMAP_H
#define QRCODEBITMAP_H

#include <QByteArray>
#include <QString>

class QrCodeBitmap
{
public:
    // The main window's working file, in the current directory.
    static const char *const FileName;  // "qrcode.bmp"

    static constexpr int BlockPixels = 16;   // pixels per module, both ways
    static constexpr int BytesPerPixel = 3;  // blue, green, red
    static constexpr int FileHeaderBytes = 14;
    static constexpr int InfoHeaderBytes = 40;
    static constexpr int HeaderBytes = FileHeaderBytes + InfoHeaderBytes;

    // Error correction levels, from the least (L, about 7 % of the code words) to the most (H, 30 %).
    enum class Level { L, M, Q, H };

    // Encodes the UTF-8 form of the text (smallest version that fits, error correction H,
    // 8-bit mode, case-sensitive). On success `modules` holds width x width bytes in row
    // order, a module being dark when its lowest bit is set. False for an empty text or
    // one too long for any version.
    static bool encode(const QString &text, int *width, QByteArray *modules);
    // The same at the error correction level given.
    static bool encode(const QString &text, Level level, int *width, QByteArray *modules);

    // The whole bitmap file for a width x width module matrix; empty when the matrix
    // is smaller than width x width or width is not positive.
    static QByteArray bitmap(int width, const QByteArray &modules);

    // Encodes the text and writes its bitmap to `path`, replacing it as a whole.
    // False, with the file untouched, when encoding or writing fails.
    static bool write(const QString &text, const QString &path);
};

#endif
