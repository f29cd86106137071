#include "platform/portable/SmartBatteryProperties.h"
#include "power/BatteryPowerSnapshot.h"
#include "support/Testing.h"

namespace {

// A whole number as the registry adapter hands it over: the bits of its unsigned read.
QVariant number(qint64 value) {
    return QVariant(static_cast<qulonglong>(value));
}

BatteryPowerSnapshot snapshotOf(const QVariantMap& properties) {
    return BatteryPowerSnapshot::fromReading(SmartBatteryProperties::reading(properties),
                                             QDateTime::currentDateTimeUtc());
}

}  // namespace

TEST(SmartBatteryPropertiesTest, PercentIsCurrentCapacityUnlessMaxCapacityIsACapacity) {
    const auto percent = [](qint64 current, qint64 max) {
        return SmartBatteryProperties::reading(
                   {{"CurrentCapacity", number(current)}, {"MaxCapacity", number(max)}})
            .percent;
    };
    EXPECT_EQ(percent(87, 100), 87);
    EXPECT_EQ(percent(2000, 4000), 50);
    EXPECT_EQ(percent(101, 101), 100);
    EXPECT_EQ(percent(2001, 4000), 50);  // 50.025
    EXPECT_EQ(percent(16, 128), 13);     // exactly 12.5: away from zero, not to even
    EXPECT_EQ(percent(120, 100), 120);   // not clamped
    EXPECT_EQ(SmartBatteryProperties::reading({{"CurrentCapacity", number(64)}}).percent, 64);
    EXPECT_EQ(SmartBatteryProperties::reading({{"MaxCapacity", number(4000)}}).percent,
              std::nullopt);
}

TEST(SmartBatteryPropertiesTest, SignedPropertiesTakeTheTopBitAsTwosComplement) {
    const BatteryReading r = SmartBatteryProperties::reading(
        {{"InstantAmperage", QVariant(qulonglong(18446744073709550000ULL))},
         {"Amperage", number(500)},
         {"PowerTelemetryData", QVariantMap{{"BatteryPower", number(-4200)}}},
         {"BatteryData",
          QVariantMap{{"LifetimeData", QVariantMap{{"MaximumDischargeCurrent", number(-2000)}}}}}});
    EXPECT_EQ(r.amperageMA, -1616);
    EXPECT_EQ(r.batteryPowerMW, 4200);
    EXPECT_EQ(r.amperageScaleMaxMA, 2000);
    EXPECT_EQ(SmartBatteryProperties::signedIntProperty(QVariant(qulonglong(1) << 63)),
              std::numeric_limits<qint64>::min());
    EXPECT_EQ(SmartBatteryProperties::signedIntProperty(QVariant(QStringLiteral("12"))),
              std::nullopt);
    EXPECT_EQ(SmartBatteryProperties::intProperty(QVariant(29.9)), 29);
}

TEST(SmartBatteryPropertiesTest, LaterPropertiesStandInAndDefaultsFill) {
    // The first name gives nothing of the right type, so the second is asked.
    const BatteryReading r =
        SmartBatteryProperties::reading({{"ExternalConnected", QVariant(QStringLiteral("Yes"))},
                                         {"AppleRawExternalConnected", QVariant(true)},
                                         {"InstantAmperage", QVariant(QStringLiteral("-10"))},
                                         {"Amperage", number(-1889)},
                                         {"Voltage", QVariant(QStringLiteral("12000"))},
                                         {"AppleRawBatteryVoltage", number(12420)},
                                         {"Temperature", number(2985)},
                                         {"CycleCount", number(412)},
                                         {"DesignCapacity", number(8694)},
                                         {"MaxCapacity", number(100)},
                                         {"PowerTelemetryData", number(7)}});
    EXPECT_TRUE(r.isExternalConnected);
    EXPECT_FALSE(r.isCharging);
    EXPECT_EQ(r.amperageMA, -1889);
    EXPECT_EQ(r.voltageMV, 12420);
    EXPECT_EQ(r.temperatureC, 29.85);
    EXPECT_EQ(r.cycleCount, 412);
    EXPECT_EQ(r.batteryPowerMW, std::nullopt);
    EXPECT_EQ(r.amperageScaleMaxMA, 3000);

    const auto scale = [](const QVariant& limit) {
        return SmartBatteryProperties::reading(
                   {{"BatteryData",
                     QVariantMap{
                         {"LifetimeData", QVariantMap{{"MaximumDischargeCurrent", limit}}}}}})
            .amperageScaleMaxMA;
    };
    EXPECT_EQ(scale(number(0)), 3000);
    EXPECT_EQ(scale(number(2999)), 2999);
    EXPECT_EQ(scale(number(5000)), 3000);
    EXPECT_EQ(scale(QVariant(QStringLiteral("1000"))), 3000);
    EXPECT_EQ(SmartBatteryProperties::reading({}), (BatteryReading{.amperageScaleMaxMA = 3000}));
}

