#include "power/WattlogCorrelationSample.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "power/TolerantJson.h"

namespace zelvar {
namespace {

QString flowWithout(const WattlogCorrelationSample& s) {
    if (s.isCharging.value_or(false)) {
        return QStringLiteral("charge");
    }
    const bool drawing = s.batteryWatts && *s.batteryWatts > 0.0;
    if (s.source == QStringLiteral("AC")) {
        return drawing ? QStringLiteral("charge") : QStringLiteral("ac_idle");
    }
    return drawing ? QStringLiteral("discharge") : QStringLiteral("idle");
}

}  // namespace

std::optional<WattlogCorrelationSample> WattlogCorrelationSample::decode(const QByteArray& line) {
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject()) {
        return std::nullopt;
    }
    const QJsonObject o = document.object();
    using J = TolerantJson;
    WattlogCorrelationSample s;
    s.id = QUuid::createUuid();
    s.ts = J::decodeDouble(o, J::keys({"ts", "timestamp"})).value_or(0.0);
    s.iso = J::decodeText(o, J::keys({"iso"}));
    s.processCount = J::decodeInt(o, J::keys({"process_count"}));
    s.openApps = J::decodeInt(o, J::keys({"open_apps"}));
    s.visibleApps = J::decodeInt(o, J::keys({"visible_apps"}));
    s.cpuUser = J::decodeDouble(o, J::keys({"cpu_user", "cpu_user_pct"}));
    s.cpuSystem = J::decodeDouble(o, J::keys({"cpu_system", "cpu_sys_pct"}));
    s.cpuIdle = J::decodeDouble(o, J::keys({"cpu_idle_pct"}));
    s.cpuUtil = J::decodeDouble(o, J::keys({"cpu_util_pct"}));
    if (!s.cpuUtil && s.cpuIdle) {
        s.cpuUtil = std::max(0.0, 100.0 - *s.cpuIdle);
    }
    s.memUsedMB = J::decodeInt(o, J::keys({"mem_used_mb", "ram_used_mb"}));
    s.ramTotalMB = J::decodeInt(o, J::keys({"ram_total_mb"}));
    s.ramUsedPercent = J::decodeDouble(o, J::keys({"ram_used_pct"}));
    if (!s.ramUsedPercent && s.memUsedMB && s.ramTotalMB && *s.ramTotalMB >= 1) {
        s.ramUsedPercent =
            static_cast<double>(*s.memUsedMB) / static_cast<double>(*s.ramTotalMB) * 100.0;
    }
    s.swapUsedMB = J::decodeInt(o, J::keys({"swap_used_mb"}));
    s.load1m = J::decodeDouble(o, J::keys({"load_1m"}));
    s.diskReadKBPS = J::decodeDouble(o, J::keys({"disk_read_kbps"}));
    s.diskWriteKBPS = J::decodeDouble(o, J::keys({"disk_write_kbps"}));
    s.netInDelta = J::decodeInt64(o, J::keys({"net_in_delta"}));
    s.netOutDelta = J::decodeInt64(o, J::keys({"net_out_delta"}));
    s.netInKBPS = J::decodeDouble(o, J::keys({"net_in_kbps"}));
    s.netOutKBPS = J::decodeDouble(o, J::keys({"net_out_kbps"}));
    s.netInterface = J::decodeText(o, J::keys({"net_iface"}));
    s.wifiConnected = J::decodeBool(o, J::keys({"wifi_connected"}));
    s.wifiSSID = J::decodeText(o, J::keys({"wifi_ssid"}));
    s.displayBrightnessPercent = J::decodeDouble(o, J::keys({"display_brightness_pct"}));
    s.thermalLevel = J::decodeInt(o, J::keys({"thermal_level"}));
    s.batteryWatts = J::decodeDouble(o, J::keys({"battery_watts", "power_w"}));
    s.batteryPercent = J::decodeInt(o, J::keys({"battery_percent", "battery_pct"}));
    s.source = J::decodeText(o, J::keys({"source"}));
    s.isCharging = J::decodeBool(o, J::keys({"is_charging"}));
    s.powerFlow = J::decodeText(o, J::keys({"power_flow"})).value_or(flowWithout(s));
    s.powerLoadPercent = J::decodeDouble(o, J::keys({"power_load_pct"}));
    s.powerSignedPercent = J::decodeText(o, J::keys({"power_signed_pct"}));
    s.amperageMA = J::decodeInt(o, J::keys({"amperage_ma"}));
    s.voltageV = J::decodeDouble(o, J::keys({"voltage_v"}));
    s.batteryTemperatureC = J::decodeDouble(o, J::keys({"battery_temp_c", "temperature_c"}));
    s.powermetricsAvailable = J::decodeBool(o, J::keys({"powermetrics_available"}));
    for (auto it = o.constBegin(); it != o.constEnd(); ++it) {
        const QString key = it.key();
        if (!key.startsWith(QLatin1String("pm_")) || !key.endsWith(QLatin1String("_w"))) {
            continue;
        }
        if (const auto watts = J::decodeDouble(o, {key})) {
            // Both removals are global and unanchored: pm_wifi_w_w names "wifi".
            QString name = key;
            name.remove(QStringLiteral("pm_")).remove(QStringLiteral("_w"));
            s.powermetricsWatts.insert(name, *watts);
        }
    }
    return s;
}

QByteArray WattlogCorrelationSample::encode() const {
    QJsonObject line{{QStringLiteral("ts"), ts}};
    // An empty flow is left out, so that the reader works it out from the other fields.
    if (!powerFlow.isEmpty()) {
        line.insert(QStringLiteral("power_flow"), powerFlow);
    }
    const auto put = [&line](const char* key, const auto& value) {
        TolerantJson::insertIfPresent(line, key, value);
    };
    put("iso", iso);
    put("process_count", processCount);
    put("open_apps", openApps);
    put("visible_apps", visibleApps);
    put("cpu_user", cpuUser);
    put("cpu_system", cpuSystem);
    put("cpu_idle_pct", cpuIdle);
    put("cpu_util_pct", cpuUtil);
    put("mem_used_mb", memUsedMB);
    put("ram_total_mb", ramTotalMB);
    put("ram_used_pct", ramUsedPercent);
    put("swap_used_mb", swapUsedMB);
    put("load_1m", load1m);
    put("disk_read_kbps", diskReadKBPS);
    put("disk_write_kbps", diskWriteKBPS);
    put("net_in_delta", netInDelta);
    put("net_out_delta", netOutDelta);
    put("net_in_kbps", netInKBPS);
    put("net_out_kbps", netOutKBPS);
    put("net_iface", netInterface);
    put("wifi_connected", wifiConnected);
    put("wifi_ssid", wifiSSID);
    put("display_brightness_pct", displayBrightnessPercent);
    put("thermal_level", thermalLevel);
    put("battery_watts", batteryWatts);
    put("battery_percent", batteryPercent);
    put("source", source);
    put("is_charging", isCharging);
    put("power_load_pct", powerLoadPercent);
    put("power_signed_pct", powerSignedPercent);
    put("amperage_ma", amperageMA);
    put("voltage_v", voltageV);
    put("battery_temp_c", batteryTemperatureC);
    put("powermetrics_available", powermetricsAvailable);
    for (auto it = powermetricsWatts.begin(); it != powermetricsWatts.end(); ++it) {
        line.insert(QStringLiteral("pm_") + it.key() + QStringLiteral("_w"), it.value());
    }
    return QJsonDocument(line).toJson(QJsonDocument::Compact);
}

}  // namespace zelvar
