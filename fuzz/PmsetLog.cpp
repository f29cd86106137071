// The text of `pmset -g log`, and journal lines, as the power history reads them.
#include "FuzzInput.h"
#include "power/WattlogHistory.h"
#include "power/WattlogJournalMapper.h"
#include "power/WattlogLogParser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::optional<QString> text = zelvar::fuzz::utf8Text(data, size);
    if (!text) {
        return 0;
    }
    const QList<zelvar::WattlogEvent> events = zelvar::WattlogLogParser::parsePmsetText(*text);
    for (const zelvar::WattlogEvent& e : events) {
        zelvar::fuzz::check(e.timestamp.isValid(), "every event has a valid time");
        zelvar::fuzz::check(text->contains(e.rawLine), "an event's raw line is one of the lines");
    }
    const QList<zelvar::WattlogEvent> kept = zelvar::WattlogHistory::deduplicated(events);
    zelvar::fuzz::check(kept.size() <= events.size() && (events.isEmpty() || !kept.isEmpty()),
                        "deduplication keeps a first event and adds none");

    zelvar::JournalEntry entry;
    entry.identifier = text->section(QLatin1Char(':'), 0, 0);
    entry.message = text->section(QLatin1Char(':'), 1).trimmed();
    entry.bootId = QStringLiteral("b");
    zelvar::WattlogJournalMapper::mapEntry(entry);
    zelvar::WattlogJournalMapper::parseUpowerHistory(zelvar::fuzz::bytes(data, size),
                                                     zelvar::WattlogHistory::distantPast());
    return 0;
}
