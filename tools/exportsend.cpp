// tarnwell-export send: streams a G-code file to a machine through the program's own job runner.
// Progress on standard error; exit 0 done (every line answered and the machine idle), 2 bad input,
// 3 firmware error, alarm or stop, 4 link lost or no answer in time.
#include "exportcommon.h"

#include "jobrunner.h"
#include "machinelink.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSocketNotifier>
#include <QTextStream>
#include <QTimer>
#include <csignal>
#include <unistd.h>

namespace {

constexpr int FirmwareError = 3;
constexpr int LinkFailed = 4;
constexpr int ProgressEveryMs = 1000;
constexpr int DefaultTimeoutSeconds = 30;
constexpr int BeamOffWaitMs = 500;  // the last beam-off is on its way when the job ends

const char *const SendUsage =
    "Usage: tarnwell-export send --port DEV --input JOB.gcode [--baud N]\n"
    "       [--firmware auto|grbl|marlin] [--continue-on-error] [--no-pause] [--timeout S]\n"
    "\n"
    "Streams the file to the machine on DEV (any serial device path) with flow control:\n"
    "comments and blank lines dropped, GRBL rewrites applied. After tracing the frame the\n"
    "job waits for Enter on standard input (the end of input stops it); --no-pause goes on\n"
    "at once. Ctrl-C stops the job and turns the beam off. The job is done when every line\n"
    "is acknowledged and the machine has finished moving. The time-out (default 30 s) counts\n"
    "from the oldest line not yet acknowledged; only an answer, a movement of the machine or\n"
    "a hold restarts it. Exit status: 0 done, 2 bad input, 3 firmware error, alarm or stop\n"
    "(also when the stop leaves the machine in alarm: unlock it with $X), 4 connection lost\n"
    "or no answer within the time-out.\n";

// Ctrl-C and kill reach the event loop through this pipe, so that a stop still turns the beam off.
int g_stopPipe[2] = {-1, -1};

void onStopSignal(int)
{
    const char byte = 1;
    if (::write(g_stopPipe[1], &byte, 1) < 0) {
        // Nothing more can be done inside a signal handler.
    }
}

void say(const QString &line) { QTextStream(stderr) << "tarnwell-export: " << line << '\n'; }

}  // namespace

