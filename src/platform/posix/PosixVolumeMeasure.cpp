#include "platform/posix/PosixVolumeMeasure.h"

#include <sys/statvfs.h>

#include <QFile>
#include <cerrno>
#include <cstring>

namespace zelvar {

std::optional<VolumeCapacity> measurePosixVolume(const QString& path, QString* error) {
    struct statvfs info {};
    if (::statvfs(QFile::encodeName(path).constData(), &info) != 0) {
        if (error) {
            *error = QString::fromLocal8Bit(std::strerror(errno));
        }
        return std::nullopt;
    }
    // Both counts are in fragments, the unit statvfs sizes the file system in.
    const auto unit = static_cast<qint64>(info.f_frsize);
    return VolumeCapacity{static_cast<qint64>(info.f_blocks) * unit,
                          static_cast<qint64>(info.f_bavail) * unit};
}

}  // namespace zelvar
