#include "platform/linux/SystemdServiceJobs.h"

#include <QFileInfo>

#include "platform/CommandRunner.h"
#include "platform/linux/SystemdBusUnits.h"

namespace zelvar {
namespace {

// A manager that hangs on its bus must not hold the monitoring cycle for long.
constexpr double kTimeoutSeconds = 5.0;

}  // namespace

SystemdServiceJobs::Buses SystemdServiceJobs::defaultBuses() {
    // Without an address, the session bus would be autolaunched through dbus-launch on an X
    // display: a daemon started only to find no user manager on it.
    QDBusConnection user(QStringLiteral("zelvar2-systemd-user"));
    const QString runtimeBus = qEnvironmentVariable("XDG_RUNTIME_DIR") + QStringLiteral("/bus");
    if (qEnvironmentVariableIsSet("DBUS_SESSION_BUS_ADDRESS")) {
        user = QDBusConnection::sessionBus();
    } else if (qEnvironmentVariableIsSet("XDG_RUNTIME_DIR") && QFileInfo::exists(runtimeBus)) {
        user = QDBusConnection::connectToBus(QStringLiteral("unix:path=") + runtimeBus,
                                             QStringLiteral("zelvar2-systemd-user"));
    }
    return {QDBusConnection::systemBus(), user};
}

SystemdServiceJobs::SystemdServiceJobs(CommandRunner& runner, std::function<Buses()> connect,
                                       QString systemctl)
    : m_runner(runner), m_connect(std::move(connect)), m_systemctl(std::move(systemctl)) {}

QList<ServiceJobListing> SystemdServiceJobs::runningJobListings() {
    if (!m_buses) {
        m_buses = m_connect();
    }
    QList<ServiceJobListing> listings;
    for (const bool user : {false, true}) {
        SystemdBusUnits::Answer answer = SystemdBusUnits::runningServices(
            user ? m_buses->user : m_buses->system, static_cast<int>(kTimeoutSeconds * 1000));
        if (answer.status == SystemdBusUnits::Answer::Status::Unreachable) {
            CommandRequest request;
            request.program = m_systemctl;
            if (user) {
                request.arguments << QStringLiteral("--user");
            }
            // The glob makes `show` print every loaded unit that matches it and is in the
            // given state, instead of the manager's own properties.
            request.arguments << QStringLiteral("show") << QStringLiteral("--state=running")
                              << QStringLiteral("--property=Id,MainPID")
                              << QStringLiteral("*.service");
            request.timeoutSeconds = kTimeoutSeconds;
            request.stderrMode = CommandRequest::Stderr::Discarded;
            CommandResult result = m_runner.run(request);
            if (result.started && !result.timedOut) {
                answer.showText = std::move(result.standardOutput);
            }
        }
        if (!answer.showText.isEmpty()) {
            listings.append({ServiceJobListing::Format::SystemdShow, std::move(answer.showText)});
        }
    }
    return listings;
}

}  // namespace zelvar
