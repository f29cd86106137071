#pragma once

#include <QDateTime>
#include <QHash>
#include <QSet>
#include <QString>
#include <optional>

#include "common/ProcessOrigin.h"
#include "platform/ProcessTable.h"
#include "platform/SystemProfile.h"
#include "process/ProcessInfo.h"

namespace zelvar {

class Clock;
class ServiceJobs;

// Tells who started each process. The immediate origin is the nearest classified ancestor, the
// root origin the farthest one reached: shells, known GUI applications, service manager jobs
// (launchd agents, systemd services) and pid 1 classify an ancestor. A process that is itself
// a system process by name, pid 0 or 1, a kernel thread, or a service manager job is that for
// both answers. The job map is rebuilt at most once every 30 seconds.
// Not thread-safe: the monitoring cycle is its only caller.
class ProcessOriginDetector {
public:
    static constexpr double kLaunchctlCacheTTL = 30.0;
    static constexpr int kMaxAncestorSteps = 20;

    struct Origins {
        ProcessOrigin immediate;
        ProcessOrigin root;
        bool operator==(const Origins&) const = default;
    };

    // `names` are this system's GUI application and system process names.
    ProcessOriginDetector(ServiceJobs& jobs, const Clock& clock, OriginNames names);

    // Rebuilds the job map when it is 30 seconds old or more; the first call always does. A
    // failed listing leaves an empty map, kept for the next 30 seconds like any other.
    void refresh();

    // Sets both origins of every process in `processes`, looking ancestors up by pid among
    // these same records (a repeated pid means its last record); reads only ids, parent ids
    // and names. Classifies each record once as an ancestor and walks by index, so a snapshot
    // costs a few hash lookups per process however deep its chains are.
    void assignOrigins(QList<ProcessInfo>& processes) const;

    // Both origins of one process, ancestors looked up in `allProcesses`: the same walk as
    // assignOrigins(), over the process and the ancestors it can reach.
    Origins origins(const ProcessInfo& process, const QHash<Pid, ProcessInfo>& allProcesses) const;

    // The pid-to-label map as of the last refresh.
    const QHash<Pid, QString>& launchctlMap() const { return m_launchctlMap; }

private:
    QHash<Pid, QString> buildLaunchctlMap();
    std::optional<ProcessOrigin> classifyAncestor(const ProcessInfo& ancestor) const;

    ServiceJobs& m_jobs;
    const Clock& m_clock;
    const OriginNames m_names;
    QHash<Pid, QString> m_launchctlMap;
    QDateTime m_lastLaunchctlRefresh;  // invalid = never
};

}  // namespace zelvar
