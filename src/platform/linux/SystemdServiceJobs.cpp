#include "platform/linux/SystemdServiceJobs.h"

#include "platform/CommandRunner.h"

namespace zelvar {
namespace {

// A manager that hangs on its bus must not hold the monitoring cycle for long.
constexpr double kTimeoutSeconds = 5.0;

}  // namespace

SystemdServiceJobs::SystemdServiceJobs(CommandRunner& runner, QString systemctl)
    : m_runner(runner), m_systemctl(std::move(systemctl)) {}

QList<ServiceJobListing> SystemdServiceJobs::runningJobListings() {
    QList<ServiceJobListing> listings;
    for (const bool user : {false, true}) {
        CommandRequest request;
        request.program = m_systemctl;
        if (user) {
            request.arguments << QStringLiteral("--user");
        }
        // The glob makes `show` print every loaded unit that matches it and is in the
        // given state, instead of the manager's own properties.
        request.arguments << QStringLiteral("show") << QStringLiteral("--state=running")
                          << QStringLiteral("--property=Id,MainPID") << QStringLiteral("*.service");
        request.timeoutSeconds = kTimeoutSeconds;
        request.stderrMode = CommandRequest::Stderr::Discarded;
        CommandResult result = m_runner.run(request);
        if (result.started && !result.timedOut && !result.standardOutput.isEmpty()) {
            listings.append(
                {ServiceJobListing::Format::SystemdShow, std::move(result.standardOutput)});
        }
    }
    return listings;
}

}  // namespace zelvar
