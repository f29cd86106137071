#include "power/WattlogBatterySample.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTimeZone>
#include <cmath>

#include "power/TolerantJson.h"

namespace zelvar {
namespace {

// The current that counts as 100% in a sample's menu text, whatever the battery.
constexpr double kSampleScaleMA = 3000.0;

}  // namespace

std::optional<WattlogBatterySample> WattlogBatterySample::decode(const QByteArray& line) {
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject o = document.object();
    using J = TolerantJson;
    WattlogBatterySample s;
    s.id = QUuid::createUuid();
    s.ts = J::decodeDouble(o, J::keys({"ts", "timestamp"})).value_or(0.0);
    s.source = J::decodeText(o, J::keys({"source"}));
    s.charging = J::decodeBool(o, J::keys({"charging", "isCharging", "is_charging"}));
    s.current = J::decodeInt(o, J::keys({"current", "amperageMA", "amperage_ma"}));
    s.voltage = J::decodeInt(o, J::keys({"voltage", "voltageMV"}));
    s.capacity = J::decodeInt(o, J::keys({"capacity", "current_capacity"}));
    s.maxCapacity = J::decodeInt(o, J::keys({"max_capacity", "maxCapacity"}));
    s.designCapacity = J::decodeInt(o, J::keys({"design_capacity", "designCapacity"}));
    s.temperature = J::decodeDouble(o, J::keys({"temperature_c", "battery_temp_c"}));
    s.cycleCount = J::decodeInt(o, J::keys({"cycle_count", "cycleCount"}));
    s.recordedPercent = J::decodeInt(o, J::keys({"percent", "battery_percent", "battery_pct"}));
    s.recordedWatts = J::decodeDouble(o, J::keys({"watts", "power_w", "battery_watts"}));
    return s;
}

QByteArray WattlogBatterySample::encode() const {
    QJsonObject line{{QStringLiteral("ts"), ts}};
    TolerantJson::insertIfPresent(line, "source", source);
    TolerantJson::insertIfPresent(line, "charging", charging);
    TolerantJson::insertIfPresent(line, "current", current);
    TolerantJson::insertIfPresent(line, "voltage", voltage);
    TolerantJson::insertIfPresent(line, "capacity", capacity);
    TolerantJson::insertIfPresent(line, "max_capacity", maxCapacity);
    TolerantJson::insertIfPresent(line, "design_capacity", designCapacity);
    TolerantJson::insertIfPresent(line, "temperature_c", temperature);
    TolerantJson::insertIfPresent(line, "cycle_count", cycleCount);
    TolerantJson::insertIfPresent(line, "percent", recordedPercent);
    TolerantJson::insertIfPresent(line, "watts", recordedWatts);
    return QJsonDocument(line).toJson(QJsonDocument::Compact);
}

QDateTime WattlogBatterySample::date() const {
    return QDateTime::fromMSecsSinceEpoch(std::llround(ts * 1000.0), QTimeZone::utc());
}

std::optional<qint64> WattlogBatterySample::percent() const {
    if (recordedPercent) {
        return recordedPercent;
    }
    if (capacity && maxCapacity && *maxCapacity >= 1) {
        return static_cast<qint64>(
            std::round(static_cast<double>(*capacity) / static_cast<double>(*maxCapacity) * 100.0));
    }
    return std::nullopt;
}

std::optional<double> WattlogBatterySample::watts() const {
    if (recordedWatts) {
        return recordedWatts;
    }
    if (current && voltage) {
        return std::abs(static_cast<double>(*current)) * static_cast<double>(*voltage) / 1e6;
    }
    return std::nullopt;
}

QString WattlogBatterySample::flow() const {
    if (charging.value_or(false)) {
        return QStringLiteral("charge");
    }
    if (source == QStringLiteral("AC")) {
        return QStringLiteral("ac_idle");
    }
    if (current && *current < 0) {
        return QStringLiteral("discharge");
    }
    return QStringLiteral("idle");
}

QString WattlogBatterySample::menuPowerRateText() const {
    if (!current || *current == 0) {
        return QStringLiteral("0%");
    }
    const double magnitude = std::abs(static_cast<double>(*current));
    const qint64 share = std::min<qint64>(100, std::llround(magnitude / kSampleScaleMA * 100.0));
    return (*current < 0 ? QStringLiteral("-") : QStringLiteral("+")) + QString::number(share) +
           QLatin1Char('%');
}

}  // namespace zelvar
