#pragma once

#include "platform/BatteryRegistry.h"

namespace zelvar {

// The battery from the I/O registry's "AppleSmartBattery" service, looked up anew on every
// read and released after it. The service's property table is copied into Qt values and
// SmartBatteryProperties makes the reading from it.
class MacBatteryRegistry final : public BatteryRegistry {
public:
    std::optional<BatteryReading> read() override;
};

}  // namespace zelvar
