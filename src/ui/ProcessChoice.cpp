#include "ui/ProcessChoice.h"

#include <QHash>
#include <algorithm>

namespace zelvar {

QList<ProcessRAM> processesWithRAM(const QList<ProcessInfo>& processes) {
    QList<ProcessRAM> result;
    QHash<QString, qsizetype> indexOfName;
    for (const ProcessInfo& process : processes) {
        const auto found = indexOfName.constFind(process.name);
        if (found == indexOfName.cend()) {
            indexOfName.insert(process.name, result.size());
            result.append({process.name, process.memoryMB});
        } else {
            double& largest = result[*found].ramMB;
            largest = std::max(largest, process.memoryMB);
        }
    }
    std::stable_sort(result.begin(), result.end(),
                     [](const ProcessRAM& a, const ProcessRAM& b) { return a.ramMB > b.ramMB; });
    return result;
}

QString selectedProcess(const QString& selectedProcessName, const QString& customProcessName) {
    return selectedProcessName.isEmpty() ? customProcessName : selectedProcessName;
}

}  // namespace zelvar
