#include "power/BatteryPowerMonitor.h"
#include "power/WattlogCache.h"
#include "power/WattlogSampleFiles.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Testing.h"

namespace {

// A monitor on fakes whose clock starts at the real now, after the unavailable snapshot was
// made, so that the snapshot's frozen time lies behind the clock as it does in the app.
struct PowerFixture {
    PowerFixture()
        : clock((BatteryPowerSnapshot::unavailable(), QDateTime::currentDateTimeUtc())) {}

    BatteryPowerMonitor::Sources sources() {
        return {battery,
                clock,
                clock,
                commands,
                WattlogSampleFiles::batterySamplesFile(paths),
                WattlogSampleFiles::correlationSamplesFile(paths),
                powerLog,
                WattlogCache::defaultFile(paths)};
    }
    void writeBatterySample(double secondsAgo, int current) {
        const QString path = WattlogSampleFiles::batterySamplesFile(paths);
        QDir().mkpath(QFileInfo(path).path());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::Append));
        const double ts =
            static_cast<double>(clock.now().toMSecsSinceEpoch()) / 1000.0 - secondsAgo;
        file.write(QStringLiteral("{\"ts\": %1, \"current\": %2}\n")
                       .arg(ts, 0, 'f', 3)
                       .arg(current)
                       .toUtf8());
    }
    // Waits for the monitor's next published refresh.
    void waitForRefreshes(BatteryPowerMonitor& monitor, int count) {
        int seen = 0;
        const QMetaObject::Connection c =
            QObject::connect(&monitor, &BatteryPowerMonitor::refreshFinished, [&seen] { ++seen; });
        EXPECT_TRUE(processEventsUntil([&] { return seen >= count; }));
        QObject::disconnect(c);
    }

    QTemporaryDir home;
    FakePaths paths{home.path()};
    FakeClock clock;
    FakeBatteryRegistry battery;
    FakeCommandRunner commands;
    FakePowerLogSource powerLog;
};

const BatteryReading kDischarging{
    .percent = 80, .amperageMA = -1500, .voltageMV = 10000, .amperageScaleMaxMA = 3000};

}  // namespace

TEST(BatteryPowerMonitorTest, RefreshesAtOnceThenEveryFiveSecondsAsOneLoop) {
    PowerFixture f;
    f.battery.set(kDischarging);
    f.writeBatterySample(10, -600);
    BatteryPowerMonitor monitor(f.sources());
    EXPECT_EQ(monitor.snapshot(), BatteryPowerSnapshot::unavailable());

    monitor.start();
    monitor.start();
    f.waitForRefreshes(monitor, 1);
    EXPECT_EQ(f.battery.reads(), 1);
    EXPECT_EQ(monitor.snapshot().timestamp, f.clock.now());
    EXPECT_EQ(monitor.snapshot().percent, 80);
    ASSERT_EQ(monitor.recentBatterySamples().size(), 1);
    EXPECT_EQ(monitor.recentBatterySamples().first().current, -600);
    EXPECT_EQ(f.clock.pendingCallbacks(), 1u);  // one re-armed single-shot, not two

    f.clock.advance(4.9);
    EXPECT_EQ(f.battery.reads(), 1);
    f.clock.advance(0.1);
    f.waitForRefreshes(monitor, 1);
    EXPECT_EQ(f.battery.reads(), 2);

    // refreshNow runs beside the loop and arms nothing.
    monitor.refreshNow();
    f.waitForRefreshes(monitor, 1);
    EXPECT_EQ(f.battery.reads(), 3);
    EXPECT_EQ(f.clock.pendingCallbacks(), 1u);

    monitor.stop();
    f.clock.advance(30);
    QCoreApplication::processEvents();
    EXPECT_EQ(f.battery.reads(), 3);

    monitor.start();
    f.waitForRefreshes(monitor, 1);
    EXPECT_EQ(f.battery.reads(), 4);
    EXPECT_EQ(f.clock.pendingCallbacks(), 1u);
}

