#include "platform/portable/SmartBatteryProperties.h"

#include <bit>
#include <cmath>
#include <limits>

namespace zelvar {
namespace {

bool isWholeNumber(const QVariant& value) {
    switch (value.typeId()) {
        case QMetaType::ULongLong:
        case QMetaType::LongLong:
        case QMetaType::ULong:
        case QMetaType::Long:
        case QMetaType::UInt:
        case QMetaType::Int:
            return true;
        default:
            return false;
    }
}

bool isNumber(const QVariant& value) {
    return isWholeNumber(value) || value.typeId() == QMetaType::Double ||
           value.typeId() == QMetaType::Float;
}

// A floating-point number cut towards zero, held inside the 64-bit range.
qint64 truncated(double value) {
    if (!std::isfinite(value)) {
        return 0;
    }
    if (value >= 9.2e18) {
        return std::numeric_limits<qint64>::max();
    }
    if (value <= -9.2e18) {
        return std::numeric_limits<qint64>::min();
    }
    return static_cast<qint64>(value);
}

QVariant member(const QVariant& dictionary, const QString& key) {
    if (dictionary.typeId() != QMetaType::QVariantMap) {
        return {};
    }
    return dictionary.toMap().value(key);
}

// The first of `names` that gives a value.
template <typename Read>
auto firstOf(const QVariantMap& properties, std::initializer_list<const char*> names, Read read)
    -> decltype(read(QVariant())) {
    for (const char* name : names) {
        if (const auto value = read(properties.value(QString::fromLatin1(name)))) {
            return value;
        }
    }
    return std::nullopt;
}

// CurrentCapacity is a percentage unless MaxCapacity is above 100, when both are capacities.
std::optional<qint64> percentOf(std::optional<qint64> current, std::optional<qint64> max) {
    if (!current) {
        return std::nullopt;
    }
    if (max && *max >= 101) {
        return static_cast<qint64>(
            std::round(static_cast<double>(*current) / static_cast<double>(*max) * 100.0));
    }
    return current;
}

// The battery's maximum discharge current, when it lies below the default scale.
qint64 scaleOf(const QVariant& batteryData) {
    const std::optional<qint64> limit = SmartBatteryProperties::signedIntProperty(
        member(member(batteryData, QStringLiteral("LifetimeData")),
               QStringLiteral("MaximumDischargeCurrent")));
    if (!limit || *limit == std::numeric_limits<qint64>::min()) {
        return SmartBatteryProperties::kDefaultScaleMaxMA;
    }
    const qint64 magnitude = std::abs(*limit);
    return magnitude > 0 && magnitude < SmartBatteryProperties::kDefaultScaleMaxMA
               ? magnitude
               : SmartBatteryProperties::kDefaultScaleMaxMA;
}

}  // namespace

std::optional<bool> SmartBatteryProperties::boolProperty(const QVariant& value) {
    if (value.typeId() != QMetaType::Bool) {
        return std::nullopt;
    }
    return value.toBool();
}

std::optional<qint64> SmartBatteryProperties::intProperty(const QVariant& value) {
    if (!isNumber(value)) {
        return std::nullopt;
    }
    if (!isWholeNumber(value)) {
        return truncated(value.toDouble());
    }
    // The 64 bits of an unsigned read, taken as signed: what the number's signed value is.
    if (value.typeId() == QMetaType::ULongLong || value.typeId() == QMetaType::ULong) {
        return std::bit_cast<qint64>(value.toULongLong());
    }
    return value.toLongLong();
}

std::optional<qint64> SmartBatteryProperties::signedIntProperty(const QVariant& value) {
    if (!isNumber(value)) {
        return std::nullopt;
    }
    if (isWholeNumber(value)) {
        const quint64 bits =
            value.typeId() == QMetaType::ULongLong || value.typeId() == QMetaType::ULong
                ? value.toULongLong()
                : std::bit_cast<quint64>(value.toLongLong());
        if ((bits >> 63) != 0) {
            return std::bit_cast<qint64>(bits);
        }
    }
    return intProperty(value);
}

BatteryReading SmartBatteryProperties::reading(const QVariantMap& properties) {
    const auto property = [&](const char* name) {
        return properties.value(QString::fromLatin1(name));
    };
    BatteryReading r;
    const std::optional<qint64> maxCapacity = intProperty(property("MaxCapacity"));
    r.percent = percentOf(intProperty(property("CurrentCapacity")), maxCapacity);
    r.maxCapacity = maxCapacity;
    r.isExternalConnected =
        firstOf(properties, {"ExternalConnected", "AppleRawExternalConnected"}, &boolProperty)
            .value_or(false);
    r.isCharging = boolProperty(property("IsCharging")).value_or(false);
    r.amperageMA = firstOf(properties, {"InstantAmperage", "Amperage"}, &signedIntProperty);
    r.voltageMV = firstOf(properties, {"Voltage", "AppleRawBatteryVoltage"}, &intProperty);
    r.amperageScaleMaxMA = scaleOf(property("BatteryData"));
    const std::optional<qint64> telemetry =
        intProperty(member(property("PowerTelemetryData"), QStringLiteral("BatteryPower")));
    if (telemetry && *telemetry != std::numeric_limits<qint64>::min()) {
        r.batteryPowerMW = std::abs(*telemetry);
    }
    r.designCapacity = intProperty(property("DesignCapacity"));
    if (const auto temperature = intProperty(property("Temperature"))) {
        r.temperatureC = static_cast<double>(*temperature) / 100.0;
    }
    r.cycleCount = intProperty(property("CycleCount"));
    return r;
}

}  // namespace zelvar
