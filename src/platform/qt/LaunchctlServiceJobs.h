#pragma once

#include "platform/CommandRunner.h"
#include "platform/ServiceJobs.h"

namespace zelvar {

// macOS: the user's launchd jobs from `launchctl list`, run through the shell. A launchctl
// that hangs is stopped after 5 seconds, as the Linux service manager's calls are; a run that
// timed out or printed nothing gives no listing. Built on every system so that it is tested
// here.
class LaunchctlServiceJobs final : public ServiceJobs {
public:
    explicit LaunchctlServiceJobs(CommandRunner& runner) : m_runner(runner) {}

    QList<ServiceJobListing> runningJobListings() override;

private:
    CommandRunner& m_runner;
};

}  // namespace zelvar
