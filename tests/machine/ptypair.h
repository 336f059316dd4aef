// Pseudo-terminal pair for the machine-link tests: socat joins two raw ptys; the
// code under test opens endA(), the test reads and writes the other end itself.
#ifndef PTYPAIR_H
#define PTYPAIR_H

#include <QDir>
#include <QProcess>
#include <QtTest>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

struct PtyPair
{
    QString a, b;  // links to the two ends
    QProcess socat;
    int fd = -1;  // the test's end

    PtyPair(const QString &dir, const QString &tag) : a(QDir(dir).filePath(tag + "A")), b(QDir(dir).filePath(tag + "B"))
    {}
    ~PtyPair() { stop(); }
    QString endA() const { return a; }

    bool start()
    {
        socat.setStandardErrorFile(QProcess::nullDevice());
        socat.start("socat", {"-d", "-d", "pty,raw,echo=0,link=" + a, "pty,raw,echo=0,link=" + b});
        if (!QTest::qWaitFor([this] { return QFile::exists(a) && QFile::exists(b); }, 5000))
            return false;
        fd = ::open(QFile::encodeName(b).constData(), O_RDWR | O_NOCTTY | O_NONBLOCK);
        return fd >= 0;
    }

    // Pulls the plug: closes the test's end and ends socat by its process id.
    void stop()
    {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
        if (socat.state() != QProcess::NotRunning)
            ::kill(pid_t(socat.processId()), SIGTERM), socat.waitForFinished(3000);
    }

    bool write(const QByteArray &bytes) { return ::write(fd, bytes.constData(), size_t(bytes.size())) == bytes.size(); }

    // Bytes that arrive until `expected` are in (plus 150 ms for extras), or 3 s pass.
    QByteArray read(int expected)
    {
        QByteArray got;
        char chunk[4096];
        auto pull = [&] {
            for (ssize_t n; (n = ::read(fd, chunk, sizeof chunk)) > 0;)
                got.append(chunk, int(n));
            return got.size() >= expected;
        };
        if (QTest::qWaitFor(pull, 3000))
            QTest::qWait(150);
        pull();
        return got;
    }
};

#endif
