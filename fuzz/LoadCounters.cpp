// The daemon's machine-wide counters: the first line of /proc/stat, /proc/meminfo and
// /proc/diskstats, each parsed from the same bytes.
#include "FuzzInput.h"
#include "platform/linux/LinuxSystemLoadSource.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using zelvar::LinuxSystemLoadSource;
    const QByteArray text = zelvar::fuzz::bytes(data, size);
    if (const auto cpu = LinuxSystemLoadSource::parseCpuLine(text)) {
        zelvar::fuzz::check(cpu->total() >= cpu->idle, "the total holds the idle time");
    }
    if (const auto memory = LinuxSystemLoadSource::parseMeminfo(text)) {
        zelvar::fuzz::check(memory->totalKB > 0, "a memory reading has a total");
    }
    (void)LinuxSystemLoadSource::parseDiskstats(text, [](const QByteArray&) { return true; });
    return 0;
}
