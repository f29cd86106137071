#include <gtest/gtest.h>

#include "process/ServiceJobParsers.h"
#include "support/Fixture.h"

using namespace zelvar;
using zelvar::test::readFixture;

TEST(LaunchctlListParser, RealListingsKeepRunningJobsOnly) {
    const auto user =
        parseLaunchctlList(readFixture("launchctl/launchctl-list-user-elcapitan.txt"));
    EXPECT_EQ(user.size(), 9);
    EXPECT_EQ(user.value(279), "com.apple.Finder");
    EXPECT_EQ(user.value(399), "com.apple.mdworker.shared.04000000-0000-0000-0000-000000000000");
    EXPECT_EQ(user.value(273), "com.apple.cfprefsd.xpc.agent");  // the last line

    // The prompt is taken for the header; "Password:" and the real header are skipped.
    const auto system =
        parseLaunchctlList(readFixture("launchctl/launchctl-list-system-with-prompt.txt"));
    EXPECT_EQ(system.size(), 19);
    EXPECT_EQ(system.value(181), "com.apple.loginwindow.39E51D48-6340-440E-A8A5-8EA0482BC63F");

    // Without a header the first job is lost, as the grammar says; "-" is not running.
    const auto grep =
        parseLaunchctlList(readFixture("launchctl/launchctl-list-grep-not-running.txt"));
    EXPECT_EQ(grep.size(), 5);
    EXPECT_EQ(grep.value(807), "homebrew.mxcl.redis");
    EXPECT_FALSE(grep.values().contains("homebrew.mxcl.postgresql"));

    const auto recent =
        parseLaunchctlList(readFixture("launchctl/launchctl-list-grep-macos26.txt"));
    EXPECT_EQ(recent.size(), 4);
    EXPECT_EQ(recent.value(643), "application.com.mitchellh.ghostty.651500.651506");
}

TEST(LaunchctlListParser, FieldsAndLinesOutsideTheGrammar) {
    const QString text = QStringLiteral(
        "PID\tStatus\tLabel\n"
        "\n"
        "0\t0\tcom.example.zero\n"           // pid 0: not running
        "-3\t0\tcom.example.negative\n"      // below 1
        "12\t0\n"                            // two fields
        "x1\t0\tcom.example.word\n"          // not a number
        "99999999999\t0\tcom.example.big\n"  // past 32 bits
        " 42 \t-9\t com.example.padded \n"   // blanks around the fields
        "7\t\tcom.example.empty-status\textra\n"
        "8\t0\tfirst\n"
        "8\t0\tsecond\n"
        "9 0 com.example.spaces-not-tabs\n"
        "\v11\t0\tcom.example.vertical-tab\n"  // a blank only to a lenient number parser
        "13\r\t0\tcom.example.carriage-return\n"
        "+14\t0\tcom.example.plus-sign\n"
        "10\t0\tcom.example.no-final-newline");
    EXPECT_EQ(parseLaunchctlList(text),
              (QHash<Pid, QString>{{14, "com.example.plus-sign"},
                                   {42, "com.example.padded"},
                                   {7, "com.example.empty-status"},
                                   {8, "second"},
                                   {10, "com.example.no-final-newline"}}));

    EXPECT_TRUE(parseLaunchctlList(u"").isEmpty());
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
        "Id=org.gnome.Shell@wayland.service\n"
        "MainPID=1402\n"
        "\n"
        "Id=.service\n"
        "MainPID=5");
    EXPECT_EQ(
        parseSystemdShow(text),
        (QHash<Pid, QString>{
            {612, "ssh"}, {587, "dbus"}, {1402, "org.gnome.Shell@wayland"}, {5, ".service"}}));
    EXPECT_TRUE(parseSystemdShow(u"").isEmpty());
}

TEST(SystemdShowParser, FullPropertyDumpOfOneUnit) {
    // A real dump has no Id among its first properties; the pid belongs to no name until it
    // comes, and ExecMainPID is not the main pid.
    const QString excerpt = readFixture("systemd/systemctl-show-user-at-1000-excerpt.txt");
    EXPECT_TRUE(parseSystemdShow(excerpt).isEmpty());
    const auto map = parseSystemdShow(excerpt + QStringLiteral("Id=user@1000.service\n"));
    EXPECT_EQ(map, (QHash<Pid, QString>{{900, "user@1000"}}));
}
