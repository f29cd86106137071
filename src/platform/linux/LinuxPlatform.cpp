#include <QDir>

#include "platform/PlatformServices.h"
#include "platform/linux/CanberraSoundOutput.h"
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "platform/linux/LinuxPaths.h"
#include "platform/linux/LinuxProcessTable.h"

namespace zelvar {

std::unique_ptr<ProcessTable> makeProcessTable() {
    return std::make_unique<LinuxProcessTable>();
}

std::unique_ptr<Paths> makePaths() {
    return std::make_unique<LinuxPaths>(QDir::homePath(), qEnvironmentVariable("XDG_DATA_HOME"),
                                        qEnvironmentVariable("XDG_STATE_HOME"));
}

std::unique_ptr<NotificationCenter> makeNotificationCenter() {
    return std::make_unique<FreedesktopNotificationCenter>();
}

std::unique_ptr<SoundOutput> makeSoundOutput() {
    return std::make_unique<CanberraSoundOutput>();
}

std::unique_ptr<ActivationPolicy> makeActivationPolicy() {
    // Tray applications on Linux desktops have no Dock presence to switch.
    return std::make_unique<NullActivationPolicy>();
}

}  // namespace zelvar
