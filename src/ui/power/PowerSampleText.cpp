#include "ui/power/PowerSampleText.h"

#include <QDateTime>
#include <QLocale>
#include <QTimeZone>
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <optional>

#include "network/ByteFormatter.h"
#include "ui/power/PowerFormat.h"

namespace zelvar {

namespace {

constexpr double kMillisecondsPerSecond = 1000.0;

QString timeText(const QDateTime& when) {
    return QLocale().toString(when.toLocalTime().time(), QLocale::ShortFormat);
}

template <typename T>
std::optional<QString> numberText(const std::optional<T>& value) {
    if (!value) {
        return std::nullopt;
    }
    return QString::number(*value);
}

// The C library's printf, so that a "%.1f" reads as printf reads it: an exact half goes to
// even, where QString::asprintf rounds it up.
template <typename... Args>
QString printed(const char* format, Args... args) {
    char text[64];
    std::snprintf(text, sizeof text, format, args...);
    return QString::fromLatin1(text);
}

std::optional<QString> fixedText(const std::optional<double>& value, const char* format) {
    if (!value) {
        return std::nullopt;
    }
    return printed(format, *value);
}

}  // namespace

QStringList batterySampleCells(const WattlogBatterySample& sample) {
    return {timeText(sample.date()),
            metricText(numberText(sample.percent())),
            metricText(fixedText(sample.watts(), "%.1f W")),
            metricText(sample.source),
            metricText(fixedText(sample.temperature, "%.1f C")),
            metricText(numberText(sample.cycleCount))};
}

QStringList correlationSampleCells(const WattlogCorrelationSample& sample) {
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(
        qint64(std::llround(sample.ts * kMillisecondsPerSecond)), QTimeZone::utc());
    return {timeText(when),
            metricText(fixedText(sample.batteryWatts, "%.1f W")),
            metricText(fixedText(sample.cpuUtil, "%.0f%%")),
            metricText(fixedText(sample.ramUsedPercent, "%.0f%%")),
            metricText(numberText(sample.processCount)),
            correlationNetText(sample),
            sample.powerFlow.isEmpty() ? QStringLiteral("--") : sample.powerFlow};
}

QString correlationNetText(const WattlogCorrelationSample& sample) {
    if (sample.netInKBPS && sample.netOutKBPS) {
        return printed("%.0f/%.0f KB/s", *sample.netInKBPS, *sample.netOutKBPS);
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
