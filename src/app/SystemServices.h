#pragma once

#include <memory>

#include "platform/posix/PosixProcessSignaller.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SystemClock.h"
#include "platform/qt/ToolNetworkSources.h"
#include "platform/system/PlatformServices.h"

namespace zelvar {

// The real adapters of this system, created once by an entry point and lent to everything
// it composes.
struct SystemServices {
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
