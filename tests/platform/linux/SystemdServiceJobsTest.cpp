#include <gtest/gtest.h>

#include <QFileInfo>

#include "platform/linux/SystemdServiceJobs.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/QtPrinters.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

const QString kSystem =
    QStringLiteral("/usr/bin/systemctl show --state=running --property=Id,MainPID *.service");
const QString kUser = QStringLiteral(
    "/usr/bin/systemctl --user show --state=running --property=Id,MainPID *.service");

}  // namespace

TEST(SystemdServiceJobs, AsksBothManagersAndSkipsOneThatCantAnswer) {
    LogCapture log;
    FakeCommandRunner runner;
    runner.respond(kSystem, "Id=ssh.service\nMainPID=612\n");
    runner.respond(kUser, "Id=pipewire.service\nMainPID=1402\n");
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
    bare.respond(kSystem, "", 1);
    EXPECT_TRUE(SystemdServiceJobs(bare).runningJobListings().isEmpty());
    EXPECT_EQ(bare.requests().size(), 2);
    bare.respond(kSystem, "Id=cron.service\nMainPID=588\n");  // still no user manager
    EXPECT_EQ(SystemdServiceJobs(bare).runningJobListings().size(), 1);
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(SystemdServiceJobsLive, RealSystemctlOnThisMachine) {
    QProcessCommandRunner runner;
    const QList<ServiceJobListing> listings = SystemdServiceJobs(runner).runningJobListings();
    // Without systemd as init (containers, CI) there is nothing to list.
    if (!QFileInfo::exists(QStringLiteral("/run/systemd/system"))) {
        EXPECT_TRUE(listings.isEmpty());
    } else {
        ASSERT_FALSE(listings.isEmpty());
        EXPECT_TRUE(listings[0].text.contains("MainPID="));
    }
}
