#pragma once

#include "alerts/AlertManager.h"
#include "alerts/NotificationHelper.h"
#include "alerts/SoundPlayer.h"
#include "platform/Ports.h"

namespace zelvar {

class ConfigManager;

// The alerts: notifications and sounds through the ports' desktop services, and the alert
// manager over both, which reads its notification and sound switches from `config`.
struct AlertStack {
    AlertStack(const Ports& ports, ConfigManager& config);

    NotificationHelper notifications;
    SoundPlayer sounds;
    AlertManager alerts;
};

}  // namespace zelvar
