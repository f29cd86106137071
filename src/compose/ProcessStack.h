#pragma once

#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "platform/Ports.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"

namespace zelvar {

class AlertManager;
class ConfigManager;

// Process monitoring: the provider of process snapshots, the volumes, the reader of the
// daemon's disk I/O log, and the process monitor that runs all three each cycle and enforces
// the limits of `config` through `alerts`.
struct ProcessStack {
    ProcessStack(const Ports& ports, ConfigManager& config, AlertManager& alerts);

    ProcessInfoProvider provider;
    DiskMonitor diskMonitor;
    DiskIOReader diskIOReader;
    ProcessMonitor monitor;
};

}  // namespace zelvar
