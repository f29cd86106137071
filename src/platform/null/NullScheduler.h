#pragma once

#include "platform/Scheduler.h"

namespace zelvar {

// For runs that must not act later: every callback is dropped, so nothing scheduled ever runs.
class NullScheduler final : public Scheduler {
public:
    void callAfter(double, QObject*, std::function<void()>) override {}
};

}  // namespace zelvar
