#include <gtest/gtest.h>

#include "platform/qt/ToolNetworkSources.h"
#include "support/FakePorts.h"
#include "support/QtPrinters.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(ToolNetworkSourcesTest, EachToolRunsWithItsExactCommandLineAndNoTimeOut) {
    FakeCommandRunner runner;
    runner.respond("/usr/bin/nettop -P -x -J bytes_in,bytes_out -l 1", "nettop text", 1);
    runner.respond("/bin/ss -tinpH", "ss text");
    runner.respond("/usr/sbin/networksetup -getairportnetwork en0",
                   "Current Wi-Fi Network: Caf\xc3\xa9\n");

    const ProcessNetworkReading nettop = NettopProcessNetworkSource(runner).read();
    const ProcessNetworkReading ss = SocketStatisticsProcessNetworkSource(runner).read();
    const NetworkNameReading name = AirportNetworkNameSource(runner).read();
    // The exit status isn't looked at.
    EXPECT_EQ(std::tuple(nettop.grammar, nettop.text, ss.grammar, ss.text, name.form, name.text),
              std::tuple(ProcessNetworkReading::Grammar::Nettop, "nettop text",
                         ProcessNetworkReading::Grammar::SocketStatistics, "ss text",
                         NetworkNameReading::Form::AirportToolOutput,
                         QStringLiteral("Current Wi-Fi Network: Café\n")));
    // A hung tool holds up its sample rather than losing it.
    for (const CommandRequest& request : runner.requests()) {
        EXPECT_FALSE(request.timeoutSeconds.has_value()) << request.program.toStdString();
    }

    runner.respond("/usr/sbin/networksetup -getairportnetwork en0", "Current \xff\xfe network");
    FakeCommandRunner none;
    EXPECT_TRUE(AirportNetworkNameSource(runner).read().text.isEmpty() &&
                NettopProcessNetworkSource(none).read().text.isEmpty() &&
                AirportNetworkNameSource(none).read().text.isEmpty());
}
