#include <QProcess>
#include <QRegularExpression>

#include "app/CommandLine.h"
#include "support/Testing.h"

TEST(CommandLineTest, ReportValuesInBothSpellingsDefaultsAndTheFloorNote) {
    const CommandLine::Command command =
        CommandLine::parse({"report", "tree", "--json", "--cycles", "3", "--interval=1.5"});
    ASSERT_EQ(command.action, CommandLine::Action::Report) << command.errors.toStdString();
    const ReportOptions& options = command.options;
    EXPECT_EQ(
        std::tuple(command.report->name, options.flag("json"), options.flag("verbose"),
                   options.number("cycles"), options.number("interval"), options.number("depth")),
        std::tuple(QString("tree"), true, false, 3.0, 1.5, 0.0));
    EXPECT_EQ(command.errors,
              "zelvar2: --interval 1.5 is below the 3-second floor; sampling every 3 s\n");

    const CommandLine::Command history = CommandLine::parse(
        {"report", "history", "--since=2024-03-01T10:30:00+01:00", "--follow", "--from-log",
         ZELVAR_FIXTURES_DIR "/power/pmset/t480-clamshell-batt.txt"});
    ASSERT_EQ(history.action, CommandLine::Action::Report) << history.errors.toStdString();
    EXPECT_EQ(history.options.text("since"), "2024-03-01T10:30:00+01:00");
    EXPECT_TRUE(history.options.flag("follow"));
    EXPECT_FALSE(history.options.flag("json"));
    EXPECT_TRUE(history.options.text("from-log").endsWith("t480-clamshell-batt.txt"));
}

// Each command line, run as the program with no display, session bus or settings: help and
// the version on standard output, mistakes as one line and a hint on standard error. Nothing
// starts the tray app, whose log lines begin with a tag such as "[AppDelegate]".
TEST(CommandLineLiveTest, ExitStatusAndFirstLinesWithoutStartingTheTrayApp) {
    QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS",
                             "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME"}) {
        environment.remove(name);
    }
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("HOME", home.path());
    // The exit status and the first lines of standard output and standard error.
    const auto run = [&](const QString& arguments) {
        SCOPED_TRACE(arguments.toStdString());
        QProcess program;
        program.setProcessEnvironment(environment);
        program.start(ZELVAR_PROGRAM, arguments.split(' '));
        const bool finished = program.waitForFinished(10000);
        if (!finished) {
            program.kill();
            program.waitForFinished();
        }
        const QString err = program.readAllStandardError();
        EXPECT_TRUE(finished);
        EXPECT_FALSE(
            err.contains(QRegularExpression(R"(^\[\w+\] )", QRegularExpression::MultilineOption)));
        return std::tuple(program.exitCode(), QString(program.readAllStandardOutput()), err);
    };
    const std::pair<QString, QString> helps[] = {
        {"--help", "Usage: zelvar2 [options]"},
        {"-h", "Usage: zelvar2 [options]"},
        {"help", "Usage: zelvar2 [options]"},
        {"--version", "zelvar2 " ZELVAR_VERSION},
        {"report --help", "Usage: zelvar2 report <what> [options]"},
        {"report processes --help", "Usage: zelvar2 report processes [options]"},
        {"report network -h", "Usage: zelvar2 report network [options]"},
    };
    for (const auto& [arguments, line] : helps) {
        const auto [code, out, err] = run(arguments);
        EXPECT_EQ(std::tuple(code, out.section('\n', 0, 0), err), std::tuple(0, line, ""));
    }
    const QString top = "zelvar2 takes --dashboard, --uninstall-daemon, --help and --version";
    const QString processes =
        "report processes takes --json, --verbose, --help, --cycles and "
        "--interval";
    const std::pair<QString, QString> refusals[] = {
        {"--bogus", "unknown option --bogus; " + top},
        {"-x", "unknown option -x; " + top},
        {"foo", R"(unknown command "foo"; the commands are report and help)"},
        {"reports processes", R"(unknown command "reports"; the commands are report and help)"},
        {"\x1b[2Jfoo\nbar",
         R"(unknown command "\x1b[2Jfoo\nbar"; the commands are report and help)"},
        {"report",
         "report needs to know what to report: processes, tree, disk, network, power, history, "
         "daemon, audio or focus"},
        {"report foo",
         R"(unknown report "foo"; the reports are processes, tree, disk, network, power, history, daemon, audio and focus)"},
        {"--uninstall-daemon --dashboard", "--uninstall-daemon can't go with --dashboard"},
        {"report disk --cycles 3",
         "unknown option --cycles; zelvar2 report disk takes --json, --verbose and --help"},
        {"report processes --bogus", "unknown option --bogus; zelvar2 " + processes},
        {"report processes --cycles x", R"(--cycles takes a whole number from 1 to 1000, not "x")"},
        {"report processes --cycles", "--cycles needs a value: a whole number from 1 to 1000"},
        {"report tree --depth=2.5", R"(--depth takes a whole number from 1 to 100000, not "2.5")"},
        {"report network --seconds 4000",
         R"(--seconds takes a number of seconds from 0 to 3600, not "4000")"},
        {"report processes --json=yes", R"(--json takes no value, not "yes")"},
        {"report history --since 2024-13-01",
         R"(--since takes a date such as 2024-03-01 or 2024-03-01T10:30:00+01:00: "2024-13-01" is not a date)"},
        {"report history --from-log /no/such/log",
         R"(--from-log takes a readable file: there is no file "/no/such/log")"},
        {"report history --follow=1", R"(--follow takes no value, not "1")"},
        {"report processes stray",
         R"(unexpected argument "stray"; zelvar2 report processes takes options only)"},
    };
    for (const auto& [arguments, message] : refusals) {
        const auto [code, out, err] = run(arguments);
        EXPECT_EQ(std::tuple(code, out, err.section('\n', 0, 0), err.count('\n')),
                  std::tuple(2, "", "zelvar2: " + message, 2));
        EXPECT_TRUE(
            err.section('\n', 1).contains(QRegularExpression("^Try 'zelvar2.* --help'.\n$")))
            << err.toStdString();
    }
    // A saved power log read on any system: its nine events and their statistics.
    const auto [logCode, logOut, logErr] = run("report history --from-log " ZELVAR_FIXTURES_DIR
                                               "/power/pmset/minotebook14-idle-batt.txt");
    EXPECT_EQ(std::tuple(logCode, logOut.section('\n', 0, 0), logErr),
              std::tuple(0, "Events: 9 from 2021-06-04T11:30:29Z to 2021-06-04T11:47:12Z", ""));
    const auto [followCode, followOut, followErr] =
        run("report history --follow --from-log " ZELVAR_FIXTURES_DIR
            "/power/pmset/t480-clamshell-batt.txt");
    EXPECT_EQ(std::tuple(followCode, followOut, followErr),
              std::tuple(2, "",
                         "zelvar2: --follow polls this system's power log; a saved log has no "
                         "news\n"));
    const auto [code, out, err] = run("report processes --json --cycles 1 --interval 1");
    EXPECT_EQ(std::tuple(code, out.left(1), err),
              std::tuple(0, "[",
                         "zelvar2: --interval 1 is below the 3-second floor; sampling "
                         "every 3 s\n"));
}
