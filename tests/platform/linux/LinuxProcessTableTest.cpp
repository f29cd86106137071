#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>

#include "platform/linux/LinuxProcessTable.h"
#include "support/LiveMachine.h"
#include "support/QtPrinters.h"

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

TEST(LinuxProcessTableLive, AChildIsListedWithItsLongNameAndTouchedMemoryUntilItEnds) {
    LinuxProcessTable table;
    Pid pid = 0;
    {
        ChildProcess child({"alloc", "200"});
        ASSERT_TRUE(child.ready());
        pid = child.pid();
        EXPECT_EQ(findEntry(table, pid).value_or(ProcessTableEntry{}).parentPid, getpid());
        EXPECT_EQ(table.name(pid), QString("zelvar-test-child-with-a-long-name"));
        const double mib = static_cast<double>(table.residentBytes(pid).value_or(0)) / (1 << 20);
        EXPECT_NEAR(mib, 205.0, 10.0);
        EXPECT_TRUE(table.cpuTimeNanoseconds(pid) && findEntry(table, 1));  // pid 1 is listed too
    }
    EXPECT_FALSE(table.name(pid) || table.residentBytes(pid) || table.cpuTimeNanoseconds(pid) ||
                 findEntry(table, pid));
}

TEST(LinuxProcessTable, ReadsAFixtureTreeAndIgnoresNonPidEntries) {
    QTemporaryDir root;
    const std::pair<QString, QByteArray> files[] = {
        {"7/stat", "7 (worker) S 3 7 7 0 -1 0 0 0 0 0 100 50 0 0 20 0 1 0 1 1 1\n"},
        {"7/statm", "100 25 0 0 0 0 0\n"},
        {"7/comm", "worker\n"},
        {"self/stat", "garbage\n"},
        {"9/comm", "gone\n"}};  // no stat: ended while being listed
    for (const auto& [path, text] : files) {
        QDir(root.path()).mkpath(path.section('/', 0, 0));
        QFile file(root.filePath(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    LinuxProcessTable table(root.path());
    const auto entries = table.list();
    ASSERT_EQ(entries.value_or(std::vector<ProcessTableEntry>{}).size(), 1u);
    EXPECT_EQ(std::tuple(entries->front().parentPid, table.name(7), table.residentBytes(7),
                         table.cpuTimeNanoseconds(7)),
              std::tuple(3, QString("worker"), 25u * static_cast<quint64>(sysconf(_SC_PAGESIZE)),
                         150u * (1'000'000'000ULL / sysconf(_SC_CLK_TCK))));
    EXPECT_FALSE(LinuxProcessTable(root.filePath("missing")).list().has_value());
}
