#pragma once

#include <QDateTime>
#include <QList>
#include <QSet>
#include <QString>

#include "power/WattlogDerivedData.h"
#include "power/WattlogEvent.h"

namespace zelvar {

class CommandRunner;
class PowerLogSource;

// The power history: the cache merged with what the power log, the daemon's samples and the
// diagnostic reports have added since, without duplicates, oldest first. Blocking reads; run
// it off the main thread.
class WattlogHistory {
public:
    WattlogHistory() = delete;

    // Two events of one kind closer than this are one event.
    static constexpr qint64 kDuplicateWindowMs = 2000;

    struct Sources {
        PowerLogSource& powerLog;
        CommandRunner& commands;  // runs `pmset -g log` where that is the power log
        QString cacheFile;
        QString batterySamplesFile;
    };

    struct Result {
        QList<WattlogEvent> events;  // oldest first
        WattlogDerivedData derivedData;
    };

    // Before any date of a log.
    static QDateTime distantPast();

    // The first of each group of like events, in input order: like events have one kind,
    // timestamps less than 2 s apart and, for Battery events, the same detail. Kept events are
    // indexed by kind and time, so a list costs about its length, not its square.
    static QList<WattlogEvent> deduplicated(const QList<WattlogEvent>& events);
    // By timestamp, ties in input order.
    static void sortByTime(QList<WattlogEvent>& events);

    // The power log's events later than `since`: `pmset -g log` parsed whole (so that the
    // inferences see what lies before `since`), or the journal's entries and the battery's
    // charge history.
    static QList<WattlogEvent> readPowerLog(const Sources& sources, const QDateTime& since);
    // The power log's and the daemon's samples' events later than `since`, deduplicated and
    // sorted: what a history build and a live poll add.
    static QList<WattlogEvent> newEvents(const Sources& sources, const QDateTime& since);
    // Diagnostic reports and panic records later than `since`, except those already taken in.
    static QList<WattlogEvent> diagnosticEvents(const Sources& sources, const QDateTime& since,
                                                const QSet<QString>& alreadyIngested);

    // The whole history as of `now`.
    static Result build(const Sources& sources, const QDateTime& now);
};

}  // namespace zelvar
