// The daily usage file's bytes, read for one day as the bandwidth monitor asks for it.
#include "FuzzInput.h"
#include "network/UsageCache.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QList<zelvar::CachedAppUsage> usages =
        zelvar::UsageCache::parse(zelvar::fuzz::bytes(data, size), QStringLiteral("2026-11-23"));
    QStringList names;
    for (const zelvar::CachedAppUsage& usage : usages) {
        zelvar::fuzz::check(!usage.name.isEmpty() && usage.name == usage.name.trimmed(),
                            "names are trimmed and not blank");
        names << usage.name;
    }
    zelvar::fuzz::check(names.removeDuplicates() == 0, "each name once");
    return 0;
}
