#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

#include "power/BatteryPowerSnapshot.h"
#include "power/WattlogBatterySample.h"
#include "power/WattlogEvent.h"
#include "ui/Palette.h"

namespace zelvar {

// What the Battery subtab advises, and the three facts shown under the advice.
struct BatteryRecommendation {
    QString title;
    QString detail;
    QString symbol;
    NamedColor color = NamedColor::Green;
    QString state;   // "Charging", "On AC" or "On Battery"
    QString cycle;   // "Cycle 412" or "Cycle --"
    QString health;  // "Health 91%" or "Health --"

    bool operator==(const BatteryRecommendation&) const = default;
};

// The first advice whose condition fits the battery, checked from the most urgent (a worn
// battery, then a low charge) to the calm ones. The level is the snapshot's, else the latest
// daemon sample's, else 0. `acEvents` are the history's AC connections in any order; `now`
// dates the newest of them for the "full on AC" advice. Without any battery reading or sample
// the advice is "No battery found" instead.
BatteryRecommendation batteryRecommendation(const BatteryPowerSnapshot& snapshot,
                                            const std::optional<WattlogBatterySample>& latestSample,
                                            const QList<WattlogEvent>& acEvents,
                                            const QDateTime& now);

}  // namespace zelvar
