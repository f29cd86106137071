#include "process/ProcessInfoProvider.h"

#include <QElapsedTimer>
#include <algorithm>

#include "common/Log.h"
#include "platform/Clock.h"
#include "platform/CommandRunner.h"
#include "process/PsFallbackMap.h"

namespace zelvar {
namespace {

constexpr double kBytesPerMB = 1048576.0;

QString secondsSince(const QElapsedTimer& timer) {
    return QString::number(static_cast<double>(timer.nsecsElapsed()) / 1e9);
}

}  // namespace

ProcessInfoProvider::ProcessInfoProvider(ProcessTable& table, CommandRunner& runner,
                                         ServiceJobs& serviceJobs, const Clock& clock,
                                         OriginNames originNames)
    : m_table(table),
      m_runner(runner),
      m_clock(clock),
      m_originDetector(serviceJobs, clock, std::move(originNames)) {}

QList<ProcessInfo> ProcessInfoProvider::getAllProcesses() {
    logLine(QStringLiteral("[ProcessInfoProvider] Starting getAllProcesses()"));
    QElapsedTimer started;
    started.start();
    m_originDetector.refresh();

    const std::vector<ProcessTableEntry> entries =
        m_table.list().value_or(std::vector<ProcessTableEntry>{});
    const auto total = static_cast<qsizetype>(entries.size());
    logLine(QStringLiteral("[ProcessInfoProvider] Got %1 PIDs in %2s")
                .arg(total)
                .arg(secondsSince(started)));

    // `ps` costs more than reading every readable process, so it runs at most once per
    // snapshot and only when a process's memory couldn't be read directly.
    std::optional<QHash<Pid, qint64>> fallback;

    QList<ProcessInfo> processes;
    processes.reserve(total);
    for (qsizetype i = 0; i < total; ++i) {
        const ProcessTableEntry& entry = entries[static_cast<size_t>(i)];
        // Figures that came with the listing spare the per-process reads.
        const std::optional<ProcessFigures>& figures = entry.figures;
        if (const std::optional<QString> name = figures ? figures->name : m_table.name(entry.pid)) {
            double memoryMB = 0.0;
            if (const auto bytes =
                    figures ? figures->residentBytes : m_table.residentBytes(entry.pid)) {
                memoryMB = static_cast<double>(*bytes) / kBytesPerMB;
            } else {
                if (!fallback) {
                    fallback = buildPSFallbackMap();
                }
                if (const auto it = fallback->constFind(entry.pid); it != fallback->constEnd()) {
                    memoryMB = static_cast<double>(*it) / 1024.0;
                }
            }
            const double cpu = cpuShare(entry.pid, figures ? figures->cpuTimeNanoseconds
                                                           : m_table.cpuTimeNanoseconds(entry.pid));
            processes.append(ProcessInfo{entry.pid, entry.parentPid, *name, memoryMB, cpu,
                                         m_clock.now(), ProcessOrigin::unknown(),
                                         ProcessOrigin::unknown(), entry.startTime});
        }
        if (i % 50 == 0) {
            logLine(QStringLiteral("[ProcessInfoProvider] Processed %1/%2 PIDs").arg(i).arg(total));
        }
    }

    // Origins read ids, parent ids and names only, so they see the records as they are now.
    m_originDetector.assignOrigins(processes);

    std::stable_sort(
        processes.begin(), processes.end(),
        [](const ProcessInfo& a, const ProcessInfo& b) { return a.memoryMB > b.memoryMB; });

    logLine(QStringLiteral("[ProcessInfoProvider] Finished getAllProcesses() - %1 processes in %2s")
                .arg(processes.size())
                .arg(secondsSince(started)));
    return processes;
}

double ProcessInfoProvider::getProcessCPU(Pid pid) {
    return cpuShare(pid, m_table.cpuTimeNanoseconds(pid));
}

double ProcessInfoProvider::cpuShare(Pid pid, std::optional<quint64> total) {
    if (!total) {
        return 0.0;
    }
    const QDateTime now = m_clock.now();
    const auto it = m_lastCPUInfo.find(pid);
    if (it == m_lastCPUInfo.end()) {
        m_lastCPUInfo.insert(pid, {*total, now});
        return 0.0;
    }
    if (*total < it->time) {
        *it = {*total, now};  // the pid now belongs to a new process
        return 0.0;
    }
    const double elapsed = secondsBetween(it->timestamp, now);
    if (!(elapsed > 0.0)) {
        return 0.0;
    }
    const double share = static_cast<double>(*total - it->time) / 1e9 / elapsed;
    *it = {*total, now};
    return std::clamp(share * 100.0, 0.0, 100.0);
}

QHash<Pid, qint64> ProcessInfoProvider::buildPSFallbackMap() {
    CommandRequest request;
    request.program = QStringLiteral("/bin/ps");
    request.arguments = {QStringLiteral("-axo"), QStringLiteral("pid=,rss=")};
    const CommandResult result = m_runner.run(request);
    if (!result.started) {
        return {};
    }
    return parsePsFallbackMap(result.standardOutput);
}

}  // namespace zelvar
