// The wait indicator shown while the program is busy: an animated picture and a line of text.
// The animation runs only while the form is visible.
#ifndef WAITINGFORM_H
#define WAITINGFORM_H

#include <QWidget>

class QMovie;

namespace Ui {
class WaitingForm;
}

class WaitingForm : public QWidget
{
    Q_OBJECT
public:
    static const char *const AnimationFile;  // ":/img/gif/wait.gif"

    explicit WaitingForm(QWidget *parent = nullptr);
    ~WaitingForm() override;

    QMovie *Movie() const { return m_movie; }

protected:
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    Ui::WaitingForm *ui;
    QMovie *m_movie;
};

#endif
