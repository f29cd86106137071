#include "compose/AlertStack.h"

namespace zelvar {

AlertStack::AlertStack(const Ports& ports, ConfigManager& config)
    : notifications(ports.notificationCenter),
      sounds(ports.soundOutput, ports.scheduler, ports.paths.dataDirectory(kZelvar2Folder)),
      alerts(notifications, sounds, ports.clock, ports.scheduler) {
    alerts.setConfigManager(&config);
}

}  // namespace zelvar
