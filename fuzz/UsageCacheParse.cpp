// The daily usage file's bytes, read for one day as the bandwidth monitor asks for it.
#include <QHash>

#include "FuzzInput.h"
#include "network/UsageCache.h"

namespace {

// Whether merging the entries by name stays within 64 bits. The merge stops the process when
// it doesn't (a file no writer of ours can produce); that stop is its contract, not a finding.
bool mergeFits(const QList<zelvar::CachedAppUsage>& entries) {
    QHash<QString, std::pair<quint64, quint64>> sums;
    for (const zelvar::CachedAppUsage& entry : entries) {
        auto& [received, sent] = sums[entry.name];
        if (__builtin_add_overflow(received, entry.receivedBytes, &received) ||
            __builtin_add_overflow(sent, entry.sentBytes, &sent)) {
            return false;
        }
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray json = zelvar::fuzz::bytes(data, size);
    const QString day = QStringLiteral("2026-11-23");
    const QList<zelvar::CachedAppUsage> entries = zelvar::UsageCache::dayEntries(json, day);
    for (const zelvar::CachedAppUsage& entry : entries) {
        zelvar::fuzz::check(!entry.name.isEmpty() && entry.name == entry.name.trimmed(),
                            "names are trimmed and not blank");
        zelvar::fuzz::check(entry.receivedBytes != 0 || entry.sentBytes != 0,
                            "empty entries are skipped");
    }
    if (!mergeFits(entries)) {
        return 0;
    }
    QStringList names;
    for (const zelvar::CachedAppUsage& usage : zelvar::UsageCache::parse(json, day)) {
        names << usage.name;
    }
    zelvar::fuzz::check(names.removeDuplicates() == 0, "each name once");
    return 0;
}