TEST(BatteryPowerMonitorTest, MenuTextPrefersAFreshSnapshotThenARecentSample) {
    PowerFixture f;
    f.battery.set(kDischarging);
    f.writeBatterySample(0, 3000);
    BatteryPowerMonitor monitor(f.sources());
    monitor.refreshNow();
    f.waitForRefreshes(monitor, 1);
    EXPECT_EQ(monitor.menuPowerRateText(), "-50%");  // the snapshot: 15 W of 30 W

    f.clock.advance(30);
    EXPECT_EQ(monitor.menuPowerRateText(), "-50%");
    f.clock.advance(1);
    EXPECT_EQ(monitor.menuPowerRateText(), "+100%");  // the daemon's sample, 31 s old
    f.clock.advance(569);
    EXPECT_EQ(monitor.menuPowerRateText(), "+100%");  // 600 s
    f.clock.advance(1);
    EXPECT_EQ(monitor.menuPowerRateText(), "-50%");  // 601 s: the stale snapshot again
}

TEST(BatteryPowerMonitorTest, WithoutABatteryTheDaemonsSampleOrZeroSpeaks) {
    PowerFixture f;
    BatteryPowerMonitor monitor(f.sources());
    monitor.refreshNow();
    f.waitForRefreshes(monitor, 1);
    EXPECT_EQ(monitor.snapshot(), BatteryPowerSnapshot::unavailable());
    EXPECT_EQ(monitor.snapshot().powerRateText(), "No reading");
    EXPECT_EQ(monitor.menuPowerRateText(), "0%");

    f.clock.advance(31);
    f.writeBatterySample(0, -750);
    monitor.refreshNow();
    f.waitForRefreshes(monitor, 1);
    EXPECT_EQ(monitor.menuPowerRateText(), "-25%");
}

TEST(BatteryPowerMonitorTest, RunCommandKeepsTheOutputOfAKilledToolAndDropsBadText) {
    FakeCommandRunner runner;
    runner.respond("/usr/bin/pmset -g log",
                   {.started = true, .timedOut = true, .standardOutput = "2026-01-15 Sleep"});
    EXPECT_EQ(BatteryPowerMonitor::runCommand(runner, "/usr/bin/pmset", {"-g", "log"}),
              "2026-01-15 Sleep");
    const CommandRequest request = runner.requests().first();
    EXPECT_EQ(request.timeoutSeconds, 25.0);
    EXPECT_EQ(request.killGraceSeconds, 0.2);
    EXPECT_EQ(request.pollStepSeconds, 0.05);
    EXPECT_EQ(request.stderrMode, CommandRequest::Stderr::Discarded);

    runner.respond("/usr/bin/pmset -g log", QByteArray("ok \xff\xfe", 5));
    EXPECT_EQ(BatteryPowerMonitor::runCommand(runner, "/usr/bin/pmset", {"-g", "log"}), "");
}

namespace {

// "2024-01-15 10:00:00 +0000 Sleep ..." for minute `minute` of the day.
QByteArray sleepLines(int from, int count) {
    QByteArray log;
    for (int minute = from; minute < from + count; ++minute) {
        log += QStringLiteral(
                   "2024-01-15 %1:%2:00 +0000 Sleep  Entering Sleep state due to 'Idle "
                   "Sleep'\n")
                   .arg(minute / 60, 2, 10, QChar('0'))
                   .arg(minute % 60, 2, 10, QChar('0'))
                   .toUtf8();
    }
    return log;
}

}  // namespace

