#include "power/WattlogHistory.h"

#include <QTimeZone>
#include <algorithm>
#include <unordered_map>
#include <vector>

#include "platform/PowerLogSource.h"
#include "power/BatteryPowerMonitor.h"
#include "power/WattlogCache.h"
#include "power/WattlogDiagnostics.h"
#include "power/WattlogJournalMapper.h"
#include "power/WattlogLogParser.h"

namespace zelvar {
namespace {

// Kept events of one kind (and for Battery events one detail) in one 2-second slot of time:
// an event can only be like those of its own slot and the two beside it.
struct SlotKey {
    int kind;
    qint64 slot;
    QString detail;  // Battery events only

    bool operator==(const SlotKey&) const = default;
};

struct SlotKeyHash {
    std::size_t operator()(const SlotKey& k) const {
        return qHashMulti(0, k.kind, k.slot, k.detail);
    }
};

qint64 slotOf(qint64 ms) {
    // Rounds towards minus infinity, so that slots before 1970 are as wide as the others.
    return ms >= 0 ? ms / WattlogHistory::kDuplicateWindowMs
                   : -((-ms - 1) / WattlogHistory::kDuplicateWindowMs) - 1;
}

}  // namespace

QDateTime WattlogHistory::distantPast() {
    return QDateTime(QDate(1, 1, 1), QTime(0, 0), QTimeZone::utc());
}

QList<WattlogEvent> WattlogHistory::deduplicated(const QList<WattlogEvent>& events) {
    std::unordered_map<SlotKey, std::vector<qint64>, SlotKeyHash> kept;
    kept.reserve(static_cast<std::size_t>(events.size()));
    QList<WattlogEvent> result;
    result.reserve(events.size());
    for (const WattlogEvent& e : events) {
        const qint64 at = e.timestamp.toMSecsSinceEpoch();
        const qint64 slot = slotOf(at);
        const int kind = static_cast<int>(e.kind);
        const QString detail = e.kind == WattlogEventKind::BatteryLevel ? e.detail : QString();
        bool duplicate = false;
        for (qint64 s = slot - 1; s <= slot + 1 && !duplicate; ++s) {
            const auto found = kept.find(SlotKey{kind, s, detail});
            if (found != kept.end()) {
                duplicate = std::any_of(found->second.begin(), found->second.end(), [at](qint64 t) {
                    return std::abs(t - at) < kDuplicateWindowMs;
                });
            }
        }
        if (!duplicate) {
            kept[SlotKey{kind, slot, detail}].push_back(at);
            result.append(e);
        }
    }
    return result;
}

void WattlogHistory::sortByTime(QList<WattlogEvent>& events) {
    std::stable_sort(
        events.begin(), events.end(),
        [](const WattlogEvent& a, const WattlogEvent& b) { return a.timestamp < b.timestamp; });
}

QList<WattlogEvent> WattlogHistory::readPowerLog(const Sources& sources, const QDateTime& since) {
    QList<WattlogEvent> events;
    switch (sources.powerLog.log()) {
        case PowerLogSource::Log::Pmset:
            events = WattlogLogParser::parsePmsetText(
                BatteryPowerMonitor::runCommand(sources.commands, QStringLiteral("/usr/bin/pmset"),
                                                {QStringLiteral("-g"), QStringLiteral("log")}));
            events.removeIf([&since](const WattlogEvent& e) { return !(e.timestamp > since); });
            break;
        case PowerLogSource::Log::Journal:
            events = WattlogJournalMapper::map(sources.powerLog.journalEntries(since), since);
            break;
        case PowerLogSource::Log::None:
            break;
    }
    events.append(
        WattlogJournalMapper::loadUpowerHistory(sources.powerLog.batteryHistoryFiles(), since));
    return events;
}

QList<WattlogEvent> WattlogHistory::newEvents(const Sources& sources, const QDateTime& since) {
    QList<WattlogEvent> events = readPowerLog(sources, since);
    events.append(WattlogDiagnostics::loadBatterySampleEvents(sources.batterySamplesFile, since));
    events = deduplicated(events);
    sortByTime(events);
    return events;
}

QList<WattlogEvent> WattlogHistory::diagnosticEvents(const Sources& sources, const QDateTime& since,
                                                     const QSet<QString>& alreadyIngested) {
    QList<WattlogEvent> events = WattlogDiagnostics::loadDiagnosticEvents(
        sources.powerLog.diagnosticDirectories(), since, alreadyIngested);
    events.append(WattlogDiagnostics::loadPanicRecords(sources.powerLog.panicRecordDirectories(),
                                                       since, alreadyIngested));
    return events;
}

WattlogHistory::Result WattlogHistory::build(const Sources& sources, const QDateTime& now) {
    const std::optional<WattlogCache> cache = WattlogCache::read(sources.cacheFile);
    const QList<WattlogEvent> cached = cache ? cache->events : QList<WattlogEvent>();
    QDateTime since = distantPast();
    if (cache) {
        since = cache->lastEventTimestamp;
    }
    QList<WattlogEvent> merged = cached;
    merged.append(newEvents(sources, since));
    merged.append(
        diagnosticEvents(sources, since, cache ? cache->ingestedDiagnosticFiles : QSet<QString>()));
    merged = deduplicated(merged);
    sortByTime(merged);
    Result result;
    result.derivedData = WattlogDerivedData::build(merged, now);
    result.events = std::move(merged);
    return result;
}

}  // namespace zelvar
