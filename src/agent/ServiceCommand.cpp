#include "agent/ServiceCommand.h"

#include <QFileInfo>

#include "platform/CommandRunner.h"

namespace zelvar {

ServiceCommand::Result ServiceCommand::run(CommandRunner& runner, const QString& program,
                                           const QStringList& arguments) {
    CommandRequest request;
    request.program = program;
    request.arguments = arguments;
    request.timeoutSeconds = kTimeoutSeconds;
    request.pollStepSeconds = 0.05;
    const CommandResult result = runner.run(request);
    if (!result.started) {
        return AgentError{-1, QStringLiteral("Can't run ") + program};
    }
    if (result.timedOut) {
        return AgentError{124, QFileInfo(program).fileName() + QStringLiteral(" timed out: ") +
                                   arguments.join(QLatin1Char(' '))};
    }
    const QString output = QString::fromUtf8(result.standardOutput);
    if (!result.crashed && result.exitCode == 0) {
        return output;
    }
    const QString error = QString::fromUtf8(result.standardError);
    return AgentError{result.crashed ? -1 : result.exitCode, error.isEmpty() ? output : error};
}

void ServiceCommand::runIgnoringErrors(CommandRunner& runner, const QString& program,
                                       const QStringList& arguments) {
    (void)run(runner, program, arguments);
}

}  // namespace zelvar
