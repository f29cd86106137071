#include <fcntl.h>
#include <unistd.h>

#include "platform/linux/LinuxProcessIOSource.h"
#include "platform/linux/LinuxSystemLoadSource.h"
#include "support/Testing.h"

namespace {

void put(const QString& path, const QByteArray& content) {
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
}

}  // namespace

TEST(LinuxSystemLoadSourceTest, ReadsCpuMemoryLoadWholeDisksBacklightAndTheHottestZone) {
    QTemporaryDir root;
    const QString proc = root.filePath("proc");
    const QString sys = root.filePath("sys");
    put(proc + "/stat", "cpu  10 2 30 400 5 6 7 8 9 9\ncpu0 1 1 1 1 1 1 1 1 0 0\n");
    put(proc + "/meminfo",
        "MemTotal:       16000 kB\nMemFree:  1 kB\nMemAvailable:    4000 kB\n"
        "SwapTotal:       2000 kB\nSwapFree:        1500 kB\n");
    put(proc + "/loadavg", "0.42 0.30 0.20 1/500 1234\n");
    put(proc + "/diskstats",
        "   8       0 sda 100 0 2000 0 50 0 4000 0 0 0 0\n"
        "   8       1 sda1 100 0 2000 0 50 0 4000 0 0 0 0\n"
        "   7       0 loop0 1 0 999 0 1 0 999 0 0 0 0\n"
        " 259       0 nvme0n1 1 0 10 0 1 0 20 0 0 0 0\n");
    for (const char* entry : {"1", "200", "self"}) {
        QDir().mkpath(proc + "/" + entry);
    }
    QDir().mkpath(sys + "/block/sda");
    QDir().mkpath(sys + "/block/loop0");
    QDir().mkpath(sys + "/block/nvme0n1");
    put(sys + "/class/backlight/intel_backlight/brightness", "300\n");
    put(sys + "/class/backlight/intel_backlight/max_brightness", "1200\n");
    put(sys + "/class/thermal/thermal_zone0/temp", "45000\n");
    put(sys + "/class/thermal/thermal_zone1/temp", "71500\n");
    put(sys + "/class/thermal/cooling_device0/temp", "99000\n");

    const SystemLoadReading reading = LinuxSystemLoadSource(proc, sys).read();
    EXPECT_EQ(reading.cpu, (CpuTicks{12, 43, 405, 8}));
    EXPECT_EQ(reading.memory, (MemoryFigures{16000, 4000, 2000, 1500}));
    EXPECT_EQ(reading.load1m, 0.42);
    EXPECT_EQ(reading.processCount, 2);  // "self" isn't a process
    // sda and nvme0n1; the partition and the loop device would count twice.
    EXPECT_EQ(reading.diskReadBytes, 2010 * 512);
    EXPECT_EQ(reading.diskWrittenBytes, 4020 * 512);
    EXPECT_EQ(reading.backlightBrightness, 300);
    EXPECT_EQ(reading.backlightMaximum, 1200);
    EXPECT_EQ(reading.hottestZoneMilliC, 71500);

    const SystemLoadReading empty = LinuxSystemLoadSource(root.filePath("none"), sys + "x").read();
    EXPECT_EQ(empty, SystemLoadReading());
    EXPECT_FALSE(LinuxSystemLoadSource::parseCpuLine("cpu 1 2 x 4\n"));
    EXPECT_FALSE(LinuxSystemLoadSource::parseMeminfo("MemTotal: 5 kB\n"));
}

TEST(LinuxProcessIOSourceTest, ReadsCountersAndTheRegularFilesOpenForWriting) {
    QTemporaryDir root;
    const QString proc = root.filePath("proc");
    put(proc + "/42/io", "rchar: 5\nwchar: 6\nread_bytes: 4096\nwrite_bytes: 8192\n");
    put(proc + "/42/comm", "writer\n");
    put(proc + "/43/comm", "unreadable\n");  // no io: another user's process
    put(proc + "/self/io", "read_bytes: 1\nwrite_bytes: 1\n");
    const QString data = root.filePath("data.bin");
    put(data, QByteArray(1000, 'x'));
    const QString readOnly = root.filePath("config.txt");
    put(readOnly, "x");
    QDir().mkpath(proc + "/42/fd");
    const QList<std::tuple<const char*, QString, const char*>> descriptors = {
        {"3", data, "flags:\t0100001\n"},         // O_WRONLY | O_LARGEFILE
        {"4", readOnly, "flags:\t0100000\n"},     // O_RDONLY
        {"5", root.path(), "flags:\t0200002\n"},  // a folder, even if O_RDWR
        {"6", "pipe:[1234]", "flags:\t01\n"}};
    for (const auto& [fd, target, flags] : descriptors) {
        ASSERT_TRUE(QFile::link(target, proc + "/42/fd/" + fd));
        put(proc + "/42/fdinfo/" + fd, flags);
    }

    LinuxProcessIOSource source(proc);
    EXPECT_EQ(source.readAll(), (QList<ProcessIOCounters>{{42, {}, 4096, 8192}}));
    EXPECT_EQ(source.name(42), "writer");
    EXPECT_EQ(source.name(44), "");
    EXPECT_EQ(source.openWriteFiles(42), (QList<OpenWriteFile>{{data, 1000}}));
    EXPECT_TRUE(source.openWriteFiles(43).isEmpty());
}
