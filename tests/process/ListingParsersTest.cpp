#include "process/PsFallbackMap.h"
#include "process/ServiceJobParsers.h"
#include "support/Fixture.h"
#include "support/Testing.h"

using Jobs = QHash<Pid, QString>;

TEST(LaunchctlListParser, RealListingKeepsRunningJobsOnly) {
    // The shell prompt is taken for the header; "Password:", the real header and "-" pids are
    // no jobs.
    const Jobs jobs =
        parseLaunchctlList(readFixture("launchctl/launchctl-list-system-with-prompt.txt"));
    EXPECT_EQ(jobs.size(), 19);
    EXPECT_EQ(jobs.value(181), "com.apple.loginwindow.39E51D48-6340-440E-A8A5-8EA0482BC63F");
}

TEST(LaunchctlListParser, FieldsAndLinesOutsideTheGrammar) {
    const QString text = QStringLiteral(
        "PID\tStatus\tLabel\n\n"
        "0\t0\tzero\nx1\t0\tword\n99999999999\t0\tbig\n"  // pid 0, no number, past 32 bits
        " 42 \t-9\t padded \n7\t\tstatus\textra\n"  // blanks around fields, no status, a 4th field
        "8\t0\tfirst\n8\t0\tsecond\n9 0 spaces\n"   // a repeated pid: the last; spaces, no tabs
        "\v11\t0\tvtab\n+14\t0\tplus\n10\t0\tlast");  // \v: a blank only to a lenient parser
    EXPECT_EQ(parseLaunchctlList(text),
              (Jobs{{14, "plus"}, {42, "padded"}, {7, "status"}, {8, "second"}, {10, "last"}}));
    EXPECT_TRUE(parseLaunchctlList(u"5\t0\tonly-line\n\n").isEmpty());
}

TEST(SystemdShowParser, BlocksInAnyOrderWithTheirMainPids) {
    const QString text = QStringLiteral(
        "MainPID=612\nId=ssh.service\n\n"
        "Id=getty@tty1.service\nMainPID=0\n\n"  // running without a main process
        "Id=dbus.service\r\nMainPID=587\r\n\r\n"
        "MainPID=700\n\n"  // no Id: nothing to call it
        "Id=.service\nMainPID=5");
    EXPECT_EQ(parseSystemdShow(text), (Jobs{{612, "ssh"}, {587, "dbus"}, {5, ".service"}}));

    // A real dump has no Id among its first properties; the pid belongs to no name until it
    // comes, and ExecMainPID is not the main pid.
    const QString excerpt = readFixture("systemd/systemctl-show-user-at-1000-excerpt.txt");
    EXPECT_TRUE(parseSystemdShow(excerpt).isEmpty());
    EXPECT_EQ(parseSystemdShow(excerpt + QStringLiteral("Id=user@1000.service\n")),
              (Jobs{{900, "user@1000"}}));
}

TEST(PsFallbackMap, KeepsWellFormedLinesAndSkipsTheRest) {
    const QByteArray text =
        "    1  12345\n  87 0\n\t200\t  4096   extra\n"
        "abc 10\n  99\n100 12k\n\n"  // no pid, one field, no number, none at all
        "2147483648 5\n+-7 10\n"     // a pid past 32 bits, two signs
        "300 9223372036854775807";   // no final newline, the largest 64-bit size
    EXPECT_EQ(parsePsFallbackMap(text),
              (QHash<Pid, qint64>{{1, 12345}, {87, 0}, {200, 4096}, {300, 9223372036854775807LL}}));

    const QByteArray real = readFixture("ps/ps-axo-pid-rss-debian12.txt").toUtf8();
    const auto map = parsePsFallbackMap(real);
    EXPECT_EQ(map.size(), real.count('\n'));
    EXPECT_GT(map.value(1), 0);
}
