#pragma once

#include <QString>

namespace zelvar {

// A failure of the agent's installation, in the installer's own domain: code 1 for a missing
// helper, 124 for a tool that ran out of time, a tool's exit status otherwise (-1 for a file
// that couldn't be written).
struct AgentError {
    static inline const QString kDomain = QStringLiteral("Zelvar2LaunchAgent");
    int code = 0;
    QString description;
    friend bool operator==(const AgentError&, const AgentError&) = default;
};

}  // namespace zelvar
