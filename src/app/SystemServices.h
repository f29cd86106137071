#pragma once

#include <memory>

#include "platform/Clock.h"
#include "platform/PlatformServices.h"
#include "platform/ProcessSignaller.h"
#include "platform/QProcessCommandRunner.h"
#include "platform/Scheduler.h"

namespace zelvar {

// The real adapters of this system, created once by an entry point and lent to everything
// it composes.
struct SystemServices {
    SystemClock clock;
    QtScheduler scheduler;
    QProcessCommandRunner commandRunner;
    std::unique_ptr<ProcessTable> processTable = makeProcessTable();
    std::unique_ptr<Paths> paths = makePaths();
    PosixProcessSignaller processSignaller;
    std::unique_ptr<NotificationCenter> notificationCenter = makeNotificationCenter();
    std::unique_ptr<SoundOutput> soundOutput = makeSoundOutput();
    std::unique_ptr<ActivationPolicy> activationPolicy = makeActivationPolicy();
};

}  // namespace zelvar
