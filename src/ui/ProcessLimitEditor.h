#pragma once

#include <QString>
#include <QUuid>
#include <optional>

#include "config/ProcessLimit.h"

namespace zelvar {

// What opens the limit sheet of a process: its name and the limit that covers it, if any.
// Each opening gets a fresh id, so that opening the sheet twice for one process gives two
// distinct presentations.
struct ProcessLimitEditor {
    QUuid id = QUuid::createUuid();
    QString processName;
    std::optional<ProcessLimit> existingLimit;
};

}  // namespace zelvar