int runSend(const QStringList &given)
{
    using namespace ExportCommon;
    // The two switches take no value; the common parser reads the rest.
    QStringList args = given;
    const bool continueOnError = args.removeAll(QStringLiteral("--continue-on-error")) > 0;
    const bool noPause = args.removeAll(QStringLiteral("--no-pause")) > 0;
    Options options;
    QString error;
    if (!options.parse(args, {"port", "input", "baud", "firmware", "timeout"}, &error))
        return fail(error);
    if (options.answeredHelp(SendUsage))
        return 0;
    if (const QString missing = options.firstMissing({"port", "input"}); !missing.isEmpty())
        return fail(QStringLiteral("--%1 is missing").arg(missing));
    int baud = 0, timeout = 0;
    if (!options.integer("baud", MachineLink::DefaultBaud, &baud, &error)
        || !options.integer("timeout", DefaultTimeoutSeconds, &timeout, &error))
        return fail(error);
    if (baud <= 0 || timeout <= 0)
        return fail(QStringLiteral("--baud and --timeout must be above 0"));
    const QString firmwareName = options.text("firmware", "auto");
    Firmware firmware = Firmware::Unknown;
    if (firmwareName == "grbl")
        firmware = Firmware::Grbl;
    else if (firmwareName == "marlin")
        firmware = Firmware::Marlin;
    else if (firmwareName != "auto")
        return fail(QStringLiteral("--firmware: '%1' is not auto, grbl or marlin").arg(firmwareName));

    MachineLink link;
    link.setAnswerTimeout(timeout * 1000);
    JobRunner runner(&link);
    runner.setContinueOnError(continueOnError);
    runner.setPauseAtFrame(!noPause);
    if (!runner.load(absolute(options.text("input")), &error))
        return fail(error);
    if (!link.open(options.text("port"), baud, firmware, &error))
        return fail(error);

    int status = -1;
    // Before the job begins the link's own failures end the run; once it has begun, the runner
    // reports them with the line they concern.
    QObject::connect(&link, &MachineLink::failed, [&](const QString &message) {
        if (runner.state() == JobRunner::Idle && status < 0) {
            say(message);
            status = LinkFailed;
        }
    });
    QObject::connect(&link, &MachineLink::connectionLost, [&](const QString &message) {
        if (runner.state() == JobRunner::Idle && status < 0) {
            say(message);
            status = LinkFailed;
        }
    });
    QObject::connect(&link, &MachineLink::stateChanged, [&](MachineLink::State state) {
        if (state == MachineLink::Ready && runner.state() == JobRunner::Idle)
            runner.start();
    });
    QObject::connect(&runner, &JobRunner::lineFailed,
                     [](int line, const QString &text) { say(QStringLiteral("line %1: %2").arg(line).arg(text)); });

    // The frame pause waits for Enter; the end of input stops the job.
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    input.setEnabled(false);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        char chunk[256];
        const ssize_t n = ::read(STDIN_FILENO, chunk, sizeof chunk);
        if (runner.state() != JobRunner::FramePause)
            return;
        if (n <= 0) {
            input.setEnabled(false);
            runner.stop();
        } else if (memchr(chunk, '\n', size_t(n))) {
            runner.resume();
        }
    });
    QObject::connect(&runner, &JobRunner::stateChanged, [&](JobRunner::State state) {
        input.setEnabled(state == JobRunner::FramePause);
        if (state == JobRunner::FramePause)
            say(QStringLiteral("frame traced: check the frame, then press Enter to go on"));
    });
    QObject::connect(&runner, &JobRunner::finished, [&] {
        say(runner.message());
        switch (runner.state()) {
        case JobRunner::Done:
            status = 0;
            break;
        case JobRunner::Failed:
            status = runner.failure() == JobRunner::ConnectionLost || runner.failure() == JobRunner::Timeout
                         ? LinkFailed
                         : FirmwareError;
            break;
        default:
            status = FirmwareError;  // stopped at the frame
        }
    });

    QSocketNotifier *stopNotifier = nullptr;
    if (::pipe(g_stopPipe) == 0) {
        stopNotifier = new QSocketNotifier(g_stopPipe[0], QSocketNotifier::Read, &link);
        QObject::connect(stopNotifier, &QSocketNotifier::activated, [&] {
            char byte;
            if (::read(g_stopPipe[0], &byte, 1) <= 0)
                return;
            if (runner.isActive()) {
                runner.stop();  // no-op while already stopping
            } else if (status < 0) {
                say(QStringLiteral("stopped before the job began"));
                status = FirmwareError;
            }
        });
        std::signal(SIGINT, onStopSignal);
        std::signal(SIGTERM, onStopSignal);
    }

    QTimer progress;
    QObject::connect(&progress, &QTimer::timeout, [&] {
        if (runner.state() == JobRunner::Finishing) {
            QTextStream(stderr) << QStringLiteral("sent %1/%1 lines, %2%, finishing: the machine is still moving\n")
                                       .arg(runner.total())
                                       .arg(runner.percent());
            return;
        }
        if (runner.state() != JobRunner::Running)
            return;
        QTextStream(stderr) << QStringLiteral("sent %1/%2 lines, %3%, %4 left\n")
                                   .arg(runner.sent())
                                   .arg(runner.total())
                                   .arg(runner.percent())
                                   .arg(JobRunner::clockText(runner.remainingSeconds()));
    });
    progress.start(ProgressEveryMs);

    while (status < 0)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    // The runner sends its last beam-off before it finishes; let it leave the queue.
    QElapsedTimer wait;
    wait.start();
    while (link.isOpen() && link.queuedLines() > 0 && wait.elapsed() < BeamOffWaitMs)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    link.close();
    std::signal(SIGINT, SIG_DFL);
    std::signal(SIGTERM, SIG_DFL);
    return status;
}
