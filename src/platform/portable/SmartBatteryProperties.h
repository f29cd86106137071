#pragma once

#include <QVariant>
#include <QVariantMap>
#include <optional>

#include "platform/BatteryRegistry.h"

namespace zelvar {

// Turns the property table of the I/O registry's "AppleSmartBattery" service into a reading.
// The macOS adapter only copies the table into Qt values; every decision is made here, where
// it is built and tested on every system.
//
// The table as the adapter hands it over: a boolean as bool; a whole number as qulonglong
// holding the 64 bits of the number's unsigned read (so a negative number has its top bit
// set); a floating-point number as double; a dictionary as QVariantMap; anything else as
// whatever it converts to, which counts as neither a boolean nor a number.
class SmartBatteryProperties {
public:
    SmartBatteryProperties() = delete;

    // The current, in mA, that counts as a full load when the battery names no lower limit.
    static constexpr qint64 kDefaultScaleMaxMA = 3000;

    static BatteryReading reading(const QVariantMap& properties);

    // A boolean, or nothing for a missing property or one of another type.
    static std::optional<bool> boolProperty(const QVariant& value);
    // A number's ordinary signed value (a floating-point number cut towards zero).
    static std::optional<qint64> intProperty(const QVariant& value);
    // A number read as unsigned 64 bits; with the top bit set the bits are a two's-complement
    // negative value, since the battery driver publishes negative currents as huge unsigned
    // numbers. With the top bit clear, the number's ordinary signed value.
    static std::optional<qint64> signedIntProperty(const QVariant& value);
};

}  // namespace zelvar
