#include <QSemaphore>
#include <atomic>

#include "config/ConfigManager.h"
#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "process/DiskIOPoller.h"
#include "process/LimitEnforcer.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

namespace {

// The monitor over fake sources: "init" (4 MiB) and its child "shell" (8 MiB), one volume.
// A test that sets m_holdCycles keeps each cycle inside its process listing until released.
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

    bool waitForIdle() {
        return processEventsUntil([this] { return !m_monitor.isRefreshInFlight(); });
    }
    // Advances in one-second steps, letting each cycle finish before time moves on.
    void runFor(int seconds) {
        for (int i = 0; i < seconds; ++i) {
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
    FakeProcessSignaller m_signaller;
    LimitEnforcer m_limits{m_config, m_alerts.manager, m_signaller, m_clock};
    DiskIOPoller m_diskIO{m_diskIOReader, m_clock};
    ProcessMonitor m_monitor{
        {m_config, m_provider, m_diskMonitor, m_limits, m_diskIO, m_clock, m_clock}};

    std::atomic<int> m_cyclesStarted = 0;
    bool m_holdCycles = false;
    QSemaphore m_entered;
    QSemaphore m_release;
};

}  // namespace

TEST_F(ProcessMonitorTest, FirstCyclePublishesEverythingAtOnceInOrder) {
    m_config.addLimit("shell", 5, false);

    QStringList events;
    for (const auto& [signal, name] : std::vector<std::pair<void (ProcessMonitor::*)(), QString>>{
             {&ProcessMonitor::currentProcessesChanged, "processes"},
             {&ProcessMonitor::processTreeChanged, "tree"},
             {&ProcessMonitor::diskInfoChanged, "disks"},
             {&ProcessMonitor::lastUpdateTimeChanged, "time"},
             {&ProcessMonitor::alertHistoryChanged, "alert"},
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
    EXPECT_EQ(events, (QStringList{"in flight", "processes", "tree", "disks", "time", "alert",
                                   "summary", "bursts", "idle"}));

    ASSERT_EQ(std::tuple(m_monitor.currentProcesses().size(), m_monitor.processTree().size(),
                         m_monitor.diskInfo().size(), m_monitor.alertHistory().size(),
                         m_monitor.processTree().value(0).aggregateMemoryMB),
              std::tuple(2, 1, 1, 1, 12.0));
    EXPECT_GT(m_monitor.lastUpdateTime(), created);
    EXPECT_TRUE(m_log.contains("[ProcessMonitor] Updated UI with 2 processes and disk info"));
}

TEST_F(ProcessMonitorTest, TicksAndRestartsWhileACycleIsInFlightStartNoSecondCycle) {
    // A cycle that takes 7 seconds at a 5-second interval.
    m_holdCycles = true;
    m_config.setConfig({.checkIntervalSeconds = 5});
    m_monitor.startMonitoring();
    ASSERT_TRUE(m_entered.tryAcquire(1, 5000));
    m_clock.advance(5);  // tick while in flight
    m_monitor.stopMonitoring();
    m_monitor.startMonitoring();  // a new loop whose first tick finds the cycle still running
    m_clock.advance(2);
    EXPECT_EQ(m_cyclesStarted, 1);
    m_release.release();
    ASSERT_TRUE(waitForIdle());
    EXPECT_EQ(m_monitor.currentProcesses().size(), 2);  // the old cycle still published
    m_clock.advance(3);  // the new loop's tick at 10 seconds starts the next cycle
    ASSERT_TRUE(m_entered.tryAcquire(1, 5000));
    m_release.release();
    ASSERT_TRUE(waitForIdle());
}

TEST_F(ProcessMonitorTest, OneLoopTicksAtTheIntervalOfEachWaitWithAFloorOfThreeUntilStopped) {
    EXPECT_EQ(ProcessMonitor::tickInterval(qQNaN()), 3.0);
    EXPECT_EQ(ProcessMonitor::tickInterval(2.9), 3.0);

    m_config.setConfig({.checkIntervalSeconds = 10});
    m_monitor.startMonitoring();
    m_monitor.startMonitoring();
    ASSERT_TRUE(waitForIdle());
    EXPECT_EQ(m_clock.pendingCallbacks(), 1u);  // one loop
    m_config.setConfig({.checkIntervalSeconds = 0});
    runFor(10);  // the wait already under way was 10 seconds
    EXPECT_EQ(m_cyclesStarted, 2);
    runFor(6);  // then every 3 seconds, the setting itself kept
    EXPECT_EQ(m_cyclesStarted, 4);
    EXPECT_EQ(m_config.config().checkIntervalSeconds, 0);

    m_monitor.stopMonitoring();
    runFor(20);
    EXPECT_EQ(m_cyclesStarted, 4);
    m_monitor.startMonitoring();  // a new loop, ticking at once
    ASSERT_TRUE(waitForIdle());
    EXPECT_EQ(m_cyclesStarted, 5);
}

TEST_F(ProcessMonitorTest, AlertHistoryKeepsTheNewestHundredNewestFirst) {
    m_config.addLimit("leaky", 1, false);
    for (Pid pid = 1; pid <= 101; ++pid) {
        m_limits.checkLimits({{pid, 1, "leaky", 50}});
    }
    QCoreApplication::processEvents();
    const QList<AlertRecord>& history = m_monitor.alertHistory();
    EXPECT_EQ(std::tuple(history.size(), history.value(0).pid, history.value(99).pid),
              std::tuple(100, 101, 2));
}

// Thirty seconds from the previous read, measured from when it happened.
TEST_F(ProcessMonitorTest, DiskIOPollerReadsOnTheFirstPollThenThirtySecondsApart) {
    std::vector<double> reads;
    double at = 0;
    for (const double step : {0.0, 29.0, 1.0, 29.0, 8.0, 25.0, 5.0}) {
        m_clock.advance(step);
        at += step;
        if (m_diskIO.poll({})) {
            reads.push_back(at);
        }
    }
    EXPECT_EQ(reads, (std::vector<double>{0, 30, 67, 97}));
}
