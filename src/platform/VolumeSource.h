#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace zelvar {

struct VolumeCapacity {
    qint64 totalBytes = 0;
    qint64 freeBytes = 0;  // what an ordinary user may still write
};

struct VolumeListing {
    // False when the place where extra volumes live doesn't exist; then nothing is listed.
    bool present = false;
    // Set when the place exists but couldn't be listed.
    std::optional<QString> error;
    QStringList mountPoints;  // full paths, in the order found
};

// The mounted volumes and their capacity. The root file system is measured on its own; the
// listing names the other volumes a user would call a disk (macOS: every entry of /Volumes;
// Linux: block-device file systems mounted under /media, /run/media and /mnt). No decisions
// beyond that: sorting and records are the caller's. Any thread.
class VolumeSource {
public:
    virtual ~VolumeSource() = default;

    virtual QString rootMountPoint() const { return QStringLiteral("/"); }
    virtual VolumeListing listVolumes() const = 0;
    // No value, with the reason in `error`, when the file system can't be asked.
    virtual std::optional<VolumeCapacity> measure(const QString& mountPoint,
                                                  QString* error) const = 0;
};

}  // namespace zelvar
