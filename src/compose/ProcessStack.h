#pragma once

#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "platform/Ports.h"
#include "process/DiskIOPoller.h"
#include "process/LimitEnforcer.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"

namespace zelvar {

class AlertManager;
class ConfigManager;

// Process monitoring: the provider of process snapshots, the volumes, the reader of the
// daemon's disk I/O log and its poller, the enforcer of the limits of `config` (alerting
// through `alerts`), and the process monitor that runs them all each cycle.
struct ProcessStack {
    ProcessStack(const Ports& ports, ConfigManager& config, AlertManager& alerts);

    ProcessInfoProvider provider;
    DiskMonitor diskMonitor;
    DiskIOReader diskIOReader;
    DiskIOPoller diskIOPoller;
    LimitEnforcer limitEnforcer;
    ProcessMonitor monitor;
};

}  // namespace zelvar
