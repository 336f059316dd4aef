// The dialog behind "Add text…" and "Add QR code…": the text (several lines for text), and for text the
// font family from the installed fonts, the size in mm and the alignment; for a QR code its error
// correction level and quiet zone.
#ifndef JOBTEXTDIALOG_H
#define JOBTEXTDIALOG_H

#include "jobdocument.h"

#include <QDialog>

class QComboBox;
class QDoubleSpinBox;
class QFontComboBox;
class QPlainTextEdit;
class QSpinBox;

class JobTextDialog : public QDialog
{
    Q_OBJECT

public:
    // `kind` is SourceKind::Text or SourceKind::Qr.
    JobTextDialog(SourceKind kind, QWidget *parent = nullptr);

    void setSource(const JobSource &source);
    // The source as the dialog's fields describe it.
    JobSource source() const;

private:
    SourceKind m_kind;
    QPlainTextEdit *m_text;
    QFontComboBox *m_font = nullptr;
    QDoubleSpinBox *m_size = nullptr;
    QComboBox *m_align = nullptr;
    QComboBox *m_level = nullptr;
    QSpinBox *m_quietZone = nullptr;
};

#endif
