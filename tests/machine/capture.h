// Test-side catchers: texts of signals, debug lines of the code under test, and
// message boxes it opens (closed at once, so no test waits on a modal dialog).
#ifndef CAPTURE_H
#define CAPTURE_H

#include <QApplication>
#include <QMessageBox>
#include <QSignalSpy>
#include <QThread>
#include <QTimer>

// First argument of every signal a spy caught, as text.
inline QStringList args(const QSignalSpy &spy)
{
    QStringList out;
    for (const QList<QVariant> &a : spy)
        out << a.at(0).toString();
    return out;
}

// Debug lines written by the test's own thread while it lives.
struct MessageCapture
{
    static QStringList &lines()
    {
        static QStringList l;
        return l;
    }
    MessageCapture()
        : m_old(qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &s) {
              if (QThread::currentThread() == qApp->thread())
                  lines().append(s);
          }))
    {
        lines().clear();
    }
    ~MessageCapture() { qInstallMessageHandler(m_old); }
    QStringList starting(const QString &prefix) const { return lines().filter(QRegExp("^" + QRegExp::escape(prefix))); }
    QtMessageHandler m_old;
};

// Closes every message box that turns up; notes "title|text|buttons" of each.
struct ModalCloser : QTimer
{
    QStringList seen;
    ModalCloser()
    {
        connect(this, &QTimer::timeout, [this] {
            if (auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget())) {
                seen << QString("%1|%2|%3").arg(box->windowTitle(), box->text()).arg(box->buttons().size());
                box->done(QMessageBox::Ok);
            }
        });
        start(10);
    }
};

#endif
