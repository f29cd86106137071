#include "ui/power/PowerSampleText.h"

#include <QDateTime>
#include <QTimeZone>
#include <algorithm>
#include <cmath>
#include <optional>

#include "network/ByteFormatter.h"
#include "ui/TextFormat.h"
#include "ui/power/PowerFormat.h"

namespace zelvar {

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;

template <typename T>
std::optional<QString> numberText(const std::optional<T>& value) {
    if (!value) {
        return std::nullopt;
    }
    return QString::number(*value);
}

}  // namespace

QStringList batterySampleCells(const WattlogBatterySample& sample) {
    return {localTimeText(sample.date()),
            metricText(numberText(sample.percent())),
            metricText(printfValue(sample.watts(), "%.1f W")),
            metricText(sample.source),
            metricText(printfValue(sample.temperature, "%.1f C")),
            metricText(numberText(sample.cycleCount))};
}

QStringList correlationSampleCells(const WattlogCorrelationSample& sample) {
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(
        qint64(std::llround(sample.ts * kMillisecondsPerSecond)), QTimeZone::utc());
    return {localTimeText(when),
            metricText(printfValue(sample.batteryWatts, "%.1f W")),
            metricText(printfValue(sample.cpuUtil, "%.0f%%")),
            metricText(printfValue(sample.ramUsedPercent, "%.0f%%")),
            metricText(numberText(sample.processCount)),
            correlationNetText(sample),
            sample.powerFlow.isEmpty() ? QStringLiteral("--") : sample.powerFlow};
}

QString correlationNetText(const WattlogCorrelationSample& sample) {
    if (sample.netInKBPS && sample.netOutKBPS) {
        return printfText("%.0f/%.0f KB/s", *sample.netInKBPS, *sample.netOutKBPS);
    }
    if (sample.netInDelta && sample.netOutDelta) {
        // A counter that went backwards counts as nothing moved.
        return ByteFormatter::bytes(quint64(std::max<qint64>(0, *sample.netInDelta))) +
               QLatin1Char('/') +
               ByteFormatter::bytes(quint64(std::max<qint64>(0, *sample.netOutDelta)));
    }
    return QStringLiteral("--");
}

}  // namespace zelvar
