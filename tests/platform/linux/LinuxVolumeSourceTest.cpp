#include <QProcess>

#include "platform/linux/LinuxVolumeSource.h"
#include "platform/linux/MountTable.h"
#include "platform/posix/PosixVolumeMeasure.h"
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

TEST(PosixVolumeMeasure, CountsWhatTheUserCanFillAsDfDoes) {
    // Blocks, free, available and fragment size in; size and free bytes out.
    const std::array<unsigned long long, 6> cases[] = {
        {66053021, 61236572, 20267848, 4096, 102745280512, 83017105408},  // 62 % reserved
        {1000, 600, 600, 512, 512000, 307200},                            // nothing reserved
        {1000, 100, 300, 1024, 1024000, 307200},    // more available than free
        {10, 50, 50, 4096, 40960, 40960},           // more free than the whole
        {1ULL << 62, 1, 1, 4096, INT64_MAX, 4096},  // bytes beyond qint64
    };
    for (const auto& [blocks, bfree, bavail, frsize, total, free] : cases) {
        struct statvfs info {};
        std::tie(info.f_blocks, info.f_bfree, info.f_bavail, info.f_frsize) =
            std::tuple(blocks, bfree, bavail, frsize);
        const VolumeCapacity capacity = volumeCapacityFrom(info);
        EXPECT_EQ(std::pair(capacity.totalBytes, capacity.freeBytes),
                  std::pair(qint64(total), qint64(free)))
            << blocks;
    }
}

TEST(LinuxVolumeSourceLive, MeasuresTheRootAsDfDoes) {
    const LinuxVolumeSource volumes;
    EXPECT_TRUE(volumes.listVolumes().present);
    QString error;
    EXPECT_FALSE(volumes.measure("/nowhere/at/all", &error) || error.isEmpty());
    const auto df = [] {  // Used and Avail
        QProcess process;
        process.start("df", {"-B1", "--output=used,avail", "/"});
        process.waitForFinished(10000);
        const QList<QByteArray> fields =
            process.readAllStandardOutput().split('\n').value(1).simplified().split(' ');
        return std::pair(fields.value(0).toLongLong(), fields.value(1).toLongLong());
    };
    const auto before = df();
    const auto root = volumes.measure("/", nullptr);
    const auto after = df();
    ASSERT_TRUE(root);
    // Writes move space from Avail to Used but leave the size; free lies between the two reads,
    // give or take a few blocks.
    EXPECT_EQ(root->totalBytes, after.first + after.second);
    EXPECT_GE(root->freeBytes, std::min(before.second, after.second) - 16 * 4096);
    EXPECT_LE(root->freeBytes, std::max(before.second, after.second) + 16 * 4096);
}
