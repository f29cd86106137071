#pragma once

#include <QDateTime>
#include <QHash>
#include <QList>
#include <QSet>
#include <deque>

#include "disk/DiskIOModels.h"
#include "platform/ProcessIOSource.h"

namespace zelvar {

class JsonlFile;

// Which processes, directories and files write to disk, for the disk I/O log. Each pass reads
// every readable process's storage counters and keeps the growth since the previous pass; the
// files that the pass's top writers hold open for writing are measured, and their growth is
// summed by parent directory. From the passes of the last 30 minutes come the summary's windows
// ("1m", "5m", "30m", ten entries each) and the bursts: a process, directory or file that wrote
// more than the threshold within 30 s gets one burst line, and no second one until it has
// fallen back below the threshold.
class DiskWriterSampler {
public:
    static constexpr int kTopCount = 10;
    static constexpr double kBurstWindowSeconds = 30.0;
    static constexpr double kHistorySeconds = 1800.0;
    static constexpr double kDefaultBurstThresholdMB = 100.0;
    static constexpr qint64 kCapBytes = 16 * 1024 * 1024;

    explicit DiskWriterSampler(ProcessIOSource& source,
                               double burstThresholdMB = kDefaultBurstThresholdMB);

    // One pass at `now`; the bursts it found, oldest first, for the log.
    QList<DiskIOBurst> sample(const QDateTime& now);
    // The windows as of `now`, over the passes kept.
    DiskIOSummary summary(const QDateTime& now, double rusageIntervalS,
                          double rusageOverheadPct) const;
    // One pass, then its bursts and, when `withSummary`, the summary appended to `log`.
    void sampleInto(JsonlFile& log, const QDateTime& now, bool withSummary, double rusageIntervalS,
                    double rusageOverheadPct);

private:
    struct ProcessDelta {
        QString name;
        quint64 written = 0;
        quint64 read = 0;
    };
    struct Pass {
        QDateTime at;
        QHash<qint32, ProcessDelta> processes;
        QHash<QString, quint64> files;  // growth by path
    };

    QString nameOf(qint32 pid);
    QHash<QString, quint64> measureFiles(const QList<std::pair<qint32, quint64>>& topWriters);
    QList<DiskIOBurst> findBursts(const QDateTime& now);

    ProcessIOSource& m_source;
    const quint64 m_burstThresholdBytes;
    bool m_primed = false;
    QHash<qint32, ProcessIOCounters> m_previous;
    QHash<qint32, QString> m_names;  // read once per process, when it first counts
    QHash<QString, qint64> m_fileSizes;
    std::deque<Pass> m_passes;
    QSet<QString> m_activeBursts;
};

}  // namespace zelvar
