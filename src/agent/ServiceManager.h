#pragma once

#include <QString>
#include <QStringList>
#include <optional>

#include "agent/AgentError.h"

namespace zelvar {

// A per-user service manager as the agent manager needs it: where the agent's definition
// lives, whether it is loaded, the arguments of the installed definition, removal of it and of
// every earlier generation, writing a definition and loading it.
class ServiceManager {
public:
    virtual ~ServiceManager() = default;
    virtual QString definitionFile() const = 0;
    virtual bool isLoaded() = 0;
    // The installed definition's command line, program first; none when it can't be read.
    virtual std::optional<QStringList> installedArguments() const = 0;
    // Never fails: whatever can't be removed stays.
    virtual void uninstall() = 0;
    virtual std::optional<AgentError> writeDefinition(const QStringList& programArguments) = 0;
    virtual std::optional<AgentError> load() = 0;
};

}  // namespace zelvar
