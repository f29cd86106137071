#include <gtest/gtest.h>

#include "network/SocketStatisticsParser.h"
#include "support/Fixture.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(SocketStatisticsParserTest, SocketSharedAfterForkCountsOnceForTheLowestPid) {
    // Captured on Debian 12: a python process with two loopback connections (IPv4 and IPv6),
    // forked, so that every socket has two owners and ss lists the child first.
    const ProcessCounterMap counters =
        SocketStatisticsParser::parse(readFixture("network/ss-tinpH-debian12-loopback.txt"));
    ASSERT_EQ(counters.keys(), QStringList{"python3.15955"});
    // 100000 + 5000 each way over IPv4, 1234 over IPv6; received and sent both counted.
    EXPECT_EQ(counters.value("python3.15955"),
              (ProcessCounter{"python3", 15955, 5000 + 100000 + 1234, 100000 + 5000 + 1234}));
}

TEST(SocketStatisticsParserTest, NetperfSocketWithoutReceivedCounter) {
    const ProcessCounterMap counters =
        SocketStatisticsParser::parse(readFixture("network/ss-tinp-netperf-ipv6.txt"));
    EXPECT_EQ(counters.value("netperf.58010"), (ProcessCounter{"netperf", 58010, 0, 467756}));
    EXPECT_EQ(counters.size(), 1);
}

TEST(SocketStatisticsParserTest, OutputWithoutOwnersGivesNothing) {
    // Without -p there are no owners; a counter line with no socket line above is ignored.
    EXPECT_TRUE(SocketStatisticsParser::parse(readFixture("network/ss-int-state-established.txt"))
                    .isEmpty());
    EXPECT_TRUE(
        SocketStatisticsParser::parse(readFixture("network/ss-tinp-infoline-only.txt")).isEmpty());
    EXPECT_TRUE(SocketStatisticsParser::parse("").isEmpty());
}

TEST(SocketStatisticsParserTest, SumsSocketsPerProcessAndKeepsProcessesApart) {
    const ProcessCounterMap counters = SocketStatisticsParser::parse(
        "State Recv-Q Send-Q Local Address:Port Peer Address:Port Process\n"
        "ESTAB 0 0 10.0.0.2:50000 1.2.3.4:443 users:((\"Web Content\",pid=7,fd=30))\n"
        "\t cubic bytes_sent:100 bytes_acked:101 bytes_received:2000 segs_out:3\n"
        "ESTAB 0 0 10.0.0.2:50001 1.2.3.4:443 users:((\"Web Content\",pid=7,fd=31))\n"
        "\t cubic bytes_sent:50 bytes_received:500\n"
        "ESTAB 0 0 10.0.0.2:50002 5.6.7.8:22 users:((\"ssh\",pid=9,fd=3))\n"
        "\t cubic bytes_acked:77 bytes_received:88\n"  // an old kernel: no bytes_sent
        "SYN-SENT 0 1 10.0.0.2:50003 9.9.9.9:80 users:((\"curl\",pid=11,fd=5))\n"
        "ESTAB 0 0 10.0.0.2:50004 9.9.9.9:80\n"  // another user's socket
        "\t cubic bytes_sent:999999 bytes_received:999999\n");
    EXPECT_EQ(counters.value("Web Content.7"), (ProcessCounter{"Web Content", 7, 2500, 150}));
    EXPECT_EQ(counters.value("ssh.9"), (ProcessCounter{"ssh", 9, 88, 77}));
    EXPECT_EQ(counters.value("curl.11"), (ProcessCounter{"curl", 11, 0, 0}));
    EXPECT_EQ(counters.size(), 3);
}

TEST(SocketStatisticsParserTest, CountersOnTheSocketLineAndOddNames) {
    const ProcessCounterMap counters = SocketStatisticsParser::parse(
        "ESTAB 0 0 a:1 b:2 users:((\"a,(b)\",pid=3,fd=4)) bytes_sent:5 bytes_received:6\n"
        "ESTAB 0 0 a:1 b:2 users:((\"x\",pid=8,fd=4))\n"
        "\t cubic xbytes_sent:999 **bytes_received:1**\n");
    EXPECT_EQ(counters.value("a,(b).3"), (ProcessCounter{"a,(b)", 3, 6, 5}));
    // Tokens that merely contain a counter's name aren't counters.
    EXPECT_EQ(counters.value("x.8"), (ProcessCounter{"x", 8, 0, 0}));
}
