#pragma once

#include "platform/posix/PosixProcessSignaller.h"

namespace zelvar {

// Signals a measured process with kill() right after checking its start time through
// proc_pidinfo. The system has no descriptor for a process, so this is as close as the check
// can come to the signal.
class MacProcessSignaller final : public PosixProcessSignaller {
public:
    SignalResult sendToMeasured(const ProcessIdentity& process, int signal) override;
};

}  // namespace zelvar
