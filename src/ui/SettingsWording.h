#pragma once

#include <QString>

namespace zelvar {

// The texts of the settings sheet that name the system's own notification and login
// services: macOS's on a Mac, the desktop's elsewhere, as the notification port's advice does.
struct SettingsWording {
    QString notificationsCaption;  // below "System Notifications"
    QString permissionHeading;     // the permission line
    QString deniedStatus;          // the status of a refused permission
    QString enableAdvice;          // the message after a refused request
    QString launchAtLoginCaption;  // below "Launch at Login"

    static SettingsWording mac();
    static SettingsWording desktop();
    // The wording of the system this is built for.
    static SettingsWording forThisSystem();
};

}  // namespace zelvar
