#include "process/PsFallbackMap.h"
#include "process/ServiceJobParsers.h"
#include "support/Fixture.h"
#include "support/Testing.h"

TEST(LaunchctlListParser, RealListingsKeepRunningJobsOnly) {
    // Whatever line comes first is the header, a shell prompt included; a "PID" line after a
    // prompt is no job.
    const std::tuple<QString, int, Pid, QString> listings[] = {
        {"user-elcapitan", 9, 273, "com.apple.cfprefsd.xpc.agent"},
        {"system-with-prompt", 19, 181,
         "com.apple.loginwindow.39E51D48-6340-440E-A8A5-8EA0482BC63F"},
        {"grep-not-running", 5, 807, "homebrew.mxcl.redis"},
        {"grep-macos26", 4, 643, "application.com.mitchellh.ghostty.651500.651506"},
    };
    for (const auto& [name, size, pid, label] : listings) {
        SCOPED_TRACE(name.toStdString());
        const auto jobs =
            parseLaunchctlList(readFixture("launchctl/launchctl-list-" + name + ".txt"));
        EXPECT_EQ(jobs.size(), size);
        EXPECT_EQ(jobs.value(pid), label);
    }
}

TEST(LaunchctlListParser, FieldsAndLinesOutsideTheGrammar) {
    const QString text = QStringLiteral(
        "PID\tStatus\tLabel\n"
        "\n"
        "0\t0\tcom.example.zero\n"           // pid 0: not running
        "x1\t0\tcom.example.word\n"          // not a number
        "99999999999\t0\tcom.example.big\n"  // past 32 bits
        " 42 \t-9\t com.example.padded \n"   // blanks around the fields
        "7\t\tcom.example.empty-status\textra\n"
        "8\t0\tfirst\n"
        "8\t0\tsecond\n"
        "9 0 com.example.spaces-not-tabs\n"
        "\v11\t0\tcom.example.vertical-tab\n"  // a blank only to a lenient number parser
        "+14\t0\tcom.example.plus-sign\n"
        "10\t0\tcom.example.no-final-newline");
    EXPECT_EQ(parseLaunchctlList(text),
              (QHash<Pid, QString>{{14, "com.example.plus-sign"},
                                   {42, "com.example.padded"},
                                   {7, "com.example.empty-status"},
                                   {8, "second"},
                                   {10, "com.example.no-final-newline"}}));
    EXPECT_TRUE(parseLaunchctlList(u"5\t0\tcom.example.only-line\n\n").isEmpty());
}

TEST(SystemdShowParser, BlocksInAnyOrderWithTheirMainPids) {
    const QString text = QStringLiteral(
        "MainPID=612\n"
        "Id=ssh.service\n"
        "\n"
        "Id=getty@tty1.service\n"
        "MainPID=0\n"  // running without a main process
        "\n"
        "Id=dbus.service\r\n"
        "MainPID=587\r\n"
        "\r\n"
        "MainPID=700\n"  // no Id: nothing to call it
        "\n"
        "Id=.service\n"
        "MainPID=5");
    EXPECT_EQ(parseSystemdShow(text),
              (QHash<Pid, QString>{{612, "ssh"}, {587, "dbus"}, {5, ".service"}}));

    // A real dump has no Id among its first properties; the pid belongs to no name until it
    // comes, and ExecMainPID is not the main pid.
    const QString excerpt = readFixture("systemd/systemctl-show-user-at-1000-excerpt.txt");
    EXPECT_TRUE(parseSystemdShow(excerpt).isEmpty());
    EXPECT_EQ(parseSystemdShow(excerpt + QStringLiteral("Id=user@1000.service\n")),
              (QHash<Pid, QString>{{900, "user@1000"}}));
}

TEST(PsFallbackMap, KeepsWellFormedLinesAndSkipsTheRest) {
    const QByteArray text =
        "    1  12345\n"
        "  87 0\n"
        "abc 10\n"   // not a pid
        "  99\n"     // one field
        "100 12k\n"  // not a number
        "\n"
        "2147483648 5\n"  // pid past 32 bits
        "+-7 10\n"        // two signs
        "\t200\t  4096   extra\n"
        "300 9223372036854775807";  // no final newline, largest 64-bit size
    EXPECT_EQ(parsePsFallbackMap(text),
              (QHash<Pid, qint64>{{1, 12345}, {87, 0}, {200, 4096}, {300, 9223372036854775807LL}}));

    const QByteArray real = readFixture("ps/ps-axo-pid-rss-debian12.txt").toUtf8();
    const auto map = parsePsFallbackMap(real);
    EXPECT_EQ(map.size(), real.count('\n'));
    EXPECT_GT(map.value(1), 0);
}
