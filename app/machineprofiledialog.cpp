// The machine profile dialog.
#include "machineprofiledialog.h"

#include "machinelink.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
constexpr int ReadTag = 0x7e5e;  // the answer to our "$$"

QDoubleSpinBox *number(double min, double max, int decimals, const QString &suffix)
{
    auto *box = new QDoubleSpinBox;
    box->setRange(min, max);
    box->setDecimals(decimals);
    box->setSuffix(suffix);
    return box;
}
}  // namespace

MachineProfileDialog::MachineProfileDialog(const MachineProfileStore &store, QWidget *parent)
    : QDialog(parent), m_store(store)
{
    setObjectName(QStringLiteral("MachineProfileDialog"));
    setWindowTitle(tr("Machine profiles"));
    auto *top = new QHBoxLayout;
    auto *left = new QVBoxLayout;
    m_list = new QListWidget;
    m_list->setObjectName(QStringLiteral("profileList"));
    m_list->setMinimumWidth(180);
    left->addWidget(m_list);
    auto *buttons = new QHBoxLayout;
    m_add = new QPushButton(tr("Add"));
    m_remove = new QPushButton(tr("Remove"));
    buttons->addWidget(m_add);
    buttons->addWidget(m_remove);
    left->addLayout(buttons);
    top->addLayout(left);

    auto *form = new QFormLayout;
    m_name = new QLineEdit;
    m_name->setObjectName(QStringLiteral("profileName"));
    m_dialect = new QComboBox;
    m_dialect->addItem(tr("GRBL (M4 S)"));
    m_dialect->addItem(tr("Marlin (M3 S / M5)"));
    m_dialect->addItem(tr("Fan output (M106 / M107)"));
    m_maxPower = number(1, 100000, 0, QString());
    m_maxPower->setObjectName(QStringLiteral("maxPower"));
    m_bedWidth = number(1, 5000, 1, QStringLiteral(" mm"));
    m_bedWidth->setObjectName(QStringLiteral("bedWidth"));
    m_bedHeight = number(1, 5000, 1, QStringLiteral(" mm"));
    m_bedHeight->setObjectName(QStringLiteral("bedHeight"));
    m_travel = number(1, 100000, 0, QStringLiteral(" mm/min"));
    m_acceleration = number(1, 100000, 0, QStringLiteral(" mm/s\u00b2"));
    form->addRow(tr("Name"), m_name);
    form->addRow(tr("Dialect"), m_dialect);
    form->addRow(tr("Maximum power (S of 100 %)"), m_maxPower);
    form->addRow(tr("Bed width"), m_bedWidth);
    form->addRow(tr("Bed height"), m_bedHeight);
    form->addRow(tr("Travel feed"), m_travel);
    form->addRow(tr("Acceleration"), m_acceleration);
    m_read = new QPushButton(tr("Read from the connected GRBL board"));
    m_read->setObjectName(QStringLiteral("readButton"));
    m_readStatus = new QLabel;
    m_readStatus->setWordWrap(true);
    form->addRow(m_read);
    form->addRow(m_readStatus);
    top->addLayout(form, 1);

    auto *box = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    box->button(QDialogButtonBox::Ok)->setText(tr("OK"));
    box->button(QDialogButtonBox::Cancel)->setText(tr("Cancel"));
    connect(box, &QDialogButtonBox::accepted, this, [this] {
        storeFields();
        accept();
    });
    connect(box, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(top);
    layout->addWidget(box);

    connect(m_list, &QListWidget::currentRowChanged, this, [this](int row) {
        if (m_updating || row < 0)
            return;
        storeFields();
        m_store.selected = row;
        showProfile();
    });
    connect(m_add, &QPushButton::clicked, this, [this] {
        storeFields();
        MachineProfile p = m_store.current();
        p.name = tr("New machine");
        m_store.profiles.push_back(p);
        m_store.selected = int(m_store.profiles.size()) - 1;
        refreshList();
    });
    connect(m_remove, &QPushButton::clicked, this, [this] {
        if (m_store.profiles.size() <= 1)
            return;
        m_store.profiles.erase(m_store.profiles.begin() + m_store.selected);
        m_store.selected = std::max(0, m_store.selected - 1);
        refreshList();
    });
    connect(m_name, &QLineEdit::editingFinished, this, [this] {
        storeFields();
        if (QListWidgetItem *item = m_list->item(m_store.selected))
            item->setText(m_store.current().name);
    });
    connect(m_read, &QPushButton::clicked, this, &MachineProfileDialog::readFromMachine);
    refreshList();
    updateReadButton();
}

void MachineProfileDialog::selectProfile(int index) { m_list->setCurrentRow(index); }

void MachineProfileDialog::refreshList()
{
    m_updating = true;
    m_list->clear();
    for (const MachineProfile &p : m_store.profiles)
        m_list->addItem(p.name);
    m_list->setCurrentRow(m_store.selected);
    m_updating = false;
    m_remove->setEnabled(m_store.profiles.size() > 1);
    showProfile();
}

void MachineProfileDialog::showProfile()
{
    const MachineProfile &p = m_store.current();
    m_updating = true;
    m_name->setText(p.name);
    m_dialect->setCurrentIndex(int(p.dialect));
    m_maxPower->setValue(p.maxPower);
    m_bedWidth->setValue(p.bedWidth);
    m_bedHeight->setValue(p.bedHeight);
    m_travel->setValue(p.travelSpeed);
    m_acceleration->setValue(p.acceleration);
    m_updating = false;
}

void MachineProfileDialog::storeFields()
{
    if (m_updating || m_store.selected < 0 || m_store.selected >= int(m_store.profiles.size()))
        return;
    MachineProfile &p = m_store.profiles[size_t(m_store.selected)];
    p.name = m_name->text().trimmed().isEmpty() ? p.name : m_name->text().trimmed();
    p.dialect = Dialect(m_dialect->currentIndex());
    p.maxPower = m_maxPower->value();
    p.bedWidth = m_bedWidth->value();
    p.bedHeight = m_bedHeight->value();
    p.travelSpeed = m_travel->value();
    p.acceleration = m_acceleration->value();
}

void MachineProfileDialog::setLink(MachineLink *link)
{
    m_link = link;
    if (m_link) {
        connect(m_link, &MachineLink::stateChanged, this, &MachineProfileDialog::updateReadButton);
        connect(m_link, &MachineLink::lineReceived, this, [this](const QByteArray &line) {
            if (m_readTag && line.startsWith('$'))
                m_settingLines.append(line);
        });
        connect(m_link, &MachineLink::answered, this, [this](int tag, const MachineReply &) {
            if (!m_readTag || tag != m_readTag)
                return;
            m_readTag = 0;
            storeFields();
            MachineProfile &p = m_store.profiles[size_t(m_store.selected)];
            const int used = MachineProfileStore::applyGrblSettings(m_settingLines, &p);
            showProfile();
            m_readStatus->setText(used ? tr("Read %1 settings from the board").arg(used)
                                       : tr("The board listed none of the settings"));
        });
    }
    updateReadButton();
}

void MachineProfileDialog::updateReadButton()
{
    const bool grbl = m_link && m_link->state() == MachineLink::Ready && m_link->firmware() == Firmware::Grbl;
    m_read->setEnabled(grbl);
    m_read->setToolTip(grbl ? QString() : tr("Connect a GRBL board in the Machine window first"));
}

bool MachineProfileDialog::readFromMachine()
{
    if (!m_link || m_link->state() != MachineLink::Ready || m_link->firmware() != Firmware::Grbl)
        return false;
    m_settingLines.clear();
    m_readTag = ReadTag;
    m_link->sendLine(QByteArrayLiteral("$$"), ReadTag);
    m_readStatus->setText(tr("Asking the board…"));
    return true;
}
