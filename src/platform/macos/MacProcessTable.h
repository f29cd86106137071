#pragma once

#include "platform/ProcessTable.h"

namespace zelvar {

// The process table from sysctl(KERN_PROC), proc_name and proc_pidinfo. Resident memory is
// the larger of the task-info and task-all-info figures; both fail for processes of other
// users, which the sampler then takes from `ps`.
class MacProcessTable final : public ProcessTable {
public:
    std::optional<std::vector<ProcessTableEntry>> list() override;
    std::optional<QString> name(Pid pid) override;
    std::optional<quint64> residentBytes(Pid pid) override;
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override;
};

}  // namespace zelvar
