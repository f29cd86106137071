#include <gtest/gtest.h>

#include <QFileInfo>

#include "platform/QProcessCommandRunner.h"
#include "platform/linux/SystemdServiceJobs.h"
#include "support/FakeCommandRunner.h"
#include "support/LogCapture.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

const QString kSystem =
    QStringLiteral("/usr/bin/systemctl show --state=running --property=Id,MainPID *.service");
const QString kUser = QStringLiteral(
    "/usr/bin/systemctl --user show --state=running --property=Id,MainPID *.service");

}  // namespace

TEST(SystemdServiceJobs, AsksTheSystemAndTheUserManagerForRunningServices) {
    FakeCommandRunner runner;
    runner.respond(kSystem, "Id=ssh.service\nMainPID=612\n");
    runner.respond(kUser, "Id=pipewire.service\nMainPID=1402\n");
    SystemdServiceJobs jobs(runner);
    const QList<ServiceJobListing> listings = jobs.runningJobListings();
    ASSERT_EQ(listings.size(), 2);
    EXPECT_EQ(listings[0].format, ServiceJobListing::Format::SystemdShow);
    EXPECT_EQ(listings[0].text, "Id=ssh.service\nMainPID=612\n");
    EXPECT_EQ(listings[1].text, "Id=pipewire.service\nMainPID=1402\n");
    for (const CommandRequest& request : runner.requests()) {
        ASSERT_TRUE(request.timeoutSeconds.has_value());  // a hung bus can't stall the cycle
        EXPECT_EQ(request.stderrMode, CommandRequest::Stderr::Discarded);
    }
}

TEST(SystemdServiceJobs, NoSystemdOrNoUserBusGivesNothingAndSaysNothing) {
    LogCapture log;
    FakeCommandRunner runner;
    // What systemctl does in a container: a complaint on standard error, exit status 1.
    runner.respond(kSystem, "", 1);
    SystemdServiceJobs jobs(runner);  // the user command isn't answered: it can't start
    EXPECT_TRUE(jobs.runningJobListings().isEmpty());
    EXPECT_EQ(runner.requests().size(), 2);

    runner.respond(kSystem, "Id=cron.service\nMainPID=588\n");
    EXPECT_EQ(jobs.runningJobListings().size(), 1);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(SystemdServiceJobs, RealSystemctlOnThisMachine) {
    QProcessCommandRunner runner;
    SystemdServiceJobs jobs(runner);
    const QList<ServiceJobListing> listings = jobs.runningJobListings();
    // Without systemd as init (containers, CI) there is nothing to list.
    if (!QFileInfo::exists(QStringLiteral("/run/systemd/system"))) {
        EXPECT_TRUE(listings.isEmpty());
    } else {
        ASSERT_FALSE(listings.isEmpty());
        EXPECT_TRUE(listings[0].text.contains("MainPID="));
    }
}
