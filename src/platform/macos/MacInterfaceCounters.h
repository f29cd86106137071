#pragma once

#include "platform/InterfaceCounters.h"

namespace zelvar {

// Interface counters from getifaddrs: the AF_LINK records' ifi_ibytes and ifi_obytes as the
// system keeps them, in 32 bits; the factory widens them with UnwrappingInterfaceCounters.
// The "en" interfaces are the physical ones.
class MacInterfaceCounters final : public InterfaceCounters {
public:
    std::optional<QList<InterfaceCounter>> read() override;
};

}  // namespace zelvar
