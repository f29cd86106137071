#include "platform/posix/PosixProcessSignaller.h"

#include <cerrno>
#include <csignal>

namespace zelvar {

int PosixProcessSignaller::send(Pid pid, int signal) {
    return ::kill(pid, signal) == 0 ? 0 : errno;
}

}  // namespace zelvar
