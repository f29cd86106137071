#pragma once

#include <QByteArray>
#include <QList>

namespace zelvar {

// One raw listing of a service manager's jobs, as the tool printed it.
struct ServiceJobListing {
    enum class Format {
        // `launchctl list`: a header, then "pid<TAB>status<TAB>label" lines.
        LaunchctlList,
        // `systemctl show --property=Id,MainPID`: "Key=Value" lines, one block a unit.
        SystemdShow,
    };

    Format format = Format::LaunchctlList;
    QByteArray text;
};

// The service manager's running jobs (launchd agents, systemd services), from which origin
// detection learns which process a job started. The adapter only runs the tools and hands
// their output back; reading it is left to the caller. A manager that can't be asked (no
// launchctl, no systemd, no user bus) simply contributes no listing. Never throws; blocks the
// caller for as long as the tools take.
class ServiceJobs {
public:
    virtual ~ServiceJobs() = default;
    virtual QList<ServiceJobListing> runningJobListings() = 0;
};

}  // namespace zelvar
