// Shared by the job engine's tests: planned moves written compactly in a test table.
// "T x y" travels, "C x y power feed" cuts, separated by ';' (um, S x 1000).
#ifndef JOBTESTSUPPORT_H
#define JOBTESTSUPPORT_H

#include "jobmoves.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace JobTest {

inline std::vector<PlannedMove> parseMoves(const QString &text)
{
    std::vector<PlannedMove> moves;
    for (const QString &part : text.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QStringList f = part.simplified().split(QLatin1Char(' '));
        PlannedMove m;
        m.kind = f[0] == QLatin1String("T") ? PlannedMove::Travel : PlannedMove::Cut;
        m.x = f[1].toInt();
        m.y = f[2].toInt();
        if (m.kind == PlannedMove::Cut) {
            m.power = f[3].toInt();
            m.feed = f[4].toInt();
        }
        moves.push_back(m);
    }
    return moves;
}

}  // namespace JobTest

#endif
