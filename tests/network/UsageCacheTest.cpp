#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "network/UsageCache.h"

using namespace zelvar;

namespace {

class UsageCacheTest : public ::testing::Test {
protected:
    QString write(const QByteArray& contents) {
        QFile file(m_file);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write(contents);
        return m_file;
    }
    QList<CachedAppUsage> loadDay(const QByteArray& dayObject) {
        return UsageCache::load(write(R"({"dates": {"2026-11-22": )" + dayObject + "}}"),
                                "2026-11-22");
    }

    QTemporaryDir m_dir;
    QString m_file = m_dir.filePath("usage-by-date.json");
};

}  // namespace

TEST_F(UsageCacheTest, EveryBadShapeGivesNothing) {
    EXPECT_TRUE(UsageCache::load(m_dir.filePath("missing.json"), "2026-11-22").isEmpty());
    EXPECT_TRUE(UsageCache::load(write("not json"), "2026-11-22").isEmpty());
    EXPECT_TRUE(UsageCache::load(write(R"([{"dates": {}}])"), "2026-11-22").isEmpty());
    EXPECT_TRUE(UsageCache::load(write(R"({"dates": []})"), "2026-11-22").isEmpty());
    EXPECT_TRUE(UsageCache::load(write(R"({"dates": {"2026-11-21": {"a": {"received": 5}}}})"),
                                 "2026-11-22")
                    .isEmpty());
    EXPECT_TRUE(loadDay(R"(["a"])").isEmpty());
}

TEST_F(UsageCacheTest, ReadsCountsByTheRulesOfTheFile) {
    const QList<CachedAppUsage> usages = loadDay(R"({
        "number instead": 7,
        "only received": {"received": 5},
        "negative": {"received": -5, "sent": 0},
        "fraction": {"received": 1.9, "sent": "12"},
        "   ": {"received": 100, "sent": 100},
        "negative sent": {"received": 3, "sent": -4},
        "empty": {},
        "beyond a double": {"received": 9007199254740993}
    })");
    const QList<CachedAppUsage> expected = {
        {"beyond a double", 9007199254740993ULL, 0},
        {"only received", 5, 0},
        {"negative sent", 3, 0},
        {"fraction", 1, 0},
    };
    EXPECT_EQ(usages, expected);
}

TEST_F(UsageCacheTest, MergesTrimmedNamesAndSortsByTotalStably) {
    const QList<CachedAppUsage> usages = loadDay(R"({
        "small": {"received": 1, "sent": 1},
        " firefox ": {"received": 1000, "sent": 10},
        "firefox": {"received": 500, "sent": 5},
        "\tfirefox\n": {"received": 1, "sent": 1},
        "tie a": {"received": 2, "sent": 0},
        "big": {"received": 9000000000000, "sent": 1}
    })");
    ASSERT_EQ(usages.size(), 4);
    EXPECT_EQ(usages[0], (CachedAppUsage{"big", 9000000000000, 1}));
    EXPECT_EQ(usages[1], (CachedAppUsage{"firefox", 1501, 16}));
    EXPECT_EQ(usages[1].totalBytes(), 1517u);
    // Equal totals keep the order in which their names first appeared.
    EXPECT_EQ(usages[2].totalBytes(), 2u);
    EXPECT_EQ(usages[3].totalBytes(), 2u);
}

TEST(UsageCacheDateTest, CalendarDayIsTheLocalOne) {
    const QDateTime instant(QDate(2026, 3, 1), QTime(2, 30), QTimeZone::utc());
    EXPECT_EQ(UsageCache::calendarDate(instant, 0, QTimeZone::utc()), "2026-03-01");
    EXPECT_EQ(UsageCache::calendarDate(instant, -1, QTimeZone::utc()), "2026-02-28");
    // Half past two in London is still the evening before in New York.
    const QTimeZone newYork("America/New_York");
    ASSERT_TRUE(newYork.isValid());
    EXPECT_EQ(UsageCache::calendarDate(instant, 0, newYork), "2026-02-28");
    EXPECT_EQ(UsageCache::calendarDate(instant, -1, newYork), "2026-02-27");
    EXPECT_EQ(UsageCache::calendarDate(instant, 1, QTimeZone("Asia/Tokyo")), "2026-03-02");
}
