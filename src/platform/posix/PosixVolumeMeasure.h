#pragma once

#include <QString>
#include <optional>

#include "platform/VolumeSource.h"

namespace zelvar {

// The capacity of the file system that holds `path`, by statvfs: its size, and the space an
// ordinary user may still write. No value, with the system's reason in `error`, when the file
// system can't be asked. Shared by the Linux and macOS volume sources.
std::optional<VolumeCapacity> measurePosixVolume(const QString& path, QString* error);

}  // namespace zelvar
