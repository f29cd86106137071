#include "platform/SystemProfile.h"

namespace zelvar {

SystemProfile macSystemProfile() {
    SystemProfile profile;
    profile.originNames.knownGUIApps = {
        "Xcode",     "Cursor",         "Code",           "IntelliJ IDEA",   "WebStorm",
        "PyCharm",   "Android Studio", "Electron",       "Slack",           "Discord",
        "Figma",     "Notion",         "Microsoft Edge", "Google Chrome",   "Firefox",
        "Safari",    "iTerm2",         "Terminal",       "Hyper",           "Warp",
        "TablePlus", "Sequel Pro",     "Docker Desktop", "Rancher Desktop", "OrbStack",
    };
    profile.originNames.systemProcessNames = {
        "kernel_task", "launchd",       "WindowServer", "loginwindow",    "syslogd",
        "configd",     "mDNSResponder", "distnoted",    "UserEventAgent", "SystemUIServer",
        "Dock",        "coreaudiod",    "hidd",         "powerd",
    };
    // macOS has no kernel threads in the process table; kernel_task stands for them by name,
    // so kernelThreadParent stays empty.
    profile.systemOrigin = {QStringLiteral("🍎"), QStringLiteral("macOS System")};
    profile.lsofProgram = QStringLiteral("/usr/sbin/lsof");
    profile.coreAudio = true;
    profile.audioDeviceNodes = QStringLiteral("/dev/audio /dev/audio0 /dev/dsp /dev/mixer");
    profile.squareTrayIcons = false;
    return profile;
}

}  // namespace zelvar
