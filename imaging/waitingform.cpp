// The wait indicator shown while the program is busy: an animated picture and a line of text.
// The animation is stopped while hidden so an idle form costs no timer ticks.
#include "waitingform.h"
#include "ui_waitingform.h"

#include <QEvent>
#include <QMovie>

const char *const WaitingForm::AnimationFile = ":/img/gif/wait.gif";

WaitingForm::WaitingForm(QWidget *parent) : QWidget(parent), ui(new Ui::WaitingForm), m_movie(nullptr)
{
    ui->setupUi(this);
    m_movie = new QMovie(QString::fromLatin1(AnimationFile), QByteArray(), this);
    ui->labelGif->setMovie(m_movie);
}

WaitingForm::~WaitingForm() { delete ui; }

void WaitingForm::showEvent(QShowEvent *event)
{
    m_movie->start();
    QWidget::showEvent(event);
}

void WaitingForm::hideEvent(QHideEvent *event)
{
    m_movie->stop();
    QWidget::hideEvent(event);
}

void WaitingForm::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        ui->retranslateUi(this);
    QWidget::changeEvent(event);
}
