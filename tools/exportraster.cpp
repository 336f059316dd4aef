// tarnwell-export raster: not available in this build yet.
#include "exportcommon.h"

int runRaster(const QStringList &)
{
    return ExportCommon::fail(QStringLiteral("the raster subcommand is not available yet"));
}
