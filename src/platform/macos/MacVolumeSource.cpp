#include "platform/macos/MacVolumeSource.h"

#include <sys/mount.h>
#include <sys/param.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

#include "platform/posix/PosixVolumeMeasure.h"

namespace zelvar {

VolumeListing MacVolumeSource::listVolumes() const {
    VolumeListing listing;
    if (!QFileInfo::exists(m_volumesDirectory)) {
        return listing;
    }
    listing.present = true;
    QDir directory(m_volumesDirectory);
    if (!directory.isReadable()) {
        listing.error = QStringLiteral("%1 can't be read").arg(m_volumesDirectory);
        return listing;
    }
    const QStringList entries = directory.entryList(
        QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Unsorted);
    for (const QString& entry : entries) {
        listing.mountPoints.append(m_volumesDirectory + QLatin1Char('/') + entry);
    }
    return listing;
}

std::optional<VolumeCapacity> MacVolumeSource::measure(const QString& mountPoint,
                                                       QString* error) const {
    // statfs's block counts are 64-bit; statvfs's fsblkcnt_t is 32-bit on macOS.
    struct statfs info {};
    if (::statfs(QFile::encodeName(mountPoint).constData(), &info) != 0) {
        if (error) {
            *error = QString::fromLocal8Bit(std::strerror(errno));
        }
        return std::nullopt;
    }
    return volumeCapacityFromBlocks(info.f_blocks, info.f_bfree, info.f_bavail, info.f_bsize);
}

}  // namespace zelvar
