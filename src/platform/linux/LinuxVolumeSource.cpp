#include "platform/linux/LinuxVolumeSource.h"

#include <QFile>

#include "platform/linux/MountTable.h"
#include "platform/posix/PosixVolumeMeasure.h"

namespace zelvar {

LinuxVolumeSource::LinuxVolumeSource(QString mountTable, QStringList roots)
    : m_mountTable(std::move(mountTable)), m_roots(std::move(roots)) {}

VolumeListing LinuxVolumeSource::listVolumes() const {
    VolumeListing listing;
    QFile table(m_mountTable);
    if (!table.exists()) {
        return listing;
    }
    listing.present = true;
    // /proc files report a size of 0, so read to the end rather than by size.
    if (!table.open(QIODevice::ReadOnly)) {
        listing.error = table.errorString();
        return listing;
    }
    listing.mountPoints = blockDeviceMountsUnder(table.readAll(), m_roots);
    return listing;
}

std::optional<VolumeCapacity> LinuxVolumeSource::measure(const QString& mountPoint,
                                                         QString* error) const {
    return measurePosixVolume(mountPoint, error);
}

}  // namespace zelvar
