#include "compose/ProcessStack.h"

namespace zelvar {

ProcessStack::ProcessStack(const Ports& ports, ConfigManager& config, AlertManager& alerts)
    : provider(ports.processTable, ports.commandRunner, ports.serviceJobs, ports.clock,
               ports.system.originNames),
      diskMonitor(ports.volumes, ports.clock),
      diskIOReader(DiskIOReader::defaultFile(ports.paths)),
      diskIOPoller(diskIOReader, ports.clock),
      limitEnforcer(config, alerts, ports.processSignaller, ports.clock),
      monitor({config, provider, diskMonitor, limitEnforcer, diskIOPoller, ports.clock,
               ports.scheduler}) {}

}  // namespace zelvar
