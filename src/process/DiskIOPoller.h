#pragma once

#include <QDateTime>
#include <QList>
#include <optional>

#include "disk/DiskIOReader.h"

namespace zelvar {

class Clock;
struct ProcessInfo;

// Reads the daemon's disk I/O log for the monitoring cycle: on the first call and then only
// once at least 30 seconds have passed since the last read, so that the log's cost doesn't
// follow a short check interval. Used from the monitor's worker thread only.
class DiskIOPoller final {
public:
    static constexpr double kReadIntervalSeconds = 30.0;
    static constexpr int kBurstLimit = 20;

    DiskIOPoller(const DiskIOReader& reader, const Clock& clock);

    // The newest summary and bursts, enriched with parent names and origins from `processes`
    // (the cycle's own sample); nothing when the last read is less than 30 seconds old.
    std::optional<DiskIORead> poll(const QList<ProcessInfo>& processes);

private:
    const DiskIOReader& m_reader;
    const Clock& m_clock;
    QDateTime m_lastRead;
};

}  // namespace zelvar
