#pragma once

#include "platform/BatteryRegistry.h"

namespace zelvar {

// For machines without a battery, or systems whose battery can't be read.
class NullBatteryRegistry final : public BatteryRegistry {
public:
    std::optional<BatteryReading> read() override { return std::nullopt; }
};

}  // namespace zelvar
