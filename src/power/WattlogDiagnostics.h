#pragma once

#include <QDateTime>
#include <QList>
#include <QRegularExpression>
#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>

#include "power/WattlogEvent.h"

namespace zelvar {

// The history's events from beside the power log: the system's diagnostic reports (panics,
// crashes, hangs, out-of-memory kills), classified by file name alone except that a panic
// report is opened for its reason; the kernel's panic records kept over a reboot (pstore); and
// the daemon's battery samples. Readers of files: a directory or file that can't be read gives
// no event.
class WattlogDiagnostics {
public:
    WattlogDiagnostics() = delete;

    // How much of a panic report is looked at.
    static constexpr int kPanicHeadCharacters = 4096;
    static constexpr int kPanicReasonLength = 100;

    // The reports of `directories`, scanned in order, not recursively, each listing in name
    // order; names in `alreadyIngested` are skipped, and only events later than `since` kept.
    static QList<WattlogEvent> loadDiagnosticEvents(const QStringList& directories,
                                                    const QDateTime& since,
                                                    const QSet<QString>& alreadyIngested);
    // The event of one report, by the first name rule whose name test holds and whose date
    // reads; `rawLine` is the file name.
    static std::optional<WattlogEvent> parseDiagnosticReport(const QString& filename,
                                                             const QString& directory);
    // The first match of `pattern` in `filename`, underscores trimmed, read as
    // "yyyy-MM-dd-HHmmss" in the local time zone.
    static std::optional<QDateTime> diagnosticDate(const QString& filename,
                                                   const QRegularExpression& pattern);
    // The first line of the JSON "panicString" at the head of a panic report, without its
    // "panic(cpu N caller 0x...): " prefix, at most 100 characters.
    static std::optional<QString> panicReason(const QString& path);

    // The kernel's panic records of `directories` (pstore: "dmesg-*" files holding a panic),
    // dated by the file's modification time, the only date a record has.
    static QList<WattlogEvent> loadPanicRecords(const QStringList& directories,
                                                const QDateTime& since,
                                                const QSet<QString>& alreadyIngested);

    // The crash reports of `directories` in apport's form ("ProblemType: Crash", "Date: Tue
    // Mar  5 10:15:00 2024", "ExecutablePath: /usr/bin/gedit"): a crash, a hang or a kernel
    // crash, dated by its "Date" line in local time, named after its executable.
    static QList<WattlogEvent> loadCrashReports(const QStringList& directories,
                                                const QDateTime& since,
                                                const QSet<QString>& alreadyIngested);
    // The event of one such report's head; `rawLine` is the file name.
    static std::optional<WattlogEvent> parseCrashReport(const QString& filename,
                                                        const QByteArray& head);

    // A Battery event for each sample of the daemon's battery sample file later than `since`,
    // in file order. Its raw line is "Wattlog sample " and the detail, "AC 80% 1500mA 12.3W".
    static QList<WattlogEvent> loadBatterySampleEvents(const QString& samplesFile,
                                                       const QDateTime& since);
};

}  // namespace zelvar
