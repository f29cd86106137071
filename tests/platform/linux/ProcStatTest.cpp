#include <gtest/gtest.h>

#include "platform/linux/ProcStat.h"
#include "support/QtPrinters.h"

using namespace zelvar;

TEST(ProcStat, ReadsParentAndTicksAfterTheLastParenthesis) {
    for (const QByteArray& comm : {QByteArray("bash"), QByteArray("tmux: server"),
                                   QByteArray("a) S 99 (b"), QByteArray("()"), QByteArray("")}) {
        const auto stat = parseProcStat(
            "4242 (" + comm +
            ") S 17 4242 4242 0 -1 4194560 1234 0 0 0 250 75 0 0 20 0 1 0 12345 1000000 300\n");
        ASSERT_TRUE(stat.has_value()) << comm.toStdString();
        EXPECT_EQ(
            std::tuple(stat->pid, stat->comm, stat->parentPid, stat->userTicks, stat->systemTicks),
            std::tuple(4242, comm, 17, 250u, 75u));
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
    EXPECT_FALSE(parseStatmResidentPages("2000\n") || parseStatmResidentPages(""));
}

TEST(ProcStat, FullNameOnlyReplacesACutCommandName) {
    // A name under 15 bytes is whole; a cut one gives way to the first argument's base name (up
    // to a blank, for a title rewritten into one argument) when that begins with it.
    const std::tuple<QByteArray, QByteArray, QByteArray> cases[] = {
        {"bash", QByteArray("/bin/bash\0-l\0", 13), "bash"},
        {"gnome-terminal-", QByteArray("/usr/libexec/gnome-terminal-server\0", 35),
         "gnome-terminal-server"},
        {"chromium-browse", "/usr/lib/chromium/chromium-browser --type=renderer --x=/a/b",
         "chromium-browser"},
        {"kworker/u8:2-ev", "", "kworker/u8:2-ev"},
        {"python3.11-long", QByteArray("/usr/bin/python3\0x.py\0", 22), "python3.11-long"}};
    for (const auto& [comm, commandLine, expected] : cases) {
        EXPECT_EQ(fullProcessName(comm, commandLine), expected) << comm.toStdString();
    }
}
