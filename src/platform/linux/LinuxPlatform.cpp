#include <sys/stat.h>
#include <unistd.h>

#include <QDir>

#include "platform/linux/CanberraSoundOutput.h"
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "platform/linux/LinuxPaths.h"
#include "platform/linux/LinuxProcessIOSource.h"
#include "platform/linux/LinuxProcessSignaller.h"
#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/LinuxSystemLoadSource.h"
#include "platform/linux/LinuxVolumeSource.h"
#include "platform/linux/NetworkManagerNameSource.h"
#include "platform/linux/PactlAudioDeviceState.h"
#include "platform/linux/SockDiagProcessNetworkSource.h"
#include "platform/linux/SysfsBatteryRegistry.h"
#include "platform/linux/SysfsInterfaceCounters.h"
#include "platform/linux/SystemdJournalPowerLogSource.h"
#include "platform/linux/SystemdServiceJobs.h"
#include "platform/linux/X11Workspace.h"
#include "platform/null/NullActivationPolicy.h"
#include "platform/posix/PosixDaemonLauncher.h"
#include "platform/qt/SystemClock.h"
#include "platform/system/PlatformServices.h"

namespace zelvar {

std::unique_ptr<ProcessTable> makeProcessTable() {
    return std::make_unique<LinuxProcessTable>();
}

std::unique_ptr<ProcessSignaller> makeProcessSignaller() {
    return std::make_unique<LinuxProcessSignaller>();
}

std::unique_ptr<Paths> makePaths() {
    return std::make_unique<LinuxPaths>(QDir::homePath(),
                                        LinuxPaths::Xdg{qEnvironmentVariable("XDG_DATA_HOME"),
                                                        qEnvironmentVariable("XDG_STATE_HOME"),
                                                        qEnvironmentVariable("XDG_CONFIG_HOME"),
                                                        qEnvironmentVariable("XDG_RUNTIME_DIR")});
}

std::unique_ptr<VolumeSource> makeVolumeSource() {
    return std::make_unique<LinuxVolumeSource>();
}

std::unique_ptr<InterfaceCounters> makeInterfaceCounters() {
    return std::make_unique<SysfsInterfaceCounters>();
}

std::unique_ptr<NetworkNameSource> makeNetworkNameSource(CommandRunner& /*runner*/) {
    return std::make_unique<NetworkManagerNameSource>();
}

std::unique_ptr<ProcessNetworkSource> makeProcessNetworkSource(CommandRunner& runner) {
    // The clock only paces the full reads of /proc; it holds nothing, so one serves every source.
    static const SystemClock clock;
    return std::make_unique<SockDiagProcessNetworkSource>(runner, clock);
}

std::unique_ptr<ServiceJobs> makeServiceJobs(CommandRunner& runner) {
    return std::make_unique<SystemdServiceJobs>(runner, &SystemdServiceJobs::defaultBuses);
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

std::unique_ptr<BatteryRegistry> makeBatteryRegistry() {
    // ZELVAR2_POWER_SUPPLY_DIR stands in for /sys/class/power_supply: a copy of another
    // machine's supplies (or the tests' fixtures) shows what the app would show there.
    const QString root = qEnvironmentVariable("ZELVAR2_POWER_SUPPLY_DIR");
    return root.isEmpty() ? std::make_unique<SysfsBatteryRegistry>()
                          : std::make_unique<SysfsBatteryRegistry>(root);
}

std::unique_ptr<PowerLogSource> makePowerLogSource() {
    // ZELVAR2_JOURNAL_FILES (journal files separated by colons) stands in for the machine's
    // journal: another machine's journal, copied, shows the history the app would show there.
    SystemdJournalPowerLogSource::Roots roots;
    roots.journalFiles =
        qEnvironmentVariable("ZELVAR2_JOURNAL_FILES").split(QLatin1Char(':'), Qt::SkipEmptyParts);
    return std::make_unique<SystemdJournalPowerLogSource>(roots);
}

std::unique_ptr<ProcessIOSource> makeProcessIOSource() {
    return std::make_unique<LinuxProcessIOSource>();
}

std::unique_ptr<SystemLoadSource> makeSystemLoadSource() {
    return std::make_unique<LinuxSystemLoadSource>();
}

std::unique_ptr<DaemonLauncher> makeDaemonLauncher() {
    return std::make_unique<PosixDaemonLauncher>();
}

std::unique_ptr<Workspace> makeWorkspace(std::function<void(const QString& line)> log) {
    return std::make_unique<X11Workspace>(qgetenv("DISPLAY"), QStringLiteral("/proc"),
                                          X11Workspace::xdgDataDirectories(), std::move(log));
}

std::unique_ptr<AudioDeviceState> makeAudioDeviceState(CommandRunner& runner) {
    return std::make_unique<PactlAudioDeviceState>(runner);
}

SystemProfile currentSystemProfile() {
    return linuxSystemProfile();
}

std::function<bool(Pid)> makeOwnProcessTest() {
    // A process's directory under /proc belongs to the process's real user.
    return [user = ::getuid()](Pid pid) {
        struct stat entry {};
        const QByteArray path = "/proc/" + QByteArray::number(pid);
        return ::stat(path.constData(), &entry) == 0 && entry.st_uid == user;
    };
}

}  // namespace zelvar
