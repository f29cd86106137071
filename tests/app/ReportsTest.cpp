#include <QCoreApplication>
#include <QProcess>
#include <QTimeZone>

#include "app/SystemServices.h"
#include "app/report/DaemonReport.h"
#include "app/report/DiskReport.h"
#include "app/report/FocusReport.h"
#include "app/report/HistoryReport.h"
#include "app/report/NetworkReport.h"
#include "app/report/PowerReport.h"
#include "app/report/ProcessesReport.h"
#include "app/report/TreeReport.h"
#include "config/ConfigManager.h"
#include "focus/FocusMonitor.h"
#include "network/BandwidthMonitor.h"
#include "power/WattlogSampleFiles.h"
#include "process/ProcessMonitor.h"
#include "process/ProcessTreeBuilder.h"
#include "support/EventLoop.h"
#include "support/FakePorts.h"
#include "support/Fixture.h"
#include "support/LiveMachine.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

const QDateTime kAt(QDate(2026, 1, 1), QTime(0, 0), QTimeZone::utc());

// Notifications are off in the file: the desktop kills and sounds but keeps quiet.
TEST(MonitorsTest, DesktopEnforcesTheUsersLimitsWhileHeadlessOnlyLooks) {
    for (const auto mode : {Monitors::Mode::Desktop, Monitors::Mode::Headless}) {
        const bool desktop = mode == Monitors::Mode::Desktop;
        SCOPED_TRACE(desktop ? "desktop" : "headless");
        LogCapture quiet;
        FakePorts fakes;
        fakes.processTable.setProcesses(
            {{1, 0, "init", 4 << 20, 0}, {42, 1, "hog", quint64(500) << 20, 0}});
        const QByteArray config =
            R"({"enable_notifications": false, "limits": [{"id": )"
            R"("6F9619FF-8B86-D011-B42D-00C04FC964FF", "process_name": "hog", "limit_mb": 100,)"
            R"( "auto_kill_enabled": true, "created_at": "2026-01-01T00:00:00Z"}]})";
        QFile file(ConfigManager::defaultFile(fakes.paths));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(config) == config.size());
        file.close();

        Monitors monitors(fakes.ports(), mode);
        monitors.start();
        const ProcessMonitor& monitor = *monitors.processMonitor();
        ASSERT_TRUE(processEventsUntil(
            [&] { return !monitor.currentProcesses().isEmpty() && !monitor.isRefreshInFlight(); }));
        monitors.stop();

        EXPECT_EQ(fakes.signaller.sent().size(), desktop ? 1u : 0u);
        EXPECT_EQ(fakes.sounds.played(), desktop ? QStringList{"sound:Glass"} : QStringList{});
        EXPECT_TRUE(fakes.notifications.delivered().empty());
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QByteArray written = file.readAll();
        EXPECT_TRUE(desktop ? written.contains("last_triggered") : written == config);
    }
}

