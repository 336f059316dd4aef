// The dialog behind "Add text…" and "Add QR code…".
#include "jobtextdialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QPushButton>
#include <QDoubleSpinBox>
#include <QFontComboBox>
#include <QFormLayout>
#include <QPlainTextEdit>
#include <QSpinBox>

JobTextDialog::JobTextDialog(SourceKind kind, QWidget *parent) : QDialog(parent), m_kind(kind)
{
    setWindowTitle(kind == SourceKind::Qr ? tr("Add QR code") : tr("Add text"));
    auto *form = new QFormLayout(this);
    m_text = new QPlainTextEdit;
    m_text->setObjectName(QStringLiteral("textEdit"));
    m_text->setMinimumSize(320, 90);
    form->addRow(kind == SourceKind::Qr ? tr("Text or address") : tr("Text"), m_text);
    if (kind == SourceKind::Qr) {
        m_level = new QComboBox;
        m_level->addItems({tr("L (7 %)"), tr("M (15 %)"), tr("Q (25 %)"), tr("H (30 %)")});
        m_quietZone = new QSpinBox;
        m_quietZone->setRange(0, 20);
        m_quietZone->setSuffix(tr(" modules"));
        form->addRow(tr("Error correction"), m_level);
        form->addRow(tr("Quiet zone"), m_quietZone);
    } else {
        m_font = new QFontComboBox;
        m_size = new QDoubleSpinBox;
        m_size->setRange(0.5, 500);
        m_size->setDecimals(1);
        m_size->setSuffix(QStringLiteral(" mm"));
        m_align = new QComboBox;
        m_align->addItems({tr("Left"), tr("Centre"), tr("Right")});
        form->addRow(tr("Font"), m_font);
        form->addRow(tr("Size"), m_size);
        form->addRow(tr("Alignment"), m_align);
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("OK"));
    buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
    JobSource source;
    source.kind = kind;
    setSource(source);
}

void JobTextDialog::setSource(const JobSource &source)
{
    m_text->setPlainText(source.text);
    if (m_font) {
        m_font->setCurrentFont(QFont(source.font));
        m_size->setValue(source.size);
        m_align->setCurrentIndex(int(source.align));
    }
    if (m_level) {
        m_level->setCurrentIndex(int(source.level));
        m_quietZone->setValue(source.quietZone);
    }
}

JobSource JobTextDialog::source() const
{
    JobSource source;
    source.kind = m_kind;
    source.text = m_text->toPlainText();
    if (m_font) {
        source.font = m_font->currentFont().family();
        source.size = m_size->value();
        source.align = TextAlign(m_align->currentIndex());
    }
    if (m_level) {
        source.level = QrLevel(m_level->currentIndex());
        source.quietZone = m_quietZone->value();
    }
    return source;
}
