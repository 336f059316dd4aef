// Tests of the wait indicator: its animation comes from the resources and runs
// only while the form is shown.
#include "testsupport.h"

#include "waitingform.h"

#include <QLabel>
#include <QMovie>

class TestWaitingForm : public QObject
{
    Q_OBJECT
private slots:
    void animation();
};

void TestWaitingForm::animation()
{
    WaitingForm form;
    QVERIFY(form.Movie()->isValid());
    QCOMPARE(form.Movie()->state(), QMovie::NotRunning);
    QCOMPARE(form.findChild<QLabel *>(QStringLiteral("labelText"))->text(), QStringLiteral("正在...,请等待"));

    form.show();
    QCOMPARE(form.Movie()->state(), QMovie::Running);
    QVERIFY(form.Movie()->frameCount() > 1);
    QTRY_VERIFY(!form.findChild<QLabel *>(QStringLiteral("labelGif"))->movie()->currentPixmap().isNull());

    form.hide();
    QCOMPARE(form.Movie()->state(), QMovie::NotRunning);
}

TARNWELL_TEST_MAIN(TestWaitingForm)
#include "tst_waitingform.moc"
