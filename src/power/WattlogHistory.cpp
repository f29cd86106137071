#include "power/WattlogHistory.h"

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

// Kept events are filed under their kind, their 2-second slot of time and, for Battery events,
// their detail: an event can only be like those of its own slot and the two beside it. The key
// is a hash of the three; what shares a key is checked in full.
quint64 slotKey(int kind, qint64 slot, std::size_t detailHash) {
    quint64 key = static_cast<quint64>(slot) * 0x9E3779B97F4A7C15ULL;
    key ^= (static_cast<quint64>(kind) + 1) * 0xC2B2AE3D27D4EB4FULL;
    key ^= static_cast<quint64>(detailHash) * 0x165667B19E3779F9ULL;
    return key ^ (key >> 29);
}

qint64 slotOf(qint64 ms) {
    // Rounds towards minus infinity, so that slots before 1970 are as wide as the others.
    return ms >= 0 ? ms / WattlogHistory::kDuplicateWindowMs
                   : -((-ms - 1) / WattlogHistory::kDuplicateWindowMs) - 1;
}

struct Kept {
    qint64 at;
    qsizetype index;  // in the result
};

}  // namespace

QDateTime WattlogHistory::distantPast() {
    return QDateTime(QDate(1, 1, 1), QTime(0, 0), Qt::UTC);
}

QList<WattlogEvent> WattlogHistory::deduplicated(const QList<WattlogEvent>& events) {
    std::unordered_map<quint64, std::vector<Kept>> kept;
    kept.reserve(static_cast<std::size_t>(events.size()));
    QList<WattlogEvent> result;
    result.reserve(events.size());
    for (const WattlogEvent& e : events) {
        const qint64 at = e.timestamp.toMSecsSinceEpoch();
        const qint64 slot = slotOf(at);
        const int kind = static_cast<int>(e.kind);
        const bool battery = e.kind == WattlogEventKind::BatteryLevel;
        const std::size_t detailHash = battery ? qHash(e.detail) : 0;
        const auto like = [&](const Kept& k) {
            const WattlogEvent& other = result.at(k.index);
            return std::abs(k.at - at) < kDuplicateWindowMs && other.kind == e.kind &&
                   (!battery || other.detail == e.detail);
        };
        bool duplicate = false;
        for (qint64 s = slot - 1; s <= slot + 1 && !duplicate; ++s) {
            const auto found = kept.find(slotKey(kind, s, detailHash));
            duplicate = found != kept.end() &&
                        std::any_of(found->second.begin(), found->second.end(), like);
        }
        if (!duplicate) {
            kept[slotKey(kind, slot, detailHash)].push_back({at, result.size()});
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
    events.append(WattlogDiagnostics::loadCrashReports(sources.powerLog.crashReportDirectories(),
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
