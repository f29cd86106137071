#pragma once

#include <QDBusConnection>
#include <QString>
#include <functional>
#include <optional>

#include "platform/ServiceJobs.h"

namespace zelvar {

class CommandRunner;

// The running services of the system manager and of the user's manager, with their main
// pids. Each manager is asked over D-Bus (the system bus, the user's session bus), which starts
// no process; a manager that can't be reached there is asked through `systemctl show` and
// `systemctl --user show`. Without systemd (containers, CI) or without a user bus, both ways
// give nothing and the listing is empty.
class SystemdServiceJobs final : public ServiceJobs {
public:
    struct Buses {
        QDBusConnection system;
        QDBusConnection user;
    };

    // The system bus, and the user's bus where systemctl would look for it: the session bus
    // of DBUS_SESSION_BUS_ADDRESS, else $XDG_RUNTIME_DIR/bus. Never starts a bus of its own.
    static Buses defaultBuses();

    // `connect` is called once, on the first listing, on the thread that asks for it.
    SystemdServiceJobs(CommandRunner& runner, std::function<Buses()> connect,
                       QString systemctl = QStringLiteral("/usr/bin/systemctl"));

    QList<ServiceJobListing> runningJobListings() override;

private:
    CommandRunner& m_runner;
    std::function<Buses()> m_connect;
    std::optional<Buses> m_buses;
    QString m_systemctl;
};

}  // namespace zelvar
