#include "agent/DetachedDaemonStarter.h"

#include <QDir>

#include "agent/LaunchAgentManager.h"
#include "common/Log.h"
#include "daemon/DaemonLock.h"
#include "platform/DaemonLauncher.h"

namespace zelvar {

DetachedDaemonStarter::DetachedDaemonStarter(DaemonLauncher& launcher, QString helper,
                                             QString logDirectory, QString lockFile)
    : m_launcher(launcher),
      m_helper(std::move(helper)),
      m_logDirectory(std::move(logDirectory)),
      m_lockFile(std::move(lockFile)) {}

std::optional<AgentError> DetachedDaemonStarter::ensureRunning() {
    if (auto missing = LaunchAgentManager::checkHelper(m_helper)) {
        return missing;
    }
    if (const auto pid = DaemonLock::holder(m_lockFile)) {
        logLine(QStringLiteral("[LaunchAgentManager] No user service manager; daemon already "
                               "running (pid %1)")
                    .arg(*pid));
        return std::nullopt;
    }
    if (!QDir().mkpath(m_logDirectory)) {
        return AgentError{-1, QStringLiteral("Can't create the folder ") + m_logDirectory};
    }
    const QStringList command = LaunchAgentManager::programArguments(m_helper, m_logDirectory);
    const QDir logs(m_logDirectory);
    QString error;
    if (!m_launcher.startDetached(command.first(), command.mid(1),
                                  logs.filePath(QStringLiteral("daemon.stdout.log")),
                                  logs.filePath(QStringLiteral("daemon.stderr.log")), &error)) {
        return AgentError{-1,
                          QStringLiteral("Can't start ") + m_helper + QStringLiteral(": ") + error};
    }
    logLine(
        QStringLiteral("[LaunchAgentManager] No user service manager; started the daemon "
                       "detached"));
    return std::nullopt;
}

}  // namespace zelvar
