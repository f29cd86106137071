#pragma once

#include "platform/VolumeSource.h"

namespace zelvar {

// "/" and every entry of /Volumes (the boot volume's link included), measured with statfs.
class MacVolumeSource final : public VolumeSource {
public:
    explicit MacVolumeSource(QString volumesDirectory = QStringLiteral("/Volumes"))
        : m_volumesDirectory(std::move(volumesDirectory)) {}

    VolumeListing listVolumes() const override;
    std::optional<VolumeCapacity> measure(const QString& mountPoint, QString* error) const override;

private:
    QString m_volumesDirectory;
};

}  // namespace zelvar
