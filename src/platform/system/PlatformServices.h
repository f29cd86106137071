#pragma once

#include <functional>
#include <memory>

#include "platform/ActivationPolicy.h"
#include "platform/AudioDeviceState.h"
#include "platform/BatteryRegistry.h"
#include "platform/CommandRunner.h"
#include "platform/DaemonLauncher.h"
#include "platform/InterfaceCounters.h"
#include "platform/NetworkNameSource.h"
#include "platform/NotificationCenter.h"
#include "platform/Paths.h"
#include "platform/PowerLogSource.h"
#include "platform/ProcessIOSource.h"
#include "platform/ProcessNetworkSource.h"
#include "platform/ProcessSignaller.h"
#include "platform/ProcessTable.h"
#include "platform/ServiceJobs.h"
#include "platform/SoundOutput.h"
#include "platform/SystemLoadSource.h"
#include "platform/SystemProfile.h"
#include "platform/VolumeSource.h"
#include "platform/Workspace.h"

namespace zelvar {

class CommandRunner;

// The current system's adapters. Each build compiles exactly one implementation of these.
std::unique_ptr<ProcessTable> makeProcessTable();
std::unique_ptr<ProcessSignaller> makeProcessSignaller();
std::unique_ptr<Paths> makePaths();
std::unique_ptr<VolumeSource> makeVolumeSource();
std::unique_ptr<InterfaceCounters> makeInterfaceCounters();
// Both run their tool through `runner`, which must outlive them.
std::unique_ptr<NetworkNameSource> makeNetworkNameSource(CommandRunner& runner);
std::unique_ptr<ProcessNetworkSource> makeProcessNetworkSource(CommandRunner& runner);
// Runs its tools through `runner`, which must outlive it, when the manager can't be asked
// directly.
std::unique_ptr<ServiceJobs> makeServiceJobs(CommandRunner& runner);
// The desktop's notification service; create it on the main thread.
std::unique_ptr<NotificationCenter> makeNotificationCenter();
std::unique_ptr<SoundOutput> makeSoundOutput();
std::unique_ptr<ActivationPolicy> makeActivationPolicy();
// The machine's battery; its reads run on a worker thread.
std::unique_ptr<BatteryRegistry> makeBatteryRegistry();
// Where the power history's raw material lies: the journal or `pmset -g log`, the reports.
std::unique_ptr<PowerLogSource> makePowerLogSource();
// The daemon's readings: per-process storage counters and the machine's load counters (Null
// where the system keeps them from an ordinary user).
std::unique_ptr<ProcessIOSource> makeProcessIOSource();
std::unique_ptr<SystemLoadSource> makeSystemLoadSource();
std::unique_ptr<DaemonLauncher> makeDaemonLauncher();
// The desktop's applications and focus; create it on the main thread, which it answers on.
// `log` takes the line that says why focus tracking is unavailable, when it is.
std::unique_ptr<Workspace> makeWorkspace(std::function<void(const QString& line)> log);
// The default audio devices' state; create it on the main thread. Runs its tool through
// `runner`, which must outlive it, where the sound service is asked by command.
std::unique_ptr<AudioDeviceState> makeAudioDeviceState(CommandRunner& runner);
// This system's name tables, labels and tool paths.
SystemProfile currentSystemProfile();
// Whether a process runs as the user running this program. Empty where the system's tree is
// anchored by process names instead (macOS: "kernel_task" and "launchd").
std::function<bool(Pid)> makeOwnProcessTest();

}  // namespace zelvar
