#include <QTimeZone>

#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "support/FakeClock.h"
#include "support/FakeVolumeSource.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

namespace {

QStringList mountPoints(const QList<DiskInfo>& disks) {
    QStringList points;
    for (const DiskInfo& disk : disks) {
        points << disk.mountPoint;
    }
    return points;
}

class DiskIOReaderTest : public ::testing::Test {
protected:
    QString path() const { return m_dir.filePath("diskio.jsonl"); }
    void write(const QByteArray& content) {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    void writeLines(const QList<QByteArray>& lines) { write(lines.join('\n') + '\n'); }
    DiskIORead read(int limit = 20) const { return DiskIOReader(path()).read(limit); }
    QString newest() const {
        const auto summary = read().summary;
        return summary ? summary->windows.value(0).window : "-";
    }

    static QByteArray burst(int minute, const QByteArray& extra = R"("source":"process")") {
        return QStringLiteral(R"({"type":"diskio_burst","timestamp":"2026-01-15T10:%1:00Z",)")
                   .arg(minute, 2, 10, QLatin1Char('0'))
                   .toUtf8() +
               extra + "}";
    }
    static QByteArray summary(const QByteArray& timestamp, const QByteArray& window) {
        return R"({"type":"diskio_summary","timestamp":")" + timestamp +
               R"(","windows":[{"window":")" + window + R"("}]})";
    }

    QTemporaryDir m_dir;
};

}  // namespace

TEST(DiskInfo, DerivedFiguresUseBinaryGigabytesAndWholePercents) {
    const DiskInfo half{"/", 2147483648, 1073741824, 1073741824, {}};
    EXPECT_EQ(std::tuple(half.availableGB(), half.percentUsed(), half.displayUsed(),
                         half.displayPercent()),
              std::tuple(1.0, 50.0, "1.0 GB / 2.0 GB", "50%"));
    EXPECT_EQ((DiskInfo{"/Volumes/Empty", 0, 0, 0, {}}).displayPercent(), "0%");
    EXPECT_EQ((DiskInfo{"/", 1000, 999, 1, {}}).displayPercent(), "100%");
}

TEST(DiskMonitor, RootFirstThenVolumesSortedAndFailuresShrinkTheList) {
    FakeClock clock;
    FakeVolumeSource volumes;
    const DiskMonitor monitor(volumes, clock);
    LogCapture log;
    volumes.setCapacity("/", 1000, 400);
    volumes.setCapacity("/media/ada/Zip", 300, 100);
    // A decomposed "é" sorts as the one character it stands for, and a character beyond
    // U+FFFF by its value rather than by its UTF-16 surrogates.
    const QString cafe = QString::fromUtf8("/media/ada/Cafe\u0301");
    const QString floppy = QString::fromUtf8("/media/ada/\U0001F4BE");
    const QString wideA = QString::fromUtf8("/media/ada/\uFF21");
    for (const QString& point : {cafe, floppy, wideA, QStringLiteral("/media/ada/Caff")}) {
        volumes.setCapacity(point, 10, 5);
    }
    // A volume that doesn't answer is skipped silently.
    volumes.setListing({true,
                        std::nullopt,
                        {"/media/ada/Zip", floppy, cafe, "/media/ada/Caff", wideA, "/mnt/gone"}});
    const QList<DiskInfo> disks = monitor.getDiskInfo();
    EXPECT_EQ(mountPoints(disks),
              (QStringList{"/", "/media/ada/Caff", cafe, "/media/ada/Zip", wideA, floppy}));
    EXPECT_EQ((QList{disks.value(0), disks.value(3)}),
              (QList<DiskInfo>{{"/", 1000, 600, 400, clock.now()},
                               {"/media/ada/Zip", 300, 200, 100, clock.now()}}));
    volumes.setListing({false, std::nullopt, {}});
    EXPECT_EQ(mountPoints(monitor.getDiskInfo()), QStringList{"/"});

    volumes.removeCapacity("/");
    volumes.setListing({true, std::nullopt, {"/media/ada/Zip"}});
    EXPECT_EQ(mountPoints(monitor.getDiskInfo()), QStringList{"/media/ada/Zip"});
    volumes.setCapacity("/", 10, 5);
    volumes.setListing({true, QStringLiteral("Permission denied"), {"/media/ada/Zip"}});
    EXPECT_EQ(mountPoints(monitor.getDiskInfo()), QStringList{"/"});
    EXPECT_EQ(log.lines(),
              (QStringList{"[DiskMonitor] Failed to get root filesystem info: no such volume",
                           "[DiskMonitor] Failed to enumerate volumes: Permission denied"}));
}

