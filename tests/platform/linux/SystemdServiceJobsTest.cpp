#include "platform/linux/SystemdServiceJobs.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

TEST(SystemdServiceJobs, AsksBothManagersAndSkipsOneThatCantAnswer) {
    const QString system =
        "/usr/bin/systemctl show --state=running --property=Id,MainPID *.service";
    LogCapture log;
    FakeCommandRunner runner;
    runner.respond(system, "Id=ssh.service\nMainPID=612\n");
    runner.respond("/usr/bin/systemctl --user show --state=running --property=Id,MainPID *.service",
                   "Id=pipewire.service\nMainPID=1402\n");
    const QList<ServiceJobListing> listings = SystemdServiceJobs(runner).runningJobListings();
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
    EXPECT_TRUE(SystemdServiceJobs(bare).runningJobListings().isEmpty());
    EXPECT_EQ(bare.requests().size(), 2);
    bare.respond(system, "Id=cron.service\nMainPID=588\n");
    EXPECT_EQ(SystemdServiceJobs(bare).runningJobListings().size(), 1);
    EXPECT_TRUE(log.lines().isEmpty());
}
