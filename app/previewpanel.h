// The toolpath preview panel of the main window: shows the file just exported or any G-code
// file opened here, with its figures and plain warnings; reading runs in a worker thread.
#ifndef PREVIEWPANEL_H
#define PREVIEWPANEL_H

#include "gcodeinterpreter.h"
#include "previewloader.h"

#include <QImage>
#include <QString>
#include <QThread>
#include <QWidget>

#include <functional>

class QMainWindow;

namespace Ui {
class PreviewPanel;
}

class PreviewPanel : public QWidget
{
    Q_OBJECT

public:
    explicit PreviewPanel(QWidget *parent = nullptr);
    ~PreviewPanel() override;

    // Puts a panel into a dock at the right of `window` and returns it.
    static PreviewPanel *addTo(QMainWindow *window);

    // The machine files are read for: work area, motion and full power (the classic machine's
    // unless told otherwise). A file on show is read again for a new one.
    void setMachine(const PreviewMachine &machine);
    const PreviewMachine &machine() const { return m_machine; }
    // How the figures write the estimated time; by default as the main window's time label does.
    using TimeText = std::function<QString(double seconds)>;
    void setTimeText(TimeText text);

    QString file() const { return m_path; }
    const ToolpathSummary &summary() const { return m_summary; }
    QString figuresText() const;
    QString warningsText() const;
    bool isLoading() const { return m_loading; }

public slots:
    // Shows a G-code file; `cnc` colours cuts by depth. Starts after the caller returns, so
    // that a file still being written is complete by then.
    void showFile(const QString &path, bool cnc = false);
    // Shows no file, as at the start; a file still being read is dropped.
    void clear();

signals:
    // The file has been read and drawn (or could not be read).
    void shown();

private slots:
    void on_btnOpen_clicked();
    void on_btnFit_clicked();
    void on_checkTravel_toggled(bool);
    void on_checkDepth_toggled(bool);
    void loaderProgressed(int ticket, int percent);
    void loaderFinished(int ticket, const QImage &picture, const ToolpathSummary &summary);
    void loaderFailed(int ticket, const QString &path);

protected:
    void changeEvent(QEvent *event) override;

private:
    void reload();
    void showTexts();
    QString reachText() const;
    double pxPerMm() const { return PreviewLoader::pxPerMmFor(m_machine.areaWidth, m_machine.areaHeight); }

    Ui::PreviewPanel *ui;
    QThread m_thread;
    PreviewLoader *m_loader;
    QString m_path;
    PreviewMachine m_machine;
    TimeText m_timeText;
    ToolpathSummary m_summary;
    bool m_hasSummary = false;
    bool m_failed = false;
    bool m_loading = false;
    bool m_fitPending = false;
    int m_ticket = 0;
};

#endif
