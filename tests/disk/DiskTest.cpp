#include <sys/stat.h>
#include <unistd.h>

#include <QRegularExpression>
#include <QTimeZone>

#include "disk/DiskChangeParsers.h"
#include "disk/DiskChangeTracker.h"
#include "disk/DiskIOReader.h"
#include "disk/DiskMonitor.h"
#include "platform/SystemProfile.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "support/FakePorts.h"
#include "support/Fixture.h"
#include "support/LogCapture.h"
#include "support/Testing.h"

using namespace zelvar::DiskChangeParsers;

namespace {

constexpr qint64 kMiB = 1048576;
const QString kLsofProgram = "/usr/bin/lsof";
const QString kLsof = kLsofProgram + " -nP";
const QString kHeader = "COMMAND     PID   USER   FD      TYPE DEVICE SIZE/OFF     NODE NAME\n";

DiskInfo disk(const QString& mountPoint, qint64 usedBytes) {
    return DiskInfo{mountPoint, usedBytes * 2, usedBytes, usedBytes, {}};
}

QString lsofLine(const QString& command, const QString& fd = "1w", const QString& type = "REG",
                 const QString& name = "/tmp/a") {
    return QStringLiteral("%1 4242 ada %2 %3 254,0 0 1234 %4\n").arg(command, fd, type, name);
}

// "/ 5 from 10 to 15 | deltas | recent files | writers", sizes in whole MiB.
QStringList describe(const QList<DiskChange>& changes) {
    QStringList lines;
    const auto mib = [](qint64 bytes) { return QString::number(bytes / kMiB); };
    for (const DiskChange& c : changes) {
        QString line = c.mountPoint + ' ' + mib(c.changeBytes) + " from " + mib(c.previousBytes) +
                       " to " + mib(c.currentBytes);
        for (const DiskAttribution& a : c.directoryDeltas + c.recentFiles) {
            line += " | " + a.label + ' ' + mib(a.bytes);
        }
        lines << line + (c.activeWriters.isEmpty() ? "" : " | " + c.activeWriters.join(' '));
    }
    return lines;
}

class DiskChangeTrackerTest : public ::testing::Test {
protected:
    DiskChangeTrackerTest() {
        for (const QString& dir : {m_downloads, m_cache, m_tmp}) {
            QDir().mkpath(dir);
        }
        setDirectorySizes(100, 100, 100);
        m_runner.respond(kLsof, (kHeader + lsofLine("dd") + lsofLine("rsync")).toUtf8());
    }

    void setDirectorySizes(qint64 downloadsKiB, qint64 cacheKiB, qint64 tmpKiB, int exitCode = 0) {
        const std::pair<QString, qint64> sizes[] = {
            {m_downloads, downloadsKiB}, {m_cache, cacheKiB}, {m_tmp, tmpKiB}};
        for (const auto& [dir, kib] : sizes) {
            m_runner.respond("/usr/bin/du -sk " + dir,
                             QStringLiteral("%1\t%2\n").arg(kib).arg(dir).toUtf8(), exitCode);
        }
    }

    void makeFile(const QString& path, qint64 bytes, const QDateTime& modified) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(bytes) &&
                    file.setFileTime(modified, QFileDevice::FileModificationTime));
    }

    // Samples "/" alone: its change as describe() gives it, or "" when none.
    QString root(qint64 usedBytes, qint64 threshold = 1) {
        return describe(m_tracker.detectChanges({disk("/", usedBytes)}, threshold)).join("");
    }
    int count(const QString& program) const {
        return static_cast<int>(std::ranges::count_if(
            m_runner.requests(),
            [&](const CommandRequest& r) { return r.program.endsWith(program); }));
    }

    QTemporaryDir m_root;
    const QString m_home = m_root.filePath("home/ada"), m_downloads = m_home + "/Downloads",
                  m_cache = m_home + "/.cache", m_tmp = m_root.filePath("tmp");
    FakeClock m_clock;
    FakeCommandRunner m_runner;
    const QStringList m_watched = {m_downloads, m_cache, m_tmp, m_root.filePath("private/tmp")};
    DiskChangeTracker m_tracker{m_runner,  m_clock,
                                m_home,    m_root.filePath("data/disk-events.jsonl"),
                                m_watched, kLsofProgram};
};

