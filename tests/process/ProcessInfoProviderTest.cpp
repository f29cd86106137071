#include "process/ProcessInfoProvider.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

namespace zelvar {
void PrintTo(const ProcessInfo& process, std::ostream* out) {
    *out << QJsonDocument(process.toJson()).toJson(QJsonDocument::Compact).toStdString();
}
}  // namespace zelvar

namespace {

constexpr quint64 kMiB = 1024 * 1024;

class ProcessInfoProviderTest : public ::testing::Test {
protected:
    FakeProcessTable m_table;
    FakeCommandRunner m_runner;
    FakeServiceJobs m_jobs;
    FakeClock m_clock;
    LogCapture m_log;
    ProcessInfoProvider m_provider{m_table, m_runner, m_jobs, m_clock,
                                   linuxSystemProfile().originNames};
};

}  // namespace

TEST_F(ProcessInfoProviderTest, CpuShareSinceThePreviousReading) {
    // Seconds passed, the process's CPU seconds so far (none: unreadable), the share. The first
    // reading, one at the same instant and an unreadable one give nothing and keep the base;
    // two busy cores show as 100; a time that goes back is a new process's base.
    const std::tuple<double, std::optional<double>, double> readings[] = {
        {0, 0.0, 0.0},          {0, 1.0, 0.0},  {5, 2.5, 50.0}, {2, 6.5, 100.0},
        {2, std::nullopt, 0.0}, {2, 8.5, 50.0}, {5, 1.0, 0.0},  {4, 3.0, 50.0}};
    for (const auto& [seconds, cpu, share] : readings) {
        m_clock.advance(seconds);
        m_table.setProcesses(
            {{10, 1, "busy", kMiB, cpu ? std::optional(quint64(*cpu * 1e9)) : std::nullopt}});
        EXPECT_DOUBLE_EQ(m_provider.getProcessCPU(10), share) << cpu.value_or(-1);
    }
}

TEST_F(ProcessInfoProviderTest, NamedProcessesByMemoryWithOriginsAndPsOnlyWhenNeeded) {
    m_jobs.setLaunchctlList("PID\tStatus\tLabel\n30\t0\tcom.example.daemon\n");
    m_table.setProcesses({{1, 0, "init", kMiB, 0}});
    m_provider.getAllProcesses();
    EXPECT_TRUE(m_runner.requests().isEmpty());

    m_runner.respond("/bin/ps -axo pid=,rss=", "  3  2048\n  4 garbage\n");
    m_table.setProcesses({{1, 0, "init", kMiB, 0},
                          {6, 1, std::nullopt, 9 * kMiB, 0},
                          {30, 1, "daemon", kMiB, 0, 77},
                          {31, 30, "worker", 3 * kMiB, 0},
                          {3, 31, "root-owned", std::nullopt, std::nullopt},
                          {4, 1, "unlisted", std::nullopt, std::nullopt}});
    const ProcessOrigin daemon = ProcessOrigin::launchAgent("com.example.daemon");
    const ProcessOrigin system = ProcessOrigin::system();
    const QDateTime now = m_clock.now();
    EXPECT_EQ(m_provider.getAllProcesses(),
              (QList<ProcessInfo>{{31, 30, "worker", 3.0, 0, now, daemon, system},
                                  {3, 31, "root-owned", 2.0, 0, now, daemon, system},
                                  {1, 0, "init", 1.0, 0, now, system, system},
                                  {30, 1, "daemon", 1.0, 0, now, daemon, daemon, 77},
                                  {4, 1, "unlisted", 0.0, 0, now, system, system}}));
    EXPECT_EQ(m_runner.requests().size(), 1);  // once for the whole snapshot
}

TEST_F(ProcessInfoProviderTest, ProgressIsLoggedEveryFiftyPidsAndAFailedListingIsEmpty) {
    std::vector<FakeProcessTable::Process> many;
    for (Pid pid = 1; pid <= 120; ++pid) {
        many.push_back({pid, 0, pid == 51 ? std::nullopt : std::optional<QString>("p"), kMiB, 0});
    }
    m_table.setProcesses(many);
    m_provider.getAllProcesses();
    EXPECT_EQ(m_log.lines().filter("Processed "),
              (QStringList{"[ProcessInfoProvider] Processed 0/120 PIDs",
                           "[ProcessInfoProvider] Processed 50/120 PIDs",
                           "[ProcessInfoProvider] Processed 100/120 PIDs"}));

    m_table.failListing();
    EXPECT_TRUE(m_provider.getAllProcesses().isEmpty());
    EXPECT_TRUE(m_log.contains("[ProcessInfoProvider] Got 0 PIDs in "));
    EXPECT_TRUE(
        m_log.contains("[ProcessInfoProvider] Finished getAllProcesses() - 0 processes in "));
}
