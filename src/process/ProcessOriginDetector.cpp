#include "process/ProcessOriginDetector.h"

#include <QStringDecoder>
#include <QVarLengthArray>
#include <optional>
#include <vector>

#include "platform/Clock.h"
#include "platform/ServiceJobs.h"
#include "process/ServiceJobParsers.h"

namespace zelvar {
namespace {

#if defined(Q_OS_MACOS)

const QSet<QString> kGUIApps = {
    "Xcode",     "Cursor",         "Code",           "IntelliJ IDEA",   "WebStorm",
    "PyCharm",   "Android Studio", "Electron",       "Slack",           "Discord",
    "Figma",     "Notion",         "Microsoft Edge", "Google Chrome",   "Firefox",
    "Safari",    "iTerm2",         "Terminal",       "Hyper",           "Warp",
    "TablePlus", "Sequel Pro",     "Docker Desktop", "Rancher Desktop", "OrbStack",
};

const QSet<QString> kSystemNames = {
    "kernel_task", "launchd",       "WindowServer", "loginwindow",    "syslogd",
    "configd",     "mDNSResponder", "distnoted",    "UserEventAgent", "SystemUIServer",
    "Dock",        "coreaudiod",    "hidd",         "powerd",
};

// macOS has no kernel threads in the process table; kernel_task stands for them by name.
const QString kKernelThreadParent;

#else

// GUI applications as their processes are named on Linux desktops: browsers, editors and
// IDEs, chat applications, terminals and a few other desktop tools.
// clang-format off
const QSet<QString> kGUIApps = {
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
const QSet<QString> kSystemNames = {
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
const QString kKernelThreadParent = QStringLiteral("kthreadd");

#endif

const QSet<QString> kShellNames = {"zsh", "bash", "fish", "sh", "dash", "tcsh", "csh", "login"};

bool isKernelThread(const ProcessInfo& process, const QHash<Pid, ProcessInfo>& all) {
    if (kKernelThreadParent.isEmpty()) {
        return false;
    }
    const auto parent = all.constFind(process.ppid);
    return parent != all.constEnd() && parent->id != process.id &&
           parent->name == kKernelThreadParent;
}

}  // namespace

ProcessOriginDetector::ProcessOriginDetector(ServiceJobs& jobs, const Clock& clock)
    : m_jobs(jobs), m_clock(clock) {}

const QSet<QString>& ProcessOriginDetector::knownGUIApps() {
    return kGUIApps;
}

const QSet<QString>& ProcessOriginDetector::shellNames() {
    return kShellNames;
}

const QSet<QString>& ProcessOriginDetector::systemProcessNames() {
    return kSystemNames;
}

void ProcessOriginDetector::refresh() {
    if (m_lastLaunchctlRefresh.isValid() &&
        secondsBetween(m_lastLaunchctlRefresh, m_clock.now()) < kLaunchctlCacheTTL) {
        return;
    }
    m_launchctlMap = buildLaunchctlMap();
    // Taken after the listing, so a slow tool doesn't shorten the cache's life.
    m_lastLaunchctlRefresh = m_clock.now();
}

QHash<Pid, QString> ProcessOriginDetector::buildLaunchctlMap() {
    QHash<Pid, QString> map;
    for (const ServiceJobListing& listing : m_jobs.runningJobListings()) {
        QStringDecoder decoder(QStringDecoder::Utf8);
        const QString text = decoder(listing.text);
        if (decoder.hasError()) {
            continue;  // undecodable output counts as no output
        }
        const QHash<Pid, QString> jobs = listing.format == ServiceJobListing::Format::SystemdShow
                                             ? parseSystemdShow(text)
                                             : parseLaunchctlList(text);
        for (auto it = jobs.constBegin(); it != jobs.constEnd(); ++it) {
            map.insert(it.key(), it.value());
        }
    }
    return map;
}

ProcessOriginDetector::Origins ProcessOriginDetector::origins(
    const ProcessInfo& process, const QHash<Pid, ProcessInfo>& allProcesses) const {
    if (kSystemNames.contains(process.name) || process.id < 2 ||
        isKernelThread(process, allProcesses)) {
        return {ProcessOrigin::system(), ProcessOrigin::system()};
    }
    if (const auto job = m_launchctlMap.constFind(process.id); job != m_launchctlMap.constEnd()) {
        const ProcessOrigin origin = ProcessOrigin::launchAgent(*job);
        return {origin, origin};
    }
    return walkAncestors(process.id, process.ppid, allProcesses);
}

ProcessOriginDetector::Origins ProcessOriginDetector::walkAncestors(
    Pid pid, Pid ppid, const QHash<Pid, ProcessInfo>& allProcesses) const {
    // The walk is at most 20 steps, so a small list beats a hash set here.
    QVarLengthArray<Pid, kMaxAncestorSteps + 1> visited{pid};
    std::optional<ProcessOrigin> immediate;
    std::optional<ProcessOrigin> root;
    Pid current = ppid;
    for (int steps = 0;;) {
        const auto it = allProcesses.constFind(current);
        if (it == allProcesses.constEnd()) {
            break;
        }
        const ProcessInfo& ancestor = *it;
        if (visited.contains(ancestor.id)) {
            break;
        }
        visited.append(ancestor.id);

        const std::optional<ProcessOrigin> origin = classifyAncestor(ancestor);
        if (origin) {
            if (!immediate) {
                immediate = origin;
            }
            root = origin;
        }

        if (ancestor.id == 1 || ++steps == kMaxAncestorSteps) {
            break;
        }
        current = ancestor.ppid;
    }
    return {immediate.value_or(ProcessOrigin::unknown()), root.value_or(ProcessOrigin::unknown())};
}

std::optional<ProcessOrigin> ProcessOriginDetector::classifyAncestor(
    const ProcessInfo& ancestor) const {
    if (kShellNames.contains(ancestor.name)) {
        return ProcessOrigin::cli(ancestor.name);
    }
    if (kGUIApps.contains(ancestor.name)) {
        return ProcessOrigin::gui(ancestor.name);
    }
    if (const auto job = m_launchctlMap.constFind(ancestor.id); job != m_launchctlMap.constEnd()) {
        return ProcessOrigin::launchAgent(*job);
    }
    if (ancestor.id == 1) {
        return ProcessOrigin::system();
    }
    return std::nullopt;
}

void ProcessOriginDetector::assignOrigins(QList<ProcessInfo>& processes) const {
    const auto count = static_cast<int>(processes.size());
    // The same lookup as a dictionary by pid: a repeated pid resolves to its last record.
    QHash<Pid, int> indexOf;
    indexOf.reserve(count);
    for (int i = 0; i < count; ++i) {
        indexOf.insert(processes[i].id, i);
    }
    std::vector<int> parent(count);
    std::vector<std::optional<ProcessOrigin>> asAncestor(count);
    for (int i = 0; i < count; ++i) {
        parent[i] = indexOf.value(processes[i].ppid, -1);
        asAncestor[i] = classifyAncestor(processes[i]);
    }

    std::vector<int> visitedBy(count, -1);  // which walk last passed each record
    std::vector<Origins> results(count);
    for (int i = 0; i < count; ++i) {
        const ProcessInfo& process = processes[i];
        const int up = parent[i];
        const bool kernelThread = !kKernelThreadParent.isEmpty() && up >= 0 &&
                                  processes[up].id != process.id &&
                                  processes[up].name == kKernelThreadParent;
        if (kSystemNames.contains(process.name) || process.id < 2 || kernelThread) {
            results[i] = {ProcessOrigin::system(), ProcessOrigin::system()};
            continue;
        }
        if (const auto job = m_launchctlMap.constFind(process.id);
            job != m_launchctlMap.constEnd()) {
            const ProcessOrigin origin = ProcessOrigin::launchAgent(*job);
            results[i] = {origin, origin};
            continue;
        }
        visitedBy[indexOf.value(process.id)] = i;
        const std::optional<ProcessOrigin>* immediate = nullptr;
        const std::optional<ProcessOrigin>* root = nullptr;
        int steps = 0;
        for (int current = up; current >= 0 && visitedBy[current] != i; current = parent[current]) {
            visitedBy[current] = i;
            if (asAncestor[current]) {
                if (!immediate) {
                    immediate = &asAncestor[current];
                }
                root = &asAncestor[current];
            }
            if (processes[current].id == 1 || ++steps == kMaxAncestorSteps) {
                break;
            }
        }
        results[i] = {immediate ? **immediate : ProcessOrigin::unknown(),
                      root ? **root : ProcessOrigin::unknown()};
    }
    for (int i = 0; i < count; ++i) {
        processes[i].immediateOrigin = std::move(results[i].immediate);
        processes[i].rootOrigin = std::move(results[i].root);
    }
}

}  // namespace zelvar