QStringList mountPoints(const QList<DiskInfo>& disks) {
    QStringList points;
    std::ranges::transform(disks, std::back_inserter(points), &DiskInfo::mountPoint);
    return points;
}

class DiskIOReaderTest : public ::testing::Test {
protected:
    void write(const QByteArray& content) {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
    }
    void writeLines(const QList<QByteArray>& lines) { write(lines.join('\n') + '\n'); }
    DiskIORead read(int limit = 20) const { return DiskIOReader(m_path).read(limit); }
    QStringList bursts(int limit = 20) const {
        QStringList lines;
        for (const DiskIOBurst& b : read(limit).bursts) {
            lines << QStringLiteral("%1 %2 %3 %4 %5 %6")
                         .arg(DiskIOBurst::sourceName(b.source), b.label,
                              b.pid ? QString::number(*b.pid) : "-", QString::number(b.writtenMB),
                              QString::number(b.windowS), b.icon());
        }
        return lines;
    }
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
    const QString m_path = m_dir.filePath("diskio.jsonl");
};

}  // namespace

TEST(DiskChangeParsers, DuSizeIsTheFirstTabPieceInKibibytes) {
    // A blank before the first tab is the first piece; trimming keeps a newline.
    const std::pair<const char*, std::optional<qint64>> cases[] = {
        {"+4\t/x\n", 4096},    {"-3\t/x\n", -3072},
        {" 12 \t/x\n", 12288}, {"\t\t7\t/x", 7168},
        {" \t12\t/x\n", {}},   {"12\n", {}},
        {"\t\t", {}},          {"99999999999999999999\t/x", {}}};
    for (const auto& [output, bytes] : cases) {
        EXPECT_EQ(duSizeBytes(output), bytes) << output;
    }
}

TEST(DiskChangeParsers, LsofWriters) {
    // Thread columns are blank for processes; pipes and the read-write database don't count.
    EXPECT_EQ(lsofWriters(readFixture("disk/lsof-nP-debian12.txt") +
                          readFixture("disk/d-lsof-cnode-macos-unix-systm-psxshm-npolicy.txt")),
              (QStringList{"sleep", "python3", "node"}));

    EXPECT_TRUE(lsofWriters(lsofLine("dd")).isEmpty());  // the first line is the header
    EXPECT_EQ(lsofWriters(kHeader + "dd\t1\tada\t12w\tREG\t254,0\t0\t5\t/a b\r\n"),
              QStringList{"dd"});
    for (const QString& line :
         {lsofLine("dd", "1u"), lsofLine("dd", "1w", "reg"), lsofLine("dd", "1w", "REG", "a"),
          QStringLiteral("dd 1 ada 1w REG 254,0 0 /tmp/a\n"), lsofLine("Google Chrome")}) {
        EXPECT_TRUE(lsofWriters(kHeader + line).isEmpty()) << line.toStdString();
    }
    QString many = kHeader;
    for (const QString& name : excludedWriterNames() + QStringList{"Bash"}) {
        many += lsofLine(name);
    }
    for (int i = 1; i <= 27; ++i) {
        many += lsofLine(QStringLiteral("w%1").arg((i + 2) / 3));
    }
    EXPECT_EQ(lsofWriters(many), (QStringList{"Bash", "w1", "w2", "w3", "w4", "w5", "w6", "w7"}));
}

TEST(DiskChange, SummaryOfTheChangeAndItsLargestExplanation) {
    DiskChange change{.mountPoint = "/"};
    const auto summary = [&](qint64 bytes) {
        change.changeBytes = bytes;
        return change.summary();
    };
    EXPECT_EQ(summary(1048575), "+0 MB on /");
    EXPECT_EQ(summary(0), "-0 MB on /");
    EXPECT_EQ(summary(-(qint64(5) << 20) - 7), "-5 MB on /");
    change.changeBytes = qint64(300) << 20;
    change.activeWriters = {"dd", "rsync"};
    EXPECT_EQ(change.summary(), "+300 MB on /, active writers: dd, rsync");
    change.recentFiles = {DiskAttribution::make("/home/ada/big.iso", 31457280, "/home/ada")};
    EXPECT_EQ(change.summary(), "+300 MB on /, recent file: ~/big.iso 31.5 MB");
    change.directoryDeltas = {DiskAttribution::make("/tmp", 1500000000, "/home/ada")};
    EXPECT_EQ(change.summary(), "+300 MB on /, largest directory change: /tmp 1.5 GB");
}

