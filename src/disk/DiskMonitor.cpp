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

// Ordinary string order: canonically equivalent spellings are equal (a volume name may come
// decomposed, as HFS+ stores it), others compare by Unicode scalar values rather than by UTF-16
// code units.
QList<uint> orderKey(const QString& mountPoint) {
    return mountPoint.normalized(QString::NormalizationForm_C).toUcs4();
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

    // "/" comes before every other path.
    QList<std::pair<QList<uint>, DiskInfo>> keyed;
    keyed.reserve(disks.size());
    for (DiskInfo& disk : disks) {
        keyed.append({orderKey(disk.mountPoint), std::move(disk)});
    }
    std::stable_sort(keyed.begin(), keyed.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    QList<DiskInfo> sorted;
    sorted.reserve(keyed.size());
    for (auto& [key, disk] : keyed) {
        sorted.append(std::move(disk));
    }
    return sorted;
}

}  // namespace zelvar
