#pragma once

#include <QList>
#include <QString>

#include "process/ProcessInfo.h"

namespace zelvar {

// One name that the add sheets offer, with the largest resident size among its processes.
struct ProcessRAM {
    QString name;
    double ramMB = 0.0;

    bool operator==(const ProcessRAM&) const = default;
};

// One entry per distinct process name, with the largest memoryMB of that name, largest first.
// Names of equal size keep the order in which they first appear in `processes`.
QList<ProcessRAM> processesWithRAM(const QList<ProcessInfo>& processes);

// The name that the add sheets act on: the picker's choice wins over the typed name, and
// neither is trimmed, so a name of one blank counts as a name.
QString selectedProcess(const QString& selectedProcessName, const QString& customProcessName);

}  // namespace zelvar