TEST(TreeReportTest, IndentedRowsWithAggregatesOriginChipsAndDepthLimit) {
    const auto system = ProcessOrigin::system();
    const auto bash = ProcessOrigin::cli("bash");
    const auto job = ProcessOrigin::launchAgent("com.example.sync");
    const QList<ProcessNode> forest = ProcessTreeBuilder::build({
        {1, 0, "init", 10.0, 0.0, kAt, system, system},
        {20, 1, "bash", 5.0, 0.0, kAt, system, system},
        {21, 20, "vim", 1100.0, 2.5, kAt, bash, system},
        {22, 20, "make", 3.0, 0.0, kAt, bash, system},
        {23, 22, "cc", 40.0, 99.0, kAt, ProcessOrigin::cli("make-not-a-shell"), system},
        {24, 23, "ld", 2.0, 0.0, kAt, bash, system},
        {30, 1, "syncd", 7.0, 0.0, kAt, job, job},
    });
    EXPECT_EQ(TreeReport::formatText(forest, 4).replace(system.icon(), "🐧").toStdString(),
              R"(AGGREGATE       OWN     CPU  ORIGIN               ROOT                 PROCESS
   1.1 GB     10 MB    0.0%  🐧 system            🐧 system            init (1)
   1.1 GB      5 MB    0.0%  🐧 system            🐧 system              bash (20)
   1.1 GB    1.1 GB    2.5%  💻 bash              🐧 system                vim (21)
    45 MB      3 MB    0.0%  💻 bash              🐧 system                make (22)
    42 MB     40 MB   99.0%  💻 make-not-a-shell  🐧 system                  cc (23) [+1]
     7 MB      7 MB    0.0%  ⚙️ sync              ⚙️ sync                syncd (30)
)");
    QJsonObject row =
        QJsonDocument::fromJson(TreeReport::formatJson(forest, 2)).array()[1].toObject();
    EXPECT_EQ(ProcessInfo::fromJson(row.take("process").toObject()), forest[0].children[0].process);
    EXPECT_EQ(row, (QJsonObject{{"depth", 1},
                                {"aggregate_memory_mb", 1150.0},
                                {"child_count", 2},
                                {"hidden_descendants", 4}}));
}

TEST(ProcessesReportLiveTest, SampleAgreesWithPsAndItsTreeShowsEveryProcess) {
    test::LogCapture quiet;
    SystemServices services;
    Monitors monitors(services.ports(), Monitors::Mode::Headless, Monitors::Part::Processes);
    const ProcessesReport::Sample sample = ProcessesReport::sample(monitors, {1, {}});
    QProcess ps;
    ps.start(QStringLiteral("/bin/ps"), {QStringLiteral("-eo"), QStringLiteral("pid=,ppid=")});
    ps.waitForFinished(10000);
    QHash<Pid, Pid> psParents;
    for (const QByteArray& line : ps.readAllStandardOutput().split('\n')) {
        if (const QList<QByteArray> fields = line.simplified().split(' '); fields.size() == 2) {
            psParents.insert(fields[0].toInt(), fields[1].toInt());
        }
    }

    EXPECT_NE(
        std::ranges::find(sample.processes, QCoreApplication::applicationPid(), &ProcessInfo::id),
        sample.processes.end());
    qsizetype common = 0;
    for (const ProcessInfo& p : sample.processes) {
        if (const auto parent = psParents.constFind(p.id); parent != psParents.constEnd()) {
            ++common;  // else it ended in between
            EXPECT_EQ(p.ppid, *parent) << p.name.toStdString();
        }
    }
    EXPECT_GE(common, std::min(sample.processes.size(), psParents.size()) - 3);
    EXPECT_EQ(TreeReport::formatText(sample.tree, 0).count('\n'), sample.processes.size() + 1);
}

