#pragma once

#include "platform/ProcessTable.h"
#include "platform/portable/MachTimebase.h"

namespace zelvar {

// The process table from sysctl(KERN_PROC) (with each start time, read with headroom and again
// when the table grew in between), proc_name completed from proc_pidpath or KERN_PROCARGS2
// when it may have been cut, and proc_pidinfo. Resident memory is the larger of the task-info
// and task-all-info figures; both fail for processes of other users, which the sampler then
// takes from `ps`. CPU times come in Mach ticks and leave as nanoseconds.
class MacProcessTable final : public ProcessTable {
public:
    MacProcessTable();

    std::optional<std::vector<ProcessTableEntry>> list() override;
    std::optional<QString> name(Pid pid) override;
    std::optional<quint64> residentBytes(Pid pid) override;
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override;

    // A process's start time as one figure, in microseconds since the epoch.
    static quint64 startTime(quint64 seconds, quint64 microseconds) {
        return seconds * 1'000'000 + microseconds;
    }

private:
    MachTimebase m_timebase;
};

}  // namespace zelvar
