#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>
#include <vector>

namespace zelvar {

using Pid = qint32;

// What a system's listing may give for each process along with its identity, when the one
// read of the process that the listing makes holds it all (Linux's /proc/<pid>/stat).
struct ProcessFigures {
    std::optional<QString> name;  // none: the process has no name to show
    std::optional<quint64> residentBytes;
    quint64 cpuTimeNanoseconds = 0;
};

struct ProcessTableEntry {
    Pid pid = 0;
    Pid parentPid = 0;
    // When the process started, in the system's own unit (Linux: clock ticks since boot; macOS:
    // microseconds since the epoch); 0 when unknown. Only ever compared with the same system's
    // figure, to tell a process from a later one given the same pid.
    quint64 startTime = 0;
    // Present when the listing read the figures; the per-process reads below are then not
    // needed for this process in this listing.
    std::optional<ProcessFigures> figures;
};

// The kernel's process table, one raw figure at a time. Each read has its own failure: a
// process that vanished or can't be read yields no value for that read alone.
class ProcessTable {
public:
    virtual ~ProcessTable() = default;

    // Every process in the kernel's order with its parent and start time, pid 0 and kernel
    // threads included. No value when the table itself can't be listed.
    virtual std::optional<std::vector<ProcessTableEntry>> list() = 0;
    // The full name; no value when the process has gone or its name can't be read.
    virtual std::optional<QString> name(Pid pid) = 0;
    // Resident memory in bytes; no value when this caller may not read it.
    virtual std::optional<quint64> residentBytes(Pid pid) = 0;
    // User plus system CPU time accumulated by the process, in nanoseconds.
    virtual std::optional<quint64> cpuTimeNanoseconds(Pid pid) = 0;
};

}  // namespace zelvar
