#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUuid>

namespace zelvar {

// One explanation of a disk jump: a directory that moved or a large recent file.
struct DiskAttribution {
    QUuid id;
    QString label;     // the path with the home directory written as "~"
    QString detail;    // the full path
    qint64 bytes = 0;  // always a magnitude

    // File-style byte count: "Zero KB", "1 byte", "999 bytes", "21 MB", "1.23 GB".
    QString displaySize() const { return formatFileByteCount(bytes); }

    static DiskAttribution make(const QString& path, qint64 bytes, const QString& homeDirectory);
    // Decimal units; bytes and KB without fraction, MB with one digit, GB and up with two,
    // trailing zeros dropped.
    static QString formatFileByteCount(qint64 bytes);
};

// A jump of a volume's used bytes, with whatever attribution could be had at that moment.
struct DiskChange {
    QUuid id;
    QDateTime timestamp;
    QString mountPoint;
    qint64 changeBytes = 0;  // negative when space was freed
    qint64 previousBytes = 0;
    qint64 currentBytes = 0;
    QList<DiskAttribution> directoryDeltas;  // at most 5, largest first
    QList<DiskAttribution> recentFiles;      // at most 8, largest first
    QStringList activeWriters;               // at most 8 process names

    // The magnitude in whole MiB, truncated.
    qint64 changeMB() const;
    bool isAllocation() const { return changeBytes > 0; }
    // "+5 MB" for growth; "-5 MB" otherwise, so that no change at all reads "-0 MB".
    QString displayChange() const;
    // displayChange and the mount point, then the best explanation there is.
    QString summary() const;

    // One line of the disk event log (ids left out).
    QJsonObject toEventJson() const;
};

}  // namespace zelvar
