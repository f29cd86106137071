#pragma once

#include "platform/InterfaceCounters.h"

namespace zelvar {

// Interface counters from getifaddrs: the AF_LINK records' 32-bit ifi_ibytes and ifi_obytes.
// The "en" interfaces are the physical ones.
class MacInterfaceCounters final : public InterfaceCounters {
public:
    std::optional<QList<InterfaceCounter>> read() override;
};

}  // namespace zelvar
