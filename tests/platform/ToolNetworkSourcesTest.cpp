#include <gtest/gtest.h>

#include "platform/qt/ToolNetworkSources.h"
#include "support/FakeCommandRunner.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(ToolNetworkSourcesTest, EachToolRunsWithItsExactCommandLineAndNoTimeOut) {
    FakeCommandRunner runner;
    runner.respond("/usr/bin/nettop -P -x -J bytes_in,bytes_out -l 1", "nettop text", 1);
    runner.respond("/bin/ss -tinpH", "ss text");
    runner.respond("/usr/sbin/networksetup -getairportnetwork en0",
                   "Current Wi-Fi Network: Caf\xc3\xa9\n");

    const ProcessNetworkReading nettop = NettopProcessNetworkSource(runner).read();
    EXPECT_EQ(nettop.grammar, ProcessNetworkReading::Grammar::Nettop);
    EXPECT_EQ(nettop.text, "nettop text");  // the exit status isn't looked at
    const ProcessNetworkReading ss = SocketStatisticsProcessNetworkSource(runner).read();
    EXPECT_EQ(ss.grammar, ProcessNetworkReading::Grammar::SocketStatistics);
    EXPECT_EQ(ss.text, "ss text");
    const NetworkNameReading name = AirportNetworkNameSource(runner).read();
    EXPECT_EQ(name.form, NetworkNameReading::Form::AirportToolOutput);
    EXPECT_EQ(name.text, QStringLiteral("Current Wi-Fi Network: Café\n"));
    // A hung tool holds up its sample rather than losing it.
    for (const CommandRequest& request : runner.requests()) {
        EXPECT_FALSE(request.timeoutSeconds.has_value()) << request.program.toStdString();
    }

    // Undecodable output, or a tool that doesn't start, gives empty text.
    runner.respond("/usr/sbin/networksetup -getairportnetwork en0", "Current \xff\xfe network");
    EXPECT_TRUE(AirportNetworkNameSource(runner).read().text.isEmpty());
    FakeCommandRunner none;
    EXPECT_TRUE(NettopProcessNetworkSource(none).read().text.isEmpty());
    EXPECT_TRUE(AirportNetworkNameSource(none).read().text.isEmpty());
}
