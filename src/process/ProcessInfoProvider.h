#pragma once

#include <QHash>
#include <QList>
#include <optional>

#include "platform/ProcessTable.h"
#include "process/ProcessInfo.h"
#include "process/ProcessOriginDetector.h"

namespace zelvar {

class Clock;
class CommandRunner;
class ServiceJobs;

// Takes one snapshot of every process: id, parent, name, resident memory, CPU share since
// the previous snapshot, and who started it (through an origin detector of its own). Memory that
// the table can't read for a process (other users' processes on macOS) comes from one `ps` listing,
// taken only when some process needs it. Not thread-safe: one caller, one snapshot at a time.
class ProcessInfoProvider {
public:
    // `originNames` are this system's, for the origin detector.
    ProcessInfoProvider(ProcessTable& table, CommandRunner& runner, ServiceJobs& serviceJobs,
                        const Clock& clock, OriginNames originNames);

    // Largest memory first; equal figures keep the kernel's order. Never fails: a failure
    // shrinks the list or zeroes a figure.
    QList<ProcessInfo> getAllProcesses();

    // CPU share of `pid` since its previous reading, 0 to 100. The first reading of a pid, a
    // pid whose accumulated time went down (reused), and a reading at the same instant give 0.
    double getProcessCPU(Pid pid);

    // Resident KiB by pid from `ps -axo pid=,rss=`; empty when `ps` can't run.
    QHash<Pid, qint64> buildPSFallbackMap();

private:
    struct CpuReading {
        quint64 time = 0;  // nanoseconds
        QDateTime timestamp;
    };

    // The share for an accumulated `total` (none when it couldn't be read: 0, nothing kept).
    double cpuShare(Pid pid, std::optional<quint64> total);

    ProcessTable& m_table;
    CommandRunner& m_runner;
    const Clock& m_clock;
    QHash<Pid, CpuReading> m_lastCPUInfo;
    ProcessOriginDetector m_originDetector;
};

}  // namespace zelvar
