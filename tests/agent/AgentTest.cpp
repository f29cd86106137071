#include <QCoreApplication>

#include "agent/DetachedDaemonStarter.h"
#include "agent/LaunchAgentManager.h"
#include "agent/LaunchdServiceManager.h"
#include "agent/ServiceCommand.h"
#include "agent/SystemdUserServiceManager.h"
#include "daemon/DaemonLock.h"
#include "platform/DaemonLauncher.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

namespace {

const QString kSkip = QStringLiteral(
    "[LaunchAgentManager] Daemon already running with current config — skipping reinstall");
const QString kChanged = QStringLiteral(
    "[LaunchAgentManager] Daemon launch configuration changed — reinstalling daemon");

void put(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

QByteArray contentOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QStringList commandLines(const FakeCommandRunner& runner) {
    QStringList lines;
    for (const CommandRequest& request : runner.requests()) {
        lines << (QStringList{request.program} + request.arguments).join(' ');
    }
    return lines;
}

// A home with an executable helper, the launchd manager over a fake launchctl, uid 501.
struct LaunchdHome {
    QTemporaryDir home;
    FakeCommandRunner runner;
    QString agents = home.filePath("Library/LaunchAgents");
    QString logs = home.filePath("Library/Logs/Zelvar2");
    QString helper = home.filePath("Zelvar+.app/Contents/MacOS/Zelvar2Daemon");
    LaunchdServiceManager manager{runner, agents, logs, 501};
    LaunchAgentManager agent{manager, helper, logs};
    QString plist = agents + "/com.orlen.zelvar2.daemon.plist";

    LaunchdHome() {
        put(helper, "#!/bin/sh\n");
        QFile::setPermissions(helper, QFile::ReadOwner | QFile::ExeOwner);
    }
    void loaded() {
        runner.respond("/bin/launchctl print gui/501/com.orlen.zelvar2.daemon",
                       "gui/501/com.orlen.zelvar2.daemon = {\n\tstate = running\n}\n");
    }
    void loads() {
        runner.respond("/bin/launchctl bootstrap gui/501 " + plist, "");
        runner.respond("/bin/launchctl kickstart -k gui/501/com.orlen.zelvar2.daemon", "");
    }
    QByteArray current() const {
        return LaunchdServiceManager::plistText(LaunchAgentManager::programArguments(helper, logs),
                                                logs);
    }
};

}  // namespace

TEST(LaunchdServiceManagerTest, ThePropertyListIsTheSerialiserTextByteForByte) {
    const QStringList arguments = LaunchAgentManager::programArguments(
        "/Applications/R&D <beta>/Zelvar+.app/Contents/MacOS/Zelvar2Daemon",
        "/Users/ann/Library/Logs/Zelvar2");
    const QByteArray expected =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
        "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
        "<plist version=\"1.0\">\n"
        "<dict>\n"
        "\t<key>KeepAlive</key>\n\t<true/>\n"
        "\t<key>Label</key>\n\t<string>com.orlen.zelvar2.daemon</string>\n"
        "\t<key>LowPriorityIO</key>\n\t<true/>\n"
        "\t<key>Nice</key>\n\t<integer>10</integer>\n"
        "\t<key>ProcessType</key>\n\t<string>Background</string>\n"
        "\t<key>ProgramArguments</key>\n\t<array>\n"
        "\t\t<string>/Applications/R&amp;D &lt;beta&gt;/Zelvar+.app/Contents/MacOS/Zelvar2Daemon"
        "</string>\n"
        "\t\t<string>--ram-threshold</string>\n\t\t<string>50</string>\n"
        "\t\t<string>--interval</string>\n\t\t<string>10</string>\n"
        "\t\t<string>--log-file</string>\n"
        "\t\t<string>/Users/ann/Library/Logs/Zelvar2/events.jsonl</string>\n"
        "\t</array>\n"
        "\t<key>RunAtLoad</key>\n\t<true/>\n"
        "\t<key>StandardErrorPath</key>\n"
        "\t<string>/Users/ann/Library/Logs/Zelvar2/daemon.stderr.log</string>\n"
        "\t<key>StandardOutPath</key>\n"
        "\t<string>/Users/ann/Library/Logs/Zelvar2/daemon.stdout.log</string>\n"
        "</dict>\n"
        "</plist>\n";
    const QByteArray text =
        LaunchdServiceManager::plistText(arguments, "/Users/ann/Library/Logs/Zelvar2");
    EXPECT_EQ(text, expected);
    const auto fields = LaunchdServiceManager::readPlist(text);
    ASSERT_TRUE(fields);
    EXPECT_EQ(fields->label, "com.orlen.zelvar2.daemon");
    EXPECT_EQ(fields->programArguments, arguments);
    EXPECT_FALSE(LaunchdServiceManager::readPlist("not xml"));
    EXPECT_FALSE(LaunchdServiceManager::readPlist("<plist><array/></plist>"));
}

TEST(LaunchAgentManagerTest, AMissingHelperFailsBeforeAnythingIsTouched) {
    LaunchdHome h;
    QFile::remove(h.helper);
    EXPECT_EQ(h.agent.installOrReplace(),
              (AgentError{1, "Bundled daemon helper is missing: " + h.helper}));
    EXPECT_FALSE(QFileInfo::exists(h.agents));
    EXPECT_TRUE(h.runner.requests().isEmpty());
}

TEST(LaunchAgentManagerTest, ACurrentLoadedAgentIsLeftAloneWhateverItsOtherArguments) {
    LaunchdHome h;
    h.loaded();
    const QByteArray installed = LaunchdServiceManager::plistText(
        {h.helper, "--interval", "99", "--log-file", "/elsewhere"}, h.logs);
    put(h.plist, installed);
    LogCapture log;
    EXPECT_FALSE(h.agent.installOrReplace());
    EXPECT_EQ(log.lines(), QStringList{kSkip});
    EXPECT_EQ(commandLines(h.runner),
              QStringList{"/bin/launchctl print gui/501/com.orlen.zelvar2.daemon"});
    EXPECT_EQ(contentOf(h.plist), installed);
}

TEST(LaunchAgentManagerTest, AnOutdatedOrUnreadableLoadedAgentIsReplaced) {
    for (const bool readable : {true, false}) {
        LaunchdHome h;
        h.loaded();
        h.loads();
        put(h.plist, readable ? LaunchdServiceManager::plistText(
                                    {h.helper, "--disk-threshold", "500"}, h.logs)
                              : QByteArray("<plist><dict><key>Label"));
        LogCapture log;
        EXPECT_FALSE(h.agent.installOrReplace());
        // The "changed" line only when the old list could be read.
        EXPECT_EQ(log.lines(), readable ? QStringList{kChanged} : QStringList{});
        EXPECT_EQ(contentOf(h.plist), h.current());
        const QStringList commands = commandLines(h.runner);
        ASSERT_GE(commands.size(), 3);
        EXPECT_EQ(commands[1], "/bin/launchctl bootout gui/501/com.orlen.zelvar2.daemon");
        EXPECT_EQ(commands[2], "/bin/launchctl bootout gui/501 " + h.plist);
        EXPECT_EQ(commands.mid(commands.size() - 2),
                  (QStringList{"/bin/launchctl bootstrap gui/501 " + h.plist,
                               "/bin/launchctl kickstart -k gui/501/com.orlen.zelvar2.daemon"}));
    }
}

TEST(LaunchAgentManagerTest, NotLoadedMeansInstallEvenOverACurrentListAndFailuresCarryTheirText) {
    LaunchdHome h;
    // print fails, or answers without the label: not loaded.
    h.runner.respond("/bin/launchctl print gui/501/com.orlen.zelvar2.daemon", "other", 0);
    put(h.plist, h.current());
    h.runner.respond("/bin/launchctl bootstrap gui/501 " + h.plist,
                     {.started = true, .exitCode = 5, .standardOutput = "Bootstrap failed: 5"});
    LogCapture log;
    EXPECT_EQ(h.agent.installOrReplace(), (AgentError{5, "Bootstrap failed: 5"}));
    EXPECT_TRUE(log.lines().isEmpty());
    EXPECT_EQ(contentOf(h.plist), h.current()) << "the list stays for the next launch";
    EXPECT_FALSE(h.agent.isLoaded());

    FakeCommandRunner runner;
    runner.respond("/bin/launchctl print x", {.started = true, .timedOut = true});
    runner.respond(
        "/bin/launchctl bootout x",
        {.started = true, .exitCode = 3, .standardOutput = "out", .standardError = "err"});
    EXPECT_EQ(std::get<AgentError>(ServiceCommand::run(runner, "/bin/launchctl", {"print", "x"})),
              (AgentError{124, "launchctl timed out: print x"}));
    EXPECT_EQ(std::get<AgentError>(ServiceCommand::run(runner, "/bin/launchctl", {"bootout", "x"})),
              (AgentError{3, "err"}));
    EXPECT_EQ(runner.requests().first().timeoutSeconds, 5.0);
}

TEST(LaunchAgentManagerTest, UninstallRemovesOldLabelsAndListsThatCarryAMarker) {
    LaunchdHome h;
    const auto list = [&](const QString& name, const QString& label, const QStringList& args) {
        QByteArray text = LaunchdServiceManager::plistText(args, "/l");
        if (label.isEmpty()) {
            text.replace("\t<key>Label</key>\n\t<string>com.orlen.zelvar2.daemon</string>\n", "");
        } else {
            text.replace("com.orlen.zelvar2.daemon", label.toUtf8());
        }
        put(h.agents + "/" + name, text);
        return h.agents + "/" + name;
    };
    const QString old =
        list("com.orlen.Wattlog.sampler.plist", "com.orlen.Wattlog.sampler", {"/x"});
    const QString marked = list("nolabel.plist", "", {"/Applications/Zelvar2.app/run"});
    const QString unrelated = list("com.example.sync.plist", "com.example.sync", {"/usr/bin/true"});
    const QString upper = list("shouty.PLIST", "com.example.Zelvar2", {"/x"});
    const QString lower = list("lower.plist", "com.example.lower", {"/opt/zelvar2/run"});
    h.agent.uninstall();
    EXPECT_FALSE(QFileInfo::exists(old));
    EXPECT_FALSE(QFileInfo::exists(marked));
    EXPECT_TRUE(QFileInfo::exists(unrelated));
    EXPECT_TRUE(QFileInfo::exists(upper)) << "the extension test is exact";
    EXPECT_TRUE(QFileInfo::exists(lower)) << "markers are case-sensitive";
    const QStringList commands = commandLines(h.runner);
    // Six labels, two bootouts each, then the marked file by its path alone.
    ASSERT_EQ(commands.size(), 13);
    EXPECT_EQ(commands[10], "/bin/launchctl bootout gui/501/com.orlen.Wattlog.correlation");
    EXPECT_EQ(commands[12], "/bin/launchctl bootout gui/501 " + marked);
}

TEST(SystemdUserServiceManagerTest, TheUnitQuotesHostilePathsAndReadsThemBack) {
    const QString helper = R"(/opt/my apps/"q" 100%$HOME\x/zelvar2-daemon)";
    const QString logs = "/home/ann/.local/state/50% off/zelvar2";
    const QStringList arguments = LaunchAgentManager::programArguments(helper, logs);
    const QString expected =
        "[Unit]\n"
        "Description=Zelvar+ background sampler\n"
        "\n"
        "[Service]\n"
        R"(ExecStart="/opt/my apps/\"q\" 100%%$$HOME\\x/zelvar2-daemon" "--ram-threshold" "50" )"
        R"("--interval" "10" "--log-file" "/home/ann/.local/state/50%% off/zelvar2/events.jsonl")"
        "\n"
        "Restart=always\n"
        "Nice=10\n"
        "IOSchedulingClass=idle\n"
        "StandardOutput=append:/home/ann/.local/state/50%% off/zelvar2/daemon.stdout.log\n"
        "StandardError=append:/home/ann/.local/state/50%% off/zelvar2/daemon.stderr.log\n"
        "\n"
        "[Install]\n"
        "WantedBy=default.target\n";
    EXPECT_EQ(SystemdUserServiceManager::unitText(arguments, logs), expected);

