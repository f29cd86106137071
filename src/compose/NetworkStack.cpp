#include "compose/NetworkStack.h"

namespace zelvar {

NetworkStack::NetworkStack(const Ports& ports)
    : bandwidth({ports.interfaceCounters, ports.networkName, ports.processNetwork,
                 ports.processSignaller, ports.clock, ports.scheduler,
                 ports.paths.usageByDateFile()}) {}

}  // namespace zelvar
