#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include "disk/DiskChangeTracker.h"
#include "platform/SystemProfile.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "support/FakePorts.h"
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

// Linux lsof with its thread columns, each writer holding one log file open for writing.
QByteArray lsofOutput(const QStringList& writers) {
    QByteArray out =
        "COMMAND     PID   TID TASKCMD   USER   FD      TYPE DEVICE SIZE/OFF NODE NAME\n";
    for (const QString& w : writers) {
        out +=
            w.toUtf8() + "  14314  ada  1w  REG  254,0  0  10961289 /tmp/" + w.toUtf8() + ".log\n";
    }
    return out;
}

// Each change on one line, sizes in whole MiB: "/ +5 from 10 to 15", then its directory
// deltas, recent files and active writers.
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
        m_runner.respond(kLsof, lsofOutput({"dd", "rsync"}));
    }

    void respondDu(const QString& dir, const QByteArray& output, int exitCode = 0) {
        m_runner.respond("/usr/bin/du -sk " + dir, output, exitCode);
    }
    void setDirectorySizes(qint64 downloadsKiB, qint64 cacheKiB, qint64 tmpKiB, int exitCode = 0) {
        const std::pair<QString, qint64> sizes[] = {
            {m_downloads, downloadsKiB}, {m_cache, cacheKiB}, {m_tmp, tmpKiB}};
        for (const auto& [dir, kib] : sizes) {
            respondDu(dir, QStringLiteral("%1\t%2\n").arg(kib).arg(dir).toUtf8(), exitCode);
        }
    }

    void makeFile(const QString& path, qint64 bytes, const QDateTime& modified) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.resize(bytes) &&
                    file.setFileTime(modified, QFileDevice::FileModificationTime));
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
    DiskChangeTracker m_tracker{m_runner,
                                m_clock,
                                m_home,
                                m_root.filePath("data/disk-events.jsonl"),
                                {m_downloads, m_cache, m_tmp, m_root.filePath("private/tmp")},
                                kLsofProgram};
};

}  // namespace

TEST_F(DiskChangeTrackerTest, ScansOnTheFirstCallThenEveryTwentyMinutesAndAfterAReset) {
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 50 * kMiB)}, 1).isEmpty());
    // The missing directory isn't measured; du runs once for each of the others with its
    // time-out; no crossing, so no lsof.
    const QList<CommandRequest> requests = m_runner.requests();
    ASSERT_EQ(requests.size(), 3);
    EXPECT_EQ(requests[0].arguments, (QStringList{"-sk", m_downloads}));
    EXPECT_EQ(requests[2].arguments, (QStringList{"-sk", m_tmp}));
    EXPECT_EQ(requests[0].timeoutSeconds, DiskChangeTracker::kDuTimeoutSeconds);

    for (const auto& [step, du] : {std::pair(1199, 3), std::pair(1, 6)}) {
        m_clock.advance(step);
        m_tracker.detectChanges({disk("/", 50 * kMiB)}, 1);
        EXPECT_EQ(count("du"), du);
    }
    // After a reset the next call scans and has no previous sample to compare with.
    m_clock.advance(10);
    m_tracker.reset();
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 900 * kMiB)}, 1).isEmpty());
    EXPECT_EQ(count("du"), 9);
}

TEST_F(DiskChangeTrackerTest, EachVolumeIsMeasuredFromItsOwnLastSample) {
    // A zero threshold reports every volume, a first sample moving by zero. A scanning call
    // with crossings runs lsof once for each record, each with its own result.
    const QList<DiskChange> first =
        m_tracker.detectChanges({disk("/", 10 * kMiB), disk("/mnt/usb", 10 * kMiB)}, 0);
    EXPECT_EQ(describe(first),
              (QStringList{"/ 0 from 10 to 10 | dd rsync", "/mnt/usb 0 from 10 to 10 | dd rsync"}));
    EXPECT_EQ(first.value(1).timestamp, m_clock.now());
    EXPECT_NE(first.value(0).id, first.value(1).id);
    EXPECT_EQ(count("lsof"), 2);
    EXPECT_EQ(m_runner.requests().last().timeoutSeconds, DiskChangeTracker::kLsofTimeoutSeconds);

    // A new volume's first sample has no delta; the absent one keeps its old value.
    m_clock.advance(5);
    EXPECT_TRUE(
        m_tracker.detectChanges({disk("/", 10 * kMiB), disk("/mnt/new", 900 * kMiB)}, 1).isEmpty());
    m_clock.advance(5);
    EXPECT_EQ(describe(m_tracker.detectChanges({disk("/mnt/usb", 15 * kMiB)}, 1)),
              QStringList{"/mnt/usb 5 from 10 to 15 | dd rsync"});  // cached writers
}

