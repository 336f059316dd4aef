// The image effects dialog: applies an effect (gray, invert, sketch, dither, or the
// external "./voronoi.exe") to a picture, saves "print.jpg" and hands its path back.
#ifndef ALLKINDPIC_H
#define ALLKINDPIC_H

#include <QDialog>
#include <QImage>

namespace Ui {
class AllKindPic;
}

class AllKindPic : public QDialog
{
    Q_OBJECT

public:
    enum Effect { Original, Gray, Invert, Sketch, Dither, Voronoi };

    explicit AllKindPic(QWidget *parent = nullptr);
    ~AllKindPic() override;

    void SetImageFile(const QString &path);
    static QImage applyEffect(const QImage &source, Effect effect);

signals:
    void Sig_PrintImage(QString path);

private slots:
    void SlotEffectChosen(int index);
    void SlotAccepted();

private:
    void showPreview();

    Ui::AllKindPic *ui;
    QString m_sourcePath;
    QImage m_source;
    QImage m_result;
};

#endif
