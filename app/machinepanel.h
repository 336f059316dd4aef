// The machine panel: connection, console, jog, frame and running a job on a GRBL or Marlin board.
// A window of its own, opened from the main window, working through the machine link and job runner.
#ifndef MACHINEPANEL_H
#define MACHINEPANEL_H

#include "jobrunner.h"
#include "machinelink.h"

#include <QRectF>
#include <QTimer>
#include <QWidget>
#include <functional>

namespace Ui {
class MachinePanel;
}
class CPSerialPort;
class QPushButton;

class MachinePanel : public QWidget
{
    Q_OBJECT
public:
    explicit MachinePanel(QWidget *parent = nullptr);
    ~MachinePanel() override;

    // Where the placed item will be burnt, in machine millimetres (empty when nothing is placed).
    void setFrameSource(std::function<QRectF()> source) { m_frameSource = std::move(source); }
    // The port panel above: if it holds the port, this panel offers to release it.
    void setPortHolder(CPSerialPort *holder) { m_holder = holder; }
    // The file just exported and the generator's time estimate for it; Run job takes it
    // unless another is chosen.
    void setJobFile(const QString &path, double estimatedSeconds = 0);

    // A button for the main window that opens (or raises) this window.
    QPushButton *createOpenButton(QWidget *parent);

    MachineLink *link() const { return m_link; }
    JobRunner *runner() const { return m_runner; }
    void retranslateUi();

    // The frame's lines for a rectangle in machine millimetres.
    static QList<QByteArray> frameLines(const QRectF &area, Firmware firmware, int powerPercent, int feed,
                                        int grblMaxPower);

protected:
    void changeEvent(QEvent *event) override;

private slots:
    void on_refreshButton_clicked();
    void on_connectButton_clicked();
    void on_disconnectButton_clicked();
    void on_releaseButton_clicked();
    void on_xPlusButton_clicked() { jog('X', 1); }
    void on_xMinusButton_clicked() { jog('X', -1); }
    void on_yPlusButton_clicked() { jog('Y', 1); }
    void on_yMinusButton_clicked() { jog('Y', -1); }
    void on_homeButton_clicked();
    void on_unlockButton_clicked();
    void on_setOriginButton_clicked();
    void on_goOriginButton_clicked();
    void on_frameButton_clicked();
    void on_chooseButton_clicked();
    void on_runButton_clicked();
    void on_pauseButton_clicked();
    void on_resumeButton_clicked();
    void on_stopButton_clicked();
    void on_sendButton_clicked();
    void on_commandEdit_returnPressed() { on_sendButton_clicked(); }
    void onLinkStateChanged();
    void onStatus(const QByteArray &state, double x, double y);
    void onBytesSent(const QByteArray &bytes);
    void onLineReceived(const QByteArray &line);
    void onLinkFailed(const QString &message);
    void onFault(const MachineReply &reply);
    void onProgress();
    void onJobStateChanged();

private:
    void jog(char axis, int direction);
    void send(const QList<QByteArray> &lines);
    void log(const QString &text);
    void showMessage(const QString &text, bool error);
    void updateControls();
    QString chosenPort() const;
    bool holderHoldsPort(const QString &port) const;

    Ui::MachinePanel *ui;
    MachineLink *m_link;
    JobRunner *m_runner = nullptr;
    CPSerialPort *m_holder = nullptr;
    std::function<QRectF()> m_frameSource;
    QString m_exportedFile;
    double m_exportedEstimate = 0;
    QByteArray m_state;
    QTimer m_progressTimer;
};

#endif
