#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include "disk/DiskChangeTracker.h"
#include "support/FakeClock.h"
#include "support/FakeCommandRunner.h"
#include "support/LogCapture.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

constexpr qint64 kMiB = 1048576;

const QString kLsofProgram = "/usr/bin/lsof";
const QString kLsof = kLsofProgram + " -nP";

DiskInfo disk(const QString& mountPoint, qint64 usedBytes) {
    return DiskInfo{mountPoint, usedBytes * 2, usedBytes, usedBytes, {}};
}

class DiskChangeTrackerTest : public ::testing::Test {
protected:
    DiskChangeTrackerTest() {
        for (const QString& dir : {downloads(), cache(), tmp()}) {
            QDir().mkpath(dir);
        }
        setDirectorySizes(100, 100, 100);
        m_runner.respond(kLsof, lsofOutput({"dd", "rsync"}));
    }

    QString home() const { return m_root.filePath("home/ada"); }
    QString downloads() const { return home() + "/Downloads"; }
    QString cache() const { return home() + "/.cache"; }
    QString tmp() const { return m_root.filePath("tmp"); }
    QString missing() const { return m_root.filePath("private/tmp"); }

    // Sizes in KiB as du prints them.
    void setDirectorySizes(qint64 downloadsKiB, qint64 cacheKiB, qint64 tmpKiB) {
        m_runner.respond("/usr/bin/du -sk " + downloads(),
                         QStringLiteral("%1\t%2\n").arg(downloadsKiB).arg(downloads()).toUtf8());
        m_runner.respond("/usr/bin/du -sk " + cache(),
                         QStringLiteral("%1\t%2\n").arg(cacheKiB).arg(cache()).toUtf8());
        m_runner.respond("/usr/bin/du -sk " + tmp(),
                         QStringLiteral("%1\t%2\n").arg(tmpKiB).arg(tmp()).toUtf8());
    }

    static QByteArray lsofOutput(const QStringList& writers) {
        QByteArray out =
            "COMMAND     PID   TID TASKCMD   USER   FD      TYPE DEVICE SIZE/OFF     "
            "NODE NAME\n";
        for (const QString& w : writers) {
            out += w.toUtf8() +
                   "     14314                 ada    1w      REG  254,0        0 "
                   "10961289 /tmp/" +
                   w.toUtf8() + ".log\n";
        }
        return out;
    }

    // A sparse file of `bytes`, last modified at `modified`.
    void makeFile(const QString& path, qint64 bytes, const QDateTime& modified) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.resize(bytes));
        ASSERT_TRUE(file.setFileTime(modified, QFileDevice::FileModificationTime));
    }

    int count(const QString& program) const {
        const QList<CommandRequest> requests = m_runner.requests();
        return static_cast<int>(
            std::count_if(requests.begin(), requests.end(),
                          [&](const CommandRequest& r) { return r.program.endsWith(program); }));
    }

    QTemporaryDir m_root;
    FakeClock m_clock;
    FakeCommandRunner m_runner;
    DiskChangeTracker m_tracker{m_runner,
                                m_clock,
                                home(),
                                m_root.filePath("data/disk-events.jsonl"),
                                {downloads(), cache(), tmp(), missing()},
                                kLsofProgram};
};

}  // namespace

TEST_F(DiskChangeTrackerTest, FirstCallScansButReportsNothingAboveAZeroThreshold) {
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 50 * kMiB)}, 1).isEmpty());
    // The missing directory isn't measured; du runs once for each of the others with its
    // time-out; no crossing, so no lsof.
    const QList<CommandRequest> requests = m_runner.requests();
    ASSERT_EQ(requests.size(), 3);
    EXPECT_EQ(requests[0].arguments, (QStringList{"-sk", downloads()}));
    EXPECT_EQ(requests[2].arguments, (QStringList{"-sk", tmp()}));
    EXPECT_EQ(requests[0].timeoutSeconds, 5.0);
    EXPECT_EQ(requests[0].killGraceSeconds, 0.2);

    // Within the gate nothing runs.
    m_clock.advance(1199);
    m_tracker.detectChanges({disk("/", 50 * kMiB)}, 1);
    EXPECT_EQ(m_runner.requests().size(), 3);
    m_clock.advance(1);
    m_tracker.detectChanges({disk("/", 50 * kMiB)}, 1);
    EXPECT_EQ(count("du"), 6);
}

