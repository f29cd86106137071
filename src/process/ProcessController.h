#pragma once

#include "platform/ProcessSignaller.h"

namespace zelvar {

class Clock;

// Ends processes. Reports by result and by log line, never by exception. Holds nothing but
// the ports it signals and waits through.
class ProcessController {
public:
    enum class ProcessError { processNotFound, accessDenied, unknownError };

    ProcessController(ProcessSignaller& signaller, const Clock& clock)
        : m_signaller(signaller), m_clock(clock) {}

    // SIGTERM; SIGKILL only when SIGTERM could not be delivered. True when a signal was
    // delivered; there is no waiting to see whether the process ends. Both signals reach the
    // measured process only: a pid that now belongs to another process gets nothing. A start
    // time of 0 (unknown) signals the pid as it stands.
    bool killProcess(const ProcessIdentity& process);
    // SIGTERM, then up to `timeoutSeconds` of checks every 0.1 seconds, then SIGKILL. True
    // when the process is gone or the final SIGKILL was delivered.
    bool killProcessGracefully(Pid pid, double timeoutSeconds = 3.0);

    static ProcessError errorFor(int errnoValue);

private:
    ProcessSignaller& m_signaller;
    const Clock& m_clock;
};

}  // namespace zelvar
