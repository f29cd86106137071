#include "disk/DiskChangeTracker.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>
#include <QStringDecoder>
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>

#include "common/Log.h"
#include "disk/DiskChangeParsers.h"
#include "platform/Clock.h"
#include "platform/CommandRunner.h"
#include "platform/Paths.h"

namespace zelvar {
namespace {

const QString kDuProgram = QStringLiteral("/usr/bin/du");

// Directories that the system shows as single documents; their contents are not walked.
bool isPackage(const QFileInfo& directory) {
    static const QStringList suffixes{
        QStringLiteral("app"),           QStringLiteral("bundle"),    QStringLiteral("framework"),
        QStringLiteral("plugin"),        QStringLiteral("kext"),      QStringLiteral("pkg"),
        QStringLiteral("mpkg"),          QStringLiteral("xpc"),       QStringLiteral("appex"),
        QStringLiteral("photoslibrary"), QStringLiteral("xcodeproj"), QStringLiteral("rtfd")};
    return suffixes.contains(directory.suffix(), Qt::CaseInsensitive);
}

// Every visible regular file below `directory`: hidden entries are skipped and hidden or
// package directories are not entered, symbolic links are not followed, and there is no depth
// limit.
void walkFiles(const QString& directory, const std::function<void(const QFileInfo&)>& visit) {
    const QFileInfoList entries = QDir(directory).entryInfoList(
        QDir::Files | QDir::Dirs | QDir::NoDotAndDotDot | QDir::System, QDir::Unsorted);
    for (const QFileInfo& entry : entries) {
        if (entry.isHidden() || entry.fileName().startsWith(QLatin1Char('.'))) {
            continue;
        }
        if (entry.isSymLink()) {
            continue;
        }
        if (entry.isDir()) {
            if (!isPackage(entry)) {
                walkFiles(entry.filePath(), visit);
            }
        } else if (entry.isFile()) {
            visit(entry);
        }
    }
}

void sortLargestFirst(QList<DiskAttribution>& attributions) {
    std::stable_sort(
        attributions.begin(), attributions.end(),
        [](const DiskAttribution& a, const DiskAttribution& b) { return a.bytes > b.bytes; });
}

}  // namespace

QStringList DiskChangeTracker::defaultWatchedDirectories(const QString& homeDirectory) {
    return {homeDirectory + QStringLiteral("/Downloads"), homeDirectory + QStringLiteral("/.cache"),
            QStringLiteral("/tmp"), QStringLiteral("/private/tmp")};
}

DiskChangeTracker::DiskChangeTracker(CommandRunner& runner, const Clock& clock,
                                     QString homeDirectory, QString eventLogFile,
                                     QStringList watchedDirectories, QString lsofProgram)
    : m_runner(runner),
      m_clock(clock),
      m_homeDirectory(std::move(homeDirectory)),
      m_eventLogFile(std::move(eventLogFile)),
      m_watchedDirectories(std::move(watchedDirectories)),
      m_lsofProgram(std::move(lsofProgram)) {}

QList<DiskChange> DiskChangeTracker::detectChanges(const QList<DiskInfo>& diskInfos,
                                                   qint64 thresholdMB) {
    constexpr qint64 kMaxThresholdMB = std::numeric_limits<qint64>::max() >> 20;
    constexpr qint64 kMinThresholdMB = std::numeric_limits<qint64>::min() >> 20;
    if (thresholdMB > kMaxThresholdMB || thresholdMB < kMinThresholdMB) {
        qFatal("DiskChangeTracker: a threshold of %lld MB doesn't fit in 64 bits of bytes",
               static_cast<long long>(thresholdMB));
    }
    std::lock_guard lock(m_stateLock);
    const QDateTime now = m_clock.now();
    // Decided once: the whole call either scans or serves the caches.
    const bool scanDue =
        !m_lastDirectoryScanTime ||
        secondsBetween(*m_lastDirectoryScanTime, now) >= kDirectoryScanIntervalSeconds;
    const QHash<QString, qint64> currentDirectories =
        scanDue ? getWatchedDirectoryUsage() : m_cachedDirectoryUsage;
    const qint64 thresholdBytes = thresholdMB * 1048576;

    QList<DiskChange> changes;
    for (const DiskInfo& disk : diskInfos) {
        const qint64 current = disk.usedBytes;
        const qint64 previous = m_previousDiskUsage.value(disk.mountPoint, current);
        const qint64 delta = current - previous;
        if (std::llabs(delta) >= thresholdBytes) {
            DiskChange change;
            change.id = QUuid::createUuid();
            change.timestamp = now;
            change.mountPoint = disk.mountPoint;
            change.changeBytes = delta;
            change.previousBytes = previous;
            change.currentBytes = current;
            change.directoryDeltas = getDirectoryDeltas(currentDirectories);
            if (scanDue) {
                change.recentFiles = getRecentLargeFiles(m_previousSampleDate.value_or(now));
                change.activeWriters = findActiveWriters();
            } else {
                change.recentFiles = m_cachedRecentFiles;
                change.activeWriters = m_cachedActiveWriters;
            }
            changes.append(std::move(change));
        }
        // The baseline moves on every sample, so a slow drift never adds up to a jump.
        m_previousDiskUsage.insert(disk.mountPoint, current);
    }

    if (scanDue) {
        m_previousDirectoryUsage = currentDirectories;
        m_lastDirectoryScanTime = now;
    }
    m_previousSampleDate = now;
    return changes;
}

void DiskChangeTracker::reset() {
    std::lock_guard lock(m_stateLock);
    m_previousDiskUsage.clear();
    m_previousDirectoryUsage.clear();
    m_previousSampleDate.reset();
    m_lastDirectoryScanTime.reset();
    m_cachedDirectoryUsage.clear();
    m_cachedRecentFiles.clear();
    m_cachedActiveWriters.clear();
}

QHash<QString, qint64> DiskChangeTracker::getWatchedDirectoryUsage() {
    QHash<QString, qint64> usage;
    for (const QString& path : m_watchedDirectories) {
        if (!QFileInfo::exists(path)) {
            continue;
        }
        // One after the other; the exit status is not looked at, since du still prints a total
        // when it meets unreadable subdirectories.
        const QString output =
            runCommand(kDuProgram, {QStringLiteral("-sk"), path}, kDuTimeoutSeconds);
        if (const auto bytes = DiskChangeParsers::duSizeBytes(output)) {
            usage.insert(path, *bytes);
        }
    }
    m_cachedDirectoryUsage = usage;
    return usage;
}

QList<DiskAttribution> DiskChangeTracker::getDirectoryDeltas(
    const QHash<QString, qint64>& current) const {
    QList<DiskAttribution> deltas;
    for (auto entry = current.cbegin(); entry != current.cend(); ++entry) {
        const auto previous = m_previousDirectoryUsage.constFind(entry.key());
        if (previous == m_previousDirectoryUsage.cend()) {
            continue;
        }
        const qint64 delta = std::llabs(entry.value() - previous.value());
        if (delta < kAttributionFloorBytes) {
            continue;
        }
        deltas.append(DiskAttribution::make(entry.key(), delta, m_homeDirectory));
    }
    sortLargestFirst(deltas);
    if (deltas.size() > kDeltaCap) {
        deltas.resize(kDeltaCap);
    }
    return deltas;
}

QList<DiskAttribution> DiskChangeTracker::getRecentLargeFiles(const QDateTime& since) {
    QList<DiskAttribution> files;
    for (const QString& path : m_watchedDirectories) {
        if (!QFileInfo::exists(path)) {
            continue;
        }
        // The same file reached through two spellings of one directory counts twice.
        walkFiles(path, [&](const QFileInfo& file) {
            const QDateTime modified = file.lastModified().toUTC();
            if (file.size() >= kAttributionFloorBytes && modified.isValid() && modified >= since) {
                files.append(DiskAttribution::make(file.filePath(), file.size(), m_homeDirectory));
            }
        });
    }
    sortLargestFirst(files);
    if (files.size() > kFileCap) {
        files.resize(kFileCap);
    }
    m_cachedRecentFiles = files;
    return files;
}

QStringList DiskChangeTracker::findActiveWriters() {
    // The whole system, not only the volume that moved.
    const QString output = runCommand(m_lsofProgram, {QStringLiteral("-nP")}, kLsofTimeoutSeconds);
    m_cachedActiveWriters = DiskChangeParsers::lsofWriters(output, kWriterCap);
    return m_cachedActiveWriters;
}

QString DiskChangeTracker::runCommand(const QString& program, const QStringList& arguments,
                                      double timeout) {
    CommandRequest request;
    request.program = program;
    request.arguments = arguments;
    request.timeoutSeconds = timeout;
    request.pollStepSeconds = 0.1;
    request.stderrMode = CommandRequest::Stderr::Discarded;
    request.killGraceSeconds = 0.2;
    const CommandResult result = m_runner.run(request);
    // A tool that ended by itself counts whatever its status; a time-out gives nothing, not
    // part of the output.
    if (!result.started || result.timedOut) {
        return {};
    }
    QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
    const QString text = decoder(result.standardOutput);
    return decoder.hasError() ? QString() : text;
}

void DiskChangeTracker::writeEventLog(const DiskChange& change) {
    std::lock_guard lock(m_eventLogLock);
    const QByteArray line =
        QJsonDocument(change.toEventJson()).toJson(QJsonDocument::Compact) + '\n';
    const QFileInfo info(m_eventLogFile);
    QString error;
    if (!QDir().mkpath(info.absolutePath())) {
        error = QStringLiteral("can't create %1").arg(info.absolutePath());
    } else {
        QFile file(m_eventLogFile);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append)) {
            error = file.errorString();
        } else if (file.write(line) != line.size() || !file.flush()) {
            error = file.errorString();
        }
    }
    if (!error.isEmpty()) {
        logLine(QStringLiteral("[DiskChangeTracker] Failed to write disk event log: ") + error);
    }
}

QString DiskChangeTracker::defaultEventLogFile(const Paths& paths) {
    return paths.dataDirectory(kZelvar2Folder) + QStringLiteral("/disk-events.jsonl");
}

}  // namespace zelvar
