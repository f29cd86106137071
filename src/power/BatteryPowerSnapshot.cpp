#include "power/BatteryPowerSnapshot.h"

#include <QStringList>
#include <cmath>

namespace zelvar {
namespace {

constexpr double kMinimumActiveWatts = 0.05;
constexpr qint64 kDefaultScaleMaxMA = 3000;

qint64 roundedHalfAway(double value) {
    return static_cast<qint64>(std::round(value));
}

}  // namespace

const BatteryPowerSnapshot& BatteryPowerSnapshot::unavailable() {
    static const BatteryPowerSnapshot none = [] {
        BatteryPowerSnapshot first;
        first.timestamp = QDateTime::currentDateTimeUtc();
        return first;
    }();
    return none;
}

BatteryPowerSnapshot BatteryPowerSnapshot::fromReading(const BatteryReading& r,
                                                       const QDateTime& when) {
    return {when,          r.percent,        r.isExternalConnected, r.isCharging,
            r.amperageMA,  r.voltageMV,      r.amperageScaleMaxMA,  r.batteryPowerMW,
            r.maxCapacity, r.designCapacity, r.temperatureC,        r.cycleCount};
}

std::optional<double> BatteryPowerSnapshot::voltageVolts() const {
    if (!voltageMV) {
        return std::nullopt;
    }
    return static_cast<double>(*voltageMV) / 1000.0;
}

std::optional<double> BatteryPowerSnapshot::powerRateWatts() const {
    // A telemetry power of exactly zero falls through to the estimate on purpose.
    if (batteryPowerMW && *batteryPowerMW != 0) {
        return std::abs(static_cast<double>(*batteryPowerMW)) / 1000.0;
    }
    if (amperageMA && voltageMV) {
        return std::abs(static_cast<double>(*amperageMA)) * (*voltageVolts()) / 1000.0;
    }
    return std::nullopt;
}

std::optional<double> BatteryPowerSnapshot::referenceMaxPowerWatts() const {
    if (!voltageMV) {
        return std::nullopt;
    }
    const qint64 scale =
        amperageScaleMaxMA ? std::max<qint64>(*amperageScaleMaxMA, 1) : kDefaultScaleMaxMA;
    return *voltageVolts() * static_cast<double>(scale) / 1000.0;
}

std::optional<qint64> BatteryPowerSnapshot::amperagePercent() const {
    // Without a voltage there is no share, even when the telemetry gives a power.
    const std::optional<double> reference = referenceMaxPowerWatts();
    if (!reference || *reference <= 0.0) {
        return std::nullopt;
    }
    const double rate = powerRateWatts().value_or(0.0);
    if (rate < kMinimumActiveWatts) {
        return std::nullopt;
    }
    return std::min<qint64>(100, roundedHalfAway(rate / *reference * 100.0));
}

QString BatteryPowerSnapshot::powerFlowSign() const {
    if (isCharging) {
        return QStringLiteral("+");
    }
    if (isExternalConnected) {
        // A negative current on external power is the battery assisting the adapter: no sign.
        return amperageMA && *amperageMA >= 1 ? QStringLiteral("+") : QString();
    }
    return amperageMA && *amperageMA < 0 ? QStringLiteral("-") : QString();
}

bool BatteryPowerSnapshot::isDischarging() const {
    return !isExternalConnected && !isCharging && amperageMA && *amperageMA < 0;
}

bool BatteryPowerSnapshot::isChargingRate() const {
    return isCharging || (isExternalConnected && amperageMA && *amperageMA > 0);
}

bool BatteryPowerSnapshot::hasActivePowerRate() const {
    const std::optional<double> rate = powerRateWatts();
    return rate && *rate >= kMinimumActiveWatts;
}

std::optional<QString> BatteryPowerSnapshot::signedAmperagePercentText() const {
    const std::optional<qint64> percentOfLoad = amperagePercent();
    const QString sign = powerFlowSign();
    if (!percentOfLoad || sign.isEmpty()) {
        return std::nullopt;
    }
    return sign + QString::number(*percentOfLoad) + QLatin1Char('%');
}

QString BatteryPowerSnapshot::menuPowerRateText() const {
    return signedAmperagePercentText().value_or(QStringLiteral("0%"));
}

QString BatteryPowerSnapshot::powerFlowTitle() const {
    if (isCharging) {
        return QStringLiteral("Charge");
    }
    if (isExternalConnected) {
        return amperageMA && *amperageMA > 0 ? QStringLiteral("Charge")
                                             : QStringLiteral("AC Power");
    }
    return amperageMA && *amperageMA < 0 ? QStringLiteral("Discharge") : QStringLiteral("Battery");
}

QString BatteryPowerSnapshot::powerRateText() const {
    const std::optional<double> rate = powerRateWatts();
    if (!rate || *rate < kMinimumActiveWatts) {
        if (isCharging) {
            return QStringLiteral("Charging (idle)");
        }
        return isExternalConnected ? QStringLiteral("On AC (idle)") : QStringLiteral("No reading");
    }
    QStringList parts{powerFlowSign() + QString::asprintf("%.1f W", *rate)};
    if (amperageMA) {
        parts << QString::number(*amperageMA) + QStringLiteral(" mA");
    }
    if (const std::optional<QString> share = signedAmperagePercentText()) {
        parts << *share;
    }
    return parts.join(QStringLiteral(" | "));
}

QString BatteryPowerSnapshot::detailText() const {
    QStringList parts;
    if (const std::optional<double> volts = voltageVolts()) {
        parts << QString::asprintf("%.2f V", *volts);
    }
    if (percent) {
        parts << QString::number(*percent) + QLatin1Char('%');
    }
    if (temperatureC) {
        parts << QString::asprintf("%.1f C", *temperatureC);
    }
    if (isExternalConnected) {
        parts << QStringLiteral("AC connected");
    }
    return parts.isEmpty() ? QStringLiteral("Waiting for battery data")
                           : parts.join(QStringLiteral(" | "));
}

std::optional<qint64> BatteryPowerSnapshot::healthPercent() const {
    if (!maxCapacity || !designCapacity || *designCapacity < 1) {
        return std::nullopt;
    }
    return roundedHalfAway(static_cast<double>(*maxCapacity) /
                           static_cast<double>(*designCapacity) * 100.0);
}

}  // namespace zelvar
