#include "platform/macos/MacProcessTable.h"

#include <libproc.h>
#include <mach/mach_time.h>
#include <sys/proc_info.h>
#include <sys/sysctl.h>

#include <QByteArray>
#include <algorithm>
#include <cerrno>

#include "platform/portable/FullProcessName.h"
#include "platform/portable/GrowingTable.h"

namespace zelvar {
namespace {

MachTimebase currentTimebase() {
    mach_timebase_info_data_t info{};
    if (mach_timebase_info(&info) != KERN_SUCCESS) {
        return {1, 1};
    }
    return {info.numer, info.denom};
}

// The executable's path: proc_pidpath, else the head of KERN_PROCARGS2 (only for processes of
// this user). Empty when neither answers.
QString executablePath(Pid pid) {
    char path[PROC_PIDPATHINFO_MAXSIZE] = {};
    if (proc_pidpath(pid, path, sizeof path) > 0) {
        return QString::fromUtf8(path);
    }
    int argmaxMib[2] = {CTL_KERN, KERN_ARGMAX};
    int argmax = 0;
    size_t size = sizeof argmax;
    if (sysctl(argmaxMib, 2, &argmax, &size, nullptr, 0) != 0 || argmax <= 0) {
        return {};
    }
    QByteArray buffer(argmax, '\0');
    int mib[3] = {CTL_KERN, KERN_PROCARGS2, pid};
    size = static_cast<size_t>(argmax);
    if (sysctl(mib, 3, buffer.data(), &size, nullptr, 0) != 0) {
        return {};
    }
    buffer.truncate(static_cast<qsizetype>(size));
    return FullProcessName::executablePathFromProcArgs(buffer);
}

}  // namespace

MacProcessTable::MacProcessTable() : m_timebase(currentTimebase()) {}

std::optional<std::vector<ProcessTableEntry>> MacProcessTable::list() {
    const auto records = GrowingTable<kinfo_proc>::read([](kinfo_proc* buffer, size_t* size) {
        int mib[4] = {CTL_KERN, KERN_PROC, KERN_PROC_ALL, 0};
        return sysctl(mib, 4, buffer, size, nullptr, 0) == 0 ? 0 : errno;
    });
    if (!records) {
        return std::nullopt;
    }
    std::vector<ProcessTableEntry> entries;
    entries.reserve(records->size());
    for (const kinfo_proc& record : *records) {
        const timeval started = record.kp_proc.p_starttime;
        entries.push_back({record.kp_proc.p_pid, record.kp_eproc.e_ppid,
                           startTime(static_cast<quint64>(started.tv_sec),
                                     static_cast<quint64>(started.tv_usec))});
    }
    return entries;
}

std::optional<QString> MacProcessTable::name(Pid pid) {
    const auto complete = [pid](const QString& name) {
        return FullProcessName::mayBeCut(name) ? FullProcessName::choose(name, executablePath(pid))
                                               : name;
    };
    char buffer[1024] = {};
    if (proc_name(pid, buffer, sizeof buffer) >= 1) {
        return complete(QString::fromUtf8(buffer));
    }
    int mib[4] = {CTL_KERN, KERN_PROC, KERN_PROC_PID, pid};
    kinfo_proc record{};
    size_t size = sizeof record;
    if (sysctl(mib, 4, &record, &size, nullptr, 0) != 0 || record.kp_proc.p_comm[0] == '\0') {
        return std::nullopt;
    }
    return complete(QString::fromUtf8(record.kp_proc.p_comm));
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
    // pti_total_user and pti_total_system count Mach absolute-time ticks, not nanoseconds.
    return m_timebase.nanoseconds(task.pti_total_user + task.pti_total_system);
}

}  // namespace zelvar