TEST_F(DiskChangeTrackerTest, ThresholdZeroReportsEveryVolumeEveryTime) {
    const QList<DiskChange> changes =
        m_tracker.detectChanges({disk("/", 50 * kMiB), disk("/mnt/b", kMiB)}, 0);
    ASSERT_EQ(changes.size(), 2);
    EXPECT_EQ(changes[0].changeBytes, 0);
    EXPECT_EQ(changes[0].previousBytes, 50 * kMiB);
    EXPECT_EQ(changes[0].displayChange(), "-0 MB");
    EXPECT_EQ(changes[1].mountPoint, "/mnt/b");
    EXPECT_EQ(changes[0].timestamp, m_clock.now());
    EXPECT_EQ(changes[1].timestamp, changes[0].timestamp);
    EXPECT_NE(changes[0].id, changes[1].id);
    // A scanning call with crossings: lsof once for each record, each with its own result.
    EXPECT_EQ(count("lsof"), 2);
    EXPECT_EQ(changes[1].activeWriters, (QStringList{"dd", "rsync"}));
    const CommandRequest lsof = m_runner.requests().last();
    EXPECT_EQ(lsof.timeoutSeconds, 3.0);
}

TEST_F(DiskChangeTrackerTest, TheThresholdIsOnTheMagnitudeAndTheBaselineMoves) {
    m_tracker.detectChanges({disk("/", 100 * kMiB)}, 1);
    m_clock.advance(5);
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 101 * kMiB - 1)}, 1).isEmpty());
    m_clock.advance(5);
    // 1 byte more than the last sample: measured from that sample, not from the first.
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 101 * kMiB)}, 1).isEmpty());
    m_clock.advance(5);
    const QList<DiskChange> grown = m_tracker.detectChanges({disk("/", 102 * kMiB)}, 1);
    ASSERT_EQ(grown.size(), 1);
    EXPECT_EQ(grown[0].changeBytes, kMiB);
    EXPECT_EQ(grown[0].previousBytes, 101 * kMiB);
    EXPECT_EQ(grown[0].currentBytes, 102 * kMiB);
    EXPECT_TRUE(grown[0].isAllocation());
    EXPECT_EQ(grown[0].displayChange(), "+1 MB");

    m_clock.advance(5);
    const QList<DiskChange> freed = m_tracker.detectChanges({disk("/", 2 * kMiB)}, 100);
    ASSERT_EQ(freed.size(), 1);
    EXPECT_EQ(freed[0].changeBytes, -100 * kMiB);
    EXPECT_FALSE(freed[0].isAllocation());
    EXPECT_EQ(freed[0].displayChange(), "-100 MB");

    // The widest thresholds whose byte counts fit in 64 bits work; one more stops the process.
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 0)}, (qint64(1) << 43) - 1).isEmpty());
    EXPECT_EQ(m_tracker.detectChanges({disk("/", 0)}, -(qint64(1) << 43)).size(), 1);
    EXPECT_DEATH(m_tracker.detectChanges({}, qint64(1) << 43), "fit in 64 bits");
}

TEST_F(DiskChangeTrackerTest, VolumesThatComeAndGo) {
    m_tracker.detectChanges({disk("/", 10 * kMiB), disk("/mnt/usb", 10 * kMiB)}, 1);
    m_clock.advance(5);
    // A new volume's first sample has no delta; the absent one keeps its old value.
    EXPECT_TRUE(
        m_tracker.detectChanges({disk("/", 10 * kMiB), disk("/mnt/new", 900 * kMiB)}, 1).isEmpty());
    m_clock.advance(5);
    const QList<DiskChange> back = m_tracker.detectChanges({disk("/mnt/usb", 15 * kMiB)}, 1);
    ASSERT_EQ(back.size(), 1);
    EXPECT_EQ(back[0].previousBytes, 10 * kMiB);
    EXPECT_EQ(back[0].changeBytes, 5 * kMiB);
}

