// tarnwell-export qr: not available in this build yet.
#include "exportcommon.h"

int runQr(const QStringList &)
{
    return ExportCommon::fail(QStringLiteral("the qr subcommand is not available yet"));
}
