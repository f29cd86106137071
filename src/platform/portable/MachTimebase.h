#pragma once

#include <QtGlobal>

namespace zelvar {

// The ratio that turns Mach absolute-time ticks into nanoseconds, as mach_timebase_info gives
// it: 1/1 on Intel Macs, 125/3 on Apple processors. The macOS process table reads the ratio
// once and hands it in; the arithmetic lives here so that it is tested on every system.
class MachTimebase {
public:
    // A zero denominator (mach_timebase_info failed) counts ticks as nanoseconds.
    MachTimebase(quint32 numerator, quint32 denominator);

    // ticks × numerator / denominator, rounded down, without overflowing on the way and
    // saturating at the largest figure a quint64 holds.
    quint64 nanoseconds(quint64 ticks) const;

private:
    quint32 m_numerator;
    quint32 m_denominator;
};

}  // namespace zelvar
