// The material test grid dialog.
#include "testgriddialog.h"

#include "jobexport.h"
#include "jobformat.h"
#include "jobitemlook.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QPainter>
#include <QSpinBox>
#include <QVBoxLayout>

#include <algorithm>

namespace {
constexpr int PictureSide = 360;  // pixels

QDoubleSpinBox *number(double min, double max, int decimals, const QString &suffix, const char *name)
{
    auto *box = new QDoubleSpinBox;
    box->setRange(min, max);
    box->setDecimals(decimals);
    box->setSuffix(suffix);
    box->setObjectName(QLatin1String(name));
    return box;
}

QSpinBox *count(int min, int max, const char *name)
{
    auto *box = new QSpinBox;
    box->setRange(min, max);
    box->setObjectName(QLatin1String(name));
    return box;
}

// "from [ ] to [ ] in [ ] steps" on one row.
QWidget *range(QWidget *from, QWidget *to, QWidget *steps)
{
    auto *row = new QWidget;
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(from, 2);
    layout->addWidget(new QLabel(QStringLiteral("\u2192")));
    layout->addWidget(to, 2);
    layout->addWidget(new QLabel(QStringLiteral("\u00d7")));
    layout->addWidget(steps, 1);
    return row;
}
}  // namespace

TestGridDialog::TestGridDialog(const MachineProfile &machine, QWidget *parent) : QDialog(parent), m_machine(machine)
{
    setObjectName(QStringLiteral("TestGridDialog"));
    setWindowTitle(tr("Material test grid"));
    m_powerFrom = number(0, 100, 1, QStringLiteral(" %"), "powerFrom");
    m_powerTo = number(0, 100, 1, QStringLiteral(" %"), "powerTo");
    m_powerCount = count(1, 20, "powerCount");
    m_speedFrom = number(1, 100000, 0, QStringLiteral(" mm/min"), "speedFrom");
    m_speedTo = number(1, 100000, 0, QStringLiteral(" mm/min"), "speedTo");
    m_speedCount = count(1, 20, "speedCount");
    m_rowsArePasses = new QCheckBox(tr("Rows vary the passes (at the first speed)"));
    m_rowsArePasses->setObjectName(QStringLiteral("rowsArePasses"));
    m_passesFrom = count(1, 100, "passesFrom");
    m_passesTo = count(1, 100, "passesTo");
    m_passesCount = count(1, 20, "passesCount");
    m_cell = number(0.5, 100, 1, QStringLiteral(" mm"), "cell");
    m_gap = number(0, 100, 1, QStringLiteral(" mm"), "gap");
    m_x = number(0, 5000, 1, QStringLiteral(" mm"), "gridX");
    m_y = number(0, 5000, 1, QStringLiteral(" mm"), "gridY");
    m_operation = new QComboBox;
    m_operation->setObjectName(QStringLiteral("operation"));
    m_operation->addItems({tr("Image"), tr("Fill"), tr("Line")});

    auto *form = new QFormLayout;
    form->addRow(tr("Powers"), range(m_powerFrom, m_powerTo, m_powerCount));
    form->addRow(tr("Speeds"), range(m_speedFrom, m_speedTo, m_speedCount));
    form->addRow(m_rowsArePasses);
    form->addRow(tr("Passes"), range(m_passesFrom, m_passesTo, m_passesCount));
    form->addRow(tr("Cell size"), m_cell);
    form->addRow(tr("Gap"), m_gap);
    form->addRow(tr("Operation"), m_operation);
    form->addRow(tr("Bottom-left X"), m_x);
    form->addRow(tr("Bottom-left Y"), m_y);

    m_view = new QLabel;
    m_view->setObjectName(QStringLiteral("gridPicture"));
    m_view->setFixedSize(PictureSide, PictureSide);
    m_view->setAlignment(Qt::AlignCenter);
    m_time = new QLabel;
    m_time->setObjectName(QStringLiteral("gridTime"));
    m_time->setWordWrap(true);
    auto *right = new QVBoxLayout;
    right->addWidget(m_view);
    right->addWidget(m_time);
    right->addStretch();

    auto *top = new QHBoxLayout;
    top->addLayout(form);
    top->addLayout(right);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("Create job"));
    buttons->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(buttons);

    m_refresh.setSingleShot(true);
    m_refresh.setInterval(150);
    connect(&m_refresh, &QTimer::timeout, this, &TestGridDialog::refresh);
    setParams(TestGridParams());
    for (QDoubleSpinBox *b : {m_powerFrom, m_powerTo, m_speedFrom, m_speedTo, m_cell, m_gap, m_x, m_y})
        connect(b, qOverload<double>(&QDoubleSpinBox::valueChanged), this, &TestGridDialog::schedule);
    for (QSpinBox *b : {m_powerCount, m_speedCount, m_passesFrom, m_passesTo, m_passesCount})
        connect(b, qOverload<int>(&QSpinBox::valueChanged), this, &TestGridDialog::schedule);
    connect(m_rowsArePasses, &QCheckBox::toggled, this, &TestGridDialog::schedule);
    connect(m_operation, qOverload<int>(&QComboBox::currentIndexChanged), this, &TestGridDialog::schedule);
    schedule();  // enables the fields the rows use
    refresh();
}

