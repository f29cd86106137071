#include "platform/posix/PosixVolumeMeasure.h"

#include <QFile>
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <limits>

namespace zelvar {

namespace {

// Blocks times block size, capped at the largest byte count a qint64 holds rather than
// wrapping on a file system whose driver reports nonsense.
qint64 toBytes(quint64 blocks, quint64 blockSize) {
    constexpr auto kMax = static_cast<unsigned long long>(std::numeric_limits<qint64>::max());
    unsigned long long bytes = 0;
    if (__builtin_mul_overflow(static_cast<unsigned long long>(blocks),
                               static_cast<unsigned long long>(blockSize), &bytes) ||
        bytes > kMax) {
        return std::numeric_limits<qint64>::max();
    }
    return static_cast<qint64>(bytes);
}

}  // namespace

VolumeCapacity volumeCapacityFrom(const struct statvfs& info) {
    // All counts are in fragments, the unit statvfs sizes the file system in.
    return volumeCapacityFromBlocks(info.f_blocks, info.f_bfree, info.f_bavail, info.f_frsize);
}

VolumeCapacity volumeCapacityFromBlocks(quint64 blocks, quint64 freeBlocks, quint64 availableBlocks,
                                        quint64 blockSize) {
    // Some drivers report more space available to users than free in total; then nothing is
    // reserved. Every count is kept within the file system's size.
    const quint64 available = std::min(availableBlocks, blocks);
    const quint64 free = std::clamp(freeBlocks, available, blocks);
    const quint64 reserved = free - available;
    return VolumeCapacity{toBytes(blocks - reserved, blockSize), toBytes(available, blockSize)};
}

std::optional<VolumeCapacity> measurePosixVolume(const QString& path, QString* error) {
    struct statvfs info {};
    if (::statvfs(QFile::encodeName(path).constData(), &info) != 0) {
        if (error) {
            *error = QString::fromLocal8Bit(std::strerror(errno));
        }
        return std::nullopt;
    }
    return volumeCapacityFrom(info);
}

}  // namespace zelvar
