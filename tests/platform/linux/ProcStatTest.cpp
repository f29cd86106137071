#include <gtest/gtest.h>

#include "platform/linux/ProcStat.h"

using namespace zelvar;

TEST(ProcStat, ReadsParentAndTicksAfterTheLastParenthesis) {
    for (const QByteArray& comm : {QByteArray("bash"), QByteArray("tmux: server"),
                                   QByteArray("a) S 99 (b"), QByteArray("()"), QByteArray("")}) {
        const auto stat = parseProcStat(
            "4242 (" + comm +
            ") S 17 4242 4242 0 -1 4194560 1234 0 0 0 250 75 0 0 20 0 1 0 12345 1000000 300\n");
        ASSERT_TRUE(stat.has_value()) << comm.toStdString();
        EXPECT_EQ(stat->pid, 4242);
        EXPECT_EQ(stat->comm, comm);
        EXPECT_EQ(stat->parentPid, 17);
        EXPECT_EQ(stat->userTicks, 250u);
        EXPECT_EQ(stat->systemTicks, 75u);
    }
    for (const char* broken :
         {"", "4242 (bash", "4242 (bash) S 17 4242 4242 0 -1 4194560 1234 0 0 0 250",
          "x (bash) S 17 1 1 0 -1 1 1 0 0 0 250 75 0",
          "1 (bash) S p 1 1 0 -1 1 1 0 0 0 250 75 0"}) {
        EXPECT_FALSE(parseProcStat(broken).has_value()) << broken;
    }
}

TEST(ProcStat, StatmResidentIsTheSecondField) {
    EXPECT_EQ(parseStatmResidentPages("2000 512 100 10 0 300 0\n"), 512u);
    EXPECT_EQ(parseStatmResidentPages("0 0 0 0 0 0 0\n"), 0u);
    EXPECT_FALSE(parseStatmResidentPages("2000\n").has_value());
    EXPECT_FALSE(parseStatmResidentPages("").has_value());
}

TEST(ProcStat, FullNameOnlyReplacesACutCommandName) {
    // Under 15 bytes the kernel's name is whole.
    EXPECT_EQ(fullProcessName("bash", QByteArray("/bin/bash\0-l\0", 13)), "bash");
    // Cut at 15 bytes: the argument's base name when it begins with the cut name.
    EXPECT_EQ(
        fullProcessName("gnome-terminal-", QByteArray("/usr/libexec/gnome-terminal-server\0", 35)),
        "gnome-terminal-server");
    // A title rewritten into one argument: its first word.
    EXPECT_EQ(fullProcessName("chromium-browse",
                              "/usr/lib/chromium/chromium-browser --type=renderer --x=/a/b"),
              "chromium-browser");
    // An argument that does not begin with the cut name leaves it alone.
    EXPECT_EQ(fullProcessName("kworker/u8:2-ev", QByteArray()), "kworker/u8:2-ev");
    EXPECT_EQ(fullProcessName("python3.11-long", QByteArray("/usr/bin/python3\0x.py\0", 22)),
              "python3.11-long");
}
