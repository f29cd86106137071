#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QUuid>
#include <optional>

namespace zelvar {

// One line of the daemon's correlation sample file: the system's load beside the power
// figures, decoded tolerantly like the battery samples, with a few values filled in from
// others when their own key is missing.
struct WattlogCorrelationSample {
    QUuid id;
    double ts = 0;
    std::optional<QString> iso;
    std::optional<qint64> processCount;
    std::optional<qint64> openApps;
    std::optional<qint64> visibleApps;
    std::optional<double> cpuUser;
    std::optional<double> cpuSystem;
    std::optional<double> cpuIdle;
    std::optional<double> cpuUtil;  // or 100 - idle, not below 0
    std::optional<qint64> memUsedMB;
    std::optional<qint64> ramTotalMB;
    std::optional<double> ramUsedPercent;  // or used over total
    std::optional<qint64> swapUsedMB;
    std::optional<double> load1m;
    std::optional<double> diskReadKBPS;
    std::optional<double> diskWriteKBPS;
    std::optional<qint64> netInDelta;
    std::optional<qint64> netOutDelta;
    std::optional<double> netInKBPS;
    std::optional<double> netOutKBPS;
    std::optional<QString> netInterface;
    std::optional<bool> wifiConnected;
    std::optional<QString> wifiSSID;
    std::optional<double> displayBrightnessPercent;
    std::optional<qint64> thermalLevel;
    std::optional<double> batteryWatts;
    std::optional<qint64> batteryPercent;
    std::optional<QString> source;
    std::optional<bool> isCharging;
    QString powerFlow;  // or worked out from charging, source and watts
    std::optional<double> powerLoadPercent;
    std::optional<QString> powerSignedPercent;
    std::optional<qint64> amperageMA;
    std::optional<double> voltageV;
    std::optional<double> batteryTemperatureC;
    std::optional<bool> powermetricsAvailable;
    // Every "pm_…_w" key whose value is a number, named without "pm_" and "_w".
    QMap<QString, double> powermetricsWatts;

    bool operator==(const WattlogCorrelationSample&) const = default;

    // No value for a line that isn't a JSON object.
    static std::optional<WattlogCorrelationSample> decode(const QByteArray& line);
    // The line for this sample, each field under the first of its keys; "pm_<name>_w" for each
    // powermetrics figure.
    QByteArray encode() const;
};

}  // namespace zelvar
