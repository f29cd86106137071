#include <QCoreApplication>
#include <cerrno>
#include <csignal>

#include "config/ConfigManager.h"
#include "platform/qt/SystemClock.h"
#include "platform/system/PlatformServices.h"
#include "process/LimitEnforcer.h"
#include "process/ProcessInfo.h"
#include "support/FakePorts.h"
#include "support/LiveMachine.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

namespace {

// The enforcer on a fake clock, desktop and signaller; the violations it records, each stamped
// with the clock's time, are kept in the order they reach this (the main) thread.
class LimitEnforcementTest : public ::testing::Test {
protected:
    LimitEnforcementTest() {
        QCoreApplication::processEvents();  // the notification permission's answer
        QObject::connect(
            &m_enforcer, &LimitEnforcer::violationRecorded, [this](const AlertRecord& r) {
                EXPECT_EQ(r.timestamp, m_clock.now());
                // "name pid MB/limit", with " killed" when the process was killed.
                m_records << QString::asprintf("%s %d %g/%g%s", qPrintable(r.processName), r.pid,
                                               r.memoryMB, r.limitMB,
                                               r.wasAutoKilled ? " killed" : "");
            });
    }

    ProcessLimit limit(const QString& name, double mb, bool autoKill = false) {
        return ProcessLimit::create(name, mb, autoKill, m_clock.now());
    }
    // One check of these processes, pids from 100 on, with the recordings it sent received.
    void check(const std::vector<std::pair<QString, double>>& namesAndMB) {
        QList<ProcessInfo> processes;
        for (const auto& [name, mb] : namesAndMB) {
            processes.append({100 + static_cast<Pid>(processes.size()), 1, name, mb});
        }
        m_enforcer.checkLimits(processes);
        QCoreApplication::processEvents();
    }

    QTemporaryDir m_dir;
    FakeClock m_clock;
    LogCapture m_log;
    FakeProcessSignaller m_signaller;
    ConfigManager m_config{m_dir.filePath("config.json"), m_clock};
    RecordingAlerts m_alerts{m_clock, m_clock, m_dir.path()};
    LimitEnforcer m_enforcer{m_config, m_alerts.manager, m_signaller, m_clock};
    QStringList m_records;
};

}  // namespace

TEST_F(LimitEnforcementTest, StrictlyAboveEachCoveringLimitRecordsEveryCycleAndAlertsOnce) {
    m_config.setConfig({.limits = {limit("worker", 1000.0), limit("idle", 10), limit("Chrome", 100),
                                   limit("Helper", 100), limit("Slack", 100),
                                   limit("java", 100, true), limit("idea", 200, true)},
                        .whitelistedProcesses = {"chrome", "", "   "}});
    const std::vector<std::pair<QString, double>> processes{
        {"worker-a", 1000.0},   {"worker-b", 1000.1},       {"other", 5000},
        {"Google Chrome", 500}, {"Chrome Helper", 500},     {"Slack Helper", 500},
        {"Slack", 500},         {"intellij-idea-java", 300}};
    check(processes);
    // "Chrome" is skipped altogether; "Helper" only for Chrome Helper; Slack Helper is over
    // both "Helper" and "Slack". Blank entries would exempt every name if they counted.
    const QStringList recorded{"worker-b 101 1000.1/1000",
                               "Slack Helper 105 500/100",
                               "Slack Helper 105 500/100",
                               "Slack 106 500/100",
                               "intellij-idea-java 107 300/100 killed",
                               "intellij-idea-java 107 300/200 killed"};
    EXPECT_EQ(m_records, recorded);
    EXPECT_EQ(m_signaller.sent(),
              (std::vector<std::pair<Pid, int>>{{107, SIGTERM}, {107, SIGTERM}}));
    EXPECT_EQ(m_config.config().limits[0].lastTriggered, m_clock.now());
    EXPECT_FALSE(m_config.config().limits[1].lastTriggered);
    ASSERT_EQ(m_alerts.center.delivered().size(), 4u);
    EXPECT_EQ(m_alerts.center.delivered()[0].body,
              "worker-b (PID 101) is using 1000MB (limit: 1000MB)");

    m_clock.advance(3);  // the next cycle: all recorded again
    check(processes);
    EXPECT_EQ(m_records, recorded + recorded);
}

TEST_F(LimitEnforcementTest, FailedKillsAreLoggedAndRecordedAsNotKilled) {
    m_config.setConfig({.limits = {limit("app", 100, true)}});
    m_signaller.fail(100, SIGTERM, EPERM);
    m_signaller.fail(100, SIGKILL, EPERM);
    m_signaller.fail(101, SIGTERM, EPERM);  // SIGKILL then goes through
    m_signaller.fail(102, SIGTERM, EINVAL);
    m_signaller.fail(102, SIGKILL, EINVAL);
    m_signaller.fail(103, SIGTERM, ESRCH);
    m_signaller.fail(103, SIGKILL, ESRCH);
    check({{"app-denied", 300}, {"app-term-fails", 300}, {"app-odd", 300}, {"app-gone", 300}});
    EXPECT_EQ(m_log.lines().filter("process", Qt::CaseInsensitive),
              (QStringList{"Permission denied to kill process: 100",
                           "Failed to kill process: app-denied (PID: 100)",
                           "Auto-killed process: app-term-fails (PID: 101)",
                           "Unknown error killing process: 102 (errno: 22)",
                           "Failed to kill process: app-odd (PID: 102)", "Process not found: 103",
                           "Failed to kill process: app-gone (PID: 103)"}));
    EXPECT_EQ(m_records, (QStringList{"app-denied 100 300/100", "app-term-fails 101 300/100 killed",
                                      "app-odd 102 300/100", "app-gone 103 300/100"}));
    EXPECT_EQ(m_alerts.center.delivered().size(), 4u);  // the alert goes out whatever the kill did
}

