#pragma once

#include "platform/ProcessSignaller.h"

namespace zelvar {

// kill(2), the same on every POSIX system. Each system adds its own check of a measured
// process's identity (LinuxProcessSignaller, MacProcessSignaller).
class PosixProcessSignaller : public ProcessSignaller {
public:
    int send(Pid pid, int signal) final;

protected:
    // The plain send's answer as the result of a checked one.
    static SignalResult resultOf(int error);
};

}  // namespace zelvar
