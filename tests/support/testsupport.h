// Shared by every test program: a private temporary working directory per run,
// since the program reads and writes fixed file names in its current directory.
#ifndef TESTSUPPORT_H
#define TESTSUPPORT_H

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

// Moves the process into a fresh empty directory for as long as it lives,
// then back to where it was. Use one per test function that writes files.
class ScopedWorkDir
{
public:
    ScopedWorkDir() : m_previous(QDir::currentPath()) { QDir::setCurrent(m_dir.path()); }
    ~ScopedWorkDir() { QDir::setCurrent(m_previous); }
    QString path() const { return m_dir.path(); }
    QString file(const QString &name) const { return m_dir.filePath(name); }

private:
    QString m_previous;
    QTemporaryDir m_dir;
};

// Files the tests set up and read back.
namespace TestFiles {

// Writes the whole file; a test whose files cannot be set up cannot run at all.
inline void write(const QString &name, const QByteArray &bytes)
{
    QFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qFatal("cannot write %s", qPrintable(name));
}

// The file's bytes; empty when it cannot be read.
inline QByteArray read(const QString &name)
{
    QFile file(name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

}  // namespace TestFiles

// Like QTEST_MAIN, but offscreen by default and run inside its own work directory.
#define TARNWELL_TEST_MAIN(TestObject)                      \
    int main(int argc, char *argv[])                        \
    {                                                       \
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) \
            qputenv("QT_QPA_PLATFORM", "offscreen");        \
        QApplication app(argc, argv);                       \
        app.setAttribute(Qt::AA_Use96Dpi, true);            \
        ScopedWorkDir workDir;                              \
        TestObject tc;                                      \
        QTEST_SET_MAIN_SOURCE_PATH                          \
        return QTest::qExec(&tc, argc, argv);               \
    }

#endif
