#include <QDir>

#include "platform/PlatformServices.h"
#include "platform/linux/LinuxPaths.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/LinuxVolumeSource.h"

namespace zelvar {

std::unique_ptr<ProcessTable> makeProcessTable() {
    return std::make_unique<LinuxProcessTable>();
}

std::unique_ptr<Paths> makePaths() {
    return std::make_unique<LinuxPaths>(QDir::homePath(), qEnvironmentVariable("XDG_DATA_HOME"),
                                        qEnvironmentVariable("XDG_STATE_HOME"));
}

std::unique_ptr<VolumeSource> makeVolumeSource() {
    return std::make_unique<LinuxVolumeSource>();
}

}  // namespace zelvar
