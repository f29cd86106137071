#pragma once

#include <QColor>
#include <QString>
#include <cstdio>
#include <optional>

#include "power/WattlogEventKind.h"

namespace zelvar {

// A number of seconds as the Power tab shows lengths of time: "12m" under an hour, "3h 12m"
// under a day, "2d 5h" from a day on. A value that isn't finite or is negative reads "0m".
QString powerDurationText(double seconds);

// A colour of the power history's data in the dashboard's palette: a named colour by its name
// ("mint", "indigo", ...), else its red, green and blue. An unknown name is gray.
QColor wattlogColor(const WattlogColor& color);
QColor kindColor(WattlogEventKind kind);

// The figures in printf's own formatting, so that a value reads alike in every card, table and
// caption of the tab: the C library takes an exact half to even ("%.1f" of 7.25 is "7.2"),
// where QString::asprintf rounds it up.
template <typename... Args>
QString printfText(const char* format, Args... args) {
    char text[128];
    std::snprintf(text, sizeof text, format, args...);
    return QString::fromUtf8(text);
}
// `value` in `format` (one conversion), or nothing when it is absent.
std::optional<QString> printfValue(const std::optional<double>& value, const char* format);

// "--" for a metric without a value.
QString metricText(const std::optional<QString>& value);

}  // namespace zelvar
