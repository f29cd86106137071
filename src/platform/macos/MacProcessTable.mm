#include "platform/macos/MacProcessTable.h"

#include <libproc.h>
#include <sys/sysctl.h>

#include <algorithm>

namespace zelvar {

std::optional<std::vector<ProcessTableEntry>> MacProcessTable::list() {
    int mib[4] = {CTL_KERN, KERN_PROC, KERN_PROC_ALL, 0};
    size_t size = 0;
    if (sysctl(mib, 4, nullptr, &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    std::vector<kinfo_proc> records(size / sizeof(kinfo_proc));
    if (sysctl(mib, 4, records.data(), &size, nullptr, 0) != 0) {
        return std::nullopt;
    }
    const size_t count = std::min(size / sizeof(kinfo_proc), records.size());
    std::vector<ProcessTableEntry> entries;
    entries.reserve(count);
    for (size_t i = 0; i < count; ++i) {
        const timeval started = records[i].kp_proc.p_starttime;
        entries.push_back({records[i].kp_proc.p_pid, records[i].kp_eproc.e_ppid,
                           startTime(static_cast<quint64>(started.tv_sec),
                                     static_cast<quint64>(started.tv_usec))});
    }
    return entries;
}

std::optional<QString> MacProcessTable::name(Pid pid) {
    char buffer[1024] = {};
    if (proc_name(pid, buffer, sizeof buffer) >= 1) {
        return QString::fromUtf8(buffer);
    }
    int mib[4] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, pid};
    kinfo_proc record{};
    size_t size = sizeof record;
    if (sysctl(mib, 4, &record, &size, nullptr, 0) != 0 || record.kp_proc.p_comm[0] == '\0') {
        return std::nullopt;
    }
    return QString::fromUtf8(record.kp_proc.p_comm);
}

std::optional<quint64> MacProcessTable::residentBytes(Pid pid) {
    proc_taskinfo task{};
    if (proc_pidinfo(pid, PROC_PIDTASKINFO, 0, &task, sizeof task) < 1) {
        return std::nullopt;
    }
    proc_taskallinfo all{};
    const quint64 other = proc_pidinfo(pid, PROC_PIDTASKALLINFO, 0, &all, sizeof all) >= 1
                              ? all.ptinfo.pti_resident_size
                              : 0;
    return std::max<quint64>(task.pti_resident_size, other);
}

std::optional<quint64> MacProcessTable::cpuTimeNanoseconds(Pid pid) {
    proc_taskinfo task{};
    if (proc_pidinfo(pid, PROC_PIDTASKINFO, 0, &task, sizeof task) < 1) {
        return std::nullopt;
    }
    return task.pti_total_user + task.pti_total_system;
}

}  // namespace zelvar
