#pragma once

#include <QList>

#include "disk/DiskInfo.h"

namespace zelvar {

class Clock;
class VolumeSource;

// Lists the mounted volumes with their capacity: the root file system and the extra volumes
// the system names, sorted by mount point. Without state of its own, so any thread may call it;
// it blocks as long as the file systems take to answer.
class DiskMonitor {
public:
    DiskMonitor(const VolumeSource& volumes, const Clock& clock)
        : m_volumes(volumes), m_clock(clock) {}

    // At worst an empty list. A failure to measure the root or to list the volumes is logged;
    // a volume that doesn't answer is skipped silently.
    QList<DiskInfo> getDiskInfo() const;

private:
    const VolumeSource& m_volumes;
    const Clock& m_clock;
};

}  // namespace zelvar
