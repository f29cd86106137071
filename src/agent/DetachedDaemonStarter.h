#pragma once

#include <QString>
#include <optional>

#include "agent/AgentError.h"

namespace zelvar {

class DaemonLauncher;

// Where no user service manager runs (a container, a minimal session), the app starts the
// daemon itself: detached, with the agent's command line and output files, unless the
// daemon's lock shows one running already.
class DetachedDaemonStarter {
public:
    DetachedDaemonStarter(DaemonLauncher& launcher, QString helper, QString logDirectory,
                          QString lockFile);

    std::optional<AgentError> ensureRunning();

private:
    DaemonLauncher& m_launcher;
    QString m_helper;
    QString m_logDirectory;
    QString m_lockFile;
};

}  // namespace zelvar
