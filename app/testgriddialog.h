// The material test grid dialog over the job engine's grid maker: powers across, speeds (or passes)
// down, cell size, gap, operation and place, with a live picture of the grid and its estimated time.
// Its result is a job document, which the Job window opens as a new job.
#ifndef TESTGRIDDIALOG_H
#define TESTGRIDDIALOG_H

#include "testgrid.h"

#include <QDialog>
#include <QTimer>

class QCheckBox;
class QComboBox;
class QDoubleSpinBox;
class QLabel;
class QSpinBox;

class TestGridDialog : public QDialog
{
    Q_OBJECT

public:
    TestGridDialog(const MachineProfile &machine, QWidget *parent = nullptr);

    void setParams(const TestGridParams &params);
    TestGridParams params() const;
    // The grid for the fields' values; false with the engine's message.
    bool makeDocument(JobDocument *doc, QString *error) const;
    // Redraws the picture and the time now (the fields do it shortly after each change).
    void refresh();
    QString timeText() const;
    QImage picture() const { return m_picture; }

private:
    void schedule();

    MachineProfile m_machine;
    QTimer m_refresh;
    QImage m_picture;
    QDoubleSpinBox *m_powerFrom, *m_powerTo, *m_speedFrom, *m_speedTo, *m_cell, *m_gap, *m_x, *m_y;
    QSpinBox *m_powerCount, *m_speedCount, *m_passesFrom, *m_passesTo, *m_passesCount;
    QCheckBox *m_rowsArePasses;
    QComboBox *m_operation;
    QLabel *m_view, *m_time;
};

#endif
