#pragma once

#include <QList>
#include <QString>

#include "app/report/ReportContext.h"
#include "process/ProcessInfo.h"
#include "process/ProcessNode.h"

namespace zelvar {

class ProcessesReport {
public:
    static ReportKind kind();

    // What the monitor published last: the snapshot and its forest.
    struct Sample {
        QList<ProcessInfo> processes;
        QList<ProcessNode> tree;
    };

    // Runs the real process monitor for `cycles` cycles and returns its last snapshot.
    static QList<ProcessInfo> sample(SystemServices& services, int cycles,
                                     std::optional<double> intervalSeconds);
    // The same, with the forest built from that snapshot.
    static Sample sampleWithTree(SystemServices& services, int cycles,
                                 std::optional<double> intervalSeconds);

    // An origin as a chip: its icon and short label; empty for an unknown origin.
    static QString originChip(const ProcessOrigin& origin);
    // The immediate and root origin chips as two padded columns, and the header over them.
    static QString originColumns(const ProcessInfo& process);
    static QString originColumnsHeader();

    // A table with one row a process: pid, parent, memory, CPU, the immediate and root origins,
    // name.
    static QString formatTable(const QList<ProcessInfo>& processes);
    // The processes' JSON form, one array.
    static QByteArray formatJson(const QList<ProcessInfo>& processes);
};

}  // namespace zelvar
