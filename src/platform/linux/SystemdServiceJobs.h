#pragma once

#include <QString>

#include "platform/ServiceJobs.h"

namespace zelvar {

class CommandRunner;

// The running services of the system manager and of the user's manager, with their main
// pids, from `systemctl show` and `systemctl --user show`. Without systemd (containers, CI)
// or without a user bus, systemctl prints nothing on standard output and the listing is
// empty.
class SystemdServiceJobs final : public ServiceJobs {
public:
    explicit SystemdServiceJobs(CommandRunner& runner,
                                QString systemctl = QStringLiteral("/usr/bin/systemctl"));

    QList<ServiceJobListing> runningJobListings() override;

private:
    CommandRunner& m_runner;
    QString m_systemctl;
};

}  // namespace zelvar