// A kill with the sampled start time goes the checked way, SIGKILL included; a pid given to
// another process since the sample gets nothing; an unknown start time signals the pid as is.
TEST_F(LimitEnforcementTest, KillsReachOnlyTheSampledProcess) {
    m_config.setConfig({.limits = {limit("app", 100, true)}});
    m_signaller.reuse(100, 6);
    m_signaller.reuse(101, 5);
    m_signaller.fail(102, SIGTERM, EPERM);
    QList<ProcessInfo> processes;
    for (const Pid pid : {100, 101, 102, 103}) {
        processes.append(
            {.id = pid, .name = "app", .memoryMB = 300, .startTime = pid < 103 ? 5u : 0u});
    }
    m_enforcer.checkLimits(processes);
    QCoreApplication::processEvents();
    const std::vector<std::pair<Pid, int>> checked{{101, SIGTERM}, {102, SIGTERM}, {102, SIGKILL}};
    EXPECT_EQ(m_signaller.checked(), checked);
    EXPECT_EQ(m_signaller.sent().size(), 4u);
    EXPECT_EQ(m_signaller.sent().back(), std::pair(103, SIGTERM));
    EXPECT_EQ(
        m_log.lines().filter("process", Qt::CaseInsensitive),
        (QStringList{"Not signalling 100: it is no longer the process that was measured",
                     "Process not found: 100", "Failed to kill process: app (PID: 100)",
                     "Auto-killed process: app (PID: 101)", "Auto-killed process: app (PID: 102)",
                     "Auto-killed process: app (PID: 103)"}));
    EXPECT_EQ(m_records, (QStringList{"app 100 300/100", "app 101 300/100 killed",
                                      "app 102 300/100 killed", "app 103 300/100 killed"}));
}

TEST(ProcessControllerTest, GracefulKillWaitsThenEscalates) {
    FakeProcessSignaller signaller;
    SystemClock clock;
    ProcessController controller(signaller, clock);

    // A process that never goes away is probed, then gets SIGKILL once the time is up.
    EXPECT_TRUE(controller.killProcessGracefully(42, 0.25));
    const auto sent = signaller.sent();
    ASSERT_GE(sent.size(), 3u);
    EXPECT_EQ(std::tuple(sent.front(), sent[1], sent.back()),
              std::tuple(std::pair(42, SIGTERM), std::pair(42, 0), std::pair(42, SIGKILL)));

    // One that is gone at the first check needs nothing more.
    signaller.fail(43, 0, ESRCH);
    EXPECT_TRUE(controller.killProcessGracefully(43));
    // One that can't even get SIGTERM is left alone.
    signaller.fail(44, SIGTERM, EPERM);
    EXPECT_FALSE(controller.killProcessGracefully(44));
    EXPECT_EQ(signaller.sent().back(), std::make_pair(44, SIGTERM));
}

// The real signaller: SIGTERM ends a child, and once it is reaped its pid is not found.
TEST(PosixProcessSignallerLiveTest, TerminatesAChildThenFindsItGone) {
    ChildProcess child({"sleep"});
    ASSERT_TRUE(child.ready());
    const Pid pid = child.pid();
    const auto signaller = makeProcessSignaller();
    EXPECT_EQ(signaller->send(pid, SIGTERM), 0);
    ASSERT_TRUE(child.process().waitForFinished(5000));
    EXPECT_EQ(std::pair(child.process().exitStatus(), child.process().exitCode()),
              std::pair(QProcess::CrashExit, SIGTERM));
    EXPECT_EQ(signaller->send(pid, 0), ESRCH);
}

// This system's table and signaller: a kill with another start time leaves the child alone,
// one with its own ends it, and one after it is reaped finds it gone. Pids of 0 and below (our
// process group, every process) are never signalled; signal 0 keeps that check harmless.
TEST(ProcessSignallerLiveTest, SignalsTheMeasuredChildOnly) {
    ChildProcess child({"sleep"});
    ASSERT_TRUE(child.ready());
    const auto table = makeProcessTable();
    const auto entries = table->list().value_or(std::vector<ProcessTableEntry>{});
    const auto entry = std::ranges::find(entries, child.pid(), &ProcessTableEntry::pid);
    ASSERT_TRUE(entry != entries.end() && entry->startTime != 0);
    const ProcessIdentity measured{child.pid(), entry->startTime,
                                   table->name(child.pid()).value_or("")};
    const auto signaller = makeProcessSignaller();
    EXPECT_EQ(
        signaller->sendToMeasured({measured.pid, measured.startTime + 1, measured.name}, SIGTERM),
        (SignalResult{SignalResult::Outcome::replaced, 0}));
    EXPECT_FALSE(child.process().waitForFinished(200));
    EXPECT_EQ(signaller->sendToMeasured(measured, SIGTERM), SignalResult{});
    ASSERT_TRUE(child.process().waitForFinished(5000));
    EXPECT_EQ(std::pair(child.process().exitStatus(), child.process().exitCode()),
              std::pair(QProcess::CrashExit, SIGTERM));
    EXPECT_EQ(signaller->sendToMeasured(measured, 0),
              (SignalResult{SignalResult::Outcome::failed, ESRCH}));
    EXPECT_EQ(std::tuple(signaller->send(0, 0), signaller->send(-1, 0),
                         signaller->sendToMeasured({0, 1, ""}, 0).error),
              std::tuple(ESRCH, ESRCH, ESRCH));
}
