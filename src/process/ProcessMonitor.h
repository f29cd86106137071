#pragma once

#include <QDateTime>
#include <QList>
#include <QObject>
#include <QThread>
#include <functional>

#include "alerts/AlertRecord.h"
#include "process/ProcessController.h"
#include "process/ProcessInfo.h"

namespace zelvar {

class AlertManager;
class Clock;
class ConfigManager;
class ProcessInfoProvider;
class ProcessSignaller;
class Scheduler;
struct ProcessLimit;

// The heartbeat of process watching. A tick every max(checkIntervalSeconds, 3) seconds hands
// one monitoring cycle to a serial worker thread, unless the previous cycle is still in
// flight, in which case the tick is dropped. A cycle samples every process and publishes the
// result on the main thread, then checks the limits; at least 30 seconds apart it also reads
// the daemon's disk I/O log.
// All properties are written on the main thread only.
class ProcessMonitor final : public QObject {
    Q_OBJECT
    Q_PROPERTY(QList<zelvar::ProcessInfo> currentProcesses READ currentProcesses NOTIFY
                   currentProcessesChanged)
    Q_PROPERTY(bool isMonitoring READ isMonitoring NOTIFY isMonitoringChanged)
    Q_PROPERTY(QDateTime lastUpdateTime READ lastUpdateTime NOTIFY lastUpdateTimeChanged)
    Q_PROPERTY(bool isRefreshInFlight READ isRefreshInFlight NOTIFY isRefreshInFlightChanged)
    Q_PROPERTY(QList<zelvar::AlertRecord> alertHistory READ alertHistory NOTIFY alertHistoryChanged)

public:
    static constexpr double kMinimumIntervalSeconds = 3.0;
    static constexpr double kDiskIOReadIntervalSeconds = 30.0;
    static constexpr qsizetype kAlertHistoryLimit = 100;

    // Reads the daemon's disk I/O log and publishes what it finds. Runs on the worker thread
    // with the cycle's own sample.
    using DiskIORead = std::function<void(const QList<ProcessInfo>& processes)>;

    ProcessMonitor(ConfigManager& config, AlertManager& alertManager, ProcessInfoProvider& provider,
                   ProcessSignaller& signaller, const Clock& clock, Scheduler& scheduler,
                   QObject* parent = nullptr);
    ~ProcessMonitor() override;

    const QList<ProcessInfo>& currentProcesses() const { return m_currentProcesses; }
    bool isMonitoring() const { return m_isMonitoring; }
    const QDateTime& lastUpdateTime() const { return m_lastUpdateTime; }
    bool isRefreshInFlight() const { return m_isRefreshInFlight; }
    // Violations seen, newest first, at most 100.
    const QList<AlertRecord>& alertHistory() const { return m_alertHistory; }

    void setDiskIORead(DiskIORead read) { m_diskIORead = std::move(read); }

    // The delay between ticks for a configured interval: at least three seconds.
    static double tickInterval(double configuredSeconds);

public slots:
    // Idempotent: a second call while monitoring does nothing.
    void startMonitoring();
    // Stops the ticks. A cycle already running finishes and publishes.
    void stopMonitoring();

signals:
    void currentProcessesChanged();
    void isMonitoringChanged();
    void lastUpdateTimeChanged();
    void isRefreshInFlightChanged();
    void alertHistoryChanged();
    // After the main thread has received everything a cycle published.
    void cycleFinished();

private:
    void tick(quint64 generation);
    void performMonitoringCycle();  // worker thread
    void publishProcesses(QList<ProcessInfo> processes);
    void checkLimits(const QList<ProcessInfo>& processes);  // worker thread
    void recordViolation(const ProcessLimit& limit, const ProcessInfo& process, bool killed);
    void setRefreshInFlight(bool inFlight);

    ConfigManager& m_config;
    AlertManager& m_alertManager;
    ProcessInfoProvider& m_provider;
    ProcessController m_processController;
    const Clock& m_clock;
    Scheduler& m_scheduler;

    QList<ProcessInfo> m_currentProcesses;
    bool m_isMonitoring = false;
    QDateTime m_lastUpdateTime;
    bool m_isRefreshInFlight = false;
    QList<AlertRecord> m_alertHistory;
    // Each start begins a new generation; ticks of an older one end their loop.
    quint64 m_generation = 0;

    QDateTime m_lastDiskIORead;  // worker thread only
    DiskIORead m_diskIORead;

    QThread m_workerThread;
    QObject* m_worker = nullptr;  // lives on m_workerThread; cycles are queued to it
};

}  // namespace zelvar
