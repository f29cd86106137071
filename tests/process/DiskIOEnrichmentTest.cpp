#include "process/DiskIOEnrichment.h"
#include "support/Testing.h"

namespace {

WriterEntry writer(std::optional<qint64> pid) {
    return {.id = QUuid::createUuid(), .pid = pid};
}

DiskIOBurst burst(std::optional<qint64> pid) {
    return {.id = QUuid::createUuid(), .pid = pid};
}

template <typename Entry>
QString enrichment(const Entry& entry) {
    return entry.parentName.value_or("-") + " " + entry.immediateOrigin.fullLabel() + " / " +
           entry.rootOrigin.fullLabel();
}

// What was added to each writer of each window, then to each burst.
QStringList enrichments(const DiskIORead& read) {
    QStringList lines;
    for (const WindowData& window : read.summary.value_or(DiskIOSummary()).windows) {
        for (const WriterEntry& writer : window.topWriters) {
            lines << window.window + ": " + enrichment(writer);
        }
    }
    for (const DiskIOBurst& burst : read.bursts) {
        lines << "burst: " + enrichment(burst);
    }
    return lines;
}

}  // namespace

TEST(DiskIOEnrichment, AddsParentAndOriginsOfLiveProcessesToWritersAndBursts) {
    const auto backup = ProcessOrigin::launchAgent("backup.service");
    const QList<ProcessInfo> processes{
        {1, 0, "systemd", 0, 0, {}, ProcessOrigin::system(), ProcessOrigin::system()},
        {300, 1, "rsync", 0, 0, {}, ProcessOrigin::cli("bash"), ProcessOrigin::gui("Terminal")},
        {400, 999, "orphan", 0, 0, {}, backup, backup},
    };
    const DiskIOSummary summary{
        .timestamp = QDateTime::currentDateTimeUtc(),
        .windows = {{.window = "1m",
                     .topWriters = {writer(300), writer(std::nullopt), writer(400), writer(5000)}},
                    // A pid that doesn't fit the system's names no process, not its low bits.
                    {.window = "5m", .topWriters = {writer(qint64(1) << 33 | 300)}}}};
    DiskIORead read{summary, {burst(300), burst(std::nullopt)}};

    const DiskIORead enriched = enrichDiskIO(read, processes);
    EXPECT_EQ(enrichments(enriched),
              (QStringList{"1m: systemd CLI (bash) / GUI App: Terminal", "1m: - Unknown / Unknown",
                           "1m: - Launch Agent: backup.service / Launch Agent: backup.service",
                           "1m: - Unknown / Unknown", "5m: - Unknown / Unknown",
                           "burst: systemd CLI (bash) / GUI App: Terminal",
                           "burst: - Unknown / Unknown"}));
    // Everything else is kept as it was read.
    EXPECT_EQ(enriched.summary->timestamp, summary.timestamp);
    EXPECT_EQ(enriched.summary->windows[0].topWriters[0].id, summary.windows[0].topWriters[0].id);
    EXPECT_EQ(enriched.bursts[1].id, read.bursts[1].id);

    read.summary.reset();  // the bursts are enriched all the same
    EXPECT_EQ(enrichments(enrichDiskIO(read, processes)),
              (QStringList{"burst: systemd CLI (bash) / GUI App: Terminal",
                           "burst: - Unknown / Unknown"}));
}
