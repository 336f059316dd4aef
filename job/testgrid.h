// The material test grid: a job of N x M squares, power across the columns and speed (or passes)
// down the rows, highest speed first, each cell labelled in vector text engraved before the cells.
#ifndef TESTGRID_H
#define TESTGRID_H

#include "jobdocument.h"

struct TestGridParams
{
    double powerFrom = 10, powerTo = 100;  // percent
    int powerCount = 5;
    double speedFrom = 500, speedTo = 3000;  // mm/min
    int speedCount = 5;
    bool rowsArePasses = false;  // rows vary the passes (from passesFrom to passesTo) at speedFrom
    int passesFrom = 1, passesTo = 5, passesCount = 5;
    double cell = 5;  // mm
    double gap = 2;   // mm
    Operation operation = Operation::Fill;
    double x = 10, y = 10;  // the grid's bottom-left corner, mm
    MachineProfile machine;
};

namespace TestGrid {
// The grid as a job: one layer of labels at low power first, then one layer per cell.
// False with a message when a count is below 1 or the grid does not fit on the bed.
bool make(const TestGridParams &params, JobDocument *doc, QString *error);
}  // namespace TestGrid

#endif
