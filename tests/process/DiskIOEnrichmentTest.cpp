#include "process/DiskIOEnrichment.h"
#include "support/Testing.h"

namespace {

// What was added to each writer of each window, then to each burst, by pid.
QStringList enrichments(const DiskIORead& read) {
    QStringList lines;
    const auto describe = [&](const auto& entry) {
        lines << QStringLiteral("%1: %2 %3/%4")
                     .arg(entry.pid.value_or(-1))
                     .arg(entry.parentName.value_or("-"), entry.immediateOrigin.shortLabel(),
                          entry.rootOrigin.shortLabel());
    };
    for (const WindowData& window : read.summary.value_or(DiskIOSummary()).windows) {
        std::for_each(window.topWriters.cbegin(), window.topWriters.cend(), describe);
    }
    std::for_each(read.bursts.cbegin(), read.bursts.cend(), describe);
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
    // A pid too wide for the system names no process, not the one of its low bits.
    const qint64 wide = qint64(1) << 33 | 300;
    DiskIORead read{
        DiskIOSummary{.timestamp = QDateTime::currentDateTimeUtc(),
                      .windows = {{.topWriters = {{.id = QUuid::createUuid(), .pid = 300},
                                                  {.pid = std::nullopt},
                                                  {.pid = 400}}},
                                  {.topWriters = {{.pid = 5000}, {.pid = wide}}}}},
        {{.id = QUuid::createUuid(), .pid = 300}, {.pid = std::nullopt}}};

    const DiskIORead enriched = enrichDiskIO(read, processes);
    EXPECT_EQ(
        enrichments(enriched),
        (QStringList{"300: systemd bash/Terminal", "-1: - /", "400: - service/service", "5000: - /",
                     QString::number(wide) + ": - /", "300: systemd bash/Terminal", "-1: - /"}));
    // Everything else is kept as it was read.
    EXPECT_EQ(enriched.summary->timestamp, read.summary->timestamp);
    EXPECT_EQ(enriched.summary->windows[0].topWriters[0].id,
              read.summary->windows[0].topWriters[0].id);
    EXPECT_EQ(enriched.bursts[0].id, read.bursts[0].id);

    read.summary.reset();  // the bursts are enriched all the same
    EXPECT_EQ(enrichments(enrichDiskIO(read, processes)),
              (QStringList{"300: systemd bash/Terminal", "-1: - /"}));
}
