#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QMetaType>
#include <QString>
#include <QUuid>
#include <optional>

#include "common/ProcessOrigin.h"

namespace zelvar {

// Megabytes as the disk views write them: "%.1f GB" of `megabytes` / 1024 from 1000 MB up,
// "%.0f MB" below. The switch at 1000 and the division by 1024 differ on purpose.
QString formatMegabytes(double megabytes);

// The newest summary of the daemon's disk I/O log: per time window, the processes, directories
// and files that wrote most. Every parse gives every entry a new id.
struct DiskIOSummary {
    struct WriterEntry {
        QUuid id;
        std::optional<qint64> pid;
        QString name;
        double writtenMB = 0.0;
        double readMB = 0.0;
        // Filled from the live process list after the read; absent / unknown straight from the
        // log.
        std::optional<QString> parentName;
        ProcessOrigin immediateOrigin;
        ProcessOrigin rootOrigin;
    };

    struct DirectoryEntry {
        QUuid id;
        QString path;
        double writtenMB = 0.0;
    };

    struct FileEntry {
        QUuid id;
        QString path;
        double writtenMB = 0.0;
    };

    struct WindowData {
        QString window;  // "1m", "5m", "30m", ... as the daemon names them
        QList<WriterEntry> topWriters;
        QList<DirectoryEntry> topDirectories;
        QList<FileEntry> topFiles;
        // The window as the log writes it.
        QJsonObject toJson() const;
    };

    QDateTime timestamp;
    double rusageIntervalS = 30.0;
    double rusageOverheadPct = 0.0;
    QList<WindowData> windows;

    // The first window with exactly this name.
    std::optional<WindowData> windowData(const QString& window) const;
    // The log's "diskio_summary" line for this summary, as DiskIOReader reads it back.
    QJsonObject toJson() const;
};

using WriterEntry = DiskIOSummary::WriterEntry;
using DirectoryEntry = DiskIOSummary::DirectoryEntry;
using FileEntry = DiskIOSummary::FileEntry;
using WindowData = DiskIOSummary::WindowData;

// One burst of writes that the daemon noticed, by a process, into a directory or into a file.
struct DiskIOBurst {
    enum class BurstSource { Process, Directory, File };

    QUuid id;
    QDateTime timestamp;
    BurstSource source = BurstSource::Process;
    QString label;  // process name or path
    std::optional<qint64> pid;
    double writtenMB = 0.0;
    qint64 windowS = 30;
    std::optional<QString> parentName;
    ProcessOrigin immediateOrigin;
    ProcessOrigin rootOrigin;

    // Symbol name: "cpu", "folder.fill" or "doc.fill".
    QString icon() const;
    // formatMegabytes of writtenMB.
    QString displayWritten() const { return formatMegabytes(writtenMB); }

    static QString sourceName(BurstSource source);
    // The log's "diskio_burst" line for this burst, as DiskIOReader reads it back.
    QJsonObject toJson() const;
};

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::DiskIOSummary)
Q_DECLARE_METATYPE(zelvar::DiskIOBurst)
