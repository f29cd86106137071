#pragma once

#include <memory>

#include "common/Log.h"
#include "platform/Ports.h"
#include "platform/null/NullNotificationCenter.h"
#include "platform/null/NullSoundOutput.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SystemClock.h"
#include "platform/qt/ToolNetworkSources.h"
#include "platform/system/PlatformServices.h"

namespace zelvar {

// The real adapters of this system, created once by an entry point and lent to everything
// it composes through ports().
struct SystemServices {
    Ports ports() { return portsNotifyingThrough(*notificationCenter, *soundOutput); }
    // The same, but never a notification nor a sound: for runs that only look, such as the
    // reports.
    Ports silentPorts() { return portsNotifyingThrough(silentCenter, silentOutput); }

    Ports portsNotifyingThrough(NotificationCenter& center, SoundOutput& output) {
        return {clock,
                scheduler,
                commandRunner,
                *processTable,
                *paths,
                *volumes,
                *interfaceCounters,
                *networkNameSource,
                *processNetworkSource,
                *serviceJobs,
                *audioDevices,
                *processSignaller,
                center,
                output,
                *activationPolicy,
                *batteryRegistry,
                *powerLog,
                *workspace,
                profile};
    }

    SystemProfile profile = currentSystemProfile();

    SystemClock clock;
    QtScheduler scheduler;
    QProcessCommandRunner commandRunner;
    std::unique_ptr<ProcessTable> processTable = makeProcessTable();
    std::unique_ptr<Paths> paths = makePaths();
    std::unique_ptr<VolumeSource> volumes = makeVolumeSource();
    std::unique_ptr<InterfaceCounters> interfaceCounters = makeInterfaceCounters();
    std::unique_ptr<NetworkNameSource> networkNameSource = makeNetworkNameSource(commandRunner);
    std::unique_ptr<ProcessNetworkSource> processNetworkSource =
        makeProcessNetworkSource(commandRunner);
    std::unique_ptr<ServiceJobs> serviceJobs = makeServiceJobs(commandRunner);
    std::unique_ptr<ProcessSignaller> processSignaller = makeProcessSignaller();
    std::unique_ptr<NotificationCenter> notificationCenter = makeNotificationCenter();
    std::unique_ptr<SoundOutput> soundOutput = makeSoundOutput();
    std::unique_ptr<ActivationPolicy> activationPolicy = makeActivationPolicy();
    std::unique_ptr<BatteryRegistry> batteryRegistry = makeBatteryRegistry();
    std::unique_ptr<PowerLogSource> powerLog = makePowerLogSource();
    std::unique_ptr<AudioDeviceState> audioDevices = makeAudioDeviceState(commandRunner);
    std::unique_ptr<Workspace> workspace =
        makeWorkspace([](const QString& line) { logLine(line); });
    NullNotificationCenter silentCenter;
    NullSoundOutput silentOutput;
};

}  // namespace zelvar
