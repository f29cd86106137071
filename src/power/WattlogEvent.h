#pragma once

#include <QDateTime>
#include <QJsonObject>
#include <QString>
#include <QUuid>
#include <optional>

#include "power/WattlogEventKind.h"

namespace zelvar {

// One event of the power history: from the power log, a diagnostic report, a daemon sample or
// the cache. `id` is made when the event is made and means nothing across runs.
struct WattlogEvent {
    QUuid id;
    QDateTime timestamp;  // UTC
    WattlogEventKind kind = WattlogEventKind::BatteryLevel;
    QString detail;
    std::optional<int> batteryPercent;
    std::optional<WattlogPowerSource> powerSource;
    // The source's line as it was read, untrimmed; an inferred event has its cause's.
    QString rawLine;

    bool operator==(const WattlogEvent&) const = default;

    // A fresh id; made for every event the history makes.
    static QUuid newId();
    // An instant in UTC in the light form (no time zone object), cheap to make and compare by
    // the hundred thousand.
    static QDateTime utcTime(qint64 msecsSinceEpoch);

    // The stored form, decoded tolerantly: each field takes the first of its keys that
    // decodes, and falls back to a default (a new id, 1970, kind Battery, the kind's label as
    // detail, an empty raw line) when none does.
    static WattlogEvent decode(const QJsonObject& object);
    // The stored form: seconds since 1970 and the labels of kind and source.
    QJsonObject toJson() const;
};

}  // namespace zelvar
