#include <gtest/gtest.h>
#include <time.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QThread>
#include <algorithm>

#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/SystemdServiceJobs.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/qt/SystemClock.h"
#include "process/ProcessInfoProvider.h"
#include "support/ChildProcess.h"
#include "support/LogCapture.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

std::optional<ProcessTableEntry> findEntry(ProcessTable& table, Pid pid) {
    const auto entries = table.list().value_or(std::vector<ProcessTableEntry>{});
    const auto it = std::find_if(entries.begin(), entries.end(),
                                 [&](const ProcessTableEntry& e) { return e.pid == pid; });
    return it == entries.end() ? std::nullopt : std::optional(*it);
}

}  // namespace

TEST(LinuxProcessTable, ChildIsListedUnderThisProcessWithItsWholeLongName) {
    ChildProcess child({"sleep"});
    ASSERT_TRUE(child.ready());
    LinuxProcessTable table;
    const auto entry = findEntry(table, child.pid());
    ASSERT_TRUE(entry.has_value());
    EXPECT_EQ(entry->parentPid, getpid());
    EXPECT_EQ(table.name(child.pid()), QString("zelvar-test-child-with-a-long-name"));
    // Kernel threads are listed too, and pid 1 is there.
    EXPECT_TRUE(findEntry(table, 1).has_value());
}

TEST(LinuxProcessTable, TouchedMemoryShowsAsResident) {
    ChildProcess child({"alloc", "200"});
    ASSERT_TRUE(child.ready());
    LinuxProcessTable table;
    const auto bytes = table.residentBytes(child.pid());
    ASSERT_TRUE(bytes.has_value());
    const double mib = static_cast<double>(*bytes) / (1 << 20);
    EXPECT_GT(mib, 195.0);
    EXPECT_LT(mib, 215.0);
}

TEST(LinuxProcessTable, BusyChildShareMatchesTheKernelsOwnCpuClock) {
    ChildProcess child({"spin"});
    ASSERT_TRUE(child.ready());
    LinuxProcessTable table;
    QProcessCommandRunner runner;
    SystemdServiceJobs jobs(runner);
    SystemClock clock;
    ProcessInfoProvider provider(table, runner, jobs, clock, linuxSystemProfile().originNames);
    // The kernel's per-process CPU clock is an independent measure of the same share; on an
    // idle machine both are near 100, on a loaded one both drop alike.
    clockid_t cpuClock;
    ASSERT_EQ(clock_getcpuclockid(child.pid(), &cpuClock), 0);
    auto seconds = [](clockid_t id) {
        timespec ts{};
        clock_gettime(id, &ts);
        return static_cast<double>(ts.tv_sec) + static_cast<double>(ts.tv_nsec) / 1e9;
    };
    const double cpuBefore = seconds(cpuClock);
    const double wallBefore = seconds(CLOCK_REALTIME);
    EXPECT_EQ(provider.getProcessCPU(child.pid()), 0.0);
    QThread::msleep(700);
    const double share = provider.getProcessCPU(child.pid());
    const double expected =
        100.0 * (seconds(cpuClock) - cpuBefore) / (seconds(CLOCK_REALTIME) - wallBefore);
    EXPECT_GT(expected, 5.0);
    EXPECT_NEAR(share, expected, 12.0);
}

TEST(LinuxProcessTable, VanishedProcessFailsEachRead) {
    Pid pid = 0;
    {
        ChildProcess child({"sleep"});
        ASSERT_TRUE(child.ready());
        pid = child.pid();
    }
    LinuxProcessTable table;
    EXPECT_FALSE(table.name(pid).has_value());
    EXPECT_FALSE(table.residentBytes(pid).has_value());
    EXPECT_FALSE(table.cpuTimeNanoseconds(pid).has_value());
    EXPECT_FALSE(findEntry(table, pid).has_value());
}

TEST(LinuxProcessTable, ReadsAFixtureTreeAndIgnoresNonPidEntries) {
    QTemporaryDir root;
    auto write = [&](const QString& path, const QByteArray& text) {
        QDir(root.path()).mkpath(QFileInfo(root.filePath(path)).path());
        QFile file(root.filePath(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    };
    write("7/stat", "7 (worker) S 3 7 7 0 -1 0 0 0 0 0 100 50 0 0 20 0 1 0 1 1 1\n");
    write("7/statm", "100 25 0 0 0 0 0\n");
    write("7/comm", "worker\n");
    write("self/stat", "garbage\n");
    write("9/comm", "gone\n");  // no stat: ended while being listed
    LinuxProcessTable table(root.path());
    const auto entries = table.list();
    ASSERT_TRUE(entries.has_value());
    ASSERT_EQ(entries->size(), 1u);
    EXPECT_EQ(entries->front().parentPid, 3);
    EXPECT_EQ(table.residentBytes(7), 25u * static_cast<quint64>(sysconf(_SC_PAGESIZE)));
    EXPECT_EQ(table.cpuTimeNanoseconds(7), 150u * (1'000'000'000ULL / sysconf(_SC_CLK_TCK)));
    EXPECT_EQ(table.name(7), QString("worker"));
    EXPECT_FALSE(LinuxProcessTable(root.filePath("missing")).list().has_value());
}
