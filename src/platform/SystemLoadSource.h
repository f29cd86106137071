#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>

namespace zelvar {

// The machine's CPU time since boot, in clock ticks, summed over all CPUs.
struct CpuTicks {
    quint64 user = 0;    // user and nice
    quint64 system = 0;  // system, interrupts and soft interrupts
    quint64 idle = 0;    // idle and waiting for I/O
    quint64 other = 0;   // stolen and the rest
    quint64 total() const { return user + system + idle + other; }
    friend bool operator==(const CpuTicks&, const CpuTicks&) = default;
};

// Memory and swap in kibibytes, as the kernel counts them.
struct MemoryFigures {
    quint64 totalKB = 0;
    quint64 availableKB = 0;
    quint64 swapTotalKB = 0;
    quint64 swapFreeKB = 0;
    friend bool operator==(const MemoryFigures&, const MemoryFigures&) = default;
};

// One reading of the machine's load counters. Each figure is absent when its source can't be
// read, independently of the others.
struct SystemLoadReading {
    std::optional<CpuTicks> cpu;
    std::optional<MemoryFigures> memory;
    std::optional<double> load1m;
    std::optional<qint64> processCount;
    // Bytes read from and written to the whole disks since boot (partitions left out so that
    // nothing counts twice).
    std::optional<quint64> diskReadBytes;
    std::optional<quint64> diskWrittenBytes;
    // The first display backlight's brightness and its maximum.
    std::optional<qint64> backlightBrightness;
    std::optional<qint64> backlightMaximum;
    // The hottest thermal zone, in thousandths of a degree Celsius.
    std::optional<qint64> hottestZoneMilliC;
    friend bool operator==(const SystemLoadReading&, const SystemLoadReading&) = default;
};

// The machine-wide counters behind the load figures: CPU time, memory, load average, disk
// traffic, display brightness and temperature. Raw counters; rates are worked out above.
class SystemLoadSource {
public:
    virtual ~SystemLoadSource() = default;
    virtual SystemLoadReading read() = 0;
};

}  // namespace zelvar
