#include <gtest/gtest.h>

#include <QTimeZone>

#include "common/IsoDate.h"

using namespace zelvar;

TEST(IsoDate, FormatsAndParsesWholeSecondsWithZOrAnOffset) {
    const QDateTime instant(QDate(2026, 3, 5), QTime(23, 4, 5), QTimeZone(3600));
    EXPECT_EQ(formatIsoDate(instant.addMSecs(987)), "2026-03-05T22:04:05Z");
    EXPECT_EQ(parseIsoDate("2026-03-05T22:04:05Z"), instant);
    EXPECT_EQ(parseIsoDate("2026-03-06T00:04:05+02:00"), instant);
    EXPECT_EQ(parseIsoDate("2026-03-05T21:04:05-01:00"), instant);
    for (const char* text :
         {"2026-03-05T22:04:05.123Z", "2026-03-05T22:04:05", "2026-03-05", "2026-02-30T10:00:00Z",
          "2026-03-05T24:00:00Z", "", "garbage", " 2026-03-05T22:04:05Z"}) {
        EXPECT_FALSE(parseIsoDate(text).has_value()) << text;
    }
}
