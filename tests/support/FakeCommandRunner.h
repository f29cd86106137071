#pragma once

#include <QHash>
#include <mutex>

#include "platform/CommandRunner.h"

namespace zelvar::test {

// Answers commands from canned results keyed by "program arg1 arg2 ..."; an unknown command
// fails to start. Records every request.
class FakeCommandRunner final : public CommandRunner {
public:
    static QString key(const QString& program, const QStringList& arguments) {
        return (QStringList{program} + arguments).join(QLatin1Char(' '));
    }

    void respond(const QString& commandLine, QByteArray standardOutput, int exitCode = 0) {
        respond(commandLine, CommandResult{.started = true,
                                           .exitCode = exitCode,
                                           .standardOutput = std::move(standardOutput)});
    }

    // Any result, such as a time-out.
    void respond(const QString& commandLine, const CommandResult& result) {
        std::lock_guard lock(m_mutex);
        m_results.insert(commandLine, result);
    }

    CommandResult run(const CommandRequest& request) override {
        std::lock_guard lock(m_mutex);
        m_requests.append(request);
        return m_results.value(key(request.program, request.arguments), CommandResult{});
    }

    QList<CommandRequest> requests() const {
        std::lock_guard lock(m_mutex);
        return m_requests;
    }

private:
    mutable std::mutex m_mutex;
    QHash<QString, CommandResult> m_results;
    QList<CommandRequest> m_requests;
};

}  // namespace zelvar::test
