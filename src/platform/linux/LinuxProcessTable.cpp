#include "platform/linux/LinuxProcessTable.h"

#include <dirent.h>
#include <unistd.h>

#include <charconv>
#include <cstring>
#include <memory>

#include "platform/linux/ProcFile.h"
#include "platform/linux/ProcStat.h"

namespace zelvar {
namespace {

struct DirCloser {
    void operator()(DIR* dir) const { closedir(dir); }
};

std::optional<Pid> pidFromDirectoryName(const char* name) {
    Pid pid = 0;
    const char* end = name;
    while (*end != '\0') {
        ++end;
    }
    auto [ptr, ec] = std::from_chars(name, end, pid);
    if (ec != std::errc{} || ptr != end || end == name) {
        return std::nullopt;
    }
    return pid;
}

// "<pid>/<leaf>", built without an allocation; valid until the next call on this thread.
const char* relativeFile(Pid pid, const char* leaf) {
    thread_local char path[64];
    auto [end, ec] = std::to_chars(path, path + 16, pid);
    *end++ = '/';
    std::strncpy(end, leaf, path + sizeof path - end - 1);
    path[sizeof path - 1] = '\0';
    return path;
}

}  // namespace

LinuxProcessTable::LinuxProcessTable(QString procRoot)
    : m_procRoot(procRoot.toLocal8Bit()),
      m_pageSize(static_cast<quint64>(sysconf(_SC_PAGESIZE))),
      m_nanosecondsPerTick(1'000'000'000ULL / static_cast<quint64>(sysconf(_SC_CLK_TCK))) {}

QByteArray LinuxProcessTable::pidFile(Pid pid, const char* leaf) const {
    return m_procRoot + '/' + QByteArray::number(pid) + '/' + leaf;
}

std::optional<std::vector<ProcessTableEntry>> LinuxProcessTable::list() {
    std::unique_ptr<DIR, DirCloser> dir(opendir(m_procRoot.constData()));
    if (!dir) {
        return std::nullopt;
    }
    std::vector<ProcessTableEntry> entries;
    while (const dirent* entry = readdir(dir.get())) {
        const auto pid = pidFromDirectoryName(entry->d_name);
        if (!pid) {
            continue;
        }
        // A process that ended since the directory was read has no stat any more. Its one
        // read gives everything but a name that the kernel cut or left empty, and the memory:
        // stat's rss field is the kernel's quick per-CPU estimate, statm's the exact sum.
        const int root = dirfd(dir.get());
        if (const auto stat = parseProcStat(readProcFileAt(root, relativeFile(*pid, "stat")))) {
            ProcessFigures figures;
            figures.name = nameFrom(*pid, stat->comm);
            if (const auto pages =
                    parseStatmResidentPages(readProcFileAt(root, relativeFile(*pid, "statm")))) {
                figures.residentBytes = *pages * m_pageSize;
            }
            figures.cpuTimeNanoseconds =
                (stat->userTicks + stat->systemTicks) * m_nanosecondsPerTick;
            entries.push_back({*pid, stat->parentPid, stat->startTicks, std::move(figures)});
        }
    }
    return entries;
}

std::optional<QString> LinuxProcessTable::name(Pid pid) {
    QByteArray comm = readProcFile(pidFile(pid, "comm"));
    if (comm.endsWith('\n')) {
        comm.chop(1);
    }
    return nameFrom(pid, comm);
}

std::optional<QString> LinuxProcessTable::nameFrom(Pid pid, const QByteArray& comm) const {
    // The command line is read only when the name is cut or empty.
    const QByteArray cmdline = comm.isEmpty() || comm.size() >= 15
                                   ? readProcFile(pidFile(pid, "cmdline"), 4096)
                                   : QByteArray();
    const QByteArray name = fullProcessName(comm, cmdline);
    if (name.isEmpty()) {
        return std::nullopt;
    }
    return QString::fromUtf8(name);
}

std::optional<quint64> LinuxProcessTable::residentBytes(Pid pid) {
    const auto pages = parseStatmResidentPages(readProcFile(pidFile(pid, "statm")));
    if (!pages) {
        return std::nullopt;
    }
    return *pages * m_pageSize;
}

std::optional<quint64> LinuxProcessTable::cpuTimeNanoseconds(Pid pid) {
    const auto stat = parseProcStat(readProcFile(pidFile(pid, "stat")));
    if (!stat) {
        return std::nullopt;
    }
    return (stat->userTicks + stat->systemTicks) * m_nanosecondsPerTick;
}

}  // namespace zelvar