TEST_F(DiskIOReaderTest, ParsesEveryFieldOfASummaryWithItsDefaults) {
    writeLines(
        {R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00+02:00",)"
         R"("rusage_interval_s":15,"rusage_overhead_pct":0.25,"extra":1,"windows":[)"
         R"({"window":"1m","top_writers":[{"name":"kworker","pid":42,"written_mb":12.5,)"
         R"("read_mb":3},{"pid":7,"written_mb":1},{"name":"alone"},{"name":"fraction","pid":4.5}],)"
         R"("top_directories":[{"path":"/var/log","written_mb":7},{"written_mb":9}],)"
         R"("top_files":[{"path":"/var/log/syslog"}]},)"
         R"({"top_writers":[]},)"
         R"({"window":"5m","top_writers":"not a list","top_files":[{"path":"/a"},3]}]})"});
    const auto s = read().summary;
    ASSERT_EQ(s.value_or(DiskIOSummary{}).windows.size(), 2);  // one without a name is left out
    EXPECT_EQ(std::tuple(s->timestamp, s->rusageIntervalS, s->rusageOverheadPct),
              std::tuple(QDateTime(QDate(2026, 1, 15), QTime(8, 0), QTimeZone::utc()), 15.0, 0.25));
    QStringList entries;
    for (const WindowData& w : s->windows) {
        for (const WriterEntry& e : w.topWriters) {
            entries << QStringLiteral("%1 %2 %3 %4 %5")
                           .arg(w.window, e.name, e.pid ? QString::number(*e.pid) : "-")
                           .arg(e.writtenMB)
                           .arg(e.readMB);
        }
        for (const DirectoryEntry& e : w.topDirectories) {
            entries << w.window + " dir " + e.path + ' ' + QString::number(e.writtenMB);
        }
        for (const FileEntry& e : w.topFiles) {
            entries << w.window + " file " + e.path + ' ' + QString::number(e.writtenMB);
        }
    }
    EXPECT_EQ(entries, (QStringList{"1m kworker 42 12.5 3", "1m alone - 0 0", "1m fraction - 0 0",
                                    "1m dir /var/log 7", "1m file /var/log/syslog 0"}));
    EXPECT_NE(s->windows[0].topWriters[0].id, s->windows[0].topWriters[1].id);
    EXPECT_EQ(s->windowData("5m")->window, "5m");
    EXPECT_FALSE(s->windowData("30m") || s->windowData("1M"));
}

TEST_F(DiskIOReaderTest, TheNewestValidSummaryWins) {
    EXPECT_EQ(newest(), "-");  // no file
    const QByteArray old =
        R"({"type":"diskio_summary","timestamp":"2026-01-15T10:00:00Z","windows":[]})";
    writeLines({old, summary("2026-01-15T10:01:00Z", "new")});
    EXPECT_EQ(newest(), "new");
    for (
        const char* broken :
        {R"({"type":"diskio_summary","timestamp":"2026-01-15T10:01:00Z"})",
         R"({"type":"diskio_summary","windows":[]})",
         R"({"type":"diskio_summary","timestamp":"2026-01-15T10:01:00.000Z","windows":[]})",
         R"({"type":"diskio_summary","timestamp":"2026-01-15T10:01:00Z","windows":[{"window":"1m"},2]})"}) {
        writeLines({old, broken});
        EXPECT_EQ(newest(), "") << broken;
    }
    const auto s = read().summary.value_or(DiskIOSummary{.rusageIntervalS = 0, .windows = {{}}});
    EXPECT_EQ(std::tuple(s.windows.size(), s.rusageIntervalS, s.rusageOverheadPct),
              std::tuple(0, 30.0, 0.0));
}

