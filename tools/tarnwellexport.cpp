// tarnwell-export: runs the program's own generators without a window.
// Dispatches to one subcommand; every byte written comes from the program's classes.
#include "exportcommon.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QTextStream>

static const char *const Usage = "Usage: tarnwell-export SUBCOMMAND [options]\n"
                                 "\n"
                                 "Subcommands:\n"
                                 "  raster   a picture to raster engraving G-code\n"
                                 "  vector   an SVG drawing to vector G-code (laser or CNC)\n"
                                 "  trace    a picture traced into an outline SVG\n"
                                 "  qr       a text as a QR-code bitmap\n"
                                 "  preview  a G-code job drawn as a PNG of the work area, with its figures\n"
                                 "  send     a G-code file streamed to a connected machine\n"
                                 "  job      a job file (layers of pictures, drawings, text) to G-code\n"
                                 "  testgrid a material test grid of powers and speeds as G-code\n"
                                 "\n"
                                 "'tarnwell-export SUBCOMMAND --help' describes each one;\n"
                                 "'tarnwell-export --version' prints the version.\n";

// Standard error carries only the tool's own one-line messages, so the generators'
// debug notes and Qt's start-up remarks are dropped.
static void quietMessages(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtFatalMsg) {
        QTextStream(stderr) << "tarnwell-export: " << message << '\n';
        abort();
    }
}

int main(int argc, char *argv[])
{
    // Read the arguments before Qt sees them: QApplication would take options
    // such as --style for itself.
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);

    // The generators paint into pictures and never open a window.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler(quietMessages);
    int qtArgc = 1;
    QApplication app(qtArgc, argv);

    // Only what comes before the subcommand is the command's own; the rest is the subcommand's.
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption help(QStringLiteral("help"));
    const QCommandLineOption version(QStringLiteral("version"));
    parser.addOptions({help, version});
    if (!parser.parse(QStringList(QString()) + args)) {
        const QStringList unknown = parser.unknownOptionNames();
        return ExportCommon::fail(unknown.isEmpty()
                                      ? parser.errorText()
                                      : QStringLiteral("unknown subcommand '%1' (try --help)").arg(args.first()));
    }
    QStringList rest = parser.positionalArguments();
    if (parser.isSet(help) || rest.value(0) == QLatin1String("help")) {
        QTextStream(stdout) << Usage;
        return 0;
    }
    if (parser.isSet(version)) {
        QTextStream(stdout) << "tarnwell-export " << TARNWELL_VERSION << '\n';
        return 0;
    }
    if (rest.isEmpty())
        return ExportCommon::fail(QStringLiteral("no subcommand given (try --help)"));
    const QString command = rest.takeFirst();
    args = rest;
    if (command == QLatin1String("raster"))
        return runRaster(args);
    if (command == QLatin1String("vector"))
        return runVector(args);
    if (command == QLatin1String("trace"))
        return runTrace(args);
    if (command == QLatin1String("qr"))
        return runQr(args);
    if (command == QLatin1String("preview"))
        return runPreview(args);
    if (command == QLatin1String("send"))
        return runSend(args);
    if (command == QLatin1String("job"))
        return runJob(args);
    if (command == QLatin1String("testgrid"))
        return runTestGrid(args);
    return ExportCommon::fail(QStringLiteral("unknown subcommand '%1' (try --help)").arg(command));
}
