#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <functional>

#include "alerts/AlertRecord.h"
#include "common/SerialWorker.h"
#include "disk/DiskIOModels.h"
#include "disk/DiskInfo.h"
#include "process/ProcessInfo.h"
#include "process/ProcessNode.h"

namespace zelvar {

class Clock;
class ConfigManager;
class DiskIOPoller;
class DiskMonitor;
struct DiskIORead;
class LimitEnforcer;
class ProcessInfoProvider;
class Scheduler;

// The heartbeat of process watching. A tick every max(checkIntervalSeconds, 3) seconds hands
// one monitoring cycle to a serial worker thread, unless the previous cycle is still in
// flight, in which case the tick is dropped. A cycle samples every process and publishes the
// result on the main thread, then has the limit enforcer check it; through the disk I/O
// poller, at least 30 seconds apart, it also reads the daemon's disk I/O log. The enforcer's
// recorded violations make the alert history.
// All properties are written on the main thread only.
class ProcessMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<zelvar::ProcessInfo> currentProcesses READ currentProcesses NOTIFY
                   currentProcessesChanged)
    Q_PROPERTY(QList<zelvar::DiskInfo> diskInfo READ diskInfo NOTIFY diskInfoChanged)
    Q_PROPERTY(std::optional<zelvar::DiskIOSummary> diskIOSummary READ diskIOSummary NOTIFY
                   diskIOSummaryChanged)
    Q_PROPERTY(QList<zelvar::DiskIOBurst> diskIOBursts READ diskIOBursts NOTIFY diskIOBurstsChanged)
    Q_PROPERTY(QList<zelvar::ProcessNode> processTree READ processTree NOTIFY processTreeChanged)
    Q_PROPERTY(bool isMonitoring READ isMonitoring NOTIFY isMonitoringChanged)
    Q_PROPERTY(QDateTime lastUpdateTime READ lastUpdateTime NOTIFY lastUpdateTimeChanged)
    Q_PROPERTY(bool isRefreshInFlight READ isRefreshInFlight NOTIFY isRefreshInFlightChanged)
    Q_PROPERTY(QList<zelvar::AlertRecord> alertHistory READ alertHistory NOTIFY alertHistoryChanged)

public:
    static constexpr double kMinimumIntervalSeconds = 3.0;
    static constexpr qsizetype kAlertHistoryLimit = 100;

    // What a cycle uses. The enforcer and the poller are used on the worker thread only, and
    // everything here must outlive the monitor.
    struct Dependencies {
        ConfigManager& config;
        ProcessInfoProvider& provider;
        const DiskMonitor& diskMonitor;
        LimitEnforcer& limits;
        DiskIOPoller& diskIO;
        const Clock& clock;
        Scheduler& scheduler;
    };

    explicit ProcessMonitor(Dependencies dependencies, QObject* parent = nullptr);
    ~ProcessMonitor() override;

    const QList<ProcessInfo>& currentProcesses() const { return m_currentProcesses; }
    const QList<DiskInfo>& diskInfo() const { return m_diskInfo; }
    // The daemon's newest disk I/O summary and bursts, enriched from the live process list.
    const std::optional<DiskIOSummary>& diskIOSummary() const { return m_diskIOSummary; }
    const QList<DiskIOBurst>& diskIOBursts() const { return m_diskIOBursts; }
    // The forest of the same sample: its roots, larger subtrees first.
    const QList<ProcessNode>& processTree() const { return m_processTree; }
    bool isMonitoring() const { return m_isMonitoring; }
    const QDateTime& lastUpdateTime() const { return m_lastUpdateTime; }
    bool isRefreshInFlight() const { return m_isRefreshInFlight; }
    // Violations seen, newest first, at most 100.
    const QList<AlertRecord>& alertHistory() const { return m_alertHistory; }
    // Forgets every recorded violation (the history lives in memory only). Main thread.
    void clearAlertHistory();

    // The delay between ticks for a configured interval: at least three seconds.
    static double tickInterval(double configuredSeconds);

public slots:
    // Idempotent: a second call while monitoring does nothing.
    void startMonitoring();
    // Stops the ticks. A cycle already running finishes and publishes.
    void stopMonitoring();

signals:
    void currentProcessesChanged();
    void diskInfoChanged();
    void diskIOSummaryChanged();
    void diskIOBurstsChanged();
    void processTreeChanged();
    void isMonitoringChanged();
    void lastUpdateTimeChanged();
    void isRefreshInFlightChanged();
    void alertHistoryChanged();
    // After the main thread has received everything a cycle published.
    void cycleFinished();

private:
    void tick(quint64 generation);
    void performMonitoringCycle();  // worker thread
    void publishProcesses(QList<ProcessInfo> processes, QList<ProcessNode> tree,
                          QList<DiskInfo> disks);
    void publishDiskIO(const DiskIORead& read);
    void addAlert(const AlertRecord& record);
    void setRefreshInFlight(bool inFlight);

    Dependencies m_dependencies;

    QList<ProcessInfo> m_currentProcesses;
    QList<DiskInfo> m_diskInfo;
    std::optional<DiskIOSummary> m_diskIOSummary;
    QList<DiskIOBurst> m_diskIOBursts;
    QList<ProcessNode> m_processTree;
    bool m_isMonitoring = false;
    QDateTime m_lastUpdateTime;
    bool m_isRefreshInFlight = false;
    QList<AlertRecord> m_alertHistory;
    // Each start begins a new generation; ticks of an older one end their loop.
    quint64 m_generation = 0;

    SerialWorker m_worker{QStringLiteral("com.orlen.zelvar2.process-monitor")};
};

}  // namespace zelvar
