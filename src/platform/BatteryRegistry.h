#pragma once

#include <QtGlobal>
#include <optional>

namespace zelvar {

// One reading of the machine's battery, in the registry's terms: whole numbers as the battery
// reports them (mA, mV, mW), the capacities in the battery's own unit. No timestamp: the
// reader of the port stamps the reading when it takes it.
struct BatteryReading {
    std::optional<qint64> percent;
    bool isExternalConnected = false;
    bool isCharging = false;
    std::optional<qint64> amperageMA;  // signed, negative while discharging
    std::optional<qint64> voltageMV;
    std::optional<qint64> amperageScaleMaxMA;  // the current that counts as a full load
    std::optional<qint64> batteryPowerMW;      // absolute
    std::optional<qint64> maxCapacity;
    std::optional<qint64> designCapacity;
    std::optional<double> temperatureC;
    std::optional<qint64> cycleCount;

    bool operator==(const BatteryReading&) const = default;
};

// The machine's battery: a fresh reading on every call, no value when there is no battery.
// Blocks briefly (a registry lookup, a few small files); call it off the main thread.
class BatteryRegistry {
public:
    virtual ~BatteryRegistry() = default;
    virtual std::optional<BatteryReading> read() = 0;
};

}  // namespace zelvar
