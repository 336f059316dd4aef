// The threshold editor: turns a picture into the black and white (or gray) working picture.
// Shows source and result side by side, remembers the threshold, writes "black_white.jpg".
#ifndef IMGBINARYEDIT_H
#define IMGBINARYEDIT_H

#include <QImage>
#include <QString>
#include <QWidget>

class QLabel;

namespace Ui {
class ImgBinaryEdit;
}

class ImgBinaryEdit : public QWidget
{
    Q_OBJECT
public:
    // The file Finish writes in the working directory, and its JPEG quality.
    static const char *const OutputFile;  // "black_white.jpg"
    static constexpr int OutputQuality = 100;

    explicit ImgBinaryEdit(QWidget *parent = nullptr);
    ~ImgBinaryEdit() override;

    // Hand in a picture (SetImage keeps its pixels as they are; SetImageFile loads a file).
    // Both read the remembered threshold and prepare the result of the current mode.
    void SetImage(QImage image);
    void SetImageFile(QString path);
    void ShowSlider();

    // Black/white mode: the threshold workflow with the slider shown (the default).
    void SetBlackWhiteMode();
    // Grayscale mode: the slider is hidden and Finish writes the picture in gray levels.
    void SetGrayscaleMode();
    bool IsGrayscaleMode() const { return m_grayMode; }

    // Re-reads the form's texts from the installed translation catalogue.
    void RetranslateUi();

    QImage Source() const { return source; }
    // What Finish and Save write.
    QImage Result() const { return result; }

signals:
    void SigBlackWhite();

public slots:
    void SlotSliderValueChanged(int value);
    void on_btnLoad_clicked();
    void on_btnAdaptive_clicked();
    void on_horizontalSlider_sliderMoved(int position);
    void on_btnSavr_clicked();
    void on_btnVacf_clicked();
    void on_btnBorder_clicked();
    void on_btnFinish_clicked();
    void SlotHorizontalSliderValueChanged(int value);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    // `opaque`: every pixel of the picture has alpha 255, so its preview can skip the
    // scaler's premultiplied copy of the whole picture.
    void adopt(const QImage &picture, bool opaque = false);
    void refuse(const QString &chinese, const QString &english);
    void refuseTooLarge();
    void applyGlobalThreshold(int threshold);
    void showResult(const QImage &picture, bool scaled);
    void showPreview(QLabel *label, const QImage &picture, bool scaled, bool asWritten);

    Ui::ImgBinaryEdit *ui;
    QImage source;
    QImage result;

    bool m_grayMode = false;
    // The threshold that `result` and the preview currently show, or -1. Dragging the
    // slider reports each step twice (moved and changed); the second costs nothing.
    int m_shownThreshold = -1;
    // What labelDest shows when it is not `result` (the adaptive picture), kept for resizes.
    QImage m_adaptive;
    bool m_showsAdaptive = false;
    bool m_sourceOpaque = false;
};

#endif
