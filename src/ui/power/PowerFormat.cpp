#include "ui/power/PowerFormat.h"

#include <QHash>
#include <cmath>

#include "ui/Palette.h"

namespace zelvar {

QString powerDurationText(double seconds) {
    if (!std::isfinite(seconds) || seconds < 0) {
        return QStringLiteral("0m");
    }
    constexpr qint64 kDay = 86400;
    const auto whole = static_cast<qint64>(seconds);
    if (whole >= kDay) {
        return QStringLiteral("%1d %2h").arg(whole / kDay).arg((whole % kDay) / 3600);
    }
    const qint64 hours = whole / 3600;
    const qint64 minutes = (whole % 3600) / 60;
    if (hours > 0) {
        return QStringLiteral("%1h %2m").arg(hours).arg(minutes);
    }
    return QStringLiteral("%1m").arg(minutes);
}

QColor wattlogColor(const WattlogColor& color) {
    if (color.name.isEmpty()) {
        return QColor::fromRgbF(float(color.red), float(color.green), float(color.blue));
    }
    static const QHash<QString, NamedColor> names{
        {QStringLiteral("red"), NamedColor::Red},
        {QStringLiteral("orange"), NamedColor::Orange},
        {QStringLiteral("green"), NamedColor::Green},
        {QStringLiteral("blue"), NamedColor::Blue},
        {QStringLiteral("purple"), NamedColor::Purple},
        {QStringLiteral("teal"), NamedColor::Teal},
        {QStringLiteral("indigo"), NamedColor::Indigo},
        {QStringLiteral("pink"), NamedColor::Pink},
        {QStringLiteral("yellow"), NamedColor::Yellow},
        {QStringLiteral("gray"), NamedColor::Gray},
        {QStringLiteral("mint"), NamedColor::Mint},
    };
    return namedColor(names.value(color.name, NamedColor::Gray));
}

QColor kindColor(WattlogEventKind kind) {
    return wattlogColor(WattlogEventKinds::color(kind));
}

std::optional<QString> printfValue(const std::optional<double>& value, const char* format) {
    if (!value) {
        return std::nullopt;
    }
    return printfText(format, *value);
}

QString metricText(const std::optional<QString>& value) {
    return value.value_or(QStringLiteral("--"));
}

}  // namespace zelvar
