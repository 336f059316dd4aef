// tarnwell-export trace: not available in this build yet.
#include "exportcommon.h"

int runTrace(const QStringList &)
{
    return ExportCommon::fail(QStringLiteral("the trace subcommand is not available yet"));
}
