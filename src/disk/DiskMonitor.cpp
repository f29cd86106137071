#include "disk/DiskMonitor.h"

#include <algorithm>

#include "common/Log.h"
#include "platform/Clock.h"
#include "platform/VolumeSource.h"

namespace zelvar {
namespace {

DiskInfo makeDiskInfo(const QString& mountPoint, const VolumeCapacity& capacity,
                      const QDateTime& now) {
    DiskInfo info;
    info.mountPoint = mountPoint;
    info.totalBytes = capacity.totalBytes;
    info.availableBytes = capacity.freeBytes;
    info.usedBytes = capacity.totalBytes - capacity.freeBytes;
    info.timestamp = now;
    return info;
}

}  // namespace

QList<DiskInfo> DiskMonitor::getDiskInfo() const {
    QList<DiskInfo> disks;
    const QString root = m_volumes.rootMountPoint();
    QString error;
    if (const auto capacity = m_volumes.measure(root, &error)) {
        disks.append(makeDiskInfo(root, *capacity, m_clock.now()));
    } else {
        logLine(QStringLiteral("[DiskMonitor] Failed to get root filesystem info: ") + error);
    }

    const VolumeListing listing = m_volumes.listVolumes();
    if (listing.error) {
        logLine(QStringLiteral("[DiskMonitor] Failed to enumerate volumes: ") + *listing.error);
    } else if (listing.present) {
        for (const QString& mountPoint : listing.mountPoints) {
            if (const auto capacity = m_volumes.measure(mountPoint, nullptr)) {
                disks.append(makeDiskInfo(mountPoint, *capacity, m_clock.now()));
            }
        }
    }

    // Plain string order, so "/" comes before every other path.
    std::stable_sort(disks.begin(), disks.end(), [](const DiskInfo& a, const DiskInfo& b) {
        return a.mountPoint < b.mountPoint;
    });
    return disks;
}

}  // namespace zelvar
