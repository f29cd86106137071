#include <sys/stat.h>

#include "network/UsageCache.h"
#include "network/UsageFileReader.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

namespace {

QList<CachedAppUsage> load(const QByteArray& contents) {
    QTemporaryDir dir;
    QFile file(dir.filePath("usage-by-date.json"));
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size() &&
                file.flush());
    return UsageCache::load(file.fileName(), "2026-11-22");
}

}  // namespace

TEST(UsageCacheTest, EveryBadShapeGivesNothing) {
    EXPECT_TRUE(UsageCache::load("/nonexistent/usage-by-date.json", "2026-11-22").isEmpty());
    for (const char* contents : {"not json", R"([{"dates": {}}])", R"({"dates": []})",
                                 R"({"dates": {"2026-11-21": {"a": {"received": 5}}}})",
                                 R"({"dates": {"2026-11-22": ["a"]}})"}) {
        EXPECT_TRUE(load(contents).isEmpty()) << contents;
    }
}

TEST(UsageCacheTest, ReadsCountsMergesTrimmedNamesAndSortsByTotalStably) {
    // Equal totals keep the order in which their names first appeared.
    const QList<CachedAppUsage> usages = load(R"({"dates": {"2026-11-22": {
        "number instead": 7,
        "only received": {"received": 5},
        "negative": {"received": -5, "sent": 0},
        "fraction": {"received": 1.9, "sent": "12"},
        "   ": {"received": 100, "sent": 100},
        "beyond a double": {"received": 9007199254740993},
        "small": {"received": 1, "sent": 1},
        " firefox ": {"received": 1000, "sent": 10},
        "firefox": {"received": 500, "sent": 5},
        "tie a": {"received": 2, "sent": 0}
    }}})");
    EXPECT_EQ(usages, (QList<CachedAppUsage>{{"beyond a double", 9007199254740993ULL, 0},
                                             {"firefox", 1500, 15},
                                             {"only received", 5, 0},
                                             {"small", 1, 1},
                                             {"tie a", 2, 0},
                                             {"fraction", 1, 0}}));
    EXPECT_EQ(usages.value(1).totalBytes(), 1515u);
}

TEST(UsageCacheTest, CalendarDayIsTheLocalOne) {
    const QDateTime instant(QDate(2026, 3, 1), QTime(2, 30), QTimeZone::utc());
    const QTimeZone newYork("America/New_York");  // half past two in London is evening there
    EXPECT_EQ((QStringList{UsageCache::calendarDate(instant, 0, newYork),
                           UsageCache::calendarDate(instant, -1, newYork),
                           UsageCache::calendarDate(instant, 1, QTimeZone("Asia/Tokyo"))}),
              (QStringList{"2026-02-28", "2026-02-27", "2026-03-02"}));
}

// The reader of each sample parses the file again only when it or the day changed.
TEST(UsageCacheTest, TheSampleReaderSkipsAnUnchangedFileAndRefusesAFifoWithOneLine) {
    QTemporaryDir dir;
    const QString path = dir.filePath("usage-by-date.json");
    UsageFileReader reader(path);
    const auto write = [&](const QByteArray& contents) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(contents) == contents.size());
    };
    write(R"({"dates": {"2026-11-22": {"a": {"received": 5}}, "2026-11-23": {"b": {"sent": 1}}}})");
    EXPECT_EQ(reader.read("2026-11-22").value_or(QList<CachedAppUsage>{}).value(0).name, "a");
    EXPECT_FALSE(reader.read("2026-11-22").has_value());
    EXPECT_EQ(reader.read("2026-11-23").value_or(QList<CachedAppUsage>{}).value(0).name, "b");
    write(R"({"dates": {"2026-11-23": {"c": {"sent": 1}}}})");
    EXPECT_EQ(reader.read("2026-11-23").value_or(QList<CachedAppUsage>{}).value(0).name, "c");

    QFile::remove(path);
    ASSERT_EQ(mkfifo(QFile::encodeName(path).constData(), 0600), 0);
    LogCapture log;
    EXPECT_EQ(reader.read("2026-11-23"), QList<CachedAppUsage>{});
    EXPECT_EQ(reader.read("2026-11-23"), QList<CachedAppUsage>{});
    EXPECT_EQ(log.lines(),
              QStringList{"[UsageCache] Not reading " + path + ": not a regular file"});
}
