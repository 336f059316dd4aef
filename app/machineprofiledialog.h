// The machine profile dialog: the list of profiles (one selected for the job), and the selected one's
// name, dialect, maximum power, bed size, travel feed and acceleration. With a GRBL board connected it
// reads $30, $110/$111, $120/$121 and $130/$131 into the profile.
#ifndef MACHINEPROFILEDIALOG_H
#define MACHINEPROFILEDIALOG_H

#include "machineprofilestore.h"

#include <QDialog>

class MachineLink;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

class MachineProfileDialog : public QDialog
{
    Q_OBJECT

public:
    MachineProfileDialog(const MachineProfileStore &store, QWidget *parent = nullptr);

    // The profiles as edited; the selected one is the list's current row.
    const MachineProfileStore &store() const { return m_store; }
    void selectProfile(int index);
    // The board to read settings from (may be null or not connected).
    void setLink(MachineLink *link);
    // Asks the board for its settings; they fill the selected profile when the answer is complete.
    bool readFromMachine();

private:
    void showProfile();
    void storeFields();
    void refreshList();
    void updateReadButton();

    MachineProfileStore m_store;
    MachineLink *m_link = nullptr;
    QList<QByteArray> m_settingLines;
    int m_readTag = 0;
    bool m_updating = false;

    QListWidget *m_list;
    QPushButton *m_add, *m_remove, *m_read;
    QLineEdit *m_name;
    QComboBox *m_dialect;
    QDoubleSpinBox *m_maxPower, *m_bedWidth, *m_bedHeight, *m_travel, *m_acceleration;
    QLabel *m_readStatus;
};

#endif
