#include "daemon/BatterySampler.h"

#include "daemon/JsonlFile.h"
#include "power/BatteryPowerSnapshot.h"

namespace zelvar {

WattlogBatterySample BatterySampler::sampleOf(const BatteryReading& reading, const QDateTime& now) {
    const BatteryPowerSnapshot snapshot = BatteryPowerSnapshot::fromReading(reading, now);
    WattlogBatterySample sample;
    sample.ts = static_cast<double>(now.toMSecsSinceEpoch()) / 1000.0;
    sample.source = reading.isExternalConnected ? QStringLiteral("AC") : QStringLiteral("Battery");
    sample.charging = reading.isCharging;
    sample.current = reading.amperageMA;
    sample.voltage = reading.voltageMV;
    sample.maxCapacity = reading.maxCapacity;
    sample.designCapacity = reading.designCapacity;
    sample.temperature = reading.temperatureC;
    sample.cycleCount = reading.cycleCount;
    sample.recordedPercent = reading.percent;
    sample.recordedWatts = snapshot.powerRateWatts();
    return sample;
}

void BatterySampler::sampleInto(JsonlFile& file, const std::optional<BatteryReading>& reading,
                                const QDateTime& now) {
    if (reading) {
        file.append(sampleOf(*reading, now).encode());
    }
}

}  // namespace zelvar
