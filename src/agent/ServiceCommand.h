#pragma once

#include <QString>
#include <QStringList>
#include <variant>

#include "agent/AgentError.h"

namespace zelvar {

class CommandRunner;

// Runs the service manager's tool (launchctl, systemctl) with a 5 s limit, polled every
// 0.05 s: its standard output on success; code 124 "<tool> timed out: <arguments>" when it ran
// out of time; otherwise its exit status with its standard error, or its output when standard
// error is empty.
class ServiceCommand {
public:
    static constexpr double kTimeoutSeconds = 5.0;

    using Result = std::variant<QString, AgentError>;
    static Result run(CommandRunner& runner, const QString& program, const QStringList& arguments);
    // Runs it and forgets the outcome: for removals that may find nothing to remove.
    static void runIgnoringErrors(CommandRunner& runner, const QString& program,
                                  const QStringList& arguments);
};

}  // namespace zelvar
