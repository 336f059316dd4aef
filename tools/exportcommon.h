// Common rules of tarnwell-export: long options, number checks, the slider defaults,
// the private working directory and the all-or-nothing output.
#ifndef EXPORTCOMMON_H
#define EXPORTCOMMON_H

#include "machinevalues.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QtGlobal>

#include <initializer_list>

namespace ExportCommon {

// Exit status for any bad input.
constexpr int BadInput = 2;

// Slider defaults of the main window.
constexpr int DefaultSpeedPercent = MachineValues::StartSpeed;
constexpr int DefaultPowerPercent = MachineValues::StartPower;

// One line on standard error; returns BadInput so callers can `return fail(...)`.
int fail(const QString &message);

// Parses "--name value" pairs, the switches named in `switches` and "--help". Every
// name must be in `known` or `switches`; a repeated option keeps the last value.
class Options
{
public:
    bool parse(const QStringList &args, const QStringList &known, QString *error,
               const QStringList &switches = QStringList());
    bool help() const { return m_parser.isSet(HelpName); }
    // Prints `usage` to standard output when --help was given, and says whether it was.
    bool answeredHelp(const char *usage) const;
    // The first of `required` that was not given, or an empty string when all were.
    QString firstMissing(std::initializer_list<const char *> required) const;
    bool has(const QString &name) const { return m_parser.isSet(name); }
    QString text(const QString &name, const QString &fallback = QString()) const;
    // Number readers: false (with a message naming the option) when the text is not a number.
    bool number(const QString &name, double fallback, double *out, QString *error) const;
    bool integer(const QString &name, int fallback, int *out, QString *error) const;
    // A percentage option: an integer from 0 to 100.
    bool percent(const QString &name, int fallback, int *out, QString *error) const;

private:
    static const QString HelpName;
    QCommandLineParser m_parser;
};

// Makes a temporary directory the current one for the generators' fixed-name files,
// and returns to the caller's directory, removing it, when it goes.
class PrivateWorkDir
{
public:
    PrivateWorkDir();
    ~PrivateWorkDir();
    bool isValid() const { return m_dir.isValid(); }
    QString path() const { return m_dir.path(); }

private:
    QString m_previous;
    QTemporaryDir m_dir;
};

// An absolute path for a name given relative to the caller's directory.
QString absolute(const QString &path);

// Can `path` be created or replaced? Checked before any generator runs.
bool outputWritable(const QString &path);

// Copies a finished file to the output as a whole: the output appears complete or not at all.
bool publish(const QString &source, const QString &output, QString *error);

}  // namespace ExportCommon

// Holds back everything written to standard error and Qt's message log while it lives:
// decoders and generators print their own complaints there, and the exporter's standard
// error carries only its one-line message. Nothing may call fail() while one is alive.
class QuietStderr
{
public:
    QuietStderr();
    ~QuietStderr();
    QuietStderr(const QuietStderr &) = delete;
    QuietStderr &operator=(const QuietStderr &) = delete;

private:
    QtMessageHandler m_previous;
    int m_saved = -1;
};

// Subcommands: each takes the arguments after its name and returns the exit status.
int runRaster(const QStringList &args);
int runVector(const QStringList &args);
int runTrace(const QStringList &args);
int runQr(const QStringList &args);
int runPreview(const QStringList &args);
int runSend(const QStringList &args);
int runJob(const QStringList &args);
int runTestGrid(const QStringList &args);

#endif
