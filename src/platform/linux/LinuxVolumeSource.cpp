#include "platform/linux/LinuxVolumeSource.h"

#include <sys/statvfs.h>

#include <QFile>
#include <cerrno>
#include <cstring>

#include "platform/linux/MountTable.h"

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
    struct statvfs info {};
    if (::statvfs(QFile::encodeName(mountPoint).constData(), &info) != 0) {
        if (error) {
            *error = QString::fromLocal8Bit(std::strerror(errno));
        }
        return std::nullopt;
    }
    const auto unit = static_cast<qint64>(info.f_frsize);
    return VolumeCapacity{static_cast<qint64>(info.f_blocks) * unit,
                          static_cast<qint64>(info.f_bavail) * unit};
}

}  // namespace zelvar
