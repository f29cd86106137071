#include <gtest/gtest.h>

#include <QFile>
#include <QSemaphore>
#include <QTemporaryDir>
#include <atomic>
#include <cmath>

#include "config/ConfigManager.h"
#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "platform/posix/PosixProcessSignaller.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"
#include "support/EventLoop.h"
#include "support/FakeClock.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeProcessTable.h"
#include "support/FakeServiceJobs.h"
#include "support/FakeVolumeSource.h"
#include "support/LogCapture.h"
#include "support/RecordingAlerts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

class ProcessMonitorTest : public ::testing::Test {
protected:
    ProcessMonitorTest() {
        m_table.setProcesses({{1, 0, "init", 4 << 20, 0}, {2, 1, "shell", 8 << 20, 0}});
        m_volumes.setCapacity("/", 100 << 20, 40 << 20);
        m_table.onList([this] {
            ++m_cyclesStarted;
            if (m_holdCycles) {
                m_entered.release();
                m_release.acquire();
            }
        });
    }

    void setInterval(double seconds) {
        MonitorConfig config = m_config.config();
        config.checkIntervalSeconds = seconds;
        m_config.setConfig(config);
    }

    bool waitForIdle() {
        return processEventsUntil([this] { return !m_monitor.isRefreshInFlight(); });
    }

    // Advances in one-second steps, letting each cycle finish before time moves on.
    void runFor(double seconds) {
        for (int i = 0; i < static_cast<int>(seconds); ++i) {
            m_clock.advance(1);
            ASSERT_TRUE(waitForIdle());
        }
    }

    QTemporaryDir m_dir;
    FakeClock m_clock;
    FakeProcessTable m_table;
    FakeCommandRunner m_runner;
    FakeServiceJobs m_jobs;
    LogCapture m_log;
    ConfigManager m_config{m_dir.filePath("config.json"), m_clock};
    ProcessInfoProvider m_provider{m_table, m_runner, m_jobs, m_clock,
                                   linuxSystemProfile().originNames};
    FakeVolumeSource m_volumes;
    DiskMonitor m_diskMonitor{m_volumes, m_clock};
    DiskIOReader m_diskIOReader{m_dir.filePath("diskio.jsonl")};
    RecordingAlerts m_alerts{m_clock, m_clock, m_dir.path()};
    PosixProcessSignaller m_signaller;
    ProcessMonitor m_monitor{m_config,      m_alerts.manager, m_provider, m_signaller,
                             m_diskMonitor, m_diskIOReader,   m_clock,    m_clock};

    std::atomic<int> m_cyclesStarted = 0;
    bool m_holdCycles = false;
    QSemaphore m_entered;
    QSemaphore m_release;
};

}  // namespace

TEST_F(ProcessMonitorTest, FirstCyclePublishesEverythingAtOnceInOrder) {
    QFile log(m_dir.filePath("diskio.jsonl"));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    log.write(R"({"type":"diskio_summary","timestamp":"2026-01-15T11:59:30Z","windows":[)"
              R"({"window":"1m","top_writers":[{"name":"shell","pid":2,"written_mb":5}]}]})"
              "\n"
              R"({"type":"diskio_burst","timestamp":"2026-01-15T11:59:40Z","source":"process",)"
              R"("process":"shell","pid":2,"written_mb":50})"
              "\n");
    log.close();

    QStringList events;
    for (const auto& [signal, name] : std::vector<std::pair<void (ProcessMonitor::*)(), QString>>{
             {&ProcessMonitor::currentProcessesChanged, "processes"},
             {&ProcessMonitor::processTreeChanged, "tree"},
             {&ProcessMonitor::diskInfoChanged, "disks"},
             {&ProcessMonitor::lastUpdateTimeChanged, "time"},
             {&ProcessMonitor::diskIOSummaryChanged, "summary"},
             {&ProcessMonitor::diskIOBurstsChanged, "bursts"}}) {
        QObject::connect(&m_monitor, signal, [&events, name = name] { events << name; });
    }
    QObject::connect(&m_monitor, &ProcessMonitor::isRefreshInFlightChanged,
                     [&] { events << (m_monitor.isRefreshInFlight() ? "in flight" : "idle"); });
    const QDateTime created = m_monitor.lastUpdateTime();
    m_clock.advance(0.5);
    m_monitor.startMonitoring();
    ASSERT_TRUE(waitForIdle());
    EXPECT_EQ(events, (QStringList{"in flight", "processes", "tree", "disks", "time", "summary",
                                   "bursts", "idle"}));

    ASSERT_EQ(m_monitor.currentProcesses().size(), 2);
    EXPECT_EQ(m_monitor.currentProcesses()[0].name, "shell");
    ASSERT_EQ(m_monitor.processTree().size(), 1);  // the tree of that same sample
    EXPECT_EQ(m_monitor.processTree()[0].process.name, "init");
    EXPECT_EQ(m_monitor.processTree()[0].aggregateMemoryMB, 12.0);
    EXPECT_GT(m_monitor.lastUpdateTime(), created);
    EXPECT_TRUE(m_log.contains("[ProcessMonitor] Updated UI with 2 processes and disk info"));
    ASSERT_EQ(m_monitor.diskInfo().size(), 1);
    EXPECT_EQ(m_monitor.diskInfo()[0].usedBytes, 60 << 20);
    EXPECT_EQ(m_monitor.diskInfo()[0].timestamp, m_clock.now());
    // Disk I/O entries are enriched from the same sample.
    ASSERT_TRUE(m_monitor.diskIOSummary());
    EXPECT_EQ(m_monitor.diskIOSummary()->windows[0].topWriters[0].parentName, "init");
    ASSERT_EQ(m_monitor.diskIOBursts().size(), 1);
    EXPECT_EQ(m_monitor.diskIOBursts()[0].parentName, "init");
}

