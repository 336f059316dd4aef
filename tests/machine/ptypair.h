// Pseudo-terminal pairs for the machine-link tests: socat joins two ptys, one
// end is opened by the code under test, the other is read and written here.
#ifndef PTYPAIR_H
#define PTYPAIR_H

#include <QByteArray>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QString>

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

// One socat process with two linked pty ends in a directory.
class PtyPair
{
public:
    PtyPair(const QString &dir, const QString &tag)
        : m_a(QDir(dir).filePath(tag + QStringLiteral("A"))),
          m_b(QDir(dir).filePath(tag + QStringLiteral("B")))
    {
    }
    ~PtyPair() { stop(); }
    PtyPair(const PtyPair &) = delete;
    PtyPair &operator=(const PtyPair &) = delete;

    // Starts socat and waits until both links point at live pty devices.
    bool start(int timeoutMs = 5000)
    {
        m_process.setStandardOutputFile(QProcess::nullDevice());
        m_process.setStandardErrorFile(QProcess::nullDevice());
        m_process.start(QStringLiteral("socat"),
                        {QStringLiteral("-d"), QStringLiteral("-d"),
                         QStringLiteral("pty,raw,echo=0,link=") + m_a,
                         QStringLiteral("pty,raw,echo=0,link=") + m_b});
        if (!m_process.waitForStarted(timeoutMs))
            return false;
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < timeoutMs) {
            if (QFileInfo(m_a).exists() && QFileInfo(m_b).exists())
                return true;
            if (m_process.state() == QProcess::NotRunning)
                return false;
            m_process.waitForFinished(10);
        }
        return false;
    }

    // Ends socat by its process id, as unplugging the cable would.
    void stop()
    {
        if (m_process.state() == QProcess::NotRunning)
            return;
        const qint64 pid = m_process.processId();
        if (pid > 0)
            ::kill(static_cast<pid_t>(pid), SIGTERM);
        if (!m_process.waitForFinished(3000)) {
            ::kill(static_cast<pid_t>(pid), SIGKILL);
            m_process.waitForFinished(3000);
        }
    }

    QString endA() const { return m_a; }
    QString endB() const { return m_b; }

private:
    QString m_a;
    QString m_b;
    QProcess m_process;
};

// The test's own side of a pty: raw, non-blocking, read while events keep flowing.
class PtyPeer
{
public:
    PtyPeer() = default;
    ~PtyPeer() { close(); }
    PtyPeer(const PtyPeer &) = delete;
    PtyPeer &operator=(const PtyPeer &) = delete;

    bool open(const QString &path)
    {
        close();
        m_fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        if (m_fd < 0)
            return false;
        termios tio;
        if (::tcgetattr(m_fd, &tio) == 0) {
            ::cfmakeraw(&tio);
            ::tcsetattr(m_fd, TCSANOW, &tio);
        }
        return true;
    }

    void close()
    {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
    }

    bool write(const QByteArray &bytes)
    {
        qint64 done = 0;
        while (done < bytes.size()) {
            const ssize_t n = ::write(m_fd, bytes.constData() + done,
                                      static_cast<size_t>(bytes.size() - done));
            if (n < 0 && errno != EAGAIN && errno != EINTR)
                return false;
            if (n > 0)
                done += n;
        }
        return true;
    }

    // Collects bytes until at least `expected` have come, then keeps listening
    // `settleMs` longer so that extra bytes are seen too; gives up at timeoutMs.
    QByteArray read(int expected, int timeoutMs = 3000, int settleMs = 150)
    {
        QByteArray got;
        QElapsedTimer clock;
        clock.start();
        qint64 settleStart = -1;
        while (clock.elapsed() < timeoutMs) {
            if (settleStart < 0 && got.size() >= expected)
                settleStart = clock.elapsed();
            if (settleStart >= 0 && clock.elapsed() - settleStart >= settleMs)
                break;
            QCoreApplication::processEvents();
            pollfd p{m_fd, POLLIN, 0};
            if (::poll(&p, 1, 10) > 0 && (p.revents & POLLIN)) {
                char chunk[4096];
                const ssize_t n = ::read(m_fd, chunk, sizeof chunk);
                if (n > 0)
                    got.append(chunk, static_cast<int>(n));
            }
        }
        return got;
    }

private:
    int m_fd = -1;
};

#endif
