#include "platform/posix/PosixProcessSignaller.h"

#include <cerrno>
#include <csignal>

namespace zelvar {

int PosixProcessSignaller::send(Pid pid, int signal) {
    // kill() takes 0 for our own process group and a negative pid for a whole group.
    if (pid <= 0) {
        return ESRCH;
    }
    return ::kill(pid, signal) == 0 ? 0 : errno;
}

SignalResult PosixProcessSignaller::resultOf(int error) {
    return error == 0 ? SignalResult{} : SignalResult{SignalResult::Outcome::failed, error};
}

}  // namespace zelvar
