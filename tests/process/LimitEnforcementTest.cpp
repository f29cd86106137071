#include <gtest/gtest.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <cerrno>
#include <csignal>
#include <set>

#include "config/ConfigManager.h"
#include "platform/posix/PosixProcessSignaller.h"
#include "platform/qt/QtScheduler.h"
#include "platform/qt/SystemClock.h"
#include "platform/system/PlatformServices.h"
#include "process/ProcessInfoProvider.h"
#include "process/ProcessMonitor.h"
#include "support/ChildProcess.h"
#include "support/EventLoop.h"
#include "support/FakeClock.h"
#include "support/FakeCommandRunner.h"
#include "support/FakeProcessSignaller.h"
#include "support/FakeProcessTable.h"
#include "support/LogCapture.h"
#include "support/QuietCycleSources.h"
#include "support/RecordingAlerts.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

constexpr quint64 kMiB = 1024 * 1024;

// The machine's real process table, narrowed to the test's own children so that nothing
// else running here can match a limit.
class ChildrenOnlyTable final : public ProcessTable {
public:
    explicit ChildrenOnlyTable(std::set<Pid> pids) : m_pids(std::move(pids)) {}
    std::optional<std::vector<ProcessTableEntry>> list() override {
        auto all = m_real->list();
        if (all) {
            std::erase_if(*all,
                          [&](const ProcessTableEntry& e) { return !m_pids.contains(e.pid); });
        }
        return all;
    }
    std::optional<QString> name(Pid pid) override { return m_real->name(pid); }
    std::optional<quint64> residentBytes(Pid pid) override { return m_real->residentBytes(pid); }
    std::optional<quint64> cpuTimeNanoseconds(Pid pid) override {
        return m_real->cpuTimeNanoseconds(pid);
    }

private:
    std::unique_ptr<ProcessTable> m_real = makeProcessTable();
    std::set<Pid> m_pids;
};

class LimitEnforcementTest : public ::testing::Test {
protected:
    LimitEnforcementTest() { QCoreApplication::processEvents(); }

    void configure(QList<ProcessLimit> limits, std::set<QString> whitelist = {}) {
        MonitorConfig config = m_config.config();
        config.checkIntervalSeconds = 3;
        config.limits = std::move(limits);
        config.whitelistedProcesses = std::move(whitelist);
        m_config.setConfig(config);
        m_config.save();
    }
    ProcessLimit limit(const QString& name, double mb, bool autoKill = false) {
        return ProcessLimit::create(name, mb, autoKill, m_clock.now());
    }
    void setProcesses(const std::vector<std::pair<QString, double>>& namesAndMB) {
        std::vector<FakeProcessTable::Process> processes;
        Pid pid = 100;
        for (const auto& [name, mb] : namesAndMB) {
            processes.push_back({pid++, 1, name, static_cast<quint64>(mb * kMiB), 0});
        }
        m_table.setProcesses(std::move(processes));
    }
    // One monitoring cycle, with everything it sends to the main thread received.
    void runCycle() {
        if (!m_monitor.isMonitoring()) {
            m_monitor.startMonitoring();
        } else {
            m_clock.advance(3);
        }
        ASSERT_TRUE(processEventsUntil([&] { return !m_monitor.isRefreshInFlight(); }));
    }
    QStringList recordedNames() const {
        QStringList names;
        for (const AlertRecord& r : m_monitor.alertHistory()) {
            names << r.processName;
        }
        return names;
    }

    QTemporaryDir m_dir;
    FakeClock m_clock;
    FakeProcessTable m_table;
    FakeCommandRunner m_runner;
    LogCapture m_log;
    FakeProcessSignaller m_signaller;
    ConfigManager m_config{m_dir.filePath("config.json"), m_clock};
    RecordingAlerts m_recording{m_clock, m_clock, m_dir.path()};
    AlertManager& m_alerts = m_recording.manager;
    FakeNotificationCenter& m_center = m_recording.center;
    QuietCycleSources m_sources{m_clock, m_dir.path()};
    ProcessInfoProvider m_provider{m_table, m_runner, m_sources.jobs, m_clock,
                                   linuxSystemProfile().originNames};
    ProcessMonitor m_monitor{
        m_config, m_alerts, m_provider, m_signaller, m_sources.diskMonitor, m_sources.diskIOReader,
        m_clock,  m_clock};
};

}  // namespace

