#include "platform/linux/SysfsBatteryRegistry.h"
#include "power/BatteryPowerSnapshot.h"
#include "support/Testing.h"

namespace {

std::optional<BatteryReading> readTree(const char* name) {
    return SysfsBatteryRegistry(QStringLiteral(ZELVAR_FIXTURES_DIR "/power/sysfs/") +
                                QLatin1String(name))
        .read();
}

BatteryPowerSnapshot snapshotOfTree(const char* name) {
    const std::optional<BatteryReading> reading = readTree(name);
    EXPECT_TRUE(reading.has_value()) << name;
    return BatteryPowerSnapshot::fromReading(reading.value_or(BatteryReading{}),
                                             QDateTime::currentDateTimeUtc());
}

}  // namespace

TEST(SysfsBatteryRegistryTest, ChargeStyleBatteries) {
    // Lenovo 42T4865, charging on the adapter; the worn battery holds a third of its design.
    const BatteryPowerSnapshot charging = snapshotOfTree("charge-charging");
    EXPECT_EQ(charging.percent, 27);
    EXPECT_TRUE(charging.isCharging);
    EXPECT_TRUE(charging.isExternalConnected);
    EXPECT_EQ(charging.amperageMA, 2977);
    EXPECT_EQ(charging.voltageMV, 12796);
    EXPECT_EQ(charging.maxCapacity, 1802);
    EXPECT_EQ(charging.designCapacity, 5600);
    EXPECT_EQ(charging.cycleCount, 0);
    EXPECT_EQ(charging.amperageScaleMaxMA, 3000);
    EXPECT_EQ(charging.healthPercent(), 32);
    EXPECT_EQ(charging.powerRateText(), "+38.1 W | 2977 mA | +99%");
    EXPECT_EQ(charging.detailText(), "12.80 V | 27% | AC connected");

    // Dell XPS 15, discharging; its kernel writes no TYPE line and its current unsigned.
    const BatteryPowerSnapshot discharging = snapshotOfTree("charge-discharging");
    EXPECT_EQ(discharging.percent, 92);
    EXPECT_FALSE(discharging.isExternalConnected);
    EXPECT_EQ(discharging.amperageMA, -1472);
    EXPECT_EQ(discharging.healthPercent(), 100);
    EXPECT_EQ(discharging.powerFlowTitle(), "Discharge");
    EXPECT_EQ(discharging.powerRateText(), "-18.2 W | -1472 mA | -49%");
    EXPECT_EQ(discharging.menuPowerRateText(), "-49%");
}

TEST(SysfsBatteryRegistryTest, EnergyStyleBatteriesTakeTheirCurrentFromPower) {
    const BatteryPowerSnapshot charging = snapshotOfTree("energy-charging");
    EXPECT_EQ(charging.batteryPowerMW, 27656);
    EXPECT_EQ(charging.amperageMA, 1746);  // 27.656 W at 15.84 V
    EXPECT_EQ(charging.maxCapacity, 52260);
    EXPECT_EQ(charging.designCapacity, 60000);
    EXPECT_EQ(charging.healthPercent(), 87);
    EXPECT_EQ(charging.powerRateText(), "+27.7 W | 1746 mA | +58%");
    EXPECT_EQ(charging.detailText(), "15.84 V | 51% | AC connected");

    // A ThinkPad's uevent cut after POWER_NOW: no capacity, so no percentage.
    const BatteryPowerSnapshot discharging = snapshotOfTree("energy-discharging");
    EXPECT_EQ(discharging.percent, std::nullopt);
    EXPECT_EQ(discharging.cycleCount, 5);
    EXPECT_EQ(discharging.amperageMA, -2654);
    EXPECT_EQ(discharging.powerRateText(), "-27.8 W | -2654 mA | -88%");
    EXPECT_EQ(discharging.detailText(), "10.46 V");
}

TEST(SysfsBatteryRegistryTest, NoBatteryAndTheUeventRules) {
    EXPECT_EQ(readTree("no-battery"), std::nullopt);
    EXPECT_EQ(readTree("no-such-root"), std::nullopt);

    const auto uevent = SysfsBatteryRegistry::parseUevent(
        "POWER_SUPPLY_STATUS=Not charging\nPOWER_SUPPLY_CURRENT_NOW=-1500\n"
        "POWER_SUPPLY_TEMP=315\nPOWER_SUPPLY_CHARGE_FULL=3000000\nnoise\nOTHER=1\n");
    EXPECT_EQ(uevent.size(), 4);
    const BatteryReading r = SysfsBatteryRegistry::readingFrom(uevent, false);
    EXPECT_EQ(r.amperageMA, -2);  // -1.5 mA, away from zero; neither status, so the sign stays
    EXPECT_EQ(r.temperatureC, 31.5);
    EXPECT_FALSE(r.isExternalConnected);  // the Mains supply says offline
    // Without a Mains supply, a battery that isn't discharging is on external power.
    EXPECT_TRUE(SysfsBatteryRegistry::readingFrom(uevent, std::nullopt).isExternalConnected);
}