    QTemporaryDir dir;
    FakeCommandRunner runner;
    SystemdUserServiceManager manager(runner, dir.filePath("systemd/user"), logs);
    QDir().mkpath(dir.filePath("systemd/user"));
    EXPECT_FALSE(manager.installedArguments());
    ASSERT_FALSE(manager.writeDefinition(arguments));
    EXPECT_EQ(manager.installedArguments(), arguments);
    EXPECT_EQ(SystemdUserServiceManager::splitWords(R"(/bin/a  b "c d"e)"),
              (QStringList{"/bin/a", "b", "c de"}));
}

TEST(SystemdUserServiceManagerTest, LoadedMeansLoadedAndActiveAndInstallReloadsEnablesRestarts) {
    QTemporaryDir dir;
    const QString helper = dir.filePath("zelvar2-daemon");
    put(helper, "#!/bin/sh\n");
    QFile::setPermissions(helper, QFile::ReadOwner | QFile::ExeOwner);
    FakeCommandRunner runner;
    const QString units = dir.filePath("systemd/user");
    SystemdUserServiceManager manager(runner, units, dir.filePath("logs"));
    LaunchAgentManager agent(manager, helper, dir.filePath("logs"));
    const QString show =
        "/usr/bin/systemctl --user show --property=LoadState,ActiveState "
        "com.orlen.zelvar2.daemon.service";
    for (const auto& [output, loaded] : QList<std::pair<QByteArray, bool>>{
             {"LoadState=loaded\nActiveState=active\n", true},
             {"LoadState=loaded\nActiveState=activating\n", true},
             {"LoadState=loaded\nActiveState=failed\n", false},
             {"LoadState=not-found\nActiveState=inactive\n", false}}) {
        runner.respond(show, output);
        EXPECT_EQ(agent.isLoaded(), loaded) << output.constData();
    }
    put(units + "/com.orlen.zelvar2.service", "[Service]\nExecStart=/old/tracker\n");
    for (const char* step : {"daemon-reload", "enable com.orlen.zelvar2.daemon.service",
                             "restart com.orlen.zelvar2.daemon.service"}) {
        runner.respond(QStringLiteral("/usr/bin/systemctl --user ") + step, "");
    }
    EXPECT_FALSE(agent.installOrReplace());
    EXPECT_FALSE(QFileInfo::exists(units + "/com.orlen.zelvar2.service"));
    EXPECT_EQ(manager.installedArguments(),
              LaunchAgentManager::programArguments(helper, dir.filePath("logs")));
    EXPECT_EQ(
        commandLines(runner).mid(commandLines(runner).size() - 6),
        (QStringList{show, "/usr/bin/systemctl --user disable --now com.orlen.zelvar2.service",
                     "/usr/bin/systemctl --user daemon-reload",
                     "/usr/bin/systemctl --user daemon-reload",
                     "/usr/bin/systemctl --user enable com.orlen.zelvar2.daemon.service",
                     "/usr/bin/systemctl --user restart com.orlen.zelvar2.daemon.service"}));
}

