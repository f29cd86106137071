#include "power/BatteryPowerMonitor.h"
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
                WattlogSampleFiles::correlationSamplesFile(paths)};
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
