#include "app/report/ReportOptions.h"
#include "support/Testing.h"

TEST(ReportOptions, FlagsAndValuesInBothSpellingsAndWhatIsRejected) {
    QString error;
    const auto options = ReportOptions::parse({"--json", "--cycles", "3", "--interval=4.5"},
                                              {"cycles", "interval"}, &error);
    ASSERT_TRUE(options.has_value()) << error.toStdString();
    EXPECT_TRUE(options->flag("json"));
    EXPECT_FALSE(options->flag("verbose"));
    EXPECT_EQ(options->number("cycles", 2, 1, 10), 3.0);
    EXPECT_EQ(options->number("interval", 0, 0, 10), 4.5);
    EXPECT_EQ(options->number("depth", 7, 0, 10), 7.0);
    EXPECT_FALSE(options->number("cycles", 2, 4, 10).has_value());  // out of range

    EXPECT_FALSE(ReportOptions::parse({"json"}, {}, &error).has_value());
    EXPECT_TRUE(error.contains("json"));
    EXPECT_FALSE(ReportOptions::parse({"--cycles"}, {"cycles"}, &error).has_value());
    EXPECT_TRUE(error.contains("needs a value"));
    EXPECT_FALSE(ReportOptions::parse({"--json=yes"}, {}, &error).has_value());
    const auto bad = ReportOptions::parse({"--cycles", "many"}, {"cycles"}, &error);
    ASSERT_TRUE(bad.has_value());
    EXPECT_FALSE(bad->number("cycles", 2, 1, 10).has_value());
}
