#include "process/ProcessMonitor.h"

#include <QElapsedTimer>

#include "common/Log.h"
#include "config/ConfigManager.h"
#include "disk/DiskMonitor.h"
#include "platform/Clock.h"
#include "platform/Scheduler.h"
#include "process/DiskIOPoller.h"
#include "process/LimitEnforcer.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessTreeBuilder.h"

namespace zelvar {

ProcessMonitor::ProcessMonitor(Dependencies dependencies, QObject* parent)
    : QObject(parent), m_dependencies(dependencies), m_lastUpdateTime(dependencies.clock.now()) {
    connect(&m_dependencies.limits, &LimitEnforcer::violationRecorded, this,
            &ProcessMonitor::addAlert);
}

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

void ProcessMonitor::clearAlertHistory() {
    if (!m_alertHistory.isEmpty()) {
        m_alertHistory.clear();
        emit alertHistoryChanged();
    }
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
    const double interval = tickInterval(m_dependencies.config.snapshot().checkIntervalSeconds);
    m_dependencies.scheduler.callAfter(interval, this, [this, generation] { tick(generation); });
}

void ProcessMonitor::performMonitoringCycle() {
    logLine(QStringLiteral("[ProcessMonitor] Starting monitoring cycle on background thread"));
    QElapsedTimer started;
    started.start();

    const QList<ProcessInfo> processes = m_dependencies.provider.getAllProcesses();
    logLine(QStringLiteral("[ProcessMonitor] Got %1 processes in %2s")
                .arg(processes.size())
                .arg(static_cast<double>(started.nsecsElapsed()) / 1e9));

    QList<DiskInfo> disks = m_dependencies.diskMonitor.getDiskInfo();
    QList<ProcessNode> tree = ProcessTreeBuilder::build(processes);

    QMetaObject::invokeMethod(this,
                              [this, processes, tree = std::move(tree), disks = std::move(disks)] {
                                  publishProcesses(processes, tree, disks);
                              });
    // Without waiting for the publication: alerts may come before or after the display.
    m_dependencies.limits.checkLimits(processes);

    if (std::optional<DiskIORead> read = m_dependencies.diskIO.poll(processes)) {
        QMetaObject::invokeMethod(this, [this, read = std::move(*read)] { publishDiskIO(read); });
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
    m_lastUpdateTime = m_dependencies.clock.now();
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

void ProcessMonitor::addAlert(const AlertRecord& record) {
    m_alertHistory.prepend(record);
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
