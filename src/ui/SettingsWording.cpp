#include "ui/SettingsWording.h"

namespace zelvar {

SettingsWording SettingsWording::mac() {
    return {
        QStringLiteral("Show macOS notification center alerts"),
        QStringLiteral("macOS Notification Permission"),
        QStringLiteral("❌ Denied - Enable in System Preferences"),
        QStringLiteral("Enable in: System Preferences > Notifications > Zelvar+"),
        QStringLiteral("Start Zelvar+ when macOS starts"),
    };
}

SettingsWording SettingsWording::desktop() {
    // A freedesktop desktop has no permission to grant: notifications are refused when no
    // notification service answers, which the desktop's own settings or session start.
    return {
        QStringLiteral("Show desktop notifications"),
        QStringLiteral("Desktop Notification Permission"),
        QStringLiteral("❌ Denied - Enable in the desktop's notification settings"),
        QStringLiteral("Enable in: the desktop's notification settings > Zelvar+"),
        QStringLiteral("Start Zelvar+ when you log in"),
    };
}

SettingsWording SettingsWording::forThisSystem() {
#ifdef Q_OS_MACOS
    return mac();
#else
    return desktop();
#endif
}

}  // namespace zelvar
