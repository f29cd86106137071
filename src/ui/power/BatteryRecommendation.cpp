#include "ui/power/BatteryRecommendation.h"

#include <algorithm>

namespace zelvar {

namespace {

constexpr qint64 kServiceHealthBelow = 80;
constexpr qint64 kPlugNowAtMost = 10;
constexpr qint64 kPlugSoonBelow = 20;
constexpr qint64 kCalmAtMost = 80;
constexpr qint64 kFull = 100;
constexpr qint64 kFullOnACSeconds = 12 * 3600;
constexpr qint64 kWornCycles = 801;

std::optional<QDateTime> newestConnection(const QList<WattlogEvent>& acEvents) {
    const auto newest = std::max_element(
        acEvents.cbegin(), acEvents.cend(),
        [](const WattlogEvent& a, const WattlogEvent& b) { return a.timestamp < b.timestamp; });
    if (newest == acEvents.cend()) {
        return std::nullopt;
    }
    return newest->timestamp;
}

}  // namespace

BatteryRecommendation batteryRecommendation(const BatteryPowerSnapshot& snapshot,
                                            const std::optional<WattlogBatterySample>& latestSample,
                                            const QList<WattlogEvent>& acEvents,
                                            const QDateTime& now) {
    std::optional<qint64> sampled;
    if (latestSample) {
        sampled = latestSample->percent();
    }
    const qint64 percent = snapshot.percent.value_or(sampled.value_or(0));
    const bool external = snapshot.isExternalConnected;
    const bool charging = snapshot.isCharging;
    const std::optional<qint64> health = snapshot.healthPercent();
    const std::optional<qint64> cycles = snapshot.cycleCount;

    BatteryRecommendation result;
    result.state = charging   ? QStringLiteral("Charging")
                   : external ? QStringLiteral("On AC")
                              : QStringLiteral("On Battery");
    result.cycle = cycles ? QStringLiteral("Cycle %1").arg(*cycles) : QStringLiteral("Cycle --");
    result.health =
        health ? QStringLiteral("Health %1%").arg(*health) : QStringLiteral("Health --");
    const auto advise = [&result](const QString& title, const QString& detail,
                                  const QString& symbol, NamedColor color) {
        result.title = title;
        result.detail = detail;
        result.symbol = symbol;
        result.color = color;
        return result;
    };
    const QString checkmark = QStringLiteral("checkmark.circle.fill");

    // A machine without a battery (no reading, no daemon sample) gets no charging advice: a
    // desktop would otherwise be told to plug in.
    if (snapshot == BatteryPowerSnapshot::unavailable() && !latestSample) {
        return advise(QStringLiteral("No battery found"),
                      QStringLiteral("This machine reports no battery to advise on."),
                      QStringLiteral("battery.0"), NamedColor::Gray);
    }
    if (health && *health < kServiceHealthBelow) {
        return advise(QStringLiteral("Consider battery service"),
                      QStringLiteral("Max capacity is %1% of design.").arg(*health),
                      QStringLiteral("exclamationmark.triangle.fill"), NamedColor::Red);
    }
    if (!external && percent <= kPlugNowAtMost) {
        return advise(QStringLiteral("Plug into AC now"),
                      QStringLiteral("Battery is at %1%.").arg(percent),
                      QStringLiteral("bolt.fill"), NamedColor::Red);
    }
    if (!external && percent > kPlugNowAtMost && percent < kPlugSoonBelow) {
        return advise(QStringLiteral("Plug into AC soon"), QStringLiteral("Battery is below 20%."),
                      QStringLiteral("bolt.fill"), NamedColor::Orange);
    }
    if (percent == kFull && external && !charging) {
        if (const auto connected = newestConnection(acEvents)) {
            const qint64 seconds = connected->secsTo(now);
            if (seconds > kFullOnACSeconds) {
                return advise(
                    QStringLiteral("Unplug or enable Optimized Charging"),
                    QStringLiteral("Battery has been full on AC for %1 h.").arg(seconds / 3600),
                    QStringLiteral("bolt.slash"), NamedColor::Yellow);
            }
        }
    }
    if (cycles && *cycles >= kWornCycles) {
        return advise(QStringLiteral("Monitor battery health"),
                      QStringLiteral("%1 charge cycles recorded.").arg(*cycles),
                      QStringLiteral("heart.circle"), NamedColor::Orange);
    }
    if (external && charging) {
        return advise(QStringLiteral("Charging normally"),
                      QStringLiteral("Battery is at %1% on AC.").arg(percent),
                      QStringLiteral("bolt.circle.fill"), NamedColor::Blue);
    }
    if (external) {
        return advise(QStringLiteral("No action needed"),
                      QStringLiteral("Battery is at %1% on AC.").arg(percent), checkmark,
                      NamedColor::Green);
    }
    if (percent >= kPlugSoonBelow && percent <= kCalmAtMost) {
        return advise(QStringLiteral("No action needed"),
                      QStringLiteral("Battery is at %1%.").arg(percent), checkmark,
                      NamedColor::Green);
    }
    return advise(QStringLiteral("No action needed"),
                  QStringLiteral("Battery is at %1% on battery.").arg(percent), checkmark,
                  NamedColor::Green);
}

}  // namespace zelvar