TEST(DiskChange, FileStyleByteCounts) {
    const std::pair<qint64, QString> cases[] = {
        {0, "Zero KB"},          {1, "1 byte"},        {999, "999 bytes"},
        {1000, "1 KB"},          {999499, "999 KB"},   {999500, "1 MB"},
        {1234567890, "1.23 GB"}, {2000000000, "2 GB"}, {5000000000000, "5 TB"}};
    for (const auto& [bytes, text] : cases) {
        EXPECT_EQ(DiskAttribution::formatFileByteCount(bytes), text) << bytes;
    }
    const DiskAttribution a = DiskAttribution::make("/home/ada/x/home/ada", 20971520, "/home/ada");
    EXPECT_EQ(a.label + ' ' + a.detail, "~/x~ /home/ada/x/home/ada");
}

TEST_F(DiskChangeTrackerTest, ScansOnTheFirstCallThenEveryTwentyMinutesAndAfterAReset) {
    EXPECT_EQ(root(50 * kMiB), "");
    const QList<CommandRequest> requests = m_runner.requests();
    EXPECT_EQ(
        std::tuple(requests.size(), requests.value(0).arguments.join(' '),
                   requests.value(2).arguments.join(' '), requests.value(2).timeoutSeconds),
        std::tuple(3, "-sk " + m_downloads, "-sk " + m_tmp, DiskChangeTracker::kDuTimeoutSeconds));
    for (const auto& [step, du] : {std::pair(1199, 3), std::pair(1, 6)}) {
        m_clock.advance(step);
        root(50 * kMiB);
        EXPECT_EQ(count("du"), du);
    }
    m_clock.advance(10);
    m_tracker.reset();
    EXPECT_EQ(root(900 * kMiB), "");
    EXPECT_EQ(count("du"), 9);
}

TEST_F(DiskChangeTrackerTest, EachVolumeIsMeasuredFromItsOwnLastSample) {
    const QList<DiskChange> first =
        m_tracker.detectChanges({disk("/", 10 * kMiB), disk("/mnt/usb", 10 * kMiB)}, 0);
    EXPECT_EQ(describe(first),
              (QStringList{"/ 0 from 10 to 10 | dd rsync", "/mnt/usb 0 from 10 to 10 | dd rsync"}));
    EXPECT_TRUE(first.value(1).timestamp == m_clock.now() && first.value(0).id != first[1].id);
    EXPECT_EQ(std::tuple(count("lsof"), m_runner.requests().last().timeoutSeconds),
              std::tuple(2, DiskChangeTracker::kLsofTimeoutSeconds));

    m_clock.advance(5);
    EXPECT_EQ(root(10 * kMiB), "");
    m_clock.advance(5);
    EXPECT_EQ(describe(m_tracker.detectChanges({disk("/mnt/usb", 15 * kMiB)}, 1)),
              QStringList{"/mnt/usb 5 from 10 to 15 | dd rsync"});  // cached writers
}

TEST_F(DiskChangeTrackerTest, TheThresholdIsOnTheMagnitudeAndTheBaselineMoves) {
    root(100 * kMiB);
    EXPECT_EQ(root(101 * kMiB - 1), "");
    // 1 byte more than the last sample: measured from that sample, not from the first.
    EXPECT_EQ(root(101 * kMiB), "");
    EXPECT_EQ(root(102 * kMiB), "/ 1 from 101 to 102");
    EXPECT_EQ(root(2 * kMiB, 100), "/ -100 from 102 to 2");
    EXPECT_EQ(root(0, (qint64(1) << 43) - 1), "");
    EXPECT_EQ(m_tracker.detectChanges({disk("/", 0)}, -(qint64(1) << 43)).size(), 1);
    EXPECT_DEATH(m_tracker.detectChanges({}, qint64(1) << 43), "fit in 64 bits");
}

