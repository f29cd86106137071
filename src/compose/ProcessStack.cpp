#include "compose/ProcessStack.h"

namespace zelvar {

ProcessStack::ProcessStack(const Ports& ports, ConfigManager& config, AlertManager& alerts)
    : provider(ports.processTable, ports.commandRunner, ports.serviceJobs, ports.clock),
      diskMonitor(ports.volumes, ports.clock),
      diskIOReader(ports.paths.diskIOLogFile()),
      monitor(config, alerts, provider, ports.processSignaller, diskMonitor, diskIOReader,
              ports.clock, ports.scheduler) {}

}  // namespace zelvar
