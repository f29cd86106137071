#include "process/DiskIOPoller.h"

#include "platform/Clock.h"
#include "process/DiskIOEnrichment.h"

namespace zelvar {

DiskIOPoller::DiskIOPoller(const DiskIOReader& reader, const Clock& clock)
    : m_reader(reader), m_clock(clock) {}

std::optional<DiskIORead> DiskIOPoller::poll(const QList<ProcessInfo>& processes) {
    const QDateTime now = m_clock.now();
    if (m_lastRead.isValid() && !(secondsBetween(m_lastRead, now) >= kReadIntervalSeconds)) {
        return std::nullopt;
    }
    m_lastRead = now;
    return enrichDiskIO(m_reader.read(kBurstLimit), processes);
}

}  // namespace zelvar
