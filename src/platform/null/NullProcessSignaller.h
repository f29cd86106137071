#pragma once

#include <cerrno>

#include "platform/ProcessSignaller.h"

namespace zelvar {

// For runs that must never signal a process: nothing is sent, and every signal answers EPERM
// as a process the caller may not touch would.
class NullProcessSignaller final : public ProcessSignaller {
public:
    int send(Pid, int) override { return EPERM; }
    SignalResult sendToMeasured(const ProcessIdentity&, int) override {
        return {SignalResult::Outcome::failed, EPERM};
    }
};

}  // namespace zelvar
