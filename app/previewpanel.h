// The toolpath preview panel of the main window: shows the file just exported or any G-code
// file opened here, with its figures and plain warnings; reading runs in a worker thread.
#ifndef PREVIEWPANEL_H
#define PREVIEWPANEL_H

#include "gcodeinterpreter.h"

#include <QImage>
#include <QString>
#include <QThread>
#include <QWidget>

class PreviewLoader;
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

    Ui::PreviewPanel *ui;
    QThread m_thread;
    PreviewLoader *m_loader;
    QString m_path;
    ToolpathSummary m_summary;
    bool m_hasSummary = false;
    bool m_failed = false;
    bool m_loading = false;
    bool m_fitPending = false;
    int m_ticket = 0;
};

#endif
