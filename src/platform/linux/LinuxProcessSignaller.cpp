#include "platform/linux/LinuxProcessSignaller.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/FileDescriptor.h"
#include "platform/linux/ProcFile.h"
#include "platform/linux/ProcStat.h"

#if __has_include(<sys/pidfd.h>)
// glibc 2.36 declares these without C linkage for C++.
extern "C" {
#include <sys/pidfd.h>
}
#else
#include <sys/syscall.h>
#endif

namespace zelvar {
namespace {

constexpr qsizetype kCommLimit = 15;  // TASK_COMM_LEN - 1

#if !__has_include(<sys/pidfd.h>)
// C libraries before glibc 2.36 have no wrappers; the calls go straight to the kernel, or
// answer ENOSYS where even the kernel headers don't know them.
int pidfd_open(pid_t pid, unsigned int flags) {
#ifdef SYS_pidfd_open
    return static_cast<int>(::syscall(SYS_pidfd_open, pid, flags));
#else
    (void)pid;
    (void)flags;
    errno = ENOSYS;
    return -1;
#endif
}

int pidfd_send_signal(int pidfd, int signal, siginfo_t* info, unsigned int flags) {
#ifdef SYS_pidfd_send_signal
    return static_cast<int>(::syscall(SYS_pidfd_send_signal, pidfd, signal, info, flags));
#else
    (void)pidfd;
    (void)signal;
    (void)info;
    (void)flags;
    errno = ENOSYS;
    return -1;
#endif
}
#endif

}  // namespace

SignalResult LinuxProcessSignaller::sendToMeasured(const ProcessIdentity& process, int signal) {
    if (process.pid <= 0) {
        return resultOf(ESRCH);
    }
    const FileDescriptor pidfd(pidfd_open(process.pid, 0));
    if (pidfd.get() < 0 && errno != ENOSYS) {
        return resultOf(errno);
    }
    if (const std::optional<SignalResult> refused = refusal(process)) {
        return *refused;
    }
    if (pidfd.get() < 0) {
        // Kernels before 5.3 have no pidfd. kill() right after the check leaves the pid a
        // moment in which it could still be reused; nothing narrower exists there.
        return resultOf(send(process.pid, signal));
    }
    return resultOf(pidfd_send_signal(pidfd.get(), signal, nullptr, 0) == 0 ? 0 : errno);
}

std::optional<SignalResult> LinuxProcessSignaller::refusal(const ProcessIdentity& process) {
    const std::optional<ProcStat> stat =
        parseProcStat(readProcFile("/proc/" + QByteArray::number(process.pid) + "/stat"));
    if (!stat) {
        return resultOf(ESRCH);
    }
    // The name is compared only when the kernel kept it whole: a cut or empty short name was
    // completed from the command line when it was measured.
    const bool nameComparable = !stat->comm.isEmpty() && stat->comm.size() < kCommLimit;
    if (stat->startTicks != process.startTime ||
        (nameComparable && QString::fromUtf8(stat->comm) != process.name)) {
        return SignalResult{SignalResult::Outcome::replaced, 0};
    }
    return std::nullopt;
}

}  // namespace zelvar
