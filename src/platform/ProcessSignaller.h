#pragma once

#include <QString>

#include "platform/ProcessTable.h"

namespace zelvar {

// A process as a sample saw it. `startTime` is the process table's figure (0: unknown); with
// the pid it tells the measured process from a later one that was given the same pid.
struct ProcessIdentity {
    Pid pid = 0;
    quint64 startTime = 0;
    QString name;
};

// What a signal meant for one measured process came to.
struct SignalResult {
    enum class Outcome {
        delivered,
        replaced,  // the pid belongs to another process now; nothing was sent
        failed,    // see `error`
    };
    Outcome outcome = Outcome::delivered;
    int error = 0;  // when failed, the errno value: ESRCH gone, EPERM not allowed, ...

    bool operator==(const SignalResult&) const = default;
};

// Sends signals to processes. Signal 0 only tests whether the process exists and may be
// signalled. A pid of 0 or below is never signalled (kill() would take it for a process group)
// and answers ESRCH.
class ProcessSignaller {
public:
    virtual ~ProcessSignaller() = default;

    // 0 when the signal was delivered, otherwise the errno value (EPERM, ESRCH, ...).
    virtual int send(Pid pid, int signal) = 0;
    // The signal for the measured process and no other: sent only when the process behind the
    // pid started when the sample said (and, where the system's short name can be compared,
    // still has the measured name).
    virtual SignalResult sendToMeasured(const ProcessIdentity& process, int signal) = 0;
};

}  // namespace zelvar
