#include "app/report/DiskReport.h"
#include "disk/DiskIOReader.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

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
    const QJsonObject volume = json["volumes"].toArray()[0].toObject();
    EXPECT_EQ(volume["mount_point"].toString(), "/");
    EXPECT_EQ(volume["total_bytes"].toInteger(), qint64(100) << 30);
    const QJsonObject writer = json["summary"]["windows"][0]["top_writers"][0].toObject();
    EXPECT_EQ(writer["pid"].toInteger(), 4242);
    EXPECT_EQ(writer["parent_name"].toString(), "init");
    EXPECT_EQ(json["bursts"].toArray()[0].toObject()["display_written"].toString(), "64 MB");
    EXPECT_TRUE(json["bursts"].toArray()[0].toObject()["pid"].isNull());

    // Without a log the volumes still show.
    const DiskReport::Snapshot volumesOnly{snapshot.volumes, {}, "/nowhere/diskio.jsonl"};
    EXPECT_EQ(DiskReport::formatText(volumesOnly).section('\n', 2).toStdString(),
              "  /                               60.0 GB / 100.0 GB            60%\n\n"
              "Write Activity (/nowhere/diskio.jsonl)\n  No disk I/O summary\n");
    const QJsonObject bare = QJsonDocument::fromJson(DiskReport::formatJson(volumesOnly)).object();
    EXPECT_EQ(std::pair(bare["summary"], bare["bursts"]),
              std::pair(QJsonValue(), QJsonValue(QJsonArray())));
}
