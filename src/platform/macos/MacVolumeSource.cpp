#include "platform/macos/MacVolumeSource.h"

#include <QDir>
#include <QFileInfo>

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
    return measurePosixVolume(mountPoint, error);
}

}  // namespace zelvar
