#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QString>
#include <QUuid>
#include <optional>

namespace zelvar {

// One line of the daemon's battery sample file, decoded tolerantly: each field takes the first
// of its keys that decodes (older and newer daemons name them differently).
struct WattlogBatterySample {
    QUuid id;                       // new for each decoded line
    double ts = 0;                  // seconds since 1970; 0 when nothing decodes
    std::optional<QString> source;  // "AC" on external power
    std::optional<bool> charging;
    std::optional<qint64> current;  // mA, signed
    std::optional<qint64> voltage;  // mV
    std::optional<qint64> capacity;
    std::optional<qint64> maxCapacity;
    std::optional<qint64> designCapacity;
    std::optional<double> temperature;  // degrees Celsius
    std::optional<qint64> cycleCount;
    std::optional<qint64> recordedPercent;
    std::optional<double> recordedWatts;

    bool operator==(const WattlogBatterySample&) const = default;

    // No value for a line that isn't a JSON object.
    static std::optional<WattlogBatterySample> decode(const QByteArray& line);
    // The line for this sample, each field under the first of its keys.
    QByteArray encode() const;

    QDateTime date() const;
    // The recorded percentage, or capacity over maximum capacity.
    std::optional<qint64> percent() const;
    // The recorded watts, or current times voltage.
    std::optional<double> watts() const;
    // "charge", "ac_idle", "discharge" or "idle".
    QString flow() const;
    // The current as a signed share of 3000 mA, capped at 100: "-50%", or "0%".
    QString menuPowerRateText() const;
};

}  // namespace zelvar
