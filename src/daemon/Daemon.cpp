#include "daemon/Daemon.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <algorithm>

#include "platform/Clock.h"
#include "platform/ProcessTable.h"
#include "platform/Scheduler.h"
#include "platform/VolumeSource.h"

namespace zelvar {

Daemon::Daemon(Sources sources, DaemonFiles files, DaemonArguments arguments, QString version,
               QObject* parent)
    : QObject(parent),
      m_sources(std::move(sources)),
      m_files(std::move(files)),
      m_arguments(std::move(arguments)),
      m_version(std::move(version)),
      m_events(m_files.eventLog, m_sources.clock),
      m_diskIOLog(m_files.diskIO, DiskWriterSampler::kCapBytes, m_events.failureHandler()),
      m_batteryFile(m_files.batterySamples, BatterySampler::kCapBytes, m_events.failureHandler()),
      m_correlationFile(m_files.correlationSamples, CorrelationSampler::kCapBytes,
                        m_events.failureHandler()),
      m_diskEventsFile(m_files.diskEvents, DaemonEventLog::kCapBytes, m_events.failureHandler()),
      m_diskWriters(m_sources.processIO),
      m_correlation({m_sources.systemLoad, m_sources.interfaceCounters, m_sources.networkName}),
      m_usage(m_sources.processNetwork, m_files.usageByDate),
      m_diskChanges(m_sources.commandRunner, m_sources.clock, m_sources.homeDirectory,
                    m_files.diskEvents,
                    DiskChangeTracker::defaultWatchedDirectories(m_sources.homeDirectory),
                    m_sources.lsofProgram) {}

Daemon::~Daemon() {
    stop();
}

void Daemon::start() {
    if (m_running) {
        return;
    }
    m_running = true;
    QJsonArray arguments;
    for (const QString& argument : m_arguments.toList()) {
        arguments.append(argument);
    }
    m_events.write(QStringLiteral("start"), {{QStringLiteral("version"), m_version},
                                             {QStringLiteral("pid"), m_sources.ownPid},
                                             {QStringLiteral("arguments"), arguments}});
    if (const QString error = m_usage.load(); !error.isEmpty()) {
        m_events.reportWriteFailure(m_files.usageByDate, error);
    }
    pass();
}

void Daemon::stop() {
    if (!m_running) {
        return;
    }
    m_running = false;
    if (const QString error = m_usage.flush(); !error.isEmpty()) {
        m_events.reportWriteFailure(m_files.usageByDate, error);
    }
    m_events.write(QStringLiteral("stop"), {{QStringLiteral("version"), m_version},
                                            {QStringLiteral("pid"), m_sources.ownPid}});
}

void Daemon::pass() {
    if (!m_running) {
        return;
    }
    const QDateTime now = m_sources.clock.now();
    const bool summaryDue =
        !m_lastSummary || secondsBetween(*m_lastSummary, now) >= kSummaryIntervalSeconds - 0.5;
    const double overhead = summaryDue ? ownOverheadPercent(now) : 0.0;
    m_diskWriters.sampleInto(m_diskIOLog, now, summaryDue && m_lastSummary.has_value(),
                             kSummaryIntervalSeconds, overhead);
    if (summaryDue) {
        m_lastSummary = now;
    }

    const std::optional<BatteryReading> battery = m_sources.batteryRegistry.read();
    BatterySampler::sampleInto(m_batteryFile, battery, now);
    m_correlation.sampleInto(m_correlationFile, battery, now);
    checkMemory(m_correlation.memoryUsedPercent());

    m_usage.sample(now);
    if (const QString error = m_usage.saveIfDue(now); !error.isEmpty()) {
        m_events.reportWriteFailure(m_files.usageByDate, error);
    }
    trackDiskChanges();

    // The next pass waits from the end of this one, so passes never overlap.
    m_sources.scheduler.callAfter(m_arguments.intervalSeconds, this, [this] { pass(); });
}

double Daemon::ownOverheadPercent(const QDateTime& now) {
    const auto cpu = m_sources.processTable.cpuTimeNanoseconds(m_sources.ownPid);
    double percent = 0.0;
    if (cpu && m_ownCpuAtSummary) {
        const double wall = secondsBetween(m_ownCpuAtSummary->first, now);
        const quint64 before = m_ownCpuAtSummary->second;
        if (wall > 0 && *cpu >= before) {
            percent = 100.0 * static_cast<double>(*cpu - before) / 1e9 / wall;
        }
    }
    if (cpu) {
        m_ownCpuAtSummary = std::pair(now, *cpu);
    }
    return percent;
}

void Daemon::checkMemory(std::optional<double> usedPercent) {
    if (!usedPercent) {
        return;
    }
    const bool above = *usedPercent > m_arguments.ramThresholdPercent;
    if (above == m_memoryAbove) {
        return;
    }
    m_memoryAbove = above;
    QList<std::pair<quint64, ProcessTableEntry>> largest;
    if (const auto table = m_sources.processTable.list()) {
        for (const ProcessTableEntry& entry : *table) {
            const auto resident =
                entry.figures ? entry.figures->residentBytes : std::optional<quint64>();
            if (resident && *resident > 0) {
                largest.append({*resident, entry});
            }
        }
    }
    std::sort(largest.begin(), largest.end(),
              [](const auto& a, const auto& b) { return a.first > b.first; });
    QJsonArray processes;
    for (qsizetype i = 0; i < std::min<qsizetype>(largest.size(), kLargestProcesses); ++i) {
        const ProcessTableEntry& entry = largest[i].second;
        const QString name =
            entry.figures && entry.figures->name ? *entry.figures->name : QString();
        processes.append(QJsonObject{
            {QStringLiteral("pid"), entry.pid},
            {QStringLiteral("name"), name},
            {QStringLiteral("resident_mb"), static_cast<double>(largest[i].first) / 1048576.0}});
    }
    m_events.write(above ? QStringLiteral("memory_above") : QStringLiteral("memory_below"),
                   {{QStringLiteral("used_pct"), *usedPercent},
                    {QStringLiteral("threshold_pct"), m_arguments.ramThresholdPercent},
                    {QStringLiteral("largest_processes"), processes}});
}

void Daemon::trackDiskChanges() {
    const QString root = m_sources.volumes.rootMountPoint();
    QString error;
    const auto capacity = m_sources.volumes.measure(root, &error);
    if (!capacity) {
        return;
    }
    DiskInfo disk;
    disk.mountPoint = root;
    disk.totalBytes = capacity->totalBytes;
    disk.availableBytes = capacity->freeBytes;
    disk.usedBytes = capacity->totalBytes - capacity->freeBytes;
    disk.timestamp = m_sources.clock.now();
    for (const DiskChange& change : m_diskChanges.detectChanges({disk}, kDiskChangeThresholdMB)) {
        m_diskEventsFile.append(QJsonDocument(change.toEventJson()).toJson(QJsonDocument::Compact));
    }
}

}  // namespace zelvar
