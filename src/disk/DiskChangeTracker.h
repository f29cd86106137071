#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <mutex>
#include <optional>

#include "disk/DiskChange.h"
#include "disk/DiskInfo.h"

namespace zelvar {

class Paths;

class Clock;
class CommandRunner;

// Compares each volume's used bytes with the previous sample and turns every jump of at least a
// threshold into a DiskChange, explained by the watched directories that moved (`du -sk`), the
// large files modified since the previous sample and the processes writing to regular files
// (`lsof -nP`). The expensive scans run at most every 20 minutes; between scans the caches of
// the last scan are served. Thread-safe: one lock over the sampling state, held across the
// commands, so callers stay off the main thread. Nothing in the app calls it yet.
class DiskChangeTracker {
public:
    static constexpr double kDirectoryScanIntervalSeconds = 1200.0;
    static constexpr qint64 kAttributionFloorBytes = 20971520;
    static constexpr int kDeltaCap = 5;
    static constexpr int kFileCap = 8;
    static constexpr int kWriterCap = 8;
    static constexpr double kDuTimeoutSeconds = 5.0;
    static constexpr double kLsofTimeoutSeconds = 3.0;

    // ~/Downloads, ~/.cache, /tmp, /private/tmp: each measured and reported on its own.
    static QStringList defaultWatchedDirectories(const QString& homeDirectory);

    // disk-events.jsonl in Zelvar2's data folder.
    static QString defaultEventLogFile(const Paths& paths);

    // `lsofProgram` is the absolute path of lsof on this system (the system profile's).
    DiskChangeTracker(CommandRunner& runner, const Clock& clock, QString homeDirectory,
                      QString eventLogFile, QStringList watchedDirectories, QString lsofProgram);

    // One record per volume whose used bytes moved by at least `thresholdMB` MiB since its
    // previous sample, in the order of `diskInfos`. A volume's first sample moves by zero.
    // A threshold whose byte count doesn't fit in 64 bits is a programming error: the process
    // stops.
    QList<DiskChange> detectChanges(const QList<DiskInfo>& diskInfos, qint64 thresholdMB);
    // Back to the state of construction: the next call samples and scans as the first did.
    void reset();
    // Appends the change as one JSON line to the event log, creating it as needed. A failure
    // is logged and the event is lost.
    void writeEventLog(const DiskChange& change);

    const QStringList& watchedDirectories() const { return m_watchedDirectories; }

private:
    QHash<QString, qint64> getWatchedDirectoryUsage();
    QList<DiskAttribution> getDirectoryDeltas(const QHash<QString, qint64>& current) const;
    QList<DiskAttribution> getRecentLargeFiles(const QDateTime& since);
    QStringList findActiveWriters();
    // Standard output as UTF-8; empty when the tool didn't start, timed out or wrote bad UTF-8.
    QString runCommand(const QString& program, const QStringList& arguments, double timeout);

    CommandRunner& m_runner;
    const Clock& m_clock;
    const QString m_homeDirectory;
    const QString m_eventLogFile;
    const QStringList m_watchedDirectories;
    const QString m_lsofProgram;

    std::mutex m_stateLock;  // guards everything below
    QHash<QString, qint64> m_previousDiskUsage;
    QHash<QString, qint64> m_previousDirectoryUsage;
    std::optional<QDateTime> m_previousSampleDate;
    std::optional<QDateTime> m_lastDirectoryScanTime;  // none: the distant past
    QHash<QString, qint64> m_cachedDirectoryUsage;
    QList<DiskAttribution> m_cachedRecentFiles;
    QStringList m_cachedActiveWriters;

    std::mutex m_eventLogLock;  // never taken together with m_stateLock
};

}  // namespace zelvar
