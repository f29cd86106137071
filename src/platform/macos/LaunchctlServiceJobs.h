#pragma once

#include "platform/CommandRunner.h"
#include "platform/ServiceJobs.h"

namespace zelvar {

// The user's launchd jobs from `launchctl list`, run through the shell as it always has been.
class LaunchctlServiceJobs final : public ServiceJobs {
public:
    explicit LaunchctlServiceJobs(CommandRunner& runner) : m_runner(runner) {}

    QList<ServiceJobListing> runningJobListings() override {
        CommandRequest request;
        request.program = QStringLiteral("/bin/sh");
        request.arguments = {QStringLiteral("-c"), QStringLiteral("launchctl list")};
        CommandResult result = m_runner.run(request);
        if (!result.started) {
            return {};
        }
        return {{ServiceJobListing::Format::LaunchctlList, std::move(result.standardOutput)}};
    }

private:
    CommandRunner& m_runner;
};

}  // namespace zelvar
