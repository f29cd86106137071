#include <QDir>

#include "platform/PlatformServices.h"
#include "platform/macos/LaunchctlServiceJobs.h"
#include "platform/macos/MacPaths.h"
#include "platform/macos/MacProcessTable.h"

namespace zelvar {

std::unique_ptr<ProcessTable> makeProcessTable() {
    return std::make_unique<MacProcessTable>();
}

std::unique_ptr<Paths> makePaths() {
    return std::make_unique<MacPaths>(QDir::homePath());
}

std::unique_ptr<ServiceJobs> makeServiceJobs(CommandRunner& runner) {
    return std::make_unique<LaunchctlServiceJobs>(runner);
}

}  // namespace zelvar
