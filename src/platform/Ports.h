#pragma once

#include "platform/ActivationPolicy.h"
#include "platform/AudioDeviceState.h"
#include "platform/BatteryRegistry.h"
#include "platform/Clock.h"
#include "platform/CommandRunner.h"
#include "platform/InterfaceCounters.h"
#include "platform/NetworkNameSource.h"
#include "platform/NotificationCenter.h"
#include "platform/Paths.h"
#include "platform/PowerLogSource.h"
#include "platform/ProcessNetworkSource.h"
#include "platform/ProcessSignaller.h"
#include "platform/ProcessTable.h"
#include "platform/Scheduler.h"
#include "platform/ServiceJobs.h"
#include "platform/SoundOutput.h"
#include "platform/SystemProfile.h"
#include "platform/VolumeSource.h"
#include "platform/Workspace.h"

namespace zelvar {

// Every port of the system in one value, with the system's profile (its data as plain
// values), lent by whoever owns the adapters (the real ones in the app, fakes in tests) to the
// composition that builds the monitors. The adapters must outlive everything built from it.
struct Ports {
    const Clock& clock;
    Scheduler& scheduler;
    CommandRunner& commandRunner;
    ProcessTable& processTable;
    Paths& paths;
    VolumeSource& volumes;
    InterfaceCounters& interfaceCounters;
    NetworkNameSource& networkName;
    ProcessNetworkSource& processNetwork;
    ServiceJobs& serviceJobs;
    AudioDeviceState& audioDevices;
    ProcessSignaller& processSignaller;
    NotificationCenter& notificationCenter;
    SoundOutput& soundOutput;
    ActivationPolicy& activationPolicy;
    BatteryRegistry& batteryRegistry;
    PowerLogSource& powerLog;
    Workspace& workspace;
    const SystemProfile& system;
};

}  // namespace zelvar
