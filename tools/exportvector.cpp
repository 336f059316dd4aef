// tarnwell-export vector: not available in this build yet.
#include "exportcommon.h"

int runVector(const QStringList &)
{
    return ExportCommon::fail(QStringLiteral("the vector subcommand is not available yet"));
}
