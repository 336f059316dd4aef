// Benchmark of the job runner: a 100,000-line raster job streamed through a pty to a GRBL-like
// stand-in in its own thread. Prints lines per second, lost or reordered lines, the longest
// gap between event-loop turns, and how full GRBL's receive window was kept.
#include "jobrunner.h"
#include "machinelink.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSocketNotifier>
#include <QTemporaryDir>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int JobLines = 100000;
constexpr int SlowJobLines = 20000;  // the paced run only needs to reach a steady state
constexpr int Runs = 3;
constexpr int Window = 128;

// Answers "ok" to every line at once, or at most LINES_PER_SECOND a second like a busy planner,
// and checks that line i of the job arrives as the i-th line.
class StandIn : public QObject
{
public:
    StandIn(int fd, const QList<QByteArray> *expected, int linesPerSecond)
        : m_fd(fd), m_expected(expected), m_perSecond(linesPerSecond)
    {}
    std::atomic<int> received{0}, wrong{0}, overflow{0}, pending{0};

    void start()
    {
        m_notifier = new QSocketNotifier(m_fd, QSocketNotifier::Read, this);
        connect(m_notifier, &QSocketNotifier::activated, this, [this] { pull(); });
        m_clock.start();
        if (m_perSecond) {
            m_drain = new QTimer(this);
            connect(m_drain, &QTimer::timeout, this, [this] { answer(); });
            m_drain->start(1);
        }
    }

private:
    void pull()
    {
        char chunk[4096];
        for (ssize_t n; (n = ::read(m_fd, chunk, sizeof chunk)) > 0;) {
            for (ssize_t i = 0; i < n; ++i) {
                const char c = chunk[i];
                if (c == '?') {  // the runner is done once the board reports Idle
                    reply(pending ? "<Run|MPos:0.000,0.000,0.000>\n" : "<Idle|MPos:0.000,0.000,0.000>\n");
                    continue;
                }
                ++m_buffered;
                if (m_buffered > Window)
                    ++overflow;
                if (c != '\n') {
                    m_line.append(c);
                    continue;
                }
                // The link's own "$$" and "G90" come before the job.
                if (m_line == "$$") {
                    reply("$30=1000\nok\n");
                    m_buffered = 0;
                    m_clock.restart();  // the pace counts from the job, not from the set-up
                } else {
                    if (m_line != "G90") {
                        const int index = received++;
                        if (index >= m_expected->size() || m_expected->at(index) != m_line)
                            ++wrong;
                    }
                    m_lengths.push_back(m_line.size() + 1);
                    ++pending;
                }
                m_line.clear();
            }
        }
        if (!m_perSecond)
            answer();
    }

    void answer()
    {
        qint64 allowed = m_perSecond ? m_clock.elapsed() * m_perSecond / 1000 - m_answered : qint64(m_lengths.size());
        QByteArray oks;
        while (allowed-- > 0 && m_head < m_lengths.size()) {
            m_buffered -= m_lengths[m_head++];
            ++m_answered;
            --pending;
            oks += "ok\n";
        }
        if (m_head > 4096) {
            m_lengths.erase(m_lengths.begin(), m_lengths.begin() + m_head);
            m_head = 0;
        }
        reply(oks);
    }

    void reply(const QByteArray &bytes)
    {
        for (int done = 0; done < bytes.size();) {
            const ssize_t n = ::write(m_fd, bytes.constData() + done, size_t(bytes.size() - done));
            if (n > 0)
                done += int(n);
            else
                QThread::usleep(100);
        }
    }

    int m_fd;
    const QList<QByteArray> *m_expected;
    int m_perSecond;
    QSocketNotifier *m_notifier = nullptr;
    QTimer *m_drain = nullptr;
    QElapsedTimer m_clock;
    QByteArray m_line;
    std::vector<int> m_lengths;
    size_t m_head = 0;
    qint64 m_answered = 0;
    int m_buffered = 0;
};

