#pragma once

#include <memory>

#include "platform/Clock.h"
#include "platform/PlatformServices.h"
#include "platform/Ports.h"
#include "platform/ProcessSignaller.h"
#include "platform/QProcessCommandRunner.h"
#include "platform/Scheduler.h"
#include "platform/ToolNetworkSources.h"

namespace zelvar {

// The real adapters of this system, created once by an entry point and lent to everything
// it composes through ports().
struct SystemServices {
    Ports ports() {
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
                processSignaller,
                *notificationCenter,
                *soundOutput,
                *activationPolicy};
    }

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
    PosixProcessSignaller processSignaller;
    std::unique_ptr<NotificationCenter> notificationCenter = makeNotificationCenter();
    std::unique_ptr<SoundOutput> soundOutput = makeSoundOutput();
    std::unique_ptr<ActivationPolicy> activationPolicy = makeActivationPolicy();
};

}  // namespace zelvar
