#include "exportcommon.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>
#include <cmath>
#include <cstdio>
#ifdef Q_OS_UNIX
#include <fcntl.h>
#include <unistd.h>
#endif

namespace ExportCommon {

int fail(const QString &message)
{
    QTextStream err(stderr);
    err << "tarnwell-export: " << message << '\n';
    return BadInput;
}

const QString Options::HelpName = QStringLiteral("help");

bool Options::parse(const QStringList &args, const QStringList &known, QString *error, const QStringList &switches)
{
    m_parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    m_parser.addOption(QCommandLineOption(HelpName));
    for (const QString &name : switches)
        m_parser.addOption(QCommandLineOption(name));
    for (const QString &name : known)
        m_parser.addOption(QCommandLineOption(name, QString(), name));
    // The parser takes the first argument for the program's name.
    if (!m_parser.parse(QStringList(QString()) + args)) {
        const QStringList unknown = m_parser.unknownOptionNames();
        if (!unknown.isEmpty())
            *error = QStringLiteral("unknown option '--%1'").arg(unknown.first());
        else if (!args.isEmpty() && known.contains(args.last().mid(2)))
            *error = QStringLiteral("option '%1' needs a value").arg(args.last());
        else
            *error = m_parser.errorText();
        return false;
    }
    if (!m_parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("unexpected argument '%1'").arg(m_parser.positionalArguments().first());
        return false;
    }
    return true;
}

bool Options::answeredHelp(const char *usage) const
{
    if (!help())
        return false;
    QTextStream(stdout) << usage;
    return true;
}

QString Options::firstMissing(std::initializer_list<const char *> required) const
{
    for (const char *name : required) {
        if (!has(QLatin1String(name)))
            return QLatin1String(name);
    }
    return QString();
}

QString Options::text(const QString &name, const QString &fallback) const
{
    return has(name) ? m_parser.value(name) : fallback;
}

bool Options::number(const QString &name, double fallback, double *out, QString *error) const
{
    if (!has(name)) {
        *out = fallback;
        return true;
    }
    bool ok = false;
    const double v = m_parser.value(name).toDouble(&ok);
    if (!ok || !std::isfinite(v)) {
        *error = QStringLiteral("--%1: '%2' is not a number").arg(name, m_parser.value(name));
        return false;
    }
    *out = v;
    return true;
}

bool Options::integer(const QString &name, int fallback, int *out, QString *error) const
{
    if (!has(name)) {
        *out = fallback;
        return true;
    }
    bool ok = false;
    const int v = m_parser.value(name).toInt(&ok);
    if (!ok) {
        *error = QStringLiteral("--%1: '%2' is not a whole number").arg(name, m_parser.value(name));
        return false;
    }
    *out = v;
    return true;
}

bool Options::percent(const QString &name, int fallback, int *out, QString *error) const
{
    if (!integer(name, fallback, out, error))
        return false;
    if (*out < 0 || *out > 100) {
        *error = QStringLiteral("--%1: %2 is outside 0 to 100").arg(name).arg(*out);
        return false;
    }
    return true;
}

PrivateWorkDir::PrivateWorkDir() : m_previous(QDir::currentPath())
{
    if (m_dir.isValid())
        QDir::setCurrent(m_dir.path());
}

PrivateWorkDir::~PrivateWorkDir() { QDir::setCurrent(m_previous); }

QString absolute(const QString &path) { return QFileInfo(path).absoluteFilePath(); }

bool outputWritable(const QString &path)
{
    const QFileInfo info(path);
    if (info.isDir())
        return false;
    if (info.exists())
        return info.isWritable();
    const QFileInfo folder(info.absolutePath());
    return folder.isDir() && folder.isWritable();
}

bool publish(const QString &source, const QString &output, QString *error)
{
    QFile in(source);
    if (!in.open(QIODevice::ReadOnly)) {
        *error = QStringLiteral("the generator wrote no output");
        return false;
    }
    QSaveFile out(output);
    if (!out.open(QIODevice::WriteOnly)) {
        *error = QStringLiteral("cannot write %1").arg(output);
        return false;
    }
    while (!in.atEnd()) {
        const QByteArray chunk = in.read(1 << 20);
        if (out.write(chunk) != chunk.size()) {
            out.cancelWriting();
            *error = QStringLiteral("cannot write %1").arg(output);
            return false;
        }
    }
    if (!out.commit()) {
        *error = QStringLiteral("cannot write %1").arg(output);
        return false;
    }
    return true;
}

}  // namespace ExportCommon

namespace {
void quietHandler(QtMsgType, const QMessageLogContext &, const QString &) {}
}  // namespace

QuietStderr::QuietStderr() : m_previous(qInstallMessageHandler(quietHandler))
{
#ifdef Q_OS_UNIX
    std::fflush(stderr);
    m_saved = dup(STDERR_FILENO);
    const int null = open("/dev/null", O_WRONLY);
    if (m_saved >= 0 && null >= 0)
        dup2(null, STDERR_FILENO);
    if (null >= 0)
        close(null);
#endif
}

QuietStderr::~QuietStderr()
{
#ifdef Q_OS_UNIX
    std::fflush(stderr);
    if (m_saved >= 0) {
        dup2(m_saved, STDERR_FILENO);
        close(m_saved);
    }
#endif
    qInstallMessageHandler(m_previous);
}