TEST_F(DiskChangeTrackerTest, AttributionComesWithScansAndCachesServeBetweenThem) {
    setDirectorySizes(100, 100, 40000);
    m_tracker.detectChanges({disk("/", 0)}, 1);  // scans; nothing crosses

    // A crossing between scans, before any scanning crossing: no attribution at all.
    m_clock.advance(60);
    QList<DiskChange> changes = m_tracker.detectChanges({disk("/", 500 * kMiB)}, 1);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_TRUE(changes[0].directoryDeltas.isEmpty());
    EXPECT_TRUE(changes[0].recentFiles.isEmpty());
    EXPECT_TRUE(changes[0].activeWriters.isEmpty());
    EXPECT_EQ(count("lsof"), 0);

    // The next scan: Downloads grew by 30 MiB, tmp shrank by 20 MiB, the cache by a byte
    // under the floor; a large file appeared.
    m_clock.advance(1140);
    setDirectorySizes(100 + 30 * 1024, 100 + 20 * 1024 - 1, 40000 - 20 * 1024);
    makeFile(downloads() + "/disk.iso", 25 * kMiB, m_clock.now());
    changes = m_tracker.detectChanges({disk("/", 900 * kMiB)}, 1);
    ASSERT_EQ(changes.size(), 1);
    const DiskChange& scanned = changes[0];
    ASSERT_EQ(scanned.directoryDeltas.size(), 2);
    EXPECT_EQ(scanned.directoryDeltas[0].label, "~/Downloads");
    EXPECT_EQ(scanned.directoryDeltas[0].detail, downloads());
    EXPECT_EQ(scanned.directoryDeltas[0].bytes, 30 * kMiB);
    EXPECT_EQ(scanned.directoryDeltas[1].detail, tmp());
    EXPECT_EQ(scanned.directoryDeltas[1].bytes, 20 * kMiB);
    ASSERT_EQ(scanned.recentFiles.size(), 1);
    EXPECT_EQ(scanned.recentFiles[0].label, "~/Downloads/disk.iso");
    EXPECT_EQ(scanned.activeWriters, (QStringList{"dd", "rsync"}));
    EXPECT_EQ(scanned.summary(), "+400 MB on /, largest directory change: ~/Downloads 31.5 MB");

    // Between scans: no deltas (both sides are the same scan), the caches for the rest, even
    // after the tools' answers have changed.
    m_runner.respond(kLsof, lsofOutput({"cp"}));
    m_clock.advance(60);
    changes = m_tracker.detectChanges({disk("/", 0)}, 1);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_TRUE(changes[0].directoryDeltas.isEmpty());
    EXPECT_EQ(changes[0].recentFiles.size(), 1);
    EXPECT_EQ(changes[0].activeWriters, (QStringList{"dd", "rsync"}));
    EXPECT_EQ(changes[0].summary(), "-900 MB on /, recent file: ~/Downloads/disk.iso 26.2 MB");

    // A due scan without a crossing refreshes directory sizes only.
    m_clock.advance(1200);
    const int duRuns = count("du");
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 0)}, 1).isEmpty());
    EXPECT_EQ(count("du"), duRuns + 3);
    m_clock.advance(60);
    changes = m_tracker.detectChanges({disk("/", 100 * kMiB)}, 1);
    EXPECT_EQ(changes[0].activeWriters, (QStringList{"dd", "rsync"}));
    EXPECT_EQ(count("lsof"), 1);
}

TEST_F(DiskChangeTrackerTest, RecentLargeFilesSinceThePreviousSample) {
    m_tracker.detectChanges({disk("/", 0)}, 1);
    m_clock.advance(100);
    m_tracker.detectChanges({}, 1);  // an empty sample still moves the previous sample date
    const QDateTime since = m_clock.now();

    makeFile(downloads() + "/at-since.bin", 29 * kMiB, since);
    makeFile(downloads() + "/a-second-early.bin", 40 * kMiB, since.addSecs(-1));
    makeFile(downloads() + "/just-under.bin", 20 * kMiB - 1, since);
    makeFile(downloads() + "/.hidden.bin", 90 * kMiB, since);
    makeFile(downloads() + "/.hidden-dir/inside.bin", 90 * kMiB, since);
    makeFile(downloads() + "/Tool.app/Contents/Resources/payload.bin", 90 * kMiB, since);
    makeFile(cache() + "/deep/er/nested.bin", 30 * kMiB, since);
    for (int i = 1; i <= 8; ++i) {
        makeFile(tmp() + QStringLiteral("/t%1.bin").arg(i), (20 + i) * kMiB, since.addSecs(i));
    }
    QFile::link(downloads() + "/at-since.bin", tmp() + "/link.bin");

    m_clock.advance(1100);
    const QList<DiskChange> changes = m_tracker.detectChanges({disk("/", 500 * kMiB)}, 1);
    ASSERT_EQ(changes.size(), 1);
    QStringList names;
    for (const DiskAttribution& file : changes[0].recentFiles) {
        names << QFileInfo(file.detail).fileName();
    }
    // Ten candidates: the eight largest, largest first.
    EXPECT_EQ(names, (QStringList{"nested.bin", "at-since.bin", "t8.bin", "t7.bin", "t6.bin",
                                  "t5.bin", "t4.bin", "t3.bin"}));
    EXPECT_EQ(changes[0].recentFiles[0].bytes, 30 * kMiB);
    EXPECT_EQ(changes[0].recentFiles[0].label, "~/.cache/deep/er/nested.bin");
}

