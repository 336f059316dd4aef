// Collects the program's debug lines while it lives, so tests can check which
// lines were written and which were not.
#ifndef MESSAGECAPTURE_H
#define MESSAGECAPTURE_H

#include <QString>
#include <QStringList>
#include <QtGlobal>

class MessageCapture
{
public:
    MessageCapture() : m_previous(qInstallMessageHandler(&MessageCapture::handler))
    {
        active() = this;
    }
    ~MessageCapture()
    {
        qInstallMessageHandler(m_previous);
        active() = nullptr;
    }
    MessageCapture(const MessageCapture &) = delete;
    MessageCapture &operator=(const MessageCapture &) = delete;

    const QStringList &lines() const { return m_lines; }

    // Lines that start with the given text.
    QStringList startingWith(const QString &prefix) const
    {
        QStringList found;
        for (const QString &line : m_lines)
            if (line.startsWith(prefix))
                found.append(line);
        return found;
    }

private:
    static MessageCapture *&active()
    {
        static MessageCapture *current = nullptr;
        return current;
    }
    static void handler(QtMsgType, const QMessageLogContext &, const QString &text)
    {
        if (active())
            active()->m_lines.append(text);
    }

    QtMessageHandler m_previous;
    QStringList m_lines;
};

#endif
