// tarnwell-export qr: a text as the QR-code bitmap the main window writes to "qrcode.bmp".
// The bitmap is made in the private working directory and published whole.
#include "exportcommon.h"

#include "qrcodebitmap.h"

namespace {

const char *const QrUsage = "Usage: tarnwell-export qr --text TEXT --output OUT.bmp\n"
                            "\n"
                            "Encodes the text (UTF-8, error correction level H) as a QR code and writes it\n"
                            "as a 24-bit bitmap with one 16 x 16 pixel block per module and no quiet zone.\n";

}  // namespace

int runQr(const QStringList &args)
{
    using namespace ExportCommon;
    Options options;
    QString error;
    if (!options.parse(args, {QStringLiteral("text"), QStringLiteral("output")}, &error))
        return fail(error);
    if (options.answeredHelp(QrUsage))
        return 0;
    if (const QString missing = options.firstMissing({"text", "output"}); !missing.isEmpty())
        return fail(QStringLiteral("--%1 is missing").arg(missing));

    const QString text = options.text(QStringLiteral("text"));
    const QString output = absolute(options.text(QStringLiteral("output")));
    if (text.isEmpty())
        return fail(QStringLiteral("--text is empty; there is nothing to encode"));
    if (!outputWritable(output))
        return fail(QStringLiteral("cannot write %1").arg(output));

    PrivateWorkDir work;
    if (!work.isValid())
        return fail(QStringLiteral("cannot create a temporary working directory"));
    if (!QrCodeBitmap::write(text, QString::fromLatin1(QrCodeBitmap::FileName)))
        return fail(QStringLiteral("the text is too long for a QR code (%1 bytes of UTF-8)").arg(text.toUtf8().size()));
    if (!publish(QString::fromLatin1(QrCodeBitmap::FileName), output, &error))
        return fail(error);
    return 0;
}
