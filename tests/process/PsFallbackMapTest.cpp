#include <gtest/gtest.h>

#include "process/PsFallbackMap.h"
#include "support/Fixture.h"

using namespace zelvar;

TEST(PsFallbackMap, KeepsWellFormedLinesAndSkipsTheRest) {
    const QByteArray text =
        "    1  12345\n"
        "  87 0\n"
        "abc 10\n"   // not a pid
        "  99\n"     // one field
        "100 12k\n"  // not a number
        "\n"
        "2147483648 5\n"  // pid past 32 bits
        "+-7 10\n"        // two signs
        "\t200\t  4096   extra\n"
        "300 9223372036854775807";  // no final newline, largest 64-bit size
    const auto map = parsePsFallbackMap(text);
    EXPECT_EQ(map.size(), 4);
    EXPECT_EQ(map.value(1), 12345);
    EXPECT_EQ(map.value(87), 0);
    EXPECT_EQ(map.value(200), 4096);
    EXPECT_EQ(map.value(300), 9223372036854775807LL);
    EXPECT_FALSE(map.contains(99));
    EXPECT_FALSE(map.contains(100));
    EXPECT_FALSE(map.contains(-7));
}

TEST(PsFallbackMap, ReadsEveryLineOfRealPsOutput) {
    const QByteArray text = test::readFixture("ps/ps-axo-pid-rss-debian12.txt").toUtf8();
    const auto map = parsePsFallbackMap(text);
    EXPECT_EQ(map.size(), text.count('\n'));
    EXPECT_TRUE(map.contains(1));
    EXPECT_GT(map.value(1), 0);
}
