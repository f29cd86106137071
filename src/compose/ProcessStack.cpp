#include "compose/ProcessStack.h"

namespace zelvar {

ProcessStack::ProcessStack(const Ports& ports, ConfigManager& config, AlertManager& alerts)
    : provider(ports.processTable, ports.commandRunner, ports.serviceJobs, ports.clock),
      diskMonitor(ports.volumes, ports.clock),
      diskIOReader(ports.paths.diskIOLogFile()),
      diskIOPoller(diskIOReader, ports.clock),
      limitEnforcer(config, alerts, ports.processSignaller, ports.clock),
      monitor({config, provider, diskMonitor, limitEnforcer, diskIOPoller, ports.clock,
               ports.scheduler}) {}

}  // namespace zelvar
