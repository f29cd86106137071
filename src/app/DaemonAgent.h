#pragma once

#include <QString>
#include <memory>
#include <optional>

#include "agent/AgentError.h"
#include "agent/ServiceManager.h"

namespace zelvar {

class CommandRunner;
class DaemonLauncher;
class Paths;

// The daemon's installation on this system: a systemd user unit where a user manager runs
// (launchd on macOS), the detached daemon otherwise. The helper is the daemon's executable
// beside the running program, in the build tree or installed. Every call blocks on the
// service manager's tool; run them off the main thread.
class DaemonAgent {
public:
    DaemonAgent(CommandRunner& runner, DaemonLauncher& launcher, const Paths& paths);
    ~DaemonAgent();

    std::optional<AgentError> installOrReplace();
    void uninstall();

    struct Status {
        bool serviceManager = false;  // a user service manager answers
        bool installed = false;       // its definition file exists
        bool loaded = false;
        bool current = false;  // installed for this helper, without the old marker
        QString definitionFile;
        QString helper;
        std::optional<qint64> pid;  // of the running daemon, from its lock
    };
    Status status();

    static QString helperPath();

private:
    bool userManagerRunning();
    void stopRunningDaemon();

    CommandRunner& m_runner;
    DaemonLauncher& m_launcher;
    const Paths& m_paths;
    std::unique_ptr<ServiceManager> m_manager;
    std::optional<bool> m_userManager;
};

}  // namespace zelvar