TEST_F(DiskChangeTrackerTest, FailedToolsShrinkTheAttributionOnly) {
    // The status of a tool that printed is not looked at; one that didn't start gives nothing.
    m_runner.respond("/usr/bin/du -sk " + downloads(),
                     QStringLiteral("100\t%1\n").arg(downloads()).toUtf8(), 1);
    m_runner.respond("/usr/bin/du -sk " + cache(), "garbage\n");
    m_runner.respond("/usr/bin/du -sk " + tmp(), "\xff\xfe\t/bad utf-8\n");
    m_tracker.detectChanges({disk("/", 0)}, 1);

    m_clock.advance(1200);
    m_runner.respond("/usr/bin/du -sk " + downloads(),
                     QStringLiteral("%1\t%2\n").arg(100 + 50 * 1024).arg(downloads()).toUtf8(), 1);
    m_runner.respond("/usr/bin/du -sk " + cache(), "999999\tx\n");
    m_runner.respond("/usr/bin/du -sk " + tmp(), "999999\tx\n");
    // lsof timed out: none of what it printed counts.
    CommandResult timedOut;
    timedOut.started = timedOut.timedOut = true;
    timedOut.standardOutput = lsofOutput({"dd"});
    m_runner.respond(kLsof, timedOut);
    const QList<DiskChange> changes = m_tracker.detectChanges({disk("/", 500 * kMiB)}, 1);
    ASSERT_EQ(changes.size(), 1);
    // Only Downloads had a size on both sides.
    ASSERT_EQ(changes[0].directoryDeltas.size(), 1);
    EXPECT_EQ(changes[0].directoryDeltas[0].detail, downloads());
    EXPECT_TRUE(changes[0].activeWriters.isEmpty());
}

TEST_F(DiskChangeTrackerTest, ResetStartsOverWithAScan) {
    m_tracker.detectChanges({disk("/", 0)}, 1);
    m_clock.advance(10);
    m_tracker.reset();
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 900 * kMiB)}, 1).isEmpty());
    EXPECT_EQ(count("du"), 6);
}

TEST_F(DiskChangeTrackerTest, EventLogLinesParseBack) {
    DiskChange change;
    change.timestamp = m_clock.now();
    change.mountPoint = "/";
    change.changeBytes = -(qint64(3) << 40);
    change.previousBytes = qint64(5) << 40;
    change.currentBytes = qint64(2) << 40;
    DiskChange attributed = change;
    attributed.changeBytes = 25 * kMiB;
    attributed.directoryDeltas = {DiskAttribution::make(downloads(), 25 * kMiB, home())};
    attributed.recentFiles = {DiskAttribution::make(tmp() + "/a b.iso", 21 * kMiB, home())};
    attributed.activeWriters = {"dd", "rsync"};

    LogCapture log;
    m_tracker.writeEventLog(change);
    m_tracker.writeEventLog(attributed);
    EXPECT_TRUE(log.lines().isEmpty());

    QFile file(m_root.filePath("data/disk-events.jsonl"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    ASSERT_TRUE(content.endsWith('\n'));
    const QList<QByteArray> lines = content.trimmed().split('\n');
    ASSERT_EQ(lines.size(), 2);

    // Empty attribution is written as empty arrays, and the byte counts stay exact integers.
    EXPECT_EQ(QJsonDocument::fromJson(lines[0]).object(),
              (QJsonObject{{"timestamp", "2026-01-15T12:00:00Z"},
                           {"mount_point", "/"},
                           {"change_bytes", -(qint64(3) << 40)},
                           {"previous_bytes", qint64(5) << 40},
                           {"current_bytes", qint64(2) << 40},
                           {"directory_deltas", QJsonArray()},
                           {"recent_files", QJsonArray()},
                           {"active_writers", QJsonArray()}}));
    const QJsonObject second = QJsonDocument::fromJson(lines[1]).object();
    EXPECT_EQ(second["directory_deltas"].toArray(),
              QJsonArray({QJsonObject{
                  {"label", "~/Downloads"}, {"path", downloads()}, {"bytes", 25 * kMiB}}}));
    EXPECT_EQ(second["recent_files"].toArray()[0].toObject()["path"].toString(),
              tmp() + "/a b.iso");
    EXPECT_EQ(second["active_writers"].toArray(), QJsonArray({"dd", "rsync"}));
}

TEST_F(DiskChangeTrackerTest, AnUnwritableEventLogIsReportedAndLost) {
    // A regular file where the directory should be.
    QFile blocker(m_root.filePath("blocked"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    DiskChangeTracker tracker(m_runner, m_clock, home(),
                              m_root.filePath("blocked/disk-events.jsonl"), {}, kLsofProgram);
    LogCapture log;
    tracker.writeEventLog(DiskChange{});
    tracker.writeEventLog(DiskChange{});  // the lock was released on the way out
    ASSERT_EQ(log.lines().size(), 2);
    EXPECT_TRUE(log.lines()[0].startsWith("[DiskChangeTracker] Failed to write disk event log: "));
}
