#include "compose/NetworkStack.h"

#include "network/UsageCache.h"

namespace zelvar {

NetworkStack::NetworkStack(const Ports& ports)
    : bandwidth({ports.interfaceCounters, ports.networkName, ports.processNetwork,
                 ports.processSignaller, ports.clock, ports.scheduler,
                 UsageCache::defaultFile(ports.paths)}) {}

}  // namespace zelvar
