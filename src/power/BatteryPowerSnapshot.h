#pragma once

#include <QDateTime>
#include <QMetaType>
#include <QString>
#include <optional>

#include "platform/BatteryRegistry.h"

namespace zelvar {

// One reading of the battery with everything worked out from it: the rate of power flowing in
// or out, the rate as a signed share of a reference load, and the short texts of the menu bar
// and the Power tab. Every derived value comes from the fields alone. Whole numbers are
// rounded halves away from zero.
struct BatteryPowerSnapshot {
    QDateTime timestamp;
    std::optional<qint64> percent;
    bool isExternalConnected = false;
    bool isCharging = false;
    std::optional<qint64> amperageMA;  // negative while discharging
    std::optional<qint64> voltageMV;
    std::optional<qint64> amperageScaleMaxMA;  // the current that counts as 100% of the load
    std::optional<qint64> batteryPowerMW;      // absolute
    std::optional<qint64> maxCapacity;
    std::optional<qint64> designCapacity;
    std::optional<double> temperatureC;
    std::optional<qint64> cycleCount;

    bool operator==(const BatteryPowerSnapshot&) const = default;

    // No battery: built once, at first use, with that moment as its timestamp for good, so
    // that it soon counts as stale.
    static const BatteryPowerSnapshot& unavailable();
    static BatteryPowerSnapshot fromReading(const BatteryReading& reading, const QDateTime& when);

    std::optional<double> voltageVolts() const;
    // The telemetry power when non-zero, else current times voltage.
    std::optional<double> powerRateWatts() const;
    std::optional<double> referenceMaxPowerWatts() const;
    // The rate as a share of the reference power, capped at 100; none below 0.05 W.
    std::optional<qint64> amperagePercent() const;
    // "+", "-" or empty.
    QString powerFlowSign() const;
    bool isDischarging() const;
    bool isChargingRate() const;
    bool hasActivePowerRate() const;
    // "+42%" or "-7%"; none without a sign or a percentage.
    std::optional<QString> signedAmperagePercentText() const;
    // The signed percentage, or "0%".
    QString menuPowerRateText() const;
    // "Charge", "Discharge", "Battery" or "AC Power".
    QString powerFlowTitle() const;
    // "+12.3 W | 1000 mA | +42%", or an idle text.
    QString powerRateText() const;
    // "12.37 V | 87% | 29.9 C | AC connected", or "Waiting for battery data".
    QString detailText() const;
    std::optional<qint64> healthPercent() const;
};

}  // namespace zelvar

Q_DECLARE_METATYPE(zelvar::BatteryPowerSnapshot)
