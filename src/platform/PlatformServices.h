#pragma once

#include <memory>

#include "platform/ActivationPolicy.h"
#include "platform/NotificationCenter.h"
#include "platform/Paths.h"
#include "platform/ProcessTable.h"
#include "platform/SoundOutput.h"

namespace zelvar {

// The current system's adapters. Each build compiles exactly one implementation of these.
std::unique_ptr<ProcessTable> makeProcessTable();
std::unique_ptr<Paths> makePaths();
// The desktop's notification service; create it on the main thread.
std::unique_ptr<NotificationCenter> makeNotificationCenter();
std::unique_ptr<SoundOutput> makeSoundOutput();
std::unique_ptr<ActivationPolicy> makeActivationPolicy();

}  // namespace zelvar
