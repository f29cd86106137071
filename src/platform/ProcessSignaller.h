#pragma once

#include "platform/ProcessTable.h"

namespace zelvar {

// Sends signals to processes. Signal 0 only tests whether the process exists and may be
// signalled.
class ProcessSignaller {
public:
    virtual ~ProcessSignaller() = default;

    // 0 when the signal was delivered, otherwise the errno value (EPERM, ESRCH, ...).
    virtual int send(Pid pid, int signal) = 0;
};

}  // namespace zelvar
