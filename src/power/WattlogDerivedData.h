#pragma once

#include <QDateTime>
#include <QList>
#include <QUuid>
#include <cmath>
#include <optional>

#include "power/WattlogEvent.h"

namespace zelvar {

// A point of the battery level chart.
struct WattlogBatteryPoint {
    QDateTime date;
    int percent = 0;
    bool onAC = false;

    bool operator==(const WattlogBatteryPoint&) const = default;
};

// A stretch of use between a wake (or the display coming on) and the next sleep (or the
// display going off); open while no sleep has followed.
struct WattlogUsageSession {
    QUuid id;
    QDateTime start;
    std::optional<QDateTime> end;

    // In seconds; an open session runs to `now`.
    double duration(const QDateTime& now) const;
};

struct WattlogStats {
    double totalSleepTime = 0;  // seconds
    double totalAwakeTime = 0;
    double averageSessionLength = 0;
    double longestSession = 0;
    int lidCloseCount = 0;
    int rebootCount = 0;
    int batteryChargeCycles = 0;  // falls below 20% later followed by a rise above 80%
    double timeOnACRatio = 0;     // shares of the chart's points, not of time
    double timeOnBatteryRatio = 0;
    int eventCount = 0;

    bool operator==(const WattlogStats&) const = default;
};

struct WattlogHealthCounts {
    int panics = 0;
    int crashes = 0;
    int hangs = 0;
    int jetsam = 0;

    bool operator==(const WattlogHealthCounts&) const = default;
};

// Everything the Power tab shows of the history beyond its events, a pure function of the
// event list. A default value is the empty one.
struct WattlogDerivedData {
    static constexpr int kMaxBatteryPoints = 1200;
    static constexpr int kMaxTimelineEvents = 800;

    QList<WattlogBatteryPoint> batteryPoints;  // oldest first
    QList<WattlogUsageSession> usageSessions;  // oldest first
    WattlogStats stats;
    QList<WattlogEvent> batteryTimelineEvents;  // the newest 800 at most, oldest first
    WattlogHealthCounts systemHealthCounts;

    // The events in any order, from any source; `now` ends an open session.
    static WattlogDerivedData build(const QList<WattlogEvent>& events, const QDateTime& now);

    // Whether a Battery event's charge describes the battery: its percentage within 0 to 100,
    // and a sample, a line with "Cap=" or "mA;", a line that isn't an assertion summary, or a
    // summary whose "Using AC(Charge: N)" has the exact form.
    static bool isReliableBatteryPoint(const WattlogEvent& event);

    // At most `maxCount` elements, evenly by index: element round((n - 1) / (maxCount - 1) * i),
    // halves away from zero, so that the first and the last survive.
    template <typename T>
    static QList<T> downsample(const QList<T>& items, int maxCount) {
        const qsizetype n = items.size();
        if (n <= maxCount) {
            return items;
        }
        QList<T> result;
        result.reserve(maxCount);
        const double step = static_cast<double>(n - 1) / static_cast<double>(maxCount - 1);
        for (int i = 0; i < maxCount; ++i) {
            result.append(items.at(static_cast<qsizetype>(std::round(step * i))));
        }
        return result;
    }
};

}  // namespace zelvar
