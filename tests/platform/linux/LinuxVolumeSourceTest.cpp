#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "platform/linux/LinuxVolumeSource.h"
#include "platform/linux/MountTable.h"
#include "support/QtPrinters.h"

using namespace zelvar;

TEST(MountTable, BlockDevicesUnderTheRootsOnly) {
    const QByteArray table =
        "/dev/vda1 / ext4 rw,relatime 0 0\n"
        "proc /proc proc rw,nosuid 0 0\n"
        "/dev/sdb1 /media/ada/USB\\040STICK vfat rw 0 0\n"
        "/dev/sdc1 /run/media/ada/Backup ext4 rw 0 0\n"
        "/dev/sdd1 /mnt ext4 rw 0 0\n"
        "/dev/sdd2 /mnt/data ext4 rw 0 0\n"
        "/dev/sdd2 /mnt/data ext4 rw 0 0\n"
        "tmpfs /mnt/ram tmpfs rw 0 0\n"
        "/dev/sde1 /mntx ext4 rw 0 0\n"
        "/dev/sdf1 /home ext4 rw 0 0\n"
        "//server/share /media/share cifs rw 0 0\n"
        "broken-line\n";
    EXPECT_EQ(blockDeviceMountsUnder(table, {"/media", "/run/media", "/mnt"}),
              (QStringList{"/media/ada/USB STICK", "/run/media/ada/Backup", "/mnt", "/mnt/data"}));
    EXPECT_EQ(decodeMountField("a\\011b\\134c\\12"), "a\tb\\c\\12");
}

TEST(LinuxVolumeSource, ListsFromItsTableAndMeasuresWithStatvfs) {
    QTemporaryDir dir;
    const QString media = dir.filePath("media");
    QDir().mkpath(media + "/disk one");
    QFile table(dir.filePath("mounts"));
    ASSERT_TRUE(table.open(QIODevice::WriteOnly) &&
                table.write("/dev/sdz1 " + media.toUtf8() + "/disk\\040one ext4 rw 0 0\n") > 0);
    table.close();

    const LinuxVolumeSource volumes(table.fileName(), {media});
    const VolumeListing listing = volumes.listVolumes();
    EXPECT_EQ(std::tuple(listing.present, listing.error, listing.mountPoints),
              std::tuple(true, std::nullopt, QStringList{media + "/disk one"}));
    EXPECT_GT(volumes.measure(media + "/disk one", nullptr).value_or(VolumeCapacity{}).totalBytes,
              0);
    QString error;
    EXPECT_FALSE(volumes.measure(dir.filePath("nowhere"), &error) || error.isEmpty());
    EXPECT_FALSE(LinuxVolumeSource(dir.filePath("no-table")).listVolumes().present);
}

TEST(LinuxVolumeSourceLive, TheRootAgreesWithDf) {
    const LinuxVolumeSource volumes;
    EXPECT_TRUE(volumes.listVolumes().present);
    const auto root = volumes.measure("/", nullptr);
    ASSERT_TRUE(root);
    QProcess df;
    df.start("df", {"-B1", "--output=size,avail", "/"});
    ASSERT_TRUE(df.waitForFinished(10000));
    const QList<QByteArray> fields =
        df.readAllStandardOutput().split('\n').value(1).simplified().split(' ');
    ASSERT_EQ(fields.size(), 2);
    EXPECT_EQ(root->totalBytes, fields[0].toLongLong());
    // Other processes write meanwhile; allow 64 MiB of drift in the free space.
    EXPECT_NEAR(static_cast<double>(root->freeBytes), fields[1].toDouble(), 64.0 * 1048576);
}