TEST_F(ProcessMonitorTest, TicksWhileACycleIsInFlightAreSkipped) {
    // A cycle that takes 7 seconds at a 5-second interval.
    m_holdCycles = true;
    setInterval(5);
    m_monitor.startMonitoring();
    ASSERT_TRUE(m_entered.tryAcquire(1, 5000));
    m_clock.advance(5);  // tick while in flight
    m_clock.advance(2);
    EXPECT_EQ(m_cyclesStarted, 1);
    m_release.release();
    ASSERT_TRUE(waitForIdle());
    m_clock.advance(3);  // the tick at 10 seconds starts the next cycle
    ASSERT_TRUE(m_entered.tryAcquire(1, 5000));
    EXPECT_EQ(m_cyclesStarted, 2);
    m_release.release();
    ASSERT_TRUE(waitForIdle());
}

TEST_F(ProcessMonitorTest, IntervalHasAFloorOfThreeSecondsWithoutChangingTheSetting) {
    EXPECT_EQ(ProcessMonitor::tickInterval(0), 3.0);
    EXPECT_EQ(ProcessMonitor::tickInterval(-4), 3.0);
    EXPECT_EQ(ProcessMonitor::tickInterval(std::nan("")), 3.0);
    EXPECT_EQ(ProcessMonitor::tickInterval(3.5), 3.5);

    setInterval(0);
    m_monitor.startMonitoring();
    ASSERT_TRUE(waitForIdle());
    runFor(9);  // ticks at 3, 6, 9
    EXPECT_EQ(m_cyclesStarted, 4);
    EXPECT_EQ(m_config.config().checkIntervalSeconds, 0);
}

TEST_F(ProcessMonitorTest, ANewIntervalTakesEffectOnTheNextWait) {
    setInterval(10);
    m_monitor.startMonitoring();
    ASSERT_TRUE(waitForIdle());
    setInterval(4);
    runFor(10);  // the wait already under way was 10 seconds
    EXPECT_EQ(m_cyclesStarted, 2);
    runFor(4);
    EXPECT_EQ(m_cyclesStarted, 3);
}

TEST_F(ProcessMonitorTest, StartingTwiceRunsOneLoopAndStopEndsIt) {
    m_monitor.startMonitoring();
    m_monitor.startMonitoring();
    EXPECT_TRUE(m_monitor.isMonitoring());
    ASSERT_TRUE(waitForIdle());
    EXPECT_EQ(m_clock.pendingCallbacks(), 1u);
    runFor(5);
    EXPECT_EQ(m_cyclesStarted, 2);

    m_monitor.stopMonitoring();
    EXPECT_FALSE(m_monitor.isMonitoring());
    runFor(20);
    EXPECT_EQ(m_cyclesStarted, 2);

    m_monitor.startMonitoring();  // a new loop, ticking at once
    ASSERT_TRUE(waitForIdle());
    EXPECT_EQ(m_cyclesStarted, 3);
}

TEST_F(ProcessMonitorTest, RestartWhileACycleRunsNeverRunsTwoCycles) {
    m_holdCycles = true;
    m_monitor.startMonitoring();
    ASSERT_TRUE(m_entered.tryAcquire(1, 5000));
    m_monitor.stopMonitoring();
    m_monitor.startMonitoring();  // its first tick finds the old cycle still in flight
    m_clock.advance(1);
    EXPECT_EQ(m_cyclesStarted, 1);
    m_release.release();
    ASSERT_TRUE(waitForIdle());
    EXPECT_EQ(m_monitor.currentProcesses().size(), 2);  // the old cycle still published
    m_clock.advance(4);
    ASSERT_TRUE(m_entered.tryAcquire(1, 5000));
    EXPECT_EQ(m_cyclesStarted, 2);
    m_release.release();
    ASSERT_TRUE(waitForIdle());
}

TEST_F(ProcessMonitorTest, DiskIOLogIsReadOnTheFirstCycleThenThirtySecondsApart) {
    for (const auto& [interval, expected] :
         std::vector<std::pair<double, std::vector<double>>>{{5, {0, 30, 60}}, {7, {0, 35, 70}}}) {
        std::vector<double> reads;
        const double start = m_clock.elapsed();
        const auto connection =
            QObject::connect(&m_monitor, &ProcessMonitor::diskIOSummaryChanged,
                             [&] { reads.push_back(m_clock.elapsed() - start); });
        setInterval(interval);
        m_monitor.startMonitoring();
        ASSERT_TRUE(waitForIdle());
        runFor(75);
        m_monitor.stopMonitoring();
        QObject::disconnect(connection);
        EXPECT_EQ(reads, expected) << "interval " << interval;
        m_clock.advance(100);  // let the next round read on its first cycle again
    }
}
