// Tests of the wait indicator: its animation comes from the resources and runs
// only while the form is shown.
#include "testsupport.h"

#include "waitingform.h"

#include <QMovie>

class TestWaitingForm : public QObject
{
    Q_OBJECT
private slots:
    void animation()
    {
        WaitingForm form;
        QVERIFY(form.Movie()->isValid());
        QCOMPARE(form.Movie()->state(), QMovie::NotRunning);
        form.show();
        QCOMPARE(form.Movie()->state(), QMovie::Running);
        QVERIFY(form.Movie()->frameCount() > 1);
        form.hide();
        QCOMPARE(form.Movie()->state(), QMovie::NotRunning);
    }
};

TARNWELL_TEST_MAIN(TestWaitingForm)
#include "tst_waitingform.moc"
