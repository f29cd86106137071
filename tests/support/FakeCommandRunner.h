#pragma once

#include <QHash>

#include "platform/CommandRunner.h"
#include "support/Guarded.h"

namespace zelvar::test {

// Answers commands from canned output keyed by "program arg1 arg2 ..."; an unknown command
// fails to start. Records every request.
class FakeCommandRunner final : public CommandRunner {
public:
    void respond(const QString& commandLine, QByteArray standardOutput, int exitCode = 0) {
        respond(
            commandLine,
            {.started = true, .exitCode = exitCode, .standardOutput = std::move(standardOutput)});
    }
    // Any result, such as a time-out.
    void respond(const QString& commandLine, const CommandResult& result) {
        m_state.lock()->results.insert(commandLine, result);
    }
    CommandResult run(const CommandRequest& request) override {
        const auto state = m_state.lock();
        state->requests.append(request);
        return state->results.value((QStringList{request.program} + request.arguments).join(' '));
    }
    QList<CommandRequest> requests() const { return m_state.lock()->requests; }

private:
    struct State {
        QHash<QString, CommandResult> results;
        QList<CommandRequest> requests;
    };
    Guarded<State> m_state;
};

}  // namespace zelvar::test
