#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

#include "app/report/ReportKind.h"
#include "power/WattlogDerivedData.h"
#include "power/WattlogEvent.h"

namespace zelvar {

// `zelvar2 report history`: the power history (the system's power log, the daemon's samples,
// the diagnostic reports and the cache) with its statistics; `--since DATE` keeps the events
// after a date, `--from-log FILE` reads a saved `pmset -g log` text instead of this system's
// sources, and `--follow` then runs the live tail and prints each new raw line.
class HistoryReport {
public:
    static ReportKind kind();

    struct History {
        QList<WattlogEvent> events;  // oldest first
        WattlogDerivedData derived;
        QDateTime now;
    };

    // "2024-03-01", "2024-03-01 10:30", "2024-03-01T10:30:00+01:00", pmset's
    // "2024-03-01 10:30:00 +0100"; local time where no zone is given.
    static std::optional<QDateTime> parseDate(const QString& text);
    // The events of a saved power log later than `since`, with their statistics as of `now`.
    static History fromLogText(const QString& text, const QDateTime& since, const QDateTime& now);

    static QString formatText(const History& history);
    static QByteArray formatJson(const History& history);
};

}  // namespace zelvar
