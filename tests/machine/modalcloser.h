// Closes message boxes opened by the code under test and notes what they said,
// so no test ever waits on a modal dialog.
#ifndef MODALCLOSER_H
#define MODALCLOSER_H

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>
#include <QObject>
#include <QStringList>
#include <QTimer>

class ModalCloser : public QObject
{
public:
    explicit ModalCloser(int intervalMs = 10)
    {
        connect(&m_timer, &QTimer::timeout, this, &ModalCloser::closeBox);
        m_timer.start(intervalMs);
    }

    // One entry per box closed: "title|text|number of buttons".
    const QStringList &seen() const { return m_seen; }

private:
    void closeBox()
    {
        auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        m_seen.append(QStringLiteral("%1|%2|%3")
                          .arg(box->windowTitle(), box->text())
                          .arg(box->buttons().size()));
        if (QAbstractButton *ok = box->button(QMessageBox::Ok))
            ok->click();
        else
            box->reject();
    }

    QTimer m_timer;
    QStringList m_seen;
};

#endif
