#include "process/ProcessMonitor.h"

#include <QElapsedTimer>

#include "alerts/AlertManager.h"
#include "common/Log.h"
#include "config/ConfigManager.h"
#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "platform/Clock.h"
#include "platform/Scheduler.h"
#include "process/DiskIOEnrichment.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessTreeBuilder.h"

namespace zelvar {

ProcessMonitor::ProcessMonitor(ConfigManager& config, AlertManager& alertManager,
                               ProcessInfoProvider& provider, ProcessSignaller& signaller,
                               const DiskMonitor& diskMonitor, const DiskIOReader& diskIOReader,
                               const Clock& clock, Scheduler& scheduler, QObject* parent)
    : QObject(parent),
      m_config(config),
      m_alertManager(alertManager),
      m_provider(provider),
      m_diskMonitor(diskMonitor),
      m_diskIOReader(diskIOReader),
      m_processController(signaller, clock),
      m_clock(clock),
      m_scheduler(scheduler),
      m_lastUpdateTime(clock.now()) {}

ProcessMonitor::~ProcessMonitor() {
    // Before any member goes: a cycle that is running still uses them.
    m_worker.stop();
}

double ProcessMonitor::tickInterval(double configuredSeconds) {
    // Written so that NaN falls to the floor as well.
    return configuredSeconds > kMinimumIntervalSeconds ? configuredSeconds
                                                       : kMinimumIntervalSeconds;
}

void ProcessMonitor::startMonitoring() {
    if (m_isMonitoring) {
        return;
    }
    m_isMonitoring = true;
    emit isMonitoringChanged();
    tick(++m_generation);
}

void ProcessMonitor::stopMonitoring() {
    ++m_generation;
    if (m_isMonitoring) {
        m_isMonitoring = false;
        emit isMonitoringChanged();
    }
}

void ProcessMonitor::tick(quint64 generation) {
    if (generation != m_generation) {
        return;
    }
    if (!m_isRefreshInFlight) {
        setRefreshInFlight(true);
        m_worker.post([this] { performMonitoringCycle(); });
    }
    // The wait counts from this tick, not from the end of the cycle, and rereads the interval
    // each time so that a change takes effect on the next wait.
    const double interval = tickInterval(m_config.snapshot().checkIntervalSeconds);
    m_scheduler.callAfter(interval, this, [this, generation] { tick(generation); });
}

void ProcessMonitor::performMonitoringCycle() {
    logLine(QStringLiteral("[ProcessMonitor] Starting monitoring cycle on background thread"));
    QElapsedTimer started;
    started.start();

    const QList<ProcessInfo> processes = m_provider.getAllProcesses();
    logLine(QStringLiteral("[ProcessMonitor] Got %1 processes in %2s")
                .arg(processes.size())
                .arg(static_cast<double>(started.nsecsElapsed()) / 1e9));

    QList<DiskInfo> disks = m_diskMonitor.getDiskInfo();
    QList<ProcessNode> tree = ProcessTreeBuilder::build(processes);

    QMetaObject::invokeMethod(this,
                              [this, processes, tree = std::move(tree), disks = std::move(disks)] {
                                  publishProcesses(processes, tree, disks);
                              });
    // Without waiting for the publication: alerts may come before or after the display.
    checkLimits(processes);

    const QDateTime now = m_clock.now();
    if (!m_lastDiskIORead.isValid() ||
        secondsBetween(m_lastDiskIORead, now) >= kDiskIOReadIntervalSeconds) {
        m_lastDiskIORead = m_clock.now();
        const DiskIORead read = enrichDiskIO(m_diskIOReader.read(kDiskIOBurstLimit), processes);
        QMetaObject::invokeMethod(this, [this, read] { publishDiskIO(read); });
    }

    // Queued after everything this cycle sent, so the flag falls only once all of it has
    // reached the main thread.
    QMetaObject::invokeMethod(this, [this] {
        setRefreshInFlight(false);
        emit cycleFinished();
    });
}

void ProcessMonitor::publishProcesses(QList<ProcessInfo> processes, QList<ProcessNode> tree,
                                      QList<DiskInfo> disks) {
    m_currentProcesses = std::move(processes);
    emit currentProcessesChanged();
    m_processTree = std::move(tree);
    emit processTreeChanged();
    m_diskInfo = std::move(disks);
    emit diskInfoChanged();
    m_lastUpdateTime = m_clock.now();
    emit lastUpdateTimeChanged();
    logLine(QStringLiteral("[ProcessMonitor] Updated UI with %1 processes and disk info")
                .arg(m_currentProcesses.size()));
}

void ProcessMonitor::publishDiskIO(const DiskIORead& read) {
    m_diskIOSummary = read.summary;
    emit diskIOSummaryChanged();
    m_diskIOBursts = read.bursts;
    emit diskIOBurstsChanged();
}

void ProcessMonitor::checkLimits(const QList<ProcessInfo>& processes) {
    const MonitorConfig config = m_config.snapshot();
    for (const ProcessLimit& limit : config.limits) {
        if (ConfigManager::whitelistCovers(config.whitelistedProcesses, limit.processName)) {
            continue;
        }
        for (const ProcessInfo& process : processes) {
            if (!ConfigManager::limitMatches(limit, process.name) ||
                ConfigManager::whitelistCovers(config.whitelistedProcesses, process.name)) {
                continue;
            }
            // Per process and strictly greater: a process exactly at its limit is within it.
            if (!(limit.limitMB < process.memoryMB)) {
                continue;
            }
            const bool killed =
                limit.autoKillEnabled && m_processController.killProcess(process.id);
            m_alertManager.handleLimitViolation(process.name, process.id, process.memoryMB,
                                                limit.limitMB, limit.autoKillEnabled);
            QMetaObject::invokeMethod(
                this, [this, limit, process, killed] { recordViolation(limit, process, killed); });
            if (killed) {
                logLine(QStringLiteral("Auto-killed process: %1 (PID: %2)")
                            .arg(process.name)
                            .arg(process.id));
            } else if (limit.autoKillEnabled) {
                logLine(QStringLiteral("Failed to kill process: %1 (PID: %2)")
                            .arg(process.name)
                            .arg(process.id));
            }
        }
    }
}

void ProcessMonitor::recordViolation(const ProcessLimit& limit, const ProcessInfo& process,
                                     bool killed) {
    // Every violation is recorded, whatever the alert cooldown let through.
    m_config.markLimitTriggered(limit.id);
    AlertRecord record;
    record.processName = process.name;
    record.pid = process.id;
    record.memoryMB = process.memoryMB;
    record.limitMB = limit.limitMB;
    record.timestamp = m_clock.now();
    record.wasAutoKilled = killed;
    m_alertHistory.prepend(std::move(record));
    while (m_alertHistory.size() > kAlertHistoryLimit) {
        m_alertHistory.removeLast();
    }
    emit alertHistoryChanged();
}

void ProcessMonitor::setRefreshInFlight(bool inFlight) {
    if (m_isRefreshInFlight != inFlight) {
        m_isRefreshInFlight = inFlight;
        emit isRefreshInFlightChanged();
    }
}

}  // namespace zelvar
