#pragma once

#include <QByteArrayView>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "disk/DiskIOModels.h"

namespace zelvar {

class Paths;

struct DiskIORead {
    std::optional<DiskIOSummary> summary;
    QList<DiskIOBurst> bursts;  // oldest first
};

// Reads the newest summary and the newest bursts from the tail of the daemon's disk I/O log
// (JSON lines, oldest first). The cost is bounded whatever the file's size: one read of at most
// the last 128 KiB, of which the last 500 lines count. Never throws and logs nothing: a missing
// file, a fragment or a malformed record only leaves less data. Stateless; any thread.
class DiskIOReader {
public:
    static constexpr qint64 kTailBytes = 131072;
    static constexpr int kTailLines = 500;
    static constexpr int kDefaultBurstLimit = 20;

    // diskio.jsonl in Zelvar2's state folder, where the daemon writes it.
    static QString defaultFile(const Paths& paths);

    explicit DiskIOReader(QString logFile) : m_logFile(std::move(logFile)) {}

    const QString& logFile() const { return m_logFile; }

    // The newest valid summary of the tail, falling back to older ones when newer ones are
    // broken, and the newest `burstLimit` valid bursts in file order. Only a regular file is
    // read, opened without blocking, so a FIFO or a device at the path gives nothing at once.
    DiskIORead read(int burstLimit = kDefaultBurstLimit) const;

    // The same from a block of the log's tail, as read() takes it from the file: the block
    // decoded whole as UTF-8 (nothing when it isn't valid, so a block that starts inside a
    // multi-byte character gives nothing until the file has grown), then its last kTailLines
    // non-empty lines.
    static DiskIORead parseTail(QByteArrayView block, int burstLimit = kDefaultBurstLimit);

private:
    QString m_logFile;
};

}  // namespace zelvar
