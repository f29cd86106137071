#include <gtest/gtest.h>

#include "network/NettopParser.h"
#include "support/Fixture.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(NettopParserTest, ReadsTheLabelAndTheLastTwoFieldsBehindTheTimeColumn) {
    const ProcessCounterMap counters = NettopParser::parse(
        "time interface bytes_in bytes_out\n"
        "00:34:29.230774 apsd.590 5542 34103\n"
        "\t00:34:29.230857   mDNSResponder.690\t\t49631891   34126347  \n"
        "00:34:29.230935 Google  Chrome H.1132 17611507 1063785\n");
    ASSERT_EQ(counters.size(), 3);
    EXPECT_EQ(counters.value("apsd.590"), (ProcessCounter{"apsd", 590, 5542, 34103}));
    EXPECT_EQ(counters.value("mDNSResponder.690"),
              (ProcessCounter{"mDNSResponder", 690, 49631891, 34126347}));
    // Runs of blanks inside the label become one blank.
    EXPECT_EQ(counters.value("Google Chrome H.1132"),
              (ProcessCounter{"Google Chrome H", 1132, 17611507, 1063785}));
}

TEST(NettopParserTest, HeaderIsSkippedWhateverItSays) {
    EXPECT_TRUE(NettopParser::parse("00:00:00 first.1 10 20\n").isEmpty());
    EXPECT_EQ(NettopParser::parse("\n\n00:00:00 first.1 10 20\n00:00:00 second.2 30 40").keys(),
              QStringList{"second.2"});
}

TEST(NettopParserTest, LabelIsCutAtItsLastDot) {
    const ProcessCounterMap counters = NettopParser::parse(
        "header\n"
        "t com.apple.WebKi.1790 5 6\n"
        "t two words.4242 10 20\n");
    EXPECT_EQ(counters.value("com.apple.WebKi.1790"),
              (ProcessCounter{"com.apple.WebKi", 1790, 5, 6}));
    EXPECT_EQ(counters.value("two words.4242"), (ProcessCounter{"two words", 4242, 10, 20}));
}

TEST(NettopParserTest, MalformedLinesAreSkippedAlone) {
    const ProcessCounterMap counters = NettopParser::parse(
        "header\n"
        "lonely\n"                           // no blank: no fields after the time
        "t 10 20\n"                          // two fields: no label
        "t nodot 10 20\n"                    // no dot in the label
        "t endsindot. 10 20\n"               // nothing behind the dot
        "t .42 10 20\n"                      // nothing before the dot
        "t name.4x 10 20\n"                  // pid not a number
        "t name. 12 10 20\n"                 // a blank before the pid
        "t fraction.1 1.5 20\n"              // a byte field with a fraction
        "t minus.2 10 -20\n"                 // or a minus sign
        "t huge.3 18446744073709551616 0\n"  // beyond 64 bits
        "t good.7 18446744073709551615 0\n");
    EXPECT_EQ(counters.keys(), QStringList{"good.7"});
    EXPECT_EQ(counters.value("good.7").inBytes, 18446744073709551615ULL);
}

TEST(NettopParserTest, LaterLineOfTheSameKeyReplacesTheEarlier) {
    const ProcessCounterMap counters =
        NettopParser::parse("header\nt a.1 10 20\nt a.1 30 40\nt a.01 50 60\n");
    ASSERT_EQ(counters.size(), 1);  // "01" is pid 1 as well
    EXPECT_EQ(counters.value("a.1"), (ProcessCounter{"a", 1, 50, 60}));
}

TEST(NettopParserTest, RealTableWithTheTimeColumnAdded) {
    // A real `nettop -P -x -l` table captured without the time column: with a time stamp put
    // in front of every row, each of its 39 processes parses, blanks and cut labels included.
    const QStringList lines =
        readFixture("network/nettop-P-x-l-J-bytes-table-macos.txt").split('\n');
    QString withTime = lines.first() + '\n';
    for (qsizetype i = 1; i < lines.size(); ++i) {
        if (!lines[i].trimmed().isEmpty()) {
            withTime += "00:34:29.230774 " + lines[i] + '\n';
        }
    }
    const ProcessCounterMap counters = NettopParser::parse(withTime);
    EXPECT_EQ(counters.size(), 39);
    EXPECT_EQ(counters.value("Google Chrome H.1132"),
              (ProcessCounter{"Google Chrome H", 1132, 17611507, 1063785}));
    EXPECT_EQ(counters.value("Signal Helper (.1069"),
              (ProcessCounter{"Signal Helper (", 1069, 231681, 95930}));
    EXPECT_EQ(counters.value("launchd.1"), (ProcessCounter{"launchd", 1, 0, 0}));
}
