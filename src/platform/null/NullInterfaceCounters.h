#pragma once

#include "platform/InterfaceCounters.h"

namespace zelvar {

// For systems whose interface counters can't be read: the list is never available.
class NullInterfaceCounters final : public InterfaceCounters {
public:
    std::optional<QList<InterfaceCounter>> read() override { return std::nullopt; }
};

}  // namespace zelvar
