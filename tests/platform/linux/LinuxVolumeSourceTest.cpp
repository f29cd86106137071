#include <QProcess>

#include "platform/linux/LinuxVolumeSource.h"
#include "platform/linux/MountTable.h"
#include "support/Testing.h"

TEST(MountTable, BlockDevicesUnderTheRootsOnly) {
    const QByteArray table =
        "/dev/sdb1 /media/ada/USB\\040STICK vfat rw 0 0\n"
        "/dev/sdd1 /mnt ext4 rw 0 0\n"
        "/dev/sdd2 /mnt/data ext4 rw 0 0\n"
        "/dev/sdd2 /mnt/data ext4 rw 0 0\n"
        "tmpfs /mnt/ram tmpfs rw 0 0\n"
        "/dev/sde1 /mntx ext4 rw 0 0\n"
        "/dev/sdf1 /run/media/ada/Backup ext4 rw 0 0\n"
        "broken-line\n";
    EXPECT_EQ(blockDeviceMountsUnder(table, {"/media", "/run/media", "/mnt"}),
              (QStringList{"/media/ada/USB STICK", "/mnt", "/mnt/data", "/run/media/ada/Backup"}));
    EXPECT_EQ(decodeMountField("a\\011b\\134c\\12"), "a\tb\\c\\12");
}

TEST(LinuxVolumeSource, ListsFromItsTable) {
    QTemporaryDir dir;
    QFile table(dir.filePath("mounts"));
    ASSERT_TRUE(table.open(QIODevice::WriteOnly) &&
                table.write("/dev/sdz1 /media/disk\\040one ext4 rw 0 0\n") > 0);
    table.close();
    const VolumeListing listing = LinuxVolumeSource(table.fileName(), {"/media"}).listVolumes();
    EXPECT_EQ(std::tuple(listing.present, listing.error, listing.mountPoints),
              std::tuple(true, std::nullopt, QStringList{"/media/disk one"}));
    EXPECT_FALSE(LinuxVolumeSource(dir.filePath("no-table")).listVolumes().present);
}

TEST(LinuxVolumeSourceLive, MeasuresTheRootAsDfDoes) {
    const LinuxVolumeSource volumes;
    EXPECT_TRUE(volumes.listVolumes().present);
    QString error;
    EXPECT_FALSE(volumes.measure("/nowhere/at/all", &error) || error.isEmpty());
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