TEST_F(DiskChangeTrackerTest, TheThresholdIsOnTheMagnitudeAndTheBaselineMoves) {
    m_tracker.detectChanges({disk("/", 100 * kMiB)}, 1);
    m_clock.advance(5);
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 101 * kMiB - 1)}, 1).isEmpty());
    m_clock.advance(5);
    // 1 byte more than the last sample: measured from that sample, not from the first.
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 101 * kMiB)}, 1).isEmpty());
    m_clock.advance(5);
    EXPECT_EQ(describe(m_tracker.detectChanges({disk("/", 102 * kMiB)}, 1)),
              QStringList{"/ 1 from 101 to 102"});
    m_clock.advance(5);
    EXPECT_EQ(describe(m_tracker.detectChanges({disk("/", 2 * kMiB)}, 100)),
              QStringList{"/ -100 from 102 to 2"});

    // The widest thresholds whose byte counts fit in 64 bits work; one more stops the process.
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 0)}, (qint64(1) << 43) - 1).isEmpty());
    EXPECT_EQ(m_tracker.detectChanges({disk("/", 0)}, -(qint64(1) << 43)).size(), 1);
    EXPECT_DEATH(m_tracker.detectChanges({}, qint64(1) << 43), "fit in 64 bits");
}

TEST_F(DiskChangeTrackerTest, AttributionComesWithScansAndCachesServeBetweenThem) {
    setDirectorySizes(100, 100, 40000);
    m_tracker.detectChanges({disk("/", 0)}, 1);  // scans; nothing crosses
    // A crossing between scans, before any scanning crossing: no attribution at all.
    m_clock.advance(60);
    EXPECT_EQ(describe(m_tracker.detectChanges({disk("/", 500 * kMiB)}, 1)),
              QStringList{"/ 500 from 0 to 500"});
    EXPECT_EQ(count("lsof"), 0);

    // The next scan: Downloads grew by 30 MiB, tmp shrank by 20 MiB, the cache by a byte
    // under the floor; a large file appeared.
    m_clock.advance(1140);
    setDirectorySizes(100 + 30 * 1024, 100 + 20 * 1024 - 1, 40000 - 20 * 1024);
    makeFile(m_downloads + "/disk.iso", 25 * kMiB, m_clock.now());
    const QList<DiskChange> scanned = m_tracker.detectChanges({disk("/", 900 * kMiB)}, 1);
    EXPECT_EQ(describe(scanned), QStringList{"/ 400 from 500 to 900 | ~/Downloads 30 | " + m_tmp +
                                             " 20 | ~/Downloads/disk.iso 25 | dd rsync"});
    EXPECT_EQ(scanned.value(0).directoryDeltas.value(0).detail, m_downloads);

    // Between scans: no deltas (both sides are the same scan), the caches for the rest, even
    // after the tools' answers have changed.
    m_runner.respond(kLsof, lsofOutput({"cp"}));
    m_clock.advance(60);
    EXPECT_EQ(describe(m_tracker.detectChanges({disk("/", 0)}, 1)),
              QStringList{"/ -900 from 900 to 0 | ~/Downloads/disk.iso 25 | dd rsync"});

    // A due scan without a crossing refreshes directory sizes only.
    m_clock.advance(1200);
    EXPECT_TRUE(m_tracker.detectChanges({disk("/", 0)}, 1).isEmpty());
    EXPECT_EQ(count("du"), 9);
    m_clock.advance(60);
    EXPECT_EQ(describe(m_tracker.detectChanges({disk("/", 100 * kMiB)}, 1)),
              QStringList{"/ 100 from 0 to 100 | ~/Downloads/disk.iso 25 | dd rsync"});
    EXPECT_EQ(count("lsof"), 1);
}

