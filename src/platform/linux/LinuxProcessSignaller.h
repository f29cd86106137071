#pragma once

#include <optional>

#include "platform/posix/PosixProcessSignaller.h"

namespace zelvar {

// Signals a measured process through a pidfd: the descriptor is opened first, then
// /proc/<pid>/stat is checked against the measured start time and name, then the signal goes
// through the descriptor. A match proves the descriptor holds the measured process, and a
// descriptor can't come to stand for another process, so the signal reaches that process or,
// if it has ended since, nothing (ESRCH).
class LinuxProcessSignaller final : public PosixProcessSignaller {
public:
    SignalResult sendToMeasured(const ProcessIdentity& process, int signal) override;

private:
    // No value when the process behind the pid is the measured one; otherwise what to answer.
    static std::optional<SignalResult> refusal(const ProcessIdentity& process);
};

}  // namespace zelvar
