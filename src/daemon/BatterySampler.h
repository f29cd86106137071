#pragma once

#include <QDateTime>
#include <optional>

#include "platform/BatteryRegistry.h"
#include "power/WattlogBatterySample.h"

namespace zelvar {

class JsonlFile;

// The battery sample file: one line a pass while the machine has a battery, in the form the
// power monitor decodes.
class BatterySampler {
public:
    static constexpr qint64 kCapBytes = 32 * 1024 * 1024;

    static WattlogBatterySample sampleOf(const BatteryReading& reading, const QDateTime& now);
    // Nothing without a reading.
    static void sampleInto(JsonlFile& file, const std::optional<BatteryReading>& reading,
                           const QDateTime& now);
};

}  // namespace zelvar
