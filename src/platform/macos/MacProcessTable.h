#pragma once

#include "platform/ProcessTable.h"

namespace zelvar {

// The process table from sysctl(KERN_PROC) (with each start time), proc_name and proc_pidinfo.
// Resident memory is the larger of the task-info and task-all-info figures; both fail for processes
// of other users, which the sampler then takes from `ps`.
class MacProcessTable final : public ProcessTable {
public:
    std::optional<std::vector<ProcessTableEntry>> list() override;
    std::optional<QString> name(Pid pid) override;
    std::optional<quint64> residentBytes(Pid pid) override;
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override;

    // A process's start time as one figure, in microseconds since the epoch.
    static quint64 startTime(quint64 seconds, quint64 microseconds) {
        return seconds * 1'000'000 + microseconds;
    }
};

}  // namespace zelvar