TEST(BatteryPowerSnapshotTest, RateFromTelemetryOrCurrentTimesVoltage) {
    // A telemetry power of exactly zero falls through to the estimate.
    BatteryPowerSnapshot s{.amperageMA = -1000, .voltageMV = 12000, .batteryPowerMW = 0};
    EXPECT_DOUBLE_EQ(*s.powerRateWatts(), 12.0);
    EXPECT_EQ(s.amperagePercent(), 33);  // 12 W of 36 W
    EXPECT_EQ(s.powerRateText(), "-12.0 W | -1000 mA | -33%");
    EXPECT_EQ(s.powerFlowTitle(), "Discharge");
    EXPECT_TRUE(s.isDischarging());

    // 40 mW is below the active threshold: idle text, no share.
    s.batteryPowerMW = 40;
    EXPECT_DOUBLE_EQ(*s.powerRateWatts(), 0.04);
    EXPECT_EQ(s.amperagePercent(), std::nullopt);
    EXPECT_FALSE(s.hasActivePowerRate());
    EXPECT_EQ(s.powerRateText(), "No reading");
    s.isExternalConnected = true;
    EXPECT_EQ(s.powerRateText(), "On AC (idle)");
    s.isCharging = true;
    EXPECT_EQ(s.powerRateText(), "Charging (idle)");

    // Telemetry without a voltage gives a rate but no share.
    const BatteryPowerSnapshot noVoltage{.isCharging = true, .batteryPowerMW = 20000};
    EXPECT_DOUBLE_EQ(*noVoltage.powerRateWatts(), 20.0);
    EXPECT_EQ(noVoltage.amperagePercent(), std::nullopt);
    EXPECT_EQ(noVoltage.powerRateText(), "+20.0 W");
    EXPECT_EQ(noVoltage.menuPowerRateText(), "0%");
}

TEST(BatteryPowerSnapshotTest, ShareIsCappedAndFollowsTheScale) {
    const BatteryPowerSnapshot over{
        .isCharging = true, .amperageMA = 5000, .voltageMV = 12000, .amperageScaleMaxMA = 3000};
    EXPECT_EQ(over.amperagePercent(), 100);
    EXPECT_EQ(over.signedAmperagePercentText(), "+100%");
    // A scale of 0 counts as 1 mA; an absent one as 3000.
    const BatteryPowerSnapshot tiny{
        .amperageMA = 1, .voltageMV = 10000, .amperageScaleMaxMA = 0, .batteryPowerMW = 100};
    EXPECT_DOUBLE_EQ(*tiny.referenceMaxPowerWatts(), 0.01);
    EXPECT_EQ(tiny.amperagePercent(), 100);
    const BatteryPowerSnapshot half{.amperageMA = -1500, .voltageMV = 10000};
    EXPECT_DOUBLE_EQ(*half.referenceMaxPowerWatts(), 30.0);
    EXPECT_EQ(half.menuPowerRateText(), "-50%");
}

TEST(BatteryPowerSnapshotTest, BatteryAssistingTheAdapterHasNoSign) {
    const BatteryPowerSnapshot s{
        .isExternalConnected = true, .amperageMA = -1000, .voltageMV = 3500};
    EXPECT_EQ(s.powerFlowSign(), "");
    EXPECT_EQ(s.signedAmperagePercentText(), std::nullopt);
    EXPECT_EQ(s.menuPowerRateText(), "0%");
    EXPECT_EQ(s.powerRateText(), "3.5 W | -1000 mA");
    EXPECT_EQ(s.powerFlowTitle(), "AC Power");
    EXPECT_FALSE(s.isDischarging());
    EXPECT_FALSE(s.isChargingRate());

    const BatteryPowerSnapshot charging{.isExternalConnected = true, .amperageMA = 1};
    EXPECT_EQ(charging.powerFlowSign(), "+");
    EXPECT_EQ(charging.powerFlowTitle(), "Charge");
    EXPECT_TRUE(charging.isChargingRate());
    EXPECT_EQ((BatteryPowerSnapshot{.amperageMA = 5}).powerFlowTitle(), "Battery");
    EXPECT_EQ((BatteryPowerSnapshot{.amperageMA = 5}).powerFlowSign(), "");
}

TEST(BatteryPowerSnapshotTest, UnavailableAndDetailTexts) {
    const BatteryPowerSnapshot& none = BatteryPowerSnapshot::unavailable();
    EXPECT_EQ(&none, &BatteryPowerSnapshot::unavailable());
    EXPECT_TRUE(none.timestamp.isValid());
    EXPECT_EQ(none.powerRateText(), "No reading");
    EXPECT_EQ(none.detailText(), "Waiting for battery data");
    EXPECT_EQ(none.menuPowerRateText(), "0%");
    EXPECT_EQ(none.powerFlowTitle(), "Battery");
    EXPECT_EQ((BatteryPowerSnapshot{.isExternalConnected = true}).detailText(), "AC connected");

    const BatteryPowerSnapshot full = snapshotOf({{"Voltage", number(12366)},
                                                  {"CurrentCapacity", number(87)},
                                                  {"MaxCapacity", number(100)},
                                                  {"DesignCapacity", number(5000)},
                                                  {"Temperature", number(2985)},
                                                  {"ExternalConnected", QVariant(true)}});
    EXPECT_EQ(full.detailText(), "12.37 V | 87% | 29.9 C | AC connected");
    // MaxCapacity as a percentage gives a small health figure, as the registry has it.
    EXPECT_EQ(full.healthPercent(), 2);
    EXPECT_EQ((BatteryPowerSnapshot{.maxCapacity = 4901, .designCapacity = 4912}).healthPercent(),
              100);
    EXPECT_EQ((BatteryPowerSnapshot{.maxCapacity = 4901, .designCapacity = 0}).healthPercent(),
              std::nullopt);
}