TEST(BatteryPowerMonitorTest, HistoryLoadsOnDemandAndDropsAStaleLoad) {
    PowerFixture f;
    f.powerLog.state().lock()->log = PowerLogSource::Log::Pmset;
    f.commands.respond("/usr/bin/pmset -g log", sleepLines(0, 3));
    BatteryPowerMonitor monitor(f.sources());
    QList<double> progress;
    int published = 0;
    int finished = 0;
    QObject::connect(&monitor, &BatteryPowerMonitor::historyLoadProgressChanged,
                     [&] { progress << monitor.historyLoadProgress(); });
    QObject::connect(&monitor, &BatteryPowerMonitor::powerEventsChanged, [&] { ++published; });
    QObject::connect(&monitor, &BatteryPowerMonitor::historyLoadFinished, [&] { ++finished; });
    EXPECT_EQ(monitor.historyLoadProgress(), 0.0);

    monitor.loadWattlogHistoryIfNeeded();
    EXPECT_TRUE(monitor.isHistoryLoading());
    monitor.loadWattlogHistoryIfNeeded();  // one is under way
    monitor.reloadWattlogHistory();        // makes the first stale
    ASSERT_TRUE(processEventsUntil([&] { return finished == 2; }));
    EXPECT_EQ(published, 1);
    EXPECT_EQ(progress, (QList<double>{0.1, 1.0}));
    EXPECT_FALSE(monitor.isHistoryLoading());
    ASSERT_EQ(monitor.powerEvents().size(), 3);
    EXPECT_EQ(monitor.derivedData().stats.eventCount, 3);
    EXPECT_EQ(f.commands.requests().size(), 2);

    monitor.loadWattlogHistoryIfNeeded();  // events exist
    EXPECT_FALSE(monitor.isHistoryLoading());

    // The live tail takes up after the history's last event.
    f.commands.respond("/usr/bin/pmset -g log", sleepLines(0, 4));
    int polls = 0;
    QObject::connect(&monitor, &BatteryPowerMonitor::livePollFinished, [&] { ++polls; });
    monitor.startWattlogLiveTail();
    ASSERT_TRUE(processEventsUntil([&] { return polls == 1; }));
    EXPECT_EQ(monitor.powerEvents().size(), 4);
    EXPECT_EQ(monitor.liveLines().size(), 1);
}

TEST(BatteryPowerMonitorTest, LiveTailPollsEveryFifteenSecondsAndKeepsTheLast500Lines) {
    PowerFixture f;
    f.powerLog.state().lock()->log = PowerLogSource::Log::Pmset;
    f.commands.respond("/usr/bin/pmset -g log", sleepLines(0, 600));
    BatteryPowerMonitor monitor(f.sources());
    int polls = 0;
    QObject::connect(&monitor, &BatteryPowerMonitor::livePollFinished, [&] { ++polls; });

    // With no history the first poll, at once, brings in the whole log.
    monitor.startWattlogLiveTail();
    monitor.startWattlogLiveTail();
    EXPECT_TRUE(monitor.isLiveTailing());
    ASSERT_TRUE(processEventsUntil([&] { return polls == 1; }));
    EXPECT_EQ(monitor.powerEvents().size(), 600);
    ASSERT_EQ(monitor.liveLines().size(), 500);
    EXPECT_TRUE(monitor.liveLines().first().startsWith("2024-01-15 01:40:00"));
    EXPECT_EQ(f.clock.pendingCallbacks(), 1u);

    // Nothing later than the last event: an event at exactly that time isn't new.
    f.commands.respond("/usr/bin/pmset -g log",
                       sleepLines(0, 600) + "2024-01-15 09:59:00 +0000 Wake  x\n");
    f.clock.advance(14.9);
    QCoreApplication::processEvents();
    EXPECT_EQ(polls, 1);
    f.clock.advance(0.1);
    ASSERT_TRUE(processEventsUntil([&] { return polls == 2; }));
    EXPECT_EQ(monitor.powerEvents().size(), 600);

    f.commands.respond("/usr/bin/pmset -g log", sleepLines(0, 601));
    f.clock.advance(15);
    ASSERT_TRUE(processEventsUntil([&] { return polls == 3; }));
    EXPECT_EQ(monitor.powerEvents().size(), 601);
    EXPECT_EQ(monitor.liveLines().size(), 500);
    EXPECT_TRUE(monitor.liveLines().last().startsWith("2024-01-15 10:00:00"));

    monitor.stop();
    EXPECT_FALSE(monitor.isLiveTailing());
    f.clock.advance(60);
    QCoreApplication::processEvents();
    EXPECT_EQ(polls, 3);
    EXPECT_EQ(monitor.liveLines().size(), 500);

    // Started again, the lines start afresh.
    monitor.startWattlogLiveTail();
    EXPECT_TRUE(monitor.liveLines().isEmpty());
    ASSERT_TRUE(processEventsUntil([&] { return polls == 4; }));
}
