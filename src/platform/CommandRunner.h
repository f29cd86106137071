#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace zelvar {

struct CommandRequest {
    enum class Stderr { Separate, Merged, Discarded };

    QString program;  // an absolute path
    QStringList arguments;
    // No value: wait for the child however long it takes.
    std::optional<double> timeoutSeconds;
    // How often the runner wakes to check the deadline while the child produces nothing.
    double pollStepSeconds = 0.05;
    Stderr stderrMode = Stderr::Separate;
    // On time-out the child gets SIGTERM, then SIGKILL if it is still there after this grace.
    double killGraceSeconds = 1.0;
};

struct CommandResult {
    bool started = false;
    bool timedOut = false;
    bool crashed = false;
    int exitCode = -1;
    QByteArray standardOutput;  // with standard error appended in order when merged
    QByteArray standardError;

    bool succeeded() const { return started && !timedOut && !crashed && exitCode == 0; }
};

// Runs an external tool to its end and hands back everything it wrote. Output is read while
// the child runs, so a full pipe never stalls it. Never throws: a child that can't be started
// gives started == false and empty output. Safe to call from any thread; blocks the caller.
class CommandRunner {
public:
    virtual ~CommandRunner() = default;
    virtual CommandResult run(const CommandRequest& request) = 0;
};

}  // namespace zelvar
