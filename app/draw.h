// The main window: builds the widget tree, owns every long-lived worker object,
// wires the subsystems together and keeps the machine settings fields in Config.ini.
#ifndef DRAW_H
#define DRAW_H

#include <QFont>
#include <QImage>
#include <QMainWindow>
#include <QPointF>
#include <QRectF>
#include <QString>

class QTranslator;
class QLineEdit;

namespace Ui {
class Draw;
}

class Draw : public QMainWindow
{
    Q_OBJECT

public:
    explicit Draw(QWidget *parent = nullptr);
    ~Draw() override;

    int languageIndex() const { return m_language; }

signals:
    void SigStartSaveGcode(QString filename, QPointF pos);
    void SigResetScaleFromLineEdit(double width);
    void SigInitScale();
    void Sig_render();
    void Sig_toarduino(QString text);
    void Sig_print(QString path);
    void Sig_recover();
    void Sig_stop();
    void Sig_cancle();
    void Sig_Preview(QRectF rect);

private slots:
    // Machine settings fields: each writes its text to Config.ini when left.
    void on_lineLaserOn_editingFinished();
    void on_lineLaserOff_editingFinished();
    void on_lineCNCOn_editingFinished();
    void on_lineCNCOff_editingFinished();
    void on_lineTravel_editingFinished();
    void on_lineCureSpeed_editingFinished();
    void on_lineCNCFeedZ_editingFinished();
    void on_lineCNCTravelZ_editingFinished();
    void on_linePixixcelDist_editingFinished();

    void on_radioButtonLaser_clicked(bool checked);
    void on_radioButtonCNC_clicked(bool checked);

    void SlotSetPowerText(int value);
    void SlotSetSpeedText(int value);
    void SlotLogMsg(QString text);
    void SlotConnected(bool connected);

private:
    void saveField(const char *key, const QLineEdit *field);
    void restoreSettings();
    void applyMode();
    void hideSettingsWidgets();
    void installLanguage();
    void setUpSliders();

    Ui::Draw *ui;

    // Job state.
    QString m_loadedPath;
    int m_pictureWidth = 0;
    int m_pictureHeight = 0;
    double m_itemWidth = 0;
    double m_itemHeight = 0;
    double m_jogStep = 1.0;
    QRectF m_itemRect;
    QString m_picturePath;
    QRectF m_previewRect;
    bool m_pictureLoaded = false;
    QFont m_textFont;
    QImage m_image;

    int m_textPixelSize = -1;   // not yet chosen
    int m_language = 0;         // 0 Chinese, 1 English, 2 Korean
    int m_speedScale = 30;      // slider percent to mm/min
    int m_powerScale = 255;     // slider percent to laser power

    QTranslator *m_translator = nullptr;
};

#endif
