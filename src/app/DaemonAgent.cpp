#include "app/DaemonAgent.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <csignal>

#include "agent/DetachedDaemonStarter.h"
#include "agent/LaunchAgentManager.h"
#include "agent/LaunchdServiceManager.h"
#include "agent/SystemdUserServiceManager.h"
#include "daemon/DaemonFiles.h"
#include "daemon/DaemonLock.h"
#include "platform/Paths.h"

namespace zelvar {

DaemonAgent::DaemonAgent(CommandRunner& runner, DaemonLauncher& launcher, const Paths& paths)
    : m_runner(runner), m_launcher(launcher), m_paths(paths) {
    const QString logs = DaemonFiles::logDirectory(paths);
#ifdef Q_OS_MACOS
    m_manager = std::make_unique<LaunchdServiceManager>(
        runner, QDir(paths.homeDirectory()).filePath(QStringLiteral("Library/LaunchAgents")), logs,
        ::getuid());
#else
    m_manager = std::make_unique<SystemdUserServiceManager>(
        runner, paths.configDirectory(QStringLiteral("systemd/user")), logs);
#endif
}

DaemonAgent::~DaemonAgent() = default;

QString DaemonAgent::helperPath() {
#ifdef Q_OS_MACOS
    return QCoreApplication::applicationDirPath() + QStringLiteral("/Zelvar2Daemon");
#else
    return QCoreApplication::applicationDirPath() + QStringLiteral("/zelvar2-daemon");
#endif
}

bool DaemonAgent::userManagerRunning() {
#ifdef Q_OS_MACOS
    return true;
#else
    if (!m_userManager) {
        m_userManager = SystemdUserServiceManager::userManagerRunning(
            m_runner, SystemdUserServiceManager::kDefaultSystemctl);
    }
    return *m_userManager;
#endif
}

std::optional<AgentError> DaemonAgent::installOrReplace() {
    if (!userManagerRunning()) {
        return DetachedDaemonStarter(m_launcher, helperPath(), DaemonFiles::logDirectory(m_paths),
                                     DaemonFiles::lockFile(m_paths))
            .ensureRunning();
    }
    // A daemon started by hand while no user manager ran would keep the unit's daemon from
    // taking the lock (and the unit would restart it in vain): it ends first.
    if (!m_manager->isLoaded()) {
        stopRunningDaemon();
    }
    return LaunchAgentManager(*m_manager, helperPath(), DaemonFiles::logDirectory(m_paths))
        .installOrReplace();
}

void DaemonAgent::stopRunningDaemon() {
    // It saves its totals on SIGTERM.
    if (const auto pid = DaemonLock::holder(DaemonFiles::lockFile(m_paths))) {
        ::kill(static_cast<pid_t>(*pid), SIGTERM);
    }
}

void DaemonAgent::uninstall() {
    if (userManagerRunning()) {
        LaunchAgentManager(*m_manager, helperPath(), DaemonFiles::logDirectory(m_paths))
            .uninstall();
    }
    // A daemon started by hand (or left over) ends too.
    stopRunningDaemon();
}

DaemonAgent::Status DaemonAgent::status() {
    Status status;
    status.serviceManager = userManagerRunning();
    status.definitionFile = m_manager->definitionFile();
    status.helper = helperPath();
    status.installed = QFile::exists(status.definitionFile);
    if (status.serviceManager) {
        status.loaded = m_manager->isLoaded();
    }
    if (const auto installed = m_manager->installedArguments()) {
        status.current = installed->value(0) == status.helper &&
                         !installed->contains(LaunchAgentManager::kOutdatedMarker);
    }
    status.pid = DaemonLock::holder(DaemonFiles::lockFile(m_paths));
    return status;
}

}  // namespace zelvar
