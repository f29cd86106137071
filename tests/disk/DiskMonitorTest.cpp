#include <gtest/gtest.h>

#include "disk/DiskMonitor.h"
#include "support/FakePorts.h"
#include "support/LogCapture.h"
#include "support/QtPrinters.h"

using namespace zelvar;
using namespace zelvar::test;

namespace {

QStringList mountPoints(const QList<DiskInfo>& disks) {
    QStringList points;
    for (const DiskInfo& disk : disks) {
        points << disk.mountPoint;
    }
    return points;
}

}  // namespace

TEST(DiskInfo, DerivedFiguresUseBinaryGigabytesAndWholePercents) {
    const DiskInfo half{"/", 2147483648, 1073741824, 1073741824, {}};
    EXPECT_EQ(std::tuple(half.availableGB(), half.percentUsed(), half.displayUsed(),
                         half.displayPercent()),
              std::tuple(1.0, 50.0, "1.0 GB / 2.0 GB", "50%"));
    EXPECT_EQ((DiskInfo{"/Volumes/Empty", 0, 0, 0, {}}).displayPercent(), "0%");
    EXPECT_EQ((DiskInfo{"/", 1000, 999, 1, {}}).displayPercent(), "100%");
}

TEST(DiskMonitor, RootFirstThenVolumesSortedWithTheirFigures) {
    FakeClock clock;
    FakeVolumeSource volumes;
    volumes.setCapacity("/", 1000, 400);
    volumes.setCapacity("/media/ada/Zip", 300, 100);
    volumes.setCapacity("/media/ada/Backup", 200, 50);
    // A decomposed "é" sorts as the one character it stands for, and a character beyond
    // U+FFFF by its value rather than by its UTF-16 surrogates.
    const QString cafe = QString::fromUtf8("/media/ada/Cafe\u0301");
    const QString floppy = QString::fromUtf8("/media/ada/\U0001F4BE");
    const QString wideA = QString::fromUtf8("/media/ada/\uFF21");
    for (const QString& point : {cafe, floppy, wideA, QStringLiteral("/media/ada/Caff")}) {
        volumes.setCapacity(point, 10, 5);
    }
    volumes.setListing(
        {true,
         std::nullopt,
         {"/media/ada/Zip", floppy, cafe, "/media/ada/Caff", wideA, "/media/ada/Backup"}});
    LogCapture log;

    const QList<DiskInfo> disks = DiskMonitor(volumes, clock).getDiskInfo();
    EXPECT_EQ(mountPoints(disks), (QStringList{"/", "/media/ada/Backup", "/media/ada/Caff", cafe,
                                               "/media/ada/Zip", wideA, floppy}));
    EXPECT_EQ(disks.value(0), (DiskInfo{"/", 1000, 600, 400, clock.now()}));
    EXPECT_EQ(disks.value(4), (DiskInfo{"/media/ada/Zip", 300, 200, 100, clock.now()}));
    EXPECT_TRUE(log.lines().isEmpty());
}

TEST(DiskMonitor, FailuresShrinkTheListWithTheirMessages) {
    FakeClock clock;
    FakeVolumeSource volumes;
    const DiskMonitor monitor(volumes, clock);
    LogCapture log;
    // A volume that doesn't answer is skipped silently; no extra volumes means "/" alone.
    volumes.setCapacity("/", 10, 5);
    volumes.setListing({true, std::nullopt, {"/mnt/gone"}});
    EXPECT_EQ(mountPoints(monitor.getDiskInfo()), QStringList{"/"});
    volumes.setListing({false, std::nullopt, {}});
    EXPECT_EQ(mountPoints(monitor.getDiskInfo()), QStringList{"/"});
    EXPECT_TRUE(log.lines().isEmpty());

    // The root fails: its message, and the two volumes still come back.
    volumes.removeCapacity("/");
    volumes.setCapacity("/mnt/b", 10, 5);
    volumes.setCapacity("/mnt/a", 10, 5);
    volumes.setListing({true, std::nullopt, {"/mnt/b", "/mnt/a"}});
    EXPECT_EQ(mountPoints(monitor.getDiskInfo()), (QStringList{"/mnt/a", "/mnt/b"}));
    // The listing fails: its message, and nothing but what was measured before.
    volumes.setCapacity("/", 10, 5);
    volumes.setListing({true, QStringLiteral("Permission denied"), {"/mnt/a"}});
    EXPECT_EQ(mountPoints(monitor.getDiskInfo()), QStringList{"/"});
    EXPECT_EQ(log.lines(),
              (QStringList{"[DiskMonitor] Failed to get root filesystem info: no such volume",
                           "[DiskMonitor] Failed to enumerate volumes: Permission denied"}));
}
