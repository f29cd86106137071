#include <gtest/gtest.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "app/report/DiskReport.h"
#include "support/LogCapture.h"

using namespace zelvar;

namespace {

// Points the logs directory at a temporary one for as long as it exists.
class StateHome {
public:
    StateHome() : m_old(qgetenv("XDG_STATE_HOME")) {
        qputenv("XDG_STATE_HOME", m_dir.path().toUtf8());
        QDir().mkpath(m_dir.filePath("zelvar2"));
    }
    ~StateHome() {
        if (m_old.isEmpty()) {
            qunsetenv("XDG_STATE_HOME");
        } else {
            qputenv("XDG_STATE_HOME", m_old);
        }
    }
    QString logFile() const { return m_dir.filePath("zelvar2/diskio.jsonl"); }

private:
    QTemporaryDir m_dir;
    QByteArray m_old;
};

}  // namespace

TEST(DiskReport, ShowsThisMachinesVolumesAndTheEnrichedLog) {
    test::LogCapture quiet;
    StateHome state;
    const QByteArray self = QByteArray::number(getpid());
    QFile log(state.logFile());
    ASSERT_TRUE(log.open(QIODevice::WriteOnly));
    log.write(R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00Z",)"
              R"("rusage_interval_s":30,"rusage_overhead_pct":0.12,"windows":[)"
              R"({"window":"5m","top_writers":[{"name":"test_app","pid":)" +
              self +
              R"(,"written_mb":1500,"read_mb":2}],)"
              R"("top_directories":[{"path":"/var/log","written_mb":12}],)"
              R"("top_files":[{"path":"/var/log/syslog","written_mb":3.4}]}]})"
              "\n"
              R"({"type":"diskio_burst","timestamp":"2026-01-15T10:00:10Z","source":"file",)"
              R"("path":"/var/log/syslog","written_mb":64,"window_s":10})"
              "\n");
    log.close();

    SystemServices services;
    const DiskReport::Snapshot snapshot = DiskReport::sample(services);
    EXPECT_EQ(snapshot.logFile, state.logFile());
    ASSERT_FALSE(snapshot.volumes.isEmpty());
    EXPECT_EQ(snapshot.volumes.first().mountPoint, "/");
    ASSERT_TRUE(snapshot.diskIO.summary);
    const WriterEntry writer = snapshot.diskIO.summary->windowData("5m")->topWriters[0];
    ASSERT_TRUE(writer.parentName) << "this process is alive, and so is its parent";
    EXPECT_FALSE(writer.parentName->isEmpty());

    const QString text = DiskReport::formatText(snapshot);
    EXPECT_TRUE(text.contains("rusage 30s · overhead 0.12%"));
    EXPECT_TRUE(text.contains("Window 1m\n  No significant disk write activity"));
    EXPECT_TRUE(text.contains("1.5 GB  ↑  2 MB ↓"));
    EXPECT_TRUE(text.contains("parent " + *writer.parentName));
    EXPECT_TRUE(text.contains("Growing Directories\n      12 MB  /var/log"));
    EXPECT_TRUE(
        text.contains("Recent Bursts\n  2026-01-15T10:00:10Z  file       /var/log/syslog  "
                      "64 MB / 10s"));

    const QJsonObject json = QJsonDocument::fromJson(DiskReport::formatJson(snapshot)).object();
    const QJsonArray volumes = json["volumes"].toArray();
    ASSERT_FALSE(volumes.isEmpty());
    EXPECT_EQ(volumes[0].toObject()["mount_point"].toString(), "/");
    EXPECT_EQ(volumes[0].toObject()["total_bytes"].toInteger(), snapshot.volumes[0].totalBytes);
    const QJsonObject window = json["summary"]["windows"].toArray()[0].toObject();
    EXPECT_EQ(window["top_writers"].toArray()[0].toObject()["pid"].toInteger(), getpid());
    EXPECT_EQ(window["top_writers"].toArray()[0].toObject()["parent_name"].toString(),
              *writer.parentName);
    EXPECT_EQ(json["bursts"].toArray()[0].toObject()["display_written"].toString(), "64 MB");
    EXPECT_TRUE(json["bursts"].toArray()[0].toObject()["pid"].isNull());

    // Without a log the volumes still show.
    DiskReport::Snapshot volumesOnly{
        {DiskInfo{"/", 2147483648, 1073741824, 1073741824, {}}}, {}, "/nowhere/diskio.jsonl"};
    const QString bare = DiskReport::formatText(volumesOnly);
    EXPECT_TRUE(
        bare.contains(QStringLiteral("  %1  1.0 GB / 2.0 GB").arg(QStringLiteral("/"), -30)));
    EXPECT_TRUE(bare.contains("No disk I/O summary"));
    EXPECT_FALSE(bare.contains("Recent Bursts"));
    const QJsonObject bareJson =
        QJsonDocument::fromJson(DiskReport::formatJson(volumesOnly)).object();
    EXPECT_TRUE(bareJson["summary"].isNull());
    EXPECT_TRUE(bareJson["bursts"].toArray().isEmpty());
}