TEST_F(DiskIOReaderTest, TheNewestBurstsComeBackOldestFirst) {
    QList<QByteArray> lines;
    for (int minute = 0; minute < 30; ++minute) {
        lines << burst(minute) << burst(minute, R"("process":"x")")
              << burst(minute, R"("source":"other")");
    }
    writeLines(lines);
    const QList<DiskIOBurst> bursts = read(20).bursts;
    EXPECT_EQ(std::tuple(bursts.size(), bursts.value(0).timestamp.time().minute(),
                         bursts.value(19).timestamp.time().minute()),
              std::tuple(20, 10, 29));
    EXPECT_TRUE(read(0).bursts.isEmpty());
}

TEST_F(DiskIOReaderTest, BurstFieldsLabelsAndDefaults) {
    writeLines(
        {burst(0, R"("source":"process","process":"rsync","pid":77,"written_mb":250.5,)"
                  R"("window_s":10)"),
         burst(1, R"("source":"directory")"), burst(2, R"("source":"process","path":"/tmp/x")"),
         burst(3, R"("source":"file","path":"/tmp/big.iso","process":"ignored","window_s":2.5)"),
         burst(4, R"("source":"process","pid":"12")"),
         R"({"type":"diskio_burst","source":"file","path":"/no/timestamp"})",
         R"({"type":7,"timestamp":"2026-01-15T10:05:00Z","source":"process"})",
         R"({"type":"diskio_other","timestamp":"2026-01-15T10:06:00Z","source":"process"})",
         R"(["type","diskio_burst"])", "{not json"});
    QStringList bursts;
    for (const DiskIOBurst& b : read().bursts) {
        bursts << QStringLiteral("%1 %2 %3 %4 %5 %6")
                      .arg(DiskIOBurst::sourceName(b.source), b.label,
                           b.pid ? QString::number(*b.pid) : "-", QString::number(b.writtenMB),
                           QString::number(b.windowS), b.icon());
    }
    EXPECT_EQ(bursts,
              (QStringList{"process rsync 77 250.5 10 cpu", "directory unknown - 0 30 folder.fill",
                           "process unknown - 0 30 cpu", "file /tmp/big.iso - 0 30 doc.fill",
                           "process unknown - 0 30 cpu"}));
}

TEST(DiskIOModels, MegabytesSwitchToGigabytesOfA1024AtAThousand) {
    EXPECT_EQ(formatMegabytes(999.9), "1000 MB");
    EXPECT_EQ(formatMegabytes(1000.0), "1.0 GB");
    EXPECT_EQ(DiskIOBurst{.writtenMB = 1075.0}.displayWritten(), "1.0 GB");
}

TEST_F(DiskIOReaderTest, TheTailIsTheLastBlockAndItsLast500Lines) {
    const QByteArray first = summary("2026-01-15T10:00:00Z", "first") + '\n';
    const QByteArray filler = R"({"type":"noise","pad":")" +
                              QByteArray(DiskIOReader::kTailBytes - first.size() - 26, 'x') +
                              "\"}\n";
    write(first + filler);
    EXPECT_EQ(newest(), "first");
    write(first + filler + "\n");
    EXPECT_EQ(newest(), "-");

    QList<QByteArray> lines = QList<QByteArray>(499, R"({"type":"x"})");
    lines.prepend(summary("2026-01-15T10:00:00Z", "old"));
    writeLines(lines);
    EXPECT_EQ(newest(), "old");
    writeLines(lines << R"({"type":"x"})");
    EXPECT_EQ(newest(), "-");

    // The block starts inside the euro sign: nothing until the file grows.

    const QByteArray last = summary("2026-01-15T10:00:00Z", "\xe2\x82\xac") + '\n';
    const QByteArray content = "\xe2\x82\xac\n" +
                               QByteArray(DiskIOReader::kTailBytes - 4 - last.size(), 'x') + '\n' +
                               last;
    write(content);
    EXPECT_EQ(newest(), "-");
    write(content + burst(1) + '\n');  // the daemon appends a line: the block moves
    EXPECT_EQ(newest(), QString::fromUtf8("\xe2\x82\xac"));
    EXPECT_EQ(read().bursts.size(), 1);
}
