#include "platform/macos/MacProcessSignaller.h"

#include <libproc.h>
#include <sys/proc_info.h>

#include <cerrno>

#include "platform/macos/MacProcessTable.h"

namespace zelvar {

SignalResult MacProcessSignaller::sendToMeasured(const ProcessIdentity& process, int signal) {
    if (process.pid <= 0) {
        return resultOf(ESRCH);
    }
    proc_bsdinfo info{};
    errno = 0;
    const int size = proc_pidinfo(process.pid, PROC_PIDTBSDINFO, 0, &info, sizeof info);
    if (size < static_cast<int>(sizeof info)) {
        // Unchecked means unsent; a process that can't be looked up has usually ended.
        return resultOf(errno != 0 ? errno : ESRCH);
    }
    if (MacProcessTable::startTime(info.pbi_start_tvsec, info.pbi_start_tvusec) !=
        process.startTime) {
        return {SignalResult::Outcome::replaced, 0};
    }
    return resultOf(send(process.pid, signal));
}

}  // namespace zelvar
