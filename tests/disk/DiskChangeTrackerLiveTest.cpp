#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>

#include "disk/DiskChangeTracker.h"
#include "platform/qt/QProcessCommandRunner.h"
#include "platform/system/PlatformServices.h"
#include "support/FakeClock.h"

using namespace zelvar;
using namespace zelvar::test;

// The real du and lsof of this machine. lsof -nP prints far more than a pipe holds here, so a
// runner that read only after the end would time out and find no writers.
TEST(DiskChangeTrackerLive, RealDuAndLsofExplainAWrittenFile) {
    QTemporaryDir dir;
    FakeClock clock;
    QProcessCommandRunner runner;
    DiskChangeTracker tracker(runner, clock, dir.path(), dir.filePath("events.jsonl"), {dir.path()},
                              currentSystemProfile().lsofProgram);
    const DiskInfo before{"/", 0, 0, 0, {}};
    EXPECT_TRUE(tracker.detectChanges({before}, 1).isEmpty());

    QFile file(dir.filePath("written.bin"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));  // stays open for writing during the scan
    const QByteArray chunk(1 << 20, 'z');
    for (int i = 0; i < 21; ++i) {
        ASSERT_EQ(file.write(chunk), chunk.size());
    }
    ASSERT_TRUE(file.flush());

    clock.advance(DiskChangeTracker::kDirectoryScanIntervalSeconds);
    const DiskInfo after{"/", 0, 21 << 20, 0, {}};
    const QList<DiskChange> changes = tracker.detectChanges({after}, 1);
    ASSERT_EQ(changes.size(), 1);
    ASSERT_EQ(changes[0].directoryDeltas.size(), 1);
    EXPECT_EQ(changes[0].directoryDeltas[0].label, "~");
    EXPECT_NEAR(static_cast<double>(changes[0].directoryDeltas[0].bytes), 21 << 20, 1 << 20);
    ASSERT_EQ(changes[0].recentFiles.size(), 1);
    EXPECT_EQ(changes[0].recentFiles[0].label, "~/written.bin");
    EXPECT_EQ(changes[0].recentFiles[0].bytes, 21 << 20);
    EXPECT_FALSE(changes[0].activeWriters.isEmpty());
}
