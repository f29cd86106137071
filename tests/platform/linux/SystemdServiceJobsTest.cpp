#include "platform/linux/SystemdServiceJobs.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "process/ServiceJobParsers.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

namespace {

SystemdServiceJobs::Buses noBuses() {
    return {QDBusConnection("no-system-bus"), QDBusConnection("no-user-bus")};
}

}  // namespace

TEST(SystemdServiceJobs, WithoutABusAsksBothManagersThroughSystemctl) {
    const QString system =
        "/usr/bin/systemctl show --state=running --property=Id,MainPID *.service";
    LogCapture log;
    FakeCommandRunner runner;
    runner.respond(system, "Id=ssh.service\nMainPID=612\n");
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
    // In a container the system manager complains and exits with 1; no user manager starts.
    FakeCommandRunner bare;
    bare.respond(system, "", 1);
    EXPECT_TRUE(SystemdServiceJobs(bare, noBuses).runningJobListings().isEmpty());
    EXPECT_EQ(bare.requests().size(), 2);
    bare.respond(system, "Id=cron.service\nMainPID=588\n");
    EXPECT_EQ(SystemdServiceJobs(bare, noBuses).runningJobListings().size(), 1);
    EXPECT_TRUE(log.lines().isEmpty());
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
    FakeCommandRunner noTools;  // the bus alone, with no tool to fall back on
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
    EXPECT_EQ(std::tuple(bus, noTools.requests().size()), std::tuple(systemctl, 0));
}
