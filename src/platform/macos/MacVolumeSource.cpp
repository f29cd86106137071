#include "platform/macos/MacVolumeSource.h"

#include <sys/statvfs.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <cerrno>
#include <cstring>

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
