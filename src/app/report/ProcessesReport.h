#pragma once

#include <QList>
#include <QString>

#include "app/report/ReportKind.h"
#include "process/ProcessInfo.h"
#include "process/ProcessNode.h"

namespace zelvar {

// `zelvar2 report processes`: the process list as the dashboard shows it.
class ProcessesReport {
public:
    static ReportKind kind();

    // How many cycles to run, and the check interval that replaces the configured one.
    struct Settings {
        int cycles = 2;
        std::optional<double> intervalSeconds;
    };
    // --cycles (2 by default, so that CPU shares are measured) and --interval, which the tree
    // report takes as well.
    static QList<ReportOption> options();
    static Settings settings(const ReportOptions& options);

    // What the monitor published last: the snapshot and its forest.
    struct Sample {
        QList<ProcessInfo> processes;
        QList<ProcessNode> tree;
    };
    // Runs the process monitor of `monitors` for the settings' cycles.
    static Sample sample(Monitors& monitors, const Settings& settings);

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
