#include "power/WattlogEventKind.h"

#include <array>

namespace zelvar {
namespace {

struct KindInfo {
    const char* label;
    const char* symbol;
    WattlogColor color;
    bool onTimeline;
};

WattlogColor named(const char* name) {
    return {QString::fromLatin1(name)};
}

WattlogColor rgb(double red, double green, double blue) {
    return {QString(), red, green, blue};
}

// In the order of the enumeration.
const std::array<KindInfo, WattlogEventKinds::kCount>& table() {
    static const std::array<KindInfo, WattlogEventKinds::kCount> kinds{{
        {"Sleep", "moon.fill", named("indigo"), true},
        {"Wake", "sun.max.fill", named("green"), true},
        {"DarkWake", "moon.stars.fill", named("teal"), false},
        {"Display On", "display", named("yellow"), false},
        {"Display Off", "display.trianglebadge.exclamationmark", named("gray"), false},
        {"AC Connected", "bolt.fill", named("blue"), true},
        {"AC Disconnected", "bolt.slash.fill", named("orange"), true},
        {"Battery", "battery.75", named("mint"), false},
        {"Lid Close", "laptopcomputer.slash", named("purple"), true},
        {"Lid Open", "laptopcomputer", rgb(0.6, 0.4, 1.0), true},
        {"Reboot", "arrow.clockwise.circle.fill", named("red"), true},
        {"Battery Health", "heart.circle", named("pink"), false},
        {"Kernel Panic", "exclamationmark.triangle.fill", named("red"), true},
        {"App Crash", "ladybug.fill", rgb(1.0, 0.4, 0.2), false},
        {"App Hang", "clock.badge.exclamationmark", rgb(0.9, 0.7, 0.1), false},
        {"Jetsam (OOM)", "memorychip.fill", rgb(0.8, 0.3, 0.8), false},
        {"WiFi Connected", "wifi", rgb(0.2, 0.8, 0.6), true},
        {"WiFi Disconnected", "wifi.slash", rgb(0.5, 0.5, 0.5), true},
    }};
    return kinds;
}

const KindInfo& info(WattlogEventKind kind) {
    return table()[static_cast<std::size_t>(kind)];
}

}  // namespace

const QList<WattlogEventKind>& WattlogEventKinds::all() {
    static const QList<WattlogEventKind> kinds = [] {
        QList<WattlogEventKind> list;
        for (int i = 0; i < kCount; ++i) {
            list.append(static_cast<WattlogEventKind>(i));
        }
        return list;
    }();
    return kinds;
}

QString WattlogEventKinds::label(WattlogEventKind kind) {
    return QString::fromLatin1(info(kind).label);
}

std::optional<WattlogEventKind> WattlogEventKinds::fromLabel(const QString& text) {
    for (const WattlogEventKind kind : all()) {
        if (text == QLatin1String(info(kind).label)) {
            return kind;
        }
    }
    return std::nullopt;
}

QString WattlogEventKinds::symbol(WattlogEventKind kind) {
    return QString::fromLatin1(info(kind).symbol);
}

WattlogColor WattlogEventKinds::color(WattlogEventKind kind) {
    return info(kind).color;
}

bool WattlogEventKinds::showOnBatteryTimeline(WattlogEventKind kind) {
    return info(kind).onTimeline;
}

QString WattlogEventKinds::sourceText(WattlogPowerSource source) {
    return source == WattlogPowerSource::AC ? QStringLiteral("AC") : QStringLiteral("Batt");
}

std::optional<WattlogPowerSource> WattlogEventKinds::sourceFromText(const QString& text) {
    if (text == u"AC") {
        return WattlogPowerSource::AC;
    }
    if (text == u"Batt") {
        return WattlogPowerSource::Battery;
    }
    return std::nullopt;
}

}  // namespace zelvar
