#include <gtest/gtest.h>

#include "network/NettopParser.h"
#include "support/Fixture.h"

using namespace zelvar;
using namespace zelvar::test;

TEST(NettopParserTest, ReadsTheRowsBehindTheTimeColumnAndSkipsMalformedOnes) {
    const ProcessCounterMap counters = NettopParser::parse(
        "\n\n00:00:00 header.1 10 20\n"  // the first line is the header, whatever it says
        "00:34:29.230774 apsd.590 5542 34103\n"
        "\t00:34:29.230857   mDNSResponder.690\t\t49631891   34126347  \n"
        "t Google  Chrome H.1132 17611507 1063785\n"  // blanks inside the label become one
        "t com.apple.WebKi.1790 5 6\n"                // the label is cut at its last dot
        "t a.1 10 20\n"
        "t a.01 50 60\n"                     // the same key again ("01" is pid 1) replaces it
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
        "t max.7 18446744073709551615 0");   // no final newline
    const ProcessCounterMap expected{
        {"apsd.590", {"apsd", 590, 5542, 34103}},
        {"mDNSResponder.690", {"mDNSResponder", 690, 49631891, 34126347}},
        {"Google Chrome H.1132", {"Google Chrome H", 1132, 17611507, 1063785}},
        {"com.apple.WebKi.1790", {"com.apple.WebKi", 1790, 5, 6}},
        {"a.1", {"a", 1, 50, 60}},
        {"max.7", {"max", 7, 18446744073709551615ULL, 0}}};
    EXPECT_EQ(counters, expected);
}

TEST(NettopParserTest, RealTableWithTheTimeColumnAdded) {
    // A real `nettop -P -x -l` table captured without the time column: with a time stamp put
    // in front of every row, each of its 39 processes parses, blanks and cut labels included.
    QString withTime;
    for (const QString& line : readFixture("network/nettop-P-x-l-J-bytes-table-macos.txt")
                                   .split('\n', Qt::SkipEmptyParts)) {
        withTime += (withTime.isEmpty() ? "" : "00:34:29.230774 ") + line + '\n';
    }
    const ProcessCounterMap counters = NettopParser::parse(withTime);
    EXPECT_EQ(counters.size(), 39);
    EXPECT_EQ(counters.value("Signal Helper (.1069"),
              (ProcessCounter{"Signal Helper (", 1069, 231681, 95930}));
    EXPECT_EQ(counters.value("launchd.1"), (ProcessCounter{"launchd", 1, 0, 0}));
}
