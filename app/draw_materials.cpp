// The main window's material library slots and the pictures made from typed text:
// text rendered with the chosen font, and QR codes.
#include "draw.h"
#include "ui_draw.h"

#include "imgbinaryedit.h"
#include "materiallibrary.h"
#include "qrcodebitmap.h"

#include <QFontMetrics>
#include <QPainter>

// ---- Text pictures -------------------------------------------------------------

void Draw::SlotSetTextEditFont(QFont font)
{
    m_textFont = font;
    ui->textEdit->setFont(font);
}

void Draw::SlotSetTextEditFontSize(QString size)
{
    m_textPixelSize = size.toInt();
    QFont font = ui->textEdit->font();
    if (m_textPixelSize > 0)
        font.setPixelSize(m_textPixelSize);
    ui->textEdit->setFont(font);
}

void Draw::SlotTextToImgButton()
{
    on_btndelete_clicked();
    QFont font = m_textFont;
    if (m_textPixelSize > 0)
        font.setPixelSize(m_textPixelSize);
    const QString text = ui->textEdit->toPlainText();
    const int lines = text.split(QLatin1Char('\n')).size();
    const QFontMetrics metrics(font);
    const QRect bounds = metrics.boundingRect(text);
    const int width = bounds.width();
    const int lineHeight = bounds.height();
    if (text.isEmpty() || width <= 0 || lineHeight <= 0)
        return;
    QImage picture(width, lines * lineHeight, QImage::Format_ARGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(picture.rect(), Qt::AlignHCenter, text);
    painter.end();
    m_image = picture;
    m_imgEdit->raise();
    m_imgEdit->showNormal();
    m_imgEdit->SetBlackWhiteMode();
    m_imgEdit->SetImage(m_image);
}

// ---- Material library ------------------------------------------------------------

void Draw::setMaterialControlsEnabled(bool enabled)
{
    for (QWidget *w : {static_cast<QWidget *>(ui->saveMaterialButton), static_cast<QWidget *>(ui->initButton),
                       static_cast<QWidget *>(ui->addMaterialButton), static_cast<QWidget *>(ui->deleteMaterialButton),
                       static_cast<QWidget *>(ui->materialComboBox)})
        w->setEnabled(enabled);
}

void Draw::startMaterials()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    if (!library.load())
        setMaterialControlsEnabled(false);
    for (const QString &name : library.names())
        ui->materialComboBox->addItem(tr(name.toUtf8().constData()));
    m_material = library.find(ui->materialComboBox->currentText());
    if (m_material) {
        ui->speedHorizontalSlider->setValue(int(m_material->currentSpeed));
        ui->powerHorizontalSlider->setValue(int(m_material->currentPower));
    }
}

void Draw::fillMaterials()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    m_material = nullptr;
    ui->materialComboBox->clear();
    for (const QString &name : library.names())
        ui->materialComboBox->addItem(tr(name.toUtf8().constData()));
    if (library.isEmpty()) {
        ui->speedHorizontalSlider->setValue(0);
        ui->powerHorizontalSlider->setValue(0);
        setMaterialControlsEnabled(false);
        return;
    }
    m_material = library.find(ui->materialComboBox->currentText());
    if (m_material) {
        ui->speedHorizontalSlider->setValue(int(m_material->currentSpeed));
        ui->powerHorizontalSlider->setValue(int(m_material->currentPower));
    }
}

void Draw::on_materialComboBox_currentIndexChanged(QString name)
{
    if (name.isEmpty())
        return;
    m_material = MaterialLibrary::instance().find(name);
    if (!m_material)
        return;
    ui->powerHorizontalSlider->setValue(int(m_material->currentPower));
    ui->speedHorizontalSlider->setValue(int(m_material->currentSpeed));
}

void Draw::on_initButton_clicked()
{
    if (!m_material)
        return;
    ui->powerHorizontalSlider->setValue(int(m_material->initPower));
    ui->speedHorizontalSlider->setValue(int(m_material->initSpeed));
    // Only in memory: the file keeps the old values until the next save.
    m_material->currentPower = m_material->initPower;
    m_material->currentSpeed = m_material->initSpeed;
}

void Draw::on_saveMaterialButton_clicked()
{
    if (!m_material)
        return;
    m_material->currentPower = float(ui->powerHorizontalSlider->value());
    m_material->currentSpeed = float(ui->speedHorizontalSlider->value());
    MaterialLibrary::instance().save();
}

void Draw::on_addMaterialButton_clicked()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    const QString name = ui->materialComboBox->currentText();
    if (library.names().contains(name)) {
        logMessage(message("此材料已存在!!!", "The material already exists "));
        return;
    }
    MaterialRecord record;
    record.name = name;
    record.currentPower = record.initPower = float(ui->powerHorizontalSlider->value());
    record.currentSpeed = record.initSpeed = float(ui->speedHorizontalSlider->value());
    record.thickness = 0;
    library.add(record);
    fillMaterials();
    ui->materialComboBox->setCurrentIndex(ui->materialComboBox->count() - 1);
}

void Draw::on_deleteMaterialButton_clicked()
{
    MaterialLibrary &library = MaterialLibrary::instance();
    const QString name = ui->materialComboBox->currentText();
    if (!library.find(name)) {
        logMessage(message("此材料不存在!!!", "The material dose not exists "));
        return;
    }
    m_material = nullptr;
    library.remove(name);
    fillMaterials();
}

// ---- QR-code pictures --------------------------------------------------------------

void Draw::on_TextToQRcodeButton_clicked()
{
    const QString file = QString::fromLatin1(QrCodeBitmap::FileName);
    if (!QrCodeBitmap::write(ui->textEdit->toPlainText(), file))
        return;  // encoding or file errors end quietly
    m_picturePath = file;
    SlotPixitemDropped(file);
}