QByteArray rasterJob(int lines, QList<QByteArray> *sent)
{
    QByteArray job = "G1 F1800 \nG28 X0 Y0  ;move X/Y to min endstops \nG0 F1800 \n";
    *sent << "G1 F1800"
          << "G0 X0 Y0"
          << "G0 F1800";
    for (int i = 0; sent->size() < lines; ++i) {
        const int row = i / 50;
        QByteArray line;
        if (i % 50 == 0)
            line = "G0 X10 Y" + QByteArray::number(10 + row * 0.1, 'f', 1) + " \n", *sent << line.trimmed();
        else if (i % 2)
            line = "M106 S255 \n", *sent << "M4 S1000";
        else
            line = "G1 X" + QByteArray::number(10 + (i % 50) * 0.1, 'f', 2) + " \n", *sent << line.trimmed();
        if (i % 50 == 49)
            line += "M107 \n", *sent << "M5";
        job += line;
    }
    while (sent->size() > lines)
        sent->removeLast();
    return job;
}

void run(const char *title, int linesPerSecond, const QByteArray &job, const QList<QByteArray> &expected,
         const QString &dir)
{
    QProcess socat;
    const QString a = dir + "/benchA", b = dir + "/benchB";
    QFile::remove(a), QFile::remove(b);
    socat.start("socat", {"pty,raw,echo=0,link=" + a, "pty,raw,echo=0,link=" + b});
    QElapsedTimer wait;
    wait.start();
    while (!(QFile::exists(a) && QFile::exists(b)) && wait.elapsed() < 5000)
        QThread::msleep(10);
    const int fd = ::open(QFile::encodeName(b).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
    if (fd < 0) {
        std::printf("%s: no pty pair (is socat installed?)\n", title);
        return;
    }
    QThread thread;
    StandIn standIn(fd, &expected, linesPerSecond);
    standIn.moveToThread(&thread);
    thread.start();
    QMetaObject::invokeMethod(&standIn, [&standIn] { standIn.start(); });

    MachineLink link;
    JobRunner runner(&link);
    runner.setPauseAtFrame(false);
    QString error;
    link.open(a, 115200, Firmware::Grbl, &error);
    link.setDetectTimes(100, 100);
    while (link.state() != MachineLink::Ready)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    runner.loadText(job, "bench", &error);

    // A 1 ms timer stands for the interface: the longest time between its turns is the stall.
    QElapsedTimer turn, total;
    qint64 longestGap = 0, fillSum = 0, fillSamples = 0;
    QTimer tick;
    QObject::connect(&tick, &QTimer::timeout, [&] {
        longestGap = std::max(longestGap, turn.restart());
        fillSum += link.unansweredBytes();
        ++fillSamples;
    });
    tick.start(1);
    turn.start();
    total.start();
    runner.start();
    while (runner.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    const double seconds = total.elapsed() / 1000.0;
    tick.stop();
    std::printf("%s\n", title);
    std::printf("  lines %d acknowledged %d in %.2f s: %.0f lines/s\n", runner.total(), runner.acknowledged(), seconds,
                runner.acknowledged() / seconds);
    std::printf("  lost %d, reordered or changed %d, buffer overflows %d\n",
                int(expected.size()) - standIn.received.load(), standIn.wrong.load(), standIn.overflow.load());
    std::printf("  longest gap between event-loop turns: %lld ms\n", static_cast<long long>(longestGap));
    std::printf("  GRBL window fill: %.1f%% on average over time, %.1f%% at each write (of %d bytes)\n",
                fillSamples ? 100.0 * fillSum / fillSamples / MachineLink::GrblWindow : 0.0,
                100.0 * link.meanWindowFill() / MachineLink::GrblWindow, MachineLink::GrblWindow);
    link.close();
    thread.quit();
    thread.wait();
    ::close(fd);
    socat.terminate();
    socat.waitForFinished(3000);
}

void quiet(QtMsgType, const QMessageLogContext &, const QString &) {}

}  // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler(quiet);
    QTemporaryDir dir;
    QList<QByteArray> expected, slowExpected;
    const QByteArray job = rasterJob(JobLines, &expected);
    const QByteArray slowJob = rasterJob(SlowJobLines, &slowExpected);
    // The machine is shared: several runs show how much the figures move with the load.
    for (int i = 1; i <= Runs; ++i)
        run(qPrintable(QStringLiteral("run %1 of %2, stand-in answering at once:").arg(i).arg(Runs)), 0, job, expected,
            dir.path());
    run("stand-in answering 3,000 lines/s (a busy planner):", 3000, slowJob, slowExpected, dir.path());
    return 0;
}
