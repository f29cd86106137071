#pragma once

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QTimeZone>

#include "network/NetworkUsage.h"

namespace zelvar {

class Paths;

// Reads one day of the daemon's per-application network totals, `usage-by-date.json`:
// {"dates": {"yyyy-MM-dd": {"<app>": {"received": n, "sent": n}, ...}, ...}}. The daemon writes it
// with encode(). Every bad shape gives an empty list.
class UsageCache {
public:
    // usage-by-date.json in Zelvar2's data folder, where the daemon writes it.
    static QString defaultFile(const Paths& paths);

    // The local calendar day `offsetDays` from `now`, as "yyyy-MM-dd" with Western digits.
    static QString calendarDate(const QDateTime& now, int offsetDays = 0,
                                const QTimeZone& zone = QTimeZone::systemTimeZone());

    // The applications of `date`, largest total first. Fractions are cut, negative counts are
    // 0, blank names and entries with nothing in them are skipped, and names that differ only
    // in surrounding blanks are merged.
    static QList<CachedAppUsage> load(const QString& usageFile, const QString& date);
    // The same from the file's bytes.
    static QList<CachedAppUsage> parse(const QByteArray& json, const QString& date);
    // The day's entries as the file lists them, before names are merged: trimmed, without
    // blank names and without entries that hold nothing.
    static QList<CachedAppUsage> dayEntries(const QByteArray& json, const QString& date);

    // Every day of the file, as dayEntries gives each: what the daemon loads to go on counting.
    using Days = QMap<QString, QList<CachedAppUsage>>;
    static Days allDays(const QByteArray& json);
    // The file's content for `days`, the form that parse() reads.
    static QByteArray encode(const Days& days);
};

}  // namespace zelvar
