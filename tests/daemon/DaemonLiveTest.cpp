#include <signal.h>

#include <QProcess>
#include <QProcessEnvironment>
#include <QThread>

#include "disk/DiskIOReader.h"
#include "network/UsageCache.h"
#include "power/WattlogBatterySample.h"
#include "support/EventLoop.h"
#include "support/Testing.h"

namespace {

// The real daemon under a throw-away home (below the build tree, so that the writes land on a
// disk file system that counts them, never on a tmpfs), killed at the end whatever happens.
class DaemonLive : public ::testing::Test {
protected:
    QTemporaryDir home{QStringLiteral(ZELVAR_LIVE_DIR "/daemon-live-XXXXXX")};
    QProcess daemon;
    QProcess child;

    QString state() const { return home.filePath("state/zelvar2"); }
    QString data() const { return home.filePath("data"); }

    QProcessEnvironment environment() const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("HOME", home.path());
        env.insert("XDG_DATA_HOME", data());
        env.insert("XDG_STATE_HOME", home.filePath("state"));
        env.insert("XDG_CONFIG_HOME", home.filePath("config"));
        env.insert("XDG_RUNTIME_DIR", home.filePath("run"));
        env.insert("ZELVAR2_POWER_SUPPLY_DIR",
                   QStringLiteral(ZELVAR_FIXTURES_DIR "/power/sysfs/charge-discharging"));
        return env;
    }
    QStringList arguments() const {
        return {"--ram-threshold",        "50", "--interval", "1", "--log-file",
                state() + "/events.jsonl"};
    }
    // Exit status and standard error of a run that ends by itself.
    std::pair<int, QString> runToEnd(const QStringList& args) {
        QProcess process;
        process.setProcessEnvironment(environment());
        process.start(ZELVAR_DAEMON, args);
        EXPECT_TRUE(process.waitForFinished(10000));
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardError())};
    }

    void TearDown() override {
        for (QProcess* process : {&child, &daemon}) {
            if (process->state() != QProcess::NotRunning) {
                process->kill();
                process->waitForFinished(5000);
            }
        }
    }
};

bool everyLineIsWholeJson(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return false;
    }
    const QByteArray content = file.readAll();
    if (!content.endsWith('\n')) {
        return false;
    }
    for (const QByteArray& line : content.trimmed().split('\n')) {
        if (!QJsonDocument::fromJson(line).isObject()) {
            return false;
        }
    }
    return true;
}

}  // namespace

TEST_F(DaemonLive, FindsAChildWritingFiftyMegabytesAndEndsCleanlyOnSigterm) {
    ASSERT_TRUE(home.isValid());
    daemon.setProcessEnvironment(environment());
    daemon.start(ZELVAR_DAEMON, arguments());
    ASSERT_TRUE(daemon.waitForStarted());
    ASSERT_TRUE(processEventsUntil([&] { return QFile::exists(state() + "/events.jsonl"); }));

    // One daemon per user; a wrong command line is refused before anything starts.
    const auto [secondStatus, secondError] = runToEnd(arguments());
    EXPECT_EQ(secondStatus, 1);
    EXPECT_TRUE(secondError.contains("another daemon is running")) << secondError.toStdString();
    const auto [badStatus, badError] = runToEnd({"--interval", "soon", "--log-file", "/x"});
    EXPECT_EQ(badStatus, 2);
    EXPECT_TRUE(badError.contains("'--interval' takes seconds")) << badError.toStdString();

    const QString target = home.filePath("out/big.bin");
    QDir().mkpath(home.filePath("out"));
    child.start(ZELVAR_TEST_CHILD, {"write", target, "50", "3"});
    ASSERT_TRUE(child.waitForStarted());
    const qint64 childPid = child.processId();

    // The next summary (every 30 s) names the child among the writers and its file among the
    // growing files.
    std::optional<WindowData> minute;
    const bool found = processEventsUntil(
        [&] {
            const DiskIORead read = DiskIOReader(state() + "/diskio.jsonl").read();
            minute = read.summary ? read.summary->windowData("1m") : std::nullopt;
            if (!minute) {
                return false;
            }
            const bool writer = std::ranges::any_of(minute->topWriters, [&](const WriterEntry& w) {
                return w.pid == childPid && w.writtenMB >= 49.0;
            });
            const bool file = std::ranges::any_of(
                minute->topFiles, [&](const FileEntry& f) { return f.path == target; });
            return writer && file;
        },
        75000);
    EXPECT_TRUE(found);

    ASSERT_TRUE(processEventsUntil([&] {
        return QFileInfo(data() + "/wattlog/battery-samples.jsonl").size() > 0 &&
               QFileInfo(data() + "/wattlog/correlation/samples.jsonl").size() > 0;
    }));
    ::kill(static_cast<pid_t>(daemon.processId()), SIGTERM);
    ASSERT_TRUE(daemon.waitForFinished(10000));
    EXPECT_EQ(daemon.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(daemon.exitCode(), 0);

    for (const QString& file : {state() + "/diskio.jsonl", state() + "/events.jsonl",
                                data() + "/wattlog/battery-samples.jsonl",
                                data() + "/wattlog/correlation/samples.jsonl"}) {
        EXPECT_TRUE(everyLineIsWholeJson(file)) << file.toStdString();
    }
    QFile events(state() + "/events.jsonl");
    ASSERT_TRUE(events.open(QIODevice::ReadOnly));
    const QList<QByteArray> lines = events.readAll().trimmed().split('\n');
    EXPECT_EQ(QJsonDocument::fromJson(lines.first()).object()["event"].toString(), "start");
    EXPECT_EQ(QJsonDocument::fromJson(lines.last()).object()["event"].toString(), "stop");
    QFile battery(data() + "/wattlog/battery-samples.jsonl");
    ASSERT_TRUE(battery.open(QIODevice::ReadOnly));
    const auto sample = WattlogBatterySample::decode(battery.readLine().trimmed());
    ASSERT_TRUE(sample);
    EXPECT_TRUE(sample->percent());
}
