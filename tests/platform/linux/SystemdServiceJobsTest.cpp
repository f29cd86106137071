#include <QDBusContext>
#include <future>

#include "platform/linux/SystemdServiceJobs.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "process/ServiceJobParsers.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/SessionBus.h"
#include "support/Testing.h"

namespace {

SystemdServiceJobs::Buses noBuses() {
    return {QDBusConnection("no-system-bus"), QDBusConnection("no-user-bus")};
}

// A manager that takes the question and never answers it.
class HungSystemd final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.systemd1.Manager")
public slots:
    void ListUnitsFiltered(const QStringList&) { setDelayedReply(true); }
};

}  // namespace

TEST(SystemdServiceJobs, WithoutABusAsksBothManagersThroughSystemctl) {
    LogCapture log;
    FakeCommandRunner runner;
    runner.respond("/usr/bin/systemctl show --state=running --property=Id,MainPID *.service",
                   "Id=ssh.service\nMainPID=612\n");
    runner.respond("/usr/bin/systemctl --user show --state=running --property=Id,MainPID *.service",
                   "Id=pipewire.service\nMainPID=1402\n");
    const QList<ServiceJobListing> listings =
        SystemdServiceJobs(runner, noBuses).runningJobListings();
    ASSERT_EQ(listings.size(), 2);
    EXPECT_EQ(std::tuple(listings[0].format, listings[0].text, listings[1].text),
              std::tuple(ServiceJobListing::Format::SystemdShow, "Id=ssh.service\nMainPID=612\n",
                         "Id=pipewire.service\nMainPID=1402\n"));
    for (const CommandRequest& request : runner.requests()) {  // a hung bus can't stall the cycle
        EXPECT_TRUE(request.timeoutSeconds &&
                    request.stderrMode == CommandRequest::Stderr::Discarded);
    }
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(SystemdServiceJobsLive, SystemctlStandsInForAManagerNotOnTheBusButNotForAHungOne) {
    SessionBus bus;
    ASSERT_TRUE(bus.started());
    QDBusConnection server = bus.connect("systemd-server");
    HungSystemd systemd;
    ASSERT_TRUE(server.registerObject("/org/freedesktop/systemd1", &systemd,
                                      QDBusConnection::ExportAllSlots));
    FakeCommandRunner runner;
    runner.respond("/usr/bin/systemctl show --state=running --property=Id,MainPID *.service",
                   "Id=ssh.service\nMainPID=612\n");
    SystemdServiceJobs jobs(runner, [&] {
        return SystemdServiceJobs::Buses{bus.connect("systemd-client"), QDBusConnection("none")};
    });
    // Lists on another thread while this one serves the bus.
    const auto listingCount = [&] {
        auto listing = std::async(std::launch::async, [&] { return jobs.runningJobListings(); });
        EXPECT_TRUE(processEventsUntil(
            [&] { return listing.wait_for(std::chrono::seconds(0)) == std::future_status::ready; },
            15000));
        return listing.get().size();
    };
    EXPECT_EQ(listingCount(), 1);  // no manager on the bus: systemctl, for both managers
    ASSERT_TRUE(server.registerService("org.freedesktop.systemd1"));
    EXPECT_EQ(listingCount(), 0);  // given up after the time-out, as systemctl would hang too
    EXPECT_EQ(runner.requests().size(), 3);  // then for the user manager only
}

TEST(SystemdServiceJobsLive, TheBusAndSystemctlAgreeOnThisMachine) {
    if (!QFileInfo::exists("/run/systemd/system")) {
        GTEST_SKIP() << "systemd is not the service manager here";
    }
    const auto mainPids = [](ServiceJobs& jobs) {
        QHash<Pid, QString> map;
        for (const ServiceJobListing& listing : jobs.runningJobListings()) {
            map.insert(parseSystemdShow(QString::fromUtf8(listing.text)));
        }
        return map;
    };
    FakeCommandRunner noTools;  // the bus alone: a manager missing from it lists nothing
    SystemdServiceJobs overBus(noTools, &SystemdServiceJobs::defaultBuses);
    QProcessCommandRunner runner;
    SystemdServiceJobs throughSystemctl(runner, noBuses);
    // A service may start or stop between the two listings; a few tries settle it.
    QHash<Pid, QString> bus, systemctl;
    for (int attempt = 0; attempt < 3 && (attempt == 0 || bus != systemctl); ++attempt) {
        bus = mainPids(overBus);
        systemctl = mainPids(throughSystemctl);
    }
    EXPECT_FALSE(bus.isEmpty());
    EXPECT_EQ(bus, systemctl);
}

#include "SystemdServiceJobsTest.moc"
