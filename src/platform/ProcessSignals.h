#pragma once

#include "platform/ProcessTable.h"

namespace zelvar {

// Signals to other processes.
class ProcessSignals {
public:
    virtual ~ProcessSignals() = default;
    // Stops the process outright (SIGSTOP). False when the signal couldn't be sent, for
    // example to a process of another user.
    virtual bool stop(Pid pid) = 0;
};

}  // namespace zelvar
