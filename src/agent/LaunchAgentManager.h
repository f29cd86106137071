#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "agent/AgentError.h"

namespace zelvar {

class ServiceManager;

// Installs the daemon as the user's agent and keeps it current. A loaded agent whose program
// is this installation's helper and whose arguments lack the old "--disk-threshold" is left
// alone; anything else is removed (with every earlier generation) and installed afresh. The
// arguments are constants, so a change of settings never restarts the daemon. Blocks on the
// service manager: call it off the main thread.
class LaunchAgentManager {
public:
    static inline const QString kLabel = QStringLiteral("com.orlen.zelvar2.daemon");
    static inline const QString kOutdatedMarker = QStringLiteral("--disk-threshold");
    // Labels of earlier generations, removed with the agent, in this order.
    static inline const QStringList kLegacyLabels = {
        QStringLiteral("com.user.zel-var-2"), QStringLiteral("com.orlen.zel-var-2"),
        QStringLiteral("com.orlen.zelvar2"), QStringLiteral("com.orlen.Wattlog.sampler"),
        QStringLiteral("com.orlen.Wattlog.correlation")};
    // Words by which other leftover agents are recognised (case-sensitive, in label or
    // arguments), in this order.
    static inline const QStringList kLegacyMarkers = {
        QStringLiteral("zel_var_2.py"),
        QStringLiteral("zelvar_tracker.py"),
        QStringLiteral("Zelvar2"),
        QStringLiteral("Brindlefox"),
        QStringLiteral("Wattlog"),
        QStringLiteral("wattlog-sampler"),
        QStringLiteral("wattlog-correlation-sampler")};

    // `helper` is the daemon's executable, `logDirectory` where its logs go.
    LaunchAgentManager(ServiceManager& manager, QString helper, QString logDirectory);

    std::optional<AgentError> installOrReplace();
    bool isLoaded();
    void uninstall();

    // Code 1 "Bundled daemon helper is missing: <path>" unless `helper` is an executable file.
    static std::optional<AgentError> checkHelper(const QString& helper);
    // The seven words of the daemon's command line.
    static QStringList programArguments(const QString& helper, const QString& logDirectory);

private:
    ServiceManager& m_manager;
    QString m_helper;
    QString m_logDirectory;
};

}  // namespace zelvar
