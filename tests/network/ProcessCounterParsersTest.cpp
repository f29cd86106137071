#include "network/NettopParser.h"
#include "network/SocketCounterSum.h"
#include "network/SocketStatisticsParser.h"
#include "support/Fixture.h"
#include "support/Testing.h"

TEST(NettopParserTest, ReadsTheRowsBehindTheTimeColumnAndSkipsMalformedOnes) {
    const ProcessCounterMap counters = NettopParser::parse(
        "\n\n00:00:00 header.1 10 20\n"  // the first line is the header, whatever it says
        "\t00:34:29.230857   mDNSResponder.690\t\t49631891   34126347  \n"
        "t Google  Chrome H.1132 17611507 1063785\n"  // blanks inside the label become one
        "t com.apple.WebKi.1790 5 6\n"                // the label is cut at its last dot
        "t a.1 10 20\n"
        "t a.01 50 60\n"  // the same key again ("01" is pid 1) replaces it
        "lonely\n"
        "t 10 20\n"
        "t nodot 10 20\n"
        "t .42 10 20\n"
        "t name.4x 10 20\n"
        "t name. 12 10 20\n"
        "t minus.2 10 -20\n"
        "t huge.3 18446744073709551616 0\n"
        "t max.7 18446744073709551615 0");
    const ProcessCounterMap expected{
        {"mDNSResponder.690", {"mDNSResponder", 690, 49631891, 34126347}},
        {"Google Chrome H.1132", {"Google Chrome H", 1132, 17611507, 1063785}},
        {"com.apple.WebKi.1790", {"com.apple.WebKi", 1790, 5, 6}},
        {"a.1", {"a", 1, 50, 60}},
        {"max.7", {"max", 7, 18446744073709551615ULL, 0}}};
    EXPECT_EQ(counters, expected);
}

TEST(SocketStatisticsParserTest, RealLoopbackCapture) {
    // A forked python's loopback connections: of each socket's two owners the lowest pid counts.
    EXPECT_EQ(SocketStatisticsParser::parse(readFixture("network/ss-tinpH-debian12-loopback.txt")),
              (ProcessCounterMap{{"python3.15955", {"python3", 15955, 106234, 106234}}}));
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

TEST(SocketCounterSumTest, SumsEachSocketOnceForItsLowestNamedOwner) {
    constexpr quint64 kMax = std::numeric_limits<quint64>::max();
    const ProcessCounterMap counters = SocketCounterSum::sum({
        {{{7, "web"}}, 2000, 100},
        {{{12, "web"}, {7, "web"}}, 500, 50},  // shared after a fork
        {{{3, ""}, {9, "ssh"}}, 88, 77},       // a nameless owner doesn't count
        {{}, 5, 5},                            // another user's
        {{{7, "renamed"}}, 1, 1},              // the same pid under another name is apart
        {{{7, "web"}}, kMax, 0},
    });
    EXPECT_EQ(counters, (ProcessCounterMap{{"web.7", {"web", 7, kMax, 150}},
                                           {"ssh.9", {"ssh", 9, 88, 77}},
                                           {"renamed.7", {"renamed", 7, 1, 1}}}));
}
