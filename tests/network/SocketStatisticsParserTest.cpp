#include <gtest/gtest.h>

#include "network/SocketStatisticsParser.h"
#include "support/Fixture.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(SocketStatisticsParserTest, RealCaptures) {
    const std::pair<const char*, ProcessCounterMap> cases[] = {
        // Two loopback connections of a forked python: each socket has two owners, the child
        // listed first, and the lowest pid counts. 100000 + 5000 each way, and 1234 over IPv6.
        {"ss-tinpH-debian12-loopback.txt", {{"python3.15955", {"python3", 15955, 106234, 106234}}}},
        {"ss-tinp-netperf-ipv6.txt", {{"netperf.58010", {"netperf", 58010, 0, 467756}}}},
        // Without -p there are no owners; a counter line with no socket line above is ignored.
        {"ss-int-state-established.txt", {}},
        {"ss-tinp-infoline-only.txt", {}},
    };
    for (const auto& [fixture, expected] : cases) {
        SCOPED_TRACE(fixture);
        EXPECT_EQ(SocketStatisticsParser::parse(readFixture(QString("network/") + fixture)),
                  expected);
    }
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
        "\t cubic bytes_sent:999999 bytes_received:999999\n"
        // Counters on the socket line itself, and odd names.
        "ESTAB 0 0 a:1 b:2 users:((\"a,(b)\",pid=3,fd=4)) bytes_sent:5 bytes_received:6\n"
        "ESTAB 0 0 a:1 b:2 users:((\"x\",pid=8,fd=4))\n"
        "\t cubic xbytes_sent:999 **bytes_received:1**");  // not counters, merely alike
    const ProcessCounterMap expected{{"Web Content.7", {"Web Content", 7, 2500, 150}},
                                     {"ssh.9", {"ssh", 9, 88, 77}},
                                     {"curl.11", {"curl", 11, 0, 0}},
                                     {"a,(b).3", {"a,(b)", 3, 6, 5}},
                                     {"x.8", {"x", 8, 0, 0}}};
    EXPECT_EQ(counters, expected);
}