TEST_F(LimitEnforcementTest, OnlyAProcessStrictlyAboveItsLimitIsRecordedAndMarked) {
    const ProcessLimit worker = limit("worker", 1000.0);
    configure({worker, limit("idle", 10)});
    setProcesses({{"worker-a", 1000.0}, {"worker-b", 1000.1}, {"other", 5000}});
    m_alerts.setConfigManager(&m_config);
    runCycle();

    ASSERT_EQ(m_monitor.alertHistory().size(), 1);
    const AlertRecord& record = m_monitor.alertHistory()[0];
    EXPECT_EQ(record.processName, "worker-b");
    EXPECT_EQ(record.pid, 101);
    EXPECT_NEAR(record.memoryMB, 1000.1, 1e-3);
    EXPECT_EQ(record.limitMB, 1000.0);
    EXPECT_EQ(record.timestamp, m_clock.now());
    EXPECT_FALSE(record.wasAutoKilled);
    EXPECT_TRUE(m_signaller.sent().empty());
    ASSERT_EQ(m_center.delivered().size(), 1u);
    EXPECT_EQ(m_center.delivered()[0].body, "worker-b (PID 101) is using 1000MB (limit: 1000MB)");

    // The trigger is written to the file at once, for the triggered limit only.
    QFile file(m_config.configPath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QJsonArray limits = QJsonDocument::fromJson(file.readAll())["limits"].toArray();
    ASSERT_EQ(limits.size(), 2);
    EXPECT_EQ(limits[0]["last_triggered"].toString(), "2026-01-15T12:00:00Z");
    EXPECT_FALSE(limits[1].toObject().contains("last_triggered"));
}

TEST_F(LimitEnforcementTest, WhitelistSkipsWholeLimitsOrSingleProcessesButBlanksExemptNothing) {
    configure({limit("Chrome", 100), limit("Helper", 100), limit("Slack", 100)},
              {"chrome", "", "   "});
    setProcesses(
        {{"Google Chrome", 500}, {"Chrome Helper", 500}, {"Slack Helper", 500}, {"Slack", 500}});
    runCycle();
    // "Chrome" is skipped altogether; "Helper" only for Chrome Helper; Slack Helper is over
    // both "Helper" and "Slack". Blank entries would exempt every name if they counted.
    EXPECT_EQ(recordedNames(), (QStringList{"Slack", "Slack Helper", "Slack Helper"}));
}

TEST_F(LimitEnforcementTest, SameNameTwiceGivesTwoRecordsButOneAlert) {
    configure({limit("Electron", 100)});
    setProcesses({{"Electron", 300}, {"Electron", 400}});
    runCycle();
    EXPECT_EQ(m_monitor.alertHistory().size(), 2);
    EXPECT_EQ(m_center.delivered().size(), 1u);
    EXPECT_EQ(m_alerts.recentAlertCount(), 1);

    // The next cycle records again although the cooldown holds the alert back.
    runCycle();
    EXPECT_EQ(m_monitor.alertHistory().size(), 4);
    EXPECT_EQ(m_center.delivered().size(), 1u);
}

TEST_F(LimitEnforcementTest, TwoLimitsOnOneProcessKillAndRecordTwice) {
    configure({limit("java", 100, true), limit("idea", 200, true)});
    setProcesses({{"intellij-idea-java", 300}});
    runCycle();
    EXPECT_EQ(recordedNames(), (QStringList{"intellij-idea-java", "intellij-idea-java"}));
    EXPECT_EQ(m_monitor.alertHistory()[0].limitMB, 200);  // the later one is at the front
    EXPECT_EQ(m_signaller.sent(),
              (std::vector<std::pair<Pid, int>>{{100, SIGTERM}, {100, SIGTERM}}));
    EXPECT_EQ(m_log.lines().filter("Auto-killed process: intellij-idea-java (PID: 100)").size(), 2);
}

TEST_F(LimitEnforcementTest, FailedKillsAreLoggedAndRecordedAsNotKilled) {
    configure({limit("app", 100, true)});
    setProcesses({{"app-denied", 300}, {"app-term-fails", 300}, {"app-odd", 300}});
    m_signaller.fail(100, SIGTERM, EPERM);
    m_signaller.fail(100, SIGKILL, EPERM);
    m_signaller.fail(101, SIGTERM, EPERM);  // SIGKILL then goes through
    m_signaller.fail(102, SIGTERM, EINVAL);
    m_signaller.fail(102, SIGKILL, EINVAL);
    runCycle();

    const QStringList log = m_log.lines();
    EXPECT_TRUE(log.contains("Permission denied to kill process: 100"));
    EXPECT_TRUE(log.contains("Failed to kill process: app-denied (PID: 100)"));
    EXPECT_TRUE(log.contains("Auto-killed process: app-term-fails (PID: 101)"));
    EXPECT_TRUE(log.contains("Unknown error killing process: 102 (errno: 22)"));
    EXPECT_TRUE(log.contains("Failed to kill process: app-odd (PID: 102)"));
    QMap<QString, bool> killed;
    for (const AlertRecord& r : m_monitor.alertHistory()) {
        killed[r.processName] = r.wasAutoKilled;
    }
    EXPECT_EQ(killed, (QMap<QString, bool>{
                          {"app-denied", false}, {"app-term-fails", true}, {"app-odd", false}}));
    EXPECT_EQ(m_center.delivered().size(), 3u);  // the alert goes out whatever the kill did
}

TEST_F(LimitEnforcementTest, HistoryKeepsTheNewestHundred) {
    configure({limit("leaky", 1)});
    setProcesses({{"leaky", 50}, {"leaky", 60}});
    for (int cycle = 0; cycle < 51; ++cycle) {
        runCycle();
    }
    const QList<AlertRecord>& history = m_monitor.alertHistory();
    ASSERT_EQ(history.size(), 100);
    EXPECT_EQ(history.first().timestamp, m_clock.now());
    EXPECT_EQ(history.first().pid, 100);  // the smaller, checked last in the last cycle
    for (qsizetype i = 1; i < history.size(); ++i) {
        EXPECT_LE(history[i].timestamp, history[i - 1].timestamp);
    }
    EXPECT_GT(history.last().timestamp, m_clock.now().addSecs(-3 * 51));
}

TEST(ProcessControllerTest, GracefulKillWaitsThenEscalates) {
    FakeProcessSignaller signaller;
    SystemClock clock;
    ProcessController controller(signaller, clock);

    // A process that never goes away gets SIGKILL once the time is up.
    EXPECT_TRUE(controller.killProcessGracefully(42, 0.25));
    const auto sent = signaller.sent();
    ASSERT_GE(sent.size(), 3u);
    EXPECT_EQ(sent.front(), std::make_pair(42, SIGTERM));
    EXPECT_EQ(sent.back(), std::make_pair(42, SIGKILL));
    EXPECT_EQ(sent[1], std::make_pair(42, 0));

    // One that is gone at the first check needs nothing more.
    signaller.fail(43, 0, ESRCH);
    EXPECT_TRUE(controller.killProcessGracefully(43));
    // One that can't even get SIGTERM is left alone.
    signaller.fail(44, SIGTERM, EPERM);
    EXPECT_FALSE(controller.killProcessGracefully(44));
    EXPECT_EQ(signaller.sent().back(), std::make_pair(44, SIGTERM));
}

TEST(LimitEnforcementLiveTest, RealChildOverItsAutoKillLimitGetsSigterm) {
    ChildProcess big({"alloc", "96"});
    ChildProcess small({"sleep"});
    ASSERT_TRUE(big.ready() && small.ready());
    const Pid bigPid = big.pid();
    LogCapture log;

    QTemporaryDir dir;
    SystemClock clock;
    QtScheduler scheduler;
    ChildrenOnlyTable table({big.pid(), small.pid()});
    FakeCommandRunner runner;
    PosixProcessSignaller signaller;
    ConfigManager config(dir.filePath("config.json"), clock);
    config.addLimit("zelvar-test-child", 48, true);
    RecordingAlerts alerts(clock, scheduler, dir.path());
    QuietCycleSources sources(clock, dir.path());
    ProcessInfoProvider provider(table, runner, sources.jobs, clock,
                                 currentSystemProfile().originNames);
    ProcessMonitor monitor(config, alerts.manager, provider, signaller, sources.diskMonitor,
                           sources.diskIOReader, clock, scheduler);

    monitor.startMonitoring();
    ASSERT_TRUE(processEventsUntil([&] { return !monitor.alertHistory().isEmpty(); }));
    monitor.stopMonitoring();

    // It may have been reaped already while the events above ran.
    ASSERT_TRUE(big.process().state() == QProcess::NotRunning ||
                big.process().waitForFinished(5000));
    EXPECT_EQ(big.process().exitStatus(), QProcess::CrashExit);
    EXPECT_EQ(big.process().exitCode(), SIGTERM);
    EXPECT_EQ(small.process().state(), QProcess::Running);
    const AlertRecord record = monitor.alertHistory()[0];
    EXPECT_EQ(record.pid, bigPid);
    EXPECT_TRUE(record.wasAutoKilled);
    EXPECT_GT(record.memoryMB, 48);
    EXPECT_TRUE(log.contains(
        QStringLiteral("Auto-killed process: zelvar-test-child-with-a-long-name (PID: %1)")
            .arg(bigPid)));
    EXPECT_TRUE(config.config().limits[0].lastTriggered.has_value());
}

TEST(LimitEnforcementLiveTest, VanishedProcessIsNotFound) {
    Pid gone = 0;
    {
        ChildProcess child({"sleep"});
        ASSERT_TRUE(child.ready());
        gone = child.pid();
    }  // killed and reaped here
    LogCapture log;
    PosixProcessSignaller signaller;
    SystemClock clock;
    ProcessController controller(signaller, clock);
    EXPECT_FALSE(controller.killProcess(gone));
    EXPECT_EQ(log.lines(), QStringList{QStringLiteral("Process not found: %1").arg(gone)});
}
