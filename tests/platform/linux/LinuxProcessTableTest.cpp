#include <unistd.h>

#include "platform/linux/LinuxProcessTable.h"
#include "platform/linux/ProcStat.h"
#include "support/Testing.h"

TEST(ProcStat, ReadsParentTicksAndStartAfterTheLastParenthesis) {
    for (const QByteArray& comm :
         {QByteArray("tmux: server"), QByteArray("a) S 99 (b"), QByteArray("()"), QByteArray("")}) {
        const auto stat = parseProcStat(
            "4242 (" + comm +
            ") S 17 4242 4242 0 -1 4194560 1234 0 0 0 250 75 0 0 20 0 1 0 12345 1000000 300\n");
        ASSERT_TRUE(stat.has_value()) << comm.toStdString();
        EXPECT_EQ(std::tuple(stat->pid, stat->comm, stat->parentPid, stat->userTicks,
                             stat->systemTicks, stat->startTicks),
                  std::tuple(4242, comm, 17, 250u, 75u, 12345u));
    }
    for (const char* broken :
         {"", "4242 (bash", "4242 (bash) S 17 4242 4242 0 -1 4194560 1234 0 0 0 250",
          "x (bash) S 17 1 1 0 -1 1 1 0 0 0 250 75 0",
          "1 (bash) S p 1 1 0 -1 1 1 0 0 0 250 75 0"}) {
        EXPECT_FALSE(parseProcStat(broken).has_value()) << broken;
    }
    EXPECT_EQ(std::tuple(parseStatmResidentPages("2000 512 100 10 0 300 0\n"),
                         parseStatmResidentPages("0 0 0 0 0 0 0\n"),
                         parseStatmResidentPages("2000\n"), parseStatmResidentPages("")),
              std::tuple(512u, 0u, std::nullopt, std::nullopt));
}

TEST(ProcStat, FullNameOnlyReplacesACutOrEmptyCommandName) {
    // A cut name gives way to the first argument's base name, or first word, beginning with it;
    // an empty one to the first argument's base name.
    const std::tuple<QByteArray, QByteArray, QByteArray> cases[] = {
        {"bash", QByteArray("/bin/bash\0-l\0", 13), "bash"},
        {"gnome-terminal-", QByteArray("/usr/libexec/gnome-terminal-server\0", 35),
         "gnome-terminal-server"},
        {"chromium-browse", "/usr/lib/chromium/chromium-browser --type=renderer --x=/a/b",
         "chromium-browser"},
        {"kworker/u8:2-ev", "", "kworker/u8:2-ev"},
        {"python3.11-long", QByteArray("/usr/bin/python3\0x.py\0", 22), "python3.11-long"},
        {"", QByteArray("/opt/bin/hidden worker\0-v\0", 26), "hidden worker"},
        {"", "", ""}};
    for (const auto& [comm, commandLine, expected] : cases) {
        EXPECT_EQ(fullProcessName(comm, commandLine), expected) << comm.toStdString();
    }
}

// The live table of this machine is checked against ps by the processes report's test.
TEST(LinuxProcessTable, ReadsAFixtureTreeAndIgnoresNonPidEntries) {
    QTemporaryDir root;
    const std::pair<QString, QByteArray> files[] = {
        {"7/stat", "7 (zelvar-test-chi) S 3 7 7 0 -1 0 0 0 0 0 100 50 0 0 20 0 1 0 4321 1 25\n"},
        {"7/statm", "100 25 0 0 0 0 0\n"},
        {"7/comm", "zelvar-test-chi\n"},
        {"7/cmdline", QByteArray("/bin/zelvar-test-child\0--x\0", 27)},
        {"self/stat", "garbage\n"},
        {"9/comm", "gone\n"},  // no stat: ended while being listed
        {"11/comm", "\n"},     // emptied by the process itself
        {"11/cmdline", QByteArray("/usr/bin/renamed\0-v\0", 20)},
        {"12/comm", "\n"}};
    for (const auto& [path, text] : files) {
        QDir(root.path()).mkpath(path.section('/', 0, 0));
        QFile file(root.filePath(path));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(text) == text.size());
    }
    LinuxProcessTable table(root.path());
    const auto entries = table.list().value_or(std::vector<ProcessTableEntry>{});
    ASSERT_EQ(entries.size(), 1u);
    EXPECT_EQ(std::tuple(entries[0].pid, entries[0].parentPid, entries[0].startTime, table.name(7),
                         table.residentBytes(7), table.cpuTimeNanoseconds(7), table.name(11)),
              std::tuple(7, 3, 4321u, QString("zelvar-test-child"),
                         25u * static_cast<quint64>(sysconf(_SC_PAGESIZE)),
                         150u * (1'000'000'000ULL / sysconf(_SC_CLK_TCK)), QString("renamed")));
    // The listing's figures are those of the separate reads of comm, statm and stat.
    ASSERT_TRUE(entries[0].figures.has_value());
    EXPECT_EQ(std::tuple(entries[0].figures->name, entries[0].figures->residentBytes,
                         std::optional(entries[0].figures->cpuTimeNanoseconds)),
              std::tuple(table.name(7), table.residentBytes(7), table.cpuTimeNanoseconds(7)));
    EXPECT_FALSE(table.name(8) || table.name(12) || table.residentBytes(8) ||
                 table.cpuTimeNanoseconds(8) ||
                 LinuxProcessTable(root.filePath("missing")).list().has_value());
}

// On this machine: the names and CPU times of the listing, taken from stat, agree with the
// separate reads of comm and stat made just after it (CPU time never ahead of the later read).
// Kernel threads are left out: a workqueue worker renames itself for each job it takes.
TEST(LinuxProcessTableLiveTest, ListingFiguresMatchThePerProcessReads) {
    LinuxProcessTable table;
    const auto entries = table.list().value_or(std::vector<ProcessTableEntry>{});
    ASSERT_GT(entries.size(), 3u);
    int compared = 0;
    for (const ProcessTableEntry& entry : entries) {
        const auto name = table.name(entry.pid);
        const auto cpu = table.cpuTimeNanoseconds(entry.pid);
        if (!name || !cpu || entry.pid == 2 || entry.parentPid == 2) {
            continue;  // ended in between, or a kernel thread
        }
        ASSERT_TRUE(entry.figures.has_value());
        EXPECT_EQ(entry.figures->name, name) << entry.pid;
        EXPECT_LE(entry.figures->cpuTimeNanoseconds, *cpu) << entry.pid;
        ++compared;
    }
    EXPECT_GT(compared, 3);
}