void TestGridDialog::setParams(const TestGridParams &p)
{
    m_powerFrom->setValue(p.powerFrom);
    m_powerTo->setValue(p.powerTo);
    m_powerCount->setValue(p.powerCount);
    m_speedFrom->setValue(p.speedFrom);
    m_speedTo->setValue(p.speedTo);
    m_speedCount->setValue(p.speedCount);
    m_rowsArePasses->setChecked(p.rowsArePasses);
    m_passesFrom->setValue(p.passesFrom);
    m_passesTo->setValue(p.passesTo);
    m_passesCount->setValue(p.passesCount);
    m_cell->setValue(p.cell);
    m_gap->setValue(p.gap);
    m_operation->setCurrentIndex(int(p.operation));
    m_x->setValue(p.x);
    m_y->setValue(p.y);
}

TestGridParams TestGridDialog::params() const
{
    TestGridParams p;
    p.powerFrom = m_powerFrom->value();
    p.powerTo = m_powerTo->value();
    p.powerCount = m_powerCount->value();
    p.speedFrom = m_speedFrom->value();
    p.speedTo = m_speedTo->value();
    p.speedCount = m_speedCount->value();
    p.rowsArePasses = m_rowsArePasses->isChecked();
    p.passesFrom = m_passesFrom->value();
    p.passesTo = m_passesTo->value();
    p.passesCount = m_passesCount->value();
    p.cell = m_cell->value();
    p.gap = m_gap->value();
    p.operation = Operation(m_operation->currentIndex());
    p.x = m_x->value();
    p.y = m_y->value();
    p.machine = m_machine;
    return p;
}

bool TestGridDialog::makeDocument(JobDocument *doc, QString *error) const
{
    return TestGrid::make(params(), doc, error);
}

void TestGridDialog::schedule()
{
    m_speedFrom->setEnabled(true);
    m_speedTo->setEnabled(!m_rowsArePasses->isChecked());
    m_speedCount->setEnabled(!m_rowsArePasses->isChecked());
    for (QSpinBox *b : {m_passesFrom, m_passesTo, m_passesCount})
        b->setEnabled(m_rowsArePasses->isChecked());
    m_refresh.start();
}

QString TestGridDialog::timeText() const { return m_time->text(); }

void TestGridDialog::refresh()
{
    m_refresh.stop();
    JobDocument doc;
    QString error;
    m_picture = QImage(PictureSide, PictureSide, QImage::Format_ARGB32_Premultiplied);
    m_picture.fill(Qt::white);
    if (!makeDocument(&doc, &error)) {
        m_time->setText(error);
        m_view->setPixmap(QPixmap::fromImage(m_picture));
        return;
    }
    // The grid's bounds, scaled to the picture, machine Y up.
    QRectF bounds;
    for (const JobItem &item : doc.items) {
        const QRectF r(item.x, item.y, item.width, item.height);
        bounds = bounds.isNull() ? r : bounds.united(r);
    }
    QPainter painter(&m_picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const double scale = (PictureSide - 16) / std::max(bounds.width(), bounds.height());
    for (const JobItem &item : doc.items) {
        const JobLayer &layer = doc.layers[size_t(item.layer)];
        const JobItemLook look = JobItemLook::make(item, layer, 120);
        const QRectF target(8 + (item.x - bounds.left()) * scale, 8 + (bounds.bottom() - item.y - item.height) * scale,
                            item.width * scale, item.height * scale);
        if (!look.picture.isNull()) {
            painter.drawImage(target, look.picture);
            continue;
        }
        painter.save();
        painter.translate(target.topLeft());
        painter.scale(scale, scale);
        // Cells shade with their power, so the grid reads like the burnt sample.
        QColor color(Qt::black);
        color.setAlphaF(std::clamp(0.15 + 0.85 * layer.power / 100, 0.0, 1.0));
        if (look.filled)
            painter.fillPath(look.path, color);
        QPen pen(color, 0);
        painter.strokePath(look.path, pen);
        painter.restore();
    }
    painter.end();
    m_view->setPixmap(QPixmap::fromImage(m_picture));
    JobExportResult result;
    if (JobExport::run(doc, &result, &error))
        m_time->setText(
            tr("%1 cells, %2 x %3 mm, estimated time %4")
                .arg(params().powerCount * (params().rowsArePasses ? params().passesCount : params().speedCount))
                .arg(bounds.width(), 0, 'f', 1)
                .arg(bounds.height(), 0, 'f', 1)
                .arg(QString::fromLatin1(JobFormat::duration(result.seconds))));
    else
        m_time->setText(error);
}
