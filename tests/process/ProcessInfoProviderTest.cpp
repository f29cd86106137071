#include <gtest/gtest.h>

#include "process/ProcessInfoProvider.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

constexpr quint64 kMiB = 1024 * 1024;
constexpr quint64 kSecond = 1'000'000'000;
const QString kPs = QStringLiteral("/bin/ps -axo pid=,rss=");

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
    m_table.setProcesses({{10, 1, "busy", kMiB, 0}});
    EXPECT_EQ(m_provider.getProcessCPU(10), 0.0);  // the first reading only sets the base
    m_table.setCpu(10, kSecond);
    EXPECT_EQ(m_provider.getProcessCPU(10), 0.0);  // same instant: nothing, and the base stays
    m_clock.advance(5);
    m_table.setCpu(10, 2 * kSecond + kSecond / 2);
    EXPECT_DOUBLE_EQ(m_provider.getProcessCPU(10), 50.0);  // measured from the first base
    m_clock.advance(2);
    m_table.setCpu(10, 6 * kSecond + kSecond / 2);  // two cores busy
    EXPECT_EQ(m_provider.getProcessCPU(10), 100.0);

    // An unreadable time gives nothing and leaves the base alone.
    m_table.setProcesses({{10, 1, "busy", kMiB, std::nullopt}});
    m_clock.advance(2);
    EXPECT_EQ(m_provider.getProcessCPU(10), 0.0);
    m_table.setCpu(10, 8 * kSecond + kSecond / 2);
    m_clock.advance(2);
    EXPECT_DOUBLE_EQ(m_provider.getProcessCPU(10), 50.0);

    // A new process under the same pid: nothing, then a share from its own base.
    m_clock.advance(5);
    m_table.setCpu(10, 1 * kSecond);
    EXPECT_EQ(m_provider.getProcessCPU(10), 0.0);
    m_clock.advance(4);
    m_table.setCpu(10, 3 * kSecond);
    EXPECT_DOUBLE_EQ(m_provider.getProcessCPU(10), 50.0);
}

TEST_F(ProcessInfoProviderTest, MemoryFallsBackToPsOnlyWhenAProcessNeedsIt) {
    m_table.setProcesses({{1, 0, "init", 10 * kMiB, 0}, {2, 1, "shell", 20 * kMiB, 0}});
    m_provider.getAllProcesses();
    EXPECT_TRUE(m_runner.requests().isEmpty());

    m_runner.respond(kPs, "  3  2048\n  4 garbage\n");
    m_table.setProcesses({{1, 0, "init", 10 * kMiB, 0},
                          {3, 1, "root-owned", std::nullopt, std::nullopt},
                          {4, 1, "unlisted", std::nullopt, std::nullopt}});
    const auto processes = m_provider.getAllProcesses();
    ASSERT_EQ(m_runner.requests().size(), 1);  // once for the whole snapshot
    ASSERT_EQ(processes.size(), 3);
    EXPECT_EQ(processes[0].name, "init");
    EXPECT_EQ(processes[1].name, "root-owned");
    EXPECT_DOUBLE_EQ(processes[1].memoryMB, 2.0);
    EXPECT_EQ(processes[1].cpuPercent, 0.0);
    EXPECT_EQ(processes[2].name, "unlisted");  // kept with no memory figure
    EXPECT_EQ(processes[2].memoryMB, 0.0);
}

TEST_F(ProcessInfoProviderTest, NamelessProcessesAreLeftOutAndTiesKeepKernelOrder) {
    m_table.setProcesses({{5, 1, "a", 1 * kMiB, 0},
                          {6, 1, std::nullopt, 9 * kMiB, 0},
                          {7, 1, "b", 3 * kMiB, 0},
                          {8, 1, "c", 1 * kMiB, 0},
                          {9, 5, "d", 1 * kMiB, 0}});
    const auto processes = m_provider.getAllProcesses();
    QStringList names;
    for (const auto& p : processes) {
        names << p.name;
    }
    EXPECT_EQ(names, (QStringList{"b", "a", "c", "d"}));
    EXPECT_EQ(processes[3].ppid, 5);
    EXPECT_EQ(processes[0].timestamp, m_clock.now());
    EXPECT_EQ(processes[0].immediateOrigin, ProcessOrigin::unknown());
}

TEST_F(ProcessInfoProviderTest, ProgressIsLoggedEveryFiftyPidsAndAFailedListingIsEmpty) {
    std::vector<FakeProcessTable::Process> many;
    for (Pid pid = 1; pid <= 120; ++pid) {
        many.push_back({pid, 0, pid == 51 ? std::nullopt : std::optional<QString>("p"), kMiB, 0});
    }
    m_table.setProcesses(many);
    m_provider.getAllProcesses();
    QStringList progress = m_log.lines().filter("Processed ");
    EXPECT_EQ(progress, (QStringList{"[ProcessInfoProvider] Processed 0/120 PIDs",
                                     "[ProcessInfoProvider] Processed 50/120 PIDs",
                                     "[ProcessInfoProvider] Processed 100/120 PIDs"}));

    m_table.failListing();
    EXPECT_TRUE(m_provider.getAllProcesses().isEmpty());
    EXPECT_TRUE(m_log.contains("[ProcessInfoProvider] Got 0 PIDs in "));
    EXPECT_TRUE(
        m_log.contains("[ProcessInfoProvider] Finished getAllProcesses() - 0 processes in "));
}

TEST_F(ProcessInfoProviderTest, EverySnapshotCarriesBothOrigins) {
    m_jobs.setLaunchctlList("PID\tStatus\tLabel\n30\t0\tcom.example.daemon\n");
    m_table.setProcesses(
        {{1, 0, "init", kMiB, 0}, {30, 1, "daemon", kMiB, 0}, {31, 30, "worker", 2 * kMiB, 0}});
    const ProcessInfo worker = m_provider.getAllProcesses().first();
    EXPECT_EQ(worker.immediateOrigin, ProcessOrigin::launchAgent("com.example.daemon"));
    EXPECT_EQ(worker.rootOrigin, ProcessOrigin::system());
}
