#include "agent/LaunchAgentManager.h"

#include <QDir>
#include <QFileInfo>

#include "agent/ServiceManager.h"
#include "common/Log.h"

namespace zelvar {

LaunchAgentManager::LaunchAgentManager(ServiceManager& manager, QString helper,
                                       QString logDirectory)
    : m_manager(manager), m_helper(std::move(helper)), m_logDirectory(std::move(logDirectory)) {}

QStringList LaunchAgentManager::programArguments(const QString& helper,
                                                 const QString& logDirectory) {
    return {helper,
            QStringLiteral("--ram-threshold"),
            QStringLiteral("50"),
            QStringLiteral("--interval"),
            QStringLiteral("10"),
            QStringLiteral("--log-file"),
            QDir(logDirectory).filePath(QStringLiteral("events.jsonl"))};
}

std::optional<AgentError> LaunchAgentManager::checkHelper(const QString& helper) {
    const QFileInfo file(helper);
    if (!file.isFile() || !file.isExecutable()) {
        return AgentError{1, QStringLiteral("Bundled daemon helper is missing: ") + helper};
    }
    return std::nullopt;
}

std::optional<AgentError> LaunchAgentManager::installOrReplace() {
    if (auto missing = checkHelper(m_helper)) {
        return missing;
    }
    for (const QString& directory :
         {QFileInfo(m_manager.definitionFile()).absolutePath(), m_logDirectory}) {
        if (!QDir().mkpath(directory)) {
            return AgentError{-1, QStringLiteral("Can't create the folder ") + directory};
        }
    }
    if (isLoaded()) {
        // An unreadable definition is replaced without a word.
        if (const auto installed = m_manager.installedArguments()) {
            if (installed->value(0) == m_helper && !installed->contains(kOutdatedMarker)) {
                logLine(
                    QStringLiteral("[LaunchAgentManager] Daemon already running with current "
                                   "config — skipping reinstall"));
                return std::nullopt;
            }
            logLine(QStringLiteral(
                "[LaunchAgentManager] Daemon launch configuration changed — reinstalling daemon"));
        }
    }
    uninstall();
    if (auto error = m_manager.writeDefinition(programArguments(m_helper, m_logDirectory))) {
        return error;
    }
    return m_manager.load();
}

bool LaunchAgentManager::isLoaded() {
    return m_manager.isLoaded();
}

void LaunchAgentManager::uninstall() {
    m_manager.uninstall();
}

}  // namespace zelvar
