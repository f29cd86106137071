#pragma once

#include <QList>
#include <QString>

#include "app/report/ReportContext.h"
#include "process/ProcessInfo.h"

namespace zelvar {

class ProcessesReport {
public:
    static ReportKind kind();

    // Runs the real process monitor for `cycles` cycles and returns its last snapshot.
    static QList<ProcessInfo> sample(SystemServices& services, int cycles,
                                     std::optional<double> intervalSeconds);

    // A table with one row a process: pid, parent, memory, CPU, name.
    static QString formatTable(const QList<ProcessInfo>& processes);
    // The processes' JSON form, one array.
    static QByteArray formatJson(const QList<ProcessInfo>& processes);
};

}  // namespace zelvar
