#pragma once

#include "platform/VolumeSource.h"

namespace zelvar {

// Volumes from the mount table, measured with statvfs. The table's path and the roots under
// which removable and extra disks are mounted are parameters so that a fixture can stand in.
class LinuxVolumeSource final : public VolumeSource {
public:
    explicit LinuxVolumeSource(QString mountTable = QStringLiteral("/proc/self/mounts"),
                               QStringList roots = {QStringLiteral("/media"),
                                                    QStringLiteral("/run/media"),
                                                    QStringLiteral("/mnt")});

    VolumeListing listVolumes() const override;
    std::optional<VolumeCapacity> measure(const QString& mountPoint, QString* error) const override;

private:
    QString m_mountTable;
    QStringList m_roots;
};

}  // namespace zelvar
