#pragma once

#include "platform/ProcessSignaller.h"

namespace zelvar {

// kill(2), the same on every POSIX system.
class PosixProcessSignaller final : public ProcessSignaller {
public:
    int send(Pid pid, int signal) override;
};

}  // namespace zelvar
