#pragma once

#include <QTimeZone>

#include "platform/Clock.h"

namespace zelvar {

// A clock that never moves, for runs whose output must not depend on when they run: "now" is
// the instant given at construction, by default the Unix epoch.
class NullClock final : public Clock {
public:
    explicit NullClock(QDateTime instant = QDateTime::fromSecsSinceEpoch(0, QTimeZone::utc()))
        : m_instant(std::move(instant)) {}
    QDateTime now() const override { return m_instant; }

private:
    QDateTime m_instant;
};

}  // namespace zelvar
