#include "platform/qt/LaunchctlServiceJobs.h"

namespace zelvar {
namespace {

constexpr double kTimeoutSeconds = 5.0;

}  // namespace

QList<ServiceJobListing> LaunchctlServiceJobs::runningJobListings() {
    CommandRequest request;
    request.program = QStringLiteral("/bin/sh");
    request.arguments = {QStringLiteral("-c"), QStringLiteral("launchctl list")};
    request.timeoutSeconds = kTimeoutSeconds;
    CommandResult result = m_runner.run(request);
    if (!result.started || result.timedOut || result.standardOutput.trimmed().isEmpty()) {
        return {};
    }
    return {{ServiceJobListing::Format::LaunchctlList, std::move(result.standardOutput)}};
}

}  // namespace zelvar
