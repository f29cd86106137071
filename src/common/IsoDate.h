#pragma once

#include <QDateTime>
#include <QString>
#include <optional>

namespace zelvar {

// "2026-11-22T04:06:56Z": UTC, whole seconds, trailing Z.
QString formatIsoDate(const QDateTime& instant);

// Internet date-time without fractional seconds: a date, "T", a time to the second, and "Z" or
// a "+hh:mm" / "-hh:mm" offset. Anything else, fractions included, gives no value.
std::optional<QDateTime> parseIsoDate(const QString& text);

}  // namespace zelvar