TEST_F(DiskChangeTrackerTest, RecentLargeFilesSinceThePreviousSample) {
    m_tracker.detectChanges({disk("/", 0)}, 1);
    m_clock.advance(100);
    m_tracker.detectChanges({}, 1);  // an empty sample still moves the previous sample date
    const QDateTime since = m_clock.now();

    makeFile(m_downloads + "/at-since.bin", 29 * kMiB, since);
    makeFile(m_downloads + "/a-second-early.bin", 40 * kMiB, since.addSecs(-1));
    makeFile(m_downloads + "/just-under.bin", 20 * kMiB - 1, since);
    makeFile(m_downloads + "/.hidden.bin", 90 * kMiB, since);
    makeFile(m_downloads + "/.hidden-dir/inside.bin", 90 * kMiB, since);
    makeFile(m_downloads + "/Tool.app/Contents/Resources/payload.bin", 90 * kMiB, since);
    makeFile(m_cache + "/deep/er/nested.bin", 30 * kMiB, since);
    for (int i = 1; i <= 8; ++i) {
        makeFile(m_tmp + QStringLiteral("/t%1.bin").arg(i), (20 + i) * kMiB, since.addSecs(i));
    }
    QFile::link(m_downloads + "/at-since.bin", m_tmp + "/link.bin");

    m_clock.advance(1100);
    // Ten candidates: the eight largest, largest first.
    EXPECT_EQ(
        describe(m_tracker.detectChanges({disk("/", 500 * kMiB)}, 1)),
        QStringList{QStringLiteral("/ 500 from 0 to 500 | ~/.cache/deep/er/nested.bin 30 | "
                                   "~/Downloads/at-since.bin 29 | %1/t8.bin 28 | %1/t7.bin 27 "
                                   "| %1/t6.bin 26 | %1/t5.bin 25 | %1/t4.bin 24 | %1/t3.bin "
                                   "23 | dd rsync")
                        .arg(m_tmp)});
}

TEST_F(DiskChangeTrackerTest, FailedToolsShrinkTheAttributionOnly) {
    // The status of a tool that printed is not looked at; one that didn't start gives nothing.
    setDirectorySizes(100, 0, 0, 1);
    respondDu(m_cache, "garbage\n");
    respondDu(m_tmp, "\xff\xfe\t/bad utf-8\n");
    m_tracker.detectChanges({disk("/", 0)}, 1);

    m_clock.advance(1200);
    setDirectorySizes(100 + 50 * 1024, 999999, 999999, 1);
    // lsof timed out: none of what it printed counts.
    m_runner.respond(kLsof,
                     {.started = true, .timedOut = true, .standardOutput = lsofOutput({"dd"})});
    // Only Downloads had a size on both sides.
    EXPECT_EQ(describe(m_tracker.detectChanges({disk("/", 500 * kMiB)}, 1)),
              QStringList{"/ 500 from 0 to 500 | ~/Downloads 50"});
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
    // Empty attribution is written as an empty array, and the byte counts stay exact integers.
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

// The real du and lsof of this machine. lsof -nP prints far more than a pipe holds here, so a
// runner that read only after the end would time out and find no writers.
TEST(DiskChangeTrackerLive, RealDuAndLsofExplainAWrittenFile) {
    QTemporaryDir dir;
    FakeClock clock;
    QProcessCommandRunner runner;
    DiskChangeTracker tracker(runner, clock, dir.path(), dir.filePath("events.jsonl"), {dir.path()},
                              linuxSystemProfile().lsofProgram);
    EXPECT_TRUE(tracker.detectChanges({disk("/", 0)}, 1).isEmpty());
    QFile file(dir.filePath("written.bin"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));  // stays open for writing during the scan
    ASSERT_TRUE(file.write(QByteArray(21 << 20, 'z')) == 21 << 20 && file.flush());
    clock.advance(DiskChangeTracker::kDirectoryScanIntervalSeconds);
    const QList<DiskChange> changes = tracker.detectChanges({disk("/", 21 * kMiB)}, 1);
    // What du counts for the home directory is the file's size give or take a MiB.
    const QString line = describe(changes).join('\n');
    EXPECT_TRUE(
        QRegularExpression(R"(^/ 21 from 0 to 21 \| ~ 2[012] \| ~/written.bin 21 \| [^|]+$)")
            .match(line)
            .hasMatch())
        << line.toStdString();
    EXPECT_EQ(changes.value(0).recentFiles.value(0).bytes, 21 << 20);
}
