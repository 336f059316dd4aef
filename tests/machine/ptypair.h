// Pseudo-terminal pair for the machine-link tests: socat joins two ptys; the code
// under test opens endA(), the test reads and writes the other end itself.
#ifndef PTYPAIR_H
#define PTYPAIR_H

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

class PtyPair
{
public:
    PtyPair(const QString &dir, const QString &tag)
        : m_a(QDir(dir).filePath(tag + "A")), m_b(QDir(dir).filePath(tag + "B")) {}
    ~PtyPair() { stop(); }

    // Starts socat, waits for both links and opens the test's end raw.
    bool start()
    {
        m_socat.setStandardErrorFile(QProcess::nullDevice());
        m_socat.start("socat", {"-d", "-d", "pty,raw,echo=0,link=" + m_a, "pty,raw,echo=0,link=" + m_b});
        QElapsedTimer clock;
        clock.start();
        while (!(QFile::exists(m_a) && QFile::exists(m_b)) && clock.elapsed() < 5000)
            m_socat.waitForFinished(10);
        m_fd = ::open(QFile::encodeName(m_b).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        termios tio;
        if (m_fd >= 0 && ::tcgetattr(m_fd, &tio) == 0) {
            ::cfmakeraw(&tio);
            ::tcsetattr(m_fd, TCSANOW, &tio);
        }
        return m_fd >= 0;
    }

    // Pulls the plug: closes the test's end and ends socat by its process id.
    void stop()
    {
        if (m_fd >= 0)
            ::close(m_fd);
        m_fd = -1;
        if (m_socat.state() != QProcess::NotRunning) {
            ::kill(pid_t(m_socat.processId()), SIGTERM);
            m_socat.waitForFinished(3000);
        }
    }

    QString endA() const { return m_a; }
    bool write(const QByteArray &bytes) { return ::write(m_fd, bytes.constData(), size_t(bytes.size())) == bytes.size(); }

    // Bytes that arrive until `expected` are in (plus 150 ms for extras), or 3 s
    // pass; events keep flowing meanwhile.
    QByteArray read(int expected)
    {
        QByteArray got;
        QElapsedTimer clock, settle;
        clock.start();
        while (clock.elapsed() < 3000 && !(settle.isValid() && settle.elapsed() > 150)) {
            if (!settle.isValid() && got.size() >= expected)
                settle.start();
            QCoreApplication::processEvents();
            pollfd p{m_fd, POLLIN, 0};
            char chunk[4096];
            ssize_t n = 0;
            if (::poll(&p, 1, 10) > 0 && (n = ::read(m_fd, chunk, sizeof chunk)) > 0)
                got.append(chunk, int(n));
        }
        return got;
    }

private:
    QString m_a, m_b;
    QProcess m_socat;
    int m_fd = -1;
};

#endif
