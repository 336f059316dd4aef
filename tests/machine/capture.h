// Test-side catchers: debug lines written by the code under test, and message
// boxes it opens (closed at once, so no test waits on a modal dialog).
#ifndef CAPTURE_H
#define CAPTURE_H

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QThread>
#include <QTimer>

// Debug lines written by the test's own thread while it lives.
class MessageCapture
{
public:
    MessageCapture() { current() = this; m_old = qInstallMessageHandler(handler); }
    ~MessageCapture() { qInstallMessageHandler(m_old); current() = nullptr; }
    QStringList starting(const QString &prefix) const { return m_lines.filter(QRegExp("^" + QRegExp::escape(prefix))); }

private:
    static MessageCapture *&current() { static MessageCapture *c = nullptr; return c; }
    static void handler(QtMsgType, const QMessageLogContext &, const QString &text)
    {
        if (current() && QThread::currentThread() == qApp->thread())
            current()->m_lines.append(text);
    }
    QStringList m_lines;
    QtMessageHandler m_old;
};

// Closes every message box that turns up; notes "title|text|buttons" of each.
class ModalCloser : public QObject
{
public:
    ModalCloser()
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            if (!box || !box->isVisible())
                return;
            seen.append(QString("%1|%2|%3").arg(box->windowTitle(), box->text()).arg(box->buttons().size()));
            box->button(QMessageBox::Ok) ? box->button(QMessageBox::Ok)->click() : box->reject();
        });
        m_timer.start(10);
    }
    QStringList seen;

private:
    QTimer m_timer;
};

#endif
