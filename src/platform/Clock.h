#pragma once

#include <QDateTime>

namespace zelvar {

// Source of "now" for every time-dependent decision, so that cooldowns, freshness windows and
// cadences can be tested without sleeping. Instants are UTC.
class Clock {
public:
    virtual ~Clock() = default;
    virtual QDateTime now() const = 0;
};

// Seconds from `from` to `to`, negative when `to` is earlier.
inline double secondsBetween(const QDateTime& from, const QDateTime& to) {
    return static_cast<double>(from.msecsTo(to)) / 1000.0;
}

}  // namespace zelvar
