#include "process/DiskIOEnrichment.h"

#include <QHash>

namespace zelvar {
namespace {

class ProcessLookup {
public:
    explicit ProcessLookup(const QList<ProcessInfo>& processes) {
        m_byPid.reserve(processes.size());
        for (const ProcessInfo& process : processes) {
            m_byPid.insert(process.id, &process);
        }
    }

    // The log's pids are wider than the system's; one that doesn't fit names no live process.
    const ProcessInfo* find(std::optional<qint64> pid) const {
        if (!pid || *pid < std::numeric_limits<Pid>::min() ||
            *pid > std::numeric_limits<Pid>::max()) {
            return nullptr;
        }
        return m_byPid.value(static_cast<Pid>(*pid), nullptr);
    }

    template <typename Entry>
    void enrich(Entry& entry) const {
        const ProcessInfo* process = find(entry.pid);
        if (!process) {
            return;
        }
        const ProcessInfo* parent = m_byPid.value(process->ppid, nullptr);
        entry.parentName = parent ? std::optional(parent->name) : std::nullopt;
        entry.immediateOrigin = process->immediateOrigin;
        entry.rootOrigin = process->rootOrigin;
    }

private:
    QHash<Pid, const ProcessInfo*> m_byPid;
};

}  // namespace

DiskIORead enrichDiskIO(const DiskIORead& read, const QList<ProcessInfo>& processes) {
    const ProcessLookup lookup(processes);
    DiskIORead result = read;
    if (result.summary) {
        for (WindowData& window : result.summary->windows) {
            for (WriterEntry& writer : window.topWriters) {
                lookup.enrich(writer);
            }
        }
    }
    for (DiskIOBurst& burst : result.bursts) {
        lookup.enrich(burst);
    }
    return result;
}

}  // namespace zelvar
