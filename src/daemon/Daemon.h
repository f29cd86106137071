#pragma once

#include <QObject>
#include <memory>
#include <optional>

#include "daemon/BatterySampler.h"
#include "daemon/CorrelationSampler.h"
#include "daemon/DaemonArguments.h"
#include "daemon/DaemonEventLog.h"
#include "daemon/DaemonFiles.h"
#include "daemon/DiskWriterSampler.h"
#include "daemon/JsonlFile.h"
#include "daemon/NetworkUsageSampler.h"
#include "disk/DiskChangeTracker.h"

namespace zelvar {

class Clock;
class Scheduler;
class CommandRunner;
class ProcessNetworkSource;
class ProcessTable;
class VolumeSource;

// The daemon's one loop: every interval a pass runs each sampler in turn on the main thread
// (they only read small files, and the daemon has nothing else to do), the disk summary every
// 30 s, the daily usage saved at most once a minute. start() logs the start and runs the first
// pass; stop() saves the daily usage and logs the stop, so SIGTERM loses nothing.
class Daemon final : public QObject {
    Q_OBJECT

public:
    static constexpr double kSummaryIntervalSeconds = 30.0;
    // A jump of the root volume's used space that the change tracker explains and logs.
    static constexpr qint64 kDiskChangeThresholdMB = 1024;
    static constexpr int kLargestProcesses = 5;

    struct Sources {
        const Clock& clock;
        Scheduler& scheduler;
        CommandRunner& commandRunner;
        ProcessTable& processTable;
        ProcessIOSource& processIO;
        SystemLoadSource& systemLoad;
        InterfaceCounters& interfaceCounters;
        NetworkNameSource& networkName;
        ProcessNetworkSource& processNetwork;
        BatteryRegistry& batteryRegistry;
        VolumeSource& volumes;
        QString homeDirectory;
        QString lsofProgram;
        qint32 ownPid = 0;
    };

    Daemon(Sources sources, DaemonFiles files, DaemonArguments arguments, QString version,
           QObject* parent = nullptr);
    ~Daemon() override;

    void start();
    void stop();
    // One pass of every sampler at the clock's now.
    void pass();

private:
    void checkMemory(std::optional<double> usedPercent);
    void trackDiskChanges();
    double ownOverheadPercent(const QDateTime& now);

    Sources m_sources;
    DaemonFiles m_files;
    DaemonArguments m_arguments;
    QString m_version;
    DaemonEventLog m_events;
    JsonlFile m_diskIOLog;
    JsonlFile m_batteryFile;
    JsonlFile m_correlationFile;
    JsonlFile m_diskEventsFile;
    DiskWriterSampler m_diskWriters;
    CorrelationSampler m_correlation;
    NetworkUsageSampler m_usage;
    DiskChangeTracker m_diskChanges;
    bool m_running = false;
    bool m_memoryAbove = false;
    std::optional<QDateTime> m_lastSummary;
    std::optional<std::pair<QDateTime, quint64>> m_ownCpuAtSummary;
};

}  // namespace zelvar
