#include <cerrno>
#include <csignal>

#include "platform/ProcessSignaller.h"

namespace zelvar {

int PosixProcessSignaller::send(Pid pid, int signal) {
    return ::kill(pid, signal) == 0 ? 0 : errno;
}

}  // namespace zelvar
