#pragma once

#include "network/BandwidthMonitor.h"
#include "platform/Ports.h"

namespace zelvar {

// The network: the bandwidth monitor over the interface counters, the network's name, the
// per-process counters and the daemon's daily usage file. Created idle.
struct NetworkStack {
    explicit NetworkStack(const Ports& ports);

    BandwidthMonitor bandwidth;
};

}  // namespace zelvar
