#include "platform/SystemProfile.h"

namespace zelvar {

SystemProfile linuxSystemProfile() {
    SystemProfile profile;
    // GUI applications as their processes are named on Linux desktops: browsers, editors and
    // IDEs, chat applications, terminals and a few other desktop tools.
    // clang-format off
    profile.originNames.knownGUIApps = {
        // browsers
        "firefox", "firefox-esr", "firefox-bin", "chrome", "google-chrome", "chromium",
        "chromium-browser", "brave", "brave-browser", "msedge", "microsoft-edge", "opera",
        "vivaldi-bin", "epiphany", "falkon",
        // editors and IDEs
        "code", "code-oss", "codium", "cursor", "zed", "zeditor", "sublime_text", "gedit",
        "gnome-text-editor", "kate", "kwrite", "mousepad", "emacs", "gvim", "idea", "pycharm",
        "webstorm", "clion", "goland", "rider", "android-studio", "studio", "electron",
        // chat and collaboration
        "slack", "discord", "Discord", "telegram-desktop", "signal-desktop", "element-desktop",
        "teams-for-linux", "zoom", "thunderbird", "figma-linux", "notion-app",
        // terminals
        "gnome-terminal-server", "gnome-terminal", "kgx", "ptyxis", "konsole", "xfce4-terminal",
        "mate-terminal", "lxterminal", "qterminal", "terminator", "tilix", "xterm", "urxvt",
        "alacritty", "kitty", "wezterm-gui", "foot", "ghostty", "warp-terminal", "hyper", "tabby",
        "guake", "yakuake",
        // other desktop tools that start processes
        "tableplus", "dbeaver", "docker-desktop", "rancher-desktop",
    };
    // The init system, display servers, compositors and desktop shells, the session bus, audio
    // and the daemons every desktop runs.
    profile.originNames.systemProcessNames = {
        "systemd", "init", "kthreadd", "Xorg", "X", "Xwayland", "gnome-shell", "mutter",
        "kwin_wayland", "kwin_x11", "plasmashell", "sway", "Hyprland", "weston", "labwc", "wayfire",
        "xfwm4", "xfce4-session", "marco", "openbox", "gdm", "gdm3", "gdm-session-worker", "sddm",
        "lightdm", "dbus-daemon", "dbus-broker", "dbus-broker-launch", "pipewire", "pipewire-pulse",
        "wireplumber", "pulseaudio", "NetworkManager", "wpa_supplicant", "ModemManager",
        "systemd-logind", "systemd-journald", "systemd-udevd", "systemd-resolved",
        "systemd-timesyncd", "systemd-networkd", "systemd-oomd", "systemd-userdbd",
        "systemd-machined", "polkitd", "udisksd", "upowerd", "accounts-daemon", "rtkit-daemon",
        "avahi-daemon", "bluetoothd", "cupsd", "rsyslogd", "cron", "crond", "chronyd", "irqbalance",
        "thermald", "power-profiles-daemon", "switcheroo-control",
    };
    // clang-format on
    // Kernel threads are the children of kthreadd; they are the system, as kernel_task is on
    // macOS.
    profile.originNames.kernelThreadParent = QStringLiteral("kthreadd");
    profile.systemOrigin = {QStringLiteral("🐧"), QStringLiteral("Linux System")};
    profile.lsofProgram = QStringLiteral("/usr/bin/lsof");
    profile.audioDeviceNodes = QStringLiteral("/dev/snd/*");
    profile.soundServerProcesses = {QStringLiteral("pulseaudio"), QStringLiteral("pipewire"),
                                    QStringLiteral("pipewire-pulse"), QStringLiteral("wireplumber"),
                                    QStringLiteral("jackd")};
    profile.squareTrayIcons = true;
    return profile;
}

}  // namespace zelvar