// Names and labels as a process may set them: escaped in the text, chips padded by display
// width, "%1" shown as it is, and everything exact in the JSON.
TEST(ProcessesReportTest, TableEscapesAndAlignsWhatProcessesNameAndJsonKeepsItExact) {
    QList<ProcessInfo> processes = {
        {42, 1, "firefox", 1536.0, 12.5, kAt, ProcessOrigin::launchAgent("org.mozilla.firefox"),
         ProcessOrigin::system()},
        {7, 0, "init %1", 3.0, 0.0, kAt, {}, ProcessOrigin::cli("%2sh")}};
    for (const QString& name :
         {QString::fromUtf8("evil\n\x1b[31mred"), QString::fromUtf8("tab\there"),
          QString::fromUtf8("doc\u202Etxt.exe"), QString::fromUtf8("🦊 fox"),
          QString::fromUtf8("cafe\u0301")}) {
        processes.append(
            {int(processes.size()), 1, name, 3.0, 0.0, kAt, ProcessOrigin::cli(name), {}});
    }
    EXPECT_EQ(ProcessesReport::formatTable(processes)
                  .replace(ProcessOrigin::system().icon(), "🐧")
                  .toStdString(),
              R"(    PID    PPID    MEMORY     CPU  ORIGIN               ROOT                 NAME
     42       1    1.5 GB   12.5%  ⚙️ firefox           🐧 system            firefox
      7       0      3 MB    0.0%                       💻 %2sh              init %1
      2       1      3 MB    0.0%  💻 evil\n\x1b[31mred                      evil\n\x1b[31mred
      3       1      3 MB    0.0%  💻 tab\there                              tab\there
      4       1      3 MB    0.0%  💻 doc\u202etxt.exe                       doc\u202etxt.exe
      5       1      3 MB    0.0%  💻 🦊 fox                                 🦊 fox
      6       1      3 MB    0.0%  💻 café                                   café
)");
    const QJsonArray json = QJsonDocument::fromJson(ProcessesReport::formatJson(processes)).array();
    ASSERT_EQ(json.size(), processes.size());
    for (qsizetype i = 0; i < json.size(); ++i) {
        EXPECT_EQ(ProcessInfo::fromJson(json[i].toObject()), processes[i]);
    }
}

TEST(DiskReportTest, ShowsTheVolumesAndTheLogEnrichedFromTheCycle) {
    test::LogCapture quiet;
    test::FakePorts fakes;
    fakes.processTable.setProcesses(
        {{1, 0, "init", 4 << 20, 0}, {4242, 1, "postgres", 64 << 20, 0}});
    QDir().mkpath(QFileInfo(DiskIOReader::defaultFile(fakes.paths)).path());
    QFile log(DiskIOReader::defaultFile(fakes.paths));
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    log.write(R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00Z",)"
              R"("rusage_interval_s":30,"rusage_overhead_pct":0.12,"windows":[)"
              R"({"window":"5m","top_writers":[{"name":"postgres","pid":4242,)"
              R"("written_mb":1500,"read_mb":2}],)"
              R"("top_directories":[{"path":"/var/log","written_mb":12}],)"
              R"("top_files":[{"path":"/var/log/syslog","written_mb":3.4}]}]})"
              "\n"
              R"({"type":"diskio_burst","timestamp":"2026-01-15T10:00:10Z","source":"file",)"
              R"("path":"/var/log/syslog","written_mb":64,"window_s":10})"
              "\n");
    log.close();

    Monitors monitors(fakes.ports(), Monitors::Mode::Headless, Monitors::Part::Processes);
    const DiskReport::Snapshot snapshot = DiskReport::sample(monitors);
    EXPECT_EQ(snapshot.logFile, DiskIOReader::defaultFile(fakes.paths));

    const QString text = DiskReport::formatText(snapshot);
    EXPECT_TRUE(text.contains("rusage 30s · overhead 0.12%\n\nWindow 1m\n  No significant disk"));
    EXPECT_TRUE(text.contains("postgres (pid 4242)  1.5 GB  ↑  2 MB ↓\n       parent init"));
    EXPECT_TRUE(text.contains("Growing Directories\n      12 MB  /var/log"));
    EXPECT_TRUE(
        text.contains("Recent Bursts\n  2026-01-15T10:00:10Z  file       /var/log/syslog  "
                      "64 MB / 10s"));

    const QJsonObject json = QJsonDocument::fromJson(DiskReport::formatJson(snapshot)).object();
    const QJsonValue volume = json["volumes"][0];
    const QJsonValue writer = json["summary"]["windows"][0]["top_writers"][0];
    const QJsonValue burst = json["bursts"][0];
    EXPECT_EQ(QJsonArray({volume["mount_point"], volume["total_bytes"], writer["pid"],
                          writer["parent_name"], burst["display_written"], burst["pid"]}),
              QJsonArray({"/", qint64(100) << 30, 4242, "init", "64 MB", QJsonValue()}));

    const DiskReport::Snapshot volumesOnly{snapshot.volumes, {}, "/nowhere/diskio.jsonl"};
    EXPECT_EQ(DiskReport::formatText(volumesOnly).section('\n', 2).toStdString(),
              "  /                               60.0 GB / 100.0 GB            60%\n\n"
              "Write Activity (/nowhere/diskio.jsonl)\n  No disk I/O summary\n");
    const QJsonObject bare = QJsonDocument::fromJson(DiskReport::formatJson(volumesOnly)).object();
    EXPECT_EQ(std::pair(bare["summary"], bare["bursts"]),
              std::pair(QJsonValue(), QJsonValue(QJsonArray())));
}

TEST(NetworkReportTest, TextAndJsonShowRatesTotalsTableAndDailyUsage) {
    const QList<ProcessUsage> curl{{"curl.42", "curl", 42, 1500.0, 20.0, 3040, 0}};
    const QList<CachedAppUsage> daily{{"firefox", 5000, 250}};
    const NetworkReport::Snapshot s{2.0,  1,          "Office",   1500.0,     20.0, 9000,
                                    0,    1200000000, 1000000000, -200000000, curl, "2026-11-22",
                                    daily};
    EXPECT_EQ(NetworkReport::formatText(s).toStdString(), R"(Sampled 2.0 s in 1 samples
Network:   Office
Download:  1.50KB/s
Upload:    20B/s
Received:  9.00KB (9000 bytes since start)
Sent:      0B (0 bytes since start)
Wi-Fi:     1.20GB of 1.00GB, -200MB left

Processes (TCP)
    PID       DOWN         UP     SEEN  NAME
     42   1.50KB/s      20B/s   3.04KB  curl

Daily usage 2026-11-22
  RECEIVED       SENT      TOTAL  NAME
    5.00KB       250B     5.25KB  firefox
)");
    EXPECT_EQ(QJsonDocument::fromJson(NetworkReport::formatJson(s))
                  .toJson(QJsonDocument::Compact)
                  .toStdString(),
              R"({"daily_usage":[{"name":"firefox","received_bytes":5000,"sent_bytes":250}],)"
              R"("date":"2026-11-22","download_bytes_per_second":1500,"network_name":"Office",)"
              R"("processes":[{"download_bytes_per_second":1500,"id":"curl.42","name":"curl",)"
              R"("observed_bytes":3040,"pid":42,"upload_bytes_per_second":20}],)"
              R"("received_bytes":9000,"remaining_wifi_bytes":-200000000,"samples":1,)"
              R"("seconds":2,"sent_bytes":0,"upload_bytes_per_second":20,)"
              R"("wifi_bytes":1200000000,"wifi_limit_bytes":1000000000})");
}

// A loopback transfer of this process after each sample shows in the table from the second on.
TEST(NetworkReportLiveTest, SampleListsThisProcessWhileItTransfers) {
    test::LogCapture quiet;
    test::LoopbackConnection connection;
    ASSERT_TRUE(connection.connected());
    SystemServices services;
    Monitors monitors(services.ports(), Monitors::Mode::Headless, Monitors::Part::Bandwidth);
    QObject::connect(monitors.bandwidthMonitor(), &BandwidthMonitor::sampleFinished, [&] {
        const QByteArray data(65536, 'x');
        ASSERT_TRUE(test::LoopbackConnection::sendAll(connection.client(), data) &&
                    test::LoopbackConnection::receiveAll(connection.server(), data.size()));
    });
    const NetworkReport::Snapshot snapshot = NetworkReport::sample(monitors, 2.0);
    EXPECT_TRUE(snapshot.seconds >= 2.0 && snapshot.samples == 2 &&
                !snapshot.networkName.isEmpty());
    const auto mine = std::ranges::find(snapshot.processes, QCoreApplication::applicationPid(),
                                        &ProcessUsage::pid);
    ASSERT_NE(mine, snapshot.processes.end());
    EXPECT_TRUE(mine->downloadBytesPerSecond > 0 && mine->uploadBytesPerSecond > 0 &&
                mine->observedBytes > 0);
}

// One refresh over the reading of a Dell XPS 15's battery, discharging (the sysfs fixture
// "charge-discharging" as SysfsBatteryRegistryTest reads it), and the daemon's two files, each
// with a line for the newest sample; then the same without a battery.
TEST(PowerReportTest, SnapshotTextsFiguresAndNewestSamplesOrNoReading) {
    FakePorts fakes;
    fakes.battery.set(BatteryReading{.percent = 92,
                                     .amperageMA = -1472,
                                     .voltageMV = 12366,
                                     .amperageScaleMaxMA = 3000,
                                     .maxCapacity = 4901,
                                     .designCapacity = 4912,
                                     .cycleCount = 0});
    const QString batteryFile = WattlogSampleFiles::batterySamplesFile(fakes.paths);
    const QString correlationFile = WattlogSampleFiles::correlationSamplesFile(fakes.paths);
    QDir().mkpath(QFileInfo(correlationFile).path());
    QFile battery(batteryFile);
    ASSERT_TRUE(battery.open(QIODevice::WriteOnly));
    battery.write(
        "{\"ts\": 1768478000, \"current\": -900}\n"
        "{\"ts\": 1768478390, \"current\": -1500, \"voltage\": 12000, \"percent\": 91}\n");
    battery.close();
    QFile correlation(correlationFile);
    ASSERT_TRUE(correlation.open(QIODevice::WriteOnly));
    correlation.write("{\"ts\": 1768478395, \"cpu_idle_pct\": 75, \"battery_watts\": 18.2}\n");
    correlation.close();

    PowerReport::Snapshot s;
    {
        Monitors monitors(fakes.ports(), Monitors::Mode::Headless, Monitors::Part::Power);
        s = PowerReport::sample(monitors);
    }
    EXPECT_EQ(PowerReport::formatText(s).toStdString(), R"(Power:     Discharge
Rate:      -18.2 W | -1472 mA | -49%
Menu bar:  -49%
Detail:    12.37 V | 92%
Charge:    92%, health 100% (4901 of 4912), 0 cycles
Current:   -1472 mA at 12366 mV, telemetry -, full load 3000 mA
Read at:   2026-01-15T12:00:00Z

Battery samples: 2
  newest 2026-01-15T11:59:50Z: discharge, 91%, 18.00 W, -50%
Correlation samples: 1
  newest 2026-01-15T11:59:55Z: discharge, CPU 25%, RAM -, battery 18.2 W
)");
    const QJsonObject json = QJsonDocument::fromJson(PowerReport::formatJson(s)).object();
    EXPECT_EQ(json["battery"]["power_rate_text"].toString(), "-18.2 W | -1472 mA | -49%");
    EXPECT_EQ(json["battery"]["amperage_ma"].toInteger(), -1472);
    EXPECT_TRUE(json["battery"]["battery_power_mw"].isNull());
    EXPECT_EQ(json["newest_battery_sample"]["menu_power_rate_text"].toString(), "-50%");
    EXPECT_EQ(json["newest_correlation_sample"]["cpu_util_pct"].toDouble(), 25.0);

    fakes.battery.set(std::nullopt);
    QFile::remove(batteryFile);
    QFile::remove(correlationFile);
    Monitors monitors(fakes.ports(), Monitors::Mode::Headless, Monitors::Part::Power);
    const PowerReport::Snapshot none = PowerReport::sample(monitors);
    const QString text = PowerReport::formatText(none);
    EXPECT_THAT(text.toStdString(), ::testing::HasSubstr("Rate:      No reading\n"));
    EXPECT_THAT(text.toStdString(), ::testing::HasSubstr("Detail:    Waiting for battery data\n"));
    EXPECT_THAT(text.toStdString(), ::testing::HasSubstr("Menu bar:  0%\n"));
    EXPECT_FALSE(QJsonDocument::fromJson(PowerReport::formatJson(none))
                     .object()
                     .contains("newest_battery_sample"));
}

// A saved power log, counted by hand: five idle sleeps and four wakes on battery; the sessions
// run from each wake to the next sleep, the sleeps to the next wake.
TEST(HistoryReportTest, SavedLogEventsAndStatistics) {
    const HistoryReport::History h =
        HistoryReport::fromLogText(readFixture("power/pmset/minotebook14-idle-batt.txt"),
                                   QDateTime(QDate(1, 1, 1), QTime(0, 0), QTimeZone::utc()), kAt);
    const QString sleep = "Sleep             Idle Sleep  [100% Batt]\n";
    const QString wake = "Wake              power-button  [100%]\n";
    EXPECT_EQ(HistoryReport::formatText(h).toStdString(),
              ("Events: 9 from 2021-06-04T11:30:29Z to 2021-06-04T11:47:12Z\n"
               "  2021-06-04T11:30:29Z  " +
               sleep + "  2021-06-04T11:30:37Z  " + wake + "  2021-06-04T11:32:49Z  " + sleep +
               "  2021-06-04T11:32:57Z  " + wake + "  2021-06-04T11:35:09Z  " + sleep +
               "  2021-06-04T11:35:21Z  " + wake + "  2021-06-04T11:43:58Z  " + sleep +
               "  2021-06-04T11:44:07Z  " + wake +
               "  2021-06-04T11:47:12Z  Sleep             Idle Sleep  [99% Batt]\n"
               "\nBy kind:\n  Sleep             5\n  Wake              4\n"
               "\nStatistics:\n"
               "  Awake:          16m 06s in 4 sessions (average 4m 01s, longest 8m 37s)\n"
               "  Asleep:         37s\n"
               "  Lid closes:     0\n  Reboots:        0\n  Charge cycles:  0\n"
               "  Battery points: 0 (on AC 0%, on battery 0%)\n"
               "  Health:         0 panics, 0 crashes, 0 hangs, 0 out-of-memory kills\n")
                  .toStdString());

    const QJsonObject json = QJsonDocument::fromJson(HistoryReport::formatJson(h)).object();
    EXPECT_EQ(json["counts"].toObject(), (QJsonObject{{"Sleep", 5}, {"Wake", 4}}));
    EXPECT_EQ(json["stats"]["total_sleep_time_s"].toDouble(), 37);
    EXPECT_EQ(json["events"][8]["battery_percent"].toInt(), 99);
    EXPECT_EQ(json["events"][1]["power_source"], QJsonValue());

    // Later than a date: the last sleep alone.
    EXPECT_EQ(
        HistoryReport::fromLogText(readFixture("power/pmset/minotebook14-idle-batt.txt"),
                                   *HistoryReport::parseDate("2021-06-04 17:14:07 +0530"), kAt)
            .events.size(),
        1);
    EXPECT_EQ(HistoryReport::parseDate("2021-06-04T11:44:07Z"),
              HistoryReport::parseDate("2021-06-04 17:14:07 +0530"));
    EXPECT_FALSE(HistoryReport::parseDate("yesterday"));
}

// The report over the monitor: the journal's events, as this system's power log.
TEST(HistoryReportTest, RunsTheHistoryLoadOverThePowerLogSource) {
    FakePorts fakes;
    const QString boot = "b1";
    fakes.powerLog.state().lock()->log = PowerLogSource::Log::Journal;
    fakes.powerLog.state().lock()->entries = {
        {1767225600000000, boot, "systemd-logind", "Lid closed."},
        {1767225601000000, boot, "kernel", "PM: suspend entry (s2idle)"},
        {1767229200000000, boot, "kernel", "PM: suspend exit"}};
    Monitors monitors(fakes.ports(), Monitors::Mode::Headless, Monitors::Part::Power);
    QString text;
    QTextStream out(&text);
    EXPECT_EQ(HistoryReport::kind().run(ReportOptions({"json"}, {}), monitors, out), 0);
    out.flush();
    const QJsonObject json = QJsonDocument::fromJson(text.toUtf8()).object();
    // The suspend a second after the lid closed is the lid's sleep, measured to the wake.
    EXPECT_EQ(json["counts"].toObject(),
              (QJsonObject{{"Reboot", 1}, {"Lid Close", 1}, {"Wake", 1}}));
    EXPECT_EQ(json["stats"]["total_sleep_time_s"].toDouble(), 3599);
}

TEST(DaemonReportTest, AFileShowsItsSizeAndTheTimeOfItsNewestLineThatCarriesOne) {
    QTemporaryDir dir;
    const auto write = [&](const QString& name, const QByteArray& content) {
        QFile file(dir.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
        return file.fileName();
    };
    // The last line is half written and the one before it has no time: the summary's counts.
    const QString log =
        write("diskio.jsonl",
              "{\"type\":\"diskio_summary\",\"timestamp\":\"2026-11-22T10:00:05Z\"}\n"
              "{\"event\":\"x\"}\n{\"ts\":17");
    const DaemonReport::FileState state = DaemonReport::fileState(log);
    EXPECT_EQ(state.sizeBytes, QFileInfo(log).size());
    EXPECT_EQ(state.newest, QDateTime(QDate(2026, 11, 22), QTime(10, 0, 5), QTimeZone::utc()));
    const QString samples = write("samples.jsonl", "{\"ts\":1763805600.5}\n");
    EXPECT_EQ(DaemonReport::fileState(samples).newest,
              QDateTime::fromMSecsSinceEpoch(1763805600500, QTimeZone::utc()));
    // The daily file is rewritten whole: its time is the file's.
    const QString usage = write("usage-by-date.json", "{\"dates\":{}}");
    EXPECT_EQ(DaemonReport::fileState(usage).newest, QFileInfo(usage).lastModified().toUTC());
    const DaemonReport::FileState missing = DaemonReport::fileState(dir.filePath("none.jsonl"));
    EXPECT_FALSE(missing.sizeBytes);
    EXPECT_FALSE(missing.newest);
    EXPECT_TRUE(DaemonReport::formatText({{}, {missing}}).contains("missing"));
}

TEST(FocusReportTest, PrintsEachChangeAsItComesThenTheCountAndTheThief) {
    FakePorts fakes;
    fakes.workspace.setFrontmost(RunningApplication{.localizedName = "Editor"});
    Monitors monitors(fakes.ports(), Monitors::Mode::Headless, Monitors::Part::Focus);
    QString printed;
    const FocusReport::Snapshot s = FocusReport::sample(
        monitors, 0,
        [&](const QString& startApp) {
            printed += FocusReport::formatStart(startApp);
            fakes.clock.advance(2);
            fakes.workspace.activate("Br\x1bowser");
            fakes.clock.advance(0.25);
            fakes.workspace.activate("Editor");
        },
        [&](const FocusEvent& event) { printed += FocusReport::formatEvent(event); });
    const QStringList lines = printed.split('\n');
    ASSERT_EQ(lines.size(), 4) << printed.toStdString();
    EXPECT_EQ(lines[0], "Current Focus: Editor");
    EXPECT_TRUE(lines[1].endsWith("  Br\\x1bowser  from Editor after 2.0s"));
    EXPECT_TRUE(lines[2].endsWith("  Editor  from Br\\x1bowser after 250ms"));
    EXPECT_EQ(FocusReport::formatEnd(s), "Changes: 2 in 0.0 s\nFocus stolen by Br\\x1bowser\n");
    const QJsonObject json = QJsonDocument::fromJson(FocusReport::formatJson(s)).object();
    EXPECT_EQ(json["last_stolen_by"].toString(), "Br\x1bowser");
    EXPECT_EQ(json["events"][1]["duration"].toDouble(), 0.25);
    EXPECT_FALSE(monitors.focusMonitor()->isMonitoring());
}
