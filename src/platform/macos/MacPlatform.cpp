#include <QDir>
#include <QtGlobal>

#include "platform/macos/CoreAudioDeviceState.h"
#include "platform/macos/MacDesktop.h"
#include "platform/macos/MacInterfaceCounters.h"
#include "platform/macos/MacPaths.h"
#include "platform/macos/MacProcessSignaller.h"
#include "platform/macos/MacProcessTable.h"
#include "platform/macos/MacVolumeSource.h"
#include "platform/null/NullNotificationCenter.h"
#include "platform/null/NullProcessIOSource.h"
#include "platform/null/NullSystemLoadSource.h"
#include "platform/portable/MacPowerLogSource.h"
#include "platform/portable/UnwrappingInterfaceCounters.h"
#include "platform/posix/PosixDaemonLauncher.h"
#include "platform/qt/LaunchctlServiceJobs.h"
#include "platform/qt/ToolNetworkSources.h"
#include "platform/system/PlatformServices.h"

namespace zelvar {

std::unique_ptr<ProcessTable> makeProcessTable() {
    return std::make_unique<MacProcessTable>();
}

std::unique_ptr<ProcessSignaller> makeProcessSignaller() {
    return std::make_unique<MacProcessSignaller>();
}

std::unique_ptr<Paths> makePaths() {
    return std::make_unique<MacPaths>(QDir::homePath(), QDir::tempPath());
}

std::unique_ptr<VolumeSource> makeVolumeSource() {
    return std::make_unique<MacVolumeSource>();
}

std::unique_ptr<InterfaceCounters> makeInterfaceCounters() {
    // if_data's byte counters are 32-bit and wrap every 4 GiB.
    return std::make_unique<UnwrappingInterfaceCounters>(std::make_unique<MacInterfaceCounters>());
}

std::unique_ptr<NetworkNameSource> makeNetworkNameSource(CommandRunner& runner) {
    return std::make_unique<MacNetworkNameSource>(runner);
}

std::unique_ptr<ProcessNetworkSource> makeProcessNetworkSource(CommandRunner& runner) {
    return std::make_unique<NettopProcessNetworkSource>(runner);
}

std::unique_ptr<ServiceJobs> makeServiceJobs(CommandRunner& runner) {
    return std::make_unique<LaunchctlServiceJobs>(runner);
}

std::unique_ptr<NotificationCenter> makeNotificationCenter() {
    // The notification centre raises an exception in a process without a bundle identifier,
    // such as the bare executable a developer runs from the build tree.
    if (!MacNotificationCenter::hasBundleIdentifier()) {
        qWarning(
            "Notifications are off: no bundle identifier (run Zelvar+.app, not its executable)");
        return std::make_unique<NullNotificationCenter>();
    }
    return std::make_unique<MacNotificationCenter>();
}

std::unique_ptr<SoundOutput> makeSoundOutput() {
    return std::make_unique<MacSoundOutput>();
}

std::unique_ptr<ActivationPolicy> makeActivationPolicy() {
    return std::make_unique<MacActivationPolicy>();
}

std::unique_ptr<PowerLogSource> makePowerLogSource() {
    return std::make_unique<MacPowerLogSource>(QDir::homePath());
}

// The per-process storage counters need root on macOS, and the load counters have no reader
// here yet: the daemon's disk and correlation figures stay empty on this system.
std::unique_ptr<ProcessIOSource> makeProcessIOSource() {
    return std::make_unique<NullProcessIOSource>();
}

std::unique_ptr<SystemLoadSource> makeSystemLoadSource() {
    return std::make_unique<NullSystemLoadSource>();
}

std::unique_ptr<DaemonLauncher> makeDaemonLauncher() {
    return std::make_unique<PosixDaemonLauncher>();
}

std::unique_ptr<AudioDeviceState> makeAudioDeviceState(CommandRunner&) {
    return std::make_unique<CoreAudioDeviceState>();
}

SystemProfile currentSystemProfile() {
    return macSystemProfile();
}

std::function<bool(Pid)> makeOwnProcessTest() {
    return {};
}

}  // namespace zelvar
