#include <gtest/gtest.h>

#include "process/DiskIOEnrichment.h"

using namespace zelvar;

namespace {

WriterEntry writer(std::optional<qint64> pid, const QString& name) {
    return {.id = QUuid::createUuid(), .pid = pid, .name = name};
}

DiskIOBurst burst(std::optional<qint64> pid, DiskIOBurst::BurstSource source) {
    return {.id = QUuid::createUuid(), .source = source, .pid = pid};
}

}  // namespace

TEST(DiskIOEnrichment, AddsParentAndOriginsToLiveWritersAndBursts) {
    const auto backup = ProcessOrigin::launchAgent("backup.service");
    const QList<ProcessInfo> processes{
        {1, 0, "systemd", 0, 0, {}, ProcessOrigin::system(), ProcessOrigin::system()},
        {300, 1, "rsync", 0, 0, {}, ProcessOrigin::cli("bash"), ProcessOrigin::gui("Terminal")},
        {400, 999, "orphan", 0, 0, {}, backup, backup},
    };
    DiskIORead read;
    DiskIOSummary summary;
    summary.timestamp = QDateTime::currentDateTimeUtc();
    summary.rusageIntervalS = 12;
    summary.rusageOverheadPct = 0.5;
    WindowData minute;
    minute.window = "1m";
    minute.topWriters = {writer(300, "rsync"), writer(std::nullopt, "kernel"),
                         writer(400, "orphan"), writer(5000, "ended"),
                         writer(qint64(1) << 33 | 300, "too wide")};
    minute.topDirectories = {{QUuid::createUuid(), "/var", 1.0}};
    WindowData empty;
    empty.window = "5m";
    summary.windows = {minute, empty};
    read.summary = summary;
    read.bursts = {burst(300, DiskIOBurst::BurstSource::Process),
                   burst(std::nullopt, DiskIOBurst::BurstSource::Directory)};

    const DiskIORead enriched = enrichDiskIO(read, processes);
    ASSERT_TRUE(enriched.summary);
    EXPECT_EQ(enriched.summary->timestamp, summary.timestamp);
    EXPECT_EQ(enriched.summary->rusageIntervalS, 12);
    EXPECT_EQ(enriched.summary->rusageOverheadPct, 0.5);
    ASSERT_EQ(enriched.summary->windows.size(), 2);
    const QList<WriterEntry>& writers = enriched.summary->windows[0].topWriters;
    ASSERT_EQ(writers.size(), 5);
    EXPECT_EQ(writers[0].id, minute.topWriters[0].id);
    EXPECT_EQ(writers[0].parentName, "systemd");
    EXPECT_EQ(writers[0].immediateOrigin, ProcessOrigin::cli("bash"));
    EXPECT_EQ(writers[0].rootOrigin, ProcessOrigin::gui("Terminal"));
    EXPECT_FALSE(writers[1].parentName);
    EXPECT_EQ(writers[1].immediateOrigin, ProcessOrigin::unknown());
    // A live process whose parent isn't in the sample: origins, no parent.
    EXPECT_FALSE(writers[2].parentName);
    EXPECT_EQ(writers[2].immediateOrigin, backup);
    EXPECT_EQ(writers[3].rootOrigin, ProcessOrigin::unknown());
    EXPECT_FALSE(writers[4].parentName) << "a pid that doesn't fit names no process";
    EXPECT_EQ(enriched.summary->windows[0].topDirectories[0].path, "/var");
    EXPECT_EQ(enriched.summary->windows[1].window, "5m");

    ASSERT_EQ(enriched.bursts.size(), 2);
    EXPECT_EQ(enriched.bursts[0].parentName, "systemd");
    EXPECT_EQ(enriched.bursts[0].rootOrigin, ProcessOrigin::gui("Terminal"));
    EXPECT_FALSE(enriched.bursts[1].parentName);
    EXPECT_EQ(enriched.bursts[1].id, read.bursts[1].id);

    // No processes: everything as it was.
    const DiskIORead unchanged = enrichDiskIO(read, {});
    EXPECT_FALSE(unchanged.summary->windows[0].topWriters[0].parentName);
    EXPECT_EQ(unchanged.bursts[0].immediateOrigin, ProcessOrigin::unknown());

    // No summary: the bursts are enriched all the same.
    read.summary.reset();
    const DiskIORead burstsOnly = enrichDiskIO(read, processes);
    EXPECT_FALSE(burstsOnly.summary);
    EXPECT_EQ(burstsOnly.bursts[0].parentName, "systemd");
}