TEST_F(DiskChangeTrackerTest, AttributionComesWithScansAndCachesServeBetweenThem) {
    setDirectorySizes(100, 100, 40000);
    root(500 * kMiB);
    m_clock.advance(1200);
    setDirectorySizes(100 + 30 * 1024, 100 + 20 * 1024 - 1, 40000 - 20 * 1024);
    makeFile(m_downloads + "/disk.iso", 25 * kMiB, m_clock.now());
    EXPECT_EQ(root(900 * kMiB), "/ 400 from 500 to 900 | ~/Downloads 30 | " + m_tmp +
                                    " 20 | ~/Downloads/disk.iso 25 | dd rsync");

    // Between scans: no deltas (both sides are the same scan), the caches even after the
    // tools' answers have changed.
    m_runner.respond(kLsof, (kHeader + lsofLine("cp")).toUtf8());
    m_clock.advance(60);
    EXPECT_EQ(root(0), "/ -900 from 900 to 0 | ~/Downloads/disk.iso 25 | dd rsync");

    m_clock.advance(1200);
    EXPECT_EQ(root(0), "");
    m_clock.advance(60);
    EXPECT_EQ(root(100 * kMiB), "/ 100 from 0 to 100 | ~/Downloads/disk.iso 25 | dd rsync");
    EXPECT_EQ(std::pair(count("du"), count("lsof")), std::pair(9, 1));
}

TEST_F(DiskChangeTrackerTest, RecentLargeFilesSinceThePreviousSample) {
    root(0);
    m_clock.advance(100);
    m_tracker.detectChanges({}, 1);  // an empty sample still moves the previous sample date
    const QDateTime since = m_clock.now();

    makeFile(m_downloads + "/at-since.bin", 29 * kMiB, since);
    makeFile(m_downloads + "/a-second-early.bin", 40 * kMiB, since.addSecs(-1));
    makeFile(m_downloads + "/just-under.bin", 20 * kMiB - 1, since);
    makeFile(m_downloads + "/.hidden-dir/inside.bin", 90 * kMiB, since);
    makeFile(m_downloads + "/Tool.app/Contents/Resources/payload.bin", 90 * kMiB, since);
    makeFile(m_cache + "/deep/er/nested.bin", 30 * kMiB, since);
    for (int i = 1; i <= 8; ++i) {
        makeFile(m_tmp + QStringLiteral("/t%1.bin").arg(i), (20 + i) * kMiB, since.addSecs(i));
    }
    QFile::link(m_downloads + "/at-since.bin", m_tmp + "/link.bin");

    m_clock.advance(1100);
    EXPECT_EQ(
        root(500 * kMiB),
        QStringLiteral("/ 500 from 0 to 500 | ~/.cache/deep/er/nested.bin 30 | "
                       "~/Downloads/at-since.bin 29 | %1/t8.bin 28 | %1/t7.bin 27 | %1/t6.bin 26 "
                       "| %1/t5.bin 25 | %1/t4.bin 24 | %1/t3.bin 23 | dd rsync")
            .arg(m_tmp));
}

TEST_F(DiskChangeTrackerTest, FailedToolsShrinkTheAttributionOnly) {
    // The status of a tool that printed is not looked at; one that didn't start gives nothing.
    setDirectorySizes(100, 0, 0, 1);
    m_runner.respond("/usr/bin/du -sk " + m_cache, "garbage\n");
    m_runner.respond("/usr/bin/du -sk " + m_tmp, "\xff\xfe\t/bad utf-8\n");
    root(0);

    m_clock.advance(1200);
    setDirectorySizes(100 + 50 * 1024, 999999, 999999, 1);
    m_runner.respond(
        kLsof,
        {.started = true, .timedOut = true, .standardOutput = (kHeader + lsofLine("dd")).toUtf8()});
    EXPECT_EQ(root(500 * kMiB), "/ 500 from 0 to 500 | ~/Downloads 50");
}

