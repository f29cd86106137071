#include <QDir>

#include "platform/PlatformServices.h"
#include "platform/macos/MacPaths.h"
#include "platform/macos/MacProcessTable.h"
#include "platform/macos/MacVolumeSource.h"

namespace zelvar {

std::unique_ptr<ProcessTable> makeProcessTable() {
    return std::make_unique<MacProcessTable>();
}

std::unique_ptr<Paths> makePaths() {
    return std::make_unique<MacPaths>(QDir::homePath());
}

std::unique_ptr<VolumeSource> makeVolumeSource() {
    return std::make_unique<MacVolumeSource>();
}

}  // namespace zelvar
