#pragma once

#include "platform/ProcessTable.h"

namespace zelvar {

// For systems whose process table can't be read: the table can't be listed and no process can
// be read.
class NullProcessTable final : public ProcessTable {
public:
    std::optional<std::vector<ProcessTableEntry>> list() override { return std::nullopt; }
    std::optional<QString> name(Pid) override { return std::nullopt; }
    std::optional<quint64> residentBytes(Pid) override { return std::nullopt; }
    std::optional<quint64> cpuTimeNanoseconds(Pid) override { return std::nullopt; }
};

}  // namespace zelvar
