#pragma once

#include "platform/Clock.h"

namespace zelvar {

// The real clock: Qt's UTC "now", the same on every system.
class SystemClock final : public Clock {
public:
    QDateTime now() const override { return QDateTime::currentDateTimeUtc(); }
};

}  // namespace zelvar
