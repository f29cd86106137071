#pragma once

#include "platform/Scheduler.h"

namespace zelvar {

// The real scheduler: a single-shot Qt timer on the context's event loop.
class QtScheduler final : public Scheduler {
public:
    void callAfter(double seconds, QObject* context, std::function<void()> callback) override;
};

}  // namespace zelvar
