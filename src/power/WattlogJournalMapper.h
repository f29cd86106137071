#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>

#include "platform/PowerLogSource.h"
#include "power/WattlogEvent.h"

namespace zelvar {

// The power history of a system that keeps a journal instead of a power log: what journal
// entries mean (sleep and wake from systemd-sleep or the kernel's suspend entry and exit, the
// lid from systemd-logind, the AC adapter from the kernel's ACPI driver, out-of-memory kills
// from the kernel or systemd-oomd, core dumps from systemd-coredump, and a reboot at the first
// entry of each boot), and upower's charge history as battery levels. Pure functions but for
// the reading of history files.
class WattlogJournalMapper {
public:
    WattlogJournalMapper() = delete;

    // How long after the lid closes a suspend counts as the lid's.
    static constexpr qint64 kLidSuspendMicroseconds = 60'000'000;

    // The events of `entries` (oldest first) later than `since`. An entry's boot id unlike the
    // one before it makes a Reboot event at that entry first. One suspend is one Sleep (or
    // LidSleep after the lid closed) and one Wake, however many entries tell of it; the entries
    // before `since` count for that.
    static QList<WattlogEvent> map(const QList<JournalEntry>& entries, const QDateTime& since);
    // The event of one entry by its identifier and message, reboots and the lid's sleep aside.
    static std::optional<WattlogEvent> mapEntry(const JournalEntry& entry);
    // "2024-09-11 16:02:48 +0200 systemd-logind: Lid closed.": the entry as a line of the log,
    // in local time.
    static QString rawLine(const JournalEntry& entry);

    // Battery events of upower's charge history ("1700000000<TAB>85.000<TAB>discharging" a
    // line) later than `since`, each after an AC event where the state's power source changed
    // since the line before; a line that doesn't read is left out.
    static QList<WattlogEvent> parseUpowerHistory(const QByteArray& text, const QDateTime& since);
    static QList<WattlogEvent> loadUpowerHistory(const QStringList& files, const QDateTime& since);
};

}  // namespace zelvar
