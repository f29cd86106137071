#include "app/report/PowerReport.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QTextStream>
#include <QTimeZone>
#include <cmath>

#include "app/report/RunMonitors.h"
#include "common/TerminalText.h"
#include "power/BatteryPowerMonitor.h"

namespace zelvar {
namespace {

template <typename T>
QJsonValue json(const std::optional<T>& value) {
    if (!value) {
        return QJsonValue::Null;
    }
    if constexpr (std::is_same_v<T, QString>) {
        return *value;
    } else {
        return static_cast<double>(*value);
    }
}

template <typename T>
QString text(const std::optional<T>& value, const QString& unit = {}) {
    if (!value) {
        return QStringLiteral("-");
    }
    return QString::number(*value) + unit;
}

QString isoDate(const QDateTime& date) {
    return date.toUTC().toString(Qt::ISODate);
}

}  // namespace

ReportKind PowerReport::kind() {
    return {QStringLiteral("power"),
            QStringLiteral("The battery's power flow, charge and health, and the newest of "
                           "the daemon's battery and load samples."),
            {},
            Monitors::Part::Power,
            ReportKind::runner(&ReportKind::noSettings, &sample, &formatText, &formatJson)};
}

PowerReport::Snapshot PowerReport::sample(Monitors& monitors) {
    const BatteryPowerMonitor& monitor = *monitors.batteryPowerMonitor();
    runMonitors(monitors, monitor, &BatteryPowerMonitor::refreshFinished, {1, 0.0});
    Snapshot s;
    s.battery = monitor.snapshot();
    s.menuPowerRateText = monitor.menuPowerRateText();
    s.batterySampleCount = static_cast<int>(monitor.recentBatterySamples().size());
    s.correlationSampleCount = static_cast<int>(monitor.recentCorrelationSamples().size());
    if (!monitor.recentBatterySamples().isEmpty()) {
        s.newestBatterySample = monitor.recentBatterySamples().first();
    }
    if (!monitor.recentCorrelationSamples().isEmpty()) {
        s.newestCorrelationSample = monitor.recentCorrelationSamples().first();
    }
    return s;
}

QString PowerReport::formatText(const Snapshot& s) {
    const BatteryPowerSnapshot& b = s.battery;
    QString out;
    QTextStream t(&out);
    t << "Power:     " << b.powerFlowTitle() << '\n';
    t << "Rate:      " << b.powerRateText() << '\n';
    t << "Menu bar:  " << s.menuPowerRateText << '\n';
    t << "Detail:    " << b.detailText() << '\n';
    t << "Charge:    " << text(b.percent, QStringLiteral("%")) << ", health "
      << text(b.healthPercent(), QStringLiteral("%")) << " (" << text(b.maxCapacity) << " of "
      << text(b.designCapacity) << "), " << text(b.cycleCount) << " cycles\n";
    t << "Current:   " << text(b.amperageMA, QStringLiteral(" mA")) << " at "
      << text(b.voltageMV, QStringLiteral(" mV")) << ", telemetry "
      << text(b.batteryPowerMW, QStringLiteral(" mW")) << ", full load "
      << text(b.amperageScaleMaxMA, QStringLiteral(" mA")) << '\n';
    t << "Read at:   " << isoDate(b.timestamp) << '\n';

    t << "\nBattery samples: " << s.batterySampleCount << '\n';
    if (const auto& n = s.newestBatterySample) {
        t << "  newest " << isoDate(n->date()) << ": " << n->flow() << ", "
          << text(n->percent(), QStringLiteral("%")) << ", "
          << (n->watts() ? QString::asprintf("%.2f W", *n->watts()) : QStringLiteral("- W")) << ", "
          << n->menuPowerRateText() << '\n';
    }
    t << "Correlation samples: " << s.correlationSampleCount << '\n';
    if (const auto& n = s.newestCorrelationSample) {
        t << "  newest "
          << isoDate(QDateTime::fromMSecsSinceEpoch(std::llround(n->ts * 1000.0), QTimeZone::utc()))
          << ": " << TerminalText::escaped(n->powerFlow) << ", CPU "
          << text(n->cpuUtil, QStringLiteral("%")) << ", RAM "
          << text(n->ramUsedPercent, QStringLiteral("%")) << ", battery "
          << text(n->batteryWatts, QStringLiteral(" W")) << '\n';
    }
    return out;
}

QByteArray PowerReport::formatJson(const Snapshot& s) {
    const BatteryPowerSnapshot& b = s.battery;
    QJsonObject battery{
        {QStringLiteral("timestamp"), isoDate(b.timestamp)},
        {QStringLiteral("percent"), json(b.percent)},
        {QStringLiteral("is_external_connected"), b.isExternalConnected},
        {QStringLiteral("is_charging"), b.isCharging},
        {QStringLiteral("amperage_ma"), json(b.amperageMA)},
        {QStringLiteral("voltage_mv"), json(b.voltageMV)},
        {QStringLiteral("amperage_scale_max_ma"), json(b.amperageScaleMaxMA)},
        {QStringLiteral("battery_power_mw"), json(b.batteryPowerMW)},
        {QStringLiteral("max_capacity"), json(b.maxCapacity)},
        {QStringLiteral("design_capacity"), json(b.designCapacity)},
        {QStringLiteral("temperature_c"), json(b.temperatureC)},
        {QStringLiteral("cycle_count"), json(b.cycleCount)},
        {QStringLiteral("power_rate_watts"), json(b.powerRateWatts())},
        {QStringLiteral("amperage_percent"), json(b.amperagePercent())},
        {QStringLiteral("health_percent"), json(b.healthPercent())},
        {QStringLiteral("power_flow_title"), b.powerFlowTitle()},
        {QStringLiteral("power_rate_text"), b.powerRateText()},
        {QStringLiteral("detail_text"), b.detailText()},
    };
    QJsonObject root{{QStringLiteral("battery"), battery},
                     {QStringLiteral("menu_power_rate_text"), s.menuPowerRateText},
                     {QStringLiteral("battery_sample_count"), s.batterySampleCount},
                     {QStringLiteral("correlation_sample_count"), s.correlationSampleCount}};
    if (const auto& n = s.newestBatterySample) {
        root.insert(QStringLiteral("newest_battery_sample"),
                    QJsonObject{{QStringLiteral("ts"), n->ts},
                                {QStringLiteral("flow"), n->flow()},
                                {QStringLiteral("percent"), json(n->percent())},
                                {QStringLiteral("watts"), json(n->watts())},
                                {QStringLiteral("current"), json(n->current)},
                                {QStringLiteral("menu_power_rate_text"), n->menuPowerRateText()}});
    }
    if (const auto& n = s.newestCorrelationSample) {
        root.insert(QStringLiteral("newest_correlation_sample"),
                    QJsonObject{{QStringLiteral("ts"), n->ts},
                                {QStringLiteral("power_flow"), n->powerFlow},
                                {QStringLiteral("cpu_util_pct"), json(n->cpuUtil)},
                                {QStringLiteral("ram_used_pct"), json(n->ramUsedPercent)},
                                {QStringLiteral("battery_watts"), json(n->batteryWatts)}});
    }
    return QJsonDocument(root).toJson(QJsonDocument::Indented);
}

}  // namespace zelvar
