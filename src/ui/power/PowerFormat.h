#pragma once

#include <QColor>
#include <QString>
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

// "--" for a metric without a value.
QString metricText(const std::optional<QString>& value);

}  // namespace zelvar
