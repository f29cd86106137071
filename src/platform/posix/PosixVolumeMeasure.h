#pragma once

#include <sys/statvfs.h>

#include <QString>
#include <optional>

#include "platform/VolumeSource.h"

namespace zelvar {

// The capacity of the file system that holds `path`, by statvfs: the part an ordinary user
// can fill, and what of it is still free. No value, with the system's reason in `error`, when
// the file system can't be asked. Shared by the Linux and macOS volume sources.
std::optional<VolumeCapacity> measurePosixVolume(const QString& path, QString* error);

// The capacity that one statvfs answer describes, as `df` counts it: free is f_bavail, and
// the size leaves out the blocks reserved for root (f_bfree - f_bavail), so that size - free
// is df's "Used" and the size is df's "Used" + "Avail".
VolumeCapacity volumeCapacityFrom(const struct statvfs& info);

// The same from block counts in units of `blockSize` bytes, whichever call gave them (statfs on
// macOS, whose statvfs has only 32-bit block counts).
VolumeCapacity volumeCapacityFromBlocks(quint64 blocks, quint64 freeBlocks, quint64 availableBlocks,
                                        quint64 blockSize);

}  // namespace zelvar
