#include <QDir>

#include "platform/PlatformServices.h"
#include "platform/linux/LinuxPaths.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/SystemdServiceJobs.h"

namespace zelvar {

std::unique_ptr<ProcessTable> makeProcessTable() {
    return std::make_unique<LinuxProcessTable>();
}

std::unique_ptr<Paths> makePaths() {
    return std::make_unique<LinuxPaths>(QDir::homePath(), qEnvironmentVariable("XDG_DATA_HOME"),
                                        qEnvironmentVariable("XDG_STATE_HOME"));
}

std::unique_ptr<ServiceJobs> makeServiceJobs(CommandRunner& runner) {
    return std::make_unique<SystemdServiceJobs>(runner);
}

}  // namespace zelvar