namespace {

// Records what it was asked to start; starts nothing.
class FakeLauncher final : public DaemonLauncher {
public:
    QStringList started;
    QString failWith;
    bool startDetached(const QString& program, const QStringList& arguments, const QString& out,
                       const QString& err, QString* error) override {
        started = QStringList{program} + arguments + QStringList{out, err};
        *error = failWith;
        return failWith.isEmpty();
    }
};

}  // namespace

TEST(DetachedDaemonStarterTest, StartsTheAgentsCommandLineUnlessTheLockShowsADaemon) {
    QTemporaryDir dir;
    const QString helper = dir.filePath("zelvar2-daemon");
    put(helper, "#!/bin/sh\n");
    QFile::setPermissions(helper, QFile::ReadOwner | QFile::ExeOwner);
    const QString logs = dir.filePath("logs");
    const QString lock = dir.filePath("run/daemon.lock");
    FakeLauncher launcher;
    LogCapture log;
    EXPECT_FALSE(DetachedDaemonStarter(launcher, helper, logs, lock).ensureRunning());
    const QStringList expected =
        LaunchAgentManager::programArguments(helper, logs) +
        QStringList{logs + "/daemon.stdout.log", logs + "/daemon.stderr.log"};
    EXPECT_EQ(launcher.started, expected);
    EXPECT_TRUE(log.contains("started the daemon detached"));

    // This process holds the lock, as a running daemon would: nothing more is started.
    DaemonLock held(lock);
    std::optional<qint64> holder;
    ASSERT_TRUE(held.tryLock(&holder));
    EXPECT_EQ(DaemonLock::holder(lock), QCoreApplication::applicationPid());
    launcher.started.clear();
    EXPECT_FALSE(DetachedDaemonStarter(launcher, helper, logs, lock).ensureRunning());
    EXPECT_TRUE(launcher.started.isEmpty());
    EXPECT_TRUE(log.contains(
        QStringLiteral("daemon already running (pid %1)").arg(QCoreApplication::applicationPid())));

    FakeLauncher failing;
    failing.failWith = "Permission denied";
    EXPECT_EQ(
        DetachedDaemonStarter(failing, helper, logs, dir.filePath("other.lock")).ensureRunning(),
        (AgentError{-1, "Can't start " + helper + ": Permission denied"}));
    EXPECT_EQ(
        DetachedDaemonStarter(failing, dir.filePath("none"), logs, lock).ensureRunning()->code, 1);
}
