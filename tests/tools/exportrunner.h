// Shared by the tests of tarnwell-export: the built binary run as users run it.
#ifndef EXPORTRUNNER_H
#define EXPORTRUNNER_H

#include <QProcess>
#include <QStringList>

struct ExportRun
{
    int status = -1;  // -1: still running after two minutes, -2: crashed
    QByteArray out;
    QByteArray err;
};

inline ExportRun runExport(const QStringList &args)
{
    QProcess process;
    process.start(QStringLiteral(TARNWELL_EXPORT), args);
    process.closeWriteChannel();  // it must never wait for input
    ExportRun run;
    if (!process.waitForFinished(120000)) {
        process.kill();
        process.waitForFinished();
        return run;
    }
    run.status = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -2;
    run.out = process.readAllStandardOutput();
    run.err = process.readAllStandardError();
    return run;
}

#endif
