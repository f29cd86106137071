#pragma once

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
    // broken, and the newest `burstLimit` valid bursts in file order.
    DiskIORead read(int burstLimit = kDefaultBurstLimit) const;

    // The last `count` non-empty lines of the file's last kTailBytes bytes, in file order. Empty
    // when the file can't be read or the block isn't valid UTF-8 (a block that starts inside
    // a multi-byte character gives nothing until the file has grown).
    static QStringList tailLines(const QString& file, int count);

private:
    QString m_logFile;
};

}  // namespace zelvar
