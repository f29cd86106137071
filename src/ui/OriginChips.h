#pragma once

#include <QList>
#include <QString>

#include "common/ProcessOrigin.h"

namespace zelvar {

// What the origin column of a process row shows: a chip for the immediate origin, and one in a
// lesser style for the root origin when it tells something more.
class OriginChips {
public:
    struct Chip {
        ProcessOrigin origin;
        bool lesser = false;
        // The origin's icon and short label, as the chip reads.
        QString text() const;
    };

    static QList<Chip> chips(const ProcessOrigin& immediate, const ProcessOrigin& root);
    // Both full labels on two lines when the origins differ, else the immediate one's.
    static QString toolTip(const ProcessOrigin& immediate, const ProcessOrigin& root);
};

}  // namespace zelvar