TEST_F(DiskChangeTrackerTest, EventLogGetsOneJsonLinePerChangeOrAMessage) {
    const DiskChange change{
        .timestamp = m_clock.now(),
        .mountPoint = "/",
        .changeBytes = -(qint64(3) << 40),
        .previousBytes = qint64(5) << 40,
        .currentBytes = qint64(2) << 40,
        .directoryDeltas = {DiskAttribution::make("/home/ada/a b", 25, "/home/ada")},
        .activeWriters = {"dd", "rsync"}};
    LogCapture log;
    m_tracker.writeEventLog(change);
    m_tracker.writeEventLog(change);
    QFile file(m_root.filePath("data/disk-events.jsonl"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray line =
        R"({"active_writers":["dd","rsync"],"change_bytes":-3298534883328,)"
        R"("current_bytes":2199023255552,"directory_deltas":[{"bytes":25,"label":"~/a b",)"
        R"("path":"/home/ada/a b"}],"mount_point":"/","previous_bytes":5497558138880,)"
        R"("recent_files":[],"timestamp":"2026-01-15T12:00:00Z"})"
        "\n";
    EXPECT_EQ(file.readAll(), line + line);

    // A regular file where the directory should be: each change is reported and lost.
    DiskChangeTracker blocked(m_runner, m_clock, m_home, file.fileName() + "/events.jsonl", {},
                              kLsofProgram);
    blocked.writeEventLog(change);
    blocked.writeEventLog(change);  // the lock was released on the way out
    EXPECT_EQ(log.lines().replaceInStrings(QRegularExpression(": .*"), ":"),
              QStringList(2, "[DiskChangeTracker] Failed to write disk event log:"));
}

TEST(DiskInfo, PercentIsWholeAndZeroWithoutCapacity) {
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

TEST_F(DiskIOReaderTest, TheNewestValidBurstsComeBackOldestFirstWithLabelsAndDefaults) {
    writeLines(
        {burst(0, R"("source":"process","process":"rsync","pid":77,"written_mb":250.5,)"
                  R"("window_s":10)"),
         burst(1, R"("source":"directory")"), burst(2, R"("source":"process","path":"/tmp/x")"),
         burst(3, R"("source":"file","path":"/tmp/big.iso","process":"ignored","window_s":2.5)"),
         burst(4, R"("source":"process","pid":"12")"), burst(5, R"("process":"x")"),
         burst(6, R"("source":"other")"),
         R"({"type":"diskio_burst","source":"file","path":"/no/timestamp"})",
         R"({"type":7,"timestamp":"2026-01-15T10:05:00Z","source":"process"})",
         R"({"type":"diskio_other","timestamp":"2026-01-15T10:06:00Z","source":"process"})",
         R"(["type","diskio_burst"])", "{not json"});
    EXPECT_EQ(bursts(),
              (QStringList{"process rsync 77 250.5 10 cpu", "directory unknown - 0 30 folder.fill",
                           "process unknown - 0 30 cpu", "file /tmp/big.iso - 0 30 doc.fill",
                           "process unknown - 0 30 cpu"}));
    EXPECT_EQ(bursts(2), bursts().mid(3));
    EXPECT_TRUE(bursts(0).isEmpty());
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

TEST_F(DiskIOReaderTest, AFifoAtThePathGivesNothingAtOnce) {
    ASSERT_EQ(::mkfifo(QFile::encodeName(m_path).constData(), 0600), 0);
    ::alarm(10);  // a read that waits for a writer ends the test process rather than hang
    const DiskIORead result = read();
    ::alarm(0);
    EXPECT_TRUE(!result.summary && result.bursts.isEmpty());
}

TEST(DiskChangeTrackerLive, RealDuAndLsofExplainAWrittenFile) {
    QTemporaryDir dir;
    FakeClock clock;
    QProcessCommandRunner runner;
    DiskChangeTracker tracker(runner, clock, dir.path(), dir.filePath("events.jsonl"), {dir.path()},
                              linuxSystemProfile().lsofProgram);
    tracker.detectChanges({disk("/", 0)}, 1);
    QFile file(dir.filePath("written.bin"));  // stays open for writing during the scan
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) &&
                file.write(QByteArray(21 << 20, 'z')) == 21 << 20 && file.flush());
    clock.advance(DiskChangeTracker::kDirectoryScanIntervalSeconds);
    // What du counts for the home directory is the file's size give or take a MiB.
    EXPECT_THAT(
        describe(tracker.detectChanges({disk("/", 21 * kMiB)}, 1)).join('\n').toStdString(),
        testing::MatchesRegex(R"(/ 21 from 0 to 21 \| ~ 2[012] \| ~/written.bin 21 \| [^|]+)"));
}
